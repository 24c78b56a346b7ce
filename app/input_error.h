#pragma once

#include <stdexcept>

namespace iorder {

/// Wrong usage or wrong input: the text is one line that says where (file and line, or option), what is wrong
/// and what was expected. The program ends with exit code 2.
class CInputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace iorder
