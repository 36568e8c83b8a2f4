#include "ui/back/PhotoField.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPointer>
#include <QScopedValueRollback>
#include <QTimer>
#include <charconv>
#include <cmath>

#include "base/Texts.h"
#include "ui/back/DateText.h"
#include "ui/back/FieldMenu.h"
#include "ui/back/FieldText.h"
#include "ui/back/PhotoBackLayout.h"
#include "ui/back/TokenList.h"
#include "ui/controls/PaintedButton.h"
#include "ui/kit/ClickFocus.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kButtonImages = 2;
constexpr int kUserDate = static_cast<int>(StampId::UserDate);

/// None for a text that is no number.
std::optional<std::int32_t> ReadNumber(const std::string& text) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace

CPhotoField::CPhotoField(const FieldForm& form, QWidget* parent)
    : QWidget(parent), Form(form), Style(Normalized(form.Style)) {
  setFocusPolicy(Qt::NoFocus);
  CFieldBoxOwner& owner = *this;
  CCommandTarget& target = *this;
  Text = std::make_unique<CFieldText>(owner, Style, form.ValueFont, this);
  Text->OnClicked = [this] { StartEdit(); };
  Text->setVisible(!HasFlag(Style, FieldStyle::HidesValue));
  if (HasFlag(Style, FieldStyle::HasButton)) {
    Button = std::make_unique<CPaintedButton>(target, this);
    Button->Create({}, CommandId::OpenFieldList, ButtonFlags::None, PictureId::FieldButton, kButtonImages);
    Button->hide();
  }
}

CPhotoField::~CPhotoField() {
  Text->CloseBox();
  if (Value != nullptr) Value->SetListener(nullptr);
}

void CPhotoField::SetValue(CFieldValue* value) {
  if (Menu) Menu->close();
  if (Value != nullptr) Value->SetListener(nullptr);
  Value = value;
  Completion.reset();
  if (Value == nullptr) {
    EndEdit();
  } else {
    Value->SetListener(this);
  }
  ShowText();
  RefreshButton();
}

// The text.

void CPhotoField::OnValueChanged() {
  if (!Updating) ShowText();
}

QString CPhotoField::MakeShownText() const {
  if (Value == nullptr) return {};
  if (Value->GetKind() != FieldKind::Date) return MakeEditText();
  return Value->GetDate() == 0 ? QString() : ToQString(FormatDate(Value->GetDate(), true));
}

QString CPhotoField::MakeEditText() const {
  switch (Value->GetKind()) {
    case FieldKind::Text:
      return ToQString(Value->GetText());
    case FieldKind::Number:
      return QString::number(Value->GetNumber());
    case FieldKind::Date:
      return ToQString(FormatEditDate(Value->GetDate()));
  }
  return {};
}

void CPhotoField::ShowText() {
  Text->SetText(MakeShownText());
  if (IsEditing()) Text->RestartEdit(MakeEditText());
}

void CPhotoField::SetShownText(const QString& text) { Text->SetText(text); }
QString CPhotoField::GetShownText() const { return Text->GetText(); }

std::string CPhotoField::GetTextNow() const {
  if (!IsEditing()) return Value->GetText();
  const std::string typed = Text->GetBox()->GetText().toStdString();
  return Completion ? Completion->TakeOverSpelling(typed) : typed;
}

void CPhotoField::SetBoxText(const std::string& text) { Text->GetBox()->SetText(ToQString(text)); }

// The edit.

bool CPhotoField::IsEditing() const { return Text->IsEditing(); }

bool CPhotoField::BeginEdit() {
  if (Value == nullptr || IsJobRunning()) return false;
  if (OnEditBegins) OnEditBegins();
  return Value != nullptr;
}

void CPhotoField::StartEdit() {
  if (!HasFlag(Style, FieldStyle::Editable) || !BeginEdit()) return;
  const bool begins = !IsEditing();
  Text->OpenBox(begins ? MakeEditText() : QString());
  if (!begins) return;
  Completion.reset();
  // A click on the button leaves the focus in the box.
  if (Button != nullptr) Button->setFocusProxy(&Text->GetBox()->GetWidget());
}

