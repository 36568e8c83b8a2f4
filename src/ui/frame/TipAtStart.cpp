#include "ui/frame/TipAtStart.h"

#include <QCheckBox>
#include <QMessageBox>

#include "base/Settings.h"
#include "base/Texts.h"
#include "ui/kit/QtText.h"

namespace {

constexpr const char* kDoNotShowSetting = "DontShowAddFolderTip";

}  // namespace

void ShowAddFolderTip(QWidget* parent) {
  CSettingsRef settings;
  if (settings.GetBool(kDoNotShowSetting)) return;
  QMessageBox box(parent);
  box.setObjectName(QStringLiteral("AddFolderTip"));
  box.setTextFormat(Qt::PlainText);
  box.setWindowTitle(ToQString(LoadExpandedString(StringId::AddFolderTipTitle)));
  box.setText(ToQString(LoadExpandedString(StringId::AddFolderTip)));
  box.addButton(QMessageBox::Ok);
  auto* doNotShow = new QCheckBox(ToQString(LoadExpandedString(StringId::DoNotShowAgain)));
  box.setCheckBox(doNotShow);
  box.exec();
  settings.SetBool(kDoNotShowSetting, doNotShow->isChecked());
}
