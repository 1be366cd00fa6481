#include "geometry/zuAABBCollisionDetection.h"

#include <algorithm>
#include <cmath>

#include "geometry/zuBasePhysicalExtent.h"
#include "geometry/zuMeshSurfacePrivate.h"
#include "geometry/zuShapeProximityData.h"
#include "geometry/zuTrianglePairPrivate.h"

namespace {

using Box = ZuMeshSurface::Box;
using ZuTriangleKernels::Triangle;
using Feature = ZuShapeProximityData::ZuClosestType;

Box boxOf(Triangle const& t) { return Box::around(t.a, t.b, t.c); }

/// What is in one frame seen from another: p_out = rotation * p_in + translation.
class Placement {
 public:
  explicit Placement(ZuCoordinateSystemTransformation const& xform) : m_Xform(xform) {
    xform.orientation().getDcmRows(m_Rows[0], m_Rows[1], m_Rows[2]);
    for (unsigned int i = 0; i < 3; ++i) {
      m_Absolute[i] = ZuVector(std::abs(m_Rows[i].x()), std::abs(m_Rows[i].y()), std::abs(m_Rows[i].z()));
    }
  }

  ZuVector operator*(ZuVector const& p) const {
    return ZuVector(m_Rows[0].dot(p), m_Rows[1].dot(p), m_Rows[2].dot(p)) + m_Xform.translation();
  }
  Triangle operator*(Triangle const& t) const { return {*this * t.a, *this * t.b, *this * t.c}; }
  /// The box along the axes of the one frame around a box along those of the other.
  Box operator*(Box const& box) const {
    ZuVector const center = *this * box.middle(), half = (box.high - box.low) * 0.5;
    ZuVector const reach(m_Absolute[0].dot(half), m_Absolute[1].dot(half), m_Absolute[2].dot(half));
    return {center - reach, center + reach};
  }

 private:
  ZuCoordinateSystemTransformation m_Xform;
  ZuVector m_Rows[3];
  ZuVector m_Absolute[3];
};

/// The search for the nearest triangles: goes down the larger of two boxes, nearer halves first.
class Search {
 public:
  Search(ZuMeshSurface const& mesh1, ZuMeshSurface const& mesh2, Placement const& to1, Placement const& to2)
      : m_Mesh1(mesh1), m_Mesh2(mesh2), m_To1(to1), m_To2(to2) {}

  void tryPair(unsigned int i, unsigned int j) { tryPair(i, j, m_To1 * m_Mesh2.triangles()[j]); }

  void run() {
    Pending stack[m_theDeepestPath];
    unsigned int size = 0;
    stack[size++] = pending(0, 0);
    while (size > 0 && m_Best > 0.0) {
      Pending const top = stack[--size];
      if (!(top.bound < m_Best)) continue;
      Node const &node1 = m_Mesh1.node(top.node1), &node2 = m_Mesh2.node(top.node2);
      if (node1.count != 0 && node2.count != 0) {
        tryLeaves(node1, node2);
        continue;
      }
      bool const split1 = node2.count != 0 || (node1.count == 0 && sizeOf(node1) >= sizeOf(node2));
      Pending near = split1 ? pending(top.node1 + 1, top.node2) : pending(top.node1, top.node2 + 1);
      Pending far = split1 ? pending(node1.first, top.node2) : pending(top.node1, node2.first);
      if (far.bound < near.bound) std::swap(near, far);
      stack[size++] = far;
      stack[size++] = near;
    }
  }

  double best() const { return m_Best; }
  unsigned int triangle1() const { return m_Triangle1; }
  unsigned int triangle2() const { return m_Triangle2; }

 private:
  using Node = ZuMeshSurface::Node;
  struct Pending {
    unsigned int node1;
    unsigned int node2;
    double bound;
  };
  /// One pair stays behind for each level of either hierarchy, which are balanced: enough for 2^60 triangles each.
  static constexpr unsigned int m_theDeepestPath = 128;

