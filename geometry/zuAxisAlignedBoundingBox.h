// zuAxisAlignedBoundingBox.h - box along the axes of its frame. Group: boxes.
#pragma once

#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"
#include "foundation/zuXmlVectorType.h"

class ZuCapsule;

/// The closed box minCorner <= p <= maxCorner; the origin by default.
///
/// Nothing enforces minCorner <= maxCorner: a box with a minimum above a maximum is kept as it is, and what that means
/// is up to the operations. 104 bytes; copying allocates nothing. Const operations are safe from several threads.
class ZU_API ZuAxisAlignedBoundingBox : public ZuXmlClass<ZuAxisAlignedBoundingBox, ZuXmlCompoundType> {
 public:
  using Boxes = ZuXmlVectorType<ZuAxisAlignedBoundingBox>;

  ZuAxisAlignedBoundingBox() = default;
  ZuAxisAlignedBoundingBox(double xMin, double xMax, double yMin, double yMax, double zMin, double zMax)
      : m_Min(ZuVector(xMin, yMin, zMin)), m_Max(ZuVector(xMax, yMax, zMax)) {}
  ZuAxisAlignedBoundingBox(ZuVector const& minCorner, ZuVector const& maxCorner) : m_Min(minCorner), m_Max(maxCorner) {}
  /// The smallest box around all boxes; the default box when there are none.
  explicit ZuAxisAlignedBoundingBox(Boxes const& boxes) { resizeAround(boxes); }

  ZuVector const& minCorner() const { return m_Min; }
  ZuVector const& maxCorner() const { return m_Max; }
  void setCorners(ZuVector const& minCorner, ZuVector const& maxCorner) {
    m_Min = minCorner;
    m_Max = maxCorner;
  }

  virtual double xMin() const { return minCorner().x(); }
  virtual void setXMin(double const& x) { m_Min = ZuVector(x, yMin(), zMin()); }
  virtual double xMax() const { return maxCorner().x(); }
  virtual void setXMax(double const& x) { m_Max = ZuVector(x, yMax(), zMax()); }
  virtual double yMin() const { return minCorner().y(); }
  virtual void setYMin(double const& y) { m_Min = ZuVector(xMin(), y, zMin()); }
  virtual double yMax() const { return maxCorner().y(); }
  virtual void setYMax(double const& y) { m_Max = ZuVector(xMax(), y, zMax()); }
  virtual double zMin() const { return minCorner().z(); }
  virtual void setZMin(double const& z) { m_Min = ZuVector(xMin(), yMin(), z); }
  virtual double zMax() const { return maxCorner().z(); }
  virtual void setZMax(double const& z) { m_Max = ZuVector(xMax(), yMax(), z); }

  /// True when the intervals of the boxes on that axis share a point; touching counts. False when a bound is nan.
  virtual bool hasXOverlap(ZuAxisAlignedBoundingBox const& box) const;
  virtual bool hasYOverlap(ZuAxisAlignedBoundingBox const& box) const;
  virtual bool hasZOverlap(ZuAxisAlignedBoundingBox const& box) const;
  /// True unless the boxes are strictly apart on some axis; touching counts. A nan bound never separates, so that a box
  /// of nan intersects everything here, although it overlaps nothing on any axis: a broken box is tested, not lost.
  /// This asymmetry is deliberate.
  virtual bool testIntersection(ZuAxisAlignedBoundingBox const& box) const;
  /// Always false, and `out` is left alone: deliberately without effect.
  virtual bool findIntersection(ZuAxisAlignedBoundingBox const& box, ZuAxisAlignedBoundingBox& out) const;

  /// Moves each bound outward to that of the box where that is farther out. A nan bound neither moves nor moves others.
  virtual void expandSelfToInclude(ZuAxisAlignedBoundingBox const& box);
  /// The same for each of the boxes.
  virtual void expandSelfToInclude(ZuXmlVectorType<ZuAxisAlignedBoundingBox> const& boxes);

  virtual ZuVector midPoint() const { return minCorner() + (maxCorner() - minCorner()) / 2.0; }
  /// The axis of the largest extent: 0, 1 or 2; the first of equals, and 0 when no extent is positive.
  virtual unsigned int longestAxis() const;
  /// The product of the three extents, each plus 1, so that a flat box still counts by its area and a line by its
  /// length. The 1 is a length in the unit of the coordinates, which makes this no measure to compare between units.
  virtual double errorMetric() const { return (maxCorner() - minCorner() + ZuVector(1.0, 1.0, 1.0)).prod(); }
  /// Becomes the smallest box around the capsule.
  virtual void resize(ZuCapsule const& capsule);
  /// Moves each bound outward by d / 2. A negative d shrinks the box, unchecked; with 0 no bit changes.
  virtual void enlarge(double const& d);
  virtual ZuToken const& token() const { return classToken(); }
  /// Becomes the smallest box around all boxes; stays as it is when there are none.
  virtual void resizeToVector(ZuXmlVectorType<ZuAxisAlignedBoundingBox> const& boxes) { resizeAround(boxes); }

  bool operator==(ZuAxisAlignedBoundingBox const& other) const { return m_Min == other.m_Min && m_Max == other.m_Max; }

  // See ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuAxisAlignedBoundingBox testObject() { return {-1.0, 2.0, -3.0, 5.0, 0.25, 7.5}; }

 private:
  void resizeAround(Boxes const& boxes);

  ZuXmlVector m_Min;
  ZuXmlVector m_Max;
};

static_assert(sizeof(void*) != 8 || sizeof(ZuAxisAlignedBoundingBox) <= 112, "arrays of boxes fill the caches");
