#include "foundation/zuDataMap.h"

#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"

namespace {

/// One element "entry", as it is read; of the three values exactly one was there when `hasOneValue()`.
struct Entry : ZuXmlClass<Entry, ZuXmlCompoundType> {
  ZuXmlBasicType<std::string> key;
  ZuXmlBasicType<double> real;
  ZuXmlBasicType<std::string> text;
  ZuXmlBasicType<unsigned int> count;

  void registerComponents() override {
    registerComponent("key", &key);
    registerComponent("real", &real);
    registerComponent("text", &text);
    registerComponent("unsigned", &count);
  }
  bool hasOneValue() const { return int{real.specified()} + int{text.specified()} + int{count.specified()} == 1; }
  ZuDataMap::Value value() const {
    if (real.specified()) return real.value();
    if (text.specified()) return text.value();
    return count.value();
  }

  bool operator==(Entry const& o) const { return key == o.key && real == o.real && text == o.text && count == o.count; }
  static ZuToken const& classToken() {
    static ZuToken const theToken("entry");
    return theToken;
  }
  static Entry testObject() { return Entry(); }
};

struct ValueWriter {
  void operator()(double value) const {
    writer.open("real");
    writer.reals(&value, 1);
  }
  void operator()(std::string const& value) const {
    writer.open("text");
    writer.text(value);
  }
  void operator()(unsigned int value) const {
    writer.open("unsigned");
    writer.integer(value);
  }
  ZuXmlWriter& writer;
};

ZuDataMap colour(double red, double green, double blue, double alpha) {
  ZuDataMap map;
  map.add("red", red);
  map.add("green", green);
  map.add("blue", blue);
  map.add("alpha", alpha);
  return map;
}

}  // namespace

ZuDataMap const& ZuDataMap::boundingColor() {
  static ZuDataMap const theColour = colour(0.25, 0.5, 1.0, 0.25);  // a see-through blue
  return theColour;
}

ZuDataMap const& ZuDataMap::defaultManipColor() {
  static ZuDataMap const theColour = colour(0.75, 0.75, 0.75, 1.0);  // an opaque grey
  return theColour;
}

bool ZuDataMap::read(ZuXmlReader& reader) {
  ZuXmlReadScope const scope(reader);
  std::map<std::string, Value> values;
  for (bool more = reader.firstItem(); more; more = reader.nextSibling()) {
    Entry entry;
    if (reader.name() != "entry") return reader.refuse("an element other than <entry>");
    if (!entry.read(reader)) return reader.refuseSilently();
    if (!entry.key.specified()) return reader.refuse("an entry without a key");
    if (!entry.hasOneValue()) return reader.refuse("an entry without exactly one of real, text and unsigned");
    if (!values.emplace(entry.key.value(), entry.value()).second) return reader.refuse("a key stands there twice");
  }
  if (reader.refused()) return false;
  m_Values = std::move(values);
  return true;
}

bool ZuDataMap::write(ZuXmlWriter& writer) const {
  for (auto const& [name, value] : m_Values) {
    writer.open("entry");
    writer.open("key");
    writer.text(name);
    writer.close();
    std::visit(ValueWriter{writer}, value);
    writer.close();
    writer.close();
  }
  return !writer.failed();
}

bool ZuDataMap::writeSchema(ZuXmlSchema& schema) const {
  if (!schema.beginType(*this)) return true;
  schema.beginGroup("sequence");
  schema.beginElement("entry", 0, ZuXmlSchema::m_theUnbounded);
  if (schema.beginType("ZuDataMap_entry")) {
    auto const element = [&schema](char const* name, char const* type) {
      schema.beginElement(name, 1, 1);
      schema.simple(type);
      schema.endElement();
    };
    schema.beginGroup("sequence");
    element("key", "xs:string");
    schema.beginGroup("choice");
    element("real", "real");
    element("text", "xs:string");
    element("unsigned", "xs:unsignedInt");
    schema.endGroup();
    schema.endGroup();
    schema.endType();
  }
  schema.endElement();
  schema.endGroup();
  schema.endType();
  return true;
}

ZuToken const& ZuDataMap::classToken() {
  static ZuToken const theToken("dataMap");
  return theToken;
}

ZuDataMap ZuDataMap::testObject() {
  ZuDataMap sample;
  sample.add("friction", 0.1);
  sample.add("material", std::string("steel & rubber"));
  sample.add("layers", 3U);
  return sample;
}
