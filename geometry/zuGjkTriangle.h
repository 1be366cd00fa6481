// zuGjkTriangle.h - facet of the polytope that a penetration search grows. Group: convex engine.
#pragma once

#include "foundation/zuExport.h"
#include "foundation/zuVector.h"

/// One triangle of a polytope around (or near) the origin, by the places of its corners in the search's list of points.
///
/// The default, which `reset()` restores: indices 0, flags false, both vectors zero, distance 0, valid 1. The class
/// does not compute: whoever builds the facet stores the point nearest to the origin and its distance, and the search
/// expands the facet of the smallest distance (the first such in its list; facets at 1e20 or more are never chosen).
///
/// How the barycentric coordinates of the nearest point are read: all three above 1e-16, it lies inside the facet; one
/// above 0.9999999999999999, it is that corner; otherwise it lies on the edge between the corners whose coordinates are
/// not zero.
///
/// A plain value of 80 bytes: trivially copyable, without allocation; as thread-safe as a double.
class ZU_API ZuGJKTriangle {
 public:
  constexpr ZuGJKTriangle() = default;
  constexpr ZuGJKTriangle(int index0, int index1, int index2) : m_VertexIndices{index0, index1, index2} {}

  constexpr void reset() { *this = ZuGJKTriangle(); }

  /// Index of the corner at position 0, 1 or 2. At any other position 0 is read and writing does nothing.
  constexpr int vertexIndex(unsigned int position) const { return position < 3 ? m_VertexIndices[position] : 0; }
  constexpr void setVertexIndex(unsigned int position, int index) {
    if (position < 3) m_VertexIndices[position] = index;
  }
  constexpr void setVertexIndices(int index0, int index1, int index2) {
    setVertexIndex(0, index0);
    setVertexIndex(1, index1);
    setVertexIndex(2, index2);
  }

  /// A mark of the search's bookkeeping for the corner at position 0, 1 or 2; false at any other position.
  constexpr bool flag(unsigned int position) const { return position < 3 && m_Flags[position]; }
  constexpr void setFlag(unsigned int position, bool flag) {
    if (position < 3) m_Flags[position] = flag;
  }

  /// The point of the facet nearest to the origin, in the frame of the search's points.
  constexpr ZuVector const& closestPoint() const { return m_ClosestPoint; }
  constexpr void setClosestPoint(ZuVector const& point) { m_ClosestPoint = point; }

  /// Distance (m) of the facet from the origin.
  constexpr double distance() const { return m_Distance; }
  constexpr void setDistance(double distance) { m_Distance = distance; }

  /// Barycentric coordinates of the closest point: x, y, z are the weights of the corners at positions 0, 1, 2.
  constexpr ZuVector const& barycentric() const { return m_Barycentric; }
  constexpr void setBarycentric(ZuVector const& weights) { m_Barycentric = weights; }

  /// A mark of the search's bookkeeping for the facet as a whole; 1 on a fresh facet.
  constexpr int valid() const { return m_Valid; }
  constexpr void setValid(int valid) { m_Valid = valid; }

  /// True when every field is equal. Two distances of which neither is less than the other (a nan, say) are equal.
  bool operator==(ZuGJKTriangle const& other) const;
  bool operator!=(ZuGJKTriangle const& other) const { return !(*this == other); }

 private:
  int m_VertexIndices[3] = {0, 0, 0};
  bool m_Flags[3] = {false, false, false};
  ZuVector m_ClosestPoint;
  double m_Distance = 0.0;
  ZuVector m_Barycentric;
  int m_Valid = 1;
};
