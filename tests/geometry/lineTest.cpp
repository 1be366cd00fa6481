#include "geometry/zuLine.h"
#include "geometry/zuLineSegment.h"
#include "tests/convexOracle.h"
#include "tests/testValues.h"

namespace {

using Transformation = ZuCoordinateSystemTransformation;

double constexpr theEps = 0x1p-52;

/// The distance of two segments by a search along the first: the squared distance from its points to the second is
/// convex.
double searchedDistance(ZuLineSegment const& a, ZuLineSegment const& b) {
  oracle::Vector const p = oracle::extended(a.endpoint0()), u = oracle::extended(a.endpoint1()) - p;
  oracle::Vector const q = oracle::extended(b.endpoint0()), v = oracle::extended(b.endpoint1()) - q, pq = p - q;
  auto const distance = [&](long double s) {
    oracle::Vector const r = pq + u * s;
    return length(dot(v, v) > 0 ? r - v * std::clamp(dot(r, v) / dot(v, v), 0.0L, 1.0L) : r);
  };
  long double low = 0, high = 1, best = std::min(distance(0), distance(1));
  for (int i = 0; i < 120; ++i) {
    long double const left = low + (high - low) / 3, right = high - (high - low) / 3;
    best = std::min({best, distance(left), distance(right)});
    (distance(left) < distance(right) ? high = right : low = left);
  }
  return static_cast<double>(best);
}

/// The diameter of the pair, within a factor 2.
double extentOf(ZuLineSegment const& a, ZuLineSegment const& b) {
  return std::max(
      {a.length(), b.length(), a.endpoint0().distanceTo(b.endpoint0()), a.endpoint0().distanceTo(b.endpoint1())});
}

/// Two segments at the angle, whose carrier lines come closest at random places in and around them; a third of them
/// touch there.
std::pair<ZuLineSegment, ZuLineSegment> pairAtAngle(RandomValues& random, double angle) {
  ZuVector const u = random.direction() * random.scale(1e-14, 10.0);
  ZuVector const v = u * random.real(-3.0, 3.0) + random.direction() * (angle * u.mag());
  ZuVector const apart =
      random.direction().cross(u).unitVector() * (random.index(3) == 0 ? 0.0 : random.scale(1e-6, 1.0));
  ZuVector const p0 = random.vector(10.0), q0 = p0 + u * random.real(-0.5, 1.5) - v * random.real(-0.5, 1.5) + apart;
  return {ZuLineSegment(p0, p0 + u), ZuLineSegment(q0, q0 + v)};
}

ZuVector pointOf(ZuLineSegment const& segment, double t) {
  ZuVector point;
  segment.computePointOnLineSegment(t, point);
  return point;
}

}  // namespace

TEST(LineSegment, DistanceHoldsAtEveryAngleHoweverSmall) {
  TracedValues random(401);
  int interior = 0, total = 0;
  for (double angle = 1.0; angle > 1e-18; angle *= 0.1) {
    for (int i = 0; i < 300; ++i, ++total) {
      auto const [a, b] = pairAtAngle(random, angle);
      double const tolerance = 8.0 * theEps * extentOf(a, b);
      double s, t, sOfLines, tOfLines;
      double const distance = std::sqrt(a.distanceSquaredTo(b, s, t));
      EXPECT_NEAR(distance, searchedDistance(a, b), tolerance) << "angle " << angle;
      EXPECT_NEAR(b.distanceTo(a), distance, tolerance) << "angle " << angle;
      interior += s > 0.0 && s < 1.0 && t > 0.0 && t < 1.0;
      // The clamped parameters name the closest points, but for an s that was kept.
      a.distanceSquaredLineToLine(b, sOfLines, tOfLines);
      if (s == sOfLines && t != tOfLines) a.distanceSquaredTo(pointOf(b, t), s);
      EXPECT_NEAR(pointOf(a, s).distanceTo(pointOf(b, t)), distance, tolerance + 4.0 * theEps * a.center().mag());
    }
  }
  EXPECT_TRUE(interior > total / 20 && interior < total / 2) << interior;
}

