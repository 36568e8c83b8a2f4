#include "ui/frame/MainFrame.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "base/Exceptions.h"
#include "base/Texts.h"
#include "discovery/FolderSearch.h"
#include "editing/SafeFiles.h"
#include "imaging/Image.h"
#include "imaging/ImageFile.h"
#include "platform/AbsolutePaths.h"
#include "sets/QuerySet.h"
#include "ui/back/FilterBar.h"
#include "ui/back/PhotoBack.h"
#include "ui/controls/PaintedButton.h"
#include "ui/controls/Toolbar.h"
#include "ui/frame/CommandTable.h"
#include "ui/frame/MarkPhotos.h"
#include "ui/frame/PhotoToolRow.h"
#include "ui/kit/Application.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FilePath.h"
#include "ui/kit/InputBlock.h"
#include "ui/kit/Job.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/kit/WaitCursor.h"
#include "ui/marks/PhotoMarks.h"
#include "ui/pages/EmailTab.h"
#include "ui/pages/PhotoView.h"
#include "ui/pages/TrashTab.h"
#include "ui/pages/UploadTab.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/search/WindowedSearchProgress.h"
#include "ui/strip/StripWindow.h"

namespace {

constexpr int kWheelStep = 120;  // eighths of a degree to a notch
constexpr int kCurrentPhotoTabOrder = 100;

}  // namespace

CMainFrame::CMainFrame()
    : Commands(Parts, {.ToggleFullScreen = [this](FullScreenChange change) { ToggleFullScreen(change); },
                       .ToggleInTab = [this](const CAssetRecord& photo, ViewTabId tab,
                                             bool extendRange) { ToggleInTab(photo, tab, extendRange); },
                       .OnPhotoChanged = [this] { OnPhotoChanged(); }}),
      Mode(&GetViewMode(ViewModeId::Normal)) {
  Parts.Window = this;
  Parts.FullScreenState =
      std::make_unique<CFullScreenState>(*this, [this] { ToggleFullScreen(FullScreenChange::Normal); });
  setObjectName(window_names::kMainFrame);
  setFocusPolicy(Qt::StrongFocus);
  setAutoFillBackground(true);
  setAcceptDrops(true);
  QPalette colors = palette();
  colors.setColor(QPalette::Window, colours::kWindow);
  setPalette(colors);
}

CMainFrame::~CMainFrame() {
  ThumbnailCheck.reset();
  InputFilter.reset();
  Parts.StripWindow.reset();  // it shows the set
}

bool CMainFrame::Create(const OpenStep& openDataStores, CWindowedSearchProgress& progress) {
  setWindowTitle(ToQString(LoadExpandedString(StringId::MainWindowTitle)));
  setWindowIcon(MakeProgramIcon());
  LeastSize.SetWanted(Mode->GetMinMaxInfo());

  const auto stop = [&progress] { progress.Stop(); };
  bool opened = false;
  RunJob([&] { opened = openDataStores(Catalog, ThumbnailCache); }, stop);
  if (!opened) return false;

  const std::int32_t rollBefore = Catalog.GetCurrentRollID();
  std::string folder;
  RunJob([&] { folder = CFolderSearch::GetInstance().FirstSearch(); }, stop);

  Parts.PhotoSet = std::make_unique<CQuerySet>(&Catalog, SetKind::Available);
  CreateParts();

  // A folder that can't be remembered is shown all the same.
  TellRefusal(&progress, [&] { Parts.FilterBar->SelectFolder(folder); });
  GetStrip().SetPhotoSet(Parts.PhotoSet.get());
  for (const auto& tab : Parts.PhotoTabs) {
    tab->LoadSet();
    tab->UpdatePresence();
  }
  if (Catalog.GetCurrentRollID() > rollBefore) {
    Parts.FilterBar->ShowNewestRoll();
  } else {
    Parts.FilterBar->SelectStoredSort();
  }
  ThumbnailCheck = std::make_unique<CThumbnailCheck>(
      Catalog, ThumbnailCache,
      [this](const std::vector<std::int32_t>& photos) { OnThumbnailsRemade(photos); });
  ThumbnailCheck->Start();
  return true;
}

CPhotoTab* MainParts::GetPhotoTab(ViewTabId tab) const {
  const auto found = std::find_if(PhotoTabs.begin(), PhotoTabs.end(),
                                  [tab](const auto& page) { return page->GetTab() == tab; });
  return found != PhotoTabs.end() ? found->get() : nullptr;
}

