#pragma once

#include <string>
#include <vector>

#include "base/Messages.h"

/// Message boxes by script: each is noted and answered at once.
class CScriptedMessages : public CMessageBox {
 public:
  struct Message {
    std::string Title;
    std::string Text;
    bool OkCancel;
    MessageParent Parent;
  };

  CScriptedMessages() { SetMessageBox(this); }
  ~CScriptedMessages() override { SetMessageBox(nullptr); }
  bool Show(const std::string& title, const std::string& text, bool okCancel, MessageParent parent) override {
    Shown.push_back({title, text, okCancel, parent});
    Texts.push_back(text);
    return !okCancel || Answer;
  }

  bool Answer = true;
  std::vector<Message> Shown;
  std::vector<std::string> Texts;  // those of Shown
};
