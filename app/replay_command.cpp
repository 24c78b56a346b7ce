#include <fmt/format.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include "app/command_line.h"
#include "app/day_tables.h"
#include "app/day_totals.h"
#include "app/file_roles.h"
#include "app/happening_json.h"
#include "app/happening_text.h"
#include "app/output_place.h"
#include "app/progress.h"
#include "app/replay_listener.h"
#include "app/run_day.h"
#include "app/time_text.h"
#include "platform/status_line.h"
#include "platform/ticker.h"
#include "terminal/day_file.h"
#include "terminal/input_error.h"
#include "terminal/input_file.h"
#include "terminal/trace_writer.h"

namespace iorder {
namespace {

namespace fs = std::filesystem;

constexpr Milliseconds kProgressPeriod{200};
constexpr const char* kStandardInput = "-";

struct Arguments {
  std::string day;
  std::vector<std::string> commands;
  std::string trace;
  std::string log;
  std::string tables;
  int64_t profitEvery = 60;
  bool inputs = false;
  bool json = false;
  RunArguments run;
};

/// "HH:MM" or "HH:MM:SS" as the time since midnight.
std::optional<Milliseconds> ReadTime(const std::string& text) {
  const std::optional<Milliseconds> time = ParseTimeOfDay(text);
  return time ? time : ParseTimeOfDay(text + ":00");
}

bool LooksLikeTime(const std::string& text) {
  return !text.empty() && text.find(':') != std::string::npos &&
         text.find_first_not_of("0123456789:.") == std::string::npos;
}

std::string ReadStream(std::istream& stream, const std::string& name) {
  std::ostringstream text;
  text << stream.rdbuf();
  if (stream.bad()) throw InputError(name + ": can't be read");
  return text.str();
}

std::string ReadCommandText(const std::string& file) {
  if (file == kStandardInput) return ReadStream(std::cin, "standard input");
  const std::unique_ptr<IInputFile> input = OpenInputFile(file);
  std::string text;
  char block[4096];
  while (const size_t size = input->Read(block, sizeof block)) text.append(block, size);
  return text;
}

/// A command as it is given: "FILE" or "FILE@TIME".
struct GivenCommand {
  std::string file;
  std::optional<Milliseconds> time;  ///< since midnight
};

GivenCommand ReadCommandArgument(const std::string& argument) {
  const size_t sign = argument.rfind('@');
  if (sign == std::string::npos || !LooksLikeTime(argument.substr(sign + 1))) return {argument, {}};
  const std::optional<Milliseconds> time = ReadTime(argument.substr(sign + 1));
  if (!time) {
    throw InputError(
        fmt::format("--command: '{}', expected FILE@HH:MM or FILE@HH:MM:SS, up to 23:59:59", argument));
  }
  return {argument.substr(0, sign), time};
}

/// When a command of this time of day comes. Only a day that says when it ends is known to go on past
/// midnight.
LocalTime TimeInDay(const DayHead& head, Milliseconds time, const std::string& argument) {
  LocalTime at = DateOf(head.start) + time;
  if (at < head.start && !head.end) {
    throw InputError(fmt::format(
        "--command: '{}' comes before the day, expected a time from {}, or a day with an 'end' on "
        "the next date",
        argument, TimeText(head.start).substr(11)));
  }
  if (at < head.start) at += std::chrono::days(1);
  if (head.end && at > *head.end) {
    throw InputError(fmt::format("--command: '{}' lies outside the day, expected a time from {} to {}",
                                 argument, TimeText(head.start).substr(11), TimeText(*head.end).substr(11)));
  }
  return at;
}

/// Puts a command into the day. The engine reads its text, whatever it is.
void AddCommand(Day& day, const std::string& argument) {
  const GivenCommand command = ReadCommandArgument(argument);
  std::optional<LocalTime> at;
  if (command.time) at = TimeInDay(day.head, *command.time, argument);
  InsertCommand(day, ReadCommandText(command.file), at);
}

/// The trace file of a run, in its place.
struct TraceFile {
  TraceFile(const std::string& path, bool inputs) : place(path), writer(place.Path(), inputs) {}

  void Commit() {
    try {
      writer.Close();
    } catch (const InputError& error) {
      throw InputError(place.Named(error.what()));
    }
    place.Commit();
  }

  COutputPlace place;
  CTraceWriter writer;
};

/// Prints happenings, so that who reads on sees each line as it happens. As JSON all of them; in words what
/// changes with each quote, profit and totals, at most once in so many seconds for each position and tag.
class CPrinter {
 public:
  CPrinter(bool json, int64_t profitEvery) : m_json(json), m_profitEvery(profitEvery * 1000) {}

  void Print(const std::string& at, const Happening& happening) {
    if (m_json) {
      std::cout << Json(at, happening) << std::endl;
    } else if (IsWanted(at, happening)) {
      // The time of day is enough for a reader.
      std::cout << at.substr(11) << "  " << Words(happening) << std::endl;
    }
  }

 private:
  bool IsWanted(const std::string& at, const Happening& happening) {
    if (std::holds_alternative<WeightKnown>(happening)) return false;
    if (const auto* valued = std::get_if<PositionValued>(&happening))
      return IsDue(at, valued->strategy + ' ' + valued->symbol);
    if (const auto* total = std::get_if<TagTotalChanged>(&happening)) return IsDue(at, total->tag);
    return true;
  }
  bool IsDue(const std::string& at, const std::string& what) {
    const std::optional<LocalTime> now = ParseLocalTime(at);
    if (!now) return true;
    const auto [last, isNew] = m_lastTold.try_emplace(what, *now);
    if (!isNew && (*now - last->second).count() < m_profitEvery) return false;
    last->second = *now;
    return true;
  }

