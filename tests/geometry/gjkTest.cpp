#include "geometry/zuGjk.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "foundation/zuReArray.h"
#include "tests/allocationCounter.h"
#include "tests/convexOracle.h"
#include "tests/hullShape.h"
#include "tests/pairCases.h"
#include "tests/printSink.h"
#include "tests/randomValues.h"
#include "tests/sharedFiles.h"
#include "tests/valuePrinters.h"

namespace {

using Pose = ZuCoordinateSystemTransformation;

/// Lets a test see and set the simplex.
class OpenEngine : public ZuGJK {
 public:
  using ZuGJK::m_Det;
  using ZuGJK::m_Dp;
  using ZuGJK::m_Simplex;

  void setPoints(std::vector<ZuVector> const& points, int newest) {
    reset();
    for (std::size_t i = 0; i < points.size(); ++i) m_Simplex.y[i] = points[i];
    m_Simplex.allBits = (1 << points.size()) - 1;
    m_Simplex.last = newest;
    m_Simplex.lastBit = 1 << newest;
    m_Simplex.bits = m_Simplex.allBits & ~m_Simplex.lastBit;
  }
};

/// Validates the polytope whenever it has grown.
class ValidatingEngine : public ZuGJK {
 public:
  Expansion splitTriangle(int facet, ZuDifferenceSet const& set) override {
    return validated(ZuGJK::splitTriangle(facet, set));
  }
  Expansion splitEdge(int facet, int a, int b, ZuDifferenceSet const& set) override {
    ++edges;
    return validated(ZuGJK::splitEdge(facet, a, b, set));
  }
  int expansions = 0, edges = 0, failures = 0;

 private:
  Expansion validated(Expansion expansion) {
    ++expansions;
    if (expansion == FAILED) ++failures;
    EXPECT_TRUE(validatePolytope());
    return expansion;
  }
};

struct Answer {
  double distance = -1e9;
  ZuVector witness1, witness2, separation;
};

Answer ask(ZuGJK& engine, ZuShape const& a, ZuShape const& b, Pose const& T1, Pose const& T2, bool penetration = true,
           ZuVector const& start = ZuVector()) {
  Answer answer;
  answer.separation = start;
  EXPECT_TRUE(engine.distance(a, b, T1, T2, penetration, answer.witness1, answer.witness2, answer.distance,
                              &answer.separation));
  return answer;
}

/// What holds for every answer: the vector is that between the witness points, of the length of the distance.
void expectConsistent(Answer const& answer, Pose const& T1, Pose const& T2, double tolerance = 1e-12) {
  EXPECT_TRUE((T1 * answer.witness1 - T2 * answer.witness2).approxEq(answer.separation, tolerance));
  EXPECT_NEAR(answer.separation.mag(), std::abs(answer.distance), tolerance);
}

double distanceByOracle(HullShape const& a, HullShape const& b, Pose const& T1, Pose const& T2) {
  return static_cast<double>(
      oracle::length(oracle::nearestPoint(oracle::placed(a.vertices(), T1), oracle::placed(b.vertices(), T2)).point));
}

HullShape point(ZuVector const& p = ZuVector()) { return HullShape({p}); }

void expectOnShapes(Answer const& answer, HullShape const& a, HullShape const& b) {
  EXPECT_LT(distanceByOracle(a, point(answer.witness1), Pose(), Pose()), 1e-14);
  EXPECT_LT(distanceByOracle(b, point(answer.witness2), Pose(), Pose()), 1e-14);
}

}  // namespace

