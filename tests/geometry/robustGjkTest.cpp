#include "geometry/zuRobustGjk.h"

#include <gtest/gtest.h>

#include "bench/accuracyPairs.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "tests/allocationCounter.h"
#include "tests/engineQueries.h"
#include "tests/hardPairs.h"
#include "tests/meshSamples.h"
#include "tests/printSink.h"

namespace {

using Pose = ZuCoordinateSystemTransformation;

using Answer = EngineAnswer;

/// The robust engine with answers that are off by a part of the largest extent, 1.
class Liar : public ZuRobustGJK {
 public:
  bool distance(ZuShape const& shape1, ZuShape const& shape2, Pose const& T1, Pose const& T2, bool computePenetration,
                ZuVector& witness1, ZuVector& witness2, double& distance, ZuVector* separation) override {
    bool const isAnswered =
        ZuRobustGJK::distance(shape1, shape2, T1, T2, computePenetration, witness1, witness2, distance, separation);
    distance += distance > 0.0 ? distanceOff : computePenetration ? depthOff : 0.0;
    return isAnswered;
  }
  double distanceOff = 0.0, depthOff = 0.0;
};

}  // namespace

TEST(RobustGjk, Guarantees1To4And6HoldForASampleOfTheAccuracyProgram) {
  struct {
    char const* pairs;
    std::uint64_t count;
    unsigned int bodies;
    std::vector<std::uint64_t> onceOff;
  } const samples[] = {{"box", 400, 200, {}},
                       {"capsule", 400, 200, {}},
                       {"cylinder", 400, 200, {}},
                       {"cone", 400, 200, {13276, 15428, 32892, 55204, 65172}},
                       {"ellipsoid", 400, 200, {}},
                       {"mixed", 400, 200, {66812, 91732}},
                       {"aligned", 1000, 0, {10037, 11059, 57703}},
                       {"thin", 400, 0, {51124, 51612, 132580}},
                       {"scaled", 1000, 200, {69184, 190796}},
                       {"8", 400, 200, {}},
                       {"64", 200, 20, {}},
                       {"512", 50, 3, {}}};
  accuracy::Limits limits;
  limits.everyStart = 2;
  ZuRobustGJK engine;
  for (auto const& sample : samples) {
    accuracy::Pairs pairs(sample.pairs, sample.bodies);
    accuracy::Pair pair;
    accuracy::Tally tally;
    std::vector<std::uint64_t> numbers = sample.onceOff;
    for (std::uint64_t k = 0; k < sample.count; ++k) numbers.push_back(k);
    for (std::uint64_t const k : numbers) {
      if (!pairs.pair(k, pair)) continue;
      EXPECT_EQ(accuracy::Check(engine, pair, limits, k, tally).message(), "") << sample.pairs << " " << k;
      EXPECT_TRUE(engine.validateDepthPolytope());
    }
    long const few = static_cast<long>(sample.count) / 20;
    EXPECT_TRUE(tally.apart > few && tally.grazing > few && tally.overlapping > few && tally.depths > few);
  }
}

TEST(RobustGjk, TheChecksOfTheAccuracyProgramFindAnswersThatAreOff) {
  Liar engine;
  accuracy::Limits const limits;
  accuracy::Pair pair;
  for (char const* name : {"8", "mixed"}) {
    accuracy::Pairs pairs(name);
    for (double const sign : {1.0, -1.0}) {
      engine.distanceOff = sign * 4e-9;
      engine.depthOff = sign * 4e-6;
      accuracy::Tally tally;
      for (std::uint64_t k = 1; k < 200; k += 2) {
        pairs.pair(k, pair);
        accuracy::Check(engine, pair, limits, k, tally);
      }
      EXPECT_EQ(tally.faults[accuracy::WITNESS], 100);
      EXPECT_EQ(tally.faults[accuracy::DISTANCE], tally.apart);
      EXPECT_EQ(tally.faults[accuracy::DEPTH], tally.overlapping);
    }
  }
}

