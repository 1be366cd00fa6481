// exactSolids.h - solids in extended precision, and what proves a distance or a depth of two, for accuracy tests.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <utility>

#include "geometry/zuConvexHull.h"
#include "tests/convexOracle.h"

namespace oracle {

using Pose = ZuCoordinateSystemTransformation;

inline Vector unit(Vector const& v) {
  Real const mag = length(v);
  return mag > 0.0L ? v * (1.0L / mag) : Vector{1.0L, 0.0L, 0.0L};
}
inline ZuVector rounded(Vector const& v) {
  return {static_cast<double>(v[0]), static_cast<double>(v[1]), static_cast<double>(v[2])};
}

/// A rotation by the columns of its matrix, from a quaternion that is normalised in extended precision.
struct Turn {
  Vector x{1.0L, 0.0L, 0.0L}, y{0.0L, 1.0L, 0.0L}, z{0.0L, 0.0L, 1.0L};

  Turn() = default;
  Turn(Vector const& x_, Vector const& y_, Vector const& z_) : x(x_), y(y_), z(z_) {}
  explicit Turn(ZuOrientation const& q) {
    Points const axes = placed({ZuVector::xVector(1.0), ZuVector::yVector(1.0), ZuVector::zVector(1.0)}, {{}, q});
    x = axes[0];
    y = axes[1];
    z = axes[2];
  }
  Vector times(Vector const& v) const { return x * v[0] + y * v[1] + z * v[2]; }
  Vector inverseTimes(Vector const& v) const { return {dot(x, v), dot(y, v), dot(z, v)}; }
  Turn times(Turn const& t) const { return {times(t.x), times(t.y), times(t.z)}; }
};

/// The convex hull of points, with its facets and edges for exact depths.
class Hull {
 public:
  struct Facet {
    ZuVector normal, corner;
  };
  struct Edge {
    ZuVector along, end;
    std::size_t facets[2];
  };
  std::vector<Facet> const& facets() const { return m_Facets; }
  std::vector<Edge> const& edges() const { return m_Edges; }
  std::vector<ZuVector> const& vertices() const { return m_Vertices; }
  double reach() const { return m_Reach; }

  explicit Hull(std::vector<ZuVector> const& vertices) : m_Vertices(vertices) {
    findReach();
    std::vector<ZuGJKTriangle> triangles;
    if (!ZuConvexHull().computeConvexHull(vertices, triangles, nullptr)) return;
    std::map<std::pair<unsigned int, unsigned int>, std::size_t> open;
    for (ZuGJKTriangle const& triangle : triangles) addFacet(triangle, open);
  }
  /// A box about the origin, by half sides.
  explicit Hull(ZuVector const& half) {
    for (unsigned int i = 0; i < 8; ++i) m_Vertices.push_back(corner(half, i));
    findReach();
    for (unsigned int axis = 0; axis < 3; ++axis) {
      for (double const sign : {-1.0, 1.0}) {
        ZuVector normal;
        normal[axis] = sign;
        m_Facets.push_back({normal, half * sign});
      }
      for (unsigned int i = 0; i < 8; ++i) {
        if ((i >> axis & 1U) != 0) continue;
        unsigned int const u = (axis + 1) % 3, v = (axis + 2) % 3;
        ZuVector const end = corner(half, i);
        m_Edges.push_back({corner(half, i | 1U << axis) - end, end, {2 * u + (i >> u & 1U), 2 * v + (i >> v & 1U)}});
      }
    }
  }
  /// With all points moved and then scaled.
  Hull(Hull const& other, ZuVector const& by, double factor) : Hull(other) {
    auto const moved = [&](ZuVector& v) { v = (v + by) * factor; };
    for (ZuVector& v : m_Vertices) moved(v);
    for (Facet& facet : m_Facets) moved(facet.corner);
    for (Edge& edge : m_Edges) {
      moved(edge.end);
      edge.along *= factor;
    }
    findReach();
  }

