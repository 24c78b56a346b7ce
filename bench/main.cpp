#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "bench/paths.h"

/// Usage: iorder_bench [REAL_DAY.day.jsonl]. Prints the table of ratios.
int main(int argumentCount, char** arguments) {
  using namespace iorder;
  constexpr int kRepeats = 9;
  try {
    const CBenchFolder folder;
    std::vector<Ratio> ratios;
    if (argumentCount > 1) {
      ratios.push_back(ReplayAgainstParse("one event of the real day", arguments[1], "ND.O.TWF.TX.202108",
                                          Answers::kNone, kRepeats));
      ratios.push_back(ReplayAgainstParse("the same, the week's chain, fills and profit", arguments[1],
                                          "ND.O.TWF.TX.HOT", Answers::kByTape, kRepeats));
    }
    const std::string made = MakeBenchDay(folder, "made", 140, 300000, 300);
    ratios.push_back(
        ReplayAgainstParse("one event of a made day", made, "ND.O.TWF.TX.202403", Answers::kNone, kRepeats));
    ratios.push_back(ManySymbolsAgainstFew(folder, kRepeats));
    ratios.push_back(QuoteAgainstLookup(folder, kRepeats));
    ratios.push_back(QuietSession(folder, kRepeats));
    ratios.push_back(BatchAgainstFormat(folder, kRepeats));
    ratios.push_back(ReportAgainstWrite(folder, kRepeats));
    for (Ratio& ratio : PricesAgainstQuantLib(kRepeats)) ratios.push_back(std::move(ratio));
    ratios.push_back(FiguresAgainstQuantLib(kRepeats));
    for (Ratio& ratio : ScansAgainstLookups(kRepeats)) ratios.push_back(std::move(ratio));
    ratios.push_back(GroupCommandAgainstDocument(kRepeats));
    ratios.push_back(ProfitPass("one quote valued, 100 strategies of 50 positions",
                                "10 strategies of 50 positions", {10, 50}, {100, 50}, kRepeats));
    ratios.push_back(ProfitPass("one quote valued, 100 strategies of 50 positions",
                                "100 strategies of 5 positions", {100, 5}, {100, 50}, kRepeats));
    std::fputs(FormatTable(ratios).c_str(), stdout);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
