#include "platform/LocaleDate.h"

#include <QDate>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <vector>

namespace platform {
namespace {

constexpr int kYearsAhead = 20;  // how far in the future a two-digit year may be
constexpr int kShortestMonthName = 3;
constexpr qsizetype kLongestText = 100;

/// The user's locale for dates. It may differ from the locale of the texts.
std::string NameOfUsersLocale() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return value;
  }
  return "C";
}

QLocale LocaleOf(const std::string& name) {
  return QLocale(QString::fromStdString(name.empty() ? NameOfUsersLocale() : name));
}

/// Letters without case and accents: "aout" equals "août".
QString Fold(const QString& word) {
  QString folded;
  for (const QChar c : word.normalized(QString::NormalizationForm_KD)) {
    if (!c.isMark()) folded += c.toLower();
  }
  return folded;
}

bool IsWordCharacter(QChar c) { return c.isLetter() || c.isMark(); }

/// A run of digits or of letters.
struct Token {
  QString Word;    // folded; empty for a number
  int Value = 0;   // of a number
  int Digits = 0;  // of a number
  bool IsNumber() const { return Word.isEmpty(); }
};

/// None if a number has more digits than a whole date.
std::optional<std::vector<Token>> Divide(const QString& text) {
  constexpr int kMostDigits = 8;
  std::vector<Token> tokens;
  for (qsizetype i = 0; i < text.size();) {
    if (text[i].digitValue() >= 0) {
      Token token;
      for (; i < text.size() && text[i].digitValue() >= 0; ++i) {
        if (++token.Digits > kMostDigits) return std::nullopt;
        token.Value = token.Value * 10 + text[i].digitValue();
      }
      tokens.push_back(token);
    } else if (IsWordCharacter(text[i])) {
      const qsizetype start = i;
      while (i < text.size() && IsWordCharacter(text[i])) ++i;
      tokens.push_back({Fold(text.mid(start, i - start))});
    } else {
      ++i;
    }
  }
  return tokens;
}

/// The words of a text, folded; its numbers are left out.
QStringList WordsOf(const QString& text) {
  QStringList words;
  if (const auto tokens = Divide(text)) {
    for (const Token& token : *tokens) {
      if (!token.IsNumber()) words += token.Word;
    }
  }
  return words;
}

/// The literal parts of a date format: "de" and "de" of "d 'de' MMMM 'de' yyyy".
QString LiteralsOf(const QString& format) {
  QString literals;
  bool quoted = false;
  for (const QChar c : format) {
    if (c == u'\'') {
      quoted = !quoted;
      literals += u' ';
    } else {
      const bool isField = !quoted && (c == u'd' || c == u'M' || c == u'y');
      literals += isField ? QChar(u' ') : c;
    }
  }
  return literals;
}

/// The words that a date may contain, in one language and in English. A word can mean a month and a day of
/// the week: French "mar." is Tuesday, and also the beginning of March.
class CDateWords {
 public:
  explicit CDateWords(const QLocale& locale) {
    AddNames(QLocale::c());
    AddNames(locale);
    for (const auto format : {QLocale::LongFormat, QLocale::ShortFormat}) {
      Fillers += WordsOf(LiteralsOf(locale.dateFormat(format)));
    }
    Fillers += {QStringLiteral("st"), QStringLiteral("nd"), QStringLiteral("rd"), QStringLiteral("th"),
                QStringLiteral("of")};
  }

  bool IsFiller(const QString& word) const { return Fillers.contains(word) || IsWeekday(word); }
  bool IsWeekday(const QString& word) const { return Weekdays.contains(word); }

  /// 1 to 12; 0 if the word isn't a month, or is the beginning of several.
  int FindMonth(const QString& word) const {
    int found = 0;
    for (const Name& name : Months) {
      if (name.Text == word) return name.Month;
      if (word.size() < kShortestMonthName || !name.Text.startsWith(word)) continue;
      found = found == 0 || found == name.Month ? name.Month : kSeveral;
    }
    return std::max(found, 0);
  }

 private:
  struct Name {
    QString Text;
    int Month;
  };

  static constexpr int kSeveral = -1;

  void AddNames(const QLocale& locale) {
    for (const auto format : {QLocale::LongFormat, QLocale::ShortFormat}) {
      for (int month = 1; month <= 12; ++month) {
        AddMonth(locale.monthName(month, format), month);
        AddMonth(locale.standaloneMonthName(month, format), month);
      }
      for (int day = 1; day <= 7; ++day) Weekdays += WordsOf(locale.dayName(day, format));
    }
  }

  /// A month name that contains a number, such as "8月", is read as that number.
  void AddMonth(const QString& name, int month) {
    const auto tokens = Divide(name);
    if (tokens && tokens->size() == 1 && !tokens->front().IsNumber()) {
      Months.push_back({tokens->front().Word, month});
    } else {
      Fillers += WordsOf(name);
    }
  }

  std::vector<Name> Months;
  QStringList Weekdays;
  QStringList Fillers;
};

