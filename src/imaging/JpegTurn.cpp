#include "imaging/JpegTurn.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <utility>

#include "base/Exceptions.h"
#include "imaging/JpegLibrary.h"
#include "imaging/PictureMemory.h"

namespace {

/// A clockwise turn: rows become columns or stay, and then the columns and the rows are mirrored or stay.
struct QuarterTurn {
  bool Transposes = false;
  bool MirrorsColumns = false;
  bool MirrorsRows = false;
};

/// The coefficients of one channel, with the library's object that they belong to.
struct CoefficientPlane {
  j_common_ptr Owner = nullptr;
  jvirt_barray_ptr Blocks = nullptr;
};

/// A turned channel. Its array has rows up to the next whole `RowUnit`, at most 4, and lets
/// kTurnedRowsAtOnce of them be reached at once.
struct TurnedPlane : CoefficientPlane {
  JDIMENSION Width = 0;   // blocks
  JDIMENSION Height = 0;  // blocks
  JDIMENSION RowUnit = 1;
};

constexpr JDIMENSION kTurnedRowsAtOnce = 8;

constexpr JDIMENSION RoundUp(JDIMENSION value, JDIMENSION unit) { return (value + unit - 1) / unit * unit; }

template <bool Negates>
JCOEF Sign(JCOEF value) {
  return static_cast<JCOEF>(Negates ? -value : value);
}

constexpr std::ptrdiff_t kSide = DCTSIZE;

/// `Step` is the distance in the source between coefficients that are neighbours in the target's row.
template <std::ptrdiff_t Step, bool NegatesEven, bool NegatesOdd>
void TurnRow(const JCOEF* source, JCOEF* target) {
  for (std::ptrdiff_t x = 0; x < kSide; x += 2) {
    target[x] = Sign<NegatesEven>(source[x * Step]);
    target[x + 1] = Sign<NegatesOdd>(source[(x + 1) * Step]);
  }
}

/// Mirroring a block negates the coefficients of every second column or row, those of odd functions.
template <bool Transposes, bool MirrorsColumns, bool MirrorsRows>
void TurnBlock(const JCOEF* source, JCOEF* target) {
  constexpr std::ptrdiff_t kStep = Transposes ? kSide : 1;
  constexpr std::ptrdiff_t kRowStep = Transposes ? 1 : kSide;
  for (std::ptrdiff_t y = 0; y < kSide; y += 2) {
    TurnRow<kStep, false, MirrorsColumns>(source + y * kRowStep, target + y * kSide);
    TurnRow<kStep, MirrorsRows, MirrorsColumns != MirrorsRows>(source + (y + 1) * kRowStep,
                                                               target + (y + 1) * kSide);
  }
}

using BlockTurn = void (*)(const JCOEF* source, JCOEF* target);

template <bool Transposes>
BlockTurn ChooseMirrored(const QuarterTurn& turn) {
  if (turn.MirrorsColumns) {
    return turn.MirrorsRows ? TurnBlock<Transposes, true, true> : TurnBlock<Transposes, true, false>;
  }
  return turn.MirrorsRows ? TurnBlock<Transposes, false, true> : TurnBlock<Transposes, false, false>;
}

BlockTurn ChooseBlockTurn(const QuarterTurn& turn) {
  return turn.Transposes ? ChooseMirrored<true>(turn) : ChooseMirrored<false>(turn);
}

JBLOCKARRAY GetRows(const CoefficientPlane& plane, JDIMENSION first, JDIMENSION count, bool toWrite) {
  return plane.Owner->mem->access_virt_barray(plane.Owner, plane.Blocks, first, count,
                                              toWrite ? TRUE : FALSE);
}

/// Turns all blocks of a channel and the coefficients in each. The source has at least as many blocks as the
/// target. To be called guarded.
void TurnPlane(const CoefficientPlane& source, const TurnedPlane& target, const QuarterTurn& turn) {
  const BlockTurn turnBlock = ChooseBlockTurn(turn);
  const auto column = [&](JDIMENSION x) { return turn.MirrorsColumns ? target.Width - 1 - x : x; };
  const auto row = [&](JDIMENSION y) { return turn.MirrorsRows ? target.Height - 1 - y : y; };
  // Whole units, since the library will read the rows behind the last one as well.
  const JDIMENSION band = kTurnedRowsAtOnce / target.RowUnit * target.RowUnit;
  for (JDIMENSION top = 0; top < target.Height; top += band) {
    const JDIMENSION count = std::min(band, target.Height - top);
    const JBLOCKARRAY rows = GetRows(target, top, RoundUp(count, target.RowUnit), true);
    if (turn.Transposes) {
      // A column of the band is a run of neighbours in a row of the source.
      for (JDIMENSION x = 0; x < target.Width; ++x) {
        const JBLOCKROW from = GetRows(source, column(x), 1, false)[0];
        for (JDIMENSION y = 0; y < count; ++y) turnBlock(from[row(top + y)], rows[y][x]);
      }
    } else {
      for (JDIMENSION y = 0; y < count; ++y) {
        const JBLOCKROW from = GetRows(source, row(top + y), 1, false)[0];
        for (JDIMENSION x = 0; x < target.Width; ++x) turnBlock(from[column(x)], rows[y][x]);
      }
    }
  }
}

QuarterTurn GetTurn(int angle) {
  switch (angle) {
    case 90:
      return {.Transposes = true, .MirrorsColumns = true};
    case 180:
      return {.MirrorsColumns = true, .MirrorsRows = true};
    case 270:
      return {.Transposes = true, .MirrorsRows = true};
    default:
      throw CError("Angle not supported");
  }
}

/// Cuts a side to whole units, which can be mirrored. False, with nothing cut, if it has none.
bool Trim(JDIMENSION& side, JDIMENSION unit) {
  const JDIMENSION whole = side / unit * unit;
  if (whole > 0) side = whole;
  return whole > 0;
}

void Transpose(JQUANT_TBL& table) {
  for (int y = 0; y < DCTSIZE; ++y) {
    for (int x = 0; x < y; ++x) std::swap(table.quantval[y * DCTSIZE + x], table.quantval[x * DCTSIZE + y]);
  }
}

/// The two library objects of one turn. A failure of either jumps to the guard of the step.
class CJpegTurn {
 public:
  CJpegTurn(std::span<const std::uint8_t> bytes, const QuarterTurn& turn)
      : Turn(turn),
        FileBytes(bytes.size()),
        Source(bytes),
        Destination(bytes.size() + bytes.size() / 8 + kLeastRoom),
        Watch(bytes.size()) {
    From.err = &Errors.Manager;
    From.client_data = &Errors;
    To.err = &Errors.Manager;
    To.client_data = &Errors;
    Watch.progress_monitor = [](j_common_ptr info) {
      static_cast<ScanWatch*>(info->progress)->Look(reinterpret_cast<j_decompress_ptr>(info));
    };
  }
  ~CJpegTurn() {
    jpeg_destroy_compress(&To);
    jpeg_destroy_decompress(&From);
  }
  CJpegTurn(const CJpegTurn&) = delete;
  CJpegTurn& operator=(const CJpegTurn&) = delete;

