#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <filesystem>

#include "base/Times.h"
#include "platform/Faults.h"
#include "support/FileSizeLimit.h"
#include "ui/back/DateText.h"
#include "ui/back/PanelFixture.h"
#include "ui/back/PhotoFieldSet.h"
#include "ui/kit/Job.h"

namespace {

using PhotoBack = CPanelFixture;
using Facts = std::vector<StampId>;

constexpr std::int32_t kSomeDay = 1060430400;  // August 9, 2003

}  // namespace

TEST_F(PhotoBack, ShowsWhatIsKnownAndNothingWithoutAPhoto) {
  PictureSize = {};
  const CAssetRecord photo = AddPhoto("Boats.jpg", kSomeDay);
  Stamp(photo, StampId::Thing, {"boats", "lake"});
  Show(photo);
  EXPECT_EQ(Shown(StampId::Title), "Boats");
  EXPECT_EQ(Shown(StampId::Thing), "boats, lake");
  EXPECT_EQ(Shown(StampId::Date), "Sat, Aug 9, 2003");
  EXPECT_EQ(Shown(StampId::Folder), "Pictures");
  for (const StampId fact : {StampId::Thing, StampId::Date, StampId::Event}) {
    EXPECT_EQ(Field(fact).GetButton()->isVisible(), fact != StampId::Event) << "no event was ever given";
  }
  const auto format = [&](ImageSize size, std::uintmax_t bytes) {
    PictureSize = size;
    std::filesystem::resize_file(photo.GetPath(), bytes);
    Back->UpdateFormat();
    return Back->GetFormatField().GetShownText();
  };
  EXPECT_EQ(format({}, 0), "0 x 0 (0 KB)");
  EXPECT_EQ(format({2560, 1600}, 999 * 1024 + 1023), "2560 x 1600 (999 KB)");
  EXPECT_EQ(format({1, 2}, 1000 * 1024), "1 x 2 (0.98 MB)");

  Back->SetPhoto(std::nullopt);
  EXPECT_FALSE(Field(StampId::Title).isVisible() || Stars()[0]->isVisible());
  Back->FocusField(StampId::Note);
  Back->SetRating(2);
  EXPECT_FALSE(Back->IsEditing());
  EXPECT_TRUE(Changed.empty());
  CPhotoFieldSet values(photo, {});
  Catalog.DeleteAsset(photo.GetAssetID());
  values.Get(StampId::Thing).SetText("x");
  values.Get(StampId::Thing).Commit();
  EXPECT_EQ(values.Get(StampId::Thing).GetText(), "") << "of a photo that is gone";
}

TEST_F(PhotoBack, ATextIsStoredByWhateverWayItsFieldIsLeft) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  const CAssetRecord other = AddPhoto("b.jpg");
  Stamp(other, StampId::Event, {"Wedding"});
  Show(photo);
  QWidget neighbour;  // of another window
  const auto click = [](QWidget& widget, int x, int y) {
    QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(x, y));
  };
  const std::pair<const char*, std::function<void()>> ways[] = {
      {"focus to the window", [&] { Window.setFocus(); }},
      {"next field", [&] { Back->FocusNextField(true); }},
      {"click beside", [&] { click(Window, 1, 1); }},
      {"click on the panel", [&] { click(*Back, 5, 400); }},
      {"click on a star", [&] { click(*Stars()[0], 9, 9); }},
      {"another field", [&] { click(Field(StampId::PersonalPlace).GetTextWindow(), 20, 10); }},
      {"another photo", [&] { Back->SetPhoto(other); }},
      {"no photo", [&] { Back->SetPhoto(std::nullopt); }},
      {"the panel is hidden", [&] { Back->hide(); }},
      {"another window", [&] { Activate(neighbour); }}};
  for (const auto& [name, leave] : ways) {
    Back->SetPhoto(photo);
    Back->show();
    Edit(StampId::Note);
    const std::string before = Texts(photo, StampId::Note);
    Field(StampId::Note).GetTextWindow().GetBox()->SetText(QString::fromLatin1(name));
    EXPECT_EQ(Texts(photo, StampId::Note), before) << "not before it is left";
    leave();
    EXPECT_EQ(Texts(photo, StampId::Note), name);
    EXPECT_EQ(Texts(other, StampId::Note), "");
    if (Back->IsEditing()) Window.setFocus();
  }
  neighbour.hide();
  Window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&Window));
  EXPECT_EQ(QApplication::focusWidget(), &Window) << "not in the field again";

  Edit(StampId::Event, "Party");
  Back->SetPhoto(other);
  EXPECT_EQ(Texts(photo, StampId::Event), "Party");
  EXPECT_EQ(BoxText(), "Wedding") << "the edit goes on with the next photo";
  Type("forgotten");
  Back->CancelEdits();
  Window.setFocus();
  EXPECT_EQ(Texts(other, StampId::Event), "Wedding");
}

