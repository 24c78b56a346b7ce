#include "tests/checkers/message_checker.h"

#include <fmt/format.h>

#include <algorithm>

#include "tests/checkers/message_form.h"

namespace iorder::testing {
namespace {

constexpr std::string_view kAnnounced = "UpdateStatus. Status=";

/// YYYYMMDD and HHMMSS.
std::pair<int64_t, int64_t> DateAndTime(LocalTime at) {
  const DateTime time = ToDateTime(at);
  return {time.year * 10000LL + time.month * 100 + time.day,
          time.hour * 10000LL + time.minute * 100 + time.second};
}

}  // namespace

void CMessageChecker::OnStep(const TraceStep& step) {
  if (step.at != m_now) CheckSent(step);
  m_now = step.at;
  if (step.LineStarts(kAnnounced)) {
    OnAnnouncement(step);
  } else if (step.IsLog() && step.text.starts_with(std::string(kEnginePrefix) + "{\"StrategyType\"")) {
    OnTotal(step, step.text.substr(kEnginePrefix.size()));
  } else if (step.IsCommand(kScreenMessages) || step.IsCommand(kClientMessages)) {
    OnMessage(step);
  }
}

void CMessageChecker::OnAnnouncement(const TraceStep& step) {
  std::string text = step.line.substr(kAnnounced.size());
  if (text.ends_with('.')) text.pop_back();
  if (text.find("\"MsgType\":\"TotalProfit\"") != std::string::npos)
    Complain(step.at, "a strategy tells the total of a tag: " + text);
  Dues& dues = m_dues[step.thread];
  if (!dues.empty() && step.thread != "bus")
    Complain(step.at, "was announced and not sent: " + dues.front().text);
  dues.push_back({.text = text, .at = step.at, .screenIsDue = true});
  CheckForm(step, text);
}

void CMessageChecker::OnTotal(const TraceStep& step, const std::string& text) {
  m_dues[step.thread].push_back({.text = text, .at = step.at, .screenIsDue = false});
  CheckForm(step, text);
  try {
    const JsonNode message = ParseJson(text, {});
    std::string& last = m_totals[TextOf(message, "StrategyTag")];
    if (last == text) Complain(step.at, "a total is told again without a change: " + text);
    last = text;
  } catch (const InputError&) {
    // told by the check of its form
  }
}

void CMessageChecker::OnMessage(const TraceStep& step) {
  Dues& dues = m_dues[step.thread];
  const bool toScreen = step.topic == kScreenMessages;
  const auto due = std::find_if(dues.begin(), dues.end(), [&](const Announced& announced) {
    return announced.text == step.text && announced.screenIsDue == toScreen;
  });
  if (due == dues.end()) {
    Complain(step.at, fmt::format("{} on {} isn't what was announced", step.text, step.topic));
  } else if (toScreen) {
    due->screenIsDue = false;
  } else {
    dues.erase(due);
  }
  if (step.first != 1 || step.second != 1 || step.value != "OpenLottery")
    Complain(step.at,
             fmt::format("{} leaves with {}, {} and '{}'", step.text, step.first, step.second, step.value));
}

/// A thread that the end of the day cuts off leaves its message behind, so the last moment isn't looked at.
void CMessageChecker::CheckSent(const TraceStep& step) {
  for (auto& [thread, dues] : m_dues) {
    for (const Announced& due : dues) Complain(step.at, "was announced and not sent: " + due.text);
    dues.clear();
  }
}

void CMessageChecker::CheckForm(const TraceStep& step, const std::string& text) {
  try {
    const JsonNode message = step.message ? *step.message : ParseJson(text, {});
    if (const auto complaint = ComplaintAboutMessage(message)) Complain(step.at, text + " " + *complaint);
    if (const JsonNode* const body = message.Find("Data")) CheckMoment(step, *body);
  } catch (const InputError& error) {
    Complain(step.at, fmt::format("{} isn't JSON: {}", text, error.what()));
  }
}

void CMessageChecker::CheckMoment(const TraceStep& step, const JsonNode& body) {
  const auto [date, time] = DateAndTime(step.at);
  for (const auto& [dateKey, timeKey] : {std::pair{"Date", "Time"}, std::pair{"UpdateDate", "UpdateTime"}}) {
    if (body.Find(dateKey) == nullptr) continue;
    if (IntegerOf(body, dateKey) != date || IntegerOf(body, timeKey) != time)
      Complain(step.at, "a message is dated " + std::to_string(IntegerOf(body, dateKey)) + " " +
                            std::to_string(IntegerOf(body, timeKey)));
  }
}

}  // namespace iorder::testing
