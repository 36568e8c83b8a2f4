#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "base/Folders.h"
#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/FolderSearch.h"
#include "discovery/SearchProgress.h"
#include "support/FileSizeLimit.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedMessages.h"
#include "support/TestJpeg.h"

/// A progress window by script: remembers what it was told and stops when it is meant to.
class CScriptedProgress : public CSearchProgress {
 public:
  bool SetTotal(int count) override {
    Total = count;
    if (OnTotal) OnTotal();
    return !Stopped;
  }
  bool Progress(const PhotoProgress& photo) override {
    Paths.push_back(photo.Path);
    Thumbnails += photo.Thumbnail.empty() ? 0 : 1;
    if (static_cast<int>(Paths.size()) == StopAfter) Stopped = true;
    return !Stopped;
  }
  bool IsStopped() const override { return Stopped; }

  int Total = -1;
  int StopAfter = -1;
  int Thumbnails = 0;
  bool Stopped = false;
  std::vector<std::string> Paths;
  std::function<void()> OnTotal;
};

/// A home with a pictures folder, an open catalog and the search, as a session has them.
class CSearchFixture : public testing::Test {
 protected:
  CSearchFixture() {
    ::setenv("HOME", Scratch.GetPath().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", Scratch.File("config").c_str(), 1);
    std::filesystem::create_directory(Scratch.File("Pictures"));
    ForgetMyPicturesFolder();
    Search.Reset();
    OpenStores();
  }

  void OpenStores() {
    Catalog.Open(Scratch.File("vellumar.db"));
    Cache.Open(Scratch.File("vellumar.thumbs"), Catalog.GetDBGUID());
  }

  void Restart() {
    Cache.Close();
    Catalog.Close();
    Search.Reset();
    OpenStores();
  }

  std::string Pictures() const { return Scratch.GetPath() + "/Pictures"; }

  std::string AddPhoto(const std::string& name, const std::string& dateTime = {}) const {
    return Scratch.Write("Pictures/" + name, MakeJpeg(160, 120, 200, 100, 50, dateTime));
  }

  CScratchFolder Scratch;
  CScriptedMessages Messages;
  CScriptedProgress Progress;
  CCatalog Catalog;
  CThumbnailCache Cache;
  CFolderSearch& Search = CFolderSearch::GetInstance();
};
