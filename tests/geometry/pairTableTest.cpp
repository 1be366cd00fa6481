// Every ordered pair of the solids, asked for distance, witness points and contact, apart and overlapping.
//
// The oracle knows support points alone. With h the height of a solid's farthest point in a direction, the least of
// h_1(n) + h_2(-n) over all unit vectors n is minus the signed distance of the two: minus the gap of the widest slab
// that separates them, or the depth along the direction in which they come apart soonest. It is sought among directions
// all over the sphere. The tests of each solid hold its support points against its distances.

#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuRobustGjk.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSimplexSearch.h"
#include "geometry/zuTriPhysicalExtent.h"
#include "tests/hardPairs.h"
#include "tests/proximityFixture.h"

namespace {

using Pose = ZuCoordinateSystemTransformation;

/// The types that have a class, in the order of the tables below; 10, 13 and 14 have none.
constexpr int theTypes[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12};
constexpr int theCount = 12;

/// What each pair does, first shape by rows: '.' answers; 'x' prints "not supported", distance 0, contact false;
/// 's' takes the other shape as it stands, without the transformation; '0' answers 0 for every overlap; 'u' of two
/// half-spaces is their overlap without bound.
//                                           0 12 3 4 5 6 7 8 9 1112
constexpr char const* theDistances[] = {"............",   // 0 extent
                                        "............",   // 1 poly extent
                                        "............",   // 2 tri extent
                                        "....xxxxxxxx",   // 3 sphere
                                        ".....xxxxxxx",   // 4 capsule
                                        "............",   // 5 ellipsoid
                                        "............",   // 6 tetrahedron
                                        ".....0000xxx",   // 7 box
                                        "............",   // 8 lozenge
                                        ".........u..",   // 9 half-space
                                        "...ss.....xx",   // 11 cylinder
                                        "............"};  // 12 cone
constexpr char const* theWitnesses[] = {"............", "............", "............", "....xxxxxxxx",
                                        ".....xxxxxxx", "............", "............", "............",
                                        "............", ".........u..", "............", "............"};
constexpr char const* theContacts[] = {"............", "............", "............", "x...xxxxxxxx",
                                       "sssssxxxxxxx", "............", "............", "...ss..x.xxx",
                                       "............", ".........u..", "ssssxxxxxxsx", "............"};

struct PlainExtent : ZuPolyPhysicalExtent {
  ZuShapeValues type() const override { return PHYSICAL_EXTENT; }
};

/// A solid of about unit size that holds the origin; shorter or thinner than that when told.
std::unique_ptr<ZuShape> solidOf(int type, RandomValues& random, double length = 1.0, double width = 1.0) {
  ZuXmlVectorVector const points(randomHull(random, 40).vertices());
  ZuLineSegment const axis(length * ZuVector(-0.3, 0.1, 0.2), length * ZuVector(0.5, -0.2, 0.1));
  Pose const frame(random.vector(0.1), random.orientation());
  auto const meshOf = [&](std::unique_ptr<ZuBasePhysicalExtent> mesh) {
    mesh->convexHull(points);
    return mesh;
  };
  switch (type) {
    case 0:
      return meshOf(std::make_unique<PlainExtent>());
    case 1:
      return meshOf(std::make_unique<ZuPolyPhysicalExtent>());
    case 2:
      return meshOf(std::make_unique<ZuTriPhysicalExtent>());
    case 3:
      return std::make_unique<ZuSphere>(random.vector(0.1), 0.5 * width, 5);
    case 4:
      return std::make_unique<ZuCapsule>(axis, 0.3 * width);
    case 5:
      return std::make_unique<ZuEllipsoid>(frame, ZuVector(0.4, 0.7 * width, 0.55 * length));
    case 6:
      return std::make_unique<ZuTetrahedron>(ZuVector(0.9, 0.1, -0.4), ZuVector(-0.8, 0.6, -0.5),
                                             ZuVector(-0.1, -0.9 * width, -0.4), ZuVector(0.1, 0.1, 0.9));
    case 7:
      return std::make_unique<ZuBox>(frame, ZuVector(0.5, 0.3 * width, 0.6 * length));
    case 8:
      return std::make_unique<ZuLozenge>(
          ZuRectangle(random.vector(0.1), length * ZuVector(0.4, 0.1, 0.0), {-0.1, 0.4, 0.2}), 0.25 * width);
    case 9:
      return std::make_unique<ZuHalfSpace>(ZuPlane(random.vector(0.1) + ZuVector(0, 0, 0.2), {0.3, -0.2, 0.9}));
    case 11:
      return std::make_unique<ZuCylinder>(axis, 0.45 * width);
    default:
      return std::make_unique<ZuCone>(axis, 0.6 * width);
  }
}

/// Even over the sphere, by steps of the golden angle.
ZuVector spiral(int k, int count) {
  double const z = 1.0 - (2.0 * k + 1.0) / count, r = std::sqrt(1.0 - z * z);
  return {r * std::cos(2.399963229728653 * k), r * std::sin(2.399963229728653 * k), z};
}

double signedDistance(ZuShape const& a, ZuShape const& b, Pose const& x) {
  auto const overlap = [&](ZuVector const& n) {
    return n.dot(a.computeSupportPoint(n) - x * b.computeSupportPoint(x.orientation().inverseTimes(-n)));
  };
  std::vector<std::pair<double, ZuVector>> starts;
  for (int k = 0; k < 400; ++k) starts.emplace_back(overlap(spiral(k, 400)), spiral(k, 400));
  for (ZuShape const* shape : {&a, &b}) {  // the one direction of a half-space is not found by looking around
    if (shape->type() != ZuShape::HALF_SPACE) continue;
    ZuVector const n = static_cast<ZuHalfSpace const*>(shape)->normal();
    ZuVector const inA = shape == &a ? n : x.orientation() * -n;
    starts.emplace_back(overlap(inA), inA);
  }
  std::sort(starts.begin(), starts.end(), [](auto const& s, auto const& t) { return s.first < t.first; });
  double least = starts[0].first;
  for (std::size_t i = 0; i < 4; ++i) {
    ZuVector const n = starts[i].second, e1 = n.cross(ZuVector(0.36, 0.48, 0.8)).unitVector(), e2 = n.cross(e1);
    auto const tilted = [&](std::array<double, 2> const& t) {
      return overlap((n + e1 * t[0] + e2 * t[1]).unitVector());
    };
    least = std::min(least, ZuSimplexSearch<2>::minimum(tilted, {}, 0.1, 20).value);
  }
  return -least;
}

class PairTable : public ProximityTest {
 protected:
  PairTable() {
    ZuShape::setGjkEnginePrototype(ZuRobustGJK());
    RandomValues random(71);
    for (int type : theTypes) {
      m_First.push_back(solidOf(type, random));
      m_Second.push_back(solidOf(type, random));
    }
  }
  ~PairTable() override { ZuShape::setGjkEnginePrototype(ZuGJK()); }

