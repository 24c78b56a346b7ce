#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/critical_section.h"
#include "platform/scratch_path.h"
#include "platform/settings_file.h"

namespace iorder {

/// The settings files of the embedded terminal: real files below one folder. The engine names them by a path
/// below the host's folder, with backslashes.
///
/// All operations may come from any thread; one lock keeps writing and reading apart.
class CSettingsFiles : public ISettingsFile {
 public:
  /// `folder`: an existing or new folder that stays; "" for a temporary one that is made when it is first
  /// written to and removed at the end. `hostFolder`: what the engine takes for the host's folder, with a
  /// backslash at its end.
  CSettingsFiles(IRuntime& runtime, const std::string& folder, std::wstring hostFolder);

  std::wstring ReadString(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                          const std::wstring& fallback, size_t limit) override;

  /// Writes a whole file; `path` is relative to the folder, with either kind of slash. What can't be written
  /// is an InputError.
  void Write(const std::string& path, const std::string& text);

 private:
  const std::wstring m_hostFolder;
  CCriticalSection m_section;
  std::optional<CScratchPath> m_temporary IORDER_GUARDED_BY(m_section);
  std::filesystem::path m_folder IORDER_GUARDED_BY(m_section);  ///< empty as long as there is none
};

}  // namespace iorder
