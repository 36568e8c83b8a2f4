#include "ui/controls/DropFace.h"

#include <memory>

#include "ui/controls/DropControl.h"
#include "ui/kit/ClickFocus.h"
#include "ui/kit/ShownText.h"

namespace {

class CDropFace final : public CGroupFace, public CShownText {
 public:
  explicit CDropFace(CDropControl& control) : CGroupFace(control) {}

  using CShownText::text;
  QString text(QAccessible::Text text) const override {
    return text == QAccessible::Value ? GetShownText() : CGroupFace::text(text);
  }
  QString GetShownText() const override {
    return GetControl() != nullptr ? GetControl()->GetSpelledText() : QString();
  }
  QAccessible::Role role() const override { return QAccessible::ComboBox; }
  QAccessible::State state() const override {
    QAccessible::State state = CGroupFace::state();
    if (GetControl() == nullptr) return state;
    state.expandable = true;
    state.expanded = GetControl()->GetOpenList() != nullptr;
    state.hasPopup = true;
    state.editable = GetControl()->HasEditBox();
    return state;
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    const bool isEdited = GetControl() != nullptr && GetControl()->IsEditing();
    if (type == QAccessible::TextInterface && !isEdited) return static_cast<QAccessibleTextInterface*>(this);
    return CGroupFace::interface_cast(type);
  }

  QStringList actionNames() const override {
    QStringList names{showMenuAction()};
    if (GetControl() != nullptr && GetControl()->HasEditBox()) names += pressAction();
    return names + CGroupFace::actionNames();
  }
  void doAction(const QString& action) override {
    CDropControl* control = GetControl();
    if (control == nullptr || !actionNames().contains(action)) return;
    DoAsClicked(*control, [control, action] {
      if (action == showMenuAction()) return control->OpenListByKey();
      if (action == pressAction() || control->IsEditing()) return control->Activate();
      GiveFocus(*control, Qt::TabFocusReason);
    });
  }

 private:
  CDropControl* GetControl() const { return dynamic_cast<CDropControl*>(object()); }
};

}  // namespace

QAccessibleInterface* MakeDropFace(CDropControl& control) {
  return std::make_unique<CDropFace>(control).release();
}
