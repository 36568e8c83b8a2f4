#include <QContextMenuEvent>

#include "support/FileSizeLimit.h"
#include "ui/back/PhotoBackFixture.h"
#include "ui/kit/Job.h"

// When an edit ends, and what becomes of its text.

class PhotoBackCommitTest : public CPhotoBackFixture {};

TEST_F(PhotoBackCommitTest, ATextIsStoredByWhateverWayItsFieldIsLeft) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  const CAssetRecord other = AddPhoto("b.jpg");
  Show(photo);
  QWidget neighbour;  // of another window
  const std::vector<std::pair<const char*, std::function<void()>>> ways = {
      {"focus to the window", [&] { Window.setFocus(); }},
      {"next field", [&] { Back->FocusNextField(true); }},
      {"click beside",
       [&] {
         Click(Window, {1, 1});
       }},
      {"click on the panel",
       [&] {
         Click(*Back, {5, 400});
       }},
      {"click on a star",
       [&] {
         Click(*Stars()[0], {9, 9});
       }},
      {"click on another field",
       [&] {
         Click(Field(FieldRow::Place).GetTextWindow(), {20, 10});
       }},
      {"another photo", [&] { Back->SetPhoto(other); }},
      {"no photo", [&] { Back->SetPhoto(std::nullopt); }},
      {"the panel is hidden", [&] { Back->hide(); }},
      {"another window", [&] {
         neighbour.show();
         neighbour.activateWindow();
         ASSERT_TRUE(QTest::qWaitForWindowActive(&neighbour));
       }}};
  for (const auto& [name, leave] : ways) {
    Back->SetPhoto(photo);
    Back->show();
    Edit(FieldRow::Caption);
    const std::string before = Texts(photo, StampId::Note);
    Type(QStringLiteral("x"));
    EXPECT_EQ(Texts(photo, StampId::Note), before) << "not before it is left";
    Field(FieldRow::Caption).GetTextWindow().GetBox()->SetText(QString::fromLatin1(name));
    leave();
    EXPECT_EQ(Texts(photo, StampId::Note), name);
    EXPECT_EQ(Texts(other, StampId::Note), "");
    if (Back->IsEditing()) Window.setFocus();
  }
  // What left the window behind doesn't come back into the field.
  neighbour.hide();
  Window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&Window));
  EXPECT_EQ(QApplication::focusWidget(), &Window);
}

TEST_F(PhotoBackCommitTest, EscapeRestoresTheTextAndWritesNothing) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Set(photo, StampId::Note, {"before"});
  Show(photo);
  Edit(FieldRow::Caption);
  Type(QStringLiteral(" and after"));
  EXPECT_EQ(BoxText(), "before and after") << "the caret was at the end";
  Back->CancelEdits();
  EXPECT_EQ(BoxText(), "before");
  EXPECT_TRUE(Field(FieldRow::Caption).GetTextWindow().GetBox()->HasSelection());
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Note), "before");
  EXPECT_TRUE(Changed.empty());
}

TEST_F(PhotoBackCommitTest, AnEditGoesOnWithTheNextPhoto) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  const CAssetRecord next = AddPhoto("b.jpg");
  Set(next, StampId::Event, {"Wedding"});
  Show(photo);
  Edit(FieldRow::Event);
  Type(QStringLiteral("Party"));
  Back->SetPhoto(next);
  EXPECT_EQ(Texts(photo, StampId::Event), "Party");
  EXPECT_EQ(BoxText(), "Wedding");
  Back->CancelEdits();
  Window.setFocus();
  EXPECT_EQ(Texts(next, StampId::Event), "Wedding");
}

