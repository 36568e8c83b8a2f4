#include "ui/controls/ButtonFace.h"

#include <memory>

#include "ui/controls/PaintedButton.h"
#include "ui/kit/PaintedGroup.h"

namespace {

class CButtonFace final : public CLeafFace {
 public:
  explicit CButtonFace(CPaintedButton& button) : CLeafFace(&button, QAccessible::Button) {}

  QString text(QAccessible::Text text) const override {
    const CPaintedButton* button = GetButton();
    if (button == nullptr) return {};
    if (text == QAccessible::Accelerator) return button->GetKeyName();
    return text == QAccessible::Description ? button->accessibleDescription() : CLeafFace::text(text);
  }

  QAccessible::State state() const override {
    QAccessible::State state = CLeafFace::state();
    const CPaintedButton* button = GetButton();
    state.pressed = button != nullptr && button->GetState() == ButtonState::Pressed;
    state.defaultButton = button != nullptr && button->HasDefaultLook();
    return state;
  }

  QStringList actionNames() const override {
    const QStringList press = widget()->isEnabled() ? QStringList(pressAction()) : QStringList();
    return press + CLeafFace::actionNames();
  }

  void doAction(const QString& action) override {
    CPaintedButton* button = GetButton();
    if (action != pressAction()) return CLeafFace::doAction(action);
    if (button != nullptr) DoAsClicked(*button, [button] { button->click(); });
  }

  QStringList keyBindingsForAction(const QString& action) const override {
    const QString key = text(QAccessible::Accelerator);
    return action == pressAction() && !key.isEmpty() ? QStringList(key) : QStringList();
  }

 private:
  CPaintedButton* GetButton() const { return dynamic_cast<CPaintedButton*>(object()); }
};

}  // namespace

QAccessibleInterface* MakeButtonFace(CPaintedButton& button) {
  return std::make_unique<CButtonFace>(button).release();
}
