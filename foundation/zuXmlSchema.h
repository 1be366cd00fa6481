// zuXmlSchema.h - collects the XML Schema of an object. Group: XML objects.
#pragma once

#include <map>
#include <string>
#include <typeindex>
#include <vector>

#include "foundation/zuExport.h"
#include "foundation/zuToken.h"

class ZuXmlObject;

/// Builds an XSD 1.0 schema while objects describe themselves through ZuXmlObject::writeSchema.
///
/// Each object describes the content of the element that is open. Content that can contain itself (a shape holds a
/// coarser shape) has a named type, described once: `if (schema.beginType(name)) { ...; schema.endType(); }`.
class ZU_API ZuXmlSchema {
 public:
  static constexpr unsigned int m_theUnbounded = 4294967295U;

  /// Content is text: "real", "realPair", "realTriple", "realQuadruple" of this library, or a type of XML Schema
  /// ("xs:string").
  void simple(std::string const& type);

  /// Content is the named type. True when its description is to follow, up to endType(); false when it is known.
  bool beginType(std::string const& name);
  /// The same for the type of the object's class, whose name is made from that of the class.
  bool beginType(ZuXmlObject const& object);
  void endType();

  /// Opens a group of elements inside a type: "sequence" or "choice".
  void beginGroup(std::string const& kind, unsigned int lowest = 1, unsigned int highest = 1);
  void endGroup();
  /// One element of a group, whose content is described next, up to endElement().
  void beginElement(ZuToken const& name, unsigned int lowest = 0, unsigned int highest = 1);
  void endElement();
  /// An attribute of the type; call it after the groups. Its content is described next, up to endAttribute().
  void beginAttribute(ZuToken const& name);
  void endAttribute();

  /// The whole schema, for documents whose root element has the content of the last described object.
  std::string document(ZuToken const& root) const;

 private:
  std::string& out() { return m_Types[m_OpenTypes.back()]; }

  std::map<std::string, std::string> m_Types;
  std::map<std::type_index, std::string> m_ClassNames;
  std::vector<std::string> m_OpenTypes;
  std::vector<std::string> m_OpenElements;
  std::vector<std::string> m_OpenGroups;
  std::string m_Content = "xs:anyType";
};
