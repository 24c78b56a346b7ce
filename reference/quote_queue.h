#pragma once

#include <list>
#include <map>
#include <optional>
#include <string>

#include "platform/critical_section.h"
#include "reference/quote_data.h"

namespace iorder {

/// The quotes on their way to the profit monitor, first in, first out. Any thread may call.
class CQuoteQueue {
 public:
  explicit CQuoteQueue(IRuntime& runtime) : m_csQuotes(runtime, "m_csQuotes") {}

  /// Appends a copy, unless it repeats the update id or the volume of the snapshot that its symbol is
  /// compared with: the first one with an update id, which stays for good. True if it was appended.
  bool Enqueue(const CQuoteData& quote);
  /// Takes the oldest.
  std::optional<CQuoteData> Take();
  bool IsEmpty();

 private:
  CCriticalSection m_csQuotes;
  std::list<CQuoteData> m_lstQuotes IORDER_GUARDED_BY(m_csQuotes);
  std::map<std::wstring, CQuoteData> m_mapQuotes IORDER_GUARDED_BY(m_csQuotes);
};

}  // namespace iorder
