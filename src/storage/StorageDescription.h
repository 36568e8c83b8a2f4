#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "storage/Row.h"

/// A view's name and its properties, as the text "Name[Property:Type,...]" gives them. Type is I, S or B.
/// Names begin with a letter and go on with letters, digits and "_"; no two properties have one name,
/// whatever their case.
struct ViewDescription {
  struct Column {
    std::string Name;
    c4_Type Type;
  };

  std::string Name;
  std::vector<Column> Columns;  // one at least
};

/// CError, with a text that quotes the description, if it has any other form.
ViewDescription ParseViewDescription(std::string_view description);
