#include "foundation/zuXmlVectorVector.h"

#include <utility>

#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlVector.h"
#include "foundation/zuXmlWriter.h"

bool ZuXmlVectorVector::read(ZuXmlReader& reader) {
  std::vector<ZuVector> vectors;
  double values[3];
  for (bool more = reader.firstItem(); more; more = reader.nextSibling()) {
    if (reader.name() != ZuXmlVector::classToken().token()) return reader.refuse("an element other than <vector>");
    if (!reader.readReals(values, 3)) return false;
    vectors.emplace_back(values[0], values[1], values[2]);
  }
  if (reader.refused()) return false;
  m_Vectors = std::move(vectors);
  return true;
}

bool ZuXmlVectorVector::write(ZuXmlWriter& writer) const {
  for (ZuVector const& vector : m_Vectors) {
    double const values[3] = {vector[0], vector[1], vector[2]};
    writer.open(ZuXmlVector::classToken());
    writer.reals(values, 3);
    writer.close();
  }
  return !writer.failed();
}

bool ZuXmlVectorVector::writeSchema(ZuXmlSchema& schema) const {
  if (!schema.beginType(*this)) return true;
  schema.beginGroup("sequence");
  schema.beginElement(ZuXmlVector::classToken(), 0, ZuXmlSchema::m_theUnbounded);
  schema.simple("realTriple");
  schema.endElement();
  schema.endGroup();
  schema.endType();
  return true;
}

ZuToken const& ZuXmlVectorVector::classToken() {
  static ZuToken const theToken("points");
  return theToken;
}

ZuXmlVectorVector ZuXmlVectorVector::testObject() {
  return ZuXmlVectorVector({ZuVector(), ZuVector::testObject(), ZuVector(1.0, -0.5, 1e-300)});
}
