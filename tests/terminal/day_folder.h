#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/scratch_path.h"

namespace iorder::testing {

/// A folder for the files of one test.
class CDayFolder {
 public:
  /// Writes a file and gives its path.
  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name), std::ios::binary) << text;
    return Path(name);
  }
  std::string Path(const std::string& name) const { return (m_folder.Path() / name).string(); }

 private:
  CScratchPath m_folder = CScratchPath::NewFolder();
};

}  // namespace iorder::testing
