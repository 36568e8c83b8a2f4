#include <gmock/gmock.h>

#include <fstream>

#include "ui/back/FilterBarFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Photos in the pictures folder, in "Trip" and in "Scans"; nothing but the first is searched yet.
class FilterBarFolders : public CFilterBarFixture {
 protected:
  FilterBarFolders() {
    AddPhoto("Pictures/a.jpg");
    AddPhoto("Trip/b.jpg");
    AddPhoto("Scans/c.jpg");
    Start();
  }

  std::string GetStoredFolder() const { return Catalog.GetCurrentPhotoFolder(); }

  /// Adds both folders; the last one is in view and first in the list.
  void AddBoth() {
    AddFolder(Other("Scans"));
    AddFolder(Other("Trip"));
    ASSERT_THAT(ListedFolders(), ElementsAre(Other("Trip"), Other("Scans")));
    Forget();
  }
};

}  // namespace

TEST_F(FilterBarFolders, AddedFolderIsSearchedListedAndShown) {
  AddFolder(Other("Trip"));
  EXPECT_THAT(Names(), ElementsAre("b.jpg"));
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Trip")));
  EXPECT_EQ(SelectedFolder(), 103);
  EXPECT_EQ(Bar->GetFolderControl().GetModel().GetText(), Other("Trip"));
  EXPECT_EQ(GetStoredFolder(), Other("Trip"));
  EXPECT_EQ(SelectedSort(), 234) << "new photos show as a roll";
  EXPECT_EQ(Host->MovedTo, 0);
  EXPECT_EQ(Host->Prepared, 1);
  EXPECT_EQ(Search.Progress, nullptr);
  AddFolder(Other("Scans"));
  AddFolder(Other("Trip") + "/");
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Trip"), Other("Scans"))) << "no second entry";
}

TEST_F(FilterBarFolders, CancelAtEveryStageAddsNothing) {
  PickFolder(FolderItem::AddFolder);
  EXPECT_THAT(Messages.Shown, IsEmpty());

  Messages.Answer = false;
  AddFolder("/");
  ASSERT_EQ(Messages.Shown.size(), 1u);
  EXPECT_THAT(Messages.Shown[0].Text,
              testing::StartsWith("Are you sure you want to search for all the photos"));
  EXPECT_TRUE(Messages.Shown[0].OkCancel);

  for (int i = 0; i < 3001; ++i) std::ofstream(Scratch.File("Many/" + std::to_string(i) + ".jpg"));
  AddFolder(Other("Many"));
  ASSERT_EQ(Messages.Shown.size(), 2u);
  EXPECT_THAT(Messages.Shown[1].Text, testing::StartsWith("You have 3001 photos in"));

  EXPECT_THAT(ListedFolders(), IsEmpty());
  EXPECT_EQ(SelectedFolder(), 101);
  EXPECT_EQ(GetStoredFolder(), Pictures());
  EXPECT_EQ(Set->GetCount(), 1);
  EXPECT_THAT(Host->Refreshed, IsEmpty());
}

TEST_F(FilterBarFolders, StoppedSearchAddsNothing) {
  When(
      [] {
        return QApplication::activeWindow() != nullptr &&
               QApplication::activeWindow()->objectName() == "SearchProgress";
      },
      [] { QTest::keyClick(QApplication::activeWindow(), Qt::Key_Escape); });
  for (int i = 0; i < 200; ++i) AddPhoto("Long/" + std::to_string(i) + ".jpg");
  AddFolder(Other("Long"));
  EXPECT_THAT(ListedFolders(), IsEmpty());
  EXPECT_EQ(SelectedFolder(), 101);
  EXPECT_EQ(GetStoredFolder(), Pictures());
}

TEST_F(FilterBarFolders, StandardFolderIsSelectedInsteadOfListed) {
  PickFolder(FolderItem::AllFolders);
  AddFolder(Pictures());
  EXPECT_EQ(SelectedFolder(), 101);
  EXPECT_THAT(ListedFolders(), IsEmpty());
  EXPECT_EQ(Set->GetFolderFilter(), Pictures() + "/");

  std::filesystem::create_directory_symlink(Pictures(), Other("ways"));
  AddFolder(Other("ways"));
  EXPECT_EQ(SelectedFolder(), 101) << "reached over a link";
  EXPECT_EQ(GetStoredFolder(), Pictures());
  AddFolder(Other("Trip"));
  std::filesystem::create_directory_symlink(Other("Trip"), Other("other way"));
  AddFolder(Other("other way"));
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Trip")));
  EXPECT_EQ(GetStoredFolder(), Other("Trip"));
  EXPECT_THAT(Names(), ElementsAre("b.jpg"));
}

