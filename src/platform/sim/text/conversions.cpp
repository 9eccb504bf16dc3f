// MultiByteToWideChar and WideCharToMultiByte over iconv, with the code pages of the active
// machine standing for CP_ACP and CP_OEMCP.
#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "hostkit/sim/machine.h"
#include "platform/sim/text/codec.h"
#include "platform/system_info.h"
#include "platform/text.h"

namespace Hostkit::sim {

namespace {

// `singleByte`: every byte is one character on its own, so the code page converts through a
// table. Code pages 1255 and 1258 are single-byte too, but iconv composes their combining marks
// with the character before, so they stay with iconv like the multi-byte ones.
struct CodePageName {
  UINT codePage;
  bool singleByte;
  const char* iconvName;
};

constexpr CodePageName kCodePages[] = {
    {437, true, "CP437"},      {850, true, "CP850"},   {932, false, "CP932"},
    {936, false, "CP936"},     {949, false, "CP949"},  {950, false, "CP950"},
    {1250, true, "CP1250"},    {1251, true, "CP1251"}, {1252, true, "CP1252"},
    {1253, true, "CP1253"},    {1254, true, "CP1254"}, {1255, false, "CP1255"},
    {1256, true, "CP1256"},    {1257, true, "CP1257"}, {1258, false, "CP1258"},
    {CP_UTF8, false, "UTF-8"},
};

// Byte-exact UTF-16 on the iconv side, whatever the host's byte order.
constexpr const char* kUtf16 = "UTF-16LE";
constexpr char16_t kReplacement = 0xFFFD;

const CodePageName* FindCodePage(UINT codePage) {
  for (const auto& entry : kCodePages) {
    if (entry.codePage == codePage) {
      return &entry;
    }
  }
  return nullptr;
}

// Windows' code page 1252 maps its five unassigned bytes to the C1 controls of the same value;
// iconv rejects them.
bool IsCp1252PassThrough(unsigned value) {
  return value == 0x81 || value == 0x8D || value == 0x8F || value == 0x90 || value == 0x9D;
}

class IconvDescriptor {
 public:
  IconvDescriptor(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
  ~IconvDescriptor() {
    if (valid()) {
      iconv_close(cd_);
    }
  }
  IconvDescriptor(const IconvDescriptor&) = delete;
  IconvDescriptor& operator=(const IconvDescriptor&) = delete;

  bool valid() const { return cd_ != reinterpret_cast<iconv_t>(-1); }

  // Converts `in` onto the end of `out` until the input is used up or a sequence cannot be
  // converted, then flushes any character the converter holds back (1255 and 1258 wait for
  // combining marks) and resets its state. Returns the number of input bytes consumed.
  std::size_t convertUntilError(std::string_view in, std::string& out) {
    char* inPtr = const_cast<char*>(in.data());
    std::size_t inLeft = in.size();
    std::array<char, 256> buffer{};
    while (inLeft > 0) {
      char* outPtr = buffer.data();
      std::size_t outLeft = buffer.size();
      const std::size_t result = iconv(cd_, &inPtr, &inLeft, &outPtr, &outLeft);
      out.append(buffer.data(), outPtr);
      if (result != static_cast<std::size_t>(-1) || errno != E2BIG) {
        break;
      }
    }
    char* outPtr = buffer.data();
    std::size_t outLeft = buffer.size();
    iconv(cd_, nullptr, nullptr, &outPtr, &outLeft);
    out.append(buffer.data(), outPtr);
    return in.size() - inLeft;
  }

 private:
  iconv_t cd_;
};

void AppendUnitLe(std::string& bytes, char16_t unit) {
  bytes.push_back(static_cast<char>(unit & 0xFF));
  bytes.push_back(static_cast<char>(unit >> 8));
}

std::u16string UnitsFromLe(const std::string& bytes) {
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                     (static_cast<unsigned char>(bytes[2 * i + 1]) << 8));
  }
  return units;
}

// The iconv descriptor converting `from` to `to` for this thread, opened on first use and kept:
// a descriptor carries conversion state, so threads do not share one. Null when iconv knows
// either name not.
IconvDescriptor* Converter(const char* to, const char* from) {
  thread_local std::map<std::pair<const char*, const char*>, std::unique_ptr<IconvDescriptor>>
      converters;
  auto& converter = converters[{to, from}];
  if (!converter) {
    converter = std::make_unique<IconvDescriptor>(to, from);
  }
  return converter->valid() ? converter.get() : nullptr;
}

// A single-byte code page as two tables, both taken from iconv's own decoding of each byte:
// the character of every byte, and the byte of every character.
struct ByteTable {
  static constexpr std::int16_t kNone = -1;
  std::array<std::int32_t, 256> toUnit{};  // the unit of each byte, or kNone
  std::vector<std::int16_t> toByte{};      // the byte of each unit, or kNone
};

// The tables of `page`, or nullopt when iconv does not decode every byte into at most one unit
// with no two bytes alike: such a code page keeps going through iconv.
std::optional<ByteTable> MakeByteTable(const CodePageName& page) {
  IconvDescriptor converter(kUtf16, page.iconvName);
  if (!converter.valid()) {
    return std::nullopt;
  }
  ByteTable table;
  table.toByte.assign(0x10000, ByteTable::kNone);
  for (unsigned value = 0; value < 256; ++value) {
    const char byte = static_cast<char>(value);
    std::string utf16;
    std::int32_t unit = ByteTable::kNone;
    if (converter.convertUntilError(std::string_view(&byte, 1), utf16) == 1) {
      if (utf16.size() != 2) {
        return std::nullopt;
      }
      unit = static_cast<unsigned char>(utf16[0]) | (static_cast<unsigned char>(utf16[1]) << 8);
    } else if (page.codePage == 1252 && IsCp1252PassThrough(value)) {
      unit = static_cast<std::int32_t>(value);
    }
    table.toUnit[value] = unit;
    if (unit != ByteTable::kNone) {
      if (table.toByte[static_cast<std::size_t>(unit)] != ByteTable::kNone) {
        return std::nullopt;
      }
      table.toByte[static_cast<std::size_t>(unit)] = static_cast<std::int16_t>(value);
    }
  }
  return table;
}

// The byte table of `codePage`, or null when it converts through iconv. The tables are made
// once, all together, the first time any is asked for.
const ByteTable* ByteTableOf(UINT codePage) {
  static const auto tables = [] {
    std::map<UINT, ByteTable> made;
    for (const auto& page : kCodePages) {
      if (page.singleByte) {
        if (auto table = MakeByteTable(page)) {
          made.emplace(page.codePage, std::move(*table));
        }
      }
    }
    return made;
  }();
  const auto it = tables.find(codePage);
  return it != tables.end() ? &it->second : nullptr;
}

DecodeResult DecodeBytes(const ByteTable& table, std::string_view bytes, bool stopAtInvalid) {
  DecodeResult result;
  result.text.resize(bytes.size());
  std::size_t length = 0;
  for (const char byte : bytes) {
    const std::int32_t unit = table.toUnit[static_cast<unsigned char>(byte)];
    if (unit == ByteTable::kNone && stopAtInvalid) {
      result.invalid = true;
      break;
    }
    result.text[length++] = unit != ByteTable::kNone ? static_cast<char16_t>(unit) : kReplacement;
  }
  result.text.resize(length);
  return result;
}

EncodeResult EncodeUnits(const ByteTable& table, std::u16string_view text, char defaultChar) {
  EncodeResult result;
  result.bytes.resize(text.size());
  std::size_t length = 0;
  for (const char16_t unit : text) {
    const std::int16_t byte = table.toByte[unit];
    result.usedDefault = result.usedDefault || byte == ByteTable::kNone;
    result.bytes[length++] = byte != ByteTable::kNone ? static_cast<char>(byte) : defaultChar;
  }
  return result;
}

}  // namespace

