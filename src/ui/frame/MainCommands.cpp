#include "ui/frame/MainCommands.h"

#include <QApplication>
#include <QWidget>
#include <memory>
#include <optional>
#include <utility>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/Messages.h"
#include "catalog/Catalog.h"
#include "discovery/FolderHistory.h"
#include "discovery/FolderSearch.h"
#include "editing/AutoFixPhoto.h"
#include "editing/PhotoAccess.h"
#include "editing/RotatePhoto.h"
#include "imaging/Image.h"
#include "sets/PhotoSet.h"
#include "ui/back/FilterBar.h"
#include "ui/back/PhotoBack.h"
#include "ui/back/PhotoField.h"
#include "ui/frame/CommandTable.h"
#include "ui/frame/MainFrame.h"
#include "ui/frame/TipAtStart.h"
#include "ui/kit/WaitCursor.h"
#include "ui/pages/PhotoView.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/strip/Filmstrip.h"

namespace {

constexpr int kManyPhotos = 20;    // who has as many needs no tip
constexpr int kQuarterRight = 90;  // degrees clockwise
constexpr int kQuarterLeft = 270;

}  // namespace

void CMainCommands::Run(CommandId id) {
  const Command* command = FindCommand(id);
  if (command == nullptr || command->Run == nullptr) return;
  // All that isn't a move acts on the photo that the strip is about to rest on.
  if (command->Held != KeyHeld::MovesStrip) Frame.GetStrip().AnnounceNow();
  (this->*command->Run)(id);
  // What is typed into an open field next belongs to the photo moved to.
  if (command->Held == KeyHeld::MovesStrip && Frame.GetPhotoBack().IsEditing())
    Frame.GetStrip().AnnounceNow();
}

void CMainCommands::EndEdit(CommandId) { Frame.setFocus(); }

void CMainCommands::Cancel(CommandId) {
  if (Frame.GetFilterBar().IsEditing()) return Frame.GetFilterBar().CancelEdit();
  if (Frame.GetPhotoBack().IsEditing()) {
    Frame.GetPhotoBack().CancelEdits();
    return Frame.setFocus();
  }
  Frame.StopSlideShow();
  Frame.ToggleFullScreen(FullScreenChange::Normal);
}

void CMainCommands::GoToField(CommandId id) {
  if (Frame.GetPhotoBack().isVisible()) {
    Frame.GetPhotoBack().FocusField(FieldOfCommand(id));
  }
}

void CMainCommands::MoveByField(CommandId id) {
  if (Frame.IsFullScreen()) return;
  if (Frame.GetFilterBar().IsEditing()) return Frame.GetFilterBar().CommitEdit();
  Frame.GetPhotoBack().FocusNextField(id == CommandId::NextField);
}

void CMainCommands::Rename(CommandId) {
  const CAssetRecord* photo = Frame.GetStrip().GetCurrentRecord();
  if (!Frame.GetPhotoBack().isVisible() || photo == nullptr || IsReadOnly(*photo)) return;
  const CPhotoField* title = Frame.GetPhotoBack().GetField(StampId::Title);
  if (title->IsEditing()) return Frame.setFocus();
  Frame.GetPhotoBack().FocusField(StampId::Title);
}

void CMainCommands::Rate(CommandId id) {
  if (!Frame.GetPhotoBack().isVisible()) return;
  Frame.GetPhotoBack().SetRating(static_cast<int>(id) - static_cast<int>(CommandId::Rate0));
}

void CMainCommands::EditText(CommandId id) {
  const char* operation = id == CommandId::Copy    ? "copy"
                          : id == CommandId::Cut   ? "cut"
                          : id == CommandId::Paste ? "paste"
                                                   : "undo";
  QWidget* focus = QApplication::focusWidget();
  if (focus == nullptr) return;
  const QByteArray signature = QByteArray(operation) + "()";
  if (focus->metaObject()->indexOfMethod(signature) >= 0) QMetaObject::invokeMethod(focus, operation);
}

void CMainCommands::ToggleInTab(CommandId id) {
  const CAssetRecord* photo = Frame.GetStrip().GetCurrentRecord();
  if (photo == nullptr) return;
  const bool extendRange = QApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
  Frame.ToggleInTab(CAssetRecord(*photo), id == CommandId::ToggleEmail ? ViewTabId::Email : ViewTabId::Upload,
                    extendRange);
}

