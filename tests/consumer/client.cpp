#include "foundation/zuPrint.h"
#include "foundation/zuToken.h"
#include "geometry/zuGeomTokens.h"

int main() {
  Zu::Print::instance().write(Zu::PRINT_NOTE, "%s", ZuGeom::ZuSphereToken.token().c_str());
  return ZuToken("center") == ZuGeom::ZuCenterToken ? 0 : 1;
}
