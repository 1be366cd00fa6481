// Feeds arbitrary bytes to the readers of documents. What is accepted must be written and read back as the same value;
// what is refused must leave the target as it was.
#include <cstdint>
#include <cstdlib>

#include "foundation/zuDataMap.h"
#include "foundation/zuPrint.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuGeneralMotion.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuGeometryOverwriteDescriptor.h"
#include "geometry/zuLine.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuPlanarVector.h"
#include "geometry/zuPlane.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuTriangle.h"
#include "tests/xmlSamples.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

template <class... Classes>
void add(ZuXmlBaseVariableCompoundType& container) {
  (container.registerComponentCreator(Classes::classToken(), &Classes::creator), ...);
}

/// A container that knows every kind of value, those of geometry too.
ZuXmlBaseVariableCompoundType empty() {
  ZuXmlBaseVariableCompoundType container = zoo();
  add<ZuDataMap, ZuAxisAlignedBoundingBox, ZuGeneralMotion, ZuGeomTriangle, ZuGeometryOverwriteDescriptor, ZuLine,
      ZuLineSegment, ZuPlanarVector, ZuPlane, ZuPolygonWithKey, ZuTriangle>(container);
  return container;
}

ZuXmlBaseVariableCompoundType filled() {
  ZuXmlBaseVariableCompoundType container = empty();
  container.append(std::make_unique<Node>(Node::testObject()), Node::classToken());
  return container;
}

/// NaNs equal nothing: values are compared by what is written of them.
void checkAccepted(ZuXmlBaseVariableCompoundType const& accepted) {
  std::string const document = documentOf(accepted);
  require(!document.empty());
  ZuXmlBaseVariableCompoundType readBack = empty();
  require(readBack.readFromBuffer(document));
  require(documentOf(readBack) == document);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static std::string const theOldDocument = documentOf(filled());
  static unsigned int theMessages = 0;
  static bool const theSinkIsSet = [] {
    Zu::Print::instance().setSink([](int, std::string const&) { ++theMessages; });
    return true;
  }();
  require(theSinkIsSet && size < std::size_t{1} << 30);
  std::string const bytes(reinterpret_cast<char const*>(data), size);
  bool const compressed = bytes.compare(0, 2, "\x1F\x8B") == 0 || bytes.compare(0, 2, "\x28\xB5") == 0;
  ZuXmlBaseVariableCompoundType target = filled();
  theMessages = 0;
  if (compressed ? target.readFromCompressedBuffer(bytes) : target.readFromBuffer(bytes)) {
    require(theMessages == 0);
    checkAccepted(target);
  } else {
    require(theMessages == 1);
    require(documentOf(target) == theOldDocument);
  }
  return 0;
}