  /// The picture, up to its end; none if it can't be read or written.
  std::optional<std::vector<std::uint8_t>> Run() {
    if (!TakeIn() || !Run([this] { return Write(); })) return {};
    return Destination.Take();
  }

  /// Whether the picture reads without any flaw.
  bool IsWhole() { return TakeIn() && !Errors.Flawed; }

  /// Whether what is written must be read again as a check: damaged data can give values that no decoder
  /// reads back, and the arithmetic encoder refuses none.
  bool IsInDoubt() const { return Errors.Flawed || From.arith_code; }

  /// The bytes behind the end of the picture.
  std::span<const std::uint8_t> GetTrailer() const { return Source.GetRest(); }

 private:
  static constexpr std::size_t kLeastRoom = 4096;                             // bytes
  static constexpr std::size_t kMostScans = std::size_t{6} * MAX_COMPONENTS;  // of the library's progressions

  /// Looks at each scan when it begins, while the library reads them all.
  struct ScanWatch : jpeg_progress_mgr {
    explicit ScanWatch(std::size_t fileBytes) : jpeg_progress_mgr(), Budget(fileBytes) {}
    void Look(j_decompress_ptr info) {
      if (info->input_scan_number == LastScan) return;
      LastScan = info->input_scan_number;
      if (!Budget.Allows(*info)) ERREXIT(info, JERR_INPUT_EOF);
    }
    CScanBudget Budget;
    int LastScan = 0;
  };

