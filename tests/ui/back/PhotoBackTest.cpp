#include <QAbstractButton>
#include <QAccessible>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <filesystem>

#include "base/Times.h"
#include "platform/Faults.h"
#include "support/FaultSteps.h"
#include "ui/HomeFixture.h"
#include "ui/back/DateText.h"
#include "ui/back/FieldText.h"
#include "ui/back/PhotoBack.h"
#include "ui/back/PhotoBackLayout.h"
#include "ui/back/PhotoField.h"
#include "ui/back/PhotoFieldSet.h"
#include "ui/controls/PaintedButton.h"
#include "ui/kit/Job.h"

namespace {

constexpr std::int32_t kSomeDay = 1060430400;  // August 9, 2003

/// The panel as a user works it.
class PhotoBack : public CStoresFixture {
 protected:
  /// Shows the window with the panel over the photo.
  void Show() {
    Back = std::make_unique<CPhotoBack>(&Window);
    Back->resize(267, 601);
    Back->OnStampChanged = [this](StampId fact) { Changed.push_back(fact); };
    Back->GetPictureSize = [] { return ImageSize{2560, 1600}; };
    Back->SetPhoto(Photo);
    Activate(Window);
  }

  CPhotoField& Field(StampId fact) { return *Back->GetField(fact); }
  QString Shown(StampId fact) { return Field(fact).GetShownText(); }
  QList<QAbstractButton*> Stars() {
    return Back->findChild<QWidget*>(QStringLiteral("Rating"))->findChildren<QAbstractButton*>();
  }

  /// In the edit box, one of a single line.
  static QString BoxText() { return qobject_cast<QLineEdit*>(QApplication::focusWidget())->text(); }

  void Edit(StampId fact, const QString& typed = {}) {
    Field(fact).StartEdit();
    Type(typed);
  }

  /// Types over all of a field's text and leaves the field.
  void Enter(StampId fact, const QString& text) {
    Edit(fact);
    Field(fact).GetTextWindow().GetBox()->SelectAll();
    Type(text);
    Press({Qt::Key_Delete});  // of all, or of a completed tail
    Window.setFocus();
  }

  static QAction* Entry(QMenu* menu, const char* text) {
    for (QAction* action : menu->actions()) {
      if (action->text() == QLatin1String(text)) return action;
    }
    return nullptr;
  }

  QMenu* OpenMenu(StampId fact) {
    QTest::mouseClick(Field(fact).GetButton(), Qt::LeftButton, {}, {5, 5});
    return Field(fact).GetMenu();
  }

  /// The platform without a screen makes the menu the active window, which others don't.
  void CloseMenu(QMenu* menu) {
    menu->close();
    Window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
  }

  void Pick(StampId fact, const char* text) {
    QMenu* menu = OpenMenu(fact);
    Entry(menu, text)->trigger();
    CloseMenu(menu);
  }

  const CAssetRecord Photo = AddPhoto("a.jpg", kSomeDay);
  std::unique_ptr<CPhotoBack> Back;
  std::vector<StampId> Changed;  // what the window was told
};

}  // namespace

TEST_F(PhotoBack, ShowsWhatIsKnownAndNothingWithoutAPhoto) {
  Stamp(Photo, StampId::Thing, {"boats", "lake"});
  Show();
  EXPECT_EQ(Shown(StampId::Thing), "boats, lake");
  EXPECT_EQ(Shown(StampId::Date), "Sat, Aug 9, 2003");
  EXPECT_EQ(Shown(StampId::Folder), "Pictures");
  for (const StampId fact : {StampId::Thing, StampId::Date, StampId::Event}) {
    EXPECT_EQ(Field(fact).GetButton()->isVisible(), fact != StampId::Event) << "no event was ever given";
  }
  for (const auto& [bytes, text] :
       {std::pair(999 * 1024 + 1023, "2560 x 1600 (999 KB)"), {1000 * 1024, "2560 x 1600 (0.98 MB)"}}) {
    std::filesystem::resize_file(Photo.GetPath(), static_cast<std::uintmax_t>(bytes));
    Back->UpdateFormat();
    EXPECT_EQ(Back->GetFormatField().GetShownText(), text);
  }

  Back->SetPhoto(std::nullopt);
  EXPECT_FALSE(Field(StampId::Title).isVisible() || Stars()[0]->isVisible());
  Back->FocusField(StampId::Note);
  Back->SetRating(2);
  EXPECT_FALSE(Back->IsEditing());
  EXPECT_TRUE(Changed.empty());
  CPhotoFieldSet values(Photo, {});
  Catalog.DeleteAsset(Photo.GetAssetID());
  values.Get(StampId::Thing).SetText("x");
  values.Get(StampId::Thing).Commit();
  EXPECT_EQ(values.Get(StampId::Thing).GetText(), "") << "of a photo that is gone";
}

