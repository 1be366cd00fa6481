// zuDepthPolytopePrivate.h - polytope that grows inside a difference set, for penetration depths. Group: convex engine.
#pragma once

#include <vector>

#include "geometry/zuCoreSimplexPrivate.h"

/// The expanding polytope (van den Bergen 2001) over the difference set of two cores.
///
/// Bounds. For any unit vector n the support value h(n) = max n . y over the set bounds the depth from above, since
/// moving core 2 by h(n) n separates the cores; the plane of the facet nearest to the origin bounds it from below,
/// since the polytope lies inside the set. The search expands the nearest facet until the two meet.
///
/// Invariant, up to rounding: live facets form a closed convex surface, turned outwards. A new point removes the facets
/// that it is in front of by more than rounding, so that it is off the edges of the horizon by as much, and the new
/// facets have an area. Those in whose plane it lies stay: flat faces of many facets are not built anew. Where rounding
/// leaves a horizon that is not one loop, the polytope stays as it was and the facet is not expanded again.
///
/// Its lists are kept from search to search; no search allocates but to grow them.
class ZuDepthPolytope {
 public:
  enum Outcome {
    FOUND,  ///< nearest, normal and bounds are set
    FLAT,   ///< the set has no depth, or hardly any, along the normal, which alone counts
    APART   ///< h(normal) < 0 proves that the cores are apart; the normal alone is set
  };
  struct Depth {
    ZuCorePoint nearest;  ///< on the boundary of the set, within the bounds
    ZuVector normal;      ///< unit, outwards
    double lower = 0.0, upper = 0.0;
  };

  /// @param simplex of a distance iteration that found the origin inside, at 1 to 4 points
  /// @param tolerance gap of the bounds at which the search ends, as a part of the size of the set
  /// @param maxExpansions after so many, the search goes down from several upper bounds to minima, and ends at the
  /// least
  Outcome search(ZuCoreDifference& set, ZuCoreSimplex const& simplex, double tolerance, unsigned int maxExpansions,
                 Depth& depth);

  /// Whether the surface is closed, linked, turned outwards and convex within rounding. Facets times points.
  bool isValid() const;
  unsigned int expansions() const { return m_Expansions; }
  /// Of the set, to a factor of 4.
  double size() const { return m_Size; }

 private:
  /// One cache line. Of an edge k, from corner k to corner k + 1, `across` holds the facet beyond and its number there.
  struct Facet {
    ZuVector normal;
    double height;  ///< of the plane over the origin
    double bound;   ///< a point is in front of the facet when its height along the normal is more
    int corner[3];  ///< of a facet that was removed, the first one is less than 0
    int across[3];

    bool isLive() const { return corner[0] >= 0; }
    void flip() { corner[0] = ~corner[0]; }
  };
  struct HorizonEdge {
    int from, to;
    int outside;  ///< this edge, as numbered by the facet that stays
  };
  /// Of a corner of the horizon: the edge that begins there, when the stamp is that of the expansion.
  struct Corner {
    unsigned int stamp = 0;
    int edge = 0;
  };

  enum Ending {
    MET,       ///< the bounds met
    ENOUGH,    ///< the limit was reached
    SEPARATED  ///< a negative upper bound
  };

  Ending expand(ZuCoreDifference& set, double tolerance, unsigned int limit, Depth& depth);
  void settle(ZuCoreDifference& set, double gap);
  void descend(ZuCoreDifference& set);
  void goDown(ZuCoreDifference& set, ZuVector normal);
  double supportValue(ZuCoreDifference& set, ZuVector const& normal);
  double patience() const;
  bool start(ZuCoreDifference& set, ZuCoreSimplex const& simplex, Depth& depth);
  bool takeTetrahedron(ZuCoreSimplex const& simplex);
  void offer(ZuCoreDifference& set, ZuVector const& direction, ZuCorePoint& best, double& most) const;
  double independence(ZuVector const& y) const;
  void makeTetrahedron();
  void setPlanes(int const* facets, int count);
  void clearHeight(int facet);
  void setHeight(int facet);
  void resizePoints(std::size_t count);
  void addPoint();
  void addPoint(ZuCorePoint const& point);
  int freeFacet();
  int nextNearest();
  bool insert(int facet);
  bool isVisible(Facet const& facet, ZuVector const& w, bool isExact) const;
  bool findHorizon(ZuVector const& w, int facet, bool isExact);
  bool isOneLoop(ZuVector const& w) const;
  void restore();
  void closeHorizon();
  int facetAlong(ZuVector const& direction) const;
  bool finish(double gap, Depth& depth) const;
  void takeIfNearer(Facet const& facet, ZuVector const& target, double& least, Depth& depth) const;

  // Lists are longer than what is in use, by the counts below: points at least by one, the support point that may be
  // the next.
  std::vector<ZuCorePoint> m_Points;
  std::vector<ZuVector> m_Places;  ///< of the points in the difference set
  std::vector<Corner> m_Corners;
  std::vector<Facet> m_Facets;
  int m_PointCount = 0, m_FacetCount = 0;
  /// Of facets that may be nearest, the others are infinitely high; and of each block of them a height that none is
  /// below.
  std::vector<double> m_Heights, m_BlockHeights;
  std::vector<HorizonEdge> m_Horizon;
  std::vector<int> m_Removed, m_New, m_Free;  ///< facets
  int m_HorizonCount = 0, m_RemovedCount = 0;
  ZuVector m_Axis;  ///< of the first points: their line, then their plane
  ZuVector m_UpperNormal;
  double m_Size = 0.0, m_Lower = 0.0, m_Upper = 0.0, m_Noise = 0.0;
  unsigned int m_Stamp = 0;
  bool m_IsCurved = false;  ///< the set, so that its facets have no end
  unsigned int m_Expansions = 0;
};
