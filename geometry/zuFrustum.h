// zuFrustum.h - truncated cones over plain vectors. Group: solids.
#pragma once

#include "geometry/zuNearestPoints.h"
#include "geometry/zuRevolve.h"
#include "geometry/zuShapePointEvent.h"

/// What cylinders and cones compute, free of virtual calls and of XML: the closed solid of the points between two
/// planes across an axis whose distance from the axis is at most a radius that goes linearly from radius0 in the plane
/// of the base to radius1 in the other, radius1 <= radius0.
///
/// Equal radii make a cylinder, radius1 = 0 a cone, length 0 a disc, radii 0 a segment. Points in one frame, in m. A
/// point has coordinates in the half-plane through it and the axis: its height above the base and its distance from the
/// axis. There the solid is the trapezium (0, 0), (0, radius0), (length, radius1), (length, 0), so that every question
/// about a point is one about a few lines in the plane, answered to a few ulps of the coordinates. Nothing allocates,
/// prints or screens nan.
struct ZU_API ZuFrustum {
  ZuVector base;   ///< centre of the base
  ZuVector axis;   ///< unit vector from the base towards the other plane
  double length;   ///< between the planes, >= 0
  double radius0;  ///< >= 0
  double radius1;  ///< >= 0, at most radius0

  /// A segment of length 0 has no direction: the axis is then (0, 0, 1). Radii that are negative or nan count as 0.
  static ZuFrustum along(ZuPlainSegment const& segment, double radius0, double radius1);

  /// Of a radius of the solid by height: radius0 at 0, radius1 at the length.
  double radiusAt(double height) const;
  bool holds(ZuVector const& p) const;
  /// Distance from the solid: 0 inside, where `closest` is the point itself.
  double distanceTo(ZuVector const& p, ZuVector& closest) const;
  /// Distance from the surface, negative inside.
  /// @param closest a nearest point of the surface
  /// @param normal unit outward normal there: p = closest + distance * normal
  double signedDistanceTo(ZuVector const& p, ZuVector& closest, ZuVector& normal) const;
  /// Distance from the solid, 0 when they meet.
  /// @param t parameter, in [0, 1], of the point of the segment that is nearest; of a common point when they meet
  /// @param closest the point of the solid nearest to that one
  double distanceTo(ZuPlainSegment const& segment, double& t, ZuVector& closest) const;
  /// The part of the segment in the solid, by its parameters in [0, 1]; false, and nothing is set, when they don't
  /// meet.
  bool cut(ZuPlainSegment const& segment, double& entry, double& exit) const;
  /// The same for the part of the surface that is not flat, rims included: its first and last point on the segment.
  bool cutSide(ZuPlainSegment const& segment, double& entry, double& exit) const;
  /// Fills the event, but for the shape's id, with what cut() finds, and returns that.
  bool intersect(ZuPlainSegment const& segment, ZuShapePointEvent& event) const;
  /// The point of the segment at the parameter, with the normal of the round side.
  ZuShapeSurfacePoint sidePoint(ZuPlainSegment const& segment, double t) const;
  /// Unit outward normal of the face, flat or round, on which a point of the surface lies; of the nearest face for any
  /// other. At the apex of a cone the axis, on a solid of radius 0, between its ends, the zero vector.
  ZuVector normalAt(ZuVector const& p) const;

 private:
  struct Place;
  struct Nearest;
  struct Excess;
  Place placeOf(ZuVector const& p) const;
  bool holds(Place const& place) const;
  ZuVector inSpace(Place const& place, ZuOutlinePoint const& direction) const;
  Nearest nearestOutside(Place const& place) const;
  Nearest nearestInside(Place const& place) const;
  double heightOverSide(Place const& place) const;
  ZuOutlinePoint sideDirection() const;
  ZuVector sideNormal(Place const& place) const;
  bool betweenPlanes(ZuPlainSegment const& segment, double& low, double& high) const;
};

/// A direction as an axis sees it, for support points. isSafe() has to be asked first.
struct ZuAxialDirection {
  double along;         ///< the direction times delta of the axis, or times (0, 0, 1) when its length is 0
  double across = 0.0;  ///< length of the part across the axis; 0 when that is not more than rounding
  ZuVector unit;        ///< along the part across, unless there is none

  ZuAxialDirection(ZuVector const& direction, ZuVector const& delta, double lengthSquared) {
    bool const isDisc = !(lengthSquared > 0.0);
    ZuVector const axis = isDisc ? ZuVector::zVector(1.0) : delta;
    double const inverse = isDisc ? 1.0 : 1.0 / lengthSquared;
    double const squared = direction.magSquared();
    along = direction.dot(axis);
    unit = direction - (along * inverse) * axis;
    if (unit.magSquared() < m_theCancelling * squared) {
      unit -= (unit.dot(axis) * inverse) * axis;
      if (unit.magSquared() <= m_theParallel * squared) return;
    }
    across = std::sqrt(unit.magSquared());
    unit *= 1.0 / across;
  }
  /// Whether nothing overflows or loses digits.
  static bool isSafe(ZuVector const& direction) {
    double const squared = direction.magSquared();
    return squared > m_theSmallestSquare && squared < m_theLargestSquare;
  }

  static constexpr double m_theSmallestSquare = 1e-200;
  static constexpr double m_theLargestSquare = 1e200;
  /// Squared sine of the angle to the axis below which the part across is rounded off once more.
  static constexpr double m_theCancelling = 1e-2;
  /// Squared sine of the angle below which a direction counts as along the axis: that of rounding.
  static constexpr double m_theParallel = 1e-30;
};
