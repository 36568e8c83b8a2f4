#pragma once

#include <functional>
#include <utility>

#include "editing/ChangePhoto.h"
#include "ui/frame/FocusRing.h"
#include "ui/frame/FullScreen.h"
#include "ui/kit/Commands.h"

class CAssetRecord;
class CFilmstrip;
class CImage;
struct MainParts;

/// What commands ask of the main window as a whole.
struct MainActions {
  std::function<void(FullScreenChange change)> ToggleFullScreen;
  std::function<void(const CAssetRecord& photo, ViewTabId tab, bool extendRange)> ToggleInTab;
  std::function<void()> OnPhotoChanged;  // the current photo's file
};

/// What the commands of the main window do; one whose condition doesn't hold does nothing. The table in
/// CommandTable.cpp says which command calls which operation.
class CMainCommands {
 public:
  CMainCommands(const MainParts& parts, MainActions actions) : Parts(parts), Actions(std::move(actions)) {}

  /// The photo back is about to be clicked on.
  void OnPanelClicked() { FocusRing.Forget(); }

  void EndEdit(CommandId id);
  void Cancel(CommandId id);
  void GoToField(CommandId id);
  void GoToFind(CommandId id);
  void MoveByField(CommandId id);
  void OpenList(CommandId id);
  void OpenListOrMoveByGroup(CommandId id);
  void OpenContextMenu(CommandId id);
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
  void ShowInfo(CommandId id);
  void ShowTipAtStart(CommandId id);

 private:
  using PhotoEdit = std::function<PhotoChange(const CAssetRecord& photo, CImage* image, const WorkBegins&)>;
  void ChangePhoto(const PhotoEdit& edit);
  /// Opens the list of the field or control that the focus is in. False if that has none.
  bool OpenListAtFocus();
  bool IsEditing() const;

  CFilmstrip& GetStrip() const;

  const MainParts& Parts;
  const MainActions Actions;
  CFocusRing FocusRing{Parts};
};