TEST(Gjk, WeightsOfThreeAndFourPointsSolveTheSystemWithARowOfOnes) {
  RandomValues r(1);
  SCOPED_TRACE(r.trace());
  OpenEngine engine;
  for (int k = 0; k < 500; ++k) {
    std::vector<ZuVector> y;
    for (int i = 0; i < 4; ++i) y.push_back(r.vector(r.scale(0.01, 100.0)));
    engine.setPoints(y, k % 4);
    engine.updateSubDeterminants();
    for (int set = 1; set < 16; ++set) {
      std::vector<int> places;
      for (int i = 0; i < 4; ++i) {
        if ((set >> i & 1) != 0) places.push_back(i);
      }
      auto const n = static_cast<unsigned int>(places.size());
      if (n < 3 || (set >> (k % 4) & 1) == 0) continue;
      ZuReArray rows(n, n), one(n, 1), weights;
      one(0, 0) = 1.0;
      for (unsigned int j = 0; j < n; ++j) {
        rows(0, j) = 1.0;
        // Of four points, the mean is 0; of three, it is at a right angle to two edges.
        for (unsigned int i = 1; i < n; ++i) {
          rows(i, j) = n == 4 ? y[places[j]][i - 1] : (y[places[i]] - y[places[0]]).dot(y[places[j]]);
        }
      }
      ASSERT_TRUE(rows.solve(one, weights));
      for (unsigned int j = 0; j < n; ++j) {
        double const size = 1.0 + std::abs(weights(j, 0));
        EXPECT_NEAR(engine.m_Det[set][places[j]], weights(j, 0), 1e-9 * size) << set;
      }
    }
  }
}

TEST(Gjk, DependentPointsMakeASetInvalidAndNeverANan) {
  double const nan = std::nan("");
  std::vector<ZuVector> const flat{{1.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {1.0, 0.5, 0.0}, {1.0, 0.5, 0.0}};
  for (double const x : {1.0, 1e-160, 1e100, nan}) {
    OpenEngine engine;
    std::vector<ZuVector> points = flat;
    points[3] = ZuVector(x, 0.5, 0.0);
    engine.setPoints(points, 3);
    engine.updateSubDeterminants();
    EXPECT_FALSE(engine.minConvex(15)) << x;
    OpenEngine same;
    same.setPoints({flat[2], flat[3]}, 1);
    same.updateSubDeterminants();
    EXPECT_FALSE(same.minConvex(3));
    ZuVector v;
    same.closestPoint(3, v);
    EXPECT_EQ(v, flat[2]);  // two equal points count equally
  }
  for (std::vector<ZuVector> const& line : {flat, {{1.0, 1.0, 1.0}, {2.0, 2.0, 2.0}, {0.1, 0.1, 0.1}}}) {
    OpenEngine engine;
    engine.setPoints(line, 2);
    engine.updateSubDeterminants();
    EXPECT_FALSE(engine.minConvex(7));
  }
}

TEST(Gjk, ValidityLooksAtTheSetAndAtWhatEmptyPlacesWereLeftWith) {
  OpenEngine engine;
  engine.m_Simplex.allBits = 7;
  engine.m_Det[3][0] = engine.m_Det[3][1] = 2e-9;
  EXPECT_TRUE(engine.minConvex(3));
  engine.m_Det[7][2] = 1.0;  // a live point outside the set is not tested
  EXPECT_TRUE(engine.minConvex(3));
  engine.m_Det[11][3] = 1e-300;  // an empty place is
  EXPECT_FALSE(engine.minConvex(3));
  engine.m_Det[11][3] = -1.0;
  EXPECT_TRUE(engine.minConvex(3));
  engine.m_Det[3][1] = 1e-9;  // a weight must be above 1e-9
  EXPECT_FALSE(engine.minConvex(3));
}

TEST(Gjk, SetsAreAskedLargestFirstAndNewestPlacesFirst) {
  struct Asking : OpenEngine {
    bool minConvex(int set) const override {
      asked.push_back(set);
      return false;
    }
    mutable std::vector<int> asked;
  };
  Asking engine;
  engine.setPoints({{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 1.0, 1.0}}, 3);
  ZuVector v;
  EXPECT_FALSE(engine.closestInUnion(v));
  EXPECT_EQ(engine.asked, (std::vector<int>{15, 14, 13, 11, 12, 10, 9, 8}));
  EXPECT_EQ(engine.m_Simplex.bits, 7);
}

TEST(Gjk, StepsReadOnlyLivePlaces) {
  OpenEngine engine;
  engine.setPoints({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 10.0}}, 1);
  engine.m_Simplex.allBits = 3;
  EXPECT_TRUE(engine.repeatPoint(ZuVector(1.0, 2.0, 3.0)));
  EXPECT_FALSE(engine.repeatPoint(ZuVector(7.0, 8.0, 10.0)));
  EXPECT_FALSE(engine.repeatPoint(ZuVector(1.0, 2.0, 3.0 + 1e-15)));
  engine.updateDotProduct();
  EXPECT_EQ(engine.m_Dp[0][1], 32.0);
  EXPECT_EQ(engine.m_Dp[1][0], 32.0);
  EXPECT_EQ(engine.m_Dp[1][1], 77.0);
  EXPECT_EQ(engine.m_Dp[1][2], 0.0);
  engine.updateSubDeterminants();
  EXPECT_EQ(engine.m_Det[2][1], 1.0);
  EXPECT_EQ(engine.m_Det[3][0], 45.0);   // y1 . (y1 - y0)
  EXPECT_EQ(engine.m_Det[3][1], -18.0);  // y0 . (y0 - y1)
  EXPECT_EQ(engine.m_Det[6][1], 0.0);
  engine.saveCache();
  OpenEngine const before = engine;
  engine.m_Simplex.y[0] = ZuVector();
  engine.m_Simplex.bits = 8;
  EXPECT_FALSE(engine == before);
  engine.restoreFromCache();
  EXPECT_TRUE(engine == before);
  EXPECT_TRUE(*engine.clone() == before);
  engine.reset();
  EXPECT_EQ(engine.m_Simplex.bits | engine.m_Simplex.last | engine.m_Simplex.lastBit | engine.m_Simplex.allBits, 0);
  EXPECT_EQ(engine.m_Dp[0][1] + engine.m_Det[3][0], 0.0);
  EXPECT_TRUE(engine.selfTest());
}

