#include "geometry/zuExactSignsPrivate.h"

#include <cmath>

namespace {

/// Half an ulp of 1: the relative error of one rounded operation.
constexpr double theRoundoff = 0x1p-53;
/// Error bounds of the estimates, relative to the sums of the magnitudes of their terms (Shewchuk 1997, sections 4.3
/// and 4.2). Smaller ones would let a wrong sign through, larger ones only cost time.
constexpr double theSideBound = (7.0 + 56.0 * theRoundoff) * theRoundoff;
constexpr double theTurnBound = (3.0 + 16.0 * theRoundoff) * theRoundoff;

/// A sum of doubles that do not overlap, none of them zero, ascending in magnitude: a number held exactly.
template <int N>
struct Expansion {
  double terms[N];
  int size = 0;

  /// Adds one double (Shewchuk 1997, figure 6), dropping zeros, so that sums without rounding stay short.
  void grow(double b) {
    int kept = 0;
    for (int i = 0; i < size; ++i) {
      double const sum = b + terms[i];
      double const virtualTerm = sum - b;
      double const roundoff = (b - (sum - virtualTerm)) + (terms[i] - virtualTerm);
      if (roundoff != 0.0) terms[kept++] = roundoff;
      b = sum;
    }
    if (b != 0.0) terms[kept++] = b;
    size = kept;
  }
  template <int M>
  void add(Expansion<M> const& e, double factor = 1.0) {
    for (int i = 0; i < e.size; ++i) grow(factor * e.terms[i]);
  }
  /// The last term outweighs all before it.
  int sign() const { return size == 0 ? 0 : (terms[size - 1] > 0.0 ? 1 : -1); }
};

Expansion<2> difference(double a, double b) {
  Expansion<2> e;
  e.grow(a);
  e.grow(-b);
  return e;
}

template <int M, int N>
Expansion<2 * M * N> product(Expansion<M> const& e, Expansion<N> const& f) {
  Expansion<2 * M * N> result;
  for (int i = 0; i < e.size; ++i) {
    for (int j = 0; j < f.size; ++j) {
      double const p = e.terms[i] * f.terms[j];
      result.grow(std::fma(e.terms[i], f.terms[j], -p));
      result.grow(p);
    }
  }
  return result;
}

/// The 2x2 determinant a d - b c.
template <int N>
Expansion<4 * N * N> determinant(Expansion<N> const& a, Expansion<N> const& b, Expansion<N> const& c,
                                 Expansion<N> const& d) {
  Expansion<4 * N * N> result;
  result.add(product(a, d));
  result.add(product(b, c), -1.0);
  return result;
}

int exactSide(ZuVector const& a, ZuVector const& b, ZuVector const& c, ZuVector const& d) {
  Expansion<2> const ax = difference(a.x(), d.x()), ay = difference(a.y(), d.y()), az = difference(a.z(), d.z());
  Expansion<2> const bx = difference(b.x(), d.x()), by = difference(b.y(), d.y()), bz = difference(b.z(), d.z());
  Expansion<2> const cx = difference(c.x(), d.x()), cy = difference(c.y(), d.y()), cz = difference(c.z(), d.z());
  Expansion<192> sum;
  sum.add(product(determinant(by, bz, cy, cz), ax));
  sum.add(product(determinant(cy, cz, ay, az), bx));
  sum.add(product(determinant(ay, az, by, bz), cx));
  return sum.sign();
}

int signOf(double value) { return value > 0.0 ? 1 : -1; }

}  // namespace

int ZuExactSigns::side(ZuVector const& a, ZuVector const& b, ZuVector const& c, ZuVector const& d) {
  double const ax = a.x() - d.x(), ay = a.y() - d.y(), az = a.z() - d.z();
  double const bx = b.x() - d.x(), by = b.y() - d.y(), bz = b.z() - d.z();
  double const cx = c.x() - d.x(), cy = c.y() - d.y(), cz = c.z() - d.z();
  double const bycz = by * cz, bzcy = bz * cy, cyaz = cy * az, czay = cz * ay, aybz = ay * bz, azby = az * by;
  double const estimate = ax * (bycz - bzcy) + bx * (cyaz - czay) + cx * (aybz - azby);
  double const magnitude = std::abs(ax) * (std::abs(bycz) + std::abs(bzcy)) +
                           std::abs(bx) * (std::abs(cyaz) + std::abs(czay)) +
                           std::abs(cx) * (std::abs(aybz) + std::abs(azby));
  return std::abs(estimate) > theSideBound * magnitude ? signOf(estimate) : exactSide(a, b, c, d);
}

int ZuExactSigns::turn(ZuVector const& a, ZuVector const& b, ZuVector const& c, unsigned int axis) {
  unsigned int const u = (axis + 1) % 3, v = (axis + 2) % 3;
  double const first = (a[u] - c[u]) * (b[v] - c[v]), second = (a[v] - c[v]) * (b[u] - c[u]);
  double const estimate = first - second;
  if (std::abs(estimate) > theTurnBound * (std::abs(first) + std::abs(second))) return signOf(estimate);
  return determinant(difference(a[u], c[u]), difference(a[v], c[v]), difference(b[u], c[u]), difference(b[v], c[v]))
      .sign();
}
