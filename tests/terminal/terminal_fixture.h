#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/virtual/virtual_runtime.h"
#include "terminal/day_file.h"
#include "terminal/embedded_terminal.h"
#include "terminal/trace_writer.h"
#include "tests/terminal/day_folder.h"
#include "tests/terminal/recording_engine.h"

namespace iorder::testing {

/// A day that is played in virtual time to a recording engine.
class CPlayedDay {
 public:
  /// `lines` follow the head; `head` are further members of it, with a comma before them.
  explicit CPlayedDay(const std::string& lines, const std::string& head = "") {
    day = ReadDayFile(
        folder.Write("a.day.jsonl", "{\"day\": {\"start\": \"2024-03-04T08:40:00\"" + head + "}}\n" + lines));
    Make();
  }
  CPlayedDay(CDayFolder&& files, const std::string& name) : folder(std::move(files)) {
    day = ReadDayFile(folder.Path(name));
    Make();
  }

  void Play() {
    problems = runtime->Run([this] { terminal->Play(engine); });
  }

  /// The local time now, "08:45:00.000".
  std::string Clock() { return ToText(ToLocalTime(runtime->LocalTime())).substr(11); }

  std::shared_ptr<IBusObject> Open(const std::wstring& name) {
    return terminal->GetWorld().bus.Resolve(terminal->Events().OpenRecord(name).value_or(0));
  }

  CDayFolder folder;
  Day day;
  std::unique_ptr<CVirtualRuntime> runtime;
  std::unique_ptr<CEmbeddedTerminal> terminal;
  CTraceText trace{true};
  CRecordingEngine engine;
  std::vector<std::string> problems;

 private:
  void Make() {
    VirtualRuntimeOptions options;
    options.zone = day.head.timezone;
    options.start = ToDateTime(day.head.start);
    options.seed = day.head.seed;
    runtime = std::make_unique<CVirtualRuntime>(options);
    terminal = std::make_unique<CEmbeddedTerminal>(*runtime, day);
    terminal->AddListener(trace);
  }
};

}  // namespace iorder::testing
