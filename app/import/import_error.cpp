#include "app/import/import_error.h"

namespace iorder {
namespace {

std::string OneLine(const std::filesystem::path& file, size_t line, const std::string& what,
                    const std::string& expected) {
  const std::string where = line == 0 ? file.string() : file.string() + ":" + std::to_string(line);
  return where + ": " + what + "; expected " + expected;
}

}  // namespace

CImportError::CImportError(const std::filesystem::path& file, size_t line, const std::string& what,
                           const std::string& expected)
    : InputError(OneLine(file, line, what, expected)),
      m_file(file),
      m_line(line),
      m_what(what),
      m_expected(expected) {}

}  // namespace iorder
