// zuSmoothStepPrivate.h - Newton's step of a distance iteration on curved solids. Group: convex engine.
#pragma once

#include "geometry/zuCoreSimplexPrivate.h"

/// Moves the points of a simplex along their features (corners, edges, rims, curved sides) to where these are nearest.
/// The steps of an iteration on curved solids come nearer by a factor each; this one ends it.
///
/// w(n) is the point of the features where n is normal to them, and the flat directions of the features are the edges e
/// of the simplex. Where the features are nearest, w = -|w| n and n . e = 0, which Newton's method on the directions n
/// finds: of the tangents T, (T' J T + d T' T) a = -T' w with the derivative J of w, which is positive semidefinite,
/// and the distance d = -n . w / n^2; then n + T a is the next. Wrong features cost time only: what comes out are
/// points of the set, and they are taken if they are nearer.
class ZuSmoothStep {
 public:
  /// @param v the nearest point of the simplex, and its square; nothing is changed unless there is a nearer one
  /// @param nearest set to the nearest face of the new simplex, which the caller takes
  static bool move(ZuCoreDifference& set, ZuCoreSimplex& simplex, double square, ZuVector const& v,
                   ZuCoreSimplex::Nearest& nearest);
};
