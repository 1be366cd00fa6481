// zuTrianglePairPrivate.h - where two triangles are nearest. Group: meshes.
#pragma once

#include "geometry/zuShapeProximityData.h"
#include "geometry/zuTriangleKernelsPrivate.h"

/// A nearest point of each of two triangles, and the feature on which it lies: the smallest one that holds it.
struct ZuTrianglePair {
  ZuVector point1;
  ZuVector point2;
  ZuShapeProximityData::ZuClosestType feature1 = ZuShapeProximityData::POINT;
  ZuShapeProximityData::ZuClosestType feature2 = ZuShapeProximityData::POINT;
};

/// The two points are one when the triangles meet.
ZuTrianglePair zuNearestPair(ZuTriangleKernels::Triangle const& t1, ZuTriangleKernels::Triangle const& t2);

/// Parameters in [0, 1] of the first and the last point of a segment that a triangle holds; the two are known to meet.
struct ZuSegmentPart {
  double first = 1.0;
  double last = 0.0;

  void include(double t) {
    first = t < first ? t : first;
    last = t > last ? t : last;
  }
};
ZuSegmentPart zuCommonPart(ZuTriangleKernels::Triangle const& t, ZuTriangleKernels::Segment const& s);

/// Exactly an end of the segment at 0 and 1.
inline ZuVector zuPointAt(ZuTriangleKernels::Segment const& s, double t) {
  return t >= 1.0 ? s.q : s.p + t * (s.q - s.p);
}
