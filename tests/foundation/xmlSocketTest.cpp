// Documents over TCP, with honest peers and others.
#include <boost/asio/ip/tcp.hpp>
#include <thread>

#include "foundation/zuTcpSocket.h"
#include "tests/oneMessage.h"
#include "tests/xmlSamples.h"

namespace {

using boost::asio::ip::tcp;

/// A peer that knows nothing of messages.
tcp::iostream rawPeer(ZuTcpSocket const& server) { return tcp::iostream("127.0.0.1", std::to_string(server.port())); }

constexpr unsigned int theShortTime = 50;  // ms; long enough for whatever has been sent over loopback to be there

}  // namespace

TEST(XmlSocket, CarriesManyMessagesOfEveryFormOverOneConnection) {
  ZuXmlVectorVector points;  // 10 MB as a document
  RandomValues random(11);
  for (unsigned int i = 0; i < 130000; ++i) points.pushBack(random.vector());
  ZuTcpSocket server;
  ASSERT_TRUE(server.listen(0));
  std::thread client([&points, port = server.port()] {
    ZuTcpSocket socket;
    EXPECT_TRUE(socket.connect("localhost", port));
    ZuXmlVectorVector echo;
    for (int compression : {0, 1, 2}) {
      EXPECT_TRUE(Node::testObject().writeToTcpSocket(&socket, "node", compression));
      EXPECT_TRUE(points.writeToTcpSocket(&socket, "points", compression));
      EXPECT_TRUE(echo.readFromTcpSocket(&socket) && echo == points);
    }
  });
  ASSERT_TRUE(server.accept());
  for (int i = 0; i < 3; ++i) {
    Node node;
    ZuXmlVectorVector received;
    EXPECT_TRUE(node.readFromTcpSocket(&server) && node == Node::testObject());
    EXPECT_TRUE(received.readFromTcpSocket(&server) && received == points);
    EXPECT_TRUE(received.writeToTcpSocket(&server, "points", 0));
  }
  client.join();
  PrintSink sink;
  EXPECT_FALSE(Node().readFromTcpSocket(&server) || server.isConnected());
  EXPECT_EQ(sink.messages(), Messages{"ZuTcpSocket::receive-->the peer closed the connection"});
}

TEST(XmlSocket, SurvivesHostilePeers) {
  using namespace std::string_literals;
  std::tuple<std::string, bool, char const*> const theCases[] = {
      {"", false, "the time is up"},
      {"\0\0\0\0\0"s, true, "the peer closed the connection"},
      {"\0\0\0\0\0"s, false, "the time is up"},
      {"\0\0\0\0\x80\0\0\0"s, false, "a message of 2147483648 bytes is refused"},
      {std::string(8, '\xFF'), false, "a message of 18446744073709551615 bytes is refused"},
      {"\0\0\0\0\x3F\xFF\xFF\xFF<node>"s, true, "within a message of 1073741823 bytes"},
      {"\0\0\0\0\x3F\xFF\xFF\xFF<node>"s, false, "within a message of 1073741823 bytes"},
      {"\0\0\0\0\0\0\0\x06<node>"s, false, "ZuXmlReader::open-->socket, line 1"},
      {"\0\0\0\0\0\0\0\x02\x1F\x8B"s, false, "the compressed data ends too early"},
      {std::string(8, '\0'), false, "no element"},
  };
  ZuTcpSocket server;
  ASSERT_TRUE(server.listen(0));
  server.setTimeout(theShortTime);
  for (auto const& [bytes, closes, message] : theCases) {
    tcp::iostream peer = rawPeer(server);
    ASSERT_TRUE(server.accept() && peer << bytes << std::flush);
    if (closes) peer.socket().shutdown(tcp::socket::shutdown_send);
    Node target = Node::testObject();
    PrintSink sink;
    EXPECT_FALSE(target.readFromTcpSocket(&server));
    EXPECT_TRUE(saysOnce(sink, message));
    EXPECT_TRUE(target == Node::testObject());
  }
}

TEST(XmlSocket, WaitsNoLongerThanToldForAPeerThatDoesNotComeOrDoesNotRead) {
  ZuTcpSocket server;
  ASSERT_TRUE(server.listen(0));
  server.setTimeout(theShortTime);
  PrintSink sink;
  EXPECT_FALSE(server.accept());
  tcp::iostream const peer = rawPeer(server);
  ASSERT_TRUE(server.accept());
  EXPECT_FALSE(server.send(std::string(std::size_t{64} << 20, ' ')));  // beyond what the system keeps for the peer
  EXPECT_FALSE(server.isConnected() || server.send("more"));
  EXPECT_EQ(sink.messages(), (Messages{"ZuTcpSocket::accept-->the time is up", "ZuTcpSocket::send-->the time is up",
                                       "ZuTcpSocket::send-->not connected"}));
}

TEST(XmlSocket, PrintsWhyItCannotBeUsed) {
  ZuTcpSocket listening, socket;
  Node node;
  ASSERT_TRUE(listening.listen(0));
  PrintSink sink;
  EXPECT_FALSE(socket.listen(listening.port()) || socket.accept() || socket.port() != 0U);
  for (ZuTcpSocket* const none : {&socket, static_cast<ZuTcpSocket*>(nullptr)})
    EXPECT_FALSE(node.readFromTcpSocket(none) || node.writeToTcpSocket(none, "node", 0));
  EXPECT_FALSE(node.writeToTcpSocket(&socket, "node", 3));
  EXPECT_FALSE(ZuTcpSocket().connect("localhost", 1));  // nobody listens there
  EXPECT_EQ(sink.messages().size(), 8U);
}
