#include <QScopedValueRollback>
#include <QTimer>

#include "ui/back/FieldChoices.h"
#include "ui/back/FieldText.h"
#include "ui/back/PhotoField.h"
#include "ui/back/TextShortening.h"
#include "ui/kit/Colours.h"
#include "ui/kit/Job.h"
#include "ui/kit/OutsideClicks.h"
#include "ui/kit/PaintedButton.h"
#include "ui/kit/QtText.h"

// The list button of a field and its menu.

namespace {

constexpr FontId kMenuFont = FontId::Label;
constexpr double kWidestEntry = 300;  // longer texts lose their ends
constexpr QColor kDisabledInk(113, 117, 125);

/// As an entry shows just these characters.
QString MakeEntryText(const std::string& text) {
  QString entry = ToQString(text);
  entry.replace(u'\t', u' ').replace(u'\n', u' ');
  entry = ShortenLine(entry, false, QFontMetricsF(GetFont(kMenuFont)), kWidestEntry);
  return entry.replace(QStringLiteral("&"), QStringLiteral("&&"));
}

void Dress(QMenu& menu) {
  QPalette palette = menu.palette();
  // Of all groups: what stays the desktop's may be dark.
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    const QColor ink = group == QPalette::Disabled ? kDisabledInk : colours::kInk;
    for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button, QPalette::Light}) {
      palette.setColor(group, role, Qt::white);
    }
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
      palette.setColor(group, role, ink);
    }
    palette.setColor(group, QPalette::Highlight, colours::kSelection);
  }
  menu.setPalette(palette);
  menu.setFont(GetFont(kMenuFont));
  // A long list scrolls rather than fill the screen with columns.
  menu.setStyleSheet(QStringLiteral("QMenu { menu-scrollable: 1; }"));
}

}  // namespace

void CPhotoField::RefreshButton() {
  if (Button == nullptr) return;
  Button->setVisible(Value != nullptr && (Value->GetKind() == FieldKind::Date || Value->HasChoices()));
}

void CPhotoField::OnCommand(CommandId) { OpenMenu(); }

void CPhotoField::OpenMenu() {
  if (!BeginEdit()) return;
  Menu = std::make_unique<QMenu>(this);
  Dress(*Menu);
  PassOnOutsideClicks(*Menu, *Button);
  for (const FieldChoice& choice : ListChoices(*Value, GetTextNow())) {
    QAction* entry = Menu->addAction(MakeEntryText(choice.Text));
    entry->setCheckable(true);
    entry->setChecked(choice.Checked);
    entry->setEnabled(choice.Enabled);
    const auto choose = [this, text = choice.Text, source = choice.Source] {
      if (source != StampId::None) {
        ChooseDateFrom(source);
      } else {
        Choose(text);
      }
    };
    connect(entry, &QAction::triggered, this, choose);
  }
  // Its choice comes after it has been hidden.
  connect(Menu.get(), &QMenu::aboutToHide, this, &CPhotoField::OnMenuClosed, Qt::QueuedConnection);
  const QPoint corner = Button->mapToGlobal(QPoint(Button->width(), Button->height()));
  Menu->popup(corner - QPoint(Menu->sizeHint().width(), 0));
}

QMenu* CPhotoField::GetMenu() const { return Menu && Menu->isVisible() ? Menu.get() : nullptr; }

void CPhotoField::OnMenuClosed() {
  if (GetMenu() != nullptr) return;  // the next one is open already
  // The menu is kept until the next one opens: the release of the click that closed it comes to its window.
  QTimer::singleShot(kWindowReturns, this, [this] {
    if (!isActiveWindow()) OnBoxLeft(true);
  });
}

void CPhotoField::Choose(const std::string& text) {
  if (Value == nullptr) return;
  const std::string changed = ApplyChoice(*Value, GetTextNow(), text);
  if (IsEditing()) return SetBoxText(changed);
  {
    const QScopedValueRollback updating(Updating, true);
    Value->SetText(changed);
    Store();
  }
  ShowText();
}

void CPhotoField::ChooseDateFrom(StampId source) {
  if (Value == nullptr) return;
  {
    const QScopedValueRollback updating(Updating, true);
    ChooseDate(*Value, source);
    Store();
  }
  ShowText();
}
