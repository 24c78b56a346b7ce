#include "app/file_roles.h"

#include <fmt/format.h>

#include "terminal/input_error.h"

namespace iorder {
namespace {

namespace fs = std::filesystem;

/// One path for all spellings, through links too.
fs::path Resolved(const fs::path& path) {
  std::error_code error;
  // An absolute path first: of a relative one that isn't there yet a part would stay relative.
  fs::path resolved = fs::weakly_canonical(fs::absolute(path, error), error);
  return error ? path : resolved;
}

}  // namespace

void CFileRoles::Reads(const fs::path& path, const std::string& role) {
  m_files.push_back({Resolved(path), role, false});
}

void CFileRoles::Writes(const fs::path& path, const std::string& role) {
  if (path.empty()) return;
  const fs::path resolved = Resolved(path);
  for (const File& file : m_files) {
    if (file.path != resolved) continue;
    throw InputError(file.isWritten ? fmt::format("{}: is to be {} too; expected another place for {}",
                                                  path.string(), file.role, role)
                                    : fmt::format("{}: is {}, which is read; expected another place for {}",
                                                  path.string(), file.role, role));
  }
  m_files.push_back({resolved, role, true});
}

}  // namespace iorder
