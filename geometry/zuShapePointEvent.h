// zuShapePointEvent.h - where a line segment enters and leaves a solid. Group: shape queries.
#pragma once

#include "foundation/zuTypes.h"
#include "foundation/zuVector.h"

/// One point of the surface of a solid on a line segment.
struct ZuShapeSurfacePoint {
  ZuReal t = 0.0;   ///< parameter on the segment: 0 at endpoint 0, 1 at endpoint 1
  ZuVector point;   ///< in the frame of the segment
  ZuVector normal;  ///< unit outward normal of the solid there; zero where the solid has none
};

/// The part of a line segment that lies in a convex solid: from `entry` to `exit`.
///
/// A segment that only touches has entry equal to exit. A segment that starts inside has its entry at t = 0, one that
/// ends inside its exit at t = 1; the flags tell that no surface is there, and the normals are then zero. For a solid
/// that is not convex, entry and exit are the first and the last point of the surface on the segment.
struct ZuShapePointEvent {
  bool hit = false;           ///< false: the two do not meet, and nothing else here has a meaning
  bool startsInside = false;  ///< endpoint 0 lies strictly inside
  bool endsInside = false;    ///< endpoint 1 lies strictly inside
  unsigned int shapeID = 0;   ///< proximity database index of the shape that was hit
  ZuShapeSurfacePoint entry;
  ZuShapeSurfacePoint exit;
};
