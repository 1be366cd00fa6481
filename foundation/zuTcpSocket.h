// zuTcpSocket.h - documents over TCP, each behind its length. Group: XML objects.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "foundation/zuExport.h"

/// One end of a TCP connection that carries messages: a length of eight bytes, most significant first, then the bytes.
///
/// Every function prints one line and returns false when it fails. A connection on which sending or receiving failed is
/// over in both directions. Blocks without a limit of time unless setTimeout() sets one. One thread may send while
/// another receives; everything else is for one thread at a time.
class ZU_API ZuTcpSocket {
 public:
  ZuTcpSocket();
  ~ZuTcpSocket();
  ZuTcpSocket(ZuTcpSocket const&) = delete;
  ZuTcpSocket& operator=(ZuTcpSocket const&) = delete;

  /// Listens on the loopback interface, or on all; port 0 takes a free one.
  bool listen(std::uint16_t port, bool loopbackOnly = true);
  /// The port that is listened on; 0 when there is none.
  std::uint16_t port() const;
  /// Waits for one peer, whose connection takes the place of the one that there may be.
  bool accept();
  /// Finding the address of a host by its name may take longer than the timeout.
  bool connect(std::string const& host, std::uint16_t port);
  bool isConnected() const;
  void close();
  /// Milliseconds that an accept, a connect, and the whole of one message may take; 0, the default, waits for ever.
  void setTimeout(unsigned int milliseconds);

  /// Sends one message; one beyond ZuXmlReader::m_theMaximumDocumentSize is refused.
  bool send(std::string const& message) const;
  /// Receives one message; `message` is unchanged when it fails. A length beyond ZuXmlReader::m_theMaximumDocumentSize
  /// is refused before anything more is read, and memory grows with the bytes that arrive, not with the length that is
  /// claimed.
  bool receive(std::string& message) const;

 private:
  struct Connection;
  std::unique_ptr<Connection> m_Connection;
};
