#pragma once

#include <functional>
#include <string>

#include "records/host_gateway.h"
#include "records/locked_string_map.h"

namespace iorder {

/// Keeps the host's subscriptions straight without a counter: before the host is told, every strategy is
/// asked whether it holds the symbol, and so are the names that group orders subscribed. Any thread may call,
/// under no lock but one that the question itself takes: the host is called outside it.
class CQuoteSubscriptions {
 public:
  /// `anyHolder` tells whether a live strategy holds the symbol.
  CQuoteSubscriptions(IHostGateway& host, std::function<bool(const std::wstring& symbol)> anyHolder);

  /// A strategy calls it before it enters the symbol in its own table.
  void SubQuote(const std::wstring& symbol);
  /// A strategy calls it after it has removed the symbol from its own table.
  void UnsubQuote(const std::wstring& symbol);

  /// Subscribes a name for good, once; true if its record has valid data.
  bool EnsureOptionTopic(const std::wstring& name);
  /// True if the record of that name has an "MCODE" above 0.
  bool IsQuoteValid(const std::wstring& symbol);

 private:
  bool IsHeld(const std::wstring& symbol);

  IHostGateway& m_host;
  std::function<bool(const std::wstring& symbol)> m_anyHolder;
  /// Names that group orders subscribed, for ever.
  CGlcMapStringToString m_mapSubscribed;
};

}  // namespace iorder
