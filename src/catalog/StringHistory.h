#pragma once

#include <cstdint>
#include <string>

class CCatalog;

/// A list of texts that lives in the catalog, in a category of its own: the folders that the user added,
/// the texts that the user searched for. Texts are compared by their letters.
class CStringHistory {
 public:
  /// Enters the category, now or, where the disk refuses that, with the first text.
  /// `limit` is the largest number of entries, 0 for no limit; `sorted` lists by text, not by age.
  CStringHistory(CCatalog& owner, const std::string& categoryName, int limit, bool sorted);
  virtual ~CStringHistory() = default;
  CStringHistory(const CStringHistory&) = default;
  CStringHistory& operator=(const CStringHistory&) = default;

  virtual int GetLimit() const { return Limit; }
  virtual void SetLimit(int limit) { Limit = limit; }
  virtual int Count() const;
  /// Empty if there is no such entry.
  virtual std::string Get(int index) const;
  /// Brings an entry to the front. False if `index` is out of range.
  virtual bool Promote(int index);
  /// The entry's position. A text in the list stays where it is; in a full list a new one takes the last
  /// place.
  virtual int Add(const std::string& text);
  virtual bool Remove(const std::string& text);
  virtual bool RemoveAt(int index);
  virtual bool Contains(const std::string& text) const;

 private:
  std::int32_t GetCategory() const;

  CCatalog* Owner;
  std::string CategoryName;
  std::int32_t Category = -1;
  int Limit;
  bool Sorted;
};
