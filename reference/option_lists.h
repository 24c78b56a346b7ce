#pragma once

#include <string>
#include <vector>

#include "records/host_gateway.h"
#include "records/symbol_database_access.h"

namespace iorder {

/// Turns configured symbols into real ones: the hot month through the record "HOTMONTHTABLE", the series of
/// an option chain through the symbol database. Any thread may call. Nothing here raises or logs: what isn't
/// found gives the symbol back, or an empty list.
class COptionLists {
 public:
  COptionLists(IHostGateway& host, CSymbolDatabaseAccess& database) : m_host(host), m_database(database) {}

  /// The symbol of the current month, or the given one if the table doesn't know it.
  std::wstring GetHotMonth(const std::wstring& symbol);
  /// The call symbols of a chain (ND, type, exchange, product, month), by strike. The chain that follows the
  /// nearest expiry gives that expiry's.
  std::vector<std::wstring> QueryOptionList(const std::wstring& symbol);
  /// The call symbols of the product's smallest expiry date above 0. The product may be the beginning of a
  /// longer one.
  std::vector<std::wstring> QueryNearestOptionList(const std::wstring& symbol);

 private:
  IHostGateway& m_host;
  CSymbolDatabaseAccess& m_database;
};

}  // namespace iorder
