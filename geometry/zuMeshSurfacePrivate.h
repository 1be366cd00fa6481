// zuMeshSurfacePrivate.h - the triangles of a mesh, in boxes. Group: meshes.
#pragma once

#include <vector>

#include "foundation/zuXmlVectorVector.h"
#include "geometry/zuAABBHierarchyGeneration.h"
#include "geometry/zuLineAndNeighbors.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuTriangleKernelsPrivate.h"

/// For each point the first of those that are equal to it; a point that is not finite counts as point 0. Surfaces that
/// are stored as loose triangles close.
std::vector<unsigned int> zuWeld(ZuXmlVectorVector const& points);

/// A surface of triangles with a hierarchy of boxes over them: what the geometric queries of a mesh work on. It is a
/// snapshot of the points and facets from which it was built. Lengths are in m, in the frame of the mesh.
///
/// Queries go down the hierarchy, the nearer box first, and leave out what is farther than the best so far; none of
/// them allocates. Contact and inside are decided exactly for the coordinates as they are.
class ZuMeshSurface {
 public:
  using Box = ZuAABBHierarchyGeneration::Box;
  using Node = ZuAABBHierarchyGeneration::Node;
  using Triangle = ZuTriangleKernels::Triangle;
  using Segment = ZuTriangleKernels::Segment;

  /// Distance to a surface without triangles.
  static constexpr double m_theFarDistance = 1e300;

  /// Cuts facets into triangles; see zuCutLoop(). Facets with a corner that is not there or not finite are left out.
  class Builder {
   public:
    explicit Builder(ZuXmlVectorVector const& points) : m_Points(points) {}
    void add(ZuFacetIndex const& facet, ZuListView<unsigned int> loop);

   private:
    friend class ZuMeshSurface;
    ZuXmlVectorVector const& m_Points;
    std::vector<unsigned int> m_Corners;  ///< three for each triangle
    std::vector<ZuFacetIndex> m_Facets;   ///< one for each triangle
  };
  explicit ZuMeshSurface(Builder const& builder);

  ZuAABBHierarchyGeneration const& hierarchy() const { return m_Hierarchy; }
  Node const& node(unsigned int i) const { return m_Hierarchy.nodes()[i]; }
  /// The triangles, in the order of the hierarchy.
  std::vector<Triangle> const& triangles() const { return m_Triangles; }
  /// One point of each connected piece of the surface.
  std::vector<ZuVector> const& pieces() const { return m_Pieces; }
  /// Whether the surface has no open edges, equal corners being one.
  bool isClosed() const { return m_Caps.empty(); }

  // Distances to the surface, never negative.
  double distanceTo(ZuVector const& point) const;
  double distanceTo(Segment const& segment) const;
  double distanceTo(Triangle const& triangle) const;

  bool meets(Segment const& segment) const;
  bool meets(Triangle const& triangle) const;

  /// The first and the last point of the surface on the segment; false when there is none, and then both are unchanged.
  bool findCrossings(Segment const& segment, ZuShapeSurfacePoint& first, ZuShapeSurfacePoint& last) const;

  /// Whether the surface winds more than half a time about the point.
  bool isInside(ZuVector const& point) const;

  /// The corner nearest to the point, of one group, or of all for theZuNoIndex; theZuNoIndex when there is none.
  unsigned int nearestVertex(ZuVector const& point, unsigned int group) const;
  /// The corner farthest along the direction, to rounding; theZuNoIndex when there is none.
  unsigned int farthestVertex(ZuVector const& direction) const;

 private:
  /// A triangle that closes an opening, as often as `times` says: below 0 when it runs the other way.
  struct Cap {
    Triangle triangle;
    int times;
  };
  void findCaps(std::vector<unsigned int> const& welded, ZuXmlVectorVector const& points);
  void findPieces(std::vector<unsigned int> const& welded, ZuXmlVectorVector const& points);
  template <class Figure, class Bound>
  double nearest(Figure const& figure, Bound const& bound) const;
  template <class Figure>
  bool meetsFigure(Figure const& figure) const;

  ZuAABBHierarchyGeneration m_Hierarchy;
  std::vector<Triangle> m_Triangles;
  std::vector<unsigned int> m_Corners;  ///< three places in the list of points for each triangle
  std::vector<ZuFacetIndex> m_Facets;
  std::vector<Cap> m_Caps;
  std::vector<ZuVector> m_Pieces;
  mutable unsigned int m_LastNearest = 0;   ///< a triangle
  mutable unsigned int m_LastFarthest = 0;  ///< a place in m_Corners
};
