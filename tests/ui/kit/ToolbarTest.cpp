#include <algorithm>

#include "ui/kit/ButtonTest.h"
#include "ui/kit/Colours.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/ToolTips.h"
#include "ui/kit/Toolbar.h"

namespace {

struct Slot {
  int Gap;
  CommandId Id;
  PictureId Rest;
  PictureId Widest;
};
constexpr Slot kSlots[] = {
    {0, CommandId::ToggleUpload, PictureId::UploadPhoto, PictureId::DoNotUploadPhoto},
    {0, CommandId::ToggleEmail, PictureId::EmailPhoto, PictureId::DoNotEmailPhoto},
    {10, CommandId::RotateRight, PictureId::RotateRight, PictureId::RotateRight},
    {0, CommandId::RotateLeft, PictureId::RotateLeft, PictureId::RotateLeft},
    {0, CommandId::DeletePhoto, PictureId::DeletePhoto, PictureId::DeletePhoto},
    {0, CommandId::AutoFix, PictureId::AutoFix, PictureId::UndoAutoFix},
    {10, CommandId::ToggleSlideShow, PictureId::PlaySlideShow, PictureId::StopSlideShow},
    {0, CommandId::ToggleFullScreen, PictureId::ViewFullScreen, PictureId::ViewFullScreen}};

std::vector<ToolbarItem> MakeItems(bool widest) {
  std::vector<ToolbarItem> items;
  for (const Slot& slot : kSlots) {
    const PictureId picture = widest ? slot.Widest : slot.Rest;
    ToolbarItem item{slot.Gap, GetPictureSize(picture).width() / 2, {}};
    const QString caption = LoadCaptionAndTip(static_cast<StringId>(picture)).Caption;
    for (std::size_t i = 0; i < kCaptionFonts.size(); ++i) {
      item.CaptionWidths[i] = MeasureCaption(caption, kCaptionFonts[i]).width();
    }
    items.push_back(item);
  }
  return items;
}

/// Buttons in their order, side by side or with a gap, each as wide as its caption at least.
void ExpectInOrder(const ToolbarPlan& plan, int rowWidth) {
  int end = 0;
  for (const ToolbarPlace& place : plan.Places) {
    EXPECT_GE(place.Left, end);
    EXPECT_GT(place.Width, place.CaptionWidth);
    end = place.Left + place.Width;
  }
  EXPECT_LE(end, rowWidth);
  EXPECT_NEAR(plan.Places.front().Left, rowWidth - end, 1) << "in the middle";
}

std::size_t FontIndex(const ToolbarPlan& plan) {
  const auto font = std::find(kCaptionFonts.begin(), kCaptionFonts.end(), plan.CaptionFont);
  return static_cast<std::size_t>(font - kCaptionFonts.begin());
}

int CountCut(const std::vector<ToolbarItem>& items, const ToolbarPlan& plan) {
  int cut = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    cut += plan.Places[i].CaptionWidth < items[i].CaptionWidths[FontIndex(plan)] ? 1 : 0;
  }
  return cut;
}

class Toolbar : public testing::Test {
 protected:
  void SetUp() override {
    for (const Slot& slot : kSlots) {
      Row.AddButton(slot.Gap, slot.Id, static_cast<StringId>(slot.Rest), slot.Widest);
    }
    Row.resize(1000, kToolbarHeight);
    Row.show();
  }
  CPaintedButton& Get(CommandId id) { return *Row.GetButton(id); }

  const CFontTable Fonts{false};
  CNotedCommands Target;
  CToolbar Row{Target, nullptr};
};

}  // namespace

TEST(ToolbarLayout, WideRowKeepsPicturesAndGaps) {
  const CFontTable fonts(false);
  const auto items = MakeItems(true);
  const ToolbarPlan plan = ArrangeToolbar(items, 900);
  ExpectInOrder(plan, 900);
  EXPECT_EQ(plan.CaptionFont, FontId::Note);
  const ToolbarPlace& last = plan.Places.back();
  EXPECT_EQ(last.Left + last.Width - plan.Places.front().Left, GetContentWidth(items));
  for (std::size_t i = 0; i < items.size(); ++i) EXPECT_EQ(plan.Places[i].Width, items[i].PictureWidth);
}

TEST(ToolbarLayout, NarrowestWindowCutsNoCaption) {
  const CFontTable fonts(false);
  constexpr int kRow = 800 - 280;
  for (const bool widest : {false, true}) {
    const auto items = MakeItems(widest);
    ASSERT_GT(GetContentWidth(items), kRow) << "it has to give up something";
    const ToolbarPlan plan = ArrangeToolbar(items, kRow);
    ExpectInOrder(plan, kRow);
    EXPECT_EQ(CountCut(items, plan), 0) << widest;
    for (const std::size_t group : {2U, 6U}) {
      const ToolbarPlace& before = plan.Places[group - 1];
      EXPECT_GE(plan.Places[group].Left - before.Left - before.Width, 4) << "groups stay apart";
    }
  }
  EXPECT_EQ(ArrangeToolbar(MakeItems(false), kRow).CaptionFont, FontId::Note) << "margins alone will do";
}

