#pragma once

#include <QPointer>
#include <vector>

class QWidget;
struct MainParts;

/// The round that Tab leads the focus on: the stars, the fields, the filter bar, the tabs, the page, its
/// buttons, the help button, and the window itself, whose keys move the strip. What is hidden or disabled is
/// left out.
///
/// An edit that Tab didn't begin, but a key or a click, stays among the fields: there Tab goes from the last
/// one to the first.
class CFocusRing {
 public:
  explicit CFocusRing(const MainParts& parts) : Parts(parts) {}

  void Move(bool forward);
  /// The focus is about to go to a field otherwise.
  void Forget() { LastStop.clear(); }

 private:
  std::vector<QWidget*> ListStops() const;

  const MainParts& Parts;
  QPointer<QWidget> LastStop;  // that Move led to
};
