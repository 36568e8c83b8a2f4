#include "ui/frame/MainFrame.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>
#include <QWheelEvent>
#include <optional>
#include <vector>

#include "base/Texts.h"
#include "discovery/FolderSearch.h"
#include "editing/OriginalCopy.h"
#include "imaging/Image.h"
#include "imaging/ImageFile.h"
#include "sets/QuerySet.h"
#include "storage/StorageException.h"
#include "ui/back/FilterBar.h"
#include "ui/back/PhotoBack.h"
#include "ui/frame/CommandTable.h"
#include "ui/frame/MainLayout.h"
#include "ui/frame/MarkedRange.h"
#include "ui/frame/PhotoToolRow.h"
#include "ui/kit/Application.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/Job.h"
#include "ui/kit/PaintedButton.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/kit/Toolbar.h"
#include "ui/kit/WindowNames.h"
#include "ui/pages/PhotoView.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/search/WindowedSearchProgress.h"
#include "ui/strip/StripWindow.h"

namespace {

constexpr int kWheelStep = 120;  // eighths of a degree to a notch
constexpr int kLongRange = 10;   // photos that take a moment to mark
constexpr int kCurrentPhotoTabOrder = 100;

struct TabFlag {
  ViewTabId Tab;
  PhotoFlag Flag;
  int StripIcon;
};
constexpr TabFlag kTabFlags[] = {{ViewTabId::Upload, PhotoFlag::ToRemotePrint, 0},
                                 {ViewTabId::Email, PhotoFlag::ToEmail, 1}};

const TabFlag& GetTabFlag(ViewTabId tab) { return tab == ViewTabId::Email ? kTabFlags[1] : kTabFlags[0]; }

/// The new state.
bool ToggleFlag(CAssetRecord photo, PhotoFlag flag) {
  const bool on = !photo.GetFlag(flag);
  photo.SetFlag(flag, on);
  return on;
}

}  // namespace

CMainFrame::CMainFrame()
    : FullScreenState(*this, [this] { ToggleFullScreen(FullScreenChange::Normal); }),
      Commands(*this),
      Mode(&GetViewMode(ViewModeId::Normal)) {
  setObjectName(window_names::kMainFrame);
  setFocusPolicy(Qt::StrongFocus);
  setAutoFillBackground(true);
  QPalette colors = palette();
  colors.setColor(QPalette::Window, colours::kWindow);
  setPalette(colors);
}

CMainFrame::~CMainFrame() {
  InputFilter.reset();
  StripWindow.reset();  // it shows the set
}

bool CMainFrame::Create(const OpenStep& openDataStores, CWindowedSearchProgress& progress) {
  setWindowTitle(ToQString(LoadExpandedString(StringId::MainWindowTitle)));
  setWindowIcon(MakeProgramIcon());
  setMinimumSize(Mode->GetMinMaxInfo());

  const auto stop = [&progress] { progress.Stop(); };
  bool opened = false;
  RunJob([&] { opened = openDataStores(Catalog, ThumbnailCache); }, stop);
  if (!opened) return false;

  const std::int32_t rollBefore = Catalog.GetCurrentRollID();
  std::string folder;
  RunJob([&] { folder = CFolderSearch::GetInstance().FirstSearch(); }, stop);

  PhotoSet = std::make_unique<CQuerySet>(&Catalog, SetKind::Available);
  CreateParts();

  try {
    FilterBar->SelectFolder(folder);
  } catch (const CStorageException& exception) {
    progress.TellRefusal(exception);  // the folder is shown, if not remembered
  }
  GetStrip().SetPhotoSet(PhotoSet.get());
  if (Catalog.GetCurrentRollID() > rollBefore) {
    FilterBar->ShowNewestRoll();
  } else {
    FilterBar->SelectStoredSort();
  }
  return true;
}

