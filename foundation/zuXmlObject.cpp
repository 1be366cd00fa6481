#include "foundation/zuXmlObject.h"

#include <exception>
#include <istream>
#include <ostream>
#include <string_view>
#include <utility>

#include "foundation/zuPrint.h"
#include "foundation/zuTcpSocket.h"
#include "foundation/zuXmlObjectVisitor.h"
#include "foundation/zuXmlReader.h"
#include "foundation/zuXmlSchema.h"
#include "foundation/zuXmlTransportPrivate.h"
#include "foundation/zuXmlWriter.h"

using ZuXmlTransport::Form;

namespace {

bool refuse(char const* function, std::string const& name, char const* why) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlObject::%s-->%s: %s", function, name.c_str(), why);
  return false;
}

/// Does the work; when memory runs out, or a class throws in reading itself, it prints why and returns false.
template <class Work>
bool guarded(char const* function, std::string const& name, Work work) {
  try {
    return work();
  } catch (std::exception const& fault) {
    return refuse(function, name, fault.what());
  } catch (...) {
    return refuse(function, name, "a class throws");
  }
}

bool readDocument(ZuXmlObject& object, std::string_view document, std::string const& name) {
  ZuXmlReader reader(name);
  if (!reader.open(document) || !object.read(reader)) return false;
  object.setSpecified(true);
  return true;
}

bool readInForm(ZuXmlObject& object, Form form, std::string const& bytes, std::string const& name) {
  if (form == Form::PLAIN) return readDocument(object, bytes, name);
  std::string document;
  return ZuXmlTransport::decompress(form, name, bytes, document) && readDocument(object, document, name);
}

bool readFileInForm(ZuXmlObject& object, Form form, std::string const& fileName) {
  return guarded("read", fileName, [&] {
    std::string bytes;
    return ZuXmlTransport::readFile(fileName, bytes) && readInForm(object, form, bytes, fileName);
  });
}

/// Gives the document in that form to `use`.
template <class Use>
bool writeInForm(ZuXmlObject const& object, Form form, std::string const& name, ZuToken const& root, Use use) {
  return guarded("write", name, [&] {
    std::string document;
    std::string bytes;
    if (!object.writeToBuffer(document, root)) return false;
    if (form == Form::PLAIN) return use(document);
    return ZuXmlTransport::compress(form, name, document, bytes) && use(bytes);
  });
}

bool writeFileInForm(ZuXmlObject const& object, Form form, std::string const& fileName, ZuToken const& root) {
  return writeInForm(object, form, fileName, root,
                     [&](std::string const& bytes) { return ZuXmlTransport::writeFile(fileName, bytes); });
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
  return guarded("createSchema", fileName, [&] {
    ZuXmlSchema schema;
    return writeSchema(schema) && ZuXmlTransport::writeFile(fileName, schema.document(root));
  });
}

bool ZuXmlObject::readFromStream(std::istream& stream, std::string const& name) {
  return guarded("readFromStream", name, [&] {
    std::string document;
    return ZuXmlTransport::readStream(stream, name, document) && readDocument(*this, document, name);
  });
}

bool ZuXmlObject::writeToStream(std::ostream& stream, std::string const& name, ZuToken const& root) const {
  return writeInForm(*this, Form::PLAIN, name, root, [&](std::string const& document) {
    stream.write(document.data(), static_cast<std::streamsize>(document.size()));
    return stream.flush() || refuse("writeToStream", name, "the stream can't be written");
  });
}

bool ZuXmlObject::readFromFile(std::string const& fileName) {
  return guarded("readFromFile", fileName, [&] {
    std::string bytes;
    return ZuXmlTransport::readFile(fileName, bytes) &&
           readInForm(*this, ZuXmlTransport::formOf(bytes), bytes, fileName);
  });
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

bool ZuXmlObject::readFromBuffer(std::string const& buffer) {
  return guarded("readFromBuffer", "buffer", [&] { return readDocument(*this, buffer, "buffer"); });
}

bool ZuXmlObject::writeToBuffer(std::string& buffer, ZuToken const& root) const {
  return guarded("writeToBuffer", root.token(), [&] {
    std::string document;
    ZuXmlWriter writer(document);
    writer.declaration();
    writer.open(root);
    bool const written = write(writer);
    writer.close();
    if (!written || writer.failed()) return false;
    if (document.size() > ZuXmlReader::m_theMaximumDocumentSize) {
      return refuse("writeToBuffer", root.token(), "larger than a document may be");
    }
    buffer = std::move(document);
    return true;
  });
}

bool ZuXmlObject::readFromCompressedBuffer(std::string const& buffer) {
  return guarded("readFromCompressedBuffer", "buffer", [&] {
    Form const form = ZuXmlTransport::formOf(buffer);
    return readInForm(*this, form == Form::PLAIN ? Form::GZIP : form, buffer, "buffer");
  });
}

bool ZuXmlObject::writeToCompressedBuffer(std::string& buffer, ZuToken const& root) const {
  return writeInForm(*this, Form::GZIP, "buffer", root, [&](std::string const& bytes) {
    buffer = bytes;
    return true;
  });
}

bool ZuXmlObject::readFromTcpSocket(ZuTcpSocket const* socket) {
  if (socket == nullptr) return refuse("readFromTcpSocket", "socket", "there is none");
  return guarded("readFromTcpSocket", "socket", [&] {
    std::string bytes;
    return socket->receive(bytes) && readInForm(*this, ZuXmlTransport::formOf(bytes), bytes, "socket");
  });
}

bool ZuXmlObject::writeToTcpSocket(ZuTcpSocket const* socket, ZuToken const& root, int compression) const {
  if (socket == nullptr) return refuse("writeToTcpSocket", "socket", "there is none");
  if (compression < 0 || compression > 2) {
    return refuse("writeToTcpSocket", "socket", ("no compression " + std::to_string(compression)).c_str());
  }
  return writeInForm(*this, static_cast<Form>(compression), "socket", root,
                     [&](std::string const& bytes) { return socket->send(bytes); });
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
