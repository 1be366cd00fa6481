#include "geometry/zuBox.h"

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuRectangle.h"
#include "geometry/zuTetrahedron.h"
#include "tests/convexOracle.h"
#include "tests/randomSolids.h"

namespace {

using Pose = ZuCoordinateSystemTransformation;

double leastDistance(std::vector<ZuVector> const& points, ZuBox const& box) {
  return oracle::distance(oracle::placed(points, {}), oracle::placed(cornersOf(box), {}));
}

class Box : public ProximityTest {};

}  // namespace

TEST_F(Box, DistancesToPointsSegmentsAndLinesAreThoseOfTheLeast) {
  TracedValues random(51);
  int hits = 0;
  for (int i = 0; i < 3000; ++i) {
    ZuBox const box = randomBox(random);
    ZuVector delta = random.vector(2.0);
    for (unsigned int k = 0; k < random.index(4); ++k) delta[random.index(3)] = 0.0;
    delta = box.primaryFrame().orientation() * delta;
    ZuVector const from = random.vector(1.2);
    ZuLineSegment const s(from, from + delta);
    ZuVector closest, onLine;
    double t = 7.0;
    EXPECT_NEAR(box.distanceTo(from), leastDistance({from}, box), 1e-13);
    double const squared = box.distanceSquaredTo(from, closest);
    EXPECT_NEAR(std::sqrt(squared), closest.distanceTo(from), 1e-14);
    EXPECT_LE(box.distanceTo(closest), 1e-14);
    double const d = std::sqrt(box.distanceSquaredTo(s, t, closest));
    ASSERT_NEAR(d, leastDistance({s.endpoint0(), s.endpoint1()}, box), 1e-12);
    EXPECT_TRUE(t >= 0.0 && t <= 1.0);
    EXPECT_NEAR(closest.distanceTo(s.endpoint0() + t * s.delta()), d, 1e-13);
    EXPECT_EQ(box.checkIntersect(s), d == 0.0);
    EXPECT_EQ(box.distanceTo(s), d);
    hits += d == 0.0;
    if (s.lengthSquared() < 0.01) continue;
    double const line = box.distanceSquaredToLine(s, t, closest);
    ZuLineSegment const longer(from - 1e3 * delta, from + 1e3 * delta);
    ASSERT_NEAR(std::sqrt(line), box.distanceTo(longer), 1e-12);
    EXPECT_NEAR(closest.distanceTo(from + t * delta), std::sqrt(line), 1e-13);
  }
  EXPECT_TRUE(hits > 200 && hits < 2500) << hits;
  ZuBox const box(Pose(), ZuVector(1, 1, 1));
  EXPECT_EQ(box.distanceTo(ZuVector(1, 0, 0)) + box.distanceTo(ZuVector(0, -3, 1)), 2.0);
  double t;
  ZuVector closest;
  EXPECT_EQ(box.distanceSquaredTo(ZuLineSegment({3, 0, 0}, {5, 0, 0}), t, closest), 4.0);
  EXPECT_TRUE(t == 0.0 && closest == ZuVector(1, 0, 0));
}

TEST_F(Box, DistancesToBoxesAndFlatFiguresAreThoseOfTheirCorners) {
  TracedValues random(52);
  int overlapping = 0;
  for (int i = 0; i < 3000; ++i) {
    ZuBox const a = randomBox(random), b = randomBox(random);
    Pose const x = randomPose(random, i % 2 == 0 ? 2.5 : 1.2);
    ZuBox moved = b;
    moved.transformBy(x);
    double const expected =
        oracle::distance(oracle::placed(cornersOf(a), Pose()), oracle::placed(cornersOf(moved), {}));
    ASSERT_NEAR(a.distanceTo(b, x), expected, 1e-13) << i;
    EXPECT_EQ(a.checkIntersect(b, x), expected < 1e-15) << i << ' ' << expected;
    EXPECT_NEAR(distance(b, a, x.inverse()), expected, 1e-13);
    overlapping += expected < 1e-15;
    ZuRectangle const r(moved.center(), moved.axis(0) * moved.extent(0), moved.axis(1) * moved.extent(1));
    ZuGeomTriangle const t(r.corner(0), r.corner(1), i % 7 == 0 ? r.corner(0) : r.corner(2) + random.vector(0.1));
    EXPECT_NEAR(a.distanceTo(r), leastDistance({r.corner(0), r.corner(1), r.corner(2), r.corner(3)}, a), 1e-12);
    EXPECT_NEAR(a.distanceTo(t), leastDistance({t.point(0), t.point(1), t.point(2)}, a), 1e-12);
  }
  EXPECT_TRUE(overlapping > 500 && overlapping < 2500) << overlapping;
}

