// zuConvexCorePrivate.h - a convex solid as a core and a radius, and the difference of two. Group: convex engine.
#pragma once

#include <algorithm>
#include <cmath>

#include "foundation/zuCoordinateSystemTransformation.h"

class ZuShape;
struct ZuPlainBox;

/// A rotation by the columns of its matrix; the identity costs a branch.
struct ZuTurn {
  ZuVector x{1.0, 0.0, 0.0}, y{0.0, 1.0, 0.0}, z{0.0, 0.0, 1.0};
  bool isIdentity = true;

  ZuTurn() = default;
  ZuTurn(ZuVector const& xAxis, ZuVector const& yAxis, ZuVector const& zAxis)
      : x(xAxis), y(yAxis), z(zAxis), isIdentity(false) {}
  explicit ZuTurn(ZuCoordinateSystemTransformation const& T) : isIdentity(!T.hasRotation()) {
    if (!isIdentity) T.orientation().getDcmColumns(x, y, z);
  }
  ZuVector times(ZuVector const& v) const { return isIdentity ? v : x * v.x() + y * v.y() + z * v.z(); }
  ZuVector inverseTimes(ZuVector const& v) const { return isIdentity ? v : ZuVector(x.dot(v), y.dot(v), z.dot(v)); }
  ZuTurn times(ZuTurn const& t) const {
    if (isIdentity) return t;
    if (t.isIdentity) return *this;
    return {times(t.x), times(t.y), times(t.z)};
  }
  /// The inverse of this after t.
  ZuTurn inverseTimes(ZuTurn const& t) const {
    if (isIdentity) return t;
    return {inverseTimes(t.x), inverseTimes(t.y), inverseTimes(t.z)};
  }
};

/// A solid, as all points within a radius of a core. The classes of this library whose support points have a closed
/// form lose what is round in them, and answer in a frame of their own, along their axes; any other shape is its own
/// core, by its virtual support points. Lives for one query: it refers to the shape.
class ZuConvexCore {
 public:
  explicit ZuConvexCore(ZuShape const& shape);

  /// The point of the core, in its frame, farthest in the direction, which need not be of unit length.
  ZuVector support(ZuVector const& d) const {
    switch (m_Kind) {
      case POINT:
        return {};
      case BOX:
        return {std::copysign(m_Half.x(), d.x()), std::copysign(m_Half.y(), d.y()), std::copysign(m_Half.z(), d.z())};
      case CYLINDER:
        return onCylinder(d);
      case CONE:
        return onCone(d);
      case ELLIPSOID:
        return onEllipsoid(d);
      case RECTANGLE:
        return m_Half * std::copysign(1.0, d.dot(m_Half)) + m_OtherHalf * std::copysign(1.0, d.dot(m_OtherHalf));
      case SEGMENT:
        return d.dot(m_Half) < 0.0 ? -m_Half : m_Half;
      default:
        return askShape(d);
    }
  }
  /// Sets p, in the core's frame, to the point of the core nearest to it; false for a core that has no closed form of
  /// it.
  bool bringNear(ZuVector& p) const {
    switch (m_Kind) {
      case POINT:
        p = ZuVector();
        return true;
      case SEGMENT:
        p = m_Half * (m_Half == ZuVector() ? 0.0 : clamp(p.dot(m_Half) / m_Half.magSquared(), 1.0));
        return true;
      case BOX:
        p = {clamp(p.x(), m_Half.x()), clamp(p.y(), m_Half.y()), clamp(p.z(), m_Half.z())};
        return true;
      case CYLINDER: {
        double const square = p.x() * p.x() + p.y() * p.y();
        double const factor = square > m_Half.x() * m_Half.x() ? m_Half.x() / std::sqrt(square) : 1.0;
        p = {p.x() * factor, p.y() * factor, clamp(p.z(), m_Half.z())};
        return true;
      }
      default:
        return false;
    }
  }
  /// Whether some of the core's boundary is curved.
  bool isCurved() const { return m_Kind == CYLINDER || m_Kind == CONE || m_Kind == ELLIPSOID; }
  /// Where the feature that p is of has the outward normal n: the corner p itself, or a point of the rim or of the
  /// curved side.
  ZuVector onFeature(ZuVector const& p, ZuVector const& n) const {
    switch (m_Kind) {
      case CYLINDER:
        return onRim(n, p.z());
      case CONE:
        return p.z() > 0.0 ? p : onRim(n, p.z());
      case ELLIPSOID:
        return onEllipsoid(n);
      default:
        return p;
    }
  }
  /// s . J t, with J the derivative of that point by n: of a rim (p x s)_z (p x t)_z / p . n, of an ellipsoid with the
  /// semi-axes D, (D s . D t - (p . s) (p . t)) / p . n.
  double bend(ZuVector const& p, ZuVector const& n, ZuVector const& s, ZuVector const& t) const {
    if (m_Kind == ELLIPSOID) {
      ZuVector const ofT(m_Half.x() * m_Half.x() * t.x(), m_Half.y() * m_Half.y() * t.y(),
                         m_Half.z() * m_Half.z() * t.z());
      return (s.dot(ofT) - p.dot(s) * p.dot(t)) / p.dot(n);
    }
    if (!isCurved() || (m_Kind == CONE && p.z() > 0.0)) return 0.0;
    return (p.x() * s.y() - p.y() * s.x()) * (p.x() * t.y() - p.y() * t.x()) / (p.x() * n.x() + p.y() * n.y());
  }
  /// A point of the core's frame in the shape's.
  ZuVector inShape(ZuVector const& p) const { return turn.times(p) + center; }

