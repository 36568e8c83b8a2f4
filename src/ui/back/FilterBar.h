#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalog/StringHistory.h"
#include "discovery/FolderHistory.h"
#include "ui/back/FilterBarItems.h"
#include "ui/back/FolderActions.h"
#include "ui/back/FolderChooser.h"
#include "ui/kit/PaintedGroup.h"

class CAssetRecord;
class CDropControl;
class CFilterBarHost;
class CFolderSearch;
enum class StripPosition : int;

/// The block of four drop controls at the bottom of the photo back: which folder, what text, which rating
/// and in what order the strip shows. Each choice narrows or sorts the main set, shows the result and is
/// stored; that of a folder may also search it. The set keeps the filters, the catalog the folder in view.
///
/// Window thread, outside jobs. A search is a job, so a choice returns when its search is over.
class CFilterBar : public QWidget, public CPaintedGroup {
 public:
  /// The bar of a panel, as wide as that, at its bottom. Gives the set the order that a session begins with,
  /// and shows the first folder as soon as events are handled, unless SelectFolder came before. The host
  /// outlives the bar. `chooser` asks for folders; null stands for dialogs.
  CFilterBar(CFilterBarHost& host, QWidget* panel, std::unique_ptr<CFolderChooser> chooser = nullptr);
  ~CFilterBar() override;

  static int GetHeight();

  /// Shows a folder as if the user had picked it; an empty one stands for all. False, and nothing happens, if
  /// the control has no such folder.
  bool SelectFolder(const std::string& folder);
  /// Adds a folder to the list as if the user had picked it in the system's browser, and shows it. False if
  /// the user doesn't want that, or stops the search.
  bool AddFolder(const std::string& folder);
  /// Searches a folder for new photos, which show as the newest roll. The folder in view stays. False if the
  /// user stops it, or it fails.
  bool SearchAgain(const std::string& folder);

  /// Takes those filters away that hide the photo; the others stay.
  void Reveal(const CAssetRecord& photo);

  /// Sorts by an item of the sort control. The strip stays on its photo or, with `fromStart`, goes to
  /// StripPosition::StartOfSet. The number is stored; an unknown one leaves the order as it is.
  void SelectSort(SortId id, bool fromStart);
  /// Applies the stored order, if there is one.
  void SelectStoredSort();

  /// Sorts by roll, without filters of text and rating, and goes to the first photo of the last roll.
  void ShowNewestRoll();

  /// These take the filter off the set and set the control back; the set isn't rebuilt.
  void ClearTextFilter();
  void ClearRatingFilter();

  // The edit box of the find control.

  bool IsEditing() const;
  /// Forgets what was typed and gives the focus to the main window.
  void CancelEdit();
  /// Takes what was typed and gives the focus to the main window.
  void CommitEdit();

  std::vector<GroupPart> ListParts() const override;

  /// The control that the focus is in; null if it is elsewhere.
  CDropControl* FindFocusedControl() const;

  CDropControl& GetFolderControl() const { return *Controls[0]; }
  CDropControl& GetFindControl() const { return *Controls[1]; }
  CDropControl& GetRatingControl() const { return *Controls[2]; }
  CDropControl& GetSortControl() const { return *Controls[3]; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  /// What is to be done after a pick in the folder control.
  struct FolderChange {
    std::string Chosen;   // empty for all folders
    bool Search = false;  // even if the folder was searched in this session
    bool Adding = false;
    bool Refilter = false;
    bool SearchNothing = false;
  };

  void CreateControls();
  void ConnectControls();
  void SetFirstSort();

  using FolderQuestion = std::function<std::optional<FolderChange>()>;

  void OnFolderPicked(FolderItem item);
  /// Clears text and rating, then asks for a change and makes it. False if there is none.
  bool ChangeFolder(const FolderQuestion& ask);
  /// `rebuild`: rebuilds the set even if nothing is changed.
  bool ApplyFolderChange(std::optional<FolderChange> change, bool rebuild);
  /// Makes a change that searches, and lets set and host follow it also if it fails.
  void FollowSearch(const std::function<void()>& change);
  std::optional<FolderChange> AskForChange(FolderItem item, const std::string& shown);
  std::optional<FolderChange> ChooseFolder(const std::string& shown);
  std::optional<FolderChange> RemoveFolder(const std::string& shown);
  bool SearchFor(const FolderChange& change);
  bool RunSearch(bool showAtStart, const std::function<bool(CFolderSearch& search)>& work);
  std::string GetShownFolder() const;
  bool SelectStandardFolder(const std::string& folder);
  /// Returns the path that the folder has in the control.
  std::string SelectAddedFolder(const std::string& folder);

  void OnTextChanged();
  void OnRatingPicked();
  bool HasTextOrRatingFilter() const;
  void RebuildSet(StripPosition position);

  CFilterBarHost& Host;
  const std::unique_ptr<CFolderChooser> Chooser;
  CFolderHistory Folders;
  CStringHistory Texts;
  CCatalogDropHistory FolderEntries;
  CCatalogDropHistory TextEntries;
  CFolderActions FolderActions;

  struct Label {
    QString Text;
    QRect Place;
  };
  std::vector<Label> Labels;                            // from the top
  std::vector<std::unique_ptr<CDropControl>> Controls;  // likewise
  bool FirstFolderShown = false;
  bool DropsEdit = false;  // the end of the edit changes nothing
};
