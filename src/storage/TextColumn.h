#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// The texts of one column, by slot, in one block of memory. A text that equals one of those before it, as
/// the folder of a photo and the dates of its stamps mostly do, shares that one's place: it costs 4 bytes,
/// and the processor finds it in its cache.
class CTextColumn {
 public:
  std::size_t GetSize() const { return Places.size(); }
  /// Valid until the next change of the column.
  std::string_view operator[](std::size_t slot) const { return GetTextAt(Places[slot]); }

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
  std::string_view GetTextAt(std::size_t place) const {
    return {Bytes.data() + Texts[place].Offset, Texts[place].Length};
  }

 private:
  struct Text {
    std::uint32_t Offset;  // in Bytes
    std::uint32_t Length;
    std::uint32_t Uses;  // how many slots share it
  };

  std::uint32_t Occupy(std::string_view text);
  std::uint32_t MakePlace(std::string_view text);
  void Release(std::uint32_t place);
  void Compact();

  std::vector<std::uint32_t> Places;  // by slot
  std::vector<Text> Texts;            // by place
  std::vector<char> Bytes;
  std::vector<std::uint32_t> Free;    // places without a use
  std::vector<std::uint32_t> Recent;  // places of texts met lately, by a hash of the text
  std::size_t UnusedBytes = 0;
};
