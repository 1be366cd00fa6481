#include "geometry/zuGeomTriangle.h"

#include "geometry/zuGeomTokens.h"
#include "geometry/zuTriangleKernelsPrivate.h"

namespace {

ZuTriangleKernels::Triangle plain(ZuTriangle const& t) { return {t.point(0), t.point(1), t.point(2)}; }

ZuTriangleKernels::Segment plain(ZuLineSegment const& s) { return {s.endpoint0(), s.endpoint1()}; }

ZuVector twiceTheArea(ZuTriangle const& t) { return (t.point(1) - t.point(0)).cross(t.point(2) - t.point(0)); }

}  // namespace

ZuGeomTriangle::ZuGeomTriangle(ZuTriangle const& corners)
    : ZuXmlClass(corners.point(0), corners.point(1), corners.point(2)) {}

ZuVector ZuGeomTriangle::normal() const { return twiceTheArea(*this).unitVector(); }

double ZuGeomTriangle::area() const { return 0.5 * twiceTheArea(*this).mag(); }

ZuVector ZuGeomTriangle::closestPoint(ZuVector const& point) const {
  return ZuTriangleKernels::closestPoint(plain(*this), point);
}

double ZuGeomTriangle::distanceTo(ZuVector const& point) const { return closestPoint(point).distanceTo(point); }

double ZuGeomTriangle::distanceTo(ZuLineSegment const& segment) const {
  return std::sqrt(ZuTriangleKernels::distanceSquared(plain(*this), plain(segment)));
}

double ZuGeomTriangle::distanceTo(ZuGeomTriangle const& other) const {
  return std::sqrt(ZuTriangleKernels::distanceSquared(plain(*this), plain(other)));
}

bool ZuGeomTriangle::checkIntersect(ZuLineSegment const& segment) const {
  return ZuTriangleKernels::intersects(plain(*this), plain(segment));
}

bool ZuGeomTriangle::checkIntersect(ZuGeomTriangle const& other) const {
  return ZuTriangleKernels::intersects(plain(*this), plain(other));
}

ZuToken const& ZuGeomTriangle::classToken() { return ZuGeom::ZuGeomTriangleToken; }

ZuGeomTriangle ZuGeomTriangle::testObject() { return ZuGeomTriangle(ZuTriangle::testObject()); }

ZuGeomTriangle operator*(ZuCoordinateSystemTransformation const& t_12, ZuGeomTriangle const& triangle) {
  ZuGeomTriangle moved(triangle);
  moved.transformBy(t_12);
  return moved;
}