TEST_F(Box, EllipsoidsAndTetrahedraAreAnsweredByTheFaces) {
  TracedValues random(57);
  for (int i = 0; i < 300; ++i) {
    ZuBox const box = randomBox(random);
    double const size = random.scale(0.1, 5.0);
    std::vector<ZuVector> const v{random.vector(size), random.vector(size), random.vector(size), random.vector(size)};
    Pose const x = random.transformation(2.0);
    ZuTetrahedron const t(v[0], v[1], v[2], v[3]);
    double const expected = oracle::distance(oracle::placed(v, x), oracle::placed(cornersOf(box), {}));
    EXPECT_NEAR(distance(box, t, x), expected, 1e-12);
    EXPECT_EQ(touch(box, t, x), expected < 1e-15);
    // An ellipsoid of revolution holds the ball within it and is held by the ball around it; as a ball it is one.
    Pose const at(v[0]);
    ZuEllipsoid const ball(at, ZuVector(0.4, 0.4, 0.4)), disc(at, ZuVector(0.4, 0.4, 0.1));
    double const toCenter = box.distanceTo(x * v[0]);
    EXPECT_NEAR(distance(box, ball, x), std::max(toCenter - 0.4, 0.0), 1e-12);
    EXPECT_EQ(touch(box, ball, x), toCenter <= 0.4);
    double const toDisc = distance(box, disc, x);
    EXPECT_TRUE(toDisc >= std::max(toCenter - 0.4, 0.0) - 1e-12 && toDisc <= std::max(toCenter - 0.1, 0.0) + 1e-12);
    EXPECT_EQ(touch(box, disc, x), toDisc == 0.0);
  }
  // Along an axis: from the face to the tip.
  ZuEllipsoid const tip(Pose(), ZuVector(0.1, 0.2, 0.3));
  ZuBox const box(Pose(), ZuVector(1, 1, 1));
  EXPECT_NEAR(distance(box, tip, Pose(ZuVector(0.5, 0.5, 2.0))), 0.7, 1e-14);
  EXPECT_EQ(distance(box, tip, {}), 0.0);
}

TEST_F(Box, CrossedAndNearlyParallelBoxesKeepTheirDistance) {
  RandomValues random(53);
  for (double gap : {0.0, 1e-13, 1e-9, 1e-5, 0.3}) {
    for (double angle : {0.0, 1e-15, 1e-12, 1e-9, 1e-6, 1e-3, 0.7}) {
      ZuOrientation turn, tilt;
      turn.setFromAngleAxis(M_PI_4 + angle, {0, 0, 1});
      tilt.setFromAngleAxis(angle, random.direction());
      ZuBox const a(Pose(), ZuVector(1, 1, 0.5)), plank(Pose(), ZuVector(3, 0.1, 0.2));
      for (Pose const& x :
           {Pose({0, 0, 0.7 + gap}, turn), Pose({0.1, 0.05, 0.7 + gap}, tilt), Pose({0, 0, 0.7 + gap}, tilt * turn)}) {
        // Faces and crossing edges are nearest: the distance is the widest gap along a normal.
        double const expected = -oracle::depth(oracle::placed(cornersOf(a), {}), oracle::placed(cornersOf(plank), x));
        EXPECT_NEAR(a.distanceTo(plank, x), std::max(expected, 0.0), 4e-15) << gap << ' ' << angle;
        EXPECT_TRUE(a.checkIntersect(plank, x) == (expected < 0.0) || std::abs(expected) < 4e-15)
            << gap << ' ' << angle;
      }
      // Deep within each other they touch, whatever rounding says of products of nearly parallel axes.
      EXPECT_TRUE(a.checkIntersect(plank, Pose({0.9, 0, 0.69}, tilt))) << angle;
    }
  }
}