  /// Where the second solid is `gap` from the first, in a direction that the pair of types fixes.
  Pose poseOf(int i, int j, double gap) const {
    RandomValues random(static_cast<std::uint64_t>(100 * i + j));
    ZuOrientation const turn = random.orientation();
    ZuVector direction = random.direction();
    for (int side = 0; side < 2; ++side) {  // a half-space is left along its normal
      ZuShape const& shape = *(side == 0 ? m_First[i] : m_Second[j]);
      if (shape.type() != ZuShape::HALF_SPACE) continue;
      ZuVector const n = static_cast<ZuHalfSpace const&>(shape).normal();
      direction = side == 0 ? n : turn * -n;
    }
    double low = 0.0, high = 8.0;
    for (int step = 0; step < 40; ++step) {
      double const middle = 0.5 * (low + high);
      (signedDistance(*m_First[i], *m_Second[j], Pose(direction * middle, turn)) < gap ? low : high) = middle;
    }
    return Pose(direction * high, turn);
  }

  std::vector<std::unique_ptr<ZuShape>> m_First, m_Second;
};

/// Whether a pair printed "not supported" with its two numbers, and nothing else.
bool isRefusal(Messages const& messages, int type1, int type2) {
  std::string const pair =
      " from shapeID (" + std::to_string(type1) + ") to shapeID (" + std::to_string(type2) + ") not supported";
  return messages.size() == 1 && messages[0].size() > pair.size() &&
         messages[0].compare(messages[0].size() - pair.size(), pair.size(), pair) == 0;
}

}  // namespace

