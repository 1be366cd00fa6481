#include "geometry/zuCylinder.h"

#include <gtest/gtest.h>

#include <vector>

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"
#include "tests/solidChecks.h"

namespace {

ZuCylinder cylinder(ZuVector const& end0, ZuVector const& end1, double radius) {
  return ZuCylinder(ZuLineSegment(end0, end1), radius);
}

ZuCylinder randomCylinder(RandomValues& random) {
  ZuVector const end = random.vector(0.8);
  ZuVector const other = end + random.vector(random.scale(0.01, 3.0));
  return cylinder(end, other, random.real(0.05, 0.8));
}

double mostOutside(ZuCylinder const& c, ZuXmlVectorVector const& points) {
  double most = 0.0;
  for (ZuVector const& p : points) most = std::max(most, c.distanceTo(p));
  return most;
}

/// A shape that says to be of any type.
struct Other : ZuCapsule {
  explicit Other(int type) : m_Type(static_cast<ZuShapeValues>(type)) {}
  ZuShapeValues type() const override { return m_Type; }
  ZuShapeValues m_Type;
};

class Cylinder : public ProximityTest {};

}  // namespace

TEST_F(Cylinder, DistancesToSpheresAndCapsulesTakeThemAsTheyStand) {
  ZuCoordinateSystemTransformation const far(ZuVector(100, 0, 0));
  ZuCylinder const c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  EXPECT_EQ(distance(c, ZuSphere(ZuVector(4, 0, 8), 2, 3), far), 3.0);  // from the rim: 3, 4, 5
  EXPECT_EQ(distance(c, ZuSphere(ZuVector(0, 0, 1), 2, 3), far), -2.0);
  ZuCapsule const above(ZuLineSegment({-3, 0, 6}, {3, 0, 6}), 0.5), through(ZuLineSegment({-3, 0, 2}, {3, 0, 2}), 0.5);
  EXPECT_EQ(distance(c, above, far), 1.5);
  EXPECT_EQ(distance(c, through, far), -0.5);
  double s, t;
  ZuVector closest;
  EXPECT_EQ(c.distanceTo(ZuLineSegment({0, 4, 8}, {0, 5, 9}), s, t, closest), 5.0);
  EXPECT_TRUE(s == 1.0 && t == 0.0 && closest == ZuVector(0, 1, 4));
  EXPECT_EQ(c.distanceTo(ZuVector(0, 3, 1), t, closest), 2.0);
  EXPECT_TRUE(t == 0.25 && closest == ZuVector(0, 1, 1));
  EXPECT_EQ(c.distanceTo(ZuVector(0, 0.5, 1)), 0.0);
}

TEST_F(Cylinder, ContactsAreThoseOfTheCapsuleAboutTheAxisAndIgnoreTheTransformation) {
  ZuCoordinateSystemTransformation const far(ZuVector(100, 0, 0));
  ZuCylinder const c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  EXPECT_TRUE(touch(c, ZuSphere(ZuVector(0, 0, 7), 2, 3), far));  // touches the round end only
  EXPECT_FALSE(touch(c, ZuSphere(ZuVector(0, 0, 7.0001), 2, 3), far));
  EXPECT_TRUE(touch(c, cylinder({0, 0, 6}, {0, 0, 9}, 1), far));
  EXPECT_FALSE(touch(c, cylinder({0, 0, 6.0001}, {0, 0, 9}, 1), far));
  EXPECT_TRUE(touch(c, cylinder({0, 0, 4.9}, {0, 0, 9}, 1).physicalExtent(), far));
  EXPECT_FALSE(touch(c, cylinder({0, 0, 5.1}, {0, 0, 9}, 1).physicalExtent(), far));
  struct {
    ZuVector point;
    bool isInside;
  } const theCases[] = {{{0.6, 0.8, 0}, true},   {{0.6, 0.8, 4}, true},   {{0, 0, -1e-300}, false},
                        {{0, 0, 4.0001}, false}, {{1.0001, 0, 1}, false}, {{0, 0, 2}, true}};
  for (auto const& k : theCases) EXPECT_EQ(c.checkIntersect(k.point), k.isInside) << k.point.z();
}

