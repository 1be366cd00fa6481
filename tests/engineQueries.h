// engineQueries.h - what tests ask of a convex engine.
#pragma once

#include <gtest/gtest.h>

#include "geometry/zuGjk.h"
#include "tests/convexOracle.h"
#include "tests/hullShape.h"
#include "tests/valuePrinters.h"

struct EngineAnswer {
  double distance = -1e9;
  ZuVector witness1, witness2, separation;
};

inline EngineAnswer ask(ZuGJK& engine, ZuShape const& a, ZuShape const& b, ZuCoordinateSystemTransformation const& T1,
                        ZuCoordinateSystemTransformation const& T2, bool penetration = true,
                        ZuVector const& start = ZuVector()) {
  EngineAnswer answer;
  answer.separation = start;
  EXPECT_TRUE(engine.distance(a, b, T1, T2, penetration, answer.witness1, answer.witness2, answer.distance,
                              &answer.separation));
  return answer;
}

/// What holds for every answer: the vector is that between the witness points, of the length of the distance.
inline void expectConsistent(EngineAnswer const& answer, ZuCoordinateSystemTransformation const& T1,
                             ZuCoordinateSystemTransformation const& T2, double tolerance = 1e-12) {
  EXPECT_TRUE((T1 * answer.witness1 - T2 * answer.witness2).approxEq(answer.separation, tolerance));
  EXPECT_NEAR(answer.separation.mag(), std::abs(answer.distance), tolerance);
}

inline double distanceByOracle(HullShape const& a, HullShape const& b, ZuCoordinateSystemTransformation const& T1 = {},
                               ZuCoordinateSystemTransformation const& T2 = {}) {
  return oracle::distance(oracle::placed(a.vertices(), T1), oracle::placed(b.vertices(), T2));
}

/// Touching, flat and coinciding shapes, with their signed distance.
struct DegeneratePair {
  char const* what;
  HullShape a, b;
  ZuCoordinateSystemTransformation pose;  ///< of b in a's frame
  double distance;
};

inline std::vector<DegeneratePair> degeneratePairs() {
  using Pose = ZuCoordinateSystemTransformation;
  HullShape const cube = HullShape::box(1.0, 1.0, 1.0), plate = HullShape::box(1.0, 1.0, 0.0), point({ZuVector()}),
                  rod({{-0.5, 0.0, 0.0}, {0.5, 0.0, 0.0}}),
                  triangle({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}});
  ZuOrientation eighth;
  eighth.setFromAngleAxis(std::atan(1.0), ZuVector::zVector(1.0));
  return {{"identical points", point, point, Pose(), 0.0},
          {"a point on a vertex", cube, point, Pose(ZuVector(0.5, 0.5, 0.5)), 0.0},
          {"a point on an edge", cube, point, Pose(ZuVector(0.5, 0.5, 0.2)), 0.0},
          {"a point on a face", cube, point, Pose(ZuVector(0.5, 0.1, 0.2)), 0.0},
          {"a point at the centre", cube, point, Pose(), -0.5},
          {"vertices", cube, cube, Pose(ZuVector(1.0, 1.0, 1.0)), 0.0},
          {"parallel edges", cube, cube, Pose(ZuVector(1.0, 1.0, 0.3)), 0.0},
          {"crossing edges", cube, cube, Pose(ZuVector(0.5 + std::sqrt(0.5), 0.0, 0.9), eighth), 0.0},
          {"faces", cube, cube, Pose(ZuVector(1.0, 0.3, 0.2)), 0.0},
          {"identical cubes", cube, cube, Pose(), -1.0},
          {"identical turned cubes", cube, cube, Pose(ZuVector(), eighth), -1.0},
          {"a cube in a face", cube, cube, Pose(ZuVector(0.75, 0.0, 0.0)), -0.25},
          {"coplanar triangles", triangle, triangle, Pose(ZuVector(0.3, 0.3, 0.0)), 0.0},
          {"the same triangle", triangle, triangle, Pose(), 0.0},
          {"triangles at an edge", triangle, triangle, Pose(ZuVector(0.0, -1.0, 0.0)), 0.0},
          {"the same plate", plate, plate, Pose(ZuVector(), eighth), 0.0},
          {"a plate in a cube", cube, plate, Pose(ZuVector(0.0, 0.0, 0.2)), -0.3},
          {"crossing rods", rod, rod, Pose(ZuVector(), eighth), 0.0},
          {"collinear rods", rod, rod, Pose(ZuVector(0.5, 0.0, 0.0)), 0.0},
          {"rods end to end", rod, rod, Pose(ZuVector(1.0, 0.0, 0.0)), 0.0},
          {"a rod through a cube", cube, rod, Pose(ZuVector(0.0, 0.0, 0.1)), -0.4}};
}
