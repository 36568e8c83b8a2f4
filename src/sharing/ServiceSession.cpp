#include "sharing/ServiceSession.h"

#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "base/Format.h"
#include "base/Messages.h"
#include "base/Settings.h"
#include "platform/Files.h"
#include "sharing/ServiceHost.h"
#include "sharing/UploadLog.h"
#include "sharing/WaitAside.h"

namespace {

constexpr int kAttempts = 3;
constexpr int kStatusOk = 200;
constexpr std::string_view kUserAgent = "quillaraOrg/1.0";
constexpr std::string_view kLoginSetting = "Login";
constexpr std::string_view kLoggingSetting = "QuillaraResponseLogging";

// The length of a request counts in 32 bits; this leaves room for the head.
constexpr std::size_t kLargestBody = std::numeric_limits<std::uint32_t>::max() - (std::size_t{1} << 20);

// A large photo is queued in parts, so that the windows paint in between.
constexpr std::size_t kSlice = std::size_t{8} << 20;

/// Holds a flag while it lives.
class CBusyScope {
 public:
  explicit CBusyScope(bool& flag) : Flag(flag) { Flag = true; }
  ~CBusyScope() { Flag = false; }
  CBusyScope(const CBusyScope&) = delete;
  CBusyScope& operator=(const CBusyScope&) = delete;

 private:
  bool& Flag;
};

/// Finds out whether a connection can be opened.
class CReachabilityProbe : public CHttpListener {
 public:
  void OnConnect(bool connected, int) override {
    Connected = connected;
    Finished = true;
    Request.Reset();  // the connection tells enough: nothing is sent
  }
  void OnResponse(int, std::uint32_t) override {}
  void OnData(const char*, std::uint32_t) override {}

  /// Tries for at most `limit` milliseconds to find the host, and as long to connect.
  bool IsReachable(CServiceDesktop& desktop, const std::string& host, int limit) {
    Request.Create(this);
    Request.SetConnectTimeout(limit);
    Request.SetHostLookup(
        [&](const std::string& name) { return LookUpHostAside(desktop, nullptr, limit, name); });
    if (!Request.Get(host) || !Request.Send(nullptr, 0)) return false;
    while (!Finished && !desktop.IsEnding()) desktop.HandleEvents(kWaitStep);
    return Connected;
  }

 private:
  CHttpRequest Request;
  bool Connected = false;
  bool Finished = false;
};

}  // namespace

std::string ExtractTag(std::string_view response, std::string_view tag) {
  const std::string opening = Format("<%s>", tag);
  const std::size_t begin = response.find(opening);
  const std::size_t end = response.find(Format("</%s>", tag));
  if (begin == std::string_view::npos || end == std::string_view::npos) return {};
  const std::size_t value = begin + opening.size();
  return end < value ? std::string() : std::string(response.substr(value, end - value));
}

bool CheckLoginEntry(const LoginEntry& entry) {
  if (!entry.UserName.empty() && !entry.Password.IsEmpty()) return true;
  ShowMessageId(StringId::LoginNeedsNameAndPassword);
  return false;
}

CServiceSession::CServiceSession(CServiceDesktop& desktop, const ServiceTimes& times)
    : CResponseCollector(desktop, times), Host(GetServiceHost()) {}

bool CServiceSession::IsServiceReachable(CServiceDesktop& desktop, const ServiceTimes& times) {
  return CReachabilityProbe().IsReachable(desktop, GetServiceHost(), times.Connect);
}

bool CServiceSession::ShowLoginDialog(CServiceSession& session) {
  CSettingsRef settings;
  LoginEntry entry;
  entry.UserName = settings.GetString(kLoginSetting);
  do {
    if (!session.Desktop.AskLogin(entry)) return false;
  } while (!CheckLoginEntry(entry));
  const bool isLoggedIn = session.Login(entry.UserName, entry.Password.Get());
  if (!isLoggedIn && !session.IsStopWanted()) ShowMessageId(StringId::LoginFailed);
  settings.SetString(kLoginSetting, entry.UserName);
  return isLoggedIn;
}

bool CServiceSession::Login(std::string_view login, std::string_view password) {
  if (Busy) return false;
  const CBusyScope busy(Busy);
  MemberId.clear();
  UserName.Clear();
  Password.Clear();
  for (int attempt = 0; attempt < kAttempts && !IsStopWanted(); ++attempt) {
    ClearResponse();
    if (!BeginLogin(login, password)) {
      Request.Reset();
      return false;
    }
    // The user can't stop this, so a server that sends byte after byte must not hold it up for ever.
    WaitForResponse(Times.Connect + 2 * Times.Response);
    if (ResponseText.empty() || Status != kStatusOk) continue;
    MemberId = ExtractTag(ResponseText, "ID");
    if (MemberId.empty()) return false;
    UserName.Assign(login);
    Password.Assign(password);
    return true;
  }
  return false;
}