void CMainFrame::CreateParts() {
  PhotoBack = std::make_unique<CPhotoBack>(this);
  PhotoBack->OnEditBegins = [this] { OnEditBegins(); };
  PhotoBack->OnStampChanged = [this](StampId type) { OnStampChanged(type); };
  PhotoBack->OnPhotoRenamed = [this] {
    PhotoView->OnPhotoRenamed();
    UpdateCommands();
  };
  PhotoBack->GetPictureSize = [this] { return GetPictureSize(); };
  FilterBar = std::make_unique<CFilterBar>(*this, PhotoBack.get());
  PhotoBack->SetFilterBar(FilterBar.get(), CFilterBar::GetHeight());

  TabBar = std::make_unique<CViewTabBar>(this);
  TabBar->OnTabChanged = [this] { OnTabChanged(); };
  TabBar->AddTab(ViewTabId::CurrentPhoto, kCurrentPhotoTabOrder);
  TabBar->SetTabInfo(ViewTabId::CurrentPhoto, PictureId::CurrentPhotoTab, 1, StringId::CurrentPhotoTabCaption,
                     0);

  PhotoView = std::make_unique<CPhotoView>(this);
  PhotoView->OnDoubleClick = [this] { ToggleFullScreen(FullScreenChange::Toggle); };

  ToolRow = std::make_unique<CToolbar>(*this, this);
  FillPhotoToolRow(*ToolRow);

  HelpButton = std::make_unique<CPaintedButton>(*this, this);
  HelpButton->Create({}, CommandId::Help, {}, PictureId::Help, 2);

  StripWindow = std::make_unique<CStripWindow>(*this, this);
  FullScreenTools = std::make_unique<CFullScreenTools>(*this, *PhotoView, *ToolRow);
  InputFilter = std::make_unique<CInputFilter>(*this);

  TabBar->SelectTab(ViewTabId::CurrentPhoto);
  Mode->Layout(*this);
}

CFilmstrip& CMainFrame::GetStrip() const { return StripWindow->GetStrip(); }

void CMainFrame::ShowInFront() {
  showMaximized();
  raise();
  activateWindow();
  setFocus();
}

void CMainFrame::OnCommand(CommandId id) {
  RunAfterJob([frame = QPointer<CMainFrame>(this), id] {
    if (frame) CApplication::GetInstance()->RunGuarded([&frame, id] { frame->Commands.Run(id); });
  });
}

void CMainFrame::OnCurrentPhotoChanged(const CAssetRecord* record) {
  PhotoBack->CommitEdits();  // to the photo that is left
  const CWaitCursor waiting;
  const auto photo = record != nullptr ? std::optional<CAssetRecord>(*record) : std::nullopt;
  PhotoView->SetPhoto(photo);
  PhotoBack->SetPhoto(photo);
  UpdateCommands();
  DropMouseMoves();
}

void CMainFrame::RefreshStrip(StripPosition position) { GetStrip().Refresh(static_cast<int>(position)); }

void CMainFrame::MoveStrip(int index) { GetStrip().MoveTo(index); }

void CMainFrame::OnEditBegins() {
  // What is typed belongs to the photo under the lens, which stays there.
  StopSlideShow();
  GetStrip().AnnounceNow();
}

bool CMainFrame::IsEditing() const { return PhotoBack->IsEditing() || FilterBar->IsEditing(); }

void CMainFrame::PrepareForSearch() {
  PhotoBack->CommitEdits();
  StopSlideShow();
  GetStrip().FinishMove();
}

void CMainFrame::OnStampChanged(StampId type) {
  // While the current photo changes this is still the photo that is left.
  if (const auto& photo = PhotoView->GetPhoto()) GetStrip().StampChanged(type, photo->GetAssetID());
}

ImageSize CMainFrame::GetPictureSize() const {
  if (const CImage* image = PhotoView->GetImage()) return image->GetNaturalSize();
  const auto& photo = PhotoView->GetPhoto();
  return photo && !PhotoView->isVisible() ? ReadImageSize(photo->GetPath()) : ImageSize();
}

void CMainFrame::OnPhotoChanged() {
  const CAssetRecord* record = GetStrip().GetCurrentRecord();
  if (record == nullptr) return;
  CAssetRecord photo = *record;
  PhotoBack->UpdateFormat();
  UpdateCommands();
  GetStrip().RedrawCurrentThumbnail();  // the old one has been forgotten
  photo.MakeThumbnail();                // late, for the disk may refuse it
  GetStrip().RedrawCurrentThumbnail();
  DropMouseMoves();
}

