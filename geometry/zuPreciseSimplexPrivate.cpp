#include "geometry/zuPreciseSimplexPrivate.h"

namespace {

using Wide = ZuDoubleDouble;
using Vector = ZuPreciseSimplex::Vector;

constexpr int theMostPoints = 5;

Vector wide(ZuVector const& v) { return {v.x(), v.y(), v.z()}; }
Vector operator+(Vector const& a, Vector const& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vector operator-(Vector const& a, Vector const& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vector operator*(Vector const& a, Wide const& s) { return {a.x * s, a.y * s, a.z * s}; }
Wide dot(Vector const& a, Vector const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vector cross(Vector const& a, Vector const& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Weights, up to a factor, of the point nearest to the origin of the line, plane or space through the corners. They
/// are those of ZuSimplex, which differ from those of the nearest point by what is the same for all of them.
void weigh(Vector const* corner, int count, Wide* weight) {
  Vector edge[3];
  for (int i = 1; i < count; ++i) edge[i - 1] = corner[i] - corner[0];
  if (count == 1) {
    weight[0] = 1.0;
  } else if (count == 2) {
    weight[1] = -dot(corner[0], edge[0]);
    weight[0] = dot(edge[0], edge[0]) - weight[1];
  } else if (count == 3) {
    Vector const normal = cross(edge[0], edge[1]);
    weight[1] = dot(normal, cross(edge[1], corner[0]));
    weight[2] = dot(normal, cross(corner[0], edge[0]));
    weight[0] = dot(normal, normal) - (weight[1] + weight[2]);
  } else {
    Vector const normal = cross(edge[1], edge[2]);
    Wide const volume = dot(edge[0], normal);
    Wide const sign = volume.value() > 0.0 ? -1.0 : 1.0;
    weight[1] = sign * dot(corner[0], normal);
    weight[2] = sign * dot(corner[0], cross(edge[2], edge[0]));
    weight[3] = sign * dot(corner[0], cross(edge[0], edge[1]));
    weight[0] = -(sign * volume) - (weight[1] + weight[2] + weight[3]);
  }
}

}  // namespace

ZuPreciseSimplex::ZuPreciseSimplex(ZuCoreSimplex const& simplex) {
  ZuCorePoint points[4];
  for (int i = 0; i < simplex.count(); ++i) points[i] = simplex.point(i);
  take(points, simplex.count());
}

bool ZuPreciseSimplex::add(ZuCorePoint const& point) {
  ZuCorePoint points[theMostPoints];
  std::copy(m_Points, m_Points + m_Count, points);
  points[m_Count] = point;
  return take(points, m_Count + 1);
}

/// Tries the faces of up to four of the points: those of the last point, when the others are a simplex that was taken.
bool ZuPreciseSimplex::take(ZuCorePoint const* points, int count) {
  bool isNearer = false;
  int const first = m_Count > 0 ? 1 << m_Count : 1;
  for (int set = first; set < 1 << count; ++set) {
    int place[theMostPoints], corners = 0;
    for (int i = 0; i < count; ++i) {
      if (ZuSimplex::holds(set, i)) place[corners++] = i;
    }
    if (corners > 4) continue;
    Vector corner[4], mean;
    Wide weight[4], sum;
    for (int i = 0; i < corners; ++i) corner[i] = wide(points[place[i]].y);
    weigh(corner, corners, weight);
    bool isInside = true;
    for (int i = 0; i < corners; ++i) {
      isInside = isInside && weight[i].value() > 0.0;
      sum = sum + weight[i];
    }
    if (!isInside) continue;
    for (int i = 0; i < corners; ++i) mean = mean + corner[i] * (weight[i] / sum);
    Wide const square = dot(mean, mean);
    if (m_Count > 0 && !((square - m_Square).value() < 0.0)) continue;
    isNearer = true;
    m_Square = square;
    m_Mean = mean;
    m_Count = corners;
    for (int i = 0; i < corners; ++i) {
      m_Points[i] = points[place[i]];
      m_Weights[i] = (weight[i] / sum).value();
    }
  }
  return isNearer;
}

ZuVector ZuPreciseSimplex::unitNormal(ZuVector const& a, ZuVector const& b, ZuVector const& c) {
  Vector const normal = cross(wide(b) - wide(a), wide(c) - wide(a));
  Wide const square = dot(normal, normal);
  if (!(square.value() > 0.0)) return {};
  Vector const unit = normal * (Wide(1.0) / square.sqrt());
  return {unit.x.value(), unit.y.value(), unit.z.value()};
}
