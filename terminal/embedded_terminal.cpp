#include "terminal/embedded_terminal.h"

#include "terminal/input_error.h"

namespace iorder {
namespace {

/// What the engine takes for the host's executable. Its folder stands for the folder of the settings files,
/// wherever that lies, so that texts with paths are the same on every machine.
constexpr const wchar_t* kHostFolder = L"C:\\Terminal\\";
constexpr const wchar_t* kHostExecutable = L"C:\\Terminal\\Terminal.exe";

}  // namespace

TerminalParts::TerminalParts(IWorldRuntime& worldRuntime, const DayHead& head, const std::wstring& hostFolder)
    : runtime(worldRuntime),
      feed(runtime),
      bus(runtime, head.needsSubscription, &feed),
      database(runtime, head.hasDatabase,
               [this](const SymbolQuery& query) {
                 TraceEvent event;
                 event.kind = TraceKind::kQuery;
                 event.database = query.database;
                 event.table = query.table;
                 event.text = query.where;
                 event.first = query.rows;
                 feed.Tell(event);
               }),
      settings(runtime, head.folder, hostFolder),
      busThread(runtime),
      accounts(runtime, bus),
      messages(feed, bus),
      orders(runtime, bus, busThread, accounts, messages, head.orders, head.seed),
      figures(head.figuresPeriod ? std::make_unique<CMarketFigures>(runtime, bus, busThread, settings,
                                                                    hostFolder, *head.figuresPeriod)
                                 : nullptr),
      quotes(runtime, bus, orders.Automatic(), figures.get()),
      requests(runtime, bus, busThread),
      sink(runtime, feed, bus, busThread, orders, requests, figures.get(), head.subscriptionDelay) {}

CEmbeddedTerminal::CEmbeddedTerminal(IWorldRuntime& runtime, const Day& day)
    : m_parts(runtime, day.head, kHostFolder),
      m_world{runtime, m_parts.bus, m_parts.database, m_parts.settings, kHostExecutable},
      m_player(day, m_parts) {}

void CEmbeddedTerminal::Play(INordoManager& manager) {
  try {
    m_player.Play(manager);
  } catch (const InputError& error) {
    m_error = error.what();
  }
}

}  // namespace iorder
