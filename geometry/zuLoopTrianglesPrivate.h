// zuLoopTrianglesPrivate.h - a loop of points cut into triangles. Group: meshes.
#pragma once

#include <vector>

#include "foundation/zuXmlVectorVector.h"
#include "geometry/zuCompressedLists.h"

/// Appends the corners of the triangles of a loop, three each, turning the way of the loop: the fan about the first
/// corner of a convex loop; otherwise ears are cut off (G. H. Meisters, "Polygons have ears", 1975), seen along the
/// normal of the loop. A loop that is no simple polygon, or has more than 256 corners, is taken as a fan; so is one
/// with a corner that is not in the list of points.
void zuCutLoop(ZuXmlVectorVector const& points, ZuListView<unsigned int> loop, std::vector<unsigned int>& triangles);
