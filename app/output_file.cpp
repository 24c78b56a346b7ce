#include "app/output_file.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "app/input_error.h"

namespace iorder {

namespace fs = std::filesystem;

COutputFile::COutputFile(fs::path path) : m_path(std::move(path)) {
  try {
    const fs::file_status status = fs::status(m_path);
    if (fs::is_directory(status)) {
      throw CInputError(m_path.string() + ": is a folder, expected a file to write");
    }
    if (!fs::exists(status) || fs::is_regular_file(status)) {
      m_scratch.emplace(CScratchPath::NewFileBeside(m_path));
    }
  } catch (const fs::filesystem_error& error) {
    throw CInputError(m_path.string() + ": cannot be written: " + error.code().message());
  }
  errno = 0;
  m_stream.open(m_scratch ? m_scratch->Path() : m_path, std::ios::binary | std::ios::trunc);
  if (!m_stream) Fail();
}

void COutputFile::Write(std::string_view text) {
  errno = 0;
  if (!m_stream.write(text.data(), static_cast<std::streamsize>(text.size()))) Fail();
}

void COutputFile::Commit() {
  errno = 0;
  m_stream.close();
  if (!m_stream) Fail();
  try {
    if (m_scratch) m_scratch->MoveTo(m_path);
  } catch (const fs::filesystem_error& error) {
    throw CInputError(m_path.string() + ": cannot be written: " + error.code().message());
  }
}

void COutputFile::Fail() const {
  const std::string reason = errno != 0 ? std::generic_category().message(errno) : "writing failed";
  throw CInputError(m_path.string() + ": cannot be written: " + reason);
}

}  // namespace iorder
