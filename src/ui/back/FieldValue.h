#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalog/PhotoFacts.h"

enum class FieldKind : int { Text = 0, Number = 1, Date = 2 };

/// The field that shows a value.
class CFieldListener {
 public:
  virtual ~CFieldListener() = default;
  /// The value has another text, number or date now.
  virtual void OnValueChanged() = 0;
};

/// What a field shows: one fact about one photo. A setter changes the value alone; Commit brings it into the
/// catalog. Texts are UTF-8, dates seconds since 1970 with 0 for none. This base
/// holds no value. Values are held by shared_ptr, since who is told of a commit may show another photo, which
/// releases them.
class CFieldValue : public std::enable_shared_from_this<CFieldValue> {
 public:
  /// Called after each commit.
  using ChangeNotice = std::function<void(StampId fact)>;

  virtual ~CFieldValue() = default;
  CFieldValue(const CFieldValue&) = delete;
  CFieldValue& operator=(const CFieldValue&) = delete;

  /// Writes the value, all of it or nothing, takes over what is stored then, and tells about it. Raises
  /// CException, with a text for the user, if it can't be written.
  virtual void Commit();

  // Called before a text, number or date of the user's is set. The text may be changed; false refuses it.
  virtual bool ValidateText(std::string& text);
  virtual bool ValidateNumber(std::int32_t value);
  virtual bool ValidateDate(std::int32_t time);

  void Clear();

  /// The texts that were given before, for menu and completion.
  virtual std::vector<std::string> GetChoices();
  virtual std::string GetText() const { return {}; }
  virtual void SetText(const std::string& text);
  /// Of a date its source, the StampId that it was taken from.
  virtual std::int32_t GetNumber() const { return 0; }
  virtual void SetNumber(std::int32_t value);
  virtual std::int32_t GetDate() const { return 0; }
  virtual void SetDate(std::int32_t time);
  virtual FieldKind GetKind() const { return FieldKind::Text; }
  /// Whether the text is a list.
  virtual bool IsMultiple() const { return false; }

  /// Whether GetChoices has any; cheaper.
  virtual bool HasChoices() const { return false; }
  /// The photo's date from that source; none without such a stamp.
  virtual std::optional<std::int32_t> GetDateFrom(StampId source) const;
  /// Takes over what is stored.
  virtual void Reload() = 0;

  StampId GetFact() const { return Fact; }
  /// Not owned; null for none.
  void SetListener(CFieldListener* listener) { Listener = listener; }

 protected:
  CFieldValue(StampId fact, ChangeNotice onCommitted);
  void TellListener();

 private:
  const StampId Fact;
  const ChangeNotice OnCommitted;
  CFieldListener* Listener = nullptr;
};

/// Commits a value. If that fails, the value is read from the catalog again and the user is told as soon as
/// events are handled; nothing is raised. A shared value lives until this returns, though who is told of the
/// commit may give the caller another one meanwhile.
void StoreValue(CFieldValue& value);