/// Random pairs of a size against the oracle. The engine is never below the true distance, and above it only for the
/// share of pairs that its rule of validity costs.
TEST(Gjk, RandomPairsAreNeverTooNearAndSeldomTooFar) {
  struct {
    unsigned int vertices;
    int pairs;
    double mostOff;  // three times the rate of docs/numerics.md would be a fault, a tenth a misread rule
    double leastOff;
  } const sizes[] = {{8, 2000, 0.04, 0.01}, {64, 1000, 0.15, 0.04}, {512, 300, 0.3, 0.05}, {4096, 40, 0.5, 0.0}};
  for (auto const& size : sizes) {
    RandomValues r(size.vertices);
    SCOPED_TRACE(r.trace());
    ZuGJK engine;
    int apart = 0, off = 0, moved = 0, scaled = 0;
    for (int k = 0; k < size.pairs; ++k) {
      HullShape const a = randomHull(r, size.vertices), b = randomHull(r, size.vertices);
      Pose const T1(ZuVector(), r.orientation()), T2(r.direction() * r.real(0.0, 3.0), r.orientation());
      Answer const answer = ask(engine, a, b, T1, T2);
      expectConsistent(answer, T1, T2);
      double const d = distanceByOracle(a, b, T1, T2);
      if (d < 1e-7) continue;
      ++apart;
      EXPECT_GE(answer.distance, d * (1.0 - 1e-9));
      if (answer.distance > d * (1.0 + 1e-6)) ++off;
      EXPECT_EQ(ask(engine, b, a, T2, T1).distance, answer.distance);
      expectOnShapes(answer, a, b);
      Pose const shift = r.transformation(10.0);
      Answer const there = ask(engine, a, b, shift * T1, shift * T2);
      expectConsistent(there, shift * T1, shift * T2, 1e-11);
      if (std::abs(there.distance - d) > 1e-6 * d) ++moved;
      HullShape const wideA = a.scaled(20.0), wideB = b.scaled(20.0);
      Pose const wide(T2.translation() * 20.0, T2.orientation());
      if (std::abs(ask(engine, wideA, wideB, T1, wide).distance - 20.0 * d) > 2e-5 * d) ++scaled;
    }
    EXPECT_GT(apart, size.pairs / 3);
    EXPECT_LT(apart, size.pairs * 9 / 10);
    for (int const count : {off, moved, scaled}) {
      EXPECT_LE(count, size.mostOff * apart) << size.vertices;
      EXPECT_GE(count, size.leastOff * apart) << size.vertices;
    }
  }
}

