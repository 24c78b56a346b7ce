#include "grouporder/group_id.h"

#include <gtest/gtest.h>

#include "tests/support/virtual_world.h"
#include "tests/support/wrapped_runtime.h"

namespace iorder::test {
namespace {

/// Gives the bytes 0x01, 0x23, ..., 0xEF, 0xF0, 0xD1, ..., 0x1F: every digit at both places.
class CFixedGuid : public CWrappedRuntime {
 public:
  using CWrappedRuntime::CWrappedRuntime;
  Guid NewGuid() override {
    return {{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xF0, 0xD1, 0xB2, 0x93, 0x74, 0x55, 0x36, 0x1F}};
  }
};

TEST(GroupId, AGuidIsWrittenInFivePartsOfWhichTheFirstThreeAreNumbers) {
  CVirtualWorld world;
  CFixedGuid runtime(world.runtime);
  EXPECT_EQ(L"{67452301-AB89-EFCD-F0D1-B2937455361F}", MakeGroupId(runtime));
}

TEST(GroupId, EachIsNew) {
  CVirtualWorld world;
  const std::wstring first = MakeGroupId(world.runtime);
  EXPECT_EQ(38U, first.size());
  EXPECT_NE(first, MakeGroupId(world.runtime));
}

}  // namespace
}  // namespace iorder::test
