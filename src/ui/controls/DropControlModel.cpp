#include "ui/controls/DropControlModel.h"

#include <algorithm>

#include "base/Format.h"

void CDropControlModel::AddItem(int id, const std::string& text, DropItemFlags flags) {
  Items.push_back({id, text, flags});
}

void CDropControlModel::AddHistory(int firstId, CDropHistory& history, DropItemFlags flags,
                                   const std::string& format, int limit) {
  Items.push_back({firstId, format, flags, &history, limit});
}

void CDropControlModel::AppendEntries(const Item& item, int position, std::vector<Row>& rows) {
  const int count = item.Limit > 0 ? std::min(item.Limit, item.History->Count()) : item.History->Count();
  for (int entry = 0; entry < count; ++entry) {
    const std::string text = item.History->Get(entry);
    const bool line = entry + 1 == count && HasFlag(item.Flags, DropItemFlags::LineBelow);
    const auto flags = static_cast<DropItemFlags>(static_cast<unsigned>(item.Flags) &
                                                  ~static_cast<unsigned>(DropItemFlags::LineBelow));
    rows.push_back({item.Id + entry, text, item.Text.empty() ? text : Format(item.Text, text),
                    line ? item.Flags : flags, position, entry});
  }
}

std::vector<CDropControlModel::Row> CDropControlModel::GetRows() const {
  std::vector<Row> rows;
  for (std::size_t i = 0; i < Items.size(); ++i) {
    const Item& item = Items[i];
    const int position = static_cast<int>(i);
    if (item.History != nullptr) {
      AppendEntries(item, position, rows);
    } else {
      rows.push_back({item.Id, item.Text, item.Text, item.Flags, position, kNone});
    }
  }
  return rows;
}

int CDropControlModel::GetSelectedId() const {
  const std::vector<Row> rows = GetRows();
  const bool isRow = Selected >= 0 && Selected < static_cast<int>(rows.size());
  return isRow ? rows[static_cast<std::size_t>(Selected)].Id : kNone;
}

void CDropControlModel::StandOn(const std::vector<Row>& rows, int row) {
  Selected = row;
  Text = rows[static_cast<std::size_t>(row)].Text;
  Shown = rows[static_cast<std::size_t>(row)].Shown;
}

bool CDropControlModel::SelectId(int id) {
  const std::vector<Row> rows = GetRows();
  const auto found = std::find_if(rows.begin(), rows.end(), [id](const Row& row) { return row.Id == id; });
  if (found == rows.end()) return false;
  StandOn(rows, static_cast<int>(found - rows.begin()));
  return true;
}

bool CDropControlModel::SelectText(const std::string& text) {
  const std::vector<Row> rows = GetRows();
  const auto found =
      std::find_if(rows.begin(), rows.end(), [&text](const Row& row) { return row.Text == text; });
  if (found == rows.end()) return false;
  StandOn(rows, static_cast<int>(found - rows.begin()));
  return true;
}

void CDropControlModel::OpenList() {
  State = DropState::ListOpen;
  SavedSelected = Selected;
  Selected = kNone;
}

bool CDropControlModel::CloseList(int row) {
  State = DropState::Rest;
  Selected = SavedSelected;
  Action = kNone;
  const std::vector<Row> rows = GetRows();
  if (row < 0 || row >= static_cast<int>(rows.size())) return false;
  const Row& picked = rows[static_cast<std::size_t>(row)];
  if (HasFlag(picked.Flags, DropItemFlags::Action)) {
    Action = picked.Id;
    return true;
  }
  StandOn(rows, row);
  if (picked.Entry > 0) {
    Items[static_cast<std::size_t>(picked.Item)].History->Promote(picked.Entry);
    StandOn(GetRows(), row - picked.Entry);
  }
  return true;
}

void CDropControlModel::CloseEdit(const std::string& text, bool remember) {
  State = DropState::Rest;
  Text = Shown = text;
  Selected = kNone;
  Action = kNone;
  SelectText(text);
  if (!remember || text.empty()) return;
  for (const Item& item : Items) {
    if (item.History != nullptr) item.History->Promote(item.History->Add(text));
  }
  SelectText(text);
}
