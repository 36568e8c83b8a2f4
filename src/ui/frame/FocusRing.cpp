#include "ui/frame/FocusRing.h"

#include <QWidget>
#include <algorithm>

#include "ui/back/FilterBar.h"
#include "ui/back/PhotoBack.h"
#include "ui/controls/DropControl.h"
#include "ui/controls/PaintedButton.h"
#include "ui/controls/Toolbar.h"
#include "ui/frame/MainParts.h"
#include "ui/kit/ClickFocus.h"
#include "ui/pages/ViewTabBar.h"

std::vector<QWidget*> CFocusRing::ListStops() const {
  std::vector<QWidget*> stops = Parts.PhotoBack->ListFocusStops();
  const CFilterBar& bar = *Parts.FilterBar;
  stops.insert(stops.end(), {&bar.GetFolderControl(), &bar.GetFindControl(), &bar.GetRatingControl(),
                             &bar.GetSortControl(), Parts.TabBar.get()});
  const TabPage& shown = Parts.GetShownPage();
  if (shown.Page->focusPolicy() != Qt::NoFocus) stops.push_back(shown.Page);
  for (int i = 0; i < shown.ToolRow->CountButtons(); ++i) stops.push_back(&shown.ToolRow->GetButtonAt(i));
  stops.insert(stops.end(), {Parts.HelpButton.get(), Parts.Window});
  std::erase_if(stops, [](const QWidget* stop) { return !stop->isVisible() || !stop->isEnabled(); });
  return stops;
}

void CFocusRing::Move(bool forward) {
  const std::vector<QWidget*> stops = ListStops();
  const QWidget* const focus = Parts.Window->focusWidget();
  // The last stop, the window, is around all others.
  const auto now = std::find_if(stops.begin(), stops.end() - 1, [focus](const QWidget* stop) {
    return stop == focus || stop->isAncestorOf(focus);
  });
  if (Parts.PhotoBack->IsEditing() && LastStop != *now) {
    Forget();
    return Parts.PhotoBack->FocusNextField(forward);
  }
  const auto count = static_cast<std::ptrdiff_t>(stops.size());
  const std::ptrdiff_t step = forward ? 1 : count - 1;
  LastStop = stops[static_cast<std::size_t>((now - stops.begin() + step) % count)];
  GiveFocus(*LastStop, forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}
