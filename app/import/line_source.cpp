#include "app/import/line_source.h"

#include <zlib.h>

#include "app/import/import_error.h"

namespace iorder {
namespace {

constexpr unsigned kChunkBytes = 1 << 18;

}  // namespace

struct CLineSource::Stream {
  gzFile file = nullptr;
  ~Stream() {
    if (file != nullptr) gzclose(file);
  }
};

CLineSource::CLineSource(const std::filesystem::path& path)
    : m_path(path), m_stream(std::make_unique<Stream>()) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status))
    throw CImportError(path, 0, "no such file", "a trade file (.csv or .csv.gz)");
  if (std::filesystem::is_directory(status))
    throw CImportError(path, 0, "is a directory", "a trade file (.csv or .csv.gz)");
  m_stream->file = gzopen(path.c_str(), "rb");
  if (m_stream->file == nullptr) throw CImportError(path, 0, "can't be opened", "a readable file");
  if (!Refill()) throw CImportError(path, 0, "is empty", "a line with column names");
  if (path.extension() == ".gz" && gzdirect(m_stream->file) != 0) {
    throw CImportError(path, 0, "isn't compressed", "gzip, as the name says");
  }
}

CLineSource::~CLineSource() = default;

bool CLineSource::Refill() {
  m_buffer.erase(0, m_position);
  m_position = 0;
  const size_t used = m_buffer.size();
  m_buffer.resize(used + kChunkBytes);
  const int got = gzread(m_stream->file, m_buffer.data() + used, kChunkBytes);
  m_buffer.resize(used + (got > 0 ? static_cast<size_t>(got) : 0));
  // A file that was cut off reads as far as it goes and then ends with an error.
  int state = Z_OK;
  gzerror(m_stream->file, &state);
  if (got < 0 || state != Z_OK) Fail("is broken gzip or can't be read to its end", "a whole file");
  return got > 0;
}

bool CLineSource::Next(std::string_view& line) {
  size_t end = m_buffer.find('\n', m_position);
  while (end == std::string::npos && !m_ended) {
    const size_t searched = m_buffer.size() - m_position;
    m_ended = !Refill();
    end = m_buffer.find('\n', m_position + searched);
  }
  if (end == std::string::npos && m_position == m_buffer.size()) return false;
  line = std::string_view(m_buffer).substr(m_position, end == std::string::npos ? end : end - m_position);
  m_position = end == std::string::npos ? m_buffer.size() : end + 1;
  if (line.ends_with('\r')) line.remove_suffix(1);
  ++m_lineNumber;
  return true;
}

uint64_t CLineSource::BytesRead() const {
  return static_cast<uint64_t>(gzoffset(m_stream->file));
}

void CLineSource::Fail(const std::string& what, const std::string& expected) const {
  throw CImportError(m_path, m_lineNumber, what, expected);
}

}  // namespace iorder
