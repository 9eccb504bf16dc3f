// The SNMP reader against the running system's agent: its interface rows and a direct walk of
// the address table both give the addresses the system's interfaces hold, loopback left out.
#include "hostkit/snmp_query.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "live/snmp_interface_rows.h"
#include "support/host_ipv4.h"
#include "support/test_machine.h"

namespace {

using hostkit_test::PerRelease;

std::vector<std::string> Sorted(std::vector<std::string> texts) {
  std::sort(texts.begin(), texts.end());
  return texts;
}

class SnmpHostAddresses : public PerRelease {};

TEST_P(SnmpHostAddresses, RowsAndAddressTableListTheHostsAddresses) {
  std::vector<std::string> expected;
  std::string whyNot;
  if (!hostkit_test::HostIpv4Addresses(expected, whyNot)) {
    GTEST_SKIP() << whyNot;
  }
  std::vector<Hostkit::live::SnmpInterfaceRow> rows;
  ASSERT_TRUE(Hostkit::live::ReadSnmpInterfaceRows(rows));
  std::vector<std::string> fromRows;
  for (const auto& row : rows) {
    EXPECT_NE(row.ipAddress.rfind("127.", 0), 0u) << "loopback listed";
    if (!row.ipAddress.empty()) {
      fromRows.push_back(row.ipAddress);
      EXPECT_FALSE(row.subnetMask.empty()) << row.ipAddress;
    }
  }
  EXPECT_EQ(Sorted(fromRows), Sorted(expected));

  Hostkit::CSNMPQuery query;
  ASSERT_TRUE(query.IsUsable());
  ASSERT_TRUE(query.Walk("1.3.6.1.2.1.4.20.1.1", "1.3.6.1.2.1.4.20.1.1"));
  std::vector<std::string> fromTable;
  for (const auto& [index, address] : query.Column("1.3.6.1.2.1.4.20.1.1")) {
    EXPECT_EQ(index, address);  // the table is indexed by the address itself
    if (address.rfind("127.", 0) != 0) {
      fromTable.push_back(address);
    }
  }
  EXPECT_EQ(Sorted(fromTable), Sorted(expected));
}

INSTANTIATE_TEST_SUITE_P(AllReleases, SnmpHostAddresses,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
