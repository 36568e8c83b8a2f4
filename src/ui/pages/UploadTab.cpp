#include "ui/pages/UploadTab.h"

#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "sharing/UploadRun.h"
#include "ui/controls/Toolbar.h"
#include "ui/kit/InputBlock.h"
#include "ui/kit/QtText.h"
#include "ui/sharing/ServiceWindows.h"

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

/// The window and its commands take no input while this object lives.
class CBlockedHost {
 public:
  explicit CBlockedHost(CPhotoTabHost& host) : Host(host) { Host.SetInputBlocked(true); }
  ~CBlockedHost() { Host.SetInputBlocked(false); }
  CBlockedHost(const CBlockedHost&) = delete;
  CBlockedHost& operator=(const CBlockedHost&) = delete;

 private:
  CPhotoTabHost& Host;
  const CInputBlock Input{ArrowPlace::AnywhereBesideAnOpenWindow};
};

}  // namespace

/// The photos of the page, as the upload takes them.
class CUploadTab::CQueue : public CUploadQueue {
 public:
  explicit CQueue(CUploadTab& tab) : Tab(tab) {}

  int GetCount() const override { return Tab.GetCount(); }
  PhotoToUpload GetFirst() const override { return DescribePhotoToUpload(Tab.GetPhotos().GetAsset(0)); }
  void Remove(const PhotoToUpload& photo) override {
    Tab.RemovePhoto(Tab.GetCatalog().FindAssetById(photo.AssetID));
  }

 private:
  CUploadTab& Tab;
};

CUploadTab::CUploadTab(CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host, QWidget* parent)
    : CPhotoTab(kForm, catalog, bar, host, parent) {}

void CUploadTab::FillButtonRow(CToolbar& row) {
  row.setAccessibleName(ToQString(LoadText(StringId::ToldUploadRow)));
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
  if (id == CommandId::UploadPhotos) RunUpload(false);
  if (id == CommandId::OrderPrints) RunUpload(true);
}

void CUploadTab::RunUpload(bool orderPrints) {
  if (GetCount() == 0) return;
  GetHost().PrepareForJob();  // a caption that is being typed goes with its photo
  const CBlockedHost blocked(GetHost());
  CServiceWindows windows(*window(), [this] { return GetHost().IsClosing(); });
  CQueue queue(*this);
  ::RunUpload(queue, windows, orderPrints);
}
