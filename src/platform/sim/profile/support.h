// Pieces shared by loading and saving machine profiles.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

// A shared pointer to `machine` that does not own it, for ScopedMachine.
std::shared_ptr<Machine> Unowned(Machine& machine);

// The largest profile read.
constexpr size_t kMaxProfileBytes = size_t{16} << 20;

// The whole content of a regular file of at most `limit` bytes; false when there is none, with
// `what` saying why ("the file is a folder", ...).
bool ReadWholeFile(const std::filesystem::path& file, size_t limit, std::string& bytes,
                   std::string& what);

// Parses a registry file (converting REGEDIT4 text with the machine's ANSI code page) and
// applies it to `machine`. On any error the machine's registry is left as it was and `error`
// is "NAME:LINE: what is wrong".
bool ApplyRegistryBytes(Machine& machine, std::string_view bytes, const std::string& name,
                        std::string& error);

// Text of the profile (UTF-8) to the machine's ANSI code page and back; false when the text
// has no exact form on the other side.
bool Utf8ToAnsi(const Machine& machine, const std::string& utf8, std::string& ansi);
bool AnsiToUtf8(const Machine& machine, const std::string& ansi, std::string& utf8);

// A member that is a string, or a whole number a DWORD holds, read into `out`; false when it is
// not one.
bool JsonString(const nlohmann::json& value, std::string& out);
bool JsonDword(const nlohmann::json& value, DWORD& out);

// The value of a hexadecimal digit of either case; -1 for any other character.
int HexDigit(char c);

// Pairs of hexadecimal digits, each pair optionally followed by one "-", ":" or " ", to bytes;
// and bytes to upper-case pairs joined by "-".
bool ParseBytes(std::string_view text, std::vector<BYTE>& bytes);
std::string FormatBytes(const std::vector<BYTE>& bytes);

}  // namespace Hostkit::sim
