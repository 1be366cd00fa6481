#include "geometry/zuBasePhysicalExtent.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>

#include "foundation/zuPrint.h"
#include "foundation/zuReArray.h"
#include "foundation/zuXmlReader.h"
#include "geometry/zuAABBCollisionDetection.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuConvexHull.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuLoopTrianglesPrivate.h"
#include "geometry/zuMeshSurfacePrivate.h"
#include "geometry/zuPlane.h"
#include "geometry/zuPolygon.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuRectangle.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuShapeProximityData.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuSupportTablePrivate.h"
#include "geometry/zuSystemShapeProximityState.h"

namespace {

/// What the climb and bestNeighbor() start from: below the dot product of any vertex of a sane mesh.
constexpr double theLowestDot = -1e16;

char const* const theNoNeighborInfo = "ZuBasePhysicalExtent::supportPoint this physical ext has no neighbor info.";
char const* const theVertexBeyond = "ZuBasePhysicalExtent::findLineAndNeighbors vertex id exceed size.";
char const* const theNoFacetLists = "ZuBasePhysicalExtent::supportPoint m_VertexNeighborFacetsVector empty.";

void print(char const* message) { Zu::Print::instance().write(Zu::PRINT_WARNING, "%s", message); }

bool isZero(ZuVector const& v) { return v.x() == 0.0 && v.y() == 0.0 && v.z() == 0.0; }

bool isFinite(ZuVector const& v) { return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z()); }

bool contains(ZuListView<unsigned int> list, unsigned int item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

/// Whether the ascending list holds the facet. Lists are short but for the hub of a fan.
bool holds(ZuListView<ZuFacetIndex> list, ZuFacetIndex const& facet) {
  return std::binary_search(list.begin(), list.end(), facet);
}

/// Angle at b between the edges to a and c, rad; 0 where an edge has no length.
double angleAt(ZuVector const& a, ZuVector const& b, ZuVector const& c) {
  ZuVector const u = a - b, v = c - b;
  return std::atan2(u.cross(v).mag(), u.dot(v));
}

void makeUnit(ZuXmlVectorVector& vectors) {
  for (ZuVector& v : vectors) v.normalize();
}

ZuMeshSurface::Segment plainOf(ZuLineSegment const& s) { return {s.endpoint0(), s.endpoint1()}; }

ZuMeshSurface::Triangle plainOf(ZuGeomTriangle const& t) { return {t.point(0), t.point(1), t.point(2)}; }

/// The points in ascending order, each once.
std::vector<ZuVector> differentPoints(ZuXmlVectorVector const& points) {
  std::vector<ZuVector> different(points.begin(), points.end());
  if (!std::all_of(different.begin(), different.end(), isFinite)) return {};
  auto const isLess = [](ZuVector const& a, ZuVector const& b) {
    return std::make_tuple(a.x(), a.y(), a.z()) < std::make_tuple(b.x(), b.y(), b.z());
  };
  std::sort(different.begin(), different.end(), isLess);
  different.erase(std::unique(different.begin(), different.end()), different.end());
  return different;
}

template <class List>
void append(List& list, List const& added) {
  for (auto const& item : added) list.pushBack(item);
}

/// How far a dent reaches: 1 at the center, 0 with slope 0 at the radius.
struct Bump {
  ZuVector center;
  double radius;

  double operator()(ZuVector const& p) const {
    double const ratio = p.distanceTo(center) / radius;
    return (1.0 - ratio * ratio) * (1.0 - ratio * ratio);
  }
};

/// The same by a harmonic function, 1 at the center and 0 on the sphere of the radius: a sum of the fundamental
/// solutions 1 / |p - source| of sources outside the solid, whose strengths are found by collocation (the method of
/// fundamental solutions, Fairweather and Karageorghis 1998).
class FundamentalSolutions {
 public:
  FundamentalSolutions(ZuVector const& center, ZuVector const& normal, double radius) {
    std::vector<ZuVector> places = {center};
    m_Sources = {center + normal * (theDepth * radius)};
    for (int i = 0; i < 27; ++i) {
      if (i == 13) continue;
      ZuVector const direction = ZuVector(i % 3 - 1, i / 3 % 3 - 1, i / 9 - 1).unitVector();
      places.push_back(center + direction * radius);
      m_Sources.push_back(center + direction * (theOuterSphere * radius));
    }
    auto const n = static_cast<unsigned int>(places.size());
    ZuReArray influence(n, n), wanted(n, 1);
    wanted(0, 0) = 1.0;
    for (unsigned int i = 0; i < n; ++i) {
      for (unsigned int j = 0; j < n; ++j) influence(i, j) = radius / places[i].distanceTo(m_Sources[j]);
    }
    m_Radius = influence.solve(wanted, m_Strengths) ? radius : 0.0;
  }

  double operator()(ZuVector const& p) const {
    if (m_Radius == 0.0) return 0.0;
    double sum = 0.0;
    for (unsigned int j = 0; j < m_Sources.size(); ++j) {
      sum += m_Strengths(j, 0) * (m_Radius / std::max(p.distanceTo(m_Sources[j]), m_Radius * theNearest));
    }
    return std::min(std::max(sum, 0.0), 1.0);
  }

 private:
  /// Of the radius: how far outside the surface the source at the center lies. Smaller: a sharper dent.
  static constexpr double theDepth = 0.25;
  /// Of the radius: where the sources lie that hold the sphere still. The nearer, the less smooth between them.
  static constexpr double theOuterSphere = 2.0;
  /// Of the radius: keeps a point on a source finite.
  static constexpr double theNearest = 1e-6;

  std::vector<ZuVector> m_Sources;
  ZuReArray m_Strengths;
  double m_Radius;
};

/// What has no end has no boxes.
bool asksBoxes(ZuShape const& mesh, ZuShape const& other) {
  return mesh.useAABB() && other.type() != ZuShape::HALF_SPACE;
}

}  // namespace

std::string const ZuBasePhysicalExtent::m_TheNullMaterialType = "default";

ZuBasePhysicalExtent::ZuBasePhysicalExtent() = default;

ZuBasePhysicalExtent::~ZuBasePhysicalExtent() = default;

ZuBasePhysicalExtent::ZuBasePhysicalExtent(ZuBasePhysicalExtent const& other) : ZuShape(other) { copyMesh(other); }

ZuBasePhysicalExtent& ZuBasePhysicalExtent::operator=(ZuBasePhysicalExtent const& other) {
  if (this == &other) return *this;
  ZuShape::operator=(other);
  copyMesh(other);
  return *this;
}

