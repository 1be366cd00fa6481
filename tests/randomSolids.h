// randomSolids.h - random solids of a core of points and a radius, thin and flat ones among them.
#pragma once

#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuSphere.h"
#include "tests/solidChecks.h"

inline ZuSphere randomBall(RandomValues& random) { return ZuSphere(random.vector(), random.real(0.0, 1.0), 3); }

/// Of any slenderness; one in eight is a ball.
inline ZuCapsule randomCapsule(RandomValues& random) {
  ZuVector const end = random.vector(0.8);
  ZuVector const delta = random.index(8) == 0 ? ZuVector() : random.vector(random.scale(0.01, 3.0));
  return ZuCapsule(ZuLineSegment(end, end + delta), random.real(0.0, 0.8));
}

/// One in six has a core without area.
inline ZuLozenge randomLozenge(RandomValues& random) {
  ZuVector const h0 = random.vector(0.8), h1 = random.index(6) == 0 ? ZuVector() : random.vector(0.8);
  return ZuLozenge(ZuRectangle(random.vector(0.5), h0, h1), random.real(0.05, 0.6));
}

/// Every third turned by right angles only, every third about z alone: where edges and faces become parallel.
inline ZuCoordinateSystemTransformation randomPose(RandomValues& random, double halfSide) {
  ZuCoordinateSystemTransformation pose = random.transformation(halfSide);
  unsigned int const kind = random.index(3);
  ZuOrientation turn;
  if (kind == 1) turn.setFrom123Euler(0.0, 0.0, random.real(-3.0, 3.0));
  if (kind == 2) turn.setFrom123Euler(M_PI_2 * random.index(4), M_PI_2 * random.index(4), M_PI_2 * random.index(4));
  if (kind != 0) pose.setOrientation(turn);
  return pose;
}

/// One in five is flat.
inline ZuBox randomBox(RandomValues& random) {
  ZuVector const extents(random.scale(0.05, 1.5), random.scale(0.05, 1.5), random.index(5) == 0 ? 0.0 : 0.5);
  return ZuBox(randomPose(random, 0.3), extents);
}

inline std::vector<ZuVector> endsOf(ZuLineSegment const& s) { return {s.endpoint0(), s.endpoint1()}; }

inline std::vector<ZuVector> cornersOf(ZuBox const& box) {
  ZuXmlVectorVector const& points = box.physicalExtent().points();
  return {points.begin(), points.end()};
}
