#include <gmock/gmock.h>

#include <QListWidget>
#include <QPushButton>
#include <QUrl>

#include "base/Settings.h"
#include "discovery/FolderHistory.h"
#include "sets/QuerySet.h"
#include "support/FaultSteps.h"
#include "ui/HomeFixture.h"
#include "ui/back/FilterBar.h"
#include "ui/back/FilterBarHost.h"
#include "ui/controls/DropControl.h"
#include "ui/kit/FilePath.h"

namespace {

using testing::StartsWith;

/// Browses by script, where an answer that is missing is Cancel; the list of folders is the program's own.
struct CScriptedBrowser : CWindowFolderChooser {
  std::optional<std::string> Browse() override { return std::exchange(Answer, std::nullopt); }

  std::optional<std::string> Answer;
};

/// A home with photos in the pictures folder and in "Trip" and "Scans", and a bar over them.
class FilterBar : public CStoresFixture, public CFilterBarHost {
 protected:
  FilterBar() {
    for (const char* path : {"Pictures/ash.jpg", "Trip/birch.jpg", "Scans/cedar.jpg"}) WritePhoto(path);
  }

  CCatalog& GetCatalog() override { return Catalog; }
  CPhotoSet& GetPhotoSet() override { return *Set; }
  void RefreshStrip(StripPosition position) override { Refreshed.push_back(position); }
  void MoveStrip(int index) override { MovedTo = index; }
  void OnEditBegins() override {}
  void FocusMainWindow() override { Window.setFocus(); }
  void PrepareForJob() override { ++Prepared; }
  void OnFoldersSearched() override {}

  /// Makes the bar, which shows the pictures folder.
  void Start() {
    Search.FirstSearch();
    Set.emplace(&Catalog, SetKind::Available);
    auto browser = std::make_unique<CScriptedBrowser>();
    Browser = browser.get();
    Bar = std::make_unique<CFilterBar>(*this, &Window, std::move(browser));
    Bar->setGeometry(0, 100, 267, CFilterBar::GetHeight());
    Activate(Window);
    QCoreApplication::processEvents();
    Refreshed.clear();
    Prepared = 0;
  }

  /// Picks the item with that id, as a click on its row does.
  template <typename Id>
  static void Pick(CDropControl& control, Id id) {
    CDropControlModel& model = control.GetModel();
    const auto rows = model.GetRows();
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [id](const auto& item) { return item.Id == static_cast<int>(id); });
    model.OpenList();
    if (model.CloseList(static_cast<int>(row - rows.begin()))) control.OnChange();
  }
  void PickFolder(FolderItem item) { Pick(Bar->GetFolderControl(), item); }
  void AddFolder(const std::string& name) {
    Browser->Answer = InHome(name);
    PickFolder(FolderItem::AddFolder);
  }
  /// Picks an item that opens the list of folders, and there the entry of that row; -1 cancels.
  void PickFromList(FolderItem item, int row) {
    WhenDialogShows([row](QWidget& dialog) {
      if (row >= 0) dialog.findChild<QListWidget*>()->item(row)->setSelected(true);
      dialog.findChildren<QPushButton*>()[row >= 0 ? 0 : 1]->click();
    });
    PickFolder(item);
  }

  /// Types into the find control and, with `leave`, leaves it.
  void Find(const char* text, bool leave = true) {
    QTest::mouseClick(&Bar->GetFindControl(), Qt::LeftButton, {}, QPoint(20, 10));
    QTest::keyClicks(Window.focusWidget(), text);
    if (leave) Bar->CommitEdit();
  }

  std::string Shown() const {
    std::string titles;
    for (int i = 0; i < Set->GetCount(); ++i) titles += Set->GetAsset(i).GetTitle() + " ";
    return titles;
  }
  /// The selected item of the folder control, the stored folder, the photos and the listed folders.
  std::string State() {
    const auto last = [](const std::string& path) { return path.substr(path.rfind('/') + 1); };
    std::string state = std::to_string(Bar->GetFolderControl().GetModel().GetSelectedId()) + " " +
                        last(Catalog.GetCurrentPhotoFolder()) + ": " + Shown() + "|";
    const CFolderHistory list(Catalog);
    for (int i = 0; i < list.Count(); ++i) state += " " + last(list.Get(i));
    return state;
  }

  std::optional<CQuerySet> Set;
  CScriptedBrowser* Browser = nullptr;  // the bar's
  std::unique_ptr<CFilterBar> Bar;
  std::vector<StripPosition> Refreshed;
  int MovedTo = -1;
  int Prepared = 0;
};

}  // namespace