void ZuBasePhysicalExtent::copyMesh(ZuBasePhysicalExtent const& other) {
  m_IsConvex = other.m_IsConvex;
  m_Points = other.m_Points;
  m_Normals = other.m_Normals;
  m_RasterMapPoints = other.m_RasterMapPoints;
  m_TipPointIndex = other.m_TipPointIndex;
  m_EndPointIndex = other.m_EndPointIndex;
  m_SupportPointID = other.m_SupportPointID;
  m_NearPointID = other.m_NearPointID;
  m_VisitStamps = other.m_VisitStamps;
  m_VisitStamp = other.m_VisitStamp;
  m_SupportTable = other.m_SupportTable;
  m_AnswersByScan = other.m_AnswersByScan;
  m_Derived = other.m_Derived;
  m_Computed = other.m_Computed;
  m_Outdated = other.m_Outdated;
  m_ModifiedFacets = other.m_ModifiedFacets;
  m_ModIsCleanedUp = other.m_ModIsCleanedUp;
  m_OverwriteDescriptor = other.m_OverwriteDescriptor;
  m_Capsule.reset(other.m_Capsule ? new ZuCapsule(*other.m_Capsule) : nullptr);
  m_Surface.reset();
  m_RenderNode = other.m_RenderNode;
}

bool ZuBasePhysicalExtent::operator==(ZuBasePhysicalExtent const& other) const {
  return ZuShape::operator==(other) && m_IsConvex == other.m_IsConvex && m_Points == other.m_Points &&
         m_Normals == other.m_Normals && m_RasterMapPoints == other.m_RasterMapPoints &&
         m_TipPointIndex == other.m_TipPointIndex && m_EndPointIndex == other.m_EndPointIndex;
}

void ZuBasePhysicalExtent::setPoints(ZuXmlVectorVector const& points) {
  bool const sameNumber = points.size() == m_Points.size();
  m_Points = points;
  if (sameNumber) {
    pointsMoved();
  } else {
    facetsChanged();
  }
}

ZuVector const& ZuBasePhysicalExtent::point(unsigned int index) const {
  static ZuVector const theZeroVector;
  if (index < m_Points.size()) return m_Points[index];
  print("ZuBasePhysicalExtent::point-->invalid index");
  return theZeroVector;
}

void ZuBasePhysicalExtent::setPoint(unsigned int index, ZuVector const& point) {
  if (index >= m_Points.size()) return;
  m_Points[index] = point;
  pointsMoved();
}

void ZuBasePhysicalExtent::resetNeighborFlags() {
  m_Computed.reset();
  m_Outdated.reset();
  m_SupportTable.reset();
  m_AnswersByScan = 0;
}

void ZuBasePhysicalExtent::setComputed(DerivedStructure structure) const {
  m_Computed.set(structure);
  m_Outdated.reset(structure);
}

/// Runs the builder when points have moved since it ran.
void ZuBasePhysicalExtent::refresh(DerivedStructure structure, void (ZuBasePhysicalExtent::*builder)()) const {
  if (m_Outdated[structure]) (const_cast<ZuBasePhysicalExtent&>(*this).*builder)();
}

std::vector<ZuLineAndNeighbors> const& ZuBasePhysicalExtent::lineAndNeighborsVector() const {
  refresh(LINES, &ZuBasePhysicalExtent::findLineLengths);
  refresh(LINE_NORMALS, &ZuBasePhysicalExtent::findNormalOfLines);
  return m_Derived.lineAndNeighbors;
}

std::vector<ZuXmlVectorVector> const& ZuBasePhysicalExtent::normalsOfFacets() const {
  refresh(FACET_NORMALS, &ZuBasePhysicalExtent::findNormalOfFacets);
  return m_Derived.normalsOfFacets;
}

ZuXmlVectorVector const& ZuBasePhysicalExtent::normalsOfPoints() const {
  refresh(POINT_NORMALS, &ZuBasePhysicalExtent::findNormalOfPoints);
  return m_Derived.normalsOfPoints;
}

ZuXmlVectorVector const& ZuBasePhysicalExtent::normalsOfLines() const {
  refresh(LINE_NORMALS, &ZuBasePhysicalExtent::findNormalOfLines);
  return m_Derived.normalsOfLines;
}

void ZuBasePhysicalExtent::setModIsCleanedUp(bool isCleanedUp) {
  m_ModIsCleanedUp = isCleanedUp;
  if (isCleanedUp) m_ModifiedFacets.clear();
}

void ZuBasePhysicalExtent::setGeometryOverwriteDescriptor(ZuGeometryOverwriteDescriptor const& descriptor) {
  m_OverwriteDescriptor = descriptor;
}

ZuAABBHierarchyGeneration const& ZuBasePhysicalExtent::AABBGen() const { return surface().hierarchy(); }

ZuMeshSurface const& ZuBasePhysicalExtent::surface() const {
  if (!m_Surface || !isComputed(BOXES)) {
    ZuMeshSurface::Builder builder(m_Points);
    forEachFacet([&builder](ZuFacetIndex const& facet, ZuListView<unsigned int> loop) { builder.add(facet, loop); });
    m_Surface = std::make_unique<ZuMeshSurface>(builder);
    setComputed(BOXES);
  }
  return *m_Surface;
}

void ZuBasePhysicalExtent::facetsChanged() {
  resetNeighborFlags();
  m_Derived = Derived();
  m_Surface.reset();
  m_Capsule.reset();
  m_ModifiedFacets.clear();
}

void ZuBasePhysicalExtent::pointsMoved() {
  for (DerivedStructure const structure : {LINES, FACET_NORMALS, POINT_NORMALS, LINE_NORMALS}) {
    if (m_Computed[structure]) m_Outdated.set(structure);
  }
  m_Computed.reset(BOXES);
  if (m_SupportTable) m_AnswersByScan = m_theAnswersByScan;
  m_SupportTable.reset();
  m_Surface.reset();
  m_Capsule.reset();
}

// Builders.

void ZuBasePhysicalExtent::findVertexNeighborVertices() {
  auto const forEachEdge = [this](auto const& visit) {
    forEachFacet([this, &visit](ZuFacetIndex const&, ZuListView<unsigned int> loop) {
      for (std::size_t k = 0; k < loop.size(); ++k) {
        unsigned int const a = loop[k], b = loop[k + 1 == loop.size() ? 0 : k + 1];
        if (a < m_Points.size() && b < m_Points.size()) visit(std::min(a, b), std::max(a, b));
      }
    });
  };
  ZuCompressedListsBuilder<unsigned int> neighbors(m_Points.size());
  forEachEdge([&neighbors](unsigned int a, unsigned int b) {
    neighbors.announce(a);
    neighbors.announce(b);
  });
  neighbors.endAnnouncing();
  forEachEdge([&neighbors](unsigned int a, unsigned int b) {
    // Each edge stands in both lists, so the shorter one tells: the hub of a fan is not searched again and again.
    bool const searchA = neighbors.list(a).size() <= neighbors.list(b).size();
    if (contains(neighbors.list(searchA ? a : b), searchA ? b : a)) return;
    neighbors.add(a, b);
    neighbors.add(b, a);
  });
  m_Derived.vertexNeighborVertices = neighbors.lists();
  setComputed(VERTEX_VERTICES);
}