TEST(RobustGjk, Guarantees1To4HoldForTheHardCases) {
  int answered = 0;
  ZuRobustGJK engine;
  forEachHardPair([&](HardPair const& pair) {
    if (pair.a->type() == ZuShape::HALF_SPACE || pair.b->type() == ZuShape::HALF_SPACE) return;
    ++answered;
    auto const isCurved = [](ZuShape const& shape) {
      return shape.type() == ZuShape::CYLINDER || shape.type() == ZuShape::CONE || shape.type() == ZuShape::ELLIPSOID;
    };
    // The tolerances of the cases are 1e-9 and 1e-6 of the size.
    bool const isCurvedDepth = pair.distance < 0.0 && (isCurved(*pair.a) || isCurved(*pair.b));
    double const allowed = isCurvedDepth ? pair.witnessTolerance : pair.tolerance;
    Answer const answer = ask(engine, *pair.a, *pair.b, pair.poseA, pair.poseB);
    Answer const swapped = ask(engine, *pair.b, *pair.a, pair.poseB, pair.poseA);
    for (Answer const& each : {answer, swapped}) EXPECT_NEAR(each.distance, pair.distance, allowed);
    expectConsistent(answer, pair.poseA, pair.poseB, std::max(pair.tolerance, 1e-15));
    expectConsistent(swapped, pair.poseB, pair.poseA, std::max(pair.tolerance, 1e-15));
    double const bare = ask(engine, *pair.a, *pair.b, pair.poseA, pair.poseB, false).distance;
    EXPECT_NEAR(bare, std::max(answer.distance, 0.0), pair.tolerance);
    // Within rounding, one of these has its centre on an edge and the other is parallel: other points are as near.
    for (char const* name : {"sphcyl-eps-edge", "capsule-parallel-off"}) {
      if (pair.name.find(name) != std::string::npos) return;
    }
    if (pair.witnessA == nullptr) return;
    EXPECT_LE((pair.poseA * answer.witness1 - *pair.witnessA).mag(),
              pair.witnessTolerance * (isCurvedDepth ? 100.0 : 1.0));
  });
  EXPECT_TRUE(answered > 100 || testing::Test::IsSkipped()) << answered;
}

/// Of ellipsoids with common axes the support value is concave in the squares of the direction's components, so that
/// the least one is along an axis.
TEST(RobustGjk, Guarantee3HoldsForSolidsThatAreAsDeepInManyDirections) {
  RandomValues r(9);
  SCOPED_TRACE(r.trace());
  ZuRobustGJK engine;
  for (int k = 0; k < 40; ++k) {
    double const unevenness = r.scale(1e-9, 1e-1), aside = r.scale(1e-9, 1e-1), smaller = r.scale(1e-3, 1.0);
    ZuVector const ones(1.0, 1.0, 1.0), a = ones + r.vector(unevenness), b = (ones + r.vector(unevenness)) * smaller;
    ZuVector const sums = a + b, half(0.0, 0.0, 2.0), offset(aside, 0.0, 0.0);
    Pose const T(r.vector(), r.orientation()), moved = T * Pose(offset);
    EXPECT_NEAR(ask(engine, ZuEllipsoid(Pose(), a), ZuEllipsoid(Pose(), b), T, T).distance,
                -std::min(sums.x(), std::min(sums.y(), sums.z())), 1e-6)
        << unevenness << " " << smaller;
    ZuCylinder const around(ZuLineSegment(-half, half), 1.0), inside(ZuLineSegment(-half, half * smaller), smaller);
    EXPECT_NEAR(ask(engine, around, inside, T, moved).distance, aside - 1.0 - smaller, 1e-6) << aside << " " << smaller;
    EXPECT_LE(engine.depthGap(), 4e-6);
  }
  // What is scaled into the range of doubles has its gap in metres, too.
  double const huge = 1e60;
  ZuCylinder const tower(ZuLineSegment(ZuVector(), ZuVector(0.0, 0.0, 3.0 * huge)), huge);
  EXPECT_NEAR(ask(engine, tower, tower, Pose(), Pose()).distance / huge, -2.0, 1e-6);
  EXPECT_NEAR(std::log10(engine.depthGap() / huge), -6.0, 2.0);
}

