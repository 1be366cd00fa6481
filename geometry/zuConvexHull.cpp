#include "geometry/zuConvexHull.h"

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdlib>
#include <limits>
#include <new>

#include "foundation/zuPrint.h"

// The headers are C and do not say so.
extern "C" {
#include <libqhull/qhull_a.h>
}

namespace {

/// A set is flat when its width is below this share of its extent. Qhull disturbs points by 4e-11 of the extent, and
/// ten times more each time that facets stay in doubt; 1e-8 leaves it two steps. A smaller share would give it input of
/// which the disturbance decides the shape, a larger one refuse thin plates that are solid.
constexpr double theFlatness = 1e-8;
/// Points further from the origin than this many times their extent are moved there: their place would make Qhull's
/// disturbance coarser. Others stay where they are, so that their hull is that of the plain coordinates.
constexpr double theFarDistance = 16.0;
/// 6 n + 12 indices are counted in an int.
constexpr std::size_t theLargestCount = (std::numeric_limits<int>::max() - 12) / 6;

/// What one run of Qhull takes and gives.
struct Run {
  double* coordinates;
  int numberOfPoints;
  int dimension;
  char* options;
  int* indices;
  int numberOfIndices;
};

void appendVertices(Run& run, setT* vertices) {
  vertexT *vertex, **vertexp;
  FOREACHvertex_(vertices) run.indices[run.numberOfIndices++] = qh_pointid(vertex->point);
}

void appendFacets(Run& run) {
  facetT* facet;
  FORALLfacets {
    if (run.options == nullptr) {
      appendVertices(run, facet->vertices);
    } else {
      setT* vertices = qh_facet3vertex(facet);
      appendVertices(run, vertices);
      qh_settempfree(&vertices);
    }
  }
}

/// A Qhull error jumps back here from any depth, so nothing with a destructor may live from here on.
void runQhull(Run& run) {
  QHULL_LIB_CHECK
  qh_init_A(stdin, stdout, stderr, 0, nullptr);
  int const exitCode = setjmp(qh errexit);
  if (exitCode != 0) {
    qh NOerrexit = True;
    std::exit(exitCode);
  }
  qh NOerrexit = False;
  if (run.options != nullptr) qh_initflags(run.options);
  qh_init_B(run.coordinates, run.numberOfPoints, run.dimension, False);
  qh_qhull();
  if (run.options != nullptr) qh_triangulate();
  qh_findgood_all(qh facet_list);
  appendFacets(run);
  qh NOerrexit = True;
  qh_freeqhull(!qh_ALL);
  int leftBlocks, leftBytes;
  qh_memfreeshort(&leftBlocks, &leftBytes);
}

bool allFinite(Run const& run) {
  auto const count = static_cast<std::ptrdiff_t>(run.numberOfPoints) * run.dimension;
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    if (std::isfinite(run.coordinates[i])) continue;
    Zu::Print::instance().write(Zu::PRINT_WARNING, "qHull-->coordinate %d of point %d is not finite (%g)",
                                static_cast<int>(i % run.dimension), static_cast<int>(i / run.dimension),
                                run.coordinates[i]);
    return false;
  }
  return true;
}

void runChecked(Run run, int& numberOfFacets) {
  numberOfFacets = 0;
  if (!allFinite(run)) return;
  runQhull(run);
  numberOfFacets = run.numberOfIndices / run.dimension;
}

/// Copies n points of a dimension, brought near the origin and to a size between 1 and 2. Scaling by a power of two
/// changes no digit; moving costs less than half an ulp of the extent. What is not finite stays so.
template <class Coordinate>
void copyNormalised(Coordinate const& coordinate, std::size_t n, unsigned int dimension, double* out) {
  double middle[3] = {}, extent = 0.0, farthest = 0.0;
  for (unsigned int k = 0; k < dimension && n > 0; ++k) {
    double low = coordinate(0, k), high = low;
    for (std::size_t i = 1; i < n; ++i) {
      low = std::min(low, coordinate(i, k));
      high = std::max(high, coordinate(i, k));
    }
    middle[k] = 0.5 * low + 0.5 * high;
    extent = std::max(extent, 0.5 * high - 0.5 * low);
    farthest = std::max({farthest, std::abs(low), std::abs(high)});
  }
  bool const isFar = farthest > theFarDistance * extent;
  double const size = isFar ? extent : farthest;
  // Beyond 2^1000 the factor would overflow; points that small become no larger than 2^-74, which serves as well.
  double const factor = size > 0.0 && std::isfinite(size) ? std::ldexp(1.0, std::min(-std::ilogb(size), 1000)) : 1.0;
  for (std::size_t i = 0; i < n; ++i) {
    for (unsigned int k = 0; k < dimension; ++k) {
      *out++ = (isFar ? coordinate(i, k) - middle[k] : coordinate(i, k)) * factor;
    }
  }
}

