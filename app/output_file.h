#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "app/output_place.h"
#include "terminal/output_file.h"

namespace iorder {

/// A file that the program writes, packed if its name ends in ".gz" or ".zst". It appears whole, with Commit,
/// or not at all. What can't be written is an InputError.
class COutputFile {
 public:
  explicit COutputFile(const std::filesystem::path& path);

  void Write(std::string_view text);
  void Commit();

 private:
  COutputPlace m_place;
  std::unique_ptr<IOutputFile> m_file;
};

}  // namespace iorder
