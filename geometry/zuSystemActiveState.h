// zuSystemActiveState.h - where the shapes of a system are now. Group: shape queries.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"
#include "geometry/zuShapeStateCacheKey.h"

class ZuShape;
class ZuSystemShapeProximityState;

/// What a query over a whole system asks of the program that runs the system.
class ZU_API ZuSystemActiveState {
 public:
  virtual ~ZuSystemActiveState() = default;
  /// Null when there is no such shape.
  virtual ZuShape const* shape(ZuShapeStateCacheKey const& key) const = 0;
  /// Sets `frame` so that p_world = frame * p_link; false, and `frame` is unchanged, when there is no such link.
  virtual bool linkFrame(ZuLinkStateCacheKey const& key, ZuCoordinateSystemTransformation& frame) const = 0;
  /// The memory of the pairs of the system.
  virtual ZuSystemShapeProximityState& proximityState() = 0;

 protected:
  ZuSystemActiveState() = default;
  ZuSystemActiveState(ZuSystemActiveState const&) = default;
  ZuSystemActiveState& operator=(ZuSystemActiveState const&) = default;
};
