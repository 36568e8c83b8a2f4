#include <QWheelEvent>
#include <filesystem>

#include "base/Folders.h"
#include "discovery/FolderSearch.h"
#include "sets/PhotoSet.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"
#include "ui/frame/MainFrame.h"
#include "ui/kit/Colours.h"
#include "ui/search/WindowedSearchProgress.h"

namespace {

const QColor kHues[] = {{200, 30, 30}, {30, 160, 40}, {40, 60, 200}, {200, 190, 20}, {150, 40, 180}};

/// A home of its own with photos of one colour each, and the window over them.
class MainFrame : public testing::Test {
 protected:
  MainFrame() {
    ::setenv("HOME", Scratch.GetPath().c_str(), 1);
    ::unsetenv("XDG_CONFIG_HOME");
    ForgetMyPicturesFolder();
    CFolderSearch::GetInstance().Reset();
    std::filesystem::create_directory(Scratch.GetPath() + "/Pictures");
  }

  void AddPhotos(int count, int first = 0) {
    for (int i = first; i < first + count; ++i) {
      Scratch.Write("Pictures/" + std::to_string(1000 + i) + ".jpg", MakePhoto(320, 240, kHues[i % 5]));
    }
  }

  /// Starts a session and lets `look` see the window at rest.
  void Show(const std::function<void(CMainFrame&)>& look) {
    CMainFrame frame;
    {
      CWindowedSearchProgress progress(false, false);
      ASSERT_TRUE(frame.Create(
          [this](CCatalog& catalog, CThumbnailCache& cache) {
            catalog.Open(Scratch.GetPath() + "/vellumar.db");
            cache.Open(Scratch.GetPath() + "/vellumar.thumbs", catalog.GetDBGUID());
            return true;
          },
          progress));
    }
    frame.resize(1000, 700);
    frame.show();
    Rest();
    look(frame);
    CFolderSearch::GetInstance().Reset();
  }

  static void Rest() { QTest::qWait(250); }

  static int Position(CMainFrame& frame) { return Strip(frame).GetCurrent(); }
  static CFilmstrip& Strip(CMainFrame& frame) {
    return *dynamic_cast<CFilmstrip*>(frame.findChild<QWidget*>("Strip"));
  }

  /// The colour in the middle of the large photo.
  static QColor PhotoColour(CMainFrame& frame) {
    QWidget* view = frame.findChild<QWidget*>("SlideVue");
    return Painted(*view).pixelColor(view->rect().center());
  }

  static bool IsNear(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()) < 40;
  }

  CScratchFolder Scratch;
  CNotedMessages Messages;
  const CFontTable Fonts{false};
};

}  // namespace

TEST_F(MainFrame, KeysMoveAlongAndThePhotoFollows) {
  AddPhotos(5);
  Show([](CMainFrame& frame) {
    EXPECT_EQ(frame.windowTitle(), "Vellumar Photo Organizer");
    EXPECT_EQ(frame.objectName(), "VellumarPhotoOrganizerMain");
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[0]));

    QTest::keyClick(&frame, Qt::Key_Right);
    QTest::keyClick(&frame, Qt::Key_Right);
    EXPECT_EQ(Position(frame), 2);
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[0])) << "the photo waits until the strip rests";
    Rest();
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[2]));

    QTest::keyClick(&frame, Qt::Key_End);
    EXPECT_EQ(Position(frame), 4);
    QTest::keyClick(&frame, Qt::Key_Right);
    EXPECT_EQ(Position(frame), 4);
    QTest::keyClick(&frame, Qt::Key_PageUp);
    EXPECT_EQ(Position(frame), 0);
    QTest::keyClick(&frame, Qt::Key_Left);
    EXPECT_EQ(Position(frame), 0);
    QTest::keyClick(&frame, Qt::Key_PageDown);
    EXPECT_EQ(Position(frame), 4);
    QTest::keyClick(&frame, Qt::Key_Home);
    EXPECT_EQ(Position(frame), 0);
  });
}