const TabPage& MainParts::GetShownPage() const {
  const auto found = std::find_if(Pages.begin(), Pages.end(), [this](const TabPage& page) {
    return page.Tab == TabBar->GetSelectedTab();
  });
  return found != Pages.end() ? *found : Pages.front();
}

void CMainFrame::CreateParts() {
  CreatePhotoBack();
  CreatePages();
  Parts.HelpButton = std::make_unique<CPaintedButton>(*this, this);
  Parts.HelpButton->Create({}, CommandId::Help, {}, PictureId::Help, 2);
  Parts.HelpButton->TakeFocusByTab();
  Parts.HelpButton->SetRound();
  Parts.StripWindow = std::make_unique<CStripWindow>(*this, this);
  FullScreenTools = std::make_unique<CFullScreenTools>(*this, *Parts.PhotoView, *Parts.ToolRow);
  InputFilter = std::make_unique<CInputFilter>(
      *this, *Parts.PhotoBack,
      InputHandlers{
          .OnAccelerator = [this](const Command& command, bool isRepeat) { OnKey(command, isRepeat); },
          .OnPointerMoved = [this](QPoint place) { FullScreenTools->OnPointerMoved(place); },
          .OnPanelClicked =
              [this] {
                GetStrip().AnnounceNow();
                Commands.OnPanelClicked();
              }});

  Parts.TabBar->SelectTab(ViewTabId::CurrentPhoto);
  Mode->Layout(Parts);
}

void CMainFrame::CreatePhotoBack() {
  CPhotoBack& back = *(Parts.PhotoBack = std::make_unique<CPhotoBack>(this));
  back.OnEditBegins = [this] { OnEditBegins(); };
  back.OnStampChanged = [this](StampId type) { OnStampChanged(type); };
  back.OnPhotoRenamed = [this] {
    Parts.PhotoView->OnPhotoRenamed();
    if (const auto& photo = Parts.PhotoView->GetPhoto()) RefreshInTabs(photo->GetAssetID());
    UpdateCommands();
  };
  back.GetPictureSize = [this] { return GetPictureSize(); };
  Parts.FilterBar = std::make_unique<CFilterBar>(*this, &back);
  back.SetFilterBar(Parts.FilterBar.get(), CFilterBar::GetHeight());
}

void CMainFrame::CreatePages() {
  CViewTabBar& bar = *(Parts.TabBar = std::make_unique<CViewTabBar>(this));
  bar.OnTabChanged = [this] { OnTabChanged(); };
  bar.AddTab(ViewTabId::CurrentPhoto, kCurrentPhotoTabOrder);
  bar.SetTabInfo(ViewTabId::CurrentPhoto, PictureId::CurrentPhotoTab, 1, StringId::CurrentPhotoTabCaption, 0);
  Parts.PhotoView = std::make_unique<CPhotoView>(this);
  Parts.PhotoView->OnDoubleClick = [this] { ToggleFullScreen(FullScreenChange::Toggle); };
  Parts.ToolRow = std::make_unique<CToolbar>(*this, this);
  FillPhotoToolRow(*Parts.ToolRow);
  Parts.Pages.push_back({ViewTabId::CurrentPhoto, Parts.PhotoView.get(), Parts.ToolRow.get()});

  Parts.PhotoTabs.push_back(std::make_unique<CEmailTab>(Catalog, bar, *this, this));
  Parts.PhotoTabs.push_back(std::make_unique<CTrashTab>(Catalog, bar, *this, this));
  Parts.PhotoTabs.push_back(std::make_unique<CUploadTab>(Catalog, bar, *this, this));
  for (const auto& tab : Parts.PhotoTabs) {
    Parts.Pages.push_back({tab->GetTab(), tab.get(), nullptr});
    tab->hide();
  }
}

CFilmstrip& CMainFrame::GetStrip() const { return Parts.StripWindow->GetStrip(); }

void CMainFrame::ShowInFront() {
  showMaximized();
  raise();
  activateWindow();
  setFocus();
}

void CMainFrame::OnCommand(CommandId id) {
  if (IsInputBlocked()) return;
  RunAfterJob([frame = QPointer<CMainFrame>(this), id] {
    if (frame) CApplication::GetInstance()->RunGuarded([&frame, id] { frame->Run(id); });
  });
}

void CMainFrame::Run(CommandId id) {
  const Command* command = FindCommand(id);
  if (command == nullptr) {
    GetStrip().AnnounceNow();
    CPhotoTab* page = Parts.GetPhotoTab(Parts.TabBar->GetSelectedTab());
    if (page != nullptr) page->OnCommand(id);
    return;
  }
  // All commands but moves act on the photo at which the strip will stop.
  const bool isMove = command->Held == KeyHeld::MovesStrip;
  if (!isMove) GetStrip().AnnounceNow();
  (Commands.*command->Run)(id);
  // Text typed into the open field from now on belongs to the new photo.
  if (isMove && Parts.PhotoBack->IsEditing()) GetStrip().AnnounceNow();
}

