// LiveTcpipInfo::GetAdapterInfo: the adapter records from IP Helper, or else from the SNMP
// agent's interface rows, completed with what the running family knows besides: the stored
// adapters on the NT family, the DHCP client's entries on Windows 9x.
#include <algorithm>
#include <cctype>
#include <utility>

#include "adapters/mac_address_lookup.h"
#include "hostkit/adapter_classification.h"
#include "hostkit/os.h"
#include "hostkit/static_tcpip.h"
#include "hostkit/strings.h"
#include "live/dhcp_client.h"
#include "live/hardware_address_text.h"
#include "live/ip_helper_binding.h"
#include "live/live_tcpip_impl.h"
#include "live/snmp_interface_rows.h"

namespace Hostkit {

namespace {

using StoredAdapter = StaticTcpipInfo::AdapterInfo;

// What the running family adds to the rows.
struct FamilyFacts {
  bool win9x = false;
  bool win2000OrXp = false;
  std::vector<StoredAdapter> stored;            // NT family
  std::vector<live::VxdDhcpEntry> dhcpEntries;  // Windows 9x
};

FamilyFacts ReadFamilyFacts() {
  OS os;
  FamilyFacts facts;
  facts.win9x = os.IsWin9x();
  facts.win2000OrXp = os.IsWin2000() || os.IsWinXP();
  if (facts.win9x) {
    live::QueryDhcpVxd(facts.dhcpEntries);
  } else {
    StaticTcpipInfo().GetAdapterInfo(facts.stored);
  }
  return facts;
}

// The DHCP client's entry for this hardware address on Windows 9x: the last that matches.
void TakeDhcpEntry(const FamilyFacts& facts, LiveAdapterInfo_impl& record) {
  for (const live::VxdDhcpEntry& entry : facts.dhcpEntries) {
    if (live::SameHardwareAddress(entry.hardwareAddress, record.hardwareAddress)) {
      record.dhcp = entry.dhcp;
      record.dhcpServer = entry.dhcpServer;
    }
  }
}

// The IP Helper rows as records: the row's two names exchanged back (on 9x no service name),
// the DHCP server left for the family to fill.
void FromIpHelper(const std::vector<live::IpHelperRow>& rows, FamilyFacts& facts,
                  std::vector<LiveAdapterInfo_impl>& records) {
  for (const live::IpHelperRow& row : rows) {
    LiveAdapterInfo_impl record;
    record.description = row.serviceName;
    if (!facts.win9x) {
      record.serviceName = row.description;
    }
    record.ipAddress = row.ipAddress;
    record.subnetMask = row.subnetMask;
    record.defaultGateway = row.defaultGateway;
    record.hardwareAddress = row.hardwareAddress;
    record.dhcp = row.dhcp;
    record.ethernet = row.ethernet;
    if (facts.win9x) {
      TakeDhcpEntry(facts, record);
    } else if (facts.win2000OrXp) {
      for (StoredAdapter& stored : facts.stored) {
        if (stored.ServiceName() == record.serviceName) {
          record.description = stored.Name();
        }
      }
    }
    records.push_back(std::move(record));
  }
}

// The SNMP rows as records: on the NT family the stored adapter whose driver reports the same
// hardware address gives the service name and the DHCP flag.
void FromSnmp(const std::vector<live::SnmpInterfaceRow>& rows, FamilyFacts& facts,
              std::vector<LiveAdapterInfo_impl>& records) {
  std::vector<std::string> storedAddresses;
  for (StoredAdapter& stored : facts.stored) {
    std::string address;
    adapters::QueryAdapterMacAddress(stored.ServiceName(), address);
    storedAddresses.push_back(address);
  }
  for (const live::SnmpInterfaceRow& row : rows) {
    LiveAdapterInfo_impl record;
    record.description = row.description;
    record.ipAddress = row.ipAddress;
    record.subnetMask = row.subnetMask;
    record.defaultGateway = row.defaultGateway;
    record.hardwareAddress = row.hardwareAddress;
    // The agent has no such flag: the interface is classified as IP Helper's entries are.
    std::string description;
    ConvertUnicodeToANSI(row.description, description);
    record.ethernet =
        DoesMacOrDescBelongToPhysicalAdapter(row.hardwareAddress.c_str(), description.c_str());
    if (facts.win9x) {
      TakeDhcpEntry(facts, record);
    } else {
      for (size_t i = 0; i < facts.stored.size(); ++i) {
        if (live::SameHardwareAddress(storedAddresses[i], record.hardwareAddress)) {
          record.serviceName = facts.stored[i].ServiceName();
          record.dhcp = facts.stored[i].UsingDhcp();
        }
      }
    }
    records.push_back(std::move(record));
  }
}

}  // namespace

bool LiveTcpipInfo_impl::GetAdapterInfo(std::vector<AdapterInfo>& adapters) {
  FamilyFacts facts = ReadFamilyFacts();
  std::vector<LiveAdapterInfo_impl> records;
  std::vector<live::IpHelperRow> helperRows;
  if (live::IpHelperBinding().AdapterRows(helperRows)) {
    FromIpHelper(helperRows, facts, records);
  } else {
    std::vector<live::SnmpInterfaceRow> snmpRows;
    if (!live::ReadSnmpInterfaceRows(snmpRows)) {
      return false;
    }
    FromSnmp(snmpRows, facts, records);
  }
  std::vector<AdapterInfo> found;
  for (LiveAdapterInfo_impl& record : records) {
    if (record.ipAddress.empty()) {
      record.ipAddress = "0.0.0.0";
    }
    if (record.subnetMask.empty()) {
      record.subnetMask = "0.0.0.0";
    }
    found.push_back(Record(record));
  }
  adapters = std::move(found);
  return true;
}

}  // namespace Hostkit
