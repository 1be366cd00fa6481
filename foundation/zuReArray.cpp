#include "foundation/zuReArray.h"

#include <Eigen/LU>
#include <algorithm>
#include <cstdint>
#include <exception>
#include <stdexcept>

#include "foundation/zuPrint.h"

namespace {

template <int Most>
using Square = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor, Most, Most>;
using Rows = Eigen::Map<Square<Eigen::Dynamic>>;
using ConstRows = Eigen::Map<Square<Eigen::Dynamic> const, Eigen::Unaligned, Eigen::OuterStride<>>;

/// Up to this order a factorisation lives on the stack.
constexpr int theStackOrder = 4;

template <class Factors>
bool isSingular(Factors const& lu) {
  double const relative = static_cast<double>(lu.rows()) * std::numeric_limits<double>::epsilon();
  for (Eigen::Index k = 0; k < lu.rows(); ++k) {
    double const pivot = std::abs(lu(k, k));
    double scale = pivot;
    for (Eigen::Index j = 0; j < k; ++j) scale += std::abs(lu(k, j) * lu(j, k));
    if (!(pivot > relative * scale)) return true;  // also for nan
  }
  return false;
}

/// Factors the square matrix and hands the factors to `use`, which tells success; false if the matrix is singular.
template <class Use>
bool withFactors(ConstRows const& matrix, Use&& use) {
  if (matrix.rows() <= theStackOrder) {
    Eigen::PartialPivLU<Square<theStackOrder>> const factors(matrix);
    return !isSingular(factors.matrixLU()) && use(factors);
  }
  Eigen::PartialPivLU<Square<Eigen::Dynamic>> const factors(matrix);
  return !isSingular(factors.matrixLU()) && use(factors);
}

ConstRows leadingBlock(std::vector<double> const& elements, unsigned int n, unsigned int columns) {
  return ConstRows(elements.data(), n, n, Eigen::OuterStride<>(columns));
}

}  // namespace

bool ZuReArray::resizeArray(unsigned int rows, unsigned int columns) {
  try {
    std::uint64_t const size = std::uint64_t{rows} * columns;  // a std::size_t of 32 bits would wrap
    if (size > m_Elements.max_size()) throw std::length_error("ZuReArray");
    m_Elements.assign(static_cast<std::size_t>(size), 0.0);
  } catch (std::exception const&) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuReArray::resizeArray-->no memory for %u rows and %u columns",
                                rows, columns);
    return false;
  }
  m_Rows = rows;
  m_Columns = columns;
  return true;
}

double& ZuReArray::invalidIndex(unsigned int row, unsigned int column) const {
  static thread_local double theDummy;
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "ZuReArray::operator()-->invalid index (%u, %u) of %u rows and %u columns", row, column,
                              m_Rows, m_Columns);
  theDummy = 0.0;
  return theDummy;
}

bool ZuReArray::operator==(ZuReArray const& a) const {
  return m_Rows == a.m_Rows && m_Columns == a.m_Columns && m_Elements == a.m_Elements;
}

bool ZuReArray::isSquareOf(unsigned int n, char const* function) const {
  if (m_Rows == n && m_Columns == n) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuReArray::%s-->invalid shape (%u rows, %u columns)", function,
                              m_Rows, m_Columns);
  return false;
}

ZuVector ZuReArray::operator*(ZuVector const& v) const {
  if (!isSquareOf(3, "operator*")) return ZuVector();
  double const* const a = m_Elements.data();
  return ZuVector(a[0] * v.x() + a[1] * v.y() + a[2] * v.z(), a[3] * v.x() + a[4] * v.y() + a[5] * v.z(),
                  a[6] * v.x() + a[7] * v.y() + a[8] * v.z());
}

bool ZuReArray::inv3() { return isSquareOf(3, "inv3") && invertSquareMatrix(); }

bool ZuReArray::invertSquareMatrix() {
  if (!isSquareOf(m_Rows, "invertSquareMatrix")) return false;
  return withFactors(leadingBlock(m_Elements, m_Rows, m_Columns), [this](auto const& factors) {
    auto const inverse = factors.inverse().eval();
    if (!inverse.allFinite()) return false;
    Rows(m_Elements.data(), m_Rows, m_Columns) = inverse;
    return true;
  });
}

bool ZuReArray::LUDecomposition(unsigned int n, std::vector<unsigned int>& pivots) {
  pivots.clear();
  if (n > m_Rows || n > m_Columns) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuReArray::LUDecomposition-->invalid order (%u) of %u rows and %u columns", n, m_Rows,
                                m_Columns);
    return false;
  }
  return withFactors(leadingBlock(m_Elements, n, m_Columns), [&](auto const& factors) {
    pivots.resize(n);
    for (unsigned int row = 0; row < n; ++row) {
      pivots[static_cast<unsigned int>(factors.permutationP().indices()[row])] = row;
      for (unsigned int column = 0; column < n; ++column) {
        m_Elements[offset(row, column)] = factors.matrixLU()(row, column);
      }
    }
    return true;
  });
}

bool ZuReArray::solve(ZuReArray const& rightHandSide, ZuReArray& solution, double* determinant) const {
  if (&solution == this) {
    ZuReArray const matrix(*this);  // what follows overwrites the solution
    return matrix.solve(rightHandSide, solution, determinant);
  }
  if (&solution != &rightHandSide) solution = rightHandSide;
  bool const isSolved = isSquareOf(rightHandSide.rows(), "solve") &&
                        withFactors(leadingBlock(m_Elements, m_Rows, m_Columns), [&](auto const& factors) {
                          Rows x(solution.m_Elements.data(), solution.m_Rows, solution.m_Columns);
                          x = factors.solve(x).eval();
                          if (determinant != nullptr) *determinant = factors.determinant();
                          return x.allFinite();
                        });
  if (isSolved) return true;
  std::fill(solution.m_Elements.begin(), solution.m_Elements.end(), 0.0);
  if (determinant != nullptr) *determinant = 0.0;
  return false;
}

bool ZuReArray::solve(ZuVector const& rightHandSide, ZuVector& solution, double* determinant) const {
  Eigen::Vector3d x(rightHandSide.x(), rightHandSide.y(), rightHandSide.z());
  bool const isSolved = isSquareOf(3, "solve") && withFactors(leadingBlock(m_Elements, 3, 3), [&](auto const& factors) {
                          x = factors.solve(x).eval();
                          if (determinant != nullptr) *determinant = factors.determinant();
                          return x.allFinite();
                        });
  solution = isSolved ? ZuVector(x[0], x[1], x[2]) : ZuVector();
  if (!isSolved && determinant != nullptr) *determinant = 0.0;
  return isSolved;
}
