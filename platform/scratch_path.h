#pragma once

#include <filesystem>

namespace iorder {

/// A file or folder that must not stay behind: it is removed, with all that is in it, when the object goes,
/// and also when the program is interrupted after CleanUpOnInterruption.
class CScratchPath {
 public:
  /// A new, empty file in the folder of `target`, under a name of its own that ends as `target` does
  /// (".csv.gz"). Raises std::filesystem::filesystem_error.
  static CScratchPath NewFileBeside(const std::filesystem::path& target);
  /// A new, empty folder in the machine's folder for temporary files. Raises
  /// std::filesystem::filesystem_error.
  static CScratchPath NewFolder();

  CScratchPath(CScratchPath&& other) noexcept;
  CScratchPath& operator=(CScratchPath&&) = delete;
  ~CScratchPath();

  const std::filesystem::path& Path() const { return m_path; }
  /// Gives the file its name, replacing what is there: it stays from then on. Raises
  /// std::filesystem::filesystem_error.
  void MoveTo(const std::filesystem::path& target);

 private:
  explicit CScratchPath(std::filesystem::path path);

  std::filesystem::path m_path;  ///< empty once there is nothing to remove
};

/// Makes an interruption of the program (Ctrl-C, a closed terminal, a request to end) remove all scratch
/// paths before it ends the program as it would have. To be called once, before the first thread begins.
void CleanUpOnInterruption();

}  // namespace iorder
