#include "geometry/zuSpatialMatrix.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "foundation/zuDoubleDouble.h"
#include "foundation/zuMath.h"
#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuManipTokens.h"

namespace {

using Wide = ZuDoubleDouble;

/// Eigenvalues no further apart than this, in the unit of the matrix, are equal: part of the interface.
constexpr double theEqualEigenvalues = 1e-12;

/// Two eigenvalues at least this share of the largest apart cost the plain steps at most 6 of 53 bits. Larger: more
/// matrices take the slow way; smaller: more digits are lost in the fast one.
constexpr double theSmallestPlainGap = 0x1p-6;

/// The same for the angle of Viete's formula, as 1 - cos^2: sin above 1/4 costs the eigenvalues at most 2 bits.
constexpr double theSmallestSquaredSine = 0x1p-4;

/// Above, the squares of the third powers of elements that `plainEigenvalues` and `chosen` take would overflow.
constexpr double theLargestPlainElement = 0x1p150;

/// A symmetric matrix: what is on and above the diagonal.
struct Symmetric {
  double a00, a01, a02, a11, a12, a22;

  double largestElement() const {
    return std::max({std::abs(a00), std::abs(a01), std::abs(a02), std::abs(a11), std::abs(a12), std::abs(a22)});
  }
  void scaleBy(double factor) {
    for (double* element : {&a00, &a01, &a02, &a11, &a12, &a22}) *element *= factor;
  }
};

double plain(double x) { return x; }
double plain(Wide const& x) { return x.value(); }
double root(double x) { return std::sqrt(x); }
Wide root(Wide const& x) { return x.sqrt(); }

/// A vector of doubles or of numbers of twice the precision.
template <class Number>
struct Triple {
  Number x, y, z;

  Number magSquared() const { return x * x + y * y + z * z; }
  Triple unit() const {
    Number const squared = magSquared();
    if (!(plain(squared) > 0.0)) return *this;
    Number const length = root(squared);
    return {x / length, y / length, z / length};
  }
  Triple cross(Triple const& v) const { return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x}; }
  ZuVector vector() const { return {plain(x), plain(y), plain(z)}; }
};

/// A - lambda I.
template <class Number>
struct Shifted {
  Shifted(Symmetric const& a, Number const& lambda)
      : a00(Number(a.a00) - lambda),
        a11(Number(a.a11) - lambda),
        a22(Number(a.a22) - lambda),
        a01(a.a01),
        a02(a.a02),
        a12(a.a12) {}

  Triple<Number> column0() const { return {a00, a01, a02}; }
  Triple<Number> column1() const { return {a01, a11, a12}; }
  Triple<Number> column2() const { return {a02, a12, a22}; }
  Triple<Number> operator*(Triple<Number> const& v) const {
    return {a00 * v.x + a01 * v.y + a02 * v.z, a01 * v.x + a11 * v.y + a12 * v.z, a02 * v.x + a12 * v.y + a22 * v.z};
  }

  Number a00, a11, a22, a01, a02, a12;
};

/// The longest of three; of equals, the last one but for |x| = |z| > |y|: then z.
template <class Number>
Triple<Number> const& chosen(Triple<Number> const& x, Triple<Number> const& y, Triple<Number> const& z) {
  double const ofX = plain(x.magSquared()), ofY = plain(y.magSquared()), ofZ = plain(z.magSquared());
  if (ofX <= ofY) return ofY <= ofZ ? z : y;
  return ofZ < ofX ? x : z;
}

/// Eigenvector q: with p at hand, in the plane of d(e) = e x p.
template <class Number>
Triple<Number> secondVector(Shifted<Number> const& withoutR, Triple<Number> const& p, bool isRepeated) {
  Number const zero(0.0);
  Triple<Number> const dx{zero, -p.z, p.y}, dy{p.z, zero, -p.x}, dz{-p.y, p.x, zero};
  if (isRepeated) return (plain(dx.magSquared()) <= plain(dy.magSquared()) ? dy : dx).unit();
  return chosen(withoutR * dx, withoutR * dy, withoutR * dz).unit();
}

