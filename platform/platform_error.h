#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace iorder {

/// The platform's error codes that the engine raises.
namespace error_code {
inline constexpr uint32_t kFailure = 0x80004005;
inline constexpr uint32_t kOutOfMemory = 0x8007000E;
inline constexpr uint32_t kInvalidArgument = 0x80070057;
}  // namespace error_code

/// A failure with the platform's code for it. It ends one message or timer callback of an engine thread.
class CPlatformError : public std::runtime_error {
 public:
  CPlatformError(uint32_t code, const std::string& what) : std::runtime_error(what), m_code(code) {}
  uint32_t Code() const { return m_code; }

 private:
  uint32_t m_code;
};

}  // namespace iorder
