#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace iorder {

/// A mistake in what the user gave. The text is one line that says where, what, and what was expected;
/// control characters in it are spelled as "\x0D".
class InputError : public std::runtime_error {
 public:
  explicit InputError(const std::string& what);
};

/// A line of a file, counted from 1. Line 0 stands for the file as a whole.
struct FilePlace {
  std::string file;
  size_t line = 0;

  /// "FILE:LINE", or the file alone.
  std::string ToString() const { return line == 0 ? file : file + ":" + std::to_string(line); }
};

/// Throws the InputError "FILE:LINE: what".
[[noreturn]] inline void FailAt(const FilePlace& place, const std::string& what) {
  throw InputError(place.ToString() + ": " + what);
}

}  // namespace iorder
