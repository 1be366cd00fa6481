#include "foundation/zuMath.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "foundation/zuDoubleDouble.h"
#include "foundation/zuPrint.h"

namespace {

using Wide = ZuDoubleDouble;

/// A discriminant below this share of the squared roots counts as 0, so that repeated roots come out equal and real.
/// Rounding in twice the precision leaves up to 2^-103 of it (seen over exactly repeated eigenvalues); the price is
/// that roots within 2^-50 of their size, taken from the mean of all three, are merged.
constexpr double theDiscriminantNoise = 0x1p-100;

/// A root this much smaller than the others is computed from the unshifted cubic. The shift costs it at most 30 of 104
/// bits before that.
constexpr double theGrading = 0x1p-10;

/// Three roots: `single` is real, the others are `first` and `second`, or first +- i imaginary when imaginary > 0.
struct Roots {
  Wide single, first, second, imaginary;
};

/// centre +- sqrt(discriminant), or the conjugate pair.
void setPair(Roots& roots, Wide const& centre, Wide const& discriminant) {
  bool const isComplex = discriminant.value() < 0.0;
  Wide const root = (isComplex ? -discriminant : discriminant).sqrt();
  roots.first = isComplex ? centre : centre + root;
  roots.second = isComplex ? centre : centre - root;
  roots.imaginary = isComplex ? root : Wide();
}

Wide withoutNoise(Wide const& discriminant, double squaredSize) {
  return std::abs(discriminant.value()) <= theDiscriminantNoise * squaredSize ? Wide() : discriminant;
}

/// The root of y^3 + p y + q of largest magnitude where all are real, the real one otherwise, within some 1e-15 of it.
double outermostRoot(double p, double q) {
  double const third = p / 3.0, half = 0.5 * std::abs(q);
  double const discriminant = half * half + third * third * third;
  double size = 0.0;
  if (discriminant < 0.0) {  // Viete
    double const radius = std::sqrt(-third);
    size = 2.0 * radius * std::cos(std::acos(std::min(1.0, half / (radius * radius * radius))) / 3.0);
  } else {  // Cardano: size = a - b with a b = p / 3; for p > 0 as (a^3 - b^3) / (a^2 + a b + b^2) without cancellation
    double const a = std::cbrt(half + std::sqrt(discriminant));
    double const b = third / a;
    size = third > 0.0 ? 2.0 * half / (a * a + third + b * b) : a - b;
  }
  return q > 0.0 ? -size : size;
}

/// Newton steps on y^3 + p y + q from within 1e-15 of its outermost root. The roots add up to 0, so the other two lie
/// on the other side of 0 or are a conjugate pair: the slope there is at least y^2, and three steps reach full
/// precision.
Wide polished(Wide const& p, Wide const& q, double start) {
  Wide y = start;
  for (int step = 0; step < 2; ++step) {
    double const slope = 3.0 * y.value() * y.value() + p.value();
    if (!(slope > 0.0)) return y;
    y = y - ((y * y + p) * y + q).value() / slope;
  }
  return y;
}

/// A power of two 2^k with |value| < 2^(degree k) (1 + ulp), so that value / 2^(degree k) has magnitude at most 1.
int exponentOfRoot(double value, int degree) {
  if (value == 0.0) return std::numeric_limits<int>::min();
  int exponent = 0;
  std::frexp(value, &exponent);
  return exponent > 0 ? (exponent + degree - 1) / degree : -(-exponent / degree);
}

/// Roots of y^3 + p y + q. Their error is about 2^-52 of the largest where two are (almost) equal, 2^-98 else.
Roots depressedRoots(Wide p, Wide q) {
  Roots roots;
  if (p.value() == 0.0 && q.value() == 0.0) return roots;
  int const exponent = std::max(exponentOfRoot(p.value(), 2), exponentOfRoot(q.value(), 3));
  double const size = std::ldexp(1.0, exponent), inverse = std::ldexp(1.0, -exponent);
  p = p.timesPowerOfTwo(inverse).timesPowerOfTwo(inverse);
  q = q.timesPowerOfTwo(inverse).timesPowerOfTwo(inverse).timesPowerOfTwo(inverse);
  Wide const y = polished(p, q, outermostRoot(p.value(), q.value()));
  // What remains is x^2 + y x + (y^2 + p): x = -y/2 +- sqrt(-3 y^2 / 4 - p).
  Wide const squared = y * y;
  Wide const discriminant = -(squared * 0.75 + p);
  roots.single = y.timesPowerOfTwo(size);
  setPair(roots, y.timesPowerOfTwo(-0.5 * size),
          withoutNoise(discriminant, squared.value()).timesPowerOfTwo(size).timesPowerOfTwo(size));
  return roots;
}

double magnitude(Wide const& x) { return std::abs(x.value()); }

/// The roots of x^3 + b x + ... that are much smaller than `single`, from the cubic divided from below by x - single:
/// x^2 + m x + k with k = -c0 / single, m = (k - c1) / single.
void replaceSmallPair(Roots& roots, Wide const& c1, Wide const& c0) {
  Wide const k = -c0 / roots.single;
  Wide const halfM = ((k - c1) / roots.single).timesPowerOfTwo(0.5);
  Wide const squared = halfM * halfM;
  setPair(roots, -halfM, withoutNoise(squared - k, squared.value()));
  if (roots.imaginary.value() > 0.0) return;
  Wide& larger = magnitude(roots.first) > magnitude(roots.second) ? roots.first : roots.second;
  Wide& smaller = &larger == &roots.first ? roots.second : roots.first;
  if (larger.value() != 0.0) smaller = k / larger;
}

/// Gives relative accuracy to roots that are small beside the others, which the shift took from them.
void refineSmallRoots(Roots& roots, Wide const& c1, Wide const& c0) {
  Wide const pairProduct = roots.imaginary.value() > 0.0 ? roots.first * roots.first + roots.imaginary * roots.imaginary
                                                         : roots.first * roots.second;
  double const pairSize = std::max({magnitude(roots.first), magnitude(roots.second), magnitude(roots.imaginary)});
  if (pairSize < theGrading * magnitude(roots.single)) return replaceSmallPair(roots, c1, c0);
  if (roots.imaginary.value() > 0.0) {
    if (magnitude(roots.single) < theGrading * pairSize) roots.single = -c0 / pairProduct;
    return;
  }
  Wide* bySize[3] = {&roots.single, &roots.first, &roots.second};
  std::sort(bySize, bySize + 3, [](Wide const* a, Wide const* b) { return magnitude(*a) > magnitude(*b); });
  if (magnitude(*bySize[2]) < theGrading * magnitude(*bySize[1])) *bySize[2] = -c0 / (*bySize[0] * *bySize[1]);
}

/// The roots of x^3 + c2 x^2 + c1 x + c0 with coefficients of magnitude at most 1.
Roots cubicRootsOfUnitSize(double c2, double c1, double c0) {
  // z = 3 x + c2 avoids every division before the roots: z^3 + (9 c1 - 3 c2^2) z + (2 c2^3 - 9 c2 c1 + 27 c0).
  Wide const squared = Wide::product(c2, c2);
  Wide const p = Wide::product(c1, 9.0) - squared * 3.0;
  Wide const q = squared * (2.0 * c2) - Wide::product(c2, c1) * 9.0 + Wide::product(c0, 27.0);
  Roots roots = depressedRoots(p, q);
  for (Wide* z : {&roots.single, &roots.first, &roots.second}) *z = (*z - c2) / 3.0;
  roots.imaginary = roots.imaginary / 3.0;
  refineSmallRoots(roots, c1, c0);
  return roots;
}

bool isLess(Wide const& a, Wide const& b) {
  return a.value() < b.value() || (a.value() == b.value() && a.low() < b.low());
}
bool isLess(double a, double b) { return a < b; }

template <class Number>
void sortDescending(Number& a, Number& b, Number& c) {
  if (isLess(a, b)) std::swap(a, b);
  if (isLess(b, c)) std::swap(b, c);
  if (isLess(a, b)) std::swap(a, b);
}

/// x 2^exponent, in two factors since 2^exponent may overflow where the product does not.
Wide scaled(Wide const& x, int exponent) {
  return x.timesPowerOfTwo(std::ldexp(1.0, exponent / 2)).timesPowerOfTwo(std::ldexp(1.0, exponent - exponent / 2));
}

}  // namespace

