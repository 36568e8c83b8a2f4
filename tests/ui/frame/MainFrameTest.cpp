#include <QCheckBox>
#include <QMessageBox>
#include <QWheelEvent>

#include "catalog/StampList.h"
#include "imaging/Image.h"
#include "support/FileSizeLimit.h"
#include "ui/back/FieldText.h"
#include "ui/back/FilterBar.h"
#include "ui/back/PhotoBack.h"
#include "ui/back/PhotoField.h"
#include "ui/frame/FrameFixture.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DropControl.h"
#include "ui/kit/Toolbar.h"
#include "ui/strip/StripWindow.h"

using MainFrame = CFrameFixture;

TEST_F(MainFrame, KeysMoveAlongAndThePhotoFollowsOnceTheStripRests) {
  AddPhotos(5);
  Show([](CMainFrame& frame) {
    EXPECT_EQ(frame.windowTitle(), "Vellumar Photo Organizer");
    EXPECT_EQ(frame.objectName(), "VellumarPhotoOrganizerMain");
    GoTo(frame, 0);
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[0]));

    QTest::keyClick(&frame, Qt::Key_Right);
    frame.GetStrip().FinishMove();
    EXPECT_EQ(Position(frame), 1);
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[0])) << "the photo waits until the strip rests";
    EXPECT_TRUE(QTest::qWaitFor([&] { return IsNear(PhotoColour(frame), kHues[1]); }, 2000));

    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
      QTest::keyClick(&frame, key, modifiers);
      Rest(frame);
      return Position(frame);
    };
    EXPECT_EQ(press(Qt::Key_End), 4);
    EXPECT_EQ(press(Qt::Key_Right), 4);
    EXPECT_EQ(press(Qt::Key_PageUp), 0);
    EXPECT_EQ(press(Qt::Key_Left), 0);
    EXPECT_EQ(press(Qt::Key_PageDown), 4);
    EXPECT_EQ(press(Qt::Key_Home), 0);
    EXPECT_EQ(press(Qt::Key_Space), 1);
    EXPECT_EQ(press(Qt::Key_Space, Qt::ShiftModifier), 0);
    EXPECT_EQ(press(Qt::Key_Right, Qt::AltModifier), 1);
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[1]));
  });
}

TEST_F(MainFrame, KeysMarkPhotosAndShiftReachesToTheMarkBefore) {
  AddPhotos(9);
  Show([](CMainFrame& frame) {
    GoTo(frame, 1);
    QTest::keyClick(&frame, Qt::Key_M);
    EXPECT_TRUE(HasFlag(frame, 1, PhotoFlag::ToEmail));
    EXPECT_FALSE(HasFlag(frame, 1, PhotoFlag::ToRemotePrint));
    GoTo(frame, 5);
    QTest::keyClick(&frame, Qt::Key_M, Qt::ShiftModifier);
    for (int i = 0; i < 9; ++i) EXPECT_EQ(HasFlag(frame, i, PhotoFlag::ToEmail), i >= 1 && i <= 5) << i;
    QTest::keyClick(&frame, Qt::Key_M);
    EXPECT_FALSE(HasFlag(frame, 5, PhotoFlag::ToEmail));
    QTest::keyClick(&frame, Qt::Key_U, Qt::AltModifier);
    EXPECT_TRUE(HasFlag(frame, 5, PhotoFlag::ToRemotePrint));
    EXPECT_EQ(Position(frame), 5);
  });
}

TEST_F(MainFrame, MarksShowOnTheLargePhotoAndOnTheirButtons) {
  AddPhotos(1);
  Show([](CMainFrame& frame) {
    const QImage before = Painted(frame.GetPhotoView());
    QTest::keyClick(&frame, Qt::Key_M);
    EXPECT_NE(Painted(frame.GetPhotoView()), before);
    CPaintedButton& email = *frame.GetToolRow().GetButton(CommandId::ToggleEmail);
    EXPECT_EQ(email.GetText(), "Don't Email Photo");
    QTest::mouseClick(&email, Qt::LeftButton);
    EXPECT_EQ(email.GetText(), "Email Photo");
    EXPECT_FALSE(HasFlag(frame, 0, PhotoFlag::ToEmail));
    EXPECT_EQ(Painted(frame.GetPhotoView()), before);
    EXPECT_TRUE(frame.hasFocus()) << "after a click on a button";
  });
}