/// The month that the words name: 1 to 12, or 0 if there is none. nullopt if a word isn't part of a date, or
/// if the words name several months.
std::optional<int> FindNamedMonth(const QStringList& typed, const CDateWords& words) {
  int named = 0;      // by a word that can't be a day of the week
  int uncertain = 0;  // by one that can
  for (const QString& word : typed) {
    const int month = words.FindMonth(word);
    if (month == 0) {
      if (!words.IsFiller(word)) return std::nullopt;
      continue;
    }
    const bool isWeekday = words.IsWeekday(word);
    int& found = isWeekday ? uncertain : named;
    if (found != 0 && (!isWeekday || found != month)) return std::nullopt;
    found = month;
  }
  return named != 0 ? named : uncertain;
}

int YearOf(const Token& token, int thisYear) {
  if (token.Digits > 2) return token.Value;
  const int latest = thisYear + kYearsAhead;
  return latest - (latest - token.Value) % 100;
}

std::optional<CalendarDate> MakeDate(const Token& year, int month, const Token& day, int thisYear) {
  if ((year.Digits > 2 && year.Digits != 4) || day.Digits > 2) return std::nullopt;
  const CalendarDate date{YearOf(year, thisYear), month, day.Value};
  if (!QDate::isValid(date.Year, date.Month, date.Day)) return std::nullopt;
  return date;
}

/// Three numbers.
std::optional<CalendarDate> ReadNumbers(const std::array<Token, 3>& fields, DateOrder order, int thisYear) {
  if (fields[0].Digits == 4) order = DateOrder::YearMonthDay;
  const bool yearFirst = order == DateOrder::YearMonthDay;
  const Token& year = yearFirst ? fields[0] : fields[2];
  const Token& month = order == DateOrder::MonthDayYear ? fields[0] : fields[1];
  const Token& day = yearFirst ? fields[2] : order == DateOrder::MonthDayYear ? fields[1] : fields[0];
  if (month.Digits > 2) return std::nullopt;
  return MakeDate(year, month.Value, day, thisYear);
}

/// The two numbers beside a month's name.
std::optional<CalendarDate> ReadBesideName(int month, const Token& first, const Token& second,
                                           DateOrder order, int thisYear) {
  const bool yearFirst = first.Digits == 4 || (order == DateOrder::YearMonthDay && second.Digits != 4);
  return yearFirst ? MakeDate(first, month, second, thisYear) : MakeDate(second, month, first, thisYear);
}

std::optional<CalendarDate> ReadEightDigits(int value) {
  const CalendarDate date{value / 10000, value / 100 % 100, value % 100};
  if (!QDate::isValid(date.Year, date.Month, date.Day)) return std::nullopt;
  return date;
}

DateOrder OrderOf(const QLocale& locale) {
  if (locale.language() == QLocale::C) return DateOrder::MonthDayYear;
  const QString format = locale.dateFormat(QLocale::ShortFormat);
  const qsizetype day = format.indexOf(u'd');
  const qsizetype month = format.indexOf(u'M');
  const qsizetype year = format.indexOf(u'y');
  if (year < month && year < day) return DateOrder::YearMonthDay;
  return month < day ? DateOrder::MonthDayYear : DateOrder::DayMonthYear;
}

}  // namespace

DateOrder GetDateOrder(const std::string& locale) { return OrderOf(LocaleOf(locale)); }

std::string GetDateSeparator(const std::string& locale) {
  const QLocale found = LocaleOf(locale);
  if (found.language() == QLocale::C) return "/";
  const QString format = found.dateFormat(QLocale::ShortFormat);
  for (qsizetype i = 1; i < format.size(); ++i) {
    const QChar c = format[i];
    if (c.unicode() < 0x80 && c.isPunct() && c != u'\'') return {static_cast<char>(c.unicode())};
  }
  return "/";
}

std::optional<CalendarDate> ReadDate(std::string_view text, int thisYear, const std::string& locale) {
  const QString typed = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  const auto tokens = typed.size() <= kLongestText ? Divide(typed) : std::nullopt;
  if (!tokens) return std::nullopt;

  const QLocale user = LocaleOf(locale);
  const CDateWords words(user);
  std::vector<Token> numbers;
  QStringList typedWords;
  for (const Token& token : *tokens) {
    if (token.IsNumber()) {
      numbers.push_back(token);
    } else {
      typedWords += token.Word;
    }
  }
  const std::optional<int> month = FindNamedMonth(typedWords, words);
  if (!month) return std::nullopt;
  if (*month != 0) {
    if (numbers.size() != 2) return std::nullopt;
    return ReadBesideName(*month, numbers[0], numbers[1], OrderOf(user), thisYear);
  }
  if (numbers.size() == 1 && numbers[0].Digits == 8) return ReadEightDigits(numbers[0].Value);
  if (numbers.size() != 3) return std::nullopt;
  return ReadNumbers({numbers[0], numbers[1], numbers[2]}, OrderOf(user), thisYear);
}

}  // namespace platform