/// The eigenvectors to values in descending order that are not all equal; `values` are the roots of the same, in either
/// precision. As the values are sorted, the first can equal the last only when all do.
template <class Number>
void eigenvectors(Symmetric const& a, Number const (&values)[3], ZuVector (&u)[3]) {
  bool const isUpperRepeated = plain(values[0]) == plain(values[1]);
  unsigned int const p = isUpperRepeated ? 2 : 0, q = isUpperRepeated ? 0 : 1, r = isUpperRepeated ? 1 : 2;
  Shifted<Number> const withoutQ(a, values[q]), withoutR(a, values[r]);
  Triple<Number> const first =
      chosen(withoutR * withoutQ.column0(), withoutR * withoutQ.column1(), withoutR * withoutQ.column2()).unit();
  Triple<Number> const second = secondVector(withoutR, first, plain(values[q]) == plain(values[r]));
  u[p] = first.vector();
  u[q] = second.vector();
  u[r] = first.cross(second).vector();
}

void sortDescending(double (&values)[3]) {
  if (values[0] < values[1]) std::swap(values[0], values[1]);
  if (values[0] < values[2]) std::swap(values[0], values[2]);
  if (values[1] < values[2]) std::swap(values[1], values[2]);
}

/// The eigenvalues by Viete's formula for the matrix less its mean eigenvalue; false where plain doubles are not good
/// enough for that, or for the vectors.
bool plainEigenvalues(Symmetric const& a, double (&values)[3]) {
  double const mean = (a.a00 + a.a11 + a.a22) / 3.0;
  double const b00 = a.a00 - mean, b11 = a.a11 - mean, b22 = a.a22 - mean;
  double const squared =
      (b00 * b00 + b11 * b11 + b22 * b22) / 6.0 + (a.a01 * a.a01 + a.a02 * a.a02 + a.a12 * a.a12) / 3.0;
  double const radius = std::sqrt(squared);
  double const halfDeterminant = 0.5 * (b00 * (b11 * b22 - a.a12 * a.a12) - a.a01 * (a.a01 * b22 - a.a12 * a.a02) +
                                        a.a02 * (a.a01 * a.a12 - b11 * a.a02));
  double const cosine = halfDeterminant / (squared * radius);
  if (!(1.0 - cosine * cosine >= theSmallestSquaredSine)) return false;
  double const angle = std::acos(cosine) / 3.0;
  double const large = radius * std::cos(angle), small = std::sqrt(3.0) * radius * std::sin(angle);
  values[0] = mean + 2.0 * large;
  values[1] = mean - (large - small);
  values[2] = mean - (large + small);
  sortDescending(values);
  double const size = std::max(std::abs(values[0]), std::abs(values[2]));
  return std::min(values[0] - values[1], values[1] - values[2]) >= theSmallestPlainGap * size;
}

/// Sets the values and, unless all are equal, the vectors; true when they are not equal. `unit` is that of the matrix,
/// in which theEqualEigenvalues is given.
bool eigensystem(Symmetric const& a, double unit, double (&values)[3], ZuVector (&u)[3]) {
  auto const areEqual = [&values, equal = theEqualEigenvalues * unit] {
    return values[0] - values[1] <= equal && values[1] - values[2] <= equal;
  };
  if (plainEigenvalues(a, values)) {
    if (areEqual()) return false;
    eigenvectors(a, values, u);
    return true;
  }
  Wide wide[3];
  ZuMath::symmetricEigenvalues(a.a00, a.a01, a.a02, a.a11, a.a12, a.a22, wide[0], wide[1], wide[2]);
  for (unsigned int k = 0; k < 3; ++k) values[k] = wide[k].value();
  if (areEqual()) return false;
  eigenvectors(a, wide, u);
  return true;
}

}  // namespace

ZuVector const& ZuSpatialMatrix::operator[](unsigned int i) const {
  return const_cast<ZuSpatialMatrix&>(*this)[i];  // NOLINT: only refers to the row
}

ZuVector& ZuSpatialMatrix::operator[](unsigned int i) {
  if (i < 3) return i == 0 ? writable(m_Row0) : i == 1 ? writable(m_Row1) : writable(m_Row2);
  static thread_local ZuVector theDummy;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuSpatialMatrix::operator[]-->invalid index (%u)", i);
  theDummy = ZuVector();
  return theDummy;
}

void ZuSpatialMatrix::registerComponents() {
  ZuXmlCompoundType::registerComponents();
  registerComponent(ZuManip::ZuRow0Token, &m_Row0);
  registerComponent(ZuManip::ZuRow1Token, &m_Row1);
  registerComponent(ZuManip::ZuRow2Token, &m_Row2);
}

