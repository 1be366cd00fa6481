#include "foundation/zuXmlObject.h"

#include <istream>
#include <ostream>

#include "foundation/zuPrint.h"
#include "foundation/zuTcpSocket.h"
#include "foundation/zuXmlObjectVisitor.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlTransport.h"
#include "foundation/zuXmlWriter.h"

using ZuXmlTransport::Form;

namespace {

bool readDocument(ZuXmlObject& object, std::string text, std::string const& name) {
  ZuXmlReader reader(name);
  return reader.open(std::move(text)) && object.read(reader);
}

bool readCompressed(ZuXmlObject& object, Form form, std::string const& bytes, std::string const& name) {
  std::string text;
  return ZuXmlTransport::decompress(form, name, bytes, text) && readDocument(object, std::move(text), name);
}

bool readFileInForm(ZuXmlObject& object, Form form, std::string const& fileName) {
  std::string bytes;
  return ZuXmlTransport::readFile(fileName, bytes) && readCompressed(object, form, bytes, fileName);
}

bool writeFileInForm(ZuXmlObject const& object, Form form, std::string const& fileName, ZuToken const& root) {
  std::string text;
  std::string bytes;
  return object.writeToBuffer(text, root) && ZuXmlTransport::compress(form, fileName, text, bytes) &&
         ZuXmlTransport::writeFile(fileName, bytes);
}

}  // namespace

void ZuXmlObject::accept(ZuXmlObjectVisitor* visitor) {
  if (visitor != nullptr && visitor->visit(*this)) visitor->leave(*this);
}

void ZuXmlObject::xmlInit() { setXmlInitialized(true); }

bool ZuXmlObject::read(ZuXmlReader& reader) { return reader.refuse("this object is never read"); }

bool ZuXmlObject::readAttribute(ZuXmlReader& reader) {
  return isBasicType() ? read(reader) : reader.refuse("an attribute can't hold this object");
}

bool ZuXmlObject::write(ZuXmlWriter&) const { return true; }

bool ZuXmlObject::writeSchema(ZuXmlSchema& schema) const {
  schema.simple("xs:string");
  return true;
}

bool ZuXmlObject::createSchema(std::string const& fileName, ZuToken const& root) const {
  ZuXmlSchema schema;
  return writeSchema(schema) && ZuXmlTransport::writeFile(fileName, schema.document(root));
}

bool ZuXmlObject::readFromStream(std::istream& stream, std::string const& name) {
  std::string text;
  return ZuXmlTransport::readStream(stream, name, text) && readDocument(*this, std::move(text), name);
}

bool ZuXmlObject::writeToStream(std::ostream& stream, std::string const& name, ZuToken const& root) const {
  std::string text;
  if (!writeToBuffer(text, root)) return false;
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
  if (stream.flush()) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlObject::writeToStream-->%s: the stream can't be written",
                              name.c_str());
  return false;
}

bool ZuXmlObject::readFromFile(std::string const& fileName) {
  std::string bytes;
  return ZuXmlTransport::readFile(fileName, bytes) &&
         readCompressed(*this, ZuXmlTransport::formOf(bytes), bytes, fileName);
}

bool ZuXmlObject::writeToFile(std::string const& fileName, ZuToken const& root) const {
  return writeToFilePlain(fileName, root);
}

bool ZuXmlObject::readFromFilePlain(std::string const& fileName) {
  return readFileInForm(*this, Form::PLAIN, fileName);
}

bool ZuXmlObject::writeToFilePlain(std::string const& fileName, ZuToken const& root) const {
  return writeFileInForm(*this, Form::PLAIN, fileName, root);
}

bool ZuXmlObject::readFromFileWithCompression(std::string const& fileName) {
  return readFileInForm(*this, Form::GZIP, fileName);
}

bool ZuXmlObject::readFromFileWithCompression2(std::string const& fileName) {
  return readFileInForm(*this, Form::ZSTANDARD, fileName);
}

bool ZuXmlObject::writeToFileWithCompression(std::string const& fileName, ZuToken const& root) const {
  return writeFileInForm(*this, Form::GZIP, fileName, root);
}

bool ZuXmlObject::writeToFileWithCompression2(std::string const& fileName, ZuToken const& root) const {
  return writeFileInForm(*this, Form::ZSTANDARD, fileName, root);
}

bool ZuXmlObject::readFromBuffer(std::string const& buffer) { return readDocument(*this, buffer, "buffer"); }

bool ZuXmlObject::writeToBuffer(std::string& buffer, ZuToken const& root) const {
  std::string text;
  ZuXmlWriter writer(text);
  writer.declaration();
  writer.open(root);
  bool const written = write(writer);
  writer.close();
  if (!written || writer.failed()) return false;
  buffer = std::move(text);
  return true;
}

bool ZuXmlObject::readFromCompressedBuffer(std::string const& buffer) {
  Form const form = ZuXmlTransport::formOf(buffer);
  return readCompressed(*this, form == Form::PLAIN ? Form::GZIP : form, buffer, "compressed buffer");
}

bool ZuXmlObject::writeToCompressedBuffer(std::string& buffer, ZuToken const& root) const {
  std::string text;
  return writeToBuffer(text, root) && ZuXmlTransport::compress(Form::GZIP, "compressed buffer", text, buffer);
}

bool ZuXmlObject::readFromTcpSocket(ZuTcpSocket const* socket) {
  std::string bytes;
  return socket != nullptr && socket->receive(bytes) &&
         readCompressed(*this, ZuXmlTransport::formOf(bytes), bytes, "socket");
}

bool ZuXmlObject::writeToTcpSocket(ZuTcpSocket const* socket, ZuToken const& root, int compression) const {
  if (compression < 0 || compression > 2) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlObject::writeToTcpSocket-->no compression %d", compression);
    return false;
  }
  std::string text;
  std::string bytes;
  return socket != nullptr && writeToBuffer(text, root) &&
         ZuXmlTransport::compress(static_cast<Form>(compression), "socket", text, bytes) && socket->send(bytes);
}

bool ZuXmlObject::xmlInitialized() const { return m_XmlInitialized; }

void ZuXmlObject::setXmlInitialized(bool initialized) { m_XmlInitialized = initialized; }

bool ZuXmlObject::specified() const { return m_Specified; }

void ZuXmlObject::setSpecified(bool specified) { m_Specified = specified; }

bool ZuXmlObject::isBasicType() const { return false; }

bool ZuXmlObject::equalsDefault() const {
  std::unique_ptr<ZuXmlObject> const fresh(newObject());
  return equality(fresh.get());
}

std::unique_ptr<ZuXmlObject> ZuXmlObject::emptyLikeThis() const { return std::unique_ptr<ZuXmlObject>(newObject()); }

bool zuXmlSelfTest(ZuXmlObject const& object) {
  std::unique_ptr<ZuXmlObject> const copy(object.clone());
  std::unique_ptr<ZuXmlObject> const readBack = object.emptyLikeThis();
  std::string text;
  return object.equality(copy.get()) && object.writeToBuffer(text, "object") && readBack->readFromBuffer(text) &&
         object.equality(readBack.get());
}
