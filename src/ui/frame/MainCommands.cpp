#include "ui/frame/MainCommands.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QMessageBox>
#include <QWidget>
#include <memory>
#include <optional>
#include <utility>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/Messages.h"
#include "base/Settings.h"
#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "discovery/FolderHistory.h"
#include "discovery/FolderSearch.h"
#include "editing/ChangePhoto.h"
#include "editing/SafeFiles.h"
#include "imaging/Image.h"
#include "sets/PhotoSet.h"
#include "ui/back/FilterBar.h"
#include "ui/back/PhotoBack.h"
#include "ui/back/PhotoField.h"
#include "ui/controls/DropControl.h"
#include "ui/frame/InfoWindow.h"
#include "ui/frame/MainParts.h"
#include "ui/frame/MarkPhotos.h"
#include "ui/kit/QtText.h"
#include "ui/kit/WaitCursor.h"
#include "ui/marks/PhotoMarks.h"
#include "ui/pages/PhotoTab.h"
#include "ui/pages/PhotoView.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/strip/StripWindow.h"

namespace {

constexpr int kManyPhotos = 20;  // a user with more photos gets no tip
constexpr const char* kDoNotShowTipSetting = "DontShowAddFolderTip";
constexpr int kQuarterRight = 90;  // degrees clockwise
constexpr int kQuarterLeft = 270;

/// Tells how to add folders, unless the user has asked not to be told again.
void ShowAddFolderTip(QWidget* parent) {
  CSettingsRef settings;
  if (settings.GetBool(kDoNotShowTipSetting)) return;
  QMessageBox box(parent);
  box.setObjectName(QStringLiteral("AddFolderTip"));
  box.setTextFormat(Qt::PlainText);
  box.setWindowTitle(ToQString(LoadExpandedString(StringId::AddFolderTipTitle)));
  box.setText(ToQString(LoadExpandedString(StringId::AddFolderTip)));
  box.addButton(QMessageBox::Ok);
  auto* doNotShow = new QCheckBox(ToQString(LoadExpandedString(StringId::DoNotShowAgain)));
  box.setCheckBox(doNotShow);
  box.exec();
  settings.SetBool(kDoNotShowTipSetting, doNotShow->isChecked());
}

}  // namespace

CFilmstrip& CMainCommands::GetStrip() const { return Parts.StripWindow->GetStrip(); }

void CMainCommands::EndEdit(CommandId) {
  QWidget* const focus = Parts.Window->focusWidget();
  if (auto* const button = qobject_cast<QAbstractButton*>(focus)) return button->click();
  auto* const page = Parts.GetPhotoTab(Parts.TabBar->GetSelectedTab());
  if (page != nullptr && focus == page) page->OpenSelected();
  CDropControl* const control = Parts.FilterBar->FindFocusedControl();
  if (control != nullptr && focus == control) return control->Activate();
  Parts.Window->setFocus();
}

void CMainCommands::Cancel(CommandId) {
  if (Parts.FilterBar->IsEditing()) return Parts.FilterBar->CancelEdit();
  if (Parts.PhotoBack->IsEditing()) {
    Parts.PhotoBack->CancelEdits();
    return Parts.Window->setFocus();
  }
  GetStrip().StopSlideShow();
  Actions.ToggleFullScreen(FullScreenChange::Normal);
}

void CMainCommands::GoToField(CommandId id) {
  if (!Parts.PhotoBack->isVisible()) return;
  FocusRing.Forget();
  Parts.PhotoBack->FocusField(FieldOfCommand(id));
}

void CMainCommands::GoToFind(CommandId) {
  if (Parts.FilterBar->isVisible()) Parts.FilterBar->GetFindControl().Activate();
}

void CMainCommands::MoveByField(CommandId id) {
  if (!Parts.PhotoBack->isVisible()) return;
  if (Parts.FilterBar->IsEditing()) return Parts.FilterBar->CommitEdit();
  FocusRing.Move(id == CommandId::NextField);
}

bool CMainCommands::IsEditing() const { return Parts.PhotoBack->IsEditing() || Parts.FilterBar->IsEditing(); }

bool CMainCommands::OpenListAtFocus() {
  if (Parts.PhotoBack->OpenListByKey()) return true;
  CDropControl* const control = Parts.FilterBar->FindFocusedControl();
  if (control != nullptr) control->OpenListByKey();
  return control != nullptr;
}

void CMainCommands::OpenList(CommandId) { OpenListAtFocus(); }

void CMainCommands::OpenListOrMoveByGroup(CommandId) {
  if (!OpenListAtFocus()) MoveByGroup(CommandId::NextGroup);
}

void CMainCommands::OpenContextMenu(CommandId id) {
  if (!IsEditing()) return OpenList(id);
  // The menu of the box itself.
  QWidget& box = *Parts.Window->focusWidget();
  const QPoint place = box.inputMethodQuery(Qt::ImCursorRectangle).toRect().bottomLeft();
  QContextMenuEvent event(QContextMenuEvent::Keyboard, place, box.mapToGlobal(place));
  QCoreApplication::sendEvent(&box, &event);
}

