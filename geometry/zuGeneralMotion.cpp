#include "geometry/zuGeneralMotion.h"

#include "geometry/zuGeomTokens.h"

ZuGeneralMotion const ZuGeneralMotion::m_theZeroGeneralMotion{};

ZuToken const& ZuGeneralMotion::classToken() { return ZuGeom::ZuGeneralMotionToken; }

bool ZuGeneralMotion::writeBin(std::ostream& stream) const {
  bool const linearWritten = m_Linear.writeBin(stream);
  bool const angularWritten = m_Angular.writeBin(stream);
  return linearWritten && angularWritten;
}

bool ZuGeneralMotion::readBin(std::istream& stream) {
  m_Linear.readBin(stream);
  m_Angular.readBin(stream);
  return true;
}
