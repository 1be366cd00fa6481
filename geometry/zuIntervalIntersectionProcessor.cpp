#include "geometry/zuIntervalIntersectionProcessor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"

ZuAxisAlignedBoundingBox ZuIntervalIntersectionProcessor::m_theDummyBoundingBox;

namespace {

using Box = ZuAxisAlignedBoundingBox;

unsigned int constexpr theBegin = ZuIntervalEndPoint::m_theBegin;
unsigned int constexpr theEnd = ZuIntervalEndPoint::m_theEnd;
double constexpr theInfinity = std::numeric_limits<double>::infinity();

/// A nan bound lies where it separates from nothing, as testIntersection() has it.
double plainMinimum(double minimum) { return std::isnan(minimum) ? -theInfinity : minimum; }
double plainMaximum(double maximum) { return std::isnan(maximum) ? theInfinity : maximum; }

/// An end as the first sort sees it. Equal begins, or equal ends, are ordered by box: the same list on every platform.
struct SortKey {
  double value;
  unsigned int rank;  ///< type in the top bit, index below

  bool operator<(SortKey const& other) const {
    return value < other.value || (value == other.value && rank < other.rank);
  }
};

}  // namespace

inline ZuIntervalIntersectionProcessor::Bounds::Bounds(Box const& box)
    : axes{{plainMinimum(box.minCorner().x()), plainMaximum(box.maxCorner().x())},
           {plainMinimum(box.minCorner().y()), plainMaximum(box.maxCorner().y())},
           {plainMinimum(box.minCorner().z()), plainMaximum(box.maxCorner().z())}} {}

/// Box::testIntersection(). Which axis separates is random, so the six comparisons cost less than a branch guessed
/// wrong.
inline bool ZuIntervalIntersectionProcessor::Bounds::meets(Bounds const& other) const {
  int apart = 0;
  for (int axis = 0; axis < 3; ++axis) {
    apart |= static_cast<int>(other.axes[axis].min > axes[axis].max) |
             static_cast<int>(axes[axis].min > other.axes[axis].max);
  }
  return apart == 0;
}

/// What the exchanges of one sort mean for pairs. Few of them make or break one, but to find out costs a read from
/// somewhere else in memory: so they are collected, and then those reads wait for memory together. Their order does not
/// matter: an end passes a begin only when the boxes are apart for good, and then no exchange can make them a pair.
class ZuIntervalIntersectionProcessor::Exchanges {
 public:
  explicit Exchanges(ZuIntervalIntersectionProcessor& processor) : m_Processor(processor) {}
  /// Moves the end at `place` left past all greater ones and returns where it stopped.
  std::size_t moveLeft(ZuIntervalEndPoint* list, std::size_t place) {
    ZuIntervalEndPoint const key = list[place];
    Batch& batch = key.m_Type == theBegin ? m_Begins : m_Ends;
    std::uint64_t const mover = std::uint64_t{key.m_Index} << 32;
    while (place > 0 && key < list[place - 1]) {
      if (batch.count == m_theBatchSize) key.m_Type == theBegin ? flushBegins() : flushEnds();
      unsigned int count = batch.count;
      do {
        ZuIntervalEndPoint const& passed = list[place - 1];
        // Only an end of the other type counts. No branch: types come in random order.
        batch.pairs[count] = mover | passed.m_Index;
        count += passed.m_Type ^ key.m_Type;
        list[place--] = passed;
      } while (count < m_theBatchSize && place > 0 && key < list[place - 1]);
      batch.count = count;
    }
    list[place] = key;
    return place;
  }

  /// To be called when the list is sorted.
  void flush() {
    flushBegins();
    flushEnds();
  }

 private:
  /// Pairs in a batch: enough to hide the wait for memory, few enough to stay in the first cache.
  static unsigned int constexpr m_theBatchSize = 256;
  struct Batch {
    unsigned int count = 0;
    std::uint64_t pairs[m_theBatchSize];  ///< the mover in the upper half, whom it passed in the lower
  };

