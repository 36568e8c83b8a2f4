#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <cstdlib>

#include "ui/WindowTest.h"
#include "ui/kit/Colours.h"
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

TEST(ViewTabLayout, TabsShareTheWholeWidth) {
  EXPECT_EQ(TabRect(1, 3, 1000), QRect(333, 0, 333, 35));
  for (const int width : {520, 777, 1000, 1641}) {
    for (int count = 1; count <= 4; ++count) {
      int end = 0;
      for (int i = 0; i < count; ++i) {
        const QRect tab = TabRect(i, count, width);
        EXPECT_EQ(tab.left(), end + (i > 0 ? 1 : 0));
        EXPECT_LE(std::abs(tab.width() * count - width), 2 * count);
        end = tab.left() + tab.width();
        EXPECT_EQ(TabAt(tab.topLeft(), count, width), i);
        EXPECT_EQ(TabAt(tab.bottomRight(), count, width), i);
      }
      EXPECT_EQ(end, width);
    }
  }
  EXPECT_EQ(TabAt({332, 10}, 3, 1000), -1) << "between two tabs";
  EXPECT_EQ(TabAt({10, 35}, 3, 1000), -1);
  EXPECT_EQ(TabAt({10, 10}, 0, 1000), -1);
  EXPECT_EQ(TabPageRect({1000, 679}), QRect(11, 36, 978, 642));
  EXPECT_TRUE(TabPageRect({10, 10}).isEmpty());
}

TEST(ViewTabLayout, CaptionAndIconFollowTheCount) {
  EXPECT_EQ(TabCaption(kForms, 0), "No photos\nto email");
  EXPECT_EQ(TabCaption(kForms, 1), "1 photo\nto email");
  EXPECT_EQ(TabCaption(kForms, 500), "500 photos\nto email");
  EXPECT_EQ(TabCaption("Restore", 7), "Restore") << "a text of one form";
  EXPECT_EQ(TabIconIndex(0, 2, false), 0);
  EXPECT_EQ(TabIconIndex(1, 2, true), 3);
  EXPECT_EQ(TabIconIndex(9, 2, false), 2);
  EXPECT_EQ(TabIconIndex(9, 1, true), 1);
}

TEST(ViewTabLayout, TextBreaksOnlyWhereItDoesNotFit) {
  constexpr QRect kTab(100, 0, 160, 35);
  constexpr QSize kIcon(20, 20);
  constexpr QSize kOneLine(120, 14);
  constexpr QSize kTwoLines(60, 28);
  const TabContent wide = LayOutTab(kTab, kIcon, kOneLine, kTwoLines);
  EXPECT_FALSE(wide.TwoLines);
  EXPECT_EQ(wide.Icon.left() - kTab.left(), kTab.right() - wide.Text.right()) << "centred together";
  EXPECT_GT(wide.Text.left(), wide.Icon.right());
  EXPECT_EQ(wide.Text.top(), 10);

  const TabContent narrow = LayOutTab(kTab.adjusted(0, 0, -20, 0), kIcon, kOneLine, kTwoLines);
  EXPECT_TRUE(narrow.TwoLines);
  EXPECT_EQ(narrow.Text.size(), kTwoLines);
  EXPECT_EQ(LayOutTab(kTab, kIcon, {0, 0}, {0, 0}).Icon, QRect(170, 7, 20, 20)) << "the icon alone";
}

TEST(ViewTabLayout, TilesFollowPlaceAndSelection) {
  const auto tiles = [](int index, int count, bool selected) {
    const TabTiles chosen = ChooseTabTiles(index, count, selected);
    return std::vector{chosen.Left, chosen.Middle, chosen.Right};
  };
  EXPECT_EQ(tiles(0, 3, true), (std::vector{1, 2, 3}));
  EXPECT_EQ(tiles(0, 3, false), (std::vector{4, 5, 6}));
  EXPECT_EQ(tiles(1, 3, true), (std::vector{7, 2, 3}));
  EXPECT_EQ(tiles(1, 3, false), (std::vector{8, 5, 6}));
  EXPECT_EQ(tiles(2, 3, true), (std::vector{7, 2, 9}));
  EXPECT_EQ(tiles(2, 3, false), (std::vector{8, 5, 10}));
  EXPECT_EQ(tiles(0, 1, true), (std::vector{1, 2, 9})) << "the only one is first and last";
}

TEST_F(ViewTabBar, TabsStandInTheirOrder) {
  Add(ViewTabId::Trash, 400);
  for (const ViewTabId id :
       {ViewTabId::Upload, ViewTabId::Email, ViewTabId::Trash, ViewTabId::CurrentPhoto}) {
    Bar.SelectNextTab();
    EXPECT_EQ(Bar.GetSelectedTab(), id);
  }
  Bar.RemoveTab(ViewTabId::Email);
  EXPECT_FALSE(Bar.HasTab(ViewTabId::Email));
  EXPECT_TRUE(Bar.HasTab(ViewTabId::Trash));
  Bar.SelectTab(ViewTabId::Upload);
  Bar.SelectNextTab();
  EXPECT_EQ(Bar.GetSelectedTab(), ViewTabId::Trash);
  EXPECT_EQ(Selections.size(), 6U) << "each selection is told";
}

TEST_F(ViewTabBar, ClickSelectsATabAndBesideThemIsLeftToTheWindow) {
  EXPECT_TRUE(Click(MiddleOf(2, 3)));
  EXPECT_EQ(Selections, std::vector{ViewTabId::Email});
  EXPECT_FALSE(Click({332, 10}));
  EXPECT_FALSE(Click({500, 300}));
  EXPECT_EQ(Selections.size(), 1U);
}

TEST_F(ViewTabBar, SelectedTabOpensIntoThePage) {
  const auto below = [&](int tab) { return Painted(Bar).pixelColor(MiddleOf(tab, 3).x(), 34); };
  Bar.SelectTab(ViewTabId::CurrentPhoto);
  EXPECT_EQ(below(0), colours::kPage);
  EXPECT_NE(below(1), colours::kPage);
  EXPECT_EQ(Bar.accessibleName(), "No photos to email");
  Bar.SelectTab(ViewTabId::Upload);
  EXPECT_NE(below(0), colours::kPage);
  EXPECT_EQ(below(1), colours::kPage);
  Bar.SetCount(ViewTabId::Upload, 1);
  EXPECT_EQ(Bar.accessibleName(), "1 photo to email");
}

TEST_F(ViewTabBar, EachTabHasItsToolTip) {
  Bar.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&Bar));
  const auto ask = [&](QPoint at) {
    QHelpEvent event(QEvent::ToolTip, at, Bar.mapToGlobal(at));
    QCoreApplication::sendEvent(&Bar, &event);
  };
  ask(MiddleOf(0, 3));
  EXPECT_EQ(QToolTip::text(), "View the photo under the lens");
  ask(MiddleOf(1, 3));
  EXPECT_EQ(QToolTip::text(), "View photos to print or upload");
  QToolTip::hideText();
}
