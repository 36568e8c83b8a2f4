#pragma once

#include <QFont>
#include <array>

/// The fonts of the interface.
enum class FontId : int {
  LabelItalic = 1,
  Label = 2,
  LabelBold = 3,
  CaptionItalic = 4,
  Caption = 5,
  EmptyPage = 6,
  Field = 7,
  Band = 8,
  Small = 9,
  Tab = 10,
  PanelItalic = 11,
  Panel = 12,
  PanelBold = 13,
  ListItalic = 14,
  Note = 15,
  Large = 16,
  Heading = 17,
};

/// The fonts by number: Arial, or what the system has of the same metrics. A font is given by the height
/// of its lines, its cell height, in pixels; numbers 1 to 5 are smaller on a small screen. One instance,
/// made when the application stands.
class CFontTable {
 public:
  /// `smallScreen`: windows can't be higher than 600 pixels.
  explicit CFontTable(bool smallScreen = IsSmallScreen());
  ~CFontTable();
  CFontTable(const CFontTable&) = delete;
  CFontTable& operator=(const CFontTable&) = delete;

  /// CError if there is no table.
  static const CFontTable& GetInstance();

  /// True where a window can be at most 600 pixels high.
  static bool IsSmallScreen();

  const QFont& GetFont(FontId id) const { return GetEntry(id).Font; }
  int GetCellHeight(FontId id) const { return GetEntry(id).CellHeight; }

 private:
  struct Entry {
    int CellHeight = 0;
    QFont Font;
  };
  static constexpr int kCount = 17;

  const Entry& GetEntry(FontId id) const { return Entries[static_cast<std::size_t>(id) - 1]; }

  std::array<Entry, kCount> Entries;
};

/// The size in pixels of the largest letters whose lines, of `lineHeight` times that size, round to at most
/// `cellHeight` pixels; at least 1.
int PixelSizeForCell(int cellHeight, double lineHeight);

inline const QFont& GetFont(FontId id) { return CFontTable::GetInstance().GetFont(id); }