TEST_F(PhotoBack, AClickGivesTheStarsAndOneOnTheLastTakesItAway) {
  Show();
  const int cases[][3] = {{0, 1, 1}, {0, 4, 4}, {1, 1, 0}, {3, 3, 2}, {3, 4, 4}, {3, 1, 1}, {4, 4, 3}};
  for (const auto& [before, star, after] : cases) {
    Back->SetRating(before);
    QAbstractButton& clicked = *Stars()[star - 1];
    EXPECT_EQ(Painted(clicked).pixelColor(10, 11).saturation() > 100, star <= before);
    QTest::mousePress(&clicked, Qt::LeftButton, {}, {9, 9});
    EXPECT_EQ(Photo.GetCachedRating(), after) << "star " << star << " of " << before;
  }
}

TEST_F(PhotoBack, ATextIsStoredByWhateverWayItsFieldIsLeft) {
  const CAssetRecord other = AddPhoto("b.jpg");
  Show();
  QWidget neighbour;  // of another window
  const auto click = [](QWidget& widget, int x, int y) {
    QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(x, y));
  };
  const auto leaveProgram = [&] {
    qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !Back->IsEditing(); }));
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
      {"another program", leaveProgram},
      {"another window", [&] { Activate(neighbour); }}};
  for (const auto& [name, leave] : ways) {
    Back->SetPhoto(Photo);
    Back->show();
    Edit(StampId::Note);
    const std::string before = Texts(Photo, StampId::Note);
    Field(StampId::Note).GetTextWindow().GetBox()->SetText(QString::fromLatin1(name));
    EXPECT_EQ(Texts(Photo, StampId::Note), before) << "not before it is left";
    leave();
    EXPECT_EQ(Texts(Photo, StampId::Note), name);
    EXPECT_EQ(Texts(other, StampId::Note), "");
    if (Back->IsEditing()) Window.setFocus();
  }
  Window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&Window));
  EXPECT_EQ(QApplication::focusWidget(), &Window) << "not in the field again";
}

TEST_F(PhotoBack, TabGoesRoundAndCaptionsKeepTheirLines) {
  Stamp(Photo, StampId::Note, {"two\r\nlines"});
  Show();
  QWidget& title = Field(StampId::Title).GetTextWindow();
  QAccessibleActionInterface& tool = *QAccessible::queryAccessibleInterface(&title)->actionInterface();
  tool.doAction(QAccessibleActionInterface::setFocusAction());
  EXPECT_TRUE(QTest::qWaitFor([&] { return Field(StampId::Title).IsEditing(); }));
  for (const StampId fact : {StampId::Title, StampId::Note, StampId::Thing, StampId::Event,
                             StampId::PersonalPlace, StampId::Date}) {
    EXPECT_TRUE(Field(fact).isAncestorOf(QApplication::focusWidget())) << static_cast<int>(fact);
    Back->FocusNextField(true);
  }
  Back->FocusNextField(false);
  EXPECT_TRUE(Field(StampId::Date).IsEditing());
  Window.setFocus();
  EXPECT_EQ(Texts(Photo, StampId::Note), "two\r\nlines") << "what isn't changed isn't written";

  QTest::mouseClick(&Field(StampId::Note).GetTextWindow(), Qt::LeftButton, {}, {5, 10});
  Type("\u00a0");           // where the click was
  Press({Qt::Key_Return});  // is the window's
  Window.setFocus();
  EXPECT_EQ(Texts(Photo, StampId::Note), "\u00a0two\nlines");
  Enter(StampId::Note, {});
  EXPECT_EQ(Photo.GetStamps(StampId::Note).Count(), 0);
}

TEST_F(PhotoBack, TypingCompletesAndDeletingDoesNot) {
  Stamp(AddPhoto("b.jpg"), StampId::Thing, {"boats", "Émile", "lake"});
  Show();
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
  EXPECT_EQ(Texts(Photo, StampId::Thing), "boats|Émile|x|y");

  Enter(StampId::Thing, {});
  Edit(StampId::Thing);
  const auto compose = [&](const char* text, const char* committed) {
    QInputMethodEvent event(text, {});
    event.setCommitString(committed);
    QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
    return BoxText();
  };
  EXPECT_EQ(compose("bo", ""), "") << "an input method hasn't come to an end";
  EXPECT_EQ(compose("", "bo"), "boats");
  EXPECT_EQ(compose("", ","), "boats, ");
}

TEST_F(PhotoBack, TheListAddsAndRemovesTexts) {
  Stamp(AddPhoto("b.jpg"), StampId::Thing, {"boats", "R&D"});
  Show();
  Pick(StampId::Thing, "R&&D");
  EXPECT_EQ(Texts(Photo, StampId::Thing), "R&D") << "at once";
  // While the field is edited the list changes the text that is edited, and ends no edit.
  Edit(StampId::Thing, "r&d,sun");
  Pick(StampId::Thing, "boats");
  EXPECT_EQ(BoxText(), "r&d, sun, boats");
  Pick(StampId::Thing, "R&&D");
  EXPECT_EQ(Texts(Photo, StampId::Thing), "R&D");
  Window.setFocus();
  EXPECT_EQ(Texts(Photo, StampId::Thing), "sun|boats");
  Back->OnStampChanged = [&](StampId) { Back->SetPhoto(Photo); };  // who is told may give a photo
  Enter(StampId::Thing, "Boats; ,wind");
  EXPECT_EQ(Shown(StampId::Thing), "boats, wind");
  Enter(StampId::Thing, "wind");
  EXPECT_EQ(Texts(Photo, StampId::Thing), "wind");
  EXPECT_EQ(Entry(OpenMenu(StampId::Thing), "sun"), nullptr) << "no photo has it any more";
}

