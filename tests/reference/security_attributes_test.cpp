#include "reference/security_attributes.h"

#include <gmock/gmock.h>

#include <limits>

#include "records/json_document.h"
#include "tests/reference/reference_fixture.h"

namespace iorder::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const wchar_t* kOption = L"ND.O.TWF.TX.202403.C.18000";
constexpr const wchar_t* kExchange = L"ND.O.TWF";
constexpr const wchar_t* kProduct = L"ND.O.TWF.TX";

class SecurityAttributes : public ReferenceTest {
 protected:
  /// The exchange's item with a text for the product and one for the exchange itself.
  void Fill(const std::wstring& product, const std::wstring& exchange = L"") {
    RecordChange item;
    item.name = kExchange;
    if (!product.empty()) item.fields.push_back(Field(kProduct, product));
    if (!exchange.empty()) item.fields.push_back(Field(kExchange, exchange));
    RecordChange record;
    record.name = L"Security.Info";
    record.items = {item};
    m_bus.Apply(record);
  }

  void WithAttributes(const std::function<void(CSecurityAttributes& attributes)>& body) {
    Run([&] {
      CSecurityAttributes attributes(m_host);
      attributes.SetRecord(m_host.OpenRecord(L"Security.Info", nullptr));
      body(attributes);
    });
  }

  void AnswerWith(const char* json, const Value& reply) {
    m_host.answer = [json, reply](const Request&, AnswerDocument* document) {
      if (document != nullptr) ParseJson(json, *document);
      return reply;
    };
  }

  static std::wstring Line(const std::wstring& attribute, const std::wstring& result) {
    return L"GetStringFromSecurity. SymbolID=ND.O.TWF.TX, strMapKey=" + std::wstring(kOption) + L":" +
           attribute + L", strResult=" + result + L".";
  }
};

TEST_F(SecurityAttributes, WithoutTheRecordTheAnswerIsEmptyAndNothingIsKept) {
  Run([this] {
    CSecurityAttributes attributes(m_host);
    EXPECT_EQ(L"", attributes.GetStringFromSecurity(kOption, L"Weight"));
    EXPECT_THAT(m_host.log, IsEmpty());
    EXPECT_THAT(m_host.requests, IsEmpty());
    Fill(LR"({"Weight":"50"})");
    attributes.SetRecord(m_host.OpenRecord(L"Security.Info", nullptr));
    EXPECT_EQ(L"50", attributes.GetStringFromSecurity(kOption, L"Weight"));
  });
}

TEST_F(SecurityAttributes, TheProductsOwnTextComesFirst) {
  Fill(LR"({"Weight":"50","Name":"product"})", LR"({"Name":"exchange"})");
  WithAttributes([this](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"50", attributes.GetStringFromSecurity(kOption, L"Weight"));
    EXPECT_EQ(L"product", attributes.GetStringFromSecurity(kOption, L"Name"));
    EXPECT_THAT(m_host.requests, IsEmpty()) << "the product is loaded";
  });
  EXPECT_THAT(m_host.log, ElementsAre(Line(L"Weight", L"50"), Line(L"Name", L"product")));
}

TEST_F(SecurityAttributes, FiveAttributesHaveADefaultAndAreNeverLookedUpAtTheExchange) {
  Fill(LR"({"Name":"x"})",
       LR"({"TickSize":"9","Weight":"9","Denominator":"9","TicksPerPoint":"9","Multiplier.GQ2":"9"})");
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"0.001", attributes.GetStringFromSecurity(kOption, L"TickSize"));
    EXPECT_EQ(L"1", attributes.GetStringFromSecurity(kOption, L"Weight"));
    EXPECT_EQ(L"1", attributes.GetStringFromSecurity(kOption, L"Denominator"));
    EXPECT_EQ(L"1", attributes.GetStringFromSecurity(kOption, L"TicksPerPoint"));
    EXPECT_EQ(L"1", attributes.GetStringFromSecurity(kOption, L"Multiplier.GQ2"));
  });
}