TEST_F(FilterBarFolders, ChoiceResetsTextAndRating) {
  AddFolder(Other("Trip"));
  Pick(Bar->GetRatingControl(), static_cast<int>(RatingFilterCode::FourStars));
  Find("nothing");
  EXPECT_EQ(Set->GetCount(), 0);
  PickFolder(FolderItem::MyPictures);
  EXPECT_THAT(Names(), ElementsAre("a.jpg"));
  EXPECT_EQ(Set->GetTextFilter(), "");
  EXPECT_EQ(Bar->GetFindControl().GetModel().GetShownText(), "");
  EXPECT_EQ(Bar->GetRatingControl().GetModel().GetSelectedId(), static_cast<int>(RatingFilterCode::Any));

  Find("nothing");
  PickFolder(FolderItem::AddFolder);  // and Cancel
  EXPECT_EQ(Set->GetTextFilter(), "");
  EXPECT_THAT(Names(), ElementsAre("a.jpg")) << "what shows is what the controls say";
}

TEST_F(FilterBarFolders, ChoiceSearchesOnceASession) {
  AddBoth();
  PickFolder(FolderItem::MyPictures);
  AddPhoto("Pictures/new.jpg");
  AddPhoto("Trip/new.jpg");
  PickListed(0);
  PickFolder(FolderItem::MyPictures);
  EXPECT_THAT(Names(), ElementsAre("a.jpg"));
  Bar->SelectSort(SortId::Title, false);
  PickFolder(FolderItem::SearchAgain);
  EXPECT_THAT(Names(), ElementsAre("a.jpg", "new.jpg"));
  EXPECT_EQ(SelectedSort(), 234);
  EXPECT_EQ(Host->MovedTo, 1) << "on the new roll";
  EXPECT_EQ(SelectedFolder(), 101);
  EXPECT_EQ(GetStoredFolder(), Pictures());

  PickFolder(FolderItem::AllFolders);
  EXPECT_EQ(GetStoredFolder(), "");
  EXPECT_EQ(Set->GetCount(), 4);
  PickFolder(FolderItem::SearchAgain);
  EXPECT_EQ(Set->GetCount(), 5) << "every folder of the list";
  EXPECT_EQ(SelectedFolder(), 100);
}

TEST_F(FilterBarFolders, PickedFolderOfTheListComesFirst) {
  AddBoth();
  PickListed(1);
  EXPECT_THAT(Names(), ElementsAre("c.jpg"));
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Scans"), Other("Trip")));
  EXPECT_EQ(SelectedFolder(), 103);
  EXPECT_EQ(GetStoredFolder(), Other("Scans"));
}

TEST_F(FilterBarFolders, MoreFoldersReachesOlderOnes) {
  PickFolder(FolderItem::MoreFolders);
  ASSERT_EQ(Messages.Shown.size(), 1u);
  EXPECT_THAT(Messages.Shown[0].Text,
              testing::StartsWith("You have not added any additional photo folders."));
  for (const char* name : {"1", "2", "3", "4", "5", "6"}) {
    AddPhoto(std::string(name) + "/p" + name + ".jpg");
    AddFolder(Other(name));
  }
  PickFolder(FolderItem::MyPictures);
  Chooser->Chosen.push_back(6);
  PickFolder(FolderItem::MoreFolders);
  EXPECT_THAT(Chooser->Offered, ElementsAre(Pictures(), Other("6"), Other("5"), Other("4"), Other("3"),
                                            Other("2"), Other("1")));
  EXPECT_EQ(Chooser->Purpose, FolderChoice::Show);
  EXPECT_THAT(Names(), ElementsAre("p1.jpg"));
  EXPECT_EQ(ListedFolders().front(), Other("1"));
  EXPECT_EQ(SelectedFolder(), 103);
  Chooser->Chosen.push_back(0);
  PickFolder(FolderItem::MoreFolders);
  EXPECT_EQ(SelectedFolder(), 101);
  EXPECT_THAT(Names(), ElementsAre("a.jpg"));
  PickFolder(FolderItem::MoreFolders);  // and Cancel
  EXPECT_EQ(GetStoredFolder(), Pictures());
}

