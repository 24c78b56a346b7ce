#pragma once

#include <string>

namespace iorder {

/// Ends the process with `text` on the standard error stream. For what only our own code can do wrong and
/// nothing can be saved of.
[[noreturn]] void EndProcess(const std::string& text) noexcept;

}  // namespace iorder
