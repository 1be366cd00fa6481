#include "geometry/zuTruncatedIcosahedron.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "foundation/zuPrint.h"
#include "geometry/zuBarycentricGrid.h"

namespace {

constexpr double theGoldenRatio = 1.618033988749895;
/// Of a distance or a cosine: those that are to be told apart differ by 0.1 and more.
constexpr double theRounding = 1e-6;
constexpr unsigned int theLargestIndex = 4294967295U;

/// Calls the function with the vector's three cyclic permutations, each with all signs of the components that are not
/// 0.
template <class Function>
void forAllSigns(ZuVector const& v, Function const& function) {
  for (unsigned int shift = 0; shift < 3; ++shift) {
    ZuVector const turned(v[shift], v[(shift + 1) % 3], v[(shift + 2) % 3]);
    for (unsigned int signs = 0; signs < 8; ++signs) {
      ZuVector changed;
      bool isNew = true;
      for (unsigned int c = 0; c < 3; ++c) {
        bool const isNegative = (signs >> c & 1U) != 0;
        isNew = isNew && (!isNegative || turned[c] != 0.0);
        changed[c] = isNegative ? -turned[c] : turned[c];
      }
      if (isNew) function(changed);
    }
  }
}

void warn(char const* function, unsigned int index) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuTruncatedIcosahedron::%s-->invalid index (%u)", function, index);
}

void warn(char const* function, unsigned int index, unsigned int k) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuTruncatedIcosahedron::%s-->invalid index (%u, %u)", function, index,
                              k);
}

}  // namespace

ZuTruncatedIcosahedron::ZuTruncatedIcosahedron() {
  makeVertices();
  makeEdges();
  unsigned int f = 0;
  auto const addFace = [this, &f](ZuVector const& direction) { makeFace(f++, direction.unitVector()); };
  forAllSigns(ZuVector(0.0, 1.0, theGoldenRatio), addFace);  // corners of an icosahedron: pentagons
  for (unsigned int signs = 0; signs < 8; ++signs) {         // corners of a dodecahedron: hexagons
    addFace(ZuVector((signs & 1U) != 0 ? -1.0 : 1.0, (signs & 2U) != 0 ? -1.0 : 1.0, (signs & 4U) != 0 ? -1.0 : 1.0));
  }
  forAllSigns(ZuVector(0.0, theGoldenRatio, 1.0 / theGoldenRatio), addFace);
}

void ZuTruncatedIcosahedron::makeVertices() {
  unsigned int v = 0;
  auto const add = [this, &v](ZuVector const& corner) { m_Vertices[v++] = corner.unitVector(); };
  forAllSigns(ZuVector(0.0, 1.0, 3.0 * theGoldenRatio), add);
  forAllSigns(ZuVector(1.0, 2.0 + theGoldenRatio, 2.0 * theGoldenRatio), add);
  forAllSigns(ZuVector(theGoldenRatio, 2.0, 2.0 * theGoldenRatio + 1.0), add);
}

void ZuTruncatedIcosahedron::makeEdges() {
  unsigned int e = 0;
  for (unsigned int a = 0; a < m_theVertexCount; ++a) {
    for (unsigned int b = a + 1; b < m_theVertexCount; ++b) {
      if (m_Vertices[a].distanceTo(m_Vertices[b]) < edgeLength() + theRounding) m_Edges[e++] = {a, b};
    }
  }
}

unsigned int ZuTruncatedIcosahedron::edgeBetween(unsigned int a, unsigned int b) const {
  std::array<unsigned int, 2> const wanted{std::min(a, b), std::max(a, b)};
  return static_cast<unsigned int>(std::find(m_Edges.begin(), m_Edges.end(), wanted) - m_Edges.begin());
}