TEST(RobustGjk, BallsAreFromMeshesWhatTheirCentresAreLessTheRadius) {
  RandomValues r(7);
  SCOPED_TRACE(r.trace());
  ZuRobustGJK engine;
  for (std::string const& name : meshFiles()) {
    ZuPolyPhysicalExtent const mesh = realMesh(name);
    if (mesh.points().empty()) GTEST_SKIP() << "no shared meshes";
    ZuTriPhysicalExtent hull;
    ASSERT_TRUE(hull.convexHull(mesh.points()));
    hull.scaleBy(1.0 / ObjMesh::read(sharedFile(name)).size());
    for (int k = 0; k < 40; ++k) {
      ZuSphere const ball(hull.point(0) + r.vector(1.0), r.real(0.0, 0.5), 3);
      double const expected = hull.distanceTo(ball.center()) - ball.radius();
      EXPECT_NEAR(ask(engine, hull, ball, Pose(), Pose()).distance, expected, 1e-9) << name;
    }
  }
}

TEST(RobustGjk, Guarantee5NoFiniteNumbersMakeItLoopOrReturnNan) {
  RandomValues r(3);
  SCOPED_TRACE(r.trace());
  PrintSink sink;
  ZuRobustGJK engine;
  for (int k = 0; k < 3000; ++k) {
    auto const wild = [&r] {
      double const sizes[] = {0.0, 5e-324, 1e-300, 1e-150, 1e-20, 1.0, 1.0, 1e20, 1e150, 1e300, 1.7e308};
      return sizes[r.index(11)] * (r.index(3) == 0 ? 1.0 : r.real());
    };
    auto const wildVector = [&wild] { return ZuVector(wild(), wild(), wild()); };
    std::vector<ZuVector> points[2];
    for (std::vector<ZuVector>& hull : points) {
      for (unsigned int i = r.index(6) + 1; i > 0; --i) hull.push_back(wildVector());
    }
    Pose const T1(wildVector(), r.orientation()), T2(k % 3 == 0 ? T1.translation() : wildVector(), r.orientation());
    Answer const answer = ask(engine, HullShape(points[0]), HullShape(points[1]), T1, T2, k % 2 == 0, wildVector());
    EXPECT_TRUE(std::isfinite(answer.distance));
    for (ZuVector const& v : {answer.separation, answer.witness1, answer.witness2}) EXPECT_EQ(v * 0.0, ZuVector());
  }
  for (double const bad : {std::nan(""), HUGE_VAL}) {
    sink.take();
    Answer const answer =
        ask(engine, HullShape({ZuVector(1.0, bad, 0.0)}), HullShape::box(1.0, 1.0, 1.0), Pose(), Pose());
    EXPECT_TRUE(answer.distance == 0.0 && answer.witness1 == ZuVector() && answer.separation == ZuVector());
    ASSERT_EQ(sink.messages().size(), 1U);
    EXPECT_EQ(sink.messages()[0].find("ZuRobustGJK::distance-->not a finite number"), 0U);
  }
}

