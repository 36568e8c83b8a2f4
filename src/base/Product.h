#pragma once

#include <string>

/// The version information of a program.
struct ProductInfo {
  std::string ProductName;
  std::string CompanyName;
  int Version[4] = {};
  std::string PrivateBuild;  // empty in what is given to users
};

/// That of the running program.
const ProductInfo& GetProductInfo();

/// "1.2", or "1.2.3" when the third number isn't 0; for a private build with its name and build number
/// behind it.
std::string GetVersionText(const ProductInfo& product);
