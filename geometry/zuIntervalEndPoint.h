// zuIntervalEndPoint.h - one end of a box's interval on an axis. Group: broad phase.
#pragma once

#include "foundation/zuExport.h"

/// The coordinate at which the interval of a box on one axis begins or ends, and which box it is.
///
/// A plain value, not an XML object. The default is the begin of box 0 at 0. Copying allocates nothing; as thread-safe
/// as a double.
class ZU_API ZuIntervalEndPoint {
 public:
  static unsigned int constexpr m_theBegin = 0;  ///< type of the box's minimum
  static unsigned int constexpr m_theEnd = 1;    ///< type of the box's maximum

  ZuIntervalEndPoint() = default;
  ZuIntervalEndPoint(unsigned int index, double value, unsigned int type)
      : m_Value(value), m_Type(type), m_Index(index) {}
  ZuIntervalEndPoint(ZuIntervalEndPoint const&) = default;
  ZuIntervalEndPoint& operator=(ZuIntervalEndPoint const&) = default;
  virtual ~ZuIntervalEndPoint() = default;

  virtual void setValue(double value) { m_Value = value; }
  virtual void setIndex(unsigned int index) { m_Index = index; }
  virtual void setType(unsigned int type) { m_Type = type; }
  /// The coordinate (m) on the axis.
  virtual double value() const { return m_Value; }
  /// m_theBegin or m_theEnd.
  virtual unsigned int type() const { return m_Type; }
  /// The place of the box among the boxes of the broad phase.
  virtual unsigned int index() const { return m_Index; }

  /// By value; at equal values, and when a value is nan, by type. So a begin comes before an end at the same
  /// coordinate, and intervals that touch overlap. Not an order when a value is nan: then a < b < c < a may hold.
  bool operator<(ZuIntervalEndPoint const& other) const {
    if (m_Value < other.m_Value) return true;
    if (m_Value > other.m_Value) return false;
    return m_Type < other.m_Type;
  }
  /// Exact, in all three fields.
  bool operator==(ZuIntervalEndPoint const& other) const {
    return m_Value == other.m_Value && m_Type == other.m_Type && m_Index == other.m_Index;
  }
  bool operator!=(ZuIntervalEndPoint const& other) const { return !(*this == other); }

  static ZuIntervalEndPoint const& nullObject();
  static ZuIntervalEndPoint testObject() { return {3, 1.5, m_theEnd}; }

 private:
  // The inner loop of the sort reads and writes the fields, at no call per comparison.
  friend class ZuIntervalIntersectionProcessor;

  double m_Value = 0.0;
  unsigned int m_Type = m_theBegin;
  unsigned int m_Index = 0;
};
