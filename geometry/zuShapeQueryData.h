// zuShapeQueryData.h - one question to a pair of shapes of a system, and its answer. Group: shape queries.
#pragma once

#include "foundation/zuVector.h"
#include "geometry/zuShapeStateCacheKey.h"

/// What is asked: the pair, and how far apart the answer stops to matter.
struct ZuShapeQueryDescriptor {
  ZuLinkStateCacheKey key1;        ///< link of the shape that is asked
  ZuShapeStateCacheKey key2;       ///< the other shape
  ZuReal bound = 1e300;            ///< m; pairs that are farther apart need no exact distance
  bool useBoundingVolumes = true;  ///< walk the coarser levels first
};

/// What is answered.
struct ZuShapeQueryResult {
  ZuReal distance = 0.0;  ///< signed distance, m; a lower bound, above the bound, when a coarser level decided
  ZuVector witness1;      ///< nearest point of shape 1, in the frame of its link; zero when a coarser level decided
  ZuVector witness2;      ///< nearest point of shape 2, in the frame of its link; likewise
};

/// See ZuShape::query.
struct ZuShapeQueryData {
  ZuShapeQueryDescriptor descriptor;
  ZuShapeQueryResult result;
};
