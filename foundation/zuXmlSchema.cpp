#include "foundation/zuXmlSchema.h"

#include <cxxabi.h>

#include <cctype>
#include <cstdlib>
#include <memory>
#include <typeinfo>

#include "foundation/zuXmlObject.h"

namespace {

std::string occurrence(unsigned int lowest, unsigned int highest) {
  std::string text;
  if (lowest != 1) text += " minOccurs=\"" + std::to_string(lowest) + '"';
  if (highest == ZuXmlSchema::m_theUnbounded) text += " maxOccurs=\"unbounded\"";
  if (highest != 1 && highest != ZuXmlSchema::m_theUnbounded) text += " maxOccurs=\"" + std::to_string(highest) + '"';
  return text;
}

/// The name of the object's class, as a name of XML: for ZuXmlMapType<A, B> it is ZuXmlMapType_A__B_.
std::string className(ZuXmlObject const& object) {
  int status = 0;
  std::unique_ptr<char, void (*)(void*)> const readable(
      abi::__cxa_demangle(typeid(object).name(), nullptr, nullptr, &status), std::free);
  std::string name(status == 0 ? readable.get() : typeid(object).name());
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return name;
}

char const* const theHead = R"xsd(<?xml version="1.0" encoding="UTF-8"?>
<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">
<xs:simpleType name="real"><xs:restriction base="xs:token"><xs:pattern
 value="[+\-]?(([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+\-]?[0-9]+)?|inf|nan(\(0x[0-9a-fA-F]+\))?)"/></xs:restriction></xs:simpleType>
<xs:simpleType name="realList"><xs:list itemType="real"/></xs:simpleType>
<xs:simpleType name="realPair"><xs:restriction base="realList"><xs:length value="2"/></xs:restriction></xs:simpleType>
<xs:simpleType name="realTriple"><xs:restriction base="realList"><xs:length value="3"/></xs:restriction></xs:simpleType>
<xs:simpleType name="realQuadruple"><xs:restriction base="realList"><xs:length value="4"/></xs:restriction></xs:simpleType>
)xsd";

}  // namespace

void ZuXmlSchema::simple(std::string const& type) { m_Content = type; }

bool ZuXmlSchema::beginType(std::string const& name) {
  m_Content = name;
  if (!m_Types.emplace(name, std::string()).second) return false;
  m_OpenTypes.push_back(name);
  return true;
}

bool ZuXmlSchema::beginType(ZuXmlObject const& object) {
  auto const [entry, isNew] = m_ClassNames.emplace(typeid(object), className(object));
  while (isNew && m_Types.count(entry->second) != 0)
    entry->second += '_';  // another class of that name, in another file
  return beginType(entry->second);
}

void ZuXmlSchema::endType() {
  m_Content = m_OpenTypes.back();
  m_OpenTypes.pop_back();
}

void ZuXmlSchema::beginGroup(std::string const& kind, unsigned int lowest, unsigned int highest) {
  out() += "<xs:" + kind + occurrence(lowest, highest) + ">\n";
  m_OpenGroups.push_back(kind);
}

void ZuXmlSchema::endGroup() {
  out() += "</xs:" + m_OpenGroups.back() + ">\n";
  m_OpenGroups.pop_back();
}

void ZuXmlSchema::beginElement(ZuToken const& name, unsigned int lowest, unsigned int highest) {
  m_OpenElements.push_back("name=\"" + name.token() + '"' + occurrence(lowest, highest));
}

void ZuXmlSchema::endElement() {
  out() += "<xs:element " + m_OpenElements.back() + " type=\"" + m_Content + "\"/>\n";
  m_OpenElements.pop_back();
}

void ZuXmlSchema::beginAttribute(ZuToken const& name) { m_OpenElements.push_back("name=\"" + name.token() + '"'); }

void ZuXmlSchema::endAttribute() {
  out() += "<xs:attribute " + m_OpenElements.back() + " type=\"" + m_Content + "\"/>\n";
  m_OpenElements.pop_back();
}

std::string ZuXmlSchema::document(ZuToken const& root) const {
  std::string text = theHead;
  for (auto const& [name, body] : m_Types) {
    text += "<xs:complexType name=\"" + name + "\">\n" + body + "</xs:complexType>\n";
  }
  return text + "<xs:element name=\"" + root.token() + "\" type=\"" + m_Content + "\"/>\n</xs:schema>\n";
}
