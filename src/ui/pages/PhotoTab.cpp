#include "ui/pages/PhotoTab.h"

#include <QElapsedTimer>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <algorithm>
#include <optional>
#include <utility>

#include "base/Exceptions.h"
#include "base/Messages.h"
#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "imaging/Image.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Job.h"
#include "ui/kit/KeyFocus.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"
#include "ui/kit/WaitCursor.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/pages/ViewTabLayout.h"

namespace {

constexpr int kPaintTime = 40;  // ms that painting cells may take before the window gets its turn
constexpr int kFrameWidth = 4;
constexpr int kHelpFlags = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;

struct MoveKey {
  int Key;
  GridMove Move;
};
constexpr MoveKey kMoveKeys[] = {{Qt::Key_Left, GridMove::Left},
                                 {Qt::Key_Right, GridMove::Right},
                                 {Qt::Key_Up, GridMove::Up},
                                 {Qt::Key_Down, GridMove::Down}};

QString LoadHelp(StringId id) { return id == StringId{} ? QString() : ToQString(LoadExpandedString(id)); }

int MeasureHelp(FontId font, const QString& text, int width) {
  if (text.isEmpty()) return 0;
  return QFontMetrics(GetFont(font)).boundingRect(QRect(0, 0, width, 0), kHelpFlags, text).height();
}

}  // namespace

CPhotoTab::CPhotoTab(const PhotoTabForm& form, CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host,
                     QWidget* parent)
    : QWidget(parent),
      Form(form),
      Catalog(catalog),
      Bar(bar),
      Host(host),
      SharpPictures(
          [this](std::int32_t assetId, const QImage& picture) {
            update(Picture.PaintSharp(Photos.IndexOf(assetId), picture));
          },
          [this] { PaintSomeCells(); }) {
  setObjectName(QString::fromLatin1(form.WindowName));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::TabFocus);
  TellAccessibleName();
  PaintTimer.setInterval(0);
  connect(&PaintTimer, &QTimer::timeout, this, [this] { PaintSomeCells(); });
}

CPhotoTab::~CPhotoTab() = default;

// The photos.

bool CPhotoTab::BelongsHere(const CAssetRecord& photo) const {
  if (!photo.IsValid() || !photo.GetFlag(Form.Flag)) return false;
  return Form.Flag == PhotoFlag::Tossed || photo.GetMissing() == MissingState::InPlace;
}

std::vector<std::int32_t> CPhotoTab::ListPhotos() const {
  std::vector<std::int32_t> ids;
  ids.reserve(static_cast<std::size_t>(GetCount()));
  for (int i = 0; i < GetCount(); ++i) ids.push_back(Photos.GetAssetId(i));
  return ids;
}

void CPhotoTab::LoadSet() {
  std::vector<std::int32_t> ids = ListPhotos();
  const CQuerySet members(&Catalog, Form.Kind);
  for (int i = 0; i < members.GetCount(); ++i) ids.push_back(members.GetAssetId(i));
  FollowFlags(ids);
  Photos.ForgetThumbnails();  // a search may have made others
  LayOut(0);
}

void CPhotoTab::ChangePhotos(std::span<const std::int32_t> assetIds, const std::function<void()>& change) {
  const auto follow = [&] {
    FollowFlags(assetIds);
    OnPhotosChanged();
  };
  try {
    change();
  } catch (const CStorageException&) {
    follow();  // a commit may fail after it took effect
    throw;
  }
  follow();
}

void CPhotoTab::SetFlags(std::span<const std::int32_t> assetIds, bool on) {
  ChangePhotos(assetIds, [&] {
    CAutoCommitPause oneChange(Catalog);
    for (const std::int32_t assetId : assetIds) Catalog.FindAssetById(assetId).SetFlag(Form.Flag, on);
    oneChange.Commit();
  });
}

void CPhotoTab::FollowFlags(std::span<const std::int32_t> assetIds) {
  const std::int32_t selectedId = Photos.GetAssetId(Selected);
  CAssetIdSet here, leaving, changed;
  for (const std::int32_t assetId : ListPhotos()) here.Add(assetId);
  std::vector<std::int32_t> coming;
  bool isAnyLeaving = false;
  for (const std::int32_t assetId : assetIds) {
    if (changed.Contains(assetId)) continue;
    const bool isHere = here.Contains(assetId);
    if (isHere == BelongsHere(Catalog.FindAssetById(assetId))) continue;
    changed.Add(assetId);
    if (isHere) {
      leaving.Add(assetId);
      isAnyLeaving = true;
    } else {
      coming.push_back(assetId);
    }
  }
  if (!isAnyLeaving && coming.empty()) return;
  int firstChanged = 0;
  while (firstChanged < GetCount() && !leaving.Contains(Photos.GetAssetId(firstChanged))) ++firstChanged;
  Photos.RemoveAll(leaving);
  for (const std::int32_t assetId : coming) Photos.Add(assetId);
  Photos.Rebuild();
  ShowMembers(firstChanged, selectedId);
  TellItems();
  Host.OnMarksChanged(changed);
}