std::optional<DecodeResult> DecodeCodePage(UINT codePage, std::string_view bytes,
                                           bool stopAtInvalid) {
  const CodePageName* page = FindCodePage(codePage);
  if (page == nullptr) {
    return std::nullopt;
  }
  if (const ByteTable* table = ByteTableOf(codePage)) {
    return DecodeBytes(*table, bytes, stopAtInvalid);
  }
  IconvDescriptor* converter = Converter(kUtf16, page->iconvName);
  if (converter == nullptr) {
    return std::nullopt;
  }
  DecodeResult result;
  std::string utf16;
  std::size_t pos = 0;
  while (pos < bytes.size()) {
    pos += converter->convertUntilError(bytes.substr(pos), utf16);
    if (pos == bytes.size()) {
      break;
    }
    if (stopAtInvalid) {
      result.invalid = true;
      break;
    }
    AppendUnitLe(utf16, kReplacement);
    ++pos;
  }
  result.text = UnitsFromLe(utf16);
  return result;
}

std::optional<EncodeResult> EncodeCodePage(UINT codePage, std::u16string_view text,
                                           char defaultChar) {
  const CodePageName* page = FindCodePage(codePage);
  if (page == nullptr) {
    return std::nullopt;
  }
  if (const ByteTable* table = ByteTableOf(codePage)) {
    return EncodeUnits(*table, text, defaultChar);
  }
  IconvDescriptor* converter = Converter(page->iconvName, kUtf16);
  if (converter == nullptr) {
    return std::nullopt;
  }
  std::string utf16;
  utf16.reserve(text.size() * 2);
  for (char16_t unit : text) {
    AppendUnitLe(utf16, unit);
  }
  EncodeResult result;
  std::size_t pos = 0;
  while (pos < utf16.size()) {
    pos += converter->convertUntilError(std::string_view(utf16).substr(pos), result.bytes);
    if (pos >= utf16.size()) {
      break;
    }
    // iconv stops at a unit boundary: the unit there is the one without a mapping.
    const std::size_t index = pos / 2;
    if (codePage == CP_UTF8) {
      result.bytes += "\xEF\xBF\xBD";
    } else {
      result.bytes.push_back(defaultChar);
      result.usedDefault = true;
    }
    pos = (index + 1) * 2;
  }
  return result;
}

