#include "ui/pages/EmailTab.h"

#include "ui/kit/Toolbar.h"

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
  row.setAccessibleName(QStringLiteral("What to do with the photos to mail"));
  row.AddButton(0, CommandId::ClearOneEmail);
  row.AddButton(15, CommandId::ClearAllEmail);
  row.AddButton(15, CommandId::AddRecent);
  row.AddButton(50, CommandId::SendPhotos);
}

void CEmailTab::OnCommand(CommandId id) {
  if (id == CommandId::ClearOneEmail) ClearOne();
  if (id == CommandId::ClearAllEmail) ClearAll();
  if (id == CommandId::AddRecent) AddRecent();
}
