#include "base/Messages.h"

#include <iostream>

#include "base/Texts.h"

namespace {

CMessageBox*& CurrentMessageBox() {
  static CMessageBox* messageBox = nullptr;
  return messageBox;
}

}  // namespace

void SetMessageBox(CMessageBox* messageBox) { CurrentMessageBox() = messageBox; }

bool ShowMessage(const std::string& text, bool okCancel, MessageParent parent) {
  const std::string title = LoadExpandedString(StringId::MessageTitle);
  if (CMessageBox* messageBox = CurrentMessageBox()) return messageBox->Show(title, text, okCancel, parent);
  std::cerr << title << ": " << text << '\n';
  return !okCancel;
}

bool ShowMessageId(StringId id, bool okCancel, MessageParent parent) {
  return ShowMessage(LoadExpandedString(id), okCancel, parent);
}
