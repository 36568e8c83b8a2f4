#include <gmock/gmock.h>

#include <QAccessible>
#include <QFontMetricsF>
#include <QLineEdit>

#include "ui/WindowTest.h"
#include "ui/controls/DropControl.h"
#include "ui/controls/DropList.h"
#include "ui/kit/ClickFocus.h"

namespace {

using testing::ElementsAre;

constexpr auto kLine = DropItemFlags::LineBelow;
constexpr int kAction = 7;
constexpr QPoint kOnText(20, 10);
constexpr QPoint kOnArrow(160, 10);

class CListedHistory : public CDropHistory {
 public:
  explicit CListedHistory(std::vector<std::string> entries) : Entries(std::move(entries)) {}
  int Count() const override { return static_cast<int>(Entries.size()); }
  std::string Get(int index) const override { return Entries[static_cast<std::size_t>(index)]; }
  int Add(const std::string& text) override {
    const auto found = std::find(Entries.begin(), Entries.end(), text);
    const auto index = static_cast<int>(found - Entries.begin());
    if (index == Count()) Entries.push_back(text);
    return index;
  }
  void Promote(int index) override {
    std::rotate(Entries.begin(), Entries.begin() + index, Entries.begin() + index + 1);
  }

  std::vector<std::string> Entries;
};

/// A window with a text field, a control with a list of four rows, and one that can be typed into.
class DropControl : public testing::Test {
 protected:
  DropControl() {
    Window.setFocusPolicy(Qt::StrongFocus);
    Window.resize(400, 300);
    Sort.setGeometry(10, 50, 180, 22);
    Find.setGeometry(10, 10, 180, 22);
    for (int id = 0; id < 3; ++id) Sort.GetModel().AddItem(id, "item", {});
    Sort.GetModel().AddItem(kAction, "act", DropItemFlags::Action);
    Sort.GetModel().SelectId(1);
    Sort.OnChange = [this] { ++Changes; };
    Find.GetModel().AddHistory(100, History, {});
    Find.OnEditEnd = [this] { ++EditEnds; };
    Window.show();
    Window.setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
  }

  /// As the mouse of the system sends it: to the window under it, or to the list that is open.
  void Click(const QWidget& widget, QPoint point) {
    QTest::mouseClick(Window.windowHandle(), Qt::LeftButton, {}, widget.mapTo(&Window, point));
    QCoreApplication::processEvents();
  }
  CDropList& OpenList(CDropControl& control) {
    Click(control, kOnArrow);
    EXPECT_NE(control.GetOpenList(), nullptr);
    return *control.GetOpenList();
  }
  QLineEdit& OpenEdit() {
    Click(Find, kOnText);
    EXPECT_TRUE(Find.IsEditing());
    return *Find.findChild<QLineEdit*>();
  }

  const CFontTable Fonts{false};
  QWidget Window;
  QLineEdit Field{&Window};
  CDropControl Sort{"Sort", DropStyle::None, &Window};
  CListedHistory History{{"lake", "sea"}};
  CDropControl Find{"Find", DropStyle::EditBox | DropStyle::History | DropStyle::SelectsWhole, &Window};
  int Changes = 0;
  int EditEnds = 0;
};

}  // namespace

TEST(DropControlModel, HistoryHasARowForEachEntryThatIsShown) {
  CListedHistory history{{"/a", "/b", "/c", "/d"}};
  CDropControlModel model;
  model.AddItem(1, "search", DropItemFlags::Action);
  model.AddItem(100, "all", DropItemFlags::None);
  model.AddHistory(103, history, DropItemFlags::SecondFont | kLine, "> %s", 3);
  model.AddItem(3, "more", DropItemFlags::None);
  std::vector<std::string> shown;
  for (const auto& row : model.GetRows()) {
    shown.push_back(std::to_string(row.Id) + row.Shown + (HasFlag(row.Flags, kLine) ? "_" : ""));
  }
  EXPECT_THAT(shown, ElementsAre("1search", "100all", "103> /a", "104> /b", "105> /c_", "3more"));
  EXPECT_TRUE(model.SelectText("/b"));
  EXPECT_FALSE(model.SelectText("/d")) << "beyond the limit";
}

TEST_F(DropControl, RowIsPickedByMouseAndKeysWhileTheFocusStaysInAField) {
  Field.setFocus();
  CDropList& list = OpenList(Sort);
  const QPoint third = list.GetLayout().GetRow(2).center();
  QTest::mouseRelease(&list, Qt::LeftButton, {}, third);
  EXPECT_NE(Sort.GetOpenList(), nullptr) << "held from the control; the pointer has not been on the row";
  QTest::mouseMove(&list, third);
  QTest::mouseRelease(&list, Qt::LeftButton, {}, third);
  EXPECT_EQ(Sort.GetModel().GetSelectedId(), 2);
  OpenList(Sort);
  QTest::keyClick(&list, Qt::Key_Up);
  EXPECT_EQ(list.GetHotRow(), 1) << "from the current row";
  for (const auto key : {Qt::Key_Home, Qt::Key_Up, Qt::Key_X, Qt::Key_Return}) QTest::keyClick(&list, key);
  EXPECT_EQ(Sort.GetModel().GetAction(), kAction);
  EXPECT_EQ(Changes, 2);
  EXPECT_EQ(Window.focusWidget(), &Field);
}

