#include "ui/sharing/EmailDialog.h"

#include <QCheckBox>
#include <QMessageBox>
#include <QPushButton>

#include "base/Settings.h"
#include "base/Texts.h"
#include "ui/kit/MessageBox.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"

namespace {

constexpr const char* kDoNotShowSetting = "DontShowEmailWarning";

QString LoadParagraphs() {
  std::string text = LoadExpandedString(StringId::EmailingIntroduction);
  for (const StringId id : {StringId::EmailingReducedCopies, StringId::EmailingPrograms}) {
    text += "\n\n" + LoadExpandedString(id);
  }
  return ToQString(text);
}

}  // namespace

bool ShowEmailDialog(QWidget* parent) {
  CSettingsRef settings;
  if (settings.GetBool(kDoNotShowSetting)) return true;
  QMessageBox box(parent);
  box.setObjectName(QStringLiteral("EmailDialog"));
  box.setWindowTitle(ToQString(LoadExpandedString(StringId::EmailingTitle)));
  box.setIconPixmap(GetPicture(PictureId::Emailing, box.devicePixelRatioF()));
  SetBoxText(box, LoadParagraphs());
  auto* doNotShow = new QCheckBox(ToQString(LoadExpandedString(StringId::DoNotShowAgain)));
  box.setCheckBox(doNotShow);
  const QPushButton* ok = box.addButton(QMessageBox::Ok);
  box.setEscapeButton(box.addButton(QMessageBox::Cancel));
  box.setDefaultButton(QMessageBox::Ok);
  box.exec();
  if (box.clickedButton() != ok) return false;
  settings.SetBool(kDoNotShowSetting, doNotShow->isChecked());
  return true;
}
