#include <gmock/gmock.h>

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QUrl>
#include <deque>
#include <fstream>
#include <optional>

#include "base/Settings.h"
#include "sets/QuerySet.h"
#include "support/FileSizeLimit.h"
#include "ui/HomeFixture.h"
#include "ui/back/FilterBar.h"
#include "ui/back/FilterBarHost.h"
#include "ui/kit/DropControl.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

/// Browses by script, where an answer that is missing is Cancel; the list of folders is the program's own.
class CScriptedBrowser : public CWindowFolderChooser {
 public:
  explicit CScriptedBrowser(std::optional<std::string>& answer) : Answer(answer) {}
  std::optional<std::string> Browse() override { return std::exchange(Answer, std::nullopt); }

 private:
  std::optional<std::string>& Answer;
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
  void PrepareForSearch() override { ++Prepared; }

  /// Makes the bar, which shows the pictures folder.
  void Start() {
    Bar.reset();
    Search.FirstSearch();
    Set.emplace(&Catalog, SetKind::Available);
    Bar = std::make_unique<CFilterBar>(*this, &Window, std::make_unique<CScriptedBrowser>(Browsed));
    Bar->setGeometry(0, 100, 267, CFilterBar::GetHeight());
    Activate(Window);
    Bar->SelectFolder(InHome("Pictures"));
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
  void AddFolder(const std::string& folder) {
    Browsed = folder;
    PickFolder(FolderItem::AddFolder);
  }
  /// Picks an item that opens the list of folders, and there the entry of that row; -1 cancels.
  void PickFromList(FolderItem item, int row) {
    When([] { return QApplication::activeModalWidget() != nullptr; },
         [row] {
           QWidget* dialog = QApplication::activeModalWidget();
           auto* list = dialog->findChild<QListWidget*>();
           const auto buttons = dialog->findChildren<QPushButton*>();
           EXPECT_FALSE(buttons[0]->isEnabled()) << "nothing is selected yet";
           if (row >= 0) list->item(row)->setSelected(true);
           buttons[row >= 0 ? 0 : 1]->click();
         });
    PickFolder(item);
  }

  /// Types into the find control and leaves it.
  void Find(const char* text) {
    BeginToFind(text);
    Bar->CommitEdit();
  }
  void BeginToFind(const char* text) {
    QTest::mouseClick(&Bar->GetFindControl(), Qt::LeftButton, {}, QPoint(20, 10));
    QTest::keyClicks(Window.focusWidget(), text);
  }

  static int Selected(CDropControl& control) { return control.GetModel().GetSelectedId(); }
  int SelectedFolder() const { return Selected(Bar->GetFolderControl()); }
  std::vector<std::string> Listed(const char* category, int limit) {
    const CStringHistory list(Catalog, category, limit, false);
    std::vector<std::string> texts;
    for (int i = 0; i < list.Count(); ++i) texts.push_back(list.Get(i));
    return texts;
  }
  std::vector<std::string> Folders() { return Listed("FolderFilterHistory", 0); }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (int i = 0; i < Set->GetCount(); ++i) names.push_back(Set->GetAsset(i).GetTitle());
    return names;
  }

  std::optional<CQuerySet> Set;
  std::optional<std::string> Browsed;  // the next answer
  std::unique_ptr<CFilterBar> Bar;
  std::vector<StripPosition> Refreshed;
  int MovedTo = -1;
  int Prepared = 0;
};

}  // namespace

