#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/scratch_path.h"

namespace iorder {

/// What a run of the program came to.
struct ProgramResult {
  int exitCode = 0;
  std::string output;
  std::string errors;
};

/// An empty folder that the program is run in.
class CProgramFolder {
 public:
  CProgramFolder()
      : m_folder(CScratchPath::NewFolder()),
        m_streams(CScratchPath::NewFolder()),
        m_temporary(CScratchPath::NewFolder()) {}

  /// Runs the program in the folder, with what stands behind its name in a shell.
  ProgramResult Run(const std::string& arguments) const;
  /// The program's path, quoted for a shell.
  static std::string Program();
  /// Runs a shell command in the folder.
  ProgramResult RunShell(const std::string& command) const;

  std::filesystem::path File(const std::string& name) const { return m_folder.Path() / name; }
  void Write(const std::string& name, std::string_view text) const;
  std::string Read(const std::string& name) const;
  /// The names of all files in the folder, in order.
  std::vector<std::string> Files() const;
  /// The same of the folder that the program takes for temporary files.
  std::vector<std::string> TemporaryFiles() const;

 private:
  CScratchPath m_folder;
  CScratchPath m_streams;
  CScratchPath m_temporary;
};

}  // namespace iorder