TEST(LineSegment, PairsFollowTheRulesOfTheirParameters) {
  ZuLineSegment const unit({0, 0, 0}, {1, 0, 0}), point({3, 4, 0}, {3, 4, 0});
  struct Case {
    char const* what;
    ZuLineSegment a, b;
    double squared, s, t;
  } const cases[] = {{"crossing inside", {{-1, 0, 0}, {1, 0, 0}}, {{0, -1, 2}, {0, 3, 2}}, 4.0, 0.5, 0.25},
                     {"s kept, t below", {{0, 0, 0}, {4, 0, 0}}, {{3, 1, 0}, {5, 3, 0}}, 1.0, 0.5, 0.0},
                     {"s kept, t above", {{0, 0, 0}, {4, 0, 0}}, {{5, 3, 0}, {3, 1, 0}}, 1.0, 0.5, 1.0},
                     {"s below, t raw", {{1, 0, 0}, {2, 0, 0}}, {{0, -1, 0}, {0, 1, 0}}, 1.0, 0.0, 0.5},
                     {"s above, t raw", {{2, 0, 0}, {1, 0, 0}}, {{0, -1, 0}, {0, 1, 0}}, 1.0, 1.0, 0.5},
                     {"s below, t raw and outside", {{1, -1, 0}, {2, -2, 0}}, {{0, 0, 0}, {0, 4, 0}}, 2.0, 0.0, -0.25},
                     {"the first of two equal corners", {{1, 0, 0}, {2, 0, 0}}, {{0, 1, 0}, {0, 2, 0}}, 2.0, -1.0, 0.0},
                     {"another corner is closer", {{2, 0, 0}, {1, 0, 0}}, {{0, 2, 0}, {0, 1, 0}}, 2.0, 2.0, 1.0},
                     {"parallel, side by side", {{0, 0, 0}, {4, 0, 0}}, {{-1, 2, 0}, {3, 2, 0}}, 4.0, 0.0, 0.25},
                     {"parallel, apart", unit, {{3, 0, 0}, {4, 0, 0}}, 4.0, 0.0, 0.0},
                     {"antiparallel, apart", unit, {{4, 0, 0}, {3, 0, 0}}, 4.0, 0.0, 1.0},
                     {"this one a point", point, unit, 20.0, 0.0, 0.0},
                     {"the other one a point", unit, point, 20.0, 0.0, 0.0},
                     {"two points", point, ZuLineSegment(), 25.0, 0.0, 0.0}};
  for (Case const& c : cases) {
    double s = -7.0, t = -7.0;
    EXPECT_EQ(c.a.distanceSquaredTo(c.b, s, t), c.squared) << c.what;
    EXPECT_TRUE(s == c.s && t == c.t) << c.what << ": " << s << ' ' << t;
    EXPECT_TRUE(c.a.distanceSquaredTo(c.b) == c.squared && c.a.distanceTo(c.b) == std::sqrt(c.squared)) << c.what;
    if (c.a.lengthSquared() == 0.0 || c.b.lengthSquared() == 0.0) continue;
    EXPECT_EQ(c.a.nondegenerateDistanceSquaredTo(c.b, s, t), c.squared) << c.what;
    EXPECT_EQ(c.a.nondegenerateDistanceSquaredTo(c.b), c.squared) << c.what;
  }
}

TEST(LineSegment, PointsSeeTheNearestPointAndTheRawParameter) {
  ZuLineSegment const segment({1, 0, 0}, {3, 0, 0}), point({1, 2, 2}, {1, 2, 2});
  for (auto const& [from, p, squared, t, squaredFromLine, tOfLine] :
       std::vector<std::tuple<ZuLineSegment, ZuVector, double, double, double, double>>{
           {segment, {2, 3, 0}, 9.0, 0.5, 9.0, 0.5},
           {segment, {0, 3, 0}, 10.0, -0.5, 9.0, -0.5},
           {segment, {6, 4, 0}, 25.0, 2.5, 16.0, 2.5},
           {segment, {3, 0, 0}, 0.0, 1.0, 0.0, 1.0},
           {point, {0, 0, 0}, 9.0, 0.0, 0.0, 1e300}}) {
    double s = -7.0, sOfLine = -7.0;
    EXPECT_EQ(from.distanceSquaredTo(p, s), squared);
    EXPECT_TRUE(from.distanceSquaredTo(p) == squared && from.distanceTo(p) == std::sqrt(squared));
    EXPECT_EQ(from.distanceSquaredFromLineTo(p, sOfLine), squaredFromLine);
    EXPECT_EQ(from.distanceSquaredFromLineTo(p), squaredFromLine);
    EXPECT_TRUE(s == t && sOfLine == tOfLine) << s << ' ' << sOfLine;
  }
}

TEST(LineSegment, DeltaAndLengthFollowTheEndpoints) {
  ZuVector const p(1, 2, 3), q(4, 6, 3);
  ZuLineSegment set, one, read, swapped(q, p), turned(q, p);
  set.setEndpoints(p, q);
  one.setEndpoint0(p);
  one.setEndpoint1(q);
  ASSERT_TRUE(read.readFromBuffer("<s><endpoint1>4 6 3</endpoint1><endpoint0>1 2 3</endpoint0></s>"));
  swapped.swapEndpoints();
  turned.setEndpoints(turned.endpoint1(), turned.endpoint0());
  for (ZuLineSegment const& segment : {set, one, read, swapped, turned}) {
    EXPECT_TRUE(segment == ZuLineSegment(p, q) && segment.endpoint(0) == p && segment.endpoint(1) == q);
    EXPECT_TRUE(segment.delta() == ZuVector(3, 4, 0) && segment.length() == 5.0);
    EXPECT_EQ(segment.center(), ZuVector(2.5, 4, 3));
  }
  PrintSink sink;
  EXPECT_EQ(set.endpoint(2), q);
  EXPECT_EQ(sink.take(), Messages{"ZuLineSegment::endpoint(): index 2 out of range.\n"});
}

