#include <QAccessible>
#include <QDrag>
#include <QMimeData>
#include <thread>

#include "sets/QuerySet.h"
#include "support/CatalogFixture.h"
#include "ui/WindowTest.h"
#include "ui/controls/PaintedButton.h"
#include "ui/kit/Job.h"
#include "ui/strip/StripWindow.h"

namespace {

/// Notes what the strip says.
class CNotingHost : public CFilmstripHost {
 public:
  void OnCommand(CommandId id) override {
    Commands.push_back(id);
    if (OnMove) OnMove();
  }
  void OnCurrentPhotoChanged(const CAssetRecord* record) override {
    Shown.push_back(record != nullptr ? record->GetAssetID() : -1);
  }
  bool ShowsAtOnce(const CAssetRecord&) const override { return false; }
  void OnSlideBegins(const CAssetRecord*) override {}
  void OnSlideShowStateChanged() override { ++ShowChanges; }
  void ToggleInTab(const CAssetRecord& photo, ViewTabId tab, bool extendRange) override {
    Toggled.push_back({photo.GetAssetID(), tab, extendRange});
    CAssetRecord(photo).SetFlag(tab == ViewTabId::Email ? PhotoFlag::ToEmail : PhotoFlag::ToRemotePrint,
                                true);
  }
  void SelectTab(ViewTabId tab) override { Selected.push_back(tab); }
  std::string GetFolderLabel(const std::string& folder) const override { return "in " + folder; }

  using Toggle = std::tuple<std::int32_t, ViewTabId, bool>;
  std::function<void()> OnMove;  // what a command does
  std::vector<CommandId> Commands;
  std::vector<std::int32_t> Shown;
  std::vector<Toggle> Toggled;
  std::vector<ViewTabId> Selected;
  int ShowChanges = 0;
};

/// A strip window 1000 pixels wide, so of seven cells, over a catalog whose photos have thumbnails but no
/// files: what opened a file would find nothing.
class Filmstrip : public CCatalogFixture {
 protected:
  static constexpr int kVisible = 7;
  static constexpr int kSlideTime = 151;  // milliseconds for a cell
  static constexpr int kNewYear2003 = 1041418800;

  Filmstrip() {
    Window.resize(1000, kStripWindowHeight);
    Window.show();
  }
  ~Filmstrip() override { Strip.SetPhotoSet(nullptr); }

  static QColor HueOf(int photo) { return QColor::fromHsv(photo * 40 % 360, 255, 200); }
  void StoreThumbnail(std::int32_t id, const QColor& hue) {
    const std::string jpeg = MakePhoto(140, 105, hue);
    Cache.StoreBytes(id, std::vector<std::uint8_t>(jpeg.begin(), jpeg.end()));
  }

  std::string FileOf(int photo) const { return Scratch.GetPath() + "/IMG_" + std::to_string(photo) + ".jpg"; }
  void WriteFile(int photo, const QColor& hue) const {
    Scratch.Write("IMG_" + std::to_string(photo) + ".jpg", MakePhoto(560, 420, hue));
  }

