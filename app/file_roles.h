#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace iorder {

/// The files of one job, told before it touches any. A file that it writes must neither be one that it reads
/// nor one that it writes something else to.
class CFileRoles {
 public:
  /// `role` is what the file is to the job, as in "the day".
  void Reads(const std::filesystem::path& path, const std::string& role);
  /// A path that was told before is an InputError. An empty path stands for no file.
  void Writes(const std::filesystem::path& path, const std::string& role);

 private:
  struct File {
    std::filesystem::path path;  ///< the same however it was spelled
    std::string role;
    bool isWritten = false;
  };

  std::vector<File> m_files;
};

}  // namespace iorder
