// The binary resource lists of both families, from hand-built bytes: every resource kind, the
// kinds that are skipped, and lists cut short.
#include "inventory/resource_lists.h"

#include <gtest/gtest.h>

#include "support/resource_bytes.h"

namespace {

using Hostkit::inventory::ParseConfigManagerAllocation;
using Hostkit::inventory::ParseResourceList;
using Hostkit::inventory::Resources;
using hostkit_test::Allocation;
using hostkit_test::Bytes;
using hostkit_test::ResourceList;

void ExpectCard(const Resources& got) {
  EXPECT_EQ(got.irqs, std::vector<int>{10});
  EXPECT_EQ(got.dmaChannels, std::vector<int>{3});
  ASSERT_EQ(got.ioRanges.size(), 1U);
  EXPECT_EQ(got.ioRanges[0].start, 0x300UL);
  EXPECT_EQ(got.ioRanges[0].end, 0x31FUL);
  ASSERT_EQ(got.memoryRanges.size(), 1U);
  EXPECT_EQ(got.memoryRanges[0].start, 0xD0000UL);
  EXPECT_EQ(got.memoryRanges[0].end, 0xD3FFFUL);
}

TEST(ResourceLists, BothFamiliesReadTheSameCard) {
  Resources win9x;
  EXPECT_TRUE(ParseConfigManagerAllocation(Allocation()
                                               .Io(0x300, 0x31F)
                                               .Descriptor(7, {1, 2, 3, 4})  // skipped kind
                                               .Irq(10)
                                               .Memory(0xD0000, 0xD3FFF)
                                               .Dma(3)
                                               .End(),
                                           win9x));
  ExpectCard(win9x);
  Resources nt;
  EXPECT_TRUE(ParseResourceList(ResourceList()
                                    .Port(0x300, 0x20)
                                    .DeviceSpecific({9, 9, 9, 9, 9})  // its data is skipped
                                    .Interrupt(10, 58)
                                    .Partial(9, 0xFFFF, 7, 0)  // skipped kind
                                    .Memory(0xD0000, 0x4000)
                                    .Dma(3)
                                    .Port(0x400, 0)  // an empty range holds nothing
                                    .Build(),
                                nt));
  ExpectCard(nt);
}

TEST(ResourceLists, AllocationEndsAtItsEndWithoutTerminator) {
  Resources got;
  Bytes bytes = Allocation().Irq(5).End();
  bytes.resize(bytes.size() - 4);
  EXPECT_TRUE(ParseConfigManagerAllocation(bytes, got));
  EXPECT_EQ(got.irqs, std::vector<int>{5});
}

struct CutCase {
  const char* name;
  bool nt;
  std::size_t keep;  // bytes kept of the full list
  std::size_t irqsRead;
};

class CutLists : public testing::TestWithParam<CutCase> {};

TEST_P(CutLists, FailKeepingWhatCameBefore) {
  const CutCase& cut = GetParam();
  Bytes bytes = cut.nt ? ResourceList().Interrupt(4, 0).Interrupt(7, 0).Build()
                       : Allocation().Irq(4).Irq(7).End();
  bytes.resize(cut.keep);
  Resources got;
  EXPECT_FALSE(cut.nt ? ParseResourceList(bytes, got) : ParseConfigManagerAllocation(bytes, got));
  EXPECT_EQ(got.irqs.size(), cut.irqsRead);
}

// 9x: header 8, each interrupt descriptor 16; NT: header 4 + 16, each partial 16.
INSTANTIATE_TEST_SUITE_P(Lists, CutLists,
                         testing::Values(CutCase{"AllocationHeader", false, 7, 0},
                                         CutCase{"AllocationSecond", false, 8 + 16 + 10, 1},
                                         CutCase{"AllocationStray", false, 8 + 32 + 2, 2},
                                         CutCase{"ListCount", true, 3, 0},
                                         CutCase{"ListHeader", true, 12, 0},
                                         CutCase{"ListSecond", true, 20 + 16 + 15, 1}),
                         [](const testing::TestParamInfo<CutCase>& info) {
                           return std::string(info.param.name);
                         });

TEST(ResourceLists, AllocationDescriptorShorterThanItsHeaderFails) {
  Bytes bytes = Allocation().End();
  bytes.resize(8);
  hostkit_test::Put(bytes, 4, 4);  // length 4 < 8
  hostkit_test::Put(bytes, 4, 4);
  Resources got;
  EXPECT_FALSE(ParseConfigManagerAllocation(bytes, got));
}

}  // namespace
