#include "platform/fatal.h"

#include <cstdio>
#include <cstdlib>

namespace iorder {

void EndProcess(const std::string& text) noexcept {
  std::fputs((text + "\n").c_str(), stderr);
  std::fflush(stderr);
  std::abort();
}

}  // namespace iorder
