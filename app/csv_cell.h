#pragma once

#include <string>

namespace iorder {

/// A cell of a table of comma-separated values; one that holds a comma, a quote or an end of line is quoted.
inline std::string CsvCell(const std::string& text) {
  if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace iorder
