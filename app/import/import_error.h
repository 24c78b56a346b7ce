#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "terminal/input_error.h"

namespace iorder {

/// A source file that can't be imported. Its text is one line: "file:line: what; expected ...".
class CImportError : public InputError {
 public:
  /// `line` counts from 1; 0 means the file as a whole.
  CImportError(const std::filesystem::path& file, size_t line, const std::string& what,
               const std::string& expected);

  const std::filesystem::path& File() const { return m_file; }
  size_t Line() const { return m_line; }
  const std::string& What() const { return m_what; }
  const std::string& Expected() const { return m_expected; }

 private:
  std::filesystem::path m_file;
  size_t m_line;
  std::string m_what;
  std::string m_expected;
};

}  // namespace iorder
