#pragma once

#include "imaging/JpegGuard.h"

/// How a picture is turned clockwise by quarters: rows become columns or stay, and then the columns and the
/// rows are put in reverse order or stay. For code inside the imaging folder.
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

/// Turns all blocks of a channel and the coefficients in each. The source has at least as many blocks as the
/// target. To be called guarded.
void TurnPlane(const CoefficientPlane& source, const TurnedPlane& target, const QuarterTurn& turn);
