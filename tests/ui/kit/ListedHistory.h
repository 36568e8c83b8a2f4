#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ui/kit/DropControlModel.h"

/// A history in memory.
class CListedHistory : public CDropHistory {
 public:
  explicit CListedHistory(std::vector<std::string> entries) : Entries(std::move(entries)) {}

  int Count() const override { return static_cast<int>(Entries.size()); }
  std::string Get(int index) const override { return Entries[static_cast<std::size_t>(index)]; }
  int Add(const std::string& text) override {
    const auto found = std::find(Entries.begin(), Entries.end(), text);
    if (found != Entries.end()) return static_cast<int>(found - Entries.begin());
    Entries.push_back(text);
    return Count() - 1;
  }
  void Promote(int index) override {
    if (Fails) throw std::runtime_error("full");
    std::rotate(Entries.begin(), Entries.begin() + index, Entries.begin() + index + 1);
  }

  std::vector<std::string> Entries;
  bool Fails = false;
};