  /// The strip with so many photos in the order in which they came, at rest on one of them. Three of them
  /// were taken in each month; photo i has i % 5 stars.
  void Begin(int count, int current = 0) {
    CAutoCommitPause catalogPause(Catalog);
    CAutoCommitPause cachePause(Cache);
    for (int i = 0; i < count; ++i) {
      const int date = kNewYear2003 + (i / 3 * 31 + i % 3) * 86400;
      StoreThumbnail(AddRow(FileOf(i), date, i % 5).GetAssetID(), HueOf(i));
    }
    catalogPause.Commit();
    cachePause.Commit();
    Set = std::make_unique<CQuerySet>(&Catalog, SetKind::Available);
    Strip.SetPhotoSet(Set.get());
    Strip.MoveTo(current);
    Settle();
    Host.Shown.clear();
  }
  void Sort(SortKind kind, bool descending = false) {
    ASSERT_TRUE(Set->SetSort(kind, descending));
    Set->Rebuild();
  }
  /// Lets idle time fill the cache.
  void Settle() {
    for (int painted = -1; painted != Strip.GetPaintedCells();) {
      painted = Strip.GetPaintedCells();
      for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    }
  }
  /// Waits until the host has been told of a photo.
  bool WaitForPhoto(std::size_t count = 1) {
    return QTest::qWaitFor([&] { return Host.Shown.size() >= count; }, 5000);
  }
  std::int32_t IdAt(int index) const { return Set->GetAssetId(index); }
  /// The middle of a cell, by its distance from that under the lens.
  QPoint CellPoint(int distance) const {
    return Strip.GetLayout().GetCellFrame(Strip.GetLayout().GetLensCell() + distance).center();
  }
  QPoint MarkPoint(int distance, int mark) const {
    const int left = Strip.GetLayout().GetCellLeft(Strip.GetLayout().GetLensCell() + distance);
    return Strip.GetLayout().GetMetrics().MarkTargetAt(left, mark).center();
  }
  void Click(QPoint point, Qt::KeyboardModifiers keys = {}) {
    QTest::mouseClick(&Strip, Qt::LeftButton, keys, point);
  }

  const CFontTable Fonts{false};
  std::unique_ptr<CPhotoSet> Set;
  CNotingHost Host;
  CStripWindow Window{Host, nullptr};
  CFilmstrip& Strip = Window.GetStrip();
};

}  // namespace

TEST_F(Filmstrip, SlideTakesItsTimeAndTellsOfThePhotoWhenItHasRested) {
  Begin(30, 10);
  QElapsedTimer clock;
  clock.start();
  Strip.MoveBy(1);
  ASSERT_TRUE(QTest::qWaitFor([&] { return Strip.GetCurrentIndex() == 11; }));
  EXPECT_GE(clock.elapsed(), kSlideTime);
  EXPECT_TRUE(Host.Shown.empty());
  ASSERT_TRUE(WaitForPhoto());
  for (const int delta : {1, 3, -2, -1}) Strip.MoveBy(delta);
  ASSERT_TRUE(WaitForPhoto(2));
  EXPECT_EQ(Host.Shown, (std::vector{IdAt(11), IdAt(10)})) << "the last move replaces what was put off";
  Strip.MoveBy(kVisible + 1);
  EXPECT_EQ(Host.Shown.back(), IdAt(10 + kVisible + 1)) << "farther than the cache reaches is a jump";
}

TEST_F(Filmstrip, NoCellIsPaintedOrReadTwice) {
  Begin(60, 20);
  const int painted = Strip.GetPaintedCells();
  const int read = Strip.GetReadThumbnails();
  EXPECT_EQ(Strip.GetCache().GetRun().GetAfter(), kVisible);
  int expected = 0;
  for (const int delta : {-2, 2, 7, -5}) {
    Host.Shown.clear();
    Strip.MoveBy(delta);
    ASSERT_TRUE(WaitForPhoto());
    Settle();
    expected += std::abs(delta);
    EXPECT_EQ(Strip.GetPaintedCells() - painted, expected) << delta;
    EXPECT_EQ(Strip.GetReadThumbnails() - read, expected) << delta;
    const QImage image = Painted(Strip);
    for (int cell = -3; cell <= 3; ++cell) {
      EXPECT_NEAR(image.pixelColor(CellPoint(cell)).hue(), HueOf(Strip.GetCurrentIndex() + cell).hue(), 5);
    }
  }
}