void CMainCommands::DeletePhoto(CommandId) {
  const CAssetRecord* photo = Frame.GetStrip().GetCurrentRecord();
  if (Frame.GetTabBar().GetSelectedTab() != ViewTabId::CurrentPhoto || photo == nullptr ||
      IsReadOnly(*photo)) {
    return;
  }
  Frame.DeleteCurrentPhoto();
}

void CMainCommands::ChangePhoto(const PhotoEdit& edit) {
  const CAssetRecord* current = Frame.GetStrip().GetCurrentRecord();
  if (current == nullptr) return;
  const CAssetRecord photo = *current;
  CPhotoView& view = Frame.GetPhotoView();
  // While a question is open the view may load the photo again, for another size.
  std::unique_ptr<CImage> image = view.TakeImage();
  PhotoChange change = PhotoChange::FileAlone;
  try {
    std::optional<CWaitCursor> waiting;
    change = edit(photo, image.get(), [&waiting] { waiting.emplace(); });
  } catch (const CException& failure) {
    ShowMessage(failure.GetMessage());
  }
  view.SetImage(std::move(image));
  if (change == PhotoChange::None) return;
  const CWaitCursor waiting;
  if (change == PhotoChange::FileAlone) view.Reload(true);
  Frame.OnPhotoChanged();
}

void CMainCommands::Rotate(CommandId id) {
  const int angle = id == CommandId::RotateRight ? kQuarterRight : kQuarterLeft;
  ChangePhoto([angle](const CAssetRecord& photo, CImage* image, const WorkBegins& workBegins) {
    return RotatePhoto(photo, image, angle, workBegins);
  });
}

void CMainCommands::AutoFix(CommandId) { ChangePhoto(&AutoFixPhoto); }

void CMainCommands::MoveByOne(CommandId id) {
  Frame.StopSlideShow();
  Frame.GetStrip().MoveBy(id == CommandId::NextPhoto ? 1 : -1);
}

void CMainCommands::MoveByPage(CommandId id) {
  Frame.StopSlideShow();
  const CWaitCursor waiting;
  Frame.GetStrip().MovePage(id == CommandId::PreviousPage);
}

void CMainCommands::MoveByGroup(CommandId id) {
  CFilmstrip& strip = Frame.GetStrip();
  Frame.StopSlideShow();
  strip.FinishMove();
  const CPhotoSet& set = Frame.GetPhotoSet();
  const int current = strip.GetCurrentIndex();
  strip.MoveTo(id == CommandId::NextGroup ? set.GetNextGroupStart(current)
                                          : set.GetPreviousGroupStart(current));
}

void CMainCommands::MoveToEnd(CommandId id) {
  Frame.StopSlideShow();
  Frame.GetStrip().MoveTo(id == CommandId::FirstPhoto ? 0 : Frame.GetPhotoSet().GetCount() - 1);
}

void CMainCommands::ToggleSlideShow(CommandId) {
  Frame.SelectTab(ViewTabId::CurrentPhoto);
  if (Frame.IsSlideShowRunning()) return Frame.StopSlideShow();
  Frame.setFocus();
  Frame.StartSlideShow();
}

void CMainCommands::ToggleFullScreen(CommandId) { Frame.ToggleFullScreen(FullScreenChange::Toggle); }

void CMainCommands::NextTab(CommandId) {
  if (!Frame.IsFullScreen()) Frame.GetTabBar().SelectNextTab();
}

void CMainCommands::CloseWindow(CommandId) { Frame.close(); }

void CMainCommands::ShowTipAtStart(CommandId) {
  CCatalog& catalog = *CCatalog::GetInstance();
  if (CFolderSearch::GetInstance().ActiveDisk &&
      catalog.GetCurrentPhotoFolder() == GetActiveDiskPhotoFolder()) {
    return;
  }
  if (Frame.GetPhotoSet().GetCount() >= kManyPhotos) return;
  if (CFolderHistory(catalog).Count() > 0) return;
  ShowAddFolderTip(&Frame);
}
