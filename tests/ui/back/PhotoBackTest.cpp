#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <filesystem>

#include "base/Times.h"
#include "platform/Faults.h"
#include "ui/back/DateText.h"
#include "ui/back/PhotoBackFixture.h"

// What the panel shows of a photo, and how its fields are edited.

class PhotoBackTest : public CPhotoBackFixture {};

TEST_F(PhotoBackTest, FieldsShowWhatIsKnownAndHideWithoutAPhoto) {
  CAssetRecord photo = AddPhoto("Boats.jpg", kSomeDay);
  Set(photo, StampId::Thing, {"boats", "lake"});
  Set(photo, StampId::Event, {"Holiday"});
  Set(photo, StampId::Note, {"Evening"});
  photo.GetStamps(StampId::Rating).SetNumber(3, 0);
  Show(photo);
  EXPECT_EQ(Shown(FieldRow::Title), "Boats");
  EXPECT_EQ(Shown(FieldRow::Caption), "Evening");
  EXPECT_EQ(Shown(FieldRow::Subjects), "boats, lake");
  EXPECT_EQ(Shown(FieldRow::Event), "Holiday");
  EXPECT_EQ(Shown(FieldRow::Place), "");
  EXPECT_EQ(Shown(FieldRow::Date), "Sat, Aug 9, 2003");
  EXPECT_EQ(Shown(FieldRow::Folder), "Pictures");
  EXPECT_EQ(Shown(FieldRow::Format), "32 x 24 (0 KB)");
  EXPECT_TRUE(Field(FieldRow::Event).GetButton()->isVisible());
  EXPECT_FALSE(Field(FieldRow::Place).GetButton()->isVisible()) << "no place was ever given";
  EXPECT_TRUE(Field(FieldRow::Date).GetButton()->isVisible());
  EXPECT_FALSE(Field(FieldRow::Rating).GetTextWindow().isVisible());

  EXPECT_EQ(Back->GetField(4), &Field(FieldRow::Subjects));
  EXPECT_EQ(Back->GetField(13), &Field(FieldRow::Title));
  for (const int number : {-1, 0, 3, 7, 11, 14}) EXPECT_EQ(Back->GetField(number), nullptr) << number;

  Back->SetPhoto(std::nullopt);
  EXPECT_FALSE(Field(FieldRow::Title).isVisible());
  EXPECT_FALSE(Stars()[0]->isVisible());
  Back->FocusField(2);
  Back->SetRating(2);
  EXPECT_FALSE(Back->IsEditing());
  EXPECT_TRUE(Changed.empty());
}

TEST_F(PhotoBackTest, AnEmptiedCaptionIsRemovedAndLineFeedsSurvive) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Set(photo, StampId::Note, {"two\r\nlines"});
  Show(photo);
  Edit(FieldRow::Caption);
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Note), "two\r\nlines") << "what isn't changed isn't written";
  Edit(FieldRow::Caption);
  Type(QString::fromUtf8("\u00a0!"));
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Note), "two\nlines\u00a0!");
  Edit(FieldRow::Caption);
  QTest::keyClick(&Box(), Qt::Key_Return);
  EXPECT_EQ(Field(FieldRow::Caption).GetTextWindow().GetBox()->GetText().count(u'\n'), 1)
      << "Enter is the window's";
  Window.setFocus();
  Enter(FieldRow::Caption, {});
  EXPECT_EQ(photo.GetStamps(StampId::Note).Count(), 0);
  EXPECT_EQ(Changed, (std::vector<int>{2, 2}));
}

TEST_F(PhotoBackTest, TabGoesRoundThroughTheFieldsThatCanBeEdited) {
  Show(AddPhoto("a.jpg"));
  Back->FocusNextField(true);
  EXPECT_FALSE(Back->IsEditing()) << "nothing was being edited";
  Back->FocusField(13);
  const FieldRow order[] = {FieldRow::Title, FieldRow::Caption, FieldRow::Subjects, FieldRow::Event,
                            FieldRow::Place, FieldRow::Date,    FieldRow::Title};
  for (const FieldRow row : order) {
    EXPECT_TRUE(Field(row).IsEditing()) << static_cast<int>(row);
    EXPECT_TRUE(Field(row).isAncestorOf(&Box()));
    Back->FocusNextField(true);
  }
  Back->FocusNextField(false);
  Back->FocusNextField(false);
  EXPECT_TRUE(Field(FieldRow::Date).IsEditing());
  Back->FocusField(12);
  EXPECT_EQ(QApplication::focusWidget(), &Window) << "the folder can't be edited";
  EXPECT_FALSE(Back->IsEditing());
}