TEST_F(Filmstrip, CellsGetSharpAtRestOnADenseScreenAlone) {
  Begin(12, 5);
  const auto waitUntilSoft = [&](const std::vector<int>& cells) {
    return QTest::qWaitFor([&] { return Strip.GetCache().ListSoftCells(3) == cells; }, 5000);
  };
  const auto hueAt = [&](int distance) { return Painted(Strip).pixelColor(CellPoint(distance)).hue(); };
  const auto decoded = [&] { return Strip.GetSharpPictures().GetDecodedFiles(); };
  for (int i = 1; i < 12; ++i) WriteFile(i, QColor(Qt::cyan));
  EXPECT_EQ(Strip.GetCache().ListSoftCells(2), (std::vector{5, 6, 4, 7, 3}));
  EXPECT_EQ(decoded(), 0);
  MoveToDenseScreen(Window);
  ASSERT_TRUE(waitUntilSoft({}));
  EXPECT_EQ(decoded(), kVisible);
  for (const int cell : {-3, 0, 3}) EXPECT_NEAR(hueAt(cell), QColor(Qt::cyan).hue(), 5) << cell;

  for (const int end : {6, 7, 8}) {  // as a held key does
    Strip.MoveBy(1);
    Strip.MoveBy(1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return Strip.GetCurrentIndex() >= end; }));
  }
  EXPECT_EQ(decoded(), kVisible);
  ASSERT_TRUE(WaitForPhoto() && waitUntilSoft({}));

  // The photo is changed: its new thumbnail shows at once, then its new picture.
  WriteFile(Strip.GetCurrentIndex(), QColor(Qt::green));
  StoreThumbnail(IdAt(Strip.GetCurrentIndex()), QColor(Qt::blue));
  Strip.RedrawCurrentThumbnail();
  EXPECT_NEAR(hueAt(0), QColor(Qt::blue).hue(), 5);
  ASSERT_TRUE(waitUntilSoft({}));
  EXPECT_NEAR(hueAt(0), QColor(Qt::green).hue(), 5);

  Strip.MoveTo(0);
  ASSERT_TRUE(waitUntilSoft({0})) << "it has no file";
  EXPECT_NEAR(hueAt(0), HueOf(0).hue(), 5);
  Window.move(0, 0);
  EXPECT_TRUE(waitUntilSoft({0, 1, 2, 3}));
}

TEST_F(Filmstrip, HeldKeySlidesOnLoadsNothingAndStopsWhenLetGo) {
  Begin(100, 50);
  QTimer key;
  QObject::connect(&key, &QTimer::timeout, [&] { Strip.MoveBy(1); });
  Strip.MoveBy(1);
  key.start(30);
  ASSERT_TRUE(QTest::qWaitFor([&] { return Strip.GetCurrentIndex() >= 53; }));
  key.stop();
  EXPECT_TRUE(Host.Shown.empty());
  const int atRelease = Strip.GetCurrentIndex();
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_LE(Strip.GetCurrentIndex(), atRelease + 2) << "the slide under way, and one that was put off";
  EXPECT_EQ(Host.Shown, std::vector{IdAt(Strip.GetCurrentIndex())});
}

TEST_F(Filmstrip, WhatIsAskedDuringASlideActsOnTheStripAtRest) {
  Begin(30, 10);
  Strip.MoveBy(1);
  Strip.MoveBy(1);
  ASSERT_NE(Strip.GetCurrentRecord(), nullptr);
  EXPECT_EQ(Strip.GetCurrentRecord()->GetAssetID(), IdAt(11)) << "the move that was put off is forgotten";
  ASSERT_TRUE(WaitForPhoto());
  Strip.MoveBy(2);
  Strip.MoveTo(5);
  EXPECT_EQ(Host.Shown, (std::vector{IdAt(11), IdAt(5)})) << "at once, and alone";
  Strip.MoveBy(1);
  Strip.AnnounceNow();
  Strip.AnnounceNow();
  EXPECT_EQ(Host.Shown, (std::vector{IdAt(11), IdAt(5), IdAt(6)})) << "nothing is due any more";
  const std::int32_t gone = IdAt(7);
  const std::int32_t next = IdAt(8);
  Strip.MoveBy(1);
  Strip.RemoveCurrent();
  EXPECT_EQ(Set->IndexOf(gone), -1);
  Strip.MoveBy(1);
  Set->RemoveAt(0);
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_EQ(Host.Shown.back(), IdAt(7)) << "the photo moved to";
  EXPECT_EQ(IdAt(6), next);
}

