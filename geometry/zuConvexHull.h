// zuConvexHull.h - convex hulls of points in space and in the plane. Group: convex engine.
#pragma once

#include <memory>
#include <vector>

#include "foundation/zuXmlVectorType.h"
#include "foundation/zuXmlVectorVector.h"
#include "geometry/zuGjkTriangle.h"
#include "geometry/zuPolygon.h"
#include "geometry/zuTriangle.h"

/// Computes convex hulls with the Qhull library (Barber et al. 1996) and hands them out in five forms. An object keeps
/// two work buffers, which only grow; copies share nothing and start without buffers.
///
/// Hulls in space:
/// 1. The points are disturbed by about 4e-11 of their extent before the hull is computed, so that every facet is a
///    triangle whatever the input: a face of a box gives two, and a flat set gives a hull without volume, both sides of
///    it. What is handed out are the points as they came in. A point may thus stand out of a facet by about that much,
///    and a point that lies on the surface, no corner of the exact hull, may be a corner of this one. The disturbance
///    is the same for the same input; it grows by powers of ten where Qhull can't make a hull with it.
/// 2. The surface is closed and its facets are oriented alike, in Qhull's order: seen from outside, the corners 0, 1, 2
///    run CLOCKWISE. `ZuTriangle::reverse()` turns a facet over where the other order is wanted.
/// 3. At least four points are needed. They may lie in one plane, on one line or in one place; spansVolume() tells
///    beforehand whether the hull will be a solid.
/// 4. The scale and the place of the points do not matter: they are brought to the size of 1, and near the origin when
///    they are far from it.
///
/// Failures: a coordinate that is not finite, or too many points, print a message; the result is false and empty. Input
/// that Qhull itself rejects (fewer than four points, or in the plane fewer than three or all on one line) ENDS THE
/// PROCESS, with Qhull's message and exit code. There is no way to recover.
///
/// Threads: Qhull's state is one per process. Only one hull may be computed at a time in a process, whatever the number
/// of objects; no lock is taken.
class ZU_API ZuConvexHull {
 public:
  ZuConvexHull() = default;
  ZuConvexHull(ZuConvexHull const&) {}
  ZuConvexHull& operator=(ZuConvexHull const&) { return *this; }
  virtual ~ZuConvexHull() = default;

  /// One flag per point: whether it is a corner of some facet.
  virtual bool computeConvexHull(ZuXmlVectorVector const& points, std::vector<bool>& onHull);
  /// The corners of the hull, in the order of the input; the output may be the input.
  virtual bool computeConvexHull(ZuXmlVectorVector const& points, ZuXmlVectorVector& hullPoints);
  /// One fresh facet per triangle, with the places of its corners in the input; and, if asked for, the flags.
  virtual bool computeConvexHull(std::vector<ZuVector> const& points, std::vector<ZuGJKTriangle>& triangles,
                                 std::vector<bool>* onHull = nullptr);
  /// One polygon of three corners per triangle.
  virtual bool computeConvexHull(ZuXmlVectorVector const& points, ZuXmlVectorType<ZuPolygon>& polygons);
  virtual bool computeConvexHull(ZuXmlVectorVector const& points, ZuXmlVectorType<ZuTriangle>& triangles);
  /// The corners of the hull of n points (x, y) of a plane, as ascending places in the input (not along the boundary).
  /// Without disturbance: points within rounding (1e-15 of the extent) of an edge are no corners. False, with no
  /// corners, when Qhull names a point that does not exist.
  virtual bool compute2DConvexHull(double const* xy, unsigned int const& n, std::vector<unsigned int>& hullIndices);

  /// Whether the points have a hull that is a solid, by a margin that Qhull's disturbance can't bridge: some point is
  /// away from a longest line among them by more than 1e-8 of its length, and some point from the plane of both by as
  /// much. Such points, four or more, never make Qhull fail; others may be handed to it, but the disturbance decides
  /// the shape. Three passes over the points; false when a coordinate is not finite.
  static bool spansVolume(ZuVector const* points, std::size_t numberOfPoints);

  /// Whether the hull of a known set comes out as it must.
  bool selfTest();

  /// Numbers of doubles and of indices that the work buffers hold: 3 and 6 n + 12 for the largest n so far.
  std::size_t coordinateCapacity() const { return m_CoordinateCapacity; }
  std::size_t indexCapacity() const { return m_IndexCapacity; }

 private:
  bool reserve(char const* function, std::size_t numberOfPoints, std::size_t coordinates, std::size_t indices);
  /// Leaves the corners in m_Indices; returns the number of triangles, 0 after a failure.
  int triangulate(ZuVector const* points, std::size_t numberOfPoints);
  template <class Facet>
  bool computeFacets(ZuXmlVectorVector const& points, ZuXmlVectorType<Facet>& facets);
  void markCorners(int numberOfTriangles, std::size_t numberOfPoints, std::vector<bool>& onHull) const;

  std::unique_ptr<double[]> m_Coordinates;
  std::unique_ptr<int[]> m_Indices;
  std::size_t m_CoordinateCapacity = 0;
  std::size_t m_IndexCapacity = 0;
};

/// Qhull on n points of space, with its options "Qt QJ Pp" (triangles, disturbed input, no warnings about precision):
/// writes the places of each triangle's corners, in Qhull's order, behind each other to `indices`, where there must be
/// room for 6 n + 12, and their number to `numTriangles`. Coordinates are x, y, z of each point and stay as they are.
/// A coordinate that is not finite prints a message and gives no triangles. A Qhull error ends the process; threads:
/// see ZuConvexHull.
ZU_API void qHull(double* coords, int numPoints, int*& indices, int& numTriangles);

/// Qhull on n points of a space of any dimension from 2, without options: nothing is disturbed, and facets that are
/// flat to rounding are merged. Writes the places of each facet's corners in the order of Qhull's set. `numFacets` is
/// their number divided by the dimension: the number of facets when each has as many corners, as always in the plane.
/// The room that `indices` must have is the caller's to know: 2 n in the plane, 6 n - 12 in space.
ZU_API void qHull(double* coords, int numPoints, int dimension, int*& indices, int& numFacets);
