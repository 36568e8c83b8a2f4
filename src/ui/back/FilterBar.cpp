#include "ui/back/FilterBar.h"

#include <QFontMetricsF>
#include <QPointer>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/PathIdentity.h"
#include "base/Settings.h"
#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "discovery/FolderSearch.h"
#include "sets/PhotoSet.h"
#include "ui/back/FilterBarHost.h"
#include "ui/back/PhotoBack.h"
#include "ui/controls/DropControl.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"
#include "ui/kit/WaitCursor.h"
#include "ui/search/WindowedSearchProgress.h"

namespace {

constexpr const char* kTextHistory = "TextFilterHistory";
constexpr int kRememberedTexts = 8;
constexpr const char* kSortSetting = "Sort";

constexpr QColor kGround(231, 233, 235);
constexpr QColor kUpperLine(201, 203, 206);
constexpr QColor kLineBelow(248, 249, 249);
constexpr double kPanelRadius = 5;

/// One row of the bar.
struct ControlKind {
  StringId Label;
  const char* Name;
  DropStyle Style;
};
constexpr ControlKind kControls[] = {
    {StringId::FilterShow, "FolderControl",
     DropStyle::ShortensPaths | DropStyle::Images | DropStyle::History},
    {StringId::FilterFind, "FindControl", DropStyle::EditBox | DropStyle::History | DropStyle::SelectsWhole},
    {StringId::FilterRated, "RatedControl", DropStyle::Images},
    {StringId::FilterSortBy, "SortControl", DropStyle::Images},
};

// Where the rows stand, in pixels of the layout. The bar is as wide as the panel, since its colour runs
// across that; the rows keep to its left.
constexpr int kBarLeft = 10;
constexpr int kBarRight = 255;
constexpr int kAroundRows = 16;
constexpr int kAboveRows = kAroundRows / 2;
constexpr int kBetweenRows = 1;
constexpr int kLabelOffset = 2;
constexpr int kBetweenLabelAndControl = 10;
constexpr int kBesideControls = 8;

QString LoadLabel(StringId id) { return ToQString(LoadExpandedString(id)) + u' '; }

/// The width of the widest label. Labels and font stay the same for the whole run.
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
      FolderActions(Folders, *Chooser) {
  setObjectName(QStringLiteral("FilterBar"));
  setAccessibleName(ToQString(LoadText(StringId::ToldFilterBar)));
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
  const int height = CDropControl::GetHeight();
  const int labelWidth = GetLabelWidth();
  const int left = kBarLeft + labelWidth + kBetweenLabelAndControl;
  int top = kAboveRows;
  for (const ControlKind& kind : kControls) {
    const QString label = LoadLabel(kind.Label);
    Labels.push_back({label, QRect(kBarLeft, top + kLabelOffset, labelWidth, height - kLabelOffset)});
    auto control = std::make_unique<CDropControl>(label.trimmed(), kind.Style, this);
    control->setObjectName(QLatin1String(kind.Name));
    control->setGeometry(left, top, kBarRight - kBesideControls - left, height);
    Controls.push_back(std::move(control));
    top += height + kBetweenRows;
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

int CFilterBar::GetHeight() {
  return kAroundRows + static_cast<int>(std::size(kControls)) * CDropControl::GetHeight();
}

// What a pick in the folder control does.

std::string CFilterBar::GetShownFolder() const {
  const CDropControlModel& model = GetFolderControl().GetModel();
  switch (static_cast<FolderItem>(model.GetSelectedId())) {
    case FolderItem::AllFolders:
      return {};
    case FolderItem::MyPictures:
      return GetMyPicturesFolder();
    case FolderItem::ActiveDisk:
      return GetActiveDiskPhotoFolder();
    default:
      return model.GetText();
  }
}

bool CFilterBar::SelectStandardFolder(const std::string& folder) {
  const bool activeDisk = CFolderSearch::GetInstance().ActiveDisk;
  FolderItem item{};
  if (folder.empty()) {
    item = FolderItem::AllFolders;
  } else if (IsSameFolder(folder, GetMyPicturesFolder())) {
    item = FolderItem::MyPictures;
  } else if (activeDisk && IsSameFolder(folder, GetActiveDiskPhotoFolder())) {
    item = FolderItem::ActiveDisk;
  } else {
    return false;
  }
  GetFolderControl().GetModel().SelectId(static_cast<int>(item));
  GetFolderControl().Refresh();
  return true;
}

bool CFilterBar::SelectFolder(const std::string& folder) {
  CDropControlModel& model = GetFolderControl().GetModel();
  if (!SelectStandardFolder(folder) && !model.SelectText(folder)) return false;
  GetFolderControl().Refresh();
  OnFolderPicked(static_cast<FolderItem>(model.GetSelectedId()));
  return true;
}

bool CFilterBar::AddFolder(const std::string& folder) {
  return ChangeFolder([&folder]() -> std::optional<FolderChange> {
    if (!CFolderActions::ConfirmFolder(folder)) return std::nullopt;
    return FolderChange{.Chosen = folder, .Search = true, .Adding = true};
  });
}

bool CFilterBar::SearchAgain(const std::string& folder) {
  Host.PrepareForJob();
  bool found = false;
  FollowSearch([&] {
    const std::int32_t rollBefore = Host.GetCatalog().GetCurrentRollID();
    found = RunSearch(false, [&folder](CFolderSearch& search) { return search.SearchFolder(folder, true); });
    if (Host.GetCatalog().GetCurrentRollID() != rollBefore) return ShowNewestRoll();
    RebuildSet(StripPosition::KeepPhoto);
  });
  return found;
}

std::string CFilterBar::SelectAddedFolder(const std::string& folder) {
  if (!SelectStandardFolder(folder)) {
    Folders.Promote(Folders.Add(folder));
    GetFolderControl().GetModel().SelectId(static_cast<int>(FolderItem::FirstListed));
    GetFolderControl().Refresh();
  }
  Host.GetPhotoSet().SetFolderFilter(GetShownFolder());
  return GetShownFolder();
}

void CFilterBar::OnFolderPicked(FolderItem item) {
  ChangeFolder([this, item] { return AskForChange(item, GetShownFolder()); });
}

bool CFilterBar::ChangeFolder(const FolderQuestion& ask) {
  FirstFolderShown = true;
  Host.PrepareForJob();
  // Even if the pick changes nothing, the strip must show what the cleared controls say.
  const bool wasNarrowed = HasTextOrRatingFilter();
  ClearTextFilter();
  ClearRatingFilter();
  bool isChanged = false;
  FollowSearch([&] { isChanged = ApplyFolderChange(ask(), wasNarrowed); });
  return isChanged;
}

void CFilterBar::FollowSearch(const std::function<void()>& change) {
  try {
    change();
  } catch (const CException&) {
    RebuildSet(StripPosition::KeepPhoto);
    Host.OnFoldersSearched();
    throw;
  }
  Host.OnFoldersSearched();
}

bool CFilterBar::ApplyFolderChange(std::optional<FolderChange> change, bool rebuild) {
  CCatalog& catalog = Host.GetCatalog();
  const std::int32_t rollBefore = catalog.GetCurrentRollID();
  const bool found = change && SearchFor(*change);
  const bool isNewRoll = catalog.GetCurrentRollID() != rollBefore;
  const bool givenUp = !change || (change->Adding && !found);

  if (!givenUp && change->Adding) change->Chosen = SelectAddedFolder(change->Chosen);
  rebuild |= isNewRoll || found || (change && change->Refilter);
  if (isNewRoll && !givenUp) {
    ShowNewestRoll();
  } else if (rebuild) {
    RebuildSet(StripPosition::KeepPhoto);
  }
  if (!givenUp) catalog.SetCurrentPhotoFolder(change->Chosen);
  return !givenUp;
}

std::optional<CFilterBar::FolderChange> CFilterBar::AskForChange(FolderItem item, const std::string& shown) {
  switch (item) {
    case FolderItem::SearchAgain:
      return FolderChange{.Chosen = shown, .Search = true};
    case FolderItem::AddFolder: {
      const std::optional<std::string> folder = FolderActions.BrowseForFolder();
      if (!folder) return std::nullopt;
      return FolderChange{.Chosen = *folder, .Search = true, .Adding = true};
    }
    case FolderItem::MoreFolders:
      return ChooseFolder(shown);
    case FolderItem::RemoveFolder:
      return RemoveFolder(shown);
    default:
      Host.GetPhotoSet().SetFolderFilter(shown);
      return FolderChange{.Chosen = shown, .Refilter = true};
  }
}

std::optional<CFilterBar::FolderChange> CFilterBar::ChooseFolder(const std::string& shown) {
  const std::optional<std::string> folder = FolderActions.ChooseFromList();
  if (!folder) return std::nullopt;
  const bool isOther = !folder->empty() && *folder != shown;
  return FolderChange{.Chosen = *folder, .Search = isOther, .Adding = isOther};
}

std::optional<CFilterBar::FolderChange> CFilterBar::RemoveFolder(const std::string& shown) {
  const std::optional<std::string> removed = FolderActions.RemoveFromList();
  if (!removed) return std::nullopt;
  if (*removed != shown) {
    // The item in view may have moved up in the list, and some of its photos may have gone.
    if (!SelectStandardFolder(shown)) GetFolderControl().GetModel().SelectText(shown);
    GetFolderControl().Refresh();
    return FolderChange{.Chosen = shown, .Refilter = true, .SearchNothing = true};
  }
  // The removed folder can't stay in view, so the pictures folder is shown even if its search is stopped.
  SelectAddedFolder(GetMyPicturesFolder());
  return FolderChange{.Chosen = GetMyPicturesFolder(), .Search = true, .Refilter = true};
}

bool CFilterBar::SearchFor(const FolderChange& change) {
  if (change.SearchNothing) return false;
  const bool showAtStart = change.Search && (change.Chosen.empty() || IsDiskRoot(change.Chosen));
  return RunSearch(showAtStart, [&change](CFolderSearch& search) {
    return change.Chosen.empty() ? search.SearchAllFolders(change.Search)
                                 : search.SearchFolder(change.Chosen, change.Search);
  });
}

bool CFilterBar::RunSearch(bool showAtStart, const std::function<bool(CFolderSearch& search)>& work) {
  CWindowedSearchProgress progress(false, showAtStart, window());
  CFolderSearch& search = CFolderSearch::GetInstance();
  search.Progress = &progress;
  const auto restore = qScopeGuard([&search] { search.Progress = nullptr; });
  bool found = false;
  RunJob([&] { found = work(search); }, [&progress] { progress.Stop(); });
  return found;
}

// The other controls.

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

void CFilterBar::Reveal(const CAssetRecord& photo) {
  CPhotoSet& set = Host.GetPhotoSet();
  const auto rating = static_cast<RatingFilterCode>(GetRatingControl().GetModel().GetSelectedId());
  const std::string folder = set.GetFolderFilter();
  CTextFilter text(set.GetTextFilter());
  text.Refresh();
  if (!text.GetText().empty() && !text.Matches(photo)) ClearTextFilter();
  if (!CRatingFilter(rating).Matches(photo)) ClearRatingFilter();
  if (!folder.empty() && !CFolderFilter(folder).Matches(photo)) {
    SelectStandardFolder({});
    set.ClearFolderFilter();
    Host.GetCatalog().SetCurrentPhotoFolder({});
  }
  RebuildSet(StripPosition::KeepPhoto);
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

CDropControl* CFilterBar::FindFocusedControl() const {
  const QWidget* const focus = window()->focusWidget();
  const auto found = std::find_if(Controls.begin(), Controls.end(), [focus](const auto& control) {
    return control.get() == focus || control->isAncestorOf(focus);
  });
  return found != Controls.end() ? found->get() : nullptr;
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
  GetFindControl().EndEdit();  // a window that isn't active doesn't take the focus
}

std::vector<GroupPart> CFilterBar::ListParts() const {
  std::vector<GroupPart> parts;
  for (std::size_t i = 0; i < Controls.size(); ++i) {
    const QWidget* control = Controls[i].get();
    parts.push_back({.Text = Labels[i].Text.trimmed(), .Place = Labels[i].Place, .Names = control});
    parts.push_back({control});
  }
  return parts;
}

void CFilterBar::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  // The lower end of the panel, whose lit edges run down here. It may end above or below this bar.
  const double radius = kPanelRadius * painter.GetPixelRatio();
  const int beyond = painter.Scaled(parentWidget()->height() - geometry().bottom() - 1);
  DrawPanel(painter.GetPainter(), QRectF(painter.GetArea()).adjusted(0, -2 * radius, 0, beyond), radius,
            kGround);

  painter.Fill(painter.Scaled(QRect(1, 0, width() - 2, 1)), kUpperLine);
  painter.Fill(painter.Scaled(QRect(1, 1, width() - 2, 1)), kLineBelow);
  for (const Label& label : Labels) {
    painter.DrawText(painter.Scaled(label.Place), Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     GetFont(FontId::PanelItalic), colours::kInk, label.Text);
  }
}
