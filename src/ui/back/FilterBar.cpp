#include "ui/back/FilterBar.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <QPointer>
#include <QScopedValueRollback>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "base/Settings.h"
#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "discovery/FolderSearch.h"
#include "sets/PhotoSet.h"
#include "ui/back/FilterBarHost.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/DropControl.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"
#include "ui/kit/WaitCursor.h"

namespace {

constexpr const char* kTextHistory = "TextFilterHistory";
constexpr int kRememberedTexts = 8;
constexpr const char* kSortSetting = "Sort";

constexpr QColor kGround(231, 233, 235);
constexpr QColor kUpperLine(201, 203, 206);
constexpr QColor kLineBelow(248, 249, 249);
constexpr double kPanelRadius = 5;

struct ControlKind {
  StringId Label;
  const char* Name;
  DropStyle Style;
};
constexpr ControlKind kControls[kFilterRows] = {
    {StringId::FilterShow, "FolderControl",
     DropStyle::ShortensPaths | DropStyle::Images | DropStyle::History},
    {StringId::FilterFind, "FindControl", DropStyle::EditBox | DropStyle::History | DropStyle::SelectsWhole},
    {StringId::FilterRated, "RatedControl", DropStyle::Images},
    {StringId::FilterSortBy, "SortControl", DropStyle::Images},
};

QString LoadLabel(StringId id) { return ToQString(LoadExpandedString(id)) + u' '; }

/// Of the widest label. The labels and their font stay the same for the whole run.
int GetLabelWidth() {
  static const int width = [] {
    const QFontMetricsF metrics(GetFont(FontId::PanelItalic));
    double widest = 0;
    for (const ControlKind& kind : kControls) {
      widest = std::max(widest, metrics.horizontalAdvance(LoadLabel(kind.Label)));
    }
    return static_cast<int>(std::ceil(widest));
  }();
  return width;
}

}  // namespace

CFilterBar::CFilterBar(CFilterBarHost& host, QWidget* panel, std::unique_ptr<CFolderChooser> chooser)
    : QWidget(panel),
      Host(host),
      Chooser(chooser ? std::move(chooser) : std::make_unique<CWindowFolderChooser>()),
      Folders(host.GetCatalog()),
      Texts(host.GetCatalog(), kTextHistory, kRememberedTexts, false),
      FolderEntries(Folders),
      TextEntries(Texts),
      FolderActions(Folders, *Chooser),
      Layout(LayOutFilterBar(GetLabelWidth(), CDropControl::GetHeight())) {
  setObjectName(QStringLiteral("FilterBar"));
  CreateControls();
  ConnectControls();
  SetFirstSort();
  QTimer::singleShot(0, this, [this] {
    RunAfterJob([bar = QPointer<CFilterBar>(this)] {
      if (bar && !bar->FirstFolderShown) bar->OnFolderPicked(FolderItem::MyPictures);
    });
  });
}

CFilterBar::~CFilterBar() = default;

void CFilterBar::CreateControls() {
  for (std::size_t i = 0; i < Controls.size(); ++i) {
    const ControlKind& kind = kControls[i];
    Labels[i] = LoadLabel(kind.Label);
    Controls[i] = std::make_unique<CDropControl>(Labels[i].trimmed(), kind.Style, this);
    Controls[i]->setObjectName(QLatin1String(kind.Name));
    Controls[i]->setGeometry(Layout.Controls[i]);
  }
  FillFolderControl(GetFolderControl(), FolderEntries, CFolderSearch::GetInstance().ActiveDisk);
  FillFindControl(GetFindControl(), TextEntries);
  FillRatingControl(GetRatingControl());
  FillSortControl(GetSortControl());
}

void CFilterBar::ConnectControls() {
  GetFolderControl().OnChange = [this] {
    const CDropControlModel& model = GetFolderControl().GetModel();
    const bool isAction = model.GetAction() != CDropControlModel::kNone;
    OnFolderPicked(static_cast<FolderItem>(isAction ? model.GetAction() : model.GetSelectedId()));
  };
  GetFindControl().OnEditBegins = [this] { Host.OnEditBegins(); };
  // A text is chosen by typing it or by picking an earlier one.
  GetFindControl().OnEditEnd = GetFindControl().OnChange = [this] { OnTextChanged(); };
  GetRatingControl().OnChange = [this] { OnRatingPicked(); };
  GetSortControl().OnChange = [this] {
    SelectSort(static_cast<SortId>(GetSortControl().GetModel().GetSelectedId()), false);
  };
}

void CFilterBar::SetFirstSort() {
  const bool isFirstRoll = Host.GetCatalog().GetCurrentRollID() == 0;
  GetSortControl().GetModel().SelectId(static_cast<int>(isFirstRoll ? SortId::Month : SortId::Roll));
  GetSortControl().Refresh();
  Host.GetPhotoSet().SetSort(isFirstRoll ? SortKind::Month : SortKind::Roll, false);
}

int CFilterBar::GetHeight() { return GetFilterBarHeight(CDropControl::GetHeight()); }