/// The face whose plane is at a right angle to the direction: its vertices are the farthest in that direction.
void ZuTruncatedIcosahedron::makeFace(unsigned int f, ZuVector const& direction) {
  double farthest = 0.0;
  for (ZuVector const& v : m_Vertices) farthest = std::max(farthest, v.dot(direction));
  std::vector<unsigned int> corners;
  for (unsigned int v = 0; v < m_theVertexCount; ++v) {
    if (m_Vertices[v].dot(direction) > farthest - theRounding) corners.push_back(v);
  }
  auto const turn = [&](unsigned int v) {  // about the direction, from the first corner
    ZuVector const from = m_Vertices[corners[0]], to = m_Vertices[v];
    double const angle = std::atan2(from.cross(to).dot(direction), from.dot(to) - farthest * farthest);
    return angle < -theRounding ? angle + 2.0 * std::acos(-1.0) : angle;
  };
  std::sort(corners.begin() + 1, corners.end(), [&](unsigned int a, unsigned int b) { return turn(a) < turn(b); });
  Loop& vertices = m_FaceVertices[f];
  Loop& edges = m_FaceEdges[f];
  vertices.size = edges.size = static_cast<unsigned int>(corners.size());
  std::copy(corners.begin(), corners.end(), vertices.items.begin());
  for (unsigned int k = 0; k < edges.size; ++k) {
    edges.items[k] = edgeBetween(corners[k], corners[(k + 1) % corners.size()]);
  }
  m_Centers[f] = direction * farthest;
  m_Poles[f] = direction / farthest;
}

ZuVector ZuTruncatedIcosahedron::vertex(unsigned int v) const {
  if (v < m_theVertexCount) return m_Vertices[v];
  warn("vertex", v);
  return m_Vertices[0];
}

unsigned int ZuTruncatedIcosahedron::edgeVertexIndex(unsigned int e, unsigned int k) const {
  if (e < m_theEdgeCount && k < 2) return m_Edges[e][k];
  warn("edgeVertexIndex", e, k);
  return 0;
}

unsigned int ZuTruncatedIcosahedron::faceVertexCount(unsigned int f) const {
  if (f < m_theFaceCount) return m_FaceVertices[f].size;
  warn("faceVertexCount", f);
  return 0;
}

unsigned int ZuTruncatedIcosahedron::faceVertexIndex(unsigned int f, unsigned int k) const {
  if (f < m_theFaceCount && k < m_FaceVertices[f].size) return m_FaceVertices[f].items[k];
  warn("faceVertexIndex", f, k);
  return 0;
}

unsigned int ZuTruncatedIcosahedron::faceEdgeIndex(unsigned int f, unsigned int k) const {
  if (f < m_theFaceCount && k < m_FaceEdges[f].size) return m_FaceEdges[f].items[k];
  warn("faceEdgeIndex", f, k);
  return 0;
}

ZuVector ZuTruncatedIcosahedron::faceDirection(unsigned int f) const {
  if (f < m_theFaceCount) return m_Centers[f].unitVector();
  warn("faceDirection", f);
  return m_Centers[0].unitVector();
}

bool ZuTruncatedIcosahedron::setupForSampling(unsigned int n) {
  return n != 0 && setupForSamplingWithIncrement(1.0 / n);
}

bool ZuTruncatedIcosahedron::setupForSamplingWithIncrement(double d) {
  ZuBarycentricGrid const grid(d > 0.0 ? d : 1.0, 3);
  if (!(d > 0.0) || grid.pointsOfTriangle() > theLargestIndex / m_theTriangleCount) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuTruncatedIcosahedron::setupForSamplingWithIncrement-->invalid increment (%g)", d);
    return false;
  }
  std::vector<std::array<double, 2>> weights;
  try {
    weights.reserve(static_cast<std::size_t>(grid.pointsOfTriangle()));
  } catch (std::bad_alloc const&) {
    Zu::Print::instance().write(
        Zu::PRINT_WARNING, "ZuTruncatedIcosahedron::setupForSamplingWithIncrement-->no memory for increment %g", d);
    return false;
  }
  int const layers = static_cast<int>(grid.layers);
  for (int i = 0; i < layers; ++i) {
    for (int j = 0; i + j < layers; ++j) weights.push_back({grid.weight(i), grid.weight(j)});
  }
  m_Weights.swap(weights);
  return true;
}

