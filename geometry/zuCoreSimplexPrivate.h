// zuCoreSimplexPrivate.h - simplex of a distance iteration, and its point nearest to the origin. Group: convex engine.
#pragma once

#include <array>
#include <limits>

#include "geometry/zuConvexCorePrivate.h"
#include "geometry/zuSimplexPrivate.h"

/// At most three points of a difference set, whose hull holds the nearest point so far, and a place for a new one.
///
/// The nearest point of the grown simplex is looked for as by signed volumes (Montanari et al. 2017): signs of volumes
/// and of areas, all from cross products of edges at the new point, tell beyond which faces the origin lies, and only
/// there, and only on faces of the new point, is it looked for. No test knows a length: the answer scales
/// with the set. Of slim simplices rounding may leave no answer, or a wrong one: mean() is a point of the set whatever
/// the weights are, and tells.
class ZuCoreSimplex {
 public:
  /// A face and its point nearest to the origin.
  struct Nearest {
    ZuVector v;
    double square = std::numeric_limits<double>::infinity();
    int count = 0;  ///< points of the face; 4: the origin is inside
    std::array<int, 4> place{};
    std::array<double, 4> weight{};  ///< of the points in v, times any factor above 0
  };

  ZuCoreSimplex() {}

  int count() const { return m_Count; }
  ZuCorePoint const& point(int i) const { return m_Points[m_Place[i]]; }
  /// Where the next point is to be put; nearest() then takes it as the new one.
  ZuCorePoint& freePoint() { return m_Points[m_Free]; }
  /// Whether the new point is one of the others.
  bool isRepeated() const {
    for (int i = 0; i < m_Count; ++i) {
      if (point(i).y == m_Points[m_Free].y) return true;
    }
    return false;
  }

  /// The nearest point of the simplex with the new point, which is on a face of it; count 0 when there is no telling.
  Nearest nearest() const {
    Nearest best;
    int const a = m_Free;
    switch (m_Count) {
      case 0:
        offerCorner(a, best);
        break;
      case 1:
        offerEdge(a, m_Place[0], best);
        break;
      case 2:
        offerTriangle(a, m_Place[0], m_Place[1], best);
        break;
      default:
        offerTetrahedron(best);
        break;
    }
    return best;
  }
  void take(Nearest const& nearest) {
    m_Count = nearest.count;
    m_Place = nearest.place;
    m_Weight = nearest.weight;
    unsigned int used = 0;
    for (int i = 0; i < m_Count; ++i) used |= 1U << m_Place[i];
    m_Free = 0;
    while ((used >> m_Free & 1U) != 0) ++m_Free;
  }
  /// Becomes one to three points, of which any may be far: returns the nearest of their faces, which is to be taken.
  Nearest takeAll(ZuCorePoint const* points, int count) {
    for (int i = 0; i < count; ++i) m_Points[i] = points[i];
    Nearest best;
    if (count == 1) offerCorner(0, best);
    if (count == 2) offerEdge(0, 1, best);
    if (count != 3) return best;
    offerTriangle(0, 1, 2, best);
    offerEdge(1, 2, best);
    return best;
  }
  /// Becomes this point.
  void take(ZuCorePoint const& point) {
    m_Points[0] = point;
    m_Place[0] = 0;
    m_Weight[0] = 1.0;
    m_Count = m_Free = 1;
  }
  /// Becomes these points.
  void take(ZuCorePoint const* points, double const* weights, int count) {
    for (int i = 0; i < count; ++i) {
      m_Points[i] = points[i];
      m_Place[i] = i;
      m_Weight[i] = weights[i];
    }
    m_Count = m_Free = count;
  }
  /// The mean of the points that is nearest to the origin, of the cores and of the difference set.
  ZuCorePoint mean() const {
    if (m_Count == 1) return point(0);
    double sum = m_Weight[0];
    for (int i = 1; i < m_Count; ++i) sum += m_Weight[i];
    ZuCorePoint mean;
    for (int i = 0; i < m_Count; ++i) {
      double const weight = m_Weight[i] / sum;
      mean.y += point(i).y * weight;
      mean.p += point(i).p * weight;
      mean.q += point(i).q * weight;
    }
    return mean;
  }