TEST_F(SecurityAttributes, AnyOtherAttributeFallsToTheExchange) {
  Fill(LR"({"Weight":"50"})", LR"({"Currency":"TWD","Number":5})");
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"TWD", attributes.GetStringFromSecurity(kOption, L"Currency"));
    EXPECT_EQ(L"", attributes.GetStringFromSecurity(kOption, L"Number")) << "only texts count";
    EXPECT_EQ(L"", attributes.GetStringFromSecurity(kOption, L"currency")) << "case matters";
  });
}

TEST_F(SecurityAttributes, ABrokenProductTextCountsAsNone) {
  Fill(L"{broken", LR"({"Currency":"TWD"})");
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"1", attributes.GetStringFromSecurity(kOption, L"Weight"));
    EXPECT_EQ(L"TWD", attributes.GetStringFromSecurity(kOption, L"Currency"));
  });
}

TEST_F(SecurityAttributes, AnAnswerIsKeptForGood) {
  Fill(LR"({"Weight":"50"})");
  WithAttributes([this](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"50", attributes.GetStringFromSecurity(kOption, L"Weight"));
    Fill(LR"({"Weight":"60"})");
    EXPECT_EQ(L"50", attributes.GetStringFromSecurity(kOption, L"Weight"));
    EXPECT_EQ(L"60", attributes.GetStringFromSecurity(L"ND.O.TWF.TX.202404.C.18000", L"Weight"))
        << "each symbol is asked for itself";
  });
}

TEST_F(SecurityAttributes, AnEmptyAnswerIsKeptWithoutAnotherRequest) {
  WithAttributes([this](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"", attributes.GetStringFromSecurity(kOption, L"Weight"));
    const size_t requests = m_host.requests.size();
    const size_t lines = m_host.log.size();
    EXPECT_EQ(1U, requests);
    Fill(LR"({"Weight":"50"})");
    EXPECT_EQ(L"", attributes.GetStringFromSecurity(kOption, L"Weight"));
    EXPECT_EQ(requests, m_host.requests.size());
    EXPECT_EQ(lines, m_host.log.size());
  });
}

TEST_F(SecurityAttributes, AMissingExchangeIsAskedForWithADocumentToFillIn) {
  m_host.answer = [](const Request&, AnswerDocument* document) {
    EXPECT_NE(nullptr, document);
    EXPECT_TRUE(document->IsNull());
    return Value(std::wstring(L"FALSE"));
  };
  WithAttributes([this](CSecurityAttributes& attributes) {
    attributes.GetStringFromSecurity(kOption, L"Weight");
    ASSERT_EQ(1U, m_host.requests.size());
    const Request& request = m_host.requests.front();
    EXPECT_EQ(L"GLACETTE.REQUEST", request.topic);
    EXPECT_EQ(1, request.first);
    EXPECT_EQ(64, request.second);
    EXPECT_EQ(kProduct, request.text);
    EXPECT_TRUE(std::holds_alternative<int64_t>(request.value));
  });
  EXPECT_THAT(m_host.log, ElementsAre(L"GetStringFromSecurity cannot open Security.Info Exchange:ND.O.TWF, "
                                      L"symbolid=ND.O.TWF.TX",
                                      Line(L"Weight", L"")));
}

TEST_F(SecurityAttributes, AMissingProductOfAnExchangeIsAskedForInTheOtherForm) {
  Fill(L"", LR"({"Currency":"TWD"})");
  WithAttributes([this](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"TWD", attributes.GetStringFromSecurity(kOption, L"Currency"));
    ASSERT_EQ(1U, m_host.requests.size());
    const Request& request = m_host.requests.front();
    EXPECT_EQ(L"GLACETTE.REQUEST", request.topic);
    EXPECT_EQ(1, request.first);
    EXPECT_EQ(0, request.second);
    EXPECT_EQ(kProduct, request.text);
    EXPECT_TRUE(std::holds_alternative<int32_t>(request.value));
  });
}

