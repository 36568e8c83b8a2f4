#pragma once

#include <string>

#include "resources/StringIds.h"

enum class MessageParent { MainWindow, ProgressWindow };

/// Shows one message and waits for its answer. The window layer has one; tests script theirs.
class CMessageBox {
 public:
  virtual ~CMessageBox() = default;

  /// One OK button; with `okCancel` OK and Cancel, the warning icon, and Cancel as the default. True if
  /// the user pressed OK; closing the box is Cancel. May be called on the thread of a running search.
  virtual bool Show(const std::string& title, const std::string& text, bool okCancel,
                    MessageParent parent) = 0;
};

/// Sets what shows messages from now on; not owned. Null for none.
void SetMessageBox(CMessageBox* messageBox);

/// Shows a text under the product's name. Without a message box the text goes to the standard error
/// output and the answer is true for a plain message, false for a question.
bool ShowMessage(const std::string& text, bool okCancel = false,
                 MessageParent parent = MessageParent::MainWindow);

/// Shows a text of the table, expanded.
bool ShowMessageId(StringId id, bool okCancel = false, MessageParent parent = MessageParent::MainWindow);
