// The registry calls of advapi32 over the active machine's registry store.
//
// Each narrow/wide pair shares one template: names are converted to UTF-16 on the way in and
// back to the caller's width on the way out, and the Win32 buffer protocols (sizes,
// ERROR_MORE_DATA, terminators added in the caller's buffer) are applied here; the store does
// the rest.
#include <algorithm>
#include <string>
#include <type_traits>

#include "hostkit/sim/machine.h"
#include "platform/registry.h"
#include "platform/sim/registry/store.h"
#include "platform/sim/text/codec.h"

namespace Hostkit::platform {

namespace {

using sim::CharWidth;

template <class Char>
constexpr CharWidth kWidth = std::is_same_v<Char, char> ? CharWidth::Narrow : CharWidth::Wide;

std::u16string StoreName(const sim::Machine& machine, const char* name) {
  return name != nullptr ? sim::AnsiToUtf16(machine, name) : std::u16string();
}

std::u16string StoreName(const sim::Machine& /*machine*/, const WCHAR* name) {
  return name != nullptr ? std::u16string(name) : std::u16string();
}

template <class Char>
std::basic_string<Char> CallerName(const sim::Machine& machine, const std::u16string& name) {
  if constexpr (std::is_same_v<Char, char>) {
    return sim::Utf16ToAnsi(machine, name);
  } else {
    return name;
  }
}

// Set while a call runs that a planned ERROR_MORE_DATA failure hit: the data and name it
// delivers do not fit, whatever the buffer.
thread_local bool tOutgrown = false;

// Runs `call` on the active machine. No exception leaves a registry call: running out of
// memory is a result like any other. Windows 9x answers every wide call as a stub does,
// before looking at any argument; the other calls may meet a planned failure.
template <class Char, class Call>
LONG OnActiveMachine(Call&& call) {
  try {
    const auto machine = sim::ActiveMachine();
    if (kWidth<Char> == CharWidth::Wide && machine->isWin9x()) {
      return ERROR_CALL_NOT_IMPLEMENTED;
    }
    DWORD fault = ERROR_SUCCESS;
    if (machine->faults().failNow(sim::FaultFamily::Registry, fault) && fault != ERROR_MORE_DATA) {
      return static_cast<LONG>(fault);
    }
    tOutgrown = fault == ERROR_MORE_DATA;
    const LONG result = call(*machine);
    tOutgrown = false;
    return result;
  } catch (...) {
    tOutgrown = false;
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

// The data half of RegQueryValueEx and RegEnumValue. Without a buffer only the size is
// reported; a buffer too small gets ERROR_MORE_DATA, the full size and no bytes. String data
// gets a terminator of the caller's width after it when the buffer has room for one; it is not
// counted in the size.
template <class Char>
LONG DeliverData(const sim::ValueRead& value, DWORD* type, BYTE* data, DWORD* size) {
  if (type != nullptr) {
    *type = value.type;
  }
  const auto needed = static_cast<DWORD>(value.data.size());
  if (data == nullptr) {
    if (size != nullptr) {
      *size = needed;
    }
    return ERROR_SUCCESS;
  }
  if (tOutgrown) {
    *size = std::max(*size, needed) + 2;  // the data grew since the caller asked its size
    return ERROR_MORE_DATA;
  }
  if (*size < needed) {
    *size = needed;
    return ERROR_MORE_DATA;
  }
  std::copy(value.data.begin(), value.data.end(), data);
  if (sim::IsStringType(value.type) && *size - needed >= sizeof(Char)) {
    std::fill_n(data + needed, sizeof(Char), BYTE{0});
  }
  *size = needed;
  return ERROR_SUCCESS;
}

// The name half of RegEnumKeyEx and RegEnumValue: `size` counts characters, and the buffer must
// hold the name and its terminator.
template <class Char>
LONG DeliverName(const std::basic_string<Char>& name, Char* buffer, DWORD* size) {
  if (tOutgrown || name.size() >= *size) {
    return ERROR_MORE_DATA;
  }
  std::copy(name.begin(), name.end(), buffer);
  buffer[name.size()] = Char{0};
  *size = static_cast<DWORD>(name.size());
  return ERROR_SUCCESS;
}

template <class Char>
LONG OpenKey(HKEY key, const Char* subKey, REGSAM access, HKEY* result) {
  return OnActiveMachine<Char>([&](sim::Machine& machine) {
    if (result == nullptr) {
      return ERROR_INVALID_PARAMETER;
    }
    return machine.registry().openKey(key, StoreName(machine, subKey), access, kWidth<Char>,
                                      result);
  });
}

template <class Char>
LONG CreateKey(HKEY key, const Char* subKey, DWORD reserved, REGSAM access, HKEY* result,
               DWORD* disposition) {
  return OnActiveMachine<Char>([&](sim::Machine& machine) {
    if (result == nullptr || reserved != 0) {
      return ERROR_INVALID_PARAMETER;
    }
    return machine.registry().createKey(key, StoreName(machine, subKey), access, kWidth<Char>,
                                        result, disposition);
  });
}

template <class Char>
LONG QueryValue(HKEY key, const Char* name, const DWORD* reserved, DWORD* type, BYTE* data,
                DWORD* size) {
  return OnActiveMachine<Char>([&](sim::Machine& machine) {
    if (reserved != nullptr || (data != nullptr && size == nullptr)) {
      return ERROR_INVALID_PARAMETER;
    }
    sim::ValueRead value;
    const LONG status =
        machine.registry().queryValue(key, StoreName(machine, name), kWidth<Char>, value);
    return status != ERROR_SUCCESS ? status : DeliverData<Char>(value, type, data, size);
  });
}

// The size a string value is stored with. The NT family counts a terminator the caller left out
// of the size when one follows the data, reading one character past it; Windows 9x ignores the
// size of a REG_SZ and stores the text up to its first zero, with that zero. Other string types
// are stored as given on Windows 9x. (Wine does the same, release for release.)
template <class Char>
DWORD SizeWithForgottenTerminator(const BYTE* data, DWORD size) {
  const auto* text = reinterpret_cast<const Char*>(data);
  const DWORD units = size / sizeof(Char);
  if (units > 0 && text[units - 1] != Char{0} && text[units] == Char{0}) {
    return size + sizeof(Char);
  }
  return size;
}

template <class Char>
LONG SetValue(HKEY key, const Char* name, DWORD type, const BYTE* data, DWORD size) {
  return OnActiveMachine<Char>([&](sim::Machine& machine) {
    if (data == nullptr && size != 0) {
      return ERROR_INVALID_PARAMETER;
    }
    if (data != nullptr && machine.isWin9x() && type == REG_SZ) {
      size = static_cast<DWORD>(
                 std::char_traits<Char>::length(reinterpret_cast<const Char*>(data)) + 1) *
             sizeof(Char);
    } else if (data != nullptr && !machine.isWin9x() && sim::IsStringType(type)) {
      size = SizeWithForgottenTerminator<Char>(data, size);
    }
    return machine.registry().setValue(key, StoreName(machine, name), type, data, size,
                                       kWidth<Char>);
  });
}

template <class Char>
LONG DeleteValue(HKEY key, const Char* name) {
  return OnActiveMachine<Char>([&](sim::Machine& machine) {
    return machine.registry().deleteValue(key, StoreName(machine, name), kWidth<Char>);
  });
}

template <class Char>
LONG DeleteKey(HKEY key, const Char* subKey) {
  return OnActiveMachine<Char>([&](sim::Machine& machine) {
    if (subKey == nullptr) {
      return ERROR_INVALID_PARAMETER;
    }
    return machine.registry().deleteKey(key, StoreName(machine, subKey), kWidth<Char>);
  });
}

template <class Char>
LONG EnumKey(HKEY key, DWORD index, Char* name, DWORD* nameSize, const DWORD* reserved,
             Char* keyClass, DWORD* classSize, FILETIME* lastWrite) {
  return OnActiveMachine<Char>([&](sim::Machine& machine) {
    if (name == nullptr || nameSize == nullptr || reserved != nullptr ||
        (keyClass != nullptr && classSize == nullptr)) {
      return ERROR_INVALID_PARAMETER;
    }
    std::u16string found;
    LONG status = machine.registry().enumKey(key, index, kWidth<Char>, found);
    if (status == ERROR_SUCCESS) {
      status = DeliverName(CallerName<Char>(machine, found), name, nameSize);
    }
    if (status != ERROR_SUCCESS) {
      return status;
    }
    // Keys carry no class and no write time in the simulation.
    if (keyClass != nullptr && *classSize > 0) {
      keyClass[0] = Char{0};
    }
    if (classSize != nullptr) {
      *classSize = 0;
    }
    if (lastWrite != nullptr) {
      *lastWrite = FILETIME{0, 0};
    }
    return ERROR_SUCCESS;
  });
}

template <class Char>
LONG EnumValue(HKEY key, DWORD index, Char* name, DWORD* nameSize, const DWORD* reserved,
               DWORD* type, BYTE* data, DWORD* dataSize) {
  return OnActiveMachine<Char>([&](sim::Machine& machine) {
    if (name == nullptr || nameSize == nullptr || reserved != nullptr ||
        (data != nullptr && dataSize == nullptr)) {
      return ERROR_INVALID_PARAMETER;
    }
    std::u16string found;
    sim::ValueRead value;
    LONG status = machine.registry().enumValue(key, index, kWidth<Char>, found, value);
    if (status == ERROR_SUCCESS) {
      status = DeliverName(CallerName<Char>(machine, found), name, nameSize);
    }
    return status != ERROR_SUCCESS ? status : DeliverData<Char>(value, type, data, dataSize);
  });
}

}  // namespace

LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD /*options*/, REGSAM access, HKEY* result) {
  return OpenKey(key, subKey, access, result);
}

LONG RegOpenKeyExW(HKEY key, const WCHAR* subKey, DWORD /*options*/, REGSAM access, HKEY* result) {
  return OpenKey(key, subKey, access, result);
}

// Key classes, volatility and security descriptors are not simulated.
LONG RegCreateKeyExA(HKEY key, const char* subKey, DWORD reserved, char* /*keyClass*/,
                     DWORD /*options*/, REGSAM access, void* /*security*/, HKEY* result,
                     DWORD* disposition) {
  return CreateKey(key, subKey, reserved, access, result, disposition);
}

LONG RegCreateKeyExW(HKEY key, const WCHAR* subKey, DWORD reserved, WCHAR* /*keyClass*/,
                     DWORD /*options*/, REGSAM access, void* /*security*/, HKEY* result,
                     DWORD* disposition) {
  return CreateKey(key, subKey, reserved, access, result, disposition);
}

LONG RegCloseKey(HKEY key) {
  try {
    return sim::ActiveMachine()->registry().closeKey(key);
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

LONG RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
  return QueryValue(key, name, reserved, type, data, size);
}

LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
  return QueryValue(key, name, reserved, type, data, size);
}

LONG RegSetValueExA(HKEY key, const char* name, DWORD /*reserved*/, DWORD type, const BYTE* data,
                    DWORD size) {
  return SetValue(key, name, type, data, size);
}

LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD /*reserved*/, DWORD type, const BYTE* data,
                    DWORD size) {
  return SetValue(key, name, type, data, size);
}

LONG RegDeleteValueA(HKEY key, const char* name) { return DeleteValue(key, name); }

LONG RegDeleteValueW(HKEY key, const WCHAR* name) { return DeleteValue(key, name); }

LONG RegDeleteKeyA(HKEY key, const char* subKey) { return DeleteKey(key, subKey); }

LONG RegDeleteKeyW(HKEY key, const WCHAR* subKey) { return DeleteKey(key, subKey); }

LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved,
                   char* keyClass, DWORD* classSize, FILETIME* lastWrite) {
  return EnumKey(key, index, name, nameSize, reserved, keyClass, classSize, lastWrite);
}

LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize, DWORD* reserved,
                   WCHAR* keyClass, DWORD* classSize, FILETIME* lastWrite) {
  return EnumKey(key, index, name, nameSize, reserved, keyClass, classSize, lastWrite);
}

LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved, DWORD* type,
                   BYTE* data, DWORD* dataSize) {
  return EnumValue(key, index, name, nameSize, reserved, type, data, dataSize);
}

LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* dataSize) {
  return EnumValue(key, index, name, nameSize, reserved, type, data, dataSize);
}

}  // namespace Hostkit::platform
