#pragma once

#include <optional>
#include <string>
#include <vector>

#include "bench/bench_day.h"
#include "bench/ratio.h"

/// The engine's paths that matter, each against a baseline that is measured in the same run.
namespace iorder {

/// Whether orders are only listed, or filled as the tape says, and then valued.
enum class Answers { kNone, kByTape };
/// A whole day in virtual time, against a bare parse of its tick file.
Ratio ReplayAgainstParse(const std::string& name, const std::string& dayPath, const std::string& chain,
                         Answers answers, int repeats);
/// One event of a day with many symbols, against one of a day with few.
Ratio ManySymbolsAgainstFew(const CBenchFolder& folder, int repeats);
/// One update of a judged option through bus, handle, strategy and verdict, against one hash look-up of its
/// symbol.
Ratio QuoteAgainstLookup(const CBenchFolder& folder, int repeats);
/// Five hours with nothing to do, against 20 ms.
Ratio QuietSession(const CBenchFolder& folder, int repeats);
/// A batch over 100 symbols, against swprintf of its order strings.
Ratio BatchAgainstFormat(const CBenchFolder& folder, int repeats);

/// One order report (position, two status messages, log lines) with a sink that counts, against write(2) of a
/// line.
Ratio ReportAgainstWrite(const CBenchFolder& folder, int repeats);

/// The theoretical prices of a chain of 200 after its underlying moved, together and one by one, against
/// QuantLib's two ways.
std::vector<Ratio> PricesAgainstQuantLib(int repeats);

/// The figures of a chain of 400 after its underlying moved, volatilities kept, against QuantLib's engine,
/// which gives no vanna.
Ratio FiguresAgainstQuantLib(int repeats);
/// One look of a leg at an option, the opening of the record included, in a scan of four legs over 400 calls;
/// against one hash look-up of a record's name.
std::vector<Ratio> ScansAgainstLookups(int repeats);
/// A group order's command from its text to its order strings, over a chain of one option, against building
/// the document alone.
Ratio GroupCommandAgainstDocument(int repeats);

/// Strategies of ten tags, each of which holds so many positions.
struct BookSize {
  int strategies = 0;
  int positions = 0;
};
/// One quote through the profit monitor, of a large book against one of a small book.
Ratio ProfitPass(const std::string& name, const std::string& baseline, BookSize small, BookSize large,
                 int repeats);

}  // namespace iorder
