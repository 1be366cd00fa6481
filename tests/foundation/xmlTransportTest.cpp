// Documents in files, streams and compressed buffers: every form, damaged in every way.
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/oneMessage.h"
#include "tests/temporaryFolder.h"
#include "tests/xmlSamples.h"

namespace {

namespace files = std::filesystem;
enum Form { PLAIN, GZIP, ZSTANDARD };

bool write(Form form, std::string const& file) {
  Node const node = Node::testObject();
  return form == PLAIN  ? node.writeToFile(file, "node")
         : form == GZIP ? node.writeToFileWithCompression(file, "node")
                        : node.writeToFileWithCompression2(file, "node");
}

bool read(ZuXmlObject& object, Form form, std::string const& file) {
  return form == PLAIN  ? object.readFromFilePlain(file)
         : form == GZIP ? object.readFromFileWithCompression(file)
                        : object.readFromFileWithCompression2(file);
}

/// The sample as a file of that form.
std::string bytesOf(Form form) {
  TemporaryFolder const folder;
  return write(form, folder.file("a")) ? contents(folder.file("a")) : "";
}

/// Reads the bytes as a file of that form, and checks all that refusing means.
void expectRefused(Form form, std::string const& bytes, std::string const& message) {
  TemporaryFolder const folder;
  std::string const file = folder.file("a");
  std::ofstream(file, std::ios::binary) << bytes;
  Node target = Node::testObject();
  PrintSink sink;
  EXPECT_FALSE(read(target, form, file));
  EXPECT_TRUE(saysOnce(sink, file) && saysOnce(sink, message)) << message;
  EXPECT_TRUE(target == Node::testObject());
}

/// A gzip member of `megabytes` of zeros, which says that it has `claimed` bytes; its checksum is wrong.
std::string gzipBomb(unsigned int megabytes, std::uint32_t claimed) {
  std::string const zeros(std::size_t{1} << 20, '\0');
  std::string block(zeros.size(), '\0');
  z_stream stream{};
  deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(zeros.data()));
  stream.avail_in = stream.avail_out = static_cast<uInt>(zeros.size());
  stream.next_out = reinterpret_cast<Bytef*>(block.data());
  deflate(&stream, Z_FULL_FLUSH);
  block.resize(block.size() - stream.avail_out);
  deflateEnd(&stream);
  std::string bytes("\x1F\x8B\x08\0\0\0\0\0\0\x03", 10);
  for (unsigned int i = 0; i < megabytes; ++i) bytes += block;
  bytes += std::string("\x03\0\0\0\0\0", 6);  // an empty last block, and the checksum
  for (unsigned int i = 0; i < 4; ++i) bytes += static_cast<char>(claimed >> 8 * i);
  return bytes;
}

/// A Zstandard frame of `blocks` times 128 KiB of zeros, which does not say how large it is.
std::string zstandardBomb(unsigned int blocks) {
  std::string bytes("\x28\xB5\x2F\xFD\0\x38", 6);
  for (unsigned int i = 0; i < blocks; ++i) bytes += std::string("\x02\0\x10\0", 4);
  return bytes + std::string("\x03\0\0\0", 4);
}

std::size_t peakMemory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) << 10;
}

}  // namespace

TEST(XmlFile, ReadsBackInEveryFormWhichItTellsByItself) {
  TemporaryFolder const folder;
  std::string const file = folder.file("a");
  for (Form const form : {PLAIN, GZIP, ZSTANDARD}) {
    ASSERT_TRUE(write(form, file));
    Node told, found;
    EXPECT_TRUE(read(told, form, file) && told == Node::testObject());
    EXPECT_TRUE(found.readFromFile(file) && found == Node::testObject());
    PrintSink sink;
    EXPECT_EQ(Node().readFromCompressedBuffer(contents(file)), form != PLAIN);
    EXPECT_EQ(sink.messages().size(), form != PLAIN ? 0U : 1U);
  }
  EXPECT_EQ(folder.count(), 1U);
}

TEST(XmlFile, IsRefusedWhereverItIsCutOffAndNeverReadsAsAnotherValueWhenACompressedBitIsDamaged) {
  PrintSink sink;
  for (Form const form : {PLAIN, GZIP, ZSTANDARD}) {
    std::string const bytes = bytesOf(form);
    Node target = Node::testObject();
    for (std::size_t size = 0; size + 1 < bytes.size(); ++size) {  // a plain document may lack its last line end
      sink.take();
      std::string const part = bytes.substr(0, size);
      EXPECT_FALSE(form == PLAIN ? target.readFromBuffer(part) : target.readFromCompressedBuffer(part)) << size;
      EXPECT_EQ(sink.messages().size(), 1U) << size;
    }
    EXPECT_TRUE(target == Node::testObject());
    for (std::size_t i = 0; form != PLAIN && i < 8 * bytes.size(); ++i) {
      std::string damaged = bytes;
      damaged[i / 8] = static_cast<char>(damaged[i / 8] ^ (1 << i % 8));
      target.readFromCompressedBuffer(damaged);  // some bits of gzip's header, its time for one, mean nothing
      EXPECT_TRUE(target == Node::testObject()) << i;
    }
  }
}

