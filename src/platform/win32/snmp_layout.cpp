// The SNMP records of platform/snmp.h checked against the platform's own declarations, so that
// a layout slip fails the Windows build instead of corrupting the agent's memory.
#include <snmp.h>

#include <cstddef>

#include "platform/snmp.h"

namespace Hostkit::platform::snmp {

#define HOSTKIT_SAME_LAYOUT(ours, theirs)                                  \
  static_assert(sizeof(ours) == sizeof(theirs), #ours " differs in size"); \
  static_assert(alignof(ours) == alignof(theirs), #ours " differs in alignment")
#define HOSTKIT_SAME_OFFSET(ours, theirs, member, theirMember)           \
  static_assert(offsetof(ours, member) == offsetof(theirs, theirMember), \
                #ours "::" #member " is misplaced")

HOSTKIT_SAME_LAYOUT(AsnOctetString, ::AsnOctetString);
HOSTKIT_SAME_OFFSET(AsnOctetString, ::AsnOctetString, stream, stream);
HOSTKIT_SAME_OFFSET(AsnOctetString, ::AsnOctetString, length, length);
HOSTKIT_SAME_OFFSET(AsnOctetString, ::AsnOctetString, dynamic, dynamic);
HOSTKIT_SAME_LAYOUT(AsnObjectIdentifier, ::AsnObjectIdentifier);
HOSTKIT_SAME_OFFSET(AsnObjectIdentifier, ::AsnObjectIdentifier, idLength, idLength);
HOSTKIT_SAME_OFFSET(AsnObjectIdentifier, ::AsnObjectIdentifier, ids, ids);
HOSTKIT_SAME_LAYOUT(AsnAny, ::AsnAny);
HOSTKIT_SAME_OFFSET(AsnAny, ::AsnAny, asnType, asnType);
HOSTKIT_SAME_OFFSET(AsnAny, ::AsnAny, asnValue, asnValue);
HOSTKIT_SAME_LAYOUT(SnmpVarBind, ::SnmpVarBind);
HOSTKIT_SAME_OFFSET(SnmpVarBind, ::SnmpVarBind, name, name);
HOSTKIT_SAME_OFFSET(SnmpVarBind, ::SnmpVarBind, value, value);
HOSTKIT_SAME_LAYOUT(SnmpVarBindList, ::SnmpVarBindList);
HOSTKIT_SAME_OFFSET(SnmpVarBindList, ::SnmpVarBindList, list, list);
HOSTKIT_SAME_OFFSET(SnmpVarBindList, ::SnmpVarBindList, len, len);

static_assert(kInteger == ASN_INTEGER && kOctetString == ASN_OCTETSTRING && kNull == ASN_NULL &&
              kIpAddress == ASN_IPADDRESS && kCounter == ASN_COUNTER32);
static_assert(kGet == SNMP_PDU_GET && kGetNext == SNMP_PDU_GETNEXT);
static_assert(kNoSuchName == SNMP_ERRORSTATUS_NOSUCHNAME &&
              kGenericError == SNMP_ERRORSTATUS_GENERR);

#undef HOSTKIT_SAME_OFFSET
#undef HOSTKIT_SAME_LAYOUT

}  // namespace Hostkit::platform::snmp