TEST_F(Box, ContactsTakeSpheresAndCapsulesAsTheyStandAndRefuseBoxes) {
  ZuBox const box(Pose(), ZuVector(1, 1, 1));
  ZuSphere const ball(ZuVector(3, 0, 0), 2, 3);
  ZuCapsule const capsule(ZuLineSegment({3, -9, 0}, {3, 9, 0}), 2);
  Pose const far(ZuVector(100, 0, 0));
  ZuShape::KeyPairs pairs;
  for (ZuShape const* other : {static_cast<ZuShape const*>(&ball), static_cast<ZuShape const*>(&capsule)}) {
    EXPECT_TRUE(box.checkIntersect(*other, far, m_Descriptor, m_State, &pairs));
    EXPECT_EQ(distance(box, *other, far), 100.0);
    EXPECT_EQ(distance(box, *other, Pose(ZuVector(-2.5, 0, 0))), -2.0);
  }
  EXPECT_EQ(pairs.size(), 2U);
  EXPECT_EQ(distance(box, ZuSphere(ZuVector(0, 0, 0.5), 3, 3), {}), -3.0);
  ZuPolyPhysicalExtent const& mesh = static_cast<ZuPolyPhysicalExtent const&>(box.physicalExtent());
  EXPECT_TRUE(touch(box, mesh, Pose(ZuVector(1.9, 0, 0))) && !touch(box, mesh, Pose(ZuVector(2.1, 0, 0))));
  PrintSink sink;
  EXPECT_FALSE(touch(box, box, {}));
  EXPECT_EQ(distance(box, box, Pose(ZuVector(2, 0, 0))) + distance(box, box, Pose(ZuVector(0, 5, 0))), 3.0);
  EXPECT_EQ(sink.take(), Messages{"ZuBox::checkIntersect-->Distance from shapeID (7) to shapeID (7) not supported"});
}

TEST_F(Box, PairsThatItDoesNotAnswerPrintBothTypesAndAreNeutral) {
  ZuBox box = ZuBox::testObject();
  for (int type = ZuShape::HALF_SPACE; type <= ZuShape::EXTENT_INTERSECTION; ++type) {
    Disguised<ZuCapsule> const other(type);
    PrintSink sink;
    EXPECT_FALSE(distance(box, other, {}) != 0.0 || touch(box, other, {}));
    std::string const pair = " from shapeID (7) to shapeID (" + std::to_string(type) + ") not supported";
    EXPECT_EQ(sink.take(), (Messages{"ZuBox::distanceTo-->Check" + pair, "ZuBox::checkIntersect-->Distance" + pair}));
  }
  PrintSink sink;
  box.fitFromShape(ZuSphere());
  EXPECT_EQ(sink.take(), Messages{"ZuBox::fitFromShape-->shape conversion not supported"});
  box.setAxes(ZuXmlVectorVector({{1, 0, 0}, {0, 1, 0}}));
  box.setAxes(ZuXmlVectorVector({{1, 0, 0}, {0, 1, 0}, {0, 0, -1}}));
  box = ZuAxisAlignedBoundingBox(1, 0, 0, 1, 0, 1);
  EXPECT_EQ(sink.take().size(), 3U);
  EXPECT_EQ(box, ZuBox::testObject());
}

