#pragma once

#include <functional>

#include "editing/PhotoChange.h"
#include "ui/kit/Commands.h"

class CAssetRecord;
class CImage;
class CMainFrame;

/// What the commands of the main window do. Nearly each one looks at a condition and calls a part; the table
/// in CommandTable.cpp says which command leads where.
class CMainCommands {
 public:
  explicit CMainCommands(CMainFrame& frame) : Frame(frame) {}

  /// Carries a command out. One that isn't in the table, or whose condition doesn't hold, does nothing.
  void Run(CommandId id);

  void EndEdit(CommandId id);
  void Cancel(CommandId id);
  void GoToField(CommandId id);
  void MoveByField(CommandId id);
  void Rename(CommandId id);
  void Rate(CommandId id);
  void EditText(CommandId id);

  void ToggleInTab(CommandId id);
  void DeletePhoto(CommandId id);
  void Rotate(CommandId id);
  void AutoFix(CommandId id);

  void MoveByOne(CommandId id);
  void MoveByPage(CommandId id);
  void MoveByGroup(CommandId id);
  void MoveToEnd(CommandId id);

  void ToggleSlideShow(CommandId id);
  void ToggleFullScreen(CommandId id);
  void NextTab(CommandId id);
  void CloseWindow(CommandId id);
  void ShowTipAtStart(CommandId id);

 private:
  using PhotoEdit = std::function<PhotoChange(const CAssetRecord& photo, CImage* image, const WorkBegins&)>;
  void ChangePhoto(const PhotoEdit& edit);

  CMainFrame& Frame;
};
