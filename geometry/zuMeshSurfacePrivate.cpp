#include "geometry/zuMeshSurfacePrivate.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

#include "geometry/zuExactSignsPrivate.h"
#include "geometry/zuLoopTrianglesPrivate.h"
#include "geometry/zuTrianglePairPrivate.h"

namespace {

using Box = ZuMeshSurface::Box;
using ZuTriangleKernels::Segment;
using ZuTriangleKernels::Triangle;

constexpr double theHalfTurn = 3.14159265358979323846;

ZuVector normalOf(Triangle const& t) { return (t.b - t.a).cross(t.c - t.a).unitVector(); }

ZuVector const& cornerOf(Triangle const& t, unsigned int k) { return k == 0 ? t.a : (k == 1 ? t.b : t.c); }

bool isFinite(ZuVector const& v) { return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z()); }

bool isFinite(Segment const& s) { return isFinite(s.p) && isFinite(s.q); }

bool isFinite(Triangle const& t) { return isFinite(t.a) && isFinite(t.b) && isFinite(t.c); }

ZuAABBHierarchyGeneration::SegmentBound boundOf(Segment const& s) { return {s.p, s.q}; }

ZuAABBHierarchyGeneration::TriangleBound boundOf(Triangle const& t) { return {t.a, t.b, t.c}; }

auto asTuple(ZuVector const& v) { return std::make_tuple(v.x(), v.y(), v.z()); }

}  // namespace

std::vector<unsigned int> zuWeld(ZuXmlVectorVector const& points) {
  std::vector<unsigned int> order(points.size()), welded(points.size());
  std::iota(order.begin(), order.end(), 0U);
  order.erase(std::remove_if(order.begin(), order.end(), [&](unsigned int i) { return !isFinite(points[i]); }),
              order.end());
  std::stable_sort(order.begin(), order.end(),
                   [&points](unsigned int a, unsigned int b) { return asTuple(points[a]) < asTuple(points[b]); });
  for (std::size_t i = 0; i < order.size(); ++i) {
    bool const isCopy = i > 0 && points[order[i]] == points[order[i - 1]];
    welded[order[i]] = isCopy ? welded[order[i - 1]] : order[i];
  }
  return welded;
}

namespace {

/// An edge between two welded points, and how many more triangles run along it one way than the other.
struct NetEdge {
  unsigned int lower;
  unsigned int upper;
  int net;
};

NetEdge netEdge(unsigned int a, unsigned int b) { return a < b ? NetEdge{a, b, 1} : NetEdge{b, a, -1}; }

/// The edges along which the surface does not close.
std::vector<NetEdge> openEdges(std::vector<unsigned int> const& corners, std::vector<unsigned int> const& welded) {
  std::vector<NetEdge> edges;
  edges.reserve(corners.size());
  for (std::size_t i = 0; i < corners.size(); i += 3) {
    unsigned int const a = welded[corners[i]], b = welded[corners[i + 1]], c = welded[corners[i + 2]];
    for (auto const& [from, to] : {std::make_pair(a, b), std::make_pair(b, c), std::make_pair(c, a)}) {
      if (from != to) edges.push_back(netEdge(from, to));
    }
  }
  std::sort(edges.begin(), edges.end(), [](NetEdge const& a, NetEdge const& b) {
    return std::make_pair(a.lower, a.upper) < std::make_pair(b.lower, b.upper);
  });
  std::vector<NetEdge> open;
  for (std::size_t i = 0; i < edges.size();) {
    NetEdge sum = edges[i];
    while (++i < edges.size() && edges[i].lower == sum.lower && edges[i].upper == sum.upper) sum.net += edges[i].net;
    if (sum.net != 0) open.push_back(sum);
  }
  return open;
}

/// How often the shadow of the triangle along x winds about that of p: -1, 0 or 1. An edge counts when it passes the
/// height of p, z, on one side of p, where a corner at that height counts as below; so the two triangles at an edge
/// cancel exactly along it.
int shadowWinding(Triangle const& t, ZuVector const& p) {
  ZuVector const* const corners[] = {&t.a, &t.b, &t.c, &t.a};
  int winding = 0;
  for (unsigned int i = 0; i < 3; ++i) {
    ZuVector const &from = *corners[i], &to = *corners[i + 1];
    bool const fromAbove = from.z() > p.z(), toAbove = to.z() > p.z();
    if (fromAbove == toAbove) continue;
    if (ZuExactSigns::turn(toAbove ? from : to, toAbove ? to : from, p, 0) > 0) winding += toAbove ? 1 : -1;
  }
  return winding;
}

/// What the triangle adds to the number of times that the ray from p along +x leaves the solid behind it.
int rayCrossing(Triangle const& t, ZuVector const& p) {
  int const winding = shadowWinding(t, p);
  return winding != 0 && winding * ZuExactSigns::side(t.a, t.b, t.c, p) > 0 ? winding : 0;
}

/// The share of the full sphere that the triangle covers as seen from p, above 0 from behind (van Oosterom and Strackee
/// 1983, equation 8); where p lies in the triangle, on the side on which rayCrossing() puts it.
double solidAngle(Triangle const& t, ZuVector const& p) {
  ZuVector const a = t.a - p, b = t.b - p, c = t.c - p;
  double const la = a.mag(), lb = b.mag(), lc = c.mag();
  double const volume = std::abs(a.dot(b.cross(c)));
  double const half = std::atan2(volume, la * lb * lc + a.dot(b) * lc + b.dot(c) * la + c.dot(a) * lb);
  int const side = ZuExactSigns::side(t.a, t.b, t.c, p);
  return half / (2.0 * theHalfTurn) * (side != 0 ? side : -shadowWinding(t, p));
}

}  // namespace

