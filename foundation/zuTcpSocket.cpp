#pragma GCC diagnostic ignored "-Wnull-dereference"  // seen in Asio's scheduler, where there are none

#include "foundation/zuTcpSocket.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlReader.h"

using boost::asio::ip::tcp;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::size_t theHeaderSize = 8;                // bytes
constexpr std::size_t theChunk = std::size_t{1} << 18;  // bytes that memory grows by, at most, before they arrive

bool refuse(char const* function, std::string const& why) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuTcpSocket::%s-->%s", function, why.c_str());
  return false;
}

}  // namespace

struct ZuTcpSocket::Connection {
  boost::asio::io_context context;
  tcp::acceptor acceptor{context};
  tcp::socket socket{context};
  std::atomic<unsigned int> timeout{0};

  /// Waits until the socket is ready; false when the time is up.
  bool waitFor(short events, Clock::time_point deadline) {
    pollfd entry{socket.native_handle(), events, 0};
    int left = -1;
    if (timeout != 0) {
      auto const rest = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
      left = static_cast<int>(std::clamp<long long>(rest, 0, 1 << 30));
    }
    return ::poll(&entry, 1, left) != 0;
  }

  /// Moves exactly `size` bytes with `step`, a read_some or write_some. Returns why it can't, or nothing.
  template <class Step>
  std::string transfer(std::size_t size, short events, Step step) {
    Clock::time_point const deadline = Clock::now() + std::chrono::milliseconds(timeout);
    for (std::size_t done = 0; done < size;) {
      if (!waitFor(events, deadline)) return "the peer is silent";
      error_code error;
      done += step(done, error);
      if (error == boost::asio::error::eof) return "the peer closed the connection within a message";
      if (error && error != boost::asio::error::interrupted && error != boost::asio::error::would_block) {
        return error.message();
      }
    }
    return {};
  }

  std::string read(char* bytes, std::size_t size) {
    return transfer(size, POLLIN, [&](std::size_t done, error_code& error) {
      return socket.read_some(boost::asio::buffer(bytes + done, size - done), error);
    });
  }

  std::string write(char const* bytes, std::size_t size) {
    return transfer(size, POLLOUT, [&](std::size_t done, error_code& error) {
      return socket.write_some(boost::asio::buffer(bytes + done, size - done), error);
    });
  }

  bool fail(char const* function, std::string const& why) {
    error_code ignored;
    socket.close(ignored);
    return refuse(function, why);
  }
};

ZuTcpSocket::ZuTcpSocket() : m_Connection(std::make_unique<Connection>()) {}

ZuTcpSocket::~ZuTcpSocket() = default;

bool ZuTcpSocket::listen(std::uint16_t port, bool loopbackOnly) {
  error_code error;
  tcp::acceptor& acceptor = m_Connection->acceptor;
  acceptor.close(error);
  tcp::endpoint const endpoint =
      loopbackOnly ? tcp::endpoint(boost::asio::ip::address_v4::loopback(), port) : tcp::endpoint(tcp::v4(), port);
  acceptor.open(endpoint.protocol(), error);
  if (!error) acceptor.set_option(tcp::acceptor::reuse_address(true), error);
  if (!error) acceptor.bind(endpoint, error);
  if (!error) acceptor.listen(boost::asio::socket_base::max_listen_connections, error);
  return !error || refuse("listen", error.message());
}

std::uint16_t ZuTcpSocket::port() const {
  error_code error;
  tcp::endpoint const endpoint = m_Connection->acceptor.local_endpoint(error);
  return error ? std::uint16_t{0} : endpoint.port();
}

bool ZuTcpSocket::accept() {
  error_code error;
  close();
  m_Connection->acceptor.accept(m_Connection->socket, error);
  return !error || refuse("accept", error.message());
}

bool ZuTcpSocket::connect(std::string const& host, std::uint16_t port) {
  error_code error;
  close();
  tcp::resolver resolver(m_Connection->context);
  auto const endpoints = resolver.resolve(host, std::to_string(port), error);
  if (!error) boost::asio::connect(m_Connection->socket, endpoints, error);
  if (!error) return true;
  close();
  return refuse("connect", host + ": " + error.message());
}

bool ZuTcpSocket::isConnected() const { return m_Connection->socket.is_open(); }

void ZuTcpSocket::close() {
  error_code ignored;
  m_Connection->socket.close(ignored);
}

void ZuTcpSocket::setTimeout(unsigned int milliseconds) { m_Connection->timeout = milliseconds; }

bool ZuTcpSocket::send(std::string const& message) const {
  if (!isConnected()) return refuse("send", "not connected");
  std::array<char, theHeaderSize> header;
  std::uint64_t rest = message.size();
  for (std::size_t i = theHeaderSize; i-- > 0; rest >>= 8) header[i] = static_cast<char>(rest & 0xFFU);
  std::string fault = m_Connection->write(header.data(), header.size());
  if (fault.empty()) fault = m_Connection->write(message.data(), message.size());
  return fault.empty() || m_Connection->fail("send", fault);
}

bool ZuTcpSocket::receive(std::string& message) const {
  if (!isConnected()) return refuse("receive", "not connected");
  std::array<char, theHeaderSize> header;
  std::string fault = m_Connection->read(header.data(), header.size());
  if (!fault.empty()) return m_Connection->fail("receive", fault);
  std::uint64_t size = 0;
  for (char const byte : header) size = size << 8 | static_cast<unsigned char>(byte);
  if (size > ZuXmlReader::m_theMaximumDocumentSize) {
    return m_Connection->fail("receive", "a message of " + std::to_string(size) + " bytes is refused");
  }
  std::string bytes;
  while (bytes.size() < size) {
    std::size_t const old = bytes.size();
    bytes.resize(old + std::min<std::size_t>(theChunk, static_cast<std::size_t>(size) - old));
    fault = m_Connection->read(bytes.data() + old, bytes.size() - old);
    if (!fault.empty()) return m_Connection->fail("receive", fault);
  }
  message = std::move(bytes);
  return true;
}
