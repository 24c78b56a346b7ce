#include "tests/app/program_folder.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace iorder {
namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> FilesBelow(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    names.push_back(entry.path().lexically_relative(folder).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

std::string CProgramFolder::Program() {
  return "'" IORDER_PROGRAM "'";
}

ProgramResult CProgramFolder::Run(const std::string& arguments) const {
  return RunShell(Program() + " " + arguments);
}

ProgramResult CProgramFolder::RunShell(const std::string& command) const {
  const std::string output = m_streams.Path() / "output";
  const std::string errors = m_streams.Path() / "errors";
  const std::string line = "export TMPDIR='" + m_temporary.Path().string() + "'; cd '" +
                           m_folder.Path().string() + "' && { " + command + "; } >'" + output + "' 2>'" +
                           errors + "' </dev/null";
  const int status = std::system(line.c_str());
  if (!WIFEXITED(status)) throw std::runtime_error("didn't end by itself: " + command);
  return {WEXITSTATUS(status), ReadFile(output), ReadFile(errors)};
}

void CProgramFolder::Write(const std::string& name, std::string_view text) const {
  std::filesystem::create_directories(File(name).parent_path());
  std::ofstream file(File(name), std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error("cannot write " + name);
}

std::string CProgramFolder::Read(const std::string& name) const {
  return ReadFile(File(name));
}

std::vector<std::string> CProgramFolder::Files() const {
  return FilesBelow(m_folder.Path());
}

std::vector<std::string> CProgramFolder::TemporaryFiles() const {
  return FilesBelow(m_temporary.Path());
}

}  // namespace iorder
