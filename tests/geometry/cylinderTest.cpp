#include "geometry/zuCylinder.h"

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuCone.h"
#include "tests/randomSolids.h"

// Distances of points and segments are tested with ZuFrustum.

namespace {

ZuCylinder cylinder(ZuVector const& end0, ZuVector const& end1, double radius) {
  return ZuCylinder(ZuLineSegment(end0, end1), radius);
}

ZuCylinder randomCylinder(RandomValues& random) {
  ZuVector const end = random.vector(0.8);
  return cylinder(end, end + random.direction() * random.scale(0.01, 3.0), random.real(0.05, 0.8));
}

class Cylinder : public SolidTest {};

}  // namespace

TEST_F(Cylinder, SpheresAndCapsulesAreTakenAsTheyStandAndContactsRoundTheEnds) {
  ZuCoordinateSystemTransformation const far(ZuVector(100, 0, 0));
  ZuCylinder const c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  EXPECT_EQ(distance(c, ZuSphere(ZuVector(4, 0, 8), 2, 3), far), 3.0);  // from the rim: 3, 4, 5
  EXPECT_EQ(distance(c, ZuSphere(ZuVector(0, 0, 1), 2, 3), far), -2.0);
  EXPECT_EQ(distance(c, ZuCapsule(ZuLineSegment({-3, 0, 6}, {3, 0, 6}), 0.5), far), 1.5);
  EXPECT_EQ(distance(c, ZuCapsule(ZuLineSegment({-3, 0, 2}, {3, 0, 2}), 0.5), far), -0.5);
  double s, t;
  ZuVector closest;
  EXPECT_EQ(c.distanceTo(ZuLineSegment({0, 4, 8}, {0, 5, 9}), s, t, closest), 5.0);
  EXPECT_TRUE(s == 1.0 && t == 0.0 && closest == ZuVector(0, 1, 4));
  EXPECT_EQ(c.distanceTo(ZuVector(0, 3, 1), t, closest), 2.0);
  EXPECT_TRUE(t == 0.25 && closest == ZuVector(0, 1, 1));
  for (double const gap : {0.0, 1e-4}) {
    EXPECT_EQ(touch(c, ZuSphere(ZuVector(0, 0, 7 + gap), 2, 3), far), gap == 0.0);
    EXPECT_EQ(touch(c, cylinder({0, 0, 6 + gap}, {0, 0, 9}, 1), far), gap == 0.0);
    EXPECT_EQ(touch(c, cylinder({0, 0, 4.9999 + 2 * gap}, {0, 0, 9}, 1).physicalExtent(), far), gap == 0.0);
  }
  for (auto const& [p, isInside] : {std::pair(ZuVector(0.6, 0.8, 0), true),
                                    {ZuVector(0.6, 0.8, 4), true},
                                    {ZuVector(0, 0, -1e-300), false},
                                    {ZuVector(0, 0, 4.0001), false},
                                    {ZuVector(1.0001, 0, 1), false}})
    EXPECT_EQ(c.checkIntersect(p), isInside) << p.z();
}

TEST_F(Cylinder, PairsThatItDoesNotAnswerPrintBothTypesAndAreNeutral) {
  ZuCylinder c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  ZuCylinder const same;
  for (int type = ZuShape::CAPSULE; type <= ZuShape::EXTENT_INTERSECTION; ++type) {
    Disguised<ZuCapsule> const other(type);
    ZuShape const& shape = type == ZuShape::CYLINDER ? static_cast<ZuShape const&>(same) : other;
    std::string const pair = " from shapeID (11) to shapeID (" + std::to_string(type) + ") not supported";
    Messages expected;
    if (type >= 10) expected.push_back("ZuCylinder::distanceTo-->Distance" + pair);
    if (type != 11) expected.push_back("ZuCylinder::checkIntersect-->Check" + pair);
    PrintSink sink;
    // The engine may ask the shapes of its pairs for more than their support points.
    EXPECT_TRUE((type > 4 && type < 10) || distance(c, shape, {}) == 0.0);
    EXPECT_EQ(touch(c, shape, {}), type == 11);
    EXPECT_EQ(sink.take(), expected);
  }
  PrintSink sink;
  ZuVector closest(7, 7, 7);
  c.fitFromShape(Disguised<ZuCapsule>(ZuShape::HALF_SPACE));
  EXPECT_EQ(c.circularCap(2), ZuCircle());
  EXPECT_EQ(c.distanceToCircularCap(ZuVector(), 2, closest), 0.0);
  EXPECT_EQ(sink.take(), (Messages{"ZuCylinder::fitFromShape-->expand from shapeID (11) to shapeID (9) not supported",
                                   "ZuCylinder::circularCap-->invalid index (2)",
                                   "ZuCylinder::distanceToCircularCap-->invalid index (2)"}));
  EXPECT_TRUE(closest == ZuVector(7, 7, 7) && c == cylinder({0, 0, 0}, {0, 0, 4}, 1));
}