TEST_F(FilterBarFolders, RemovedFolderInViewGivesWayToThePicturesFolder) {
  AddBoth();
  Chooser->Chosen.push_back(0);
  PickFolder(FolderItem::RemoveFolder);
  EXPECT_EQ(Chooser->Purpose, FolderChoice::Remove);
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Scans")));
  EXPECT_EQ(SelectedFolder(), 101);
  EXPECT_THAT(Names(), ElementsAre("a.jpg"));
  EXPECT_EQ(GetStoredFolder(), Pictures());
  EXPECT_EQ(Catalog.FindAssetByPath(Other("Trip") + "/b.jpg").GetMissing(), MissingState::FolderRemoved);
  EXPECT_TRUE(FileExists(Other("Trip") + "/b.jpg", false));
}

TEST_F(FilterBarFolders, RemovalOfAnotherFolderLeavesTheViewAndSearchesNothing) {
  AddBoth();
  AddPhoto("Pictures/unseen.jpg");
  PickListed(1);
  Chooser->Chosen.push_back(1);
  PickFolder(FolderItem::RemoveFolder);
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Scans")));
  EXPECT_EQ(Bar->GetFolderControl().GetModel().GetText(), Other("Scans"));
  EXPECT_THAT(Names(), ElementsAre("c.jpg"));
  EXPECT_EQ(GetStoredFolder(), Other("Scans"));
  EXPECT_EQ(Catalog.GetAssets().GetSize(), 3) << "nothing came in";
  EXPECT_EQ(Catalog.FindAssetByPath(Other("Trip") + "/b.jpg").GetMissing(), MissingState::FolderRemoved);
}

TEST_F(FilterBarFolders, RemovalTakesThePhotosOutOfAllFoldersAtOnce) {
  AddBoth();
  PickFolder(FolderItem::AllFolders);
  EXPECT_EQ(Set->GetCount(), 3);
  PickFolder(FolderItem::RemoveFolder);  // and Cancel
  EXPECT_EQ(Set->GetCount(), 3);
  Chooser->Chosen.push_back(0);
  PickFolder(FolderItem::RemoveFolder);
  EXPECT_EQ(Set->GetCount(), 2);
  EXPECT_EQ(GetStoredFolder(), "");
  EXPECT_EQ(SelectedFolder(), 100);
}

TEST_F(FilterBarFolders, SelectedItemMovesUpWithItsFolder) {
  AddBoth();
  Bar->SelectFolder(Other("Scans"));
  EXPECT_EQ(SelectedFolder(), 104);
  Chooser->Chosen.push_back(0);
  PickFolder(FolderItem::RemoveFolder);
  EXPECT_EQ(SelectedFolder(), 103);
  EXPECT_EQ(Bar->GetFolderControl().GetModel().GetText(), Other("Scans"));
  EXPECT_EQ(GetStoredFolder(), Other("Scans"));
}

TEST_F(FilterBarFolders, ActiveDiskHasAnItemOfItsOwn) {
  Search.ActiveDisk = true;
  Start();
  const std::string disk = GetActiveDiskPhotoFolder();
  Bar->SelectFolder(disk);
  EXPECT_EQ(SelectedFolder(), 102);
  EXPECT_EQ(Bar->GetFolderControl().accessibleDescription(), "Active Disk Photos");
  EXPECT_EQ(GetStoredFolder(), disk);
}

TEST_F(FilterBarFolders, NamesThatAreNoTextSurvive) {
  const std::string folder = Other(
      "b\xfc"
      "cher");
  std::filesystem::create_directory(folder);
  std::ofstream(folder + "/d.jpg") << MakePhoto(16, 12, Qt::red);
  AddFolder(folder);
  EXPECT_THAT(ListedFolders(), ElementsAre(folder));
  EXPECT_THAT(Names(), ElementsAre("d.jpg"));
  Start();
  EXPECT_EQ(Bar->GetFolderControl().GetModel().GetText(), folder);
  EXPECT_THAT(Names(), ElementsAre("d.jpg"));
}

TEST_F(FilterBarFolders, FoldersThatDifferInCaseAreTwo) {
  AddFolder(Other("TRIP"));
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("TRIP"))) << "there is none yet";
  AddFolder(Other("Trip"));
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Trip"))) << "one folder, its spelling put right";
  AddPhoto("trip/lower.jpg");
  AddFolder(Other("trip"));
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("trip"), Other("Trip")));
  EXPECT_THAT(Names(), ElementsAre("lower.jpg"));
  PickListed(1);
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Trip"), Other("trip")));
  EXPECT_THAT(Names(), ElementsAre("b.jpg"));
  Chooser->Chosen.push_back(1);
  PickFolder(FolderItem::RemoveFolder);
  EXPECT_THAT(ListedFolders(), ElementsAre(Other("Trip")));
  EXPECT_THAT(Names(), ElementsAre("b.jpg"));
}
