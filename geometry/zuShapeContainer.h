// zuShapeContainer.h - owns shapes of any class. Group: shapes.
#pragma once

#include "foundation/zuXmlBaseVariableCompoundType.h"
#include "geometry/zuShape.h"

/// A list of shapes that reads and writes every solid of this library, and those of the plug-ins that are loaded.
///
/// Shapes that are read here can read coarser levels of any registered class in turn. Copying clones the shapes.
class ZU_API ZuShapeContainer : public ZuXmlClass<ZuShapeContainer, ZuXmlBaseVariableCompoundType> {
 public:
  /// Registers the solids of this library.
  ZuShapeContainer();

  bool operator==(ZuShapeContainer const& other) const { return ZuXmlBaseVariableCompoundType::operator==(other); }

  /// Null, and a message, for an index past the end.
  ZuShape const* shape(std::size_t index) const;
  ZuShape* shape(std::size_t index);
  using ZuXmlBaseVariableCompoundType::append;
  /// Takes over the shape.
  void append(std::unique_ptr<ZuShape> shape);

  // See ZuXmlBaseVariableCompoundType

  /// Null also for a name whose class is no shape.
  ZuXmlObject* newObjectFromToken(ZuToken const& token) const override;

  static ZuToken const& classToken();
  static ZuShapeContainer testObject();
};