template <class Buffer, class Item>
bool grow(Buffer& buffer, std::size_t& capacity, std::size_t wanted, Item*) {
  if (wanted <= capacity) return true;
  capacity = 0;
  buffer.reset();
  buffer.reset(new (std::nothrow) Item[wanted]);
  if (buffer) capacity = wanted;
  return buffer != nullptr;
}

/// The point at which the height is largest; `n` when no height is above the bound or one is not a number.
template <class Height>
std::size_t highest(std::size_t n, double bound, Height const& height) {
  std::size_t best = n;
  for (std::size_t i = 0; i < n; ++i) {
    double const h = height(i);
    if (!std::isfinite(h)) return n;
    if (h <= bound) continue;
    bound = h;
    best = i;
  }
  return best;
}

}  // namespace

void qHull(double* coords, int numPoints, int*& indices, int& numTriangles) {
  // Qhull takes the first word for the name of a program, so "Qt" only says what qh_triangulate() does anyway.
  char options[] = "Qt QJ Pp";
  runChecked({coords, numPoints, 3, options, indices, 0}, numTriangles);
}

void qHull(double* coords, int numPoints, int dimension, int*& indices, int& numFacets) {
  runChecked({coords, numPoints, dimension, nullptr, indices, 0}, numFacets);
}

bool ZuConvexHull::reserve(char const* function, std::size_t numberOfPoints, std::size_t coordinates,
                           std::size_t indices) {
  bool const fits = numberOfPoints <= theLargestCount &&
                    grow(m_Coordinates, m_CoordinateCapacity, coordinates, static_cast<double*>(nullptr)) &&
                    grow(m_Indices, m_IndexCapacity, indices, static_cast<int*>(nullptr));
  if (!fits) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuConvexHull::%s-->too many points (%llu)", function,
                                static_cast<unsigned long long>(numberOfPoints));
  }
  return fits;
}

int ZuConvexHull::triangulate(ZuVector const* points, std::size_t n) {
  if (!reserve("computeConvexHull", n, 3 * n, 6 * n + 12)) return 0;
  copyNormalised([points](std::size_t i, unsigned int k) { return points[i][k]; }, n, 3, m_Coordinates.get());
  int* indices = m_Indices.get();
  int numberOfTriangles = 0;
  qHull(m_Coordinates.get(), static_cast<int>(n), indices, numberOfTriangles);
  return numberOfTriangles;
}

void ZuConvexHull::markCorners(int numberOfTriangles, std::size_t n, std::vector<bool>& onHull) const {
  onHull.assign(n, false);
  for (int i = 0; i < 3 * numberOfTriangles; ++i) onHull[static_cast<std::size_t>(m_Indices[i])] = true;
}

template <class Facet>
bool ZuConvexHull::computeFacets(ZuXmlVectorVector const& points, ZuXmlVectorType<Facet>& facets) {
  int const numberOfTriangles = triangulate(points.data(), points.size());
  facets.clear();
  facets.reserve(static_cast<std::size_t>(numberOfTriangles));
  for (int const* corner = m_Indices.get(); facets.size() < static_cast<std::size_t>(numberOfTriangles); corner += 3) {
    auto const point = [&](int k) -> ZuVector const& { return points[static_cast<std::size_t>(corner[k])]; };
    facets.pushBack(Facet(point(0), point(1), point(2)));
  }
  return numberOfTriangles > 0;
}

