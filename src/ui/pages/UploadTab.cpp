#include "ui/pages/UploadTab.h"

#include "ui/kit/Toolbar.h"

namespace {

constexpr PhotoTabForm kForm{.WindowName = "QuillaraVue",
                             .Tab = ViewTabId::Upload,
                             .Order = 200,
                             .Icon = PictureId::UploadTab,
                             .IconFrames = 2,
                             .Caption = StringId::UploadTabCaption,
                             .Flag = PhotoFlag::ToRemotePrint,
                             .Kind = SetKind::ToRemotePrint,
                             .Help1 = StringId::UploadTabHelp1,
                             .Help2 = StringId::UploadTabHelp2};

}  // namespace

CUploadTab::CUploadTab(CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host, QWidget* parent)
    : CPhotoTab(kForm, catalog, bar, host, parent) {}

void CUploadTab::FillButtonRow(CToolbar& row) {
  row.setAccessibleName(QStringLiteral("What to do with the photos to print or upload"));
  row.AddButton(0, CommandId::ClearOneUpload);
  row.AddButton(15, CommandId::ClearAllUpload);
  row.AddButton(15, CommandId::AddRecent);
  row.AddButton(40, CommandId::UploadPhotos);
  row.AddButton(15, CommandId::OrderPrints);
}

void CUploadTab::OnCommand(CommandId id) {
  if (id == CommandId::ClearOneUpload) ClearOne();
  if (id == CommandId::ClearAllUpload) ClearAll();
  if (id == CommandId::AddRecent) AddRecent();
}