  /// The mover begins now before the other box ends.
  void flushBegins() {
    std::vector<Bounds> const& bounds = m_Processor.m_Bounds;
    for (unsigned int k = 0; k < m_Begins.count; ++k) {
      auto const [mover, passed] = ZuPairTable::pair(m_Begins.pairs[k]);
      // A box that was inside out passes itself.
      if (bounds[mover].meets(bounds[passed]) && mover != passed) m_Processor.addPair(ZuPairTable::key(mover, passed));
    }
    m_Begins.count = 0;
  }
  /// The mover ends now before the other box begins.
  void flushEnds() {
    for (unsigned int k = 0; k < m_Ends.count; ++k) {
      auto const [mover, passed] = ZuPairTable::pair(m_Ends.pairs[k]);
      if (m_Processor.mayBePair(mover, passed)) m_Processor.removePair(ZuPairTable::key(mover, passed));
    }
    m_Ends.count = 0;
  }

  ZuIntervalIntersectionProcessor& m_Processor;
  Batch m_Begins, m_Ends;
};

/// Finds the pairs of boxes that overlap on all axes, from the sorted lists of ends.
///
/// Sweeps along the axis on which boxes overlap least (x when a box is broken; its pairs depend on the axis). Boxes
/// that overlap there meet while both are active. The active boxes are sorted by their interval on a second axis, in
/// ranks, which are places in that axis's list: a box of fewer than 2^l ranks is in level l, in the slab of 2^l ranks
/// in which it begins, so that it reaches into the next slab at most. What a newcomer can overlap on both axes is then
/// in the slabs of each level from the one before its begin to that of its end. Levels so fine that they would have
/// more than sqrt(2n) slabs are one, so that a newcomer visits O(sqrt(n)) slabs at most, and a few in practice.
class ZuIntervalIntersectionProcessor::Sweep {
 public:
  using Lists = EndPoints const* const[3];
  using Lookups = Lookup const* const[3];

  Sweep(Boxes const& boxes, Lists const& lists, Lookups const& lookups)
      : m_Boxes(boxes), m_Places(boxes.size(), m_theNowhere) {
    chooseAxes(lookups);
    m_Order = lists[m_Axes[0]];
    m_Ranks = lookups[m_Axes[1]];
    makeLevels();
  }

  /// The keys of the pairs.
  std::vector<std::uint64_t> pairs() {
    for (ZuIntervalEndPoint const& end : *m_Order) {
      if (end.m_Type == theBegin) {
        pairWithActive(end.m_Index);
        activate(end.m_Index);
      } else if (m_Places[end.m_Index] != m_theNowhere) {  // otherwise it ends before it begins, and stays active
        deactivate(end.m_Index);
      }
    }
    return std::move(m_Pairs);
  }

 private:
  static unsigned int constexpr m_theNowhere = std::numeric_limits<unsigned int>::max();
  /// An active box, with its bounds on the two axes across the sweep.
  struct Active {
    double min1, max1, min2, max2;
    unsigned int box;

    /// As Box::hasYOverlap() and its siblings: false for nan.
    bool overlaps(Active const& other) const {
      return static_cast<int>(max1 >= other.min1) & static_cast<int>(other.max1 >= min1) &
             static_cast<int>(max2 >= other.min2) & static_cast<int>(other.max2 >= min2);
    }
  };
  struct Level {
    unsigned int bits;       ///< a slab has 2^bits ranks
    std::size_t slabs;       ///< the first of its slabs in m_Active
    std::size_t active = 0;  ///< boxes in all of them
  };
  struct Ranks {
    unsigned int low, high;
  };

  Active active(unsigned int box) const {
    ZuVector const& min = m_Boxes[box].minCorner();
    ZuVector const& max = m_Boxes[box].maxCorner();
    return {min[m_Axes[1]], max[m_Axes[1]], min[m_Axes[2]], max[m_Axes[2]], box};
  }

