#include <algorithm>
#include <string>
#include <vector>

#include "engine/report_payload.h"
#include "fuzz/fuzz_target.h"
#include "platform/text.h"
#include "records/number_text.h"

namespace iorder::fuzzing {
namespace {

/// The same payload read the plain way: one piece after the other, each rule on the whole of what there is by
/// then.
std::vector<int32_t> NodesOf(std::wstring payload) {
  std::vector<int32_t> nodes;
  std::wstring entry;
  payload += L';';
  for (size_t begin = 0, end = 0; (end = payload.find(L';', begin)) != std::wstring::npos; begin = end + 1) {
    if (end == begin) continue;
    entry += payload.substr(begin, end - begin) + L';';
    const bool opens = std::count(entry.begin(), entry.end(), L'[') > 0;
    const bool closes = std::count(entry.begin(), entry.end(), L']') > 0;
    if (opens != closes) continue;
    while (entry.ends_with(L';')) entry.pop_back();
    if (!entry.starts_with(L'B')) continue;
    entry = entry.substr(0, entry.find(L'='));
    entry = entry.size() > 2 ? entry.substr(2) : L"";
    nodes.push_back(LeadingInt32(entry));
  }
  return nodes;
}

}  // namespace
}  // namespace iorder::fuzzing

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace iorder;
  using namespace iorder::fuzzing;
  // The plain way looks at each entry anew with every piece of it, so what it is compared on stays short.
  constexpr size_t kCompared = 4096;
  const std::wstring payload = ToWide(TextOf(data, size));
  std::vector<int32_t> nodes;
  ForEachReportNode(payload, [&](int32_t node) { nodes.push_back(node); });
  if (payload.size() <= kCompared) Require(nodes == NodesOf(payload), "the nodes are those of the entries");
  return 0;
}