TEST_F(FilterBar, FoldersAreAddedChosenAndRemoved) {
  Start();
  Bar->SelectFolder("/nowhere");  // the control has no such folder
  EXPECT_EQ(State(), "101 Pictures: ash |");
  EXPECT_EQ(Set->GetSortKind(), SortKind::Month) << "there is one roll";
  PickFolder(FolderItem::MoreFolders);
  EXPECT_THAT(Messages.Texts.at(0), StartsWith("You have not added any additional photo folders."));
  AddFolder("Trip");
  EXPECT_EQ(State(), "103 Trip: birch | Trip");
  EXPECT_EQ(Set->GetSortKind(), SortKind::Roll) << "new photos show as a roll";
  EXPECT_EQ(MovedTo, 0);
  EXPECT_EQ(Prepared, 2) << "at each pick";
  AddFolder("Scans");
  PickFromList(FolderItem::MoreFolders, -1);
  EXPECT_EQ(State(), "103 Scans: cedar | Scans Trip");
  PickFromList(FolderItem::MoreFolders, 2);
  AddFolder("Trip/");
  EXPECT_EQ(State(), "103 Trip: birch | Trip Scans") << "no second entry";
  std::filesystem::create_directory_symlink(InHome("Pictures"), InHome("link"));
  AddFolder("link");
  Messages.Answer = false;
  Refreshed.clear();
  PickFolder(FolderItem::AddFolder);
  Browser->Answer = "/";
  PickFolder(FolderItem::AddFolder);
  EXPECT_THAT(Messages.Texts.at(1), StartsWith("Are you sure you want to search for all the photos"));
  EXPECT_EQ(State(), "101 Pictures: ash | Trip Scans")
      << "a standard folder isn't listed, nor a cancelled one";
  EXPECT_TRUE(Refreshed.empty());

  WritePhoto("b\xfc_/dogwood.jpg");
  const QString shown = QString::fromStdString(InHome("b")) + u'\uFFFD' + u'_';
  Browser->Answer = GetPathOfAddress(QUrl::fromLocalFile(shown));
  PickFolder(FolderItem::AddFolder);
  EXPECT_EQ(State(), "103 b\xfc_: dogwood | b\xfc_ Trip Scans") << "found by what the dialog shows";
  WritePhoto("Pictures/unseen.jpg");
  PickFromList(FolderItem::RemoveFolder, 1);
  EXPECT_EQ(State(), "103 b\xfc_: dogwood | b\xfc_ Scans");
  EXPECT_EQ(Catalog.GetAssets().GetSize(), 4) << "nothing is searched";
  PickFromList(FolderItem::RemoveFolder, 0);
  EXPECT_EQ(State(), "101 Pictures: ash unseen | Scans") << "the pictures folder takes its place in view";
  EXPECT_TRUE(std::filesystem::exists(InHome("Trip/birch.jpg")));
}

TEST_F(FilterBar, ChoiceSearchesOnceASessionAndClearsTextAndRating) {
  Start();
  AddFolder("Trip");
  WritePhoto("Trip/new.jpg");
  WritePhoto("Pictures/new.jpg");
  Pick(Bar->GetRatingControl(), RatingFilterCode::FourStars);
  Find("nothing");
  PickFolder(FolderItem::AddFolder);  // and Cancel
  EXPECT_EQ(State(), "103 Trip: birch | Trip") << "what the controls say";
  EXPECT_EQ(Bar->GetRatingControl().GetModel().GetText(), "Any rating");
  PickFolder(FolderItem::MyPictures);
  EXPECT_EQ(State(), "101 Pictures: ash | Trip");
  Bar->SelectSort(SortId::Title, false);
  PickFolder(FolderItem::SearchAgain);
  EXPECT_EQ(State(), "101 Pictures: ash new | Trip");
  EXPECT_EQ(MovedTo, 1) << "on the new roll";
  PickFolder(FolderItem::AllFolders);
  PickFolder(FolderItem::SearchAgain);
  EXPECT_EQ(State(), "100 : ash birch new new | Trip") << "every folder of the list";
}

TEST_F(FilterBar, TypedTextNarrowsTheSetAndIsRemembered) {
  WritePhotos(2);
  Start();
  Find("1001");
  Find("1000");
  EXPECT_EQ(Shown(), "1000 ");
  EXPECT_TRUE(Window.hasFocus());
  Pick(Bar->GetFindControl(), static_cast<int>(FindItem::FirstHistory) + 1);
  EXPECT_EQ(Shown(), "1001 ") << "an earlier text, picked";
  Refreshed.clear();
  Find("ash", false);
  Bar->CancelEdit();
  EXPECT_FALSE(Bar->IsEditing());
  EXPECT_TRUE(Refreshed.empty());
  {
    const CFileSizeLimit fullDisk(0);
    Find("ash");
  }
  EXPECT_EQ(Messages.Texts.size(), 1U);
  EXPECT_EQ(Shown(), "ash ") << "also if it can't be remembered";
}

TEST_F(FilterBar, RatingAndOrderArePicked) {
  WritePhotos(3);
  Start();
  for (int i = 0; i < 3; ++i) {
    Catalog.FindAssetByPath(InHome(PhotoName(i))).GetStamps(StampId::Rating).SetNumber(i + 2, 0);
  }
  Set->SetGuest(1);
  Pick(Bar->GetRatingControl(), RatingFilterCode::ThreeOrBetter);
  EXPECT_EQ(Set->GetGuest(), -1);
  Pick(Bar->GetSortControl(), SortId::Rating);
  EXPECT_EQ(Shown(), "1002 1001 ");
  EXPECT_THAT(Refreshed, testing::ElementsAre(StripPosition::KeepPhoto, StripPosition::KeepPhoto));
  EXPECT_EQ(GetSettings()->GetInt("Sort"), 221);
  Bar->SelectSort(SortId::Title, true);
  EXPECT_EQ(Shown(), "1001 1002 ");
  EXPECT_EQ(Refreshed.back(), StripPosition::StartOfSet);

  WritePhotos(2, 5);
  Search.SearchFolder(InHome("Pictures"), true);
  Find("ash", false);
  Pick(Bar->GetSortControl(), SortId::Roll);
  EXPECT_FALSE(Bar->IsEditing());
  EXPECT_EQ(Set->GetCount(), 6) << "text and rating are cleared";
  EXPECT_EQ(MovedTo, 4) << "the first photo of the last roll";
}
