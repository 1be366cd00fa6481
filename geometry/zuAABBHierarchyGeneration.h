// zuAABBHierarchyGeneration.h - hierarchy of boxes over the facets of a mesh. Group: meshes.
#pragma once

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "foundation/zuExport.h"
#include "foundation/zuVector.h"

/// A binary tree of axis-aligned boxes that finds, among many facets, those that a query has to look at. It knows boxes
/// and numbers only; what a facet is, and how far away or hit, the caller's functions say. All in one frame, m.
///
/// Facets stand in the tree in an order of its own, order(); queries name a facet by its place there, so that a caller
/// who keeps his facets in that order reads memory forwards. A query of n facets costs O(log n) where few facets are
/// nearly as near as the nearest, never allocates, and gives the same answer for the same boxes on every run.
///
/// Nodes lie side by side in memory, 56 bytes each, about one for two facets. Copying copies them. Queries may run in
/// several threads at a time as long as nobody builds.
class ZU_API ZuAABBHierarchyGeneration {
 public:
  /// The closed box between two corners.
  struct Box {
    ZuVector low;
    ZuVector high;

    static Box around(ZuVector const& point) { return {point, point}; }
    /// Around the corners of a segment or a triangle.
    static Box around(ZuVector const& a, ZuVector const& b) {
      return {{std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::min(a.z(), b.z())},
              {std::max(a.x(), b.x()), std::max(a.y(), b.y()), std::max(a.z(), b.z())}};
    }
    static Box around(ZuVector const& a, ZuVector const& b, ZuVector const& c) {
      return around(a, b).joinedWith(around(c));
    }
    Box joinedWith(Box const& box) const { return {around(low, box.low).low, around(high, box.high).high}; }
    ZuVector middle() const { return low * 0.5 + high * 0.5; }

    /// Touching counts.
    bool overlaps(Box const& box) const {
      return low.x() <= box.high.x() && box.low.x() <= high.x() && low.y() <= box.high.y() && box.low.y() <= high.y() &&
             low.z() <= box.high.z() && box.low.z() <= high.z();
    }
    double distanceSquaredTo(Box const& box) const {
      return ZuVector(gap(low.x(), high.x(), box.low.x(), box.high.x()),
                      gap(low.y(), high.y(), box.low.y(), box.high.y()),
                      gap(low.z(), high.z(), box.low.z(), box.high.z()))
          .magSquared();
    }
    double distanceSquaredTo(ZuVector const& point) const { return distanceSquaredTo(around(point)); }

   private:
    static double gap(double low1, double high1, double low2, double high2) {
      return std::max(0.0, std::max(low1 - high2, low2 - high1));
    }
  };

  /// A leaf holds the facets at the places first to first + count - 1 of order(). An inner node has count 0; its
  /// children are the node behind it and node `first`, both further back in the list.
  struct Node {
    Box box;
    unsigned int first = 0;
    unsigned int count = 0;
  };

  /// What boxes and a segment have to do with each other.
  class ZU_API SegmentBound {
   public:
    SegmentBound(ZuVector const& p, ZuVector const& q);
    /// Distance (m^2), to rounding.
    double distanceSquaredTo(Box const& box) const;
    /// False only when the two have no point in common; true also for a gap within rounding.
    bool mayMeet(Box const& box) const;

   private:
    ZuVector m_P;
    ZuVector m_Q;
    ZuVector m_Delta;
    Box m_Box;
  };

  /// What boxes and a triangle have to do with each other.
  class ZU_API TriangleBound {
   public:
    TriangleBound(ZuVector const& a, ZuVector const& b, ZuVector const& c);
    /// A lower bound of the distance (m^2): the largest of that from box to box, from the triangle's plane, and to the
    /// ball around the box.
    double distanceSquaredTo(Box const& box) const;
    /// False only when the two have no point in common: the boxes, or the triangle's plane and the box, are apart.
    bool mayMeet(Box const& box) const;

   private:
    /// Gap between the triangle's plane and a box of that middle and half extent; below 0 when they meet.
    double gapAcross(ZuVector const& middle, ZuVector const& half) const;

