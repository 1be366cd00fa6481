// zuXmlBaseVariableCompoundType.h - container of objects of several classes. Group: XML objects.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/zuXmlObject.h"

/// Owns objects of any registered class, each written as a child element named after its class.
///
/// Classes are registered by element name, in code or by plug-in libraries. A plug-in is a shared library with a
/// function
///
///     extern "C" void zuRegisterCreators(ZuXmlBaseVariableCompoundType* container);
///
/// that calls registerComponentCreator() for each of its classes. Which libraries are loaded is the program's decision
/// alone: documents never name libraries. A loaded library stays until the process ends, since its objects may.
/// Copying clones the elements. The elements that know their container are told it.
class ZU_API ZuXmlBaseVariableCompoundType : public ZuXmlClass<ZuXmlBaseVariableCompoundType, ZuXmlObject> {
 public:
  using Creator = ZuXmlObject* (*)();

  ZuXmlBaseVariableCompoundType() = default;
  ZuXmlBaseVariableCompoundType(ZuXmlBaseVariableCompoundType const& other);
  ZuXmlBaseVariableCompoundType& operator=(ZuXmlBaseVariableCompoundType const& other);
  ~ZuXmlBaseVariableCompoundType() override;

  /// Equal elements in equal order; the registered classes are passed over.
  bool operator==(ZuXmlBaseVariableCompoundType const& other) const;

  // The elements.

  std::size_t size() const { return m_Elements.size(); }
  /// Prints a message and returns null for an index past the end.
  ZuXmlObject const* element(std::size_t index) const;
  ZuXmlObject* element(std::size_t index);
  /// Takes over the object, if it is not null. Only under the name that its class is registered under can it be read
  /// back.
  void append(std::unique_ptr<ZuXmlObject> element, ZuToken const& token);
  void clear();

  // The classes.

  /// Registers a class under the name, in place of the one that may be there.
  virtual void registerComponentCreator(ZuToken const& token, Creator creator);
  /// A new object of the class registered under the name, owned by the caller; null when the name is unknown. Costs
  /// O(log n) comparisons of names.
  virtual ZuXmlObject* newObjectFromToken(ZuToken const& token) const;
  virtual std::map<ZuToken, Creator> const& creatorMap() const;

  // The plug-in libraries: file names as dlopen() takes them.

  virtual std::vector<std::string> const& addLibraries() const;
  virtual void setAddLibraries(std::vector<std::string> const& libraries);
  /// Loads the libraries and lets each register its classes. Prints a line for each that can't be loaded or has no
  /// zuRegisterCreators(), goes on with the others, and returns whether all went well.
  virtual bool processLibraries();

  // See ZuXmlObject
  void accept(ZuXmlObjectVisitor* visitor) override;
  void xmlInit() override;
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;
  std::unique_ptr<ZuXmlObject> emptyLikeThis() const override;

  static ZuToken const& classToken();
  /// Holds two vectors.
  static ZuXmlBaseVariableCompoundType testObject();

 private:
  struct Element {
    ZuToken token;
    std::unique_ptr<ZuXmlObject> object;
  };
  bool readElement(ZuXmlReader& reader, std::vector<Element>& elements);
  void adopt(ZuXmlObject& element);

  std::vector<Element> m_Elements;
  std::map<ZuToken, Creator> m_Creators;
  std::vector<std::string> m_Libraries;
};
