#pragma once

#include <cstdint>
#include <string>

namespace iorder {

/// Reads a tick file and takes each row apart with std::from_chars and nothing else: the least that any
/// replay must do. Returns a sum over all cells, so that none can be left out.
uint64_t BareParse(const std::string& path);

}  // namespace iorder
