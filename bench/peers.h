// peers.h - the libraries that benchmarks compare with: their solids, poses and queries.
#pragma once

#include <BulletCollision/CollisionShapes/btBoxShape.h>
#include <BulletCollision/CollisionShapes/btCapsuleShape.h>
#include <BulletCollision/CollisionShapes/btConeShape.h>
#include <BulletCollision/CollisionShapes/btCylinderShape.h>
#include <BulletCollision/CollisionShapes/btSphereShape.h>
#include <BulletCollision/NarrowPhaseCollision/btGjkEpaPenetrationDepthSolver.h>
#include <BulletCollision/NarrowPhaseCollision/btGjkPairDetector.h>
#include <BulletCollision/NarrowPhaseCollision/btPointCollector.h>
#include <BulletCollision/NarrowPhaseCollision/btVoronoiSimplexSolver.h>
#include <fcl/geometry/shape/box.h>
#include <fcl/geometry/shape/capsule.h>
#include <fcl/geometry/shape/cone.h>
#include <fcl/geometry/shape/cylinder.h>
#include <fcl/geometry/shape/sphere.h>
#include <fcl/narrowphase/detail/gjk_solver_indep.h>
#include <fcl/narrowphase/detail/gjk_solver_libccd.h>

#include <memory>
#include <vector>

#include "bench/overPoses.h"
#include "geometry/zuBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuSphere.h"

using FclIndep = fcl::detail::GJKSolver_indepd;
using FclLibccd = fcl::detail::GJKSolver_libccdd;

inline fcl::Transform3d fclPose(ZuCoordinateSystemTransformation const& pose) {
  fcl::Transform3d result = fcl::Transform3d::Identity();
  ZuOrientation const q = pose.orientation();
  ZuVector const t = pose.translation();
  result.linear() = fcl::Quaterniond(q[0], q[1], q[2], q[3]).toRotationMatrix();
  result.translation() = fcl::Vector3d(t.x(), t.y(), t.z());
  return result;
}

inline btTransform bulletPose(ZuCoordinateSystemTransformation const& pose) {
  ZuOrientation const q = pose.orientation();
  ZuVector const t = pose.translation();
  return btTransform(btQuaternion(q[1], q[2], q[3], q[0]), btVector3(t.x(), t.y(), t.z()));
}

inline std::vector<fcl::Transform3d> fclPoses(std::vector<ZuCoordinateSystemTransformation> const& poses) {
  std::vector<fcl::Transform3d> result;
  for (auto const& pose : poses) result.push_back(fclPose(pose));
  return result;
}

inline std::vector<btTransform> bulletPoses(std::vector<ZuCoordinateSystemTransformation> const& poses) {
  std::vector<btTransform> result;
  for (auto const& pose : poses) result.push_back(bulletPose(pose));
  return result;
}

// Solids that are centred in their frame, with their axis along z.

inline fcl::Sphered fclSolid(ZuSphere const& ball) { return fcl::Sphered(ball.radius()); }
inline fcl::Capsuled fclSolid(ZuCapsule const& s) { return fcl::Capsuled(s.radius(), s.lineSegment().length()); }
inline fcl::Cylinderd fclSolid(ZuCylinder const& s) { return fcl::Cylinderd(s.radius(), s.lineSegment().length()); }
inline fcl::Coned fclSolid(ZuCone const& s) { return fcl::Coned(s.radius(), s.lineSegment().length()); }
inline fcl::Boxd fclSolid(ZuBox const& b) { return fcl::Boxd(2 * b.extent(0), 2 * b.extent(1), 2 * b.extent(2)); }

using BulletSolid = std::unique_ptr<btConvexShape>;
inline BulletSolid bulletSolid(ZuSphere const& ball) { return std::make_unique<btSphereShape>(ball.radius()); }
inline BulletSolid bulletSolid(ZuCapsule const& s) {
  return std::make_unique<btCapsuleShapeZ>(s.radius(), s.lineSegment().length());
}
inline BulletSolid bulletSolid(ZuCylinder const& s) {
  return std::make_unique<btCylinderShapeZ>(btVector3(s.radius(), s.radius(), 0.5 * s.lineSegment().length()));
}
inline BulletSolid bulletSolid(ZuCone const& s) {
  return std::make_unique<btConeShapeZ>(s.radius(), s.lineSegment().length());
}
inline BulletSolid bulletSolid(ZuBox const& b) {
  return std::make_unique<btBoxShape>(btVector3(b.extent(0), b.extent(1), b.extent(2)));
}
/// Bullet rounds its solids by a margin; a ball and a capsule are all margin and stay as they are.
inline BulletSolid withoutMargin(BulletSolid solid) {
  solid->setMargin(0.0);
  return solid;
}

// Queries: solid 1 at the identity, solid 2 at the pose.

template <class Solver, class Solid1, class Solid2>
double fclDistance(Solver const& solver, Solid1 const& a, Solid2 const& b, fcl::Transform3d const& pose) {
  double distance = 0.0;
  fcl::Vector3d p1, p2;
  solver.shapeDistance(a, fcl::Transform3d::Identity(), b, pose, &distance, &p1, &p2);
  return distance;
}

template <class Solver, class Solid1, class Solid2>
double fclDepth(Solver const& solver, Solid1 const& a, Solid2 const& b, fcl::Transform3d const& pose) {
  std::vector<fcl::ContactPointd> contacts;
  solver.shapeIntersect(a, fcl::Transform3d::Identity(), b, pose, &contacts);
  return contacts.empty() ? 0.0 : contacts[0].penetration_depth;
}

class BulletQuery {
 public:
  /// Signed; a warm one starts from the separating axis of the last.
  double distance(btConvexShape const& a, btConvexShape const& b, btTransform const& pose, bool isWarm = false) {
    btGjkPairDetector detector(&a, &b, &m_Simplex, &m_Depth);
    if (isWarm) detector.setCachedSeparatingAxis(m_Axis);
    btGjkPairDetector::ClosestPointInput input;
    input.m_transformA.setIdentity();
    input.m_transformB = pose;
    btPointCollector result;
    detector.getClosestPoints(input, result, nullptr);
    if (isWarm) m_Axis = detector.getCachedSeparatingAxis();
    return static_cast<double>(result.m_distance);
  }

 private:
  btVoronoiSimplexSolver m_Simplex;
  btGjkEpaPenetrationDepthSolver m_Depth;
  btVector3 m_Axis{0.0, 1.0, 0.0};
};

template <class Solver, class Solid1, class Solid2>
void fclDistances(benchmark::State& state, Solid1 const& a, Solid2 const& b,
                  std::vector<ZuCoordinateSystemTransformation> const& poses) {
  std::vector<fcl::Transform3d> const places = fclPoses(poses);
  Solver const solver;
  overPoses(state, places.size(), [&](std::size_t i) { return fclDistance(solver, a, b, places[i]); });
}

inline void bulletDistances(benchmark::State& state, BulletSolid const& a, BulletSolid const& b,
                            std::vector<ZuCoordinateSystemTransformation> const& poses) {
  std::vector<btTransform> const places = bulletPoses(poses);
  BulletQuery query;
  overPoses(state, places.size(), [&](std::size_t i) { return query.distance(*a, *b, places[i]); });
}