TEST_F(MainFrame, KeysInQuickSuccessionMeetThePhotoUnderTheLens) {
  AddPhotos(5);
  Show([](CMainFrame& frame) {
    GoTo(frame, 0);
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_3, Qt::Key_Right, Qt::Key_Right, Qt::Key_M}) {
      QTest::keyClick(&frame, key);
    }
    EXPECT_EQ(Position(frame), 3) << "each press of a key counts";
    EXPECT_EQ(frame.GetPhotoSet().GetAsset(1).GetCachedRating(), 3);
    EXPECT_TRUE(HasFlag(frame, 3, PhotoFlag::ToEmail));
  });
}

TEST_F(MainFrame, DigitsAndStarsRate) {
  AddPhotos(2);
  Show([](CMainFrame& frame) {
    GoTo(frame, 0);
    const auto rating = [&] { return frame.GetPhotoSet().GetAsset(0).GetCachedRating(); };
    QTest::keyClick(&frame, Qt::Key_3);
    EXPECT_EQ(rating(), 3);
    QTest::keyClick(&frame, Qt::Key_0, Qt::AltModifier);
    EXPECT_EQ(rating(), 0);
    auto* stars = frame.GetPhotoBack().findChild<QWidget*>(QStringLiteral("Rating"));
    ASSERT_NE(stars, nullptr);
    const auto click = [&](int star) {
      QTest::mousePress(stars->childAt(21 * star - 10, 10), Qt::LeftButton);
    };
    click(4);
    EXPECT_EQ(rating(), 4);
    click(4);
    EXPECT_EQ(rating(), 3) << "the last star filled is taken away";
    click(1);
    EXPECT_EQ(rating(), 1);
    frame.ToggleFullScreen(FullScreenChange::FullScreen);
    QTest::keyClick(&frame, Qt::Key_4);
    EXPECT_EQ(rating(), 1) << "the panel doesn't show";
  });
}

TEST_F(MainFrame, DeletedPhotosLeaveTheStripForTheTrash) {
  AddPhotos(3);
  Show([this](CMainFrame& frame) {
    GoTo(frame, 2);
    QTest::keyClick(&frame, Qt::Key_M);
    const CAssetRecord last = frame.GetPhotoSet().GetAsset(2);
    QTest::keyClick(&frame, Qt::Key_Delete);
    EXPECT_TRUE(last.GetFlag(PhotoFlag::Tossed));
    EXPECT_FALSE(last.GetFlag(PhotoFlag::ToEmail));
    EXPECT_EQ(frame.GetPhotoSet().GetCount(), 2);
    EXPECT_EQ(Position(frame), 1);
    EXPECT_TRUE(std::filesystem::exists(Scratch.GetPath() + "/" + PhotoName(2))) << "the file stays";

    std::filesystem::permissions(Scratch.GetPath() + "/" + PhotoName(1), std::filesystem::perms::owner_read);
    QTest::keyClick(&frame, Qt::Key_Delete);
    EXPECT_EQ(frame.GetPhotoSet().GetCount(), 2) << "a file that is marked as read-only";

    GoTo(frame, 0);
    QTest::keyClick(&frame, Qt::Key_Delete);
    std::filesystem::permissions(Scratch.GetPath() + "/" + PhotoName(1), std::filesystem::perms::owner_all);
    QTest::keyClick(&frame, Qt::Key_Delete);
    EXPECT_EQ(frame.GetPhotoSet().GetCount(), 0);
    QTest::keyClick(&frame, Qt::Key_Delete);
    QTest::keyClick(&frame, Qt::Key_M);
    QTest::keyClick(&frame, Qt::Key_4);
    EXPECT_FALSE(frame.GetToolRow().GetButton(CommandId::DeletePhoto)->isEnabled());
  });
}