TEST_F(Filmstrip, HiddenStripMovesAtOnceAndThenAtItsPace) {
  Begin(100, 50);
  Window.hide();
  for (int repeats = 0; repeats < 5; ++repeats) Strip.MoveBy(1);
  EXPECT_EQ(Host.Shown, std::vector{IdAt(51)})
      << "at once, as nobody sees a slide; a held key runs no faster";
  EXPECT_TRUE(QTest::qWaitFor([&] { return Host.Shown == std::vector{IdAt(51), IdAt(52)}; }, 2000));
  Strip.MoveBy(1);
  Strip.FinishMove();
  Strip.MoveBy(1);
  EXPECT_EQ(Host.Shown.back(), IdAt(53)) << "a press ends the pause";
}

TEST_F(Filmstrip, OnlyTheSlideShowGoesRound) {
  Begin(2, 1);
  Strip.MoveBy(2);
  Strip.MoveBy(-3);
  Strip.MoveTo(4);
  EXPECT_TRUE(Host.Shown.empty()) << "nothing leads out of the set";
  Strip.MovePage(true);
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
  Strip.MovePage(false);
  ASSERT_TRUE(WaitForPhoto(2));
  EXPECT_TRUE(Strip.StartSlideShow());
  EXPECT_TRUE(Strip.StartSlideShow());
  ASSERT_TRUE(WaitForPhoto(5));
  EXPECT_EQ(Host.Shown, (std::vector{IdAt(0), IdAt(1), IdAt(0), IdAt(1), IdAt(0)}));
  EXPECT_TRUE(Strip.IsSlideShowRunning());
  Click(CellPoint(1));
  EXPECT_FALSE(Strip.IsSlideShowRunning());
  EXPECT_EQ(Host.ShowChanges, 2);
}

TEST_F(Filmstrip, RestsWhileAJobOwnsTheData) {
  Begin(100, 50);
  Strip.MoveBy(1);
  int index = -1;
  RunJob([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    RunOnWindowThread([&] {
      Strip.repaint();
      Window.resize(1400, kStripWindowHeight);  // more cells would have to be read
      index = Strip.GetCurrentIndex();
    });
  });
  EXPECT_EQ(index, 50);
  EXPECT_TRUE(Host.Shown.empty());
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Host.Shown, std::vector{IdAt(51)});
  Settle();
  EXPECT_EQ(Strip.GetCache().GetRun().GetBefore() + Strip.GetCache().GetRun().GetAfter(), 22);
}

TEST_F(Filmstrip, RefreshKeepsThePhotoOrGoesWhereItIsTold) {
  Begin(20, 7);
  const std::int32_t photo = IdAt(7);
  Sort(SortKind::Rating, true);
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_EQ(Host.Shown, std::vector{photo}) << "told even so, for all around it may have changed";
  Strip.Refresh(CFilmstrip::kStartOfSet);
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
  Sort(SortKind::Month);
  Strip.Refresh(CFilmstrip::kStartOfSet);
  EXPECT_EQ(Strip.GetCurrentIndex(), 19);
  Strip.Refresh(10);
  EXPECT_EQ(Strip.GetCurrentIndex(), 10);
  Set->RemoveAt(10);
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_EQ(Strip.GetCurrentIndex(), 18) << "as at the start, for the photo has left the set";
}