TEST_F(SecurityAttributes, TheLineThatReadsLikeAFailureComesWithSuccess) {
  const std::vector<std::pair<Value, bool>> cases{{Value(std::wstring(L"TRUE")), true},
                                                  {Value(std::wstring(L"FALSE")), false},
                                                  {Value(std::wstring(L"true")), false},
                                                  {Value(std::wstring()), false},
                                                  {Value(1), true},
                                                  {Value(), true}};
  int month = 0;
  for (const auto& [reply, logged] : cases) {
    m_host.log.clear();
    AnswerWith("", reply);
    WithAttributes([&](CSecurityAttributes& attributes) {
      attributes.GetStringFromSecurity(L"ND.O.TWF.TX." + std::to_wstring(++month), L"Weight");
    });
    EXPECT_EQ(logged, !m_host.log.empty() && m_host.log.front() == L"GetInfoFromMordoDb:false") << month;
  }
  Fill(L"", L"{}");
  AnswerWith("", Value(std::wstring(L"TRUE")));
  m_host.log.clear();
  WithAttributes(
      [](CSecurityAttributes& attributes) { attributes.GetStringFromSecurity(kOption, L"Weight"); });
  EXPECT_THAT(m_host.log, ElementsAre(L"GetInfoFromMordoDb:2false", Line(L"Weight", L"1")));
}

TEST_F(SecurityAttributes, AFilledDocumentIsReadInPlaceOfTheRecord) {
  AnswerWith(R"({"ND.O.TWF.TX":{"Weight":"200","Number":7},"ND.O.TWF":{"Currency":"TWD","TickSize":"9"}})",
             Value(std::wstring(L"TRUE")));
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"200", attributes.GetStringFromSecurity(kOption, L"Weight"));
    EXPECT_EQ(L"0.001", attributes.GetStringFromSecurity(kOption, L"TickSize"))
        << "a default goes before the exchange";
    EXPECT_EQ(L"TWD", attributes.GetStringFromSecurity(kOption, L"Currency"));
    EXPECT_EQ(L"", attributes.GetStringFromSecurity(kOption, L"Number"));
  });
}

TEST_F(SecurityAttributes, AFilledDocumentWinsOverARecordThatTheHostHasLoaded) {
  m_host.answer = [this](const Request&, AnswerDocument* document) {
    Fill(LR"({"Weight":"50"})");
    ParseJson(R"({"ND.O.TWF.TX":{"Weight":"200"}})", *document);
    return Value(std::wstring(L"TRUE"));
  };
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"200", attributes.GetStringFromSecurity(kOption, L"Weight"));
  });
}

TEST_F(SecurityAttributes, AnUntouchedDocumentLeavesTheRecordThatTheHostHasLoaded) {
  m_host.answer = [this](const Request&, AnswerDocument*) {
    Fill(LR"({"Weight":"50"})");
    return Value(std::wstring(L"FALSE"));
  };
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"50", attributes.GetStringFromSecurity(kOption, L"Weight"));
  });
}

TEST_F(SecurityAttributes, ADocumentThatDoesntParseLeavesTheRecord) {
  m_host.answer = [this](const Request&, AnswerDocument* document) {
    Fill(LR"({"Weight":"50"})");
    document->Parse("{\"ND.O.TWF.TX\":");
    return Value();
  };
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"50", attributes.GetStringFromSecurity(kOption, L"Weight"));
  });
}

TEST_F(SecurityAttributes, ADocumentThatIsNoObjectGivesOnlyDefaults) {
  AnswerWith("[1,2]", Value());
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(L"1", attributes.GetStringFromSecurity(kOption, L"Weight"));
    EXPECT_EQ(L"", attributes.GetStringFromSecurity(kOption, L"Currency"));
  });
}

// Rounding to the tick.

TEST_F(SecurityAttributes, APriceRoundsToTheNearestTick) {
  Fill(L"{}");
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(1000000000000, attributes.RoundToTick(kOption, 100.0004)) << "the tick is 0.001";
    EXPECT_EQ(1000010000000, attributes.RoundToTick(kOption, 100.0006));
  });
}

TEST_F(SecurityAttributes, APriceHalfwayBetweenTwoTicksRoundsUp) {
  Fill(LR"({"TickSize":"0.5"})");
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(105000000000, attributes.RoundToTick(kOption, 10.25));
    EXPECT_EQ(100000000000, attributes.RoundToTick(kOption, 10.2499));
  });
}

