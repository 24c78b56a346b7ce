#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace iorder {

/// A column of a table for the screen: texts stand to the left, numbers to the right.
struct TableColumn {
  bool isText = false;
  size_t leastWidth = 0;
};

/// Lines of as many cells as there are columns, each column as wide as its widest cell, two spaces between
/// them. Nothing fills up a text in the last column.
std::string TableText(const std::vector<TableColumn>& columns,
                      const std::vector<std::vector<std::string>>& lines);

}  // namespace iorder
