// zuSpatialMatrix.h - 3x3 matrix of quantities in space. Group: spatial algebra.
#pragma once

#include "foundation/zuOrientation.h"
#include "foundation/zuReArray.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"

/// A real 3x3 matrix, held as three rows: an inertia tensor (kg m^2), a rotation, the operator of a cross product. The
/// unit and the frame are those of the numbers put in; the default is the zero matrix.
///
/// Written as the elements "row0", "row1" and "row2". Constructing, copying and assigning never allocate; a copy costs
/// what nine doubles do, and is 144 bytes large. Equality is exact. As thread-safe as a value, except that the first
/// XML use builds the object's table of components. Infinite and nan elements go through all arithmetic by IEEE rules.
///
/// Guarantees, with eps = 2^-52 and |A| the largest magnitude of an eigenvalue of the symmetric matrix A:
/// 1. Eigenvalues are within 8 eps |A|, repeated and nearly repeated ones included.
/// 2. Eigenvectors are orthonormal within 64 eps, and the sum of values[k] u_k u_k^T is A within 64 eps |A|, unless the
///    three eigenvalues count as equal: see `getSymmetricEigensystem`.
/// 3. A factor L L^T is A within 8 eps |A| for a positive definite A; the inverse of A is off by a share of
///    eps (|A| / smallest eigenvalue), as it is for any method in doubles.
class ZU_API ZuSpatialMatrix : public ZuXmlClass<ZuSpatialMatrix, ZuXmlCompoundType> {
 public:
  ZuSpatialMatrix() = default;
  /// Row by row.
  ZuSpatialMatrix(double a00, double a01, double a02, double a10, double a11, double a12, double a20, double a21,
                  double a22)
      : m_Row0(ZuVector(a00, a01, a02)), m_Row1(ZuVector(a10, a11, a12)), m_Row2(ZuVector(a20, a21, a22)) {}
  ZuSpatialMatrix(ZuVector const& row0, ZuVector const& row1, ZuVector const& row2)
      : m_Row0(row0), m_Row1(row1), m_Row2(row2) {}
  static ZuSpatialMatrix diagonal(double a00, double a11, double a22) {
    return {ZuVector::xVector(a00), ZuVector::yVector(a11), ZuVector::zVector(a22)};
  }
  static ZuSpatialMatrix identity() { return diagonal(1.0, 1.0, 1.0); }
  /// The matrix of r x: its product with v is r x v.
  static ZuSpatialMatrix crossProductMatrix(ZuVector const& r) {
    ZuSpatialMatrix matrix;
    matrix.setToCrossProductMatrix(r);
    return matrix;
  }

  /// Row 0, 1 or 2. Any other index prints a message and reads zeros; what is written there is lost.
  ZuVector const& operator[](unsigned int i) const;
  ZuVector& operator[](unsigned int i);

  /// Exact, element by element.
  bool operator==(ZuSpatialMatrix const& m) const {
    return ZuXmlCompoundType::operator==(m) && m_Row0 == m.m_Row0 && m_Row1 == m.m_Row1 && m_Row2 == m.m_Row2;
  }
  bool operator!=(ZuSpatialMatrix const& m) const { return !(*this == m); }

  ZuSpatialMatrix operator+(ZuSpatialMatrix const& m) const {
    return {at0() + m.at0(), at1() + m.at1(), at2() + m.at2()};
  }
  ZuSpatialMatrix operator-(ZuSpatialMatrix const& m) const {
    return {at0() - m.at0(), at1() - m.at1(), at2() - m.at2()};
  }
  ZuSpatialMatrix& operator+=(ZuSpatialMatrix const& m) {
    return put(at0() + m.at0(), at1() + m.at1(), at2() + m.at2());
  }
  ZuSpatialMatrix& operator-=(ZuSpatialMatrix const& m) {
    return put(at0() - m.at0(), at1() - m.at1(), at2() - m.at2());
  }
  ZuSpatialMatrix& operator*=(double s) { return put(at0() * s, at1() * s, at2() * s); }
  /// The matrix product, this on the left.
  ZuSpatialMatrix operator*(ZuSpatialMatrix const& m) const { return {m.sum(at0()), m.sum(at1()), m.sum(at2())}; }
  ZuSpatialMatrix& operator*=(ZuSpatialMatrix const& m) { return put(m.sum(at0()), m.sum(at1()), m.sum(at2())); }
  ZuVector operator*(ZuVector const& v) const { return {at0().dot(v), at1().dot(v), at2().dot(v)}; }

  // See ZuXmlCompoundType
  void registerComponents() override;
  static ZuToken const& classToken();
  static ZuSpatialMatrix testObject() { return {1.5, -2.25, 0.375, 4.0, 0.1, -1e-7, 8.0, -0.5, 3.0}; }

  /// The product of the transpose with v.
  virtual ZuVector transposeTimes(ZuVector const& v) const;

