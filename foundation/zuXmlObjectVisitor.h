// zuXmlObjectVisitor.h - walks over an object and what it consists of. Group: XML objects.
#pragma once

#include "foundation/zuExport.h"

class ZuXmlObject;

/// Handed to ZuXmlObject::accept, which shows every object of the tree to it, an object before its components.
class ZU_API ZuXmlObjectVisitor {
 public:
  virtual ~ZuXmlObjectVisitor() = default;
  /// Returns whether the components of the object are to be visited too.
  virtual bool visit(ZuXmlObject& object) = 0;
  /// Called after the components, when visit() returned true.
  virtual void leave(ZuXmlObject& object) { static_cast<void>(object); }

 protected:
  ZuXmlObjectVisitor() = default;
  ZuXmlObjectVisitor(ZuXmlObjectVisitor const&) = default;
  ZuXmlObjectVisitor& operator=(ZuXmlObjectVisitor const&) = default;
};
