#include "imaging/DcPicture.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "imaging/ScanHeaders.h"

namespace {

constexpr std::size_t kBlockSide = DCTSIZE;

// Further out the library's samples aren't clamped any more.
constexpr int kMostSample = 512;
bool IsSane(int sample) { return sample >= -kMostSample && sample < kMostSample; }

// Places in a block of the first coefficients of a scan.
constexpr std::array kZigzag{0, 1, DCTSIZE, 2 * DCTSIZE, DCTSIZE + 1};

std::size_t DivideUp(std::size_t value, std::size_t unit) { return (value + unit - 1) / unit; }

std::uint8_t Clamp(int value) {
  // Hardly any value is out of range, so the condition can be foreseen.
  if (static_cast<unsigned>(value) > MAXJSAMPLE) [[unlikely]] {
    return value < 0 ? 0 : MAXJSAMPLE;
  }
  return static_cast<std::uint8_t>(value);
}

/// The code of a table of the library; none if there is no table or its code can't be.
std::optional<CHuffmanCode> MakeCode(const JHUFF_TBL* table) {
  if (!table) return std::nullopt;
  return CHuffmanCode::Make(std::span(table->bits).subspan<1>(), table->huffval);
}

bool IsForDc(const CHuffmanCode& code) {
  constexpr int kMostSize = 15;
  return std::ranges::all_of(code.GetEntries(), [](const auto& entry) { return entry.Symbol <= kMostSize; });
}

/// What blue and red chroma add to the luma of a pixel.
struct Chroma {
  int Blue = 0;
  int Green = 0;
  int Red = 0;
};

/// With the numbers of the library, which are those of JFIF 1.02 times 2 to the power of 16.
Chroma GetChroma(std::uint8_t blueness, std::uint8_t redness) {
  constexpr int kHalf = 1 << 15;
  const int cb = blueness - CENTERJSAMPLE;
  const int cr = redness - CENTERJSAMPLE;
  return {(116130 * cb + kHalf) >> 16, (-22554 * cb - 46802 * cr + kHalf) >> 16, (91881 * cr + kHalf) >> 16};
}

/// A row of `width` pixels. A sample of chroma is for `across` of them.
void PaintYcc(const std::uint8_t* luma, const std::uint8_t* cb, const std::uint8_t* cr, std::size_t across,
              std::size_t width, std::uint8_t* pixel) {
  for (std::size_t x = 0; x < width; ++cb, ++cr) {
    const Chroma chroma = GetChroma(*cb, *cr);
    for (const std::size_t end = std::min(x + across, width); x < end; ++x, pixel += 3) {
      pixel[0] = Clamp(luma[x] + chroma.Blue);
      pixel[1] = Clamp(luma[x] + chroma.Green);
      pixel[2] = Clamp(luma[x] + chroma.Red);
    }
  }
}

}  // namespace

CDcPicture::CDcPicture(const jpeg_decompress_struct& info, std::span<const std::uint8_t> data)
    : Info(info), Data(data) {}

std::uint64_t CDcPicture::GetHeldBytes(const jpeg_decompress_struct& info, std::size_t fileBytes) {
  constexpr std::uint64_t kBytesPerBlock = 6;  // coefficients and samples, also of blocks beyond the edge
  const std::uint64_t blocks =
      DivideUp(info.image_width, kBlockSide) * DivideUp(info.image_height, kBlockSide);
  return fileBytes + blocks * static_cast<unsigned>(info.num_components) * kBytesPerBlock;
}

bool CDcPicture::IsCommon() const {
  const bool hasCommonColors =
      Info.num_components == 1 ? Info.jpeg_color_space == JCS_GRAYSCALE
                               : Info.num_components == 3 &&
                                     (Info.jpeg_color_space == JCS_YCbCr || Info.jpeg_color_space == JCS_RGB);
  if (!hasCommonColors || Info.arith_code || Info.data_precision != 8) return false;
  if (Info.comps_in_scan != Info.num_components || Info.Ss != 0 || Info.Ah != 0) return false;
  if (Info.progressive_mode) return Info.Se == 0 && Info.Al <= 13;
  return Info.Se == DCTSIZE2 - 1 && Info.Al == 0;
}

