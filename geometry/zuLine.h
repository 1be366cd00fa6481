// zuLine.h - infinite line through a point. Group: figures.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"

/// The points point + t * unitVector for all real t; the x axis by default.
///
/// The direction is normalised whenever it is set, and from then on taken as it is: neither reading a document nor
/// transforming normalises it again. A direction without a length (zero, infinite, nan) becomes the zero vector, and
/// the line its point. Distances in the unit of the coordinates, squared where the name says so; nan is not screened.
/// 104 bytes; copying allocates nothing. Const operations are safe from several threads.
class ZU_API ZuLine : public ZuXmlClass<ZuLine, ZuXmlCompoundType> {
 public:
  ZuLine() = default;
  ZuLine(ZuVector const& point, ZuVector const& direction) : m_Point(point), m_UnitVector(direction.unitVector()) {}

  virtual void setPoint(ZuVector const& point) { m_Point = point; }
  virtual ZuVector const& point() const { return m_Point; }
  virtual void setUnitVector(ZuVector const& direction) { m_UnitVector = direction.unitVector(); }
  virtual ZuVector const& unitVector() const { return m_UnitVector; }

  /// Takes the line from frame 2 into frame 1: moves the point, turns the direction.
  virtual void transformBy(ZuCoordinateSystemTransformation const& t_12);

  virtual double distanceSquaredFromLineTo(ZuVector const& p) const;
  /// t is the parameter of the point of the line nearest to p.
  virtual double distanceSquaredFromLineTo(ZuVector const& p, double& t) const;
  /// s on this line, t on the other one, of the closest points. Lines that are parallel but for rounding (sine at most
  /// theZuParallelSine) give s = 0. The distance is as good as the rounded directions allow; see zuClosestParameters().
  virtual double distanceSquared(ZuLine const& other, double& s, double& t) const;
  virtual ZuVector pointOnLineClosestTo(ZuVector p) const;

  bool operator==(ZuLine const& other) const { return m_Point == other.m_Point && m_UnitVector == other.m_UnitVector; }

  // See ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuLine testObject() { return ZuLine(ZuVector::testObject(), ZuVector(1.0, 2.0, -2.0)); }

 private:
  ZuXmlVector m_Point;
  ZuXmlVector m_UnitVector{ZuVector(1.0, 0.0, 0.0)};
};

/// The line in frame 1, for one in frame 2.
ZU_API ZuLine operator*(ZuCoordinateSystemTransformation const& t_12, ZuLine const& line);