  bool TakeIn() {
    if (!Run([this] { return ReadHeader(); })) return false;
    if (!IsAffordable(From)) throw CTooLargeException();
    // The coefficients as read and as turned, and the new file, whose buffer can be twice as large as the
    // file.
    Share.emplace(GetPictureMemory(), 2 * GetCoefficientBytes(From) + 2 * std::uint64_t{FileBytes});
    return Run([this] { return ReadPicture(); }) && !Errors.LostHeader;
  }

  /// False if the library gave up on the file, CTooLargeException if on its size.
  template <typename Step>
  bool Run(const Step& step) {
    if (RunGuarded(Errors, step)) return true;
    if (Watch.Budget.IsSpent() || Errors.Manager.msg_code == JERR_OUT_OF_MEMORY) throw CTooLargeException();
    return false;
  }

  // All below runs guarded.

  bool ReadHeader() {
    jpeg_create_decompress(&From);
    From.src = Source.GetManager();
    Source.KeepHeaders(&From);
    From.progress = &Watch;
    return jpeg_read_header(&From, TRUE) == JPEG_HEADER_OK;
  }

  bool ReadPicture() {
    Held = jpeg_read_coefficients(&From);
    return Held != nullptr;
  }

  bool Write() {
    jpeg_create_compress(&To);
    To.dest = Destination.GetManager();
    jpeg_copy_critical_parameters(&From, &To);
    SetGeometry();
    SetCoding();
    RequestPlanes();
    jpeg_write_coefficients(&To, Turned.data());
    for (const JpegHeader& header : Source.GetHeaders()) {
      jpeg_write_marker(&To, header.Marker, header.Data.data(), static_cast<unsigned>(header.Data.size()));
    }
    for (int k = 0; k < To.num_components; ++k) {
      const jpeg_component_info& channel = To.comp_info[k];
      const TurnedPlane target{{AsCommon(&To), Turned[static_cast<std::size_t>(k)]},
                               channel.width_in_blocks,
                               channel.height_in_blocks,
                               static_cast<JDIMENSION>(channel.v_samp_factor)};
      TurnPlane({AsCommon(&From), Held[k]}, target, Turn);
    }
    jpeg_finish_compress(&To);
    return true;
  }

  void SetGeometry() {
    if (To.num_components == 1) {
      // A single channel has its blocks in plain rows, whatever sampling it claims.
      To.comp_info[0].h_samp_factor = 1;
      To.comp_info[0].v_samp_factor = 1;
    }
    if (Turn.Transposes) {
      std::swap(To.image_width, To.image_height);
      for (int k = 0; k < To.num_components; ++k) {
        std::swap(To.comp_info[k].h_samp_factor, To.comp_info[k].v_samp_factor);
      }
      for (JQUANT_TBL* table : To.quant_tbl_ptrs) {
        if (table) Transpose(*table);
      }
    }
    for (int k = 0; k < To.num_components; ++k) {
      UnitWidth = std::max(UnitWidth, static_cast<JDIMENSION>(To.comp_info[k].h_samp_factor * DCTSIZE));
      UnitHeight = std::max(UnitHeight, static_cast<JDIMENSION>(To.comp_info[k].v_samp_factor * DCTSIZE));
    }
    if (Turn.MirrorsColumns) Turn.MirrorsColumns = Trim(To.image_width, UnitWidth);
    if (Turn.MirrorsRows) Turn.MirrorsRows = Trim(To.image_height, UnitHeight);
  }

  void SetCoding() {
    // The source's own headers are copied. One that the library makes up can change what the colours mean.
    To.write_JFIF_header = FALSE;
    To.write_Adobe_marker = FALSE;
    To.arith_code = From.arith_code;
    To.optimize_coding = From.arith_code ? FALSE : TRUE;
    if (From.progressive_mode) jpeg_simple_progression(&To);
    SplitScansIfNeeded();
    KeepRestarts();
  }

