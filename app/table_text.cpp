#include "app/table_text.h"

#include <fmt/format.h>

#include <algorithm>

namespace iorder {

std::string TableText(const std::vector<TableColumn>& columns,
                      const std::vector<std::vector<std::string>>& lines) {
  std::vector<size_t> widths;
  for (const TableColumn& column : columns) widths.push_back(column.leastWidth);
  if (columns.back().isText) widths.back() = 0;
  for (const auto& line : lines) {
    for (size_t i = 0; i < columns.size(); ++i) {
      const bool fillsUp = !columns[i].isText || i + 1 < columns.size();
      if (fillsUp) widths[i] = std::max(widths[i], line[i].size());
    }
  }
  std::string table;
  for (const auto& line : lines) {
    for (size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) table += "  ";
      table += columns[i].isText ? fmt::format("{:<{}}", line[i], widths[i])
                                 : fmt::format("{:>{}}", line[i], widths[i]);
    }
    table += '\n';
  }
  return table;
}

}  // namespace iorder
