// zuBaseShapeDataCache.h - one record for each pair of shapes of a system. Group: proximity memory.
#pragma once

#include <new>
#include <stdexcept>
#include <vector>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlCompoundType.h"
#include "geometry/zuShapePairLayout.h"

/// Holds one T for each pair of shapes that the keys can address in a system, by [first manipulator id][second
/// manipulator id][first link slot][second link slot][first shape id][second shape id]. T is copyable and
/// default-constructible, moves without throwing, and compares with ==.
///
/// Before a lookup the keys are put in order, the larger manipulator id first, so pairs of different manipulators have
/// one record whichever way round they are asked for; only those are allocated, see ZuShapePairLayout. Pairs within one
/// manipulator have a record for each order. A record does not know in which order it was stored: ask each pair always
/// in the same order if T has a direction.
///
/// Looking up costs six indexings and no allocation. Growing keeps all records and moves them: pointers into the cache
/// hold until the next operation that sizes it. The const operations change records too; a cache serves one thread at a
/// time. Copying copies all records. It has no components: it writes an empty element and reads to its default.
template <class T>
class ZU_API ZuBaseShapeDataCache : public ZuXmlCompoundType {
 public:
  /// A default T, which datum() gives for a pair without record; getData() gives null.
  static T const m_theNullDatum;

  /// Grows the cache to the system, keeping all records, and then does what setData() does.
  virtual bool allocateAndSetData(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2,
                                  ZuManipulatorSystem const& system, T const& data) const {
    fitTo(system, true);
    return setData(key1, key2, data);
  }
  /// Grows the cache to the system, keeping all records, and then does what getData() does. Costs a visit of every link
  /// of the system, and no allocation, when the cache is large enough.
  virtual T const* allocateAndGetData(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2,
                                      ZuManipulatorSystem const& system) const {
    fitTo(system, true);
    return getData(key1, key2);
  }
  /// Stores a copy in the record of the pair; false when the pair has none.
  virtual bool setData(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2, T const& data) const {
    T* const record = find(key1, key2);
    if (record != nullptr) *record = data;
    return record != nullptr;
  }
  /// The record of the pair. Null when a key is the invalid key or has an id beyond the arrays.
  virtual T const* getData(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2) const {
    return find(key1, key2);
  }
  /// Leaves the indices as they are; always true.
  virtual bool makeIndicesCompatible(unsigned int&, unsigned int&) const { return true; }
  /// Exchanges the keys when the first manipulator id is smaller than the second; always true.
  virtual bool makeKeysCompatible(ZuShapeStateCacheKey& key1, ZuShapeStateCacheKey& key2) const {
    if (key1.manipID() < key2.manipID()) std::swap(key1, key2);
    return true;
  }
  virtual T* allocateAndGetData(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2,
                                ZuManipulatorSystem const& system) {
    fitTo(system, true);
    return getData(key1, key2);
  }
  virtual T* getData(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2) { return find(key1, key2); }

  /// The record of the pair, or what stands for a missing one.
  T const& datum(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2,
                 T const& missing = m_theNullDatum) const {
    T const* const record = getData(key1, key2);
    return record != nullptr ? *record : missing;
  }

 protected:
  ZuBaseShapeDataCache() = default;
  ZuBaseShapeDataCache(ZuBaseShapeDataCache const&) = default;
  ZuBaseShapeDataCache& operator=(ZuBaseShapeDataCache const&) = default;

  bool operator==(ZuBaseShapeDataCache const& other) const {
    return m_IsBuilt == other.m_IsBuilt && m_Layout == other.m_Layout && m_Blocks == other.m_Blocks;
  }

  /// Sizes all arrays to the system, or to the larger of it and what is there. Records that have a place before and
  /// after keep their values, new ones are default. False, with a message, when there is no memory: nothing changes.
  bool fitTo(ZuManipulatorSystem const& system, bool nothingIsGivenUp) const {
    if (nothingIsGivenUp && m_IsBuilt && m_Layout.covers(system)) return true;
    try {
      ZuShapePairLayout layout(m_Layout);
      if (layout.fit(system, nothingIsGivenUp)) {
        moveTo(layout);
        m_IsBuilt = true;
        return true;
      }
    } catch (std::bad_alloc const&) {
    } catch (std::length_error const&) {
    }
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuBaseShapeDataCache::fitTo-->no memory for the pairs of %u manipulators",
                                system.numberOfManipulators());
    return false;
  }

  /// Whether the arrays were ever sized, unless a derived class says otherwise.
  mutable bool m_IsBuilt = false;

 private:
  T* find(ZuShapeStateCacheKey const& key1, ZuShapeStateCacheKey const& key2) const {
    if (key1 == ZuShapeStateCacheKey::invalidKey() || key2 == ZuShapeStateCacheKey::invalidKey()) return nullptr;
    ZuShapeStateCacheKey first(key1), second(key2);
    ZuShapePairLayout::Place place;
    if (!makeKeysCompatible(first, second) || !m_Layout.find(first, second, place)) return nullptr;
    return &m_Blocks[place.block][place.index];
  }

  /// Everything that can throw comes first.
  void moveTo(ZuShapePairLayout& layout) const {
    if (layout == m_Layout) return;
    std::vector<std::vector<T>> blocks(layout.numberOfBlocks());
    for (std::size_t block = 0; block < blocks.size(); ++block) {
      if (!m_Layout.hasSameBlock(block, layout)) blocks[block].resize(layout.blockSize(block));
    }
    for (std::size_t block = 0; block < std::min(blocks.size(), m_Blocks.size()); ++block) {
      if (m_Layout.hasSameBlock(block, layout)) {
        blocks[block].swap(m_Blocks[block]);
        continue;
      }
      m_Layout.forEachCommonRun(block, layout, [&](std::size_t from, std::size_t to, std::size_t count) {
        T* const source = m_Blocks[block].data() + from;
        std::move(source, source + count, blocks[block].data() + to);
      });
    }
    m_Blocks.swap(blocks);
    std::swap(m_Layout, layout);
  }

  mutable ZuShapePairLayout m_Layout;
  mutable std::vector<std::vector<T>> m_Blocks;  ///< by first manipulator id
};

template <class T>
T const ZuBaseShapeDataCache<T>::m_theNullDatum{};