TEST_F(Box, SegmentsAreCutWhereTheyEnterAndLeave) {
  TracedValues random(55);
  for (int i = 0; i < 2000; ++i) {
    ZuBox const box = randomBox(random);
    ZuLineSegment const s(random.vector(2.0), i % 3 == 0 ? box.center() : random.vector(2.0));
    ZuShapePointEvent event;
    ASSERT_EQ(box.intersectLineSegment(s, event), box.checkIntersect(s));
    if (!event.hit) continue;
    for (auto const& [point, inside] : {std::pair(event.entry, event.startsInside), {event.exit, event.endsInside}}) {
      EXPECT_LE(box.distanceTo(point.point), 1e-14);
      EXPECT_NEAR(box.distanceTo(point.point + point.normal), inside ? 0.0 : 1.0, 1e-13);
    }
    EXPECT_TRUE(event.startsInside ||
                (event.entry.normal.dot(s.delta()) <= 0.0 && event.exit.normal.dot(s.delta()) >= -1e-14));
    for (double t = 0.03125; t < 1.0; t += 0.0625) {
      bool const between = t > event.entry.t && t < event.exit.t;
      EXPECT_EQ(box.distanceTo(s.endpoint0() + t * s.delta()) <= 1e-14, between) << t;
    }
  }
  ZuBox const box(Pose(), ZuVector(1, 1, 1));
  struct {
    ZuVector from, to;
    double entry, exit;
    ZuVector normal;
  } const theCases[] = {{{0, 2, 0}, {2, 0, 0}, 0.5, 0.5, {0, 1, 0}},
                        {{-3, 1, 0}, {3, 1, 0}, 2.0 / 6, 4.0 / 6, {-1, 0, 0}},
                        {{1, 0, 0}, {1, 0.5, 0}, 0, 1, {1, 0, 0}},
                        {{0, 0, 1}, {0, 0, 1}, 0, 0, {0, 0, 1}}};
  ZuShapePointEvent event;
  for (auto const& k : theCases) {
    ASSERT_TRUE(box.intersectLineSegment(ZuLineSegment(k.from, k.to), event));
    EXPECT_NEAR(std::abs(event.entry.t - k.entry) + std::abs(event.exit.t - k.exit), 0.0, 1e-15);
    EXPECT_EQ(event.entry.normal, k.normal);
  }
}

TEST_F(Box, FitsAreTightRecoverABoxAndTakeDegenerateSets) {
  checkFitsToRealMeshes<ZuBox>(1.84);  // 1.838 when this was written
  ZuBox const original(Pose::testObject(), ZuVector(0.5, 1, 2));
  ZuBox fit;
  fit.fitFromShape(original.physicalExtent());
  EXPECT_NEAR(fit.volume(), original.volume(), 1e-6);
  struct {
    std::vector<ZuVector> points;
    double longest, middle;
  } const theCases[] = {{{{1, 2, 3}}, 0, 0},
                        {{{1, 2, 3}, {2, 4, 6}, {4, 8, 12}}, 1.5 * std::sqrt(14.0), 0},
                        {{{1, 1, 0}, {3, 3, 0}, {2, 4, 0}, {0, 2, 0}}, std::sqrt(2.0), std::sqrt(0.5)}};
  for (auto const& k : theCases) {
    fit.fitToPoints(ZuXmlVectorVector(k.points));
    std::vector<double> e{fit.extent(0), fit.extent(1), fit.extent(2)};
    std::sort(e.begin(), e.end());
    EXPECT_TRUE(std::abs(e[2] - k.longest) < 1e-5 && std::abs(e[1] - k.middle) < 1e-5 && e[0] < 1e-5);
    EXPECT_LE(mostOutside(fit, ZuXmlVectorVector(k.points)), 1e-14);
  }
  PrintSink sink;
  fit.fitToPoints(ZuXmlVectorVector({{0, 0, HUGE_VAL}}));
  EXPECT_EQ(sink.messages().size(), 1U);
}

TEST_F(Box, FrameAxesExtentAndMotionAgree) {
  TracedValues random(56);
  for (int i = 0; i < 50; ++i) {
    ZuBox const box = randomBox(random);
    checkMovesAndScales(box, random);
    ZuBox byAxes;
    byAxes.setExtents(box.extents());
    byAxes.setCenter(box.center());
    byAxes.setAxes(box.axes());
    ZuVector const p = random.vector(3.0), direction = random.vector();
    EXPECT_NEAR(byAxes.distanceTo(p), box.distanceTo(p), 1e-14);
    double farthest = -HUGE_VAL;
    for (ZuVector const& corner : cornersOf(box)) farthest = std::max(farthest, corner.dot(direction));
    EXPECT_NEAR(box.supportPoint(direction).dot(direction), farthest, 1e-14);
    if (box.volume() == 0.0) continue;
    EXPECT_TRUE(facetsCloseAndAreConvex(box.physicalExtent()));
    EXPECT_NEAR(extentVolume(box.physicalExtent()), box.volume(), 1e-13);
  }
  ZuBox box = ZuBox::testObject();
  box = ZuAxisAlignedBoundingBox(-1, 2, -3, 5, 0.25, 7.5);
  EXPECT_TRUE(box.center() == ZuVector(0.5, 1, 3.875) && box.extents() == ZuVector(1.5, 4, 3.625));
  EXPECT_EQ(box.axis(2), ZuVector(0, 0, 1));
}
