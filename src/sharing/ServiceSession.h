#pragma once

#include <string>
#include <string_view>

#include "sharing/ResponseCollector.h"
#include "sharing/SecretText.h"
#include "sharing/UploadForm.h"

/// The text between the first "<tag>" and the first "</tag>" of a response, unchanged. Empty unless both are
/// there in this order.
std::string ExtractTag(std::string_view response, std::string_view tag);

/// False, with a message, if the user name or the password is missing. The login dialog asks this when the
/// user presses Login.
bool CheckLoginEntry(const LoginEntry& entry);

/// The conversation with the online service for one command: logs the user in, uploads photos, opens the
/// service's pages. The password is never stored or logged, and is wiped when the session goes. Every
/// operation that waits handles events meanwhile; a second one then fails. Window thread.
class CServiceSession : public CResponseCollector {
 public:
  explicit CServiceSession(CServiceDesktop& desktop, const ServiceTimes& times = {});

  /// Whether a connection to the service's web host can be opened; false at once if none is configured.
  static bool IsServiceReachable(CServiceDesktop& desktop, const ServiceTimes& times = {});

  /// Lets the user type a name and a password, and logs in with them. A failure is told. True if the session
  /// holds a login then.
  static bool ShowLoginDialog(CServiceSession& session);

  /// Tries three times, unless the service answers that there is no such member.
  bool Login(std::string_view login, std::string_view password);

  /// Sends a photo's file as it is. Tries three times to connect; what has reached the server isn't sent
  /// again. Nothing is shown. True if the service has taken it.
  bool UploadPhoto(const UploadForm& form);

  // Each opens a page of the service in the user's browser. False if that can't be started or, but for the
  // last, there is no login.
  bool OpenCart();
  bool OpenAlbum(std::string_view albumName);
  static bool OpenJoinPage(CServiceDesktop& desktop);

 private:
  bool BeginLogin(std::string_view login, std::string_view password);
  bool SendPhoto(const UploadForm& form, std::string_view bytes);
  bool BeginUpload(std::string_view preamble, std::string_view bytes);
  bool SendInSlices(std::string_view bytes);
  void WaitLogged(const std::string& photoPath);
  bool OpenMemberPage(std::string_view query, std::string_view value);

  const std::string Host;
  std::string MemberId;  // empty when not logged in
  CSecretText UserName;
  CSecretText Password;
  bool ResponseLogging = false;
};
