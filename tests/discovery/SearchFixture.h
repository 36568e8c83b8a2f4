#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "discovery/FolderSearch.h"
#include "discovery/SearchProgress.h"
#include "support/CatalogFixture.h"
#include "support/FileSizeLimit.h"
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

/// The stores of a session, and the search over them.
class CSearchFixture : public CCatalogFixture {
 protected:
  CSearchFixture() { Search.Reset(); }

  void Restart() {
    CloseStores();
    Search.Reset();
    OpenStores();
  }

  std::string AddPhoto(const std::string& name, const std::string& dateTime = {}) const {
    return Scratch.Write("Pictures/" + name, MakeJpeg(160, 120, 200, 100, 50, dateTime));
  }

  CScriptedMessages Messages;
  CScriptedProgress Progress;
  CFolderSearch& Search = CFolderSearch::GetInstance();
};
