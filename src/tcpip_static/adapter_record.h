// Library-internal access to the members of an adapter record, for the code that fills it.
#pragma once

#include "hostkit/static_tcpip.h"

namespace Hostkit {

struct AdapterRecordAccess {
  using Fields = StaticTcpipInfo::AdapterInfo::Fields;
  static Fields& Of(StaticTcpipInfo::AdapterInfo& record) { return record.fields_; }
  static const Fields& Of(const StaticTcpipInfo::AdapterInfo& record) { return record.fields_; }
};

}  // namespace Hostkit
