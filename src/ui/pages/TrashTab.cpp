#include "ui/pages/TrashTab.h"

#include "base/Texts.h"
#include "catalog/ThumbnailCache.h"
#include "editing/RemovePhotos.h"
#include "ui/controls/Toolbar.h"
#include "ui/kit/Job.h"
#include "ui/kit/JobProgress.h"
#include "ui/kit/QtText.h"
#include "ui/kit/WaitCursor.h"

namespace {

constexpr PhotoTabForm kForm{.WindowName = "TossedVue",
                             .Tab = ViewTabId::Trash,
                             .Order = 400,
                             .Icon = PictureId::TrashTab,
                             .IconFrames = 1,
                             .Caption = StringId::TrashTabCaption,
                             .Flag = PhotoFlag::Tossed,
                             .Kind = SetKind::Deleted};

constexpr CJobProgress::Texts kProgress{StringId::EmptyTrashTitle, StringId::EmptyingTrash,
                                        StringId::StopEmptying};

}  // namespace

CTrashTab::CTrashTab(CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host, QWidget* parent)
    : CPhotoTab(kForm, catalog, bar, host, parent) {}

void CTrashTab::FillButtonRow(CToolbar& row) {
  row.setAccessibleName(ToQString(LoadText(StringId::ToldTrashRow)));
  row.AddButton(0, CommandId::Restore);
  row.AddButton(20, CommandId::EmptyTrash);
}

void CTrashTab::OnCommand(CommandId id) {
  if (id == CommandId::Restore) Restore();
  if (id == CommandId::EmptyTrash) EmptyTrash();
}

void CTrashTab::Restore() {
  if (GetSelected() >= 0) RemovePhoto(GetPhotos().GetAsset(GetSelected()));
}

void CTrashTab::EmptyTrash() {
  const CWaitCursor waiting;
  GetHost().PrepareForJob();
  const std::vector<std::int32_t> photos = ListPhotos();
  CJobProgress progress(*window(), kProgress, GetCount());
  const auto goesOn = [&progress](std::size_t done) { return progress.Report(static_cast<int>(done)); };
  const auto remove = [&] { RemovePhotos(GetCatalog(), *CThumbnailCache::GetInstance(), photos, goesOn); };
  ChangePhotos(photos, [&] { RunJob(remove, [&progress] { progress.Stop(); }); });
}