TEST_F(Cylinder, PairsThatItDoesNotAnswerPrintBothTypesAndAreNeutral) {
  ZuCylinder c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  for (int type = 0; type <= ZuShape::EXTENT_INTERSECTION; ++type) {
    Other const other(type);
    ZuCylinder const same;
    ZuShape const& shape = type == ZuShape::CYLINDER ? static_cast<ZuShape const&>(same) : other;
    bool const isMesh = type <= 2;
    bool const hasDistance = type < 10, hasContact = isMesh || type == 3 || type == 11;
    if (isMesh || type == ZuShape::SPHERE || type == ZuShape::HALF_SPACE) continue;
    std::vector<std::string> expected;
    std::string const pair = " from shapeID (11) to shapeID (" + std::to_string(type) + ") not supported";
    if (!hasDistance) expected.push_back("ZuCylinder::distanceTo-->Distance" + pair);
    if (!hasContact) expected.push_back("ZuCylinder::checkIntersect-->Check" + pair);
    PrintSink sink;
    double const d = distance(c, shape, ZuCoordinateSystemTransformation(ZuVector(0, 0, 9)));
    EXPECT_NEAR(d, type == ZuShape::CAPSULE || !hasDistance ? 0.0 : 5.0, 1e-12);
    EXPECT_EQ(touch(c, shape, {}), hasContact);
    EXPECT_EQ(sink.take(), expected);
  }
  PrintSink sink;
  c.fitFromShape(Other(ZuShape::HALF_SPACE));
  EXPECT_EQ(c.circularCap(2), ZuCircle());
  ZuVector closest(7, 7, 7);
  EXPECT_EQ(c.distanceToCircularCap(ZuVector(), 2, closest), 0.0);
  EXPECT_EQ(sink.take(), (std::vector<std::string>{
                             "ZuCylinder::fitFromShape-->expand from shapeID (11) to shapeID (9) not supported",
                             "ZuCylinder::circularCap-->invalid index (2)",
                             "ZuCylinder::distanceToCircularCap-->invalid index (2)"}));
  EXPECT_TRUE(closest == ZuVector(7, 7, 7) && c == cylinder({0, 0, 0}, {0, 0, 4}, 1));
}

TEST_F(Cylinder, SupportPointsAreExactInEveryDirection) {
  RandomValues random(411);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 5000; ++i) {
    ZuCylinder c = randomCylinder(random);
    ZuVector const unit = c.lineSegment().delta().unitVector();
    // Nearly along the axis too, to the last bit and beyond.
    ZuVector const d = (i % 2 == 0 ? random.direction() : unit + random.vector(random.scale(1e-18, 1.0))) *
                       random.scale(1e-290, 1e290);
    ZuVector const n = d.unitVector(), p = c.supportPoint(d), middle = c.lineSegment().center();
    double const reach = 0.5 * c.lineSegment().length() * std::abs(n.dot(unit)) + c.radius() * n.cross(unit).mag();
    ASSERT_NEAR((p - middle).dot(n), reach, 1e-14);
    ASSERT_LE(c.distanceTo(p), 1e-14);
  }
  ZuCylinder const c = cylinder({1, 0, 0}, {3, 0, 0}, 0.5);
  EXPECT_EQ(c.supportPoint({2, 0, 0}), ZuVector(3, 0, 0));
  EXPECT_EQ(c.supportPoint({0, 0, 7}), ZuVector(1, 0, 0.5));
  EXPECT_EQ(c.supportPoint({}), ZuVector(1, 0, 0));
  EXPECT_EQ(cylinder({1, 2, 3}, {1, 2, 3}, 2).supportPoint({0, 3, 3}), ZuVector(1, 4, 3));
  PrintSink sink;
  EXPECT_EQ(c.supportPoint({std::nan(""), 0, 0}), ZuVector(1, 0, 0));
  EXPECT_EQ(sink.take(), std::vector<std::string>{"ZuCylinder support point calculation failed.\n"});
}

