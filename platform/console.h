#pragma once

namespace iorder {

/// True if the error stream goes to a terminal: somebody watches it.
bool IsErrorStreamTerminal();

/// From then on a write to a pipe that nobody reads any more fails as any other write does, in place of
/// ending the program without a word.
void LetBrokenPipesFail();

}  // namespace iorder