  static bool isBroken(Box const& box) {
    ZuVector const& min = box.minCorner();
    ZuVector const& max = box.maxCorner();
    return !(min.x() <= max.x() && min.y() <= max.y() && min.z() <= max.z());
  }

  /// The axis of the sweep, that of the slabs, and the third.
  void chooseAxes(Lookups const& lookups) {
    double widths[3] = {};
    for (unsigned int axis = 0; axis < 3; ++axis) {
      Lookup const& lookup = *lookups[axis];
      for (std::size_t i = 0; i < lookup.size(); i += 2) {
        widths[axis] += std::abs(static_cast<double>(lookup[i + 1]) - static_cast<double>(lookup[i]));
      }
    }
    bool const keepX = std::any_of(m_Boxes.begin(), m_Boxes.end(), isBroken);
    std::sort(m_Axes + (keepX ? 1 : 0), m_Axes + 3,
              [&widths](unsigned int a, unsigned int b) { return widths[a] < widths[b]; });
  }

  void makeLevels() {
    std::size_t const ranks = m_Ranks->size();
    unsigned int bits = 0;
    while ((ranks >> bits) * (ranks >> bits) > ranks) ++bits;
    std::size_t slabs = 0;
    do {
      m_Levels.push_back({bits, slabs});
      slabs += (ranks >> bits) + 1;
    } while (ranks >> bits++ != 0);
    m_Active.resize(slabs);
  }

  Ranks ranks(unsigned int box) const {
    auto const [low, high] = std::minmax((*m_Ranks)[2 * std::size_t{box}], (*m_Ranks)[2 * std::size_t{box} + 1]);
    return {low, high};
  }
  Level& levelOf(Ranks const& ranks) {
    std::size_t level = 0;
    while ((ranks.high - ranks.low) >> m_Levels[level].bits != 0) ++level;
    return m_Levels[level];
  }

  void pairWithActive(unsigned int box) {
    Active const newcomer = active(box);
    auto const [low, high] = ranks(box);
    for (Level const& level : m_Levels) {
      if (level.active == 0) continue;
      std::size_t const begin = low >> level.bits;
      std::size_t const first = level.slabs + (begin == 0 ? 0 : begin - 1), last = level.slabs + (high >> level.bits);
      for (std::size_t slab = first; slab <= last; ++slab) {
        for (Active const& other : m_Active[slab]) {
          if (other.overlaps(newcomer)) m_Pairs.push_back(ZuPairTable::key(other.box, box));
        }
      }
    }
  }

  void activate(unsigned int box) {
    Ranks const boxRanks = ranks(box);
    Level& level = levelOf(boxRanks);
    std::vector<Active>& slab = m_Active[level.slabs + (boxRanks.low >> level.bits)];
    m_Places[box] = static_cast<unsigned int>(slab.size());
    slab.push_back(active(box));
    ++level.active;
  }

  void deactivate(unsigned int box) {
    Ranks const boxRanks = ranks(box);
    Level& level = levelOf(boxRanks);
    std::vector<Active>& slab = m_Active[level.slabs + (boxRanks.low >> level.bits)];
    m_Places[slab.back().box] = m_Places[box];
    slab[m_Places[box]] = slab.back();
    slab.pop_back();
    m_Places[box] = m_theNowhere;
    --level.active;
  }

  Boxes const& m_Boxes;
  unsigned int m_Axes[3] = {0, 1, 2};
  EndPoints const* m_Order = nullptr;
  Lookup const* m_Ranks = nullptr;
  std::vector<Level> m_Levels;
  std::vector<std::vector<Active>> m_Active;  ///< by slab
  std::vector<unsigned int> m_Places;         ///< of each active box in its slab
  std::vector<std::uint64_t> m_Pairs;
};