namespace ZuMath {

void cubicRoots(double const& c2, double const& c1, double const& c0, double& root0, double& root1, double& root2,
                double& imaginary1, double& imaginary2) {
  double const b = c2, c = c1, d = c0;  // the outputs may be the inputs
  root0 = root1 = root2 = imaginary1 = imaginary2 = 0.0;
  if (!std::isfinite(b) || !std::isfinite(c) || !std::isfinite(d)) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuMath::cubicRoots-->coefficient not finite (%g, %g, %g)", b, c, d);
    return;
  }
  int const exponent = std::max({exponentOfRoot(b, 1), exponentOfRoot(c, 2), exponentOfRoot(d, 3)});
  if (exponent == std::numeric_limits<int>::min()) return;
  Roots const roots =
      cubicRootsOfUnitSize(std::ldexp(b, -exponent), std::ldexp(c, -2 * exponent), std::ldexp(d, -3 * exponent));
  root0 = std::ldexp(roots.single.value(), exponent);
  root1 = std::ldexp(roots.first.value(), exponent);
  root2 = std::ldexp(roots.second.value(), exponent);
  imaginary1 = std::ldexp(roots.imaginary.value(), exponent);
  imaginary2 = -imaginary1;
  if (imaginary1 > 0.0) return;
  imaginary2 = 0.0;
  sortDescending(root0, root1, root2);
}

