#include "geometry/zu600cell.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <tuple>

#include "foundation/zuPrint.h"
#include "geometry/zuBarycentricGrid.h"

namespace {

constexpr double theHalfGoldenRatio = 0.8090169943749475;
/// Half of the inverse of the golden ratio, as (phi + 1)/2 - 1.
constexpr double theHalfInverse = 1.3090169943749475 - 1.0;
/// Squared distances of vertices: 1/phi^2 = 0.38 for neighbours, 1 for the next ones; the bound is 1e-6 above the
/// former.
constexpr double theLargestSquaredEdge = 0.38196701125010507;
/// Squared distance of quaternions that are one vertex but for rounding; different vertices are at least 0.38 apart.
constexpr double theSamePlace = 1e-10;
/// Cosines of half angles this close may belong to the same angle: thousands of roundings, and far less than cosines of
/// different cells are apart but near their common border, where the angles decide.
constexpr double theEqualCosines = 1e-12;
constexpr unsigned int theNone = 4294967295U;

/// From one grid point to its twelve neighbours: each moves one increment from one of the four barycentric coordinates
/// to another; the fourth is what the first three leave.
constexpr int theNeighborSteps[12][3] = {{1, 0, 0},  {0, 1, 0},  {0, 0, 1},  {-1, 0, 0}, {0, -1, 0}, {0, 0, -1},
                                         {1, -1, 0}, {1, 0, -1}, {-1, 1, 0}, {0, 1, -1}, {-1, 0, 1}, {0, -1, 1}};

double squaredDistance(std::array<double, 4> const& a, std::array<double, 4> const& b, double sign) {
  double sum = 0.0;
  for (unsigned int i = 0; i < 4; ++i) sum += (a[i] - sign * b[i]) * (a[i] - sign * b[i]);
  return sum;
}

bool isEven(std::array<unsigned int, 4> const& permutation) {
  unsigned int inversions = 0;
  for (unsigned int i = 0; i < 4; ++i) {
    for (unsigned int j = i + 1; j < 4; ++j) inversions += permutation[i] > permutation[j];
  }
  return inversions % 2 == 0;
}

double signOf(unsigned int bits, unsigned int place) { return (bits >> place & 1U) != 0 ? -1.0 : 1.0; }

/// The place of the item in a sorted list; theNone when it is not there.
template <class Item>
unsigned int placeIn(std::vector<Item> const& list, Item const& item) {
  auto const found = std::lower_bound(list.begin(), list.end(), item);
  return found != list.end() && *found == item ? static_cast<unsigned int>(found - list.begin()) : theNone;
}

template <class Table>
bool hasEntry(Table const& table, unsigned int row, unsigned int k) {
  return row < table.size() && k < table[0].size();
}

void warn(char const* text) { Zu::Print::instance().write(Zu::PRINT_WARNING, "%s", text); }

}  // namespace

Zu600Cell::Zu600Cell() {
  allocateArrays();
  setup();
}

Zu600Cell::Zu600Cell(Zu600Cell const& other) { copySpecificData(other); }

Zu600Cell& Zu600Cell::operator=(Zu600Cell const& other) {
  if (this != &other) copySpecificData(other);
  return *this;
}

void Zu600Cell::allocateArrays() {
  m_Vertices.reserve(m_theVertexCount);
  m_Edges.reserve(m_theEdgeCount);
  m_Triangles.reserve(m_theTriangleCount);
  m_TriangleEdges.reserve(m_theTriangleCount);
  m_Tetrahedra.reserve(m_theTetrahedronCount);
  m_TetrahedronTriangles.reserve(m_theTetrahedronCount);
  m_Sampled.reserve(m_theSampledCount);
  m_Centers.reserve(m_theSampledCount);
  for (std::vector<double>& component : m_CenterComponents) component.reserve(m_theSampledCount);
}

void Zu600Cell::copySpecificData(Zu600Cell const& other) {
  tables() = other.tables();
  m_SampleCount = other.m_SampleCount;
}

bool Zu600Cell::operator==(Zu600Cell const& other) const {
  return m_SampleCount == other.m_SampleCount && tables() == other.tables();
}