TEST_F(Filmstrip, ToolsHearOfThePhotosOnViewAlsoWhileAJobHasTheCatalog) {
  Begin(9, 1);
  Set->GetAsset(1).SetFlag(PhotoFlag::ToEmail, true);
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&Strip);
  ASSERT_EQ(list->childCount(), 5);
  QAccessibleInterface* current = list->child(1);
  QAccessibleInterface* last = list->child(4);
  EXPECT_EQ(list->childAt(Strip.mapToGlobal(CellPoint(0)).x(), Strip.mapToGlobal(CellPoint(0)).y()), current);
  const auto name = [&] { return current->text(QAccessible::Name).toStdString(); };
  EXPECT_EQ(name(), "IMG_1, 2 of 9, 1 star, marked for email");
  EXPECT_TRUE(current->state().selected);
  RunJob([&] {
    RunOnWindowThread([&] {
      EXPECT_EQ(name(), "IMG_1, 2 of 9, 1 star, marked for email");
      EXPECT_EQ(last->text(QAccessible::Name), "") << "isn't read now";
    });
  });
  last->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  ASSERT_TRUE(QTest::qWaitFor([&] { return Strip.GetCurrentIndex() == 4; }));
  EXPECT_TRUE(list->child(list->indexOfChild(last))->state().selected);
  Strip.RemoveCurrent();
  EXPECT_FALSE(last->isValid());
  EXPECT_EQ(last->text(QAccessible::Name), "");
}

TEST_F(Filmstrip, RemovingThePhotoGoesToItsNeighbourAndAtLastToNone) {
  Begin(3, 1);
  const std::vector<std::int32_t> expected = {IdAt(2), IdAt(0), -1};
  Set->RemoveAt(2);
  Set->SetGuest(expected[0]);
  Strip.StartSlideShow();
  Strip.MoveTo(1);
  Host.Shown.clear();
  for (int i = 0; i < 4; ++i) Strip.RemoveCurrent();
  EXPECT_EQ(Host.Shown, expected);
  EXPECT_EQ(Set->GetGuest(), -1) << "a guest that was removed is none";
  EXPECT_TRUE(Strip.isHidden());
  EXPECT_EQ(Strip.GetCurrentRecord(), nullptr);
  EXPECT_FALSE(Strip.IsSlideShowRunning() || Strip.StartSlideShow());
  Set->Rebuild();
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_EQ(Host.Shown.back(), IdAt(0));
  EXPECT_TRUE(Strip.isVisible());
}

TEST_F(Filmstrip, MarksToggleInTheirTabs) {
  Begin(30, 10);
  const QImage plain = Painted(Strip);
  Click(MarkPoint(0, 0));
  Click(MarkPoint(-2, 1), Qt::ShiftModifier);
  QTest::mouseDClick(&Strip, Qt::LeftButton, {}, MarkPoint(0, 0));
  using Toggle = CNotingHost::Toggle;
  const Toggle upload{IdAt(10), ViewTabId::Upload, false};
  EXPECT_EQ(Host.Toggled, (std::vector{upload, Toggle{IdAt(8), ViewTabId::Email, true}, upload}));
  CAssetIdSet marked;
  marked.Add(IdAt(8));
  Strip.RedrawMarks(marked);
  EXPECT_NE(Painted(Strip), plain);
}

TEST_F(Filmstrip, ClickSlidesACellUnderTheLensAndDoubleClickThereOpensIt) {
  Begin(13, 10);
  Click(QPoint(CellPoint(2).x(), 118));  // its label
  Click(CellPoint(3));                   // behind the last photo
  QTest::mouseDClick(&Strip, Qt::LeftButton, {}, QPoint(CellPoint(0).x(), 118));
  Click(CellPoint(-3));
  QTest::mouseDClick(&Strip, Qt::LeftButton, {}, CellPoint(-3));
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Host.Shown, std::vector{IdAt(7)}) << "one move";
  EXPECT_TRUE(Host.Selected.empty());
  QTest::mouseDClick(&Strip, Qt::LeftButton, {}, CellPoint(0));
  EXPECT_EQ(Host.Selected, std::vector{ViewTabId::CurrentPhoto});
}

