#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "app/import/taifex_import.h"
#include "platform/scratch_path.h"

namespace iorder {

/// A folder with small trade files, to import from and into. It goes with the object.
class CSourceFolder {
 public:
  CSourceFolder() : m_folder(CScratchPath::NewFolder()) {}

  std::filesystem::path Path(const std::string& name) const { return m_folder.Path() / name; }
  void Write(const std::string& name, const std::string& content) const;
  void WriteGzip(const std::string& name, const std::string& content) const;
  std::string Read(const std::string& name) const;
  std::vector<std::string> Lines(const std::string& name) const;
  std::vector<std::string> Files() const;

  /// "options.csv" and "futures.csv" of the folder into "day.day.jsonl".
  TaifexImportOptions Options(TaifexSession session = TaifexSession::kDay) const;

 private:
  CScratchPath m_folder;
};

inline constexpr const char* kOptionColumns =
    "date,time,product,expiry,strike,right,price,qty_b_or_s,auction\n";
inline constexpr const char* kFutureColumns =
    "date,time,product,expiry,price,qty_b_plus_s,near_price,far_price,auction\n";

}  // namespace iorder
