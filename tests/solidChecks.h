// solidChecks.h - what every solid has to keep, held by its own distance from points.
#pragma once

#include "geometry/zuLineSegment.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"
#include "tests/extentChecks.h"
#include "tests/objReader.h"
#include "tests/proximityFixture.h"

/// The solid under the name of another type.
template <class Solid>
struct Disguised : Solid {
  explicit Disguised(int type) : m_Type(static_cast<ZuShape::ZuShapeValues>(type)) {}
  ZuShape::ZuShapeValues type() const override { return m_Type; }
  ZuShape::ZuShapeValues m_Type;
};

class SolidTest : public ProximityTest {
 protected:
  /// All questions about a shape of that type print both types, answer 0 or false and change nothing.
  template <class Solid>
  void expectUnanswered(std::string const& className, Solid const& solid, int type) {
    Disguised<Solid> const other(type);
    ZuVector w1(1, 2, 3), w2(4, 5, 6), direction;
    double d = 7.0;
    PrintSink sink;
    EXPECT_EQ(distance(solid, other, {}), 0.0);
    EXPECT_FALSE(touch(solid, other, {}) || witness(solid, other, {}, w1, w2) != 0.0);
    EXPECT_FALSE(solid.computeDistanceAndWitnessPoints(other, {}, false, w1, w2, d, direction));
    EXPECT_TRUE(w1 == ZuVector(1, 2, 3) && w2 == ZuVector(4, 5, 6) && d == 7.0);
    std::string const pair =
        " from shapeID (" + std::to_string(solid.type()) + ") to shapeID (" + std::to_string(type) + ") not supported";
    EXPECT_EQ(sink.take(), (std::vector<std::string>{className + "::distanceTo-->Distance" + pair,
                                                     className + "::checkIntersect-->Check" + pair,
                                                     className + "::distanceAndWitnessPointsTo-->Distance" + pair}));
  }
};

/// The least that the solid has to be moved along the direction to leave the point behind.
inline double wayOut(ZuShape const& solid, ZuVector const& point, ZuVector const& direction) {
  return (solid.computeSupportPoint(direction) - point).dot(direction);
}

inline double mostOutside(ZuShape const& solid, ZuXmlVectorVector const& points) {
  double most = -HUGE_VAL;
  for (ZuVector const& p : points) most = std::max(most, solid.distanceTo(p));
  return most;
}

/// Whether they meet. The segment enters and leaves where the distance changes its sign, and normals lead straight out.
template <class Solid>
bool checkSegment(Solid const& solid, ZuLineSegment const& s) {
  ZuShapePointEvent event;
  EXPECT_EQ(solid.intersectLineSegment(s, event), solid.checkIntersect(s));
  EXPECT_EQ(event.hit, solid.checkIntersect(s));
  for (double t = 0.0625; t < 1.0; t += 0.0625) {
    double const d = solid.distanceTo(s.endpoint0() + t * s.delta());
    bool const between = event.hit && t > event.entry.t && t < event.exit.t;
    EXPECT_TRUE(std::abs(d) <= 1e-12 || (d < 0.0) == between) << t;
  }
  if (!event.hit) return false;
  EXPECT_EQ(event.startsInside, solid.distanceTo(s.endpoint0()) < 0.0);
  EXPECT_EQ(event.endsInside, solid.distanceTo(s.endpoint1()) < 0.0);
  for (auto const& [place, inside, sign] :
       {std::tuple(event.entry, event.startsInside, -1.0), {event.exit, event.endsInside, 1.0}}) {
    double const d = solid.distanceTo(place.point);
    EXPECT_TRUE(place.point.approxEq(s.endpoint0() + place.t * s.delta(), 1e-14));
    EXPECT_TRUE(inside || std::abs(d) < 1e-12) << d;
    EXPECT_NEAR(solid.distanceTo(place.point + place.normal), inside ? d : 1.0, 1e-10);
    EXPECT_TRUE(inside || std::abs(wayOut(solid, place.point, place.normal)) < 1e-12);
    EXPECT_TRUE(event.entry.t == event.exit.t || place.normal.dot(s.delta()) * sign >= -1e-10);
  }
  return true;
}

/// Moved and scaled copies answer alike, and their chains with them.
template <class Solid>
void checkMovesAndScales(Solid const& solid, RandomValues& random, double tolerance = 1e-14) {
  ZuCoordinateSystemTransformation const x = random.transformation();
  double const factor = random.scale(0.1, 3.0);
  ZuSphere const bound(random.vector(), 0.5, 3);
  Solid moved = solid, mirrored = solid;
  moved.addExplicitBoundingVolume(bound);
  Solid scaled = moved;
  moved.transformBy(x);
  scaled.scaleBy(factor);
  double const reflection = solid.type() == ZuShape::SPHERE ? factor : -factor;  // a ball would get a negative radius
  mirrored.scaleBy(reflection);
  ZuVector const p = random.vector(3.0);
  EXPECT_NEAR(moved.distanceTo(x * p), solid.distanceTo(p), tolerance);
  EXPECT_NEAR(scaled.distanceTo(factor * p), factor * solid.distanceTo(p), 10.0 * tolerance);
  EXPECT_NEAR(mirrored.distanceTo(reflection * p), factor * solid.distanceTo(p), 10.0 * tolerance);
  EXPECT_NEAR(moved.lowerFidelityRepresentation()->distanceTo(x * p), bound.distanceTo(p), 1e-14);
  EXPECT_NEAR(scaled.lowerFidelityRepresentation()->distanceTo(factor * p), factor * bound.distanceTo(p), 1e-13);
  EXPECT_NEAR(scaled.volume(), factor * factor * factor * solid.volume(), 1e-12);
}