TEST_F(PhotoBackTest, TypingCompletesAndDeletingDoesNot) {
  Set(AddPhoto("b.jpg"), StampId::Thing, {"boats", "Émile", "lake"});
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  Edit(FieldRow::Subjects);
  Type(QStringLiteral("boa"));
  EXPECT_EQ(BoxText(), "boats");
  QTest::keyClick(&Box(), Qt::Key_Backspace);
  EXPECT_EQ(BoxText(), "boa") << "the tail goes and stays away";
  QTest::keyClick(&Box(), Qt::Key_Backspace);
  EXPECT_EQ(BoxText(), "bo");
  Type(QStringLiteral("a"));
  QTest::keyClick(&Box(), Qt::Key_Delete);
  EXPECT_EQ(BoxText(), "boa");
  Type(QStringLiteral("t"));
  EXPECT_EQ(BoxText(), "boats");

  // A separator takes the completed tail; without a selection it is a character like others.
  Type(QStringLiteral(";"));
  EXPECT_EQ(BoxText(), "boats; ");
  Type(QString::fromUtf8("é"));
  EXPECT_EQ(BoxText(), QString::fromUtf8("boats; émile"));
  Type(QStringLiteral(","));
  EXPECT_EQ(BoxText(), QString::fromUtf8("boats, Émile, ")) << "in the spelling of the choice";
  Type(QStringLiteral("x"));
  EXPECT_EQ(BoxText(), QString::fromUtf8("boats, Émile, x"));
  Type(QStringLiteral(";y"));
  EXPECT_EQ(BoxText(), QString::fromUtf8("boats, Émile, x;y"));
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Thing), "boats|Émile|x|y");

  // What is pasted is completed, what is cut isn't.
  Edit(FieldRow::Subjects);
  QGuiApplication::clipboard()->setText(QString::fromUtf8("LA"));
  QTest::keyClick(&Box(), Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(BoxText(), QString::fromUtf8("LAke"));
  QTest::keyClick(&Box(), Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(BoxText(), QString::fromUtf8("LA"));
  Type(QStringLiteral("k"));
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Thing), "lake");
}

TEST_F(PhotoBackTest, AnInputMethodsTextIsCompletedWhenItIsThere) {
  Set(AddPhoto("b.jpg"), StampId::PersonalPlace, {"東京タワー"});
  Show(AddPhoto("a.jpg"));
  Edit(FieldRow::Place);
  QInputMethodEvent composing(QStringLiteral("tou"), {});
  QCoreApplication::sendEvent(&Box(), &composing);
  EXPECT_EQ(BoxText(), "");
  QInputMethodEvent done(QString(), {});
  done.setCommitString(QString::fromUtf8("東京"));
  QCoreApplication::sendEvent(&Box(), &done);
  EXPECT_EQ(BoxText(), QString::fromUtf8("東京タワー"));
}

TEST_F(PhotoBackTest, ASeparatorOfAnInputMethodTakesTheCompletedTail) {
  Set(AddPhoto("b.jpg"), StampId::Thing, {"boats"});
  Show(AddPhoto("a.jpg"));
  Edit(FieldRow::Subjects);
  const auto commit = [&](const char* text) {
    QInputMethodEvent event(QString(), {});
    event.setCommitString(QString::fromUtf8(text));
    QCoreApplication::sendEvent(&Box(), &event);
  };
  commit("bo");
  EXPECT_EQ(BoxText(), "boats");
  commit(",");
  EXPECT_EQ(BoxText(), "boats, ");
  commit("b");
  EXPECT_EQ(BoxText(), "boats, boats");
  commit("x");
  EXPECT_EQ(BoxText(), "boats, bx") << "other characters replace it";
  commit(";");
  EXPECT_EQ(BoxText(), "boats, bx;");
}

TEST_F(PhotoBackTest, TheListAddsAndRemovesTokens) {
  Set(AddPhoto("b.jpg"), StampId::Thing, {"boats", "R&D", std::string(500, 'w')});
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  Pick(OpenMenu(FieldRow::Subjects), "R&&D");
  EXPECT_EQ(Texts(photo, StampId::Thing), "R&D") << "at once";
  QMenu* menu = OpenMenu(FieldRow::Subjects);
  EXPECT_LT(menu->width(), 400) << "whatever is in it";
  EXPECT_EQ(menu->palette().color(QPalette::Disabled, QPalette::Window), Qt::white);
  EXPECT_TRUE(Entry(menu, "R&&D")->isChecked());
  EXPECT_FALSE(Entry(menu, "boats")->isChecked());
  Pick(menu, "R&&D");
  EXPECT_EQ(Texts(photo, StampId::Thing), "");

  // While the field is edited the list changes the text that is edited, and ends no edit.
  Edit(FieldRow::Subjects);
  Type(QStringLiteral("sun"));
  Pick(OpenMenu(FieldRow::Subjects), "boats");
  EXPECT_TRUE(Field(FieldRow::Subjects).IsEditing());
  EXPECT_EQ(BoxText(), "sun, boats");
  EXPECT_EQ(Texts(photo, StampId::Thing), "");
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Thing), "sun|boats");
}