void ZuBasePhysicalExtent::setVertexNeighborFacets(FacetLists&& lists) {
  m_Derived.vertexNeighborFacets = std::move(lists);
  m_VisitStamps.assign(m_Points.size(), 0);
  m_VisitStamp = 1;
  setComputed(VERTEX_FACETS);
}

void ZuBasePhysicalExtent::findLineAndNeighbors() {
  if (!isComputed(VERTEX_VERTICES)) findVertexNeighborVertices();
  IndexLists const& neighbors = vertexNeighborVerticesVector();
  if (neighbors.size() != m_Points.size()) {
    return print("ZuBasePhysicalExtent::findLineAndNeighbors m_VertexNeighborVerticesVector size mismatch");
  }
  if (!isComputed(VERTEX_FACETS)) findVertexNeighborFacetsVector();
  if (vertexNeighborFacetsVector().size() != m_Points.size()) {
    return print("ZuBasePhysicalExtent::findLineAndNeighbors m_VertexNeighborFacetsVector size mismatch");
  }
  lines().clear();
  lines().reserve(neighbors.numberOfItems() / 2);
  for (unsigned int i = 0; i + 1 < m_Points.size(); ++i) {
    for (unsigned int const j : neighbors[i]) {
      if (i < j) lines().emplace_back(i, j, j < m_Points.size() ? m_Points[i].distanceTo(m_Points[j]) : 0.0);
    }
  }
  for (ZuLineAndNeighbors& line : lines()) collectFacetsBeside(line);
  tellEdgesBeyondThePoints();
  setComputed(LINES);
}

/// Such edges are no lines; each is told where a facet has it.
void ZuBasePhysicalExtent::tellEdgesBeyondThePoints() const {
  forEachFacet([this](ZuFacetIndex const&, ZuListView<unsigned int> loop) {
    for (std::size_t k = 0; k < loop.size(); ++k) {
      unsigned int const a = loop[k], b = loop[k + 1 == loop.size() ? 0 : k + 1];
      if (std::max(a, b) >= m_Points.size()) print(theVertexBeyond);
    }
  });
}

void ZuBasePhysicalExtent::collectFacetsBeside(ZuLineAndNeighbors& line) const {
  FacetLists const& facets = vertexNeighborFacetsVector();
  if (line.vertexIndex1() >= facets.size()) {
    return print(theVertexBeyond);
  }
  ZuListView<ZuFacetIndex> fewer = facets[line.vertexIndex0()], more = facets[line.vertexIndex1()];
  if (more.size() < fewer.size()) std::swap(fewer, more);
  bool tooMany = false;
  for (ZuFacetIndex const& facet : fewer) {
    if (holds(more, facet) && !line.addFacetIndex(facet)) tooMany = true;
  }
  if (tooMany) print("ZuBasePhysicalExtent::findLineAndNeighbors more than 2 facets neighbors beside a line.");
}

void ZuBasePhysicalExtent::findLineLengths() {
  for (ZuLineAndNeighbors& line : lines()) {
    if (line.vertexIndex1() >= m_Points.size()) continue;
    line.setLineLength(m_Points[line.vertexIndex0()].distanceTo(m_Points[line.vertexIndex1()]));
  }
  setComputed(LINES);
}

void ZuBasePhysicalExtent::findVertexNeighborLines() {
  if (!isComputed(LINES)) findLineAndNeighbors();
  if (vertexNeighborVerticesVector().size() != m_Points.size()) {
    return print("ZuBasePhysicalExtent::findVertexNeighborLines m_VertexNeighborVerticesVector size mismatch");
  }
  ZuCompressedListsBuilder<unsigned int> lists(m_Points.size());
  auto const forEachEnd = [this](auto const& visit) {
    for (unsigned int i = 0; i < m_Derived.lineAndNeighbors.size(); ++i) {
      ZuLineAndNeighbors const& line = m_Derived.lineAndNeighbors[i];
      for (unsigned int const vertex : {line.vertexIndex0(), line.vertexIndex1()}) {
        if (vertex < m_Points.size()) visit(vertex, i);
      }
    }
  };
  forEachEnd([&lists](unsigned int vertex, unsigned int) { lists.announce(vertex); });
  lists.endAnnouncing();
  forEachEnd([&lists](unsigned int vertex, unsigned int line) { lists.add(vertex, line); });
  m_Derived.vertexNeighborLines = lists.lists();
  setComputed(VERTEX_LINES);
}

/// The line that joins two points; theZuNoIndex when there is none.
unsigned int ZuBasePhysicalExtent::lineBetween(unsigned int a, unsigned int b) const {
  IndexLists const& lines = m_Derived.vertexNeighborLines;
  if (a >= lines.size() || b >= lines.size()) return theZuNoIndex;
  bool const searchA = lines[a].size() <= lines[b].size();
  for (unsigned int const i : lines[searchA ? a : b]) {
    ZuLineAndNeighbors const& line = m_Derived.lineAndNeighbors[i];
    if (line.vertexIndex0() == std::min(a, b) && line.vertexIndex1() == std::max(a, b)) return i;
  }
  return theZuNoIndex;
}

void ZuBasePhysicalExtent::findFacetNeighborLinesVector() {
  if (!isComputed(VERTEX_LINES)) findVertexNeighborLines();
  std::vector<bool> isUsed(m_Points.size(), false);
  std::vector<IndexLists> lists(numberOfGroups());
  std::vector<unsigned int> bounds;
  forEachFacet([this, &isUsed, &lists, &bounds](ZuFacetIndex const& facet, ZuListView<unsigned int> loop) {
    bounds.clear();
    for (std::size_t k = 0; k < loop.size(); ++k) {
      if (loop[k] < isUsed.size()) isUsed[loop[k]] = true;
      unsigned int const line = lineBetween(loop[k], loop[k + 1 == loop.size() ? 0 : k + 1]);
      if (line != theZuNoIndex && !contains({bounds.data(), bounds.size()}, line)) bounds.push_back(line);
    }
    lists[facet.first].append({bounds.data(), bounds.size()});
  });
  std::size_t const numLines = m_Derived.lineAndNeighbors.size();
  if (numLines < static_cast<std::size_t>(std::count(isUsed.begin(), isUsed.end(), true))) {
    Zu::Print::instance().write(
        Zu::PRINT_WARNING,
        "ZuBasePhysicalExtent::findFacetNeighborLinesVector line number wrong. numLines (%d) numPoints (%d)\n",
        static_cast<int>(numLines), static_cast<int>(m_Points.size()));
  }
  m_Derived.facetNeighborLines = std::move(lists);
  setComputed(FACET_LINES);
}

