#include "foundation/zuXmlTransportPrivate.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>
#include <zstd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <memory>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlReader.h"

namespace ZuXmlTransport {
namespace {

constexpr std::size_t theLimit = ZuXmlReader::m_theMaximumDocumentSize;
constexpr std::size_t theChunk = std::size_t{1} << 16;  // bytes; calls cost nothing, nor does a small document
constexpr char const* theTooLarge = "larger than a document may be";

bool refuse(char const* function, std::string const& name, char const* why) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlTransport::%s-->%s: %s", function, name.c_str(), why);
  return false;
}

/// Where bytes go: into a text, or nowhere, while only their number is wanted.
struct Sink {
  std::string* text;
  std::uint64_t limit;
  std::string chunk = std::string(theChunk, '\0');
  std::uint64_t size = 0;

  bool take(std::size_t count) {
    size += count;
    if (size > limit) return false;
    if (text != nullptr) text->append(chunk, 0, count);
    return true;
  }
};

/// Deflates or inflates all of `in`. Returns why it can't, or null.
template <class Step>
char const* runZlib(z_stream& stream, std::string const& in, Sink& out, Step step, int flush) {
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data()));  // zlib does not write there
  stream.avail_in = static_cast<uInt>(in.size());
  for (int state = Z_OK; state != Z_STREAM_END;) {
    stream.next_out = reinterpret_cast<Bytef*>(out.chunk.data());
    stream.avail_out = static_cast<uInt>(out.chunk.size());
    state = step(&stream, flush);
    if (state == Z_BUF_ERROR) return "the compressed data ends too early";
    if (state != Z_OK && state != Z_STREAM_END) return "the compressed data is damaged";
    if (!out.take(out.chunk.size() - stream.avail_out)) return theTooLarge;
  }
  return stream.avail_in == 0 ? nullptr : "bytes follow the compressed data";
}

constexpr int theGzipWindow = 15 + 16;  // zlib's largest window, with a gzip header

char const* gzip(std::string const& plain, Sink& out) {
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, theGzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    return "no memory for the compressor";
  }
  std::unique_ptr<z_stream, int (*)(z_stream*)> const end(&stream, deflateEnd);
  return runZlib(stream, plain, out, deflate, Z_FINISH);
}

char const* gunzip(std::string const& bytes, Sink& out) {
  z_stream stream{};
  if (inflateInit2(&stream, theGzipWindow) != Z_OK) return "no memory for the decompressor";
  std::unique_ptr<z_stream, int (*)(z_stream*)> const end(&stream, inflateEnd);
  return runZlib(stream, bytes, out, inflate, Z_NO_FLUSH);
}

char const* zstandard(std::string const& plain, std::string& bytes) {
  std::unique_ptr<ZSTD_CCtx, std::size_t (*)(ZSTD_CCtx*)> const context(ZSTD_createCCtx(), ZSTD_freeCCtx);
  if (!context) return "no memory for the compressor";
  ZSTD_CCtx_setParameter(context.get(), ZSTD_c_checksumFlag, 1);
  bytes.resize(ZSTD_compressBound(plain.size()));
  std::size_t const size = ZSTD_compress2(context.get(), bytes.data(), bytes.size(), plain.data(), plain.size());
  if (ZSTD_isError(size)) return ZSTD_getErrorName(size);
  bytes.resize(size);
  return nullptr;
}

char const* unzstandard(std::string const& bytes, Sink& out) {
  std::unique_ptr<ZSTD_DCtx, std::size_t (*)(ZSTD_DCtx*)> const context(ZSTD_createDCtx(), ZSTD_freeDCtx);
  if (!context) return "no memory for the decompressor";
  ZSTD_inBuffer in{bytes.data(), bytes.size(), 0};
  for (std::size_t rest = 1; rest != 0;) {
    ZSTD_outBuffer piece{out.chunk.data(), out.chunk.size(), 0};
    std::size_t const before = in.pos;
    rest = ZSTD_decompressStream(context.get(), &piece, &in);
    if (ZSTD_isError(rest)) return ZSTD_getErrorName(rest);
    if (!out.take(piece.pos)) return theTooLarge;
    if (rest != 0 && piece.pos == 0 && in.pos == before) return "the compressed data ends too early";
  }
  return in.pos == in.size ? nullptr : "bytes follow the compressed data";
}

/// The size of the text as the compressed bytes claim it: in gzip's last four bytes, in Zstandard's header. More than
/// any document when they do not say.
std::uint64_t claimedSize(Form form, std::string const& bytes) {
  if (form == Form::ZSTANDARD) return ZSTD_getFrameContentSize(bytes.data(), bytes.size());
  std::uint64_t size = 0;
  for (std::size_t i = 1; i <= 4 && i <= bytes.size(); ++i) {
    size = size << 8 | static_cast<unsigned char>(bytes[bytes.size() - i]);
  }
  return size;
}

char const* decompressTo(Sink& sink, Form form, std::string const& bytes) {
  return form == Form::GZIP ? gunzip(bytes, sink) : unzstandard(bytes, sink);
}

/// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : m_Number(number) {}
  ~Descriptor() { close(); }
  Descriptor(Descriptor const&) = delete;
  Descriptor& operator=(Descriptor const&) = delete;
  int number() const { return m_Number; }
  bool close() {
    int const number = m_Number;
    m_Number = -1;
    return number < 0 || ::close(number) == 0;
  }

 private:
  int m_Number;
};

