#include "geometry/zuSupportTablePrivate.h"

#include <limits>

#include "geometry/zuMeshSurfacePrivate.h"

/// Fills the cells from the octants down: what is no candidate of a square is none of its parts.
class ZuSupportTable::Builder {
 public:
  explicit Builder(ZuSupportTable& table) : m_Table(table) {}

  void build(ZuXmlVectorVector const& points, std::vector<unsigned int> const& indices, bool isPlain) {
    takePoints(points, indices, isPlain);
    for (unsigned int i = 0; i < m_Offsets.size(); ++i) m_Stack.push_back(i);
    if (isPlain || m_Offsets.size() <= theSmallSet) {
      appendList(0);
      m_Table.m_SmallSet = static_cast<unsigned int>(m_Table.m_Cells.size());
      return;
    }
    makeGrid();
    for (unsigned int octant = 0; octant < 8; ++octant) {
      m_MostWork = theWorkPerPoint * m_Offsets.size() * (octant + 1) / 8;
      for (auto const& [column, row] : {std::pair(0U, 0U), std::pair(1U, 0U), std::pair(0U, 1U)}) {
        fill({octant, 0, column, row}, theNoCell, 0, m_Offsets.size());
      }
    }
    dropUnused();
    m_Table.m_Cells.shrink_to_fit();
  }

 private:
  /// A part of an octant whose edge is divided into 2^depth. Where the octant ends it is a triangle, and beyond, when
  /// it has a corner only in common with it, that corner.
  struct Square {
    unsigned int octant, depth, column, row;

    Square part(unsigned int k) const { return {octant, depth + 1, 2 * column + (k & 1U), 2 * row + (k >> 1U)}; }
    bool isOutside() const { return column + row > 1U << depth; }
    ZuVector corner(unsigned int right, unsigned int up) const {
      double const edge = std::ldexp(1.0, -static_cast<int>(depth));
      double const u = (column + right) * edge, v = (row + up) * edge, w = 1.0 - u - v;
      return {(octant & 1U) != 0 ? -u : u, (octant & 2U) != 0 ? -v : v, (octant & 4U) != 0 ? -w : w};
    }
    std::array<ZuVector, 4> corners() const {
      unsigned int const end = 1U << depth, side = column + row < end ? 1 : 0, far = column + row + 1 < end ? 1 : 0;
      return {corner(0, 0), corner(side, 0), corner(0, side), corner(side, far)};
    }
  };
  using Heights = std::array<double, 4>;

  /// Sets what is to be told about the points, each place once but in a plain list, and where they are.
  void takePoints(ZuXmlVectorVector const& points, std::vector<unsigned int> const& indices, bool isPlain) {
    double largest = 0.0;
    auto const magnitude = [](ZuVector const& p) {
      return std::max(std::abs(p.x()), std::max(std::abs(p.y()), std::abs(p.z())));
    };
    std::vector<unsigned int> const welded = isPlain ? std::vector<unsigned int>() : zuWeld(points);
    std::vector<bool> isTaken(welded.size(), false);
    for (unsigned int const i : indices) {
      bool const isFinite = points[i] * 0.0 == ZuVector();
      if (!isFinite || (!isPlain && isTaken[welded[i]])) continue;
      if (!isPlain) isTaken[welded[i]] = true;
      m_Table.m_Indices.push_back(i);
      largest = std::max(largest, magnitude(points[i]));
    }
    if (m_Table.m_Indices.empty()) m_Table.m_Indices.push_back(indices[0]);
    for (unsigned int const i : m_Table.m_Indices) m_Table.m_Points.push_back(points[i]);
    // From one of them, so that a place far from the origin of the frame costs no digits.
    double const factor = largest > theLargestCoordinate ? 0.25 : 1.0;
    ZuVector const origin = m_Table.m_Points[0] * factor;
    double size = 0.0;
    for (ZuVector const& p : m_Table.m_Points) {
      m_Offsets.push_back(p * factor - origin);
      size = std::max(size, magnitude(m_Offsets.back()));
    }
    m_Rounding = theRounding * size;
  }

  void makeGrid() {
    double const cells = theCellsPerPoint * static_cast<double>(m_Offsets.size());
    while (std::ldexp(4.0, 2 * static_cast<int>(m_Depth)) < cells && m_Depth < theDeepestGrid) ++m_Depth;
    m_Table.m_Size = std::ldexp(1.0, static_cast<int>(m_Depth));
    m_Table.m_Stride = (1U << m_Depth) + 1;
    m_Table.m_Cells.resize(std::size_t{8} * m_Table.m_Stride * m_Table.m_Stride, Cell{0, 0, 0, 0});
    m_MostCells = m_Table.m_Cells.size() + theMostCellsPerPoint * m_Offsets.size();
    m_LongestList = std::max(theLongestList, m_Offsets.size() / theListsPerScan);
  }

