// zuCompressedLists.h - lists of lists in two arrays. Group: meshes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

/// Looks at items side by side in memory; valid as long as whoever holds them leaves them alone.
template <class T>
class ZuListView {
 public:
  ZuListView() = default;
  ZuListView(T const* items, std::size_t size) : m_Items(items), m_Size(size) {}

  std::size_t size() const { return m_Size; }
  bool empty() const { return m_Size == 0; }
  /// The index is not checked.
  T const& operator[](std::size_t i) const { return m_Items[i]; }
  T const* begin() const { return m_Items; }
  T const* end() const { return m_Items + m_Size; }

 private:
  T const* m_Items = nullptr;
  std::size_t m_Size = 0;
};

/// A list of lists that is built once and read often: all items in one array, and where each list starts in another.
/// Indices are not checked. An empty one owns no memory.
template <class T>
class ZuCompressedLists {
 public:
  std::size_t size() const { return m_Starts.empty() ? 0 : m_Starts.size() - 1; }
  bool empty() const { return size() == 0; }
  ZuListView<T> operator[](std::size_t i) const {
    return {m_Items.data() + m_Starts[i], static_cast<std::size_t>(m_Starts[i + 1] - m_Starts[i])};
  }
  bool operator==(ZuCompressedLists const& other) const {
    return m_Items == other.m_Items && (empty() ? other.empty() : m_Starts == other.m_Starts);
  }
  void set(std::size_t i, std::size_t k, T const& item) { m_Items[m_Starts[i] + k] = item; }
  void reverse(std::size_t i) { std::reverse(m_Items.data() + m_Starts[i], m_Items.data() + m_Starts[i + 1]); }

  void clear() { *this = ZuCompressedLists(); }
  /// Of all lists together.
  std::size_t numberOfItems() const { return m_Items.size(); }
  void reserve(std::size_t lists, std::size_t items) {
    m_Starts.reserve(lists + 1);
    m_Items.reserve(items);
  }

  /// Appends an empty list; pushBack() then appends to it.
  void beginList() {
    if (m_Starts.empty()) m_Starts.push_back(0);
    m_Starts.push_back(m_Starts.back());
  }
  void pushBack(T const& item) {
    m_Items.push_back(item);
    ++m_Starts.back();
  }
  /// Appends a whole list.
  void append(ZuListView<T> items) {
    beginList();
    for (T const& item : items) pushBack(item);
  }

 private:
  std::vector<unsigned int> m_Starts;
  std::vector<T> m_Items;
};

/// Builds compressed lists out of order: the sizes, or bounds of them, are announced first; then items are added to any
/// list.
template <class T>
class ZuCompressedListsBuilder {
 public:
  explicit ZuCompressedListsBuilder(std::size_t lists) : m_Starts(lists + 1, 0), m_Sizes(lists, 0) {}

  /// Makes room for one more item of the list.
  void announce(std::size_t list) { ++m_Starts[list + 1]; }
  void endAnnouncing() {
    for (std::size_t i = 1; i < m_Starts.size(); ++i) m_Starts[i] += m_Starts[i - 1];
    m_Items.resize(m_Starts.back());
  }
  /// Appends an item that has been announced.
  void add(std::size_t list, T const& item) { m_Items[m_Starts[list] + m_Sizes[list]++] = item; }
  ZuListView<T> list(std::size_t i) const { return {m_Items.data() + m_Starts[i], m_Sizes[i]}; }

  ZuCompressedLists<T> lists() const {
    ZuCompressedLists<T> result;
    result.reserve(m_Sizes.size(), m_Items.size());
    for (std::size_t i = 0; i < m_Sizes.size(); ++i) {
      result.beginList();
      for (T const& item : list(i)) result.pushBack(item);
    }
    return result;
  }

 private:
  std::vector<unsigned int> m_Starts;
  std::vector<unsigned int> m_Sizes;
  std::vector<T> m_Items;
};