bool CServiceSession::BeginLogin(std::string_view login, std::string_view password) {
  Request.SetResponseTimeout(Times.Response);
  return Request.Get(MakeServiceAddress(Host, "/Vellumar/CheckLogin.asp")) &&
         Request.AddQueryParam("Login", login) && Request.AddQueryParam("Password", password) &&
         Request.AddQueryParam("Registered", "Y") && Request.AddQueryParam("Source", "Vellumar") &&
         Request.AddHeader("User-Agent", kUserAgent) && Request.Send(nullptr, 0);
}

bool CServiceSession::UploadPhoto(const UploadForm& form) {
  ResponseLogging = CSettingsRef().GetBool(kLoggingSetting);
  if (Busy || MemberId.empty()) return false;
  const CBusyScope busy(Busy);

  struct PhotoFile {
    std::error_code Error;
    std::vector<std::uint8_t> Bytes;
  };
  const auto file = std::make_shared<PhotoFile>();
  const auto read = [file, path = form.Path] {
    file->Error = platform::ReadWholeFile(path, file->Bytes, kLargestBody);
  };
  if (!RunAside(Desktop, Progress, 0, read) || file->Error || file->Bytes.empty()) return false;
  return SendPhoto(form, {reinterpret_cast<const char*>(file->Bytes.data()), file->Bytes.size()});
}

bool CServiceSession::SendPhoto(const UploadForm& form, std::string_view bytes) {
  const std::string preamble = MakeUploadPreamble(MemberId, form, ResponseLogging);
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    ClearResponse();
    if (!BeginUpload(preamble, bytes)) {
      Request.Reset();
      return false;
    }
    WaitLogged(form.Path);
    if (Connected || IsStopWanted()) break;
  }
  return Done && Status == kStatusOk;
}

bool CServiceSession::BeginUpload(std::string_view preamble, std::string_view bytes) {
  const std::string trailer = MakeUploadTrailer();
  const std::size_t size = preamble.size() + bytes.size() + trailer.size();
  if (size > kLargestBody) return false;
  Request.SetResponseTimeout(Times.UploadResponse);
  return Request.Post(MakeServiceAddress(Host, "/MemUploadUtilitySend.asp"),
                      static_cast<std::uint32_t>(size)) &&
         Request.AddHeader("User-Agent", kUserAgent) &&
         Request.AddHeader("Content-Type", MakeUploadContentType()) &&
         Request.Send(preamble.data(), preamble.size()) && SendInSlices(bytes) &&
         (Done || Request.Send(trailer.data(), trailer.size()));
}

/// True with Done set if the request has ended before it was queued.
bool CServiceSession::SendInSlices(std::string_view bytes) {
  while (!Done && !bytes.empty()) {
    const std::string_view slice = bytes.substr(0, kSlice);
    if (!Request.Send(slice.data(), slice.size())) return false;
    bytes.remove_prefix(slice.size());
    if (!bytes.empty()) HandleEvents(0);
  }
  return true;
}

void CServiceSession::WaitLogged(const std::string& photoPath) {
  if (!ResponseLogging) {
    WaitForResponse();
    return;
  }
  const CUploadLog log;
  log.BeginAttempt(photoPath);
  WaitForResponse();
  log.EndAttempt(Done && ResponseLength != 0, Status, ResponseText);
}

bool CServiceSession::OpenCart() { return OpenMemberPage("&Cart=", "Y"); }

bool CServiceSession::OpenAlbum(std::string_view albumName) { return OpenMemberPage("&Album=", albumName); }

bool CServiceSession::OpenMemberPage(std::string_view query, std::string_view value) {
  if (MemberId.empty()) return false;
  CSecretText path;
  for (const std::string_view part : {std::string_view("/Vellumar/DoLogin.asp?l="), UserName.Get(),
                                      std::string_view("&p="), Password.Get(), query, value}) {
    path.Append(part);
  }
  std::string address = MakeServiceAddress(Host, path.Get());
  const bool isOpened = !address.empty() && Desktop.OpenPage(address);
  WipeText(address);
  return isOpened;
}

bool CServiceSession::OpenJoinPage(CServiceDesktop& desktop) {
  const std::string address = MakeServiceAddress(GetServiceHost(), "/Join.asp?Source=Vellumar");
  return !address.empty() && desktop.OpenPage(address);
}