  /// Sets the cells of the square, or the given one, which is it, from the candidates in this part of the stack.
  void fill(Square const& square, std::size_t cell, std::size_t begin, std::size_t end) {
    std::size_t const first = m_Stack.size();
    narrow(square, begin, end);
    std::size_t const allowed = square.depth < m_Depth ? theMostCandidates : m_LongestList;
    bool const isDivided = m_Stack.size() - first > allowed && square.depth < m_Depth + theMostDivisions;
    if (isDivided && m_Work < m_MostWork && m_Table.m_Cells.size() < m_MostCells) {
      divide(square, cell, first);
    } else {
      spread(square, cell, first);
    }
    m_Stack.resize(first);
  }

  void divide(Square const& square, std::size_t cell, std::size_t first) {
    std::size_t const end = m_Stack.size(), parts = m_Table.m_Cells.size();
    if (cell != theNoCell || square.depth == m_Depth) {
      m_Table.m_Cells[cell != theNoCell ? cell : gridCell(square.column, square.row, square.octant)] = {
          theFlag | static_cast<unsigned int>(parts), 0, 0, 0};
      m_Table.m_Cells.resize(parts + 4, Cell{0, 0, 0, 0});
    }
    for (unsigned int k = 0; k < 4; ++k) {
      Square const part = square.part(k);
      if (!part.isOutside()) fill(part, square.depth < m_Depth ? theNoCell : parts + k, first, end);
    }
  }

  void spread(Square const& square, std::size_t cell, std::size_t first) {
    Cell const content = cellOf(first);
    if (cell != theNoCell) {
      m_Table.m_Cells[cell] = content;
      return;
    }
    unsigned int const shift = m_Depth - square.depth, end = 1U << m_Depth;
    for (unsigned int row = square.row << shift; row < (square.row + 1) << shift; ++row) {
      for (unsigned int column = square.column << shift; column < (square.column + 1) << shift; ++column) {
        if (column + row <= end) m_Table.m_Cells[gridCell(column, row, square.octant)] = content;
      }
    }
  }

  std::size_t gridCell(unsigned int column, unsigned int row, unsigned int octant) const {
    return (octant * m_Table.m_Stride + row) * m_Table.m_Stride + column;
  }

  /// Of the candidates on top of the stack, which it leaves there.
  Cell cellOf(std::size_t first) {
    if (m_Stack.size() - first <= theMostCandidates) return fourFrom(first);
    std::size_t const list = m_Table.m_Cells.size();
    appendList(first);
    return {theFlag | static_cast<unsigned int>(list), static_cast<unsigned int>(m_Table.m_Cells.size() - list), 0, 0};
  }
  void appendList(std::size_t first) {
    for (; first < m_Stack.size(); first += theMostCandidates) m_Table.m_Cells.push_back(fourFrom(first));
  }
  Cell fourFrom(std::size_t first) const {
    std::size_t const last = m_Stack.size() - 1;
    return {m_Stack[first], m_Stack[std::min(first + 1, last)], m_Stack[std::min(first + 2, last)],
            m_Stack[std::min(first + 3, last)]};
  }

  /// Puts onto the stack the candidates of the square, out of those of a square around it.
  void narrow(Square const& square, std::size_t begin, std::size_t end) {
    if (end - begin <= theMostCandidates) {
      for (std::size_t i = begin; i < end; ++i) m_Stack.push_back(m_Stack[i]);
      return;
    }
    m_Work += end - begin;
    std::array<ZuVector, 4> const corners = square.corners();
    Heights margins;
    for (unsigned int k = 0; k < 4; ++k) {
      // Along an axis heights are exact, and the points of a facet that faces along it equal.
      bool const isAxis = corners[k].magSquared() == 1.0;
      margins[k] = isAxis ? 0.0 : m_Rounding;
    }
    m_Heights.resize(end - begin);
    for (std::size_t i = 0; i < m_Heights.size(); ++i) {
      ZuVector const& p = m_Offsets[m_Stack[begin + i]];
      for (unsigned int k = 0; k < 4; ++k) m_Heights[i][k] = p.dot(corners[k]);
    }
    std::array<std::size_t, 5> const highest = findHighest();
    for (std::size_t i = 0; i < m_Heights.size(); ++i) {
      bool const isSurpassed =
          std::any_of(highest.begin(), highest.end(), [&](std::size_t j) { return surpasses(j, i, margins); });
      if (!isSurpassed) m_Stack.push_back(m_Stack[begin + i]);
    }
  }

  /// In the middle of the square, and at its corners; the first of equals.
  std::array<std::size_t, 5> findHighest() const {
    std::array<std::size_t, 5> highest{};
    auto const inMiddle = [](Heights const& h) { return h[0] * 0.25 + h[1] * 0.25 + h[2] * 0.25 + h[3] * 0.25; };
    double best = inMiddle(m_Heights[0]);
    for (std::size_t i = 1; i < m_Heights.size(); ++i) {
      double const middle = inMiddle(m_Heights[i]);
      if (middle > best) {
        best = middle;
        highest[0] = i;
      }
      for (unsigned int k = 0; k < 4; ++k) {
        if (m_Heights[i][k] > m_Heights[highest[k + 1]][k]) highest[k + 1] = i;
      }
    }
    return highest;
  }

