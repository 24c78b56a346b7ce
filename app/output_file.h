#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>

#include "platform/scratch_path.h"

namespace iorder {

/// A file that the program writes. It gets its name only with Commit: what ends before leaves nothing behind
/// and an earlier file of that name as it was. What is there and is no ordinary file (a pipe, a device) is
/// written to at once. All operations raise CInputError if the file can't be written.
class COutputFile {
 public:
  explicit COutputFile(std::filesystem::path path);

  void Write(std::string_view text);
  void Commit();

 private:
  [[noreturn]] void Fail() const;

  std::filesystem::path m_path;
  std::optional<CScratchPath> m_scratch;  ///< none where the file is written to at once
  std::ofstream m_stream;
};

}  // namespace iorder