TEST_F(Cylinder, SupportPointsAreExactInEveryDirection) {
  TracedValues random(411);
  for (int i = 0; i < 5000; ++i) {
    ZuCylinder const c = randomCylinder(random);
    ZuVector const unit = c.lineSegment().delta().unitVector();
    // Nearly along the axis too, to the last bit and beyond.
    ZuVector const d = (i % 2 == 0 ? random.direction() : unit + random.vector(random.scale(1e-18, 1.0))) *
                       random.scale(1e-290, 1e290);
    ZuVector const n = d.unitVector(), p = c.supportPoint(d);
    double const reach = 0.5 * c.lineSegment().length() * std::abs(n.dot(unit)) + c.radius() * n.cross(unit).mag();
    ASSERT_NEAR((p - c.lineSegment().center()).dot(n), reach, 1e-14);
    ASSERT_LE(c.distanceTo(p), 1e-14);
  }
  ZuCylinder const c = cylinder({1, 0, 0}, {3, 0, 0}, 0.5);
  EXPECT_TRUE(c.supportPoint({2, 0, 0}) == ZuVector(3, 0, 0) && c.supportPoint({}) == ZuVector(1, 0, 0));
  EXPECT_EQ(c.supportPoint({0, 0, 7}), ZuVector(1, 0, 0.5));
  EXPECT_EQ(cylinder({1, 2, 3}, {1, 2, 3}, 2).supportPoint({0, 3, 3}), ZuVector(1, 4, 3));
  PrintSink sink;
  EXPECT_EQ(c.supportPoint({std::nan(""), 0, 0}), ZuVector(1, 0, 0));
  EXPECT_EQ(sink.take(), Messages{"ZuCylinder support point calculation failed.\n"});
}

TEST_F(Cylinder, TubeAndCapsShareTheHitsOfTheSolid) {
  ZuCylinder const c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  struct {
    ZuVector from, to;
    double expected[3][2];  ///< entry and exit of solid, tube and caps, -1 for none
  } const theCases[] = {
      {{-2, 0, 1}, {2, 0, 1}, {{0.25, 0.75}, {0.25, 0.75}, {-1, -1}}},
      {{0, 0, -2}, {0, 0, 6}, {{0.25, 0.75}, {-1, -1}, {0.25, 0.75}}},
      {{0, 0, 6}, {0, 0, 2}, {{0.5, 1}, {-1, -1}, {0.5, 0.5}}},
      {{-2, 0, 4}, {2, 0, 4}, {{0.25, 0.75}, {0.25, 0.75}, {0.25, 0.75}}},  // in a cap's plane
      {{1, 0, -2}, {1, 0, 6}, {{0.25, 0.75}, {0.25, 0.75}, {0.25, 0.75}}},  // along the tube
      {{-2, 1, 1}, {2, 1, 1}, {{0.5, 0.5}, {0.5, 0.5}, {-1, -1}}},          // touches it
      {{-3, 0, 2.5}, {3, 0, 8}, {{-1, -1}, {-1, -1}, {-1, -1}}},
      {{0, 0, 4}, {0, 0, 4}, {{0, 0}, {-1, -1}, {0, 0}}},
      {{-3, 0, 0}, {1, 0, 4}, {{0.5, 1}, {0.5, 1}, {1, 1}}},  // ends on the rim
      {{0, 0, 1}, {0, 0.5, 2}, {{0, 1}, {-1, -1}, {-1, -1}}},
  };
  for (auto const& k : theCases) {
    ZuLineSegment const s(k.from, k.to);
    ZuShapePointEvent event[3];
    bool const hits[] = {c.intersectLineSegment(s, event[0]), c.intersectLineSegmentWithTube(s, event[1]),
                         c.intersectLineSegmentWithCaps(s, event[2])};
    EXPECT_EQ(c.checkIntersect(s), hits[0]);
    for (int i = 0; i < 3; ++i) {
      EXPECT_TRUE(hits[i] == event[i].hit && hits[i] == (k.expected[i][0] >= 0.0)) << k.from.x() << i;
      if (!hits[i]) continue;
      EXPECT_NEAR(event[i].entry.t, k.expected[i][0], 1e-15) << k.from.x() << i;
      EXPECT_NEAR(event[i].exit.t, k.expected[i][1], 1e-15) << k.from.x() << i;
      EXPECT_EQ(event[i].entry.normal.mag(), event[i].startsInside ? 0.0 : 1.0);
    }
  }
}