TEST(LineSegment, MovesAsItsPointsDoAndKeepsItsLengthBitForBit) {
  TracedValues random(403);
  for (int i = 0; i < 100; ++i) {
    Transformation const xform = random.transformation();
    ZuLineSegment const segment(random.vector(), random.vector()), moved = xform * segment;
    ZuPlainSegment const plain = segment.plain().transformedBy(xform);
    EXPECT_EQ(moved, ZuLineSegment(xform * segment.endpoint0(), xform * segment.endpoint1()));
    EXPECT_TRUE(moved.delta() == moved.endpoint1() - moved.endpoint0() && plain.delta == moved.delta());
    EXPECT_TRUE(moved.lengthSquared() == segment.lengthSquared() && plain.lengthSquared == segment.lengthSquared());
  }
}

TEST(Line, DistanceIsAsGoodAsTheRoundedDirectionsAllow) {
  TracedValues random(404);
  for (double angle = 1.0; angle > 1e-12; angle *= 0.1) {
    // Rounding turns the directions by eps and the common perpendicular by eps / angle.
    double const turn = 4.0 * theEps / angle;
    for (int i = 0; i < 100; ++i) {
      // Two lines whose common perpendicular of known length stands at s and t.
      ZuVector const u = random.direction(), side = u.cross(random.direction()).unitVector(), up = u.cross(side);
      ZuVector const v = u + side * std::tan(angle);
      double const distance = random.scale(1e-3, 1.0), sKnown = random.real(), tKnown = random.real();
      ZuVector const foot = random.vector();
      ZuLine const a(foot - u * sKnown, u), b(foot + up * distance - v.unitVector() * tKnown, v);
      double s, t;
      EXPECT_NEAR(std::sqrt(a.distanceSquared(b, s, t)), distance, 16.0 * theEps + turn * turn) << "angle " << angle;
      EXPECT_NEAR(std::max(std::abs(s - sKnown), std::abs(t - tKnown)), 0.0, 8.0 * turn / angle) << "angle " << angle;
    }
  }
}

TEST(Line, ParallelLinesAreMeasuredFromThePointOfTheFirstAlsoWhenParallelButForRounding) {
  ZuVector const direction(1.0, 2.0, -2.0);
  ZuLine const a({1, 1, 1}, direction), b({3, 0, 1}, -direction);
  double s = -7.0, t = -7.0, tOfPoint = -7.0;
  EXPECT_EQ(a.distanceSquared(b, s, t), b.distanceSquaredFromLineTo(a.point(), tOfPoint));
  EXPECT_TRUE(s == 0.0 && t == tOfPoint);
  EXPECT_EQ(b.distanceSquaredFromLineTo(a.point()), b.distanceSquaredFromLineTo(a.point(), t));
  TracedValues random(21);
  for (int i = 0; i < 2000; ++i) {
    ZuVector const u = random.vector(), across = u.cross(random.vector()).unitVector(), p = random.vector();
    ZuLine const other(p + across + random.real() * u, random.scale(0.01, 100.0) * u);
    EXPECT_NEAR(ZuLine(p, u).distanceSquared(other, s, t), 1.0, 1e-12);
  }
}

TEST(Line, TheClosestPointIsOnTheLineAndStraightBelow) {
  TracedValues random(405);
  for (int i = 0; i < 100; ++i) {
    ZuLine const original(random.vector(), random.vector());
    Transformation const xform = random.transformation();
    ZuLine const line = xform * original;
    ZuVector const p = random.vector(), foot = line.pointOnLineClosestTo(p);
    double t;
    EXPECT_TRUE(line.point().approxEq(xform * original.point(), 4.0 * theEps));
    EXPECT_TRUE(line.unitVector().approxEq(xform.orientation() * original.unitVector(), 4.0 * theEps));
    EXPECT_NEAR(line.distanceSquaredFromLineTo(p, t), p.distanceSquaredTo(foot), 32.0 * theEps);
    EXPECT_NEAR((p - foot).dot(line.unitVector()), 0.0, 16.0 * theEps);
    EXPECT_EQ(foot, line.point() + t * line.unitVector());
  }
}

TEST(Line, TheDirectionIsNormalisedWhenSetAndOnlyThen) {
  ZuLine line({1, 2, 3}, {0, 3, 4});
  EXPECT_TRUE(line.unitVector().approxEq({0, 0.6, 0.8}, theEps));
  line.setUnitVector({0, 0, -5});
  EXPECT_EQ(line.unitVector(), ZuVector(0, 0, -1));
  ASSERT_TRUE(line.readFromBuffer("<l><unitVector>2 0 0</unitVector></l>"));
  EXPECT_EQ(line.unitVector(), ZuVector(2, 0, 0));
  line.setUnitVector({0, 0, 0});
  EXPECT_EQ(line.pointOnLineClosestTo({5, 5, 5}), line.point());
}