TEST(RobustGjk, Guarantee7FlatThinAndIdenticalShapesAreLegal) {
  HullShape const plate = HullShape::box(1.0, 1.0, 0.0), rod({{-0.5, 0.0, 0.0}, {0.5, 0.0, 0.0}}),
                  needle = HullShape::box(1.0, 1e-9, 1e-12), sheet = HullShape::box(1.0, 1.0, 1e-12);
  ZuOrientation eighth;
  eighth.setFromAngleAxis(std::atan(1.0), ZuVector::zVector(1.0));
  std::vector<DegeneratePair> cases = degeneratePairs();
  cases.push_back({"plates side by side", plate, plate, Pose(ZuVector(2.0, 0.0, 0.0)), 1.0});
  cases.push_back({"rods apart", rod, rod, Pose(ZuVector(0.0, 0.0, 1e-7)), 1e-7});
  cases.push_back({"crossing needles", needle, needle, Pose(ZuVector(), eighth), -1e-12});
  cases.push_back({"needles apart", needle, needle, Pose(ZuVector(0.0, 1e-8, 0.0)), 9e-9});
  cases.push_back({"sheets", sheet, sheet, Pose(ZuVector(0.1, 0.1, 0.0), eighth), -1e-12});
  cases.push_back({"a sheet on a cube", sheet, HullShape::box(1.0, 1.0, 1.0), Pose(ZuVector(0.0, 0.0, 0.5)), 0.0});
  RandomValues r(4);
  ZuRobustGJK engine;
  for (DegeneratePair const& c : cases) {
    SCOPED_TRACE(c.what);
    for (Pose const& place : {Pose(), r.transformation(), r.transformation(10.0)}) {
      for (bool const swap : {false, true}) {
        Pose const T1 = swap ? place * c.pose : place, T2 = swap ? place : place * c.pose;
        Answer const answer = ask(engine, swap ? c.b : c.a, swap ? c.a : c.b, T1, T2);
        EXPECT_NEAR(answer.distance, c.distance, 1e-9);
        expectConsistent(answer, T1, T2, 1e-9);
        Answer const bare = ask(engine, swap ? c.b : c.a, swap ? c.a : c.b, T1, T2, false, answer.separation);
        EXPECT_NEAR(bare.distance, std::max(c.distance, 0.0), 1e-9);
        expectConsistent(bare, T1, T2, 1e-9);
      }
    }
  }
}

/// On the two sides of a layer that is as thick as two corners are apart.
TEST(RobustGjk, Guarantees1And6HoldForNeedlesAndPlatesThatAreHardlyApart) {
  RandomValues r(8);
  SCOPED_TRACE(r.trace());
  ZuRobustGJK engine;
  for (int k = 0; k < 1000; ++k) {
    double const width = r.scale(1e-12, 1.0), height = r.scale(1e-12, 1.0), gap = r.scale(1e-11, 1e-3);
    Pose const T1 = r.transformation(), T2 = r.transformation();
    std::vector<ZuVector> points[2];
    ZuVector const nearest(r.real(), 0.0, width * r.real());
    for (int side = 0; side < 2; ++side) {
      double const up = side == 0 ? 0.0 : gap;
      for (unsigned int i = r.index(8); i < 9; ++i) {
        ZuVector const p(r.real(), height * r.real(0.0, 1.0) * (side == 0 ? -1.0 : 1.0), width * r.real());
        points[side].push_back((side == 0 ? T1 : T2).inverse() * ((i < 8 ? p : nearest) + ZuVector(0.0, up, 0.0)));
      }
    }
    HullShape const a(points[0]), b(points[1]);
    Answer const answer = ask(engine, a, b, T1, T2), swapped = ask(engine, b, a, T2, T1, false, r.direction());
    for (Answer const& each : {answer, swapped}) EXPECT_NEAR(each.distance, gap, 1e-9) << width << ' ' << height;
    expectConsistent(answer, T1, T2, 1e-9);
  }
}

