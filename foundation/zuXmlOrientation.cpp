#include "foundation/zuXmlOrientation.h"

#include <cmath>

#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlWriter.h"

bool ZuXmlOrientation::read(ZuXmlReader& reader) {
  double values[4];
  if (!reader.readReals(values, 4)) return false;
  double const squared = values[0] * values[0] + values[1] * values[1] + values[2] * values[2] + values[3] * values[3];
  if (!std::isnormal(squared)) return reader.refuse("four numbers that are no orientation");
  ZuOrientation orientation(values[0], values[1], values[2], values[3]);
  if (std::abs(squared - 1.0) > m_theUnitTolerance) orientation.normalize();
  m_Value = orientation;
  return true;
}

bool ZuXmlOrientation::write(ZuXmlWriter& writer) const {
  double const values[4] = {m_Value[0], m_Value[1], m_Value[2], m_Value[3]};
  writer.reals(values, 4);
  return !writer.failed();
}

bool ZuXmlOrientation::writeSchema(ZuXmlSchema& schema) const {
  schema.simple("realQuadruple");
  return true;
}

ZuToken const& ZuXmlOrientation::classToken() {
  static ZuToken const theToken("orientation");
  return theToken;
}
