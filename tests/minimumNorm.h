// minimumNorm.h - distance of the hulls of a few points, in extended precision.
#pragma once

#include "tests/convexOracle.h"

/// Tries all faces of the differences, which is right to the last digits for thin figures too; it can only err upwards.
struct MinimumNorm {
  static double distance(std::vector<ZuVector> const& first, std::vector<ZuVector> const& second = {ZuVector()}) {
    oracle::Points differences;
    for (ZuVector const& p : first) {
      for (ZuVector const& q : second) differences.push_back(oracle::extended(p) - oracle::extended(q));
    }
    return static_cast<double>(oracle::length(oracle::nearestByTrial(differences)));
  }
};