UINT ResolveCodePage(const Machine& machine, UINT codePage) {
  if (codePage == CP_ACP) {
    return machine.facts().ansiCodePage;
  }
  if (codePage == CP_OEMCP) {
    return machine.facts().oemCodePage;
  }
  return codePage;
}

std::u16string AnsiToUtf16(const Machine& machine, std::string_view bytes) {
  auto decoded = DecodeCodePage(machine.facts().ansiCodePage, bytes, false);
  if (decoded) {
    return std::move(decoded->text);
  }
  // An unsupported ANSI code page: widen byte for byte, as Latin-1 would.
  std::u16string widened;
  for (char c : bytes) {
    widened.push_back(static_cast<unsigned char>(c));
  }
  return widened;
}

std::string Utf16ToAnsi(const Machine& machine, std::u16string_view text) {
  auto encoded = EncodeCodePage(machine.facts().ansiCodePage, text, '?');
  if (encoded) {
    return std::move(encoded->bytes);
  }
  std::string narrowed;
  for (char16_t unit : text) {
    narrowed.push_back(unit < 0x100 ? static_cast<char>(unit) : '?');
  }
  return narrowed;
}

}  // namespace Hostkit::sim

namespace Hostkit::platform {

namespace {

int Fail(LONG error) {
  SetLastError(static_cast<DWORD>(error));
  return 0;
}

// Length of a source given with -1 (zero-terminated, terminator counted) or explicitly.
template <class Char>
std::size_t SourceLength(const Char* source, int sourceLength) {
  if (sourceLength >= 0) {
    return static_cast<std::size_t>(sourceLength);
  }
  return std::char_traits<Char>::length(source) + 1;
}

// Windows' output protocol: a target length of 0 asks for the size; a target too small fails.
template <class Char>
int Deliver(const std::basic_string<Char>& converted, Char* target, int targetLength) {
  if (converted.size() > static_cast<std::size_t>(INT_MAX)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const int needed = static_cast<int>(converted.size());
  if (targetLength == 0) {
    return needed;
  }
  if (needed > targetLength) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  std::copy(converted.begin(), converted.end(), target);
  return needed;
}

template <class Char>
bool ValidArguments(const Char* source, int sourceLength, const void* target, int targetLength) {
  return source != nullptr && sourceLength != 0 && sourceLength >= -1 && targetLength >= 0 &&
         (target != nullptr || targetLength == 0);
}

}  // namespace

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* source, int sourceLength,
                        WCHAR* target, int targetLength) {
  try {
    if (!ValidArguments(source, sourceLength, target, targetLength)) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    const auto machine = sim::ActiveMachine();
    const std::string_view bytes(source, SourceLength(source, sourceLength));
    auto decoded = sim::DecodeCodePage(sim::ResolveCodePage(*machine, codePage), bytes,
                                       (flags & MB_ERR_INVALID_CHARS) != 0);
    if (!decoded) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    if (decoded->invalid) {
      return Fail(ERROR_NO_UNICODE_TRANSLATION);
    }
    return Deliver(decoded->text, target, targetLength);
  } catch (...) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

int WideCharToMultiByte(UINT codePage, DWORD /*flags*/, const WCHAR* source, int sourceLength,
                        char* target, int targetLength, const char* defaultChar,
                        BOOL* usedDefaultChar) {
  try {
    if (!ValidArguments(source, sourceLength, target, targetLength)) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    const auto machine = sim::ActiveMachine();
    const UINT concrete = sim::ResolveCodePage(*machine, codePage);
    // UTF-8 has no default character, and Windows refuses the arguments that ask about one.
    if (concrete == CP_UTF8 && (defaultChar != nullptr || usedDefaultChar != nullptr)) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    const std::u16string_view units(source, SourceLength(source, sourceLength));
    // Every flag, WC_NO_BEST_FIT_CHARS included, behaves the same: best fit is never applied.
    auto encoded =
        sim::EncodeCodePage(concrete, units, defaultChar != nullptr ? *defaultChar : '?');
    if (!encoded) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    if (usedDefaultChar != nullptr) {
      *usedDefaultChar = encoded->usedDefault ? TRUE : FALSE;
    }
    return Deliver(encoded->bytes, target, targetLength);
  } catch (...) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

}  // namespace Hostkit::platform
