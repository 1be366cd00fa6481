// zuXmlCoordinateSystemTransformation.h - one rigid transformation that persists as XML. Group: XML objects.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuXmlObject.h"

/// Wraps one ZuCoordinateSystemTransformation; written as the elements "translation" and "orientation".
class ZU_API ZuXmlCoordinateSystemTransformation : public ZuXmlClass<ZuXmlCoordinateSystemTransformation, ZuXmlObject> {
 public:
  ZuXmlCoordinateSystemTransformation() = default;
  ZuXmlCoordinateSystemTransformation(ZuCoordinateSystemTransformation const& value)  // NOLINT: stands for its value
      : m_Value(value) {}
  ZuXmlCoordinateSystemTransformation& operator=(ZuCoordinateSystemTransformation const& value) {
    m_Value = value;
    return *this;
  }

  ZuCoordinateSystemTransformation const& value() const { return m_Value; }
  void setValue(ZuCoordinateSystemTransformation const& value) { m_Value = value; }
  operator ZuCoordinateSystemTransformation const&() const { return m_Value; }  // NOLINT

  bool operator==(ZuXmlCoordinateSystemTransformation const& other) const { return m_Value == other.m_Value; }

  // See ZuXmlObject
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;

  static ZuToken const& classToken();
  static ZuXmlCoordinateSystemTransformation testObject() {
    return ZuXmlCoordinateSystemTransformation(ZuCoordinateSystemTransformation::testObject());
  }

 private:
  ZuCoordinateSystemTransformation m_Value;
};
