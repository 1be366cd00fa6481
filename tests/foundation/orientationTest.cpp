#include "foundation/zuOrientation.h"

#include <Eigen/Geometry>
#include "tests/testValues.h"

namespace {

double const thePi = 3.14159265358979323846;

using Peer = Eigen::Quaternion<long double>;

Peer peerOf(ZuOrientation const& q) { return Peer(q[0], q[1], q[2], q[3]).normalized(); }

ZuVector rotatedByPeer(Peer const& q, ZuVector const& v) {
  Eigen::Matrix<long double, 3, 1> const r = q * Eigen::Matrix<long double, 3, 1>(v.x(), v.y(), v.z());
  return ZuVector(static_cast<double>(r[0]), static_cast<double>(r[1]), static_cast<double>(r[2]));
}

/// Random rotations, and half turns about and near the axes, where the terms of a rotation matrix cancel.
std::vector<ZuOrientation> oblique(RandomValues& random) {
  std::vector<ZuOrientation> all = {{}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, -1.0}};
  for (int i = 0; i < 300; ++i) all.push_back(random.orientation());
  for (int i = 0; i < 100; ++i) {
    double const s = random.scale(1e-18, 1e-2);
    all.insert(all.end(), {{s, 0.0, -1.0, s * s}, {s, 1.0, s, 0.0}, {-s, s, 0.0, 1.0}});
  }
  return all;
}

}  // namespace

TEST(Orientation, RotationsAgreeWithExtendedPrecisionAndMatrixColumnsAreTheTurnedAxes) {
  TracedValues random(21);
  for (ZuOrientation const& a : oblique(random)) {
    ZuOrientation const b = random.orientation();
    ZuVector const v = random.vector(), u = random.vector();
    EXPECT_TRUE((a * v).approxEq(rotatedByPeer(peerOf(a), v), 4e-15));
    EXPECT_TRUE(a.inverseTimes(v).approxEq(rotatedByPeer(peerOf(a).conjugate(), v), 4e-15));
    EXPECT_TRUE((a * b * v).approxEq(rotatedByPeer(peerOf(a) * peerOf(b), v), 6e-15));
    EXPECT_TRUE((a.inverse() * (a * v)).approxEq(v, 6e-15));
    ZuVector first = v, second = u, copy = v;
    a.transform(first, second, second, first);
    a.transform(copy);
    EXPECT_TRUE(second == a * v && first == a * u && copy == a * v);
    ZuVector c[3], r[3];
    a.getDcmColumns(c[0], c[1], c[2]);
    a.getDcmRows(r[0], r[1], r[2]);
    for (unsigned int i = 0; i < 3; ++i) {
      EXPECT_TRUE(c[i].approxEq(a * ZuVector(i == 0, i == 1, i == 2), 1e-15));
      EXPECT_EQ(r[i], ZuVector(c[0][i], c[1][i], c[2][i]));
    }
    ZuOrientation back;
    EXPECT_TRUE(back.setFromDcmColumns(c[0], c[1], c[2]) && back.approxEq(a, 1e-15));
  }
}

TEST(Orientation, WhatIsNoRotationIsRefusedAndChangesNothing) {
  PrintSink sink;
  ZuVector const x = ZuVector::xVector(1.0), y = ZuVector::yVector(1.0), z = ZuVector::zVector(1.0);
  ZuVector const bad[][3] = {{x, y, -z},         {x, y, z * 1.001},
                             {x, y, y},          {x, y + x * 0.001, z},
                             {ZuVector(), y, z}, {x, y, ZuVector(0.0, 0.0, std::nan(""))}};
  ZuOrientation q = ZuOrientation::testObject();
  for (auto const& c : bad) EXPECT_FALSE(q.setFromDcmColumns(c[0], c[1], c[2]));
  EXPECT_EQ(sink.take().size(), std::size(bad));
  EXPECT_FALSE(q.setFromAngleAxis(1.0, ZuVector()) || q.setFromAngleAxis(HUGE_VAL, x) || q[4] != 0.0);
  EXPECT_EQ(q, ZuOrientation::testObject());
  EXPECT_EQ(sink.take(), (Messages{"ZuOrientation::setFromAngleAxis-->no rotation (angle 1, axis 0 0 0)",
                                   "ZuOrientation::setFromAngleAxis-->no rotation (angle inf, axis 1 0 0)",
                                   "ZuOrientation::operator[]-->invalid index (4)"}));
  EXPECT_TRUE(q.setFromAngleAxis(0.0, ZuVector()) && q == ZuOrientation());
  EXPECT_TRUE(q.setFromDcmColumns(x + y * 3e-5, y - x * 3e-5, z) && q.approxEq(ZuOrientation(), 2e-5));
}