TEST(Gjk, DepthOfRandomPairsIsTheLeastTranslationThatSeparates) {
  RandomValues r(5);
  SCOPED_TRACE(r.trace());
  ValidatingEngine engine;
  int overlapping = 0, found = 0;
  for (int k = 0; k < 400; ++k) {
    // Every third pair is of boxes, with flat sides in the difference set; some are parallel, and some of these
    // coincide.
    bool const boxes = k % 3 == 0;
    HullShape const a = boxes ? HullShape::box(0.5, 0.7, 1.0) : randomHull(r, 8);
    HullShape const b = boxes ? HullShape::box(1.0, 0.6, 0.5) : randomHull(r, 8);
    Pose const T1(r.vector(), boxes && k % 2 == 0 ? ZuOrientation() : r.orientation());
    Pose const T2(T1.translation() + r.direction() * (k % 5 == 0 ? 0.0 : r.real(0.0, 0.8)),
                  boxes && k % 4 == 0 ? T1.orientation() : r.orientation());
    oracle::Points const pointsA = oracle::placed(a.vertices(), T1), pointsB = oracle::placed(b.vertices(), T2);
    oracle::Vector direction;
    auto const depth = static_cast<double>(oracle::depthByTrial(pointsA, pointsB, direction));
    Answer const answer = ask(engine, a, b, T1, T2);
    expectConsistent(answer, T1, T2);
    if (depth < 1e-6) continue;
    ++overlapping;
    if (answer.distance > 0.0) continue;  // the iteration took them for apart
    ++found;
    EXPECT_NEAR(-answer.distance, depth, 1e-8 * depth + 1e-14);
    expectOnShapes(answer, a, b);
    Pose const away(T2.translation() + answer.separation * (1.0 + 1e-9), T2.orientation());
    EXPECT_NEAR(distanceByOracle(a, b, T1, away), 0.0, 1e-8);
    Pose const further(T2.translation() + answer.separation * 1.001, T2.orientation());
    EXPECT_GT(distanceByOracle(a, b, T1, further), 0.0);
  }
  EXPECT_GT(overlapping, 200);
  EXPECT_GE(found, overlapping * 95 / 100);
  EXPECT_GT(engine.expansions, 1000);
  EXPECT_GT(engine.edges, 20);
  EXPECT_EQ(engine.failures, 0);
}

TEST(Gjk, RoundShapesHaveTheDistanceOfTheirCoresLessTheRadii) {
  RandomValues r(6);
  SCOPED_TRACE(r.trace());
  ValidatingEngine engine;
  int off = 0, deep = 0;
  for (int k = 0; k < 400; ++k) {
    std::vector<ZuVector> const triangle{r.vector(), r.vector(), r.vector()};
    double const r1 = r.real(0.1, 0.5), r2 = r.real(0.1, 0.5);
    ZuVector const center = r.vector(1.5);
    double const apart = distanceByOracle(HullShape(triangle), point(center), Pose(), Pose()) - r1 - r2;
    if (apart < -0.5 * (r1 + r2)) continue;  // the search would pass its limit at a centre of curvature
    Answer const answer = ask(engine, HullShape(triangle, r1), HullShape({center}, r2), Pose(), Pose());
    expectConsistent(answer, Pose(), Pose(), 1e-9);
    EXPECT_GT(answer.distance, apart - 1e-7);
    off += answer.distance > apart + 1e-7 ? 1 : 0;
    deep += apart < 0.0 ? 1 : 0;
  }
  EXPECT_GT(deep, 30);
  EXPECT_LT(off, 80);  // by the rule of validity; the rate of docs/numerics.md is half of it
}

