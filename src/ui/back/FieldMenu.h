#pragma once

#include <QMenu>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "catalog/PhotoFacts.h"
#include "ui/back/FieldValue.h"

/// An entry of a field's menu.
struct FieldChoice {
  std::string Text;
  bool Checked = false;
  bool Enabled = true;
  StampId Source = StampId::None;  // of a date
};

/// The entries for a value: the earlier texts, or the kinds of dates. `text` is what its field shows now.
std::vector<FieldChoice> ListChoices(CFieldValue& value, const std::string& text);

/// The text after an earlier text was chosen. That is added to a list, or removed if the list has it; any
/// other text is replaced by it.
std::string ApplyChoice(const CFieldValue& value, const std::string& text, const std::string& choice);

/// Makes the photo's date from that source the date in force; not committed. Does nothing if there is none.
void ChooseDate(CFieldValue& value, StampId source);

/// A menu of these entries; `onChosen` is called with the one that the user picks. A typed letter leads to
/// the next entry that begins with it.
std::unique_ptr<QMenu> MakeFieldMenu(const std::vector<FieldChoice>& choices,
                                     const std::function<void(const FieldChoice& choice)>& onChosen,
                                     QWidget* parent);

/// Marks the entry that the arrow keys start from: the first that is checked, or can be picked.
void SelectFirstChoice(QMenu& menu);
