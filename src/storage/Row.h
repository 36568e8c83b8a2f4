#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

using c4_Bytes = std::vector<std::uint8_t>;

/// The types a property can have; each value is the letter that stands for it in a view's description.
enum class c4_Type : char {
  Integer = 'I',  // 32 bits
  Text = 'S',     // UTF-8 or any other bytes; in the order of CompareTexts
  Bytes = 'B',    // a block of bytes, compared byte by byte
};

/// The order of texts in a storage: by bytes, with the ASCII capital letters taken as small ones. Any
/// bytes are a text, NUL and broken UTF-8 included; a text stands before its own continuations.
int CompareTexts(std::string_view left, std::string_view right);

bool TextsAreEqual(std::string_view left, std::string_view right);

/// The same order, for maps and sets.
struct TextOrder {
  using is_transparent = void;
  bool operator()(std::string_view left, std::string_view right) const {
    return CompareTexts(left, right) < 0;
  }
};

/// A named, typed column. Two properties of one name and type are one property; views may have columns of
/// one name and different types. A property is a small value; the name and type behind it live as long as
/// the process.
class c4_Property {
 public:
  const std::string& Name() const;
  c4_Type Type() const;
  /// Small numbers from 0 on, in the order in which the properties of the process were first made.
  std::size_t GetId() const { return static_cast<std::size_t>(Id); }

  friend bool operator==(c4_Property, c4_Property) = default;

 protected:
  /// Names are compared without regard to the case of ASCII letters.
  c4_Property(std::string_view name, c4_Type type);

 private:
  int Id;  // index into the process-wide list of properties
};

/// A row by itself, in no view: values by property. Used to add rows and to say what is looked for.
class c4_Row {
 public:
  using Value = std::variant<std::int32_t, std::string, c4_Bytes>;

  c4_Row() = default;
  c4_Row(c4_Property property, Value value) { Values.emplace_back(property, std::move(value)); }

  const std::vector<std::pair<c4_Property, Value>>& GetValues() const { return Values; }
  /// Null if the row has no such property.
  const Value* FindValue(const c4_Property& property) const;

  /// The properties of both; where both have one, the right one's value stands.
  friend c4_Row operator+(c4_Row left, const c4_Row& right);

 private:
  std::vector<std::pair<c4_Property, Value>> Values;
};

/// The number of a row in the memory of its table. Slots grow with the row's number in the file and are
/// never given to another row while the table is loaded.
using c4_Slot = std::uint32_t;

/// Identifies a row. Slot is where it was last seen; RowId decides.
struct RowIdentity {
  c4_Slot Slot = 0;
  std::int64_t RowId = 0;
};

/// Gives row references access to their rows. If the row no longer exists, or has no such property, reads
/// give 0 or empty and Set does nothing.
class c4_RowSource {
 public:
  virtual bool HasRow(const RowIdentity& row) const = 0;
  virtual std::int32_t GetInteger(const c4_Property& property, const RowIdentity& row) const = 0;
  virtual std::string_view GetText(const c4_Property& property, const RowIdentity& row) const = 0;
  virtual c4_Bytes GetBytes(const c4_Property& property, const RowIdentity& row) const = 0;
  virtual void Set(const c4_Property& property, const RowIdentity& row, const c4_Row::Value& value) = 0;

 protected:
  ~c4_RowSource() = default;
};

/// A row of a stored view, by identity: rows added, removed or reordered around it don't shift it. A
/// small value, copied freely. Once its row is removed, or the storage closed, it is invalid: reads then
/// give 0 or empty and writes do nothing.
class c4_RowRef {
 public:
  c4_RowRef() = default;
  bool IsValid() const;

 private:
  friend class c4_IntProp;
  friend class c4_StringProp;
  friend class c4_BytesProp;
  friend class c4_View;
  c4_RowRef(std::shared_ptr<c4_RowSource> source, const RowIdentity& row);
  void Set(const c4_Property& property, const c4_Row::Value& value) const;

  std::shared_ptr<c4_RowSource> Source;  // null if made by the default constructor
  RowIdentity Row;
};

/// `Prop[value]` is a row that holds this property alone; rows are joined with "+".
class c4_IntProp : public c4_Property {
 public:
  explicit c4_IntProp(std::string_view name) : c4_Property(name, c4_Type::Integer) {}
  c4_Row operator[](std::int32_t value) const;
  /// 0 for a row that is no longer there or has no such property.
  std::int32_t Get(const c4_RowRef& row) const;
  void Set(const c4_RowRef& row, std::int32_t value) const;
};

class c4_StringProp : public c4_Property {
 public:
  explicit c4_StringProp(std::string_view name) : c4_Property(name, c4_Type::Text) {}
  c4_Row operator[](std::string_view value) const;
  /// Valid until the next change of the storage.
  std::string_view Get(const c4_RowRef& row) const;
  void Set(const c4_RowRef& row, std::string_view value) const;
};

class c4_BytesProp : public c4_Property {
 public:
  explicit c4_BytesProp(std::string_view name) : c4_Property(name, c4_Type::Bytes) {}
  c4_Row operator[](std::span<const std::uint8_t> value) const;
  /// Read from the file at each call. CStorageException if that fails.
  c4_Bytes Get(const c4_RowRef& row) const;
  void Set(const c4_RowRef& row, std::span<const std::uint8_t> value) const;
};