  /// The farthest of the vertices, of those that rounding may have made so in doubles.
  Vector farthest(Vector const& direction) const {
    ZuVector const d = rounded(direction);
    double const best = support(d) - 1e-14 * m_Reach * d.mag();
    Vector result{};
    Real largest = -std::numeric_limits<Real>::infinity();
    for (ZuVector const& v : m_Vertices) {
      if (v.dot(d) < best) continue;
      Vector const candidate = extended(v);
      Real const value = dot(candidate, direction);
      if (value > largest) {
        largest = value;
        result = candidate;
      }
    }
    return result;
  }
  /// The support value in doubles.
  double support(ZuVector const& d) const {
    double best[4];
    std::fill_n(best, 4, -std::numeric_limits<double>::infinity());
    std::size_t i = 0;
    for (; i + 4 <= m_Vertices.size(); i += 4) {
      for (std::size_t k = 0; k < 4; ++k) best[k] = std::max(best[k], m_Vertices[i + k].dot(d));
    }
    for (; i < m_Vertices.size(); ++i) best[0] = std::max(best[0], m_Vertices[i].dot(d));
    return std::max(std::max(best[0], best[1]), std::max(best[2], best[3]));
  }
  ZuVector supportPoint(ZuVector const& d) const {
    double const best = support(d);
    return *std::find_if(m_Vertices.begin(), m_Vertices.end(), [&](ZuVector const& v) { return v.dot(d) >= best; });
  }

 private:
  static ZuVector corner(ZuVector const& half, unsigned int i) {
    return {half.x() * ((i & 1U) != 0 ? 1.0 : -1.0), half.y() * ((i & 2U) != 0 ? 1.0 : -1.0),
            half.z() * ((i & 4U) != 0 ? 1.0 : -1.0)};
  }
  void findReach() {
    m_Reach = 0.0;
    for (ZuVector const& v : m_Vertices) m_Reach = std::max(m_Reach, v.mag());
  }
  void addFacet(ZuGJKTriangle const& triangle, std::map<std::pair<unsigned int, unsigned int>, std::size_t>& open) {
    Vector c[3];
    for (unsigned int k = 0; k < 3; ++k) c[k] = extended(m_Vertices[triangle.vertexIndex(k)]);
    ZuVector const normal = rounded(unit(cross(c[1] - c[0], c[2] - c[0])));
    m_Facets.push_back({normal, m_Vertices[triangle.vertexIndex(0)]});
    for (unsigned int k = 0; k < 3; ++k) {
      unsigned int const i = triangle.vertexIndex(k), j = triangle.vertexIndex((k + 1) % 3);
      auto const twin = open.find({j, i});
      if (twin == open.end()) {
        open[{i, j}] = m_Facets.size() - 1;
      } else {
        m_Edges.push_back({m_Vertices[j] - m_Vertices[i], m_Vertices[i], {m_Facets.size() - 1, twin->second}});
      }
    }
  }

  std::vector<ZuVector> m_Vertices;
  std::vector<Facet> m_Facets;
  std::vector<Edge> m_Edges;
  double m_Reach = 0.0;
};

/// A solid as it is given, all points within a radius of a core; placed, in extended precision.
class Solid {
 public:
  enum Kind { HULL, BOX, CYLINDER, CONE, ELLIPSOID, SEGMENT };

  Solid() = default;
  explicit Solid(std::shared_ptr<Hull const> hull) : m_Kind(HULL), m_Hull(std::move(hull)) {}
  /// A box by half sides, an ellipsoid by semi-axes.
  Solid(Kind kind, Pose const& frame, ZuVector const& half) : m_Kind(kind), m_Half(extended(half)) { place(frame); }
  /// A cylinder, a cone (base at end 0), or all that is near to a segment.
  Solid(Kind kind, ZuVector const& end0, ZuVector const& end1, double radius) : m_Kind(kind) {
    Vector const half = (extended(end1) - extended(end0)) * 0.5L, z = unit(half);
    Vector const x = unit(cross(std::abs(z[0]) < 0.5L ? Vector{1.0L, 0.0L, 0.0L} : Vector{0.0L, 1.0L, 0.0L}, z));
    m_Turn = Turn(x, cross(z, x), z);
    m_Center = (extended(end0) + extended(end1)) * 0.5L;
    m_Half = {kind == SEGMENT ? 0.0L : radius, 0.0L, length(half)};
    m_Radius = kind == SEGMENT ? radius : 0.0L;
  }

