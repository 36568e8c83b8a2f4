#pragma once

#include <string>
#include <vector>

#include "ui/kit/Flags.h"

/// How an item of a drop control looks and acts; combined with `|`.
enum class DropItemFlags : unsigned {
  None = 0,
  SecondFont = 1,  // the item is written in the control's second font
  LineBelow = 2,   // a plain line stands under it in the list
  Action = 4,      // picking it reports its id; the control stays on the item it stood on
};

template <>
inline constexpr bool kIsFlagSet<DropItemFlags> = true;

/// The numbers are those that the control's pictures are chosen by.
enum class DropState : int { Rest = 0, ListOpen = 2, EditOpen = 6 };

/// A list of earlier texts that a drop control offers, the latest first.
class CDropHistory {
 public:
  virtual ~CDropHistory() = default;
  virtual int Count() const = 0;
  virtual std::string Get(int index) const = 0;
  /// The position of the text, which is entered if it isn't there.
  virtual int Add(const std::string& text) = 0;
  /// Brings an entry to the front.
  virtual void Promote(int index) = 0;
};

/// What a drop control offers, what it stands on and what was picked last, without its window. Its rows are
/// its items in their order, with one row for each entry of a history that is shown. Texts are UTF-8; the
/// histories are not owned.
class CDropControlModel {
 public:
  static constexpr int kNone = -1;  // as a row or an id

  struct Row {
    int Id;
    std::string Text;   // what the item stands for: for an entry of a history, the entry
    std::string Shown;  // how it is written
    DropItemFlags Flags;
    int Item;   // position of the item that the row comes from
    int Entry;  // position in that item's history, or kNone
  };

  void AddItem(int id, const std::string& text, DropItemFlags flags);

  /// The entries of a history, with the ids from `firstId` upward, each written through `format`, which is
  /// empty or holds one %s; at most `limit` of them, 0 for all. LineBelow belongs to the last of them.
  void AddHistory(int firstId, CDropHistory& history, DropItemFlags flags, const std::string& format = {},
                  int limit = 0);

  std::vector<Row> GetRows() const;

  // What the control stands on.

  int GetSelected() const { return Selected; }  // a row, or kNone
  int GetSelectedId() const;                    // or kNone
  /// What the selected item stands for, or the text that was typed.
  const std::string& GetText() const { return Text; }
  /// The same, as it is written.
  const std::string& GetShownText() const { return Shown; }

  /// Stands on the item with that id from now on. False, with nothing changed, if there is none.
  bool SelectId(int id);
  /// Stands on the first item with that text from now on. False, with nothing changed, if there is none.
  bool SelectText(const std::string& text);

  /// The id of the action item that was picked last, or kNone if the last pick was none.
  int GetAction() const { return Action; }
  DropState GetState() const { return State; }

  // The list and the edit box. Each pair encloses the time in which the control shows the one or the other.

  void OpenList();
  /// `row` is the one picked, or kNone. True if that is to be told to the owner. A picked entry of a history
  /// comes to its front.
  bool CloseList(int row);

  void OpenEdit() { State = DropState::EditOpen; }
  /// Takes the text that was typed. With `remember`, and unless it is empty, it becomes the first entry of
  /// each history.
  void CloseEdit(const std::string& text, bool remember);

 private:
  struct Item {
    int Id;
    std::string Text;  // of a history, its format
    DropItemFlags Flags;
    CDropHistory* History = nullptr;
    int Limit = 0;
  };

  static void AppendEntries(const Item& item, int position, std::vector<Row>& rows);
  void StandOn(const std::vector<Row>& rows, int row);

  std::vector<Item> Items;
  int Selected = kNone;
  int SavedSelected = kNone;  // while the list is open
  std::string Text;
  std::string Shown;
  int Action = kNone;
  DropState State = DropState::Rest;
};
