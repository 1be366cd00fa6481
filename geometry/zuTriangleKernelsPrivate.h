// zuTriangleKernelsPrivate.h - distances and contact of plain triangles. Group: figures.
#pragma once

#include "foundation/zuVector.h"

/// What ZuGeomTriangle and the meshes compute from corners alone: no object, no allocation. All sets are closed,
/// corners may coincide and may lie on one line; a segment or a triangle is then what is left of it. Lengths are in the
/// unit of the corners, all in one frame.
///
/// Distances carry an error of a few ulps of the largest coordinate difference; contact is decided exactly (see
/// ZuExactSigns), and with contact the distance is exactly 0.
namespace ZuTriangleKernels {

struct Segment {
  ZuVector p;
  ZuVector q;
};

struct Triangle {
  ZuVector a;
  ZuVector b;
  ZuVector c;
};

ZuVector closestPoint(Segment const& segment, ZuVector const& point);
/// The point of the triangle nearest to the point; a needle loses no digits.
ZuVector closestPoint(Triangle const& triangle, ZuVector const& point);

double distanceSquared(Triangle const& triangle, ZuVector const& point);
double distanceSquared(Triangle const& triangle, Segment const& segment);
double distanceSquared(Triangle const& first, Triangle const& second);

bool intersects(Triangle const& triangle, Segment const& segment);
bool intersects(Triangle const& first, Triangle const& second);

}  // namespace ZuTriangleKernels