void Zu600Cell::setup() {
  if (!m_Vertices.empty()) return;
  makeVertices();
  if (!chooseSampled(makeFaces())) warn("Zu600Cell::setup(): bad map.\n");
  makeCenters();
}

void Zu600Cell::makeVertices() {
  m_Vertices.clear();
  for (unsigned int axis = 0; axis < 4; ++axis) {
    for (double const sign : {1.0, -1.0}) {
      m_Vertices.push_back({0.0, 0.0, 0.0, 0.0});
      m_Vertices.back()[axis] = sign;
    }
  }
  for (unsigned int signs = 0; signs < 16; ++signs) {
    m_Vertices.push_back(
        {0.5 * signOf(signs, 0), 0.5 * signOf(signs, 1), 0.5 * signOf(signs, 2), 0.5 * signOf(signs, 3)});
  }
  std::array<unsigned int, 4> place{0, 1, 2, 3};
  do {
    if (!isEven(place)) continue;
    for (unsigned int signs = 0; signs < 8; ++signs) {
      m_Vertices.push_back({0.0, 0.0, 0.0, 0.0});
      m_Vertices.back()[place[0]] = theHalfGoldenRatio * signOf(signs, 0);
      m_Vertices.back()[place[1]] = 0.5 * signOf(signs, 1);
      m_Vertices.back()[place[2]] = theHalfInverse * signOf(signs, 2);
    }
  } while (std::next_permutation(place.begin(), place.end()));
}

/// Fills the map from two vertices to the number of their edge.
void Zu600Cell::makeEdges(std::vector<unsigned int>& edgeOf) {
  m_Edges.clear();
  edgeOf.assign(m_theVertexCount * m_theVertexCount, theNone);
  for (unsigned int a = 0; a < m_theVertexCount; ++a) {
    for (unsigned int b = a + 1; b < m_theVertexCount; ++b) {
      if (squaredDistance(m_Vertices[a], m_Vertices[b], 1.0) > theLargestSquaredEdge) continue;
      edgeOf[a * m_theVertexCount + b] = static_cast<unsigned int>(m_Edges.size());
      m_Edges.push_back({a, b});
    }
  }
}

/// Builds edges, triangles and tetrahedra; returns the vertices of the last.
std::vector<Zu600Cell::Cell> Zu600Cell::makeFaces() {
  std::vector<unsigned int> edgeOf;
  makeEdges(edgeOf);
  auto const edge = [&edgeOf](unsigned int a, unsigned int b) { return edgeOf[a * m_theVertexCount + b]; };
  m_Triangles.clear();
  m_TriangleEdges.clear();
  for (auto const& [a, b] : m_Edges) {
    for (unsigned int c = b + 1; c < m_theVertexCount; ++c) {
      if (edge(a, c) == theNone || edge(b, c) == theNone) continue;
      m_Triangles.push_back({a, b, c});
      m_TriangleEdges.push_back({edge(a, b), edge(a, c), edge(b, c)});
    }
  }
  std::vector<Cell> cells;
  m_Tetrahedra.clear();
  m_TetrahedronTriangles.clear();
  for (auto const& [a, b, c] : m_Triangles) {
    for (unsigned int d = c + 1; d < m_theVertexCount; ++d) {
      if (edge(a, d) == theNone || edge(b, d) == theNone || edge(c, d) == theNone) continue;
      auto const triangle = [this](unsigned int i, unsigned int j, unsigned int k) {
        return placeIn(m_Triangles, {i, j, k});
      };
      cells.push_back({a, b, c, d});
      m_Tetrahedra.push_back({edge(a, b), edge(a, c), edge(b, c), edge(a, d), edge(b, d), edge(c, d)});
      m_TetrahedronTriangles.push_back({triangle(b, c, d), triangle(a, c, d), triangle(a, b, d), triangle(a, b, c)});
    }
  }
  return cells;
}