ZuVector ZuBasePhysicalExtent::doubleAreaVector(ZuListView<unsigned int> loop) const {
  ZuVector sum;
  ZuVector const* first = nullptr;
  ZuVector const* last = nullptr;
  for (unsigned int const corner : loop) {
    if (corner >= m_Points.size()) continue;
    if (first == nullptr) first = &m_Points[corner];
    if (last != nullptr) sum += (*last - *first).cross(m_Points[corner] - *first);
    last = &m_Points[corner];
  }
  return sum;
}

void ZuBasePhysicalExtent::findNormalOfFacets() {
  std::vector<ZuXmlVectorVector> normals(numberOfGroups());
  for (unsigned int group = 0; group < normals.size(); ++group) normals[group].reserve(numberOfFacetsInGroup(group));
  forEachFacet([this, &normals](ZuFacetIndex const& facet, ZuListView<unsigned int> loop) {
    normals[facet.first].pushBack(doubleAreaVector(loop).unitVector());
  });
  m_Derived.normalsOfFacets = std::move(normals);
  setComputed(FACET_NORMALS);
}

void ZuBasePhysicalExtent::findNormalOfPoints() {
  if (!isComputed(FACET_NORMALS)) findNormalOfFacets();
  std::vector<ZuXmlVectorVector> const& normalsOf = normalsOfFacets();
  ZuXmlVectorVector normals;
  normals.resize(m_Points.size());
  forEachFacet([&](ZuFacetIndex const& facet, ZuListView<unsigned int> loop) {
    ZuVector const& normal = normalsOf[facet.first][facet.second];
    std::size_t const n = loop.size();
    for (std::size_t k = 0; k < n; ++k) {
      unsigned int const before = loop[k == 0 ? n - 1 : k - 1], here = loop[k], after = loop[k + 1 == n ? 0 : k + 1];
      if (std::max({before, here, after}) >= m_Points.size()) continue;
      normals[here] += normal * angleAt(m_Points[before], m_Points[here], m_Points[after]);
    }
  });
  makeUnit(normals);
  m_Derived.normalsOfPoints = std::move(normals);
  setComputed(POINT_NORMALS);
}

void ZuBasePhysicalExtent::findNormalOfLines() {
  if (!isComputed(FACET_NORMALS)) findNormalOfFacets();
  if (!isComputed(LINES)) findLineAndNeighbors();
  std::vector<ZuXmlVectorVector> const& normalsOf = normalsOfFacets();
  ZuXmlVectorVector normals;
  normals.reserve(lines().size());
  for (ZuLineAndNeighbors& line : lines()) {
    ZuVector sum;
    for (ZuFacetIndex const& facet : line.facetIndexVector()) sum += normalsOf[facet.first][facet.second];
    line.setNormalVector(sum.unitVector());
    normals.pushBack(line.normalVector());
  }
  m_Derived.normalsOfLines = std::move(normals);
  setComputed(LINE_NORMALS);
}

void ZuBasePhysicalExtent::initNeighborInformation() {
  if (!isComputed(VERTEX_VERTICES)) findVertexNeighborVertices();
  if (!isComputed(VERTEX_FACETS)) findVertexNeighborFacetsVector();
  if (!isComputed(LINES)) findLineAndNeighbors();
  if (!isComputed(VERTEX_LINES)) findVertexNeighborLines();
  if (!isComputed(FACET_LINES)) findFacetNeighborLinesVector();
}

void ZuBasePhysicalExtent::init() {
  initNeighborInformation();
  if (!isComputed(FACET_NORMALS)) findNormalOfFacets();
  if (!isComputed(POINT_NORMALS)) findNormalOfPoints();
  if (!isComputed(LINE_NORMALS)) findNormalOfLines();
}

// Support points.

ZuVector ZuBasePhysicalExtent::supportPoint(ZuVector const& direction) const {
  if (m_Points.empty() || isZero(direction)) {
    m_SupportPointID = 0;
    if (m_IsConvex) skipUnusedPoints(isZero(direction) ? theNoNeighborInfo : theNoFacetLists);
  } else if (m_IsConvex) {
    climb(direction);
  } else {
    scan(direction);
  }
  return m_Points.empty() ? ZuVector() : m_Points[m_SupportPointID];
}

/// Moves on from an unused point to the next one that a facet uses, or to the last point.
void ZuBasePhysicalExtent::skipUnusedPoints(char const* messageWithoutNeighbors) const {
  FacetLists const& facets = vertexNeighborFacetsVector();
  if (facets.empty()) return print(messageWithoutNeighbors);
  while (m_SupportPointID + 1 < m_Points.size() && m_SupportPointID < facets.size() &&
         facets[m_SupportPointID].empty()) {
    ++m_SupportPointID;
  }
}

bool ZuBasePhysicalExtent::visitVertex(unsigned int vertex) const {
  if (m_VisitStamps.size() != m_Points.size()) m_VisitStamps.assign(m_Points.size(), 0);
  if (m_VisitStamps[vertex] == m_VisitStamp) return false;
  m_VisitStamps[vertex] = m_VisitStamp;
  return true;
}

void ZuBasePhysicalExtent::clearVisitedMarks() const {
  if (++m_VisitStamp != 0) return;
  std::fill(m_VisitStamps.begin(), m_VisitStamps.end(), 0);
  m_VisitStamp = 1;
}

void ZuBasePhysicalExtent::climb(ZuVector const& direction) const {
  clearVisitedMarks();
  if (m_SupportPointID >= m_Points.size()) m_SupportPointID = 0;
  if (m_SupportPointID == 0) skipUnusedPoints(theNoFacetLists);
  double best = m_Points[m_SupportPointID].dot(direction), dot = 0.0;
  unsigned int index = 0;
  visitVertex(m_SupportPointID);
  // Each step visits a vertex; the bound is for a bestNeighbor() that does not keep to that.
  for (std::size_t steps = m_Points.size(); steps > 0; --steps) {
    if (!bestNeighbor(direction, dot, index) || !(best <= dot) || dot == theLowestDot) return;
    if (index >= m_Points.size()) return;
    best = dot;
    m_SupportPointID = index;
  }
}

