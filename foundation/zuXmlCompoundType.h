// zuXmlCompoundType.h - an object whose persistent members are XML objects. Group: XML objects.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/zuXmlObject.h"

/// A persistent member and the name of its element or attribute.
struct ZuXmlComponent {
  ZuToken token;
  ZuXmlObject* object;
  bool readOnly;
};

/// The persistent members of one object, in the order in which they are written.
class ZU_API ZuXmlComponentMap {
 public:
  /// A name that is there already is bound anew.
  void add(ZuXmlComponent const& component);
  /// Null when there is none of that name. Linear: objects have few members.
  ZuXmlComponent const* find(std::string_view name) const;
  std::vector<ZuXmlComponent> const& components() const { return m_Components; }

 private:
  std::vector<ZuXmlComponent> m_Components;
};

/// Child elements that are not members: what may stand there (for schemas), by name.
using ZuXmlSpecialDescriptorMap = std::map<ZuToken, ZuXmlObject* (*)()>;

/// An object that is written as one child element, or attribute, per persistent member.
///
/// A class binds its members in registerComponents(), after those of its base, in the order in which they are written.
/// The table of bindings holds addresses of members, so it belongs to one object: it is built on the first XML use of
/// that object and kept in one pointer. Constructing, copying and assigning never build it, and never take over another
/// object's. On reading, elements may come in any order; each may come once; an unknown one refuses the document unless
/// readValueFromSpecialToken() knows it.
class ZU_API ZuXmlCompoundType : public ZuXmlObject {
 public:
  ZuXmlCompoundType() = default;
  ZuXmlCompoundType(ZuXmlCompoundType const& other) : ZuXmlObject(other) {}
  ZuXmlCompoundType& operator=(ZuXmlCompoundType const& other) {
    ZuXmlObject::operator=(other);
    if (m_Bindings != nullptr) dropBindings();
    return *this;
  }
  // Inline, with the rare case outside: values are copied and destroyed in inner loops.
  ~ZuXmlCompoundType() override {
    if (m_Bindings != nullptr) dropBindings();
  }

  /// The base part of every comparison: a compound type without members is equal to any other.
  bool operator==(ZuXmlCompoundType const&) const { return true; }

  // See ZuXmlObject
  void accept(ZuXmlObjectVisitor* visitor) override;
  void xmlInit() override;
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;

  virtual bool readAttributes(ZuXmlReader& reader);
  virtual bool readElements(ZuXmlReader& reader);
  virtual bool writeAttributes(ZuXmlWriter& writer) const;
  virtual bool writeElements(ZuXmlWriter& writer) const;
  virtual bool writeSchemaAttributes(ZuXmlSchema& schema) const;
  virtual bool writeSchemaElements(ZuXmlSchema& schema) const;

  /// Binds each persistent member to its name; an override calls its base's first.
  virtual void registerComponents();
  /// For registerComponents(): the member is written as, and read from, the child element of that name.
  virtual void registerComponent(ZuToken const& token, ZuXmlObject* component);
  /// The member is written for others to read; when the document is read, the element is passed over.
  virtual void registerComponentReadOnly(ZuToken const& token, ZuXmlObject* component);
  /// This object's bindings; built on first use.
  virtual ZuXmlComponentMap const& componentMap() const;
  virtual void registerAttributeComponent(ZuToken const& token, ZuXmlObject* component);
  virtual void registerAttributeComponentReadOnly(ZuToken const& token, ZuXmlObject* component);
  virtual ZuXmlComponentMap const& attributeComponentMap() const;
  virtual ZuXmlSpecialDescriptorMap const& specialDescriptorMap() const;
  /// True when the object has components that are child elements, or attributes.
  virtual bool hasChildren() const;
  virtual bool hasAttributes() const;

  /// Lets the member of that name read itself from the current element; false when there is no such member.
  virtual bool readValueFromToken(ZuToken const& token, ZuXmlReader& reader);
  /// Takes a child element that is not a member; the base refuses it. An override that returns false has refused the
  /// document, by ZuXmlReader::refuse() or a line of its own.
  virtual bool readValueFromSpecialToken(ZuToken const& token, ZuXmlReader& reader);
  virtual bool readAttributeFromToken(ZuToken const& token, ZuXmlReader& reader);

  // The tables: an empty one, owned by the caller; and this object's, built anew.
  virtual ZuXmlComponentMap* newComponentMap() const;
  virtual ZuXmlSpecialDescriptorMap* newSpecialDescriptorMap() const;
  virtual void createComponentMap();
  virtual void createAttributeComponentMap();
  /// An override adds the names that readValueFromSpecialToken() knows.
  virtual void createSpecialDescriptorMap();

  virtual bool isReadOnlyComponent(ZuToken const& token) const;
  virtual bool isReadOnlyAttribute(ZuToken const& token) const;

 protected:
  /// For createSpecialDescriptorMap(): an object of the creator tells what the element holds.
  void addSpecialDescriptor(ZuToken const& token, ZuXmlObject* (*creator)());

 private:
  struct Bindings {
    std::unique_ptr<ZuXmlComponentMap> elements;
    std::unique_ptr<ZuXmlComponentMap> attributes;
    std::unique_ptr<ZuXmlSpecialDescriptorMap> specials;
  };
  Bindings& bindings() const;
  void dropBindings();
  bool readIntoFreshObject(ZuXmlReader& reader);

  mutable Bindings* m_Bindings = nullptr;
};
