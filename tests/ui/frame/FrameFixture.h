#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "base/Folders.h"
#include "base/RegistrySettings.h"
#include "discovery/FolderSearch.h"
#include "sets/PhotoSet.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"
#include "ui/frame/MainFrame.h"
#include "ui/pages/PhotoView.h"
#include "ui/search/WindowedSearchProgress.h"
#include "ui/strip/Filmstrip.h"

/// A home of its own with photos of one colour each, and the main window over them.
class CFrameFixture : public testing::Test {
 protected:
  static constexpr QColor kHues[] = {
      {200, 30, 30}, {30, 160, 40}, {40, 60, 200}, {200, 190, 20}, {150, 40, 180}};

  CFrameFixture() : Home("HOME", Scratch.GetPath()), Config("XDG_CONFIG_HOME", std::nullopt) {
    ForgetMyPicturesFolder();
    CFolderSearch::GetInstance().Reset();
    std::filesystem::create_directory(Scratch.GetPath() + "/Pictures");
    SetSettings(std::make_unique<CRegistrySettings>(Scratch.File("settings")));
    GetSettings()->SetBool("DontShowAddFolderTip", true);
  }
  ~CFrameFixture() override {
    CFolderSearch::GetInstance().Reset();
    SetSettings(nullptr);
  }

  /// In the order of their names, photo `i` has the colour kHues[i % 5].
  void AddPhotos(int count, int first = 0, unsigned width = 320, unsigned height = 240) {
    for (int i = first; i < first + count; ++i) {
      Scratch.Write(PhotoName(i), MakePhoto(width, height, kHues[i % 5]));
    }
  }
  static std::string PhotoName(int i) { return "Pictures/" + std::to_string(1000 + i) + ".jpg"; }

  /// Starts a session and lets `look` see the window at rest, on the first photo.
  void Show(const std::function<void(CMainFrame&)>& look) {
    CMainFrame frame;
    {
      CWindowedSearchProgress progress(false, false);
      ASSERT_TRUE(frame.Create(OpenStores(), progress));
    }
    frame.resize(1000, 700);
    frame.show();
    frame.activateWindow();
    frame.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&frame));
    Rest(frame);
    look(frame);
    CFolderSearch::GetInstance().Reset();
  }

  CMainFrame::OpenStep OpenStores() {
    return [this](CCatalog& catalog, CThumbnailCache& cache) {
      catalog.Open(Scratch.GetPath() + "/vellumar.db");
      cache.Open(Scratch.GetPath() + "/vellumar.thumbs", catalog.GetDBGUID());
      return true;
    };
  }

  /// Until the strip is at rest and its photo is shown.
  static void Rest(CMainFrame& frame) {
    QTest::qWait(20);
    frame.GetStrip().FinishMove();
    frame.GetStrip().AnnounceNow();
    QCoreApplication::processEvents();
  }

  static int Position(CMainFrame& frame) { return frame.GetStrip().GetCurrentIndex(); }

  static void GoTo(CMainFrame& frame, int index) {
    frame.GetStrip().MoveTo(index);
    Rest(frame);
  }

  static bool HasFlag(CMainFrame& frame, int index, PhotoFlag flag) {
    return frame.GetPhotoSet().GetAsset(index).GetFlag(flag);
  }

  /// The colour in the middle of the large photo.
  static QColor PhotoColour(CMainFrame& frame) {
    QWidget& view = frame.GetPhotoView();
    return Painted(view).pixelColor(view.rect().center());
  }

  static bool IsNear(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()) < 40;
  }

  CScratchFolder Scratch;
  const CEnvironmentVariable Home, Config;
  CNotedMessages Messages;
  const CFontTable Fonts{false};
};
