// One session of the program without a screen: waits for the main window, carries one command out by its
// keys, and closes. The texts of messages go to the standard output, a line each; each is answered with OK.
//
// usage: sweep_session start | R | F | rename | rate | caption | delete

#include <dlfcn.h>

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <string>

#include "app/Main.h"
#include "base/Messages.h"
#include "ui/frame/MainFrame.h"
#include "ui/kit/Application.h"
#include "ui/pages/PhotoView.h"
#include "ui/strip/Filmstrip.h"

namespace {

class CPrintedMessages : public CMessageBox {
 public:
  bool Show(const std::string&, const std::string& text, bool, MessageParent) override {
    std::string line = text;
    std::replace(line.begin(), line.end(), '\n', ' ');
    std::puts(line.c_str());
    std::fflush(stdout);
    return true;
  }
};

CMainFrame* FindWindow() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (auto* frame = dynamic_cast<CMainFrame*>(window); frame != nullptr && frame->isVisible()) return frame;
  }
  return nullptr;
}

void BeginToCount() {
  if (void* begin = ::dlsym(RTLD_DEFAULT, "SweepBegin")) reinterpret_cast<void (*)()>(begin)();
}

void Type(CMainFrame& frame, const std::string& keys) {
  for (const char key : keys) {
    QWidget* focus = QApplication::focusWidget();
    QWidget& target = focus != nullptr ? *focus : frame;
    const auto code = key == '\n' ? Qt::Key_Return : key == '\x1b' ? Qt::Key_Escape : Qt::Key(0);
    if (code != 0) {
      QTest::keyClick(&target, code);
    } else {
      QTest::keyClick(&target, key);
    }
  }
}

void RunCommand(CMainFrame& frame, const std::string& command) {
  frame.GetStrip().FinishMove();
  frame.GetStrip().AnnounceNow();
  QCoreApplication::processEvents();
  BeginToCount();
  if (command == "R" || command == "F") Type(frame, command == "R" ? "r" : "f");
  if (command == "rate") Type(frame, "3");
  if (command == "caption") Type(frame, "cnew\n");
  if (command == "delete") QTest::keyClick(&frame, Qt::Key_Delete);
  if (command == "rename") {
    QTest::keyClick(&frame, Qt::Key_F2);
    Type(frame, "new\n");
  }
  QCoreApplication::processEvents();
}

}  // namespace

int main(int count, char** arguments) {
  const std::string command = count > 1 ? arguments[1] : "start";
  qputenv("QT_QPA_PLATFORM", "offscreen");
  CApplication application(count, arguments);
  CPrintedMessages messages;
  SetMessageBox(&messages);

  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    CMainFrame* frame = FindWindow();
    if (frame == nullptr) return;
    look.stop();
    RunCommand(*frame, command);
    frame->close();
    if (!frame->isVisible()) return;
    Type(*frame, "\x1b");  // an edit that can't be kept holds the window open
    frame->close();
  });
  look.start(2);
  QTimer dismiss;  // the tip at the start, which comes if the settings can't be read
  QObject::connect(&dismiss, &QTimer::timeout, [] {
    if (QWidget* box = QApplication::activeModalWidget(); box != nullptr && box->inherits("QMessageBox")) {
      box->close();
    }
  });
  dismiss.start(50);
  const int exitCode = Main({});
  SetMessageBox(nullptr);
  return exitCode;
}
