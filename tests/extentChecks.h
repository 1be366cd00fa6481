// extentChecks.h - what every tessellation has to keep.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <utility>
#include <vector>

#include "geometry/zuTriPhysicalExtent.h"

/// The loops of all facets.
inline std::vector<std::vector<unsigned int>> loopsOf(ZuBasePhysicalExtent const& extent) {
  std::vector<std::vector<unsigned int>> loops;
  for (unsigned int group = 0; group < extent.numberOfGroups(); ++group) {
    for (unsigned int facet = 0; facet < extent.numberOfFacetsInGroup(group); ++facet) {
      loops.emplace_back();
      for (unsigned int k = 0; k < extent.numberOfPointsInFacet(group, facet); ++k)
        loops.back().push_back(extent.getFacetPointIndex(group, facet, k));
    }
  }
  return loops;
}

inline double extentVolume(ZuBasePhysicalExtent const& extent) {
  double sixTimes = 0.0;
  ZuVector const apex = extent.points()[0];
  for (std::vector<unsigned int> const& loop : loopsOf(extent)) {
    auto const corner = [&](std::size_t k) { return extent.points()[loop[k]] - apex; };
    for (std::size_t k = 2; k < loop.size(); ++k) sixTimes += corner(0).dot(corner(k - 1).cross(corner(k)));
  }
  return sixTimes / 6.0;
}

/// Every edge is used once in each direction, and no point is in front of a facet, which must have an area.
inline testing::AssertionResult facetsCloseAndAreConvex(ZuBasePhysicalExtent const& extent) {
  std::map<std::pair<unsigned int, unsigned int>, int> edges;
  for (std::vector<unsigned int> const& loop : loopsOf(extent)) {
    ZuVector area;
    ZuVector const base = extent.points()[loop[0]];
    for (std::size_t k = 0; k < loop.size(); ++k) {
      unsigned int const next = loop[(k + 1) % loop.size()];
      if (++edges[{loop[k], next}] != 1) return testing::AssertionFailure() << "edge " << loop[k] << ' ' << next;
      area += (extent.points()[loop[k]] - base).cross(extent.points()[next] - base);
    }
    ZuVector const normal = area.unitVector();
    if (normal == ZuVector()) return testing::AssertionFailure() << "a facet without area";
    for (ZuVector const& p : extent.points()) {
      double const height = normal.dot(p - base);
      if (height > 1e-12) return testing::AssertionFailure() << "a point is in front of a facet, by " << height;
    }
  }
  for (auto const& [edge, count] : edges) {
    if (edges.count({edge.second, edge.first}) == 0) return testing::AssertionFailure() << "open edge " << edge.first;
  }
  return testing::AssertionSuccess();
}
