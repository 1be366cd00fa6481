// objReader.h - corners and faces of Wavefront OBJ files, for tests on real meshes.
#pragma once

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/zuVector.h"
#include "tests/sharedFiles.h"

/// Faces are loops of places in the list of points; whatever else a file has is passed over.
struct ObjMesh {
  std::vector<ZuVector> points;
  std::vector<std::vector<unsigned int>> faces;

  double size() const {
    double largest = 0.0;
    for (ZuVector const& p : points) largest = std::fmax(largest, p.distanceTo(points[0]));
    return largest;
  }

  /// Empty when the file can't be read.
  static ObjMesh read(std::string const& fileName) {
    ObjMesh mesh;
    std::ifstream file(fileName);
    for (std::string line; std::getline(file, line);) {
      std::istringstream text(line);
      std::string word;
      text >> word;
      if (word == "v") {
        double x = 0.0, y = 0.0, z = 0.0;
        text >> x >> y >> z;
        mesh.points.emplace_back(x, y, z);
      } else if (word == "f") {
        mesh.faces.emplace_back();
        while (text >> word) {
          long const index = std::stol(word);
          long const count = static_cast<long>(mesh.points.size());
          mesh.faces.back().push_back(static_cast<unsigned int>(index < 0 ? count + index : index - 1));
        }
      }
    }
    return mesh;
  }
};

/// The real meshes of the shared collection; read one with ObjMesh::read(sharedFile("data/objects/" + name)).
inline std::vector<std::string> realMeshes() {
  return {"armadillo.obj",   "boat.obj",     "bunny.obj",        "hand_open.obj",     "lego.obj",  "plane_holes.obj",
          "power_drill.obj", "scorpion.obj", "shape_sorter.obj", "spot_polygons.obj", "torus.obj", "wingnut.obj"};
}
