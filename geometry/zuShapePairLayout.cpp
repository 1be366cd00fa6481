#include "geometry/zuShapePairLayout.h"

#include <cstdint>
#include <limits>

namespace {

/// The link slots of a manipulator; none when the system does not have it.
std::size_t slotsOf(ZuManipulatorSystem const& system, std::size_t manipulator) {
  if (manipulator >= system.numberOfManipulators()) return 0;
  return static_cast<std::size_t>(system.numberOfLinks(static_cast<unsigned int>(manipulator))) + 1;
}

unsigned int shapesInSlot(ZuManipulatorSystem const& system, std::size_t manipulator, std::size_t slot) {
  return system.numberOfShapes(static_cast<unsigned int>(manipulator), slot == 0
                                                                           ? ZuManipulatorSystem::m_theReservedLink
                                                                           : static_cast<unsigned int>(slot - 1));
}

}  // namespace

bool ZuShapePairLayout::covers(ZuManipulatorSystem const& system) const {
  if (system.numberOfManipulators() > numberOfBlocks()) return false;
  for (std::size_t manipulator = 0; manipulator < system.numberOfManipulators(); ++manipulator) {
    if (slotsOf(system, manipulator) > m_theMaximumLinks) return false;
    for (std::size_t slot = 0; slot < slotsOf(system, manipulator); ++slot) {
      if (shapesInSlot(system, manipulator, slot) > m_Manipulators[manipulator].shapes(slot)) return false;
    }
  }
  return true;
}

bool ZuShapePairLayout::fit(ZuManipulatorSystem const& system, bool nothingIsGivenUp) {
  ZuShapePairLayout fitted;
  ZuShapePairLayout const none;
  ZuShapePairLayout const& atLeast = nothingIsGivenUp ? *this : none;
  std::size_t const manipulators = std::max<std::size_t>(system.numberOfManipulators(), atLeast.numberOfBlocks());
  fitted.m_Manipulators.reserve(manipulators);
  while (fitted.numberOfBlocks() < manipulators) {
    if (!fitted.append(system, atLeast)) return false;
  }
  m_Manipulators.swap(fitted.m_Manipulators);
  return true;
}

/// Adds the next manipulator; false when its shapes or its records can't be counted.
bool ZuShapePairLayout::append(ZuManipulatorSystem const& system, ZuShapePairLayout const& atLeast) {
  std::size_t const block = numberOfBlocks();
  std::size_t const systemSlots = slotsOf(system, block);
  if (systemSlots > m_theMaximumLinks) return false;
  Manipulator const none;
  Manipulator const& before = block < atLeast.numberOfBlocks() ? atLeast.m_Manipulators[block] : none;
  Manipulator next;
  next.firstColumn = block == 0 ? 0 : rowSize(block - 1);
  std::uint64_t rows = 0;
  for (std::size_t slot = 0; slot < std::max(systemSlots, before.slots()); ++slot) {
    rows += std::max(slot < systemSlots ? shapesInSlot(system, block, slot) : 0, before.shapes(slot));
    if (rows > std::numeric_limits<unsigned int>::max()) return false;
    next.firstShape.push_back(static_cast<unsigned int>(rows));
  }
  std::uint64_t const columns = next.firstColumn + rows;
  if (rows != 0 && columns > std::numeric_limits<std::ptrdiff_t>::max() / rows) return false;
  m_Manipulators.push_back(std::move(next));
  return true;
}

bool ZuShapePairLayout::hasSameBlock(std::size_t block, ZuShapePairLayout const& other) const {
  return block < numberOfBlocks() && block < other.numberOfBlocks() &&
         std::equal(m_Manipulators.begin(), m_Manipulators.begin() + static_cast<std::ptrdiff_t>(block) + 1,
                    other.m_Manipulators.begin());
}