/// Chooses the lower-numbered of each pair of opposite cells; false when they do not come in pairs.
bool Zu600Cell::chooseSampled(std::vector<Cell> const& cells) {
  std::vector<unsigned int> oppositeVertex(m_theVertexCount, 0);
  for (unsigned int v = 0; v < m_theVertexCount; ++v) {
    for (unsigned int w = 0; w < m_theVertexCount; ++w) {
      if (squaredDistance(m_Vertices[v], m_Vertices[w], -1.0) < theSamePlace) oppositeVertex[v] = w;
    }
  }
  m_Sampled.clear();
  bool isGood = cells.size() == m_theTetrahedronCount;
  for (unsigned int t = 0; t < cells.size(); ++t) {
    Cell opposite;
    for (unsigned int k = 0; k < 4; ++k) opposite[k] = oppositeVertex[cells[t][k]];
    std::sort(opposite.begin(), opposite.end());
    unsigned int const place = placeIn(cells, opposite);
    isGood = isGood && place != theNone && place != t;
    if (t < place) m_Sampled.push_back(t);
  }
  return isGood && m_Sampled.size() == m_theSampledCount;
}

void Zu600Cell::makeCenters() {
  m_Centers.clear();
  for (std::vector<double>& component : m_CenterComponents) component.clear();
  for (unsigned int const t : m_Sampled) {
    Quaternion sum{0.0, 0.0, 0.0, 0.0};
    for (unsigned int k = 0; k < 4; ++k) {
      Quaternion const& corner = m_Vertices[tetrahedronVertexIndex(t, k)];
      for (unsigned int i = 0; i < 4; ++i) sum[i] += corner[i];
    }
    m_Centers.emplace_back(sum[0], sum[1], sum[2], sum[3]);
    for (unsigned int i = 0; i < 4; ++i) m_CenterComponents[i].push_back(m_Centers.back()[i]);
  }
}

ZuOrientation Zu600Cell::vertex(unsigned int v) const {
  if (v >= m_theVertexCount) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "Zu600Cell::vertex(): requested invalid vertex: vertex: %d\n",
                                static_cast<int>(v));
    v = 0;
  }
  Quaternion const& q = m_Vertices[v];
  return ZuOrientation(q[0], q[1], q[2], q[3]);
}

unsigned int Zu600Cell::edgeVertexIndex(unsigned int e, unsigned int k) const {
  if (hasEntry(m_Edges, e, k)) return m_Edges[e][k];
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "Zu600Cell::edgeVertexIndex(): requested invalid vertex: edge: %d, vertex: %d\n",
                              static_cast<int>(e), static_cast<int>(k));
  return 0;
}

unsigned int Zu600Cell::triangleVertexIndex(unsigned int t, unsigned int k) const {
  if (hasEntry(m_Triangles, t, k)) return m_Triangles[t][k];
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "Zu600Cell::triangleVertexIndex(): requested invalid vertex: triangle: %d, vertex: %d\n",
                              static_cast<int>(t), static_cast<int>(k));
  return 0;
}

unsigned int Zu600Cell::triangleEdgeIndex(unsigned int t, unsigned int k) const {
  if (hasEntry(m_TriangleEdges, t, k)) return m_TriangleEdges[t][k];
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "Zu600Cell::triangleEdgeIndex(): requested invalid edge: triangle: %d, edge: %d\n",
                              static_cast<int>(t), static_cast<int>(k));
  return 0;
}

unsigned int Zu600Cell::tetrahedronVertexIndex(unsigned int t, unsigned int k) const {
  // The edges are ab, ac, bc, ad, ...: their second vertices have all but the first.
  if (t < m_Tetrahedra.size() && k < 4) return m_Edges[m_Tetrahedra[t][k < 2 ? 0 : 2 * k - 3]][k == 0 ? 0 : 1];
  Zu::Print::instance().write(
      Zu::PRINT_WARNING, "Zu600Cell::tetrahedronVertexIndex(): requested invalid vertex: tetrahedron: %d, vertex: %d\n",
      static_cast<int>(t), static_cast<int>(k));
  return 0;
}

unsigned int Zu600Cell::tetrahedronEdgeIndex(unsigned int t, unsigned int k) const {
  if (hasEntry(m_Tetrahedra, t, k)) return m_Tetrahedra[t][k];
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "Zu600Cell::tetrahedronEdgeIndex(): requested invalid edge: tetrahedron: %d, edge: %d\n",
                              static_cast<int>(t), static_cast<int>(k));
  return 0;
}

