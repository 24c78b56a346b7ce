#include "app/output_place.h"

#include <utility>

#include "terminal/input_error.h"

namespace iorder {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const fs::path& target, const fs::filesystem_error& error) {
  throw InputError(target.string() + ": can't be written: " + error.code().message());
}

}  // namespace

COutputPlace::COutputPlace(fs::path target) : m_target(std::move(target)) {
  try {
    const fs::file_status status = fs::status(m_target);
    if (fs::is_directory(status)) {
      throw InputError(m_target.string() + ": is a folder, expected a file to write");
    }
    if (!fs::exists(status) || fs::is_regular_file(status)) {
      m_scratch.emplace(CScratchPath::NewFileBeside(m_target));
    }
  } catch (const fs::filesystem_error& error) {
    Fail(m_target, error);
  }
}

std::string COutputPlace::Path() const {
  return m_scratch ? m_scratch->Path().string() : m_target.string();
}

void COutputPlace::Commit() {
  try {
    if (m_scratch) m_scratch->MoveTo(m_target);
  } catch (const fs::filesystem_error& error) {
    Fail(m_target, error);
  }
}

std::string COutputPlace::Named(std::string text) const {
  const std::string path = Path();
  const size_t place = text.find(path);
  return place == std::string::npos ? text : text.replace(place, path.size(), m_target.string());
}

}  // namespace iorder
