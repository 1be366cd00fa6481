// zuPairTable.h - set of index pairs, for membership tests in inner loops. Group: broad phase.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// A set of unordered pairs of indices, as a hash table: one probe of a flat array instead of a walk down a tree.
///
/// Open addressing with linear probing (Knuth, section 6.4, algorithms L and R): at most half of the slots are taken,
/// and a removal closes the gap, so that removals leave no marks behind. The pair (2^32 - 1, 2^32 - 1) can't be held.
/// Allocates on growth only. A plain value; as thread-safe as a vector.
class ZuPairTable {
 public:
  /// The pair as one number, the smaller index in the upper half: keys sort as pairs do.
  static std::uint64_t key(unsigned int a, unsigned int b) {
    return a < b ? std::uint64_t{a} << 32 | b : std::uint64_t{b} << 32 | a;
  }
  static std::pair<unsigned int, unsigned int> pair(std::uint64_t key) {
    return {static_cast<unsigned int>(key >> 32), static_cast<unsigned int>(key)};
  }

  std::size_t size() const { return m_Size; }
  bool contains(std::uint64_t key) const { return m_Size != 0 && m_Slots[find(key)] == key; }
  /// False when the pair was there.
  bool insert(std::uint64_t key) {
    if (2 * (m_Size + 1) > m_Slots.size()) reserve(2 * m_Size + 8);
    std::uint64_t& slot = m_Slots[find(key)];
    if (slot == key) return false;
    slot = key;
    ++m_Size;
    return true;
  }
  /// False when the pair was not there.
  bool erase(std::uint64_t key) {
    if (!contains(key)) return false;
    closeGap(find(key));
    --m_Size;
    return true;
  }
  /// Keeps the memory.
  void clear() {
    m_Slots.assign(m_Slots.size(), m_theEmpty);
    m_Size = 0;
  }
  /// Makes room for as many pairs.
  void reserve(std::size_t pairs) {
    std::size_t slots = 16;
    while (slots < 2 * pairs) slots *= 2;
    if (slots <= m_Slots.size()) return;
    std::vector<std::uint64_t> const old(std::exchange(m_Slots, std::vector<std::uint64_t>(slots, m_theEmpty)));
    for (m_Shift = 64; slots > 1; slots /= 2) --m_Shift;
    for (std::uint64_t const key : old) {
      if (key != m_theEmpty) m_Slots[find(key)] = key;
    }
  }

 private:
  static std::uint64_t constexpr m_theEmpty = ~std::uint64_t{0};

  /// Where the pair belongs: the top bits of a product with 2^64 divided by the golden ratio (Knuth, section 6.4).
  std::size_t home(std::uint64_t key) const { return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15U >> m_Shift); }
  std::size_t next(std::size_t slot) const { return (slot + 1) & (m_Slots.size() - 1); }
  /// The slot of the pair, or the empty one where it would go.
  std::size_t find(std::uint64_t key) const {
    std::size_t slot = home(key);
    while (m_Slots[slot] != key && m_Slots[slot] != m_theEmpty) slot = next(slot);
    return slot;
  }
  /// Moves a later pair of the run into the gap unless its home lies behind the gap, and so on from where it was.
  void closeGap(std::size_t gap) {
    for (std::size_t slot = next(gap); m_Slots[slot] != m_theEmpty; slot = next(slot)) {
      std::size_t const mask = m_Slots.size() - 1;
      bool const reachesGap = ((slot - home(m_Slots[slot])) & mask) >= ((slot - gap) & mask);
      if (!reachesGap) continue;
      m_Slots[gap] = m_Slots[slot];
      gap = slot;
    }
    m_Slots[gap] = m_theEmpty;
  }

  std::vector<std::uint64_t> m_Slots;
  std::size_t m_Size = 0;
  unsigned int m_Shift = 64;  ///< 64 minus the bits of a slot number
};