  /// The library interleaves no more than ten blocks. A picture that has more is written channel by channel,
  /// as it must have been read.
  void SplitScansIfNeeded() {
    int blocks = 0;
    for (int k = 0; k < To.num_components; ++k) {
      blocks += To.comp_info[k].h_samp_factor * To.comp_info[k].v_samp_factor;
    }
    if (blocks <= C_MAX_BLOCKS_IN_MCU) return;
    if (!To.scan_info) {
      for (int k = 0; k < To.num_components; ++k) {
        Scans[static_cast<std::size_t>(k)] = {1, {k}, 0, DCTSIZE2 - 1, 0, 0};
      }
      To.num_scans = To.num_components;
    } else {
      int count = 0;
      for (int i = 0; i < To.num_scans; ++i) {
        jpeg_scan_info scan = To.scan_info[i];
        const int channels = std::exchange(scan.comps_in_scan, 1);
        for (int k = 0; k < channels; ++k) {
          scan.component_index[0] = To.scan_info[i].component_index[k];
          Scans[static_cast<std::size_t>(count++)] = scan;
        }
      }
      To.num_scans = count;
    }
    To.scan_info = Scans.data();
  }

  /// Restart marks that stood at the ends of rows do so again; others keep their distance.
  void KeepRestarts() {
    const int across = From.num_components == 1 ? 1 : From.max_h_samp_factor;
    const JDIMENSION unit = static_cast<JDIMENSION>(across * DCTSIZE);
    const JDIMENSION unitsPerRow = RoundUp(From.image_width, unit) / unit;
    if (From.restart_interval % unitsPerRow == 0) {
      To.restart_in_rows = static_cast<int>(From.restart_interval / unitsPerRow);
    } else {
      To.restart_interval = From.restart_interval;
    }
  }

  void RequestPlanes() {
    const JDIMENSION across = RoundUp(To.image_width, UnitWidth) / UnitWidth;
    const JDIMENSION down = RoundUp(To.image_height, UnitHeight) / UnitHeight;
    for (int k = 0; k < To.num_components; ++k) {
      const jpeg_component_info& channel = To.comp_info[k];
      Turned[static_cast<std::size_t>(k)] = To.mem->request_virt_barray(
          AsCommon(&To), JPOOL_IMAGE, FALSE, across * static_cast<JDIMENSION>(channel.h_samp_factor),
          down * static_cast<JDIMENSION>(channel.v_samp_factor), kTurnedRowsAtOnce);
    }
  }

  template <typename Info>
  static j_common_ptr AsCommon(Info* info) {
    return reinterpret_cast<j_common_ptr>(info);
  }

  QuarterTurn Turn;
  const std::size_t FileBytes;
  std::optional<CMemoryShare> Share;
  JpegErrors Errors;
  CJpegSource Source;
  CJpegDestination Destination;
  ScanWatch Watch;
  jpeg_decompress_struct From{};
  jpeg_compress_struct To{};
  jvirt_barray_ptr* Held = nullptr;  // of each channel as read
  std::array<jvirt_barray_ptr, MAX_COMPONENTS> Turned{};
  JDIMENSION UnitWidth = DCTSIZE;  // of the turned picture's smallest group of whole blocks, pixels
  JDIMENSION UnitHeight = DCTSIZE;
  std::array<jpeg_scan_info, kMostScans> Scans{};
};

}  // namespace

std::optional<std::vector<std::uint8_t>> TurnJpeg(std::span<const std::uint8_t> bytes, int angle) {
  const QuarterTurn turn = GetTurn(angle);
  std::optional<std::vector<std::uint8_t>> turned;
  std::span<const std::uint8_t> trailer;
  bool isInDoubt = false;
  try {
    {
      CJpegTurn work(bytes, turn);
      turned = work.Run();
      trailer = work.GetTrailer();
      isInDoubt = work.IsInDoubt();
    }
    if (!turned || (isInDoubt && !CJpegTurn(*turned, turn).IsWhole())) return {};
    turned->insert(turned->end(), trailer.begin(), trailer.end());
    return turned;
  } catch (const std::bad_alloc&) {
    throw CTooLargeException();
  }
}
