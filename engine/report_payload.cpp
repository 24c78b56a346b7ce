#include "engine/report_payload.h"

#include <algorithm>
#include <string>

#include "records/number_text.h"

namespace iorder {

namespace {

constexpr size_t kNodePrefixSize = 2;  // "BN"

bool IsOpenEnded(const std::wstring& entry) {
  const bool opens = entry.find(L'[') != std::wstring::npos;
  const bool closes = entry.find(L']') != std::wstring::npos;
  return opens != closes;
}

}  // namespace

void ForEachReportNode(std::wstring_view payload, const std::function<void(int32_t node)>& handle) {
  std::wstring entry;
  while (!payload.empty()) {
    const size_t end = payload.find(L';');
    const std::wstring_view piece = payload.substr(0, end);
    payload.remove_prefix(end == std::wstring_view::npos ? payload.size() : end + 1);
    if (piece.empty()) continue;
    entry.append(piece).append(1, L';');
    if (IsOpenEnded(entry)) continue;
    entry.erase(entry.find_last_not_of(L';') + 1);
    if (!entry.starts_with(L'B')) continue;
    entry.erase(std::min(entry.find(L'='), entry.size()));
    entry.erase(0, kNodePrefixSize);
    handle(LeadingInt32(entry));
  }
}

}  // namespace iorder
