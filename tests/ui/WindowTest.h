#pragma once

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>
#include <QTemporaryFile>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>

#include "support/ScriptedMessages.h"
#include "support/TestJpeg.h"
#include "ui/kit/Application.h"
#include "ui/kit/FontTable.h"

/// The application object that every window test needs, on a platform with two screens that nobody sees: one
/// where windows open, and to its right one with two pixels for each of the layout.
class CApplicationEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    ASSERT_TRUE(Screens.open());
    Screens.write(R"({"screens": [
        {"name": "dense", "x": 800, "y": 0, "width": 2000, "height": 2000, "dpr": 2},
        {"name": "plain", "x": 0, "y": 0, "width": 800, "height": 800}]})");
    Screens.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + Screens.fileName().toUtf8());
    Application = std::make_unique<CApplication>(ArgumentCount, Arguments);
    qputenv("QT_QPA_PLATFORM", "offscreen");  // for processes that a test starts, maybe as another user
  }
  void TearDown() override { Application.reset(); }

 private:
  char Name[5] = "test";
  char* Arguments[2] = {Name, nullptr};
  int ArgumentCount = 1;
  QTemporaryFile Screens;
  std::unique_ptr<CApplication> Application;
};

/// Registered before main; the environment goes when the tests have run.
inline testing::Environment* const kApplicationEnvironment =
    testing::AddGlobalTestEnvironment(std::make_unique<CApplicationEnvironment>().release());

inline void MoveToDenseScreen(QWidget& window) {
  window.move(810, 10);
  EXPECT_TRUE(QTest::qWaitFor([&] { return window.devicePixelRatioF() == 2; }));
}

/// A photo of one colour, as a file's bytes.
inline std::string MakePhoto(unsigned width, unsigned height, const QColor& hue) {
  const auto part = [](int value) { return static_cast<unsigned>(value); };
  return MakeJpeg(width, height, part(hue.red()), part(hue.green()), part(hue.blue()));
}

/// Looks every few milliseconds until `condition` holds, then does `then`, once. Lives in an event loop.
inline void When(const std::function<bool()>& condition, const std::function<void()>& then) {
  auto* timer = new QTimer(qApp);
  QObject::connect(timer, &QTimer::timeout, timer, [=] {
    if (!condition()) return;
    timer->stop();
    timer->deleteLater();
    then();
  });
  timer->start(2);
}

/// Does `then`, once, with the dialog that shows next.
inline void WhenDialogShows(const std::function<void(QWidget&)>& then) {
  When([] { return QApplication::activeModalWidget() != nullptr; },
       [then] { then(*QApplication::activeModalWidget()); });
}

/// What a widget paints, one pixel for one of the layout.
inline QImage Painted(QWidget& widget) {
  return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}
