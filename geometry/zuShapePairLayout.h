// zuShapePairLayout.h - where the record of a pair of shapes stands. Group: proximity memory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "foundation/zuManipulatorSystem.h"
#include "geometry/zuShapeStateCacheKey.h"

/// Numbers the pairs of shapes of a system, so that one array of records per manipulator holds them without gaps.
///
/// The shapes of a manipulator are numbered link slot after link slot: its rows, or its columns. The block of a
/// manipulator has a row for each of its shapes, and in each row a column for each shape of every manipulator up to and
/// including itself. Pairs whose first manipulator id is the smaller one thus have no place: keys are put in order
/// before they are looked up. Within one manipulator both orders of a pair have a place.
///
/// The slot of a link is its id + 1; slot 0 is that of the reserved link 4294967294. A link id of none has no slot.
/// Memory: 4 bytes per link slot and 40 per manipulator. Looking up never allocates.
class ZU_API ZuShapePairLayout {
 public:
  /// Links of one manipulator that are believed: a system that claims more has no layout. Each takes four bytes.
  static constexpr std::size_t m_theMaximumLinks = std::size_t{1} << 24;

  struct Place {
    std::size_t block;  ///< the first manipulator id
    std::size_t index;  ///< in the block
  };

  ZuShapePairLayout() = default;

  /// Becomes the layout of the system: of what it has now, or, when nothing is to be given up, with at least as many
  /// shapes for each link as before. False when the pairs can't be numbered; nothing changes then. Throws
  /// std::bad_alloc or std::length_error when there is no memory.
  bool fit(ZuManipulatorSystem const& system, bool nothingIsGivenUp);
  /// True when every shape of the system has its places. Allocates nothing.
  bool covers(ZuManipulatorSystem const& system) const;

  std::size_t numberOfBlocks() const { return m_Manipulators.size(); }
  /// The number of records of the block.
  std::size_t blockSize(std::size_t block) const { return m_Manipulators[block].rows() * rowSize(block); }

  /// Whether the pair has a place. Six indexings.
  bool find(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2, Place& place) const {
    std::size_t row, column;
    if (!find(key1, row) || !find(key2, column)) return false;
    std::size_t const block = manipulatorOf(key1), columnBlock = manipulatorOf(key2);
    if (columnBlock > block) return false;
    place = {block, row * rowSize(block) + m_Manipulators[columnBlock].firstColumn + column};
    return true;
  }

  /// True when the block stands in both layouts and all its places are the same.
  bool hasSameBlock(std::size_t block, ZuShapePairLayout const& other) const;

  /// Calls run(indexHere, indexThere, count) for the consecutive records of the block that have a place in both
  /// layouts.
  template <class Run>
  void forEachCommonRun(std::size_t block, ZuShapePairLayout const& there, Run&& run) const {
    for (std::size_t slot = 0; slot < commonSlots(block, there); ++slot) {
      std::size_t const rowHere = m_Manipulators[block].firstShape[slot];
      std::size_t const rowThere = there.m_Manipulators[block].firstShape[slot];
      for (std::size_t shape = 0; shape < commonShapes(block, slot, there); ++shape) {
        forEachCommonRunOfRow((rowHere + shape) * rowSize(block), (rowThere + shape) * there.rowSize(block), block,
                              there, run);
      }
    }
  }

  bool operator==(ZuShapePairLayout const& other) const { return m_Manipulators == other.m_Manipulators; }

 private:
  struct Manipulator {
    std::size_t firstColumn = 0;              ///< the number of shapes of all manipulators before
    std::vector<unsigned int> firstShape{0};  ///< by link slot, the number of shapes in the slots before; then of all

    std::size_t slots() const { return firstShape.size() - 1; }
    std::size_t rows() const { return firstShape.back(); }
    /// 0 for a slot that the manipulator does not have.
    unsigned int shapes(std::size_t slot) const { return slot < slots() ? firstShape[slot + 1] - firstShape[slot] : 0; }
    bool operator==(Manipulator const& other) const {
      return firstColumn == other.firstColumn && firstShape == other.firstShape;
    }
  };

  // Qualified: the keys of a lookup are read without virtual calls.
  static std::size_t manipulatorOf(ZuShapeStateCacheKey const& key) {
    return key.ZuManipulatorStateCacheKey::manipID();
  }
  bool find(ZuShapeStateCacheKey const& key, std::size_t& shape) const {
    std::size_t const manipulator = manipulatorOf(key);
    if (manipulator >= m_Manipulators.size()) return false;
    unsigned int const link = key.ZuLinkStateCacheKey::linkID();
    if (link == theZuNoIndex) return false;  // its slot would wrap round to 0 where std::size_t has 32 bits
    std::size_t const slot = link == ZuManipulatorSystem::m_theReservedLink ? 0 : static_cast<std::size_t>(link) + 1;
    unsigned int const id = key.ZuShapeStateCacheKey::shapeID();
    if (id >= m_Manipulators[manipulator].shapes(slot)) return false;
    shape = static_cast<std::size_t>(m_Manipulators[manipulator].firstShape[slot]) + id;
    return true;
  }

  std::size_t rowSize(std::size_t block) const {
    return m_Manipulators[block].firstColumn + m_Manipulators[block].rows();
  }
  std::size_t commonSlots(std::size_t manipulator, ZuShapePairLayout const& there) const {
    return std::min(m_Manipulators[manipulator].slots(), there.m_Manipulators[manipulator].slots());
  }
  std::size_t commonShapes(std::size_t manipulator, std::size_t slot, ZuShapePairLayout const& there) const {
    return std::min(m_Manipulators[manipulator].shapes(slot), there.m_Manipulators[manipulator].shapes(slot));
  }
  template <class Run>
  void forEachCommonRunOfRow(std::size_t rowHere, std::size_t rowThere, std::size_t block,
                             ZuShapePairLayout const& there, Run&& run) const {
    for (std::size_t manipulator = 0; manipulator <= block; ++manipulator) {
      Manipulator const& here = m_Manipulators[manipulator];
      Manipulator const& other = there.m_Manipulators[manipulator];
      for (std::size_t slot = 0; slot < commonSlots(manipulator, there); ++slot) {
        run(rowHere + here.firstColumn + here.firstShape[slot], rowThere + other.firstColumn + other.firstShape[slot],
            commonShapes(manipulator, slot, there));
      }
    }
  }

  bool append(ZuManipulatorSystem const& system, ZuShapePairLayout const& atLeast);

  std::vector<Manipulator> m_Manipulators;
};