TEST_F(PhotoBack, TabGoesRoundAndCaptionsKeepTheirLines) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Stamp(photo, StampId::Note, {"two\r\nlines"});
  Stamp(photo, StampId::Event, {"one two"});
  Show(photo);
  Back->FocusField(StampId::Title);
  for (const StampId fact : {StampId::Title, StampId::Note, StampId::Thing, StampId::Event,
                             StampId::PersonalPlace, StampId::Date}) {
    EXPECT_TRUE(Field(fact).isAncestorOf(&Box())) << static_cast<int>(fact);
    Back->FocusNextField(true);
  }
  EXPECT_TRUE(Field(StampId::Title).IsEditing());
  Back->FocusNextField(false);
  EXPECT_TRUE(Field(StampId::Date).IsEditing());
  Back->FocusField(StampId::Folder);
  EXPECT_EQ(QApplication::focusWidget(), &Window) << "the folder can't be edited";
  EXPECT_EQ(Texts(photo, StampId::Note), "two\r\nlines") << "what isn't changed isn't written";

  QTest::mouseClick(&Field(StampId::Event).GetTextWindow(), Qt::LeftButton, {}, {5, 10});
  EXPECT_EQ(qobject_cast<QLineEdit*>(&Box())->selectedText(), "one two");
  QTest::mouseClick(&Field(StampId::Note).GetTextWindow(), Qt::LeftButton, {}, {5, 10});
  Type("\u00a0");           // where the click was
  Press({Qt::Key_Return});  // is the window's
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Note), "\u00a0two\nlines");
  Enter(StampId::Note, {});
  EXPECT_EQ(photo.GetStamps(StampId::Note).Count(), 0);
  EXPECT_EQ(Changed, (Facts{StampId::Note, StampId::Note}));
}

TEST_F(PhotoBack, TypingCompletesAndDeletingDoesNot) {
  Stamp(AddPhoto("b.jpg"), StampId::Thing, {"boats", "Émile", "lake"});
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  Edit(StampId::Thing, "boa");
  EXPECT_EQ(BoxText(), "boats");
  Press({Qt::Key_Backspace});
  EXPECT_EQ(BoxText(), "boa") << "the tail goes and stays away";
  // A separator takes the completed tail; without a selection it is a character like others.
  Type("t;é");
  EXPECT_EQ(BoxText(), QString::fromUtf8("boats; émile"));
  Type(",x;y");
  EXPECT_EQ(BoxText(), QString::fromUtf8("boats, Émile, x;y")) << "in the spelling of the choice";
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Thing), "boats|Émile|x|y");

  Edit(StampId::Thing);
  QGuiApplication::clipboard()->setText("LA");
  Press({Qt::Key_V}, Qt::ControlModifier);
  EXPECT_EQ(BoxText(), "LAke") << "what is pasted";
  Enter(StampId::Thing, {});
  Edit(StampId::Thing);
  const auto compose = [&](const char* text, const char* committed) {
    QInputMethodEvent event(QString::fromUtf8(text), {});
    event.setCommitString(QString::fromUtf8(committed));
    QCoreApplication::sendEvent(&Box(), &event);
    return BoxText();
  };
  EXPECT_EQ(compose("bo", ""), "") << "an input method hasn't come to an end";
  EXPECT_EQ(compose("", "bo"), "boats");
  EXPECT_EQ(compose("", ","), "boats, ");
  EXPECT_EQ(compose("", "b"), "boats, boats");
  EXPECT_EQ(compose("", "x"), "boats, bx");
}

TEST_F(PhotoBack, TheListAddsAndRemovesTexts) {
  Stamp(AddPhoto("b.jpg"), StampId::Thing, {"boats", "R&D", std::string(500, 'w')});
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  Pick(StampId::Thing, "R&&D");
  EXPECT_EQ(Texts(photo, StampId::Thing), "R&D") << "at once";
  // While the field is edited the list changes the text that is edited, and ends no edit.
  Edit(StampId::Thing, "r&d,sun");
  QMenu* menu = OpenMenu(StampId::Thing);
  EXPECT_LT(menu->width(), 400) << "whatever is in it";
  EXPECT_TRUE(Entry(menu, "R&&D")->isChecked());
  EXPECT_FALSE(Entry(menu, "boats")->isChecked());
  CloseMenu(menu);
  Pick(StampId::Thing, "boats");
  EXPECT_EQ(BoxText(), "r&d, sun, boats");
  Pick(StampId::Thing, "R&&D");
  EXPECT_EQ(Texts(photo, StampId::Thing), "R&D");
  Window.setFocus();
  EXPECT_EQ(Texts(photo, StampId::Thing), "sun|boats");
  Enter(StampId::Thing, "Boats; ,wind");
  EXPECT_EQ(Shown(StampId::Thing), "boats, wind");
  EXPECT_EQ(Entry(OpenMenu(StampId::Thing), "sun"), nullptr) << "no photo has it any more";
}