TEST_F(MainFrame, RefusedWriteIsToldAndLeavesThePhotoAsItWas) {
  AddPhotos(2);
  Show([this](CMainFrame& frame) {
    GoTo(frame, 0);
    {
      const CFileSizeLimit fullDisk(0);
      QTest::keyClick(&frame, Qt::Key_M);
    }
    EXPECT_EQ(Messages.Shown.size(), 1U);
    EXPECT_FALSE(HasFlag(frame, 0, PhotoFlag::ToEmail));
    {
      const StripLayout& strip = frame.GetStrip().GetLayout();
      const QRect mark = strip.GetMetrics().MarkTargetAt(strip.GetCellLeft(strip.GetLensCell()), 1);
      const QImage before = Painted(frame.GetStrip());
      const CFileSizeLimit fullDisk(0);
      QTest::mouseClick(&frame.GetStrip(), Qt::LeftButton, {}, mark.center());
      EXPECT_EQ(Messages.Shown.size(), 2U);
      EXPECT_EQ(Painted(frame.GetStrip()), before) << "the mark shows what is stored";
    }
    QTest::keyClick(&frame, Qt::Key_M);
    EXPECT_TRUE(HasFlag(frame, 0, PhotoFlag::ToEmail)) << "the program goes on";
  });
}

TEST_F(MainFrame, EditsBelongToThePhotoUnderTheLensAndSurviveTheClose) {
  AddPhotos(3);
  const auto captionOf = [](CMainFrame& frame, int index) {
    return frame.GetPhotoSet().GetAsset(index).GetStamps(StampId::Note).Get(0).GetText();
  };
  const auto type = [](const char* text) { QTest::keyClicks(QApplication::focusWidget(), text); };
  Show([&](CMainFrame& frame) {
    GoTo(frame, 0);
    QTest::keyClick(&frame, Qt::Key_C);
    type("one");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right, Qt::AltModifier);
    type("two");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(captionOf(frame, 0), "one");
    EXPECT_EQ(captionOf(frame, 1), "");
    EXPECT_TRUE(frame.hasFocus());

    // Nothing but the user's own command leads an open field to another photo.
    QTest::keyClick(&frame, Qt::Key_F5);
    QTest::keyClick(&frame, Qt::Key_C);
    EXPECT_FALSE(frame.IsSlideShowRunning());
    type("on the third");
    QTest::qWait(2200);
    QWheelEvent notch({10, 10}, frame.mapToGlobal(QPointF(10, 10)), {}, {0, 120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(QApplication::focusWidget(), &notch);
    EXPECT_EQ(Position(frame), 2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(captionOf(frame, 2), "on the third");
    frame.StartSlideShow();
    QTest::mouseClick(&frame.GetFilterBar().GetFindControl(), Qt::LeftButton, {}, {10, 10});
    EXPECT_FALSE(frame.IsSlideShowRunning());
    EXPECT_TRUE(frame.GetFilterBar().IsEditing());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    frame.StartSlideShow();
    QTest::keyClick(&frame, Qt::Key_Escape);
    EXPECT_FALSE(frame.IsSlideShowRunning());

    // What is clicked on the panel is of the photo that the strip is coming to.
    GoTo(frame, 1);
    QTest::keyClick(&frame, Qt::Key_Left);
    QTest::mousePress(frame.GetPhotoBack().findChild<QWidget*>(QStringLiteral("Rating"))->childAt(10, 10),
                      Qt::LeftButton);
    EXPECT_EQ(frame.GetPhotoSet().GetAsset(0).GetCachedRating(), 1);
    QTest::keyClick(&frame, Qt::Key_Right);
    QTest::mouseClick(&frame.GetPhotoBack().GetField(StampId::Event)->GetTextWindow(), Qt::LeftButton);
    type("party");
    QTest::qWait(300);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(frame.GetPhotoSet().GetAsset(1).GetStamps(StampId::Event).Get(0).GetText(), "party");

    QTest::keyClick(&frame, Qt::Key_C);
    type("kept");
    frame.close();
    EXPECT_EQ(captionOf(frame, 1), "kept");
    frame.show();
    frame.activateWindow();
    frame.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&frame));
    QTest::keyClick(&frame, Qt::Key_E);
    type("lost");
    const CFileSizeLimit fullDisk(0);
    frame.close();
    EXPECT_EQ(Messages.Shown.size(), 1U) << "told before the program ends";
  });
}

