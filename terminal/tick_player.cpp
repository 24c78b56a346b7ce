#include "terminal/tick_player.h"

#include <utility>

#include "platform/text.h"

namespace iorder {

CTickPlayer::CTickPlayer(IWorldRuntime& runtime, CQuotePlayer& quotes, std::vector<TickSource> sources,
                         std::optional<LocalTime> end)
    : m_runtime(runtime), m_quotes(quotes), m_sources(std::move(sources)), m_end(end), m_clock(runtime) {}

void CTickPlayer::Create() {
  if (m_sources.empty()) {
    return;
  }
  m_thread = m_runtime.CreateThread(L"bus", [this] {
    try {
      Play();
    } catch (const InputError&) {
      m_error = std::current_exception();
      m_hasError = true;
    }
  });
}

void CTickPlayer::Start() {
  if (m_thread != nullptr) {
    m_thread->Resume();
  }
}

void CTickPlayer::Wait() {
  if (m_thread != nullptr) {
    m_runtime.Wait(*m_thread, std::nullopt);
  }
  Check();
}

void CTickPlayer::Check() {
  if (m_hasError) {
    std::rethrow_exception(m_error);
  }
}

void CTickPlayer::Play() {
  std::vector<std::unique_ptr<Stream>> streams;
  for (const TickSource& source : m_sources) {
    streams.push_back(std::make_unique<Stream>(source));
  }
  while (Stream* const stream = NextStream(streams)) {
    if (m_end && stream->row.at > *m_end) {
      return;
    }
    m_runtime.SleepUntil(m_clock.ToMoment(stream->row.at), Precedence::kTick);
    PlayRow(*stream);
    stream->isOpen = stream->file.Next(stream->row);
  }
}

CTickPlayer::Stream* CTickPlayer::NextStream(const std::vector<std::unique_ptr<Stream>>& streams) {
  Stream* next = nullptr;
  for (const std::unique_ptr<Stream>& stream : streams) {
    if (stream->isOpen && (next == nullptr || stream->row.at < next->row.at)) {
      next = stream.get();
    }
  }
  return next;
}

void CTickPlayer::PlayRow(Stream& stream) {
  static const Firing kFiring;
  const std::vector<std::string>& symbols = stream.file.Symbols();
  for (size_t i = stream.targets.size(); i < symbols.size(); ++i) {
    stream.targets.push_back(m_quotes.Find(ToWide(symbols[i])));
  }
  m_quotes.Play(stream.targets[stream.row.symbol], stream.row.update, nullptr, kFiring);
  m_lastTime = stream.row.at;
  m_rowsPlayed.store(m_rowsPlayed.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

}  // namespace iorder
