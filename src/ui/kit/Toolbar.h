#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "resources/StringIds.h"
#include "ui/kit/PaintedButton.h"
#include "ui/kit/ToolbarLayout.h"

/// A row of picture buttons with their captions below, in the middle of a bordered panel. It has the height
/// kToolbarHeight; whoever places it gives it a width. Commands of the buttons go straight to the target,
/// which outlives the row.
class CToolbar : public QWidget {
 public:
  CToolbar(CCommandTarget& target, QWidget* parent);

  /// Puts a button at the row's end, `gap` pixels behind the one before. Picture and texts have the number
  /// of `picture`, or without one that of the command. `other` is what may replace the picture later: the
  /// place of a button has room for either, so that nothing moves under the pointer. The button is the row's.
  CPaintedButton& AddButton(int gap, CommandId id, StringId picture = {}, PictureId other = {});

  /// Null if the row has no such button.
  CPaintedButton* GetButton(CommandId id);

  /// With a top edge, as a panel of its own, and not below a page.
  void SetFullScreenLook(bool on);

  /// The width of all buttons and the gaps between them, when nothing has to be given up.
  int GetContentWidth() const;

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