unsigned int Zu600Cell::tetrahedronTriangleIndex(unsigned int t, unsigned int k) const {
  if (hasEntry(m_TetrahedronTriangles, t, k)) return m_TetrahedronTriangles[t][k];
  Zu::Print::instance().write(
      Zu::PRINT_WARNING,
      "Zu600Cell::tetrahedronTriangleIndex(): requested invalid edge: tetrahedron: %d, triangle: %d\n",
      static_cast<int>(t), static_cast<int>(k));
  return 0;
}

unsigned int Zu600Cell::sampledTetrahedronIndex(unsigned int s) const {
  if (s < m_Sampled.size()) return m_Sampled[s];
  Zu::Print::instance().write(Zu::PRINT_WARNING, "Zu600Cell::sampledTetrahedronIndex-->invalid index (%u)", s);
  return 0;
}

bool Zu600Cell::setupForSampling(unsigned int n) { return n != 0 && setupForSamplingWithIncrement(1.0 / n); }

bool Zu600Cell::setupForSamplingWithIncrement(double d) {
  if (d == 0.0) {
    warn("Zu600Cell::setupForSampling():  Called with zero increment.\n");
    return false;
  }
  ZuBarycentricGrid const grid(d > 0.0 ? d : 1.0, 4);
  if (!(d > 0.0) || grid.pointsOfTetrahedron() > theNone / m_theSampledCount) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "Zu600Cell::setupForSamplingWithIncrement-->invalid increment (%g)",
                                d);
    return false;
  }
  auto const expected = static_cast<unsigned int>(grid.pointsOfTetrahedron());
  try {
    fillGrid(grid, expected);
  } catch (std::bad_alloc const&) {
    Zu::Print::instance().write(
        Zu::PRINT_WARNING, "Zu600Cell::setupForSamplingWithIncrement-->no memory for %u samples of a cell", expected);
    return false;
  }
  makeBases();
  auto const counted = static_cast<unsigned int>(m_GridCoordinates.size());
  if (counted == expected) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "Zu600Cell::setupForSamplingWithIncrement(): the sample counts did not match: %d,%d\n",
                              static_cast<int>(counted), static_cast<int>(expected));
  return false;
}

void Zu600Cell::fillGrid(ZuBarycentricGrid const& grid, unsigned int expected) {
  unsigned int const n = grid.layers;
  std::vector<std::array<int, 3>> coordinates;
  coordinates.reserve(expected);
  decltype(m_SampleOf) sampleOf(n, {n, std::vector<unsigned int>(n, m_theNoSample)});
  int const last = static_cast<int>(n) - 1;
  for (int i = 0; i <= last; ++i) {
    for (int j = 0; i + j <= last; ++j) {
      for (int k = 0; i + j + k <= last; ++k) {
        sampleOf[i][j][k] = static_cast<unsigned int>(coordinates.size());
        coordinates.push_back({i, j, k});
      }
    }
  }
  resizeBaryCentric(expected);
  m_GridCoordinates.swap(coordinates);
  m_SampleOf.swap(sampleOf);
  m_SampleCount = expected;
  for (unsigned int row = 0; row < expected; ++row) {
    for (unsigned int k = 0; k < 3; ++k) m_BaryCentric[3 * row + k] = grid.weight(m_GridCoordinates[row][k]);
  }
}

void Zu600Cell::makeBases() {
  m_Bases.clear();
  m_Directions.clear();
  for (unsigned int const t : m_Sampled) {
    m_Bases.push_back(m_Vertices[tetrahedronVertexIndex(t, 0)]);
    m_Directions.emplace_back();
    for (unsigned int k = 0; k < 3; ++k) {
      Quaternion const& corner = m_Vertices[tetrahedronVertexIndex(t, k + 1)];
      for (unsigned int c = 0; c < 4; ++c) m_Directions.back()[k][c] = corner[c] - m_Bases.back()[c];
    }
  }
}

void Zu600Cell::resizeBaryCentric(unsigned int n) {
  m_BaryCentric.resize(std::size_t{3} * n);
  m_SampleCount = std::min(m_SampleCount, n);
}

