// xmlSamples.h - classes and containers that the tests of the XML framework read and write.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/zuXmlBaseVariableCompoundType.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlCoordinateSystemTransformation.h"
#include "foundation/zuXmlMapType.h"
#include "foundation/zuXmlPairType.h"
#include "foundation/zuXmlVector.h"
#include "foundation/zuXmlVectorType.h"
#include "foundation/zuXmlVectorVector.h"

using Real = ZuXmlBasicType<double>;
using Text = ZuXmlBasicType<std::string>;

/// Uses all that a compound class can: an attribute, an element, one of each that is only written, and a special
/// element: a node inside the node.
class Node : public ZuXmlClass<Node, ZuXmlCompoundType> {
 public:
  bool operator==(Node const& other) const {
    return name == other.name && weight == other.weight && inner == other.inner;
  }

  void registerComponents() override {
    registerAttributeComponent("name", &name);
    registerAttributeComponentReadOnly("kind", &kind);
    registerComponent("weight", &weight);
    registerComponentReadOnly("unit", &unit);
  }
  void createSpecialDescriptorMap() override {
    ZuXmlCompoundType::createSpecialDescriptorMap();
    addSpecialDescriptor(classToken(), &Node::creator);
  }
  bool readValueFromSpecialToken(ZuToken const& token, ZuXmlReader& reader) override {
    if (token != classToken()) return ZuXmlCompoundType::readValueFromSpecialToken(token, reader);
    inner.assign(1, Node());
    return inner[0].read(reader);
  }
  bool writeElements(ZuXmlWriter& writer) const override {
    if (!ZuXmlCompoundType::writeElements(writer) || inner.empty()) return !writer.failed();
    writer.open(classToken());
    bool const written = inner[0].write(writer);
    writer.close();
    return written;
  }

  static ZuToken const& classToken() {
    static ZuToken const theToken("node");
    return theToken;
  }
  static Node testObject() {
    Node sample;
    sample.name = std::string("a \"b\"\n<c>");
    sample.weight = 1.5;
    sample.inner.resize(1);
    return sample;
  }

  Text name, kind = Text("sample"), unit = Text("kg");
  Real weight;
  std::vector<Node> inner;  ///< at most one
};

/// A container that knows every kind of value.
inline ZuXmlBaseVariableCompoundType zoo() {
  ZuXmlBaseVariableCompoundType container;
  container.registerComponentCreator("real", &Real::creator);
  container.registerComponentCreator("text", &Text::creator);
  container.registerComponentCreator("flag", &ZuXmlBasicType<bool>::creator);
  container.registerComponentCreator("int", &ZuXmlBasicType<int>::creator);
  container.registerComponentCreator("unsigned", &ZuXmlBasicType<unsigned int>::creator);
  container.registerComponentCreator("short", &ZuXmlBasicType<unsigned short>::creator);
  container.registerComponentCreator("vector", &ZuXmlVector::creator);
  container.registerComponentCreator("frame", &ZuXmlCoordinateSystemTransformation::creator);
  container.registerComponentCreator("pair", &ZuXmlPairType<Text, ZuXmlVector>::creator);
  container.registerComponentCreator("points", &ZuXmlVectorVector::creator);
  container.registerComponentCreator("nodes", &ZuXmlVectorType<Node>::creator);
  container.registerComponentCreator("map", &ZuXmlMapType<Text, Node>::creator);
  container.registerComponentCreator("table", &ZuXmlMapType<Real, Real>::creator);
  container.registerComponentCreator("node", &Node::creator);
  return container;
}

/// The plain document of the object; empty when it can't be written.
inline std::string documentOf(ZuXmlObject const& object) {
  std::string document;
  object.writeToBuffer(document, "zoo");
  return document;
}
