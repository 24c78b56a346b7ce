#include "tests/import/source_folder.h"

#include <zlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace iorder {

void CSourceFolder::Write(const std::string& name, const std::string& content) const {
  std::ofstream(Path(name), std::ios::binary) << content;
}

void CSourceFolder::WriteGzip(const std::string& name, const std::string& content) const {
  const gzFile file = gzopen(Path(name).c_str(), "wb");
  if (file == nullptr || gzwrite(file, content.data(), static_cast<unsigned>(content.size())) == 0 ||
      gzclose(file) != Z_OK) {
    throw std::runtime_error("can't write " + name);
  }
}

std::string CSourceFolder::Read(const std::string& name) const {
  std::ifstream file(Path(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> CSourceFolder::Lines(const std::string& name) const {
  std::istringstream text(Read(name));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> CSourceFolder::Files() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
    names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

TaifexImportOptions CSourceFolder::Options(TaifexSession session) const {
  TaifexImportOptions options;
  options.optionsFile = Path("options.csv");
  options.futuresFile = Path("futures.csv");
  options.session = session;
  options.day = Path("day.day.jsonl");
  return options;
}

}  // namespace iorder
