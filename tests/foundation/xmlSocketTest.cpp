// Documents over TCP, with honest peers and others.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <random>
#include <thread>

#include "foundation/zuTcpSocket.h"
#include "tests/printSink.h"
#include "tests/xmlSamples.h"

namespace {

/// A peer that knows nothing of messages.
class RawPeer {
 public:
  explicit RawPeer(std::uint16_t port) : m_Socket(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(m_Socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  ~RawPeer() { close(); }
  RawPeer(RawPeer const&) = delete;
  RawPeer& operator=(RawPeer const&) = delete;
  void send(std::string const& bytes) const {
    EXPECT_EQ(::send(m_Socket, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
  }
  void close() {
    if (m_Socket >= 0) ::close(m_Socket);
    m_Socket = -1;
  }

 private:
  int m_Socket;
};

constexpr unsigned int theShortTime = 50;  // ms; long enough for whatever has been sent over loopback to be there

}  // namespace

TEST(XmlSocket, CarriesManyMessagesOfEveryFormOverOneConnection) {
  ZuXmlVectorVector points;  // 10 MB as a document
  std::mt19937_64 engine(11);
  auto const coordinate = [&] { return static_cast<double>(engine() >> 11) * 0x1p-53; };
  for (unsigned int i = 0; i < 130000; ++i) points.pushBack(ZuVector(coordinate(), coordinate(), coordinate()));
  ZuTcpSocket server;
  ASSERT_TRUE(server.listen(0));
  std::thread client([&points, port = server.port()] {
    ZuTcpSocket socket;
    EXPECT_TRUE(socket.connect("localhost", port));
    ZuXmlVectorVector echo;
    for (int compression : {0, 1, 2}) {
      EXPECT_TRUE(Node::testObject().writeToTcpSocket(&socket, "node", compression));
      EXPECT_TRUE(points.writeToTcpSocket(&socket, "points", compression));
      EXPECT_TRUE(echo.readFromTcpSocket(&socket));
      EXPECT_TRUE(echo == points);
    }
  });
  ASSERT_TRUE(server.accept());
  for (int i = 0; i < 3; ++i) {
    Node node;
    ZuXmlVectorVector received;
    EXPECT_TRUE(node.readFromTcpSocket(&server));
    EXPECT_TRUE(received.readFromTcpSocket(&server));
    EXPECT_TRUE(received.writeToTcpSocket(&server, "points", 0));
    EXPECT_TRUE(node == Node::testObject());
    EXPECT_TRUE(received == points);
  }
  client.join();
  PrintSink sink;
  Node node = Node::testObject();
  EXPECT_FALSE(node.readFromTcpSocket(&server));
  EXPECT_EQ(sink.messages(), std::vector<std::string>{"ZuTcpSocket::receive-->the peer closed the connection"});
  EXPECT_TRUE(node == Node::testObject());
  EXPECT_FALSE(server.isConnected());
}

TEST(XmlSocket, SurvivesHostilePeers) {
  struct {
    std::string bytes;
    bool closes;
    std::string message;
  } const theCases[] = {
      {"", true, "the peer closed the connection"},
      {"", false, "the time is up"},
      {std::string(5, '\0'), true, "the peer closed the connection"},
      {std::string(5, '\0'), false, "the time is up"},
      {std::string("\0\0\0\0\x80\0\0\0", 8), false, "a message of 2147483648 bytes is refused"},
      {std::string(8, '\xFF'), false, "a message of 18446744073709551615 bytes is refused"},
      {std::string("\0\0\0\0\x3F\xFF\xFF\xFF", 8) + "<node>", true, "within a message of 1073741823 bytes"},
      {std::string("\0\0\0\0\x3F\xFF\xFF\xFF", 8) + "<node>", false, "within a message of 1073741823 bytes"},
      {std::string("\0\0\0\0\0\0\0\x06", 8) + "<node>", false, "ZuXmlReader::open-->socket, line 1"},
      {std::string("\0\0\0\0\0\0\0\x02\x1F\x8B", 10), false, "the compressed data ends too early"},
      {std::string(8, '\0'), false, "no element"},
  };
  ZuTcpSocket server;
  ASSERT_TRUE(server.listen(0));
  server.setTimeout(theShortTime);
  for (auto const& theCase : theCases) {
    RawPeer peer(server.port());
    ASSERT_TRUE(server.accept());
    peer.send(theCase.bytes);
    if (theCase.closes) peer.close();
    Node target = Node::testObject();
    PrintSink sink;
    EXPECT_FALSE(target.readFromTcpSocket(&server));
    ASSERT_EQ(sink.messages().size(), 1U);
    EXPECT_NE(sink.messages()[0].find(theCase.message), std::string::npos) << sink.messages()[0];
    EXPECT_TRUE(target == Node::testObject());
  }
}

TEST(XmlSocket, WaitsNoLongerThanToldForAPeerThatDoesNotComeOrDoesNotRead) {
  ZuTcpSocket server;
  ASSERT_TRUE(server.listen(0));
  server.setTimeout(theShortTime);
  PrintSink sink;
  EXPECT_FALSE(server.accept());
  RawPeer peer(server.port());
  ASSERT_TRUE(server.accept());
  EXPECT_FALSE(server.send(std::string(std::size_t{64} << 20, ' ')));  // beyond what the system keeps for the peer
  EXPECT_FALSE(server.isConnected());
  EXPECT_FALSE(server.send("more"));
  EXPECT_EQ(sink.messages(),
            (std::vector<std::string>{"ZuTcpSocket::accept-->the time is up", "ZuTcpSocket::send-->the time is up",
                                      "ZuTcpSocket::send-->not connected"}));
}

TEST(XmlSocket, PrintsWhyItCannotBeUsed) {
  ZuTcpSocket listening;
  ZuTcpSocket socket;
  Node node;
  ASSERT_TRUE(listening.listen(0));
  std::uint16_t const port = listening.port();
  PrintSink sink;
  EXPECT_FALSE(socket.listen(port));
  EXPECT_EQ(socket.port(), 0U);
  EXPECT_FALSE(socket.accept());
  EXPECT_FALSE(node.readFromTcpSocket(&socket));
  EXPECT_FALSE(node.writeToTcpSocket(&socket, "node", 0));
  EXPECT_FALSE(node.readFromTcpSocket(nullptr));
  EXPECT_FALSE(node.writeToTcpSocket(nullptr, "node", 0));
  EXPECT_FALSE(node.writeToTcpSocket(&socket, "node", 3));
  EXPECT_FALSE(ZuTcpSocket().connect("localhost", 1));  // nobody listens there
  EXPECT_EQ(sink.messages().size(), 8U);
}