void CMainFrame::OnSlideShowStateChanged() {
  UpdateCommands();
  if (IsSlideShowRunning()) ShowTools(false);
}

void CMainFrame::UpdateCommands() {
  PhotoToolState state;
  if (const auto& photo = PhotoView->GetPhoto(); photo && photo->IsValid()) {
    state.HasPhoto = true;
    state.HasOriginalCopy = HasOriginalCopy(*photo);
    state.ToEmail = photo->GetFlag(PhotoFlag::ToEmail);
    state.ToUpload = photo->GetFlag(PhotoFlag::ToRemotePrint);
  }
  state.SlideShowRuns = IsSlideShowRunning();
  state.FullScreen = IsFullScreen();
  UpdatePhotoToolRow(*ToolRow, state);
  if (IsFullScreen()) Mode->PlaceTools(*this);
}

void CMainFrame::ToggleInTab(const CAssetRecord& photo, ViewTabId tab, bool extendRange) {
  CApplication::GetInstance()->RunGuarded([&] { ToggleMarks(photo, tab, extendRange); });
}

void CMainFrame::ToggleMarks(const CAssetRecord& photo, ViewTabId tab, bool extendRange) {
  const TabFlag& mark = GetTabFlag(tab);
  std::vector<int> changed{PhotoSet->IndexOf(photo.GetAssetID())};
  std::optional<CWaitCursor> waiting;
  CAutoCommitPause oneChange(Catalog);
  const bool on = ToggleFlag(photo, mark.Flag);
  if (extendRange) {
    const auto [first, end] = FindRangeToToggle(changed.front(), PhotoSet->GetCount(), on, [&](int index) {
      return PhotoSet->GetAsset(index).GetFlag(mark.Flag);
    });
    if (end - first > kLongRange) waiting.emplace();
    for (int index = first; index < end; ++index) {
      ToggleFlag(PhotoSet->GetAsset(index), mark.Flag);
      changed.push_back(index);
    }
  }
  oneChange.Commit();
  for (const int index : changed) GetStrip().RedrawBand(index, mark.StripIcon);
  PhotoView->UpdateFlags();
  UpdateCommands();
  DropMouseMoves();
}

void CMainFrame::DeleteCurrentPhoto() {
  const CAssetRecord* current = GetStrip().GetCurrentRecord();
  if (current == nullptr) return;
  CAssetRecord photo = *current;
  const CWaitCursor waiting;
  StopSlideShow();
  setFocus();
  {
    CAutoCommitPause oneChange(Catalog);
    photo.SetFlag(PhotoFlag::Tossed, true);
    photo.SetFlag(PhotoFlag::ToEmail, false);
    photo.SetFlag(PhotoFlag::ToRemotePrint, false);
    oneChange.Commit();
  }
  GetStrip().RemoveCurrent();
}

void CMainFrame::SelectTab(ViewTabId tab) {
  if (TabBar->GetSelectedTab() != tab) TabBar->SelectTab(tab);
}

std::string CMainFrame::GetFolderLabel(const std::string& folder) const {
  return CFolderSearch::GetInstance().GetFolderLabel(folder);
}

void CMainFrame::OnTabChanged() {
  const bool photoTab = TabBar->GetSelectedTab() == ViewTabId::CurrentPhoto;
  PhotoView->setVisible(photoTab);
  ToolRow->setVisible(photoTab);
}

void CMainFrame::ToggleFullScreen(FullScreenChange change) {
  const bool on =
      change == FullScreenChange::Toggle ? !IsFullScreen() : change == FullScreenChange::FullScreen;
  if (on == IsFullScreen() || (on && !PhotoView->GetPhoto())) return;
  setFocus();  // ends an edit while its field shows
  if (on) SelectTab(ViewTabId::CurrentPhoto);
  Mode->OnLeave(*this);
  Mode = &GetViewMode(on ? ViewModeId::FullScreen : ViewModeId::Normal);
  setMinimumSize(Mode->GetMinMaxInfo());
  Mode->Enter(*this);
  Mode->Layout(*this);
  ToolRow->show();
  UpdateCommands();
  FullScreenTools->SetActive(on);
  setFocus();
}

