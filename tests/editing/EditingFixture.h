#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "platform/Faults.h"
#include "support/FileSizeLimit.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedMessages.h"

/// A photo in a folder of its own, with its row.
class CEditingFixture : public testing::Test {
 protected:
  CEditingFixture() {
    Catalog.Open(Scratch.File("data/vellumar.db"));
    OpenThumbnails();
    Photo = Catalog.AddAsset(Scratch.Write("photos/boat.jpg", "the photo"));
  }
  ~CEditingFixture() override { platform::SetFaultPlan({}); }

  void OpenThumbnails() { Thumbnails.Open(Scratch.File("data/vellumar.thumbs"), Catalog.GetDBGUID()); }

  std::string InFolder(const std::string& name) const { return Scratch.GetPath() + "/photos/" + name; }

  std::vector<std::string> NamesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(InFolder(""))) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  static mode_t ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(0, ::stat(path.c_str(), &status));
    return status.st_mode & 07777;
  }

  CScratchFolder Scratch;
  CScriptedMessages Messages;
  CCatalog Catalog;
  CThumbnailCache Thumbnails;
  CAssetRecord Photo;
};
