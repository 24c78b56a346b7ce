#include "engine/timer.h"

#include <fmt/printf.h>
#include <fmt/xchar.h>

#include <algorithm>
#include <array>
#include <utility>

namespace iorder {

namespace {

constexpr int kThreadTries = 6;
constexpr Milliseconds kThreadRetry{10};

std::wstring ThreadFailureText(const PlatformError& error) {
  const wchar_t* head = L"Win32 API function 'CreateThread' fails!\r\n\r\nErrorCode : %d";
  if (error.description.empty()) return fmt::sprintf(head, error.code);
  return fmt::sprintf(std::wstring(head) + L"\r\nDecription : %s", error.code, error.description);
}

}  // namespace

CTimer::CTimer(IRuntime& runtime, std::function<void(const std::wstring& text)> onThreadFailure)
    : m_runtime(runtime),
      m_objectNumber(runtime.NewObjectNumber()),
      m_onThreadFailure(std::move(onThreadFailure)),
      m_cs(runtime, "timer lock") {}

CTimer::~CTimer() {
  EndAll();
}

void CTimer::EndAll() {
  CutOffShield shield(m_runtime);
  // One by one, as a callback that is still running may set another timer until its own thread is gone.
  while (const std::shared_ptr<IThread> thread = TakeThread()) {
    thread->Terminate();
    m_runtime.Wait(*thread, std::nullopt);
  }
  CLockGuard guard(m_cs);
  m_mapActive.clear();
  m_mapEnding.clear();
}

std::shared_ptr<IThread> CTimer::TakeThread() {
  CLockGuard guard(m_cs);
  m_isEnded = true;
  for (auto& [key, entry] : m_mapActive) {
    if (entry->hThread != nullptr) return std::exchange(entry->hThread, nullptr);
  }
  for (auto& [key, entry] : m_mapEnding) {
    if (entry->hThread != nullptr) return std::exchange(entry->hThread, nullptr);
  }
  return nullptr;
}

std::wstring CTimer::KeyOf(int32_t id) const {
  return fmt::sprintf(L"%x.%d", m_objectNumber, id);
}

int32_t CTimer::SetTimer(int32_t id, int32_t intervalMs, Callback callback) {
  const EntryPtr entry = std::make_shared<Entry>();
  entry->lId = id;
  entry->lIntervalMs = intervalMs;
  entry->pfnCallback = std::move(callback);
  {
    CLockGuard guard(m_cs);
    if (m_isEnded || m_mapActive.contains(KeyOf(id))) return 0;
    // Made before the entry is entered: if one of them can't be had, no half of a timer stays.
    entry->hStop = m_runtime.CreateEvent(EventReset::kAuto, false);
    entry->hTimer = m_runtime.CreateWaitableTimer(KeyOf(id));
    m_mapActive.emplace(KeyOf(id), entry);
  }
  const std::shared_ptr<IThread> thread = CreateThread(entry);
  if (thread == nullptr) {
    const PlatformError error = m_runtime.LastError();
    {
      CLockGuard guard(m_cs);
      m_mapActive.erase(KeyOf(id));
    }
    Forget(entry);
    m_onThreadFailure(ThreadFailureText(error));
    return 1;
  }
  {
    CLockGuard guard(m_cs);
    // Whoever ended all meanwhile didn't find this thread: it never begins.
    if (m_isEnded) {
      thread->Terminate();
      return 0;
    }
    entry->hThread = thread;
  }
  thread->Resume();
  return 1;
}

std::shared_ptr<IThread> CTimer::CreateThread(const EntryPtr& entry) {
  const std::wstring name = L"timer " + std::to_wstring(entry->lId);
  for (int i = 0; i < kThreadTries; ++i) {
    if (i > 0) m_runtime.Sleep(kThreadRetry);
    if (auto thread = m_runtime.CreateThread(name, [this, entry] { RunTimer(entry); })) return thread;
  }
  return nullptr;
}

void CTimer::RunTimer(const EntryPtr& entry) {
  {
    CLockGuard guard(m_cs);
    const Milliseconds interval{entry->lIntervalMs};
    entry->hTimer->Arm(interval, interval);
  }
  const std::array<IWaitable*, 2> handles{entry->hStop.get(), entry->hTimer.get()};
  constexpr size_t kTimerHandle = 1;
  while (m_runtime.Wait(handles, std::nullopt) == kTimerHandle) entry->pfnCallback(entry->lId);
  Forget(entry);
}

void CTimer::Forget(const EntryPtr& entry) {
  CLockGuard guard(m_cs);
  const auto [first, last] = m_mapEnding.equal_range(KeyOf(entry->lId));
  const auto found = std::find_if(first, last, [&](const auto& ending) { return ending.second == entry; });
  if (found != last) m_mapEnding.erase(found);
}

int32_t CTimer::ChangeTimer(int32_t id, int32_t intervalMs) {
  CLockGuard guard(m_cs);
  const auto found = m_mapActive.find(KeyOf(id));
  if (found == m_mapActive.end()) return 0;
  Entry& entry = *found->second;
  if (!entry.hTimer->Cancel()) return 0;
  entry.lIntervalMs = intervalMs;
  entry.hTimer->Arm(Milliseconds{intervalMs}, Milliseconds{intervalMs});
  return 1;
}

void CTimer::KillTimer(int32_t id) {
  EntryPtr entry;
  {
    CLockGuard guard(m_cs);
    const auto found = m_mapActive.find(KeyOf(id));
    if (found == m_mapActive.end()) return;
    entry = found->second;
    m_mapActive.erase(found);
    m_mapEnding.emplace(KeyOf(id), entry);
  }
  entry->hStop->Set();
}

}  // namespace iorder
