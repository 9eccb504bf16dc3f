// The Remote Access Service calls of "rasapi32.dll", as the library binds them at run time
// (GetProcAddress by name): the entry-point types and the records they take, laid out as the
// 32-bit releases lay them out.
//
// Every record starts with its own size (dwSize). A release accepts the sizes of the record as
// it stood in its own and in older releases and answers ERROR_INVALID_SIZE (632) to a newer
// one, so a caller tries the sizes from the newest to the oldest. The records below are the
// newest (Windows XP) forms; the k*Sizes tables list every size, newest first, computed from
// the offsets where each release's form ends.
#pragma once

#include <array>
#include <cstddef>

#include "hostkit/win_types.h"

namespace Hostkit::platform::ras {

inline constexpr const char* kModule = "RASAPI32.DLL";

inline constexpr std::size_t kMaxEntryName = 256;
inline constexpr std::size_t kMaxDeviceType = 16;
inline constexpr std::size_t kMaxDeviceName = 128;
inline constexpr std::size_t kMaxPhoneNumber = 128;
inline constexpr std::size_t kMaxAreaCode = 10;
inline constexpr std::size_t kMaxPadType = 32;
inline constexpr std::size_t kMaxX25Address = 200;
inline constexpr std::size_t kMaxUserData = 200;
inline constexpr std::size_t kMaxPath = 260;
inline constexpr std::size_t kMaxUserName = 256;  // UNLEN
inline constexpr std::size_t kMaxPassword = 256;  // PWLEN
inline constexpr std::size_t kMaxDomain = 15;     // DNLEN
inline constexpr std::size_t kMaxDnsSuffix = 256;

inline constexpr DWORD kSuccess = 0;
inline constexpr DWORD kBufferTooSmall = 603;   // ERROR_BUFFER_TOO_SMALL
inline constexpr DWORD kCannotFindEntry = 623;  // ERROR_CANNOT_FIND_PHONEBOOK_ENTRY
inline constexpr DWORD kInvalidSize = 632;      // ERROR_INVALID_SIZE
inline constexpr DWORD kInvalidHandle = 6;      // ERROR_INVALID_HANDLE
inline constexpr DWORD kAlreadyExists = 183;    // ERROR_ALREADY_EXISTS
inline constexpr DWORD kTimeout = 1460;         // ERROR_TIMEOUT
inline constexpr DWORD kConnected = 0x2000;     // RASCS_Connected
inline constexpr DWORD kDisconnected = 0x2001;  // RASCS_Disconnected

using HRASCONN = HANDLE;

// The records are packed to four bytes, as the system's own declarations are.
#pragma pack(push, 4)

struct Guid {
  DWORD data1;
  WORD data2;
  WORD data3;
  BYTE data4[8];
};

// RASENTRYNAMEA. Windows 95 to NT 4: up to dwFlags; 2000 and XP add the flags and the phonebook.
struct EntryName {
  DWORD dwSize;
  char szEntryName[kMaxEntryName + 1];
  DWORD dwFlags;
  char szPhonebookPath[kMaxPath + 1];
};

// RASCONNA. 95 and NT 4 end at szPhonebook, 98, Me and NT 4 with later RAS at guidEntry, 2000
// at dwFlags.
struct Connection {
  DWORD dwSize;
  HRASCONN hrasconn;
  char szEntryName[kMaxEntryName + 1];
  char szDeviceType[kMaxDeviceType + 1];
  char szDeviceName[kMaxDeviceName + 1];
  char szPhonebook[kMaxPath];
  DWORD dwSubEntry;
  Guid guidEntry;
  DWORD dwFlags;
  DWORD luidLow;  // LUID luid
  LONG luidHigh;
};

// RASCONNSTATUSA. 95 and NT 4 end at szPhoneNumber.
struct ConnectionStatus {
  DWORD dwSize;
  DWORD rasconnstate;
  DWORD dwError;
  char szDeviceType[kMaxDeviceType + 1];
  char szDeviceName[kMaxDeviceName + 1];
  char szPhoneNumber[kMaxPhoneNumber + 1];
};

// RASDEVINFOA: one size on every release.
struct DeviceInfo {
  DWORD dwSize;
  char szDeviceType[kMaxDeviceType + 1];
  char szDeviceName[kMaxDeviceName + 1];
};

// RASDIALPARAMSA. 95 and NT 4 end at dwSubEntry.
struct DialParams {
  DWORD dwSize;
  char szEntryName[kMaxEntryName + 1];
  char szPhoneNumber[kMaxPhoneNumber + 1];
  char szCallbackNumber[kMaxPhoneNumber + 1];
  char szUserName[kMaxUserName + 1];
  char szPassword[kMaxPassword + 1];
  char szDomain[kMaxDomain + 1];
  DWORD dwSubEntry;
  ULONG_PTR dwCallbackId;
};

// RASENTRYA. 95 and NT 4 end at dwSubEntries, 98, Me and NT 4 with later RAS at dwType, 2000 at
// dwfOptions2.
struct Entry {
  DWORD dwSize;
  DWORD dwfOptions;
  DWORD dwCountryID;
  DWORD dwCountryCode;
  char szAreaCode[kMaxAreaCode + 1];
  char szLocalPhoneNumber[kMaxPhoneNumber + 1];
  DWORD dwAlternateOffset;
  BYTE ipaddr[4];
  BYTE ipaddrDns[4];
  BYTE ipaddrDnsAlt[4];
  BYTE ipaddrWins[4];
  BYTE ipaddrWinsAlt[4];
  DWORD dwFrameSize;
  DWORD dwfNetProtocols;
  DWORD dwFramingProtocol;
  char szScript[kMaxPath];
  char szAutodialDll[kMaxPath];
  char szAutodialFunc[kMaxPath];
  char szDeviceType[kMaxDeviceType + 1];
  char szDeviceName[kMaxDeviceName + 1];
  char szX25PadType[kMaxPadType + 1];
  char szX25Address[kMaxX25Address + 1];
  char szX25Facilities[kMaxX25Address + 1];
  char szX25UserData[kMaxUserData + 1];
  DWORD dwChannels;
  DWORD dwReserved1;
  DWORD dwReserved2;
  DWORD dwSubEntries;
  DWORD dwDialMode;
  DWORD dwDialExtraPercent;
  DWORD dwDialExtraSampleSeconds;
  DWORD dwHangUpExtraPercent;
  DWORD dwHangUpExtraSampleSeconds;
  DWORD dwIdleDisconnectSeconds;
  DWORD dwType;
  DWORD dwEncryptionType;
  DWORD dwCustomAuthKey;
  Guid guidId;
  char szCustomDialDll[kMaxPath];
  DWORD dwVpnStrategy;
  DWORD dwfOptions2;
  DWORD dwfOptions3;
  char szDnsSuffix[kMaxDnsSuffix];
  DWORD dwTcpWindowSize;
  char szPrerequisitePbk[kMaxPath];
  char szPrerequisiteEntry[kMaxEntryName + 1];
  DWORD dwRedialCount;
  DWORD dwRedialPause;
};

#pragma pack(pop)

// The size of a record that ends just before the member at `offset`.
template <class Record>
constexpr DWORD SizeUpTo(std::size_t offset) {
  return static_cast<DWORD>((offset + alignof(Record) - 1) / alignof(Record) * alignof(Record));
}

inline constexpr std::array<DWORD, 2> kEntryNameSizes = {
    sizeof(EntryName), SizeUpTo<EntryName>(offsetof(EntryName, dwFlags))};
inline constexpr std::array<DWORD, 4> kConnectionSizes = {
    sizeof(Connection), SizeUpTo<Connection>(offsetof(Connection, dwFlags)),
    SizeUpTo<Connection>(offsetof(Connection, guidEntry)),
    SizeUpTo<Connection>(offsetof(Connection, szPhonebook))};
inline constexpr std::array<DWORD, 2> kConnectionStatusSizes = {
    sizeof(ConnectionStatus),
    SizeUpTo<ConnectionStatus>(offsetof(ConnectionStatus, szPhoneNumber))};
inline constexpr std::array<DWORD, 2> kDialParamsSizes = {
    sizeof(DialParams), SizeUpTo<DialParams>(offsetof(DialParams, dwSubEntry))};
inline constexpr std::array<DWORD, 4> kEntrySizes = {
    sizeof(Entry), SizeUpTo<Entry>(offsetof(Entry, dwfOptions2)),
    SizeUpTo<Entry>(offsetof(Entry, dwType)), SizeUpTo<Entry>(offsetof(Entry, dwSubEntries))};

// The sizes 32-bit Windows knows; a 64-bit build lays the records that hold a handle or a
// pointer-sized member out wider.
static_assert(kEntryNameSizes[0] == 532 && kEntryNameSizes[1] == 264);
static_assert(sizeof(DeviceInfo) == 152);
static_assert(kConnectionStatusSizes[0] == 288 && kConnectionStatusSizes[1] == 160);
static_assert(kEntrySizes[0] == 2884 && kEntrySizes[1] == 2088 && kEntrySizes[2] == 1796 &&
              kEntrySizes[3] == 1768);
static_assert(sizeof(void*) != 4 || (kConnectionSizes[0] == 704 && kConnectionSizes[1] == 692 &&
                                     kConnectionSizes[2] == 676 && kConnectionSizes[3] == 412));

static_assert(sizeof(void*) != 4 || (kDialParamsSizes[0] == 1060 && kDialParamsSizes[1] == 1052));
static_assert(sizeof(void*) != 8 || (kConnectionSizes[0] == 708 && kDialParamsSizes[0] == 1064));

// RASDIALFUNC: called as the dial moves from state to state.
using DialFunc = void(WINAPI*)(UINT message, DWORD state, DWORD error);

using EnumEntriesA = DWORD(WINAPI*)(const char* reserved, const char* phonebook, EntryName* entries,
                                    DWORD* size, DWORD* count);
using GetEntryPropertiesA = DWORD(WINAPI*)(const char* phonebook, const char* entry, Entry* record,
                                           DWORD* size, BYTE* deviceInfo, DWORD* deviceInfoSize);
using SetEntryPropertiesA = DWORD(WINAPI*)(const char* phonebook, const char* entry, Entry* record,
                                           DWORD size, BYTE* deviceInfo, DWORD deviceInfoSize);
using DeleteEntryA = DWORD(WINAPI*)(const char* phonebook, const char* entry);
using DialA = DWORD(WINAPI*)(void* extensions, const char* phonebook, DialParams* params,
                             DWORD notifierType, void* notifier, HRASCONN* connection);
using HangUpA = DWORD(WINAPI*)(HRASCONN connection);
using EnumDevicesA = DWORD(WINAPI*)(DeviceInfo* devices, DWORD* size, DWORD* count);
using EnumConnectionsA = DWORD(WINAPI*)(Connection* connections, DWORD* size, DWORD* count);
using GetConnectStatusA = DWORD(WINAPI*)(HRASCONN connection, ConnectionStatus* status);
using GetErrorStringA = DWORD(WINAPI*)(UINT error, char* text, DWORD size);

}  // namespace Hostkit::platform::ras
