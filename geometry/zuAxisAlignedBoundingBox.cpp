#include "geometry/zuAxisAlignedBoundingBox.h"

#include "geometry/zuCapsule.h"
#include "geometry/zuGeomTokens.h"

namespace {

// Comparisons with nan are false, so the first bound stays when either is nan.
double lower(double bound, double other) { return bound > other ? other : bound; }
double upper(double bound, double other) { return bound < other ? other : bound; }

void expand(ZuVector& minimum, ZuVector& maximum, ZuAxisAlignedBoundingBox const& box) {
  ZuVector const& min = box.minCorner();
  ZuVector const& max = box.maxCorner();
  minimum = {lower(minimum.x(), min.x()), lower(minimum.y(), min.y()), lower(minimum.z(), min.z())};
  maximum = {upper(maximum.x(), max.x()), upper(maximum.y(), max.y()), upper(maximum.z(), max.z())};
}

bool overlap(double min1, double max1, double min2, double max2) { return max1 >= min2 && max2 >= min1; }

}  // namespace

bool ZuAxisAlignedBoundingBox::hasXOverlap(ZuAxisAlignedBoundingBox const& box) const {
  return overlap(m_Min.value().x(), m_Max.value().x(), box.m_Min.value().x(), box.m_Max.value().x());
}

bool ZuAxisAlignedBoundingBox::hasYOverlap(ZuAxisAlignedBoundingBox const& box) const {
  return overlap(m_Min.value().y(), m_Max.value().y(), box.m_Min.value().y(), box.m_Max.value().y());
}

bool ZuAxisAlignedBoundingBox::hasZOverlap(ZuAxisAlignedBoundingBox const& box) const {
  return overlap(m_Min.value().z(), m_Max.value().z(), box.m_Min.value().z(), box.m_Max.value().z());
}

bool ZuAxisAlignedBoundingBox::testIntersection(ZuAxisAlignedBoundingBox const& box) const {
  ZuVector const& min1 = m_Min;
  ZuVector const& max1 = m_Max;
  ZuVector const& min2 = box.m_Min;
  ZuVector const& max2 = box.m_Max;
  if (min2.x() > max1.x() || min1.x() > max2.x()) return false;
  if (min2.y() > max1.y() || min1.y() > max2.y()) return false;
  return !(min2.z() > max1.z() || min1.z() > max2.z());
}

bool ZuAxisAlignedBoundingBox::findIntersection(ZuAxisAlignedBoundingBox const&, ZuAxisAlignedBoundingBox&) const {
  return false;
}

void ZuAxisAlignedBoundingBox::expandSelfToInclude(ZuAxisAlignedBoundingBox const& box) {
  ZuVector minimum = m_Min, maximum = m_Max;
  expand(minimum, maximum, box);
  setCorners(minimum, maximum);
}

void ZuAxisAlignedBoundingBox::expandSelfToInclude(ZuXmlVectorType<ZuAxisAlignedBoundingBox> const& boxes) {
  ZuVector minimum = m_Min, maximum = m_Max;
  for (ZuAxisAlignedBoundingBox const& box : boxes) expand(minimum, maximum, box);
  setCorners(minimum, maximum);
}

unsigned int ZuAxisAlignedBoundingBox::longestAxis() const {
  ZuVector const extents = maxCorner() - minCorner();
  unsigned int longest = 0;
  double best = extents.x() > 0.0 ? extents.x() : 0.0;
  for (unsigned int axis : {1U, 2U}) {
    if (extents[axis] > best) {
      best = extents[axis];
      longest = axis;
    }
  }
  return longest;
}

void ZuAxisAlignedBoundingBox::resize(ZuCapsule const& capsule) {
  ZuVector const reach = ZuVector(1.0, 1.0, 1.0) * capsule.radius();
  ZuVector const& end = capsule.lineSegment().endpoint0();
  setCorners(end - reach, end + reach);
  ZuVector const& otherEnd = capsule.lineSegment().endpoint1();
  expandSelfToInclude(ZuAxisAlignedBoundingBox(otherEnd - reach, otherEnd + reach));
}

void ZuAxisAlignedBoundingBox::enlarge(double const& d) {
  if (d == 0.0) return;
  ZuVector const half = ZuVector(1.0, 1.0, 1.0) * (d / 2.0);
  setCorners(minCorner() - half, maxCorner() + half);
}

void ZuAxisAlignedBoundingBox::registerComponents() {
  registerComponent(ZuGeom::ZuAbbMinExtentToken, &m_Min);
  registerComponent(ZuGeom::ZuAbbMaxExtentToken, &m_Max);
}

ZuToken const& ZuAxisAlignedBoundingBox::classToken() { return ZuGeom::ZuAxisAlignedBoundingBoxToken; }

void ZuAxisAlignedBoundingBox::resizeAround(Boxes const& boxes) {
  if (boxes.empty()) return;
  // Not in place: this box may be one of them.
  ZuVector minimum = boxes[0].m_Min, maximum = boxes[0].m_Max;
  for (ZuAxisAlignedBoundingBox const& box : boxes) expand(minimum, maximum, box);
  setCorners(minimum, maximum);
}
