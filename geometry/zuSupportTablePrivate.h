// zuSupportTablePrivate.h - finds the farthest of many points in any direction. Group: meshes.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "foundation/zuXmlVectorVector.h"

/// The points of a set that can be farthest in some direction, looked up by the direction: the answer is as high as
/// that of a scan of the whole set, to rounding, in a time that hardly depends on their number, nor on earlier
/// questions, nor on how the points are joined.
///
/// **Structure.** Directions are points of the octahedron |x| + |y| + |z| = 1, on whose faces, the octants, u = |x| and
/// v = |y| are coordinates. Each octant has a grid of square cells, and each cell its candidates: those points that no
/// other one surpasses at all the cell's corners. In a cell a direction is a linear function of u and v, and so is the
/// height of a point: what is surpassed at the corners is so everywhere between. Cells of more than four candidates are
/// divided into four, some times over; what is left (around the normal of a facet of many corners) is a list. Small
/// sets are one list.
///
/// **Cost.** Building takes 3 to 6 microseconds a point, and 200 to 1100 bytes, by how the number of points fits the
/// next power of two; of prisms and discs of many corners 20 microseconds and 2000 bytes.
///
/// **Threads.** Nothing changes after it was built.
class ZuSupportTable {
 public:
  /// Of the points with these indices, ascending, at least one. Those that are not finite count for nothing, unless all
  /// are such.
  /// @param isPlain a list of all points, which takes no time to build, and a scan to answer
  ZuSupportTable(ZuXmlVectorVector const& points, std::vector<unsigned int> const& indices, bool isPlain = false);

  /// The place of the farthest point, for point() and index(); of equal candidates the one of the lowest index. Of a
  /// direction that is zero or not finite: any place.
  unsigned int farthest(ZuVector const& direction) const {
    if (m_SmallSet != 0) return farthestOfList(direction, 0, m_SmallSet);
    double const x = std::abs(direction.x()), y = std::abs(direction.y()), sum = x + y + std::abs(direction.z());
    if (!(sum > theSmallestSum && sum < theLargestSum)) return farthestOfExtreme(direction);
    double const u = x / sum * m_Size, v = y / sum * m_Size;
    int const column = static_cast<int>(u), row = static_cast<int>(v);
    unsigned int const octant = (std::signbit(direction.x()) ? 1U : 0U) | (std::signbit(direction.y()) ? 2U : 0U) |
                                (std::signbit(direction.z()) ? 4U : 0U);
    Cell const& cell =
        m_Cells[(octant * m_Stride + static_cast<unsigned int>(row)) * m_Stride + static_cast<unsigned int>(column)];
    if ((cell[0] & theFlag) != 0) return farthestOfDivided(direction, cell, u - column, v - row);
    double height = 0.0;
    return farthestOfFour(direction, cell, height);
  }
  ZuVector const& point(unsigned int place) const { return m_Points[place]; }
  /// In the list of points that it was built of.
  unsigned int index(unsigned int place) const { return m_Indices[place]; }

 private:
  class Builder;
  /// The places of four candidates, ascending in their indices, the last one repeated. Or, with the flag in the first
  /// number: where the four parts of the cell are, and 0; where a list starts, and of how many cells it is.
  using Cell = std::array<unsigned int, 4>;

  static constexpr unsigned int theFlag = 0x80000000U;
  /// Outside of these, products with a direction may leave the doubles.
  static constexpr double theSmallestSum = 1e-150, theLargestSum = 1e150;

  unsigned int farthestOfFour(ZuVector const& direction, Cell const& cell, double& height) const {
    double const a = m_Points[cell[0]].dot(direction), b = m_Points[cell[1]].dot(direction);
    double const c = m_Points[cell[2]].dot(direction), d = m_Points[cell[3]].dot(direction);
    double const highestOfAb = std::max(a, b), highestOfCd = std::max(c, d);
    height = std::max(highestOfAb, highestOfCd);
    unsigned int const ofAb = isLess(a, b), ofCd = 2 + isLess(c, d);
    return cell[ofAb + (ofCd - ofAb) * isLess(highestOfAb, highestOfCd)];
  }
  /// 1 or 0, by a sign and not by a comparison: compilers make branches of those, and half of the guesses at them are
  /// wrong.
  static unsigned int isLess(double a, double b) { return static_cast<unsigned int>(std::signbit(a - b)); }
  unsigned int farthestOfList(ZuVector const& direction, std::size_t first, unsigned int count) const {
    double best = 0.0, height = 0.0;
    unsigned int farthest = farthestOfFour(direction, m_Cells[first], best);
    for (std::size_t i = first + 1; i < first + count; ++i) {
      unsigned int const place = farthestOfFour(direction, m_Cells[i], height);
      farthest += (place - farthest) * isLess(best, height);
      best = std::max(best, height);
    }
    return farthest;
  }
  unsigned int farthestOfExtreme(ZuVector const& direction) const;
  unsigned int farthestOfDivided(ZuVector const& direction, Cell const& cell, double u, double v) const;

  double m_Size = 1.0;          ///< cells along an edge of an octant
  unsigned int m_Stride = 0;    ///< one more, for the far vertices of the octants
  unsigned int m_SmallSet = 0;  ///< of how many cells the list is that stands for the grid; 0 when there is one
  std::vector<Cell> m_Cells;    ///< by octant, row and column; then the parts of cells and the lists
  std::vector<ZuVector> m_Points;
  std::vector<unsigned int> m_Indices;
};
