// Registry files: reading "REGEDIT4" and "Windows Registry Editor Version 5.00" text into a list
// of operations, applying them through the seam's registry calls, and writing the registry
// below a set of roots back out as such a file.
//
// Reading is split from applying so that a file with any malformed line is refused before it
// changes anything. Applying and writing use only the seam, so the same code fills a simulated
// machine and a real registry.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/win_types.h"

namespace Hostkit::regfile {

using wstring_view = std::basic_string_view<WCHAR>;

// The largest registry file read, and the longest key name (between backslashes) a file may
// hold, in characters.
constexpr size_t kMaxFileBytes = size_t{64} << 20;
constexpr size_t kMaxKeyNameLength = 255;

// How the data bytes of an operation are encoded, which decides what the applier converts
// when the target stores the other kind of text.
enum class DataText {
  Raw,    // stored as they are on every target
  Ansi,   // text in the machine's ANSI code page (hex(2)/hex(7) of a REGEDIT4 file)
  Utf16,  // UTF-16 LE text (quoted strings, hex(2)/hex(7) of a 5.00 file)
};

struct Operation {
  enum class Kind { CreateKey, DeleteKey, SetValue, DeleteValue };

  Kind kind = Kind::CreateKey;
  int line = 0;         // line of the file the operation comes from
  HKEY root = nullptr;  // one of the predefined roots
  wstring path;         // below the root; no leading or trailing backslash; empty: the root
  wstring name;         // value name; empty: the default value
  DWORD type = REG_NONE;
  std::vector<BYTE> data;
  DataText text = DataText::Raw;
};

// Parses the bytes of a registry file. `fileName` only names the file in the error, which is
// one line "FILE:LINE: what is wrong". REGEDIT4 text is converted from the active machine's
// ANSI code page.
bool ParseRegFile(std::string_view bytes, const std::string& fileName,
                  std::vector<Operation>& operations, std::string& error);

// Applies parsed operations in order through the seam. Stops at the first failure, with an
// error naming the file and the line of the operation that failed.
bool ApplyRegFile(const std::vector<Operation>& operations, const std::string& fileName,
                  std::string& error);

// Writes every key and value below `roots` as a registry file that ParseRegFile and
// ApplyRegFile turn back into the same tree: version 5.00 in UTF-16 when the registry answers
// the wide calls, REGEDIT4 in the ANSI code page when it does not (Windows 9x). Values that
// the quoted and dword forms cannot carry exactly are written as hex(N).
bool WriteRegFile(const std::vector<HKEY>& roots, std::string& bytes, std::string& error);

// The root named by a key line's first component, long ("HKEY_LOCAL_MACHINE") or short ("HKLM")
// form, any case; null when there is none.
HKEY RootFromName(wstring_view name);
// The long name of a predefined root; empty for other handles.
std::string RootName(HKEY root);

}  // namespace Hostkit::regfile
