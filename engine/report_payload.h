#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace iorder {

/// Reads the payload of an update of "TRADE.ORDERSET": entries "BN<node>=[...]" separated by ";", brackets
/// may hold a ";" of their own. Calls `handle` with the node's index. What is left of an entry that was
/// handled stays in front of the next one, so that a payload gives its first entry at most; it is the form
/// that the engine has always had, and senders go by it.
void ForEachReportNode(std::wstring_view payload, const std::function<void(int32_t node)>& handle);

}  // namespace iorder
