#include <gmock/gmock.h>

#include <QDropEvent>
#include <QMimeData>

#include "catalog/StringHistory.h"
#include "ui/back/FilterBar.h"
#include "ui/controls/DropControl.h"
#include "ui/frame/MainFrameFixture.h"
#include "ui/pages/PhotoTab.h"
#include "ui/pages/ViewTabBar.h"

namespace {

using testing::HasSubstr;

class PathsToShow : public CMainFrameFixture {
 protected:
  std::string WritePhotoAt(const std::string& name) const {
    return Scratch.Write(name, MakePhoto(32, 24, Qt::red));
  }
  /// Names the paths and waits until they have been shown.
  void Show(std::vector<std::string> paths) {
    Frame->ShowPaths(std::move(paths));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Frame->ArePathsWaiting(); }));
    Rest();
  }
  /// The photo under the lens, the folder in view, and how many photos the strip has.
  std::string State() {
    const CAssetRecord* photo = Frame->GetStrip().GetCurrentRecord();
    const std::string folder = Frame->GetPhotoSet().GetFolderFilter();
    return (photo != nullptr ? photo->GetFilename() : "none") + " of " +
           std::to_string(Frame->GetPhotoSet().GetCount()) + " in " +
           (folder.empty() ? "all" : folder.substr(Scratch.GetPath().size()));
  }
};

}  // namespace

TEST_F(PathsToShow, PhotosOfTheCatalogComeUnderTheLensWhateverHidesThem) {
  WritePhotos(4);
  CMainFrame& frame = Start();
  CPhotoSet& set = frame.GetPhotoSet();
  set.SetRatingFilter(RatingFilterCode::FourStars);
  Parts().FilterBar->GetRatingControl().GetModel().SelectId(static_cast<int>(RatingFilterCode::FourStars));
  set.SetTextFilter("100");
  set.Rebuild();
  frame.GetStrip().Refresh(CFilmstrip::kKeepPhoto);
  Parts().TabBar->SelectTab(ViewTabId::Upload);
  Show({InHome(PhotoName(2))});
  EXPECT_EQ(State(), "1002.jpg of 4 in /Pictures/");
  EXPECT_EQ(set.GetTextFilter(), "100") << "it doesn't hide the photo";
  EXPECT_EQ(Parts().TabBar->GetSelectedTab(), ViewTabId::CurrentPhoto);

  std::filesystem::create_directory_symlink(InHome("Pictures"), InHome("li%nk"));
  std::filesystem::create_symlink(InHome(PhotoName(3)), InHome("single.JPG"));
  for (const auto& [path, shown] :
       std::vector<std::pair<std::string, std::string>>{{"li%nk/1001.jpg", "1001.jpg of 4 in /Pictures/"},
                                                        {"single.JPG", "1003.jpg of 4 in /Pictures/"}}) {
    Show({InHome(path)});
    EXPECT_EQ(State(), shown) << path;
  }

  WritePhotoAt("Pictures/new/b\xfc_ 1\n2.jpg");  // since the search
  Show({InHome("Pictures/new/b\xfc_ 1\n2.jpg")});
  EXPECT_EQ(State(), "b\xfc_ 1\n2.jpg of 5 in /Pictures/");

  frame.OnCommand(CommandId::DeletePhoto);
  Show({InHome("Pictures/new/b\xfc_ 1\n2.jpg")});
  EXPECT_EQ(Parts().TabBar->GetSelectedTab(), ViewTabId::Trash);
  EXPECT_EQ(Parts().GetPhotoTab(ViewTabId::Trash)->GetSelected(), 0);
  EXPECT_TRUE(Messages.Texts.empty());
}

TEST_F(PathsToShow, FoldersElsewhereAreOfferedOnceAndWhatIsNoPhotoIsTold) {
  WritePhotos(2);
  const std::string trip = WritePhotoAt("Trip/birch.jpg"), day = WritePhotoAt("Trip/day/ash.jpg");
  Scratch.Write("notes.txt", "");
  CMainFrame& frame = Start();
  Messages.Answer = false;
  Show({trip, InHome("gone"), InHome("notes.txt"), InHome("Trip")});
  ASSERT_EQ(Messages.Texts.size(), 2U);
  EXPECT_THAT(Messages.Texts[0], HasSubstr("photo folders:\n\n" + InHome("Trip") + "\n\nSelect OK"));
  EXPECT_THAT(Messages.Texts[1], HasSubstr(":\n\n" + InHome("gone") + "\n" + InHome("notes.txt")));
  EXPECT_EQ(Search.GetHistory().Count(), 0);

  Messages.Answer = true;
  Show({day, trip});
  EXPECT_EQ(Messages.Texts.size(), 3U);
  EXPECT_EQ(State(), "ash.jpg of 2 in /Trip/");
  EXPECT_EQ(Search.GetHistory().Count(), 1) << "the folder below comes with it";
  Show({InHome("Pictures")});
  EXPECT_EQ(frame.GetPhotoSet().GetFolderFilter(), InHome("Pictures/"));
  Show({trip});
  EXPECT_EQ(State(), "birch.jpg of 4 in all") << "the filter that hid it is gone";
  Show({InHome("Trip/day")});
  EXPECT_EQ(State(), "ash.jpg of 1 in /Trip/day/");
  EXPECT_EQ(Messages.Texts.size(), 3U);

  Search.MarkFolderRemoved(InHome("Trip/day"));
  Search.GetHistory().Remove(InHome("Trip/day"));
  Show({day});
  EXPECT_EQ(Messages.Texts.size(), 3U) << "it is below a folder of the list";
  EXPECT_EQ(frame.GetStrip().GetCurrentRecord()->GetFilename(), "ash.jpg");
}

TEST_F(PathsToShow, WhatIsDroppedIsCopiedNotMovedAndWaitsForADialog) {
  WritePhotos(3);
  CMainFrame& frame = Start(0);
  const CAssetRecord edited = Photo(0);
  frame.OnCommand(CommandId::GoToCaption);
  Type("typed");
  WhenDialogShows([&](QWidget& dialog) {
    QMimeData data;
    data.setData("text/uri-list", "http://host/1001.jpg\r\nfile://" +
                                      QByteArray::fromStdString(InHome("Pictures/%31002.jpg")) + "\r\n");
    const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter({5, 5}, offered, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&frame, &enter);
    QDropEvent drop({5, 5}, offered, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&frame, &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
    QCoreApplication::processEvents();  // when nothing else went on it would be shown
    EXPECT_EQ(Position(), 0);
    dialog.close();
  });
  frame.OnCommand(CommandId::Help);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Position() == 2; }));
  EXPECT_EQ(Texts(edited, StampId::Note), "typed");
}