TEST_F(Filmstrip, OnlyThePhotoUnderTheLensIsDraggedOutAsACopyOfItsFile) {
  Begin(13, 10);
  Set->GetAsset(10).SetPath("/a b%/\xfc\n.jpg");
  // The test's platform ends a drag as soon as it has begun.
  const auto drag = [&](QPoint from, int way) {
    QTest::mousePress(&Strip, Qt::LeftButton, {}, from);
    const QPoint to = from + QPoint(way, 0);
    QMouseEvent move(QEvent::MouseMove, to, Strip.mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&Strip, &move);
    return Strip.findChild<QDrag*>();
  };
  const int enough = QApplication::startDragDistance();
  EXPECT_EQ(drag(QPoint(CellPoint(0).x(), 118), enough), nullptr) << "its label";
  EXPECT_EQ(drag(CellPoint(0), enough - 1), nullptr);
  EXPECT_EQ(drag(CellPoint(-1), enough), nullptr) << "it slides under the lens";
  Strip.MoveTo(10);
  const auto* const begun = drag(CellPoint(0), enough);
  ASSERT_NE(begun, nullptr);
  EXPECT_EQ(begun->mimeData()->data("text/uri-list"), "file:///a%20b%25/%FC%0A.jpg\r\n");
  EXPECT_EQ(begun->supportedActions(), Qt::CopyAction);
  EXPECT_FALSE(begun->pixmap().isNull());
}

TEST_F(Filmstrip, NoQuickClickOnALensButtonIsLost) {
  Begin(30, 10);
  QList<CPaintedButton*> buttons = Window.findChild<QWidget*>("LensBottom")->findChildren<CPaintedButton*>();
  std::sort(buttons.begin(), buttons.end(), [](auto* left, auto* right) { return left->x() < right->x(); });
  for (CPaintedButton* button : buttons) QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(Host.Commands, (std::vector{CommandId::PreviousGroup, CommandId::PreviousPhoto,
                                        CommandId::NextPhoto, CommandId::NextGroup}));
  Host.OnMove = [this] { Strip.MoveBy(1); };
  for (int click = 0; click < 8; ++click) QTest::mouseClick(buttons[2], Qt::LeftButton);
  Strip.FinishMove();
  EXPECT_EQ(Strip.GetCurrentIndex(), 18);
  QTest::mousePress(Window.findChild<QWidget*>("PushBarRight"), Qt::LeftButton, {}, {0, 13});
  EXPECT_EQ(Strip.GetCurrentIndex(), 19) << "a press on a bar jumps";
}

TEST_F(Filmstrip, LabelsNameThePlaceInTheOrder) {
  Begin(2);
  Catalog.AdvanceRoll();
  for (int i = 0; i < 24; ++i) AddRow("/roll/R" + std::to_string(100 + i) + ".b.jpg");
  Catalog.AdvanceRoll();
  AddRow("/roll/Z.jpg");
  const auto label = [&](SortKind kind, int index, bool descending = false) {
    Sort(kind, descending);
    return GetGroupLabel(*Set, index, [](const std::string& folder) { return "in " + folder; });
  };
  EXPECT_EQ(label(SortKind::Month, 26), "Jan 2, 2003");
  EXPECT_EQ(label(SortKind::Rating, 0, true), "1 star");
  // The rolls' photos have numbers from 0 on.
  const std::string roll = "Roll " + std::to_string(Set->GetAsset(5).GetRollID() + 1);
  EXPECT_EQ(label(SortKind::Roll, 2), roll + " - 1 of 24");
  EXPECT_EQ(label(SortKind::Roll, 25), roll + " - 24 of 24");
  EXPECT_TRUE(label(SortKind::Roll, 26).ends_with(" - 1 of 1"));
  Set->RemoveAt(26);
  EXPECT_EQ(GetGroupLabel(*Set, 4, {}), roll + " - 3 of 24") << "in the last roll, too";
}