ZuOrientation Zu600Cell::sample(unsigned int i) {
  if (m_SampleCount == 0) {
    warn(
        "Zu600Cell::sample(): Warning.  Sample requested without setting up for sampling--using one sample per "
        "tetrahedron.\n");
    setupForSampling(1);
  }
  if (i >= totalSampleCount()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "Zu600Cell::sample(): Warning.  Sample %d requested when only %d are available.\n",
                                static_cast<int>(i), static_cast<int>(totalSampleCount()));
    i = 0;
  }
  unsigned int const t = i / m_SampleCount;
  double const* const b = &m_BaryCentric[std::size_t{3} * (i % m_SampleCount)];
  Quaternion q = m_Bases[t];
  for (unsigned int c = 0; c < 4; ++c) {
    q[c] = q[c] + b[0] * m_Directions[t][0][c] + b[1] * m_Directions[t][1][c] + b[2] * m_Directions[t][2][c];
  }
  return ZuOrientation(q[0], q[1], q[2], q[3]);
}

unsigned int Zu600Cell::findCollectionContainer(ZuOrientation const& q) const {
  // The angle falls as the cosine of its half grows, so only cells whose cosine is the largest, or within rounding of
  // it, can have the smallest angle: 2e-12 more of a cosine than that is at least as much of an angle.
  double const w = q[0], x = q[1], y = q[2], z = q[3];
  double const* const ws = m_CenterComponents[0].data();
  double const* const xs = m_CenterComponents[1].data();
  double const* const ys = m_CenterComponents[2].data();
  double const* const zs = m_CenterComponents[3].data();
  double cosines[m_theSampledCount];
  for (unsigned int t = 0; t < m_theSampledCount; ++t)
    cosines[t] = std::abs(w * ws[t] + x * xs[t] + y * ys[t] + z * zs[t]);
  double largest[4] = {0.0, 0.0, 0.0, 0.0};  // four maxima do not wait for each other
  static_assert(m_theSampledCount % 4 == 0);
  for (unsigned int t = 0; t < m_theSampledCount; t += 4) {
    for (unsigned int k = 0; k < 4; ++k) largest[k] = std::max(largest[k], cosines[t + k]);
  }
  double const smallest = *std::max_element(largest, largest + 4) - theEqualCosines;
  unsigned int candidates[m_theSampledCount];
  unsigned int count = 0;
  for (unsigned int t = 0; t < m_theSampledCount; ++t) {
    if (cosines[t] >= smallest) candidates[count++] = t;
  }
  if (count == 1) return candidates[0];
  double best = 1e300;
  unsigned int result = 0;
  for (unsigned int i = 0; i < count; ++i) {
    double angle = 0.0;
    ZuVector axis;
    q.angleAxisBetween(m_Centers[candidates[i]], angle, axis);
    if (angle >= best) continue;
    best = angle;
    result = candidates[i];
  }
  return result;
}

/// The neighbours of sample i as differences of sample numbers, three with independent steps first; returns how many
/// there are.
unsigned int Zu600Cell::findNeighbors(unsigned int i, int (&offsets)[12]) const {
  if (i >= totalSampleCount()) {
    Zu::Print::instance().write(
        Zu::PRINT_WARNING,
        "Zu600Cell::getNeighborOffsets(): Warning.  Sample %d requested when only %d are available.\n",
        static_cast<int>(i), static_cast<int>(totalSampleCount()));
    return 0;
  }
  unsigned int const row = i % m_SampleCount;
  std::array<int, 3> const& at = m_GridCoordinates[row];
  int steps[12][3];
  unsigned int count = 0;
  for (auto const& step : theNeighborSteps) {
    int const place[3] = {at[0] + step[0], at[1] + step[1], at[2] + step[2]};
    unsigned int neighbor = 0;
    if (!checkSampleArray(neighbor, m_SampleOf, static_cast<unsigned int>(m_SampleOf.size()), place)) continue;
    if (neighbor >= m_SampleCount) continue;
    std::copy(step, step + 3, steps[count]);
    offsets[count++] = static_cast<int>(neighbor) - static_cast<int>(row);
  }
  for (unsigned int chosen = 1; chosen < std::min(count, 3U); ++chosen) {
    for (unsigned int next = chosen; next < count; ++next) {
      std::swap(steps[chosen], steps[next]);
      std::swap(offsets[chosen], offsets[next]);
      if (offsetsIndependent(steps, chosen + 1)) break;
    }
  }
  return count;
}