void CMainFrame::OnCurrentPhotoChanged(const CAssetRecord* record) {
  Parts.PhotoBack->CommitEdits();  // to the previous photo
  const CWaitCursor waiting;
  const auto photo = record != nullptr ? std::optional<CAssetRecord>(*record) : std::nullopt;
  for (const PhotoMark& mark : kPhotoMarks) {
    Parts.GetPhotoTab(mark.Tab)->SelectPhoto(photo ? photo->GetAssetID() : -1);
  }
  Parts.PhotoView->SetPhoto(photo);
  LookAhead();
  Parts.PhotoBack->SetPhoto(photo);
  UpdateCommands();
  DropMouseMoves();
}

void CMainFrame::LookAhead() {
  const int index = GetStrip().GetCurrentIndex();
  const bool movedBack = index < std::exchange(LastIndex, index);
  std::vector<std::string> paths;
  for (const int step : movedBack ? std::array{-1, 1} : std::array{1, -1}) {
    const CAssetRecord photo = Parts.PhotoSet->GetAsset(index + step);
    if (photo.IsValid()) paths.push_back(photo.GetPath());
  }
  Parts.PhotoView->SetNeighbours(std::move(paths));
}

void CMainFrame::OnSlideBegins(const CAssetRecord* target) {
  std::vector<std::string> paths;
  if (target != nullptr && target->IsValid()) paths.push_back(target->GetPath());
  Parts.PhotoView->SetNeighbours(std::move(paths));
}

bool CMainFrame::ShowsAtOnce(const CAssetRecord& record) const { return Parts.PhotoView->IsReady(record); }

void CMainFrame::RefreshStrip(StripPosition position) { GetStrip().Refresh(static_cast<int>(position)); }

void CMainFrame::MoveStrip(int index) { GetStrip().MoveTo(index); }

void CMainFrame::OnEditBegins() {
  // The typed text belongs to the photo under the lens, so that photo stays there.
  StopSlideShow();
  GetStrip().AnnounceNow();
}

bool CMainFrame::IsEditing() const { return Parts.PhotoBack->IsEditing() || Parts.FilterBar->IsEditing(); }

void CMainFrame::PrepareForJob() {
  Parts.PhotoBack->CommitEdits();
  StopSlideShow();
  GetStrip().FinishMove();
  Parts.PhotoView->GiveUpNeighbours();
}

void CMainFrame::OnFoldersSearched() {
  const CWaitCursor waiting;
  for (const auto& tab : Parts.PhotoTabs) tab->LoadSet();
}

void CMainFrame::OnMarksChanged(const CAssetIdSet& photos) {
  GetStrip().RedrawMarks(photos);
  Parts.PhotoView->UpdateFlags();
  UpdateCommands();
}

void CMainFrame::ShowInStrip(std::int32_t assetId) {
  CPhotoSet& set = *Parts.PhotoSet;
  if (const int index = set.IndexOf(assetId); index >= 0) return MoveStrip(index);
  set.SetGuest(assetId);
  GetStrip().Refresh(set.GetCount() - 1);
}

void CMainFrame::RebuildStrip() {
  const CWaitCursor waiting;
  CPhotoSet& set = *Parts.PhotoSet;
  const std::int32_t guest = set.GetGuest();
  set.SetGuest(-1);
  set.Rebuild();
  if (set.IndexOf(guest) < 0 && Catalog.FindAssetById(guest).IsValid()) set.SetGuest(guest);
  RefreshStrip(StripPosition::KeepPhoto);
}

void CMainFrame::OnStampChanged(StampId type) {
  // While the current photo changes, this is still the previous one.
  const auto& photo = Parts.PhotoView->GetPhoto();
  if (!photo) return;
  GetStrip().StampChanged(type, photo->GetAssetID());
  Parts.PhotoView->TellDescription();
}

ImageSize CMainFrame::GetPictureSize() const {
  if (const CImage* image = Parts.PhotoView->GetImage()) return image->GetNaturalSize();
  const auto& photo = Parts.PhotoView->GetPhoto();
  return photo && !Parts.PhotoView->isVisible() ? ReadImageSize(photo->GetPath()) : ImageSize();
}

