#include <algorithm>
#include <utility>

#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "platform/TextCompare.h"

std::int32_t CCatalog::FindStringKey(std::int32_t category, const std::string& text) const {
  const c4_RowRef row = Strings[Strings.Find(props::Category[category] + props::String[text])];
  if (row.IsValid()) return props::Key.Get(row);
  // The storage knows the case of ASCII letters alone.
  const c4_View strings = Strings.Select(props::Category[category]);
  const std::string wanted = platform::FoldLetters(text);
  std::string folded;
  for (int i = 0; i < strings.GetSize(); ++i) {
    platform::FoldLetters(strings.GetTextAt(props::String, i), folded);
    if (folded == wanted) return strings.GetIntegerAt(props::Key, i);
  }
  return -1;
}

c4_RowRef CCatalog::FindString(std::int32_t key) const { return Strings[Strings.Find(props::Key[key])]; }

std::int32_t CCatalog::AddString(std::int32_t category, const std::string& text) {
  const std::int32_t key = FindStringKey(category, text);
  if (key < 0) return AddSpelling(category, text);
  CAutoCommitPause pause(*this);
  const c4_RowRef row = FindString(key);
  props::RefCount.Set(row, Successor(props::RefCount.Get(row)));
  pause.Commit();
  return key;
}

std::int32_t CCatalog::AddSpelling(std::int32_t category, const std::string& text) {
  CAutoCommitPause pause(*this);
  const std::int32_t key = AllocStringKey();
  Strings.Add(props::Category[category] + props::Key[key] + props::String[text] + props::RefCount[1]);
  pause.Commit();
  return key;
}

std::int32_t CCatalog::FindCategory(const std::string& name) const {
  return FindStringKey(kCategoryOfCategories, name);
}

std::int32_t CCatalog::GetCategory(const std::string& name) {
  const std::int32_t key = FindCategory(name);
  return key >= 0 ? key : AddString(kCategoryOfCategories, name);
}

std::string CCatalog::GetString(std::int32_t key) const {
  return std::string(props::String.Get(FindString(key)));
}

void CCatalog::ReleaseString(std::int32_t key) {
  const c4_RowRef row = FindString(key);
  if (!row.IsValid()) return;
  const std::int32_t count = props::RefCount.Get(row);
  if (count > 1) {
    props::RefCount.Set(row, count - 1);
  } else {
    Strings.RemoveAt(Strings.GetIndexOf(row));
  }
  CommitIfAuto();
}

bool CCatalog::ReplaceString(std::int32_t key, const std::string& text, bool force) {
  const c4_RowRef row = FindString(key);
  if (!row.IsValid() || (!force && props::RefCount.Get(row) != 1)) return false;
  props::String.Set(row, text);
  CommitIfAuto();
  return true;
}

int CCatalog::CountStrings(std::int32_t category) const {
  return Strings.Select(props::Category[category]).GetSize();
}

std::vector<std::int32_t> CCatalog::ListStringKeys(std::int32_t category, bool byText) const {
  const c4_View strings = Strings.Select(props::Category[category]);
  std::vector<std::pair<std::string, std::int32_t>> ordered;
  for (int i = 0; i < strings.GetSize(); ++i) {
    const std::string_view text = strings.GetTextAt(props::String, i);
    ordered.emplace_back(byText ? platform::MakeLetterOrderKey(text) : "",
                         strings.GetIntegerAt(props::Key, i));
  }
  std::sort(ordered.begin(), ordered.end());
  std::vector<std::int32_t> keys;
  for (const auto& [order, key] : ordered) keys.push_back(key);
  return keys;
}

std::int32_t CCatalog::GetStringKeyAt(std::int32_t category, int index, bool byText) const {
  const std::vector<std::int32_t> keys = ListStringKeys(category, byText);
  return index >= 0 && index < std::ssize(keys) ? keys[static_cast<std::size_t>(index)] : -1;
}

int CCatalog::GetStringIndex(std::int32_t category, std::int32_t key, bool byText) const {
  const std::vector<std::int32_t> keys = ListStringKeys(category, byText);
  const auto found = std::find(keys.begin(), keys.end(), key);
  return found != keys.end() ? static_cast<int>(found - keys.begin()) : -1;
}

void CCatalog::ListStrings(std::int32_t category, std::vector<std::string>& list, bool byText) const {
  list.clear();
  for (const std::int32_t key : ListStringKeys(category, byText)) list.push_back(GetString(key));
}

CPersonRecord CCatalog::AddPerson(const std::string& fullname, const std::string& email) {
  CAutoCommitPause pause(*this);
  const c4_RowRef row = People.Add(props::PersonID[AllocPersonID()] + props::ID[CGuid::Generate().ToBytes()] +
                                   props::Fullname[fullname] + props::Email[email]);
  pause.Commit();
  return {this, row};
}

CPersonRecord CCatalog::GetPerson(std::int32_t personId) {
  const std::int32_t wanted = personId == -1 ? props::CurrentPersonID.Get(Singletons[0]) : personId;
  return {this, People[People.Find(props::PersonID[wanted])]};
}
