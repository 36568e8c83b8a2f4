#include <QLineEdit>

#include "ui/WindowTest.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DropControl.h"
#include "ui/kit/DropControlLayout.h"
#include "ui/kit/DropList.h"
#include "ui/kit/ListedHistory.h"

namespace {

constexpr QPoint kOnText(20, 10);
constexpr QPoint kOnArrow(160, 10);
constexpr int kAction = 7;

/// A window with a text field, a control with a list of four rows, and one that can be typed into.
class DropControl : public testing::Test {
 protected:
  DropControl()
      : Field(&Window),
        Sort("Sort", DropStyle::None, &Window),
        Find("Find", DropStyle::EditBox | DropStyle::History | DropStyle::SelectsWhole, &Window) {
    Window.setFocusPolicy(Qt::StrongFocus);
    Window.resize(400, 300);
    Field.move(10, 10);
    Sort.setGeometry(10, 50, 180, 22);
    Find.setGeometry(10, 80, 180, 22);
    for (int id = 0; id < 3; ++id)
      Sort.GetModel().AddItem(id, std::string(1, static_cast<char>('a' + id)), {});
    Sort.GetModel().AddItem(kAction, "act", DropItemFlags::Action);
    Sort.GetModel().SelectId(1);
    Sort.OnChange = [this] { ++Changes; };
    Find.GetModel().AddItem(1, "", DropItemFlags::LineBelow);
    Find.GetModel().AddHistory(100, History, {});
    Find.GetModel().SelectId(1);
    Find.SetPrompt("Anything");
    Find.OnChange = [this] { ++Changes; };
    Find.OnEditEnd = [this] { ++EditEnds; };
    Window.show();
    Window.activateWindow();
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

  static QPoint RowOf(const CDropList& list, int row) { return list.GetLayout().GetRow(row).center(); }

  void PickByMouse(CDropControl& control, int row) {
    CDropList& list = OpenList(control);
    QTest::mouseMove(&list, RowOf(list, row));
    QTest::mouseClick(&list, Qt::LeftButton, {}, RowOf(list, row));
  }

  QLineEdit& OpenEdit() {
    Click(Find, kOnText);
    EXPECT_TRUE(Find.IsEditing());
    return *Find.findChild<QLineEdit*>();
  }

  const CFontTable Fonts{false};
  QWidget Window;
  QLineEdit Field;
  CDropControl Sort;
  CListedHistory History{{"lake", "sea"}};
  CDropControl Find;
  int Changes = 0;
  int EditEnds = 0;
};

}  // namespace

TEST_F(DropControl, RowIsPickedByMouse) {
  CDropList& list = OpenList(Sort);
  EXPECT_EQ(list.geometry().topLeft(), Sort.mapToGlobal(QPoint(0, Sort.height())));
  EXPECT_EQ(Sort.GetModel().GetState(), DropState::ListOpen);
  QTest::mouseMove(&list, RowOf(list, 2));
  EXPECT_EQ(list.GetHotRow(), 2);
  EXPECT_EQ(Painted(list).pixelColor(list.GetLayout().GetRow(2).right() - 3, RowOf(list, 2).y()),
            colours::kSelection);
  QTest::mouseClick(&list, Qt::LeftButton, {}, RowOf(list, 2));
  EXPECT_EQ(Sort.GetOpenList(), nullptr);
  EXPECT_EQ(Sort.GetModel().GetSelectedId(), 2);
  EXPECT_EQ(Sort.accessibleDescription(), "c");
  EXPECT_EQ(Changes, 1);

  PickByMouse(Sort, 3);
  EXPECT_EQ(Sort.GetModel().GetAction(), kAction);
  EXPECT_EQ(Sort.GetModel().GetSelectedId(), 2);
  EXPECT_EQ(Changes, 2);
}

TEST_F(DropControl, ButtonHeldFromTheControlToARowPicksIt) {
  QTest::mousePress(Window.windowHandle(), Qt::LeftButton, {}, Sort.mapTo(&Window, kOnArrow));
  QTest::mouseRelease(Window.windowHandle(), Qt::LeftButton, {}, Sort.mapTo(&Window, kOnArrow));
  ASSERT_NE(Sort.GetOpenList(), nullptr) << "a click leaves the list open";
  CDropList& list = *Sort.GetOpenList();
  QTest::mouseRelease(&list, Qt::LeftButton, {}, RowOf(list, 0));
  EXPECT_NE(Sort.GetOpenList(), nullptr) << "the pointer has not been on the row";
  QTest::mouseMove(&list, RowOf(list, 0));
  QTest::mouseRelease(&list, Qt::LeftButton, {}, RowOf(list, 0));
  EXPECT_EQ(Sort.GetModel().GetSelectedId(), 0);
}

TEST_F(DropControl, RowIsPickedByKeys) {
  CDropList& list = OpenList(Sort);
  QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_EQ(list.GetHotRow(), 2) << "from the current row";
  QTest::keyClick(&list, Qt::Key_Home);
  QTest::keyClick(&list, Qt::Key_Up);
  EXPECT_EQ(list.GetHotRow(), 3);
  QTest::keyClicks(&list, "abc ");
  EXPECT_EQ(list.GetHotRow(), 3);
  QTest::keyClick(&list, Qt::Key_Up);
  QTest::keyClick(&list, Qt::Key_Return);
  EXPECT_EQ(Sort.GetModel().GetSelectedId(), 2);
  EXPECT_EQ(Changes, 1);
}

TEST_F(DropControl, EscapeAndClicksElsewhereCloseTheListWithoutAPick) {
  QTest::keyClick(&OpenList(Sort), Qt::Key_Escape);
  EXPECT_EQ(Sort.GetOpenList(), nullptr);
  OpenList(Sort);
  Click(Window, {300, 250});
  EXPECT_EQ(Sort.GetOpenList(), nullptr);
  OpenList(Sort);
  Click(Sort, kOnArrow);
  EXPECT_EQ(Sort.GetOpenList(), nullptr) << "the click that closes it opens nothing";
  OpenList(Sort);
  Sort.GetOpenList()->hide();
  EXPECT_EQ(Sort.GetModel().GetState(), DropState::Rest) << "closed by the system";
  EXPECT_EQ(Sort.GetModel().GetSelectedId(), 1);
  EXPECT_EQ(Changes, 0);
}

TEST_F(DropControl, ListLeavesTheFocusInAFieldAndTakesItsKeys) {
  Field.setFocus();
  CDropList& list = OpenList(Sort);
  EXPECT_EQ(Window.focusWidget(), &Field);
  QTest::keyClick(&list, Qt::Key_X);
  QTest::keyClick(&list, Qt::Key_Escape);
  EXPECT_EQ(Window.focusWidget(), &Field);
  EXPECT_TRUE(Field.text().isEmpty());
}

TEST_F(DropControl, TypedTextIsTakenOnEveryWayOut) {
  QLineEdit& box = OpenEdit();
  EXPECT_TRUE(box.hasFocus());
  QTest::keyClicks(&box, "tree");
  EXPECT_EQ(EditEnds, 0);
  Find.EndEdit();
  EXPECT_FALSE(Find.IsEditing());
  EXPECT_TRUE(Window.hasFocus());
  EXPECT_EQ(Find.GetModel().GetText(), "tree");
  EXPECT_EQ(History.Entries.front(), "tree");

  QLineEdit& second = OpenEdit();
  EXPECT_EQ(second.selectedText(), "tree");
  QTest::keyClicks(&second, "hill");
  Field.setFocus();
  EXPECT_EQ(Find.GetModel().GetText(), "hill");
  EXPECT_TRUE(Field.hasFocus());

  QTest::keyClicks(&OpenEdit(), "dune");
  OpenList(Find);
  EXPECT_EQ(History.Entries.front(), "dune") << "the control's own list ends its edit";
  QTest::keyClick(Find.GetOpenList(), Qt::Key_Escape);

  QTest::keyClicks(&OpenEdit(), "  ");
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_FALSE(Find.IsEditing()) << "leaving the program";
  EXPECT_TRUE(Find.GetModel().GetText().empty()) << "blanks are no text";
  EXPECT_EQ(EditEnds, 4);
  EXPECT_EQ(History.Entries.size(), 5u);
}

TEST_F(DropControl, OtherListsAndMenusEndNoEdit) {
  QLineEdit& box = OpenEdit();
  QTest::keyClicks(&box, "tr");
  QTest::keyClick(&OpenList(Sort), Qt::Key_Escape);
  EXPECT_TRUE(Find.IsEditing());
  EXPECT_EQ(EditEnds, 0);
  QTest::keyClicks(&box, "ee");
  Find.EndEdit();
  EXPECT_EQ(Find.GetModel().GetText(), "tree");
}

TEST_F(DropControl, RestoredTextIsTheOneFromBefore) {
  PickByMouse(Find, 2);
  EXPECT_EQ(Find.GetModel().GetText(), "sea");
  EXPECT_EQ(History.Entries.front(), "sea");
  QLineEdit& box = OpenEdit();
  QTest::keyClicks(&box, "xyz");
  Find.RestoreText();
  EXPECT_EQ(box.text(), "sea");
  EXPECT_EQ(box.selectedText(), "sea");
  Find.EndEdit();
  EXPECT_EQ(Find.GetModel().GetText(), "sea");
}

TEST_F(DropControl, PromptStandsInForAnEmptyText) {
  const QRect text = GetDropTextArea(Find.size(), false);
  const QImage prompt = Painted(Find);
  EXPECT_TRUE(HoldsInk(prompt, text, Qt::white));
  QLineEdit& box = OpenEdit();
  QTest::keyClicks(&box, "lake");
  Find.EndEdit();
  EXPECT_NE(Painted(Find).copy(text), prompt.copy(text));
  QTest::keyClick(&OpenEdit(), Qt::Key_Delete);
  Find.EndEdit();
  EXPECT_EQ(Painted(Find).copy(text), prompt.copy(text));
}

TEST_F(DropControl, InputMethodComposesInTheEditBox) {
  QLineEdit& box = OpenEdit();
  QInputMethodEvent composing("ni", {});
  QCoreApplication::sendEvent(&box, &composing);
  QInputMethodEvent done;
  done.setCommitString(QStringLiteral("\u4f60"));
  QCoreApplication::sendEvent(&box, &done);
  Find.EndEdit();
  EXPECT_EQ(Find.GetModel().GetText(), "\u4f60");
}
