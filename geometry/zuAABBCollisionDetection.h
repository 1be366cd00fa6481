// zuAABBCollisionDetection.h - nearest points of two meshes by their box hierarchies. Group: meshes.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"

class ZuShape;
class ZuShapeProximityData;

/// Compares the meshes of two shapes (their physical extents), convex or not, by going down both box hierarchies at
/// once; distances of triangles are exact and contact is decided without rounding, but for that of placing mesh 2 in
/// frame 1. There are no depths: meshes that touch or overlap have distance 0.
///
/// A processor remembers which triangles were nearest last, and starts from their distance: a moving pair is answered
/// faster by a processor of its own. That changes no distance; of several nearest pairs it may choose another one.
///
/// A plain value of a few words. One processor serves one thread at a time.
class ZU_API ZuAABBCollisionDetection {
 public:
  /// @param xform places shape 2 in the frame of shape 1: p_1 = xform * p_2
  /// @param data when not null, gets the nearest features (corner, edge or face of a triangle) as closest points 1, 2
  /// @param witness1,witness2 nearest points, each in its own shape's frame; of meshes that touch a common point, of a
  ///        mesh inside the solid of the other a corner of it
  /// @param distance m; 1e300, and the witness points are unchanged, when a mesh has no facets or
  ///        the transformation is not finite
  /// @return whether the solids touch or overlap
  bool nearestPoints(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& xform,
                     ZuShapeProximityData* data, ZuVector& witness1, ZuVector& witness2, double& distance) const;

  /// The vertex of the shape's mesh nearest to the witness point in `data` that lies on this mesh, or nearer to it than
  /// the other one does; theZuNoIndex for a mesh without facets.
  unsigned int nearPointID(ZuShape const& shape, ZuShapeProximityData const& data) const;

 private:
  mutable unsigned int m_LastTriangle1 = 0;
  mutable unsigned int m_LastTriangle2 = 0;
};
