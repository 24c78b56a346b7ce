#include "reference/quote_queue.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/reference/reference_fixture.h"

namespace iorder::testing {
namespace {

CQuoteData Quote(const wchar_t* symbol, int32_t updateId, int64_t volume, ScaledValue price = 0) {
  CQuoteData quote;
  quote.strSymbol = symbol;
  quote.llPrice = price;
  quote.llField6 = volume;
  quote.lTransHandle = updateId;
  return quote;
}

class QuoteQueue : public ReferenceTest {
 protected:
  void WithQueue(const std::function<void(CQuoteQueue& queue)>& body) {
    Run([&] {
      CQuoteQueue queue(Runtime());
      body(queue);
    });
  }
};

TEST_F(QuoteQueue, AnEmptyQueueGivesNothing) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.IsEmpty());
    EXPECT_FALSE(queue.Take().has_value());
  });
}

TEST_F(QuoteQueue, TheFirstInIsTheFirstOut) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.Enqueue(Quote(L"B", 1, 10, 5)));
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 2, 10, 6)));
    EXPECT_TRUE(queue.Enqueue(Quote(L"B", 3, 11, 7)));
    EXPECT_FALSE(queue.IsEmpty());
    EXPECT_EQ(5, queue.Take()->llPrice);
    EXPECT_EQ(6, queue.Take()->llPrice);
    EXPECT_EQ(7, queue.Take()->llPrice);
    EXPECT_TRUE(queue.IsEmpty());
  });
}

TEST_F(QuoteQueue, TheSameUpdateIsTakenOnce) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 7, 10)));
    EXPECT_FALSE(queue.Enqueue(Quote(L"A", 7, 11)));
  });
}

TEST_F(QuoteQueue, TheSameVolumeIsTakenOnce) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 7, 10)));
    EXPECT_FALSE(queue.Enqueue(Quote(L"A", 8, 10)));
  });
}

TEST_F(QuoteQueue, ASnapshotIsComparedWithTheFirstOfItsSymbolForGood) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 1, 10)));
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 2, 20)));
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 2, 20))) << "repeats the second, not the first";
    EXPECT_FALSE(queue.Enqueue(Quote(L"A", 3, 10))) << "has the volume of the first";
    EXPECT_FALSE(queue.Enqueue(Quote(L"A", 1, 30))) << "has the update id of the first";
  });
}

TEST_F(QuoteQueue, TheComparisonOutlivesTheTaking) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 1, 10)));
    queue.Take();
    EXPECT_FALSE(queue.Enqueue(Quote(L"A", 2, 10)));
  });
}

TEST_F(QuoteQueue, ASnapshotWithoutAnUpdateIsReplacedByTheNext) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", kNoUpdate, 10)));
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 5, 10))) << "the same volume doesn't stop it";
    EXPECT_FALSE(queue.Enqueue(Quote(L"A", 6, 10))) << "now the one with an update id stands";
    EXPECT_EQ(kNoUpdate, queue.Take()->lTransHandle) << "what is in the list stays as it is";
    EXPECT_EQ(5, queue.Take()->lTransHandle);
  });
}

TEST_F(QuoteQueue, ASnapshotWithoutAnUpdateIsComparedTooOnceOneWithAnUpdateStands) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 5, 10)));
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", kNoUpdate, 11)));
    EXPECT_FALSE(queue.Enqueue(Quote(L"A", kNoUpdate, 10)));
  });
}

TEST_F(QuoteQueue, SymbolsAreComparedEachForItself) {
  WithQueue([](CQuoteQueue& queue) {
    EXPECT_TRUE(queue.Enqueue(Quote(L"A", 1, 10)));
    EXPECT_TRUE(queue.Enqueue(Quote(L"B", 1, 10)));
  });
}

}  // namespace
}  // namespace iorder::testing