TEST(Gjk, TouchingFlatAndCoincidingShapesEndWithTheirDepth) {
  HullShape const cube = HullShape::box(1.0, 1.0, 1.0), plate = HullShape::box(1.0, 1.0, 0.0),
                  rod({{-0.5, 0.0, 0.0}, {0.5, 0.0, 0.0}}),
                  triangle({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}});
  ZuOrientation eighth;
  eighth.setFromAngleAxis(std::atan(1.0), ZuVector::zVector(1.0));
  double const half = std::sqrt(0.5);
  struct {
    char const* what;
    HullShape a, b;
    Pose pose;
    double depth;
  } const cases[] = {
      {"identical points", point(), point(), Pose(), 0.0},
      {"a point on a vertex", cube, point(), Pose(ZuVector(0.5, 0.5, 0.5)), 0.0},
      {"a point on an edge", cube, point(), Pose(ZuVector(0.5, 0.5, 0.2)), 0.0},
      {"a point on a face", cube, point(), Pose(ZuVector(0.5, 0.1, 0.2)), 0.0},
      {"a point at the centre", cube, point(), Pose(), 0.5},
      {"vertices", cube, cube, Pose(ZuVector(1.0, 1.0, 1.0)), 0.0},
      {"parallel edges", cube, cube, Pose(ZuVector(1.0, 1.0, 0.3)), 0.0},
      {"crossing edges", cube, cube, Pose(ZuVector(0.5 + half, 0.0, 0.9), eighth), 0.0},
      {"faces", cube, cube, Pose(ZuVector(1.0, 0.3, 0.2)), 0.0},
      {"identical cubes", cube, cube, Pose(), 1.0},
      {"identical turned cubes", cube, cube, Pose(ZuVector(), eighth), 1.0},
      {"a cube in a face", cube, cube, Pose(ZuVector(0.75, 0.0, 0.0)), 0.25},
      {"coplanar triangles", triangle, triangle, Pose(ZuVector(0.3, 0.3, 0.0)), 0.0},
      {"the same triangle", triangle, triangle, Pose(), 0.0},
      {"triangles at an edge", triangle, triangle, Pose(ZuVector(0.0, -1.0, 0.0)), 0.0},
      {"the same plate", plate, plate, Pose(ZuVector(), eighth), 0.0},
      {"a plate in a cube", cube, plate, Pose(ZuVector(0.0, 0.0, 0.2)), 0.3},
      {"crossing rods", rod, rod, Pose(ZuVector(), eighth), 0.0},
      {"collinear rods", rod, rod, Pose(ZuVector(0.5, 0.0, 0.0)), 0.0},
      {"rods end to end", rod, rod, Pose(ZuVector(1.0, 0.0, 0.0)), 0.0},
      {"a rod through a cube", cube, rod, Pose(ZuVector(0.0, 0.0, 0.1)), 0.4},
  };
  PrintSink sink;
  ValidatingEngine engine;
  RandomValues r(7);
  for (auto const& c : cases) {
    SCOPED_TRACE(c.what);
    for (Pose const& place : {Pose(), r.transformation(), r.transformation(10.0)}) {
      Answer const plain = ask(engine, c.a, c.b, place, place * c.pose, false);
      EXPECT_EQ(plain.distance, 0.0);
      for (bool const swap : {false, true}) {
        Pose const T1 = swap ? place * c.pose : place, T2 = swap ? place : place * c.pose;
        Answer const deep = ask(engine, swap ? c.b : c.a, swap ? c.a : c.b, T1, T2);
        EXPECT_NEAR(deep.distance, -c.depth, 2e-8);
        expectConsistent(deep, T1, T2, 2e-8);
      }
    }
  }
  EXPECT_TRUE(sink.messages().empty());
}

TEST(Gjk, CoherentPathsFollowTheShapesAlsoWhenTheyPart) {
  ZuGJK engine;
  HullShape const cube = HullShape::box(1.0, 1.0, 1.0);
  ZuVector separation;
  for (int k = 0; k < 1000; ++k) {
    // Parting, approaching, sliding past one another; into each other and out again.
    double const gap = 0.3 * std::sin(0.05 * k);
    Pose const T2(ZuVector(1.0 + gap, 0.001 * (k % 300), 0.0));
    Answer const answer = ask(engine, cube, cube, Pose(), T2, true, separation);
    separation = answer.separation;
    ASSERT_NEAR(answer.distance, gap, 2e-8) << k;
    ASSERT_NO_FATAL_FAILURE(expectConsistent(answer, Pose(), T2, 2e-8));
  }
}

TEST(Gjk, NoStartingVectorEndsAQueryEarly) {
  RandomValues r(8);
  SCOPED_TRACE(r.trace());
  ZuGJK engine;
  double const inf = std::numeric_limits<double>::infinity();
  HullShape const cube = HullShape::box(1.0, 1.0, 1.0);
  Pose const T2(ZuVector(3.0, 0.2, 0.1));
  for (ZuVector const& start :
       {ZuVector(), ZuVector(-2.0, 0.0, 0.0), ZuVector(-1e-11, 0.0, 0.0), ZuVector(1e-5, 0.0, 0.0),
        ZuVector(-1e-5, 0.0, 0.0), ZuVector(-1e9, 0.0, 0.0), ZuVector(inf, 0.0, 0.0), r.vector()}) {
    Answer const answer = ask(engine, cube, cube, Pose(), T2, true, start);
    EXPECT_NEAR(answer.distance, 2.0, 1e-8);
    expectConsistent(answer, Pose(), T2, 1e-8);
  }
}

