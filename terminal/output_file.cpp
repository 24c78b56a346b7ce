#include "terminal/output_file.h"

#include <zlib.h>
#include <zstd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

#include "terminal/input_error.h"

namespace iorder {
namespace {

class CPlainFile : public IOutputFile {
 public:
  explicit CPlainFile(const std::string& path) : m_path(path), m_stream(path, std::ios::binary) {
    if (!m_stream) {
      FailAt({path}, std::string("can't be created: ") + std::strerror(errno));
    }
  }

  void Write(std::string_view bytes) override {
    m_stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    Check();
  }
  void Close() override {
    m_stream.close();
    Check();
  }

 private:
  void Check() {
    if (!m_stream) {
      FailAt({m_path}, "can't be written");
    }
  }

  std::string m_path;
  std::ofstream m_stream;
};

class CGzipFile : public IOutputFile {
 public:
  explicit CGzipFile(const std::string& path) : m_path(path), m_file(gzopen(path.c_str(), "wb6")) {
    if (m_file == nullptr) {
      FailAt({path}, std::string("can't be created: ") + std::strerror(errno));
    }
  }
  ~CGzipFile() override {
    if (m_file != nullptr) {
      gzclose(m_file);
    }
  }

  void Write(std::string_view bytes) override {
    if (!bytes.empty() && gzwrite(m_file, bytes.data(), static_cast<unsigned>(bytes.size())) <= 0) {
      FailAt({m_path}, "can't be written");
    }
  }
  void Close() override {
    if (gzclose(std::exchange(m_file, nullptr)) != Z_OK) {
      FailAt({m_path}, "can't be written");
    }
  }

 private:
  std::string m_path;
  gzFile m_file;
};

class CZstdFile : public IOutputFile {
 public:
  explicit CZstdFile(const std::string& path)
      : m_path(path),
        m_packed(path),
        m_stream(ZSTD_createCStream(), ZSTD_freeCStream),
        m_block(ZSTD_CStreamOutSize()) {}

  void Write(std::string_view bytes) override { Pack(bytes, ZSTD_e_continue); }
  void Close() override {
    Pack({}, ZSTD_e_end);
    m_packed.Close();
  }

 private:
  void Pack(std::string_view bytes, ZSTD_EndDirective directive) {
    ZSTD_inBuffer input{bytes.data(), bytes.size(), 0};
    size_t rest = 0;
    do {
      ZSTD_outBuffer output{m_block.data(), m_block.size(), 0};
      rest = ZSTD_compressStream2(m_stream.get(), &output, &input, directive);
      if (ZSTD_isError(rest) != 0) {
        FailAt({m_path}, std::string("can't be packed: ") + ZSTD_getErrorName(rest));
      }
      m_packed.Write({m_block.data(), output.pos});
    } while (input.pos < input.size || (directive == ZSTD_e_end && rest != 0));
  }

  std::string m_path;
  CPlainFile m_packed;
  std::unique_ptr<ZSTD_CStream, size_t (*)(ZSTD_CStream*)> m_stream;
  std::vector<char> m_block;
};

}  // namespace

std::unique_ptr<IOutputFile> CreateOutputFile(const std::string& path) {
  if (path.ends_with(".gz")) {
    return std::make_unique<CGzipFile>(path);
  }
  if (path.ends_with(".zst")) {
    return std::make_unique<CZstdFile>(path);
  }
  return std::make_unique<CPlainFile>(path);
}

}  // namespace iorder
