#pragma once

#include <functional>

#include "sharing/ServiceDesktop.h"

class QWidget;

/// The windows of the conversation with the service. Whoever runs it keeps the user's input from all other
/// windows meanwhile, by a CInputBlock.
class CServiceWindows : public CServiceDesktop {
 public:
  /// `isClosing` says whether the main window is about to close.
  CServiceWindows(QWidget& mainWindow, std::function<bool()> isClosing);

  bool AskLogin(LoginEntry& entry) override;
  bool OpenPage(const std::string& address) override;
  void HandleEvents(int milliseconds) override;
  bool IsEnding() const override;
  std::unique_ptr<CUploadProgress> ShowUploadProgress() override;

 private:
  QWidget& MainWindow;
  const std::function<bool()> IsClosing;
};
