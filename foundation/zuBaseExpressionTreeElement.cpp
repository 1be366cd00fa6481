#include "foundation/zuBaseExpressionTreeElement.h"

ZuXmlBaseVariableCompoundType const* ZuBaseExpressionTreeElement::container() const { return m_Container; }

void ZuBaseExpressionTreeElement::setContainer(ZuXmlBaseVariableCompoundType const* container) {
  m_Container = container;
}

std::unique_ptr<ZuXmlObject> ZuBaseExpressionTreeElement::emptyLikeThis() const {
  std::unique_ptr<ZuXmlObject> fresh(newObject());
  static_cast<ZuBaseExpressionTreeElement&>(*fresh).setContainer(m_Container);
  return fresh;
}
