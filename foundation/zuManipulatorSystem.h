// zuManipulatorSystem.h - how many manipulators, links and shapes a system has. Group: systems.
#pragma once

#include "foundation/zuExport.h"
#include "foundation/zuTypes.h"

/// What the memory of pairs needs to know of a system of manipulators to size itself.
///
/// Manipulators are numbered from 0, so are the links of each manipulator and the shapes of each link. The link number
/// m_theReservedLink stands for what belongs to a manipulator but to none of its numbered links, such as its base. The
/// counts must not change while they are asked for.
class ZU_API ZuManipulatorSystem {
 public:
  /// Never counted by numberOfLinks().
  static constexpr unsigned int m_theReservedLink = 4294967294U;

  virtual ~ZuManipulatorSystem() = default;

  virtual unsigned int numberOfManipulators() const = 0;
  /// 0 for a manipulator that the system does not have.
  virtual unsigned int numberOfLinks(unsigned int manipulator) const = 0;
  /// `link` is a number below numberOfLinks(), or m_theReservedLink. 0 for a link that the system does not have.
  virtual unsigned int numberOfShapes(unsigned int manipulator, unsigned int link) const = 0;

 protected:
  ZuManipulatorSystem() = default;
  ZuManipulatorSystem(ZuManipulatorSystem const&) = default;
  ZuManipulatorSystem& operator=(ZuManipulatorSystem const&) = default;
};
