// zuXmlOrientation.h - one orientation that persists as XML. Group: XML objects.
#pragma once

#include "foundation/zuOrientation.h"
#include "foundation/zuXmlObject.h"

/// Wraps one ZuOrientation; written as the text "w x y z". Default: the identity.
///
/// A document's quaternion is normalised when it is off the unit length by more than rounding, and refused when it is
/// zero or not finite.
class ZU_API ZuXmlOrientation : public ZuXmlClass<ZuXmlOrientation, ZuXmlObject> {
 public:
  /// A squared length within this of 1 counts as unit and is kept bit for bit: a normalised quaternion of doubles is
  /// within 8 ulp. Larger, and documents with few digits would stay out of unit length by as much.
  static constexpr double m_theUnitTolerance = 1e-14;

  ZuXmlOrientation() = default;
  ZuXmlOrientation(ZuOrientation const& value) : m_Value(value) {}  // NOLINT: stands for its orientation
  ZuXmlOrientation& operator=(ZuOrientation const& value) {
    m_Value = value;
    return *this;
  }

  ZuOrientation const& value() const { return m_Value; }
  void setValue(ZuOrientation const& value) { m_Value = value; }
  operator ZuOrientation const&() const { return m_Value; }  // NOLINT

  bool operator==(ZuXmlOrientation const& other) const { return m_Value == other.m_Value; }

  // See ZuXmlObject
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;
  bool isBasicType() const override { return true; }

  static ZuToken const& classToken();
  static ZuXmlOrientation testObject() { return ZuXmlOrientation(ZuOrientation::testObject()); }

 private:
  ZuOrientation m_Value;
};