/// False with errno when not all could be written.
bool writeAll(Descriptor& file, std::string const& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    ssize_t const count = ::write(file.number(), bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) done += static_cast<std::size_t>(count);
  }
  return file.close();
}

constexpr mode_t theNewRights = 0666;  // less those that the process's umask takes away

bool writeDirectly(std::string const& fileName, std::string const& bytes) {
  Descriptor file(::open(fileName.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  return (file.number() >= 0 && writeAll(file, bytes)) || refuse("writeFile", fileName, std::strerror(errno));
}

/// The file that a link leads to, or the name itself.
std::string withoutLinks(std::string const& fileName) {
  std::unique_ptr<char, void (*)(void*)> const real(::realpath(fileName.c_str(), nullptr), std::free);
  return real ? std::string(real.get()) : fileName;
}

}  // namespace

Form formOf(std::string const& bytes) {
  if (bytes.compare(0, 2, "\x1f\x8b") == 0) return Form::GZIP;
  if (bytes.compare(0, 4, "\x28\xb5\x2f\xfd") == 0) return Form::ZSTANDARD;
  return Form::PLAIN;
}

bool readFile(std::string const& fileName, std::string& bytes) {
  // Without O_NONBLOCK opening a pipe would wait for its writer.
  Descriptor const file(::open(fileName.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  struct stat status {};
  if (file.number() < 0 || ::fstat(file.number(), &status) != 0) {
    return refuse("readFile", fileName, std::strerror(errno));
  }
  if (!S_ISREG(status.st_mode)) return refuse("readFile", fileName, "not a regular file");
  if (static_cast<std::uint64_t>(status.st_size) > theLimit) return refuse("readFile", fileName, theTooLarge);
  bytes.clear();
  bytes.reserve(static_cast<std::size_t>(status.st_size));
  Sink sink{&bytes, theLimit};
  for (;;) {
    ssize_t const count = ::read(file.number(), sink.chunk.data(), sink.chunk.size());
    if (count == 0) return true;
    if (count < 0 && errno != EINTR) return refuse("readFile", fileName, std::strerror(errno));
    if (count > 0 && !sink.take(static_cast<std::size_t>(count))) return refuse("readFile", fileName, theTooLarge);
  }
}

bool writeFile(std::string const& fileName, std::string const& bytes) {
  static std::atomic<unsigned int> theCounter{0};
  struct stat old {};
  bool const exists = ::stat(fileName.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) return writeDirectly(fileName, bytes);
  std::string const target = withoutLinks(fileName);
  std::string const beside = target + "." + std::to_string(::getpid()) + "." + std::to_string(theCounter++) + ".part";
  Descriptor file(::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, theNewRights));
  if (file.number() < 0) return refuse("writeFile", fileName, std::strerror(errno));
  bool written = !exists || ::fchmod(file.number(), old.st_mode & 07777U) == 0;
  written = written && writeAll(file, bytes) && std::rename(beside.c_str(), target.c_str()) == 0;
  if (written) return true;
  int const why = errno;
  ::unlink(beside.c_str());
  return refuse("writeFile", fileName, std::strerror(why));
}

bool readStream(std::istream& stream, std::string const& name, std::string& bytes) {
  bytes.clear();
  if (!stream || stream.rdbuf() == nullptr) return refuse("readStream", name, "the stream can't be read");
  // Past the stream's own functions, which would throw at the end of a stream that has been told to.
  Sink sink{&bytes, theLimit};
  for (;;) {
    std::streamsize const count = stream.rdbuf()->sgetn(sink.chunk.data(), static_cast<std::streamsize>(theChunk));
    if (count <= 0) return true;
    if (!sink.take(static_cast<std::size_t>(count))) return refuse("readStream", name, theTooLarge);
  }
}

bool compress(Form form, std::string const& name, std::string const& plain, std::string& bytes) {
  bytes.clear();
  if (form == Form::PLAIN) {
    bytes = plain;
    return true;
  }
  Sink sink{&bytes, 2 * theLimit};  // whatever does not become smaller stays nearly as it is
  char const* const fault = form == Form::GZIP ? gzip(plain, sink) : zstandard(plain, bytes);
  return fault == nullptr || refuse("compress", name, fault);
}

bool decompress(Form form, std::string const& name, std::string const& bytes, std::string& plain) {
  plain.clear();
  if (bytes.size() > theLimit) return refuse("decompress", name, theTooLarge);
  if (form == Form::PLAIN) {
    plain = bytes;
    return true;
  }
  std::uint64_t claim = claimedSize(form, bytes);
  if (claim > theLimit) {
    // Either the text is too large, or the bytes do not tell its size, or they are damaged: finding out takes no
    // memory.
    Sink counter{nullptr, theLimit};
    char const* const fault = decompressTo(counter, form, bytes);
    if (fault != nullptr) return refuse("decompress", name, fault);
    claim = counter.size;
  }
  Sink sink{&plain, claim};
  char const* const fault = decompressTo(sink, form, bytes);
  if (fault == theTooLarge) return refuse("decompress", name, "more text than the compressed data claims to hold");
  return fault == nullptr || refuse("decompress", name, fault);
}

}  // namespace ZuXmlTransport
