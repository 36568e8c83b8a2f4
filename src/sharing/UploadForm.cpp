#include "sharing/UploadForm.h"

#include "base/Format.h"

namespace {

constexpr std::string_view kBoundary = "----------qUiLlArAfOrMbOuNdArY$";

// The line of a boundary ends in a bare line feed: the service expects it so.
constexpr std::string_view kTextPart = "--%s\nContent-Disposition: form-data; name=\"%s\"\r\n\r\n%s\r\n";
constexpr std::string_view kNumberPart = "--%s\nContent-Disposition: form-data; name=\"%s\"\r\n\r\n%d\r\n";
constexpr std::string_view kFilePart =
    "--%s\nContent-Disposition: form-data; name=\"%s\"; filename=\"%s\"\r\nContent-Type: image/jpeg\r\n"
    "Content-Transfer-Encoding: binary\r\n\r\n";

std::string MakeText(std::string_view name, std::string_view value) {
  return Format(kTextPart, kBoundary, name, value);
}

std::string MakeOptionalText(std::string_view name, std::string_view value) {
  return value.empty() ? std::string() : MakeText(name, value);
}

std::string MakeNumber(std::string_view name, int value) {
  return Format(kNumberPart, kBoundary, name, value);
}

}  // namespace

std::string MakeUploadPreamble(const std::string& memberId, const UploadForm& form, bool debug) {
  return MakeText("MemberID", memberId) + MakeText("AlbumName", form.AlbumName) +
         MakeNumber("WatermarkSize", form.WatermarkSize) + MakeNumber("Quantity", form.Quantity) +
         MakeNumber("ProductID", form.ProductID) + MakeText("DirectPrint", form.DirectPrint ? "Y" : "N") +
         (debug ? MakeNumber("Debug", 1) : std::string()) + MakeOptionalText("Caption", form.Caption) +
         MakeOptionalText("Description", form.Description) + Format(kFilePart, kBoundary, "File1", form.Path);
}

std::string MakeUploadTrailer() { return Format("\r\n--%s--\r\n\r\n", kBoundary); }

std::string MakeUploadContentType() { return Format("multipart/form-data; boundary=%s", kBoundary); }