TEST_F(PhotoBackCommitTest, WhoIsToldOfACommitMayGiveAPhoto) {
  AddPhoto("sea.jpg");
  const CAssetRecord photo = AddPhoto("a.jpg");
  const CAssetRecord other = AddPhoto("b.jpg");
  Show(photo);
  std::optional<CAssetRecord> given = photo;
  Back->OnStampChanged = [&](StampId type) {
    Changed.push_back(static_cast<int>(type));
    Back->SetPhoto(given);
  };
  Enter(FieldRow::Title, QStringLiteral("sea"));
  EXPECT_EQ(photo.GetFilename(), "sea-2.jpg") << "renamed once";
  EXPECT_EQ(Shown(FieldRow::Title), "sea-2");
  Enter(FieldRow::Subjects, QStringLiteral("boats"));
  Enter(FieldRow::Date, QStringLiteral("2004-02-29"));
  Pick(OpenMenu(FieldRow::Date), "Edited date");
  Pick(OpenMenu(FieldRow::Subjects), "boats");
  EXPECT_EQ(Texts(photo, StampId::Thing), "");
  Click(*Stars()[1], {9, 9});
  EXPECT_EQ(photo.GetCachedRating(), 2);
  EXPECT_EQ(Changed, (std::vector<int>{13, 4, 6, 6, 4, 1}));

  given = other;
  Edit(FieldRow::Caption);
  Type(QStringLiteral("of the first"));
  Back->CommitEdits();
  EXPECT_EQ(Texts(photo, StampId::Note), "of the first");
  EXPECT_EQ(BoxText(), "") << "the edit goes on with the photo that was given";
  Type(QStringLiteral("of the other"));
  given = std::nullopt;
  Back->SetPhoto(photo);
  EXPECT_EQ(Texts(other, StampId::Note), "of the other");
  EXPECT_EQ(Shown(FieldRow::Caption), "of the first");
  EXPECT_FALSE(Back->IsEditing());
  Back->SetRating(3);
  EXPECT_EQ(photo.GetCachedRating(), 3);
  EXPECT_FALSE(Field(FieldRow::Title).isVisible());
}

TEST_F(PhotoBackCommitTest, LeavingTheProgramEndsAnEditThroughAnyMenu) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Set(AddPhoto("b.jpg"), StampId::Thing, {"lake"});
  Show(photo);
  Edit(FieldRow::Subjects);
  Type(QStringLiteral("boats"));
  QMenu* list = OpenMenu(FieldRow::Subjects);
  EXPECT_TRUE(Back->IsEditing());
  QGuiApplication& application = *qGuiApp;
  const auto isOver = [&] { return !Back->IsEditing(); };
  application.applicationStateChanged(Qt::ApplicationInactive);
  application.applicationStateChanged(Qt::ApplicationActive);
  EXPECT_FALSE(QTest::qWaitFor(isOver, 600)) << "it came back at once";
  application.applicationStateChanged(Qt::ApplicationInactive);
  EXPECT_TRUE(QTest::qWaitFor(isOver));
  EXPECT_EQ(Texts(photo, StampId::Thing), "boats");
  CloseMenu(list);

  Edit(FieldRow::Event);
  Type(QStringLiteral("Holiday"));
  QContextMenuEvent asked(QContextMenuEvent::Mouse, {5, 5}, Box().mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(&Box(), &asked);
  ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  EXPECT_TRUE(Back->IsEditing());
  application.applicationStateChanged(Qt::ApplicationInactive);
  EXPECT_TRUE(QTest::qWaitFor(isOver));
  EXPECT_EQ(Texts(photo, StampId::Event), "Holiday");
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << "its menu goes with the box";
}

TEST_F(PhotoBackCommitTest, AFullDiskIsToldAndTheStoredValueIsShown) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Set(photo, StampId::Note, {"before"});
  Show(photo);
  Edit(FieldRow::Caption);
  Type(QStringLiteral(" after"));
  {
    const CFileSizeLimit full(1);
    Window.setFocus();
    Back->SetRating(3);
  }
  EXPECT_EQ(Shown(FieldRow::Caption), "before");
  EXPECT_EQ(photo.GetCachedRating(), 0);
  EXPECT_TRUE(Messages.Shown.empty()) << "not in the middle of it";
  QCoreApplication::processEvents();
  EXPECT_EQ(Messages.Shown.size(), 2U);
  EXPECT_TRUE(Changed.empty());
  Enter(FieldRow::Caption, QStringLiteral("there is room again"));
  EXPECT_EQ(Texts(photo, StampId::Note), "there is room again");
}

TEST_F(PhotoBackCommitTest, DuringAJobTheCatalogIsLeftAlone) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  Edit(FieldRow::Caption);
  Type(QStringLiteral("waiting"));
  RunJob([&] {
    RunOnWindowThread([&] {
      Window.setFocus();
      Edit(FieldRow::Event);
      EXPECT_FALSE(Field(FieldRow::Event).IsEditing());
      Back->resize(267, 420);
      Back->grab();
    });
    EXPECT_EQ(Texts(photo, StampId::Note), "");
  });
  QCoreApplication::processEvents();
  EXPECT_EQ(Texts(photo, StampId::Note), "waiting");
  EXPECT_FALSE(Back->IsEditing());
}
