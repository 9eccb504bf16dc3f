// Code-page conversions of the simulated machine, shared by the text calls and the registry.
//
// Conversions run through glibc's iconv, so multi-byte code pages (932, 936, 949, 950) accept
// and reject the same sequences as their Windows tables. There is no best-fit mapping: a
// character without an exact form in the target code page becomes the default character.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "hostkit/win_types.h"

namespace Hostkit::sim {

class Machine;

struct DecodeResult {
  std::u16string text;
  bool invalid = false;  // a byte sequence is not valid in the code page
};

struct EncodeResult {
  std::string bytes;
  bool usedDefault = false;  // a character had no mapping and became the default character
};

// Bytes of the concrete code page `codePage` (not CP_ACP or CP_OEMCP) to UTF-16. Each byte of
// an invalid sequence becomes U+FFFD; with `stopAtInvalid` decoding stops at the first one and
// sets `invalid`. nullopt: the code page is not supported.
std::optional<DecodeResult> DecodeCodePage(UINT codePage, std::string_view bytes,
                                           bool stopAtInvalid);

// UTF-16 to bytes of the concrete code page `codePage`, unit by unit: a unit without a mapping
// (an unpaired surrogate included) becomes `defaultChar`. UTF-8 has no default character: an
// unpaired surrogate becomes the encoding of U+FFFD. nullopt: the code page is not supported.
std::optional<EncodeResult> EncodeCodePage(UINT codePage, std::u16string_view text,
                                           char defaultChar);

// The concrete code page that CP_ACP and CP_OEMCP stand for on `machine`; other values as given.
UINT ResolveCodePage(const Machine& machine, UINT codePage);

// Lossy conversions through `machine`'s ANSI code page ("?" and U+FFFD for what does not map),
// used where Windows converts silently: registry names and the string data of narrow calls.
std::u16string AnsiToUtf16(const Machine& machine, std::string_view bytes);
std::string Utf16ToAnsi(const Machine& machine, std::u16string_view text);

}  // namespace Hostkit::sim