TEST_F(PhotoBackTest, TypedDatesAreInForceUntilAnotherKindIsChosen) {
  const CAssetRecord photo = AddPhoto("a.jpg", kSomeDay);
  Show(photo);
  const auto stored = [&] { return FormatLocalTime(photo.GetCachedDate(), "%Y-%m-%d"); };
  Enter(FieldRow::Date, QStringLiteral("2004-02-30"));
  EXPECT_EQ(stored(), "2003-08-09");
  EXPECT_EQ(Shown(FieldRow::Date), "Sat, Aug 9, 2003");
  Enter(FieldRow::Date, QStringLiteral("soon"));
  Enter(FieldRow::Date, QStringLiteral("2003-08-09"));
  EXPECT_EQ(photo.GetCachedDate(), kSomeDay) << "the same day";
  EXPECT_TRUE(Changed.empty());
  EXPECT_FALSE(Entry(OpenMenu(FieldRow::Date), "Edited date")->isEnabled());
  CloseMenu(Field(FieldRow::Date).GetMenu());

  Enter(FieldRow::Date, QStringLiteral("2004-02-29"));
  EXPECT_EQ(stored(), "2004-02-29");
  EXPECT_EQ(Shown(FieldRow::Date), "Sun, Feb 29, 2004");
  QMenu* menu = OpenMenu(FieldRow::Date);
  EXPECT_TRUE(Entry(menu, "Edited date")->isChecked());
  EXPECT_FALSE(Entry(menu, "Camera date")->isEnabled());
  CloseMenu(menu);

  // In an open edit, too, the kind that is chosen counts at once.
  Edit(FieldRow::Date);
  Pick(OpenMenu(FieldRow::Date), "File date");
  EXPECT_EQ(stored(), "2003-08-09");
  EXPECT_EQ(BoxText().toStdString(), FormatEditDate(kSomeDay));
  Window.setFocus();
  EXPECT_EQ(stored(), "2003-08-09");
  EXPECT_EQ(Changed, (std::vector<int>{6, 6}));
}

TEST_F(PhotoBackTest, TheTitleRenamesTheFile) {
  AddPhoto("sea.jpg");
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  int renamed = 0;
  Back->OnPhotoRenamed = [&] { ++renamed; };
  Enter(FieldRow::Title, QStringLiteral("sea"));
  EXPECT_EQ(photo.GetFilename(), "sea-2.jpg");
  EXPECT_EQ(Shown(FieldRow::Title), "sea-2");
  Enter(FieldRow::Title, QStringLiteral("a:b"));
  EXPECT_EQ(photo.GetFilename(), "a_b.jpg");
  Enter(FieldRow::Title, QString());
  EXPECT_EQ(photo.GetFilename(), "a_b.jpg");
  EXPECT_EQ(Shown(FieldRow::Title), "a_b");
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "rename" ? make_error_code(std::errc::io_error) : std::error_code();
  });
  Enter(FieldRow::Title, QStringLiteral("refused"));
  platform::SetFaultPlan({});
  EXPECT_EQ(Shown(FieldRow::Title), "a_b");
  QCoreApplication::processEvents();
  ASSERT_EQ(Messages.Shown.size(), 1U);
  EXPECT_TRUE(std::filesystem::exists(photo.GetPath()));
  EXPECT_EQ(renamed, 2);
  EXPECT_EQ(Changed, (std::vector<int>{13, 13}));
}

TEST_F(PhotoBackTest, TheFormatIsThatOfThePictureTheWindowHolds) {
  PictureSize = {};
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  EXPECT_EQ(Shown(FieldRow::Format), "0 x 0 (0 KB)") << "the file isn't read";
  PictureSize = {640, 480};
  Back->UpdateFormat();
  EXPECT_EQ(Shown(FieldRow::Format), "640 x 480 (0 KB)");
  std::filesystem::resize_file(photo.GetPath(), 4096);
  Back->SetPhoto(photo);
  EXPECT_EQ(Shown(FieldRow::Format), "640 x 480 (4 KB)");
}

TEST_F(PhotoBackTest, RatingGoesThroughStarsAndOperation) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  Back->SetRating(2);
  EXPECT_EQ(photo.GetCachedRating(), 2);
  const auto stars = Stars();
  ASSERT_EQ(stars.size(), 4);
  Click(*stars[3], {10, 10});
  EXPECT_EQ(photo.GetCachedRating(), 4);
  Click(*stars[3], {10, 10});
  EXPECT_EQ(photo.GetCachedRating(), 3);
  Back->SetRating(0);
  EXPECT_EQ(photo.GetStamps(StampId::Rating).Count(), 0);
  EXPECT_EQ(Changed, (std::vector<int>{1, 1, 1, 1}));
}

TEST_F(PhotoBackTest, AClickPlacesTheCaretOnlyInFieldsThatWrap) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Set(photo, StampId::Note, {"one two"});
  Set(photo, StampId::Event, {"one two"});
  Show(photo);
  Click(Field(FieldRow::Caption).GetTextWindow(), {5, 10});
  EXPECT_EQ(Field(FieldRow::Caption).GetTextWindow().GetBox()->GetCaret(), 0);
  Click(Field(FieldRow::Event).GetTextWindow(), {5, 10});
  EXPECT_EQ(qobject_cast<QLineEdit*>(&Box())->selectedText(), "one two");
  Click(Field(FieldRow::Folder).GetTextWindow(), {5, 10});
  EXPECT_EQ(QApplication::focusWidget(), &Window);
}
