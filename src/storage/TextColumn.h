#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The texts of one column, by slot. A text that equals the one before it, as the folder of a photo and the
/// dates of its stamps mostly do, shares that one's place: it costs 4 bytes, and the processor finds it in
/// its cache.
class CTextColumn {
 public:
  std::size_t GetSize() const { return Places.size(); }
  const std::string& operator[](std::size_t slot) const { return Texts[Places[slot]]; }

  void Append(std::string_view text);
  void Set(std::size_t slot, std::string_view text);
  /// Drops from the end or appends empty texts.
  void Resize(std::size_t size);

  void Reserve(std::size_t size);
  /// Frees what was reserved in vain.
  void Trim();

  // A place holds a text for one slot or more. Equal texts may have several places.

  std::uint32_t GetPlace(std::size_t slot) const { return Places[slot]; }
  std::size_t GetPlaceCount() const { return Texts.size(); }
  const std::string& GetTextAt(std::size_t place) const { return Texts[place]; }

 private:
  std::uint32_t Occupy(std::string_view text);
  void Release(std::uint32_t place);

  std::vector<std::uint32_t> Places;
  std::vector<std::string> Texts;   // by place
  std::vector<std::uint32_t> Uses;  // by place: how many slots share it
  std::vector<std::uint32_t> Free;  // places without a use
};
