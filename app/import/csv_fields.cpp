#include "app/import/csv_fields.h"

namespace iorder {
namespace {

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

void SplitFields(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  for (size_t comma = line.find(','); comma != std::string_view::npos; comma = line.find(',')) {
    fields.push_back(Trimmed(line.substr(0, comma)));
    line.remove_prefix(comma + 1);
  }
  fields.push_back(Trimmed(line));
}

}  // namespace iorder