void CMainFrame::OnPhotoChanged() {
  const CAssetRecord* record = GetStrip().GetCurrentRecord();
  if (record == nullptr) return;
  CAssetRecord photo = *record;
  Parts.PhotoBack->UpdateFormat();
  UpdateCommands();
  const auto showThumbnail = [&] {
    GetStrip().RedrawCurrentThumbnail();
    RefreshInTabs(photo.GetAssetID());
  };
  showThumbnail();        // the old one has been forgotten
  photo.MakeThumbnail();  // last, since writing it may fail
  showThumbnail();
  DropMouseMoves();
}

void CMainFrame::OnThumbnailsRemade(const std::vector<std::int32_t>& photos) {
  CAssetIdSet remade;
  for (const std::int32_t assetId : photos) {
    remade.Add(assetId);
    RefreshInTabs(assetId);
  }
  GetStrip().RedrawThumbnails(remade);
}

void CMainFrame::RefreshInTabs(std::int32_t assetId) {
  for (const auto& tab : Parts.PhotoTabs) tab->RefreshThumbnail(assetId);
}

void CMainFrame::OnSlideShowStateChanged() {
  UpdateCommands();
  if (IsSlideShowRunning()) ShowTools(false);
}

void CMainFrame::UpdateCommands() {
  PhotoToolState state;
  if (const auto& photo = Parts.PhotoView->GetPhoto(); photo && photo->IsValid()) {
    state.HasPhoto = true;
    state.HasOriginalCopy = HasOriginalCopy(*photo);
    state.ToEmail = photo->GetFlag(PhotoFlag::ToEmail);
    state.ToUpload = photo->GetFlag(PhotoFlag::ToRemotePrint);
  }
  state.SlideShowRuns = IsSlideShowRunning();
  state.FullScreen = IsFullScreen();
  UpdatePhotoToolRow(*Parts.ToolRow, state);
  if (IsFullScreen()) Mode->PlaceTools(Parts);
}

void CMainFrame::ToggleInTab(const CAssetRecord& photo, ViewTabId tab, bool extendRange) {
  CApplication::GetInstance()->RunGuarded([&] {
    const CWaitCursor waiting;
    ToggleMarks(Catalog, Parts, photo, tab, extendRange);
    DropMouseMoves();
  });
}

void CMainFrame::SelectTab(ViewTabId tab) {
  if (Parts.TabBar->GetSelectedTab() != tab) Parts.TabBar->SelectTab(tab);
}

std::string CMainFrame::GetFolderLabel(const std::string& folder) const {
  return CFolderSearch::GetInstance().GetFolderLabel(folder);
}

void CMainFrame::OnTabChanged() {
  const QWidget* const focus = focusWidget();
  const bool hadFocus = std::any_of(Parts.Pages.begin(), Parts.Pages.end(), [&](const TabPage& page) {
    return page.Page == focus || (page.ToolRow != nullptr && page.ToolRow->isAncestorOf(focus));
  });
  for (TabPage& page : Parts.Pages) {
    const bool isSelected = page.Tab == Parts.TabBar->GetSelectedTab();
    if (isSelected && page.ToolRow == nullptr) CreateToolRow(page);
    if (hadFocus && isSelected) page.Page->focusPolicy() != Qt::NoFocus ? page.Page->setFocus() : setFocus();
    page.Page->setVisible(isSelected);
    if (page.ToolRow != nullptr) page.ToolRow->setVisible(isSelected);
  }
}

void CMainFrame::CreateToolRow(TabPage& page) {
  CToolbar& row = *Parts.PhotoTabRows.emplace_back(std::make_unique<CToolbar>(*this, this));
  Parts.GetPhotoTab(page.Tab)->FillButtonRow(row);
  page.ToolRow = &row;
  Mode->PlaceTools(Parts);
}

void CMainFrame::ToggleFullScreen(FullScreenChange change) {
  const bool on =
      change == FullScreenChange::Toggle ? !IsFullScreen() : change == FullScreenChange::FullScreen;
  if (on == IsFullScreen() || (on && !Parts.PhotoView->GetPhoto())) return;
  setFocus();  // ends an edit while its field shows
  if (on) SelectTab(ViewTabId::CurrentPhoto);
  Mode->OnLeave(Parts);
  Mode = &GetViewMode(on ? ViewModeId::FullScreen : ViewModeId::Normal);
  LeastSize.SetWanted(Mode->GetMinMaxInfo());
  Mode->Enter(Parts);
  Mode->Layout(Parts);
  Parts.ToolRow->show();
  UpdateCommands();
  FullScreenTools->SetActive(on);
  setFocus();
  TellFocus();
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

void CMainFrame::SetInputBlocked(bool on) {
  InputFilter->SetBlocked(on);
  if (!on && Closing)
    QMetaObject::invokeMethod(
        this, [this] { close(); }, Qt::QueuedConnection);
}

bool CMainFrame::focusNextPrevChild(bool) {
  setFocus();
  return true;
}

void CMainFrame::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  if (Parts.StripWindow) Parts.StripWindow->UpdateFocus();
  TellFocus();
}