TEST_F(Cylinder, TubeAndCapsShareTheHitsOfTheSolid) {
  ZuCylinder const c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  struct {
    ZuVector from, to;
    double solid[2], tube[2], caps[2];  ///< parameters of entry and exit, -1 for none
  } const theCases[] = {
      {{-2, 0, 1}, {2, 0, 1}, {0.25, 0.75}, {0.25, 0.75}, {-1, -1}},
      {{0, 0, -2}, {0, 0, 6}, {0.25, 0.75}, {-1, -1}, {0.25, 0.75}},
      {{0, 0, 6}, {0, 0, 2}, {0.5, 1}, {-1, -1}, {0.5, 0.5}},
      {{-2, 0, 4}, {2, 0, 4}, {0.25, 0.75}, {0.25, 0.75}, {0.25, 0.75}},  // in a cap's plane
      {{1, 0, -2}, {1, 0, 6}, {0.25, 0.75}, {0.25, 0.75}, {0.25, 0.75}},  // along the tube
      {{-2, 1, 1}, {2, 1, 1}, {0.5, 0.5}, {0.5, 0.5}, {-1, -1}},          // touches it
      {{-3, 0, 2.5}, {3, 0, 8}, {-1, -1}, {-1, -1}, {-1, -1}},
      {{0, 0, 4}, {0, 0, 4}, {0, 0}, {-1, -1}, {0, 0}},
      {{-3, 0, 0}, {1, 0, 4}, {0.5, 1}, {0.5, 1}, {1, 1}},  // ends on the rim
      {{0, 0, 1}, {0, 0.5, 2}, {0, 1}, {-1, -1}, {-1, -1}},
  };
  for (auto const& k : theCases) {
    ZuLineSegment const s(k.from, k.to);
    ZuShapePointEvent event[3];
    bool const hits[] = {c.intersectLineSegment(s, event[0]), c.intersectLineSegmentWithTube(s, event[1]),
                         c.intersectLineSegmentWithCaps(s, event[2])};
    double const* const expected[] = {k.solid, k.tube, k.caps};
    EXPECT_EQ(c.checkIntersect(s), hits[0]);
    for (int i = 0; i < 3; ++i) {
      EXPECT_TRUE(hits[i] == event[i].hit && hits[i] == (expected[i][0] >= 0.0)) << k.from.x() << i;
      if (!hits[i]) continue;
      EXPECT_NEAR(event[i].entry.t, expected[i][0], 1e-15) << k.from.x() << i;
      EXPECT_NEAR(event[i].exit.t, expected[i][1], 1e-15) << k.from.x() << i;
      EXPECT_TRUE(event[i].startsInside || event[i].entry.normal.mag() == 1.0);
    }
  }
  ZuShapePointEvent event;
  EXPECT_TRUE(c.intersectLineSegment(ZuLineSegment({0, 0, 1}, {0, 3, 1}), event));
  EXPECT_TRUE(event.startsInside && !event.endsInside && event.entry.normal == ZuVector());
  EXPECT_EQ(event.exit.normal, ZuVector(0, 1, 0));
}

TEST_F(Cylinder, CapsAndSurfaceLinesLieOnTheSurface) {
  RandomValues random(412);
  for (int i = 0; i < 200; ++i) {
    ZuCylinder const c = randomCylinder(random);
    ZuVector const d = random.direction(), p = random.vector(3.0);
    ZuLineSegment line;
    EXPECT_TRUE(c.computeLineSegmentOnLateralSurface(d, line));
    EXPECT_NEAR(std::max(line.endpoint0().dot(d), line.endpoint1().dot(d)), c.supportPoint(d).dot(d), 1e-14);
    EXPECT_TRUE(line.delta().approxEq(c.lineSegment().delta(), 1e-15));
    for (unsigned int cap = 0; cap < 2; ++cap) {
      ZuCircle const disc = c.circularCap(cap);
      EXPECT_EQ(disc.center(), c.lineSegment().endpoint(cap));
      EXPECT_GT((c.lineSegment().center() - disc.center()).dot(disc.normal()), -10.0);
      EXPECT_LT((c.lineSegment().center() - disc.center()).dot(disc.normal()), 0.0);
      double t;
      ZuVector closest;
      double const least = c.distanceToCircularCap(ZuLineSegment(p, p + d), cap, t, closest);
      EXPECT_NEAR(closest.distanceTo(p + t * d), least, 1e-14);
      EXPECT_LE(least, c.distanceToCircularCap(p, cap, closest));
      EXPECT_LE(c.distanceTo(p), closest.distanceTo(p) + 1e-15);
      EXPECT_LE(c.distanceTo(closest), 1e-14);
    }
    EXPECT_FALSE(c.computeLineSegmentOnLateralSurface(c.lineSegment().delta(), line));
  }
}

TEST_F(Cylinder, FitsEncloseTheRealMeshesTightly) {
  checkFitsToRealMeshes<ZuCylinder>(2.17);  // 2.160 when this was written
}

