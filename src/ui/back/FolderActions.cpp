#include "ui/back/FolderActions.h"

#include "base/Folders.h"
#include "base/Messages.h"
#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "catalog/StringHistory.h"
#include "discovery/FolderSearch.h"
#include "ui/kit/Job.h"

std::optional<std::string> CFolderActions::BrowseForFolder() {
  const std::optional<std::string> chosen = Chooser.Browse();
  if (!chosen) return std::nullopt;
  return ConfirmFolder(WithoutClosingSlash(*chosen));
}

std::optional<std::string> CFolderActions::ConfirmFolder(const std::string& folder) {
  if (IsDiskRoot(folder) && !ShowMessageId(StringId::SearchWholeDiskQuestion, true)) return std::nullopt;
  return folder;
}

bool CFolderActions::IsListEmpty() const {
  if (List.Count() > 0) return false;
  ShowMessageId(StringId::NoFoldersAdded);
  return true;
}

std::vector<std::string> CFolderActions::GetFolders() const {
  std::vector<std::string> folders;
  const int count = List.Count();
  folders.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) folders.push_back(List.Get(i));
  return folders;
}

std::optional<std::string> CFolderActions::ChooseFromList() {
  if (IsListEmpty()) return std::nullopt;
  std::vector<std::string> folders = GetFolders();
  folders.insert(folders.begin(), GetMyPicturesFolder());
  const int index = Chooser.Choose(folders, FolderChoice::Show);
  if (index < 0) return std::nullopt;
  return folders[static_cast<std::size_t>(index)];
}

std::optional<std::string> CFolderActions::RemoveFromList() {
  if (IsListEmpty()) return std::nullopt;
  const int index = Chooser.Choose(GetFolders(), FolderChoice::Remove);
  if (index < 0) return std::nullopt;
  const std::string removed = List.Get(index);
  RunJob([&] {
    CAutoCommitPause oneChange(*CCatalog::GetInstance());
    CFolderSearch::GetInstance().MarkFolderRemoved(removed);
    List.RemoveAt(index);
    oneChange.Commit();
  });
  return removed;
}