/// Finds out where the blocks of the channels stand in a unit.
bool CDcPicture::PrepareUnit() {
  for (int k = 0; k < Info.num_components; ++k) {
    const jpeg_component_info& info = Info.comp_info[k];
    if (Info.cur_comp_info[k] != &info) return false;
    const bool isDivided = k == 0 && Info.num_components > 1;
    const auto across = static_cast<std::size_t>(isDivided ? info.h_samp_factor : 1);
    const auto down = static_cast<std::size_t>(isDivided ? info.v_samp_factor : 1);
    if (k > 0 && (info.h_samp_factor != 1 || info.v_samp_factor != 1)) return false;
    if (across * down > 4 || across == 3 || down > 2) return false;
    if (info.quant_tbl_no < 0 || info.quant_tbl_no >= NUM_QUANT_TBLS) return false;
    const JQUANT_TBL* quantizers = Info.quant_tbl_ptrs[info.quant_tbl_no];
    CDcScan::Block block{static_cast<std::size_t>(k)};
    if (!quantizers || !PrepareTables(info, block)) return false;
    block.HasDetail = k > 0 && block.Ac && Channels[0].Across == 2 && Channels[0].Down == 2;
    Channels.push_back({across, down, Unit.size(), {}});
    std::ranges::transform(kZigzag, Channels.back().Quantizers.begin(),
                           [&](int place) { return int{quantizers->quantval[place]}; });
    Unit.insert(Unit.end(), across * down, block);
  }
  UnitsAcross = DivideUp(Info.image_width, kBlockSide * Channels[0].Across);
  UnitsDown = DivideUp(Info.image_height, kBlockSide * Channels[0].Down);
  return true;
}

bool CDcPicture::PrepareTables(const jpeg_component_info& channel, CDcScan::Block& block) {
  const auto dc = static_cast<std::size_t>(channel.dc_tbl_no);
  const auto ac = static_cast<std::size_t>(channel.ac_tbl_no);
  if (dc >= DcTables.size() || ac >= SkipTables.size()) return false;
  if (!DcTables[dc]) {
    auto code = MakeCode(Info.dc_huff_tbl_ptrs[dc]);
    if (!code || !IsForDc(*code)) return false;
    DcTables[dc].emplace(std::move(*code));
  }
  block.Dc = &*DcTables[dc];
  if (Info.progressive_mode) return true;
  if (!SkipTables[ac]) {
    auto code = MakeCode(Info.ac_huff_tbl_ptrs[ac]);
    if (!code) return false;
    SkipTables[ac].emplace(std::move(*code));
  }
  block.Ac = &*SkipTables[ac];
  return true;
}

bool CDcPicture::Read(std::size_t fileBytes) {
  if (!IsCommon() || !PrepareUnit()) return false;
  const CDcScan scan(Unit, UnitsAcross * UnitsDown, Info.restart_interval);
  // A block takes at least a bit, so a forged size gets no memory.
  if (scan.GetBlockCount() / 8 > Data.size()) return false;
  Coefficients.resize(scan.GetBlockCount());
  if (Unit.back().HasDetail) Details.resize(UnitsAcross * UnitsDown * 2);
  {
    const CEntropyData data(Data, Info.restart_interval > 0);
    if (!scan.Read(data, static_cast<unsigned>(Info.Al), Coefficients, Details)) return false;
  }
  return !Info.progressive_mode || ReadLaterScans(fileBytes);
}

bool CDcPicture::ReadLaterScans(std::size_t fileBytes) {
  CScanBudget budget(fileBytes);
  if (!budget.Allows(1, Coefficients.size())) return false;
  CScanHeaders headers(Info, Data);
  auto shift = static_cast<unsigned>(Info.Al);
  std::array<bool, 3> hasDetail{};
  for (int number = 2;; ++number) {
    const CScanHeaders::Found found = headers.FindNext();
    if (found == CScanHeaders::Found::Irregular) return false;
    if (found == CScanHeaders::Found::EndOfImage) break;
    const ScanHeader& header = headers.GetScan();
    const jpeg_component_info& channel = Info.comp_info[header.FirstComponent];
    const bool isDc = header.FirstCoefficient == 0;
    if (!budget.Allows(number, isDc ? Coefficients.size()
                                    : std::uint64_t{channel.width_in_blocks} * channel.height_in_blocks)) {
      return false;
    }
    if (header.FirstCoefficient == 1) hasDetail[header.FirstComponent] = true;
    if (!isDc) continue;
    const unsigned interval = headers.GetRestartInterval();
    if (header.ComponentCount != Channels.size() || header.PreviousShift == 0 ||
        header.PreviousShift != shift) {
      return false;
    }
    shift = header.Shift;
    const CDcScan scan(Unit, UnitsAcross * UnitsDown, interval);
    if (!scan.Refine(CEntropyData(headers.GetData(), interval > 0), shift, Coefficients)) return false;
  }
  // Of a file that lacks scans the library smooths the picture.
  return shift == 0 &&
         std::all_of(hasDetail.begin(), hasDetail.begin() + Info.num_components, std::identity());
}

int CDcPicture::GetCoefficient(std::size_t channel, std::size_t x, std::size_t y) const {
  const Channel& of = Channels[channel];
  const std::size_t unit = y / of.Down * UnitsAcross + x / of.Across;
  return Coefficients[unit * Unit.size() + of.Place + y % of.Down * of.Across + x % of.Across];
}

