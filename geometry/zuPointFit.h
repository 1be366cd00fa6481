// zuPointFit.h - small solids around point sets, by search over their axes. Group: fitting.
#pragma once

#include <algorithm>
#include <limits>
#include <vector>

#include "geometry/zuNearestPoints.h"
#include "geometry/zuPointSpread.h"
#include "geometry/zuSimplexSearch.h"

/// Where a search starts: the rule turns and shifts the frame by its variables, which are angles and multiples of size.
struct ZuFitFrame {
  ZuVector center;
  ZuVector axes[3];
  double size;

  /// Perpendicular axes that are turned by the variables, angles when they are small.
  void turnedAxes(double x0, double x1, double x2, ZuVector (&turned)[3]) const {
    turned[0] = (axes[0] + x0 * axes[1] + x1 * axes[2]).unitVector();
    ZuVector const second = axes[1] + x2 * axes[2];
    turned[1] = (second - turned[0] * second.dot(turned[0])).unitVector();
    turned[2] = turned[0].cross(turned[1]);
  }
};

/// Searches for the enclosing solid of least volume.
///
/// Rule supplies, with `Solid` a plain value and `theVariables` the number of variables:
/// - `static Solid around(ZuFitFrame const&, std::array<double, theVariables> const&, points, count)`, the least solid
/// in
///   that place that encloses the points;
/// - `static double measure(Solid const&)`, what is to be small;
/// - `static double outside(Solid const&, ZuVector const& point)`, how far the point is outside, not above 0 inside.
///
/// Most of a million points don't matter for the result. So the search works on a few: first on the extreme points,
/// then also on the point that is farthest outside of what was found, until none is outside by more than the tolerance.
/// At last the solid is placed around all points, which makes the result enclose them whatever the search did.
template <class Rule>
class ZuPointFit {
 public:
  using Solid = typename Rule::Solid;

  /// The points are finite, at least one, not all the same.
  static Solid around(ZuVector const* points, std::size_t count) {
    ZuPointSpread const all(points, count);
    std::vector<ZuVector> working = all.extremePoints(points, count);
    Place place = bestStart(working);
    for (unsigned int round = 0; round < m_theRounds; ++round) {
      Solid const solid = Rule::around(place.frame, place.variables, working.data(), working.size());
      ZuVector const* const worst = farthestOutside(solid, points, count);
      if (Rule::outside(solid, *worst) <= m_theTolerance * all.size) break;
      working.push_back(*worst);
      improve(place, working, m_theStepOfRefinement, m_theRestarts);
    }
    return Rule::around(place.frame, place.variables, points, count);
  }

 private:
  using Search = ZuSimplexSearch<Rule::theVariables>;
  struct Place {
    ZuFitFrame frame;
    typename Search::Point variables;
    double measure;
  };

  /// Of the 13 starts, each searched once, how many are searched again and again.
  static constexpr std::size_t m_theFinalists = 3;
  /// More of them change the fits of the real meshes by less than 0.1 %.
  static constexpr unsigned int m_theRestarts = 6;
  /// Of an angle, rad, or of the size.
  static constexpr double m_theStepOfSearch = 0.15;
  static constexpr double m_theStepOfRefinement = 0.02;
  /// Times the size: what a point may be outside before the search goes on; the last step takes it in.
  static constexpr double m_theTolerance = 1e-4;
  static constexpr unsigned int m_theRounds = 20;

  static void improve(Place& place, std::vector<ZuVector> const& points, double step, unsigned int starts) {
    auto const result = Search::minimum(
        [&](typename Search::Point const& x) {
          return Rule::measure(Rule::around(place.frame, x, points.data(), points.size()));
        },
        place.variables, step, starts);
    place.variables = result.x;
    place.measure = result.value;
  }

  static ZuVector const* farthestOutside(Solid const& solid, ZuVector const* points, std::size_t count) {
    ZuVector const* worst = points;
    double most = -std::numeric_limits<double>::infinity();
    for (ZuVector const* p = points; p != points + count; ++p) {
      double const outside = Rule::outside(solid, *p);
      if (outside > most) most = outside, worst = p;
    }
    return worst;
  }

  /// Faces, edges and corners of a cube along the principal axes give the main axes of the starts.
  static Place bestStart(std::vector<ZuVector> const& points) {
    ZuPointSpread const spread(points.data(), points.size());
    std::vector<Place> places;
    for (int code = 0; code < 27; ++code) {
      int const i = code / 9 - 1, j = code / 3 % 3 - 1, k = code % 3 - 1;
      if (9 * i + 3 * j + k <= 0) continue;  // the zero direction, and one of each pair of opposite ones
      ZuVector const axis = (spread.axes[0] * i + spread.axes[1] * j + spread.axes[2] * k).unitVector();
      places.push_back(start(spread, axis, i == 0 || j == 0 ? spread.axes[2] : spread.axes[0], points));
    }
    for (Place& place : places) improve(place, points, m_theStepOfSearch, 1);
    auto const isBetter = [](Place const& a, Place const& b) { return a.measure < b.measure; };
    std::stable_sort(places.begin(), places.end(), isBetter);
    places.resize(m_theFinalists);
    for (Place& place : places) improve(place, points, m_theStepOfRefinement, m_theRestarts);
    return *std::min_element(places.begin(), places.end(), isBetter);
  }

  static Place start(ZuPointSpread const& spread, ZuVector const& axis, ZuVector const& hint,
                     std::vector<ZuVector> const& points) {
    ZuVector second = hint - axis * axis.dot(hint);
    second = second.magSquared() > m_theSameDirection ? second.unitVector() : zuPerpendicular(axis);
    Place place{{spread.center, {axis, second, axis.cross(second)}, spread.size}, {}, 0.0};
    for (ZuVector const& direction : place.frame.axes) {
      auto const [low, high] = std::minmax_element(
          points.begin(), points.end(),
          [&](ZuVector const& a, ZuVector const& b) { return a.dot(direction) < b.dot(direction); });
      place.frame.center += direction * (((*low + *high) * 0.5 - place.frame.center).dot(direction));
    }
    place.measure = Rule::measure(Rule::around(place.frame, place.variables, points.data(), points.size()));
    return place;
  }

  /// Squared sine, below which a hint says nothing about the second axis.
  static constexpr double m_theSameDirection = 1e-6;
};
