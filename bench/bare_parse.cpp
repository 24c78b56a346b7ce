#include "bench/bare_parse.h"

#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>

namespace iorder {

uint64_t BareParse(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  std::string text(static_cast<size_t>(file.tellg()), '\0');
  file.seekg(0);
  file.read(text.data(), static_cast<std::streamsize>(text.size()));

  const char* at = text.data();
  const char* const end = at + text.size();
  uint64_t sum = 0;
  at = static_cast<const char*>(std::memchr(at, '\n', static_cast<size_t>(end - at))) + 1;
  while (at < end) {
    // A number is read as one, what is none (a symbol, the colons of a time) is passed over.
    const char c = *at;
    if (c >= '0' && c <= '9') {
      uint64_t whole = 0;
      at = std::from_chars(at, end, whole).ptr;
      sum += whole;
    } else if (c == 'N') {
      const char* comma = static_cast<const char*>(std::memchr(at, ',', static_cast<size_t>(end - at)));
      sum += static_cast<uint64_t>(comma - at);
      at = comma;
    } else {
      ++at;
    }
  }
  return sum;
}

}  // namespace iorder
