#pragma once

#include <gmock/gmock.h>

#include "platform/Faults.h"
#include "support/CatalogFixture.h"
#include "support/FaultSteps.h"
#include "support/ScriptedMessages.h"
#include "support/TestJpeg.h"

/// A photo with its row, alone in the pictures folder.
class CEditingFixture : public CCatalogFixture {
 protected:
  CEditingFixture() {
    const auto jpeg = MakeJpeg({.Width = 160, .Height = 96, .Quality = 95});
    Original.assign(jpeg.begin(), jpeg.end());
    Photo = AddRow(Scratch.Write("Pictures/boat.jpg", Original));
  }
  ~CEditingFixture() override { platform::SetFaultPlan({}); }

  std::string InFolder(const std::string& name) const { return Pictures() + "/" + name; }

  std::vector<std::string> NamesInFolder() const { return NamesIn(Pictures()); }

  std::string Now() const { return ReadBytes(Photo.GetPath()); }

  void SetMode(unsigned mode) const {
    std::filesystem::permissions(Photo.GetPath(), std::filesystem::perms(mode));
  }

  unsigned GetMode() const {
    return static_cast<unsigned>(std::filesystem::status(Photo.GetPath()).permissions());
  }

  std::string Original;
  CScriptedMessages Messages;
  CAssetRecord Photo;
};
