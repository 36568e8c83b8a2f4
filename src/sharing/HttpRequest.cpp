#include "sharing/HttpRequest.h"

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

#include "base/Format.h"
#include "platform/SocketErrors.h"
#include "sharing/HttpUrl.h"

using platform::SocketEvent;
namespace socket_errors = platform::socket_errors;

namespace {

constexpr platform::Ipv4Address kNoAddress = 0xFFFFFFFF;

bool BreaksLine(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

}  // namespace

CHttpRequest::CHttpRequest()
    : ConnectTimer([this] { End(socket_errors::kTimedOut); }),
      ResponseTimer([this] { End(socket_errors::kNetworkDown); }) {}

CHttpRequest::~CHttpRequest() { Reset(); }

bool CHttpRequest::Create(CHttpListener* listener) {
  Listener = listener;
  return Listener != nullptr;
}

bool CHttpRequest::Get(std::string_view url) { return Begin(HttpMethod::Get, url, 0); }

bool CHttpRequest::Post(std::string_view url, std::uint32_t contentLength) {
  return Begin(HttpMethod::Post, url, contentLength);
}

bool CHttpRequest::Begin(HttpMethod method, std::string_view url, std::uint32_t contentLength) {
  if (Started || Listener == nullptr) return false;
  const std::optional<HttpUrl> parts = SplitUrl(url);
  if (!parts) return false;
  const std::optional<platform::Ipv4Address> address = LookUp(parts->Host);
  if (!address || *address == kNoAddress) return false;

  Address = *address;
  Port = parts->Port;
  Target.Assign(parts->Target);
  HasQuery = parts->Target.find('?') != std::string::npos;
  Headers = Format("Host: %s\r\n", parts->Authority);
  Method = method;
  Total = contentLength;
  Sent = 0;
  Buffer.Clear();
  BufferOffset = 0;
  Parser.Clear();
  ContentLength = kNoContentLength;
  BodyReceived = 0;
  return true;
}

bool CHttpRequest::AddQueryParam(std::string_view name, std::string_view value) {
  if (Started || Method == HttpMethod::None || name.empty()) return false;
  Target.Append(HasQuery ? "&" : "?");
  HasQuery = true;
  Target.Append(name);
  Target.Append("=");
  std::string escaped = EscapeQueryValue(value);
  Target.Append(escaped);
  WipeText(escaped);
  return true;
}

bool CHttpRequest::AddHeader(std::string_view name, std::string_view value) {
  if (Started || Method == HttpMethod::None || name.empty() || value.empty()) return false;
  if (BreaksLine(name) || BreaksLine(value)) return false;
  Headers += Format("%s: %s\r\n", name, value);
  return true;
}

bool CHttpRequest::Send(const char* data, std::size_t length) {
  if (Method == HttpMethod::None) return false;
  if (Started && (Method != HttpMethod::Post || Sent == Total)) return false;
  try {
    if (!Socket && !Connect()) {
      Reset();
      return false;
    }
    if (GetQueued() == 0) QueueHead();
    if (Method == HttpMethod::Post && data != nullptr) {
      Queue({data, static_cast<std::size_t>(std::min<std::uint64_t>(length, Total - GetQueued()))});
    }
  } catch (const std::bad_alloc&) {
    Reset();
    return false;
  }
  Started = true;
  return true;
}

bool CHttpRequest::Connect() {
  Socket = std::make_shared<platform::StreamSocket>(
      [this](SocketEvent event, int error) { OnSocketEvent(event, error); });
  if (Socket->Connect(Address, Port) != socket_errors::kWouldBlock) return false;
  ConnectTimer.Start(ConnectTimeout);
  return true;
}

void CHttpRequest::QueueHead() {
  if (Method == HttpMethod::Post) Headers += Format("Content-Length: %u\r\n", Total);
  CSecretText head;
  head.Append(Method == HttpMethod::Post ? "POST " : "GET ");
  head.Append(Target.Get());
  head.Append(" HTTP/1.1\r\n");
  head.Append(Headers);
  head.Append("\r\n");
  Total += head.Get().size();
  Queue(head.Get());
}

void CHttpRequest::Queue(std::string_view bytes) {
  if (bytes.empty()) return;
  // Room for all that is still to come, so that a large body is copied once.
  if (BufferOffset == 0) Buffer.Reserve(static_cast<std::size_t>(Total));
  Buffer.Append(bytes);
  if (Writable) Socket->Post(SocketEvent::Write);
}

void CHttpRequest::Reset() {
  ConnectTimer.Stop();
  ResponseTimer.Stop();
  Socket.reset();
  Method = HttpMethod::None;
  Buffer.Clear();
  BufferOffset = 0;
  Target.Clear();
  Started = HasQuery = Writable = HeaderComplete = false;
}

bool CHttpRequest::GetHeader(std::string_view name, std::string& value) const {
  std::size_t index = 0;
  return GetHeader(name, value, index);
}

bool CHttpRequest::GetHeader(std::string_view name, std::string& value, std::size_t& index) const {
  return Parser.GetHeader(name, value, index);
}

void CHttpRequest::OnSocketEvent(SocketEvent event, int error) {
  switch (event) {
    case SocketEvent::Connect:
      OnConnected(error);
      break;
    case SocketEvent::Write:
      OnWritable();
      break;
    case SocketEvent::Read:
      ReadAvailable();
      break;
    case SocketEvent::Close:
      OnClosed(error);
      break;
  }
}

void CHttpRequest::OnConnected(int error) {
  ConnectTimer.Stop();
  if (error != socket_errors::kNone) {
    End(error);
    return;
  }
  const std::weak_ptr<platform::StreamSocket> current = Socket;
  Listener->OnConnect(true, 0);
  if (current.expired()) return;
  Writable = true;
  if (GetPending() > 0) Socket->Post(SocketEvent::Write);
}

void CHttpRequest::OnWritable() {
  Writable = true;
  while (GetPending() > 0 && Writable) {
    std::size_t count = 0;
    const int error = Socket->Send(Buffer.Get().data() + BufferOffset, GetPending(), count);
    if (error == socket_errors::kWouldBlock) {
      Writable = false;
      // A server that takes nothing more is silent too.
      if (ResponseTimeout > 0) ResponseTimer.Start(ResponseTimeout);
    } else if (error != socket_errors::kNone) {
      End(error);
      return;
    } else {
      BufferOffset += count;
      Sent += count;
      if (Sent == Total) OnAllSent(count);
    }
  }
}

void CHttpRequest::OnAllSent(std::size_t last) {
  if (ResponseTimeout <= 0) {
    Reset();
    return;
  }
  // The system still has the last bytes to send: one millisecond for each.
  const std::size_t room = static_cast<std::size_t>(std::numeric_limits<int>::max() - ResponseTimeout);
  ResponseTimer.Start(ResponseTimeout + static_cast<int>(std::min(last, room)));
}

void CHttpRequest::OnClosed(int error) {
  ConnectTimer.Stop();
  ResponseTimer.Stop();
  const std::weak_ptr<platform::StreamSocket> current = Socket;
  ReadAvailable();
  if (!current.expired()) End(error);
}

void CHttpRequest::ReadAvailable() {
  const std::size_t readable = Socket->CountReadable();
  if (readable == 0) return;
  if (ResponseTimeout > 0) ResponseTimer.Start(ResponseTimeout);
  std::vector<char> bytes;
  try {
    bytes.resize(readable);
  } catch (const std::bad_alloc&) {
    End(socket_errors::kNoBuffers);
    return;
  }
  const std::size_t count = Socket->Read(bytes.data(), readable);
  if (count > 0) TakeResponse({bytes.data(), count});
}

void CHttpRequest::TakeResponse(std::string_view bytes) {
  if (!HeaderComplete) {
    CHttpResponseParser::Found found{};
    try {
      found = Parser.Take(bytes);
    } catch (const std::bad_alloc&) {
      End(socket_errors::kNoBuffers);
      return;
    }
    if (found == CHttpResponseParser::Found::Nothing) return;
    if (found == CHttpResponseParser::Found::NoHttp) {
      Reset();
      Listener->OnResponse(500, 0);
      return;
    }
    HeaderComplete = true;
    ContentLength = Parser.GetContentLength();
    const std::weak_ptr<platform::StreamSocket> current = Socket;
    Listener->OnResponse(Parser.GetStatus(), ContentLength);
    if (current.expired()) return;
  }
  DeliverBody(bytes);
}

void CHttpRequest::DeliverBody(std::string_view bytes) {
  const bool isMeasured = ContentLength != kNoContentLength;
  if (isMeasured) bytes = bytes.substr(0, static_cast<std::size_t>(ContentLength - BodyReceived));
  if (!bytes.empty()) {
    const std::weak_ptr<platform::StreamSocket> current = Socket;
    Listener->OnData(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    if (current.expired()) return;
    BodyReceived += bytes.size();
  }
  if (isMeasured && BodyReceived == ContentLength) Reset();
}

void CHttpRequest::End(int error) {
  Reset();
  Listener->OnConnect(false, error);
}