TEST_F(MainFrame, StripShowsThumbnailsWithTheCurrentOneFramed) {
  AddPhotos(3);
  Show([](CMainFrame& frame) {
    CFilmstrip& strip = Strip(frame);
    QTest::mouseClick(&strip, Qt::LeftButton, {}, CellRect(1, StripStart(strip.width(), 3, 0)).center());
    EXPECT_EQ(strip.GetCurrent(), 1);
    const QImage image = Painted(strip);
    for (int i = 0; i < 3; ++i) {
      const QRect cell = CellRect(i, StripStart(strip.width(), 3, 1));
      EXPECT_TRUE(IsNear(image.pixelColor(cell.center()), kHues[i])) << i;
      const QColor corner = image.pixelColor(cell.topLeft() + QPoint(2, 2));
      EXPECT_EQ(corner == colours::kSelection, i == 1) << i;
    }
  });
}

TEST_F(MainFrame, OpensOnTheFirstPhotoOfANewRoll) {
  AddPhotos(2);
  Show([](CMainFrame& frame) { EXPECT_EQ(Position(frame), 0); });
  AddPhotos(3, 2);
  Show([](CMainFrame& frame) {
    EXPECT_EQ(Strip(frame).GetCount(), 5);
    EXPECT_EQ(Position(frame), 2);
  });
  Show([](CMainFrame& frame) { EXPECT_EQ(Position(frame), 0) << "no new roll this time"; });
}

TEST_F(MainFrame, SaysWhatItCannotShow) {
  Show([](CMainFrame& frame) {
    QWidget* view = frame.findChild<QWidget*>("SlideVue");
    EXPECT_TRUE(HoldsInk(Painted(*view), view->rect(), colours::kPage)) << "that there are no photos";
    QTest::keyClick(&frame, Qt::Key_Right);
    EXPECT_EQ(Position(frame), 0);
  });
  Scratch.Write("Pictures/broken.jpg", "no picture");
  AddPhotos(1);
  Show([](CMainFrame& frame) {
    QTest::keyClick(&frame, Qt::Key_End);
    Rest();
    QWidget* view = frame.findChild<QWidget*>("SlideVue");
    EXPECT_EQ(PhotoColour(frame).saturation() > 100, false) << "the photo before must be gone";
    EXPECT_TRUE(HoldsInk(Painted(*view), view->rect(), colours::kPage));
  });
}

TEST_F(MainFrame, WheelCollectsSmallTurns) {
  AddPhotos(5);
  Show([](CMainFrame& frame) {
    const auto turn = [&](int eighths) {
      QWheelEvent event({10, 10}, frame.mapToGlobal(QPointF(10, 10)), {}, {0, eighths}, Qt::NoButton, {},
                        Qt::NoScrollPhase, false);
      QCoreApplication::sendEvent(&frame, &event);
    };
    turn(-120);
    EXPECT_EQ(Position(frame), 1);
    turn(-60);
    EXPECT_EQ(Position(frame), 1);
    turn(-60);
    EXPECT_EQ(Position(frame), 2);
    turn(240);
    EXPECT_EQ(Position(frame), 0);
  });
}

TEST_F(MainFrame, ClosedDuringTheSearchStopsItAndThenCloses) {
  AddPhotos(1);
  CMainFrame frame;
  CWindowedSearchProgress progress(false, false);
  QTimer::singleShot(0, [&] { frame.close(); });
  EXPECT_TRUE(frame.Create(
      [&](CCatalog& catalog, CThumbnailCache& cache) {
        while (!progress.IsStopped()) QThread::msleep(1);  // the close reaches the job
        catalog.Open(Scratch.GetPath() + "/vellumar.db");
        cache.Open(Scratch.GetPath() + "/vellumar.thumbs", catalog.GetDBGUID());
        return true;
      },
      progress));
  EXPECT_TRUE(frame.IsClosing());
  CFolderSearch::GetInstance().Reset();
}