void CPhotoField::focusInEvent(QFocusEvent*) {
  StartEdit();
  if (!IsEditing()) window()->setFocus();
}

void CPhotoField::Cancel() {
  if (!IsEditing()) return;
  Text->GetBox()->SetText(Text->GetFirstText());
  Text->GetBox()->SelectAll();
}

void CPhotoField::OnBoxLeft(bool windowLeft) {
  // On some desktops a menu becomes the active window.
  if (windowLeft && QApplication::activePopupWidget() != nullptr) return;
  RunAfterJob([field = QPointer<CPhotoField>(this), windowLeft] {
    if (field) field->FinishEdit(windowLeft);
  });
}

void CPhotoField::FinishEdit(bool windowLeft) {
  if (!IsEditing() || Text->GetBox()->GetWidget().hasFocus()) return;
  CloseEdit(windowLeft);
}

void CPhotoField::CloseEdit(bool windowLeft) {
  if (!IsEditing()) return;
  CommitEdit();
  EndEdit();
  // When the window becomes active again it has the focus itself, and keys are commands.
  if (windowLeft) window()->setFocus();
}

void CPhotoField::EndEdit() {
  if (!IsEditing()) return;
  if (Button != nullptr) Button->setFocusProxy(nullptr);
  const bool hadFocus = Text->GetBox()->GetWidget().hasFocus();
  Text->CloseBox();
  if (hadFocus) window()->setFocus();
  Completion.reset();
}

void CPhotoField::CommitEdit() {
  if (!IsEditing() || Value == nullptr) return;
  if (Text->GetBox()->GetText() != Text->GetFirstText()) {
    const std::string typed = GetTextNow();
    // Who is told of the change may ask for a commit in turn, which has nothing to do then.
    Text->TakeOverText();
    const QScopedValueRollback updating(Updating, true);
    switch (Value->GetKind()) {
      case FieldKind::Text:
        TakeText(typed);
        break;
      case FieldKind::Number:
        TakeNumber(typed);
        break;
      case FieldKind::Date:
        TakeDate(typed);
        break;
    }
  }
  ShowText();
}

void CPhotoField::TakeText(const std::string& text) {
  std::string valid = text;
  if (text == Value->GetText() || !Value->ValidateText(valid)) return;
  Value->SetText(valid);
  Store();
}

void CPhotoField::TakeNumber(const std::string& text) {
  const auto number = ReadNumber(text);
  if (!number || *number == Value->GetNumber() || !Value->ValidateNumber(*number)) return;
  Value->SetNumber(*number);
  Store();
}

void CPhotoField::TakeDate(const std::string& text) {
  const std::int32_t time = ReadEditDate(text);
  const bool isSame = Value->GetDate() != 0 && IsSameDay(time, Value->GetDate());
  if (time == 0 || isSame || !Value->ValidateDate(time)) return;
  Value->SetDate(time);
  Value->SetNumber(kUserDate);
  Store();
}

void CPhotoField::Store() {
  StoreValue(*Value);
  RefreshButton();
}

void CPhotoField::OnPutIn() {
  if (Updating || Value == nullptr || !Value->HasChoices()) return;
  if (!Completion) {
    Completion.emplace(Value->GetChoices(), Value->IsMultiple() ? GetListSeparators() : std::string());
  }
  CFieldBox& box = *Text->GetBox();
  const QString text = box.GetText();
  const auto caret = static_cast<std::size_t>(text.left(box.GetCaret()).toUtf8().size());
  const std::string remainder = Completion->Complete(text.toStdString(), caret);
  if (!remainder.empty()) box.AddSelected(ToQString(remainder));
}

bool CPhotoField::OnReplacing(const QString& character) {
  if (Value == nullptr || !Value->IsMultiple()) return false;
  const std::string separators = GetListSeparators();
  if (!ToQString(separators).contains(character)) return false;
  const std::string tokens = CTokenList(GetTextNow(), separators).GetText();
  SetBoxText(tokens + character.toStdString() + " ");
  return true;
}

