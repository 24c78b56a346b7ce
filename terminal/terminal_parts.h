#pragma once

#include <memory>
#include <string>

#include "platform/world_runtime.h"
#include "terminal/accounts_record.h"
#include "terminal/bus_thread.h"
#include "terminal/day.h"
#include "terminal/engine_messages.h"
#include "terminal/event_feed.h"
#include "terminal/host_sink.h"
#include "terminal/market_figures.h"
#include "terminal/order_service.h"
#include "terminal/quote_player.h"
#include "terminal/record_bus.h"
#include "terminal/request_desk.h"
#include "terminal/settings_files.h"
#include "terminal/symbol_database.h"

namespace iorder {

/// What an embedded terminal is made of, in the order in which the parts stand on each other.
struct TerminalParts {
  TerminalParts(IWorldRuntime& worldRuntime, const DayHead& head, const std::wstring& hostFolder);

  IWorldRuntime& runtime;
  CEventFeed feed;
  CEmbeddedBus bus;
  CSymbolDatabase database;
  CSettingsFiles settings;
  CBusThread busThread;
  CAccountsRecord accounts;
  CEngineMessages messages;
  COrderService orders;
  std::unique_ptr<CMarketFigures> figures;  ///< none: the lines of the day give them
  CQuotePlayer quotes;
  CRequestDesk requests;
  CHostSink sink;
};

}  // namespace iorder
