// sceneMeshes.h - mesh files as the shapes of bodies.
#pragma once

#include <string>
#include <vector>

#include "tools/meshFile.h"
#include "tools/scene.h"

/// A mesh file, and where it belongs.
struct MeshSource {
  std::string body;  ///< empty for a new body, named after the file, that stands at the origin of the world
  std::string fileName;
  ZuCoordinateSystemTransformation frame;  ///< p_body = frame * p_file
};

/// Appends the meshes of a table, one a line: BODY FILE [x y z [qw qx qy qz]], in m; what follows a # is a comment.
/// FILE is sought beside the table and in the folder `meshes` there, as it stands and with .obj and .stl added.
/// @return false, and one line has been printed, when the table can't be read or a line is something else
bool readMeshTable(std::string const& fileName, std::vector<MeshSource>& sources);

/// Gives the bodies their meshes: the first takes the place of the body's shapes, further ones of the same body come
/// beside it.
/// @return false, and one line has been printed, when a body or a file is not there, or makes no sense
bool addMeshes(Scene& scene, std::vector<MeshSource> const& sources, MeshUse use);
