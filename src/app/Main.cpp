#include "app/Main.h"

#include <QApplication>
#include <QSocketNotifier>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <iterator>
#include <memory>
#include <utility>

#include "app/DataStores.h"
#include "app/SingleInstance.h"
#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/Messages.h"
#include "base/Settings.h"
#include "base/Texts.h"
#include "discovery/FolderSearch.h"
#include "platform/AbsolutePaths.h"
#include "platform/EndGuard.h"
#include "platform/Files.h"
#include "platform/SpecialFolders.h"
#include "platform/StopSignals.h"
#include "sharing/MailFolder.h"
#include "ui/frame/MainFrame.h"
#include "ui/kit/Application.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/WindowActivation.h"
#include "ui/search/WindowedSearchProgress.h"

namespace {

constexpr int kEarlyExitCode = 0;
constexpr std::chrono::seconds kLongestEnd{5};

/// The progress window of the start, known to the folder search while this object lives.
class CStartProgress {
 public:
  CStartProgress() : Progress(true, true) { CFolderSearch::GetInstance().Progress = &Progress; }
  ~CStartProgress() { CFolderSearch::GetInstance().Progress = nullptr; }
  CStartProgress(const CStartProgress&) = delete;
  CStartProgress& operator=(const CStartProgress&) = delete;

  CWindowedSearchProgress Progress;
};

/// Closes the dialog in front, and the one that it stands on.
void CloseDialogs() {
  const QWidget* closed = nullptr;
  for (QWidget* dialog = QApplication::activeModalWidget(); dialog != nullptr && dialog != closed;) {
    dialog->close();
    closed = std::exchange(dialog, QApplication::activeModalWidget());
  }
}

/// Closes the main window, and the dialogs in front of it, when the system asks the program to end.
class CStopSignalWatch {
 public:
  explicit CStopSignalWatch(CMainFrame& frame) : Notifier(Signals.GetDescriptor(), QSocketNotifier::Read) {
    QObject::connect(&Notifier, &QSocketNotifier::activated, &frame, [this, &frame] {
      Signals.Acknowledge();
      frame.close();
      CloseDialogs();
    });
  }

 private:
  platform::StopSignals Signals;
  QSocketNotifier Notifier;
};

/// False, with a message, if a removable disk can't be written to.
bool ChooseSettings(bool activeDisk) {
  if (!activeDisk) {
    SetSettings(std::make_unique<CRegistrySettings>());
    return true;
  }
  SetSettings(std::make_unique<CIniSettings>());
  if (CheckDiskWritable(GetProgramFolder())) return true;
  ShowMessageId(StringId::DiskNotWritable);
  return false;
}

/// The catalog that another process may have open; empty if there can be none. Opening it tells the user
/// why.
std::string FindCatalogToClaim(bool activeDisk) {
  try {
    return FindCatalog(activeDisk);
  } catch (const CError&) {
    return {};
  }
}

/// False if another process runs; it has taken the request then, or a message names it.
bool ClaimInstance(CSingleInstance& instance, const StartRequest& request) {
  const CSingleInstance::Claimed claimed = instance.Claim(request);
  if (claimed == CSingleInstance::Claimed::ByOneOutOfReach) {
    ShowMessage(Format(LoadExpandedString(StringId::AlreadyRunning), instance.GetHolder()));
  }
  return claimed == CSingleInstance::Claimed::ByThis;
}

/// The front window: a message, else the window of a search, else the main window.
QWidget* FindFrontWindow(CMainFrame& frame) {
  if (QWidget* box = QApplication::activeModalWidget()) return box;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && window->windowType() == Qt::Dialog) return window;
  }
  return frame.isVisible() ? &frame : nullptr;
}

void OnAnotherStart(CMainFrame& frame, const StartRequest& request) {
  if (frame.isMinimized()) frame.setWindowState(frame.windowState() & ~Qt::WindowMinimized);
  if (QWidget* window = FindFrontWindow(frame)) ActivateWindow(*window, request.ActivationToken);
  frame.ShowPaths(request.Paths);
}

StartRequest MakeStartRequest(const Arguments& commandLine, const std::string& activationToken) {
  StartRequest request{activationToken, {}};
  std::ranges::transform(commandLine.Paths, std::back_inserter(request.Paths), &platform::MakeAbsolute);
  return request;
}

int RunSession(CMainFrame& frame, std::unique_ptr<CStartProgress>& start) {
  if (!frame.Create(OpenDataStores, start->Progress)) throw CError("Could not create the main window.");
  if (!frame.IsClosing()) frame.ShowInFront();
  start.reset();
  RemoveOldMailFolders();
  return frame.IsClosing() ? kNormalExitCode : CApplication::GetInstance()->RunLoop();
}

/// When the system has asked the program to end, no message about the end waits for an answer.
void ReportFatalFailure(const CMainFrame& frame, const std::string& message) {
  const std::string text = Format(LoadExpandedString(StringId::FatalProblem), message);
  if (frame.IsClosing()) {
    std::fprintf(stderr, "%s\n", text.c_str());
  } else {
    ShowMessage(text);
  }
}

}  // namespace

int Main(const Arguments& commandLine, const std::string& activationToken) {
  platform::TakeSizeLimitsAsErrors();
  CSingleInstance instance(platform::RuntimeFolder(), FindCatalogToClaim(commandLine.ActiveDisk));
  const StartRequest request = MakeStartRequest(commandLine, activationToken);
  if (!ClaimInstance(instance, request)) return kEarlyExitCode;

  const CFontTable fonts;
  platform::EndGuard endGuard(kLongestEnd);
  CMainFrame frame;
  const CStopSignalWatch stopSignalWatch(frame);
  instance.OnAnotherStart = [&frame](const StartRequest& later) { OnAnotherStart(frame, later); };
  frame.ShowPaths(request.Paths);

  CFolderSearch::GetInstance().ActiveDisk = commandLine.ActiveDisk;
  if (!ChooseSettings(commandLine.ActiveDisk)) return kEarlyExitCode;

  auto start = std::make_unique<CStartProgress>();
  try {
    const int exitCode = RunSession(frame, start);
    endGuard.Begin(exitCode);  // every change is committed; what is being decoded isn't needed any more
    return exitCode;
  } catch (const CThrowable& failure) {
    start.reset();
    ReportFatalFailure(frame, failure.GetMessage());
  } catch (const std::exception& failure) {
    start.reset();
    ReportFatalFailure(frame, failure.what());
  }
  endGuard.Begin(kEarlyExitCode);
  return kEarlyExitCode;
}
