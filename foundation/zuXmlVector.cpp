#include "foundation/zuXmlVector.h"

#include <istream>
#include <ostream>

#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlWriter.h"

bool ZuXmlVector::writeBin(std::ostream& stream) const {
  double const values[3] = {m_Value[0], m_Value[1], m_Value[2]};
  stream.write(reinterpret_cast<char const*>(values), sizeof values);
  return true;
}

bool ZuXmlVector::readBin(std::istream& stream) {
  double values[3] = {0.0, 0.0, 0.0};
  for (double& value : values) {
    double whole = 0.0;
    if (stream.read(reinterpret_cast<char*>(&whole), sizeof whole)) value = whole;
  }
  m_Value = ZuVector(values[0], values[1], values[2]);
  return true;
}

bool ZuXmlVector::read(ZuXmlReader& reader) {
  double values[3];
  if (!reader.readReals(values, 3)) return false;
  m_Value = ZuVector(values[0], values[1], values[2]);
  return true;
}

bool ZuXmlVector::write(ZuXmlWriter& writer) const {
  double const values[3] = {m_Value[0], m_Value[1], m_Value[2]};
  writer.reals(values, 3);
  return !writer.failed();
}

bool ZuXmlVector::writeSchema(ZuXmlSchema& schema) const {
  schema.simple("realTriple");
  return true;
}

ZuToken const& ZuXmlVector::classToken() {
  static ZuToken const theToken("vector");
  return theToken;
}