TEST(Gjk, AGrowingDistanceGivesThePreviousSimplexAndDistance) {
  struct Growing : OpenEngine {
    int steps = 0;
    Simplex previous;
    bool closestInUnion(ZuVector& v) override {
      if (++steps == 2) previous = m_Simplex;
      bool const good = ZuGJK::closestInUnion(v);
      if (steps == 2) v *= 1e5;
      return good;
    }
  };
  for (double const gap : {0.5, 1e-5}) {
    Growing engine;
    HullShape const cube = HullShape::box(1.0, 1.0, 1.0);
    Pose const T2(ZuVector(1.0 + gap, 1.0 - 2.0 * gap, 1.0 - 3.0 * gap));
    Answer const answer = ask(engine, cube, cube, Pose(), T2, false);
    ASSERT_EQ(engine.steps, 2);
    EXPECT_EQ(engine.m_Simplex.bits, engine.previous.bits);
    EXPECT_EQ(engine.m_Simplex.allBits, engine.previous.allBits);
    expectConsistent(answer, Pose(), T2, gap > 0.1 ? 1e-12 : 4e-5);
    EXPECT_EQ(answer.distance == 0.0, gap < 1e-4);  // nearer, a growing distance stands for contact
  }
}

/// Reads "box x y z", "tetrahedron" and "convex n" with their points; false for anything else.
bool readPolytope(std::string const& text, HullShape& shape) {
  std::istringstream in(text);
  std::string type;
  unsigned int count = 4;
  in >> type;
  if (type == "box") {
    double x, y, z;
    in >> x >> y >> z;
    shape = HullShape::box(x, y, z);
    return true;
  }
  if (type == "convex") in >> count;
  std::vector<ZuVector> points(count);
  for (ZuVector& p : points) in >> p[0] >> p[1] >> p[2];
  shape = HullShape(points);
  return type == "convex" || type == "tetrahedron";
}

TEST(Gjk, HardCasesOfPolytopesAnswerWithinTheirTolerance) {
  std::vector<PairCase> const cases = readPairCases(sharedFile("cases/open.pairs.txt"));
  if (cases.empty()) GTEST_SKIP() << "no cases/open.pairs.txt in the shared collection";
  int answered = 0;
  for (PairCase const& c : cases) {
    HullShape a, b;
    if (!readPolytope(c.a, a) || !readPolytope(c.b, b)) continue;
    ++answered;
    ValidatingEngine engine;
    Answer const answer = ask(engine, a, b, c.poseA, c.poseB);
    // Depths are searched to the tolerance of the engine: that of one case is tighter.
    double const tolerance = std::max(c.tolerance, c.distance < 0.0 ? 1e-8 * -c.distance : 0.0);
    EXPECT_NEAR(answer.distance, c.distance, tolerance) << c.name;
    expectConsistent(answer, c.poseA, c.poseB, 1e-8);
  }
  EXPECT_GT(answered, 50);
}

TEST(Gjk, ASearchThatFailsLeavesTheDistanceOfTheIteration) {
  ZuGJK engine;
  EXPECT_EQ(engine.maxIterations(), 120U);
  EXPECT_EQ(engine.tolerance(), 1e-8);
  engine.setMaxIterations(1);
  HullShape const cube = HullShape::box(1.0, 1.0, 1.0);
  Pose const T2(ZuVector(0.7, 0.2, 0.1));
  Answer const answer = ask(engine, cube, cube, Pose(), T2);
  EXPECT_GE(answer.distance, 0.0);
  EXPECT_LE(answer.distance, 1e-8);
  expectConsistent(answer, Pose(), T2, 1e-8);

  struct Unlinked : ZuGJK {
    bool assignNeighborTrisVec() override { return false; }
  } unlinked;
  PrintSink sink;
  EXPECT_EQ(ask(unlinked, cube, cube, Pose(), T2).distance, answer.distance);
  EXPECT_EQ(sink.messages(), std::vector<std::string>{"ZuGJK::assignNeighborTrisVec() failed."});
}

