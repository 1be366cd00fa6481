// meshFile.h - mesh files as solids.
#pragma once

#include <memory>
#include <string>

#include "geometry/zuPolyPhysicalExtent.h"

/// Which solid a mesh file stands for.
enum class MeshUse {
  HULL,  ///< the convex hull of its corners: quick, and with depths
  FACES  ///< what its faces enclose, convex or not: exact, without depths
};

/// Reads a mesh in OBJ or STL (the ending of the name decides), in m. Corners in one place become one vertex;
/// points and lines are left out. The importer keeps coordinates in single precision.
///
/// @return null, and one line has been printed, when the file can't be read, has no faces or coordinates that are not
///         finite, is larger than the limits, or spans no volume and its hull was asked for
std::unique_ptr<ZuPolyPhysicalExtent> loadMesh(std::string const& fileName, MeshUse use);
