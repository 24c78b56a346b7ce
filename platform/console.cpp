#include "platform/console.h"

#include <unistd.h>

#include <csignal>

namespace iorder {

bool IsErrorStreamTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

void LetBrokenPipesFail() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace iorder