void ZuBasePhysicalExtent::scan(ZuVector const& direction) const {
  unsigned int winner = 0;
  double best = m_Points[0].dot(direction);
  for (unsigned int i = 1; i < m_Points.size(); ++i) {
    double const dot = m_Points[i].dot(direction);
    if (!(dot > best)) continue;
    best = dot;
    winner = i;
  }
  m_SupportPointID = winner;
}

ZuVector ZuBasePhysicalExtent::computeSupportPoint(ZuVector const& direction) const {
  if (m_Points.empty()) return {};
  if (isZero(direction)) {
    // The caches of a const mesh are filled by the same builders as those of another one.
    bool const isMissing = m_IsConvex && !isComputed(VERTEX_FACETS);
    if (isMissing) const_cast<ZuBasePhysicalExtent&>(*this).findVertexNeighborFacetsVector();
    return supportPoint(direction);
  }
  if (m_IsConvex) {
    if (!m_SupportTable || (m_AnswersByScan != 0 && --m_AnswersByScan == 0)) buildSupportTable();
    unsigned int const place = m_SupportTable->farthest(direction);
    m_SupportPointID = m_SupportTable->index(place);
    return m_SupportTable->point(place);
  }
  if (m_Points.size() > m_theLargestPlainScan && !surface().triangles().empty()) {
    m_SupportPointID = surface().farthestVertex(direction);
  } else {
    scan(direction);
  }
  return m_Points[m_SupportPointID];
}

void ZuBasePhysicalExtent::buildSupportTable() const {
  std::vector<unsigned int> used = usedIndices();
  if (used.empty()) {
    used.resize(m_Points.size());
    std::iota(used.begin(), used.end(), 0U);
  }
  m_SupportTable = std::make_shared<ZuSupportTable const>(m_Points, used, m_AnswersByScan != 0);
}

// Changes of the geometry.

void ZuBasePhysicalExtent::scaleBy(double factor) {
  scaleChainBy(factor);
  scalePoints({factor, factor, factor});
}

void ZuBasePhysicalExtent::scaleBy(double x, double y, double z) {
  scalePoints({x, y, z});
  for (ZuShape* level = lowerFidelityRepresentation(); level != nullptr; level = level->lowerFidelityRepresentation()) {
    level->fitFromShape(*this);
  }
}

void ZuBasePhysicalExtent::scalePoints(ZuVector const& f) {
  for (ZuVector& p : m_Points) p = ZuVector(p.x() * f.x(), p.y() * f.y(), p.z() * f.z());
  // The cofactors of the map take normals to normals, without a division; a reflection turns loops and normals over.
  double const sign = f.prod() < 0.0 ? -1.0 : 1.0;
  ZuVector const cofactors = sign * ZuVector(f.y() * f.z(), f.z() * f.x(), f.x() * f.y());
  for (ZuVector& n : m_Normals) {
    n = ZuVector(n.x() * cofactors.x(), n.y() * cofactors.y(), n.z() * cofactors.z()).unitVector();
  }
  if (sign < 0.0) {
    reverseFacets();
    rebuildNeighbors();
  }
  pointsMoved();
}

/// The neighbours that were built, in the order of loops that have changed.
void ZuBasePhysicalExtent::rebuildNeighbors() {
  if (isComputed(VERTEX_VERTICES)) findVertexNeighborVertices();
  if (isComputed(VERTEX_FACETS)) findVertexNeighborFacetsVector();
  if (isComputed(LINES)) findLineAndNeighbors();
  if (isComputed(VERTEX_LINES)) findVertexNeighborLines();
  if (isComputed(FACET_LINES)) findFacetNeighborLinesVector();
}

void ZuBasePhysicalExtent::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  for (ZuVector& p : m_Points) p = xform * p;
  for (ZuVector& n : m_Normals) n = xform.orientation() * n;
  pointsMoved();
}

void ZuBasePhysicalExtent::truncateValues(double const& step) {
  if (!(step > 0.0)) return;
  auto const rounded = [&step](double value) {
    double const multiple = std::round(value / step) * step;
    return std::isfinite(multiple) ? multiple : value;
  };
  for (ZuVector& p : m_Points) p = ZuVector(rounded(p.x()), rounded(p.y()), rounded(p.z()));
  pointsMoved();
}

std::vector<unsigned int> ZuBasePhysicalExtent::usedIndices() const {
  std::vector<bool> isUsed(m_Points.size(), false);
  forEachFacet([&isUsed](ZuFacetIndex const&, ZuListView<unsigned int> loop) {
    for (unsigned int const corner : loop) {
      if (corner < isUsed.size()) isUsed[corner] = true;
    }
  });
  std::vector<unsigned int> indices;
  for (unsigned int i = 0; i < isUsed.size(); ++i) {
    if (isUsed[i]) indices.push_back(i);
  }
  return indices;
}

void ZuBasePhysicalExtent::usedPoints(ZuXmlVectorVector& points) const {
  ZuXmlVectorVector used;
  for (unsigned int const i : usedIndices()) used.pushBack(m_Points[i]);
  points = used;
}

unsigned int ZuBasePhysicalExtent::totalNumberOfFacets() const {
  unsigned int total = 0;
  for (unsigned int group = 0; group < numberOfGroups(); ++group) total += numberOfFacetsInGroup(group);
  return total;
}

void ZuBasePhysicalExtent::mergeWith(ZuBasePhysicalExtent const& other) {
  if (other.m_Points.empty()) return;
  auto const pointOffset = m_Points.size(), normalOffset = m_Normals.size();
  auto const rasterOffset = m_RasterMapPoints.size();
  // The facets first, then copies: the other mesh may be this one.
  appendFacets(other, static_cast<unsigned int>(pointOffset), static_cast<unsigned int>(normalOffset));
  append(m_Points, ZuXmlVectorVector(other.m_Points));
  append(m_Normals, ZuXmlVectorVector(other.m_Normals));
  if (rasterOffset != 0 || !other.m_RasterMapPoints.empty()) {
    ZuXmlVectorType<ZuPlanarVector> const added(other.m_RasterMapPoints);
    m_RasterMapPoints.resize(pointOffset);
    append(m_RasterMapPoints, added);
    m_RasterMapPoints.resize(m_Points.size());
  }
  m_IsConvex = pointOffset == 0 && other.m_IsConvex;
  facetsChanged();
}

