#include "bench_tree.h"

#include <cstdint>
#include <cstdio>
#include <vector>

namespace hostkit_bench {

namespace {

// Appends `data` as "hex(N):.." (or "hex:" for N == 3), wrapped like the registry editor wraps
// long lines, so that the continuation-line path of an importer is taken too.
void AppendHex(std::string& out, int type, const std::vector<std::uint8_t>& data) {
  out += type == 3 ? "hex:" : "hex(" + std::to_string(type) + "):";
  char byte[4];
  for (std::size_t i = 0; i < data.size(); ++i) {
    std::snprintf(byte, sizeof byte, "%02x", data[i]);
    out += byte;
    if (i + 1 < data.size()) {
      out += (i + 1) % 25 == 0 ? ",\\\r\n  " : ",";
    }
  }
}

// Text as the UTF-16 LE bytes a 5.00 file stores for REG_EXPAND_SZ and REG_MULTI_SZ data, each
// string ending in a zero unit.
std::vector<std::uint8_t> Utf16Strings(const std::vector<std::string>& strings) {
  std::vector<std::uint8_t> bytes;
  for (const std::string& text : strings) {
    for (const char c : text) {
      bytes.push_back(static_cast<std::uint8_t>(c));
      bytes.push_back(0);
    }
    bytes.push_back(0);
    bytes.push_back(0);
  }
  return bytes;
}

void AppendValue(std::string& out, int key, int index) {
  const std::uint32_t seed = static_cast<std::uint32_t>(key * 1000 + index) * 2654435761U;
  char name[32];
  switch (index % 5) {
    case 0:
      std::snprintf(name, sizeof name, "Text%03d", index);
      out += "\"" + std::string(name) + "\"=\"Setting " + std::to_string(index) + " of key " +
             std::to_string(key) + ", a \\\"quoted\\\" word and C:\\\\Program Files\\\\App\\\\" +
             std::to_string(seed) + ".ini\"";
      break;
    case 1: {
      std::snprintf(name, sizeof name, "Number%03d", index);
      char data[16];
      std::snprintf(data, sizeof data, "%08x", static_cast<unsigned>(seed));
      out += "\"" + std::string(name) + "\"=dword:" + data;
      break;
    }
    case 2: {
      std::snprintf(name, sizeof name, "Bytes%03d", index);
      std::vector<std::uint8_t> data;
      std::uint32_t state = seed | 1U;
      for (int i = 0; i < 32; ++i) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        data.push_back(static_cast<std::uint8_t>(state));
      }
      out += "\"" + std::string(name) + "\"=";
      AppendHex(out, 3, data);
      break;
    }
    case 3:
      std::snprintf(name, sizeof name, "List%03d", index);
      out += "\"" + std::string(name) + "\"=";
      AppendHex(out, 7,
                Utf16Strings({"first " + std::to_string(key), "second " + std::to_string(index),
                              "third entry", ""}));
      break;
    default:
      std::snprintf(name, sizeof name, "Path%03d", index);
      out += "\"" + std::string(name) + "\"=";
      AppendHex(out, 2,
                Utf16Strings({"%SystemRoot%\\System32\\lib" + std::to_string(seed) + ".dll"}));
      break;
  }
  out += "\r\n";
}

}  // namespace

std::string TreeRegFile(const TreeShape& shape) {
  std::string text = "Windows Registry Editor Version 5.00\r\n\r\n";
  const std::string top = std::string("[HKEY_CURRENT_USER\\") + kTreeKey;
  char part[32];
  for (int group = 0; group < shape.groups; ++group) {
    std::snprintf(part, sizeof part, "\\Group%02d", group);
    const std::string groupKey = top + part;
    for (int k = 0; k < shape.keysPerGroup; ++k) {
      std::snprintf(part, sizeof part, "\\Key%03d]\r\n", k);
      text += groupKey + part;
      for (int v = 0; v < shape.valuesPerKey; ++v) {
        AppendValue(text, group * shape.keysPerGroup + k, v);
      }
      text += "\r\n";
    }
  }
  // Every character above is ASCII, so UTF-16 LE is each byte followed by a zero.
  std::string file = "\xFF\xFE";
  file.reserve(2 + text.size() * 2);
  for (const char c : text) {
    file += c;
    file += '\0';
  }
  return file;
}

}  // namespace hostkit_bench
