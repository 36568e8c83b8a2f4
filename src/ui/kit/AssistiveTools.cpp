#include "ui/kit/AssistiveTools.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>
#include <utility>

#include "ui/kit/Application.h"
#include "ui/kit/Job.h"

namespace {

QAccessibleInterface* MakeFaceOf(const QString&, QObject* object) {
  auto* maker = dynamic_cast<CFaceMaker*>(object);
  return maker != nullptr ? maker->MakeFace() : nullptr;
}

bool CanBeClicked(const QWidget& widget) {
  const QWidget* dialog = QApplication::activeModalWidget();
  return widget.isVisible() && widget.isEnabled() && (dialog == nullptr || dialog == widget.window());
}

}  // namespace

CFaceMaker::CFaceMaker() { QAccessible::installFactory(&MakeFaceOf); }  // once, however often it is called

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
