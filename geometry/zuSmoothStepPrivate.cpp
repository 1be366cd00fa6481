#include "geometry/zuSmoothStepPrivate.h"

namespace {

/// Newton's steps; from where an iteration has found its features three to four do.
constexpr int theMostSteps = 6;
/// Steps shorter than this, rad, are the last: what is left is of their square.
constexpr double theLastStep = 1e-5;
/// Edges shorter than this part of the size of the numbers are none; two with a sine below its root are one.
constexpr double theNoEdge = 1e-8;

/// The edges of a simplex that are no multiples of each other.
struct Edges {
  ZuVector edge[2];
  int count = 0;

  Edges(ZuCorePoint const* points, int number, double extent) {
    for (int i = 1; i < number; ++i) {
      ZuVector const e = points[i].y - points[0].y;
      double const square = e.magSquared();
      if (!(square > theNoEdge * theNoEdge * extent * extent)) continue;
      if (count == 1 && !(e.cross(edge[0]).magSquared() > theNoEdge * square * edge[0].magSquared())) continue;
      edge[count++] = e;
    }
  }
  /// n without its part along the edges; 0 when it is nothing else.
  ZuVector normal(ZuVector const& n) const {
    if (count == 0) return n;
    if (count == 1) return n - edge[0] * (edge[0].dot(n) / edge[0].magSquared());
    ZuVector const across = edge[0].cross(edge[1]);
    return across.dot(n) < 0.0 ? -across : across;
  }
};

/// Newton's step from n along its one or two tangents, which are of any length, as n is. False where the features have
/// no distance.
bool turn(ZuCoreDifference const& set, ZuCorePoint const& w, Edges const& edges, ZuVector& n, bool& isLast) {
  double const square = n.magSquared(), distance = -n.dot(w.y) / square;
  if (!(distance > 0.0)) return false;
  ZuVector const s = n.cross(edges.count == 1        ? edges.edge[0]
                             : std::abs(n.x()) < 0.6 ? ZuVector::xVector(1.0)
                                                     : ZuVector::yVector(1.0));
  double const atS = -s.dot(w.y), ss = set.bend(w, n, s, s) + distance * s.magSquared();
  ZuVector step;
  if (edges.count == 1) {
    step = s * (atS / ss);
  } else {
    ZuVector const t = n.cross(s);
    double const atT = -t.dot(w.y), st = set.bend(w, n, s, t), tt = set.bend(w, n, t, t) + distance * t.magSquared();
    step = (s * (tt * atS - st * atT) + t * (ss * atT - st * atS)) * (1.0 / (ss * tt - st * st));
  }
  n += step;
  isLast = step.magSquared() < theLastStep * theLastStep * square;
  return true;
}

}  // namespace

bool ZuSmoothStep::move(ZuCoreDifference& set, ZuCoreSimplex& simplex, double square, ZuVector const& v,
                        ZuCoreSimplex::Nearest& nearest) {
  ZuVector n = -v;
  ZuCorePoint points[3];
  auto const moveAll = [&] {
    for (int k = 0; k < simplex.count(); ++k) set.onFeatures(simplex.point(k), n, points[k]);
  };
  moveAll();
  Edges const edges(points, simplex.count(), set.extent());
  n = edges.normal(n);
  bool isLast = edges.count == 2;
  for (int i = 0; i < theMostSteps && !isLast; ++i) {
    set.onFeatures(simplex.point(0), n, points[0]);
    if (!turn(set, points[0], edges, n, isLast)) return false;
  }
  moveAll();
  ZuCoreSimplex moved;
  nearest = moved.takeAll(points, simplex.count());
  if (!(nearest.square < square)) return false;
  simplex = moved;
  return true;
}
