#pragma once

#include <QWidget>
#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "resources/StringIds.h"
#include "ui/controls/PaintedButton.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/PaintedGroup.h"

/// How a row of buttons makes do with the width it has. Captions stand under their buttons, so each button
/// is as wide as its caption and a margin. Where that is too much the row gives up, in this order: what the
/// pictures have beyond a least margin, the gaps between groups, the size of the letters, and only then the
/// ends of the longest captions. All widths are pixels of the layout.

inline constexpr int kToolbarHeight = 55;

/// The letters of the captions, from the usual ones down.
inline constexpr std::array kCaptionFonts = {FontId::Note, FontId::Band, FontId::Small};

struct ToolbarItem {
  int Gap = 0;           // in front of the button
  int PictureWidth = 0;  // of the widest image that it shows
  std::array<int, kCaptionFonts.size()> CaptionWidths{};
};

struct ToolbarPlace {
  int Left = 0;
  int Width = 0;
  int CaptionWidth = 0;  // what the caption may take
};

struct ToolbarPlan {
  FontId CaptionFont = kCaptionFonts.front();
  std::vector<ToolbarPlace> Places;  // one for each item
};

/// The width of all buttons and gaps as they are drawn.
int GetContentWidth(const std::vector<ToolbarItem>& items);

/// The buttons as a group in the middle of a row of that width.
ToolbarPlan ArrangeToolbar(const std::vector<ToolbarItem>& items, int rowWidth);

/// A row of picture buttons with their captions below, in the middle of a bordered panel. It has the height
/// kToolbarHeight; whoever places it gives it a width. Commands of the buttons go straight to the target,
/// which outlives the row. To assistive tools it is a tool bar of its buttons, without their captions.
class CToolbar : public QWidget, public CPaintedGroup {
 public:
  CToolbar(CCommandTarget& target, QWidget* parent);

  /// Puts a button at the row's end, `gap` pixels behind the one before. Picture and texts have the number
  /// of `picture`, or without one that of the command. `other` is what may replace the picture later: the
  /// place of a button has room for either, so that nothing moves under the pointer. The button is the row's.
  CPaintedButton& AddButton(int gap, CommandId id, StringId picture = {}, PictureId other = {});

  /// Null if the row has no such button.
  CPaintedButton* GetButton(CommandId id);
  /// The buttons from left to right.
  int CountButtons() const { return static_cast<int>(Items.size()); }
  CPaintedButton& GetButtonAt(int index) const { return *Items[static_cast<std::size_t>(index)].Button; }

  /// With a top edge, as a panel of its own, and not below a page.
  void SetFullScreenLook(bool on);

  /// The width of all buttons and the gaps between them, when nothing has to be given up.
  int GetContentWidth() const;

  QAccessible::Role GetGroupRole() const override { return QAccessible::ToolBar; }
  std::vector<GroupPart> ListParts() const override;

 protected:
  /// A quick second click beside a button is none in what the row stands on.
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  struct Item {
    std::unique_ptr<CPaintedButton> Button;
    ToolbarItem Place;
  };
  std::vector<ToolbarItem> GetPlaces() const;
  void LayOut();

  CCommandTarget& Target;
  std::vector<Item> Items;  // from left to right
  bool FullScreenLook = false;
};
