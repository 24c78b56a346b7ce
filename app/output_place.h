#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/scratch_path.h"

namespace iorder {

/// Where a file of the program is written. It gets its name only with Commit: what ends before leaves nothing
/// behind, and an earlier file of that name as it was. What is there and is no ordinary file (a pipe, a
/// device) is written to at once. What can't be written is an InputError.
class COutputPlace {
 public:
  explicit COutputPlace(std::filesystem::path target);

  /// Where to write until Commit.
  std::string Path() const;
  /// Gives the file, closed by now, its name.
  void Commit();
  /// An error text about the path that was written to, told of the target.
  std::string Named(std::string text) const;

 private:
  std::filesystem::path m_target;
  std::optional<CScratchPath> m_scratch;  ///< none where the target is written to at once
};

}  // namespace iorder
