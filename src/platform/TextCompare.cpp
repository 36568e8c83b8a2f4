#include "platform/TextCompare.h"

#include <QChar>
#include <QString>
#include <algorithm>

#include "platform/Ascii.h"
#include "platform/Unicode.h"

namespace platform {
namespace {

constexpr char16_t kFirstMark = 0x300;  // all characters before this one are composed already

/// The text in lower case, if it is ASCII. Other bytes stay as they are.
bool FoldAscii(std::string_view text, std::string& folded) {
  folded.resize(text.size());
  unsigned char all = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool isCapital = byte >= 'A' && byte <= 'Z';
    all = static_cast<unsigned char>(all | byte);
    folded[i] = static_cast<char>(byte | (isCapital ? 'a' - 'A' : 0));
  }
  return all < 0x80;
}

bool IsStrayByte(std::string_view text, std::size_t offset) {
  return static_cast<unsigned char>(text[offset]) >= 0x80 && CharacterLength(text, offset) == 1;
}

/// Appends the text with `change` applied to each run of valid UTF-8; invalid bytes are copied.
void AppendChanged(std::string_view text, QString (*change)(QString), std::string& result) {
  const auto append = [&](std::string_view run) {
    const QString whole = QString::fromUtf8(run.data(), static_cast<qsizetype>(run.size()));
    const QByteArray changed = change(whole).toUtf8();
    result.append(changed.constData(), static_cast<std::size_t>(changed.size()));
  };
  if (IsValidUtf8(text)) return append(text);
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size(); at += CharacterLength(text, at)) {
    if (!IsStrayByte(text, at)) continue;
    append(text.substr(begin, at - begin));
    result += text[at];
    begin = at + 1;
  }
  append(text.substr(begin));
}

QString Composed(QString text) {
  const bool isSurelyComposed = std::ranges::all_of(text, [](QChar c) { return c.unicode() < kFirstMark; });
  return isSurelyComposed ? text : text.normalized(QString::NormalizationForm_C);
}

/// Folds each character separately, so "ß" stays one letter and doesn't become "ss".
QString FoldedCharacters(QString text) {
  QChar* const end = text.end();
  for (QChar* unit = text.begin(); unit != end; ++unit) {
    if (!unit->isHighSurrogate()) {
      *unit = unit->toCaseFolded();
      continue;
    }
    // If one case of a letter takes two UTF-16 units, the other does too.
    const char32_t folded = QChar::toCaseFolded(QChar::surrogateToUcs4(unit[0], unit[1]));
    *unit++ = QChar(QChar::highSurrogate(folded));
    *unit = QChar(QChar::lowSurrogate(folded));
  }
  return text;
}

QString Folded(QString text) {
  // An upper-case letter with a mark may be two characters where the lower-case one is a single one.
  return Composed(FoldedCharacters(Composed(std::move(text))));
}

/// Removes accents. Combining vowels stay.
QString WithoutAccents(QString text) {
  constexpr unsigned char kFirstAccentClass = 200;
  QString parts = text.normalized(QString::NormalizationForm_D);
  parts.removeIf([](QChar c) { return c.combiningClass() >= kFirstAccentClass; });
  // The text is a single mark: keep it.
  return parts.isEmpty() ? text : parts.normalized(QString::NormalizationForm_C);
}

}  // namespace

void FoldLetters(std::string_view text, std::string& folded) {
  if (FoldAscii(text, folded)) return;
  folded.clear();
  AppendChanged(text, Folded, folded);
}

std::string FoldLetters(std::string_view text) {
  std::string folded;
  FoldLetters(text, folded);
  return folded;
}

bool EqualLetters(std::string_view a, std::string_view b) {
  return a == b || FoldLetters(a) == FoldLetters(b);
}

std::string GetFirstLetter(std::string_view text) {
  // Two ASCII characters never make one letter.
  if (IsAscii(text.substr(0, 2))) return FoldLetters(text.substr(0, 1));
  const std::string folded = FoldLetters(text);
  return std::string(FirstCharacter(folded));
}

std::string MakeLetterOrderKey(std::string_view text) {
  const std::string folded = FoldLetters(text);
  const std::string_view first = FirstCharacter(folded);
  const std::string_view rest = std::string_view(folded).substr(first.size());
  std::string key;
  key.reserve(2 * folded.size() + 2);
  const auto appendPlain = [&key, isAscii = IsAscii(folded)](std::string_view part) {
    isAscii ? void(key += part) : AppendChanged(part, WithoutAccents, key);
  };
  appendPlain(first);
  key += first;
  appendPlain(rest);
  key += '\0';
  return key += rest;
}

}  // namespace platform
