// zuLineSegment.h - the points between two endpoints. Group: figures.
#pragma once

#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"
#include "geometry/zuSegmentDistance.h"

/// The closed segment endpoint0 + t * delta, 0 <= t <= 1; the origin by default.
///
/// Degenerate, a point, when its squared length is exactly 0; there is no tolerance. Only the endpoints persist: delta
/// and the squared length follow whenever endpoints are set or read, and are copied with the segment. Distances in the
/// unit of the coordinates, squared where the name says so; nan is not screened. In operations on two segments, s is
/// the parameter on this one and t that on the argument. Parameters are raw where a comment says so:
/// computePointOnLineSegment() clamps them.
///
/// Distances are accurate for every angle between two segments, parameters are not always those of a closest pair;
/// zuSegmentDistance.h says why, and has the same operations for plain vectors. No operation calls another through the
/// virtual table, so overriding one leaves the others as they are.
/// 136 bytes; copying allocates nothing. Const operations are safe from several threads.
class ZU_API ZuLineSegment : public ZuXmlClass<ZuLineSegment, ZuXmlCompoundType> {
 public:
  ZuLineSegment() = default;
  ZuLineSegment(ZuVector const& endpoint0, ZuVector const& endpoint1)
      : m_Endpoint0(endpoint0),
        m_Endpoint1(endpoint1),
        m_Delta(endpoint1 - endpoint0),
        m_LengthSquared(m_Delta.magSquared()) {}

  /// The numbers of the segment, for the functions of zuSegmentDistance.h.
  ZuPlainSegment plain() const { return {m_Endpoint0, m_Endpoint1, m_Delta, m_LengthSquared}; }

  /// Endpoint 0 or 1. Any other index prints a message and gives endpoint 1.
  virtual ZuVector const& endpoint(unsigned int index) const;
  virtual void setEndpoint0(ZuVector const& endpoint0);
  virtual ZuVector const& endpoint0() const { return m_Endpoint0; }
  virtual void setEndpoint1(ZuVector const& endpoint1);
  virtual ZuVector const& endpoint1() const { return m_Endpoint1; }
  virtual void setEndpoints(ZuVector const& endpoint0, ZuVector const& endpoint1);
  /// The midpoint.
  virtual ZuVector center() const { return (m_Endpoint0.value() + m_Endpoint1) * 0.5; }
  /// endpoint1 - endpoint0
  virtual ZuVector const& delta() const { return m_Delta; }

  /// Takes the segment from frame 2 into frame 1. The squared length stays as it is, the transformation being rigid.
  virtual void transformBy(ZuCoordinateSystemTransformation const& t_12);

  virtual double length() const { return std::sqrt(m_LengthSquared); }
  virtual double lengthSquared() const { return m_LengthSquared; }

  virtual double distanceTo(ZuVector const& p) const;
  virtual double distanceSquaredTo(ZuVector const& p) const;
  /// t is the raw parameter of the projection of p on the carrier line, below 0 or above 1 where an endpoint is
  /// nearest; 0 for a degenerate segment.
  virtual double distanceSquaredTo(ZuVector const& p, double& t) const;
  /// To the line that carries the segment. A degenerate segment has none: 0, with t = 1e300.
  virtual double distanceSquaredFromLineTo(ZuVector const& p) const;
  virtual double distanceSquaredFromLineTo(ZuVector const& p, double& t) const;
  /// Between the two carrier lines; s and t are not clamped. Parallel lines, or this segment degenerate: s = 0, and the
  /// distance from this segment's endpoint 0 to the other's line.
  virtual double distanceSquaredLineToLine(ZuLineSegment const& other, double& s, double& t) const;

  virtual double distanceTo(ZuLineSegment const& other) const;
  virtual double distanceSquaredTo(ZuLineSegment const& other) const;
  /// The parameters of a closest pair, with these exceptions:
  /// 1. A degenerate segment on either side gives s = t = 0.
  /// 2. When the carrier lines are closest at an s in [0, 1] but a t outside, t becomes 0 or 1 and s stays as it was,
  /// not
  ///    the parameter nearest to that endpoint.
  /// 3. When an endpoint is nearest in any other way, its parameter is 0 or 1 and the other one is that of its raw
  ///    projection, which may be outside [0, 1].
  virtual double distanceSquaredTo(ZuLineSegment const& other, double& s, double& t) const;
  /// The same for two segments that the caller knows not to be degenerate.
  virtual double nondegenerateDistanceSquaredTo(ZuLineSegment const& other, double& s, double& t) const;

  /// Turns the segment round; delta changes its sign.
  virtual void swapEndpoints();
  /// The point of parameter t, clamped to [0, 1].
  virtual void computePointOnLineSegment(double t, ZuVector& point) const;
  virtual double nondegenerateDistanceSquaredTo(ZuLineSegment const& other) const;

  bool operator==(ZuLineSegment const& other) const {
    return m_Endpoint0 == other.m_Endpoint0 && m_Endpoint1 == other.m_Endpoint1;
  }

  // See ZuXmlCompoundType
  void registerComponents() override;
  bool read(ZuXmlReader& reader) override;

  static ZuToken const& classToken();
  static ZuLineSegment testObject() { return ZuLineSegment(ZuVector::testObject(), ZuVector(-0.5, 4.0, 1.25)); }

 private:
  void update();

  ZuXmlVector m_Endpoint0;
  ZuXmlVector m_Endpoint1;
  ZuVector m_Delta;
  double m_LengthSquared = 0.0;
};

/// The segment in frame 1, for one in frame 2.
ZU_API ZuLineSegment operator*(ZuCoordinateSystemTransformation const& t_12, ZuLineSegment const& segment);
