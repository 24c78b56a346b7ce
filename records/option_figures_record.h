#pragma once

#include <string_view>

namespace iorder {

/// Before the symbol of an option: the record that holds its figures.
inline constexpr std::wstring_view kOptionFiguresRecord = L"OPT.REAL.";

}  // namespace iorder
