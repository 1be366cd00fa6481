// hardPairs.h - the hard pairs of the shared collection, as solids of the library.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuHalfSpace.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuTetrahedron.h"
#include "tests/hullShape.h"
#include "tests/sharedFiles.h"

/// A pair with its signed distance, which is exact to the tolerance.
struct HardPair {
  std::string name;
  std::unique_ptr<ZuShape> a, b;
  ZuCoordinateSystemTransformation poseA, poseB;
  double distance = 0.0, tolerance = 0.0, witnessTolerance = 0.0;
  std::unique_ptr<ZuVector> witnessA;  ///< in the world; null when it is not unique

  bool areBoth(bool (*isKind)(ZuShape const&)) const { return isKind(*a) && isKind(*b); }
};

inline bool isHull(ZuShape const& shape) { return dynamic_cast<HullShape const*>(&shape) != nullptr; }
inline bool isPolytope(ZuShape const& shape) {
  return isHull(shape) || shape.type() == ZuShape::BOX || shape.type() == ZuShape::TETRAHEDRON;
}

/// A solid of the collection, along z about its origin.
inline std::unique_ptr<ZuShape> readHardSolid(std::istream& text) {
  std::string kind;
  text >> kind;
  std::vector<double> n{std::istream_iterator<double>(text), {}};
  n.resize(std::max<std::size_t>(n.size(), 13));
  auto const point = [&n](std::size_t i) { return ZuVector(n[i], n[i + 1], n[i + 2]); };
  ZuLineSegment const axis({0, 0, -0.5 * n[1]}, {0, 0, 0.5 * n[1]});
  if (kind == "sphere") return std::make_unique<ZuSphere>(ZuVector(), n[0], 3);
  if (kind == "box") return std::make_unique<ZuBox>(ZuCoordinateSystemTransformation(), point(0) * 0.5);
  if (kind == "capsule") return std::make_unique<ZuCapsule>(axis, n[0]);
  if (kind == "cylinder") return std::make_unique<ZuCylinder>(axis, n[0]);
  if (kind == "cone") return std::make_unique<ZuCone>(axis, n[0]);
  if (kind == "ellipsoid") return std::make_unique<ZuEllipsoid>(ZuCoordinateSystemTransformation(), point(0));
  if (kind == "halfspace") return std::make_unique<ZuHalfSpace>(ZuPlane({}, {0, 0, 1}));
  if (kind == "lozenge") {
    return std::make_unique<ZuLozenge>(ZuRectangle({}, {0.5 * n[1], 0, 0}, {0, 0.5 * n[2], 0}), n[0]);
  }
  if (kind == "tetrahedron") return std::make_unique<ZuTetrahedron>(point(0), point(3), point(6), point(9));
  std::vector<ZuVector> points;
  for (std::size_t i = 0; i < static_cast<std::size_t>(n[0]); ++i) points.push_back(point(1 + 3 * i));
  return std::make_unique<HullShape>(points);
}

/// Hands every pair to `visit` under a trace of its name; skips the test where there is no collection.
template <class Visit>
void forEachHardPair(Visit const& visit) {
  std::ifstream file(sharedFile("cases/open.pairs.txt"));
  if (!file) GTEST_SKIP() << "no cases/open.pairs.txt in the shared collection";
  auto const poseOf = [](std::istream& text) {
    double t[7] = {};
    for (double& number : t) text >> number;
    return ZuCoordinateSystemTransformation({t[0], t[1], t[2]}, ZuOrientation(t[3], t[4], t[5], t[6]));
  };
  std::map<std::string, std::istringstream> block;
  for (std::string line; std::getline(file, line);) {
    std::istringstream text(line);
    std::string key;
    text >> key;
    if (key != "end") {
      block[key] = std::move(text);
      continue;
    }
    HardPair pair{block["case"].str(),
                  readHardSolid(block["a"]),
                  readHardSolid(block["b"]),
                  poseOf(block["a_pose"]),
                  poseOf(block["b_pose"]),
                  0.0,
                  0.0,
                  0.0,
                  nullptr};
    ASSERT_TRUE(block["distance"] >> pair.distance && block["tol"] >> pair.tolerance &&
                block["wtol"] >> pair.witnessTolerance);
    ZuVector w;
    if (block["witness_a"] >> w[0] >> w[1] >> w[2]) pair.witnessA = std::make_unique<ZuVector>(w);
    SCOPED_TRACE(pair.name);
    visit(pair);
  }
}
