// The worked numbers of docs/commands.md: each is read from the document and worked out again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/analytics/exact_price.h"
#include "tests/app/program_folder.h"

namespace iorder {
namespace {

using testing::HasSubstr;

std::vector<std::string> DocumentLines() {
  std::ifstream file(IORDER_DOCS "/commands.md");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

/// The number behind `name` in a text.
double NumberBehind(const std::string& text, const std::string& name) {
  const size_t at = text.find(name);
  EXPECT_NE(at, std::string::npos) << name;
  return at == std::string::npos ? 0 : std::stod(text.substr(at + name.size()));
}

TEST(PriceDocument, EveryCallShowsWhatTheProgramPrints) {
  const std::string indent = "    ";
  const std::string prompt = indent + "$ iorder price ";
  const std::vector<std::string> lines = DocumentLines();
  int calls = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (!lines[i].starts_with(prompt)) continue;
    std::string shown;
    for (size_t k = i + 1; lines[k].starts_with(indent) && !lines[k].starts_with(indent + "$"); ++k)
      shown += lines[k].substr(indent.size()) + '\n';
    EXPECT_EQ(CProgramFolder().Run("price " + lines[i].substr(prompt.size())).output, shown) << lines[i];
    ++calls;
  }
  EXPECT_EQ(calls, 3);
}

/// The worked order of the document.
class WorkedOrder : public testing::Test {
 protected:
  WorkedOrder() {
    for (const std::string& line : DocumentLines()) m_text += line + '\n';
    m_text.erase(0, m_text.find("**With numbers.**"));
    m_text.erase(m_text.find("### Stop"));
  }

  /// The nearest tick of the exchange's ladder, a tie going up.
  static double OnTick(double price) {
    const double tick = price < 10 ? 0.1 : price < 50 ? 0.5 : price < 500 ? 1 : 5;
    return std::floor(price / tick + 0.5) * tick;
  }

  std::string m_text;
};

TEST_F(WorkedOrder, TheMovedUnderlyingAndTheDaysAreThoseOfTheExample) {
  const double move = NumberBehind(m_text, "\"UnderlyingChange%\": ");
  EXPECT_NEAR(NumberBehind(m_text, "opened at ") * (1 - move / 100), NumberBehind(m_text, "--underlying "),
              1e-9);
  EXPECT_THAT(m_text, HasSubstr("= 17334.9."));
  EXPECT_NEAR(NumberBehind(m_text, "--days ") / NumberBehind(m_text, "--of "), 0.048, 1e-12);
  EXPECT_THAT(m_text, HasSubstr("12 of 250 days, 0.048 years"));
}

TEST_F(WorkedOrder, ThePricesAreThoseOfTheModelItsBandAndItsTicks) {
  const double up = NumberBehind(m_text, "\"PriceUp\": ");
  const double down = NumberBehind(m_text, "\"PriceDn\": ");
  const std::regex row("\\| (\\d+) \\| ([0-9.]+) \\| (\\w+) \\| ([0-9.]+|none) \\|");
  int rows = 0;
  for (std::sregex_iterator found(m_text.begin(), m_text.end(), row), end; found != end; ++found, ++rows) {
    const ExactOption option{.call = true,
                             .strike = std::stold((*found)[1]),
                             .underlying = 17510 * (1 - 0.01L),
                             .rate = 0.015L,
                             .rateTime = 12 / 250.0L,
                             .volatilityTime = 12 / 250.0L,
                             .b = 0,
                             .volatility = 0.09L};
    const auto price = static_cast<double>(option.Price());
    EXPECT_NEAR(price, std::stod((*found)[2]), 0.004) << found->str();
    const bool above = price > up;
    const bool below = price < down;
    EXPECT_EQ(above ? "above" : below ? "below" : "yes", (*found)[3].str()) << found->str();
    if (above || below) {
      EXPECT_EQ("none", (*found)[4].str()) << found->str();
    } else {
      EXPECT_EQ(OnTick(price), std::stod((*found)[4])) << found->str();
    }
  }
  EXPECT_EQ(rows, 5);
}

TEST_F(WorkedOrder, TheOrdersAreThoseOfTheDay) {
  const ProgramResult result =
      CProgramFolder().Run("replay '" IORDER_EXAMPLES "/days/calculated-price.day.jsonl'");
  ASSERT_EQ(result.exitCode, 0);
  const std::string shown = m_text.substr(m_text.find("    08:47:00.050  order"));
  std::istringstream lines(shown);
  int orders = 0;
  for (std::string line; std::getline(lines, line) && line != "    ..."; ++orders)
    EXPECT_THAT(result.output, HasSubstr("\n" + line.substr(4) + "\n"));
  EXPECT_EQ(orders, 3);
}

TEST_F(WorkedOrder, TheLotsCostWhatIsSaid) {
  EXPECT_EQ(NumberBehind(m_text, "the lots cost "), 26 * 50);
  EXPECT_EQ(NumberBehind(m_text, "the lots cost 1300 and "), 43.5 * 50);
  EXPECT_EQ(NumberBehind(m_text, "the orders cost "), (26 + 43.5) * 50);
}

}  // namespace
}  // namespace iorder
