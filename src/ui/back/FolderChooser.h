#pragma once

#include <optional>
#include <string>
#include <vector>

/// What a folder is chosen from the list for.
enum class FolderChoice { Show, Remove };

/// Asks the user for a folder. The program shows dialogs; tests answer by script. Paths are bytes, as the
/// file system has them.
class CFolderChooser {
 public:
  virtual ~CFolderChooser() = default;

  /// A folder of the file system; nothing on Cancel. Empty if what was chosen has no path.
  virtual std::optional<std::string> Browse() = 0;

  /// The position of one of the folders; -1 on Cancel.
  virtual int Choose(const std::vector<std::string>& folders, FolderChoice purpose) = 0;
};

/// Shows the dialogs, in the middle of the active window.
class CWindowFolderChooser : public CFolderChooser {
 public:
  std::optional<std::string> Browse() override;
  int Choose(const std::vector<std::string>& folders, FolderChoice purpose) override;
};