TEST(XmlFile, IsOneWholeCompressedPieceOrRefused) {
  std::string const gzip = bytesOf(GZIP), zstandard = bytesOf(ZSTANDARD);
  std::string const size(gzip.end() - 4, gzip.end()), head(gzip.begin(), gzip.end() - 4);
  std::tuple<Form, char const*, std::vector<std::string>> const theCases[] = {
      {GZIP, "bytes follow the compressed data", {gzip + gzip, gzip + size}},
      {GZIP, "more text than the compressed data claims to hold", {gzip + std::string(8, '\0')}},
      {GZIP,
       "damaged",
       {head + std::string("\xFF\xFF\xFF\x7F", 4), head + std::string("\xFF\xFF\0\0", 4), head + std::string(4, '\0'),
        bytesOf(PLAIN), zstandard}},
      {GZIP, "ends too early", {""}},
      {ZSTANDARD, "bytes follow the compressed data", {zstandard + zstandard, zstandard + "\n"}},
      {ZSTANDARD, "Unknown frame descriptor", {gzip}},
      {ZSTANDARD, "ends too early", {""}},
      {PLAIN, "line 1: a byte that is no character", {gzip}}};
  for (auto const& [form, message, bytes] : theCases)
    for (std::string const& file : bytes) expectRefused(form, file, message);
}

TEST(XmlFile, IsRefusedBeforeItTakesMemoryWhenItWouldBecomeTooLarge) {
  unsigned int const tooManyMegabytes = (ZuXmlReader::m_theMaximumDocumentSize >> 20) + 1;
  std::size_t const before = peakMemory();
  expectRefused(GZIP, gzipBomb(tooManyMegabytes, tooManyMegabytes << 20), "larger than a document may be");
  expectRefused(GZIP, gzipBomb(tooManyMegabytes, 1000), "more text than the compressed data claims to hold");
  expectRefused(ZSTANDARD, zstandardBomb(tooManyMegabytes * 8), "larger than a document may be");
  EXPECT_LT(peakMemory() - before, std::size_t{64} << 20);
}

TEST(XmlFile, ReadsOnlyRegularFilesAndNeverWaits) {
  TemporaryFolder const folder;
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  for (char const* const name : {"large", "secret"}) std::ofstream(folder.file(name)) << "<node/>";
  files::resize_file(folder.file("large"), ZuXmlReader::m_theMaximumDocumentSize + 1);
  files::permissions(folder.file("secret"), files::perms::none);
  std::pair<std::string, std::string> const theCases[] = {
      {folder.file("none"), "No such file"},
      {folder.file(""), "not a regular file"},
      {folder.file("pipe"), "not a regular file"},
      {"/dev/zero", "not a regular file"},
      {folder.file("large"), "larger than a document may be"},
      {geteuid() == 0 ? "" : folder.file("secret"), geteuid() == 0 ? "No such file" : "Permission denied"}};
  for (auto const& [file, message] : theCases) {
    PrintSink sink;
    Node target = Node::testObject();
    EXPECT_FALSE(target.readFromFile(file) || !(target == Node::testObject()));
    EXPECT_TRUE(saysOnce(sink, file + ": " + message));
  }
}

TEST(XmlFile, ReplacesTheOldOneAsAWholeOrNotAtAll) {
  TemporaryFolder const folder;
  std::string const file = folder.file("file");
  std::ofstream(file) << "old";
  files::permissions(file, files::perms(0640));
  files::create_symlink("file", folder.file("link"));
  PrintSink sink;
  EXPECT_FALSE(Text(std::string("\x01")).writeToFile(file, "text"));
  EXPECT_EQ(contents(file), "old");
  EXPECT_FALSE(Node().writeToFile(folder.file("none/file"), "node") || Node().writeToFile("/dev/full", "node"));
  EXPECT_EQ(sink.messages().size(), 3U);
  EXPECT_TRUE(Node().writeToFile("/dev/null", "node") && Node().writeToFile(folder.file("link"), "node"));
  EXPECT_TRUE(files::is_symlink(folder.file("link")) && files::is_character_file("/dev/null"));
  EXPECT_EQ(files::status(file).permissions(), files::perms(0640));
  EXPECT_TRUE(Node().readFromFile(file) && folder.count() == 2U);
}

TEST(XmlStream, ReadsToTheEndAndRefusesAStreamThatFailed) {
  std::stringstream stream;
  stream.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
  Node node;
  ASSERT_TRUE(Node::testObject().writeToStream(stream, "stream", "node"));
  EXPECT_TRUE(node.readFromStream(stream, "stream") && node == Node::testObject());
  PrintSink sink;
  std::ifstream missing("/nowhere");
  std::ofstream full("/dev/full"), throwing("/dev/full");
  throwing.exceptions(std::ios::failbit | std::ios::badbit);
  EXPECT_FALSE(node.readFromStream(missing, "missing") || node.writeToStream(full, "full", "node") ||
               node.writeToStream(throwing, "throwing", "node"));
  EXPECT_EQ(sink.messages().size(), 3U);
  EXPECT_TRUE(node == Node::testObject());
}