TEST(Orientation, EveryQuaternionIsUnitAndUnitOnesKeepTheirBits) {
  TracedValues random(23);
  for (int i = 0; i < 5000; ++i) {
    double const s = random.scale(1e-300, 1e300);
    ZuOrientation const q(s * random.real(), s * random.real(), s * random.real(), s * random.real());
    EXPECT_NEAR(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3], 1.0, 1e-15);
    EXPECT_EQ(ZuOrientation(q[0], q[1], q[2], q[3]), q);
  }
  for (ZuOrientation const& none : {ZuOrientation(0, 0, 0, 0), {1.0, HUGE_VAL, 0, 0}, {0, 0, NAN, 2.0}})
    EXPECT_EQ(none, ZuOrientation());
  EXPECT_EQ(ZuOrientation(0.0, 0.0, 5e-324, 0.0), ZuOrientation(0.0, 0.0, 1.0, 0.0));
}

TEST(Orientation, AngleAndAxisBetweenTakeThisToTheOther) {
  TracedValues random(24);
  for (int i = 0; i < 500; ++i) {
    ZuOrientation const from = random.orientation();
    double const turn = i % 2 == 0 ? random.scale(1e-12, thePi) : thePi - random.scale(1e-12, 1.0);
    ZuVector const about = random.direction();
    ZuOrientation rotation;
    EXPECT_TRUE(rotation.setFromAngleAxis(turn, about * random.scale(1e-200, 1e200)));
    ZuOrientation const to = rotation * from;
    for (ZuOrientation const& same : {to, ZuOrientation(-to[0], -to[1], -to[2], -to[3])}) {
      double angle = -1.0;
      ZuVector axis;
      from.angleAxisBetween(same, angle, axis);
      EXPECT_NEAR(angle, turn, 2e-15);
      EXPECT_LE((axis - about).mag() * std::sin(0.5 * turn), 2e-15);
    }
  }
  double angle = -1.0;
  ZuVector axis;
  ZuOrientation::testObject().angleAxisBetween(ZuOrientation::testObject(), angle, axis);
  EXPECT_TRUE(angle == 0.0 && axis == ZuVector::xVector(1.0));
}

TEST(Orientation, LongChainsOfProductsStayRotations) {
  ZuOrientation q;
  for (int i = 0; i < 1000000; ++i) q = ZuOrientation(0.9, 0.3, -0.2, 0.1) * q;
  EXPECT_NEAR((q * ZuVector(2.0, 3.0, 6.0)).mag(), 7.0, 5e-14);
}

TEST(Orientation, RotationsAboutAxesFollowTheRightHandRule) {
  ZuOrientation q;
  EXPECT_TRUE((q.xRotation(thePi / 2) * ZuVector::yVector(1.0)).approxEq(ZuVector::zVector(1.0), 1e-15));
  EXPECT_TRUE((q.yRotation(thePi / 2) * ZuVector::zVector(1.0)).approxEq(ZuVector::xVector(1.0), 1e-15));
  EXPECT_TRUE((q.zRotation(thePi / 2) * ZuVector::xVector(1.0)).approxEq(ZuVector::yVector(1.0), 1e-15));
  ZuOrientation const inOrder = ZuOrientation(q).xRotation(0.3) * ZuOrientation(q).yRotation(-1.1) * q.zRotation(2.5);
  q.setFrom123Euler(0.3, -1.1, 2.5);
  EXPECT_TRUE(q.approxEq(inOrder, 2e-15));
}

TEST(Orientation, ApproximateEqualityKnowsThatOppositeQuaternionsTurnAlike) {
  ZuOrientation const q = ZuOrientation::testObject(), opposite(-q[0], -q[1], -q[2], -q[3]);
  EXPECT_TRUE(q != opposite && q.approxEq(opposite, 0.0));
  EXPECT_FALSE(q.approxEq(ZuOrientation(q[0], -q[1], -q[2], -q[3]), 0.1));
}
