#include "storage/Row.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <mutex>

#include "platform/Ascii.h"
#include "storage/DataThread.h"

namespace {

/// The length of the common beginning in steps of 8 bytes: most texts that are compared share a long folder
/// name.
std::size_t SkipEqualWords(std::string_view left, std::string_view right, std::size_t common) {
  std::size_t at = 0;
  while (at + 8 <= common) {
    std::uint64_t leftWord = 0;
    std::uint64_t rightWord = 0;
    std::memcpy(&leftWord, left.data() + at, 8);
    std::memcpy(&rightWord, right.data() + at, 8);
    if (leftWord != rightWord) break;
    at += 8;
  }
  return at;
}

/// All properties of the process. Static objects make properties before main runs, on whatever thread, so
/// the list has a lock of its own. A deque doesn't move its elements.
class CPropertyList {
 public:
  struct Entry {
    std::string Name;
    c4_Type Type;
  };

  static CPropertyList& GetInstance() {
    static CPropertyList list;
    return list;
  }

  int FindOrAdd(std::string_view name, c4_Type type) {
    const std::lock_guard lock(Mutex);
    for (std::size_t id = 0; id < Entries.size(); ++id) {
      if (Entries[id].Type == type && TextsAreEqual(Entries[id].Name, name)) return static_cast<int>(id);
    }
    Entries.push_back({std::string(name), type});
    return static_cast<int>(Entries.size() - 1);
  }

  const Entry& Get(std::size_t id) {
    const std::lock_guard lock(Mutex);
    return Entries[id];
  }

 private:
  std::mutex Mutex;
  std::deque<Entry> Entries;
};

}  // namespace

int CompareTexts(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t at = SkipEqualWords(left, right, common); at < common; ++at) {
    const int difference = platform::FoldByte(left[at]) - platform::FoldByte(right[at]);
    if (difference != 0) return difference;
  }
  if (left.size() == right.size()) return 0;
  return left.size() < right.size() ? -1 : 1;
}

bool TextsAreEqual(std::string_view left, std::string_view right) {
  return left.size() == right.size() && CompareTexts(left, right) == 0;
}

c4_Property::c4_Property(std::string_view name, c4_Type type)
    : Id(CPropertyList::GetInstance().FindOrAdd(name, type)) {}

const std::string& c4_Property::Name() const { return CPropertyList::GetInstance().Get(GetId()).Name; }

c4_Type c4_Property::Type() const { return CPropertyList::GetInstance().Get(GetId()).Type; }

const c4_Row::Value* c4_Row::FindValue(const c4_Property& property) const {
  const auto found =
      std::find_if(Values.begin(), Values.end(), [&](const auto& entry) { return entry.first == property; });
  return found != Values.end() ? &found->second : nullptr;
}

c4_Row operator+(c4_Row left, const c4_Row& right) {
  for (const auto& [property, value] : right.Values) {
    const auto same = std::find_if(left.Values.begin(), left.Values.end(),
                                   [&name = property](const auto& entry) { return entry.first == name; });
    if (same != left.Values.end()) {
      same->second = value;
    } else {
      left.Values.emplace_back(property, value);
    }
  }
  return left;
}

c4_RowRef::c4_RowRef(std::shared_ptr<c4_RowSource> source, const RowIdentity& row)
    : Source(std::move(source)), Row(row) {}

bool c4_RowRef::IsValid() const {
  AssertDataThread();
  return Source && Source->HasRow(Row);
}

void c4_RowRef::Set(const c4_Property& property, const c4_Row::Value& value) const {
  AssertDataThread();
  if (Source) Source->Set(property, Row, value);
}

c4_Row c4_IntProp::operator[](std::int32_t value) const { return {*this, value}; }

std::int32_t c4_IntProp::Get(const c4_RowRef& row) const {
  AssertDataThread();
  return row.Source ? row.Source->GetInteger(*this, row.Row) : 0;
}

void c4_IntProp::Set(const c4_RowRef& row, std::int32_t value) const { row.Set(*this, value); }

c4_Row c4_StringProp::operator[](std::string_view value) const { return {*this, std::string(value)}; }

std::string_view c4_StringProp::Get(const c4_RowRef& row) const {
  AssertDataThread();
  return row.Source ? row.Source->GetText(*this, row.Row) : std::string_view();
}

void c4_StringProp::Set(const c4_RowRef& row, std::string_view value) const {
  row.Set(*this, std::string(value));
}

c4_Row c4_BytesProp::operator[](std::span<const std::uint8_t> value) const {
  return {*this, c4_Bytes(value.begin(), value.end())};
}

c4_Bytes c4_BytesProp::Get(const c4_RowRef& row) const {
  AssertDataThread();
  return row.Source ? row.Source->GetBytes(*this, row.Row) : c4_Bytes();
}

void c4_BytesProp::Set(const c4_RowRef& row, std::span<const std::uint8_t> value) const {
  row.Set(*this, c4_Bytes(value.begin(), value.end()));
}