 private:
  ZuVector const& y(int place) const { return m_Points[place].y; }
  void offerCorner(int a, Nearest& best) const {
    double const square = y(a).magSquared();
    if (!(square < best.square)) return;
    best = {y(a), square, 1, {{a}}, {{1.0}}};
  }
  void offerEdge(int a, int b, Nearest& best) const {
    ZuVector const edge = y(b) - y(a);
    double const along = -y(a).dot(edge), length = edge.magSquared();
    if (!(along > 0.0)) return offerCorner(a, best);
    if (!(along < length)) return offerCorner(b, best);
    ZuVector const v = y(a) + edge * (along / length);
    double const square = v.magSquared();
    if (square < best.square) best = {v, square, 2, {{a, b}}, {{length - along, along}}};
  }
  void offerTriangle(int a, int b, int c, Nearest& best) const {
    ZuVector const ab = y(b) - y(a), ac = y(c) - y(a);
    offerTriangle(a, b, c, ab, ac, ab.cross(ac), best);
  }
  /// The weights of ZuSimplex::triangleWeights() times normal^2, and their signs. Where one is negative, the edge
  /// across has the projection of the origin in front of it; of a new point a, that is never the edge from b to c.
  void offerTriangle(int a, int b, int c, ZuVector const& ab, ZuVector const& ac, ZuVector const& normal,
                     Nearest& best) const {
    ZuVector const& ya = y(a);
    double const square = normal.magSquared();
    double const atB = normal.dot(ac.cross(ya)), atC = normal.dot(ya.cross(ab)), atA = square - (atB + atC);
    double const smallest =
        ZuSimplex::theDependentSine * ZuSimplex::theDependentSine * ab.magSquared() * ac.magSquared();
    bool const isFlat = !(square > smallest);
    if (!isFlat && atA > 0.0 && atB > 0.0 && atC > 0.0) {
      double const height = normal.dot(ya), nearest = height * height / square;
      if (nearest < best.square) best = {normal * (height / square), nearest, 3, {{a, b, c}}, {{atA, atB, atC}}};
      return;
    }
    if (isFlat || !(atC > 0.0)) offerEdge(a, b, best);
    if (isFlat || !(atB > 0.0)) offerEdge(a, c, best);
  }
  /// Beyond a face lies what is on the other side of it than the fourth point. The face across from the new point has
  /// the origin inside: the point before was nearest on it, and the new one is nearer along its direction.
  void offerTetrahedron(Nearest& best) const {
    int const a = m_Free, b = m_Place[0], c = m_Place[1], d = m_Place[2];
    ZuVector const ab = y(b) - y(a), ac = y(c) - y(a), ad = y(d) - y(a);
    ZuVector const abc = ab.cross(ac), acd = ac.cross(ad), adb = ad.cross(ab);
    double const volume = abc.dot(ad);
    double const smallest =
        ZuSimplex::theDependentSine * ZuSimplex::theDependentSine * ab.magSquared() * ac.magSquared() * ad.magSquared();
    if (!(volume * volume > smallest)) return;
    bool isInside = true;
    auto const offerIfBeyond = [&](int second, int third, ZuVector const& edge2, ZuVector const& edge3,
                                   ZuVector const& normal) {
      if (!(normal.dot(y(a)) * volume > 0.0)) return;
      isInside = false;
      offerTriangle(a, second, third, edge2, edge3, normal, best);
    };
    offerIfBeyond(b, c, ab, ac, abc);
    offerIfBeyond(c, d, ac, ad, acd);
    offerIfBeyond(d, b, ad, ab, adb);
    if (!isInside) return;
    ZuVector const edges[3] = {ab, ac, ad};
    double weights[4] = {1.0, 1.0, 1.0, 1.0};
    ZuSimplex::tetrahedronWeights(y(a), edges, weights);
    for (double& weight : weights) weight = std::max(weight, 0.0);
    best = {ZuVector(), 0.0, 4, {{a, b, c, d}}, {{weights[3], weights[0], weights[1], weights[2]}}};
  }

  // Uninitialised: a place is read only after it was put into.
  union {
    ZuCorePoint m_Points[5];
  };
  std::array<int, 4> m_Place;
  std::array<double, 4> m_Weight;
  int m_Count = 0, m_Free = 0;
};