// The list button and its menu.

void CPhotoField::RefreshButton() {
  if (Button == nullptr) return;
  Button->setVisible(Value != nullptr && (Value->GetKind() == FieldKind::Date || Value->HasChoices()));
}

void CPhotoField::OnCommand(CommandId) { OpenMenu(false); }

bool CPhotoField::OpenListByKey() {
  if (!IsEditing() || Button == nullptr || !Button->isVisible()) return false;
  OpenMenu(true);
  return true;
}

void CPhotoField::OpenMenu(bool byKey) {
  if (!BeginEdit()) return;
  Menu = MakeFieldMenu(
      ListChoices(*Value, GetTextNow()), [this](const FieldChoice& choice) { Choose(choice); }, this);
  Menu->setAccessibleName(Button->accessibleName());
  PassOnOutsideClicks(*Menu, *Button);
  // The menu reports a choice after it has been hidden.
  connect(Menu.get(), &QMenu::aboutToHide, this, &CPhotoField::OnMenuClosed, Qt::QueuedConnection);
  const QPoint corner = Button->mapToGlobal(QPoint(Button->width(), Button->height()));
  Menu->popup(corner - QPoint(Menu->sizeHint().width(), 0));
  if (byKey) SelectFirstChoice(*Menu);
}

QMenu* CPhotoField::GetMenu() const { return Menu && Menu->isVisible() ? Menu.get() : nullptr; }

void CPhotoField::OnMenuClosed() {
  if (GetMenu() != nullptr) return;  // the next one is open already
  // The menu is kept until the next one opens: its window gets the release of the click that closed it.
  QTimer::singleShot(kWindowReturns, this, [this] {
    if (!isActiveWindow()) OnBoxLeft(true);
  });
}

void CPhotoField::Choose(const FieldChoice& choice) {
  if (Value == nullptr) return;
  const bool isDate = choice.Source != StampId::None;
  const std::string text = isDate ? std::string() : ApplyChoice(*Value, GetTextNow(), choice.Text);
  if (!isDate && IsEditing()) return SetBoxText(text);
  {
    const QScopedValueRollback updating(Updating, true);
    isDate ? ChooseDate(*Value, choice.Source) : Value->SetText(text);
    Store();
  }
  ShowText();
}

// Label and layout.

void CPhotoField::SetLabelText(const QString& text) {
  LabelText = text;
  const QString name = text.trimmed();
  setObjectName(name + QStringLiteral("Field"));
  Text->setAccessibleName(name);
  if (Button != nullptr) {
    Button->setAccessibleName(ToQString(FormatString(StringId::ToldFieldList, name.toStdString())));
  }
  update();
}

int CPhotoField::GetNaturalLabelWidth() const {
  return static_cast<int>(
      std::ceil(QFontMetricsF(GetFont(Form.GetLabelFont())).horizontalAdvance(LabelText)));
}

void CPhotoField::SetLabelWidth(int width) {
  LabelWidth = width;
  Layout();
}

void CPhotoField::SetLines(int count) { Text->SetLines(count); }

void CPhotoField::resizeEvent(QResizeEvent*) { Layout(); }

void CPhotoField::Layout() {
  const FieldLayout layout =
      LayOutField(size(), GetLabelWidth(), Button != nullptr ? Button->size() : QSize());
  Text->setGeometry(layout.Value);
  if (Button != nullptr) Button->move(layout.Button.topLeft());
  update();
}

void CPhotoField::paintEvent(QPaintEvent*) {
  if (!HasFlag(Style, FieldStyle::Labelled)) return;
  CDevicePainter painter(*this);
  const int height = CFontTable::GetInstance().GetCellHeight(Form.GetLabelFont());
  const QRect area(0, painter.Scaled(kFieldPadding), painter.GetArea().width(), painter.Scaled(height));
  painter.DrawText(area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                   GetFont(Form.GetLabelFont()), colours::kInk, LabelText);
}