  const bool m_json;
  const int64_t m_profitEvery;  ///< ms
  std::map<std::string, LocalTime> m_lastTold;
};

void PrintTotals(bool json, const CDayTotals& totals, const std::vector<std::string>& errors) {
  if (json) {
    std::cout << totals.Json(errors) << '\n';
  } else {
    std::cout << '\n' << totals.Table();
  }
}

/// Runs the day; who watches sees how far it is.
std::vector<std::string> RunWatched(CDayRun& run, const CDayClock& clock, CStatusLine& status) {
  if (!status.IsWatched()) return run.Run();
  CProgress progress(status, "ticks", 0);
  const CTicker ticker(kProgressPeriod,
                       [&] { progress.Show(static_cast<double>(run.RowsPlayed()), clock.Share()); });
  return run.Run();
}

/// A run must not write over what it reads, nor two things into one file.
void RefuseSameFiles(const Arguments& arguments, const Day& day) {
  CFileRoles files;
  files.Reads(arguments.day, "the day");
  for (const DayLine& line : day.lines) {
    if (const auto* ticks = std::get_if<TicksAction>(&line.action))
      files.Reads(ticks->path, "a tick file of the day");
  }
  for (const std::string& command : arguments.commands) {
    const std::string file = ReadCommandArgument(command).file;
    if (file != kStandardInput) files.Reads(file, "a command");
  }
  files.Writes(arguments.trace, "the trace");
  files.Writes(arguments.log, "the log");
  if (arguments.tables.empty()) return;
  files.Writes(arguments.tables, "the folder of tables");
  for (const fs::path& table : TableFiles(arguments.tables)) files.Writes(table, "a table");
}

int Run(const Arguments& arguments) {
  Day day = ReadDayFile(arguments.day);
  RefuseSameFiles(arguments, day);
  for (const std::string& command : arguments.commands) AddCommand(day, command);

  CStatusLine status;
  CDayTotals totals;
  std::optional<CDayTables> tables;
  if (!arguments.tables.empty()) tables.emplace(arguments.tables);
  CPrinter printer(arguments.json, arguments.profitEvery);
  CHappeningListener happenings([&](const std::string& at, const Happening& happening) {
    totals.Add(happening);
    if (tables) tables->Add(at, happening);
    status.Above([&] { printer.Print(at, happening); });
  });
  CDayClock clock(day);
  std::optional<TraceFile> trace;
  std::optional<CLogWriter> log;
  std::vector<ITerminalListener*> listeners = {&happenings, &clock};
  if (!arguments.trace.empty()) listeners.push_back(&trace.emplace(arguments.trace, arguments.inputs).writer);
  if (!arguments.log.empty()) listeners.push_back(&log.emplace(arguments.log));

  CDayRun run(day, OptionsOf(arguments.run), listeners);
  run.WatchGroupOrders(happenings);
  const std::vector<std::string> errors = RunWatched(run, clock, status);
  status.Clear();
  if (trace) trace->Commit();
  if (log) log->Commit();
  if (tables) tables->Commit();

  PrintTotals(arguments.json, totals, errors);
  for (const std::string& error : errors) std::cerr << "iorder: " << arguments.day << ": " << error << '\n';
  return errors.empty() ? kDone : kWrong;
}

}  // namespace

void AddReplayCommand(CLI::App& program, Job& job) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* const command =
      program.add_subcommand("replay", "Run a day through the engine and print what it orders");
  command->add_option("DAY", arguments->day, "The day file")->required();
  command
      ->add_option(
          "--command", arguments->commands,
          "An order command to give: FILE[@HH:MM[:SS]], local time; without a time at the start, once "
          "the engine is open. - is the standard input. May be given several times")
      ->type_name("FILE[@TIME]")
      ->allow_extra_args(false);
  CLI::Option* const trace = command
                                 ->add_option("--trace", arguments->trace,
                                              "Write a trace of all events, packed if it ends in .gz or .zst")
                                 ->type_name("FILE")
                                 ->check(Name("a file"));
  command->add_flag("--inputs", arguments->inputs, "Let the trace show what the terminal did too")
      ->needs(trace);
  command->add_option("--log", arguments->log, "Write the lines of the engine's log")
      ->type_name("FILE")
      ->check(Name("a file"));
  command
      ->add_option("--csv", arguments->tables,
                   "Write orders, fills, positions, the profit curve, and the cycles, legs and children of "
                   "group orders as tables into this folder")
      ->type_name("DIR")
      ->check(Name("a folder"));
  command
      ->add_option("--profit-every", arguments->profitEvery,
                   "Print profit and totals at most once in so many seconds of the day; 0: each change")
      ->type_name("SECONDS")
      ->check(WholeNumber(0, 86400))
      ->capture_default_str();
  command->add_flag("--json", arguments->json, "Print one JSON object a line, and a closing one");
  AddRunOptions(*command, arguments->run);
  command
      ->add_option(
          "--seed", arguments->run.seed,
          "Order of the threads in virtual time, in place of the day's seed; answers of the terminal are "
          "still drawn from that")
      ->type_name("N")
      ->check(WholeNumber(0, INT64_MAX));
  command->footer(Examples(
      "  iorder replay examples/days/five-strikes.day.jsonl\n"
      "  iorder replay made-1.day.jsonl --command examples/commands/calls-in-a-band.json --trace "
      "x.trace.jsonl\n"
      "  iorder replay made-1.day.jsonl --command buy.json@08:40 --command stop.json@10:30:00 --json\n"
      "  iorder replay made-1.day.jsonl --command buy.json@08:50 --csv tables --profit-every 600\n"
      "  iorder replay made-1.day.jsonl --command - --clock native --speed 60 < buy.json"));
  command->callback([&job, arguments] { job = [arguments] { return Run(*arguments); }; });
}

}  // namespace iorder
