#include "ui/sharing/LoginDialog.h"

#include <string.h>

#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>

#include "sharing/ServiceSession.h"
#include "ui/controls/PaintedButton.h"
#include "ui/kit/InputBlock.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SmallWindow.h"

namespace {

// Pixels.
constexpr QSize kWindow(382, 292);
constexpr QRect kPrompt(12, 24, 240, 38);
constexpr QPoint kSign(264, 14);
constexpr QRect kUserNameLabel(12, 92, 82, 16);
constexpr QRect kUserName(95, 88, 271, 24);
constexpr QRect kPasswordLabel(12, 124, 82, 16);
constexpr QRect kPassword(95, 120, 271, 24);
constexpr QRect kJoinHint(12, 164, 242, 66);
constexpr QRect kJoin(259, 180, 110, 28);
constexpr QRect kLogin(96, 250, 88, 28);
constexpr QRect kCancel(198, 250, 88, 28);

/// Overwrites the characters that a text shares with the field that it was taken from.
void WipeShared(const QString& text) {
  ::explicit_bzero(const_cast<QChar*>(text.constData()),
                   static_cast<std::size_t>(text.size()) * sizeof(QChar));
}

class CLoginDialog : public QDialog, private CCommandTarget {
 public:
  CLoginDialog(QWidget& mainWindow, CServiceDesktop& desktop, LoginEntry& entry);
  ~CLoginDialog() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void AddField(QLineEdit& field, const QRect& place, StringId label, const QRect& labelPlace);
  void AddButton(CPaintedButton& button, const QRect& place, CommandId id, StringId text);
  void OnCommand(CommandId id) override;
  void ReadFields();

  CServiceDesktop& Desktop;
  LoginEntry& Entry;
  // In the order in which Tab goes through them.
  QLineEdit UserName{this};
  QLineEdit Password{this};
  CPaintedButton Join{*this, this};
  CPaintedButton Login{*this, this};
  CPaintedButton Cancel{*this, this};
};

CLoginDialog::CLoginDialog(QWidget& mainWindow, CServiceDesktop& desktop, LoginEntry& entry)
    : QDialog(&mainWindow), Desktop(desktop), Entry(entry) {
  setObjectName(window_names::kLogin);
  setWindowTitle(LoadWindowText(StringId::LoginTitle));
  setFixedSize(kWindow);

  AddWindowText(*this, kPrompt, FontId::Panel, LoadWindowText(StringId::LoginPrompt));
  AddField(UserName, kUserName, StringId::LoginUserName, kUserNameLabel);
  AddField(Password, kPassword, StringId::LoginPassword, kPasswordLabel);
  Password.setEchoMode(QLineEdit::Password);
  UserName.setText(ToQString(entry.UserName));
  Password.setText(ToQString(entry.Password.Get()));
  AddWindowText(*this, kJoinHint, FontId::Panel, LoadWindowText(StringId::LoginJoinHint));
  AddButton(Join, kJoin, CommandId::JoinService, StringId::LoginJoinButton);
  AddButton(Login, kLogin, CommandId::EndEdit, StringId::LoginButton);
  AddButton(Cancel, kCancel, CommandId::Cancel, StringId::Cancel);
  (entry.UserName.empty() ? UserName : Password).setFocus();
  CentreOn(*this, mainWindow);
}

CLoginDialog::~CLoginDialog() { WipeShared(Password.text()); }

void CLoginDialog::AddField(QLineEdit& field, const QRect& place, StringId label, const QRect& labelPlace) {
  AddWindowText(*this, labelPlace, FontId::Panel, LoadWindowText(label))->setBuddy(&field);
  field.setAccessibleName(LoadWindowText(label));
  field.setFont(GetFont(FontId::Panel));
  field.setGeometry(place);
}

void CLoginDialog::AddButton(CPaintedButton& button, const QRect& place, CommandId id, StringId text) {
  button.EnableTip(false);
  button.CreateText(place, id, LoadWindowText(text), ButtonFlags::None, id == CommandId::EndEdit);
}

void CLoginDialog::ReadFields() {
  Entry.UserName = UserName.text().toStdString();
  const QString password = Password.text();
  QByteArray bytes = password.toUtf8();
  Entry.Password.Assign({bytes.constData(), static_cast<std::size_t>(bytes.size())});
  ::explicit_bzero(bytes.data(), static_cast<std::size_t>(bytes.size()));
}

void CLoginDialog::OnCommand(CommandId id) {
  if (id == CommandId::JoinService) {
    CServiceSession::OpenJoinPage(Desktop);
    return;
  }
  ReadFields();
  if (id == CommandId::Cancel) return reject();
  if (CheckLoginEntry(Entry)) return accept();
  (Entry.UserName.empty() ? UserName : Password).setFocus();
}

void CLoginDialog::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) return QDialog::keyPressEvent(event);
  if (!event->isAutoRepeat()) Login.click();
}

void CLoginDialog::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.drawPixmap(kSign, GetPicture(PictureId::ServiceSign, devicePixelRatioF()));
}

}  // namespace

bool ShowLoginDialog(QWidget& mainWindow, CServiceDesktop& desktop, LoginEntry& entry) {
  return CLoginDialog(mainWindow, desktop, entry).exec() == QDialog::Accepted;
}