/// What fuzzing found: slim simplices whose weights say anything, an origin on a facet of the first polytope.
TEST(RobustGjk, Guarantees1And3HoldForSlimSimplicesWhereverTheyStart) {
  HullShape const rod({{-8.0, -8.0, -8.0}, {7.9375, 7.9375, 7.9375}});
  struct {
    HullShape a, b;
    double distance;
  } const cases[] = {{rod, HullShape({{1.2e-7, -1.8e-12, 0.0}, {-1.15e-7, 0.0, 0.0}, {}}), 0.0},
                     {rod,
                      HullShape({{},
                                 {1.3118846287074604e-17, 0.9531249995361577, 0.047058823529411764},
                                 {0.047058823529411764, 0.047058823529411764, 0.047058823529411764},
                                 {0.047058823529411764, 0.047058823529411764, 0.04708326151012443},
                                 {3.0517112463712692e-05, 0.0, 0.0}}),
                      -1.1057864185e-05},
                     {rod,
                      HullShape({{5.6566932470926944e-08, -0.0078436136227608977, 3.219611244276166e-10},
                                 {3.0398834496736526e-05, 2.1100044250488281e-05, 3.0398834496736526e-05},
                                 {1.8119117317638711e-12, 3.0402094125747681e-05, 0.0},
                                 {}}),
                      0.0},
                     {rod,
                      HullShape({{0.0, -1.4901438305623023e-08, 0.0},
                                 {-5.9604644775499045e-08, 0.0, -1.4901438305623023e-08},
                                 {0.0, -6.3973023926855443e-14, -2.6583671569824219e-05},
                                 {}}),
                      0.0},
                     {HullShape({{7.375, -8.0, -5.125}, {-6.875, -8.0, 0.6875}, {-4.3125, -4.3125, -3.5625}}),
                      HullShape({{-3.5625, 4.75, 5.375},
                                 {7.375, -4.0625, -6.5625},
                                 {-8.0, -8.0, 7.9375},
                                 {7.9375, -5.4375, -8.0},
                                 {5.375, -8.0, -8.0},
                                 {-8.0, -8.0, -8.0}}),
                      -3.6875}};
  ZuRobustGJK engine;
  for (auto const& c : cases) {
    for (ZuVector const& start : {ZuVector(-8.0, -8.0, -8.0), ZuVector(), ZuVector(0.0, 3.6875, 0.0)}) {
      for (bool const swap : {false, true}) {
        Answer const answer = ask(engine, swap ? c.b : c.a, swap ? c.a : c.b, Pose(), Pose(), true, start);
        EXPECT_NEAR(answer.distance, c.distance, 1e-7) << &c - cases;
        expectConsistent(answer, Pose(), Pose(), 1e-9);
      }
    }
  }
}

TEST(RobustGjk, QueriesAfterTheFirstDoNotAllocate) {
  RandomValues r(5);
  ZuRobustGJK engine;
  HullShape const a = randomHull(r, 64), b = randomHull(r, 64);
  for (bool const isWarm : {false, true}) {
    RandomValues same(6);
    AllocationCounter const counter;
    for (int k = 0; k < 200; ++k) ask(engine, a, b, Pose(), Pose(same.vector(), same.orientation()));
    EXPECT_TRUE(!isWarm || counter.count() == 0U) << counter.count();
  }
}

TEST(RobustGjk, StandsInForAnyOtherEngine) {
  ZuRobustGJK engine;
  EXPECT_TRUE(engine.selfTest());
  ZuSphere sphere;
  sphere.setGjkEngine(engine);
  EXPECT_NE(dynamic_cast<ZuRobustGJK const*>(&sphere.gjkEngine()), nullptr);
  EXPECT_TRUE(*engine.clone() == engine && engine != ZuGJK());
  ZuVector witness1(7.0, 0.0, 0.0), witness2, depth;
  Pose const apart(ZuVector(3.0, 0.0, 0.0)), over(ZuVector(0.5, 0.0, 0.0));
  EXPECT_FALSE(engine.penetration(HullShape::box(1.0, 1.0, 1.0), sphere, Pose(), apart, witness1, witness2, depth));
  EXPECT_TRUE(witness1.x() == 7.0 && depth == ZuVector());
  EXPECT_TRUE(engine.penetration(HullShape::box(2.0, 2.0, 2.0), sphere, Pose(), over, witness1, witness2, depth));
  EXPECT_TRUE(depth.approxEq(ZuVector(0.5, 0.0, 0.0), 1e-12));
}
