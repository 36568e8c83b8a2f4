#pragma once

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>

#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "platform/Faults.h"
#include "support/FaultSteps.h"
#include "support/FileSizeLimit.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedMessages.h"
#include "support/TestJpeg.h"

/// A photo in a folder of its own, with its row.
class CEditingFixture : public testing::Test {
 protected:
  CEditingFixture() {
    const auto jpeg = MakeJpeg({.Width = 160, .Height = 96, .Quality = 95});
    Original.assign(jpeg.begin(), jpeg.end());
    Catalog.Open(Scratch.File("data/vellumar.db"));
    OpenThumbnails();
    Photo = Catalog.AddAsset(Scratch.Write("photos/boat.jpg", Original));
  }
  ~CEditingFixture() override { platform::SetFaultPlan({}); }

  void OpenThumbnails() { Thumbnails.Open(Scratch.File("data/vellumar.thumbs"), Catalog.GetDBGUID()); }

  std::string InFolder(const std::string& name) const { return Scratch.GetPath() + "/photos/" + name; }

  std::vector<std::string> NamesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(InFolder("")))
      names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
  }

  std::string Now() const { return ReadBytes(Photo.GetPath()); }

  void SetMode(mode_t mode) const { ASSERT_EQ(::chmod(Photo.GetPath().c_str(), mode), 0); }

  mode_t GetMode() const {
    struct stat status {};
    EXPECT_EQ(::stat(Photo.GetPath().c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  std::string Original;
  CScratchFolder Scratch;
  CScriptedMessages Messages;
  CCatalog Catalog;
  CThumbnailCache Thumbnails;
  CAssetRecord Photo;
};
