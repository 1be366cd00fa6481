// zuIntervalIntersectionProcessor.h - the pairs of boxes that intersect, kept current. Group: broad phase.
#pragma once

#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "foundation/zuXmlCompoundType.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuIntervalEndPoint.h"
#include "geometry/zuPairTable.h"

/// Broad phase by sweep and prune: which of n boxes in one frame intersect, touching included, as the boxes move.
///
/// Use: initialize(boxes) once; in each step updateAABB(box, i) for every box that moved, then one update(); then read
/// intersections(). The ends of all boxes are kept in one sorted list per axis; update() repairs the order by exchanges
/// of neighbours, and only an exchange of a begin with an end can make or break a pair.
///
/// Guarantees, for boxes with minimum <= maximum:
/// 1. After initialize() and after each update(), intersections() holds exactly the pairs (i, j), i < j, for which
///    testIntersection() is true, provided that every box that moved was passed to updateAABB().
/// 2. update() costs one comparison per end, and one move per exchange; an exchange of a begin with an end costs a test
///    of two boxes besides, or of a bit and sometimes a look-up. It allocates only to add a pair. Boxes that move far
///    make up to 6 n^2 exchanges: then initialize() is faster.
/// 3. initialize() costs n log n for the lists, and for each box at most sqrt(n) steps and a look at the boxes that
///    overlap it, or nearly, on the two axes on which boxes overlap least. Memory is linear in boxes and pairs.
///
/// There are two records of pairs, independent of each other: intersections(), which initialize() and update() keep;
/// and the caller's own, directed pairs, which only insertPair() and deletePair() change (initialize() empties it) and
/// buildIntersectionVector() lists in intersectionsVec().
///
/// Broken boxes neither hang nor crash, and never spoil the pairs of others:
/// - A nan bound. initialize() pairs the box with none (nan overlaps nothing, see hasYOverlap()). From the next
/// update()
///   on the bound separates from nothing, as for testIntersection(), and guarantee 1 holds: a broken box is tested, not
///   lost.
/// - minimum > maximum. When on x, initialize() pairs the box with every box that begins later and overlaps it on y and
///   z. Otherwise the pairs are those that exchanges make and break: a begin that passes an end makes one when
///   testIntersection() is true, an end that passes a begin breaks it.
///
/// Nothing persists: the document of a processor is an empty element. Fewer than 2^30 boxes. Copies are deep. One
/// thread at a time; const operations are safe from several.
class ZU_API ZuIntervalIntersectionProcessor : public ZuXmlClass<ZuIntervalIntersectionProcessor, ZuXmlCompoundType> {
 public:
  using Boxes = ZuXmlVectorType<ZuAxisAlignedBoundingBox>;
  using Pair = std::pair<unsigned int, unsigned int>;

  /// What getAABB() refers to when there is no such box: a default box.
  static ZuAxisAlignedBoundingBox m_theDummyBoundingBox;

  ZuIntervalIntersectionProcessor() = default;
  explicit ZuIntervalIntersectionProcessor(Boxes const& boxes) { takeBoxes(boxes); }

