#pragma once

#include <memory>
#include <string>

#include "sharing/SecretText.h"
#include "sharing/UploadProgress.h"

/// What the login dialog asks for.
struct LoginEntry {
  std::string UserName;
  CSecretText Password;
};

/// What the conversation with the service needs of the desktop. The window layer has one; tests script
/// theirs. Window thread.
class CServiceDesktop {
 public:
  virtual ~CServiceDesktop() = default;

  /// Shows the login dialog, filled in with the entry, and waits for its end. When the user presses Login,
  /// the dialog brings the entry up to date and stays open if CheckLoginEntry refuses it. False on Cancel.
  virtual bool AskLogin(LoginEntry& entry) = 0;

  /// Starts the user's browser on an address that begins with "http://". False if there is none. The address
  /// may hold a password: it goes to nobody else.
  virtual bool OpenPage(const std::string& address) = 0;

  /// Handles what is queued for the program's windows, timers and sockets; if nothing is, waits for at most
  /// `milliseconds`. The user's input reaches the progress window alone, and without one nothing; the cursor
  /// shows that.
  virtual void HandleEvents(int milliseconds) = 0;

  /// Whether the program is about to end: whatever waits then gives up, and tells nobody.
  virtual bool IsEnding() const = 0;

  /// Shows the progress window of an upload, with its stop button. The main window takes no input until the
  /// object goes.
  virtual std::unique_ptr<CUploadProgress> ShowUploadProgress() = 0;
};
