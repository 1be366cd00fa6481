// peers.h - poses for the libraries that benchmarks compare with.
#pragma once

#include <LinearMath/btTransform.h>
#include <fcl/common/types.h>

#include "foundation/zuCoordinateSystemTransformation.h"

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
