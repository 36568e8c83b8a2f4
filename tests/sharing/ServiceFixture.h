#pragma once

#include <sstream>

#include "base/Format.h"
#include "base/Settings.h"
#include "sharing/ScriptedServer.h"
#include "sharing/ServiceSession.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedMessages.h"

inline Reply MakeReply(int status, const std::string& body) {
  return {Format("HTTP/1.1 %d X\r\nContent-Length: %u\r\n\r\n%s", status, body.size(), body)};
}

inline const Reply kMember = MakeReply(200, "<x><ID>m 1</ID></x>");
inline const Reply kTaken = MakeReply(200, "");
inline const std::string kLine = "------------qUiLlArAfOrMbOuNdArY$";  // of a boundary

/// Fields of a form, from "name=value;name=value;".
inline std::string MakeParts(const std::string& fields) {
  std::string parts, name, value;
  for (std::istringstream in(fields); std::getline(in, name, '=') && std::getline(in, value, ';');) {
    parts += kLine + "\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
  }
  return parts;
}

/// A user by script, who types the entries one after the other and then cancels, and stops an upload at the
/// report `StopAt`.
class CScriptedDesktop : public CServiceDesktop {
 public:
  bool AskLogin(LoginEntry& entry) override {
    Prompts.push_back(entry.UserName);
    if (Prompts.size() > Entries.size()) return false;
    entry.UserName = Entries[Prompts.size() - 1].first;
    entry.Password.Assign(Entries[Prompts.size() - 1].second);
    return true;
  }
  bool OpenPage(const std::string& address) override {
    Pages.push_back(address);
    return true;
  }
  void HandleEvents(int milliseconds) override { platform::HandleEvents(milliseconds); }
  bool IsEnding() const override { return Ending; }
  std::unique_ptr<CUploadProgress> ShowUploadProgress() override {
    return std::make_unique<CProgress>(*this);
  }

  std::vector<std::pair<std::string, std::string>> Entries = {{"Ann B", "p&q"}};
  std::string StopAt;
  bool Ending = false;
  std::vector<std::string> Prompts, Pages;

 private:
  class CProgress : public CUploadProgress {
   public:
    explicit CProgress(CScriptedDesktop& desktop) : Desktop(desktop) {}
    bool SetTotal(int count) override { return Take(Format("total %d", count)); }
    bool SetPhoto(int index, const PhotoToUpload& photo) override {
      return Take(photo.Caption + Format("%d", index));
    }
    bool SetPercent(int percent) override { return Take(Format("%d%%", percent)); }
    bool IsStopped() const override { return Stopped; }

   private:
    bool Take(const std::string& report) { return !(Stopped |= report == Desktop.StopAt); }

    CScriptedDesktop& Desktop;
    bool Stopped = false;
  };
};

/// A user's settings, and a service by script.
class CServiceFixture : public CEventLoopFixture {
 protected:
  CServiceFixture() { SetSettings(std::make_unique<CRegistrySettings>(Scratch.File("settings"))); }
  ~CServiceFixture() override { SetSettings(nullptr); }

  /// The service from now on.
  void Serve(std::vector<Reply> replies) {
    Server = std::make_unique<CScriptedServer>(std::move(replies));
    CSettingsRef().SetString("ServiceHost", Server->GetHost());
  }

  const CScratchFolder Scratch;
  const CEnvironmentVariable Variable{"VELLUMAR_SERVICE_HOST", std::nullopt};
  CScriptedMessages Messages;
  CScriptedDesktop Desktop;
  std::unique_ptr<CScriptedServer> Server;
};
