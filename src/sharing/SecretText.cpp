#include "sharing/SecretText.h"

#include <string.h>

#include <algorithm>

void WipeText(std::string& text) {
  ::explicit_bzero(text.data(), text.size());
  text.clear();
}

void CSecretText::Reserve(std::size_t size) {
  if (size <= Text.capacity()) return;
  std::string larger;
  larger.reserve(size);
  larger.append(Text);
  WipeText(Text);
  Text.swap(larger);
}

void CSecretText::Append(std::string_view more) {
  const std::size_t size = Text.size() + more.size();
  if (size > Text.capacity()) Reserve(std::max(size, 2 * Text.capacity()));
  Text.append(more);
}

void CSecretText::Assign(std::string_view text) {
  Clear();
  Append(text);
}

void CSecretText::Clear() {
  WipeText(Text);
  std::string().swap(Text);
}