TEST(Gjk, NumbersThatAreNotFinitePrintALineAndGiveNothing) {
  double const nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
  HullShape const cube = HullShape::box(1.0, 1.0, 1.0);
  for (double const bad : {nan, inf, 1e300}) {
    for (bool const inShape : {false, true}) {
      PrintSink sink;
      ZuGJK engine;
      Pose const T2(ZuVector(inShape ? 3.0 : bad, 2.0, 1.0));
      Answer const answer = ask(engine, cube, inShape ? point(ZuVector(1.0, bad, 0.0)) : cube, Pose(), T2);
      if (bad == 1e300 && answer.distance == bad) continue;
      EXPECT_EQ(answer.distance, 0.0);
      EXPECT_EQ(answer.witness1, ZuVector());
      EXPECT_EQ(answer.separation, ZuVector());
      ASSERT_EQ(sink.messages().size(), 1U);
      EXPECT_EQ(sink.messages()[0].find("ZuGJK::distance-->not a finite number"), 0U);
    }
  }
}

TEST(Gjk, QueriesAfterTheFirstDoNotAllocate) {
  RandomValues r(9);
  ZuGJK engine;
  HullShape const a = randomHull(r, 64), b = randomHull(r, 64);
  Answer answer = ask(engine, a, b, Pose(), Pose(ZuVector(9.0, 0.0, 0.0)));
  AllocationCounter const counter;
  for (int k = 0; k < 200; ++k) {
    answer = ask(engine, a, b, Pose(), Pose(r.vector(), r.orientation()), true, answer.separation);
  }
  EXPECT_EQ(counter.count(), 0U);
}

TEST(Gjk, ShapesThatAreNotConvexAreRememberedOnce) {
  if (!ZuGJK::onlyConvexShapesSoFar()) GTEST_SKIP() << "a test before this one, in the same process, met such a shape";
  ZuGJK engine;
  HullShape const cube = HullShape::box(1.0, 1.0, 1.0);
  HullShape hollow = cube;
  hollow.setIsConvex(false);
  ask(engine, cube, cube, Pose(), Pose(ZuVector(3.0, 0.0, 0.0)));
  ask(engine, hollow, hollow, Pose(), Pose(), false);  // contact without depth returns before
  EXPECT_TRUE(ZuGJK::onlyConvexShapesSoFar());
  PrintSink sink;
  ask(engine, cube, hollow, Pose(), Pose(ZuVector(3.0, 0.0, 0.0)));
  EXPECT_FALSE(ZuGJK::onlyConvexShapesSoFar());
  ask(engine, cube, cube, Pose(), Pose(ZuVector(3.0, 0.0, 0.0)));
  EXPECT_FALSE(ZuGJK::onlyConvexShapesSoFar());
  EXPECT_TRUE(sink.messages().empty());
}

TEST(Gjk, DumpsNameWhatTheEngineHolds) {
  PrintSink sink;
  ZuGJK engine;
  HullShape const cube = HullShape::box(1.0, 1.0, 1.0);
  ask(engine, cube, cube, Pose(), Pose(ZuVector(0.7, 0.2, 0.1)));
  std::string const simplexFile = testing::TempDir() + "zuGjkSimplex.txt", file = testing::TempDir() + "zuGjkDump.txt";
  engine.dumpSimplex(simplexFile);
  engine.dump(file);
  std::stringstream simplex, all;
  simplex << std::ifstream(simplexFile).rdbuf();
  all << std::ifstream(file).rdbuf();
  EXPECT_EQ(simplex.str().find("bits "), 0U);
  EXPECT_NE(all.str().find(simplex.str()), std::string::npos);
  EXPECT_NE(all.str().find("facet "), std::string::npos);
  engine.debugInverse(15);
  EXPECT_EQ(sink.take().size(), 5U);
  engine.dump("/no/such/folder/file");
  EXPECT_EQ(sink.take(), std::vector<std::string>{"ZuGJK::dump-->can't write file (/no/such/folder/file)"});
}
