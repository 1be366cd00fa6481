// zuReArray.h - dense real matrix of any size. Group: maths.
#pragma once

#include <vector>

#include "foundation/zuVector.h"

/// A matrix of doubles, rows by columns; the default has neither. A copy costs one allocation, and none when the target
/// has room enough or the source is empty. As thread-safe as a vector of doubles.
///
/// A bad index or shape prints a message, reads 0.0, and changes nothing. Solving and inverting answer false for a
/// matrix that is singular within rounding, without a message: that is a result. Singular means that a pivot of the
/// factorisation P A = L U is within n eps of (|L| |U|)_kk, the bound of its own rounding error (N. Higham, "Accuracy
/// and Stability of Numerical Algorithms", theorem 9.3); the test does not depend on how rows and columns are scaled.
/// Matrices of up to 4 by 4 are factored without allocation.
class ZU_API ZuReArray {
 public:
  /// One row: `a[row][column]`. Holds for as long as the matrix keeps its shape.
  template <class Array, class Element>
  class RowOf {
   public:
    RowOf(Array& array, unsigned int row) : m_Array(array), m_Row(row) {}
    Element operator[](unsigned int column) const { return m_Array(m_Row, column); }

   private:
    Array& m_Array;
    unsigned int m_Row;
  };

  ZuReArray() = default;
  /// All elements 0; see `resizeArray`.
  ZuReArray(unsigned int rows, unsigned int columns) { resizeArray(rows, columns); }

  /// Sets the shape and every element to 0. False, with a message and the matrix unchanged, when there is no memory for
  /// it.
  bool resizeArray(unsigned int rows, unsigned int columns);
  unsigned int rows() const { return m_Rows; }
  unsigned int columns() const { return m_Columns; }

  double operator()(unsigned int row, unsigned int column) const {
    return row < m_Rows && column < m_Columns ? m_Elements[offset(row, column)] : invalidIndex(row, column);
  }
  double& operator()(unsigned int row, unsigned int column) {
    return row < m_Rows && column < m_Columns ? m_Elements[offset(row, column)] : invalidIndex(row, column);
  }
  RowOf<ZuReArray const, double> operator[](unsigned int row) const { return {*this, row}; }
  RowOf<ZuReArray, double&> operator[](unsigned int row) { return {*this, row}; }

  /// Exact, and of the same shape.
  bool operator==(ZuReArray const& a) const;
  bool operator!=(ZuReArray const& a) const { return !(*this == a); }

  /// The product of a 3x3 matrix and a vector; of any other shape a message and the zero vector.
  ZuVector operator*(ZuVector const& v) const;

  /// Becomes its inverse, for a 3x3 matrix. False when it is singular or of another shape; it is then unchanged.
  bool inv3();
  /// Becomes its inverse, for a square matrix of any size. False when it is singular or not square; it is then
  /// unchanged.
  bool invertSquareMatrix();
  /// Replaces the leading n by n block A by its factors, P A = L U with row exchanges: U on and above the diagonal, L
  /// below (its diagonal is 1). Row k of P A is row pivots[k] of A. False when the block is singular or exceeds the
  /// matrix: then nothing changes, and there are no pivots.
  bool LUDecomposition(unsigned int n, std::vector<unsigned int>& pivots);
  /// Solves A x = b for each column b of the right-hand side. The determinant goes to `determinant` unless that is
  /// null. False when A is singular or the shapes do not fit: the solution is then 0 (of the shape of the right-hand
  /// side) and so is the determinant. The solution may be the right-hand side.
  bool solve(ZuReArray const& rightHandSide, ZuReArray& solution, double* determinant = nullptr) const;
  /// The same for a 3x3 matrix.
  bool solve(ZuVector const& rightHandSide, ZuVector& solution, double* determinant = nullptr) const;

 private:
  std::size_t offset(unsigned int row, unsigned int column) const {
    return static_cast<std::size_t>(row) * m_Columns + column;
  }
  double& invalidIndex(unsigned int row, unsigned int column) const;
  bool isSquareOf(unsigned int n, char const* function) const;

  std::vector<double> m_Elements;  ///< row by row
  unsigned int m_Rows = 0;
  unsigned int m_Columns = 0;
};
