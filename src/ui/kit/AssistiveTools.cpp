#include "ui/kit/AssistiveTools.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>
#include <utility>

#include "ui/kit/Application.h"

namespace {

QAccessibleInterface* MakeFaceOf(const QString&, QObject* object) {
  auto* maker = dynamic_cast<CFaceMaker*>(object);
  return maker != nullptr ? maker->MakeFace() : nullptr;
}

bool CanBeClicked(const QWidget& widget) {
  const QWidget* dialog = QApplication::activeModalWidget();
  return widget.isVisible() && widget.isEnabled() && (dialog == nullptr || dialog == widget.window());
}

QWidget* GetFocusedPart(QWidget* focus) {
  const auto* holder = dynamic_cast<const CFocusHolder*>(focus);
  QWidget* part = holder != nullptr ? holder->GetFocusedPart() : nullptr;
  return part != nullptr ? part : focus;
}

}  // namespace

CFaceMaker::CFaceMaker() { QAccessible::installFactory(&MakeFaceOf); }  // once, however often it is called

bool CountsAsFocused(const QWidget& widget) { return GetFocusedPart(QApplication::focusWidget()) == &widget; }

void TellFocus() {
  if (!QAccessible::isActive()) return;
  QMetaObject::invokeMethod(
      qApp,
      [] {
        QWidget* focus = QApplication::activePopupWidget();
        if (focus == nullptr) focus = GetFocusedPart(QApplication::focusWidget());
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(focus);
        if (face == nullptr) return;
        QAccessibleInterface* item = face->focusChild();
        TellTools(item != nullptr ? *item : *face, QAccessible::Focus);
      },
      Qt::QueuedConnection);
}

void TellTools(QAccessibleInterface& face, QAccessible::Event what) {
  QAccessibleEvent event(&face, what);
  QAccessible::updateAccessibility(&event);
}

void TellTools(QWidget& widget, QAccessible::Event what) {
  if (!QAccessible::isActive()) return;
  if (QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&widget)) TellTools(*face, what);
}

void DoAsClicked(QWidget& widget, std::function<void()> work) {
  const QPointer<QWidget> clicked(&widget);
  QMetaObject::invokeMethod(
      &widget,
      [clicked, work = std::move(work)] {
        RunAfterJob([=] {
          if (clicked && CanBeClicked(*clicked)) CApplication::GetInstance()->RunGuarded(work);
        });
      },
      Qt::QueuedConnection);
}
