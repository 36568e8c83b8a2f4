#include "imaging/ScanHeaders.h"

#include "imaging/EntropyData.h"
#include "imaging/HuffmanCode.h"

namespace {

constexpr std::uint8_t kHuffmanTables = 0xC4;
constexpr std::uint8_t kEndOfImage = 0xD9;
constexpr std::uint8_t kScan = 0xDA;
constexpr std::uint8_t kRestartInterval = 0xDD;
constexpr std::uint8_t kFirstApplication = 0xE0;
constexpr std::uint8_t kLastApplication = 0xEF;
constexpr std::uint8_t kComment = 0xFE;

constexpr unsigned kMostShift = 13;

bool IsText(std::uint8_t code) {
  return code == kComment || (code >= kFirstApplication && code <= kLastApplication);
}

}  // namespace

CScanHeaders::CScanHeaders(const jpeg_decompress_struct& info, std::span<const std::uint8_t> bytes)
    : Info(info), Bytes(bytes), RestartInterval(info.restart_interval) {
  for (std::size_t k = 0; k < HasAcTable.size(); ++k) {
    const JHUFF_TBL* table = info.ac_huff_tbl_ptrs[k];
    if (!table) continue;
    HasAcTable[k] = CHuffmanCode::Make(std::span(table->bits).subspan<1>(), table->huffval).has_value();
  }
}

CScanHeaders::Found CScanHeaders::FindNext() {
  At = FindMarker(Bytes, At);
  for (;;) {
    if (At >= Bytes.size() || Bytes[At] != 0xFF) return Found::Irregular;
    while (At < Bytes.size() && Bytes[At] == 0xFF) ++At;
    if (At == Bytes.size()) return Found::Irregular;
    const std::uint8_t code = Bytes[At++];
    if (code == kEndOfImage) return Found::EndOfImage;
    const auto segment = TakeSegment();
    if (!segment) return Found::Irregular;
    if (code == kScan) return TakeScan(*segment) ? Found::Scan : Found::Irregular;
    if (code == kRestartInterval && segment->size() == 2) {
      RestartInterval = (*segment)[0] * 256U + (*segment)[1];
    } else if (!(code == kHuffmanTables && TakeTables(*segment)) && !IsText(code)) {
      return Found::Irregular;
    }
  }
}

/// The data of the segment whose length comes next.
std::optional<std::span<const std::uint8_t>> CScanHeaders::TakeSegment() {
  constexpr std::size_t kLengthBytes = 2;
  const auto rest = Bytes.subspan(At);
  if (rest.size() < kLengthBytes) return std::nullopt;
  const std::size_t length = rest[0] * std::size_t{256} + rest[1];
  if (length < kLengthBytes || length > rest.size()) return std::nullopt;
  At += length;
  return rest.subspan(kLengthBytes, length - kLengthBytes);
}

bool CScanHeaders::TakeTables(std::span<const std::uint8_t> segment) {
  constexpr std::size_t kHead = 1 + CHuffmanCode::kMostBits;
  while (segment.size() >= kHead) {
    const unsigned kind = segment[0] >> 4;  // 0 for DC, 1 for AC
    const unsigned number = segment[0] & 15;
    const auto code =
        CHuffmanCode::Make(segment.subspan<1, CHuffmanCode::kMostBits>(), segment.subspan(kHead));
    if (kind > 1 || number >= HasAcTable.size() || !code) return false;
    if (kind == 1) HasAcTable[number] = true;
    segment = segment.subspan(kHead + code->GetEntries().size());
  }
  return segment.empty();
}

bool CScanHeaders::TakeScan(std::span<const std::uint8_t> segment) {
  constexpr std::size_t kAround = 4;  // bytes but those of the components
  const std::size_t count = segment.empty() ? 0 : segment[0];
  const auto all = static_cast<std::size_t>(Info.num_components);
  if (count < 1 || count > all || segment.size() != kAround + 2 * count) return false;
  Scan.ComponentCount = count;
  Scan.FirstComponent = 0;
  while (Scan.FirstComponent < all && Info.comp_info[Scan.FirstComponent].component_id != segment[1]) {
    ++Scan.FirstComponent;
  }
  if (Scan.FirstComponent + count > all) return false;
  for (std::size_t k = 1; k < count; ++k) {
    if (Info.comp_info[Scan.FirstComponent + k].component_id != segment[1 + 2 * k]) return false;
  }
  const auto last = segment.last<3>();
  Scan.FirstCoefficient = last[0];
  Scan.LastCoefficient = last[1];
  Scan.PreviousShift = last[2] >> 4;
  Scan.Shift = last[2] & 15;
  return IsScanRegular(segment[2] & 15);
}

bool CScanHeaders::IsScanRegular(unsigned acTable) const {
  if (Scan.Shift > kMostShift) return false;
  if (Scan.PreviousShift != 0 && Scan.Shift + 1 != Scan.PreviousShift) return false;
  if (Scan.FirstCoefficient == 0) return Scan.LastCoefficient == 0;
  return Scan.FirstCoefficient <= Scan.LastCoefficient && Scan.LastCoefficient < DCTSIZE2 &&
         Scan.ComponentCount == 1 && acTable < HasAcTable.size() && HasAcTable[acTable];
}
