#include "geometry/zuLozenge.h"

#include "tests/randomSolids.h"

namespace {

class Lozenge : public SolidTest {};

}  // namespace

TEST_F(Lozenge, TouchingIsContact) {
  ZuLozenge const flat(ZuRectangle({0, 0, 0}, {2, 0, 0}, {0, 1, 0}), 0.5);
  EXPECT_TRUE(touch(flat, ZuSphere(ZuVector(2, 1, 1), 0.5, 3), {}));
  EXPECT_EQ(distance(flat, flat, ZuCoordinateSystemTransformation(ZuVector(0, 0, 1))), 0.0);
}

TEST_F(Lozenge, SupportPointsAndVolumeAgreeWithTheDistance) {
  TracedValues random(62);
  for (int i = 0; i < 1000; ++i) {
    ZuLozenge const l = randomLozenge(random);
    ZuVector const direction = random.direction(), p = l.supportPoint(direction);
    EXPECT_NEAR(l.distanceTo(p + direction), 1.0, 1e-14);
    EXPECT_NEAR(l.distanceTo(p), 0.0, 1e-14);
  }
  EXPECT_NEAR(ZuLozenge(ZuRectangle({}, {1, 0, 0}, {0, 2, 0}), 0.5).volume(), 8.0 + 1.5 * M_PI + M_PI / 6.0, 1e-14);
}

TEST_F(Lozenge, FitsEncloseTheirSourceTightly) {
  TracedValues random(63);
  ZuLozenge const original(ZuRectangle({1, 2, 3}, {1, 1, 0}, {0, 0, 0.5}), 0.3);
  ZuXmlVectorVector points;
  for (int i = 0; i < 3000; ++i) points.pushBack(original.supportPoint(random.direction()));
  ZuLozenge fit;
  fit.fitToPoints(points);
  EXPECT_NEAR(fit.volume() / original.volume(), 1.0, 0.02);
  fit.fitFromShape(ZuCapsule(ZuLineSegment({0, 0, 0}, {0, 0, 2}), 0.5));
  EXPECT_TRUE(fit.distanceTo(ZuVector(0, 0.5, 1)) == 0.0 &&
              fit.volume() == ZuCapsule(ZuLineSegment({0, 0, 0}, {0, 0, 2}), 0.5).volume());
  checkFitsToRealMeshes<ZuLozenge>(2.18);  // 2.174 when this was written
}

TEST_F(Lozenge, PairsThatItDoesNotAnswerPrintALine) {
  Disguised<ZuLozenge> const other(ZuShape::EXTENT_UNION);
  ZuLozenge l = ZuLozenge::testObject();
  PrintSink sink;
  EXPECT_EQ(distance(l, other, {}), 0.0);
  l.fitFromShape(other);
  l.fitToPoints({});
  EXPECT_EQ(sink.take(), (Messages{"ZuLozenge::distanceTo-->Distance from shapeID (8) to shapeID (13) not supported",
                                   "ZuLozenge::fitFromShape-->expand from shapeID (8) to shapeID (13) not supported",
                                   "ZuLozenge::fitToPoints-->no points, or not finite (0 points)"}));
  EXPECT_EQ(l, ZuLozenge::testObject());
}