TEST_F(DropControl, EscapeAndClicksElsewhereCloseTheListWithoutAPick) {
  QTest::keyClick(&OpenList(Sort), Qt::Key_Escape);
  EXPECT_EQ(Sort.GetOpenList(), nullptr);
  OpenList(Sort);
  Click(Sort, kOnArrow);
  EXPECT_EQ(Sort.GetOpenList(), nullptr) << "the click that closes it opens nothing";
  OpenList(Sort);
  Click(Find, kOnText);
  EXPECT_TRUE(Find.IsEditing()) << "a click elsewhere acts where it falls";
  OpenList(Sort).hide();
  EXPECT_EQ(Sort.GetModel().GetState(), DropState::Rest) << "closed by the system";
  EXPECT_TRUE(Find.IsEditing()) << "another list ends no edit";
  EXPECT_EQ(Sort.GetModel().GetSelectedId(), 1);
  EXPECT_EQ(Changes, 0);
}

TEST_F(DropControl, WithTheFocusKeysOpenTheListAndChoose) {
  GiveFocus(Sort, Qt::TabFocusReason);
  QTest::keyClick(&Sort, Qt::Key_Space);
  CDropList& list = *Sort.GetOpenList();
  EXPECT_EQ(list.GetHotRow(), 1);
  for (const int row : {2, 0}) {
    QTest::keyClick(&list, Qt::Key_I);
    EXPECT_EQ(list.GetHotRow(), row) << "the next of its letter, round and round";
  }
  QTest::keyClick(&list, Qt::Key_F4);
  EXPECT_EQ(Sort.GetOpenList(), nullptr);
  for (int i = 0; i < 2; ++i) QTest::keyClick(&Sort, Qt::Key_Down);
  EXPECT_EQ(Sort.GetModel().GetSelectedId(), 2) << "no action is chosen in passing";
  EXPECT_EQ(Changes, 1);

  QAccessibleActionInterface& tool = *QAccessible::queryAccessibleInterface(&Find)->actionInterface();
  tool.doAction(QAccessibleActionInterface::setFocusAction());
  EXPECT_TRUE(QTest::qWaitFor([&] { return Window.focusWidget() == &Find; }));
  Find.Activate();
  QTest::keyClicks(Window.focusWidget(), "dune");
  Find.OpenListByKey();
  QTest::keyClick(Find.GetOpenList(), Qt::Key_L);
  QTest::keyClick(Find.GetOpenList(), Qt::Key_Return);
  EXPECT_THAT(History.Entries, ElementsAre("lake", "dune", "sea"));
  EXPECT_EQ(Window.focusWidget(), &Find);
}

TEST_F(DropControl, TypedTextIsTakenOnEveryWayOut) {
  QTest::keyClicks(&OpenEdit(), "sea");
  Find.EndEdit();
  EXPECT_TRUE(Window.hasFocus());
  EXPECT_EQ(Find.GetModel().GetText(), "sea");

  QLineEdit& box = OpenEdit();
  EXPECT_EQ(box.selectedText(), "sea");
  QTest::keyClicks(&box, "xyz");
  Find.RestoreText();
  EXPECT_EQ(box.selectedText(), "sea");
  QTest::keyClicks(&box, "hill");
  EXPECT_EQ(EditEnds, 1);
  Field.setFocus();
  EXPECT_EQ(Find.GetModel().GetText(), "hill");

  QTest::keyClicks(&OpenEdit(), "dune");
  QTest::keyClick(&OpenList(Find), Qt::Key_Escape);
  EXPECT_THAT(History.Entries, ElementsAre("dune", "hill", "sea", "lake")) << "its own list ends an edit";

  QTest::keyClicks(&OpenEdit(), "  ");
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_FALSE(Find.IsEditing()) << "leaving the program";
  EXPECT_EQ(Find.GetModel().GetText(), "") << "blanks are no text";
  EXPECT_EQ(EditEnds, 4);
}

TEST(DropListLayout, AListWithoutRoomBelowOpensAboveOnTheScreen) {
  const QRect place = PlaceDropList({{1180, 712}, QSize(90, 22)}, {196, 189}, {0, 0, 1280, 900});
  EXPECT_EQ(place.topLeft(), QPoint(1084, 523));
}

TEST(DropText, PathLosesItsMiddleAndKeepsItsName) {
  const CFontTable fonts(false);
  const QFontMetricsF metrics(GetFont(FontId::Panel));
  const QString path = "/home/anna/A long name/another one below it/Scans";
  for (const double width : {30.0, 70.0, 150.0}) {
    const QString shortened = ShortenPath(path, width, metrics);
    EXPECT_LE(metrics.horizontalAdvance(shortened), width);
    EXPECT_EQ(shortened.endsWith(QStringLiteral("\u2026/Scans")), width > 30) << qPrintable(shortened);
    EXPECT_GT(metrics.horizontalAdvance(shortened + u'm'), width - 10) << "no shorter than it must be";
  }
}
