// Registry files applied to a machine as a whole or not at all, and the text conversions of
// profile fields.
#include "platform/sim/profile/support.h"

#include <cctype>
#include <cstdio>
#include <fstream>
#include <vector>

#include "foundation/error_line.h"
#include "foundation/reg_file.h"
#include "hostkit/sim/profile.h"
#include "platform/sim/registry/store.h"
#include "platform/sim/text/codec.h"

namespace Hostkit::sim {

std::shared_ptr<Machine> Unowned(Machine& machine) {
  return std::shared_ptr<Machine>(std::shared_ptr<Machine>(), &machine);
}

bool ReadWholeFile(const std::filesystem::path& file, size_t limit, std::string& bytes,
                   std::string& what) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (!std::filesystem::exists(status)) {
    what = "the file does not exist";
    return false;
  }
  if (std::filesystem::is_directory(status)) {
    what = "the file is a folder";
    return false;
  }
  if (!std::filesystem::is_regular_file(status)) {
    what = "the file is not a regular file";
    return false;
  }
  // Read in pieces up to the limit: the size on disk may change while the file is read.
  if (std::filesystem::file_size(file, error) > limit) {
    what = FileTooLarge(limit);
    return false;
  }
  std::ifstream in(file, std::ios::binary);
  bytes.clear();
  std::vector<char> piece(size_t{1} << 16);
  while (in) {
    in.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    bytes.append(piece.data(), static_cast<size_t>(in.gcount()));
    if (bytes.size() > limit) {
      what = FileTooLarge(limit);
      return false;
    }
  }
  if (in.bad() || !in.eof()) {
    what = "the file cannot be read";
    return false;
  }
  return true;
}

bool ApplyRegistryBytes(Machine& machine, std::string_view bytes, const std::string& name,
                        std::string& error) {
  ScopedMachine scope(Unowned(machine));
  std::vector<regfile::Operation> operations;
  if (!regfile::ParseRegFile(bytes, name, operations, error)) {
    return false;
  }
  const RegistryCheckpoint before = machine.registry().checkpoint();
  if (!regfile::ApplyRegFile(operations, name, error)) {
    machine.registry().rollBack(before);
    return false;
  }
  return true;
}

bool Utf8ToAnsi(const Machine& machine, const std::string& utf8, std::string& ansi) {
  const auto decoded = DecodeCodePage(CP_UTF8, utf8, true);
  if (!decoded || decoded->invalid) {
    return false;
  }
  const auto encoded = EncodeCodePage(machine.facts().ansiCodePage, decoded->text, '?');
  if (!encoded || encoded->usedDefault) {
    return false;
  }
  ansi = encoded->bytes;
  return true;
}

bool AnsiToUtf8(const Machine& machine, const std::string& ansi, std::string& utf8) {
  const auto decoded = DecodeCodePage(machine.facts().ansiCodePage, ansi, true);
  if (!decoded || decoded->invalid) {
    return false;
  }
  const auto encoded = EncodeCodePage(CP_UTF8, decoded->text, '?');
  if (!encoded) {
    return false;
  }
  utf8 = encoded->bytes;
  return true;
}

bool ImportRegFile(Machine& machine, const std::filesystem::path& file, std::string& error) {
  try {
    std::string bytes;
    std::string what;
    if (!ReadWholeFile(file, regfile::kMaxFileBytes, bytes, what)) {
      error = ErrorLine(file.string(), 1, what);
      return false;
    }
    return ApplyRegistryBytes(machine, bytes, file.string(), error);
  } catch (const std::exception&) {
    error = ErrorLine(file.string(), 1, "not enough memory to import the file");
    return false;
  }
}

bool JsonString(const nlohmann::json& value, std::string& out) {
  if (!value.is_string()) {
    return false;
  }
  out = value.get<std::string>();
  return true;
}

bool JsonDword(const nlohmann::json& value, DWORD& out) {
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() > 0xFFFFFFFFU) {
    return false;
  }
  out = static_cast<DWORD>(value.get<std::uint64_t>());
  return true;
}

int HexDigit(char c) {
  if (std::isxdigit(static_cast<unsigned char>(c)) == 0) {
    return -1;
  }
  return std::isdigit(static_cast<unsigned char>(c)) != 0
             ? c - '0'
             : std::tolower(static_cast<unsigned char>(c)) - 'a' + 10;
}

// Pairs of hexadecimal digits, each pair optionally followed by one separator.
bool ParseBytes(std::string_view text, std::vector<BYTE>& bytes) {
  bytes.clear();
  for (size_t i = 0; i < text.size();) {
    if (i + 1 >= text.size() || HexDigit(text[i]) < 0 || HexDigit(text[i + 1]) < 0) {
      return false;
    }
    bytes.push_back(static_cast<BYTE>(HexDigit(text[i]) * 16 + HexDigit(text[i + 1])));
    i += 2;
    if (i < text.size()) {
      if (text[i] != '-' && text[i] != ':' && text[i] != ' ') {
        return false;
      }
      ++i;
    }
  }
  return true;
}

std::string FormatBytes(const std::vector<BYTE>& bytes) {
  std::string text;
  char pair[4];
  for (BYTE byte : bytes) {
    std::snprintf(pair, sizeof pair, text.empty() ? "%02X" : "-%02X", byte);
    text += pair;
  }
  return text;
}

}  // namespace Hostkit::sim