  static double sizeOf(Node const& node) { return node.box.low.distanceSquaredTo(node.box.high); }
  Pending pending(unsigned int node1, unsigned int node2) const {
    Box const &box1 = m_Mesh1.node(node1).box, &box2 = m_Mesh2.node(node2).box;
    return {node1, node2, std::max(box1.distanceSquaredTo(m_To1 * box2), box2.distanceSquaredTo(m_To2 * box1))};
  }
  void tryLeaves(Node const& node1, Node const& node2) {
    for (unsigned int j = node2.first; j < node2.first + node2.count; ++j) {
      Triangle const t2 = m_To1 * m_Mesh2.triangles()[j];
      for (unsigned int i = node1.first; i < node1.first + node1.count; ++i) tryPair(i, j, t2);
    }
  }
  void tryPair(unsigned int i, unsigned int j, Triangle const& t2) {
    Triangle const& t1 = m_Mesh1.triangles()[i];
    if (!(boxOf(t1).distanceSquaredTo(boxOf(t2)) < m_Best)) return;
    double const squared = ZuTriangleKernels::distanceSquared(t1, t2);
    if (!(squared < m_Best)) return;
    m_Best = squared;
    m_Triangle1 = i;
    m_Triangle2 = j;
  }

  ZuMeshSurface const& m_Mesh1;
  ZuMeshSurface const& m_Mesh2;
  Placement const& m_To1;
  Placement const& m_To2;
  double m_Best = ZuMeshSurface::m_theFarDistance;
  unsigned int m_Triangle1 = 0;
  unsigned int m_Triangle2 = 0;
};

void setFeatures(ZuShapeProximityData* data, Feature feature1, Feature feature2) {
  if (data == nullptr) return;
  data->setClosestPoint1(feature1);
  data->setClosestPoint2(feature2);
}

/// A point of a piece of the one mesh that lies inside the solid of the other; both are apart on the surface, so a
/// piece is inside as a whole or not at all.
bool findContained(ZuMeshSurface const& mesh1, ZuMeshSurface const& mesh2, Placement const& to1, Placement const& to2,
                   ZuVector& p_1) {
  for (ZuVector const& p : mesh2.pieces()) {
    p_1 = to1 * p;
    if (mesh1.isInside(p_1)) return true;
  }
  for (ZuVector const& p : mesh1.pieces()) {
    p_1 = p;
    if (mesh2.isInside(to2 * p)) return true;
  }
  return false;
}

}  // namespace

bool ZuAABBCollisionDetection::nearestPoints(ZuShape const& shape1, ZuShape const& shape2,
                                             ZuCoordinateSystemTransformation const& xform, ZuShapeProximityData* data,
                                             ZuVector& witness1, ZuVector& witness2, double& distance) const {
  ZuMeshSurface const &mesh1 = shape1.physicalExtent().surface(), &mesh2 = shape2.physicalExtent().surface();
  distance = ZuMeshSurface::m_theFarDistance;
  if (mesh1.triangles().empty() || mesh2.triangles().empty()) return false;
  Placement const to1(xform), to2(xform.inverse());
  Search search(mesh1, mesh2, to1, to2);
  search.tryPair(m_LastTriangle1 < mesh1.triangles().size() ? m_LastTriangle1 : 0,
                 m_LastTriangle2 < mesh2.triangles().size() ? m_LastTriangle2 : 0);
  search.run();
  if (!(search.best() < ZuMeshSurface::m_theFarDistance)) return false;
  m_LastTriangle1 = search.triangle1();
  m_LastTriangle2 = search.triangle2();
  distance = std::sqrt(search.best());
  ZuVector contained;
  if (distance > 0.0 && findContained(mesh1, mesh2, to1, to2, contained)) {
    distance = 0.0;
    witness1 = contained;
    witness2 = xform.inverseTimes(contained);
    setFeatures(data, Feature::POINT, Feature::POINT);
    return true;
  }
  ZuTrianglePair const pair =
      zuNearestPair(mesh1.triangles()[m_LastTriangle1], to1 * mesh2.triangles()[m_LastTriangle2]);
  witness1 = pair.point1;
  witness2 = xform.inverseTimes(pair.point2);
  setFeatures(data, pair.feature1, pair.feature2);
  return distance == 0.0;
}

unsigned int ZuAABBCollisionDetection::nearPointID(ZuShape const& shape, ZuShapeProximityData const& data) const {
  ZuMeshSurface const& mesh = shape.physicalExtent().surface();
  ZuVector witness1, witness2;
  data.getWitnessPoints(witness1, witness2);
  bool const isShape1 = mesh.distanceTo(witness1) <= mesh.distanceTo(witness2);
  return mesh.nearestVertex(isShape1 ? witness1 : witness2, theZuNoIndex);
}