  /// In the world, whose origin is moved.
  Solid placed(Pose const& T, ZuVector const& origin) const {
    Solid result = *this;
    Turn const turn(T.orientation());
    result.m_Turn = turn.times(m_Turn);
    result.m_Center = turn.times(m_Center) + extended(T.translation()) - extended(origin);
    return result;
  }
  Kind kind() const { return m_Kind; }
  bool isCurved() const { return m_Kind == CYLINDER || m_Kind == CONE || m_Kind == ELLIPSOID; }
  Real radius() const { return m_Radius; }
  Hull const* hull() const { return m_Hull.get(); }
  void setHull(std::shared_ptr<Hull const> hull) { m_Hull = std::move(hull); }
  Turn const& turn() const { return m_Turn; }
  Vector const& center() const { return m_Center; }
  Vector const& half() const { return m_Half; }

  /// The point of the core that is farthest along the unit vector.
  Vector support(Vector const& n) const { return m_Center + m_Turn.times(inFrame(m_Turn.inverseTimes(n)) * m_Scale); }
  /// With a core that is smaller about the centre of its frame, by support points alone.
  Solid shrunk(Real by) const {
    Solid result = *this;
    result.m_Scale = 1.0L - by;
    return result;
  }
  /// No less than how far the point is off the solid, for points near to it; near is where n points outwards of it.
  Real outside(Vector const& point, Vector const& n, Real near) const {
    Vector const p = m_Turn.inverseTimes(point - m_Center);
    Real const rho = std::hypot(p[0], p[1]), height = std::abs(p[2]) - m_Half[2];
    switch (m_Kind) {
      case HULL:
        return outsideHull(p, m_Turn.inverseTimes(n), near);
      case BOX:
        return length({std::max(std::abs(p[0]) - m_Half[0], 0.0L), std::max(std::abs(p[1]) - m_Half[1], 0.0L),
                       std::max(height, 0.0L)});
      case CYLINDER:
        return std::hypot(std::max(rho - m_Half[0], 0.0L), std::max(height, 0.0L));
      case CONE:
        return outsideCone(rho, p[2]);
      case SEGMENT:
        return std::max(std::hypot(rho, std::max(height, 0.0L)) - m_Radius, 0.0L);
      default:
        break;
    }
    Real const factor = length({p[0] / m_Half[0], p[1] / m_Half[1], p[2] / m_Half[2]});
    return factor > 1.0L ? length(p) * (1.0L - 1.0L / factor) : 0.0L;
  }

 private:
  void place(Pose const& frame) {
    m_Turn = Turn(frame.orientation());
    m_Center = extended(frame.translation());
  }
  Vector inFrame(Vector const& d) const {
    Real const across = std::hypot(d[0], d[1]), onRim = across > 0.0L ? m_Half[0] / across : 0.0L;
    switch (m_Kind) {
      case HULL:
        return m_Hull->farthest(d);
      case BOX:
        return {std::copysign(m_Half[0], d[0]), std::copysign(m_Half[1], d[1]), std::copysign(m_Half[2], d[2])};
      case SEGMENT:
        return {0.0L, 0.0L, std::copysign(m_Half[2], d[2])};
      case CYLINDER:
        return {d[0] * onRim, d[1] * onRim, std::copysign(m_Half[2], d[2])};
      case CONE:
        if (2.0L * m_Half[2] * d[2] > m_Half[0] * across) return {0.0L, 0.0L, m_Half[2]};
        return {d[0] * onRim, d[1] * onRim, -m_Half[2]};
      default:
        break;
    }
    Vector const onBall{m_Half[0] * d[0], m_Half[1] * d[1], m_Half[2] * d[2]};
    Real const factor = 1.0L / length(onBall);
    return {m_Half[0] * onBall[0] * factor, m_Half[1] * onBall[1] * factor, m_Half[2] * onBall[2] * factor};
  }
  Real outsideCone(Real rho, Real z) const {
    Real const r = m_Half[0], h = m_Half[2], side = std::hypot(2.0L * h, r);
    if (z <= -h && rho <= r) return -h - z;
    if (z >= -h && (2.0L * h * rho + r * (z - h)) / side <= 0.0L) return 0.0L;
    Real const t = std::min(std::max((2.0L * h * (h - z) + r * rho) / (side * side), 0.0L), 1.0L);
    return std::hypot(rho - t * r, z - h + 2.0L * h * t);
  }
  /// From the corners that are as far along n first, then from all of them.
  Real outsideHull(Vector const& p, Vector const& n, Real near) const {
    Points corners;
    Real const best = dot(m_Hull->farthest(n), n);
    for (ZuVector const& v : m_Hull->vertices()) {
      if (dot(extended(v), n) >= best - near) corners.push_back(extended(v));
    }
    Real const off = oracle::distance({p}, corners);
    if (off <= near) return off;
    corners.clear();
    for (ZuVector const& v : m_Hull->vertices()) corners.push_back(extended(v));
    return oracle::distance({p}, corners);
  }

