#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class c4_Row;
class c4_RowRef;

using c4_Bytes = std::vector<std::uint8_t>;

/// The types a property can have; each value is the letter that stands for it in a view's description.
enum class c4_Type : char {
  Integer = 'I',  // 32 bits
  Text = 'S',     // UTF-8 or any other bytes; compared without regard to case for the ASCII letters
  Bytes = 'B',    // a block of bytes, compared byte by byte
};

/// A named, typed column. Two properties of one name and type are one property; views may have columns of
/// one name and different types. A property is a small value; the name and type behind it live as long as
/// the process.
class c4_Property {
 public:
  const std::string& Name() const;
  c4_Type Type() const;

  friend bool operator==(c4_Property, c4_Property) = default;

 protected:
  /// Names are compared without regard to the case of ASCII letters.
  c4_Property(std::string_view name, c4_Type type);

 private:
  friend class c4_Table;
  int Id;  // index into the process-wide list of properties
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
