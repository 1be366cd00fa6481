#include "foundation/zuXmlCoordinateSystemTransformation.h"

#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlOrientation.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlVector.h"

namespace {

/// The value taken apart, as a document holds it. The value itself keeps its mode beside the two parts and stays plain.
class Parts : public ZuXmlClass<Parts, ZuXmlCompoundType> {
 public:
  Parts() = default;
  explicit Parts(ZuCoordinateSystemTransformation const& value)
      : m_Translation(value.translation()), m_Orientation(value.orientation()) {}

  ZuCoordinateSystemTransformation value() const { return {m_Translation.value(), m_Orientation.value()}; }
  bool operator==(Parts const& other) const {
    return m_Translation == other.m_Translation && m_Orientation == other.m_Orientation;
  }
  void registerComponents() override {
    registerComponent("translation", &m_Translation);
    registerComponent("orientation", &m_Orientation);
  }
  static ZuToken const& classToken() { return ZuXmlCoordinateSystemTransformation::classToken(); }
  static Parts testObject() { return Parts(ZuCoordinateSystemTransformation::testObject()); }

 private:
  ZuXmlVector m_Translation;
  ZuXmlOrientation m_Orientation;
};

}  // namespace

bool ZuXmlCoordinateSystemTransformation::read(ZuXmlReader& reader) {
  ZuXmlReadScope const scope(reader);
  Parts parts;
  if (!parts.read(reader)) return false;
  m_Value = parts.value();
  return true;
}

bool ZuXmlCoordinateSystemTransformation::write(ZuXmlWriter& writer) const { return Parts(m_Value).write(writer); }

bool ZuXmlCoordinateSystemTransformation::writeSchema(ZuXmlSchema& schema) const { return Parts().writeSchema(schema); }

ZuToken const& ZuXmlCoordinateSystemTransformation::classToken() {
  static ZuToken const theToken("frame");
  return theToken;
}
