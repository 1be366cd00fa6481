// zuXmlVector.h - one vector that persists as XML. Group: XML objects.
#pragma once

#include <iosfwd>

#include "foundation/zuVector.h"
#include "foundation/zuXmlObject.h"

/// Wraps one ZuVector; written as the text "x y z". Stands for its vector wherever one is expected.
///
/// Equality is exact, component by component. Copying costs what copying three doubles does.
class ZU_API ZuXmlVector : public ZuXmlClass<ZuXmlVector, ZuXmlObject> {
 public:
  ZuXmlVector() = default;
  ZuXmlVector(ZuVector const& value) : m_Value(value) {}  // NOLINT: stands for its vector
  ZuXmlVector& operator=(ZuVector const& value) {
    m_Value = value;
    return *this;
  }

  ZuVector const& value() const { return m_Value; }
  void setValue(ZuVector const& value) { m_Value = value; }
  operator ZuVector const&() const { return m_Value; }  // NOLINT

  bool operator==(ZuXmlVector const& other) const { return m_Value == other.m_Value; }
  /// See ZuVector::approxEq.
  bool approxEq(ZuXmlVector const& other, double tolerance) const { return m_Value.approxEq(other.m_Value, tolerance); }

  /// The binary form: x, y, z as three doubles in the machine's byte order, 24 bytes without a header. Both always
  /// return true; after a stream that ended early the missing components are zero.
  bool writeBin(std::ostream& stream) const;
  bool readBin(std::istream& stream);

  // See ZuXmlObject
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;
  bool isBasicType() const override { return true; }

  static ZuToken const& classToken();
  static ZuXmlVector testObject() { return ZuXmlVector(ZuVector::testObject()); }

 private:
  ZuVector m_Value;
};
