#include "tests/checkers/recorded_day.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "terminal/day_file.h"
#include "tests/checkers/checked_run.h"

namespace iorder::testing {

class CStepRecorder : public IRunListener {
 public:
  explicit CStepRecorder(std::vector<CRecordedDay::Recorded>& steps) : m_steps(steps) {}
  void OnStep(const TraceStep& step) override { m_steps.push_back({step, std::nullopt}); }
  void OnRead(const BusRead& read) override { m_steps.push_back({{}, read}); }

 private:
  std::vector<CRecordedDay::Recorded>& m_steps;
};

namespace {

bool ReplaceIn(std::string& text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  if (at == std::string::npos) return false;
  text.replace(at, from.size(), to);
  return true;
}

/// What a line of the log announces, and what is then sent as it stands.
std::string SentText(const std::string& line) {
  for (const std::string_view announcement : {"UpdateStatus. Status=", "NewOrder. ", "CancelOrder. "}) {
    if (line.starts_with(announcement))
      return line.substr(announcement.size(), line.size() - announcement.size() - 1);
  }
  return {};
}

}  // namespace

CRecordedDay::CRecordedDay(const std::string& lines, const std::string& head) {
  m_day = ReadDayFile(m_folder->Write(
      "a.day.jsonl",
      "{\"day\": {\"start\": \"2024-03-04T09:59:50\", \"subscriptions\": \"open\"" + head + "}}\n" + lines));
  CStepRecorder recorder(m_steps);
  CCheckedRun run(m_day, std::nullopt, recorder);
  EXPECT_EQ(std::vector<std::string>(), run.Run());
}

size_t CRecordedDay::Find(const std::string& where) const {
  const auto found = std::find_if(m_steps.begin(), m_steps.end(), [&](const Recorded& step) {
    return step.text.find(where) != std::string::npos;
  });
  if (found == m_steps.end()) {
    ADD_FAILURE() << "no event has '" << where << "'";
    return 0;
  }
  return static_cast<size_t>(found - m_steps.begin());
}

CRecordedDay& CRecordedDay::Change(const std::string& where, const std::string& from, const std::string& to) {
  const size_t first = Find(where);
  const std::string message = SentText(m_steps[first].line);
  EXPECT_TRUE(ReplaceIn(m_steps[first].text, from, to)) << "no '" << from << "' in " << m_steps[first].text;
  ReadText(m_steps[first]);
  for (size_t i = first + 1; !message.empty() && i < m_steps.size() && m_steps[i].at == m_steps[first].at;
       ++i) {
    if (m_steps[i].text == message) ReplaceIn(m_steps[i].text, from, to);
  }
  return *this;
}

CRecordedDay& CRecordedDay::Drop(const std::string& where, bool all) {
  size_t at = Find(where);
  do {
    m_steps.erase(m_steps.begin() + static_cast<std::ptrdiff_t>(at));
    if (!all || !Has(where)) break;
    at = Find(where);
  } while (true);
  return *this;
}

CRecordedDay& CRecordedDay::Repeat(const std::string& where) {
  const size_t at = Find(where);
  const Recorded step = m_steps[at];
  m_steps.insert(m_steps.begin() + static_cast<std::ptrdiff_t>(at), step);
  return *this;
}

CRecordedDay& CRecordedDay::Move(const std::string& where, const std::string& behind) {
  const size_t at = Find(where);
  Recorded step = m_steps[at];
  m_steps.erase(m_steps.begin() + static_cast<std::ptrdiff_t>(at));
  const size_t target = Find(behind);
  step.at = m_steps[target].at;
  m_steps.insert(m_steps.begin() + static_cast<std::ptrdiff_t>(target) + 1, step);
  return *this;
}

CRecordedDay& CRecordedDay::OnThread(const std::string& where, const std::string& thread) {
  m_steps[Find(where)].thread = thread;
  return *this;
}

CRecordedDay& CRecordedDay::ChangeRead(const std::string& record, const std::string& name,
                                       const Value& value) {
  const auto found = std::find_if(m_steps.begin(), m_steps.end(), [&](const Recorded& step) {
    return step.read && step.read->record.starts_with(record) && step.read->name == name;
  });
  if (found == m_steps.end()) {
    ADD_FAILURE() << "nothing reads '" << name << "' of " << record;
  } else {
    found->read->value = value;
  }
  return *this;
}

CRecordedDay& CRecordedDay::DropThread(const std::string& thread) {
  const size_t dropped = std::erase_if(
      m_steps, [&](const Recorded& step) { return (step.read ? step.read->thread : step.thread) == thread; });
  EXPECT_GT(dropped, 0U) << "nothing happens on " << thread;
  return *this;
}

CRecordedDay& CRecordedDay::MoveThread(const std::string& from, const std::string& to) {
  for (Recorded& step : m_steps) {
    std::string& thread = step.read ? step.read->thread : step.thread;
    if (thread == from) thread = to;
  }
  return *this;
}

CRecordedDay& CRecordedDay::DropRead(const std::string& record, BusRead::Kind kind) {
  const auto found = std::find_if(m_steps.begin(), m_steps.end(), [&](const Recorded& step) {
    return step.read && step.read->kind == kind && step.read->record.starts_with(record);
  });
  if (found == m_steps.end()) {
    ADD_FAILURE() << "nothing of that kind is read";
  } else {
    m_steps.erase(found);
  }
  return *this;
}

std::vector<std::string> CRecordedDay::Texts(const std::string& where) const {
  std::vector<std::string> texts;
  for (const Recorded& step : m_steps) {
    if (step.text.find(where) != std::string::npos) texts.push_back(step.text);
  }
  return texts;
}

bool CRecordedDay::Has(const std::string& text) const {
  return std::any_of(m_steps.begin(), m_steps.end(),
                     [&](const Recorded& step) { return step.text.find(text) != std::string::npos; });
}

Violations CRecordedDay::Check() const {
  CCheckers checkers(m_day);
  for (const Recorded& step : m_steps) {
    if (step.read) {
      checkers.OnRead(*step.read);
    } else {
      checkers.OnStep(step);
    }
  }
  return checkers.Finish();
}

std::set<std::string> CRecordedDay::BrokenRules() const {
  std::set<std::string> rules;
  for (const Violation& violation : Check()) rules.insert(violation.rule);
  return rules;
}

std::string CRecordedDay::Report() const {
  std::string report;
  for (const Violation& violation : Check()) report += violation.rule + ": " + violation.what + "\n";
  return report;
}

}  // namespace iorder::testing
