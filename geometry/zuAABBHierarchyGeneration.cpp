#include "geometry/zuAABBHierarchyGeneration.h"

#include "geometry/zuTriangleKernelsPrivate.h"

namespace {

using Box = ZuAABBHierarchyGeneration::Box;

/// Facets in a leaf, at most: fewer make more boxes, more make more facets to look at. 1, 2
/// and 4 differ by less than a fifth.
constexpr unsigned int theLeafSize = 2;
/// Relative widening of what is compared, above its rounding (3 operations each): a box is rather looked into once too
/// often than left out.
constexpr double theSlack = 0x1p-50;

bool isProper(Box const& box) {
  for (unsigned int k = 0; k < 3; ++k) {
    if (!std::isfinite(box.low[k]) || !std::isfinite(box.high[k]) || box.low[k] > box.high[k]) return false;
  }
  return true;
}

ZuVector absolute(ZuVector const& v) { return {std::abs(v.x()), std::abs(v.y()), std::abs(v.z())}; }

bool contains(Box const& outer, Box const& inner) {
  Box const both = outer.joinedWith(inner);
  return both.low == outer.low && both.high == outer.high;
}

unsigned int longestAxis(Box const& box) {
  ZuVector const extent = box.high - box.low;
  unsigned int longest = extent.y() > extent.x() ? 1 : 0;
  return extent.z() > extent[longest] ? 2 : longest;
}

}  // namespace

void ZuAABBHierarchyGeneration::build(std::vector<Box> const& boxes) {
  m_Nodes.clear();
  m_Order.clear();
  std::vector<ZuVector> middles(boxes.size());
  for (unsigned int i = 0; i < boxes.size(); ++i) {
    if (!isProper(boxes[i])) continue;
    m_Order.push_back(i);
    middles[i] = boxes[i].middle();
  }
  if (m_Order.empty()) return;
  m_Nodes.reserve(m_Order.size());
  split(boxes, middles, 0, static_cast<unsigned int>(m_Order.size()));
  m_Nodes.shrink_to_fit();
}

// Halving at the median keeps the tree balanced whatever the facets are, and costs a linear selection on each level.
void ZuAABBHierarchyGeneration::split(std::vector<Box> const& boxes, std::vector<ZuVector> const& middles,
                                      unsigned int begin, unsigned int end) {
  std::size_t const at = m_Nodes.size();
  Box box = boxes[m_Order[begin]], spread = Box::around(middles[m_Order[begin]]);
  for (unsigned int i = begin + 1; i < end; ++i) {
    box = box.joinedWith(boxes[m_Order[i]]);
    spread = spread.joinedWith(Box::around(middles[m_Order[i]]));
  }
  m_Nodes.push_back({box, begin, end - begin});
  if (end - begin <= theLeafSize) return;
  unsigned int const axis = longestAxis(spread), half = begin + (end - begin) / 2;
  std::nth_element(m_Order.begin() + begin, m_Order.begin() + half, m_Order.begin() + end,
                   [&middles, axis](unsigned int i, unsigned int j) { return middles[i][axis] < middles[j][axis]; });
  split(boxes, middles, begin, half);
  m_Nodes[at].first = static_cast<unsigned int>(m_Nodes.size());
  m_Nodes[at].count = 0;
  split(boxes, middles, half, end);
}

bool ZuAABBHierarchyGeneration::refit(std::vector<Box> const& boxes) {
  auto const numberOfProper = std::count_if(boxes.begin(), boxes.end(), isProper);
  bool const fits = static_cast<std::size_t>(numberOfProper) == m_Order.size() &&
                    std::all_of(m_Order.begin(), m_Order.end(),
                                [&boxes](unsigned int i) { return i < boxes.size() && isProper(boxes[i]); });
  if (!fits) return false;
  for (std::size_t at = m_Nodes.size(); at-- > 0;) {
    Node& node = m_Nodes[at];
    node.box = node.count == 0 ? m_Nodes[at + 1].box.joinedWith(m_Nodes[node.first].box) : boxes[m_Order[node.first]];
    for (unsigned int i = 1; i < node.count; ++i) node.box = node.box.joinedWith(boxes[m_Order[node.first + i]]);
  }
  return true;
}

bool ZuAABBHierarchyGeneration::validate(std::vector<Box> const& boxes) const {
  std::vector<unsigned int> timesHeld(boxes.size(), 0), timesReached(m_Nodes.size(), 0);
  for (std::size_t at = 0; at < m_Nodes.size(); ++at) {
    Node const& node = m_Nodes[at];
    for (unsigned int i = 0; i < node.count; ++i) {
      unsigned int const facet = m_Order[node.first + i];
      if (!contains(node.box, boxes[facet])) return false;
      ++timesHeld[facet];
    }
    if (node.count != 0) continue;
    for (std::size_t const child : {at + 1, static_cast<std::size_t>(node.first)}) {
      if (child <= at || child >= m_Nodes.size() || !contains(node.box, m_Nodes[child].box)) return false;
      ++timesReached[child];
    }
  }
  for (std::size_t at = 1; at < m_Nodes.size(); ++at) {
    if (timesReached[at] != 1) return false;
  }
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (timesHeld[i] != (isProper(boxes[i]) ? 1U : 0U)) return false;
  }
  return true;
}