  virtual ZuToken const& token() const { return classToken(); }
  /// Replaces everything by these boxes and their pairs; the caller's own pairs are gone.
  virtual void initialize(ZuXmlVectorType<ZuAxisAlignedBoundingBox> const& boxes) { takeBoxes(boxes); }
  /// Moves box `index`. The pairs are those of before until update(). A wrong index prints a message, and nothing
  /// changes.
  virtual void updateAABB(ZuAxisAlignedBoundingBox const& box, unsigned int const& index);
  /// The stored box, for reading: to change it through the reference moves nothing, see updateAABB(). For a wrong
  /// index m_theDummyBoundingBox, restored to its default.
  virtual ZuAxisAlignedBoundingBox& getAABB(unsigned int const& index);
  /// Brings the pairs up to date with the boxes.
  virtual void update();
  /// The pairs of boxes that intersect, smaller index first, in lexicographic order.
  virtual std::set<std::pair<unsigned int, unsigned int>> const& intersections() const { return m_intersections; }
  /// The caller's own pairs as of the last buildIntersectionVector(); initialize() calls that.
  virtual std::vector<std::pair<unsigned int, unsigned int>> const& intersectionsVec() const {
    return m_intersectionsVec;
  }
  /// Lists the caller's own pairs by first index; those of one first index in the order of their record.
  virtual void buildIntersectionVector();
  /// Takes the pair out of the caller's own pairs, if it is there; the last of its row takes its place.
  virtual void deletePair(std::pair<unsigned int, unsigned int> const& pair);
  /// Adds the pair to the caller's own pairs unless it is there. Directed: (i, j) is not (j, i). The first pair of a
  /// row i costs n bits. For both: a wrong index prints a message, and nothing changes.
  virtual void insertPair(std::pair<unsigned int, unsigned int> const& pair);

  ZuAxisAlignedBoundingBox const& getAABB(unsigned int const& index) const;

  /// True when the lists are sorted, hold the boxes' coordinates and are found by the look-ups, and each record of
  /// pairs agrees with itself. Between updateAABB() and update() it may be false, and so after initialize() with nan.
  bool validate() const;

  /// Same boxes, same lists of ends, same pairs that intersect.
  bool operator==(ZuIntervalIntersectionProcessor const& other) const;

  // See ZuXmlObject. The processor doesn't persist, so a document read back proves nothing here.
  bool selfTest() const override;

  static ZuToken const& classToken();
  static ZuIntervalIntersectionProcessor testObject();

 private:
  class Sweep;
  class Exchanges;
  struct Bounds {
    explicit Bounds(ZuAxisAlignedBoundingBox const& box);
    bool meets(Bounds const& other) const;
    struct Interval {
      double min, max;
    } axes[3];
  };
  using EndPoints = std::vector<ZuIntervalEndPoint>;
  using Lookup = std::vector<unsigned int>;

  void takeBoxes(Boxes const& boxes);
  void sortEndPoints(unsigned int axis, EndPoints& list, Lookup& lookup) const;
  void writeBounds(unsigned int index, ZuAxisAlignedBoundingBox const& box);
  void takePairs(std::vector<std::uint64_t>& keys);

  void insertionSort(EndPoints& list, Lookup& lookup);
  void addPair(std::uint64_t key);
  bool mayBePair(unsigned int box, unsigned int other) const { return (m_Partners[box] >> (other % 64) & 1) != 0; }
  void removePair(std::uint64_t key);
  void markPartners(Pair const& pair);
  void refreshPartners();

  bool hasPairIndices(char const* function, Pair const& pair) const;
  bool hasValidList(unsigned int axis, EndPoints const& list, Lookup const& lookup) const;

  Boxes m_aabbs;
  EndPoints m_xEndPoints, m_yEndPoints, m_zEndPoints;
  /// Entry 2 i + type is the place of that end of box i in the list of the axis.
  Lookup m_xLookup, m_yLookup, m_zLookup;
  std::set<Pair> m_intersections;
  std::vector<std::vector<unsigned int>> m_pairLists;
  std::vector<Pair> m_intersectionsVec;
  /// Bit j of row i: j is in m_pairLists[i]. A row is empty until its first pair.
  std::vector<std::vector<bool>> m_pairFlags;
  /// The boxes as their ends are listed: a third of the memory to read for a test of two boxes.
  std::vector<Bounds> m_Bounds;
  /// The pairs of m_intersections: most exchanges of a begin with an end concern boxes that are no pair.
  ZuPairTable m_PairTable;
  /// Bit j % 64 of entry i: box i and some box j may be a pair. Bits of pairs that are no more stay until there are
  /// many; most look-ups in the table are saved by one bit of the box that moves.
  std::vector<std::uint64_t> m_Partners;
  std::size_t m_RemovedPairs = 0;  ///< since the bits were right
};
