#include <QAccessible>
#include <QMouseEvent>

#include "ui/WindowTest.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/pages/ViewTabLayout.h"

namespace {

const QString kForms = "No photos\nto email\t1 photo\nto email\t%d photos\nto email";

class ViewTabBar : public testing::Test {
 protected:
  void SetUp() override {
    Bar.OnTabChanged = [this] { Selections.push_back(Bar.GetSelectedTab()); };
    Add(ViewTabId::Email, 300);
    Add(ViewTabId::CurrentPhoto, 100);
    Add(ViewTabId::Upload, 200);
    Bar.resize(1000, 600);
  }
  void Add(ViewTabId id, int order) {
    Bar.AddTab(id, order);
    Bar.SetTabInfo(id, PictureId::CurrentPhotoTab, 1, StringId::EmailTabCaption, 0);
  }
  /// Whether the bar took the click.
  bool Click(QPoint at) {
    QMouseEvent event(QEvent::MouseButtonPress, at, Bar.mapToGlobal(at), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&Bar, &event);
    return event.isAccepted();
  }
  QPoint MiddleOf(int tab, int count) { return TabRect(tab, count, Bar.width()).center(); }

  const CFontTable Fonts{false};
  CViewTabBar Bar{nullptr};
  std::vector<ViewTabId> Selections;
};

}  // namespace

TEST_F(ViewTabBar, TabsStandInTheirOrder) {
  Add(ViewTabId::Trash, 400);
  for (const ViewTabId id :
       {ViewTabId::Upload, ViewTabId::Email, ViewTabId::Trash, ViewTabId::CurrentPhoto}) {
    Bar.SelectNextTab();
    EXPECT_EQ(Bar.GetSelectedTab(), id);
  }
  EXPECT_EQ(Selections.size(), 4U) << "each selection is told";
}

TEST_F(ViewTabBar, ClickSelectsATabAndBesideThemIsLeftToTheWindow) {
  EXPECT_TRUE(Click(MiddleOf(2, 3)));
  EXPECT_EQ(Selections, std::vector{ViewTabId::Email});
  EXPECT_FALSE(Click({332, 10}));
  EXPECT_EQ(Selections.size(), 1U);
}

TEST_F(ViewTabBar, AssistiveToolsSeeTheTabsAndSelectThem) {
  Bar.show();
  Bar.SetCount(ViewTabId::Email, 1);
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&Bar);
  ASSERT_EQ(list->childCount(), 3);
  QAccessibleInterface* tab = list->child(2);
  EXPECT_EQ(tab->role(), QAccessible::PageTab);
  EXPECT_EQ(tab->text(QAccessible::Name), "1 photo to email");
  EXPECT_FALSE(tab->state().selected);
  tab->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(QTest::qWaitFor([&] { return Selections == std::vector{ViewTabId::Email}; }));
  EXPECT_TRUE(tab->state().selected);
}