ZuToken const& ZuSpatialMatrix::classToken() { return ZuGeom::ZuSpatialMatrixToken; }

ZuVector ZuSpatialMatrix::transposeTimes(ZuVector const& v) const { return sum(v); }

ZuVector const& ZuSpatialMatrix::row0() const { return at0(); }
ZuVector& ZuSpatialMatrix::row0() { return writable(m_Row0); }
void ZuSpatialMatrix::setRow0(ZuVector const& row) { m_Row0.setValue(row); }
ZuVector const& ZuSpatialMatrix::row1() const { return at1(); }
ZuVector& ZuSpatialMatrix::row1() { return writable(m_Row1); }
void ZuSpatialMatrix::setRow1(ZuVector const& row) { m_Row1.setValue(row); }
ZuVector const& ZuSpatialMatrix::row2() const { return at2(); }
ZuVector& ZuSpatialMatrix::row2() { return writable(m_Row2); }
void ZuSpatialMatrix::setRow2(ZuVector const& row) { m_Row2.setValue(row); }

void ZuSpatialMatrix::setRows(ZuVector const& r0, ZuVector const& r1, ZuVector const& r2) {
  ZuVector const second = r1, third = r2;  // they may be rows of this matrix
  put(r0, second, third);
}

void ZuSpatialMatrix::setColumns(ZuVector const& c0, ZuVector const& c1, ZuVector const& c2) {
  put(ZuVector(c0.x(), c1.x(), c2.x()), ZuVector(c0.y(), c1.y(), c2.y()), ZuVector(c0.z(), c1.z(), c2.z()));
}

void ZuSpatialMatrix::setToZeros() { put(ZuVector(), ZuVector(), ZuVector()); }

void ZuSpatialMatrix::setToDcm(ZuOrientation const& q) {
  ZuVector r0, r1, r2;
  q.getDcmRows(r0, r1, r2);
  put(r0, r1, r2);
}

ZuSpatialMatrix ZuSpatialMatrix::transpose() const {
  return {at0().x(), at1().x(), at2().x(), at0().y(), at1().y(), at2().y(), at0().z(), at1().z(), at2().z()};
}

void ZuSpatialMatrix::setToTranspose() { setColumns(at0(), at1(), at2()); }

void ZuSpatialMatrix::setToCrossProductMatrix(ZuVector const& r) {
  put(ZuVector(0.0, -r.z(), r.y()), ZuVector(r.z(), 0.0, -r.x()), ZuVector(-r.y(), r.x(), 0.0));
}

void ZuSpatialMatrix::multiplyOnRightBy(ZuSpatialMatrix m) { *this *= m; }

void ZuSpatialMatrix::multiplyOnLeftBy(ZuSpatialMatrix m) { put(sum(m.at0()), sum(m.at1()), sum(m.at2())); }

void ZuSpatialMatrix::multiplyOnLeftBy(ZuVector const& v, ZuVector& out) const { out = sum(v); }

void ZuSpatialMatrix::multiplyOnRightByCrossProductMatrix(ZuVector const& r) {
  put(at0().cross(r), at1().cross(r), at2().cross(r));
}

void ZuSpatialMatrix::multiplyOnLeftByCrossProductMatrix(ZuVector const& r) {
  ZuSpatialMatrix const columns = transpose();
  setColumns(r.cross(columns.at0()), r.cross(columns.at1()), r.cross(columns.at2()));
}

void ZuSpatialMatrix::addSelfOuterProduct(ZuVector const& v) { addWeightedSelfOuterProduct(v, 1.0); }

void ZuSpatialMatrix::addWeightedSelfOuterProduct(ZuVector const& v, double weight) {
  // The product of the components comes first, so that a symmetric sum is so to the last bit.
  put(at0() + v * v.x() * weight, at1() + v * v.y() * weight, at2() + v * v.z() * weight);
}

void ZuSpatialMatrix::transformBy(ZuOrientation const& q) {
  if (q.isIdentity()) return;  // also what is not finite stays as it is
  ZuVector d0, d1, d2;
  q.getDcmRows(d0, d1, d2);
  auto const timesTranspose = [&](ZuVector const& row) { return ZuVector(row.dot(d0), row.dot(d1), row.dot(d2)); };
  ZuVector const m0 = timesTranspose(at0()), m1 = timesTranspose(at1()), m2 = timesTranspose(at2());
  put(m0 * d0.x() + m1 * d0.y() + m2 * d0.z(), m0 * d1.x() + m1 * d1.y() + m2 * d1.z(),
      m0 * d2.x() + m1 * d2.y() + m2 * d2.z());
}