ZuAABBHierarchyGeneration::SegmentBound::SegmentBound(ZuVector const& p, ZuVector const& q)
    : m_P(p), m_Q(q), m_Delta(q - p), m_Box(Box::around(p, q)) {}

// The squared distance from p + t delta to the box is convex in t and quadratic between the places where the segment
// passes a face's plane, so its minimum lies where the derivative, linear from place to place, passes 0: march over the
// at most six places.
double ZuAABBHierarchyGeneration::SegmentBound::distanceSquaredTo(Box const& box) const {
  double t = 0.0;
  for (unsigned int step = 0; step < 7; ++step) {
    double next = 1.0, slope = 0.0, curvature = 0.0;
    for (unsigned int k = 0; k < 3; ++k) {
      double const d = m_Delta[k];
      if (d == 0.0) continue;
      double const toEntry = (d > 0.0 ? box.low[k] : box.high[k]) - m_P[k], entry = toEntry / d;
      double const toExit = (d > 0.0 ? box.high[k] : box.low[k]) - m_P[k], exit = toExit / d;
      if (entry > t) {
        next = std::min(next, entry);
        slope += d * (d * t - toEntry);
        curvature += d * d;
      } else if (exit > t) {
        next = std::min(next, exit);
      } else {
        slope += d * (d * t - toExit);
        curvature += d * d;
      }
    }
    if (slope >= 0.0) break;
    double const root = t - slope / curvature;
    t = std::min(root, next);
    if (root <= next || t >= 1.0) break;
  }
  return box.distanceSquaredTo(t >= 1.0 ? m_Q : m_P + m_Delta * t);
}

// The part of the line within each slab, from differences of coordinates, which are exact to a relative rounding. The
// upper ends are widened by that (Ize 2013).
bool ZuAABBHierarchyGeneration::SegmentBound::mayMeet(Box const& box) const {
  if (!m_Box.overlaps(box)) return false;
  double first = 0.0, last = 1.0 + theSlack;
  for (unsigned int k = 0; k < 3; ++k) {
    double const d = m_Delta[k];
    if (d == 0.0) continue;
    first = std::max(first, ((d > 0.0 ? box.low[k] : box.high[k]) - m_P[k]) / d);
    last = std::min(last, ((d > 0.0 ? box.high[k] : box.low[k]) - m_P[k]) / d * (1.0 + theSlack));
  }
  return first <= last;
}

ZuAABBHierarchyGeneration::TriangleBound::TriangleBound(ZuVector const& a, ZuVector const& b, ZuVector const& c)
    : m_A(a), m_B(b), m_C(c), m_Normal((b - a).cross(c - a).unitVector()), m_Box(Box::around(a, b, c)) {
  // The normal of a needle may be rounding; what the triangle covers along it makes it a separating axis like any
  // other.
  double const heightOfB = m_Normal.dot(b - a), heightOfC = m_Normal.dot(c - a);
  m_Lowest = std::min({0.0, heightOfB, heightOfC});
  m_Highest = std::max({0.0, heightOfB, heightOfC});
}

double ZuAABBHierarchyGeneration::TriangleBound::distanceSquaredTo(Box const& box) const {
  ZuVector const middle = box.middle(), half = (box.high - box.low) * 0.5;
  ZuVector const nearest = ZuTriangleKernels::closestPoint({m_A, m_B, m_C}, middle);
  double const fromBall = nearest.distanceTo(middle) * (1.0 - theSlack) - half.mag() * (1.0 + theSlack);
  double const distance = std::max({0.0, fromBall, gapAcross(middle, half)});
  return std::max(m_Box.distanceSquaredTo(box), distance * distance);
}

bool ZuAABBHierarchyGeneration::TriangleBound::mayMeet(Box const& box) const {
  return m_Box.overlaps(box) && gapAcross(box.middle(), (box.high - box.low) * 0.5) <= 0.0;
}

double ZuAABBHierarchyGeneration::TriangleBound::gapAcross(ZuVector const& middle, ZuVector const& half) const {
  ZuVector const toMiddle = middle - m_A, n = absolute(m_Normal);
  double const height = m_Normal.dot(toMiddle), reach = n.dot(half);
  double const rounding = theSlack * n.dot(absolute(toMiddle) + absolute(middle) + half);
  return std::max(height - m_Highest, m_Lowest - height) - reach - rounding;
}