void CFilterBar::RebuildSet(StripPosition position) {
  const CWaitCursor waiting;
  CPhotoSet& set = Host.GetPhotoSet();
  set.Rebuild();
  set.SetGuest(-1);
  Host.RefreshStrip(position);
}

void CFilterBar::SelectSort(SortId id, bool fromStart) {
  if (id == SortId::Roll) return ShowNewestRoll();
  CSettingsRef().SetInt(kSortSetting, static_cast<std::int32_t>(id));
  const std::optional<SortOrder> order = GetSortOrder(id);
  if (!order) return;
  GetSortControl().GetModel().SelectId(static_cast<int>(id));
  GetSortControl().Refresh();
  Host.GetPhotoSet().SetSort(order->Kind, order->Descending);
  RebuildSet(fromStart ? StripPosition::StartOfSet : StripPosition::KeepPhoto);
}

void CFilterBar::SelectStoredSort() {
  const CSettingsRef settings;
  if (settings.HasValue(kSortSetting)) SelectSort(static_cast<SortId>(settings.GetInt(kSortSetting)), true);
}

void CFilterBar::ShowNewestRoll() {
  CSettingsRef().SetInt(kSortSetting, static_cast<std::int32_t>(SortId::Roll));
  ClearTextFilter();
  ClearRatingFilter();
  CPhotoSet& set = Host.GetPhotoSet();
  GetSortControl().GetModel().SelectId(static_cast<int>(SortId::Roll));
  GetSortControl().Refresh();
  set.SetSort(SortKind::Roll, false);
  RebuildSet(StripPosition::KeepPhoto);
  int first = set.GetCount() - 1;
  if (Host.GetCatalog().GetCurrentRollID() > 0 && !set.IsGroupStart(first)) {
    first = set.GetPreviousGroupStart(first);
  }
  if (first >= 0) Host.MoveStrip(first);
}

void CFilterBar::ClearTextFilter() {
  {
    const QScopedValueRollback<bool> dropping(DropsEdit, true);
    GetFindControl().EndEdit();
  }
  Host.GetPhotoSet().ClearTextFilter();
  GetFindControl().GetModel().SelectId(static_cast<int>(FindItem::Anything));
  GetFindControl().Refresh();
}

void CFilterBar::ClearRatingFilter() {
  Host.GetPhotoSet().ClearRatingFilter();
  GetRatingControl().GetModel().SelectId(static_cast<int>(RatingFilterCode::Any));
  GetRatingControl().Refresh();
}

bool CFilterBar::HasTextOrRatingFilter() const {
  return !Host.GetPhotoSet().GetTextFilter().empty() ||
         GetRatingControl().GetModel().GetSelectedId() != static_cast<int>(RatingFilterCode::Any);
}

void CFilterBar::OnTextChanged() {
  if (DropsEdit) return;
  Host.GetPhotoSet().SetTextFilter(GetFindControl().GetModel().GetText());
  RebuildSet(StripPosition::KeepPhoto);
}

void CFilterBar::OnRatingPicked() {
  const int code = GetRatingControl().GetModel().GetSelectedId();
  Host.GetPhotoSet().SetRatingFilter(static_cast<RatingFilterCode>(code));
  RebuildSet(StripPosition::KeepPhoto);
}

bool CFilterBar::IsEditing() const { return GetFindControl().IsEditing(); }

void CFilterBar::CancelEdit() {
  GetFindControl().RestoreText();
  const QScopedValueRollback<bool> dropping(DropsEdit, true);
  CommitEdit();
}

void CFilterBar::CommitEdit() {
  if (!IsEditing()) return;
  Host.FocusMainWindow();
  GetFindControl().EndEdit();  // where the window isn't active
}

void CFilterBar::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  QPainter& shape = painter.GetPainter();
  const QRect area = painter.GetArea();
  // The lower end of the panel, whose lit edges run down here.
  const double radius = kPanelRadius * painter.GetPixelRatio();
  QPainterPath panel;
  panel.addRoundedRect(QRectF(area).adjusted(0, -2 * radius, 0, 0), radius, radius);
  shape.setRenderHint(QPainter::Antialiasing);
  shape.fillPath(panel, kGround);
  shape.setClipPath(panel);
  shape.setPen(QColor(255, 255, 255, 205));
  shape.drawPath(panel.translated(0.5, 0.5));
  shape.setPen(QColor(49, 53, 67, 51));
  shape.drawPath(panel.translated(-0.5, -0.5));
  shape.setClipping(false);

  painter.Fill(painter.Scaled(QRect(1, 0, width() - 2, 1)), kUpperLine);
  painter.Fill(painter.Scaled(QRect(1, 1, width() - 2, 1)), kLineBelow);
  for (std::size_t i = 0; i < Labels.size(); ++i) {
    painter.DrawText(painter.Scaled(Layout.Labels[i]), Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     GetFont(FontId::PanelItalic), colours::kInk, Labels[i]);
  }
}
