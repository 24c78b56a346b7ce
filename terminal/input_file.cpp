#include "terminal/input_file.h"

#include <zlib.h>
#include <zstd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace iorder {
namespace {

class CPlainFile : public IInputFile {
 public:
  explicit CPlainFile(const std::string& path) : m_path(path), m_stream(path, std::ios::binary) {
    if (!m_stream) {
      FailAt({path}, std::string("can't be opened: ") + std::strerror(errno));
    }
  }

  size_t Read(char* data, size_t size) override {
    m_stream.read(data, static_cast<std::streamsize>(size));
    if (m_stream.bad()) {
      FailAt({m_path}, "can't be read");
    }
    return static_cast<size_t>(m_stream.gcount());
  }

 private:
  std::string m_path;
  std::ifstream m_stream;
};

class CGzipFile : public IInputFile {
 public:
  explicit CGzipFile(const std::string& path) : m_path(path), m_file(gzopen(path.c_str(), "rb")) {
    if (m_file == nullptr) {
      FailAt({path}, std::string("can't be opened: ") + std::strerror(errno));
    }
    gzbuffer(m_file, kBlockSize);
  }
  ~CGzipFile() override { gzclose(m_file); }

  size_t Read(char* data, size_t size) override {
    const int count = gzread(m_file, data, static_cast<unsigned>(size));
    // zlib hands files that aren't compressed through as they are; a name that says otherwise is a mistake.
    if (count > 0 && gzdirect(m_file) != 0) {
      FailAt({m_path}, "isn't a gzip file");
    }
    int code = Z_OK;
    const char* text = gzerror(m_file, &code);
    if (count < 0 || code == Z_BUF_ERROR) {
      FailAt({m_path},
             std::string("broken gzip data: ") + (code == Z_BUF_ERROR ? "the file ends too early" : text));
    }
    return static_cast<size_t>(count);
  }

 private:
  std::string m_path;
  gzFile m_file;
};

class CZstdFile : public IInputFile {
 public:
  explicit CZstdFile(const std::string& path)
      : m_path(path), m_packed(path), m_stream(ZSTD_createDStream(), ZSTD_freeDStream), m_block(kBlockSize) {}

  size_t Read(char* data, size_t size) override {
    ZSTD_outBuffer output{data, size, 0};
    while (output.pos == 0) {
      if (m_input.pos == m_input.size) {
        m_input = {m_block.data(), m_packed.Read(m_block.data(), m_block.size()), 0};
        if (m_input.size == 0) {
          if (m_insideFrame) {
            FailAt({m_path}, "broken zstd data: the file ends too early");
          }
          return 0;
        }
      }
      const size_t rest = ZSTD_decompressStream(m_stream.get(), &output, &m_input);
      if (ZSTD_isError(rest) != 0) {
        FailAt({m_path}, std::string("broken zstd data: ") + ZSTD_getErrorName(rest));
      }
      m_insideFrame = rest != 0;
    }
    return output.pos;
  }

 private:
  std::string m_path;
  CPlainFile m_packed;
  std::unique_ptr<ZSTD_DStream, size_t (*)(ZSTD_DStream*)> m_stream;
  std::vector<char> m_block;
  ZSTD_inBuffer m_input{nullptr, 0, 0};
  bool m_insideFrame = false;
};

}  // namespace

std::unique_ptr<IInputFile> OpenInputFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    FailAt({path}, "is a directory; a file was expected");
  }
  if (path.ends_with(".gz")) {
    return std::make_unique<CGzipFile>(path);
  }
  if (path.ends_with(".zst")) {
    return std::make_unique<CZstdFile>(path);
  }
  return std::make_unique<CPlainFile>(path);
}

CLineReader::CLineReader(std::string path, std::unique_ptr<IInputFile> file, size_t blockSize)
    : m_path(std::move(path)), m_file(std::move(file)), m_buffer(blockSize) {}

bool CLineReader::Next(std::string_view& line) {
  size_t searched = m_begin;
  const char* lineEnd = nullptr;
  while (true) {
    lineEnd = static_cast<const char*>(std::memchr(m_buffer.data() + searched, '\n', m_end - searched));
    if (lineEnd != nullptr) {
      break;
    }
    const size_t pending = m_end - m_begin;
    if (!Fill()) {
      break;
    }
    searched = m_begin + pending;
  }
  if (lineEnd == nullptr && m_begin == m_end) {
    return false;
  }
  const char* text = m_buffer.data() + m_begin;
  size_t length = lineEnd != nullptr ? static_cast<size_t>(lineEnd - text) : m_end - m_begin;
  m_begin += lineEnd != nullptr ? length + 1 : length;
  ++m_line;
  if (length > 0 && text[length - 1] == '\r') {
    --length;
  }
  line = {text, length};
  return true;
}

bool CLineReader::Fill() {
  if (m_atEnd) {
    return false;
  }
  if (m_begin > 0) {
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
  }
  if (m_end == m_buffer.size()) {
    m_buffer.resize(m_buffer.size() * 2);
  }
  const size_t count = m_file->Read(m_buffer.data() + m_end, m_buffer.size() - m_end);
  m_end += count;
  m_bytesRead += count;
  m_atEnd = count == 0;
  return count > 0;
}

}  // namespace iorder
