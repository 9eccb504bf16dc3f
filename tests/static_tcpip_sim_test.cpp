// Stored TCP/IP enumeration cases built on the simulated machine: changes to a release fixture
// that Wine's registry and devices cannot stand for.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/mac_address_lookup.h"
#include "hostkit/regwiz.h"
#include "hostkit/sim/machine.h"
#include "hostkit/static_tcpip.h"
#include "support/network_fixture.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::RegWiz;
using Hostkit::StaticTcpipInfo;
using hostkit_test::Release;

std::vector<StaticTcpipInfo::AdapterInfo> Enumerate() {
  std::vector<StaticTcpipInfo::AdapterInfo> adapters;
  EXPECT_TRUE(StaticTcpipInfo().GetAdapterInfo(adapters));
  return adapters;
}

class StaticTcpipSim : public testing::Test {
 protected:
  void Load(Release release) {
    std::string error;
    ASSERT_TRUE(fixture_.Load(release, error)) << error;
    machine_ = Hostkit::sim::ActiveMachine();
  }
  void TearDown() override { Hostkit::sim::ActivateMachine(nullptr); }

  hostkit_test::NetworkFixture fixture_;
  std::shared_ptr<Hostkit::sim::Machine> machine_;
  RegWiz reg_;
};

constexpr const char* k3Com =
    "Enum\\PCI\\VEN_10B7&DEV_9055&SUBSYS_00000000&REV_24\\BUS_00&DEV_0D&FUNC_00";
constexpr const char* kRealtek =
    "Enum\\PCI\\VEN_10EC&DEV_8139&SUBSYS_813910EC&REV_10\\BUS_00&DEV_0F&FUNC_00";

TEST_F(StaticTcpipSim, Win9xCardsWithOneDescriptionShareOneCookie) {
  Load(Release::Win98);
  std::string description;
  ASSERT_TRUE(reg_.GetKeyVal(HKEY_LOCAL_MACHINE, k3Com, "DeviceDesc", description));
  ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, kRealtek, "DeviceDesc", description.c_str()));
  auto adapters = Enumerate();
  ASSERT_GE(adapters.size(), 3U);
  EXPECT_TRUE(adapters[1].GetCookie() == adapters[2].GetCookie());
  EXPECT_NE(adapters[1].StaticIpAddress(), adapters[2].StaticIpAddress());
}

// The Realtek card reaches TCP/IP through a chain of network components: four between the card
// and TCP/IP are followed, five are not.
TEST_F(StaticTcpipSim, Win9xBindingChainsEndAtFiveLevels) {
  for (int components : {4, 5}) {
    Load(Release::Win98);
    std::string from = kRealtek;
    ASSERT_TRUE(reg_.DeleteKey(HKEY_LOCAL_MACHINE, (from + "\\Bindings").c_str()));
    for (int i = 0; i <= components; ++i) {
      const std::string name =
          i < components ? "LINK" + std::to_string(i) + "\\0000" : "MSTCP\\0001";
      ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, (from + "\\Bindings").c_str()));
      ASSERT_TRUE(
          reg_.SetKeyVal(HKEY_LOCAL_MACHINE, (from + "\\Bindings").c_str(), name.c_str(), ""));
      from = "Enum\\Network\\" + name;
      ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, from.c_str()) || i == components);
    }
    auto realtek = Enumerate().at(2);
    EXPECT_FALSE(realtek.IsBoundToTcpip());
    EXPECT_EQ(realtek.IsIndirectlyOrDirectlyBoundToTcpip(), components == 4) << components;
    EXPECT_EQ(realtek.StaticIpAddress(), components == 4 ? "192.168.0.10" : "") << components;
  }
}

TEST_F(StaticTcpipSim, Win9xMissingAddressMeansStaticWithEmptyTexts) {
  Load(Release::Win98);
  const char* binding = "System\\CurrentControlSet\\Services\\Class\\NetTrans\\0000";
  ASSERT_TRUE(reg_.DeleteKeyVal(HKEY_LOCAL_MACHINE, binding, "IPAddress"));
  auto threeCom = Enumerate().at(1);
  EXPECT_FALSE(threeCom.UsingDhcp());
  EXPECT_EQ(threeCom.StaticIpAddress(), "");
  EXPECT_EQ(threeCom.StaticSubnetMask(), "0.0.0.0");
}

TEST_F(StaticTcpipSim, NtServiceManagerRefusedMeansNotFunctional) {
  Load(Release::WinNT4);
  machine_->facts().administrator = false;  // full access to the manager is refused
  for (auto& record : Enumerate()) {
    EXPECT_FALSE(record.IsFunctional()) << record.HardwareAddress();
  }
}

TEST_F(StaticTcpipSim, XpWithoutTheDeviceSetupListingFindsNoDevice) {
  Load(Release::WinXP);
  machine_->modules()["setupapi.dll"].entryPoints.erase("SetupDiGetDeviceInstanceIdA");
  EXPECT_TRUE(Enumerate().empty());
}

TEST_F(StaticTcpipSim, UnknownSystemLeavesTheVectorAlone) {
  hostkit_test::UseFreshMachine(Release::Unknown);
  std::vector<StaticTcpipInfo::AdapterInfo> adapters(2);
  EXPECT_FALSE(StaticTcpipInfo().GetAdapterInfo(adapters));
  EXPECT_EQ(adapters.size(), 2U);
}

TEST_F(StaticTcpipSim, AddressLookupDefinesAndRemovesItsOwnDosNameOnly) {
  Load(Release::WinNT4);
  std::string address;
  EXPECT_TRUE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("El90x1"), address));
  EXPECT_EQ(address, "00-60-08-AB-CD-01");
  EXPECT_EQ(machine_->dosDevices().count("El90x1"), 0U);
  EXPECT_TRUE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("E100B1"), address));
  EXPECT_EQ(machine_->dosDevices().at("E100B1").size(), 1U);

  // No device: the all-zero text and false, and the temporary name gone again.
  EXPECT_FALSE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("NE20001"), address));
  EXPECT_EQ(address, "00-00-00-00-00-00");
  EXPECT_EQ(machine_->dosDevices().count("NE20001"), 0U);
}

TEST_F(StaticTcpipSim, UsRoboticsAddressesAreFixedWithoutAskingTheDevice) {
  Load(Release::WinNT4);
  machine_->facts().release = Release::Win98;  // any device access would now fail
  std::string address;
  EXPECT_TRUE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("USRPCIAWR3"), address));
  EXPECT_EQ(address, "00-c0-49-43-0f-53");
  EXPECT_TRUE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("xUSRPCIAWRb"), address));
  EXPECT_EQ(address, "00-c0-49-43-0f-5d");
  EXPECT_FALSE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("usrpciawr3"), address));
}

}  // namespace
