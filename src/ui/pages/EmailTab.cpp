#include "ui/pages/EmailTab.h"

#include <optional>

#include "base/Texts.h"
#include "ui/controls/Toolbar.h"
#include "ui/kit/QtText.h"
#include "ui/sharing/EmailDialog.h"
#include "ui/sharing/EmailSending.h"

namespace {

constexpr PhotoTabForm kForm{.WindowName = "EmailVue",
                             .Tab = ViewTabId::Email,
                             .Order = 300,
                             .Icon = PictureId::EmailTab,
                             .IconFrames = 2,
                             .Caption = StringId::EmailTabCaption,
                             .Flag = PhotoFlag::ToEmail,
                             .Kind = SetKind::ToEmail,
                             .Help1 = StringId::EmailTabHelp1,
                             .Help2 = StringId::EmailTabHelp2};

}  // namespace

CEmailTab::CEmailTab(CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host, QWidget* parent)
    : CPhotoTab(kForm, catalog, bar, host, parent) {}

void CEmailTab::FillButtonRow(CToolbar& row) {
  row.setAccessibleName(ToQString(LoadText(StringId::ToldEmailRow)));
  row.AddButton(0, CommandId::ClearOneEmail);
  row.AddButton(15, CommandId::ClearAllEmail);
  row.AddButton(15, CommandId::AddRecent);
  row.AddButton(50, CommandId::SendPhotos);
}

void CEmailTab::OnCommand(CommandId id) {
  if (id == CommandId::ClearOneEmail) ClearOne();
  if (id == CommandId::ClearAllEmail) ClearAll();
  if (id == CommandId::AddRecent) AddRecent();
  if (id == CommandId::SendPhotos) SendPhotos();
}

void CEmailTab::SendPhotos() {
  if (GetCount() == 0) return;
  GetHost().PrepareForJob();
  const std::vector<std::string> paths = GetPaths();
  std::optional<std::string> subject;
  if (GetCount() == 1) subject = GetPhotos().GetAsset(0).GetTitle();
  if (ShowEmailDialog(window())) SendByEmail(*window(), paths, subject);
}