  ZuTurn turn;      ///< of the core's frame in the shape's
  ZuVector center;  ///< origin of the core's frame in the shape's
  double radius = 0.0;
  /// A bound on the coordinates of the points in the core's frame; 0 when only its points will tell.
  double reach() const { return m_Kind == SHAPE ? 0.0 : sum(m_Half) + sum(m_OtherHalf); }
  /// Radius of a ball about the origin of the core's frame inside a box; 0 for any other core.
  double ballInBox() const {
    return m_Kind == BOX ? std::min(std::abs(m_Half.x()), std::min(std::abs(m_Half.y()), std::abs(m_Half.z()))) : 0.0;
  }
  /// Whether the core is a box, a rectangle, a segment or a point; sets it in its frame then.
  bool isBox(ZuPlainBox& box) const;

 private:
  enum Kind { SHAPE, POINT, SEGMENT, RECTANGLE, BOX, CYLINDER, CONE, ELLIPSOID };

  ZuVector askShape(ZuVector const& d) const;
  /// About the z axis, of radius half.x; the centre of a cap for a direction along the axis.
  ZuVector onCylinder(ZuVector const& d) const { return onRim(d, std::copysign(m_Half.z(), d.z())); }
  ZuVector onRim(ZuVector const& d, double z) const {
    double const square = d.x() * d.x() + d.y() * d.y(), factor = square > 0.0 ? m_Half.x() / std::sqrt(square) : 0.0;
    return {d.x() * factor, d.y() * factor, z};
  }
  /// The base is below, at -half.z, the apex above.
  ZuVector onCone(ZuVector const& d) const {
    double const square = d.x() * d.x() + d.y() * d.y(), across = std::sqrt(square);
    if (2.0 * m_Half.z() * d.z() > m_Half.x() * across) return {0.0, 0.0, m_Half.z()};
    double const factor = across > 0.0 ? m_Half.x() / across : 0.0;
    return {d.x() * factor, d.y() * factor, -m_Half.z()};
  }
  ZuVector onEllipsoid(ZuVector const& d) const {
    ZuVector const onBall(m_Half.x() * d.x(), m_Half.y() * d.y(), m_Half.z() * d.z());
    double const square = onBall.magSquared(), factor = square > 0.0 ? 1.0 / std::sqrt(square) : 0.0;
    return ZuVector(m_Half.x() * onBall.x(), m_Half.y() * onBall.y(), m_Half.z() * onBall.z()) * factor;
  }
  static double clamp(double x, double most) { return std::min(std::max(x, -most), most); }
  static double sum(ZuVector const& v) { return std::abs(v.x()) + std::abs(v.y()) + std::abs(v.z()); }
  void takeAxial(ZuVector const& end0, ZuVector const& end1, double radiusAcross);
  void takeBox(ZuVector const& half, ZuCoordinateSystemTransformation const& frame);
  void takeSegment(ZuVector const& end0, ZuVector const& end1);
  void alignWithSegment();

  ZuShape const& m_Shape;
  Kind m_Kind = SHAPE;
  /// Half of the sides, of the segment or of an edge; semi-axes; of solids about the z axis the radius, 0 and half of
  /// the height.
  ZuVector m_Half;
  ZuVector m_OtherHalf;  ///< of the other edge of a rectangle
};

/// A point y = p - q of the difference set, with the points of the cores, each in its core's frame.
struct ZuCorePoint {
  ZuVector y, p, q;
};

/// The points p - q over all p of core 1 and q of core 2, in the frame of core 1: convex when both cores are, and it
/// holds the origin exactly when they touch or overlap. The offset is that of the two cores' frames, so that pairs far
/// from the origin of the world, or of their shapes' frames, lose as few digits as possible.
///
/// `scale` multiplies all lengths: a power of two, other than 1 for lengths whose products would leave the doubles.
class ZuCoreDifference {
 public:
  ZuCoreDifference(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& T1,
                   ZuCoordinateSystemTransformation const& T2, double scale);