  virtual ZuVector const& row0() const;
  virtual ZuVector& row0();
  virtual void setRow0(ZuVector const& row);
  virtual ZuVector const& row1() const;
  virtual ZuVector& row1();
  virtual void setRow1(ZuVector const& row);
  virtual ZuVector const& row2() const;
  virtual ZuVector& row2();
  virtual void setRow2(ZuVector const& row);
  virtual void setRows(ZuVector const& r0, ZuVector const& r1, ZuVector const& r2);
  virtual void setColumns(ZuVector const& c0, ZuVector const& c1, ZuVector const& c2);
  virtual void setToZeros();
  /// Becomes the matrix of the rotation: its product with v is q * v.
  virtual void setToDcm(ZuOrientation const& q);
  virtual ZuSpatialMatrix transpose() const;
  virtual void setToTranspose();
  /// See `crossProductMatrix`.
  virtual void setToCrossProductMatrix(ZuVector const& r);

  /// Becomes this times m.
  virtual void multiplyOnRightBy(ZuSpatialMatrix m);
  /// Becomes m times this.
  virtual void multiplyOnLeftBy(ZuSpatialMatrix m);
  /// `out` becomes the row v^T times this: the numbers of `transposeTimes(v)`. It may be v.
  virtual void multiplyOnLeftBy(ZuVector const& v, ZuVector& out) const;
  /// Becomes this times the matrix of r x: each row w becomes w x r.
  virtual void multiplyOnRightByCrossProductMatrix(ZuVector const& r);
  /// Becomes the matrix of r x times this: each column c becomes r x c.
  virtual void multiplyOnLeftByCrossProductMatrix(ZuVector const& r);
  /// Adds v v^T.
  virtual void addSelfOuterProduct(ZuVector const& v);
  /// Adds weight v v^T.
  virtual void addWeightedSelfOuterProduct(ZuVector const& v, double weight);
  /// Changes the frame by p_1 = q * p_2: with D the matrix of q, becomes D this D^T. The identity changes no element.
  virtual void transformBy(ZuOrientation const& q);
  /// True when every element differs by at most the tolerance.
  virtual bool approxEq(ZuSpatialMatrix const& other, double tol) const;
  /// Makes the array 3 by 3 and fills it.
  virtual void getArray(ZuReArray& a) const;

  /// `l` becomes the lower triangular matrix with l l^T = this, for a symmetric positive definite matrix; only the
  /// diagonal and what is below it are read. Always true, and symmetry is not tested: a pivot that is not above 0
  /// counts as 0 on the diagonal and, as a divisor, as the smallest positive normal double. `l` may be this matrix.
  virtual bool choleskyDecomposition(ZuSpatialMatrix& l) const;
  /// `inverse` becomes l^-T l^-1 with l from `choleskyDecomposition`; it may be this matrix. Always true: a matrix that
  /// is not positive definite gives huge, infinite or nan elements.
  virtual bool getSymmetricPositiveDefiniteInverse(ZuSpatialMatrix& inverse) const;
  /// The eigenvalues of a symmetric matrix in descending order, with the eigenvector of each: unit vectors at right
  /// angles, of either sign. Only the diagonal and what is above it are read. Always true; an element that is not
  /// finite gets a message, and the answer is that of the zero matrix.
  ///
  /// Neighbouring values within 1e-12 of each other, in the unit of the matrix and whatever its size, make all three
  /// count as equal: the vectors are then the unit axes, and the matrix that they rebuild is off by up to 2e-12. Choose
  /// the unit so that the elements are not that small. This threshold is deliberate.
  ///
  /// Method, in closed form: the roots of the characteristic polynomial, of the matrix less its mean diagonal so that
  /// the coefficients do not cancel (ZuMath::cubicRoots of the plain ones would leave repeated values half their
  /// digits); then the first vector is the largest column of
  /// (A - values[r]) (A - values[q]), by Cayley and Hamilton, the second the largest column of A - values[r] within the
  /// plane at a right angle to it, the third their cross product. In doubles these steps lose digits where two values
  /// are near each other: of the vectors, a factor of |A| / difference; of the values, with the coefficients of the
  /// polynomial, half of all. Where two are nearer than |A| / 64 the same steps are therefore taken in twice the
  /// precision. Some 0.25 us, 1 us in twice the precision.
  virtual bool getSymmetricEigensystem(ZuVector& values, ZuVector& u0, ZuVector& u1, ZuVector& u2) const;
  /// Becomes the sum of values[k] u_k u_k^T, where the vectors are normalised first.
  virtual void setFromSymmetricEigensystem(ZuVector const& values, ZuVector const& u0, ZuVector const& u1,
                                           ZuVector const& u2);

 private:
  ZuVector const& at0() const { return m_Row0.value(); }
  ZuVector const& at1() const { return m_Row1.value(); }
  ZuVector const& at2() const { return m_Row2.value(); }
  /// The row that its XML object holds: none of the objects is const.
  static ZuVector& writable(ZuXmlVector& row) { return const_cast<ZuVector&>(row.value()); }  // NOLINT
  /// The sum of the rows, weighted: w^T this.
  ZuVector sum(ZuVector const& w) const { return at0() * w.x() + at1() * w.y() + at2() * w.z(); }
  ZuSpatialMatrix& put(ZuVector const& r0, ZuVector const& r1, ZuVector const& r2) {
    m_Row0.setValue(r0);
    m_Row1.setValue(r1);
    m_Row2.setValue(r2);
    return *this;
  }

  ZuXmlVector m_Row0;
  ZuXmlVector m_Row1;
  ZuXmlVector m_Row2;
};
