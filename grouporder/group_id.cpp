#include "grouporder/group_id.h"

#include <string_view>

namespace iorder {

std::wstring MakeGroupId(IRuntime& runtime) {
  constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
  // The first three fields of a GUID are numbers whose lowest byte is stored first.
  constexpr int kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  const Guid guid = runtime.NewGuid();
  std::wstring text = L"{";
  for (size_t i = 0; i < sizeof guid.bytes; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += L'-';
    const uint8_t byte = guid.bytes[kOrder[i]];
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text + L"}";
}

}  // namespace iorder
