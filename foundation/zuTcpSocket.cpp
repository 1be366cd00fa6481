#include "foundation/zuTcpSocket.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <exception>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlReader.h"

using boost::asio::ip::tcp;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::size_t theHeaderSize = 8;                // bytes
constexpr std::size_t theChunk = std::size_t{1} << 18;  // bytes that memory grows by, at most, before they arrive
constexpr std::size_t theLimit = ZuXmlReader::m_theMaximumDocumentSize;

bool refuse(char const* function, std::string const& why) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuTcpSocket::%s-->%s", function, why.c_str());
  return false;
}

/// When waiting ends; never, when the timeout is 0.
class Deadline {
 public:
  explicit Deadline(unsigned int milliseconds)
      : m_IsSet(milliseconds != 0), m_End(Clock::now() + std::chrono::milliseconds(milliseconds)) {}

  /// Waits until the descriptor is ready; false when the time is up.
  bool waitFor(int descriptor, short events) const {
    for (;;) {
      pollfd entry{descriptor, events, 0};
      int const ready = ::poll(&entry, 1, millisecondsLeft());
      if (ready > 0) return true;
      if (ready == 0 && m_IsSet && Clock::now() >= m_End) return false;
    }
  }

 private:
  int millisecondsLeft() const {
    if (!m_IsSet) return -1;
    // Rounded up: rounded down, the last fraction of a millisecond would be spent polling without a pause.
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(m_End - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 1 << 30));
  }

  bool m_IsSet;
  Clock::time_point m_End;
};

}  // namespace

struct ZuTcpSocket::Connection {
  boost::asio::io_context context;
  tcp::acceptor acceptor{context};
  tcp::socket socket{context};
  std::atomic<unsigned int> timeout{0};
  std::atomic<bool> isOver{true};

  /// A connected socket never blocks by itself, so that the deadline holds, and sends the short first part of a message
  /// without waiting for the peer's acknowledgement.
  error_code begin() {
    error_code error;
    socket.non_blocking(true, error);
    if (!error) socket.set_option(tcp::no_delay(true), error);
    isOver = static_cast<bool>(error);
    return error;
  }

  /// Moves exactly `size` bytes with `step`, a read_some or write_some. Returns why it can't, or nothing.
  template <class Step>
  std::string transfer(std::size_t size, short events, Deadline const& deadline, Step step) {
    for (std::size_t done = 0; done < size;) {
      if (!deadline.waitFor(socket.native_handle(), events)) return "the time is up";
      error_code error;
      done += step(done, error);
      if (error == boost::asio::error::eof) return "the peer closed the connection";
      if (error && error != boost::asio::error::interrupted && error != boost::asio::error::would_block) {
        return error.message();
      }
    }
    return {};
  }

  std::string read(char* bytes, std::size_t size, Deadline const& deadline) {
    return transfer(size, POLLIN, deadline, [&](std::size_t done, error_code& error) {
      return socket.read_some(boost::asio::buffer(bytes + done, size - done), error);
    });
  }

  std::string write(char const* bytes, std::size_t size, Deadline const& deadline) {
    return transfer(size, POLLOUT, deadline, [&](std::size_t done, error_code& error) {
      return socket.write_some(boost::asio::buffer(bytes + done, size - done), error);
    });
  }

  std::string receive(std::string& message) {
    Deadline const deadline(timeout);
    std::array<char, theHeaderSize> header;
    std::string fault = read(header.data(), header.size(), deadline);
    if (!fault.empty()) return fault;
    std::uint64_t size = 0;
    for (char const byte : header) size = size << 8 | static_cast<unsigned char>(byte);
    if (size > theLimit) return "a message of " + std::to_string(size) + " bytes is refused";
    std::string bytes;
    while (bytes.size() < size) {
      std::size_t const old = bytes.size();
      bytes.resize(old + std::min<std::size_t>(theChunk, static_cast<std::size_t>(size) - old));
      fault = read(bytes.data() + old, bytes.size() - old, deadline);
      if (!fault.empty()) return fault + " within a message of " + std::to_string(size) + " bytes";
    }
    message = std::move(bytes);
    return {};
  }

  /// Ends the connection in a way that another thread, which may be using the socket, survives.
  bool fail(char const* function, std::string const& why) {
    isOver = true;
    ::shutdown(socket.native_handle(), SHUT_RDWR);
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
  if (!error) return true;
  std::string const why = error.message();
  acceptor.close(error);
  return refuse("listen", "port " + std::to_string(port) + ": " + why);
}

std::uint16_t ZuTcpSocket::port() const {
  error_code error;
  tcp::endpoint const endpoint = m_Connection->acceptor.local_endpoint(error);
  return error ? std::uint16_t{0} : endpoint.port();
}

bool ZuTcpSocket::accept() {
  error_code error;
  close();
  if (!m_Connection->acceptor.is_open()) return refuse("accept", "not listening");
  if (!Deadline(m_Connection->timeout).waitFor(m_Connection->acceptor.native_handle(), POLLIN)) {
    return refuse("accept", "the time is up");
  }
  m_Connection->acceptor.accept(m_Connection->socket, error);
  if (!error) error = m_Connection->begin();
  return !error || refuse("accept", error.message());
}

bool ZuTcpSocket::connect(std::string const& host, std::uint16_t port) {
  error_code error;
  close();
  boost::asio::io_context& context = m_Connection->context;
  auto const endpoints = tcp::resolver(context).resolve(host, std::to_string(port), error);
  if (!error) {
    error = boost::asio::error::timed_out;
    boost::asio::async_connect(m_Connection->socket, endpoints,
                               [&](error_code const& result, tcp::endpoint const&) { error = result; });
    context.restart();
    if (m_Connection->timeout == 0) {
      context.run();
    } else {
      context.run_for(std::chrono::milliseconds(m_Connection->timeout));
    }
    bool const isTimeUp = !context.stopped();
    if (isTimeUp) close();
    context.run();
    if (isTimeUp) error = boost::asio::error::timed_out;
  }
  if (!error) error = m_Connection->begin();
  if (!error) return true;
  close();
  return refuse("connect", host + ", port " + std::to_string(port) + ": " + error.message());
}

bool ZuTcpSocket::isConnected() const { return !m_Connection->isOver; }

void ZuTcpSocket::close() {
  error_code ignored;
  m_Connection->isOver = true;
  m_Connection->socket.close(ignored);
}

void ZuTcpSocket::setTimeout(unsigned int milliseconds) { m_Connection->timeout = milliseconds; }

bool ZuTcpSocket::send(std::string const& message) const {
  if (!isConnected()) return refuse("send", "not connected");
  if (message.size() > theLimit) {
    return refuse("send", "a message of " + std::to_string(message.size()) + " bytes is refused");
  }
  std::array<char, theHeaderSize> header;
  std::uint64_t rest = message.size();
  for (std::size_t i = theHeaderSize; i-- > 0; rest >>= 8) header[i] = static_cast<char>(rest & 0xFFU);
  Deadline const deadline(m_Connection->timeout);
  std::string fault = m_Connection->write(header.data(), header.size(), deadline);
  if (fault.empty()) fault = m_Connection->write(message.data(), message.size(), deadline);
  return fault.empty() || m_Connection->fail("send", fault);
}

bool ZuTcpSocket::receive(std::string& message) const {
  if (!isConnected()) return refuse("receive", "not connected");
  std::string fault;
  try {
    fault = m_Connection->receive(message);
  } catch (std::exception const& lackOfMemory) {
    fault = lackOfMemory.what();
  }
  return fault.empty() || m_Connection->fail("receive", fault);
}
