// zuShapeCollisionEvent.h - two shapes of a system that are closer than a margin. Group: shape queries.
#pragma once

#include "foundation/zuVector.h"
#include "geometry/zuShapeStateCacheKey.h"

/// What ZuShape::collisions reports of one pair.
struct ZuShapeCollisionEvent {
  ZuShapeStateCacheKey key1;  ///< the shape that was asked
  ZuShapeStateCacheKey key2;  ///< the shape that it meets
  ZuReal distance = 0.0;      ///< signed distance, m; at most 0 at contact
  ZuVector witness1;          ///< nearest point of shape 1, in the frame of its link
  ZuVector witness2;          ///< nearest point of shape 2, in the frame of its link
};