TEST_F(Cylinder, FitsTakeDegenerateSetsAndGrowthKeepsWhatWasInside) {
  RandomValues random(413);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 60; ++i) {
    // In space, in a plane, on a line; also far away.
    ZuVector const origin = random.vector(i % 2 == 0 ? 1.0 : 1e3), u = random.vector(), v = random.vector();
    ZuXmlVectorVector points;
    for (int k = 0; k < 30; ++k)
      points.pushBack(origin + u * random.real() + (i % 3 > 0 ? v * random.real() : ZuVector()) +
                      (i % 3 > 1 ? random.vector() : ZuVector()));
    ZuCylinder fit, grown = randomCylinder(random);
    ZuCylinder const before = grown;
    fit.fitToPoints(points);
    EXPECT_LE(mostOutside(fit, points), i % 2 == 0 ? 1e-12 : 1e-9);
    EXPECT_TRUE(i % 3 > 1 || fit.volume() < 1e-4);
    EXPECT_TRUE(grown.expandToInclude(points));
    EXPECT_LE(mostOutside(grown, points), i % 2 == 0 ? 1e-13 : 1e-11);
    for (int k = 0; k < 20; ++k) EXPECT_LE(grown.distanceTo(before.supportPoint(random.direction())), 1e-12);
  }
  ZuCylinder c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  EXPECT_FALSE(c.expandToInclude(ZuXmlVectorVector({{1, 0, 4}})));
  EXPECT_TRUE(c.expandToInclude(ZuXmlVectorVector({{2, 0, 9}, {0, 0, -1}})));
  EXPECT_EQ(c, cylinder({0, 0, -1}, {0, 0, 9}, 2));
  for (ZuXmlVectorVector const& bad : {ZuXmlVectorVector(), ZuXmlVectorVector({{0, 0, HUGE_VAL}})}) {
    PrintSink sink;
    c.fitToPoints(bad);
    EXPECT_FALSE(c.expandToInclude(bad));
    EXPECT_EQ(sink.messages().size(), bad.empty() ? 1U : 2U);
  }
  EXPECT_EQ(c, cylinder({0, 0, -1}, {0, 0, 9}, 2));
}

TEST_F(Cylinder, MovesScalesIsBoundedAndTessellated) {
  RandomValues random(414);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 50; ++i) {
    ZuCylinder const c = randomCylinder(random);
    ZuCoordinateSystemTransformation const x = random.transformation();
    double const factor = random.real(-3.0, 3.0);
    ZuCylinder moved = c, scaled = c, fit;
    moved.transformBy(x);
    scaled.scaleBy(factor);
    ZuVector const p = random.vector(3.0);
    EXPECT_NEAR(moved.distanceTo(x * p), c.distanceTo(p), 1e-14);
    EXPECT_NEAR(scaled.distanceTo(factor * p), std::abs(factor) * c.distanceTo(p), 1e-13);
    EXPECT_NEAR(scaled.volume(), std::abs(factor * factor * factor) * c.volume(), 1e-11);
    ZuCapsule const bound = c.capsuleBoundingVolume();
    fit.fitFromShape(bound);
    for (int k = 0; k < 50; ++k) {
      ZuVector const d = random.direction();
      EXPECT_LE(bound.distanceTo(c.supportPoint(d)), 1e-14);
      EXPECT_LE(fit.distanceTo(bound.supportPoint(d)), 1e-14);
    }
  }
  // Of a cylinder as high as wide, by dV/dx = 0 for x^2 = r^2 - 1 with the core 2 (1 - x).
  ZuCapsule const least = cylinder({0, 0, -1}, {0, 0, 1}, 1).capsuleBoundingVolume();
  for (double const x : {0.0, 0.3, 0.5, 0.7, 0.9, 1.0})
    EXPECT_LE(least.volume(), ZuCapsule(ZuLineSegment({0, 0, x - 1}, {0, 0, 1 - x}), std::sqrt(1 + x * x)).volume());
  for (ZuVector const& delta : {ZuVector(1, -2, 0.5), ZuVector()}) {
    ZuCylinder c = cylinder({1, 2, 3}, ZuVector(1, 2, 3) + delta, 0.7);
    c.setDetailLevel(4);
    EXPECT_TRUE(c.physicalExtent().isConvex() && facetsCloseAndAreConvex(c.physicalExtent()));
    EXPECT_EQ(mostOutside(c, c.physicalExtent().points()) > 1e-14, false);
    EXPECT_NEAR(extentVolume(c.physicalExtent()), c.volume(), 0.005 * c.volume());
  }
}

TEST_F(Cylinder, DegenerateSolidsAnswerWithoutHarm) {
  double const nan = std::nan("");
  PrintSink sink;
  for (ZuCylinder const& c : {cylinder({}, {}, 0), cylinder({}, {0, 0, 1}, 0), cylinder({}, {0, 0, 1}, -2),
                              cylinder({}, {}, 1), cylinder({}, {nan, 0, 1}, 1), cylinder({}, {0, 0, 1}, nan)}) {
    ZuCylinder copy = c;
    ZuShapePointEvent event;
    ZuAxisAlignedBoundingBox box;
    EXPECT_FALSE(c.distanceTo(ZuVector(3, 4, 0)) < 4.0);
    EXPECT_FALSE(c.intersectLineSegment(ZuLineSegment({9, 0, 0}, {9, 1, 1}), event));
    c.axisAlignedBoundingBoxInPrimary(box);
    c.physicalExtent().init();
    ZuVector w1, w2;
    EXPECT_FALSE(witness(c, cylinder({7, 0, 0}, {7, 0, 1}, 1), {}, w1, w2) < 0.0);
    copy.fitFromShape(c);
  }
}
