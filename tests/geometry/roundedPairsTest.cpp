// Pairs of solids that are all points within a radius of a core, of which the distances are those of the cores less
// the radii.
#include "tests/allocationCounter.h"
#include "tests/convexOracle.h"
#include "tests/randomSolids.h"

namespace {

enum Kind { BALL, CAPSULE, BOX, LOZENGE };  // each answers for those up to itself

struct Rounded {
  Kind kind;
  std::unique_ptr<ZuShape> solid;
  std::vector<ZuVector> core;
  double radius;
};

Rounded randomRounded(RandomValues& random, Kind kind) {
  ZuSphere const ball = randomBall(random);
  ZuCapsule const capsule = randomCapsule(random);
  ZuBox const box = randomBox(random);
  ZuLozenge const lozenge = randomLozenge(random);
  ZuRectangle const& r = lozenge.rectangle();
  if (kind == BALL) return {kind, std::make_unique<ZuSphere>(ball), {ball.center()}, ball.radius()};
  if (kind == CAPSULE)
    return {kind, std::make_unique<ZuCapsule>(capsule), endsOf(capsule.lineSegment()), capsule.radius()};
  if (kind == BOX) return {kind, std::make_unique<ZuBox>(box), cornersOf(box), 0.0};
  std::vector<ZuVector> const corners{r.corner(0), r.corner(1), r.corner(2), r.corner(3)};
  return {kind, std::make_unique<ZuLozenge>(lozenge), corners, lozenge.radius()};
}

class RoundedPairs : public SolidTest {};

}  // namespace

TEST_F(RoundedPairs, DistancesAndDepthsAreThoseOfTheCoresLessTheRadiiAndNothingAllocates) {
  TracedValues random(61);
  int overlapping = 0, crossed = 0, bounded = 0;
  for (int i = 0; i < 48000; ++i) {
    Kind const kinds[] = {static_cast<Kind>(i % 4), static_cast<Kind>(i / 4 % 4)};
    Rounded const one = randomRounded(random, std::max(kinds[0], kinds[1]));
    Rounded const other = randomRounded(random, std::min(kinds[0], kinds[1]));
    ZuShape const &a = *one.solid, &b = *other.solid;
    ZuCoordinateSystemTransformation const x = randomPose(random, i % 32 < 16 ? 1.5 : 0.5), back = x.inverse();
    SCOPED_TRACE(std::to_string(one.kind) + " to " + std::to_string(other.kind) + " in pair " + std::to_string(i));
    oracle::Points const p = oracle::placed(one.core, {}), q = oracle::placed(other.core, x);
    double const ofCores = oracle::distance(p, q), radii = one.radius + other.radius;
    bool const areCrossed = ofCores < 1e-15;
    double expected = (areCrossed ? std::min(-oracle::depth(p, q), 0.0) : ofCores) - radii;
    // The depth of two capsules is bounded by the larger radius.
    double const most = std::max(one.radius, other.radius);
    bool const isBounded = one.kind == CAPSULE && other.kind == CAPSULE && expected < -most;
    if (isBounded) expected = -most;

    ZuVector w1, w2, u1, u2, v1, v2, n, m;
    double d = 7.0, reversed = 7.0;
    AllocationCounter const counter;
    bool const areTouching = a.computePenetrationDistanceAndSupportPoints(b, x, w1, w2, d, n);
    ASSERT_NEAR(d, expected, 1e-12);
    EXPECT_TRUE(one.kind == BOX || (witness(a, b, x, v1, v2) == d && v1 == w1 && v2 == w2));
    EXPECT_TRUE(counter.count() == 0U && areTouching == (d <= 0.0));
    EXPECT_NEAR(n.mag(), 1.0, 1e-14);
    EXPECT_TRUE((w1 + n * d).approxEq(x * w2, 1e-13));
    double const rounding = one.kind == BALL ? 1e-14 : 1e-13;
    for (double const outside : {a.distanceTo(w1), b.distanceTo(w2)})
      EXPECT_TRUE(outside <= rounding && (isBounded || outside >= -rounding)) << outside;
    if (!isBounded) {
      EXPECT_NEAR(wayOut(a, w1, n), 0.0, 1e-12);
      EXPECT_NEAR(wayOut(b, w2, x.orientation().inverseTimes(-n)), 0.0, 1e-12);
    }
    EXPECT_TRUE(one.kind == BOX || std::abs(distance(a, b, x) - d) <= 1e-13);
    EXPECT_TRUE(one.kind == BOX || one.kind == CAPSULE || touch(a, b, x) == (d <= 0.0));
    bool const isLozengeAndBox = one.kind == LOZENGE && other.kind == BOX;
    if (one.kind == other.kind || isLozengeAndBox) {
      b.computePenetrationDistanceAndSupportPoints(a, back, u2, u1, reversed, m);
      EXPECT_NEAR(reversed, d, 1e-13);
      EXPECT_TRUE(one.kind > CAPSULE || (u1.approxEq(w1, 1e-11) && u2.approxEq(w2, 1e-11)));
    }
    if (isLozengeAndBox) {  // the box takes the lozenge as overlapping with 0
      EXPECT_NEAR(distance(b, a, back), std::max(d, 0.0), 1e-13);
      EXPECT_EQ(touch(b, a, back), d <= 0.0);
    }
    double const fromCore = ofCores - one.radius;
    EXPECT_TRUE(other.kind != BALL || std::abs(a.distanceTo(x * other.core[0]) - fromCore) <= 1e-13);
    EXPECT_TRUE(other.kind != CAPSULE ||
                std::abs(a.distanceTo(x * ZuLineSegment(other.core[0], other.core[1])) - fromCore) <= 1e-12);
    overlapping += d < 0.0;
    crossed += areCrossed;
    bounded += isBounded;
  }
  EXPECT_TRUE(overlapping > 15000 && overlapping < 30000) << overlapping;
  EXPECT_TRUE(crossed > 4000 && bounded > 40) << crossed << ' ' << bounded;
}