TEST_F(PairTable, EveryPairAnswersAsItsClassSays) {
  for (int i = 0; i < theCount; ++i) {
    for (int j = 0; j < theCount; ++j) {
      ZuShape const& a = *m_First[i];
      ZuShape const& b = *m_Second[j];
      bool const isUnbounded = theDistances[i][j] == 'u';
      for (double const gap : {0.3, -0.1}) {
        SCOPED_TRACE(std::to_string(theTypes[i]) + " to " + std::to_string(theTypes[j]) + " at " + std::to_string(gap));
        Pose const x = isUnbounded ? Pose() : poseOf(i, j, gap);
        double const expected = isUnbounded ? -1.0 : signedDistance(a, b, x);
        PrintSink sink;
        double const d = distance(a, b, x);
        Messages const ofDistance = sink.take();
        ZuVector w1, w2, v1, v2;
        double const dw = witness(a, b, x, w1, w2);
        Messages const ofWitness = sink.take();
        bool const contact = touch(a, b, x);
        Messages const ofContact = sink.take();

        bool const refuses = theDistances[i][j] == 'x' || isUnbounded;
        EXPECT_TRUE(refuses ? isRefusal(ofDistance, theTypes[i], theTypes[j]) : ofDistance.empty());
        char const rule = theDistances[i][j];
        double const wanted = rule == '.' ? expected : rule == '0' ? std::max(expected, 0.0) : 0.0;
        EXPECT_NEAR(d, rule == 's' ? distance(a, b, Pose()) : wanted, rule == '.' || rule == '0' ? 1e-5 : 0.0);

        bool const refusesWitness = theWitnesses[i][j] == 'x' || isUnbounded;
        EXPECT_TRUE(refusesWitness ? isRefusal(ofWitness, theTypes[i], theTypes[j]) : ofWitness.empty());
        if (refusesWitness) {
          EXPECT_EQ(dw, 0.0);
        } else {
          EXPECT_NEAR(dw, expected, 1e-5);
          EXPECT_NEAR((x * w2 - w1).mag(), std::abs(dw), 1e-7);
          for (double const outside : {a.distanceTo(w1), b.distanceTo(w2)}) EXPECT_LE(outside, 1e-7);
          if (theWitnesses[j][i] == '.') {
            EXPECT_NEAR(witness(b, a, x.inverse(), v2, v1), dw, 1e-6);
            EXPECT_NEAR((v1 - x * v2).mag(), std::abs(dw), 1e-6);
            // Where the nearest points are not unique, the separating direction is.
            ZuVector const u = (x * w2 - w1).unitVector(), v = (x * v2 - v1).unitVector();
            EXPECT_TRUE(v1.approxEq(w1, 1e-3) || u.approxEq(v, 1e-3)) << u.dot(v);
          }
        }

        bool const refusesContact = theContacts[i][j] == 'x';
        EXPECT_TRUE(refusesContact ? isRefusal(ofContact, theTypes[i], theTypes[j]) : ofContact.empty());
        // All solids hold the origin of their frames: as they stand, they overlap.
        EXPECT_EQ(contact, theContacts[i][j] == 's' || (!refusesContact && expected < 0.0));
      }
    }
  }
}

TEST_F(PairTable, HardCasesAreWithinTheirTolerance) {
  int answered = 0;
  forEachHardPair([&answered](HardPair const& pair) {
    ZuShape const &a = *pair.a, &b = *pair.b;
    if (isHull(a) || isHull(b)) return;
    ++answered;
    Pose const x = pair.poseA.inverse() * pair.poseB;
    double expected = pair.distance, d = 0.0;
    if (a.type() == ZuShape::CAPSULE && b.type() == ZuShape::CAPSULE) {  // never deeper than the larger radius
      auto const radius = [](ZuShape const& shape) { return dynamic_cast<ZuCapsule const&>(shape).radius(); };
      expected = std::max(expected, -std::max(radius(a), radius(b)));
    }
    ZuVector w1, w2, direction;
    a.computePenetrationDistanceAndSupportPoints(b, x, w1, w2, d, direction);
    EXPECT_NEAR(d, expected, pair.tolerance);
    // Concentric balls have no nearest points.
    EXPECT_TRUE(direction == ZuVector() || std::abs((x * w2 - w1).mag() - std::abs(d)) <= pair.tolerance);
    b.computePenetrationDistanceAndSupportPoints(a, x.inverse(), w2, w1, d, direction);
    EXPECT_NEAR(d, expected, pair.tolerance);
  });
  EXPECT_TRUE(answered > 100 || IsSkipped()) << answered;
}

