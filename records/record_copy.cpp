#include "records/record_copy.h"

#include <string>
#include <utility>

namespace iorder {

namespace {

/// The value that goes with write_code::kClear.
constexpr int32_t kClearAll = 255;

}  // namespace

std::unique_ptr<CBaseData> CopyRecord(World& world, CBaseData& source, std::unique_ptr<CBaseData> target) {
  const Value names = source.GetValue(read_code::kNames, kCopySelector);
  const std::wstring* text = std::get_if<std::wstring>(&names);
  if (text == nullptr) return target;
  const Value content = source.GetValue(read_code::kContent, *text);
  if (target == nullptr) {
    target = std::make_unique<CBaseData>(world);
    if (!target->Attach(nullptr, nullptr)) return nullptr;
  }
  const int32_t token = target->BeginWrite();
  target->WriteValue(token, write_code::kClear, kClearAll, {});
  target->WriteValue(token, write_code::kContent, {}, content);
  target->EndWrite(token);
  return target;
}

}  // namespace iorder