TEST_F(PhotoBack, TypedDatesAreInForceUntilAnotherKindIsChosen) {
  const CAssetRecord photo = AddPhoto("a.jpg", kSomeDay);
  Show(photo);
  const auto kinds = [&] {
    QMenu* menu = OpenMenu(StampId::Date);
    QString text;
    for (const QAction* kind : menu->actions()) {
      text += kind->text() + (kind->isChecked() ? " on; " : kind->isEnabled() ? " off; " : " disabled; ");
    }
    CloseMenu(menu);
    return text;
  };
  for (const char* typed : {"2004-02-30", "soon", "2003-08-09"}) {
    Enter(StampId::Date, QString::fromLatin1(typed));
    EXPECT_EQ(photo.GetCachedDate(), kSomeDay) << "no date, or the same day";
    EXPECT_EQ(Shown(StampId::Date), "Sat, Aug 9, 2003");
  }
  EXPECT_TRUE(Changed.empty());
  EXPECT_EQ(kinds(), "Camera date disabled; File date on; Edited date disabled; ");
  Enter(StampId::Date, "2004-02-29");
  EXPECT_EQ(Shown(StampId::Date), "Sun, Feb 29, 2004");
  EXPECT_EQ(kinds(), "Camera date disabled; File date off; Edited date on; ");
  Edit(StampId::Date);
  Pick(StampId::Date, "File date");
  EXPECT_EQ(FormatLocalTime(photo.GetCachedDate(), "%Y-%m-%d"), "2003-08-09") << "at once";
  EXPECT_EQ(BoxText().toStdString(), FormatEditDate(kSomeDay));
  Window.setFocus();
  EXPECT_EQ(Changed, (Facts{StampId::Date, StampId::Date}));
}

TEST_F(PhotoBack, WhatCannotBeStoredIsToldAndTheStoredValueShows) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Stamp(photo, StampId::Thing, {"lake"});
  Show(photo);
  int renamed = 0;
  Back->OnPhotoRenamed = [&] { ++renamed; };
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "rename" ? make_error_code(std::errc::io_error) : std::error_code();
  });
  Enter(StampId::Title, "refused");
  platform::SetFaultPlan({});
  EXPECT_EQ(Shown(StampId::Title), "a");
  EXPECT_TRUE(std::filesystem::exists(photo.GetPath()));
  Edit(StampId::Thing, "boats, sunset, wind");
  {
    const CFileSizeLimit full(1);
    Window.setFocus();
    Back->SetRating(3);
  }
  EXPECT_EQ(Shown(StampId::Thing), "lake");
  EXPECT_EQ(Texts(photo, StampId::Thing), "lake");
  EXPECT_EQ(photo.GetCachedRating(), 0);
  EXPECT_TRUE(Messages.Shown.empty()) << "not in the middle of it";
  QCoreApplication::processEvents();
  EXPECT_EQ(Messages.Shown.size(), 3U);
  EXPECT_TRUE(Changed.empty());
  Enter(StampId::Thing, "there is room again");
  EXPECT_EQ(Texts(photo, StampId::Thing), "there is room again");
  Enter(StampId::Title, QString());
  EXPECT_EQ(Shown(StampId::Title), "a");
  EXPECT_EQ(renamed, 0);
}

TEST_F(PhotoBack, WhoIsToldOfACommitMayGiveAPhoto) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  AddPhoto("b.jpg");
  Show(photo);
  Back->OnStampChanged = [&](StampId fact) {
    Changed.push_back(fact);
    Back->SetPhoto(photo);
  };
  Enter(StampId::Title, "b");
  EXPECT_EQ(photo.GetFilename(), "b-2.jpg") << "renamed once";
  Enter(StampId::Thing, "boats");
  Pick(StampId::Thing, "boats");
  EXPECT_EQ(Texts(photo, StampId::Thing), "");
  QTest::mouseClick(Stars()[1], Qt::LeftButton);
  EXPECT_EQ(photo.GetCachedRating(), 2);
  EXPECT_EQ(Changed, (Facts{StampId::Title, StampId::Thing, StampId::Thing, StampId::Rating}));
}

TEST_F(PhotoBack, LeavingTheProgramEndsAnEditAlsoThroughAMenu) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Stamp(AddPhoto("b.jpg"), StampId::Thing, {"lake"});
  Show(photo);
  const auto isOver = [&] { return !Back->IsEditing(); };
  Edit(StampId::Thing, "boats");
  QMenu* list = OpenMenu(StampId::Thing);
  EXPECT_TRUE(Back->IsEditing());
  qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
  qGuiApp->applicationStateChanged(Qt::ApplicationActive);
  EXPECT_FALSE(QTest::qWaitFor(isOver, 350)) << "it came back at once";
  qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
  EXPECT_TRUE(QTest::qWaitFor(isOver));
  EXPECT_EQ(Texts(photo, StampId::Thing), "boats");
  CloseMenu(list);
}

TEST_F(PhotoBack, DuringAJobTheCatalogIsLeftAlone) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Show(photo);
  Edit(StampId::Note, "waiting");
  RunJob([&] {
    RunOnWindowThread([&] {
      Window.setFocus();
      Field(StampId::Event).StartEdit();
      EXPECT_FALSE(Field(StampId::Event).IsEditing());
      Back->grab();
    });
    EXPECT_EQ(Texts(photo, StampId::Note), "");
  });
  QCoreApplication::processEvents();
  EXPECT_EQ(Texts(photo, StampId::Note), "waiting");
  EXPECT_FALSE(Back->IsEditing());
}