    ZuVector m_A;
    ZuVector m_B;
    ZuVector m_C;
    ZuVector m_Normal;
    Box m_Box;
    double m_Lowest;
    double m_Highest;
  };

  /// Builds the tree over facets 0 to boxes.size() - 1, in O(n log n). A box with a coordinate that is not finite, or
  /// with a low corner above its high one, is left out: queries never name its facet.
  void build(std::vector<Box> const& boxes);
  /// Fits the boxes of the tree to facets that have moved, in O(n), and keeps its shape; queries get slower when
  /// neighbours have parted. True when done; false, and nothing has changed, unless exactly the facets of the tree have
  /// boxes as build() takes them.
  bool refit(std::vector<Box> const& boxes);

  /// Root first; empty without facets.
  std::vector<Node> const& nodes() const { return m_Nodes; }
  /// Facets in the order of the tree.
  std::vector<unsigned int> const& order() const { return m_Order; }

  /// The nearest facet, by branch and bound. `lowerBound(box)` is a lower bound of the squared distance of what is in
  /// the box (Box::distanceSquaredTo, SegmentBound, TriangleBound); `visit(place, best)` lowers `best`, a squared
  /// distance, where the facet at that place is nearer. Boxes at `best` or beyond are left out, and the search ends
  /// when `best` is 0. Returns the `best` of the end.
  template <class LowerBound, class Visit>
  double nearest(double best, LowerBound const& lowerBound, Visit const& visit) const;

  /// Visits the facets in the boxes for which `mayMeet(box)` is true, until `visit(place)` returns true; returns
  /// whether one did.
  template <class MayMeet, class Visit>
  bool anyOf(MayMeet const& mayMeet, Visit const& visit) const;

  /// True when every box holds what is under it and every facet is under exactly one leaf. For tests: O(n).
  bool validate(std::vector<Box> const& boxes) const;

 private:
  /// The tree is balanced, so this is room for one pending node on each level of 2^32 facets.
  static constexpr unsigned int m_theDeepestPath = 64;

  void split(std::vector<Box> const& boxes, std::vector<ZuVector> const& middles, unsigned int begin, unsigned int end);

  std::vector<Node> m_Nodes;
  std::vector<unsigned int> m_Order;
};

template <class LowerBound, class Visit>
double ZuAABBHierarchyGeneration::nearest(double best, LowerBound const& lowerBound, Visit const& visit) const {
  struct Pending {
    unsigned int node;
    double bound;
  };
  if (m_Nodes.empty()) return best;
  Pending pending[m_theDeepestPath];
  unsigned int numberPending = 0;
  Pending now = {0, lowerBound(m_Nodes[0].box)};
  for (;;) {
    if (now.bound < best) {
      Node const& node = m_Nodes[now.node];
      if (node.count == 0) {
        Pending other = {node.first, lowerBound(m_Nodes[node.first].box)};
        now = {now.node + 1, lowerBound(m_Nodes[now.node + 1].box)};
        if (other.bound < now.bound) std::swap(now, other);
        if (other.bound < best) pending[numberPending++] = other;
        continue;
      }
      for (unsigned int i = 0; i < node.count; ++i) visit(node.first + i, best);
    }
    if (numberPending == 0 || best <= 0.0) return best;
    now = pending[--numberPending];
  }
}

template <class MayMeet, class Visit>
bool ZuAABBHierarchyGeneration::anyOf(MayMeet const& mayMeet, Visit const& visit) const {
  unsigned int pending[m_theDeepestPath];
  unsigned int numberPending = 0;
  if (!m_Nodes.empty()) pending[numberPending++] = 0;
  while (numberPending > 0) {
    unsigned int const at = pending[--numberPending];
    Node const& node = m_Nodes[at];
    if (!mayMeet(node.box)) continue;
    for (unsigned int i = 0; i < node.count; ++i) {
      if (visit(node.first + i)) return true;
    }
    if (node.count != 0) continue;
    pending[numberPending++] = node.first;
    pending[numberPending++] = at + 1;
  }
  return false;
}
