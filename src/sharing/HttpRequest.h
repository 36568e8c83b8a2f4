#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/EventLoop.h"
#include "platform/StreamSocket.h"
#include "sharing/HttpResponseParser.h"
#include "sharing/SecretText.h"

/// Receives all results of a request. Its operations may call the request, and may destroy it.
class CHttpListener {
 public:
  /// (true, 0) when the connection is made. (false, error) when the connection or the request ends in any
  /// other way: a number of platform::socket_errors, 0 for an orderly close by the peer. The request is idle
  /// then.
  virtual void OnConnect(bool connected, int error) = 0;

  /// Once a request, when the final header block is complete; contentLength may be kNoContentLength. A reply
  /// that isn't HTTP gives (500, 0), and the request is idle.
  virtual void OnResponse(int status, std::uint32_t contentLength) = 0;

  /// Bytes of the body, in order. They are valid during the call alone.
  virtual void OnData(const char* data, std::uint32_t length) = 0;

  virtual ~CHttpListener() = default;
};

/// One HTTP/1.1 request over one plain connection: no TLS, no redirects, no chunks, no second request on the
/// same connection, no second try. Everything happens on the thread that made the object, through its event
/// loop, and that thread alone uses it.
///
/// Create once; then Get or Post, any number of AddQueryParam and AddHeader, and Send. When the request has
/// ended, Get or Post begins the next one. An operation that answers false tells the listener nothing.
class CHttpRequest {
 public:
  /// Answers with the address of a host. May handle events meanwhile.
  using HostLookup = std::function<std::optional<platform::Ipv4Address>(const std::string& host)>;

  static constexpr int kConnectTimeout = 10000;   // milliseconds
  static constexpr int kResponseTimeout = 60000;  // milliseconds

  CHttpRequest();
  ~CHttpRequest();
  CHttpRequest(const CHttpRequest&) = delete;
  CHttpRequest& operator=(const CHttpRequest&) = delete;

  /// The listener isn't owned. False for null.
  bool Create(CHttpListener* listener);

  void SetConnectTimeout(int milliseconds) { ConnectTimeout = milliseconds; }

  /// Bounds the silence of a server that neither answers nor takes more bytes, not the whole response. With 0
  /// the request ends, untold, when its last byte is sent.
  void SetResponseTimeout(int milliseconds) { ResponseTimeout = milliseconds; }

  /// In place of the look-up that blocks.
  void SetHostLookup(HostLookup lookup) { LookUp = std::move(lookup); }

  bool Get(std::string_view url);

  /// contentLength is that of the body alone, in bytes.
  bool Post(std::string_view url, std::uint32_t contentLength);

  bool AddQueryParam(std::string_view name, std::string_view value);

  /// False also for a line break in either text: it would begin another header.
  bool AddHeader(std::string_view name, std::string_view value);

  /// Queues bytes of the body, cut to the length that Post declared, and begins to connect if that isn't done
  /// yet. The body may come in several calls; a Get takes none.
  bool Send(const char* data, std::size_t length);

  /// Ends what is under way, with nobody told. The headers of the last response can still be asked for.
  void Reset();

  bool GetHeader(std::string_view name, std::string& value) const;

  /// From `index` on, which is left behind the header found.
  bool GetHeader(std::string_view name, std::string& value, std::size_t& index) const;

  /// The bytes that the whole request takes on the wire; before the first Send the body alone.
  std::uint64_t GetTotal() const { return Total; }

  /// How many of them are sent or wait to be sent.
  std::uint64_t GetQueued() const { return Sent + GetPending(); }

 private:
  enum class HttpMethod { None, Get, Post };

  bool Begin(HttpMethod method, std::string_view url, std::uint32_t contentLength);
  bool Connect();
  void QueueHead();
  void Queue(std::string_view bytes);
  std::size_t GetPending() const { return Buffer.Get().size() - BufferOffset; }

  void OnSocketEvent(platform::SocketEvent event, int error);
  void OnConnected(int error);
  void OnWritable();
  void OnAllSent(std::size_t last);
  void OnClosed(int error);
  void ReadAvailable();
  void TakeResponse(std::string_view bytes);
  void DeliverBody(std::string_view bytes);
  void End(int error);

  CHttpListener* Listener = nullptr;
  HostLookup LookUp = platform::LookUpHost;
  platform::Timer ConnectTimer;
  platform::Timer ResponseTimer;
  int ConnectTimeout = kConnectTimeout;
  int ResponseTimeout = kResponseTimeout;

  // Null whenever there is no connection. A weak pointer to it tells whether the connection of an event, or
  // this object at all, still stands after a call of the listener.
  std::shared_ptr<platform::StreamSocket> Socket;
  platform::Ipv4Address Address = 0;
  std::uint16_t Port = 0;
  HttpMethod Method = HttpMethod::None;
  std::uint64_t Total = 0;
  std::uint64_t Sent = 0;
  CSecretText Buffer;            // queued bytes; those before the offset are sent
  std::size_t BufferOffset = 0;  // so that nothing of a large photo is moved
  CSecretText Target;            // with the query, which may hold a password
  std::string Headers;
  bool Started = false;
  bool HasQuery = false;
  bool Writable = false;
  bool HeaderComplete = false;
  CHttpResponseParser Parser;
  std::uint32_t ContentLength = kNoContentLength;
  std::uint64_t BodyReceived = 0;
};