TEST_F(FilterBar, AddedFolderIsSearchedListedAndShown) {
  Start();
  AddFolder(InHome("Trip"));
  EXPECT_THAT(Names(), ElementsAre("birch"));
  EXPECT_EQ(SelectedFolder(), 103);
  EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), InHome("Trip"));
  EXPECT_EQ(Set->GetSortKind(), SortKind::Roll) << "new photos show as a roll";
  EXPECT_EQ(MovedTo, 0);
  EXPECT_EQ(Prepared, 1);
  AddFolder(InHome("Scans"));
  AddFolder(InHome("Trip/"));
  EXPECT_THAT(Folders(), ElementsAre(InHome("Trip"), InHome("Scans"))) << "no second entry";
  std::filesystem::create_directory_symlink(InHome("Pictures"), InHome("link"));
  AddFolder(InHome("link"));
  EXPECT_EQ(SelectedFolder(), 101) << "a standard folder isn't listed, whatever the way to it";
  EXPECT_EQ(Folders().size(), 2U);

  Messages.Answer = false;
  Refreshed.clear();
  PickFolder(FolderItem::AddFolder);
  AddFolder("/");
  for (int i = 0; i < 3001; ++i) std::ofstream(Scratch.File("Many/" + std::to_string(i) + ".jpg"));
  AddFolder(InHome("Many"));
  ASSERT_EQ(Messages.Shown.size(), 2U);
  EXPECT_THAT(Messages.Shown[0].Text, StartsWith("Are you sure you want to search for all the photos"));
  EXPECT_THAT(Messages.Shown[1].Text, StartsWith("You have 3001 photos in"));
  EXPECT_EQ(Folders().size(), 2U) << "cancelled";
  EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), InHome("Pictures"));
  EXPECT_THAT(Refreshed, IsEmpty());

  const std::string folder = InHome("b\xfc_");
  WritePhoto("b\xfc_/dogwood.jpg");
  const QString shown = QString::fromStdString(InHome("b")) + u'\uFFFD' + u'_';
  AddFolder(GetPathOfAddress(QUrl::fromLocalFile(shown)));
  EXPECT_THAT(Folders(), testing::Contains(folder)) << "found again by what the dialog shows";
  EXPECT_THAT(Names(), ElementsAre("dogwood"));
}

TEST_F(FilterBar, ChoiceSearchesOnceASessionAndClearsTextAndRating) {
  Start();
  AddFolder(InHome("Trip"));
  WritePhoto("Trip/new.jpg");
  WritePhoto("Pictures/new.jpg");
  PickFolder(FolderItem::MyPictures);
  EXPECT_THAT(Names(), ElementsAre("ash"));
  Pick(Bar->GetRatingControl(), RatingFilterCode::FourStars);
  Find("nothing");
  PickFolder(FolderItem::AddFolder);  // and Cancel
  EXPECT_EQ(Bar->GetFindControl().GetModel().GetText(), "");
  EXPECT_EQ(Selected(Bar->GetRatingControl()), static_cast<int>(RatingFilterCode::Any));
  EXPECT_THAT(Names(), ElementsAre("ash")) << "what shows is what the controls say";
  Bar->SelectSort(SortId::Title, false);
  PickFolder(FolderItem::SearchAgain);
  EXPECT_THAT(Names(), ElementsAre("ash", "new"));
  EXPECT_EQ(MovedTo, 1) << "on the new roll";
  PickFolder(FolderItem::AllFolders);
  EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), "");
  EXPECT_EQ(Set->GetCount(), 3);
  PickFolder(FolderItem::SearchAgain);
  EXPECT_EQ(Set->GetCount(), 4) << "every folder of the list";
}

TEST_F(FilterBar, FoldersAreChosenAndRemovedFromTheList) {
  Start();
  PickFolder(FolderItem::MoreFolders);
  ASSERT_EQ(Messages.Shown.size(), 1U);
  EXPECT_THAT(Messages.Shown[0].Text, StartsWith("You have not added any additional photo folders."));
  AddFolder(InHome("Trip"));
  AddFolder(InHome("Scans"));
  PickFromList(FolderItem::MoreFolders, -1);
  EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), InHome("Scans"));
  PickFromList(FolderItem::MoreFolders, 2);
  EXPECT_THAT(Names(), ElementsAre("birch"));
  EXPECT_THAT(Folders(), ElementsAre(InHome("Trip"), InHome("Scans")));
  WritePhoto("Pictures/unseen.jpg");
  PickFromList(FolderItem::RemoveFolder, 1);
  EXPECT_THAT(Folders(), ElementsAre(InHome("Trip")));
  EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), InHome("Trip"));
  EXPECT_THAT(Names(), ElementsAre("birch"));
  EXPECT_EQ(Catalog.GetAssets().GetSize(), 3) << "nothing is searched";
  PickFromList(FolderItem::RemoveFolder, 0);
  EXPECT_EQ(SelectedFolder(), 101) << "the folder in view gives way to the pictures folder";
  EXPECT_THAT(Names(), ElementsAre("ash", "unseen"));
  EXPECT_EQ(Catalog.FindAssetByPath(InHome("Trip/birch.jpg")).GetMissing(), MissingState::FolderRemoved);
  EXPECT_TRUE(std::filesystem::exists(InHome("Trip/birch.jpg")));
}