void CPhotoTab::ShowMembers(int firstChanged, std::int32_t selectedId) {
  Selected = selectedId == -1 ? -1 : Photos.IndexOf(selectedId);
  UpdatePresence();
  LayOut(firstChanged);
  UpdateCaption();
}

void CPhotoTab::UpdatePresence() {
  if (!IsAlwaysShown()) {
    if (!Bar.HasTab(Form.Tab)) return;
    const bool wasSelected = Bar.GetSelectedTab() == Form.Tab;
    Bar.RemoveTab(Form.Tab);
    if (wasSelected) Bar.SelectTab(ViewTabId::CurrentPhoto);
    return;
  }
  if (Bar.HasTab(Form.Tab)) return;
  Bar.AddTab(Form.Tab, Form.Order);
  Bar.SetTabInfo(Form.Tab, Form.Icon, Form.IconFrames, Form.Caption, 0);
  UpdateCaption();
}

void CPhotoTab::UpdateCaption() {
  Bar.SetCount(Form.Tab, GetCount());
  TellAccessibleName();
}

void CPhotoTab::RefreshThumbnail(std::int32_t assetId) {
  const int index = Photos.IndexOf(assetId);
  if (index < 0) return;
  Photos.RefreshThumbnail(assetId);
  SharpPictures.GiveUp();
  update(Picture.Repaint(index));
  PaintSomeCells();
  TellItemName(index);
}

// The selection.

void CPhotoTab::SetSelected(int index) {
  if (index == Selected) return;
  for (const int changed : {std::exchange(Selected, index), index}) {
    if (changed >= 0) update(Grid.GetFrame(changed));
  }
  TellCurrentItem();
}

void CPhotoTab::SelectPhoto(std::int32_t assetId) {
  CurrentPhoto = assetId;
  SetSelected(assetId == -1 ? -1 : Photos.IndexOf(assetId));
}

bool CPhotoTab::NavigateTo(int index) {
  const std::int32_t assetId = Photos.GetAssetId(index);
  Host.ShowInStrip(assetId);
  SelectPhoto(assetId);  // the strip tells nothing of a photo that it shows already
  return true;
}

void CPhotoTab::OpenPhoto() { Bar.SelectTab(ViewTabId::CurrentPhoto); }

void CPhotoTab::OpenSelected() {
  if (Selected < 0) return;
  NavigateTo(Selected);
  OpenPhoto();
}

bool CPhotoTab::ShowSelected() {
  return Selected >= 0 && Photos.GetAssetId(Selected) != CurrentPhoto && NavigateTo(Selected);
}

void CPhotoTab::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  setFocus(Qt::MouseFocusReason);
  Drag.Forget();
  const int index = Grid.FindCellAt(event->position().toPoint(), GetCount());
  if (index < 0) return;
  PressedId = Photos.GetAssetId(index);
  Drag.Press(event->position().toPoint());
  NavigateTo(index);
}

void CPhotoTab::mouseMoveEvent(QMouseEvent* event) {
  event->ignore();
  if (!Drag.BeginsWith(*event)) return;
  const CAssetRecord photo = Catalog.FindAssetById(PressedId);
  if (photo.IsValid()) Drag.Run(photo.GetPath(), photo.LoadThumbnail().get());
}

void CPhotoTab::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  // The first click may have led to another photo at this place.
  mousePressEvent(event);
  if (Grid.FindCellAt(event->position().toPoint(), GetCount()) >= 0) OpenPhoto();
}

void CPhotoTab::keyPressEvent(QKeyEvent* event) {
  const bool isBare = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  const auto found = std::find_if(std::begin(kMoveKeys), std::end(kMoveKeys),
                                  [&](const MoveKey& key) { return key.Key == event->key(); });
  if (!isBare || found == std::end(kMoveKeys) || GetCount() == 0) return event->ignore();
  SetSelected(MoveInGrid(found->Move, Selected, Grid.Columns, GetCount()));
}

// The commands of the lists of photos to send.

void CPhotoTab::ClearOne() {
  if (Selected >= 0) RemovePhoto(Photos.GetAsset(Selected));
}

void CPhotoTab::ClearAll() {
  const CWaitCursor waiting;
  SetFlags(ListPhotos(), false);
  RecentRoll = -1;
}

void CPhotoTab::AddRecent() {
  if (RecentRoll == -1) RecentRoll = Catalog.GetCurrentRollID();
  if (RecentRoll < 0) return;  // there are no photos yet
  std::optional<CWaitCursor> waiting(std::in_place);
  CQuerySet photos(&Catalog, SetKind::Available);
  photos.SetRollFilter(0, RecentRoll);
  photos.SetSort(SortKind::Roll, false);
  photos.Rebuild();
  // The newest roll that still has photos, which stand last.
  const int count = photos.GetCount();
  RecentRoll = count > 0 ? photos.GetAsset(count - 1).GetRollID() : 0;
  waiting.reset();
  if (count == 0 || (RecentRoll == 0 && !ShowMessageId(StringId::AddAllPhotosQuestion, true))) return;
  waiting.emplace();
  CAssetIdSet here;
  for (const std::int32_t assetId : ListPhotos()) here.Add(assetId);
  std::vector<std::int32_t> coming;
  for (int i = 0; i < count; ++i) {
    const CAssetRecord photo = photos.GetAsset(i);
    if (photo.GetRollID() == RecentRoll && !here.Contains(photo.GetAssetID())) {
      coming.push_back(photo.GetAssetID());
    }
  }
  SetFlags(coming, true);
  --RecentRoll;
}

