#include "geometry/zuFrustum.h"

#include "geometry/zuLineSegment.h"
#include "tests/testValues.h"

namespace {

/// A cone, a cylinder, or between; one in eight flat, thin or both.
ZuFrustum randomFrustum(RandomValues& random) {
  double const radius = random.index(8) == 0 ? 0.0 : random.real(0.1, 1.0);
  double const share = random.index(3) == 0 ? 0.0 : random.index(2) == 0 ? 1.0 : random.real(0.0, 1.0);
  ZuVector const base = random.vector(), delta = random.index(8) == 0 ? ZuVector() : random.vector();
  return ZuFrustum::along(ZuPlainSegment::between(base, base + delta), radius, share * radius);
}

/// The signed distance of the trapezium in the half-plane, from its four sides one by one.
double trapeziumDistance(ZuFrustum const& f, ZuVector const& p) {
  double const h = (p - f.base).dot(f.axis), r = (p - f.base).cross(f.axis).mag();
  ZuVector const q(r, h, 0), corners[] = {{0, 0, 0}, {f.radius0, 0, 0}, {f.radius1, f.length, 0}, {0, f.length, 0}};
  double least = 1e9;
  bool isInside = f.radius0 * f.length > 0.0;
  for (int i = 0; i < 4; ++i) {
    ZuLineSegment const side(corners[i], corners[(i + 1) % 4]);
    if (i < 3) least = std::min(least, side.distanceTo(q));
    isInside = isInside && (i == 3 || side.delta().cross(q - corners[i]).z() >= 0.0);
  }
  return isInside ? -least : least;
}

}  // namespace

TEST(Frustum, DistancesOfPointsAreThoseOfTheTrapezium) {
  TracedValues random(401);
  int inside = 0;
  for (int i = 0; i < 20000; ++i) {
    ZuFrustum const f = randomFrustum(random);
    ZuVector const p = i % 10 == 0 ? f.base + f.axis * random.real(-1, 2) : f.base + random.vector();
    double const expected = trapeziumDistance(f, p);
    ZuVector closest, onSurface, out;
    inside += expected < 0.0;
    ASSERT_NEAR(f.distanceTo(p, closest), std::max(expected, 0.0), 1e-14);
    ASSERT_NEAR(f.signedDistanceTo(p, onSurface, out), expected, 1e-14);
    EXPECT_TRUE(std::abs(expected) < 1e-14 || f.holds(p) == (expected <= 0.0));
    for (ZuVector const& q : {closest, onSurface}) EXPECT_LE(trapeziumDistance(f, q), 1e-14);
    EXPECT_NEAR(closest.distanceTo(p), std::max(expected, 0.0), 1e-14);
    EXPECT_NEAR(onSurface.distanceTo(p), std::abs(expected), 1e-14);
    EXPECT_TRUE((onSurface + expected * out).approxEq(p, 1e-13));
    ASSERT_NEAR(trapeziumDistance(f, onSurface + 1e-3 * out), f.radius0 * f.length > 0.0 ? 1e-3 : 5e-4,
                f.radius0 * f.length > 0.0 ? 1e-13 : 6e-4);
  }
  EXPECT_TRUE(inside > 500 && inside < 10000) << inside;
}

TEST(Frustum, SegmentsAreAsFarAsTheirNearestPointAndCutWhereTheyRunInside) {
  TracedValues random(402);
  int hits = 0;
  for (int i = 0; i < 4000; ++i) {
    ZuFrustum const f = randomFrustum(random);
    // One in four runs along the axis, across it, or ends in it.
    ZuVector const from = f.base + random.vector(2.0), along = i % 8 == 0   ? f.axis * random.real(-2, 2)
                                                               : i % 8 == 1 ? zuAcross(random.vector(2), f.axis)
                                                                            : f.base + random.vector() - from;
    ZuPlainSegment const s = ZuPlainSegment::between(from, from + along);
    auto const outside = [&](double t) { return trapeziumDistance(f, zuPointAt(s, t)); };
    double low = 0.0, high = 1.0;  // the distance is convex along the segment
    while (high - low > 1e-9) {
      double const third = (high - low) / 3.0;
      (std::max(outside(low + third), 0.0) <= std::max(outside(high - third), 0.0) ? high : low) =
          std::max(outside(low + third), 0.0) <= std::max(outside(high - third), 0.0) ? high - third : low + third;
    }
    double const expected = std::max(0.0, std::min({outside(0.5 * (low + high)), outside(0.0), outside(1.0)}));
    double t = -1.0, entry = -1.0, exit = -1.0, first = -1.0, last = -1.0;
    ZuVector closest;
    double const d = f.distanceTo(s, t, closest);
    ASSERT_NEAR(d, expected, 1e-9);
    EXPECT_TRUE(t >= 0.0 && t <= 1.0 && d <= expected + 1e-15);
    EXPECT_NEAR(closest.distanceTo(zuPointAt(s, t)), d, 1e-14);
    EXPECT_LE(trapeziumDistance(f, closest), 1e-14);
    bool const isCut = f.cut(s, entry, exit);
    hits += isCut;
    EXPECT_TRUE(isCut ? d == 0.0 : d > 0.0);
    if (!isCut) continue;
    ASSERT_TRUE(0.0 <= entry && entry <= exit && exit <= 1.0);
    for (double const end : {entry, exit})
      EXPECT_TRUE(std::abs(outside(end)) < 1e-13 || end == 0.0 || end == 1.0) << outside(end);
    for (double x = 0.0625; x < 1.0; x += 0.0625)
      EXPECT_TRUE(std::abs(outside(x)) < 1e-13 || (outside(x) < 0.0) == (x > entry && x < exit)) << x;
    if (!f.cutSide(s, first, last)) continue;
    for (double const end : {first, last}) {
      EXPECT_TRUE(end == entry || end == exit);
      double const h = (zuPointAt(s, end) - f.base).dot(f.axis);
      EXPECT_NEAR((zuPointAt(s, end) - f.base).cross(f.axis).mag(), f.radiusAt(h), 1e-13);
    }
  }
  EXPECT_TRUE(hits > 400 && hits < 3000) << hits;
}
