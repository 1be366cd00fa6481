// zuBrick.h - cell of a grid with a value. Group: broad phase.
#pragma once

#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVectorType.h"

/// A brick of a grid: the integer indices of its cell and one number that goes with it. What the number means, and its
/// unit, is up to the grid. By default it has no indices and the value 0.
///
/// Bricks are ordered by value alone: bricks in different cells with one value are equivalent in order, and not equal.
/// Copying allocates when there are indices. Const operations are safe from several threads.
class ZU_API ZuBrick : public ZuXmlClass<ZuBrick, ZuXmlCompoundType> {
 public:
  using Indices = ZuXmlVectorType<ZuXmlBasicType<unsigned int>>;

  /// Set through XML or assignment only.
  Indices const& indices() const { return m_Indices; }
  double data() const { return m_Data; }
  void setData(double data) { m_Data = data; }

  bool operator<(ZuBrick const& b) const { return m_Data < b.m_Data; }
  bool operator==(ZuBrick const& b) const { return m_Indices == b.m_Indices && m_Data == b.m_Data; }

  // See ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuBrick testObject();

 private:
  Indices m_Indices;
  ZuXmlBasicType<double> m_Data;
};