  /// Whether j is at least as high as i at every corner for sure, and to be preferred where it is just as high.
  bool surpasses(std::size_t j, std::size_t i, Heights const& margins) const {
    Heights const &a = m_Heights[j], &b = m_Heights[i];
    int lower = 0;
    for (std::size_t k = 0; k < 4; ++k) lower += !(a[k] - b[k] >= margins[k]) ? 1 : 0;  // without branches
    if (lower != 0) return false;
    return j < i || (j > i && a != b);
  }

  /// Numbers the points anew, in the order in which cells first name them, so that what is needed together lies
  /// together.
  void dropUnused() {
    std::vector<unsigned int> places(m_Table.m_Points.size(), theNoPlace);
    std::vector<ZuVector> points;
    std::vector<unsigned int> indices;
    auto const renumber = [&](unsigned int& place) {
      if (places[place] == theNoPlace) {
        places[place] = static_cast<unsigned int>(points.size());
        points.push_back(m_Table.m_Points[place]);
        indices.push_back(m_Table.m_Indices[place]);
      }
      place = places[place];
    };
    for (Cell& cell : m_Table.m_Cells) {
      if ((cell[0] & theFlag) == 0) std::for_each(cell.begin(), cell.end(), renumber);
    }
    m_Table.m_Points = std::move(points);
    m_Table.m_Indices = std::move(indices);
  }

  static constexpr std::size_t theNoCell = std::numeric_limits<std::size_t>::max();
  static constexpr unsigned int theNoPlace = std::numeric_limits<unsigned int>::max();
  /// Points up to which a scan is faster than the grid.
  static constexpr std::size_t theSmallSet = 12;
  /// Up to so many candidates, or this part of all points, a cell is left as a list.
  static constexpr std::size_t theLongestList = 16, theListsPerScan = 128;
  static constexpr std::size_t theMostCandidates = std::tuple_size<Cell>::value;
  /// Of a height, in sizes of the set: a product and three sums, of each of two, with room for that of a query's u and
  /// v.
  static constexpr double theRounding = 16.0 * std::numeric_limits<double>::epsilon();
  /// Above, differences of coordinates would leave the doubles.
  static constexpr double theLargestCoordinate = 1e300;
  /// Cells of the grid for each point: fewer leave more of them divided, more do not pay.
  static constexpr double theCellsPerPoint = 4.0;
  /// Of the grid, and of its cells: 256 cells along an edge, and 4096 where points are dense.
  static constexpr unsigned int theDeepestGrid = 8, theMostDivisions = 4;
  /// Points are compared in squares this many times, on average. Sound sets need 100; those of many points within
  /// rounding of one another, which no square tells apart, are given up then and left as lists.
  static constexpr std::size_t theWorkPerPoint = 1000;
  /// Beside those of the grid: 2 kB a point. Discs take nearly as many; with more, sets as above take 5 kB.
  static constexpr std::size_t theMostCellsPerPoint = 128;

  ZuSupportTable& m_Table;
  std::vector<ZuVector> m_Offsets;    ///< of the points, from one of them
  std::vector<unsigned int> m_Stack;  ///< candidates of a square, and of those around it
  std::vector<Heights> m_Heights;     ///< of the candidates at hand, at the corners of their square
  double m_Rounding = 0.0;
  unsigned int m_Depth = 0;
  std::size_t m_Work = 0, m_MostWork = 0, m_MostCells = 0, m_LongestList = theLongestList;
};

ZuSupportTable::ZuSupportTable(ZuXmlVectorVector const& points, std::vector<unsigned int> const& indices,
                               bool isPlain) {
  Builder(*this).build(points, indices, isPlain);
}

unsigned int ZuSupportTable::farthestOfExtreme(ZuVector const& direction) const {
  ZuVector const unit = direction.unitVector();
  return unit == ZuVector() ? 0 : farthest(unit);
}

/// u and v are the direction's place in the cell, whose edge is 1.
unsigned int ZuSupportTable::farthestOfDivided(ZuVector const& direction, Cell const& cell, double u, double v) const {
  Cell const* present = &cell;
  while (((*present)[0] & theFlag) != 0) {
    unsigned int const first = (*present)[0] & ~theFlag, count = (*present)[1];
    if (count != 0) return farthestOfList(direction, first, count);
    unsigned int const right = u >= 0.5 ? 1 : 0, up = v >= 0.5 ? 1 : 0;
    u = 2.0 * u - right;
    v = 2.0 * v - up;
    present = &m_Cells[first + right + 2 * up];
  }
  double height = 0.0;
  return farthestOfFour(direction, *present, height);
}