  Kind m_Kind = SEGMENT;
  std::shared_ptr<Hull const> m_Hull;
  Turn m_Turn;
  Vector m_Center{}, m_Half{};
  Real m_Radius = 0.0L, m_Scale = 1.0L;
};

/// How far b must go along the unit vector n to be clear of a: no less than the depth, and minus what is proven of the
/// distance.
inline Real supportValue(Solid const& a, Solid const& b, Vector const& n) {
  return dot(n, a.support(n) - b.support(n * -1.0L)) + a.radius() + b.radius();
}

/// A local minimum of the support values, from n downwards; n becomes where.
inline Real leastSupportNear(Solid const& a, Solid const& b, Vector& n, Real widest) {
  Real least = supportValue(a, b, n);
  Real turn = 0.0L;
  int steps = 0;
  for (Real step = widest; step > 1e-10L && ++steps < 400; turn += 0.7L) {
    Vector const u = unit(cross(n, std::abs(n[0]) < 0.5L ? Vector{1.0L, 0.0L, 0.0L} : Vector{0.0L, 1.0L, 0.0L}));
    Vector const w = cross(n, u), e = u * std::cos(turn) + w * std::sin(turn), f = cross(n, e);
    bool isLower = false;
    for (Vector const& side : {e, f, e * -1.0L, f * -1.0L}) {
      Vector const candidate = unit(n + side * step);
      Real const value = supportValue(a, b, candidate);
      if (!(value < least)) continue;
      least = value;
      n = candidate;
      isLower = true;
      break;
    }
    step *= isLower ? 1.3L : 0.5L;
  }
  return least;
}

struct Bounds {
  Real lower, upper;
  Vector normal;  ///< of the lower bound: the side of b
};

/// Proven bounds of the distance of two solids, as oracle::distance() finds them; the upper one is 0 within rounding
/// when they overlap, the lower one then minus a bound of the depth.
inline Bounds distanceBounds(Solid const& a, Solid const& b, Vector const& start, Real gap) {
  Bounds bounds{-std::numeric_limits<Real>::infinity(), 0.0L, {}};
  auto const lowest = [&](Vector const& d) {
    Vector const w = a.support(d * -1.0L) - b.support(d);
    if (dot(d, w) > bounds.lower) {
      bounds.lower = dot(d, w);
      bounds.normal = d * -1.0L;
    }
    return w;
  };
  Vector v = lowest(unit(start));
  Points kept{v};
  for (int i = 0; i < 400; ++i) {
    bounds.upper = length(v);
    if (bounds.upper == 0.0L || bounds.upper - bounds.lower <= gap) break;
    kept.push_back(lowest(v * (1.0L / bounds.upper)));
    v = nearestByTrial(kept);
    if (!(length(v) < bounds.upper)) break;
  }
  bounds.lower -= a.radius() + b.radius();
  bounds.upper -= a.radius() + b.radius();
  return bounds;
}

/// The depth of two polytopes: the least support value of the normals of the facets of their difference. Those of the
/// edges are the directions where arcs cross that edges have on the unit sphere; arcs along which points
/// of the difference are above the bound are left out. Not above 0: they do not overlap.
class PolytopeDepth {
 public:
  /// What is not below the bound is not looked for.
  PolytopeDepth(Solid const& a, Solid const& b, double bound) : m_A(*a.hull()), m_B(*b.hull()), m_Least(bound) {
    m_Offset = rounded(a.turn().inverseTimes(b.center() - a.center()));
    m_X = rounded(a.turn().inverseTimes(b.turn().x));
    m_Y = rounded(a.turn().inverseTimes(b.turn().y));
    m_Z = rounded(a.turn().inverseTimes(b.turn().z));
    m_Reach = m_A.reach() + m_B.reach() + m_Offset.mag();
    std::vector<Arc> arcsA, arcsB;
    findArcs(m_A, false, arcsA);
    findArcs(m_B, true, arcsB);
    for (Arc const& arc : arcsA) {
      if (!mayBeLower(arc)) continue;
      for (Arc const& other : arcsB) {
        if (mayBeLower(other)) tryCrossing(arc, other);
      }
    }
  }
  double least() const { return m_Least; }