// The picture.

void CPhotoTab::LayOut(int firstChanged) {
  const PhotoGrid grid = FitPhotoGrid(size(), GetCount());
  const bool isNew = grid != Grid || Picture.GetImage().isNull();
  Grid = grid;
  SharpPictures.GiveUp();
  if (!isVisible()) return;
  if (isNew) Picture.SetForm(size(), Grid, devicePixelRatioF());
  if (isNew || Picture.EmptyFrom(firstChanged) || firstChanged == 0) update();
  PaintSomeCells();
}

void CPhotoTab::PaintSomeCells() {
  if (IsJobRunning()) {
    PaintTimer.stop();
    return RunAfterJob([tab = QPointer<CPhotoTab>(this)] {
      if (tab) tab->PaintSomeCells();
    });
  }
  QElapsedTimer time;
  time.start();
  while (!Picture.IsComplete() && time.elapsed() < kPaintTime) update(Picture.PaintNext());
  if (Picture.IsComplete()) {
    PaintTimer.stop();
    SharpenCells();
  } else if (!PaintTimer.isActive()) {
    PaintTimer.start();
  }
}

void CPhotoTab::SharpenCells() {
  if (!isVisible()) return;
  std::vector<PictureWish> wishes;
  for (const int index : Picture.ListSoftCells()) {
    const CAssetRecord photo = Photos.GetAsset(index);
    if (photo.IsValid()) wishes.push_back({photo.GetAssetID(), photo.GetPath(), Picture.GetPhotoBox()});
  }
  SharpPictures.Prepare(std::move(wishes), devicePixelRatioF());
}

bool CPhotoTab::event(QEvent* event) {
  if (event->type() == QEvent::ScreenChangeInternal) {  // the pixel ratio may be another now
    Picture.Clear();
    LayOut(0);
  }
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  auto& help = static_cast<QHelpEvent&>(*event);
  const int index = IsJobRunning() ? -1 : Grid.FindCellAt(help.pos(), GetCount());
  const bool isPath = index >= 0 && Photos.GetThumbnail(index) == nullptr;
  const QString tip = isPath ? ToQString(Photos.GetAsset(index).GetPath()) : QString();
  AnswerToolTip(help, tip, *this, isPath ? Grid.GetCell(index) : QRect());
  return true;
}

void CPhotoTab::resizeEvent(QResizeEvent*) {
  Picture.Clear();
  LayOut(0);
}

void CPhotoTab::showEvent(QShowEvent*) { LayOut(0); }

void CPhotoTab::hideEvent(QHideEvent*) {
  PaintTimer.stop();
  SharpPictures.GiveUp();
  Picture.Clear();
}

void CPhotoTab::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  if (Picture.GetImage().isNull()) painter.Fill(painter.GetArea(), colours::kPage);
  painter.GetPainter().drawImage(0, 0, Picture.GetImage());
  if (GetCount() == 0) PaintHelp(painter);
  const QRect frame = Selected >= 0 ? painter.Scaled(Grid.GetFrame(Selected)) : painter.GetArea();
  if (Selected >= 0) DrawSelectionFrame(painter, frame, kFrameWidth);
  if (ShowsFocus(*this)) DrawFocusFrame(painter, frame, 0);
}

void CPhotoTab::PaintHelp(CDevicePainter& painter) const {
  const QString first = LoadHelp(Form.Help1);
  const QString second = LoadHelp(Form.Help2);
  const int room = GetHelpWidth(width());
  const HelpPlaces places = PlaceHelp(size(), MeasureHelp(FontId::EmptyPage, first, room),
                                      MeasureHelp(FontId::Field, second, room));
  painter.DrawText(painter.Scaled(places.First), kHelpFlags, GetFont(FontId::EmptyPage), colours::kInk,
                   first);
  painter.DrawText(painter.Scaled(places.Second), kHelpFlags, GetFont(FontId::Field), colours::kInk, second);
}

// Assistive tools.

void CPhotoTab::TellAccessibleName() {
  setAccessibleName(TabCaption(ToQString(LoadText(Form.Caption)), GetCount()).replace(u'\n', u' '));
  setAccessibleDescription(GetCount() > 0 ? QString() : LoadHelp(Form.Help1));
}

PaintedItem CPhotoTab::DescribeItem(int index) const {
  return {ToQString(Photos.GetAsset(index).GetTitle()), {}};
}

void CPhotoTab::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);  // paints the frame
  TellCurrentItem();
}