  /// The point farthest in the direction.
  void support(ZuVector const& direction, ZuCorePoint& point) {
    if (m_Scale != 1.0) return supportScaled(direction, point);
    point.p = core1.support(direction);
    point.q = core2.support(m_Turn.inverseTimes(-direction));
    finish(point);
  }
  /// Of the two cores' radii, scaled.
  double radius1() const { return core1.radius * m_Scale; }
  double radius2() const { return core2.radius * m_Scale; }
  /// A first point that is near the origin: from the nearest point of each core to the other's, in turn. False where it
  /// takes an iteration to find one.
  bool nearPoint(ZuCorePoint& point) {
    point.p = m_Offset;
    if (m_Scale != 1.0 || !core1.bringNear(point.p)) return false;
    point.q = m_Turn.inverseTimes(point.p - m_Offset);
    if (!core2.bringNear(point.q)) return false;
    point.p = m_Turn.times(point.q) + m_Offset;
    core1.bringNear(point.p);
    finish(point);
    return true;
  }
  /// From the centre of core 2 to that of core 1.
  ZuVector betweenCenters() const { return -m_Offset; }
  /// The largest magnitude of a number that went into a point: rounding is in proportion to it.
  double extent() const { return m_Extent; }
  bool isInRange() const { return m_Extent == 0.0 || (m_Extent >= theSmallest && m_Extent <= theLargest); }

  bool isCurved() const { return core1.isCurved() || core2.isCurved(); }
  /// Whether points can be moved along features that are curved.
  bool hasCurvedFeatures() const { return isCurved() && m_Scale == 1.0; }
  /// The point of the same features of the two cores as `point` where n is normal to them. For a scale of 1.
  void onFeatures(ZuCorePoint const& point, ZuVector const& n, ZuCorePoint& moved) {
    moved.p = core1.onFeature(point.p, n);
    moved.q = core2.onFeature(point.q, m_Turn.inverseTimes(-n));
    finish(moved);
  }
  /// s . J t, with J the derivative of that point by n.
  double bend(ZuCorePoint const& moved, ZuVector const& n, ZuVector const& s, ZuVector const& t) const {
    double bend = core1.bend(moved.p, n, s, t);
    if (core2.isCurved()) {
      bend += core2.bend(moved.q, m_Turn.inverseTimes(-n), m_Turn.inverseTimes(s), m_Turn.inverseTimes(t));
    }
    return bend;
  }

  /// From the frame of core 1, scaled, into the world, without the translation, and back.
  ZuVector inWorld(ZuVector const& v) const { return m_World.times(v) * (1.0 / m_Scale); }
  ZuVector fromWorld(ZuVector const& v) const { return m_World.inverseTimes(v); }
  /// The witness points in their shapes' frames: the points of the cores, moved along n by these lengths.
  ZuVector witness1(ZuVector const& p, ZuVector const& n, double length) const {
    return core1.inShape((p + n * length) * (1.0 / m_Scale));
  }
  ZuVector witness2(ZuVector const& q, ZuVector const& n, double length) const {
    return core2.inShape((q + m_Turn.inverseTimes(n) * length) * (1.0 / m_Scale));
  }

  /// Whether the balls in two boxes overlap, or one in a box holds the origin of the other core's frame: with
  /// areBoxes(), that boxes are deep in each other for sure, as cheaply as can be.
  bool areBoxesDeepInEachOther() const {
    double const reach = (core1.ballInBox() + core2.ballInBox()) * m_Scale;
    return m_Offset.magSquared() < reach * reach;
  }
  /// Whether both cores are boxes, rectangles, segments or points; sets them in the frame of core 1 then.
  bool areBoxes(ZuPlainBox& box1, ZuPlainBox& box2) const;
  /// The point of core 2, given in the frame of core 1, in that of its own.
  ZuVector inCore2(ZuVector const& q) const { return m_Turn.inverseTimes(q - m_Offset); }

  /// Outside of these, sixth powers of lengths leave the doubles.
  static constexpr double theSmallest = 1e-40, theLargest = 1e40;

 private:
  void supportScaled(ZuVector const& direction, ZuCorePoint& point);
  void finish(ZuCorePoint& point) {
    point.y = point.p - (m_Turn.times(point.q) + m_Offset);
    if (m_HasReach) return;
    m_Extent = std::max(m_Extent, largest(point.p) + largest(point.q));
  }
  static double largest(ZuVector const& v) {
    return std::max(std::abs(v.x()), std::max(std::abs(v.y()), std::abs(v.z())));
  }

  ZuConvexCore core1, core2;
  ZuTurn m_Turn;      ///< of core 2's frame in core 1's
  ZuVector m_Offset;  ///< origin of core 2's frame in core 1's
  ZuTurn m_World;     ///< of core 1's frame in the world
  double m_Scale, m_Extent;
  bool m_HasReach;  ///< the extent is known beforehand
};
