#include "grouporder/chase_price.h"

#include <fmt/printf.h>
#include <fmt/xchar.h>

#include "records/json_value.h"
#include "records/number_text.h"
#include "reference/order_settings.h"

namespace iorder {

namespace {

/// The settings hold their numbers as texts; what is there in another form reads as 0.
int32_t ReadSetting(JsonValue& settings, const wchar_t* key, int32_t fallback) {
  const JsonValue* member = settings.Member(key);
  return member != nullptr ? LeadingInt32(member->Text()) : fallback;
}

std::wstring ReadText(CBaseData& item, int32_t kind, const std::wstring& broker,
                      const std::wstring& account) {
  const std::wstring own = item.GetString(fmt::sprintf(L"%d-%s-%s", kind, broker, account));
  return !own.empty() ? own : item.GetString(fmt::sprintf(L"%d-ALL", kind));
}

}  // namespace

std::wstring BuildChasePrice(CBaseData* settings, int32_t kind, const std::wstring& broker,
                             const std::wstring& account, const std::wstring& symbol) {
  const auto item = settings != nullptr ? FindRecordForSymbol(*settings, symbol) : nullptr;
  if (item == nullptr) return {};
  const std::wstring text = ReadText(*item, kind, broker, account);
  if (text.empty() || kind != kGroupChaseKind) return {};
  JsonValue chase;
  if (ParseJsonValue(chase, text) <= 0 || chase.Kind() != JsonKind::kObject) return {};
  if (ReadSetting(chase, L"On", 0) != 1) return {};
  return fmt::sprintf(L"0|%d|%d|C|2", ReadSetting(chase, L"Times", 1), ReadSetting(chase, L"TimeOut", 100));
}

}  // namespace iorder
