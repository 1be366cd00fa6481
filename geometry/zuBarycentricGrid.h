// zuBarycentricGrid.h - where the points of an even grid lie in a simplex. Group: orientation sampling.
#pragma once

#include <cstdint>

/// The grid of a simplex (a triangle, a tetrahedron): the points whose barycentric coordinates are firstWeight +
/// increment k_i, where the k_i are natural numbers (from 0) that add up to layers - 1. Neighbours are one increment of
/// an edge apart. The grid is as far from every facet, so no point lies on one, and grids of simplices with a facet in
/// common share no point.
struct ZuBarycentricGrid {
  /// The most layers that a grid may have; any larger number of layers is given as one more.
  static constexpr unsigned int m_theMaximumLayers = 1U << 15;
  /// Relative: an increment this much above 1/n still gives n layers, so that rounding can't lose one.
  static constexpr double m_theRounding = 1e-10;

  /// For a spacing above 0, of a simplex with that number of corners. Above 1 there is one point, the centre.
  ZuBarycentricGrid(double spacing, unsigned int corners) : increment(spacing < 1.0 ? spacing : 1.0) {
    double const wanted = (1.0 + m_theRounding) / increment;
    layers = wanted > m_theMaximumLayers ? m_theMaximumLayers + 1 : static_cast<unsigned int>(wanted);
    firstWeight = (1.0 - (layers - 1) * increment) / corners;
  }

  double weight(int k) const { return firstWeight + increment * k; }
  std::uint64_t pointsOfTriangle() const { return std::uint64_t{layers} * (layers + 1) / 2; }
  std::uint64_t pointsOfTetrahedron() const { return pointsOfTriangle() * (layers + 2) / 3; }

  double increment;
  double firstWeight;
  unsigned int layers;
};