/// Closed, convex, facing outward, with all points on the surface; each level misses a quarter of what the one before
/// misses of the volume.
template <class Solid>
void checkTessellations(Solid solid) {
  double missing = 0.0;
  for (unsigned int level = 0; level < 5; ++level) {
    solid.setDetailLevel(level);
    solid.scaleBy(1.0);
    ZuBasePhysicalExtent const& extent = solid.physicalExtent();
    EXPECT_EQ(&extent, &solid.physicalExtent()) << "kept until the solid changes";
    EXPECT_TRUE(extent.isConvex() && facetsCloseAndAreConvex(extent));
    for (ZuVector const& p : extent.points()) ASSERT_NEAR(solid.distanceTo(p), 0.0, 1e-14);
    double const lost = 1.0 - extentVolume(extent) / solid.volume();
    EXPECT_TRUE(level < 2 || std::abs(missing / lost - 4.0) < 0.4) << missing / lost;
    missing = lost;
  }
  EXPECT_LT(missing, 0.01);
}

/// Fits to the real meshes enclose all their points; their mean volume, by that of the hulls, stays below the limit,
/// and that of each fit hardly changes when its points are moved.
template <class Solid>
void checkFitsToRealMeshes(double limit, double tolerance = 1e-12, double frameTolerance = 0.1) {
  TracedValues random(34);
  double sumOfRatios = 0.0;
  for (std::string const& name : realMeshes()) {
    ZuXmlVectorVector points(ObjMesh::read(sharedFile("data/objects/" + name)).points);
    if (points.empty()) GTEST_SKIP() << "no shared meshes";
    ZuTriPhysicalExtent hull;
    ASSERT_TRUE(hull.convexHull(points)) << name;
    Solid fit, movedFit;
    fit.fitToPoints(points);
    ASSERT_LE(mostOutside(fit, points), tolerance) << name;
    sumOfRatios += fit.volume() / extentVolume(hull);
    if (points.size() > 2000) continue;
    ZuCoordinateSystemTransformation const x = random.transformation();
    for (ZuVector& p : points) p = x * p;
    movedFit.fitToPoints(points);
    EXPECT_NEAR(movedFit.volume() / fit.volume(), 1.0, frameTolerance) << name;
  }
  EXPECT_LT(sumOfRatios / static_cast<double>(realMeshes().size()), limit);
}

/// Fits and growth of solids about a segment enclose points in space, in a plane and on a line, also far away.
template <class Solid>
void checkFitsAndGrowth(double fitTolerance, double growthTolerance) {
  TracedValues random(413);
  for (int i = 0; i < 60; ++i) {
    double const far = i % 2 == 0 ? 1.0 : 1e3;
    ZuVector const origin = random.vector(far), u = random.vector(), v = random.vector(), base = random.vector(0.8);
    ZuXmlVectorVector points;
    for (int k = 0; k < 30; ++k)
      points.pushBack(origin + u * random.real() + (i % 3 > 0 ? v * random.real() : ZuVector()) +
                      (i % 3 > 1 ? random.vector() : ZuVector()));
    Solid const before(ZuLineSegment(base, base + random.vector(random.scale(0.01, 3.0))), random.real(0.05, 1.0));
    Solid grown = before, fit;
    EXPECT_TRUE(grown.expandToInclude(points));
    EXPECT_LE(mostOutside(grown, points), far == 1.0 ? growthTolerance : 100.0 * growthTolerance);
    EXPECT_LE(mostOutside(grown, before.physicalExtent().points()), 1e-12);
    fit.fitToPoints(points);
    EXPECT_LE(mostOutside(fit, points), fitTolerance * far);
    EXPECT_TRUE(i % 3 > 1 || fit.volume() < 1e-4) << fit.volume();
    for (ZuXmlVectorVector const& bad : {ZuXmlVectorVector(), ZuXmlVectorVector({{0, 0, HUGE_VAL}})}) {
      Solid untouched = before;
      PrintSink sink;
      untouched.fitToPoints(bad);
      EXPECT_FALSE(untouched.expandToInclude(bad));
      EXPECT_EQ(sink.messages().size(), bad.empty() ? 1U : 2U);
      EXPECT_EQ(untouched, before);
    }
  }
}
