#pragma once

#include <csetjmp>
#include <cstdio>
// jpeglib.h needs <cstdio> before it.
#include <jerror.h>
#include <jpeglib.h>

/// The JPEG library's failures, for code inside the imaging folder. The library is C and must not be
/// unwound by an exception, so its fatal errors jump back to RunGuarded, which answers false. A jump over
/// an object with a destructor has no meaning in C++: a guarded step, and everything that it calls, holds
/// none while it is inside the library.
struct JpegErrors {
  JpegErrors() {
    jpeg_std_error(&Manager);
    Manager.error_exit = [](j_common_ptr info) { std::longjmp(From(info).Jump, 1); };
    Manager.emit_message = [](j_common_ptr info, int level) {
      if (level >= 0) return;
      if (info->err->msg_code == JWRN_HIT_MARKER) From(info).RanDry = true;
      if (IsHarmless(*info->err)) return;
      From(info).Flawed = true;
      // The library has skipped something among the headers.
      const auto* decoder = reinterpret_cast<j_decompress_ptr>(info);
      if (info->is_decompressor && decoder->input_scan_number == 0) From(info).LostHeader = true;
    };
    Manager.output_message = [](j_common_ptr) {};
  }
  JpegErrors(const JpegErrors&) = delete;
  JpegErrors& operator=(const JpegErrors&) = delete;

  jpeg_error_mgr Manager{};
  std::jmp_buf Jump{};
  bool RanDry = false;      // the entropy-coded data of a scan has ended too early
  bool Flawed = false;      // something in the file couldn't be made out, or was skipped
  bool LostHeader = false;  // it stands before the first scan

 private:
  /// Warnings about how a file was written, when all that is in it has been taken in.
  static bool IsHarmless(const jpeg_error_mgr& manager) {
    constexpr int kMostStrayBytes = 512;  // some cameras fill up behind a scan
    switch (manager.msg_code) {
      case JWRN_ADOBE_XFORM:
      case JWRN_BOGUS_PROGRESSION:
      case JWRN_JFIF_MAJOR:
      case JWRN_NOT_SEQUENTIAL:
        return true;
      case JWRN_EXTRANEOUS_DATA:
        return manager.msg_parm.i[0] <= kMostStrayBytes;
      default:
        return false;
    }
  }

  static JpegErrors& From(j_common_ptr info) { return *static_cast<JpegErrors*>(info->client_data); }
};

/// Runs a step that calls the library on an object whose `err` is `errors.Manager` and whose `client_data`
/// is `errors`. The step's own answer, or false if the library gave up.
template <typename Step>
bool RunGuarded(JpegErrors& errors, const Step& step) {
  if (setjmp(errors.Jump) != 0) return false;
  return step();
}
