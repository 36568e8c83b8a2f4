#include <QAccessible>

#include "editing/SafeFiles.h"
#include "support/FaultSteps.h"
#include "support/FaultyVfs.h"
#include "ui/frame/MainFrameFixture.h"
#include "ui/pages/ViewTabBar.h"

namespace {

class Tabs : public CMainFrameFixture {
 protected:
  Tabs() : Data("XDG_DATA_HOME", InHome("data")) {}

  CPhotoTab& Tab(ViewTabId id) { return *Parts().GetPhotoTab(id); }
  CPhotoTab& Email() { return Tab(ViewTabId::Email); }
  CPhotoTab& Trash() { return Tab(ViewTabId::Trash); }
  bool HasTrash() { return Parts().TabBar->HasTab(ViewTabId::Trash); }
  ViewTabId SelectedTab() { return Parts().TabBar->GetSelectedTab(); }
  QWidget& Select(ViewTabId id) {
    Parts().TabBar->SelectTab(id);
    return *Parts().GetShownPage().Page;
  }
  void Click(CommandId id) {
    QTest::mouseClick(Parts().GetShownPage().ToolRow->GetButton(id), Qt::LeftButton);
    Rest();
  }
  void ClickPhoto(int index) {
    CPhotoTab& tab = Tab(SelectedTab());
    QTest::mouseClick(&tab, Qt::LeftButton, {}, tab.PlaceItem(index).center());
    Rest();
  }

  /// The titles of a page's photos, one after the other.
  std::string Titles(ViewTabId id) {
    std::string titles;
    for (const std::string& path : Tab(id).GetPaths()) {
      titles += (titles.empty() ? "" : " ") + std::filesystem::path(path).stem().string();
    }
    return titles;
  }
  /// The photos of the set that are marked for mail, "0110".
  std::string Marks() {
    std::string marks;
    for (int i = 0; i < Frame->GetPhotoSet().GetCount(); ++i) marks += IsToEmail(i) ? '1' : '0';
    return marks;
  }

  const CEnvironmentVariable Data;
};

}  // namespace

TEST_F(Tabs, ListsSurviveARestartAndFollowTheStrip) {
  WritePhotos(5);
  Start(3);
  Press({Qt::Key_M, Qt::Key_U});
  GoTo(1);
  Press({Qt::Key_M});
  EXPECT_EQ(Titles(ViewTabId::Email), "1003 1001") << "in the order in which they came";
  EXPECT_EQ(Email().GetSelected(), 1);
  GoTo(3);
  EXPECT_EQ(Email().GetSelected(), 0);
  GoTo(2);
  EXPECT_EQ(Email().GetSelected(), -1);
  Select(ViewTabId::Email);
  ClickPhoto(1);
  EXPECT_EQ(Position(), 1);
  EXPECT_TRUE(Email().hasFocus());
  Press({Qt::Key_Left, Qt::Key_Left, Qt::Key_Down});
  EXPECT_EQ(Email().GetSelected(), 1);
  Press({Qt::Key_Left});
  for (int i = 0; i < 2; ++i) Frame->ToggleInTab(Photo(4), ViewTabId::Email, false);
  EXPECT_EQ(Email().GetSelected(), 0) << "photo 4 isn't under the lens";
  ClickPhoto(1);
  EXPECT_EQ(Email().GetSelected(), 1) << "the photo under the lens";
  Press({Qt::Key_Home});
  Rest();
  EXPECT_EQ(Position(), 0) << "other keys are the window's";
  Start(0);
  EXPECT_EQ(Titles(ViewTabId::Email), "1001 1003");
  EXPECT_EQ(Titles(ViewTabId::Upload), "1003");
  Photo(3).SetMissing(MissingState::FolderRemoved);
  Frame->OnFoldersSearched();
  EXPECT_EQ(Titles(ViewTabId::Email), "1001");
  EXPECT_EQ(Tab(ViewTabId::Upload).GetCount(), 0);
  Select(ViewTabId::Email);
  Click(CommandId::ClearOneEmail);
  EXPECT_EQ(Email().GetCount(), 1) << "nothing is selected";
  ClickPhoto(0);
  Click(CommandId::ClearOneEmail);
  EXPECT_EQ(Email().GetCount(), 0);
  EXPECT_EQ(Marks(), "00010") << "what is missing keeps its mark";
}