TEST_F(PairTable, BoundingVolumesOfEveryKindEncloseOrSayThatTheyDoNotAndCarryTheirSurface) {
  TracedValues random(72);
  for (int i = 0; i < theCount * 16; ++i) {
    int const round = i / theCount;
    double const size = round < 4 ? 1.0 : random.scale(0.1, 2.0), length = round % 2 == 0 ? size : 0.0;
    std::unique_ptr<ZuShape> const solid =
        solidOf(theTypes[i % theCount], random, length, round / 2 % 2 == 0 ? size : 0.0);
    for (int kind = -1; kind <= 15; ++kind) {
      // Capsules, cylinders and cones are fitted without flat tessellations: they hold flat and thin solids too.
      if (round > 0 && kind != 4 && kind != 11 && kind != 12) continue;
      SCOPED_TRACE(std::to_string(kind) + " around " + std::to_string(solid->type()) + " in case " + std::to_string(i));
      PrintSink sink;
      solid->addBoundingVolume(static_cast<ZuShape::ZuShapeValues>(kind));
      sink.take();  // the lines of the fits that don't take the solid, which is bounded all the same
      ZuShape const* const volume = solid->lowerFidelityRepresentation();
      bool const exists = kind >= 0 && kind != 10 && kind < 13 && solid->type() != ZuShape::HALF_SPACE;
      ASSERT_EQ(volume != nullptr, exists);
      if (!exists) continue;
      EXPECT_EQ(volume->type(), std::max(kind, 1));
      EXPECT_EQ(volume->surfaceProperty(), "Bounding");
      ZuDataMap const* color = nullptr;
      EXPECT_TRUE(volume->lookup("Bounding", color) && *color == ZuDataMap::boundingColor());
      EXPECT_EQ(volume->higherFidelityRepresentation(), solid.get());
      bool const isExempt = kind == 3 && solid->type() == 4;  // a sphere encloses no capsule
      for (int k = 0; k < 100 && !isExempt; ++k) {
        EXPECT_LE(volume->distanceTo(solid->computeSupportPoint(spiral(k, 100))), 1e-10);
      }
      solid->deleteBoundingVolumes();
    }
  }
}

TEST_F(PairTable, HalfSpacesThatFaceEachOtherHaveADistance) {
  ZuHalfSpace const a(ZuPlane({1, 2, 3}, {1, 2, 2}));
  ZuVector const n = a.normal();
  for (double const gap : {0.75, -0.5}) {
    Pose const x({0.5, -1.0, 2.0}, ZuOrientation(0.5, -0.5, 0.1, 0.7));
    ZuHalfSpace b(ZuPlane(x.inverse() * (ZuVector(1, 2, 3) + n * gap + ZuVector(2, -1, 0) * 3.0),
                          x.orientation().inverseTimes(-n)));
    ZuVector w1, w2;
    EXPECT_NEAR(witness(a, b, x, w1, w2), gap, 1e-14);
    EXPECT_TRUE((x * w2 - w1).approxEq(n * gap, 1e-14));
    EXPECT_EQ(touch(a, b, x), gap < 0.0);
    b.setPlane(ZuPlane(b.plane().basePoint(), b.normal() + ZuVector(1e-9, 0, 0)));
    PrintSink sink;
    EXPECT_TRUE(touch(a, b, x));
    EXPECT_EQ(distance(a, b, x), 0.0);
    EXPECT_TRUE(isRefusal(sink.take(), 9, 9));
  }
}

TEST_F(PairTable, HalfSpacesFitScaleAndCutSegments) {
  ZuHalfSpace half(ZuPlane({1, 2, 3}, {0, 0, 2}));
  EXPECT_EQ(half.distanceTo(ZuLineSegment({0, 0, 5}, {9, 0, 2})), -1.0);
  ZuShapePointEvent event;
  ASSERT_TRUE(half.intersectLineSegment(ZuLineSegment({0, 0, 5}, {0, 0, 1}), event));
  EXPECT_TRUE(event.entry.t == 0.5 && event.exit.t == 1.0 && event.endsInside && !event.startsInside);
  EXPECT_EQ(event.entry.normal, ZuVector(0, 0, 1));
  ASSERT_TRUE(half.intersectLineSegment(ZuLineSegment({0, 0, 3}, {0, 0, 4}), event));
  EXPECT_TRUE(event.entry.t == 0.0 && event.exit.t == 0.0);
  EXPECT_FALSE(half.intersectLineSegment(ZuLineSegment({0, 0, 3.001}, {0, 0, 4}), event));
  half.fitToPoints(ZuXmlVectorVector({{5, 5, -2}, {7, 0, -4}}));
  EXPECT_EQ(half.distanceTo(ZuVector(0, 0, 0)), 2.0);
  half.scaleBy(-3.0);
  EXPECT_EQ(half.distanceTo(ZuVector(0, 0, 5)), 1.0);
  EXPECT_EQ(half.normal(), ZuVector(0, 0, -1));
  for (ZuVector const& d : {ZuVector(), ZuVector(std::nan(""), 0, 0), ZuVector(1e300, 1, 1)}) {
    EXPECT_TRUE(std::isfinite(half.computeSupportPoint(d).mag()));
  }
}