TEST_F(SecurityAttributes, ANegativePriceRoundsTowardsZero) {
  Fill(LR"({"TickSize":"0.5"})");
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(-100000000000, attributes.RoundToTick(kOption, -10.25));
    EXPECT_EQ(-100000000000, attributes.RoundToTick(kOption, -10.49));
  });
}

TEST_F(SecurityAttributes, NoPriceStaysWithoutAValue) {
  Fill(LR"({"TickSize":"0.5"})");
  WithAttributes(
      [](CSecurityAttributes& attributes) { EXPECT_EQ(NoValue, attributes.RoundToTick(kOption, NoPrice)); });
}

TEST_F(SecurityAttributes, WithoutATickAboveZeroThePriceStaysAsItIs) {
  for (const wchar_t* tick : {L"0", L"-0.5", L"none", L"9.223372036854776e+18", L"0:none"}) {
    Fill(std::wstring(LR"({"TickSize":")") + tick + LR"("})");
    WithAttributes([tick](CSecurityAttributes& attributes) {
      EXPECT_EQ(1000004000000, attributes.RoundToTick(kOption, 100.0004)) << ::testing::PrintToString(tick);
    });
  }
}

TEST_F(SecurityAttributes, TheTickOfALadderIsTheOneAtThePrice) {
  Fill(LR"({"TickSize":"0:0.01;10:0.05;50:0.1"})");
  WithAttributes([](CSecurityAttributes& attributes) {
    EXPECT_EQ(99900000000, attributes.RoundToTick(kOption, 9.994));
    EXPECT_EQ(100500000000, attributes.RoundToTick(kOption, 10.04));
    EXPECT_EQ(501000000000, attributes.RoundToTick(kOption, 50.06));
    EXPECT_EQ(-20000000000, attributes.RoundToTick(kOption, -2.6)) << "below the first threshold: 1";
  });
}

constexpr const wchar_t* kLadder = L"0:0.01;10:0.05;50:0.1";
constexpr ScaledValue kUnit = 10000000000;

TEST(TickLadder, AThresholdBelongsToItsOwnTick) {
  EXPECT_EQ(0.05, TickAt(kLadder, 10 * kUnit));
  EXPECT_EQ(0.01, TickAt(kLadder, 10 * kUnit - 1));
  EXPECT_EQ(0.1, TickAt(kLadder, 50 * kUnit));
  EXPECT_EQ(0.1, TickAt(kLadder, 1000000 * kUnit));
  EXPECT_EQ(0.01, TickAt(kLadder, 0));
}

TEST(TickLadder, BelowTheFirstThresholdTheTickIsOne) {
  EXPECT_EQ(1.0, TickAt(kLadder, -1));
  EXPECT_EQ(1.0, TickAt(L"5:0.5", 5 * kUnit - 1));
}

TEST(TickLadder, TheFirstThresholdAboveThePriceEndsTheSearch) {
  EXPECT_EQ(0.1, TickAt(L"0:0.1;100:1;10:0.5", 20 * kUnit));
}

TEST(TickLadder, ThresholdsAreWholeNumbers) {
  EXPECT_EQ(0.5, TickAt(L"0:0.1;10.9:0.5", 10 * kUnit)) << "what follows the digits isn't read";
}

TEST(TickLadder, WithoutAColonTheTextIsTheTick) {
  EXPECT_EQ(0.25, TickAt(L"0.25", 0));
  EXPECT_EQ(0.25, TickAt(L"0.25;1", 0));
  EXPECT_EQ(0.0, TickAt(L"", 0));
}

TEST(TickLadder, AnEntryWithoutATickHasTheTickZero) {
  EXPECT_EQ(0.0, TickAt(L"0:0.1;10", 20 * kUnit));
}

TEST(TickLadder, AThresholdBeyondTheRangeIsAboveEveryPrice) {
  EXPECT_EQ(0.1, TickAt(L"0:0.1;99999999999:5", std::numeric_limits<int64_t>::max() - 1));
}

}  // namespace
}  // namespace iorder::testing
