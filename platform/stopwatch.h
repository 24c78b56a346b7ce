#pragma once

#include <chrono>

namespace iorder {

/// Measures how long the program itself takes, whatever the clock of a runtime shows.
class CStopwatch {
 public:
  CStopwatch() : m_begin(std::chrono::steady_clock::now()) {}
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_begin).count();
  }

 private:
  std::chrono::steady_clock::time_point m_begin;
};

}  // namespace iorder