void CMainCommands::Rename(CommandId) {
  const CAssetRecord* photo = GetStrip().GetCurrentRecord();
  if (!Parts.PhotoBack->isVisible() || photo == nullptr || IsReadOnly(*photo)) return;
  const CPhotoField* title = Parts.PhotoBack->GetField(StampId::Title);
  if (title->IsEditing()) return Parts.Window->setFocus();
  FocusRing.Forget();
  Parts.PhotoBack->FocusField(StampId::Title);
}

void CMainCommands::Rate(CommandId id) {
  if (!Parts.PhotoBack->isVisible()) return;
  Parts.PhotoBack->SetRating(static_cast<int>(id) - static_cast<int>(CommandId::Rate0));
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
  const CAssetRecord* photo = GetStrip().GetCurrentRecord();
  if (photo == nullptr) return;
  const bool extendRange = QApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
  for (const PhotoMark& mark : kPhotoMarks) {
    if (mark.Toggle == id) return Actions.ToggleInTab(CAssetRecord(*photo), mark.Tab, extendRange);
  }
}

void CMainCommands::DeletePhoto(CommandId) {
  const CAssetRecord* photo = GetStrip().GetCurrentRecord();
  if (Parts.TabBar->GetSelectedTab() != ViewTabId::CurrentPhoto || photo == nullptr || IsReadOnly(*photo)) {
    return;
  }
  const CAssetRecord tossed = *photo;
  const CWaitCursor waiting;
  GetStrip().StopSlideShow();
  if (IsEditing()) Parts.Window->setFocus();
  try {
    TossPhoto(*CCatalog::GetInstance(), Parts, tossed);
  } catch (const CStorageException&) {
    if (tossed.GetFlag(PhotoFlag::Tossed)) GetStrip().RemoveCurrent();  // the commit took effect
    throw;
  }
  GetStrip().RemoveCurrent();
}

void CMainCommands::ChangePhoto(const PhotoEdit& edit) {
  const CAssetRecord* current = GetStrip().GetCurrentRecord();
  if (current == nullptr) return;
  const CAssetRecord photo = *current;
  CPhotoView& view = *Parts.PhotoView;
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
  Actions.OnPhotoChanged();
}

void CMainCommands::Rotate(CommandId id) {
  const int angle = id == CommandId::RotateRight ? kQuarterRight : kQuarterLeft;
  ChangePhoto([angle](const CAssetRecord& photo, CImage* image, const WorkBegins& workBegins) {
    return RotatePhoto(photo, image, angle, workBegins);
  });
}

void CMainCommands::AutoFix(CommandId) { ChangePhoto(&AutoFixPhoto); }

void CMainCommands::MoveByOne(CommandId id) {
  GetStrip().StopSlideShow();
  GetStrip().MoveBy(id == CommandId::NextPhoto ? 1 : -1);
}

void CMainCommands::MoveByPage(CommandId id) {
  GetStrip().StopSlideShow();
  const CWaitCursor waiting;
  GetStrip().MovePage(id == CommandId::PreviousPage);
}

void CMainCommands::MoveByGroup(CommandId id) {
  CFilmstrip& strip = GetStrip();
  GetStrip().StopSlideShow();
  strip.FinishMove();
  const CPhotoSet& set = *Parts.PhotoSet;
  const int current = strip.GetCurrentIndex();
  strip.MoveTo(id == CommandId::NextGroup ? set.GetNextGroupStart(current)
                                          : set.GetPreviousGroupStart(current));
}

void CMainCommands::MoveToEnd(CommandId id) {
  GetStrip().StopSlideShow();
  GetStrip().MoveTo(id == CommandId::FirstPhoto ? 0 : Parts.PhotoSet->GetCount() - 1);
}

void CMainCommands::ToggleSlideShow(CommandId) {
  if (Parts.TabBar->GetSelectedTab() != ViewTabId::CurrentPhoto) {
    Parts.TabBar->SelectTab(ViewTabId::CurrentPhoto);
  }
  if (GetStrip().IsSlideShowRunning()) return GetStrip().StopSlideShow();
  Parts.Window->setFocus();
  GetStrip().StartSlideShow();
}

void CMainCommands::ToggleFullScreen(CommandId) { Actions.ToggleFullScreen(FullScreenChange::Toggle); }

void CMainCommands::NextTab(CommandId) {
  if (Parts.TabBar->isVisible()) Parts.TabBar->SelectNextTab();
}

void CMainCommands::CloseWindow(CommandId) { Parts.Window->close(); }

void CMainCommands::ShowInfo(CommandId) {
  if (IsEditing()) Parts.Window->setFocus();  // keeps what is being edited; a slide show goes on
  ShowInfoWindow(*Parts.Window);
}

void CMainCommands::ShowTipAtStart(CommandId) {
  CCatalog& catalog = *CCatalog::GetInstance();
  if (CFolderSearch::GetInstance().ActiveDisk &&
      catalog.GetCurrentPhotoFolder() == GetActiveDiskPhotoFolder()) {
    return;
  }
  if (Parts.PhotoSet->GetCount() >= kManyPhotos) return;
  if (CFolderHistory(catalog).Count() > 0) return;
  ShowAddFolderTip(Parts.Window);
}
