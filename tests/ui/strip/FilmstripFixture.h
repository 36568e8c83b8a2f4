#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "catalog/ThumbnailCache.h"
#include "sets/QuerySet.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"
#include "ui/strip/StripWindow.h"

/// Notes what the strip says.
class CNotingHost : public CFilmstripHost {
 public:
  void OnCommand(CommandId id) override {
    Commands.push_back(id);
    if (OnMove) OnMove();
  }
  void OnCurrentPhotoChanged(const CAssetRecord* record) override {
    Shown.push_back(record != nullptr ? record->GetAssetID() : -1);
  }
  void OnSlideShowStateChanged() override { ++ShowChanges; }
  void ToggleInTab(const CAssetRecord& photo, ViewTabId tab, bool extendRange) override {
    Toggled.push_back({photo.GetAssetID(), tab, extendRange});
    CAssetRecord(photo).SetFlag(tab == ViewTabId::Email ? PhotoFlag::ToEmail : PhotoFlag::ToRemotePrint,
                                true);
  }
  void SelectTab(ViewTabId tab) override { Selected.push_back(tab); }
  std::string GetFolderLabel(const std::string& folder) const override { return "label of " + folder; }

  struct Toggle {
    std::int32_t Photo;
    ViewTabId Tab;
    bool ExtendRange;
    friend bool operator==(const Toggle&, const Toggle&) = default;
  };
  std::function<void()> OnMove;  // what a command does
  std::vector<CommandId> Commands;
  std::vector<std::int32_t> Shown;
  std::vector<Toggle> Toggled;
  std::vector<ViewTabId> Selected;
  int ShowChanges = 0;
};

/// A strip window 1000 pixels wide, so of seven cells, over a catalog whose photos have thumbnails but no
/// files: what opened a file would find nothing.
class CFilmstripFixture : public testing::Test {
 protected:
  static constexpr int kVisible = 7;
  static constexpr int kSlideTime = 151;  // milliseconds for a cell

  CFilmstripFixture() {
    Catalog.Open(Scratch.File("vellumar.db"));
    Thumbnails.Open(Scratch.File("thumbnails.db"), Catalog.GetDBGUID());
    Window.resize(1000, kStripWindowHeight);
    Window.show();
  }
  ~CFilmstripFixture() override { Strip.SetPhotoSet(nullptr); }

  CFilmstripFixture(const CFilmstripFixture&) = delete;
  CFilmstripFixture& operator=(const CFilmstripFixture&) = delete;

  static QColor HueOf(int photo) { return QColor::fromHsv(photo * 40 % 360, 255, 200); }

  /// Photo i was taken in month i / 3 and has i % 5 stars.
  void AddPhotos(int count) {
    CAutoCommitPause catalogPause(Catalog);
    CAutoCommitPause cachePause(Thumbnails);
    for (int i = 0; i < count; ++i) {
      CAssetRecord record = Catalog.AddAsset("/nowhere/IMG_" + std::to_string(i) + ".jpg");
      record.GetStamps(StampId::Date).SetDate(DateOf(i), 0, StampId::None);
      record.GetStamps(StampId::Rating).SetNumber(i % 5, 0);
      const std::string jpeg = MakePhoto(140, 105, HueOf(i));
      Thumbnails.StoreBytes(record.GetAssetID(), std::vector<std::uint8_t>(jpeg.begin(), jpeg.end()));
    }
    catalogPause.Commit();
    cachePause.Commit();
  }

  static std::int32_t DateOf(int photo) {
    std::tm local{};
    local.tm_year = 103;
    local.tm_mon = photo / 3;
    local.tm_mday = 1 + photo % 3;
    local.tm_hour = 12;
    local.tm_isdst = -1;
    return static_cast<std::int32_t>(std::mktime(&local));
  }

  /// The strip with a set of that many photos in the order in which they came, at rest on one of them.
  void Begin(int count, int current = 0) {
    AddPhotos(count);
    Set = std::make_unique<CQuerySet>(&Catalog, SetKind::Available);
    Strip.SetPhotoSet(Set.get());
    Strip.MoveTo(current);
    Settle();
    Host.Shown.clear();
  }

  /// Lets idle time fill the cache.
  void Settle() {
    for (int painted = -1; painted != Strip.GetPaintedCells();) {
      painted = Strip.GetPaintedCells();
      for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    }
  }

  /// Waits until the host has been told of a photo.
  bool WaitForPhoto(std::size_t count = 1) {
    return QTest::qWaitFor([&] { return Host.Shown.size() >= count; }, 5000);
  }

  std::int32_t IdAt(int index) const { return Set->GetAssetId(index); }

  /// The middle of a cell, by its distance from that under the lens.
  QPoint CellPoint(int distance) const {
    const StripLayout& layout = Strip.GetLayout();
    return layout.GetCellFrame(layout.GetLensCell() + distance).center();
  }
  QPoint MarkPoint(int distance, int mark) const {
    const StripLayout& layout = Strip.GetLayout();
    const int left = layout.GetCellLeft(layout.GetLensCell() + distance);
    return layout.GetMetrics().MarkTargetAt(left, mark).center();
  }

  template <typename Widget = QWidget>
  Widget& Find(const char* name) {
    Widget* const found = Window.findChild<Widget*>(QLatin1String(name));
    if (found == nullptr) throw std::runtime_error(name);
    return *found;
  }

  const CFontTable Fonts{false};
  CScratchFolder Scratch;
  CCatalog Catalog;
  CThumbnailCache Thumbnails;
  std::unique_ptr<CPhotoSet> Set;
  CNotingHost Host;
  CStripWindow Window{Host, nullptr};
  CFilmstrip& Strip = Window.GetStrip();
};
