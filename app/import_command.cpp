#include <fmt/format.h>

#include <iostream>
#include <memory>
#include <tuple>

#include "app/command_line.h"
#include "app/import/taifex_import.h"
#include "app/progress.h"

namespace iorder {
namespace {

struct Arguments {
  TaifexImportOptions options;
  std::string session = "day";
  std::string account = "B1/A1";
};

int Run(const Arguments& arguments) {
  TaifexImportOptions options = arguments.options;
  options.session = arguments.session == "day" ? TaifexSession::kDay : TaifexSession::kNight;
  std::tie(options.brokerId, options.account) = ReadAccount("--account", arguments.account);

  CStatusLine line;
  CProgress progress(line, "bytes", 0);
  options.progress = [&](uint64_t done, uint64_t total) {
    progress.Show(static_cast<double>(done),
                  total == 0 ? 0 : static_cast<double>(done) / static_cast<double>(total));
  };
  const TaifexImportResult result = ImportTaifex(options);
  line.Clear();
  std::cout << fmt::format("{}: {} option series, {} of them and {} futures traded, {} ticks in {}\n",
                           options.day.string(), result.listedOptions, result.tradedOptions,
                           result.tradedFutures, result.ticks, result.tickFile.string());
  return kDone;
}

}  // namespace

void AddImportCommand(CLI::App& program, Job& job) {
  CLI::App* const import = program.add_subcommand("import", "Make a day of an exchange's own trade files");
  import->require_subcommand(1);
  const auto arguments = std::make_shared<Arguments>();
  TaifexImportOptions& options = arguments->options;
  CLI::App* const command =
      import->add_subcommand("taifex", "One session of the index options and futures of Taiwan's exchange");
  command
      ->add_option("--options", options.optionsFile, "Trades of the options (TXO), .csv, .csv.gz or .csv.zst")
      ->required();
  command->add_option("--futures", options.futuresFile, "Trades of the futures (TX, weekly MTX)")->required();
  command->add_option("--series", options.seriesFile,
                      "The exchange's list of option series [the series that traded]");
  command->add_option("--session", arguments->session, "08:45 to 13:45, or 15:00 to 05:00")
      ->check(EitherWord("day", "night"))
      ->capture_default_str();
  command->add_option("--account", arguments->account, "BROKER/ACCOUNT that is connected")
      ->capture_default_str();
  command->add_option("--orders", options.fill, "How orders are filled [nobody answers orders]")
      ->check(FillWord());
  command
      ->add_option("--out", options.day,
                   "The day file to write, NAME.day.jsonl; its ticks go to NAME.ticks.csv beside it")
      ->required();
  command->footer(
      "The trade files are the exchange's daily downloads as they are (Big5), or tables with the columns\n"
      "  options: date,time,product,expiry,strike,right,price,qty_b_or_s\n"
      "  futures: date,time,product,expiry,price,qty_b_plus_s\n"
      "  series:  product,expiry,strike,right\n\n" +
      Examples("  iorder import taifex --options OptionsDaily_2021_07_26.csv --futures Daily_2021_07_26.csv "
               "--out real.day.jsonl"));
  command->callback([&job, arguments] { job = [arguments] { return Run(*arguments); }; });
}

}  // namespace iorder