void CMainFrame::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  if (Parts.StripWindow) Parts.StripWindow->UpdateFocus();
}

std::vector<GroupPart> CMainFrame::ListParts() const {
  if (!Parts.StripWindow) return {};
  std::vector<GroupPart> parts{{Parts.TabBar.get()}};
  for (const TabPage& page : Parts.Pages) {
    parts.push_back({page.Page});
    if (page.ToolRow != nullptr) parts.push_back({page.ToolRow});
  }
  parts.push_back({Parts.HelpButton.get()});
  parts.push_back({Parts.PhotoBack.get()});
  parts.push_back({Parts.StripWindow.get()});
  return parts;
}

QWidget* CMainFrame::GetFocusedPart() const {
  if (!Parts.StripWindow) return nullptr;
  if (GetStrip().isVisible()) return &GetStrip();
  return Parts.PhotoView->isVisible() ? Parts.PhotoView.get() : nullptr;
}

void CMainFrame::closeEvent(QCloseEvent* event) {
  Closing = true;
  if (IsInputBlocked()) return event->ignore();  // what has blocked it sees that, and ends
  if (!IsJobRunning()) {
    if (Parts.PhotoBack) {
      Parts.PhotoBack->CommitEdits();
      // A failed write is reported by an event; that event must not be lost when the loop ends.
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
  if (Parts.StripWindow) Mode->Layout(Parts);
}

void CMainFrame::paintEvent(QPaintEvent*) {
  if (!IsFullScreen()) {
    CDevicePainter painter(*this);
    const QPoint place = GetLogoPlace(size());
    painter.Draw({painter.Scaled(place.x()), painter.Scaled(place.y())},
                 GetPicture(PictureId::Logo, painter.GetPixelRatio()));
  }
  if (TipAsked || PathsToShow.IsBusy()) return;  // what was opened comes first
  TipAsked = true;
  QTimer::singleShot(0, this, [this] { OnCommand(CommandId::TipAtStart); });
}

void CMainFrame::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && FullScreenTools) {
    FullScreenTools->OnActivationChanged(isActiveWindow());
  }
  if (event->type() == QEvent::WindowStateChange) Parts.FullScreenState->OnStateChanged();
  QWidget::changeEvent(event);
}

void CMainFrame::keyPressEvent(QKeyEvent* event) {
  // It comes here from every part that has no use for it. What an edit box ignores is no command.
  if (IsEditing()) return QWidget::keyPressEvent(event);
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
  if (!isRepeat) GetStrip().FinishMove();  // every press counts; repeats of a held key are merged
  OnCommand(command.Id);
}

void CMainFrame::OnSpace(bool backward, bool isRepeat) {
  if (!isRepeat) SpaceStopsShow = IsSlideShowRunning();
  if (SpaceStopsShow) return StopSlideShow();
  CPhotoTab* const page = Parts.GetPhotoTab(Parts.TabBar->GetSelectedTab());
  if (!backward && !isRepeat && page != nullptr && page->hasFocus() && page->ShowSelected()) return;
  OnKey(*FindCommand(backward ? CommandId::PreviousPhoto : CommandId::NextPhoto), isRepeat);
}

void CMainFrame::wheelEvent(QWheelEvent* event) {
  // The wheel scrolls an open editor and does nothing else, even at the end of its text.
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

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
  // A photo that was dragged out of this window isn't taken back.
  const bool isForeign = event->source() == nullptr && event->mimeData()->hasUrls();
  if (!isForeign || !event->possibleActions().testFlag(Qt::CopyAction)) return;
  event->setDropAction(Qt::CopyAction);  // nothing is moved away from where it is
  event->accept();
}

void CMainFrame::dropEvent(QDropEvent* event) {
  event->setDropAction(Qt::CopyAction);
  event->accept();
  std::vector<std::string> paths;
  for (const QUrl& address : event->mimeData()->urls()) {
    std::string path = GetPathOfAddress(address);
    if (!path.empty()) paths.push_back(platform::MakeAbsolute(path));
  }
  ShowPaths(std::move(paths));
}
