// zuSimplexSearch.h - local minimum of a function of a few variables. Group: fitting.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

/// Finds a local minimum of a continuous function without derivatives, by the moving simplex of Nelder and Mead 1965
/// with their coefficients. Volumes of fitted solids have ridges where the touching points change; the simplex follows
/// them, though it may stop early on one: that is why it is started afresh from where it stopped, as long as that pays.
/// Deterministic; allocates nothing.
template <std::size_t N>
class ZuSimplexSearch {
 public:
  using Point = std::array<double, N>;
  struct Result {
    Point x;
    double value;
  };

  /// @param function callable with a Point, returns the value; never nan
  /// @param step size of the first simplex, in the unit of the variables; later ones are smaller
  /// @param starts how often it is started at most
  template <class Function>
  static Result minimum(Function const& function, Point const& start, double step, unsigned int starts) {
    Result best{start, function(start)};
    for (unsigned int i = 0; i < starts; ++i, step *= m_theStepOfRestart) {
      Result const next = descend(function, best, step);
      bool const paid = next.value < best.value - m_theWorthwhile * std::abs(best.value);
      if (next.value < best.value) best = next;
      if (!paid) break;
    }
    return best;
  }

 private:
  using Simplex = std::array<Result, N + 1>;

  static constexpr double m_theStepOfRestart = 0.5;
  /// Relative gain that is worth another start.
  static constexpr double m_theWorthwhile = 1e-4;
  /// Relative spread of the values of a simplex that has arrived.
  static constexpr double m_theSpread = 1e-7;
  static constexpr unsigned int m_theMoves = 100 * N;

  static Point between(Point const& from, Point const& to, double t) {
    Point x;
    for (std::size_t i = 0; i < N; ++i) x[i] = from[i] + t * (to[i] - from[i]);
    return x;
  }

  static Point centroidOfBetter(Simplex const& simplex) {
    Point sum{};
    for (std::size_t v = 0; v < N; ++v) {
      for (std::size_t i = 0; i < N; ++i) sum[i] += simplex[v].x[i] / static_cast<double>(N);
    }
    return sum;
  }

  template <class Function>
  static Result descend(Function const& function, Result const& start, double step) {
    Simplex simplex;
    simplex.fill(start);
    for (std::size_t i = 0; i < N; ++i) {
      simplex[i].x[i] += step;
      simplex[i].value = function(simplex[i].x);
    }
    for (unsigned int move = 0; move < m_theMoves; ++move) {
      std::sort(simplex.begin(), simplex.end(), [](Result const& a, Result const& b) { return a.value < b.value; });
      if (simplex[N].value - simplex[0].value <= m_theSpread * std::abs(simplex[0].value)) break;
      if (!replaceWorst(function, simplex)) shrink(function, simplex);
    }
    return *std::min_element(simplex.begin(), simplex.end(),
                             [](Result const& a, Result const& b) { return a.value < b.value; });
  }

  template <class Function>
  static bool replaceWorst(Function const& function, Simplex& simplex) {
    Point const center = centroidOfBetter(simplex);
    Result& worst = simplex[N];
    auto const at = [&](double t) {
      Point const x = between(center, worst.x, t);
      return Result{x, function(x)};
    };
    Result const reflected = at(-1.0);
    if (reflected.value < simplex[0].value) {
      Result const expanded = at(-2.0);
      worst = expanded.value < reflected.value ? expanded : reflected;
      return true;
    }
    if (reflected.value < simplex[N - 1].value) {
      worst = reflected;
      return true;
    }
    Result const contracted = at(reflected.value < worst.value ? -0.5 : 0.5);
    if (contracted.value >= std::min(reflected.value, worst.value)) return false;
    worst = contracted;
    return true;
  }

  template <class Function>
  static void shrink(Function const& function, Simplex& simplex) {
    for (std::size_t v = 1; v <= N; ++v) {
      simplex[v].x = between(simplex[0].x, simplex[v].x, 0.5);
      simplex[v].value = function(simplex[v].x);
    }
  }
};
