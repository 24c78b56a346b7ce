#include "tests/checkers/strategy_book.h"

#include <algorithm>
#include <charconv>

#include "tests/checkers/checker.h"

namespace iorder::testing {
namespace {

constexpr std::string_view kTakenUp = "<CIntelligentOrder>New Intelligent Order : ";
constexpr std::string_view kStarted = "<CIntelligentOrder>[OpenLottery] Start. ";
constexpr std::string_view kRunBegins = "TimeStamp=";
constexpr int32_t kStop = 0;
constexpr int32_t kDelete = 2;
constexpr int32_t kLastKnownAction = 3;

uint32_t StartedNumber(const std::string& line) {
  const std::string text = FieldText(line, "pStrategy").value_or("");
  uint32_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return number;
}

}  // namespace

void CStrategyBook::OnStep(const TraceStep& step) {
  if (!step.IsLog()) return;
  if (step.text.starts_with(kTakenUp)) {
    OnCommand(step.text.substr(kTakenUp.size()), step.at);
  } else if (step.text.starts_with(kStarted)) {
    const uint32_t number = StartedNumber(step.text);
    if (number == 0) return;  // a repeated start changes nothing
    KnownStrategy& strategy = m_strategies[number];
    strategy.number = number;
    ReadOrderInfo(m_command, strategy.info);
  }
  const auto found = m_strategies.find(step.strategy);
  if (found == m_strategies.end()) return;
  if (m_commandGoesOn && step.thread == kCommandThread) {
    ReadOrderInfo(m_command, found->second.info);
    found->second.changedAt = step.at;
    m_commandGoesOn = false;
  }
  if (step.LineStarts(kRunBegins)) found->second.run = FieldText(step.line, "TimeStamp").value_or("");
  if (step.line == "DelStrategy." && !found->second.goneAt) found->second.goneAt = step.at;
}

void CStrategyBook::OnCommand(const std::string& text, LocalTime at) {
  m_commandGoesOn = false;
  try {
    m_command = ParseJson(text, {});
  } catch (const InputError&) {
    m_command = {};
  }
  if (TextOf(m_command, "StrategyType") != "OpenLottery") return;
  const int32_t action = ActionOf(m_command);
  if (action == kStop) Stop(m_command, at);
  if (action == kDelete) Delete(KeyOf(m_command), at);
  m_commandGoesOn = action < 0 || action > kLastKnownAction;
}

/// A second stop may find the first one's work not yet done.
void CStrategyBook::Stop(const JsonNode& command, LocalTime at) {
  for (auto& [number, strategy] : m_strategies) {
    // One that is on its way out still takes the flags, and its work may yet go by them.
    const bool isGone = strategy.goneAt && at - *strategy.goneAt > kLongestWait;
    if (isGone || strategy.info.key != KeyOf(command)) continue;
    strategy.stopIsUnclear = at - strategy.stoppedAt <= kLongestWait;
    strategy.stoppedAt = at;
    const JsonNode* const flags = command.Find("ManuStop");
    if (flags == nullptr || !flags->IsObject()) continue;
    strategy.stopCancels = WholeOf(*flags, "Cancel", INT32_MIN, INT32_MAX).value_or(0) == 1;
    strategy.stopCloses = WholeOf(*flags, "ClosePos", INT32_MIN, INT32_MAX).value_or(0) == 1;
  }
}

/// A key that nobody has means the strategy that was started last.
void CStrategyBook::Delete(const std::string& key, LocalTime at) {
  KnownStrategy* last = nullptr;
  for (auto& [number, strategy] : m_strategies) {
    if (strategy.goneAt) continue;
    last = &strategy;
    if (strategy.info.key == key) break;
  }
  if (last != nullptr) last->goneAt = at;
}

const KnownStrategy* CStrategyBook::Find(uint32_t number) const {
  const auto found = m_strategies.find(number);
  return found == m_strategies.end() ? nullptr : &found->second;
}

const KnownStrategy* CStrategyBook::FindKey(const std::string& key) const {
  const KnownStrategy* last = nullptr;
  for (const auto& [number, strategy] : m_strategies) {
    const bool isBetter = last == nullptr || last->goneAt || !strategy.goneAt;
    if (strategy.info.key == key && isBetter) last = &strategy;
  }
  return last;
}

bool CStrategyBook::HasChanged(LocalTime at) const {
  return std::any_of(m_strategies.begin(), m_strategies.end(),
                     [at](const auto& strategy) { return strategy.second.changedAt == at; });
}

std::vector<const KnownStrategy*> CStrategyBook::OfTag(const std::string& tag, LocalTime at) const {
  std::vector<const KnownStrategy*> all;
  for (const auto& [number, strategy] : m_strategies) {
    const bool isThere = !strategy.goneAt || at - *strategy.goneAt <= kLongestWait;
    if (isThere && strategy.info.tag == tag) all.push_back(&strategy);
  }
  return all;
}

}  // namespace iorder::testing