void CMainFrame::ShowTools(bool show) {
  if (show) {
    FullScreenTools->Show();
  } else {
    FullScreenTools->Hide();
  }
}

void CMainFrame::DropMouseMoves() { FullScreenTools->DropMouseMoves(); }

void CMainFrame::StartSlideShow() { GetStrip().StartSlideShow(); }

void CMainFrame::StopSlideShow() { GetStrip().StopSlideShow(); }

bool CMainFrame::IsSlideShowRunning() const { return GetStrip().IsSlideShowRunning(); }

void CMainFrame::SetInputBlocked(bool on) { InputFilter->SetBlocked(on); }

void CMainFrame::closeEvent(QCloseEvent* event) {
  Closing = true;
  if (!IsJobRunning()) {
    if (PhotoBack) {
      PhotoBack->CommitEdits();
      // A refused write is told by an event, which must not be lost with the loop.
      QCoreApplication::sendPostedEvents(QCoreApplication::instance(), QEvent::MetaCall);
    }
    if (CApplication* application = CApplication::GetInstance()) application->EndLoop(kNormalExitCode);
    return;
  }
  event->ignore();
  StopJob();
  RunAfterJob([frame = QPointer<CMainFrame>(this)] {
    if (frame) frame->close();
  });
}

void CMainFrame::resizeEvent(QResizeEvent*) {
  if (StripWindow) Mode->Layout(*this);
}

void CMainFrame::paintEvent(QPaintEvent*) {
  if (!IsFullScreen()) {
    CDevicePainter painter(*this);
    const QRect place = LayOutMainWindow(size(), kStripWindowHeight, HelpButton->size()).Logo;
    painter.Draw({painter.Scaled(place.x()), painter.Scaled(place.y())},
                 GetPicture(PictureId::Logo, painter.GetPixelRatio()));
  }
  if (TipAsked) return;
  TipAsked = true;
  QTimer::singleShot(0, this, [this] { OnCommand(CommandId::TipAtStart); });
}

void CMainFrame::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && FullScreenTools) {
    FullScreenTools->OnActivationChanged(isActiveWindow());
  }
  if (event->type() == QEvent::WindowStateChange) FullScreenState.OnStateChanged();
  QWidget::changeEvent(event);
}

void CMainFrame::keyPressEvent(QKeyEvent* event) {
  // A key that a field has let pass is none of the window's.
  if (!hasFocus()) return QWidget::keyPressEvent(event);
  const KeyChord chord = ReadKeyChord(*event);
  const bool isRepeat = InputFilter && InputFilter->IsRepeat(*event);
  if (chord.Key == Qt::Key_Space && (chord.Modifiers & ~Qt::ShiftModifier) == 0) {
    return OnSpace(chord.Modifiers == Qt::ShiftModifier, isRepeat);
  }
  const Command* command = FindBareKey(chord);
  if (command == nullptr) return QWidget::keyPressEvent(event);
  OnKey(*command, isRepeat);
}

void CMainFrame::OnKey(const Command& command, bool isRepeat) {
  if (isRepeat && command.Held == KeyHeld::Nothing) return;
  if (!isRepeat) GetStrip().FinishMove();  // every press counts; what a held key adds is merged
  OnCommand(command.Id);
}

void CMainFrame::OnSpace(bool backward, bool isRepeat) {
  if (!isRepeat) SpaceStopsShow = IsSlideShowRunning();
  if (SpaceStopsShow) return StopSlideShow();
  OnKey(*FindCommand(backward ? CommandId::PreviousPhoto : CommandId::NextPhoto), isRepeat);
}

void CMainFrame::wheelEvent(QWheelEvent* event) {
  // It stays with an open editor, also past the end of its text.
  WheelTravel = IsEditing() ? 0 : WheelTravel + event->angleDelta().y();
  const int steps = WheelTravel / kWheelStep;
  WheelTravel -= steps * kWheelStep;
  if (steps == 0) return;
  StopSlideShow();
  GetStrip().FinishMove();  // every notch counts
  GetStrip().MoveBy(-steps);
}

void CMainFrame::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) ToggleFullScreen(FullScreenChange::Normal);
}