bool ZuSpatialMatrix::approxEq(ZuSpatialMatrix const& other, double tol) const {
  return at0().approxEq(other.at0(), tol) && at1().approxEq(other.at1(), tol) && at2().approxEq(other.at2(), tol);
}

void ZuSpatialMatrix::getArray(ZuReArray& a) const {
  if (!a.resizeArray(3, 3)) return;
  for (unsigned int i = 0; i < 3; ++i) {
    for (unsigned int j = 0; j < 3; ++j) a(i, j) = (*this)[i][j];
  }
}

bool ZuSpatialMatrix::choleskyDecomposition(ZuSpatialMatrix& l) const {
  using ZuMath::nonZeroPos;
  double const l00 = ZuMath::sqrt(at0().x());
  double const l10 = at1().x() / nonZeroPos(l00);
  double const l11 = ZuMath::sqrt(at1().y() - l10 * l10);
  double const l20 = at2().x() / nonZeroPos(l00);
  double const l21 = (at2().y() - l20 * l10) / nonZeroPos(l11);
  double const l22 = ZuMath::sqrt(at2().z() - (l20 * l20 + l21 * l21));
  l.put(ZuVector(l00, 0.0, 0.0), ZuVector(l10, l11, 0.0), ZuVector(l20, l21, l22));
  return true;
}

bool ZuSpatialMatrix::getSymmetricPositiveDefiniteInverse(ZuSpatialMatrix& inverse) const {
  using ZuMath::nonZeroPos;
  ZuSpatialMatrix l;
  bool const isFactored = choleskyDecomposition(l);
  // Forward substitution: l k = I, k lower triangular.
  double const d0 = nonZeroPos(l.at0().x()), d1 = nonZeroPos(l.at1().y()), d2 = nonZeroPos(l.at2().z());
  double const k00 = 1.0 / d0, k11 = 1.0 / d1, k22 = 1.0 / d2;
  double const k10 = -(l.at1().x() * k00) / d1;
  double const k21 = -(l.at2().y() * k11) / d2;
  double const k20 = -(l.at2().x() * k00 + l.at2().y() * k10) / d2;
  double const i01 = k10 * k11 + k20 * k21, i02 = k20 * k22, i12 = k21 * k22;
  inverse.put(ZuVector(k00 * k00 + k10 * k10 + k20 * k20, i01, i02), ZuVector(i01, k11 * k11 + k21 * k21, i12),
              ZuVector(i02, i12, k22 * k22));
  return isFactored;
}

bool ZuSpatialMatrix::getSymmetricEigensystem(ZuVector& values, ZuVector& u0, ZuVector& u1, ZuVector& u2) const {
  Symmetric a{at0().x(), at0().y(), at0().z(), at1().y(), at1().z(), at2().z()};
  double const size = a.largestElement();
  bool const isHuge = size > theLargestPlainElement && std::isfinite(size);
  int const exponent = isHuge ? std::ilogb(size) : 0;
  if (isHuge) a.scaleBy(std::ldexp(1.0, -exponent));
  double lambda[3];
  ZuVector u[3] = {ZuVector::xVector(1.0), ZuVector::yVector(1.0), ZuVector::zVector(1.0)};
  eigensystem(a, isHuge ? std::ldexp(1.0, -exponent) : 1.0, lambda, u);
  if (isHuge) {
    for (double& value : lambda) value = std::ldexp(value, exponent);
  }
  values = ZuVector(lambda[0], lambda[1], lambda[2]);
  u0 = u[0];
  u1 = u[1];
  u2 = u[2];
  return true;
}

void ZuSpatialMatrix::setFromSymmetricEigensystem(ZuVector const& values, ZuVector const& u0, ZuVector const& u1,
                                                  ZuVector const& u2) {
  ZuSpatialMatrix sum;  // the vectors may be rows of this matrix
  sum.addWeightedSelfOuterProduct(u0.unitVector(), values.x());
  sum.addWeightedSelfOuterProduct(u1.unitVector(), values.y());
  sum.addWeightedSelfOuterProduct(u2.unitVector(), values.z());
  put(sum.at0(), sum.at1(), sum.at2());
}