 private:
  /// Of an edge, in the frame of a.
  struct Arc {
    ZuVector along, end, normal1, normal2;
    double lower;  ///< a bound of the support values on it
  };

  ZuVector turned(ZuVector const& v) const { return m_X * v.x() + m_Y * v.y() + m_Z * v.z(); }
  ZuVector inB(ZuVector const& v) const { return {m_X.dot(v), m_Y.dot(v), m_Z.dot(v)}; }
  void tryDirection(ZuVector const& n) {
    m_Least = std::min(m_Least, m_A.support(n) + m_B.support(-inB(n)) - n.dot(m_Offset));
  }
  /// The point of the difference that is farthest along a facet's normal n, but for rounding.
  ZuVector tryFacet(Hull::Facet const& facet, ZuVector const& n, bool isB) {
    ZuVector const p = isB ? m_A.supportPoint(n) : facet.corner;
    ZuVector const q = isB ? facet.corner : m_B.supportPoint(-inB(n));
    ZuVector const y = p - turned(q) - m_Offset;
    if (y.dot(n) < m_Least) tryDirection(n);
    return y;
  }
  /// A bound of the support values on an arc, by two points: along an arc, where n . y is above 0 it is concave.
  static double lowerBound(ZuVector const& n1, ZuVector const& n2, ZuVector const& y1, ZuVector const& y2) {
    return std::max(std::min(n1.dot(y1), n2.dot(y1)), std::min(n1.dot(y2), n2.dot(y2)));
  }
  void findArcs(Hull const& hull, bool isB, std::vector<Arc>& arcs) {
    std::vector<ZuVector> normals;
    std::vector<ZuVector> points;
    for (Hull::Facet const& facet : hull.facets()) {
      normals.push_back(isB ? turned(-facet.normal) : facet.normal);
      points.push_back(tryFacet(facet, normals.back(), isB));
    }
    for (Hull::Edge const& edge : hull.edges()) {
      ZuVector const &n1 = normals[edge.facets[0]], &n2 = normals[edge.facets[1]];
      double const lower = lowerBound(n1, n2, points[edge.facets[0]], points[edge.facets[1]]);
      if (lower > m_Least) continue;
      if (isB) {
        arcs.push_back({turned(edge.along), turned(edge.end) + m_Offset, n1, n2, lower});
      } else {
        arcs.push_back({edge.along, edge.end, n1, n2, lower});
      }
    }
  }
  bool mayBeLower(Arc const& arc) const { return arc.lower <= m_Least; }
  /// More directions than the crossings do no harm, so that rounding is on the side of more.
  void tryCrossing(Arc const& e, Arc const& f) {
    constexpr double theSlack = 1e-14, theSine = 1e-12;
    double const slack = theSlack * m_Reach * m_Reach;
    if (f.normal1.dot(e.along) * f.normal2.dot(e.along) > slack) return;
    if (e.normal1.dot(f.along) * e.normal2.dot(f.along) > slack) return;
    ZuVector n = e.along.cross(f.along);
    if (n.mag() <= theSine * e.along.mag() * f.along.mag()) return;
    n = n.unitVector();
    if (n.dot(e.normal1 + e.normal2) < 0.0) n = -n;
    if (n.dot(f.normal1 + f.normal2) >= 0.0 && n.dot(e.end - f.end) <= m_Least) tryDirection(n);
  }

  Hull const &m_A, &m_B;
  ZuVector m_Offset, m_X, m_Y, m_Z;  ///< of b in the frame of a
  double m_Reach = 0.0, m_Least;
};

}  // namespace oracle
