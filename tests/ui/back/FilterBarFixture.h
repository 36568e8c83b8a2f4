#pragma once

#include <QLineEdit>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Folders.h"
#include "base/RegistrySettings.h"
#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "catalog/StringHistory.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/FolderSearch.h"
#include "sets/QuerySet.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"
#include "ui/back/FilterBar.h"
#include "ui/back/FilterBarHost.h"
#include "ui/kit/DropControl.h"

/// Answers what a folder dialog would, in order; an answer that is missing is Cancel.
class CScriptedChooser : public CFolderChooser {
 public:
  std::optional<std::string> Browse() override {
    if (Browsed.empty()) return std::nullopt;
    const std::string folder = Browsed.front();
    Browsed.pop_front();
    return folder;
  }
  int Choose(const std::vector<std::string>& folders, FolderChoice purpose) override {
    Offered = folders;
    Purpose = purpose;
    if (Chosen.empty()) return -1;
    const int index = Chosen.front();
    Chosen.pop_front();
    return index;
  }

  std::deque<std::string> Browsed;
  std::deque<int> Chosen;
  std::vector<std::string> Offered;
  FolderChoice Purpose{};
};

/// A main window by script: notes what the bar asks of it.
class CNotedHost : public CFilterBarHost {
 public:
  CNotedHost(CCatalog& catalog, CPhotoSet& set, QWidget& window)
      : Catalog(catalog), Set(set), Window(window) {}

  CCatalog& GetCatalog() override { return Catalog; }
  CPhotoSet& GetPhotoSet() override { return Set; }
  void RefreshStrip(StripPosition position) override { Refreshed.push_back(position); }
  void MoveStrip(int index) override { MovedTo = index; }
  void OnEditBegins() override {}
  void FocusMainWindow() override { Window.setFocus(); }
  void PrepareForSearch() override { ++Prepared; }

  CCatalog& Catalog;
  CPhotoSet& Set;
  QWidget& Window;
  std::vector<StripPosition> Refreshed;
  int MovedTo = -1;
  int Prepared = 0;
};

/// A home with photos in the pictures folder and in two others, the data stores, and a bar over them.
class CFilterBarFixture : public testing::Test {
 protected:
  CFilterBarFixture() : Home("HOME", Scratch.GetPath()), Config("XDG_CONFIG_HOME", std::nullopt) {
    ForgetMyPicturesFolder();
    Search.Reset();
    std::filesystem::create_directory(Pictures());
    SetSettings(std::make_unique<CRegistrySettings>(Scratch.File("settings")));
    Catalog.Open(Scratch.GetPath() + "/vellumar.db");
    Cache.Open(Scratch.GetPath() + "/vellumar.thumbs", Catalog.GetDBGUID());
    Window.setFocusPolicy(Qt::StrongFocus);
    Window.resize(400, 400);
    Panel.setGeometry(100, 0, 267, 400);
  }
  ~CFilterBarFixture() override {
    Bar.reset();
    Search.Reset();
    SetSettings(nullptr);
  }

  std::string Pictures() const { return Scratch.GetPath() + "/Pictures"; }
  /// A folder outside the pictures folder.
  std::string Other(const std::string& name) const { return Scratch.GetPath() + "/" + name; }

  void AddPhoto(const std::string& path) const {
    Scratch.Write(path, MakePhoto(16, 12, QColor(100, 50, static_cast<int>(path.size()))));
  }

  /// Starts a session as the main window does: the first search, the set, the bar, its first folder.
  void Start() {
    const std::int32_t rollBefore = Catalog.GetCurrentRollID();
    const std::string folder = Search.FirstSearch();
    Set.emplace(&Catalog, SetKind::Available);
    Host.emplace(Catalog, *Set, Window);
    auto chooser = std::make_unique<CScriptedChooser>();
    Chooser = chooser.get();
    Bar = std::make_unique<CFilterBar>(*Host, &Panel, std::move(chooser));
    Bar->setGeometry(0, Panel.height() - CFilterBar::GetHeight(), Panel.width(), CFilterBar::GetHeight());
    Window.show();
    Window.activateWindow();
    Window.setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
    Bar->SelectFolder(folder);
    if (Catalog.GetCurrentRollID() > rollBefore) {
      Bar->ShowNewestRoll();
    } else {
      Bar->SelectStoredSort();
    }
    Forget();
  }

  void Forget() {
    Host->Refreshed.clear();
    Host->MovedTo = -1;
    Host->Prepared = 0;
  }

  /// Picks the item with that id, as a click on its row does.
  static void Pick(CDropControl& control, int id) {
    CDropControlModel& model = control.GetModel();
    const auto rows = model.GetRows();
    int row = 0;
    while (row < static_cast<int>(rows.size()) && rows[static_cast<std::size_t>(row)].Id != id) ++row;
    ASSERT_LT(row, static_cast<int>(rows.size())) << "no item " << id;
    model.OpenList();
    if (model.CloseList(row)) control.OnChange();
  }
  void PickFolder(FolderItem item) { Pick(Bar->GetFolderControl(), static_cast<int>(item)); }
  void PickListed(int position) {
    Pick(Bar->GetFolderControl(), static_cast<int>(FolderItem::FirstListed) + position);
  }

  void AddFolder(const std::string& folder) {
    Chooser->Browsed.push_back(folder);
    PickFolder(FolderItem::AddFolder);
  }

  /// Types into the find control and leaves it.
  void Find(const char* text) {
    QTest::keyClicks(OpenFind(), text);
    Bar->CommitEdit();
  }
  QLineEdit* OpenFind() {
    QTest::mouseClick(&Bar->GetFindControl(), Qt::LeftButton, {}, QPoint(20, 10));
    return qobject_cast<QLineEdit*>(Window.focusWidget());
  }

  int SelectedFolder() const { return Bar->GetFolderControl().GetModel().GetSelectedId(); }
  int SelectedSort() const { return Bar->GetSortControl().GetModel().GetSelectedId(); }

  std::vector<std::string> ListedFolders() {
    const CStringHistory list(Catalog, "FolderFilterHistory", 0, false);
    std::vector<std::string> folders;
    for (int i = 0; i < list.Count(); ++i) folders.push_back(list.Get(i));
    return folders;
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (int i = 0; i < Set->GetCount(); ++i) names.push_back(Set->GetAsset(i).GetFilename());
    return names;
  }

  void Rate(const std::string& path, int rating) {
    Catalog.FindAssetByPath(Scratch.GetPath() + "/" + path).GetStamps(StampId::Rating).SetNumber(rating, 0);
  }

  CScratchFolder Scratch;
  const CEnvironmentVariable Home, Config;
  CNotedMessages Messages;
  const CFontTable Fonts{false};
  CCatalog Catalog;
  CThumbnailCache Cache;
  CFolderSearch& Search = CFolderSearch::GetInstance();
  QWidget Window;
  QWidget Panel{&Window};
  std::optional<CQuerySet> Set;
  std::optional<CNotedHost> Host;
  CScriptedChooser* Chooser = nullptr;  // the bar's
  std::unique_ptr<CFilterBar> Bar;
};
