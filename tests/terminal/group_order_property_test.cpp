#include <gmock/gmock.h>

#include <cstdlib>
#include <map>
#include <optional>

#include "platform/text.h"
#include "records/number_text.h"
#include "terminal/child_records.h"
#include "terminal/strategy_positions.h"
#include "tests/terminal/drawn_order_day.h"
#include "tests/terminal/terminal_fixture.h"

/// Drawn days whose orders are sent as plain orders and as group orders: the market treats both alike.
namespace iorder::testing {
namespace {

constexpr const wchar_t* kStrategy = L"S1";

/// How an order stands at the end of the day, or how its child does.
struct Standing {
  Value execType;
  Value filled;
  Value leaves;
  Value average;
  Value text;

  friend bool operator==(const Standing&, const Standing&) = default;
};

/// A drawn day without its cancels. What is sent has `pairs` in front, which win.
class CDrawnGroupRun {
 public:
  CDrawnGroupRun(const DrawnOrderDay& drawn, const std::wstring& pairs)
      : m_day(drawn.lines, drawn.Head() + ", \"seed\": 3") {
    m_day.engine.onMessage = [this, pairs](const std::wstring& topic, const std::wstring& text,
                                           const Value& value) {
      if (topic == kChildTopic) {
        Note(Int32Or(value, 0));
      } else if (text.starts_with(L"NEW ")) {
        m_day.terminal->Events().Command(L"TRADE.NEWORDER", 1, 2, pairs + text.substr(4), {});
      }
    };
    m_day.Play();
    EXPECT_THAT(m_day.problems, ::testing::IsEmpty());
    EXPECT_EQ(std::nullopt, m_day.terminal->Error());
  }

  Standing Plain(size_t order) {
    const auto node = Resolve(m_day.Open(kOrderSet)->GetValue(read_code::kNode, static_cast<int32_t>(order)));
    return node != nullptr ? StandingOf(*node) : Standing();
  }
  Standing Child(size_t order) {
    const auto child = m_children.find(ChildKey(static_cast<int32_t>(order) + 1));
    return child != m_children.end() ? StandingOf(*child->second) : Standing();
  }
  /// The signed lots of a symbol.
  int64_t Position(const std::string& symbol) {
    const auto node = Resolve(m_day.Open(kStrategyPosition)->GetValue(read_code::kNodeByName, kStrategy));
    const auto item =
        node != nullptr ? Resolve(node->GetValue(read_code::kItemByName, ToWide(symbol))) : nullptr;
    if (item == nullptr) return 0;
    const int64_t lots = Int32Or(item->GetValue(read_code::kField, L"Quantity"), -1);
    return item->GetValue(read_code::kField, L"Side") == Value(2) ? -lots : lots;
  }

 private:
  std::shared_ptr<IBusObject> Resolve(const Value& handle) {
    return m_day.terminal->GetWorld().bus.Resolve(Int32Or(handle, 0));
  }

  void Note(int32_t handle) {
    const auto child = Resolve(handle);
    ASSERT_NE(nullptr, child);
    const Value key = child->GetValue(read_code::kField, L"LevelKey");
    m_children.emplace(std::get<std::wstring>(key), child);
  }

  static Standing StandingOf(IBusObject& record) {
    const auto field = [&](const wchar_t* name) { return record.GetValue(read_code::kField, name); };
    return {field(L"ExecType"), field(L"CumQty"), field(L"LeavesQty"), field(L"AvgPrice"), field(L"Text")};
  }