TEST_F(Tabs, ShiftTogglesWhatLiesBetween) {
  WritePhotos(8);
  Start();
  // Where the key is pressed, whether with Shift, and the marks then.
  const std::tuple<int, bool, const char*> rows[] = {
      {6, true, "00000010"},  {2, true, "00111110"},  // up to the nearest one behind
      {0, false, "10111110"}, {7, true, "10111111"},  // down to the nearest one before
      {7, true, "11000000"},                          // off, to the farthest one before; photo 1 was off
      {4, true, "11111000"},  {0, true, "00001000"},  // off, to the farthest one behind
  };
  for (const auto& [position, extends, marks] : rows) {
    GoTo(position);
    Press({Qt::Key_M}, extends ? Qt::ShiftModifier : Qt::NoModifier);
    EXPECT_EQ(Marks(), marks) << position;
    EXPECT_EQ(Email().GetCount(), QByteArray(marks).count('1'));
  }
}

TEST_F(Tabs, AddRecentGoesFromTheNewestRollToTheOldestAndAsksThere) {
  WritePhotos(2);
  Start();
  WritePhotos(2, 2);
  Start();
  WritePhotos(1, 4);
  Start(0);
  Select(ViewTabId::Upload);
  Click(CommandId::AddRecent);
  EXPECT_EQ(Titles(ViewTabId::Upload), "1004");
  Photo(2).SetFlag(PhotoFlag::ToRemotePrint, true);
  Photo(3).SetFlag(PhotoFlag::Tossed, true);
  Photo(2).SetFlag(PhotoFlag::Tossed, true);
  Messages.Answer = false;
  Click(CommandId::AddRecent);
  EXPECT_EQ(Titles(ViewTabId::Upload), "1004") << "a roll without photos is passed over";
  EXPECT_EQ(Messages.Texts.size(), 1U);
  Messages.Answer = true;
  Click(CommandId::AddRecent);
  EXPECT_EQ(Titles(ViewTabId::Upload), "1004 1000 1001");
  Click(CommandId::AddRecent);
  EXPECT_EQ(Messages.Texts.size(), 2U) << "from the newest roll again";
  Click(CommandId::ClearAllUpload);
  EXPECT_EQ(Tab(ViewTabId::Upload).GetCount(), 0);
  Click(CommandId::AddRecent);
  EXPECT_EQ(Titles(ViewTabId::Upload), "1004");
}

TEST_F(Tabs, APhotoThatTheFiltersHideIsShownAsGuest) {
  WritePhotos(5);
  CMainFrame& frame = Start(2);
  Press({Qt::Key_M, Qt::Key_U});
  GoTo(3);
  Press({Qt::Key_M});
  frame.GetPhotoSet().SetTextFilter("1000 1001");
  frame.GetPhotoSet().Rebuild();
  frame.RefreshStrip(StripPosition::StartOfSet);
  Select(ViewTabId::Email);
  ClickPhoto(0);
  EXPECT_EQ(frame.GetPhotoSet().GetCount(), 3);
  EXPECT_EQ(Photo(Position()).GetTitle(), "1002");
  ClickPhoto(1);
  EXPECT_EQ(Photo(Position()).GetTitle(), "1003") << "one guest at a time";
  EXPECT_EQ(frame.GetPhotoSet().GetCount(), 3);
  Press({Qt::Key_Return});
  EXPECT_EQ(SelectedTab(), ViewTabId::CurrentPhoto);
  EXPECT_TRUE(frame.hasFocus());
  EXPECT_TRUE(QTest::qWaitFor([&] { return ShowsPhoto(3); }, 2000));
  Press({Qt::Key_Delete});
  EXPECT_EQ(frame.GetPhotoSet().GetCount(), 2);
  EXPECT_EQ(Titles(ViewTabId::Email), "1002");
}

