#include "base/Product.h"

#include "base/Texts.h"

const ProductInfo& GetProductInfo() {
  static const ProductInfo product = {"Vellumar Photo Organizer", "Vellumar", {1, 2, 2, 43}, ""};
  return product;
}

std::string GetVersionText(const ProductInfo& product) {
  const auto& version = product.Version;
  std::string text = version[2] == 0 ? Format("%d.%d", version[0], version[1])
                                     : Format("%d.%d.%d", version[0], version[1], version[2]);
  if (!product.PrivateBuild.empty())
    text += FormatString(StringId::PrivateBuild, product.PrivateBuild, version[3]);
  return text;
}
