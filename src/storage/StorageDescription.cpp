#include "storage/StorageDescription.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Exceptions.h"
#include "platform/Ascii.h"

namespace {

constexpr std::size_t kMaximumColumns = 1000;

/// Names that SQLite keeps for the number of a row.
constexpr std::array<std::string_view, 3> kReservedNames = {"rowid", "oid", "_rowid_"};

bool IsLetter(char byte) { return platform::FoldByte(byte) >= 'a' && platform::FoldByte(byte) <= 'z'; }
bool IsNameByte(char byte) { return IsLetter(byte) || (byte >= '0' && byte <= '9') || byte == '_'; }

class CDescriptionParser {
 public:
  explicit CDescriptionParser(std::string_view description) : Description(description) {}

  ViewDescription Parse() {
    ViewDescription result;
    result.Name = ReadName();
    if (TextsAreEqual(std::string_view(result.Name).substr(0, 7), "sqlite_")) Fail("that name is reserved");
    Expect('[');
    do {
      result.Columns.push_back(ReadColumn());
      CheckLastColumn(result.Columns);
    } while (Accept(','));
    Expect(']');
    if (At != Description.size()) Fail("nothing may follow the closing bracket");
    return result;
  }

 private:
  [[noreturn]] void Fail(const std::string& reason) const {
    throw CError("The view description \"" + std::string(Description) + "\" can't be read at position " +
                 std::to_string(At) + ": " + reason + ".");
  }

  bool Accept(char byte) {
    if (At == Description.size() || Description[At] != byte) return false;
    ++At;
    return true;
  }

  void Expect(char byte) {
    if (!Accept(byte)) Fail(std::string("\"") + byte + "\" is missing");
  }

  std::string ReadName() {
    const std::size_t start = At;
    if (At < Description.size() && IsLetter(Description[At])) {
      while (At < Description.size() && IsNameByte(Description[At])) ++At;
    }
    if (At == start) Fail("a name is missing");
    return std::string(Description.substr(start, At - start));
  }

  ViewDescription::Column ReadColumn() {
    std::string name = ReadName();
    Expect(':');
    for (const c4_Type type : {c4_Type::Integer, c4_Type::Text, c4_Type::Bytes}) {
      if (Accept(static_cast<char>(type))) return {std::move(name), type};
    }
    Fail("the type is none of I, S and B");
  }

  void CheckLastColumn(const std::vector<ViewDescription::Column>& columns) const {
    const std::string& name = columns.back().Name;
    const auto isName = [&](std::string_view other) { return TextsAreEqual(name, other); };
    if (std::any_of(kReservedNames.begin(), kReservedNames.end(), isName)) Fail("that name is reserved");
    if (std::any_of(columns.begin(), columns.end() - 1,
                    [&](const ViewDescription::Column& column) { return isName(column.Name); })) {
      Fail("that property is there already");
    }
    if (columns.size() > kMaximumColumns) Fail("there are too many properties");
  }

  std::string_view Description;
  std::size_t At = 0;
};

}  // namespace

ViewDescription ParseViewDescription(std::string_view description) {
  return CDescriptionParser(description).Parse();
}