void ZuIntervalIntersectionProcessor::takeBoxes(Boxes const& boxes) {
  m_aabbs = boxes;
  std::size_t const count = m_aabbs.size();
  m_pairLists.assign(count, {});
  m_pairFlags.assign(count, {});
  m_intersectionsVec.reserve(count);
  sortEndPoints(0, m_xEndPoints, m_xLookup);
  sortEndPoints(1, m_yEndPoints, m_yLookup);
  sortEndPoints(2, m_zEndPoints, m_zLookup);
  m_Bounds = std::vector<Bounds>(m_aabbs.begin(), m_aabbs.end());
  std::vector<std::uint64_t> keys =
      Sweep(m_aabbs, {&m_xEndPoints, &m_yEndPoints, &m_zEndPoints}, {&m_xLookup, &m_yLookup, &m_zLookup}).pairs();
  takePairs(keys);
  // Nan was apart from everything; it separates from nothing from now on, as the next update() finds.
  for (unsigned int i = 0; i < count; ++i) {
    bool const hasNan = !(m_aabbs[i] == m_aabbs[i]);
    if (hasNan) writeBounds(i, m_aabbs[i]);
  }
  buildIntersectionVector();
}

/// An interval with a nan bound has no place in the order: it comes behind all others, and apart from them.
void ZuIntervalIntersectionProcessor::sortEndPoints(unsigned int axis, EndPoints& list, Lookup& lookup) const {
  std::vector<SortKey> keys, unordered;
  keys.reserve(2 * m_aabbs.size());
  for (unsigned int i = 0; i < m_aabbs.size(); ++i) {
    double const minimum = m_aabbs[i].minCorner()[axis], maximum = m_aabbs[i].maxCorner()[axis];
    std::vector<SortKey>& target = std::isnan(minimum) || std::isnan(maximum) ? unordered : keys;
    target.push_back({minimum, theBegin << 31 | i});
    target.push_back({maximum, theEnd << 31 | i});
  }
  std::sort(keys.begin(), keys.end());
  keys.insert(keys.end(), unordered.begin(), unordered.end());
  list.clear();
  list.reserve(keys.size());
  lookup.resize(keys.size());
  for (SortKey const& key : keys) {
    unsigned int const type = key.rank >> 31, index = key.rank & ~(1U << 31);
    lookup[2 * std::size_t{index} + type] = static_cast<unsigned int>(list.size());
    list.emplace_back(index, key.value, type);
  }
}

void ZuIntervalIntersectionProcessor::takePairs(std::vector<std::uint64_t>& keys) {
  std::sort(keys.begin(), keys.end());
  m_intersections.clear();
  m_PairTable.clear();
  m_PairTable.reserve(keys.size());
  for (std::uint64_t const key : keys) {
    m_intersections.insert(m_intersections.end(), ZuPairTable::pair(key));
    m_PairTable.insert(key);
  }
  refreshPartners();
}

void ZuIntervalIntersectionProcessor::updateAABB(ZuAxisAlignedBoundingBox const& box, unsigned int const& index) {
  if (index >= m_aabbs.size()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuIntervalIntersectionProcessor::updateAABB(): index (%d) out of range",
                                static_cast<int>(index));
    return;
  }
  writeBounds(index, box);
  m_aabbs[index] = box;
}

void ZuIntervalIntersectionProcessor::writeBounds(unsigned int index, Box const& box) {
  Bounds const bounds(box);
  std::size_t const begin = 2 * std::size_t{index} + theBegin, end = 2 * std::size_t{index} + theEnd;
  m_Bounds[index] = bounds;
  m_xEndPoints[m_xLookup[begin]].m_Value = bounds.axes[0].min;
  m_xEndPoints[m_xLookup[end]].m_Value = bounds.axes[0].max;
  m_yEndPoints[m_yLookup[begin]].m_Value = bounds.axes[1].min;
  m_yEndPoints[m_yLookup[end]].m_Value = bounds.axes[1].max;
  m_zEndPoints[m_zLookup[begin]].m_Value = bounds.axes[2].min;
  m_zEndPoints[m_zLookup[end]].m_Value = bounds.axes[2].max;
}