bool Zu600Cell::getNeighborOffsets(unsigned int i, int& a, int& b, int& c) const {
  int offsets[12] = {};
  bool const areEnough = findNeighbors(i, offsets) >= 3;
  a = areEnough ? offsets[0] : 0;
  b = areEnough ? offsets[1] : 0;
  c = areEnough ? offsets[2] : 0;
  return areEnough;
}

bool Zu600Cell::getNeighborOffsets(unsigned int i, unsigned int count,
                                   ZuXmlVectorType<ZuXmlBasicType<int>>& offsets) const {
  int found[12] = {};
  unsigned int const available = std::min(findNeighbors(i, found), count);
  offsets.resize(available);
  for (unsigned int k = 0; k < available; ++k) offsets[k] = found[k];
  return available > 0;
}

bool Zu600Cell::offsetsIndependent(int const offsets[][3], unsigned int n) {
  auto const at = [offsets](unsigned int row, unsigned int column) { return std::int64_t{offsets[row][column]}; };
  if (n == 2) {  // not parallel: by the components of the cross product, since squares of squares may overflow
    return at(0, 1) * at(1, 2) != at(0, 2) * at(1, 1) || at(0, 2) * at(1, 0) != at(0, 0) * at(1, 2) ||
           at(0, 0) * at(1, 1) != at(0, 1) * at(1, 0);
  }
  if (n != 3) return true;
  auto const minor = [&at](unsigned int i, unsigned int j) {
    return static_cast<std::uint64_t>(at(1, i) * at(2, j) - at(1, j) * at(2, i));
  };
  // Without a sign, so that it is defined, and wraps, beyond 2^20.
  return static_cast<std::uint64_t>(at(0, 0)) * minor(1, 2) + static_cast<std::uint64_t>(at(0, 1)) * minor(2, 0) +
             static_cast<std::uint64_t>(at(0, 2)) * minor(0, 1) !=
         0;
}

bool Zu600Cell::isPolytope() const {
  std::vector<unsigned int> edges(m_theVertexCount, 0), triangles(m_theVertexCount, 0), cells(m_theVertexCount, 0);
  std::vector<unsigned int> cellsOfTriangle(m_theTriangleCount, 0);
  for (auto const& edge : m_Edges) {
    for (unsigned int const v : edge) ++edges[v];
  }
  for (auto const& triangle : m_Triangles) {
    for (unsigned int const v : triangle) ++triangles[v];
  }
  for (unsigned int t = 0; t < m_Tetrahedra.size(); ++t) {
    for (unsigned int k = 0; k < 4; ++k) {
      ++cells[tetrahedronVertexIndex(t, k)];
      ++cellsOfTriangle[m_TetrahedronTriangles[t][k]];
    }
  }
  auto const areAll = [](std::vector<unsigned int> const& counts, unsigned int wanted) {
    return std::count(counts.begin(), counts.end(), wanted) == static_cast<std::ptrdiff_t>(counts.size());
  };
  return m_Vertices.size() == m_theVertexCount && m_Sampled.size() == m_theSampledCount && areAll(edges, 12) &&
         areAll(triangles, 30) && areAll(cells, 20) && areAll(cellsOfTriangle, 2);
}

bool Zu600Cell::selfTest() const {
  if (!isPolytope()) return false;
  Zu600Cell copy(*this);
  for (unsigned int n = 1; n <= 3; ++n) {
    if (!copy.setupForSampling(n) || copy.singleTetrahedronSampleCount() != n * (n + 1) * (n + 2) / 6) return false;
    for (unsigned int i = 0; i < copy.totalSampleCount(); ++i) {
      // A sample's cell holds it: no other centre is nearer.
      if (copy.findCollectionContainer(copy.sample(i)) != i / copy.singleTetrahedronSampleCount()) return false;
    }
  }
  return *this == Zu600Cell(*this);
}
