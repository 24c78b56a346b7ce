#include "terminal/day_player.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace iorder {
namespace {

constexpr Milliseconds kRestOfDay = std::chrono::seconds(60);
constexpr PhaseAction kStart{1, 1};
constexpr PhaseAction kOpen{1, 2};
constexpr PhaseAction kStop{1, 4};

std::vector<TickSource> TickSources(const Day& day) {
  std::vector<TickSource> sources;
  for (const DayLine& line : day.lines) {
    if (const TicksAction* const ticks = std::get_if<TicksAction>(&line.action)) {
      sources.push_back({ticks->path, DateOf(line.at)});
    }
  }
  return sources;
}

}  // namespace

CDayPlayer::CDayPlayer(const Day& day, TerminalParts& parts)
    : m_day(day),
      m_parts(parts),
      m_clock(parts.runtime),
      m_ticks(parts.runtime, parts.quotes, TickSources(day), day.head.end) {}

void CDayPlayer::Play(INordoManager& manager) {
  m_manager = &manager;
  m_parts.messages.Connect(manager);
  m_parts.busThread.Start();
  m_ticks.Create();
  std::exception_ptr error;
  try {
    PlayLines();
    WaitForEnd();
  } catch (const InputError&) {
    error = std::current_exception();
  }
  if (m_day.head.autoPhases && m_isStarted) {
    SetPhase(kStop);
  }
  // The engine may go as soon as the day is over: no child order is announced to it any more.
  m_parts.busThread.Stop();
  if (error) {
    std::rethrow_exception(error);
  }
}

void CDayPlayer::PlayLines() {
  for (size_t i = 0; i < m_day.setupCount; ++i) {
    PlayLine(m_day.lines[i]);
  }
  if (m_day.head.autoPhases) {
    m_isStarted = true;
    SetPhase(kStart);
    SetPhase(kOpen);
  }
  m_ticks.Start();
  for (size_t i = m_day.setupCount; i < m_day.lines.size(); ++i) {
    const DayLine& line = m_day.lines[i];
    if (m_day.head.end && line.at > *m_day.head.end) {
      return;
    }
    m_parts.runtime.SleepUntil(m_clock.ToMoment(line.at), Precedence::kDayLine);
    m_ticks.Check();
    PlayLine(line);
  }
}

void CDayPlayer::WaitForEnd() {
  if (m_day.head.end) {
    m_parts.runtime.SleepUntil(m_clock.ToMoment(*m_day.head.end), Precedence::kTick);
    m_ticks.Check();
    return;
  }
  m_ticks.Wait();
  LocalTime last = m_day.lines.empty() ? m_day.head.start : m_day.lines.back().at;
  last = std::max(last, m_ticks.LastTime().value_or(last));
  m_parts.runtime.SleepUntil(m_clock.ToMoment(last + kRestOfDay), Precedence::kTick);
}

void CDayPlayer::PlayLine(const DayLine& line) {
  try {
    std::visit([this](const auto& action) { Do(action); }, line.action);
  } catch (const InputError& error) {
    FailAt({m_day.path, line.line}, error.what());
  }
  ++m_linesPlayed;
}

void CDayPlayer::OnBus(const std::function<void()>& job) {
  m_parts.busThread.Run(job);
}

void CDayPlayer::SetPhase(const PhaseAction& phase) {
  TraceEvent event;
  event.kind = TraceKind::kPhase;
  event.first = phase.category;
  event.second = phase.phase;
  m_parts.feed.Tell(event);
  m_manager->SetPhase(phase.category, phase.phase);
  if (phase.category != kOpen.category || phase.phase != kOpen.phase) {
    return;
  }
  m_isOpen = true;
  if (std::exchange(m_accountsWaiting, false)) {
    OnBus([this] { m_parts.bus.Fire(kAccountsRecord, {}); });
  }
}

void CDayPlayer::Do(const SettingsAction& action) {
  m_parts.settings.Write(action.path, action.text);
  if (m_parts.figures != nullptr) {
    m_parts.figures->OnSettings();
  }
}

void CDayPlayer::Do(const SymbolsAction& action) {
  m_parts.database.AddRows(action);
  if (m_parts.figures != nullptr) {
    m_parts.figures->AddSymbols(action);
  }
}

void CDayPlayer::Do(const RecordAction& action) {
  OnBus([&] {
    if (m_parts.figures != nullptr) {
      m_parts.figures->LeaveToLines(action.change.name);
    }
    m_parts.bus.Apply(action.change);
    if (action.firing) {
      m_parts.bus.Fire(action.change.name, *action.firing);
    }
  });
}

void CDayPlayer::Do(const QuoteAction& action) {
  OnBus([&] {
    m_parts.quotes.Play(m_parts.quotes.Find(action.symbol), action.update, &action.more, action.firing);
  });
}

void CDayPlayer::Do(const MessageAction& action) {
  m_parts.messages.Send(action);
}

void CDayPlayer::Do(const AccountsAction& action) {
  m_accountsWaiting = !m_isOpen;
  OnBus([&] {
    m_parts.accounts.Set(action);
    if (m_isOpen) {
      m_parts.bus.Fire(kAccountsRecord, {});
    }
  });
}

void CDayPlayer::Do(const PhaseAction& action) {
  SetPhase(action);
}

void CDayPlayer::Do(const ReportAction& action) {
  OnBus([&] { m_parts.orders.Report(action); });
}

void CDayPlayer::Do(const ChildAction& action) {
  OnBus([&] { m_parts.orders.Child(action); });
}

void CDayPlayer::Do(const PositionAction& action) {
  OnBus([&] { m_parts.orders.Position(action); });
}

void CDayPlayer::Do(const RequestAction& action) {
  m_parts.requests.Set(action);
}

void CDayPlayer::Do(const FaultAction& action) {
  const bool fails = !action.clear;
  switch (action.kind) {
    case FaultAction::Kind::kRecordOpen:
      m_parts.bus.FailOpen(action.name, fails);
      break;
    case FaultAction::Kind::kItemOpen:
      if (fails) {
        m_parts.bus.FailItem(action.name, action.node, action.item.value, action.times);
      } else {
        m_parts.bus.ClearItemFault(action.name, action.node, action.item.value);
      }
      break;
    case FaultAction::Kind::kAccount:
      OnBus([&] {
        m_parts.accounts.Drop(action.name, fails);
        m_parts.bus.Fire(kAccountsRecord, {});
      });
      break;
    case FaultAction::Kind::kDatabase:
      m_parts.database.SetFailing(fails);
      break;
    case FaultAction::Kind::kSink:
      m_parts.sink.SetFailing(fails);
      break;
    case FaultAction::Kind::kTimer:
      m_parts.runtime.DelayTimer(action.name, action.time);
      break;
    case FaultAction::Kind::kThread:
      m_parts.runtime.FailThreads(fails ? action.times.value_or(1) : 0);
      break;
    case FaultAction::Kind::kStuck:
      m_parts.runtime.HoldThread(action.name, action.time);
      break;
  }
}

}  // namespace iorder
