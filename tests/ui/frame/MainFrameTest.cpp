#include <QCheckBox>
#include <QMessageBox>
#include <QThread>
#include <QWheelEvent>

#include "support/Corners.h"
#include "support/FaultSteps.h"
#include "support/Sql.h"
#include "ui/back/PhotoBack.h"
#include "ui/frame/MainFrameFixture.h"

namespace {

class MainFrame : public CMainFrameFixture {};

void TurnWheel(QWidget& frame, int eighths) {
  QWheelEvent event({10, 10}, frame.mapToGlobal(QPointF(10, 10)), {}, {0, eighths}, Qt::NoButton, {},
                    Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
}

bool IsPointerHidden() {
  const QCursor* cursor = QGuiApplication::overrideCursor();
  return cursor != nullptr && cursor->shape() == Qt::BlankCursor;
}

}  // namespace

TEST_F(MainFrame, KeysAndWheelMoveAlongAndThePhotoFollowsOnceTheStripRests) {
  WritePhotos(5);
  CMainFrame& frame = Start(0);
  Press({Qt::Key_Right});
  frame.GetStrip().FinishMove();
  EXPECT_TRUE(ShowsPhoto(0)) << "the photo waits until the strip rests";
  EXPECT_TRUE(QTest::qWaitFor([&] { return ShowsPhoto(1); }, 2000));
  Press({Qt::Key_Space});
  Press({Qt::Key_PageUp});
  Rest();
  for (const auto& [eighths, position] : {std::pair(-240, 2), {60, 2}, {60, 1}, {120, 0}}) {
    TurnWheel(frame, eighths);
    Rest();
    EXPECT_EQ(Position(), position);
  }
  Press({Qt::Key_Right, Qt::Key_3, Qt::Key_Right, Qt::Key_Right, Qt::Key_M});
  EXPECT_EQ(Position(), 3) << "each press of a key counts";
  EXPECT_EQ(Photo(1).GetCachedRating(), 3);
  EXPECT_TRUE(IsToEmail(3));
  GetSettings()->SetInt("Sort", 221);
  EXPECT_EQ(Start().GetPhotoSet().GetAsset(0).GetTitle(), "1001") << "in the stored order, stars first";
  EXPECT_EQ(Position(), 0);
}

TEST_F(MainFrame, PhotosAreMarkedAndDeleted) {
  WritePhotos(5);
  CMainFrame& frame = Start(4);
  const CAssetRecord last = Photo(4);
  Press({Qt::Key_M}, Qt::AltModifier);
  QTest::mouseClick(&Button(CommandId::ToggleUpload), Qt::LeftButton);
  EXPECT_TRUE(last.GetFlag(PhotoFlag::ToEmail) && last.GetFlag(PhotoFlag::ToRemotePrint));
  Press({Qt::Key_Delete});
  EXPECT_FALSE(last.GetFlag(PhotoFlag::ToEmail) || last.GetFlag(PhotoFlag::ToRemotePrint));
  EXPECT_EQ(Position(), 3);
  std::filesystem::permissions(InHome(PhotoName(3)), std::filesystem::perms::owner_read);
  Press({Qt::Key_Delete, Qt::Key_F2});
  EXPECT_EQ(frame.GetPhotoSet().GetCount(), 4) << "a file that is marked as read-only";
  EXPECT_TRUE(frame.hasFocus());
  std::filesystem::permissions(InHome(PhotoName(3)), std::filesystem::perms::owner_all);
  Press({Qt::Key_Delete, Qt::Key_Delete, Qt::Key_Delete, Qt::Key_Delete});
  Press({Qt::Key_Delete, Qt::Key_M, Qt::Key_4, Qt::Key_F5, Qt::Key_F11, Qt::Key_Down});
  EXPECT_EQ(frame.GetPhotoSet().GetCount(), 0);
  EXPECT_FALSE(Button(CommandId::DeletePhoto).isEnabled());
  EXPECT_FALSE(frame.IsFullScreen() || frame.IsSlideShowRunning());
}

TEST_F(MainFrame, EditsBelongToThePhotoUnderTheLensAndSurviveTheClose) {
  WritePhotos(3);
  CMainFrame& frame = Start(0);
  Press({Qt::Key_C});
  Type("one");
  Press({Qt::Key_Right}, Qt::AltModifier);
  Type("two");
  Press({Qt::Key_Escape});
  EXPECT_EQ(Texts(Photo(0), StampId::Note), "one");
  EXPECT_EQ(Texts(Photo(1), StampId::Note), "");
  EXPECT_TRUE(frame.hasFocus());
  // Only a command of the user's leads an open field to another photo.
  Press({Qt::Key_F5, Qt::Key_C});
  EXPECT_FALSE(frame.IsSlideShowRunning());
  Type("on the third");
  TurnWheel(frame, 120);
  EXPECT_EQ(Position(), 2);
  Press({Qt::Key_Return});
  EXPECT_EQ(Texts(Photo(2), StampId::Note), "on the third");
  GoTo(1);
  Press({Qt::Key_Left});
  QWidget* stars = Parts().PhotoBack->findChild<QWidget*>(QStringLiteral("Rating"));
  QTest::mousePress(stars->childAt(10, 10), Qt::LeftButton);
  EXPECT_EQ(Photo(0).GetCachedRating(), 1) << "the strip was still coming to it";
  Press({Qt::Key_E});
  Type("kept");
  frame.close();
  EXPECT_EQ(Texts(Photo(0), StampId::Event), "kept");
  Activate(frame);
  Press({Qt::Key_E});
  Type("lost");
  const CFileSizeLimit fullDisk(0);
  frame.close();
  EXPECT_EQ(Messages.Texts.size(), 1U) << "told before the program ends";
}

TEST_F(MainFrame, RepeatsOfAHeldKeyAreNoPressesAndStayWhereThePressWent) {
  WritePhotos(5);
  CMainFrame& frame = Start(0);
  quint64 now = 1000;
  // As X11 repeats a key: by releases and presses of one time that the toolkit doesn't tell as repeats.
  const auto hold = [&](Qt::Key key, quint32 scanCode, const char* text = "") {
    now += 500;
    for (int event = 0; event < 8; ++event) {
      const bool isPress = event % 2 == 0;
      if (!isPress) now += 30;
      QKeyEvent sent(isPress ? QEvent::KeyPress : QEvent::KeyRelease, key, {}, scanCode, 0, 0, text);
      sent.setTimestamp(now);
      QCoreApplication::sendEvent(QApplication::focusWindow(), &sent);
    }
  };
  hold(Qt::Key_M, 58, "m");
  EXPECT_TRUE(IsToEmail(0));
  hold(Qt::Key_Delete, 119);
  EXPECT_EQ(frame.GetPhotoSet().GetCount(), 4);
  hold(Qt::Key_Right, 114);
  frame.GetStrip().FinishMove();
  EXPECT_EQ(Position(), 1) << "merged";
  hold(Qt::Key_C, 54, "c");
  hold(Qt::Key_A, 38, "a");
  hold(Qt::Key_Tab, 23);
  hold(Qt::Key_Return, 36);
  EXPECT_EQ(Texts(Photo(1), StampId::Note), "aaaa") << "typed are the repeats of what was typed";
}

TEST_F(MainFrame, TellsAUserWithFewPhotosHowToAddFolders) {
  GetSettings()->SetBool("DontShowAddFolderTip", false);
  for (const bool never : {false, true}) {
    EXPECT_FALSE(GetSettings()->GetBool("DontShowAddFolderTip"));
    WhenDialogShows([never](QWidget& dialog) {
      dynamic_cast<QMessageBox&>(dialog).checkBox()->setChecked(never);
      dialog.close();
    });
    Start();
  }
  EXPECT_TRUE(QTest::qWaitFor([] { return GetSettings()->GetBool("DontShowAddFolderTip"); }));
  EXPECT_TRUE(Start().hasFocus()) << "no tip any more";
}

TEST_F(MainFrame, ClosedDuringTheSearchStopsItAndThenCloses) {
  CMainFrame frame;
  CWindowedSearchProgress progress(false, false);
  QTimer::singleShot(0, [&] { frame.close(); });
  const auto open = [&](CCatalog& catalog, CThumbnailCache& cache) {
    while (!progress.IsStopped()) QThread::msleep(1);  // the close reaches the job
    return OpenStores()(catalog, cache);
  };
  EXPECT_TRUE(frame.Create(open, progress));
  EXPECT_TRUE(frame.IsClosing());
}

TEST_F(MainFrame, PhotoFillsTheWindowAndEverythingComesBack) {
  WritePhotos(3);
  CMainFrame& frame = Start(1);
  const QSize before = frame.size();
  Press({Qt::Key_F11});
  QCoreApplication::processEvents();
  EXPECT_TRUE(frame.isFullScreen());
  EXPECT_EQ(Parts().PhotoView->geometry(), frame.rect());
  EXPECT_FALSE(Parts().StripWindow->isVisible() || Parts().PhotoBack->isVisible());
  Press({Qt::Key_4, Qt::Key_C, Qt::Key_Tab, Qt::Key_F6});
  EXPECT_EQ(Photo(1).GetCachedRating(), 0) << "the panel doesn't show";
  Press({Qt::Key_F5});
  EXPECT_FALSE(Parts().ToolRow->isVisible());
  EXPECT_EQ(Button(CommandId::ToggleSlideShow).GetText(), "Stop");
  for (const int x : {330, 340}) QTest::mouseMove(frame.windowHandle(), QPoint(x, 200));
  EXPECT_TRUE(Parts().ToolRow->isVisible());
  QString shown;
  WhenDialogShows([&](QWidget& dialog) {
    shown = dialog.objectName();
    dialog.close();
  });
  Press({Qt::Key_F1});
  EXPECT_EQ(shown, "InfoWindow");
  EXPECT_TRUE(frame.IsFullScreen() && frame.IsSlideShowRunning()) << "behind it";
  Activate(frame);
  Press({Qt::Key_Space});
  EXPECT_FALSE(frame.IsSlideShowRunning());

  Press({Qt::Key_Escape});
  QCoreApplication::processEvents();
  EXPECT_EQ(frame.size(), before);
  EXPECT_TRUE(Parts().StripWindow->isVisible() && Parts().PhotoBack->isVisible() && frame.hasFocus());
  QTest::mouseDClick(Parts().PhotoView.get(), Qt::LeftButton);
  const auto endByDesktop = [&] {  // counts once nothing has been asked for a while
    frame.setWindowState(frame.windowState() & ~Qt::WindowFullScreen);
    return !frame.IsFullScreen();
  };
  EXPECT_FALSE(endByDesktop());
  EXPECT_TRUE(QTest::qWaitFor(endByDesktop, 5000));
}

TEST_F(MainFrame, ToolsVanishAndComeBackWithTheMouse) {
  QWidget window, photo(&window), row(&window);
  photo.resize(600, 300);
  Activate(window);
  CFullScreenTools tools(window, photo, row);
  const auto moveTo = [&](int x) { tools.OnPointerMoved(window.mapToGlobal(QPoint(x, 200))); };
  const auto areHidden = [&] { return tools.AreHidden(); };
  tools.SetActive(true);
  moveTo(300);
  EXPECT_FALSE(QTest::qWaitFor(areHidden, 2500));
  EXPECT_TRUE(QTest::qWaitFor(areHidden, 1500));
  EXPECT_TRUE(IsPointerHidden() && !row.isVisible());
  moveTo(300);
  EXPECT_TRUE(areHidden()) << "it has not moved";
  tools.OnActivationChanged(false);
  EXPECT_FALSE(IsPointerHidden()) << "another window is in front";
  QCoreApplication::processEvents();
  moveTo(330);
  EXPECT_TRUE(row.isVisible());
  tools.OnActivationChanged(true);
  tools.Hide();
  EXPECT_TRUE(IsPointerHidden());
  tools.SetActive(false);
  EXPECT_FALSE(IsPointerHidden());
}

TEST_F(MainFrame, TheNextPhotoIsThereWhenTheSlideEndsUnlessItsFileHasChanged) {
  WritePhotos(5);
  CMainFrame& frame = Start(1);
  CPhotoView& view = *Parts().PhotoView;
  const auto isReady = [&](int index) { return [&, index] { return view.IsReady(Photo(index)); }; };
  ASSERT_TRUE(QTest::qWaitFor(isReady(2)) && QTest::qWaitFor(isReady(0)));
  EXPECT_FALSE(view.IsReady(Photo(1)) || view.IsReady(Photo(3)));
  Press({Qt::Key_Right});
  ASSERT_TRUE(QTest::qWaitFor([&] { return Position() == 2; }));
  EXPECT_TRUE(ShowsPhoto(2)) << "as soon as it is under the lens";
  // Changed while it is the current one, and shown again after another.
  frame.OnCommand(CommandId::RotateRight);
  GoTo(3);
  ASSERT_TRUE(QTest::qWaitFor(isReady(2)));
  GoTo(2);
  EXPECT_EQ(view.GetImage()->GetNaturalSize(), (ImageSize{240, 320}));

  ASSERT_TRUE(QTest::qWaitFor(isReady(3)));
  frame.PrepareForJob();
  EXPECT_FALSE(view.IsReady(Photo(3)));
}

TEST_F(MainFrame, ThumbnailsOfAnEarlierVersionArePutRightOnce) {
  WritePhotos(3);
  Scratch.Write(PhotoName(1), MakeCornersJpeg(6, {240, 320}));
  const auto seen = [this](int index) {
    return ReadCorners(std::as_const(*Photo(index).LoadThumbnail()).GetPixels());
  };
  Start();
  const auto white = MakeJpeg({}, [](int, int) { return std::array<std::uint8_t, 4>{255, 255, 255}; });
  for (const int i : {0, 1}) CThumbnailCache::GetInstance()->StoreBytes(Photo(i).GetAssetID(), white);
  Frame.reset();
  RunSql(InHome("vellumar.thumbs"), "alter table Cache drop column Upright");
  Start();
  EXPECT_TRUE(QTest::qWaitFor([&] { return seen(1) == "RGBW"; }));
  EXPECT_EQ(seen(0), "WWWW") << "the photo isn't read, since it stands as it is stored";
  EXPECT_TRUE(CThumbnailCache::GetInstance()->GetUncertain().empty());
}

TEST(LeastSize, IsWhatTheScreenHasRoomFor) {
  const QMargins frame(2, 30, 2, 2);
  for (const auto& [available, least] : {std::pair(QSize(1280, 900), QSize(800, 550)),
                                         {QSize(911, 512), QSize(800, 480)},
                                         {QSize(683, 384), QSize(679, 352)},
                                         {QSize(3, 3), QSize(0, 0)}}) {
    EXPECT_EQ(LimitLeastSize({800, 550}, available, frame), least);
  }
}