void ZuMeshSurface::Builder::add(ZuFacetIndex const& facet, ZuListView<unsigned int> loop) {
  auto const isThere = [this](unsigned int i) { return i < m_Points.size() && isFinite(m_Points[i]); };
  if (!std::all_of(loop.begin(), loop.end(), isThere)) return;
  zuCutLoop(m_Points, loop, m_Corners);
  m_Facets.resize(m_Corners.size() / 3, facet);
}

ZuMeshSurface::ZuMeshSurface(Builder const& builder) {
  ZuXmlVectorVector const& points = builder.m_Points;
  auto const corner = [&](std::size_t i) -> ZuVector const& { return points[builder.m_Corners[i]]; };
  std::vector<Box> boxes;
  boxes.reserve(builder.m_Facets.size());
  for (std::size_t i = 0; i < builder.m_Corners.size(); i += 3) {
    boxes.push_back(Box::around(corner(i), corner(i + 1), corner(i + 2)));
  }
  m_Hierarchy.build(boxes);
  m_Triangles.reserve(boxes.size());
  m_Facets.reserve(boxes.size());
  m_Corners.reserve(builder.m_Corners.size());
  for (std::size_t const i : m_Hierarchy.order()) {
    m_Triangles.push_back({corner(3 * i), corner(3 * i + 1), corner(3 * i + 2)});
    m_Facets.push_back(builder.m_Facets[i]);
    for (unsigned int k = 0; k < 3; ++k) m_Corners.push_back(builder.m_Corners[3 * i + k]);
  }
  std::vector<unsigned int> const welded = zuWeld(points);
  findCaps(welded, points);
  findPieces(welded, points);
}

/// Joins each open edge to one point. Which one makes no difference to the winding number; it lies off the openings, so
/// that points in the plane of one are not on a cap.
void ZuMeshSurface::findCaps(std::vector<unsigned int> const& welded, ZuXmlVectorVector const& points) {
  std::vector<NetEdge> const open = openEdges(m_Corners, welded);
  if (open.empty()) return;
  Box box = Box::around(points[open[0].lower]);
  for (NetEdge const& edge : open) box = box.joinedWith(Box::around(points[edge.lower], points[edge.upper]));
  ZuVector const apex = box.middle() + ZuVector(0.337, -0.618, 0.491) * (box.high - box.low).mag();
  for (NetEdge const& edge : open) m_Caps.push_back({{points[edge.upper], points[edge.lower], apex}, edge.net});
}

void ZuMeshSurface::findPieces(std::vector<unsigned int> const& welded, ZuXmlVectorVector const& points) {
  std::vector<unsigned int> parent(points.size());
  std::iota(parent.begin(), parent.end(), 0U);
  auto const rootOf = [&parent](unsigned int i) {
    while (parent[i] != i) i = parent[i] = parent[parent[i]];
    return i;
  };
  for (std::size_t i = 0; i < m_Corners.size(); i += 3) {
    unsigned int const root = rootOf(welded[m_Corners[i]]);
    for (unsigned int k = 1; k < 3; ++k) parent[rootOf(welded[m_Corners[i + k]])] = root;
  }
  std::vector<bool> isUsed(points.size(), false);
  for (unsigned int const corner : m_Corners) isUsed[welded[corner]] = true;
  for (unsigned int i = 0; i < points.size(); ++i) {
    if (isUsed[i] && rootOf(i) == i) m_Pieces.push_back(points[i]);
  }
}

/// Starts from the distance of the triangle that was nearest last: places that follow each other are near each other.
template <class Figure, class Bound>
double ZuMeshSurface::nearest(Figure const& figure, Bound const& bound) const {
  if (m_Triangles.empty() || !isFinite(figure)) return m_theFarDistance;
  double const start = ZuTriangleKernels::distanceSquared(m_Triangles[m_LastNearest], figure);
  return std::sqrt(m_Hierarchy.nearest(
      start, [&bound](Box const& box) { return bound.distanceSquaredTo(box); },
      [this, &figure, &bound](unsigned int i, double& best) {
        Triangle const& t = m_Triangles[i];
        if (!(bound.distanceSquaredTo(Box::around(t.a, t.b, t.c)) < best)) return;
        double const squared = ZuTriangleKernels::distanceSquared(t, figure);
        if (!(squared < best)) return;
        best = squared;
        m_LastNearest = i;
      }));
}

