#include "geometry/zuGeometryOverwriteDescriptor.h"

#include <cmath>

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"

void ZuGeometryOverwriteDescriptor::setScale(ZuVector const& scale) {
  if (std::isfinite(scale.x()) && std::isfinite(scale.y()) && std::isfinite(scale.z())) {
    m_Scale = scale;
  } else {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuGeometryOverwriteDescriptor::setScale-->not finite (%g, %g, %g)",
                                scale.x(), scale.y(), scale.z());
  }
}

bool ZuGeometryOverwriteDescriptor::keepsGeometry() const {
  return scale() == ZuVector(1.0, 1.0, 1.0) && frame() == ZuCoordinateSystemTransformation() && !reverse();
}

bool ZuGeometryOverwriteDescriptor::reversesFacets() const { return reverse() != mirrors(); }

ZuVector ZuGeometryOverwriteDescriptor::point(ZuVector const& point) const {
  ZuVector const& s = scale();
  return frame() * ZuVector(s.x() * point.x(), s.y() * point.y(), s.z() * point.z());
}

// A normal is a cross product of two edges, so it is scaled by the cofactors of the scale: right also where a factor
// is 0. They keep to the order of the corners, and the sign to what comes of that order.
ZuVector ZuGeometryOverwriteDescriptor::normal(ZuVector const& normal) const {
  ZuVector const& s = scale();
  ZuVector const scaled(s.y() * s.z() * normal.x(), s.z() * s.x() * normal.y(), s.x() * s.y() * normal.z());
  return frame().orientation() * (reversesFacets() ? -scaled : scaled).unitVector();
}

void ZuGeometryOverwriteDescriptor::overwrite(ZuXmlVectorVector& points, ZuXmlVectorVector& normals) const {
  if (keepsGeometry()) return;
  for (ZuVector& p : points) p = point(p);
  for (ZuVector& n : normals) n = normal(n);
}

bool ZuGeometryOverwriteDescriptor::operator==(ZuGeometryOverwriteDescriptor const& other) const {
  return m_Scale == other.m_Scale && m_Frame == other.m_Frame && m_Reverse == other.m_Reverse &&
         m_SurfaceKey == other.m_SurfaceKey;
}

void ZuGeometryOverwriteDescriptor::registerComponents() {
  registerComponent(ZuGeom::ZuScaleToken, &m_Scale);
  registerComponent(ZuGeom::ZuFrameToken, &m_Frame);
  registerComponent(ZuGeom::ZuReverseToken, &m_Reverse);
  registerComponent(ZuGeom::ZuSurfaceKeyToken, &m_SurfaceKey);
}

ZuToken const& ZuGeometryOverwriteDescriptor::classToken() { return ZuGeom::ZuGeometryOverwriteDescriptorToken; }

ZuGeometryOverwriteDescriptor ZuGeometryOverwriteDescriptor::testObject() {
  ZuGeometryOverwriteDescriptor sample;
  sample.setScale(ZuVector(0.001, 0.001, -0.002));
  sample.setFrame(ZuCoordinateSystemTransformation::testObject());
  sample.setReverse(true);
  sample.setSurfaceKey("Shell");
  return sample;
}

bool ZuGeometryOverwriteDescriptor::mirrors() const {
  ZuVector const& s = scale();
  return ((s.x() < 0.0) != (s.y() < 0.0)) != (s.z() < 0.0);
}
