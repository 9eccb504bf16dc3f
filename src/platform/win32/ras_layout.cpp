// The Remote Access records of platform/rasapi32.h must be laid out exactly as the platform's
// own declarations of the Windows XP forms, since rasapi32 reads and writes them in the
// library's buffers.
#undef WINVER
#undef _WIN32_WINNT
#define WINVER 0x0501
#define _WIN32_WINNT 0x0501
#include <windows.h>
// windows.h first: the RAS declarations need its types.
#include <ras.h>

#include <cstddef>

#include "platform/rasapi32.h"

namespace Hostkit::platform::ras {

namespace {

#define HOSTKIT_SAME_FIELD(Own, ownField, Real, realField)              \
  static_assert(offsetof(Own, ownField) == offsetof(Real, realField) && \
                    sizeof(Own::ownField) == sizeof(Real::realField),   \
                #Own "::" #ownField " differs from " #Real "::" #realField)

static_assert(sizeof(EntryName) == sizeof(RASENTRYNAMEA));
HOSTKIT_SAME_FIELD(EntryName, dwFlags, tagRASENTRYNAMEA, dwFlags);
static_assert(sizeof(Connection) == sizeof(RASCONNA));
HOSTKIT_SAME_FIELD(Connection, hrasconn, tagRASCONNA, hrasconn);
HOSTKIT_SAME_FIELD(Connection, szPhonebook, tagRASCONNA, szPhonebook);
HOSTKIT_SAME_FIELD(Connection, guidEntry, tagRASCONNA, guidEntry);
HOSTKIT_SAME_FIELD(Connection, dwFlags, tagRASCONNA, dwFlags);
static_assert(sizeof(ConnectionStatus) == sizeof(RASCONNSTATUSA));
HOSTKIT_SAME_FIELD(ConnectionStatus, szPhoneNumber, tagRASCONNSTATUSA, szPhoneNumber);
static_assert(sizeof(DeviceInfo) == sizeof(RASDEVINFOA));
static_assert(sizeof(DialParams) == sizeof(RASDIALPARAMSA));
HOSTKIT_SAME_FIELD(DialParams, dwSubEntry, tagRASDIALPARAMSA, dwSubEntry);
HOSTKIT_SAME_FIELD(DialParams, dwCallbackId, tagRASDIALPARAMSA, dwCallbackId);
static_assert(sizeof(Entry) == sizeof(RASENTRYA));
HOSTKIT_SAME_FIELD(Entry, szLocalPhoneNumber, tagRASENTRYA, szLocalPhoneNumber);
HOSTKIT_SAME_FIELD(Entry, szDeviceName, tagRASENTRYA, szDeviceName);
HOSTKIT_SAME_FIELD(Entry, dwSubEntries, tagRASENTRYA, dwSubEntries);
HOSTKIT_SAME_FIELD(Entry, dwType, tagRASENTRYA, dwType);
HOSTKIT_SAME_FIELD(Entry, dwfOptions2, tagRASENTRYA, dwfOptions2);
HOSTKIT_SAME_FIELD(Entry, dwRedialPause, tagRASENTRYA, dwRedialPause);

}  // namespace

}  // namespace Hostkit::platform::ras
