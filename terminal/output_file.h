#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace iorder {

/// A file that is written in large blocks, packed if its name ends in ".gz" or ".zst". The same bytes give
/// the same file. Not for several threads at once. What can't be created or written is an InputError.
class IOutputFile {
 public:
  virtual ~IOutputFile() = default;
  virtual void Write(std::string_view bytes) = 0;
  /// Writes what is still held and closes the file; a file that is dropped without it may be cut short.
  virtual void Close() = 0;
};

std::unique_ptr<IOutputFile> CreateOutputFile(const std::string& path);

}  // namespace iorder
