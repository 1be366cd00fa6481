#include "geometry/zuPlanarVector.h"

#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlWriter.h"
#include "geometry/zuGeomTokens.h"

bool ZuPlanarVector::read(ZuXmlReader& reader) {
  double values[2];
  if (!reader.readReals(values, 2)) return false;
  *this = ZuPlanarVector(values[0], values[1]);
  return true;
}

bool ZuPlanarVector::write(ZuXmlWriter& writer) const {
  double const values[2] = {m_X, m_Y};
  writer.reals(values, 2);
  return !writer.failed();
}

bool ZuPlanarVector::writeSchema(ZuXmlSchema& schema) const {
  schema.simple("realPair");
  return true;
}

ZuToken const& ZuPlanarVector::classToken() { return ZuGeom::ZuPlanarVectorToken; }
