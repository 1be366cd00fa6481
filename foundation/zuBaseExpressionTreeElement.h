// zuBaseExpressionTreeElement.h - element of a polymorphic container; base of every shape. Group: XML objects.
#pragma once

#include "foundation/zuXmlCompoundType.h"

class ZuXmlBaseVariableCompoundType;

/// A compound object that knows the name of its element and the container, if any, that owns it.
///
/// The container makes objects of other classes by name, for the children that the object may hold. It belongs to the
/// object and not to its value: a copy has none until one takes it over, assignment keeps the one that there is, and
/// comparison passes over it. So no copy refers to a container that it outlives.
class ZU_API ZuBaseExpressionTreeElement : public ZuXmlCompoundType {
 public:
  ZuBaseExpressionTreeElement() = default;
  ZuBaseExpressionTreeElement(ZuBaseExpressionTreeElement const& other) : ZuXmlCompoundType(other) {}
  ZuBaseExpressionTreeElement& operator=(ZuBaseExpressionTreeElement const& other) {
    ZuXmlCompoundType::operator=(other);
    return *this;
  }

  bool operator==(ZuBaseExpressionTreeElement const& other) const { return ZuXmlCompoundType::operator==(other); }

  /// The element name of the concrete class.
  virtual ZuToken const& token() const = 0;
  /// The container that owns the element; null when there is none.
  virtual ZuXmlBaseVariableCompoundType const* container() const;
  virtual void setContainer(ZuXmlBaseVariableCompoundType const* container);

  // See ZuXmlObject
  std::unique_ptr<ZuXmlObject> emptyLikeThis() const override;

 private:
  ZuXmlBaseVariableCompoundType const* m_Container = nullptr;
};
