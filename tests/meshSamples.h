// meshSamples.h - meshes for tests: small ones, and the real ones of the shared collection.
#pragma once

#include "geometry/zuPolyPhysicalExtent.h"
#include "tests/extentChecks.h"
#include "tests/objReader.h"
#include "tests/testValues.h"

using Loops = std::vector<std::vector<unsigned int>>;

template <class Mesh>
Mesh meshOf(std::vector<ZuVector> const& points, Loops const& loops) {
  Mesh mesh;
  mesh.setPoints(ZuXmlVectorVector(points));
  unsigned int const group = mesh.addGroup("Skin");
  for (auto const& loop : loops) mesh.addFacet(group, loop);
  return mesh;
}

/// Without points when the file is not there; `welds` makes equal points one.
inline ZuPolyPhysicalExtent realMesh(std::string const& name, bool welds = false) {
  ObjMesh file = ObjMesh::read(sharedFile(name));
  for (auto& face : file.faces) {
    for (unsigned int& corner : face) {
      if (!welds) break;
      auto const first = std::find(file.points.begin(), file.points.end(), file.points[corner]);
      corner = static_cast<unsigned int>(first - file.points.begin());
    }
  }
  return meshOf<ZuPolyPhysicalExtent>(file.points, file.faces);
}

/// The cube [-1, 1]^3 of six squares, with a point (index 8) that no facet uses.
inline std::vector<ZuVector> cubePoints() {
  std::vector<ZuVector> points;
  for (int i = 0; i < 8; ++i) points.emplace_back(2 * (i % 2) - 1, 2 * (i / 2 % 2) - 1, 2 * (i / 4) - 1);
  points.emplace_back(0.25, 0.5, 0.0);
  return points;
}

inline Loops cubeLoops() {
  return {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
}

inline ZuPolyPhysicalExtent cube() { return meshOf<ZuPolyPhysicalExtent>(cubePoints(), cubeLoops()); }

/// The same of twelve triangles.
inline ZuTriPhysicalExtent triangleCube() {
  Loops triangles;
  for (auto const& loop : cubeLoops()) {
    triangles.push_back({loop[0], loop[1], loop[2]});
    triangles.push_back({loop[0], loop[2], loop[3]});
  }
  return meshOf<ZuTriPhysicalExtent>(cubePoints(), triangles);
}

/// All real meshes that are there: the objects and those of the robots.
inline std::vector<std::string> meshFiles() {
  std::vector<std::string> files;
  for (std::string const& name : realMeshes()) files.push_back("data/objects/" + name);
  for (char const* name : {"panda/meshes/hand.obj", "panda/meshes/link5.obj", "shadow_hand/meshes/f_distal_pst.obj",
                           "shadow_hand/meshes/th_distal_pst.obj", "shadow_hand/meshes/forearm_collision.obj"}) {
    files.push_back(std::string("data/robots/") + name);
  }
  return files;
}
