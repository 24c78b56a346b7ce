#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/input_error.h"

namespace iorder {

/// How much of a file is read at once.
inline constexpr size_t kBlockSize = size_t{256} * 1024;

/// The bytes of a file, plain or, by the end of its name, unpacked from ".gz" or ".zst". Memory doesn't
/// depend on the file's length. Not for several threads at once. What can't be opened, read or unpacked is an
/// InputError.
class IInputFile {
 public:
  virtual ~IInputFile() = default;
  /// Reads up to `size` bytes; 0 only at the end.
  virtual size_t Read(char* data, size_t size) = 0;
};

std::unique_ptr<IInputFile> OpenInputFile(const std::string& path);

/// The lines of a file, one after the other, read in large blocks.
class CLineReader {
 public:
  explicit CLineReader(const std::string& path) : CLineReader(path, OpenInputFile(path)) {}
  /// What `file` holds, under the name `path`; `blockSize` isn't 0.
  CLineReader(std::string path, std::unique_ptr<IInputFile> file, size_t blockSize = kBlockSize);

  /// The next line without its end (a carriage return before it goes too). False at the end of the file. The
  /// text lives until the next call.
  bool Next(std::string_view& line);

  /// Of the line that Next gave last.
  FilePlace Place() const { return {m_path, m_line}; }
  const std::string& Path() const { return m_path; }
  /// Bytes that were taken from the file, after unpacking.
  size_t BytesRead() const { return m_bytesRead; }

 private:
  bool Fill();

  std::string m_path;
  std::unique_ptr<IInputFile> m_file;
  std::vector<char> m_buffer;
  size_t m_begin = 0;  ///< of the part of the buffer that wasn't given out yet
  size_t m_end = 0;
  size_t m_line = 0;
  size_t m_bytesRead = 0;
  bool m_atEnd = false;
};

}  // namespace iorder
