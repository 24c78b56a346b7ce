#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace iorder {

/// The lines of a text file, plain or gzip (by its content; a name that ends in ".gz" must hold gzip). Line
/// ends may be \n or \r\n. A file that can't be opened or read to its end raises CImportError.
class CLineSource {
 public:
  explicit CLineSource(const std::filesystem::path& path);
  ~CLineSource();
  CLineSource(const CLineSource&) = delete;
  CLineSource& operator=(const CLineSource&) = delete;

  /// The next line without its end. False behind the last one. `line` is valid until the next call.
  bool Next(std::string_view& line);

  const std::filesystem::path& Path() const { return m_path; }
  /// Of the line that Next gave last, from 1; 0 before the first.
  size_t LineNumber() const { return m_lineNumber; }
  /// How much of the file itself, compressed or not, has been read.
  uint64_t BytesRead() const;

  /// Raises CImportError at the current line.
  [[noreturn]] void Fail(const std::string& what, const std::string& expected) const;

 private:
  struct Stream;

  /// False at the end of the file.
  bool Refill();

  std::filesystem::path m_path;
  std::unique_ptr<Stream> m_stream;
  std::string m_buffer;
  /// Where the unread part of the buffer begins.
  size_t m_position = 0;
  bool m_ended = false;
  size_t m_lineNumber = 0;
};

}  // namespace iorder
