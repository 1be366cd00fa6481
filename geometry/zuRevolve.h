// zuRevolve.h - closed meshes around an axis. Group: fitting.
#pragma once

#include <vector>

#include "foundation/zuVector.h"

class ZuPolyPhysicalExtent;

/// A corner of the outline that is turned about the axis: its height along the axis and its distance from it.
struct ZuOutlinePoint {
  double height;
  double radius;
};

/// Vertices around the axis, and steps over a quarter circle of the outline, for a detail level (at most
/// ZuShape::m_theMaximumSubdivision is used): every level halves the angles.
ZU_API unsigned int zuSlices(unsigned int detailLevel);
ZU_API unsigned int zuQuarterSteps(unsigned int detailLevel);

/// Fills the extent with the closed convex mesh of the outline, turned about the line through `origin` in the direction
/// of the unit vector `axis`. The outline is convex and goes from the lowest height to the highest. An end of radius 0
/// is a pole of triangles; any other end is closed by one flat facet. Facets turn outward; those between two rings are
/// flat quadrangles. Heights are relative to the origin.
ZU_API void zuRevolve(ZuPolyPhysicalExtent& extent, ZuVector const& origin, ZuVector const& axis,
                      std::vector<ZuOutlinePoint> const& outline, unsigned int slices);