  std::map<std::wstring, std::shared_ptr<IBusObject>> m_children;
  CPlayedDay m_day;
};

/// What the children of a symbol have filled, signed.
int64_t FilledOf(const DrawnOrderDay& day, CDrawnGroupRun& run, int symbol) {
  int64_t lots = 0;
  for (size_t i = 0; i < day.orders.size(); ++i) {
    if (day.orders[i].symbol != symbol) continue;
    const int64_t filled = Int32Or(run.Child(i).filled, 0);
    lots += day.orders[i].isBuy ? filled : -filled;
  }
  return lots;
}

const std::wstring kAsChild = L"SYNTHETIC=1,STRATEGY=S1,";

TEST(GroupOrderProperties, AChildEndsAsAPlainOrderWouldAndThePositionIsTheSumOfTheFills) {
  int64_t fills = 0;
  for (uint64_t seed = 1; seed <= 30; ++seed) {
    for (const char* const ways : {"", R"(, "late_ms": 300, "repeat": 0.4)", R"(, "reject": 0.3)"}) {
      SCOPED_TRACE(std::to_string(seed) + ways);
      const DrawnOrderDay day = DrawOrderDay(seed, ways);
      CDrawnGroupRun plain(day, L"");
      CDrawnGroupRun group(day, kAsChild);
      for (size_t i = 0; i < day.orders.size(); ++i) {
        EXPECT_EQ(plain.Plain(i), group.Child(i)) << "order " << i + 1;
        EXPECT_EQ(Standing(), group.Plain(i));
        fills += Int32Or(group.Child(i).filled, 0) > 0 ? 1 : 0;
      }
      for (int symbol = 0; symbol < 2; ++symbol) {
        EXPECT_EQ(FilledOf(day, group, symbol), group.Position(DrawnSymbol(symbol)));
      }
    }
  }
  EXPECT_GT(fills, 1000);
}

TEST(GroupOrderProperties, WhatIsLostOrHeldBackIsStillHeld) {
  for (uint64_t seed = 1; seed <= 10; ++seed) {
    const DrawnOrderDay day = DrawOrderDay(seed, "");
    CDrawnGroupRun all(day, kAsChild);
    for (
        const char* const ways :
        {R"(, "lost_child": 0.5)", R"(, "late_child": 0.5)", R"(, "lost_end": 0.5)",
         R"(, "lost_child": 0.2, "late_child": 0.2, "lost_end": 0.2, "late_ms": 900, "out_of_order": true)"}) {
      SCOPED_TRACE(std::to_string(seed) + ways);
      DrawnOrderDay lossy = day;
      lossy.ways = ways;
      CDrawnGroupRun some(lossy, kAsChild);
      for (int symbol = 0; symbol < 2; ++symbol) {
        EXPECT_EQ(all.Position(DrawnSymbol(symbol)), some.Position(DrawnSymbol(symbol)));
      }
    }
  }
}

TEST(GroupOrderProperties, AChaseIsFilledOnceTheMarketHasAPrice) {
  for (uint64_t seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE(seed);
    const DrawnOrderDay day = DrawOrderDay(seed, "");
    CDrawnGroupRun run(day, L"ORDERTYPE=10,TIMEINFORCE=1,CHASEPRICE=0|2|150|C|2," + kAsChild);
    for (size_t i = 0; i < day.orders.size(); ++i) {
      const Standing child = run.Child(i);
      EXPECT_EQ(Value(3), child.execType) << "order " << i + 1;
      EXPECT_EQ(Value(static_cast<int32_t>(day.orders[i].lots)), child.filled);
      EXPECT_EQ(Value(0), child.leaves);
    }
    for (int symbol = 0; symbol < 2; ++symbol) {
      EXPECT_EQ(FilledOf(day, run, symbol), run.Position(DrawnSymbol(symbol)));
    }
  }
}

TEST(GroupOrderProperties, AFailedChildFillsNothingAndTheOthersAsEver) {
  int failed = 0;
  for (uint64_t seed = 1; seed <= 10; ++seed) {
    const DrawnOrderDay day = DrawOrderDay(seed, R"(, "failed_child": 0.3)");
    CDrawnGroupRun run(day, kAsChild);
    for (size_t i = 0; i < day.orders.size(); ++i) {
      const Standing child = run.Child(i);
      const bool isFailed = child.execType == Value(5) || (child.execType == Value(8) && day.orders[i].works);
      failed += isFailed ? 1 : 0;
      if (isFailed) {
        EXPECT_EQ(Value(0), child.filled) << "order " << i + 1;
      }
    }
    for (int symbol = 0; symbol < 2; ++symbol) {
      EXPECT_EQ(FilledOf(day, run, symbol), run.Position(DrawnSymbol(symbol)));
    }
  }
  EXPECT_GT(failed, 50);
}

}  // namespace
}  // namespace iorder::testing
