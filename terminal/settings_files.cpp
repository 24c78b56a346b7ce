#include "terminal/settings_files.h"

#include <algorithm>
#include <fstream>
#include <list>
#include <system_error>
#include <utility>

// Sections and keys are UTF-8 in the file and here: nothing is to be converted.
#define SI_NO_CONVERSION
#include <SimpleIni.h>

#include "platform/text.h"
#include "terminal/input_error.h"

namespace iorder {
namespace {

namespace fs = std::filesystem;

std::string WithSlashes(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

/// One pair of quotation marks around the whole value goes, as on the terminal's own platform.
std::string WithoutQuotes(const std::string& value) {
  const bool isQuoted =
      value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
  return isQuoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

CSettingsFiles::CSettingsFiles(IRuntime& runtime, const std::string& folder, std::wstring hostFolder)
    : m_hostFolder(std::move(hostFolder)), m_section(runtime, "settings files"), m_folder(folder) {}

std::wstring CSettingsFiles::ReadString(const std::wstring& path, const std::wstring& section,
                                        const std::wstring& key, const std::wstring& fallback, size_t limit) {
  std::wstring value = fallback;
  if (path.starts_with(m_hostFolder)) {
    CLockGuard guard(m_section);
    CSimpleIniA file(/*utf8=*/true, /*multiKey=*/true);
    const fs::path name = m_folder / WithSlashes(ToUtf8(path.substr(m_hostFolder.size())));
    std::error_code ignored;
    if (!m_folder.empty() && fs::is_regular_file(name, ignored) && file.LoadFile(name.c_str()) >= SI_OK) {
      const char* const found = file.GetValue(ToUtf8(section).c_str(), ToUtf8(key).c_str());
      value = found != nullptr ? ToWide(WithoutQuotes(found)) : fallback;
    }
  }
  value.resize(std::min(value.size(), limit > 0 ? limit - 1 : 0));
  return value;
}

void CSettingsFiles::Write(const std::string& path, const std::string& text) {
  CLockGuard guard(m_section);
  if (m_folder.empty()) {
    m_temporary.emplace(CScratchPath::NewFolder());
    m_folder = m_temporary->Path();
  }
  const fs::path name = m_folder / WithSlashes(path);
  std::error_code error;
  fs::create_directories(name.parent_path(), error);
  std::ofstream file(name, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file) {
    FailAt({name.string()}, "the settings file can't be written");
  }
}

}  // namespace iorder