TEST_F(Tabs, DeletedPhotosCanBeRestoredUntilTheTrashIsEmptied) {
  WritePhotos(4);
  Start(1);
  EXPECT_FALSE(HasTrash());
  Press({Qt::Key_M, Qt::Key_Delete});
  EXPECT_TRUE(HasTrash());
  EXPECT_EQ(Email().GetCount(), 0);
  Start(0);
  EXPECT_EQ(Titles(ViewTabId::Trash), "1001") << "the trash lasts";
  Select(ViewTabId::Trash);
  Press({Qt::Key_Delete});
  Click(CommandId::Restore);
  EXPECT_EQ(Trash().GetCount(), 1) << "only from the current photo's page; and nothing is selected";
  QTest::mouseDClick(&Trash(), Qt::LeftButton, {}, Trash().PlaceItem(0).center());
  EXPECT_EQ(SelectedTab(), ViewTabId::Trash);
  EXPECT_EQ(Trash().GetSelected(), 0);
  Click(CommandId::Restore);
  EXPECT_FALSE(HasTrash());
  EXPECT_EQ(SelectedTab(), ViewTabId::CurrentPhoto);
  EXPECT_EQ(Frame->GetPhotoSet().GetCount(), 4);
  EXPECT_EQ(Marks(), "0000") << "it is on no list again";
  GoTo(1);
  Press({Qt::Key_F, Qt::Key_Delete, Qt::Key_Delete});
  std::filesystem::remove(InHome(PhotoName(2)));
  const std::int32_t current = Photo(Position()).GetAssetID();
  Select(ViewTabId::Trash);
  Click(CommandId::EmptyTrash);
  EXPECT_FALSE(HasTrash());
  EXPECT_EQ(Photo(Position()).GetAssetID(), current);
  EXPECT_EQ(CCatalog::GetInstance()->GetAssets().GetSize(), 2);
  for (const char* name : {"1001.jpg", "1001.jpg.orig"}) {
    EXPECT_FALSE(std::filesystem::exists(InHome("Pictures/") + name)) << name;
    EXPECT_TRUE(std::filesystem::exists(InHome("data/Trash/files/") + name)) << name;
  }
  Press({Qt::Key_Delete, Qt::Key_Delete});
  Select(ViewTabId::Trash);
  Click(CommandId::EmptyTrash);
  EXPECT_EQ(Frame->GetPhotoSet().GetCount(), 0) << "of the last photos";
}

TEST_F(Tabs, AChangeThatTheDiskRefusesShowsNowhere) {
  WritePhotos(5);
  Start(4);
  Press({Qt::Key_M});
  GoTo(0);
  Select(ViewTabId::Email);
  {
    const CFileSizeLimit fullDisk(0);
    Press({Qt::Key_M}, Qt::ShiftModifier);
    Click(CommandId::AddRecent);
    Click(CommandId::ClearAllEmail);
    Select(ViewTabId::CurrentPhoto);
    Press({Qt::Key_Delete});
  }
  EXPECT_EQ(Messages.Texts.size(), 5U) << "the question of the oldest roll, too";
  EXPECT_EQ(Marks(), "00001");
  EXPECT_EQ(Titles(ViewTabId::Email), "1004");
  EXPECT_FALSE(HasTrash());
  Press({Qt::Key_Delete});
  EXPECT_EQ(Titles(ViewTabId::Trash), "1000");
  Select(ViewTabId::Trash);
  {
    const CFileSizeLimit fullDisk(0);
    Click(CommandId::EmptyTrash);
  }
  EXPECT_EQ(Titles(ViewTabId::Trash), "1000");
  EXPECT_TRUE(std::filesystem::exists(InHome(PhotoName(0))));
}

TEST_F(Tabs, AChangeThatTookEffectBeforeItFailedShowsEverywhere) {
  CFaultyVfs vfs;
  const auto failLate = [&](const auto& change) {
    Messages.Texts.clear();
    vfs.SetPlan([](const std::string& step, const std::string&) {
      return step == "deleted" ? SQLITE_IOERR_DELETE : SQLITE_OK;
    });
    change();
    Rest();
    vfs.SetPlan({});
    EXPECT_EQ(Messages.Texts.size(), 1U);
  };
  WritePhotos(3);
  CMainFrame& frame = Start(0);
  failLate([&] { Press({Qt::Key_Delete}); });
  EXPECT_EQ(Titles(ViewTabId::Trash), "1000");
  EXPECT_EQ(frame.GetPhotoSet().GetCount(), 2);
  Select(ViewTabId::Trash);
  ClickPhoto(0);
  failLate([&] { Click(CommandId::Restore); });
  EXPECT_FALSE(HasTrash());
  EXPECT_EQ(frame.GetPhotoSet().GetCount(), 3);
}