ZuAxisAlignedBoundingBox& ZuIntervalIntersectionProcessor::getAABB(unsigned int const& index) {
  if (index < m_aabbs.size()) return m_aabbs[index];
  if (!(m_theDummyBoundingBox == Box())) m_theDummyBoundingBox = Box();
  return m_theDummyBoundingBox;
}

ZuAxisAlignedBoundingBox const& ZuIntervalIntersectionProcessor::getAABB(unsigned int const& index) const {
  return index < m_aabbs.size() ? m_aabbs[index] : Box::nullObject();
}

void ZuIntervalIntersectionProcessor::update() {
  if (4 * m_RemovedPairs > m_Partners.size() + m_intersections.size()) refreshPartners();
  insertionSort(m_xEndPoints, m_xLookup);
  insertionSort(m_yEndPoints, m_yLookup);
  insertionSort(m_zEndPoints, m_zLookup);
}

/// The places of a run of moved ends are looked up anew once, when the run is over, and not at each exchange.
void ZuIntervalIntersectionProcessor::insertionSort(EndPoints& list, Lookup& lookup) {
  Exchanges exchanges(*this);
  std::size_t runBegin = 0, runEnd = 0;
  auto const closeRun = [&] {
    for (std::size_t place = runBegin; place < runEnd; ++place) {
      lookup[2 * std::size_t{list[place].m_Index} + list[place].m_Type] = static_cast<unsigned int>(place);
    }
  };
  for (std::size_t k = 1; k < list.size(); ++k) {
    if (!(list[k] < list[k - 1])) continue;
    std::size_t const place = exchanges.moveLeft(list.data(), k);
    if (place >= runEnd) {
      closeRun();
      runBegin = place;
    }
    runBegin = std::min(runBegin, place);
    runEnd = k + 1;
  }
  closeRun();
  exchanges.flush();
}

void ZuIntervalIntersectionProcessor::addPair(std::uint64_t key) {
  if (!m_PairTable.insert(key)) return;
  m_intersections.insert(ZuPairTable::pair(key));
  markPartners(ZuPairTable::pair(key));
}

void ZuIntervalIntersectionProcessor::removePair(std::uint64_t key) {
  if (!m_PairTable.erase(key)) return;
  m_intersections.erase(ZuPairTable::pair(key));
  ++m_RemovedPairs;
}

void ZuIntervalIntersectionProcessor::markPartners(Pair const& pair) {
  m_Partners[pair.first] |= std::uint64_t{1} << (pair.second % 64);
  m_Partners[pair.second] |= std::uint64_t{1} << (pair.first % 64);
}

void ZuIntervalIntersectionProcessor::refreshPartners() {
  m_Partners.assign(m_aabbs.size(), 0);
  m_RemovedPairs = 0;
  for (Pair const& pair : m_intersections) markPartners(pair);
}

bool ZuIntervalIntersectionProcessor::hasPairIndices(char const* function, Pair const& pair) const {
  if (pair.first < m_aabbs.size() && pair.second < m_aabbs.size()) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuIntervalIntersectionProcessor::%s-->pair (%u, %u) out of range",
                              function, pair.first, pair.second);
  return false;
}

void ZuIntervalIntersectionProcessor::insertPair(std::pair<unsigned int, unsigned int> const& pair) {
  if (!hasPairIndices("insertPair", pair)) return;
  std::vector<bool>& flags = m_pairFlags[pair.first];
  if (flags.empty()) flags.resize(m_aabbs.size());
  if (flags[pair.second]) return;
  m_pairLists[pair.first].push_back(pair.second);
  flags[pair.second] = true;
}

void ZuIntervalIntersectionProcessor::deletePair(std::pair<unsigned int, unsigned int> const& pair) {
  if (!hasPairIndices("deletePair", pair)) return;
  std::vector<bool>& flags = m_pairFlags[pair.first];
  if (flags.empty() || !flags[pair.second]) return;
  std::vector<unsigned int>& list = m_pairLists[pair.first];
  auto const found = std::find(list.begin(), list.end(), pair.second);
  if (found == list.end()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuIntervalIntersectionProcessor::deletePair--Entry not found");
    return;
  }
  *found = list.back();
  list.pop_back();
  flags[pair.second] = false;
}