/// The face of a triangle, and its edge there.
void ZuTruncatedIcosahedron::triangleOf(unsigned int number, unsigned int& f, unsigned int& k) {
  unsigned int const ofPentagons = 5 * m_thePentagonCount;
  f = number < ofPentagons ? number / 5 : m_thePentagonCount + (number - ofPentagons) / 6;
  k = number < ofPentagons ? number % 5 : (number - ofPentagons) % 6;
}

bool ZuTruncatedIcosahedron::hasSample(unsigned int i, char const* function) const {
  if (i < totalSampleCount()) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING,
                              "ZuTruncatedIcosahedron::%s-->sample %u requested when only %u are available", function,
                              i, totalSampleCount());
  return false;
}

ZuVector ZuTruncatedIcosahedron::sample(unsigned int i) {
  if (m_Weights.empty()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuTruncatedIcosahedron::sample-->sampling not set up, using one sample per triangle");
    setupForSampling(1);
  }
  if (!hasSample(i, "sample")) i = 0;
  unsigned int f = 0, k = 0;
  triangleOf(i / singleTriangleSampleCount(), f, k);
  std::array<double, 2> const& weights = m_Weights[i % singleTriangleSampleCount()];
  ZuVector const& centre = m_Centers[f];
  ZuVector const a = faceVertex(f, k), b = faceVertex(f, (k + 1) % m_FaceVertices[f].size);
  return (centre + (a - centre) * weights[0] + (b - centre) * weights[1]).unitVector();
}

unsigned int ZuTruncatedIcosahedron::sampleFace(unsigned int i) const {
  if (!hasSample(i, "sampleFace")) return 0;
  unsigned int f = 0, k = 0;
  triangleOf(i / singleTriangleSampleCount(), f, k);
  return f;
}

unsigned int ZuTruncatedIcosahedron::findCollectionContainer(ZuVector const& direction) const {
  ZuVector const unit = direction.unitVector();
  if (unit == ZuVector()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuTruncatedIcosahedron::findCollectionContainer-->no direction (%g, %g, %g)",
                                direction.x(), direction.y(), direction.z());
    return 0;
  }
  // The ray leaves through the plane that it meets first: the one with the largest cosine / distance from the centre.
  double best = 0.0;
  unsigned int result = 0;
  for (unsigned int f = 0; f < m_theFaceCount; ++f) {
    double const closeness = unit.dot(m_Poles[f]);
    if (closeness <= best) continue;
    best = closeness;
    result = f;
  }
  return result;
}

bool ZuTruncatedIcosahedron::selfTest() const {
  std::array<unsigned int, m_theVertexCount> edgesOf{}, facesOf{};
  std::array<unsigned int, m_theEdgeCount> facesOfEdge{};
  for (auto const& edge : m_Edges) {
    for (unsigned int const v : edge) ++edgesOf[v];
  }
  for (unsigned int f = 0; f < m_theFaceCount; ++f) {
    if (m_FaceVertices[f].size != (f < m_thePentagonCount ? 5U : 6U)) return false;
    for (unsigned int k = 0; k < m_FaceVertices[f].size; ++k) {
      ++facesOf[m_FaceVertices[f].items[k]];
      if (m_FaceEdges[f].items[k] >= m_theEdgeCount) return false;
      ++facesOfEdge[m_FaceEdges[f].items[k]];
    }
  }
  ZuTruncatedIcosahedron copy(*this);
  copy.setupForSampling(3);
  for (unsigned int i = 0; i < copy.totalSampleCount(); ++i) {
    if (copy.findCollectionContainer(copy.sample(i)) != copy.sampleFace(i)) return false;
  }
  auto const areAll = [](auto const& counts, unsigned int wanted) {
    return std::count(counts.begin(), counts.end(), wanted) == static_cast<std::ptrdiff_t>(counts.size());
  };
  return areAll(edgesOf, 3) && areAll(facesOf, 3) && areAll(facesOfEdge, 2);
}