TEST_F(PhotoBack, TypedDatesAreInForceUntilAnotherKindIsChosen) {
  Show();
  for (const char* typed : {"2004-02-30", "soon", "2003-08-09"}) {
    Enter(StampId::Date, QString::fromLatin1(typed));
    EXPECT_EQ(Photo.GetCachedDate(), kSomeDay) << "no date, or the same day";
  }
  EXPECT_EQ(Shown(StampId::Date), "Sat, Aug 9, 2003");
  Enter(StampId::Date, "2004-02-29");
  EXPECT_EQ(Shown(StampId::Date), "Sun, Feb 29, 2004");
  QMenu* menu = OpenMenu(StampId::Date);
  EXPECT_TRUE(Entry(menu, "Edited date")->isChecked() && Entry(menu, "File date")->isEnabled());
  EXPECT_FALSE(Entry(menu, "Camera date")->isEnabled());
  CloseMenu(menu);
  Edit(StampId::Date);
  Pick(StampId::Date, "File date");
  EXPECT_EQ(FormatLocalTime(Photo.GetCachedDate(), "%Y-%m-%d"), "2003-08-09") << "at once";
  EXPECT_EQ(BoxText().toStdString(), FormatEditDate(kSomeDay));
  Window.setFocus();
  EXPECT_EQ(Changed, (std::vector{StampId::Date, StampId::Date}));
}

TEST_F(PhotoBack, WhatCannotBeStoredIsToldAndTheStoredValueShows) {
  Stamp(Photo, StampId::Thing, {"lake"});
  Show();
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "rename" ? make_error_code(std::errc::io_error) : std::error_code();
  });
  Enter(StampId::Title, "refused");
  platform::SetFaultPlan({});
  EXPECT_EQ(Shown(StampId::Title), "a");
  Edit(StampId::Thing, "boats, sunset, wind");
  {
    const CFileSizeLimit full(1);
    Window.setFocus();
    Back->SetRating(3);
  }
  EXPECT_EQ(Shown(StampId::Thing), "lake");
  EXPECT_EQ(Texts(Photo, StampId::Thing), "lake");
  EXPECT_TRUE(Messages.Texts.empty()) << "not in the middle of it";
  QCoreApplication::processEvents();
  EXPECT_EQ(Messages.Texts.size(), 3U);
  EXPECT_TRUE(Changed.empty());
  Enter(StampId::Thing, "there is room again");
  EXPECT_EQ(Texts(Photo, StampId::Thing), "there is room again");
}

TEST_F(PhotoBack, DuringAJobTheCatalogIsLeftAlone) {
  Show();
  Edit(StampId::Note, "waiting");
  RunJob([&] {
    RunOnWindowThread([&] {
      Window.setFocus();
      Field(StampId::Event).StartEdit();
      EXPECT_FALSE(Field(StampId::Event).IsEditing());
      Back->grab();
    });
    EXPECT_EQ(Texts(Photo, StampId::Note), "");
  });
  QCoreApplication::processEvents();
  EXPECT_EQ(Texts(Photo, StampId::Note), "waiting");
  EXPECT_FALSE(Back->IsEditing());
}

TEST(PhotoBackLayout, GivesUpGapsOnALowScreenAndThenScrolls) {
  struct Case {
    int PanelHeight;  // in a whole window of 960 by 540, of 911 by 512, and below a title bar of that
    int FirstTop, LastBottom, ContentHeight;
  };
  for (const auto& [height, top, bottom, content] :
       {Case{345, 21, 220, 345}, {317, 21, 197, 317}, {280, 6, 182, 286}}) {
    const PhotoBackLayout layout =
        LayOutPhotoBack({267, height}, 104, {.ValueLine = 13, .FolderLine = 12, .RatingRow = 21});
    EXPECT_EQ(layout.Fields.front().top(), top) << height;
    EXPECT_EQ(layout.Fields.back().bottom() + 1, bottom) << height;
    EXPECT_EQ(layout.ContentHeight, content) << height;
  }
}

TEST_F(PhotoBack, ScrollsToWhatIsEditedWhereItIsTooLow) {
  Show();
  Back->resize(267, 100);
  const auto& bar = *Back->findChild<QScrollBar*>();
  for (const StampId fact : {StampId::Date, StampId::Title}) {
    Field(fact).StartEdit();
    EXPECT_TRUE(Back->rect().contains(Field(fact).geometry())) << static_cast<int>(fact);
  }
  Window.setFocus();
  EXPECT_TRUE(bar.isVisible());
  Back->SetPhoto(std::nullopt);
  EXPECT_FALSE(bar.isVisible());
}
