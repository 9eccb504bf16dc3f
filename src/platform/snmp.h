// The SNMP extension agent ("INETMIB1.DLL") and the SNMP utility library ("SNMPAPI.DLL") as the
// library binds them at run time: the records the agent reads and writes, laid out as the
// platform lays them out (packed to 4 bytes), the entry-point types and the constants used.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform::snmp {

inline constexpr const char* kAgentModule = "INETMIB1.DLL";
inline constexpr const char* kUtilityModule = "SNMPAPI.DLL";
inline constexpr const char* kExtensionInit = "SnmpExtensionInit";
inline constexpr const char* kExtensionQuery = "SnmpExtensionQuery";
inline constexpr const char* kMemAlloc = "SnmpUtilMemAlloc";
inline constexpr const char* kMemFree = "SnmpUtilMemFree";

// Value type tags.
constexpr BYTE kInteger = 0x02;
constexpr BYTE kOctetString = 0x04;
constexpr BYTE kNull = 0x05;
constexpr BYTE kIpAddress = 0x40;
constexpr BYTE kCounter = 0x41;

// Request types and error statuses of SnmpExtensionQuery.
constexpr BYTE kGet = 0xA0;
constexpr BYTE kGetNext = 0xA1;
constexpr LONG kNoError = 0;
constexpr LONG kNoSuchName = 2;
constexpr LONG kGenericError = 5;

#pragma pack(push, 4)

struct AsnOctetString {
  BYTE* stream;
  UINT length;
  BOOL dynamic;  // the stream was allocated with SnmpUtilMemAlloc
};

struct AsnObjectIdentifier {
  UINT idLength;
  UINT* ids;
};

struct AsnCounter64 {
  DWORD lowPart;
  DWORD highPart;
};

struct AsnAny {
  BYTE asnType;
  union {
    LONG number;
    ULONG unsigned32;
    AsnCounter64 counter64;
    AsnOctetString string;
    AsnOctetString bits;
    AsnObjectIdentifier object;
    AsnOctetString sequence;
    AsnOctetString address;
    ULONG counter;
    ULONG gauge;
    ULONG ticks;
    AsnOctetString arbitrary;
  } asnValue;
};

struct SnmpVarBind {
  AsnObjectIdentifier name;
  AsnAny value;
};

struct SnmpVarBindList {
  SnmpVarBind* list;
  UINT len;
};

#pragma pack(pop)

using ExtensionInit = BOOL(WINAPI*)(DWORD uptimeReference, HANDLE* trapEvent,
                                    AsnObjectIdentifier* supportedView);
using ExtensionQuery = BOOL(WINAPI*)(BYTE requestType, SnmpVarBindList* bindings, LONG* errorStatus,
                                     LONG* errorIndex);
using MemAlloc = void*(WINAPI*)(UINT bytes);
using MemFree = void(WINAPI*)(void* memory);

}  // namespace Hostkit::platform::snmp