TEST_F(Cylinder, CapsAndSurfaceLinesLieOnTheSurface) {
  TracedValues random(412);
  for (int i = 0; i < 200; ++i) {
    ZuCylinder const c = randomCylinder(random);
    ZuVector const d = random.direction(), p = random.vector(3.0);
    ZuLineSegment line;
    EXPECT_TRUE(c.computeLineSegmentOnLateralSurface(d, line));
    EXPECT_NEAR(std::max(line.endpoint0().dot(d), line.endpoint1().dot(d)), c.supportPoint(d).dot(d), 1e-14);
    double least = HUGE_VAL, t;
    for (unsigned int cap = 0; cap < 2; ++cap) {
      ZuVector closest;
      EXPECT_LT((c.lineSegment().center() - c.circularCap(cap).center()).dot(c.circularCap(cap).normal()), 0.0);
      least = std::min(least, c.distanceToCircularCap(p, cap, closest));
      EXPECT_GE(c.distanceToCircularCap(p, cap, closest),
                c.distanceToCircularCap(ZuLineSegment(p, p + d), cap, t, closest));
      EXPECT_LE(c.distanceTo(closest), 1e-14);
    }
    EXPECT_GE(least, c.distanceTo(p) - 1e-14);
    EXPECT_FALSE(c.computeLineSegmentOnLateralSurface(c.lineSegment().delta(), line));
  }
}

TEST_F(Cylinder, FitsEnclosePointsAndGrowthKeepsWhatWasInside) {
  checkFitsToRealMeshes<ZuCylinder>(2.17);  // 2.160 when this was written
  checkFitsAndGrowth<ZuCylinder>(1e-12, 1e-13);
  ZuCylinder c = cylinder({0, 0, 0}, {0, 0, 4}, 1);
  EXPECT_FALSE(c.expandToInclude(ZuXmlVectorVector({{1, 0, 4}})));
  EXPECT_TRUE(c.expandToInclude(ZuXmlVectorVector({{2, 0, 9}, {0, 0, -1}})));
  EXPECT_EQ(c, cylinder({0, 0, -1}, {0, 0, 9}, 2));
}

TEST_F(Cylinder, TheCapsuleAroundItIsTheLeastAndHoldsIt) {
  TracedValues random(415);
  for (int i = 0; i < 40; ++i) {
    ZuCylinder const c = randomCylinder(random);
    EXPECT_LE(mostOutside(c.capsuleBoundingVolume(), c.physicalExtent().points()), 1e-14);
  }
  // Of a cylinder as high as wide, no capsule of a core 2 (1 - x), and so of a radius with r^2 = 1 + x^2, is smaller.
  ZuCapsule const least = cylinder({0, 0, -1}, {0, 0, 1}, 1).capsuleBoundingVolume();
  for (double const x : {0.0, 0.3, 0.5, 0.7, 0.9, 1.0})
    EXPECT_LE(least.volume(), ZuCapsule(ZuLineSegment({0, 0, x - 1}, {0, 0, 1 - x}), std::sqrt(1 + x * x)).volume());
}

TEST_F(Cylinder, MovingAndScalingAgreeWithTheDistances) {
  TracedValues random(414);
  for (int i = 0; i < 50; ++i) checkMovesAndScales(randomCylinder(random), random);
}

TEST_F(Cylinder, DegenerateSolidsAnswerWithoutHarm) {
  double const nan = std::nan("");
  PrintSink sink;
  for (auto const& [end, radius] : {std::pair(ZuVector(), 0.0),
                                    {ZuVector(0, 0, 1), 0.0},
                                    {ZuVector(0, 0, 1), -2.0},
                                    {ZuVector(), 1.0},
                                    {ZuVector(nan, 0, 1), 1.0},
                                    {ZuVector(0, 0, 1), nan}}) {
    ZuLineSegment const axis({}, end);
    ZuCylinder const c(axis, radius);
    ZuCone const cone(axis, radius);
    for (ZuShape const* shape : {static_cast<ZuShape const*>(&c), static_cast<ZuShape const*>(&cone)}) {
      ZuShapePointEvent event;
      ZuAxisAlignedBoundingBox box;
      ZuVector w1, w2;
      EXPECT_FALSE(shape->distanceTo(ZuVector(3, 4, 0)) < 4.0);
      EXPECT_FALSE(shape->intersectLineSegment(ZuLineSegment({9, 0, 0}, {9, 1, 1}), event));
      EXPECT_FALSE(witness(*shape, cylinder({7, 0, 0}, {7, 0, 1}, 1), {}, w1, w2) < 0.0);
      shape->axisAlignedBoundingBoxInPrimary(box);
      shape->physicalExtent().init();
    }
  }
}
