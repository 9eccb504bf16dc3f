// The registry file RegistryBackup writes. One writer serves both formats: REGEDIT4 reads the
// registry with the narrow calls and writes ANSI bytes; version 5.00 reads it with the wide
// calls and writes UTF-16 LE, its fixed text (brackets, root names, type prefixes, digits,
// line ends) converted from the OEM code page piece by piece.
#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/reg_file.h"
#include "foundation/reg_file_format.h"
#include "foundation/registry_backup_impl.h"
#include "foundation/registry_calls.h"
#include "hostkit/strings.h"
#include "platform/text.h"

namespace Hostkit::backup {

namespace {

// Buffer size, in characters, for value and subkey names and for one converted text piece.
constexpr DWORD kNameBuffer = 259;
constexpr int kPieceBuffer = 260;
// Bytes of value data read together with the value's name; larger values are read again.
constexpr size_t kValueBuffer = 4096;

// The file's bytes, gathered and written in large blocks.
class Output {
 public:
  Output(std::FILE* file, bool unicode) : file_(file), unicode_(unicode) {
    pending_.reserve(kFlushBytes);
    if (unicode_) {
      LearnAsciiUnits();
    }
  }
  ~Output() { Flush(); }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void Bytes(const void* data, size_t size) {
    pending_.append(static_cast<const char*>(data), size);
    FlushWhenFull();
  }

  // Text of the writer itself: as it is in REGEDIT4, converted from the OEM code page in
  // pieces that fit the conversion buffer in version 5.00. Text of ASCII characters alone is
  // converted character by character through the table LearnAsciiUnits made, which gives the
  // same units: no OEM code page joins an ASCII byte with its neighbours.
  void Text(std::string_view text) {
    if (!unicode_) {
      Bytes(text.data(), text.size());
      return;
    }
    if (asciiKnown_ && std::all_of(text.begin(), text.end(), [](char c) { return IsAscii(c); })) {
      for (const char c : text) {
        Unit(asciiUnits_[static_cast<unsigned char>(c)]);
      }
      FlushWhenFull();
      return;
    }
    while (!text.empty()) {
      const std::string_view piece = text.substr(0, kPieceBuffer - 1);
      text.remove_prefix(piece.size());
      WCHAR units[kPieceBuffer];
      const int count = platform::MultiByteToWideChar(
          CP_OEMCP, 0, piece.data(), static_cast<int>(piece.size()), units, kPieceBuffer);
      Units(std::basic_string_view<WCHAR>(units, count > 0 ? static_cast<size_t>(count) : 0));
    }
  }

  // Text read from the registry: ANSI bytes as they are, or UTF-16 units as LE byte pairs.
  void Registry(std::string_view text) { Bytes(text.data(), text.size()); }
  void Registry(std::basic_string_view<WCHAR> text) { Units(text); }

 private:
  static constexpr size_t kFlushBytes = size_t{64} * 1024;

  static bool IsAscii(char c) { return c > 0 && static_cast<unsigned char>(c) < 0x80; }

  // The OEM code page's unit for each ASCII character, in one conversion.
  void LearnAsciiUnits() {
    char ascii[0x7F];
    for (int c = 1; c < 0x80; ++c) {
      ascii[c - 1] = static_cast<char>(c);
    }
    WCHAR units[kPieceBuffer];
    asciiKnown_ = platform::MultiByteToWideChar(CP_OEMCP, 0, ascii, static_cast<int>(sizeof ascii),
                                                units, kPieceBuffer) == 0x7F;
    if (asciiKnown_) {
      std::copy(units, units + 0x7F, asciiUnits_.begin() + 1);
    }
  }

  void Unit(WCHAR unit) {
    regfile::AppendUtf16Le(pending_, std::basic_string_view<WCHAR>(&unit, 1));
  }

  void Units(std::basic_string_view<WCHAR> text) {
    regfile::AppendUtf16Le(pending_, text);
    FlushWhenFull();
  }

  void FlushWhenFull() {
    if (pending_.size() >= kFlushBytes) {
      Flush();
    }
  }

  void Flush() {
    std::fwrite(pending_.data(), 1, pending_.size(), file_);
    pending_.clear();
  }