void ZuIntervalIntersectionProcessor::buildIntersectionVector() {
  m_intersectionsVec.clear();
  for (unsigned int i = 0; i < m_pairLists.size(); ++i) {
    for (unsigned int const j : m_pairLists[i]) m_intersectionsVec.emplace_back(i, j);
  }
}

bool ZuIntervalIntersectionProcessor::hasValidList(unsigned int axis, EndPoints const& list,
                                                   Lookup const& lookup) const {
  if (list.size() != 2 * m_aabbs.size() || lookup.size() != list.size()) return false;
  if (!std::is_sorted(list.begin(), list.end())) return false;
  auto const holds = [&](std::size_t entry, unsigned int type, double value) {
    ZuIntervalEndPoint const end(static_cast<unsigned int>(entry / 2), value, type);
    return lookup[entry] < list.size() && list[lookup[entry]] == end;
  };
  for (std::size_t i = 0; i < m_aabbs.size(); ++i) {
    Bounds const bounds(m_aabbs[i]);
    if (!holds(2 * i, theBegin, bounds.axes[axis].min) || !holds(2 * i + 1, theEnd, bounds.axes[axis].max))
      return false;
    if (m_Bounds[i].axes[axis].min != bounds.axes[axis].min) return false;
    if (m_Bounds[i].axes[axis].max != bounds.axes[axis].max) return false;
  }
  return true;
}

bool ZuIntervalIntersectionProcessor::validate() const {
  if (!hasValidList(0, m_xEndPoints, m_xLookup) || !hasValidList(1, m_yEndPoints, m_yLookup) ||
      !hasValidList(2, m_zEndPoints, m_zLookup)) {
    return false;
  }
  for (std::size_t i = 0; i < m_pairLists.size(); ++i) {
    for (unsigned int const j : m_pairLists[i]) {
      if (m_pairFlags[i].empty() || !m_pairFlags[i][j]) return false;
    }
    auto const flagged = std::count(m_pairFlags[i].begin(), m_pairFlags[i].end(), true);
    if (static_cast<std::size_t>(flagged) != m_pairLists[i].size()) return false;
  }
  auto const isInTable = [this](Pair const& pair) {
    return pair.first < pair.second && m_PairTable.contains(ZuPairTable::key(pair.first, pair.second)) &&
           mayBePair(pair.first, pair.second) && mayBePair(pair.second, pair.first);
  };
  return m_PairTable.size() == m_intersections.size() &&
         std::all_of(m_intersections.begin(), m_intersections.end(), isInTable);
}

bool ZuIntervalIntersectionProcessor::operator==(ZuIntervalIntersectionProcessor const& other) const {
  return m_aabbs == other.m_aabbs && m_xEndPoints == other.m_xEndPoints && m_yEndPoints == other.m_yEndPoints &&
         m_zEndPoints == other.m_zEndPoints && m_intersections == other.m_intersections;
}

bool ZuIntervalIntersectionProcessor::selfTest() const {
  std::unique_ptr<ZuXmlObject> const copy(clone());
  return validate() && equality(copy.get()) && !(testObject() == nullObject());
}

ZuToken const& ZuIntervalIntersectionProcessor::classToken() { return ZuGeom::ZuIntervalIntersectionProcessorToken; }

ZuIntervalIntersectionProcessor ZuIntervalIntersectionProcessor::testObject() {
  Boxes boxes;
  boxes.pushBack({0.0, 1.0, 0.0, 1.0, 0.0, 1.0});
  boxes.pushBack({0.5, 2.0, 0.0, 2.0, -1.0, 1.0});
  boxes.pushBack({5.0, 6.0, 5.0, 6.0, 5.0, 6.0});
  ZuIntervalIntersectionProcessor processor(boxes);
  processor.insertPair({0, 1});
  processor.buildIntersectionVector();
  return processor;
}