bool ZuBasePhysicalExtent::convexHull(ZuXmlVectorVector const& points) {
  ZuXmlVectorVector corners;
  std::vector<ZuGJKTriangle> triangles;
  std::vector<ZuVector> const candidates = differentPoints(points);
  // What spans no volume is not handed to the hull, which could end the process.
  if (!ZuConvexHull::spansVolume(candidates.data(), candidates.size()) ||
      !ZuConvexHull().computeConvexHull(candidates, triangles)) {
    Zu::Print::instance().write(
        Zu::PRINT_WARNING, "ZuBasePhysicalExtent::convexHull-->the points span no volume (%zu points)", points.size());
    return false;
  }
  std::vector<unsigned int> place(candidates.size(), theZuNoIndex);
  auto const placeOf = [&](ZuGJKTriangle const& triangle, unsigned int k) {
    auto const candidate = static_cast<unsigned int>(triangle.vertexIndex(k));
    if (place[candidate] == theZuNoIndex) {
      place[candidate] = static_cast<unsigned int>(corners.size());
      corners.pushBack(candidates[candidate]);
    }
    return place[candidate];
  };
  ZuXmlVectorType<ZuPolygonWithKey> facets;
  facets.reserve(triangles.size());
  for (ZuGJKTriangle const& triangle : triangles) {
    // The hull's triangles run clockwise as seen from outside.
    unsigned int const loop[] = {placeOf(triangle, 0), placeOf(triangle, 2), placeOf(triangle, 1)};
    facets.pushBack(ZuPolygonWithKey(loop, 3, surfaceProperty()));
  }
  clearSupplements();
  setPoints(corners);
  setFacets(facets);
  setIsConvex(true);
  initNeighborInformation();
  return true;
}

void ZuBasePhysicalExtent::clearSupplements() {
  m_Normals.clear();
  m_RasterMapPoints.clear();
  m_TipPointIndex = m_EndPointIndex = theZuNoIndex;
}

void ZuBasePhysicalExtent::fitToPoints(ZuXmlVectorVector const& points) { convexHull(points); }

void ZuBasePhysicalExtent::fitFromShape(ZuShape const& other) {
  ZuBasePhysicalExtent const& mesh = other.physicalExtent();
  if (&mesh == this) return;
  clearSupplements();
  m_Points = cornersAround(other);
  m_IsConvex = mesh.m_IsConvex;
  copyFacets(mesh);
  facetsChanged();
}

// Deformation.

bool ZuBasePhysicalExtent::isDeformationAllowed(char const* function, double radius) const {
  if (canDeform() && radius > 0.0) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuBasePhysicalExtent::%s-->%s (radius %g)", function,
                              canDeform() ? "the radius is not above 0" : "the shape can't deform", radius);
  return false;
}

std::vector<unsigned int> ZuBasePhysicalExtent::verticesWithin(ZuVector const& center, double radius) const {
  std::vector<unsigned int> vertices;
  for (unsigned int i = 0; i < m_Points.size(); ++i) {
    if (m_Points[i].distanceTo(center) < radius) vertices.push_back(i);
  }
  return vertices;
}

/// Those that a chain of edges within the radius joins to the vertex; none for a vertex that is not there.
std::vector<unsigned int> ZuBasePhysicalExtent::verticesJoinedWithin(unsigned int vertex, double radius) {
  if (!isComputed(VERTEX_VERTICES)) findVertexNeighborVertices();
  if (vertex >= vertexNeighborVerticesVector().size()) return {};
  ZuVector const center = m_Points[vertex];
  std::vector<bool> isReached(m_Points.size(), false);
  std::vector<unsigned int> reached = {vertex};
  isReached[vertex] = true;
  for (std::size_t i = 0; i < reached.size(); ++i) {
    for (unsigned int const neighbor : vertexNeighborVerticesVector()[reached[i]]) {
      if (neighbor >= isReached.size() || isReached[neighbor] || !(m_Points[neighbor].distanceTo(center) < radius))
        continue;
      isReached[neighbor] = true;
      reached.push_back(neighbor);
    }
  }
  return reached;
}

/// Moves each vertex by its weight times the displacement and tells which facets that changes.
template <class Weight>
unsigned int ZuBasePhysicalExtent::displace(std::vector<unsigned int> const& vertices, ZuVector const& displacement,
                                            Weight const& weight) {
  if (vertices.empty()) return 0;
  std::vector<bool> isMoved(m_Points.size(), false);
  for (unsigned int const i : vertices) {
    m_Points[i] += displacement * weight(m_Points[i]);
    isMoved[i] = true;
  }
  forEachFacet([this, &isMoved](ZuFacetIndex const& facet, ZuListView<unsigned int> loop) {
    if (std::any_of(loop.begin(), loop.end(), [&](unsigned int i) { return i < isMoved.size() && isMoved[i]; })) {
      m_ModifiedFacets.push_back(facet);
    }
  });
  std::sort(m_ModifiedFacets.begin(), m_ModifiedFacets.end());
  m_ModifiedFacets.erase(std::unique(m_ModifiedFacets.begin(), m_ModifiedFacets.end()), m_ModifiedFacets.end());
  m_ModIsCleanedUp = false;
  m_IsConvex = false;
  pointsMoved();
  return static_cast<unsigned int>(vertices.size());
}

unsigned int ZuBasePhysicalExtent::deformInRadius(ZuVector const& center, ZuVector const& displacement, double radius) {
  if (!isDeformationAllowed("deformInRadius", radius)) return 0;
  return displace(verticesWithin(center, radius), displacement, Bump{center, radius});
}

unsigned int ZuBasePhysicalExtent::deformInRadiusNeighbor(unsigned int vertex, ZuVector const& displacement,
                                                          double radius) {
  if (!isDeformationAllowed("deformInRadiusNeighbor", radius)) return 0;
  std::vector<unsigned int> const vertices = verticesJoinedWithin(vertex, radius);
  return vertices.empty() ? 0 : displace(vertices, displacement, Bump{m_Points[vertex], radius});
}

unsigned int ZuBasePhysicalExtent::deformUsingMFS(ZuVector const& center, ZuVector const& displacement, double radius) {
  if (!isDeformationAllowed("deformUsingMFS", radius)) return 0;
  unsigned int const nearest = surface().nearestVertex(center, theZuNoIndex);
  return displace(verticesWithin(center, radius), displacement,
                  FundamentalSolutions(center, normalAt(nearest), radius));
}

unsigned int ZuBasePhysicalExtent::deformUsingMFSNeighbor(unsigned int vertex, ZuVector const& displacement,
                                                          double radius) {
  if (!isDeformationAllowed("deformUsingMFSNeighbor", radius)) return 0;
  std::vector<unsigned int> const vertices = verticesJoinedWithin(vertex, radius);
  if (vertices.empty()) return 0;
  return displace(vertices, displacement, FundamentalSolutions(m_Points[vertex], normalAt(vertex), radius));
}

