#include <QScopeGuard>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/PathIdentity.h"
#include "catalog/Catalog.h"
#include "discovery/FolderSearch.h"
#include "sets/PhotoSet.h"
#include "ui/back/FilterBar.h"
#include "ui/back/FilterBarHost.h"
#include "ui/kit/DropControl.h"
#include "ui/kit/Job.h"
#include "ui/search/WindowedSearchProgress.h"

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

void CFilterBar::SelectFolder(const std::string& folder) {
  CDropControlModel& model = GetFolderControl().GetModel();
  if (!SelectStandardFolder(folder) && !model.SelectText(folder)) return;
  GetFolderControl().Refresh();
  OnFolderPicked(static_cast<FolderItem>(model.GetSelectedId()));
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
  FirstFolderShown = true;
  Host.PrepareForSearch();
  // Where the pick comes to nothing, the strip must still show what the controls say.
  const bool wasNarrowed = HasTextOrRatingFilter();
  ClearTextFilter();
  ClearRatingFilter();
  try {
    ApplyFolderPick(item, wasNarrowed);
  } catch (const CException&) {
    RebuildSet(StripPosition::KeepPhoto);
    throw;
  }
}

void CFilterBar::ApplyFolderPick(FolderItem item, bool rebuild) {
  CCatalog& catalog = Host.GetCatalog();
  std::optional<FolderChange> change = AskForChange(item, GetShownFolder());
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
  // There is no going back to the folder, so the pictures folder is in view even if its search is stopped.
  SelectAddedFolder(GetMyPicturesFolder());
  return FolderChange{.Chosen = GetMyPicturesFolder(), .Search = true, .Refilter = true};
}

bool CFilterBar::SearchFor(const FolderChange& change) {
  if (change.SearchNothing) return false;
  const bool showAtStart = change.Search && (change.Chosen.empty() || IsDiskRoot(change.Chosen));
  CWindowedSearchProgress progress(false, showAtStart, window());
  CFolderSearch& search = CFolderSearch::GetInstance();
  search.Progress = &progress;
  const auto restore = qScopeGuard([&search] { search.Progress = nullptr; });
  bool found = false;
  RunJob(
      [&] {
        found = change.Chosen.empty() ? search.SearchAllFolders(change.Search)
                                      : search.SearchFolder(change.Chosen, change.Search);
      },
      [&progress] { progress.Stop(); });
  return found;
}