TEST_F(Tabs, TabLeadsRoundTheWindowAndBack) {
  WritePhotos(2);
  CMainFrame& frame = Start(0);
  Select(ViewTabId::Email);
  CToolbar& row = *Parts().GetShownPage().ToolRow;
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&row)->childCount(), 4) << "without the captions";
  CPaintedButton& clearAll = *row.GetButton(CommandId::ClearAllEmail);
  CPaintedButton& addRecent = *row.GetButton(CommandId::AddRecent);
  row.GetButton(CommandId::ClearOneEmail)->setEnabled(false);
  const auto walk = [&](Qt::KeyboardModifiers modifiers) {
    std::string names;
    do {
      Press({Qt::Key_Tab}, modifiers);
      if (!frame.hasFocus()) names += QApplication::focusWidget()->accessibleName().toStdString() + ", ";
    } while (!frame.hasFocus() && names.size() < 500);
    return names;
  };
  EXPECT_EQ(walk({}),
            "Rating, Title, Caption, Subjects, Event, Place, Date, Show, Find, Rated, Sort by, Views, "
            "No photos to email, Clear All, Add Recent, Send Photos, Information and help, ");
  EXPECT_EQ(walk(Qt::ShiftModifier),
            "Information and help, Send Photos, Add Recent, Clear All, No photos to email, Views, Sort by, "
            "Rated, Find, Show, Date, Place, Event, Subjects, Caption, Title, Rating, ");
  const QImage plain = Painted(Email());
  Press({Qt::Key_Tab}, Qt::ShiftModifier);
  const QImage unfocused = Painted(*Parts().StripWindow);
  for (int i = 0; i < 4; ++i) Press({Qt::Key_Tab}, Qt::ShiftModifier);
  EXPECT_NE(Painted(Email()), plain) << "no photo is selected";
  frame.setFocus();
  EXPECT_NE(Painted(*Parts().StripWindow), unfocused);
  QTest::mousePress(&frame, Qt::LeftButton);
  WhenDialogShows([](QWidget& dialog) { dialog.close(); });
  Press({Qt::Key_F1});
  Activate(frame);
  EXPECT_EQ(Painted(*Parts().StripWindow), unfocused) << "the mouse is used";
  Press({Qt::Key_P, Qt::Key_Tab, Qt::Key_Tab});
  EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Title") << "an edit stays among the fields";
  addRecent.setFocus(Qt::TabFocusReason);
  Press({Qt::Key_Space});
  EXPECT_EQ(Email().GetCount(), 2);
  clearAll.setFocus(Qt::TabFocusReason);
  Press({Qt::Key_Right, Qt::Key_Return});
  Rest();
  EXPECT_EQ(Email().GetCount(), 0);
  EXPECT_EQ(Position(), 1) << "keys that a button doesn't take are the window's";
  Select(ViewTabId::CurrentPhoto);
  EXPECT_TRUE(frame.hasFocus()) << "the focus leaves with the row";
}

TEST_F(Tabs, PagesGetSharpOnADenseScreenAndFollowAChangedPhoto) {
  WritePhotos(3);
  Start(0);
  for (int i = 0; i < 3; ++i) Frame->ToggleInTab(Photo(i), ViewTabId::Email, false);
  Select(ViewTabId::Email);
  const auto hueOf = [&](int index) {
    return Painted(Email()).pixelColor(Email().PlaceItem(index).center() * 2).hue();
  };
  const auto waitFor = [&](int index, const QColor& colour) {
    return QTest::qWaitFor([&] { return std::abs(hueOf(index) - colour.hue()) < 5; }, 5000);
  };
  Scratch.Write(PhotoName(1), MakePhoto(320, 240, QColor(Qt::cyan)));  // which no thumbnail tells
  MoveToDenseScreen(*Frame);
  ASSERT_TRUE(waitFor(1, Qt::cyan));
  Scratch.Write(PhotoName(1), MakePhoto(320, 240, QColor(Qt::magenta)));
  Email().RefreshThumbnail(Photo(1).GetAssetID());
  EXPECT_NEAR(hueOf(1), kHues[1].hue(), 5) << "its thumbnail, at once";
  ASSERT_TRUE(waitFor(1, Qt::magenta));
}