TEST_F(FilterBar, TypedTextNarrowsTheSetAndIsRemembered) {
  for (const char* name : {"birch", "cedar"}) WritePhoto(std::string("Pictures/") + name + ".jpg");
  Start();
  Find("cedar");
  Find("birch ash");
  EXPECT_THAT(Names(), testing::UnorderedElementsAre("ash", "birch"));
  EXPECT_TRUE(Window.hasFocus());
  Pick(Bar->GetFindControl(), static_cast<int>(FindItem::FirstHistory) + 1);
  EXPECT_THAT(Names(), ElementsAre("cedar")) << "an earlier text, picked";
  Refreshed.clear();
  BeginToFind("ash");
  Bar->CancelEdit();
  EXPECT_FALSE(Bar->IsEditing());
  EXPECT_THAT(Names(), ElementsAre("cedar"));
  EXPECT_THAT(Refreshed, IsEmpty());
  for (const char* text : {"1", "2", "3", "4", "5", "6", "7"}) Find(text);
  EXPECT_EQ(Listed("TextFilterHistory", 0).size(), 8U) << "no more are kept";
  {
    const CFileSizeLimit fullDisk(0);
    Find("ash");
  }
  EXPECT_EQ(Messages.Shown.size(), 1U);
  EXPECT_THAT(Names(), ElementsAre("ash")) << "also if it can't be remembered";
}

TEST_F(FilterBar, RatingAndOrderArePicked) {
  for (const char* name : {"birch", "cedar"}) WritePhoto(std::string("Pictures/") + name + ".jpg");
  Start();
  int stars = 1;
  for (const char* name : {"ash", "birch", "cedar"}) {
    Catalog.FindAssetByPath(InHome("Pictures/") + name + ".jpg")
        .GetStamps(StampId::Rating)
        .SetNumber(++stars, 0);
  }
  Set->SetGuest(1);
  Pick(Bar->GetRatingControl(), RatingFilterCode::ThreeOrBetter);
  EXPECT_THAT(Names(), testing::UnorderedElementsAre("birch", "cedar"));
  EXPECT_EQ(Set->GetGuest(), -1);
  Pick(Bar->GetSortControl(), SortId::Rating);
  EXPECT_THAT(Names(), ElementsAre("cedar", "birch"));
  EXPECT_THAT(Refreshed, ElementsAre(StripPosition::KeepPhoto, StripPosition::KeepPhoto));
  EXPECT_EQ(GetSettings()->GetInt("Sort"), 221);
  Bar->SelectSort(static_cast<SortId>(999), true);
  EXPECT_EQ(Selected(Bar->GetSortControl()), 221) << "an unknown one sorts as before";
  EXPECT_EQ(GetSettings()->GetInt("Sort"), 999);
  Bar->SelectSort(SortId::Title, true);
  EXPECT_THAT(Names(), ElementsAre("birch", "cedar"));
  EXPECT_EQ(Refreshed.back(), StripPosition::StartOfSet);

  WritePhoto("Pictures/dogwood.jpg");
  WritePhoto("Pictures/elm.jpg");
  Search.SearchFolder(InHome("Pictures"), true);
  BeginToFind("ash");
  Pick(Bar->GetSortControl(), SortId::Roll);
  EXPECT_FALSE(Bar->IsEditing());
  EXPECT_EQ(Set->GetCount(), 5) << "text and rating are cleared";
  EXPECT_EQ(Selected(Bar->GetRatingControl()), static_cast<int>(RatingFilterCode::Any));
  EXPECT_EQ(MovedTo, 3) << "the first photo of the last roll";
  EXPECT_EQ(GetSettings()->GetInt("Sort"), 234);
}

TEST_F(FilterBar, ShowsTheFirstFolderByItself) {
  Search.SearchFolder(InHome("Pictures"), true);
  Set.emplace(&Catalog, SetKind::Available);
  CFilterBar bar(*this, &Window);
  EXPECT_EQ(Set->GetSortKind(), SortKind::Month) << "there is one roll";
  bar.SelectFolder("/nowhere");
  EXPECT_THAT(Refreshed, IsEmpty()) << "the control has no such folder";
  QCoreApplication::processEvents();
  EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), InHome("Pictures"));
  EXPECT_EQ(Refreshed.size(), 1U);
}
