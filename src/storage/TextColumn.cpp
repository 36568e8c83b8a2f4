#include "storage/TextColumn.h"

namespace {

template <typename T>
void TrimVector(std::vector<T>& values) {
  if (values.capacity() > values.size() + values.size() / 16) values.shrink_to_fit();
}

}  // namespace

void CTextColumn::Append(std::string_view text) {
  if (!Places.empty() && Texts[Places.back()] == text) {
    ++Uses[Places.back()];
    Places.push_back(Places.back());
  } else {
    Places.push_back(Occupy(text));
  }
}

void CTextColumn::Set(std::size_t slot, std::string_view text) {
  const std::uint32_t place = Places[slot];
  if (Uses[place] == 1) {
    std::string(text).swap(Texts[place]);  // a shorter text doesn't keep the longer one's memory
    return;
  }
  Places[slot] = Occupy(text);
  Release(place);
}

void CTextColumn::Resize(std::size_t size) {
  while (Places.size() > size) {
    Release(Places.back());
    Places.pop_back();
  }
  while (Places.size() < size) Append({});
}

void CTextColumn::Reserve(std::size_t size) {
  Places.reserve(size);
  Texts.reserve(size);
  Uses.reserve(size);
}

void CTextColumn::Trim() {
  TrimVector(Places);
  TrimVector(Texts);
  TrimVector(Uses);
}

std::uint32_t CTextColumn::Occupy(std::string_view text) {
  if (Free.empty()) {
    Texts.emplace_back(text);
    Uses.push_back(1);
    return static_cast<std::uint32_t>(Texts.size() - 1);
  }
  const std::uint32_t place = Free.back();
  Free.pop_back();
  Texts[place] = text;
  Uses[place] = 1;
  return place;
}

void CTextColumn::Release(std::uint32_t place) {
  if (--Uses[place] > 0) return;
  std::string().swap(Texts[place]);
  Free.push_back(place);
}