  std::FILE* file_;
  bool unicode_;
  std::string pending_;
  bool asciiKnown_ = false;
  std::array<WCHAR, 0x80> asciiUnits_{};
};

// Whether `path` is `expected` without regard to ASCII case.
template <class Ch>
bool SameAsciiPath(const std::basic_string<Ch>& path, std::string_view expected) {
  auto lower = [](unsigned c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
  return path.size() == expected.size() &&
         std::equal(path.begin(), path.end(), expected.begin(), [&](Ch a, char b) {
           return lower(static_cast<unsigned>(a)) ==
                  lower(static_cast<unsigned>(static_cast<unsigned char>(b)));
         });
}

template <class Ch>
class KeyWriter {
 public:
  using String = std::basic_string<Ch>;

  KeyWriter(Output& out, const FileFormat& format) : out_(out), format_(format) {}

  // The key line, the values, an empty line, then each subkey the same way. The key is opened
  // as `name` below `parent`: the collected path below its root, or a subkey's name below its
  // parent's open key.
  void Write(HKEY parent, const Ch* name, const std::string& rootName, const String& path) {
    const registry::OpenKey<Ch> key(parent, name, KEY_READ);
    if (!key.ok()) {
      return;
    }
    out_.Text("[" + rootName);
    if (!path.empty()) {
      out_.Text("\\");
      out_.Registry(path);
    }
    out_.Text("]\r\n");
    if (!(format_.skipPerflibText &&
          SameAsciiPath(path, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Perflib\\009"))) {
      WriteValues(key.get());
    }
    out_.Text("\r\n");
    for (DWORD index = 0;; ++index) {
      Ch subkey[kNameBuffer];
      DWORD size = kNameBuffer;
      if (registry::Calls<Ch>::EnumKey(key.get(), index, subkey, &size) != ERROR_SUCCESS) {
        break;
      }
      String child = path;
      if (!child.empty()) {
        child.push_back(static_cast<Ch>('\\'));
      }
      child.append(subkey, size);
      Write(key.get(), subkey, rootName, child);
    }
  }

 private:
  // Each value is read with its name in one call into a buffer kept for the key; a value the
  // buffer cannot hold (or any other failure) is read again the long way, which decides.
  void WriteValues(HKEY key) {
    std::vector<BYTE> data(kValueBuffer);
    for (DWORD index = 0;; ++index) {
      Ch name[kNameBuffer];
      DWORD nameSize = kNameBuffer;
      DWORD type = REG_NONE;
      auto read = static_cast<DWORD>(data.size());
      if (registry::Calls<Ch>::EnumValue(key, index, name, &nameSize, &type, data.data(), &read) ==
          ERROR_SUCCESS) {
        // A buffer of the value's own size would hold zeros after the data.
        std::fill(data.begin() + std::min<size_t>(read, 4), data.begin() + 4, BYTE{0});
        WriteValue(String(name, nameSize), type, data, read);
      } else if (!WriteValueSizedFirst(key, index)) {
        return;
      }
    }
  }

  // Reads value `index` by asking its size first, then its type and data into a buffer of that
  // size plus one byte (never fewer than a DWORD's four), and writes it. False when any step
  // fails, which ends the key's value list.
  bool WriteValueSizedFirst(HKEY key, DWORD index) {
    Ch nameBuffer[kNameBuffer];
    DWORD nameSize = kNameBuffer;
    if (registry::Calls<Ch>::EnumValueName(key, index, nameBuffer, &nameSize) != ERROR_SUCCESS) {
      return false;
    }
    const String name(nameBuffer, nameSize);
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (registry::Calls<Ch>::Query(key, name.c_str(), &type, nullptr, &size) != ERROR_SUCCESS) {
      return false;
    }
    std::vector<BYTE> data(std::max<size_t>(size + size_t{1}, 4), 0);
    DWORD read = size + 1;
    if (registry::Calls<Ch>::Query(key, name.c_str(), &type, data.data(), &read) != ERROR_SUCCESS) {
      return false;
    }
    WriteValue(name, type, data, std::min<size_t>(read, data.size()));
    return true;
  }

  // A string value's text: up to its first zero and at most its stored size.
  static String StoredText(const std::vector<BYTE>& data, size_t size) {
    String text;
    for (size_t at = 0; at + sizeof(Ch) <= size; at += sizeof(Ch)) {
      unsigned unit = data[at];
      if constexpr (sizeof(Ch) == 2) {
        unit |= static_cast<unsigned>(data[at + 1]) << 8;
      }
      if (unit == 0) {
        break;
      }
      text.push_back(static_cast<Ch>(unit));
    }
    return text;
  }

  void WriteValue(const String& name, DWORD type, const std::vector<BYTE>& data, size_t size) {
    size_t column = 1;
    if (name.empty()) {
      out_.Text("@");
    } else {
      const String escaped = regfile::EscapedText<Ch>(name, false);
      out_.Text("\"");
      out_.Registry(escaped);
      out_.Text("\"");
      column = escaped.size() + 2;
    }
    out_.Text("=");
    ++column;
    switch (type) {
      case REG_SZ: {
        // REGEDIT4 escapes line breaks except on Windows 95; version 5.00 keeps them.
        const bool lineBreaks = sizeof(Ch) == 1 && !format_.rawLineBreaks;
        out_.Text("\"");
        out_.Registry(regfile::EscapedText<Ch>(StoredText(data, size), lineBreaks));
        out_.Text("\"");
        break;
      }
      case REG_DWORD:
        out_.Text(regfile::DwordText(data[3], data[2], data[1], data[0]));
        break;
      case REG_DWORD_BIG_ENDIAN:
        out_.Text(regfile::DwordText(data[0], data[1], data[2], data[3]));
        break;
      case REG_LINK:
        break;
      default:
        out_.Text(regfile::HexValueText(type, data.data(), size, column));
        break;
    }
    out_.Text("\r\n");
  }

  Output& out_;
  const FileFormat& format_;
};

}  // namespace

void WriteRegistryFile(std::FILE* file, const FileFormat& format,
                       const std::vector<RegistryBackupKey>& keys) {
  Output out(file, format.unicode);
  if (format.unicode) {
    out.Bytes(regfile::kUtf16Bom.data(), regfile::kUtf16Bom.size());
  }
  out.Text(regfile::FileHeader(format.unicode));
  for (const RegistryBackupKey& key : keys) {
    // Only the predefined roots have a name a registry file can carry.
    const std::string rootName = regfile::RootName(key.root);
    if (rootName.empty()) {
      continue;
    }
    if (format.unicode) {
      KeyWriter<WCHAR>(out, format).Write(key.root, key.path.c_str(), rootName, key.path);
    } else {
      std::string path;
      if (ConvertUnicodeToANSI(key.path, path)) {
        KeyWriter<char>(out, format).Write(key.root, path.c_str(), rootName, path);
      }
    }
  }
}

}  // namespace Hostkit::backup
