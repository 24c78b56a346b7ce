#pragma once

#include <cstddef>
#include <string>

namespace iorder {

/// Reads the host's settings files: sections of key = value lines.
class ISettingsFile {
 public:
  virtual ~ISettingsFile() = default;
  /// The value, cut to `limit` - 1 characters; `fallback` if the file, section or key is missing. `path` uses
  /// backslashes. From any thread.
  virtual std::wstring ReadString(const std::wstring& path, const std::wstring& section,
                                  const std::wstring& key, const std::wstring& fallback, size_t limit) = 0;
};

}  // namespace iorder
