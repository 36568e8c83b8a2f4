#include "base/Texts.h"

#include "base/Times.h"
#include "resources/StringTable.h"

const ProductInfo& GetProductInfo() {
  static const ProductInfo product = {"Vellumar Photo Organizer", "Vellumar", {1, 2, 2, 43}, ""};
  return product;
}

std::string GetVersionText(const ProductInfo& product) {
  const auto& version = product.Version;
  std::string text = version[2] == 0 ? Format("%d.%d", version[0], version[1])
                                     : Format("%d.%d.%d", version[0], version[1], version[2]);
  if (!product.PrivateBuild.empty()) {
    text += FormatString(StringId::PrivateBuild, product.PrivateBuild, version[3]);
  }
  return text;
}

std::string LoadText(StringId id) {
  const char* text = FindString(id);
  return text == nullptr ? std::string() : text;
}

std::string LoadExpandedString(StringId id) { return LoadExpandedString(LoadText(id)); }

std::string LoadExpandedString(std::string_view text) {
  const ProductInfo& product = GetProductInfo();
  // One pass over the text, so that what a value holds is never taken for a placeholder.
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char next = text[i] == '%' && i + 1 < text.size() ? text[i + 1] : '\0';
    if (next == '1') {
      result += product.ProductName;
    } else if (next == '2') {
      result += GetVersionText(product);
    } else if (next == '3') {
      result += product.CompanyName;
    } else {
      result += text[i];
      continue;
    }
    ++i;
  }
  return result;
}

std::string FormatDate(std::int32_t time, bool withWeekday) {
  return FormatLocalTime(time,
                         LoadText(withWeekday ? StringId::DateWithWeekdayFormat : StringId::DateFormat));
}
