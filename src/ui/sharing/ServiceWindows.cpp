#include "ui/sharing/ServiceWindows.h"

#include <utility>

#include "platform/EventLoop.h"
#include "ui/kit/Application.h"
#include "ui/kit/OpenAddress.h"
#include "ui/sharing/LoginDialog.h"
#include "ui/sharing/UploadWindow.h"

CServiceWindows::CServiceWindows(QWidget& mainWindow, std::function<bool()> isClosing)
    : MainWindow(mainWindow), IsClosing(std::move(isClosing)) {}

bool CServiceWindows::AskLogin(LoginEntry& entry) {
  // A dialog that opens after the program was asked to end would keep it.
  return !IsEnding() && ShowLoginDialog(MainWindow, *this, entry);
}

bool CServiceWindows::OpenPage(const std::string& address) { return TryOpenWebPage(address); }

void CServiceWindows::HandleEvents(int milliseconds) { platform::HandleEvents(milliseconds); }

bool CServiceWindows::IsEnding() const {
  const CApplication* application = CApplication::GetInstance();
  return IsClosing() || (application != nullptr && application->HasFailed());
}

std::unique_ptr<CUploadProgress> CServiceWindows::ShowUploadProgress() {
  return std::make_unique<CUploadWindow>(MainWindow);
}