bool ZuConvexHull::computeConvexHull(ZuXmlVectorVector const& points, std::vector<bool>& onHull) {
  int const numberOfTriangles = triangulate(points.data(), points.size());
  markCorners(numberOfTriangles, points.size(), onHull);
  return numberOfTriangles > 0;
}

bool ZuConvexHull::computeConvexHull(ZuXmlVectorVector const& points, ZuXmlVectorVector& hullPoints) {
  std::vector<bool> onHull;
  bool const done = computeConvexHull(points, onHull);
  std::vector<ZuVector> corners;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (onHull[i]) corners.push_back(points[i]);
  }
  hullPoints = ZuXmlVectorVector(corners);
  return done;
}

bool ZuConvexHull::computeConvexHull(std::vector<ZuVector> const& points, std::vector<ZuGJKTriangle>& triangles,
                                     std::vector<bool>* onHull) {
  int const numberOfTriangles = triangulate(points.data(), points.size());
  triangles.assign(static_cast<std::size_t>(numberOfTriangles), ZuGJKTriangle());
  int const* corner = m_Indices.get();
  for (ZuGJKTriangle& triangle : triangles) {
    triangle.setVertexIndices(corner[0], corner[1], corner[2]);
    corner += 3;
  }
  if (onHull != nullptr) markCorners(numberOfTriangles, points.size(), *onHull);
  return numberOfTriangles > 0;
}

bool ZuConvexHull::computeConvexHull(ZuXmlVectorVector const& points, ZuXmlVectorType<ZuPolygon>& polygons) {
  return computeFacets(points, polygons);
}

bool ZuConvexHull::computeConvexHull(ZuXmlVectorVector const& points, ZuXmlVectorType<ZuTriangle>& triangles) {
  return computeFacets(points, triangles);
}

bool ZuConvexHull::compute2DConvexHull(double const* xy, unsigned int const& n,
                                       std::vector<unsigned int>& hullIndices) {
  std::size_t const count = n;
  hullIndices.clear();
  if (!reserve("compute2DConvexHull", count, 2 * count, 2 * (2 * count + 4))) return false;
  copyNormalised([xy](std::size_t i, unsigned int k) { return xy[2 * i + k]; }, count, 2, m_Coordinates.get());
  int* indices = m_Indices.get();
  int numberOfEdges = 0;
  qHull(m_Coordinates.get(), static_cast<int>(count), 2, indices, numberOfEdges);
  std::vector<bool> isCorner(count, false);
  for (int i = 0; i < 2 * numberOfEdges; ++i) {
    auto const corner = static_cast<unsigned int>(indices[i]);
    if (corner >= count) return false;
    isCorner[corner] = true;
  }
  for (unsigned int i = 0; i < count; ++i) {
    if (isCorner[i]) hullIndices.push_back(i);
  }
  return numberOfEdges > 0;
}

bool ZuConvexHull::spansVolume(ZuVector const* points, std::size_t n) {
  if (n < 4) return false;
  std::size_t const far = highest(n, 0.0, [&](std::size_t i) { return points[0].distanceTo(points[i]); });
  if (far == n) return false;
  double const extent = points[0].distanceTo(points[far]);
  auto const place = [&](std::size_t i) { return (points[i] - points[0]) / extent; };
  ZuVector const line = place(far);
  std::size_t const aside = highest(n, theFlatness, [&](std::size_t i) { return line.cross(place(i)).mag(); });
  if (aside == n) return false;
  ZuVector const normal = line.cross(place(aside)).unitVector();
  return highest(n, theFlatness, [&](std::size_t i) { return std::abs(normal.dot(place(i))); }) != n;
}

bool ZuConvexHull::selfTest() {
  ZuXmlVectorVector points;
  points.pushBack(ZuVector(0.5, 0.5, 0.5));
  for (unsigned int i = 0; i < 8; ++i) points.pushBack(ZuVector(i & 1U, (i >> 1U) & 1U, i >> 2U));
  ZuXmlVectorType<ZuTriangle> triangles;
  ZuXmlVectorVector corners;
  bool const done = computeConvexHull(points, triangles) && computeConvexHull(points, corners);
  return done && triangles.size() == 12 && corners.size() == 8;
}
