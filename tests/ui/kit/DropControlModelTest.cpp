#include <gmock/gmock.h>

#include "ui/kit/DropControlModel.h"
#include "ui/kit/ListedHistory.h"

namespace {

using testing::ElementsAre;

constexpr int kNone = CDropControlModel::kNone;
constexpr auto kPlain = DropItemFlags::None;
constexpr auto kLine = DropItemFlags::LineBelow;
constexpr auto kAction = DropItemFlags::Action;

std::vector<int> IdsOf(const CDropControlModel& model) {
  std::vector<int> ids;
  for (const auto& row : model.GetRows()) ids.push_back(row.Id);
  return ids;
}

std::vector<std::string> ShownIn(const CDropControlModel& model) {
  std::vector<std::string> shown;
  for (const auto& row : model.GetRows()) shown.push_back(row.Shown);
  return shown;
}

/// An action, two items around a history of at most three of its four entries.
class DropControlModel : public testing::Test {
 protected:
  DropControlModel() {
    Model.AddItem(1, "search", kAction);
    Model.AddItem(100, "all", kPlain);
    Model.AddHistory(103, History, DropItemFlags::SecondFont | kLine, "> %s", 3);
    Model.AddItem(3, "more", kPlain);
    Model.SelectId(100);
  }

  bool Pick(int row) {
    Model.OpenList();
    EXPECT_EQ(Model.GetSelected(), kNone) << "no row while the list is open";
    EXPECT_EQ(Model.GetState(), DropState::ListOpen);
    const bool told = Model.CloseList(row);
    EXPECT_EQ(Model.GetState(), DropState::Rest);
    return told;
  }

  CListedHistory History{{"/a", "/b", "/c", "/d"}};
  CDropControlModel Model;
};

}  // namespace

TEST_F(DropControlModel, HistoryHasARowForEachEntryThatIsShown) {
  EXPECT_THAT(IdsOf(Model), ElementsAre(1, 100, 103, 104, 105, 3));
  EXPECT_THAT(ShownIn(Model), ElementsAre("search", "all", "> /a", "> /b", "> /c", "more"));
  const auto rows = Model.GetRows();
  EXPECT_EQ(rows[2].Text, "/a");
  EXPECT_FALSE(HasFlag(rows[2].Flags, kLine));
  EXPECT_TRUE(HasFlag(rows[4].Flags, kLine)) << "the last of the group";
  EXPECT_TRUE(HasFlag(rows[3].Flags, DropItemFlags::SecondFont));
  History.Entries.clear();
  EXPECT_THAT(IdsOf(Model), ElementsAre(1, 100, 3));
}

TEST_F(DropControlModel, ActionIsToldAndLeavesTheSelection) {
  EXPECT_TRUE(Pick(0));
  EXPECT_EQ(Model.GetAction(), 1);
  EXPECT_EQ(Model.GetSelectedId(), 100);
  EXPECT_EQ(Model.GetShownText(), "all");
  EXPECT_FALSE(Pick(kNone)) << "closed without a pick";
  EXPECT_EQ(Model.GetAction(), kNone);
  EXPECT_EQ(Model.GetSelectedId(), 100);
}

TEST_F(DropControlModel, PickedEntryComesToTheHeadOfItsGroup) {
  EXPECT_TRUE(Pick(4));
  EXPECT_THAT(History.Entries, ElementsAre("/c", "/a", "/b", "/d"));
  EXPECT_EQ(Model.GetSelectedId(), 103);
  EXPECT_EQ(Model.GetText(), "/c");
  EXPECT_EQ(Model.GetShownText(), "> /c");
  EXPECT_EQ(Model.GetAction(), kNone);
}

TEST_F(DropControlModel, FailedPromotionLeavesTheEntryInItsPlaceAndTheControlOnIt) {
  History.Fails = true;
  Model.OpenList();
  EXPECT_THROW(Model.CloseList(4), std::runtime_error);
  EXPECT_EQ(Model.GetText(), "/c");
  EXPECT_EQ(Model.GetState(), DropState::Rest);
}

TEST_F(DropControlModel, SelectsByIdAndByWhatAnItemStandsFor) {
  EXPECT_TRUE(Model.SelectText("/b"));
  EXPECT_EQ(Model.GetSelectedId(), 104);
  EXPECT_FALSE(Model.SelectText("> /a")) << "how it is written";
  EXPECT_FALSE(Model.SelectText("/d")) << "beyond the limit";
  EXPECT_FALSE(Model.SelectId(106));
  EXPECT_EQ(Model.GetSelectedId(), 104);
}

TEST_F(DropControlModel, TypedTextIsRememberedOnceAndFirst) {
  Model.OpenEdit();
  EXPECT_EQ(Model.GetState(), DropState::EditOpen);
  Model.CloseEdit("/x", true);
  EXPECT_EQ(Model.GetState(), DropState::Rest);
  EXPECT_THAT(History.Entries, ElementsAre("/x", "/a", "/b", "/c", "/d"));
  EXPECT_EQ(Model.GetText(), "/x");
  EXPECT_EQ(Model.GetSelectedId(), 103);
  Model.CloseEdit("/b", true);
  EXPECT_THAT(History.Entries, ElementsAre("/b", "/x", "/a", "/c", "/d"));
  Model.CloseEdit("", true);
  Model.CloseEdit("unlisted", false);
  EXPECT_EQ(History.Entries.size(), 5u);
  EXPECT_EQ(Model.GetText(), "unlisted");
  EXPECT_EQ(Model.GetSelected(), kNone);
}