/// Outward; some unit vector where facets give none.
ZuVector ZuBasePhysicalExtent::normalAt(unsigned int vertex) {
  if (!isComputed(POINT_NORMALS)) findNormalOfPoints();
  ZuXmlVectorVector const& normals = normalsOfPoints();
  ZuVector const normal = vertex < normals.size() ? normals[vertex] : ZuVector();
  return isZero(normal) ? ZuVector::zVector(1.0) : normal;
}

// The capsule that bounds the points.

void ZuBasePhysicalExtent::recalculateCapsule() {
  m_Capsule.reset();
  capsuleBoundingVolume();
}

void ZuBasePhysicalExtent::expandCapsule(ZuXmlVectorVector const& points) {
  capsuleBoundingVolume();
  m_Capsule->expandToInclude(points);
}

ZuCapsule const& ZuBasePhysicalExtent::capsuleBoundingVolume() const {
  if (!m_Capsule) {
    m_Capsule = std::make_unique<ZuCapsule>();
    if (!m_Points.empty()) m_Capsule->fitToPoints(m_Points);
  }
  return *m_Capsule;
}

void ZuBasePhysicalExtent::setCapsuleBoundingVolume(ZuCapsule const& capsule) {
  m_Capsule = std::make_unique<ZuCapsule>(capsule);
}

// Facets.

ZuPlane ZuBasePhysicalExtent::getFacetPlane(unsigned int group, unsigned int facet) const {
  ZuVector const normal = getPolygon(group, facet).normal();
  if (isZero(normal)) return {};
  return {point(getFacetPointIndex(group, facet, 0)), normal};
}

std::vector<ZuTriangleKernels::Triangle> ZuBasePhysicalExtent::trianglesOf(unsigned int group,
                                                                           unsigned int facet) const {
  std::vector<unsigned int> loop(numberOfPointsInFacet(group, facet)), corners;
  for (unsigned int k = 0; k < loop.size(); ++k) loop[k] = getFacetPointIndexNoCheck(group, facet, k);
  zuCutLoop(m_Points, {loop.data(), loop.size()}, corners);
  std::vector<ZuTriangleKernels::Triangle> triangles;
  for (std::size_t i = 0; i < corners.size(); i += 3) {
    if (std::max({corners[i], corners[i + 1], corners[i + 2]}) >= m_Points.size()) continue;
    triangles.push_back({m_Points[corners[i]], m_Points[corners[i + 1]], m_Points[corners[i + 2]]});
  }
  return triangles;
}

bool ZuBasePhysicalExtent::checkFacetIntersect(unsigned int group, unsigned int facet, ZuVector const& point) const {
  for (ZuTriangleKernels::Triangle const& t : trianglesOf(group, facet)) {
    double const size = std::max(t.a.distanceTo(t.b), t.a.distanceTo(t.c));
    if (std::sqrt(ZuTriangleKernels::distanceSquared(t, point)) <= m_theFacetRounding * size) return true;
  }
  return false;
}

bool ZuBasePhysicalExtent::checkFacetIntersect(unsigned int group, unsigned int facet,
                                               ZuLineSegment const& segment) const {
  for (ZuTriangleKernels::Triangle const& t : trianglesOf(group, facet)) {
    if (ZuTriangleKernels::intersects(t, plainOf(segment))) return true;
  }
  return false;
}

ZuPolygon ZuBasePhysicalExtent::getPolygon(unsigned int group, unsigned int facet) const {
  ZuPolygon polygon;
  for (unsigned int k = 0; k < numberOfPointsInFacet(group, facet); ++k) {
    unsigned int const index = getFacetPointIndex(group, facet, k);
    if (index < m_Points.size()) polygon.addPoint(m_Points[index]);
  }
  return polygon;
}

void ZuBasePhysicalExtent::setPointCollectionPointer() { pointsMoved(); }

std::string const& ZuBasePhysicalExtent::impactedSurface(unsigned int const& pointIndex) const {
  FacetLists const& facets = vertexNeighborFacetsVector();
  if (pointIndex >= facets.size() || facets[pointIndex].empty()) return surfaceProperty();
  return getGroupSurfaceKey(facets[pointIndex][0].first);
}

// Queries of points, segments and triangles.

unsigned int ZuBasePhysicalExtent::pickNearestVertexIndex(ZuVector const& point) const {
  unsigned int const nearest = surface().nearestVertex(point, theZuNoIndex);
  if (nearest != theZuNoIndex) m_NearPointID = nearest;
  return nearest;
}

unsigned int ZuBasePhysicalExtent::getClosestPointID(ZuVector const& point, unsigned int group) const {
  unsigned int const nearest = group == theZuNoIndex ? group : surface().nearestVertex(point, group);
  if (nearest != theZuNoIndex) m_NearPointID = nearest;
  return nearest;
}

double ZuBasePhysicalExtent::distanceTo(ZuVector const& point) const {
  double const distance = surface().distanceTo(point);
  return distance > 0.0 && isAnyInside({point}) ? -distance : distance;
}

/// For a figure that does not meet the surface. A closed surface has it inside as a whole or not at all; an open one
/// may let it out.
bool ZuBasePhysicalExtent::isAnyInside(std::initializer_list<ZuVector> points) const {
  ZuMeshSurface const& mesh = surface();
  return std::any_of(points.begin(), mesh.isClosed() ? points.begin() + 1 : points.end(),
                     [&mesh](ZuVector const& p) { return mesh.isInside(p); });
}

double ZuBasePhysicalExtent::distanceTo(ZuLineSegment const& segment) const {
  ZuMeshSurface::Segment const plain = plainOf(segment);
  double const distance = surface().distanceTo(plain);
  return distance > 0.0 && isAnyInside({plain.p, plain.q}) ? -distance : distance;
}

double ZuBasePhysicalExtent::distanceTo(ZuGeomTriangle const& triangle) const {
  ZuMeshSurface::Triangle const plain = plainOf(triangle);
  double const distance = surface().distanceTo(plain);
  return distance > 0.0 && isAnyInside({plain.a, plain.b, plain.c}) ? -distance : distance;
}

double ZuBasePhysicalExtent::distanceTo(ZuRectangle const& rectangle) const {
  ZuVector const c[] = {rectangle.corner(0), rectangle.corner(1), rectangle.corner(2), rectangle.corner(3)};
  double const distance = std::min(surface().distanceTo(ZuMeshSurface::Triangle{c[0], c[1], c[2]}),
                                   surface().distanceTo(ZuMeshSurface::Triangle{c[0], c[2], c[3]}));
  return distance > 0.0 && isAnyInside({c[0], c[1], c[2], c[3]}) ? -distance : distance;
}

