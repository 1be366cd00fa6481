#include "foundation/zuXmlTransport.h"

#include <unistd.h>
#include <zlib.h>
#include <zstd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <istream>
#include <memory>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlReader.h"

namespace ZuXmlTransport {
namespace {

constexpr std::size_t theLimit = ZuXmlReader::m_theMaximumDocumentSize;
constexpr std::size_t theChunk = std::size_t{1} << 18;  // bytes; large enough that calls cost nothing

bool refuse(char const* function, std::string const& name, char const* why) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlTransport::%s-->%s: %s", function, name.c_str(), why);
  return false;
}

/// Deflates or inflates all of `in` into `out`. Returns why it can't, or null.
template <class Step>
char const* runZlib(z_stream& stream, std::string const& in, std::string& out, Step step, int flush) {
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data()));  // zlib does not write there
  stream.avail_in = static_cast<uInt>(in.size());
  std::string chunk(theChunk, '\0');
  for (int state = Z_OK; state != Z_STREAM_END;) {
    stream.next_out = reinterpret_cast<Bytef*>(chunk.data());
    stream.avail_out = static_cast<uInt>(chunk.size());
    state = step(&stream, flush);
    if (state == Z_BUF_ERROR) return "the compressed data ends too early";
    if (state != Z_OK && state != Z_STREAM_END) return "the compressed data is damaged";
    std::size_t const produced = chunk.size() - stream.avail_out;
    if (out.size() + produced > theLimit) return "larger than a document may be";
    out.append(chunk, 0, produced);
  }
  return stream.avail_in == 0 ? nullptr : "bytes follow the compressed data";
}

constexpr int theGzipWindow = 15 + 16;  // zlib's largest window, with a gzip header

char const* gzip(std::string const& plain, std::string& bytes) {
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, theGzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    return "no memory for the compressor";
  }
  char const* const fault = runZlib(stream, plain, bytes, deflate, Z_FINISH);
  deflateEnd(&stream);
  return fault;
}

char const* gunzip(std::string const& bytes, std::string& plain) {
  z_stream stream{};
  if (inflateInit2(&stream, theGzipWindow) != Z_OK) return "no memory for the decompressor";
  char const* const fault = runZlib(stream, bytes, plain, inflate, Z_NO_FLUSH);
  inflateEnd(&stream);
  return fault;
}

char const* zstandard(std::string const& plain, std::string& bytes) {
  bytes.resize(ZSTD_compressBound(plain.size()));
  std::size_t const size = ZSTD_compress(bytes.data(), bytes.size(), plain.data(), plain.size(), ZSTD_CLEVEL_DEFAULT);
  if (ZSTD_isError(size)) return ZSTD_getErrorName(size);
  bytes.resize(size);
  return nullptr;
}

/// Decodes piece by piece: the size that a frame claims is not believed.
char const* unzstandard(std::string const& bytes, std::string& plain) {
  std::unique_ptr<ZSTD_DCtx, std::size_t (*)(ZSTD_DCtx*)> const context(ZSTD_createDCtx(), ZSTD_freeDCtx);
  if (!context) return "no memory for the decompressor";
  std::string chunk(theChunk, '\0');
  ZSTD_inBuffer in{bytes.data(), bytes.size(), 0};
  std::size_t rest = 1;
  while (rest != 0 || in.pos < in.size) {
    ZSTD_outBuffer out{chunk.data(), chunk.size(), 0};
    std::size_t const before = in.pos;
    rest = ZSTD_decompressStream(context.get(), &out, &in);
    if (ZSTD_isError(rest)) return ZSTD_getErrorName(rest);
    if (plain.size() + out.pos > theLimit) return "larger than a document may be";
    plain.append(chunk, 0, out.pos);
    if (rest != 0 && out.pos == 0 && in.pos == before) return "the compressed data ends too early";
  }
  return nullptr;
}

}  // namespace

Form formOf(std::string const& bytes) {
  if (bytes.compare(0, 2, "\x1f\x8b") == 0) return Form::GZIP;
  if (bytes.compare(0, 4, "\x28\xb5\x2f\xfd") == 0) return Form::ZSTANDARD;
  return Form::PLAIN;
}

bool readFile(std::string const& fileName, std::string& bytes) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(fileName, error)) return refuse("readFile", fileName, "no such file");
  std::ifstream stream(fileName, std::ios::binary);
  if (!stream) return refuse("readFile", fileName, std::strerror(errno));
  return readStream(stream, fileName, bytes);
}

bool writeFile(std::string const& fileName, std::string const& bytes) {
  std::string const beside = fileName + "." + std::to_string(getpid()) + ".part";
  std::ofstream stream(beside, std::ios::binary | std::ios::trunc);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (stream && std::rename(beside.c_str(), fileName.c_str()) == 0) return true;
  char const* const why = std::strerror(errno);
  std::remove(beside.c_str());
  return refuse("writeFile", fileName, why);
}

bool readStream(std::istream& stream, std::string const& name, std::string& bytes) {
  bytes.clear();
  std::string chunk(theChunk, '\0');
  while (stream) {
    stream.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    bytes.append(chunk, 0, static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > theLimit) return refuse("readStream", name, "larger than a document may be");
  }
  return stream.eof() || refuse("readStream", name, "the stream can't be read");
}

bool compress(Form form, std::string const& name, std::string const& plain, std::string& bytes) {
  bytes.clear();
  char const* fault = nullptr;
  switch (form) {
    case Form::PLAIN:
      bytes = plain;
      break;
    case Form::GZIP:
      fault = gzip(plain, bytes);
      break;
    case Form::ZSTANDARD:
      fault = zstandard(plain, bytes);
      break;
  }
  return fault == nullptr || refuse("compress", name, fault);
}

bool decompress(Form form, std::string const& name, std::string const& bytes, std::string& plain) {
  plain.clear();
  char const* fault = nullptr;
  switch (form) {
    case Form::PLAIN:
      plain = bytes;
      break;
    case Form::GZIP:
      fault = gunzip(bytes, plain);
      break;
    case Form::ZSTANDARD:
      fault = unzstandard(bytes, plain);
      break;
  }
  return fault == nullptr || refuse("decompress", name, fault);
}

}  // namespace ZuXmlTransport