const BlockDetail* CDcPicture::FindDetail(std::size_t channel, std::size_t x, std::size_t y) const {
  if (channel == 0 || Details.empty()) return nullptr;
  return &Details[(y * UnitsAcross + x) * 2 + channel - 1];
}

bool CDcPicture::MakePlane(const Channel& channel, Plane& plane) const {
  plane.Width = UnitsAcross * channel.Across;
  const std::size_t height = UnitsDown * channel.Down;
  plane.Samples.resize(plane.Width * height);
  bool isSane = true;
  for (std::size_t y = 0; y < height; ++y) {
    const std::int16_t* unit = &Coefficients[y / channel.Down * UnitsAcross * Unit.size()] + channel.Place +
                               y % channel.Down * channel.Across;
    std::uint8_t* sample = &plane.Samples[y * plane.Width];
    for (std::size_t x = 0; x < UnitsAcross; ++x, unit += Unit.size()) {
      for (std::size_t k = 0; k < channel.Across; ++k) {
        // The inverse transform of the coefficient alone is an eighth of it.
        const int value = (unit[k] * channel.Quantizers[0] + 4) >> 3;
        isSane &= IsSane(value);
        *sample++ = Clamp(value + CENTERJSAMPLE);
      }
    }
  }
  return isSane;
}

/// Makes two samples each way of a block, by its mean and the waves of half a period (ITU-T T.81, A.3.3).
bool CDcPicture::MakeDetailedPlane(const Channel& channel, Plane& plane) const {
  // The mean of a wave over half a block, and over a quarter of it, times 2 to the power of 13.
  constexpr int kBits = 13;
  constexpr int kWave = 928;
  constexpr int kProduct = 841;
  constexpr int kMostCoefficient = 1 << 14;
  plane.Width = UnitsAcross * 2;
  plane.Samples.resize(plane.Width * UnitsDown * 2);
  const BlockDetail* detail = &Details[channel.Place - Channels[1].Place];
  const std::int16_t* mean = &Coefficients[channel.Place];
  bool isSane = true;
  for (std::size_t y = 0; y < UnitsDown; ++y) {
    std::uint8_t* samples = &plane.Samples[2 * y * plane.Width];
    for (std::size_t x = 0; x < UnitsAcross; ++x, detail += 2, mean += Unit.size(), samples += 2) {
      const auto scale = [&](int value, std::size_t place) {
        const int coefficient = value * channel.Quantizers[place];
        const bool fits = coefficient >= -kMostCoefficient && coefficient <= kMostCoefficient;
        isSane &= fits;
        return fits ? coefficient : 0;
      };
      const int middle = scale(*mean, 0) * (1 << (kBits - 3)) + (1 << (kBits - 1));
      const int across = scale(detail->Across, 1) * kWave;
      const int down = scale(detail->Down, 2) * kWave;
      const int diagonal = scale(detail->Diagonal, 4) * kProduct;
      const auto put = [&](int sum, std::uint8_t& sample) {
        isSane &= IsSane(sum >> kBits);
        sample = Clamp((sum >> kBits) + CENTERJSAMPLE);
      };
      put(middle + across + down + diagonal, samples[0]);
      put(middle - across + down - diagonal, samples[1]);
      put(middle + across - down - diagonal, samples[plane.Width]);
      put(middle - across - down + diagonal, samples[plane.Width + 1]);
    }
  }
  return isSane;
}

bool CDcPicture::Paint(CUprightRows& rows) const {
  std::vector<Plane> planes(Channels.size());
  for (std::size_t k = 0; k < planes.size(); ++k) {
    const bool isDetailed = k > 0 && !Details.empty();
    const bool made =
        isDetailed ? MakeDetailedPlane(Channels[k], planes[k]) : MakePlane(Channels[k], planes[k]);
    if (!made) return false;
  }
  // Pixels that a sample of chroma is for.
  const std::size_t across = Details.empty() ? Channels[0].Across : 1;
  const std::size_t down = Details.empty() ? Channels[0].Down : 1;
  const std::size_t width = DivideUp(Info.image_width, kBlockSide);
  const std::size_t height = DivideUp(Info.image_height, kBlockSide);
  for (std::size_t y = 0; y < height; ++y) {
    // Of a grey picture all three are the first.
    const std::uint8_t* first = planes[0].Row(y);
    const std::uint8_t* second = planes[planes.size() / 2].Row(y / down);
    const std::uint8_t* third = planes.back().Row(y / down);
    std::uint8_t* pixel = rows.Row(static_cast<int>(y));
    if (Info.jpeg_color_space == JCS_YCbCr) {
      PaintYcc(first, second, third, across, width, pixel);
    } else {
      for (std::size_t x = 0; x < width; ++x, pixel += 3) {
        pixel[0] = third[x / across];
        pixel[1] = second[x / across];
        pixel[2] = first[x];
      }
    }
    rows.Advance(static_cast<int>(y) + 1);
  }
  return true;
}