bool ZuBasePhysicalExtent::checkIntersect(ZuVector const& point) const { return distanceTo(point) <= 0.0; }

bool ZuBasePhysicalExtent::checkIntersect(ZuLineSegment const& segment) const {
  ZuMeshSurface::Segment const plain = plainOf(segment);
  return surface().meets(plain) || isAnyInside({plain.p, plain.q});
}

bool ZuBasePhysicalExtent::checkIntersect(ZuGeomTriangle const& triangle) const {
  ZuMeshSurface::Triangle const plain = plainOf(triangle);
  return surface().meets(plain) || isAnyInside({plain.a, plain.b, plain.c});
}

bool ZuBasePhysicalExtent::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  ZuVector const start = segment.endpoint0(), end = segment.endpoint1();
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  bool const crosses = surface().findCrossings(plainOf(segment), event.entry, event.exit);
  event.startsInside = surface().isInside(start) && !(crosses && event.entry.t == 0.0);
  event.endsInside = !crosses && surface().isClosed() ? event.startsInside
                                                      : surface().isInside(end) && !(crosses && event.exit.t == 1.0);
  event.hit = crosses || event.startsInside || event.endsInside;
  // Where there is no crossing on the way in or out, it is at an opening, and the end inside stands for it.
  ZuShapeSurfacePoint const atStart = {0.0, start, ZuVector()}, atEnd = {1.0, end, ZuVector()};
  if (event.startsInside) event.entry = atStart;
  if (event.endsInside) event.exit = atEnd;
  if (!crosses && event.hit && !event.startsInside) event.entry = atEnd;
  if (!crosses && event.hit && !event.endsInside) event.exit = atStart;
  return event.hit;
}

// Pairs.

bool ZuBasePhysicalExtent::touchesByBoxes(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                          ZuShapeProximityDescriptor const& descriptor,
                                          ZuSystemShapeProximityState& state, ZuVector& witness1, ZuVector& witness2,
                                          double& distance) const {
  ZuShapeProximityData* const data = state.getProximityData(descriptor.key1(), descriptor.key2());
  if (data != nullptr && data->updateTime() == state.updateTime()) {
    distance = data->distance();
    data->getWitnessPoints(witness1, witness2);
    return distance <= 0.0;
  }
  bool const touching = getAABBProcessor().nearestPoints(*this, other, xform, data, witness1, witness2, distance);
  if (data != nullptr) {
    data->storeResult(distance, witness1 - xform * witness2, witness1, witness2, state.updateTime());
    if (touching) recordContact(data, witness1, witness2);
  }
  return touching;
}

double ZuBasePhysicalExtent::distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                        ZuShapeProximityDescriptor const& descriptor,
                                        ZuSystemShapeProximityState& state) const {
  if (!asksBoxes(*this, other)) return ZuShape::distanceTo(other, xform, descriptor, state);
  ZuVector witness1, witness2;
  return distanceAndWitnessPointsTo(other, xform, descriptor, state, witness1, witness2);
}

double ZuBasePhysicalExtent::distanceAndWitnessPointsTo(ZuShape const& other,
                                                        ZuCoordinateSystemTransformation const& xform,
                                                        ZuShapeProximityDescriptor const& descriptor,
                                                        ZuSystemShapeProximityState& state, ZuVector& witness1,
                                                        ZuVector& witness2) const {
  if (!asksBoxes(*this, other))
    return ZuShape::distanceAndWitnessPointsTo(other, xform, descriptor, state, witness1, witness2);
  double distance = 0.0;
  touchesByBoxes(other, xform, descriptor, state, witness1, witness2, distance);
  return distance;
}

bool ZuBasePhysicalExtent::checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                          ZuShapeProximityDescriptor const& descriptor,
                                          ZuSystemShapeProximityState& state, KeyPairs* pairs) const {
  double distance = 0.0;
  if (asksBoxes(*this, other)) {
    ZuVector witness1, witness2;
    return report(touchesByBoxes(other, xform, descriptor, state, witness1, witness2, distance), descriptor, pairs);
  }
  bool const answered = gjkDistanceQuery(other, descriptor.key1(), descriptor.key2(), xform, false, state, distance);
  return report(answered && distance <= 0.0, descriptor, pairs);
}

bool ZuBasePhysicalExtent::computePenetrationDistanceAndSupportPoints(ZuShape const& other,
                                                                      ZuCoordinateSystemTransformation const& xform,
                                                                      ZuVector& witness1, ZuVector& witness2,
                                                                      double& distance, ZuVector& direction) const {
  if (!asksBoxes(*this, other)) {
    return ZuShape::computePenetrationDistanceAndSupportPoints(other, xform, witness1, witness2, distance, direction);
  }
  bool const touching = getAABBProcessor().nearestPoints(*this, other, xform, nullptr, witness1, witness2, distance);
  direction = witness1 - xform * witness2;
  return touching;
}

void ZuBasePhysicalExtent::physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const {
  extents.push_back(&physicalExtent());
}

ZuBasePhysicalExtent& ZuBasePhysicalExtent::physicalExtent() const { return const_cast<ZuBasePhysicalExtent&>(*this); }

unsigned int ZuBasePhysicalExtent::nearPointID(ZuShapeProximityData const& data) const {
  return useAABB() ? getAABBProcessor().nearPointID(*this, data) : m_NearPointID;
}

// Persistence.

void ZuBasePhysicalExtent::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuIsConvexToken, &m_IsConvex);
  registerComponent(ZuGeom::ZuPointsToken, &m_Points);
  registerComponent(ZuGeom::ZuNormalsToken, &m_Normals);
  registerComponent(ZuGeom::ZuRasterMapPointsToken, &m_RasterMapPoints);
  registerComponent(ZuGeom::ZuTipPointIndexToken, &m_TipPointIndex);
  registerComponent(ZuGeom::ZuEndPointIndexToken, &m_EndPointIndex);
}

bool ZuBasePhysicalExtent::readElements(ZuXmlReader& reader) {
  if (!ZuShape::readElements(reader)) return false;
  for (unsigned int const index : {m_TipPointIndex.value(), m_EndPointIndex.value()}) {
    if (index != theZuNoIndex && index >= m_Points.size()) {
      return reader.refuse("the index of the tip or the end is %u of %zu points", index, m_Points.size());
    }
  }
  facetsChanged();
  return true;
}