double ZuMeshSurface::distanceTo(ZuVector const& point) const { return nearest(point, Box::around(point)); }

double ZuMeshSurface::distanceTo(Segment const& segment) const { return nearest(segment, boundOf(segment)); }

double ZuMeshSurface::distanceTo(Triangle const& triangle) const { return nearest(triangle, boundOf(triangle)); }

template <class Figure>
bool ZuMeshSurface::meetsFigure(Figure const& figure) const {
  auto const bound = boundOf(figure);
  return m_Hierarchy.anyOf(
      [&bound](Box const& box) { return bound.mayMeet(box); },
      [this, &figure](unsigned int i) { return ZuTriangleKernels::intersects(m_Triangles[i], figure); });
}

bool ZuMeshSurface::meets(Segment const& segment) const { return meetsFigure(segment); }

bool ZuMeshSurface::meets(Triangle const& triangle) const { return meetsFigure(triangle); }

bool ZuMeshSurface::findCrossings(Segment const& segment, ZuShapeSurfacePoint& first, ZuShapeSurfacePoint& last) const {
  auto const bound = boundOf(segment);
  ZuSegmentPart whole;
  unsigned int atFirst = theZuNoIndex, atLast = theZuNoIndex;
  m_Hierarchy.anyOf([&bound](Box const& box) { return bound.mayMeet(box); },
                    [&](unsigned int i) {
                      if (!ZuTriangleKernels::intersects(m_Triangles[i], segment)) return false;
                      ZuSegmentPart const part = zuCommonPart(m_Triangles[i], segment);
                      if (atFirst == theZuNoIndex || part.first < whole.first) atFirst = i;
                      if (atLast == theZuNoIndex || part.last > whole.last) atLast = i;
                      whole.include(part.first);
                      whole.include(part.last);
                      return false;
                    });
  if (atFirst == theZuNoIndex) return false;
  first = {whole.first, zuPointAt(segment, whole.first), normalOf(m_Triangles[atFirst])};
  last = {whole.last, zuPointAt(segment, whole.last), normalOf(m_Triangles[atLast])};
  return true;
}

bool ZuMeshSurface::isInside(ZuVector const& p) const {
  if (m_Triangles.empty() || !isFinite(p)) return false;
  if (isClosed() && !node(0).box.overlaps(Box::around(p))) return false;
  int crossings = 0;
  auto const isAhead = [&p](Box const& box) {
    return p.x() <= box.high.x() && p.y() >= box.low.y() && p.y() <= box.high.y() && p.z() >= box.low.z() &&
           p.z() <= box.high.z();
  };
  m_Hierarchy.anyOf(isAhead, [this, &p, &crossings](unsigned int i) {
    crossings += rayCrossing(m_Triangles[i], p);
    return false;
  });
  double winding = crossings;
  for (Cap const& cap : m_Caps) {
    winding += cap.times * (rayCrossing(cap.triangle, p) - solidAngle(cap.triangle, p));
  }
  return std::abs(winding) > 0.5;
}

// With `top` above every corner's product, top - product is what becomes the smallest.
unsigned int ZuMeshSurface::farthestVertex(ZuVector const& direction) const {
  if (m_Triangles.empty()) return theZuNoIndex;
  ZuVector const absolute(std::abs(direction.x()), std::abs(direction.y()), std::abs(direction.z()));
  auto const highest = [&direction, &absolute](Box const& box) {
    return box.middle().dot(direction) + absolute.dot((box.high - box.low) * 0.5);
  };
  double const top = highest(node(0).box);
  Triangle const& last = m_Triangles[m_LastFarthest / 3];
  double const start = top - cornerOf(last, m_LastFarthest % 3).dot(direction);
  m_Hierarchy.nearest(
      start, [&highest, top](Box const& box) { return top - highest(box); },
      [this, &direction, top](unsigned int i, double& best) {
        for (unsigned int k = 0; k < 3; ++k) {
          double const below = top - cornerOf(m_Triangles[i], k).dot(direction);
          if (!(below < best)) continue;
          best = below;
          m_LastFarthest = 3 * i + k;
        }
      });
  return m_Corners[m_LastFarthest];
}

unsigned int ZuMeshSurface::nearestVertex(ZuVector const& point, unsigned int group) const {
  unsigned int nearest = theZuNoIndex;
  if (!isFinite(point)) return nearest;
  m_Hierarchy.nearest(
      m_theFarDistance, [&point](Box const& box) { return box.distanceSquaredTo(point); },
      [this, &point, group, &nearest](unsigned int i, double& best) {
        if (group != theZuNoIndex && m_Facets[i].first != group) return;
        for (unsigned int k = 0; k < 3; ++k) {
          double const squared = point.distanceSquaredTo(cornerOf(m_Triangles[i], k));
          if (!(squared < best)) continue;
          best = squared;
          nearest = m_Corners[3 * i + k];
        }
      });
  return nearest;
}
