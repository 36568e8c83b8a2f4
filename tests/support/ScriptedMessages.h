#pragma once

#include <string>
#include <vector>

#include "base/Messages.h"

/// Message boxes by script: each is noted and answered at once.
class CScriptedMessages : public CMessageBox {
 public:
  CScriptedMessages() { SetMessageBox(this); }
  ~CScriptedMessages() override { SetMessageBox(nullptr); }
  bool Show(const std::string&, const std::string& text, bool okCancel, MessageParent) override {
    Texts.push_back(text);
    return !okCancel || Answer;
  }

  bool Answer = true;
  std::vector<std::string> Texts;
};
