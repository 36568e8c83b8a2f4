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
  /// of `picture`, or without one that of the command. The button is the row's.
  CPaintedButton& AddButton(int gap, CommandId id, StringId picture = {});

  /// Null if the row has no such button.
  CPaintedButton* GetButton(CommandId id);

  /// With a top edge, as a panel of its own, and not below a page.
  void SetFullScreenLook(bool on);

  /// The width of all buttons and the gaps between them, when nothing has to be given up.
  int GetContentWidth() const;

  /// Puts the buttons in their places. The row does so itself when its size changes; it is called after a
  /// picture has replaced one of another width.
  void LayOut();

 protected:
  /// A quick second click beside a button is none in what the row stands on.
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  struct Item {
    std::unique_ptr<CPaintedButton> Button;
    int Gap;
  };
  std::vector<ToolbarItem> MeasureItems() const;

  CCommandTarget& Target;
  std::vector<Item> Items;  // from left to right
  bool FullScreenLook = false;
};
