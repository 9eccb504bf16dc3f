// Adapter classification: the built-in lists, the setters' append and replace rules, the
// decline list, and hardware addresses in software-adapter ranges. The lists are process-wide,
// so every test leaves them at their built-in contents.
#include "hostkit/adapter_classification.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "adapters/mac_address.h"
#include "hostkit/strings.h"

namespace {

using namespace Hostkit;

wstring W(const std::string& ascii) {
  wstring wide;
  ConvertASCIIToUnicode(ascii, wide);
  return wide;
}

bool IsNic(const std::string& description) {
  const bool narrow = IsNicDescription(description.c_str());
  EXPECT_EQ(narrow, IsNicDescription(W(description).c_str())) << description;
  return narrow;
}

class AdapterClassification : public testing::Test {
 protected:
  void TearDown() override {
    SetNicDescriptionAcceptList({}, false);
    SetNicDescriptionDeclineList({}, false);
    SetNicDeviceDriverAcceptList({}, false);
    SetSoftwareAdapterList({}, false);
  }
};

// One description for each built-in pattern, in table order, each matching only its own (the
// two USB ones also match the general USB pattern), and one in capitals.
// clang-format off
const char* const kCards[] = {
    "3Com EtherLink XL", "Generic LAN Adapter", "NDIS 5 driver", "Linksys LNE100TX",
    "Fast 10/100 card", "Tamarack TC5000 PC Card", "NE 2000 compatible", "IBM NetFlex Controller",
    "NetFlex 3 Driver", "Novel 3000", "Intel PRO Network Adapter", "DEC Bus Master Adapter",
    "SMC EZ Card 10", "NetLine PCI Card", "Conexant Systems AccessRunner", "Fast Ethenet card",
    "Efficient Networks SpeedStream 5660", "Wireless LAN PC Card", "Terayon Cable Modem",
    "CATC USB Adapter", "EZ Connect USB", "Realtek PCI Adapter", "3Com 3C508",
    "Generic ISA Adapter", "Belkin USB", "Alcatel SpeedTouch Home",
    "Efficient Networks ENI Virtual Miniport", "Intel PRO/100 VE", "3COM ETHERLINK III"};
// clang-format on

TEST_F(AdapterClassification, BuiltInDescriptionsMatchAfterLowerCasing) {
  for (const char* card : kCards) {
    EXPECT_TRUE(IsNic(card)) << card;
  }
  for (const char* other : {"Dial-Up Adapter", "WAN Miniport (PPTP)", "Ethe rnet card",
                            "Virtual Miniport of Efficient Networks", ""}) {
    EXPECT_FALSE(IsNic(other)) << other;
  }
  // Only A to Z are lower-cased.
  SetNicDescriptionAcceptList({wstring(1, WCHAR(0xE4))}, false);
  EXPECT_TRUE(IsNicDescription(wstring(1, WCHAR(0xE4)).c_str()));
  EXPECT_FALSE(IsNicDescription(wstring(1, WCHAR(0xC4)).c_str()));
  EXPECT_FALSE(IsNicDescription(static_cast<const char*>(nullptr)));
}

TEST_F(AdapterClassification, AcceptListAppendsToBuiltInsOrReplacesThem) {
  SetNicDescriptionAcceptList({W("^dial-up adapter$")}, true);  // on the empty list
  EXPECT_TRUE(IsNic("Dial-Up Adapter"));
  EXPECT_TRUE(IsNic("Intel PRO/100 VE"));  // the last built-in is still there

  SetNicDescriptionAcceptList({W("^dial-up adapter$")}, false);
  SetNicDescriptionAcceptList({W("wan miniport")}, true);  // no refill of a non-empty list
  EXPECT_TRUE(IsNic("Dial-Up Adapter"));
  EXPECT_TRUE(IsNic("WAN Miniport (IP)"));
  EXPECT_FALSE(IsNic("3Com EtherLink XL"));

  SetNicDescriptionAcceptList({}, false);  // empty again: the built-ins come back
  EXPECT_TRUE(IsNic("3Com EtherLink XL"));
  EXPECT_FALSE(IsNic("Dial-Up Adapter"));
}

TEST_F(AdapterClassification, DeclineListAlwaysReplacesAndOverridesAccept) {
  SetNicDescriptionDeclineList({W(".*usb.*")}, true);
  EXPECT_FALSE(IsNic("Linksys USB Ethernet"));
  EXPECT_TRUE(IsNicDenialDescription("Linksys USB Ethernet"));
  EXPECT_TRUE(IsNicDenialDescription(W("USB modem").c_str()));  // accept list not consulted

  SetNicDescriptionDeclineList({W("^dial.*")}, true);  // true does not append
  EXPECT_TRUE(IsNic("Linksys USB Ethernet"));
  EXPECT_FALSE(IsNicDenialDescription("Linksys USB Ethernet"));
  EXPECT_TRUE(IsNicDenialDescription("Dial-Up Adapter"));

  SetNicDescriptionDeclineList({}, false);
  EXPECT_FALSE(IsNicDenialDescription("Dial-Up Adapter"));
}

TEST_F(AdapterClassification, DriverNamesMustBeginWithAListedName) {
  for (const char* driver :
       {"ether.sys", "EL90XBC.SYS", "ea20x", "EA10", "dfe530tx", "cben4.sys", "AlcanUsb"}) {
    EXPECT_TRUE(IsNicDeviceDriver(driver)) << driver;
  }
  for (const char* driver :
       {"myel90x", "ndis.vxd", " ether", "", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(IsNicDeviceDriver(driver)) << (driver ? driver : "null");
  }
  SetNicDeviceDriverAcceptList({"^ndis.*"}, true);
  EXPECT_TRUE(IsNicDeviceDriver("ndis.vxd"));
  EXPECT_TRUE(IsNicDeviceDriver("alcan"));
  SetNicDeviceDriverAcceptList({"^ndis.*"}, false);
  EXPECT_FALSE(IsNicDeviceDriver("alcan"));
}

TEST(MacAddressText, SixPairsAtFixedPlacesAnySeparator) {
  std::array<unsigned char, 6> bytes{};
  ASSERT_TRUE(adapters::ParseMacAddress("0a:1B-2c.3D 4e_5F", bytes));
  EXPECT_EQ(bytes, (std::array<unsigned char, 6>{0x0A, 0x1B, 0x2C, 0x3D, 0x4E, 0x5F}));
  ASSERT_TRUE(adapters::ParseMacAddress("g1-1g-zz-FF-ff-00", bytes));  // non-digits count 0
  EXPECT_EQ(bytes, (std::array<unsigned char, 6>{0x01, 0x10, 0x00, 0xFF, 0xFF, 0x00}));
  EXPECT_FALSE(adapters::ParseMacAddress("0a-1b-2c-3d-4e-5", bytes));
}

TEST_F(AdapterClassification, AddressesInSoftwareRangesAreNotPhysical) {
  for (const char* software :
       {"44-45-53-54-12-34", "44-45-53-54-FF-FF", "00-C0-45-00-00-56", "00-03-8A-00-00-7F",
        "00-53-45-00-00-01", "00-41-BE-F7-5E-00", "00-00-00-00-00-09", "00-50-77-01-8B-FF",
        "00-20-EA-09-EB-01", "00:c0:45:00:00:01", "GG-GG-GG-GG-GG-GG"}) {
    EXPECT_FALSE(DoesMacAddressBelongToPhysicalAdapter(software)) << software;
  }
  // A five-byte mask keeps a block to 256 addresses: 00-C0-45-12-34-56 lies outside it.
  for (const char* physical : {"44-45-53-55-12-34", "00-C0-45-12-34-56", "00-C0-46-00-00-56",
                               "00-03-8B-00-00-7F", "00-53-44-00-00-01", "00-41-BE-F7-5F-00",
                               "00-00-00-00-01-09", "00-50-77-01-8C-00", "00-20-EA-09-EC-01"}) {
    EXPECT_TRUE(DoesMacAddressBelongToPhysicalAdapter(physical)) << physical;
  }
  for (const char* text :
       {"00-C0-46-12-34-5", "00-C0-46-12-34-567", "", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(DoesMacAddressBelongToPhysicalAdapter(text));
  }

  SetSoftwareAdapterList({{"00-C0-46-00-00-00", "FF-FF-FF-FF-FF-00"}}, true);
  EXPECT_FALSE(DoesMacAddressBelongToPhysicalAdapter("00-C0-46-00-00-56"));
  EXPECT_FALSE(DoesMacAddressBelongToPhysicalAdapter("00-C0-45-00-00-56"));
  // An unreadable range ends the search: later ranges are not examined.
  SetSoftwareAdapterList(
      {{"00-C0-46", "FF-FF-FF-FF-FF-00"}, {"00-C0-47-00-00-00", "FF-FF-FF-FF-FF-00"}}, false);
  EXPECT_TRUE(DoesMacAddressBelongToPhysicalAdapter("00-C0-47-00-00-01"));
}

TEST_F(AdapterClassification, UsbCableModemCountsAsPhysicalWhateverItsAddress) {
  EXPECT_TRUE(DoesMacOrDescBelongToPhysicalAdapter("44-45-53-54-00-01", "Acme USB Cable Modem"));
  EXPECT_FALSE(DoesMacOrDescBelongToPhysicalAdapter("44-45-53-54-00-01", "Acme Cable Modem"));
  EXPECT_TRUE(DoesMacOrDescBelongToPhysicalAdapter("00-C0-46-12-34-56", "Dial-Up Adapter"));
  EXPECT_TRUE(DoesMacOrDescBelongToPhysicalAdapter("short", "usb cable modem"));
  EXPECT_FALSE(DoesMacOrDescBelongToPhysicalAdapter("short", nullptr));
}

// Several threads whose first queries find the lists empty: the built-ins are loaded once, and
// every thread gets the answers one thread alone gets.
TEST_F(AdapterClassification, FirstQueriesFromManyThreadsAgree) {
  constexpr int kThreads = 8;
  for (int round = 0; round < 3; ++round) {
    TearDown();  // every list empty again
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&wrong, t] {
        const char* card = kCards[static_cast<std::size_t>(t) * 3 % std::size(kCards)];
        const bool right = IsNicDescription(card) && !IsNicDescription("Dial-Up Adapter") &&
                           IsNicDeviceDriver("EL90XBC.SYS") && !IsNicDeviceDriver("myel90x") &&
                           !DoesMacAddressBelongToPhysicalAdapter("44-45-53-54-12-34") &&
                           DoesMacAddressBelongToPhysicalAdapter("00-C0-46-12-34-56");
        if (!right) {
          ++wrong;
        }
      });
    }
    for (auto& thread : threads) {
      thread.join();
    }
    EXPECT_EQ(wrong.load(), 0);
  }
}

}  // namespace
