#include "geometry/zuTrianglePairPrivate.h"

#include <algorithm>
#include <cmath>

#include "geometry/zuExactSignsPrivate.h"

namespace {

using ZuTriangleKernels::closestPoint;
using ZuTriangleKernels::intersects;
using ZuTriangleKernels::Segment;
using ZuTriangleKernels::Triangle;
using Feature = ZuShapeProximityData::ZuClosestType;

Segment edgeOf(Triangle const& t, unsigned int i) {
  return i == 0 ? Segment{t.a, t.b} : (i == 1 ? Segment{t.b, t.c} : Segment{t.c, t.a});
}

ZuVector const& cornerOf(Triangle const& t, unsigned int i) { return i == 0 ? t.a : (i == 1 ? t.b : t.c); }

double parameterAt(Segment const& s, ZuVector const& point) {
  ZuVector const d = s.q - s.p;
  double const squared = d.magSquared();
  return squared > 0.0 ? std::clamp(d.dot(point - s.p) / squared, 0.0, 1.0) : 0.0;
}

/// What an edge of the triangle and a segment of its plane have in common.
void includeEdge(Segment const& edge, Segment const& s, ZuSegmentPart& part) {
  if (!intersects(Triangle{edge.p, edge.q, edge.q}, s)) return;
  ZuVector const u = s.q - s.p, v = edge.q - edge.p, n = u.cross(v);
  double const squared = n.magSquared();
  if (squared > 0.0) return part.include(std::clamp((edge.p - s.p).cross(v).dot(n) / squared, 0.0, 1.0));
  part.include(parameterAt(s, edge.p));
  part.include(parameterAt(s, edge.q));
}

/// The smallest feature of the triangle that holds a point of it: one at which the distance of the point is not more
/// than rounding.
Feature featureAt(Triangle const& t, ZuVector const& point) {
  double const size = std::sqrt(std::max(t.a.distanceSquaredTo(t.b), t.a.distanceSquaredTo(t.c)));
  double const rounding = 1e-14 * (size + point.mag());
  Feature feature = Feature::FACET;
  for (unsigned int i = 0; i < 3; ++i) {
    if (cornerOf(t, i).distanceTo(point) <= rounding) return Feature::POINT;
    Segment const edge = edgeOf(t, i);
    if (closestPoint(edge, point).distanceTo(point) <= rounding) feature = Feature::LINE;
  }
  return feature;
}

/// A common point of an edge of one triangle and the other one.
bool findCommonPoint(Triangle const& edges, Triangle const& t, ZuVector& common) {
  for (unsigned int i = 0; i < 3; ++i) {
    Segment const edge = edgeOf(edges, i);
    if (!intersects(t, edge)) continue;
    common = zuPointAt(edge, zuCommonPart(t, edge).first);
    return true;
  }
  return false;
}

struct Candidate {
  double squared = 1e300;
  ZuVector point1;
  ZuVector point2;

  void take(ZuVector const& p1, ZuVector const& p2) {
    double const distance = p1.distanceSquaredTo(p2);
    if (!(distance < squared)) return;
    squared = distance;
    point1 = p1;
    point2 = p2;
  }
};

/// The points inside two edges that are nearest to each other, if there are such; see ZuTriangleKernels.
void takeEdges(Segment const& s, Segment const& t, Candidate& best) {
  ZuVector const u = s.q - s.p, v = t.q - t.p, r = t.p - s.p, n = u.cross(v);
  double const squared = n.magSquared();
  if (!(squared > 0.0)) return;
  double const alongS = r.cross(v).dot(n) / squared, alongT = r.cross(u).dot(n) / squared;
  if (!(alongS > 0.0 && alongS < 1.0 && alongT > 0.0 && alongT < 1.0)) return;
  best.take(zuPointAt(s, alongS), zuPointAt(t, alongT));
}

}  // namespace

ZuSegmentPart zuCommonPart(Triangle const& t, Segment const& s) {
  ZuSegmentPart part;
  int const side0 = ZuExactSigns::side(t.a, t.b, t.c, s.p), side1 = ZuExactSigns::side(t.a, t.b, t.c, s.q);
  if (side0 != side1) {
    ZuVector const normal = (t.b - t.a).cross(t.c - t.a);
    double const d0 = normal.dot(s.p - t.a), d1 = normal.dot(s.q - t.a);
    part.include(d0 == d1 ? (side0 == 0 ? 0.0 : 1.0) : std::clamp(d0 / (d0 - d1), 0.0, 1.0));
    return part;
  }
  // In the plane of the triangle: from an end or an edge to an end or an edge.
  if (intersects(t, Segment{s.p, s.p})) part.include(0.0);
  if (intersects(t, Segment{s.q, s.q})) part.include(1.0);
  for (unsigned int i = 0; i < 3; ++i) includeEdge(edgeOf(t, i), s, part);
  return part;
}

ZuTrianglePair zuNearestPair(Triangle const& t1, Triangle const& t2) {
  ZuTrianglePair pair;
  if (intersects(t1, t2) && (findCommonPoint(t1, t2, pair.point1) || findCommonPoint(t2, t1, pair.point1))) {
    pair.point2 = pair.point1;
  } else {
    Candidate best;
    for (unsigned int i = 0; i < 3; ++i) {
      best.take(cornerOf(t1, i), closestPoint(t2, cornerOf(t1, i)));
      best.take(closestPoint(t1, cornerOf(t2, i)), cornerOf(t2, i));
      for (unsigned int j = 0; j < 3; ++j) takeEdges(edgeOf(t1, i), edgeOf(t2, j), best);
    }
    pair.point1 = best.point1;
    pair.point2 = best.point2;
  }
  pair.feature1 = featureAt(t1, pair.point1);
  pair.feature2 = featureAt(t2, pair.point2);
  return pair;
}
