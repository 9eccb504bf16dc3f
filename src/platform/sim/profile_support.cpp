// Registry files applied to a machine as a whole or not at all, and the text conversions of
// profile fields.
#include "platform/sim/profile_support.h"

#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/sim/profile.h"
#include "platform/sim/registry_store.h"
#include "platform/sim/text_codec.h"

namespace Hostkit::sim {

std::shared_ptr<Machine> Unowned(Machine& machine) {
  return std::shared_ptr<Machine>(std::shared_ptr<Machine>(), &machine);
}

bool ReadWholeFile(const std::filesystem::path& file, std::string& bytes) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    return false;
  }
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

bool ApplyRegistryBytes(Machine& machine, std::string_view bytes, const std::string& name,
                        std::string& error) {
  ScopedMachine scope(Unowned(machine));
  std::vector<regfile::Operation> operations;
  if (!regfile::ParseRegFile(bytes, name, operations, error)) {
    return false;
  }
  const RegistrySnapshot before = machine.registry().snapshot();
  if (!regfile::ApplyRegFile(operations, name, error)) {
    machine.registry().restore(before);
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
    if (!ReadWholeFile(file, bytes)) {
      error = file.string() + ": cannot read the file";
      return false;
    }
    return ApplyRegistryBytes(machine, bytes, file.string(), error);
  } catch (const std::exception& e) {
    error = file.string() + ": " + e.what();
    return false;
  }
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