TEST_F(MainFrame, OpensOnTheFirstPhotoOfANewRollAndKeepsTheStoredOrder) {
  AddPhotos(2);
  Show([](CMainFrame& frame) {
    EXPECT_EQ(Position(frame), 1) << "the first roll of a catalog is shown from its end";
    EXPECT_EQ(frame.GetPhotoSet().GetSortKind(), SortKind::Roll);
  });
  AddPhotos(3, 2);
  Show([](CMainFrame& frame) {
    EXPECT_EQ(frame.GetPhotoSet().GetCount(), 5);
    EXPECT_EQ(Position(frame), 2);
  });
  GetSettings()->SetInt("Sort", 233);
  Show([](CMainFrame& frame) {
    EXPECT_EQ(frame.GetPhotoSet().GetSortKind(), SortKind::Title);
    EXPECT_EQ(Position(frame), 0);
    QTest::keyClick(&frame, Qt::Key_2);
  });
  GetSettings()->SetInt("Sort", 221);
  Show([](CMainFrame& frame) {
    EXPECT_EQ(frame.GetPhotoSet().GetAsset(0).GetTitle(), "1000") << "the one with stars comes first";
  });
  GetSettings()->SetInt("Sort", 4711);
  Show([](CMainFrame& frame) { EXPECT_EQ(frame.GetPhotoSet().GetCount(), 5); });
}

TEST_F(MainFrame, SaysWhatItCannotShow) {
  Show([](CMainFrame& frame) {
    QWidget& view = frame.GetPhotoView();
    EXPECT_TRUE(HoldsInk(Painted(view), view.rect(), colours::kPage)) << "that there is no photo";
    for (const Qt::Key key :
         {Qt::Key_Right, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Down, Qt::Key_F5, Qt::Key_F11}) {
      QTest::keyClick(&frame, key);
    }
    EXPECT_FALSE(frame.IsFullScreen());
    EXPECT_FALSE(frame.IsSlideShowRunning());
  });
  Scratch.Write("Pictures/broken.jpg", "no picture");
  AddPhotos(1);
  Show([this](CMainFrame& frame) {
    GoTo(frame, 0);
    GoTo(frame, 1);
    QWidget& view = frame.GetPhotoView();
    EXPECT_FALSE(PhotoColour(frame).saturation() > 100) << "the photo before must be gone";
    EXPECT_TRUE(HoldsInk(Painted(view), view.rect(), colours::kPage));

    std::filesystem::remove(Scratch.GetPath() + "/" + PhotoName(0));
    GoTo(frame, 0);
    EXPECT_FALSE(PhotoColour(frame).saturation() > 100) << "a photo that vanished";
    AddPhotos(1);
    frame.GetPhotoView().Reload(false);
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[0])) << "it is tried again";
  });
}

TEST_F(MainFrame, PhotoIsDecodedAgainOnlyForALargerView) {
  AddPhotos(1, 0, 3200, 2400);
  Show([](CMainFrame& frame) {
    CPhotoView& view = frame.GetPhotoView();
    const CImage* first = view.GetImage();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->GetCurrentSize(), (ImageSize{800, 600}));
    frame.resize(900, 650);
    QCoreApplication::processEvents();
    EXPECT_EQ(view.GetImage(), first);
    frame.resize(1400, 1100);
    QCoreApplication::processEvents();
    EXPECT_EQ(view.GetImage()->GetCurrentSize(), (ImageSize{1600, 1200}));
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[0]));
  });
}

