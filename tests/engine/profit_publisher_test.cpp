#include "engine/profit_publisher.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/strategy/recording_engine.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;

/// A strategy that tells when it is asked for its profit.
class CAskedStrategy : public CStrategy {
 public:
  CAskedStrategy(IStrategyHost& host, std::function<void()> onAsked)
      : CStrategy(host), m_onAsked(std::move(onAsked)) {}
  void PublishProfit() override { m_onAsked(); }

 private:
  std::function<void()> m_onAsked;
};

class ProfitPublisher : public ReferenceTest {
 protected:
  CRecordingEngine m_engine{m_host};
};

TEST_F(ProfitPublisher, NoStrategyGoesWhileProfitIsTold) {
  Run([this] {
    CStrategyRegistry strategies(m_runtime);
    CProfitPublisher publisher(m_engine, strategies);
    std::vector<std::string> events;
    std::shared_ptr<IThread> other;
    const auto tell = [&] {
      events.emplace_back("told");
      if (other != nullptr) return;
      other = m_runtime.CreateThread(L"other", [&] {
        strategies.Retire(*strategies.FindByKey(L"second"));
        events.emplace_back("gone");
      });
      other->Resume();
      m_runtime.Sleep(Milliseconds(1));
    };
    for (const wchar_t* key : {L"first", L"second"}) {
      const auto strategy = std::make_shared<CAskedStrategy>(m_engine, tell);
      strategy->SetKey(key);
      strategies.Add(strategy, key);
    }
    publisher.Run();
    ASSERT_NE(other, nullptr);
    m_runtime.Wait(*other, std::nullopt);
    EXPECT_THAT(events, ElementsAre("told", "told", "gone"));
    strategies.DeleteAll();
  });
}

}  // namespace
}  // namespace iorder::testing
