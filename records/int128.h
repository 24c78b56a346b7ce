#pragma once

namespace iorder {

/// Wide enough for any product of two 64-bit integers.
__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 Uint128;

}  // namespace iorder