TEST_F(MainFrame, WheelCollectsSmallTurns) {
  AddPhotos(5);
  Show([](CMainFrame& frame) {
    GoTo(frame, 0);
    const auto turn = [&](int eighths) {
      QWheelEvent event({10, 10}, frame.mapToGlobal(QPointF(10, 10)), {}, {0, eighths}, Qt::NoButton, {},
                        Qt::NoScrollPhase, false);
      QCoreApplication::sendEvent(&frame, &event);
      Rest(frame);
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

TEST_F(MainFrame, RepeatsOfAHeldKeyAreNoPressesAndStayWhereThePressWent) {
  AddPhotos(5);
  Show([](CMainFrame& frame) {
    GoTo(frame, 0);
    quint64 now = 1000;
    const auto send = [&](QEvent::Type type, Qt::Key key, quint32 scanCode, const char* text) {
      QKeyEvent event(type, key, {}, scanCode, 0, 0, QString::fromLatin1(text));
      event.setTimestamp(now);
      QCoreApplication::sendEvent(QApplication::focusWindow(), &event);
    };
    // As X11 repeats a key: by releases and presses of one time that the toolkit doesn't tell as repeats.
    const auto hold = [&](Qt::Key key, quint32 scanCode, const char* text = "") {
      now += 500;
      send(QEvent::KeyPress, key, scanCode, text);
      for (int repeat = 0; repeat < 3; ++repeat) {
        now += 30;
        send(QEvent::KeyRelease, key, scanCode, text);
        send(QEvent::KeyPress, key, scanCode, text);
      }
      now += 30;
      send(QEvent::KeyRelease, key, scanCode, text);
    };
    hold(Qt::Key_M, 58, "m");
    EXPECT_TRUE(HasFlag(frame, 0, PhotoFlag::ToEmail));
    hold(Qt::Key_Delete, 119);
    EXPECT_EQ(frame.GetPhotoSet().GetCount(), 4);
    hold(Qt::Key_Right, 114);
    frame.GetStrip().FinishMove();
    EXPECT_EQ(Position(frame), 1) << "merged";

    hold(Qt::Key_C, 54, "c");
    hold(Qt::Key_A, 38, "a");
    hold(Qt::Key_Tab, 23);
    hold(Qt::Key_Return, 36);
    EXPECT_EQ(frame.GetPhotoSet().GetAsset(1).GetStamps(StampId::Note).Get(0).GetText(), "aaaa")
        << "typed are the repeats of what was typed";
    hold(Qt::Key_C, 54, "c");
    hold(Qt::Key_Tab, 23);
    EXPECT_TRUE(frame.GetPhotoBack().GetField(StampId::Date)->IsEditing()) << "four fields on";
  });
}

TEST_F(MainFrame, BlockedInputIsLost) {
  AddPhotos(2);
  Show([](CMainFrame& frame) {
    GoTo(frame, 0);
    frame.SetInputBlocked(true);
    QTest::keyClick(&frame, Qt::Key_M);
    QTest::keyClick(&frame, Qt::Key_M, Qt::AltModifier);
    QTest::mouseClick(frame.GetToolRow().GetButton(CommandId::ToggleEmail), Qt::LeftButton);
    frame.SetInputBlocked(false);
    QCoreApplication::processEvents();
    EXPECT_FALSE(HasFlag(frame, 0, PhotoFlag::ToEmail));
    QTest::keyClick(&frame, Qt::Key_M);
    EXPECT_TRUE(HasFlag(frame, 0, PhotoFlag::ToEmail));
  });
}

TEST_F(MainFrame, TellsAUserWithFewPhotosHowToAddFolders) {
  AddPhotos(2);
  GetSettings()->SetBool("DontShowAddFolderTip", false);
  int seen = 0;
  const auto answer = [&](bool never) {
    When([] { return QApplication::activeModalWidget() != nullptr; },
         [&seen, never] {
           auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
           ++seen;
           box->checkBox()->setChecked(never);
           box->accept();
         });
  };
  for (const bool never : {false, true}) {
    answer(never);
    Show([&](CMainFrame&) { EXPECT_TRUE(QTest::qWaitFor([&] { return seen == (never ? 2 : 1); }, 2000)); });
  }
  Show([](CMainFrame& frame) { EXPECT_TRUE(frame.hasFocus()) << "no tip any more"; });
  EXPECT_EQ(seen, 2);
  EXPECT_TRUE(GetSettings()->GetBool("DontShowAddFolderTip"));
}

TEST_F(MainFrame, ClosedDuringTheSearchStopsItAndThenCloses) {
  AddPhotos(1);
  CMainFrame frame;
  CWindowedSearchProgress progress(false, false);
  QTimer::singleShot(0, [&] { frame.close(); });
  EXPECT_TRUE(frame.Create(
      [&](CCatalog& catalog, CThumbnailCache& cache) {
        while (!progress.IsStopped()) QThread::msleep(1);  // the close reaches the job
        return OpenStores()(catalog, cache);
      },
      progress));
  EXPECT_TRUE(frame.IsClosing());
}
