// zuPointSpread.h - centre, size, principal axes and extreme points of a point set. Group: fitting.
#pragma once

#include <cstddef>
#include <vector>

#include "foundation/zuVector.h"

/// How a set of points lies in space; the start of every fit. A plain value.
struct ZU_API ZuPointSpread {
  ZuVector center;    ///< mean of the points
  double size = 0.0;  ///< largest distance of a point from the centre
  ZuVector axes[3] = {ZuVector::xVector(1.0), ZuVector::yVector(1.0), ZuVector::zVector(1.0)};
  ///< principal axes from the longest to the shortest: unit vectors, perpendicular, right-handed

  /// Cost: two passes.
  ZuPointSpread(ZuVector const* points, std::size_t count);

  /// The farthest points in about 130 directions that are spread evenly in the frame of the axes; each point once.
  std::vector<ZuVector> extremePoints(ZuVector const* points, std::size_t count) const;
};

/// The frame in which a point set is as wide along each of its principal axes, so that no direction is special: from -1
/// to 1 at the most. What encloses the set with the least volume here does so there, stretched. A plain value.
struct ZU_API ZuPointStretch {
  ZuVector center;
  ZuVector axes[3];
  double extents[3] = {0.0, 0.0, 0.0};  ///< 0 along an axis along which the set is flat: its coordinate is 0 then

  /// Times the size of the set: an extent below is one of rounding, and the set is flat.
  static constexpr double m_theFlatSet = 1e-13;

  /// Cost: three passes.
  ZuPointStretch(ZuVector const* points, std::size_t count);
  /// Axes along which the set is not flat.
  int dimension() const;
  ZuVector to(ZuVector const& point) const;
  ZuVector from(ZuVector const& stretched) const;
};

/// False when there is no point, or one that is not finite.
ZU_API bool zuCanBeFitted(ZuVector const* points, std::size_t count);