void symmetricEigenvalues(double a00, double a01, double a02, double a11, double a12, double a22, double& largest,
                          double& middle, double& smallest) {
  Wide wide[3];
  symmetricEigenvalues(a00, a01, a02, a11, a12, a22, wide[0], wide[1], wide[2]);
  largest = wide[0].value();
  middle = wide[1].value();
  smallest = wide[2].value();
}

void symmetricEigenvalues(double a00, double a01, double a02, double a11, double a12, double a22, Wide& largest,
                          Wide& middle, Wide& smallest) {
  largest = middle = smallest = Wide();
  double size = 0.0;
  for (double const element : {a00, a01, a02, a11, a12, a22}) {
    if (!std::isfinite(element)) {
      Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuMath::symmetricEigenvalues-->element not finite (%g)", element);
      return;
    }
    size = std::max(size, std::abs(element));
  }
  if (size == 0.0) return;
  int const exponent = exponentOfRoot(size, 1);
  for (double* element : {&a00, &a01, &a02, &a11, &a12, &a22}) *element = std::ldexp(*element, -exponent);

  // B = 3 A - trace(A) has trace 0, so its characteristic polynomial is z^3 + p z + q, p = -|B|^2 / 2, q = -det(B).
  Wide const trace = Wide::sum(a00, a11) + a22;
  Wide const b00 = Wide::product(a00, 3.0) - trace, b11 = Wide::product(a11, 3.0) - trace,
             b22 = Wide::product(a22, 3.0) - trace;
  Wide const b01 = Wide::product(a01, 3.0), b02 = Wide::product(a02, 3.0), b12 = Wide::product(a12, 3.0);
  Wide const p = -((b00 * b00 + b11 * b11 + b22 * b22).timesPowerOfTwo(0.5) + b01 * b01 + b02 * b02 + b12 * b12);
  Wide const q = b00 * (b12 * b12 - b11 * b22) + b01 * (b01 * b22 - b12 * b02) + b02 * (b02 * b11 - b01 * b12);
  Roots const roots = depressedRoots(p, q);  // an imaginary part is rounding: `first` and `second` are then equal
  largest = scaled((roots.single + trace) / 3.0, exponent);
  middle = scaled((roots.first + trace) / 3.0, exponent);
  smallest = scaled((roots.second + trace) / 3.0, exponent);
  sortDescending(largest, middle, smallest);
}

}  // namespace ZuMath