TEST(ToolbarLayout, GivesUpInOrder) {
  const CFontTable fonts(false);
  const auto items = MakeItems(true);
  int cut = 0;
  std::size_t font = 0;
  int gap = 10;
  for (int row = 700; row >= 300; row -= 4) {
    const ToolbarPlan plan = ArrangeToolbar(items, row);
    ExpectInOrder(plan, row);
    EXPECT_GE(FontIndex(plan), font) << "no larger letters in less room";
    const int gapNow = plan.Places[2].Left - plan.Places[1].Left - plan.Places[1].Width;
    if (FontIndex(plan) == font) {
      EXPECT_LE(gapNow, gap);
    }
    if (gapNow < 10) {
      EXPECT_LE(plan.Places[0].Width - plan.Places[0].CaptionWidth, 2) << "margins before gaps";
    }
    const int cutNow = CountCut(items, plan);
    EXPECT_GE(cutNow, cut);
    if (cutNow > 0) {
      EXPECT_EQ(plan.CaptionFont, kCaptionFonts.back()) << "cut last of all";
      EXPECT_LT(plan.Places[0].CaptionWidth, items[0].CaptionWidths.back()) << "and the longest first";
    }
    cut = cutNow;
    font = FontIndex(plan);
    gap = gapNow;
  }
  EXPECT_GT(cut, 0);
}

TEST_F(Toolbar, ButtonsStandInTheMiddleWithCaptionsBelow) {
  const CPaintedButton& first = Get(CommandId::ToggleUpload);
  const CPaintedButton& last = Get(CommandId::ToggleFullScreen);
  EXPECT_EQ(first.size(), QSize(GetPictureSize(PictureId::DoNotUploadPhoto).width() / 2, 26));
  EXPECT_EQ(first.y(), 14);
  EXPECT_EQ(last.geometry().right() + 1 - first.x(), Row.GetContentWidth());
  EXPECT_NEAR(first.x(), Row.width() - last.geometry().right() - 1, 1);
  EXPECT_EQ(Get(CommandId::ToggleEmail).x(), first.geometry().right() + 1);
  EXPECT_EQ(Row.GetButton(CommandId::Help), nullptr);

  const auto tips = Row.findChildren<QWidget*>("ButtonTip");
  ASSERT_EQ(tips.size(), 8);
  for (const QWidget* tip : tips) {
    EXPECT_TRUE(tip->isVisible());
    EXPECT_EQ(tip->y(), 38);
  }
  Row.hide();
  for (const QWidget* tip : tips) EXPECT_FALSE(tip->isVisible());
}

TEST_F(Toolbar, NothingMovesWhenPicturesChange) {
  const auto places = [this] {
    std::vector<QRect> all;
    for (const Slot& slot : kSlots) all.push_back(Get(slot.Id).geometry());
    return all;
  };
  for (const int width : {1000, 520}) {
    Row.resize(width, kToolbarHeight);
    for (const Slot& slot : kSlots) Get(slot.Id).SetPicture(slot.Rest, 2, false);
    const auto before = places();
    EXPECT_LE(before.back().right(), width);
    for (const Slot& slot : kSlots) Get(slot.Id).SetPicture(slot.Widest, 2, false);
    EXPECT_EQ(places(), before);
    Row.resize(width + 10, kToolbarHeight);
    Row.resize(width, kToolbarHeight);
    EXPECT_EQ(places(), before) << "nor when the row is laid out anew";
  }
}

TEST_F(Toolbar, CommandsGoToTheTarget) {
  ClickIn(Get(CommandId::RotateLeft));
  Row.setEnabled(false);
  ClickIn(Get(CommandId::RotateRight));
  EXPECT_EQ(Target.Commands, std::vector{CommandId::RotateLeft});
}

TEST_F(Toolbar, TopEdgeOnlyAsAPanelOfItsOwn) {
  const auto isPage = [&](QPoint at) { return Painted(Row).pixelColor(at) == colours::kPage; };
  EXPECT_TRUE(isPage({500, 0}));
  EXPECT_FALSE(isPage({0, 0})) << "the sides go up to the page above";
  EXPECT_FALSE(isPage({500, kToolbarHeight - 1}));
  Row.SetFullScreenLook(true);
  EXPECT_FALSE(isPage({500, 0}));
}

TEST_F(Toolbar, ButtonOfAnotherWidthKeepsItsEndsAndItsMiddle) {
  CPaintedButton button(Target, nullptr);
  button.Create({}, CommandId::ToggleUpload, ButtonFlags::None, PictureId::UploadPhoto, 2);
  const QImage whole = Painted(button);
  const int height = whole.height();
  for (const int change : {-20, 34}) {
    button.resize(whole.width() + change, height);
    const QImage other = Painted(button);
    const int middle = std::min(other.width(), whole.width()) - 20;
    EXPECT_EQ(other.copy(0, 0, 6, height), whole.copy(0, 0, 6, height));
    EXPECT_EQ(other.copy(other.width() - 6, 0, 6, height), whole.copy(whole.width() - 6, 0, 6, height));
    EXPECT_EQ(other.copy((other.width() - middle) / 2, 0, middle, height),
              whole.copy((whole.width() - middle) / 2, 0, middle, height))
        << "the icon isn't squeezed";
  }
}
