// hostkit diff A B: the difference of two simulated machines as a readable registry file that
// turns A into B, with the non-registry facts that differ; or as JSON.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "hostkit/sim/machine.h"
#include "hostkit/sim/profile.h"
#include "platform/sim/registry/store.h"

namespace hostkit_tool {

namespace {

namespace fs = std::filesystem;
using Hostkit::sim::KeySnapshot;
using Hostkit::sim::Machine;
using Hostkit::sim::ValueSnapshot;
using Json = nlohmann::ordered_json;

Hostkit::wstring WideOf(const std::u16string& text) { return {text.begin(), text.end()}; }

// The strings of a value's data, read as the machine that holds it stored them.
std::vector<std::string> Strings(const std::shared_ptr<Machine>& machine,
                                 const ValueSnapshot& value) {
  Hostkit::sim::ScopedMachine scope(machine);  // narrow text is in this machine's code page
  std::vector<std::string> strings;
  std::string current;
  const auto flush = [&] {
    strings.push_back(current);
    current.clear();
  };
  if (value.narrowText) {
    std::string ansi;
    for (BYTE b : value.data) {
      if (b == 0) {
        strings.push_back(FromAnsi(ansi));
        ansi.clear();
      } else {
        ansi += static_cast<char>(b);
      }
    }
    if (!ansi.empty()) {
      strings.push_back(FromAnsi(ansi));
    }
  } else {
    Hostkit::wstring wide;
    for (size_t i = 0; i + 1 < value.data.size(); i += 2) {
      const auto unit = static_cast<Hostkit::WCHAR>(value.data[i] | (value.data[i + 1] << 8));
      if (unit == 0) {
        current = Narrow(wide);
        wide.clear();
        flush();
      } else {
        wide += unit;
      }
    }
    if (!wide.empty()) {
      current = Narrow(wide);
      flush();
    }
  }
  while (strings.size() > 1 && strings.back().empty()) {
    strings.pop_back();
  }
  return strings;
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (char c : text) {
    quoted += (c == '\\' || c == '"') ? std::string("\\") + c : std::string(1, c);
  }
  return quoted + "\"";
}

std::string HexList(const std::vector<BYTE>& data) {
  std::string text;
  char byte[4];
  for (size_t i = 0; i < data.size(); ++i) {
    std::snprintf(byte, sizeof byte, "%02x", static_cast<unsigned>(data[i]));
    text += (i == 0 ? "" : ",") + std::string(byte);
  }
  return text;
}

// The value's data as text for JSON and for the .reg line.
struct ValueText {
  std::string type;
  Json data;
  std::string line;  // the data after "name"=
};

ValueText Describe(const std::shared_ptr<Machine>& machine, const ValueSnapshot& value) {
  static const char* const kTypes[] = {"REG_NONE",   "REG_SZ",      "REG_EXPAND_SZ",
                                       "REG_BINARY", "REG_DWORD",   "REG_DWORD_BIG_ENDIAN",
                                       "REG_LINK",   "REG_MULTI_SZ"};
  ValueText text;
  text.type = value.type < 8 ? kTypes[value.type] : "0x" + std::to_string(value.type);
  if (value.type == REG_SZ || value.type == REG_EXPAND_SZ || value.type == REG_MULTI_SZ) {
    const std::vector<std::string> strings = Strings(machine, value);
    if (value.type == REG_MULTI_SZ) {
      text.data = strings;
      std::string decoded;
      for (const std::string& s : strings) {
        decoded += (decoded.empty() ? "" : ", ") + Quoted(s);
      }
      text.line = "multi:" + decoded;
    } else {
      text.data = strings.empty() ? std::string() : strings.front();
      text.line =
          (value.type == REG_EXPAND_SZ ? "expand:" : "") + Quoted(text.data.get<std::string>());
    }
  } else if (value.type == REG_DWORD && value.data.size() == 4) {
    const unsigned long number = value.data[0] | (value.data[1] << 8) | (value.data[2] << 16) |
                                 (static_cast<unsigned long>(value.data[3]) << 24);
    char line[16];
    std::snprintf(line, sizeof line, "dword:%08lx", number);
    text.data = number;
    text.line = line;
  } else {
    text.data = HexList(value.data);
    text.line = (value.type == REG_BINARY ? std::string("hex:")
                                          : "hex(" + std::to_string(value.type) + "):") +
                HexList(value.data);
  }
  return text;
}

std::string ValueName(const ValueSnapshot& value) {
  return value.name.empty() ? "@" : Quoted(Narrow(WideOf(value.name)));
}

class RegistryDiff {
 public:
  RegistryDiff(std::shared_ptr<Machine> a, std::shared_ptr<Machine> b)
      : a_(std::move(a)), b_(std::move(b)) {}

  void Keys(const std::string& path, const KeySnapshot* before, const KeySnapshot* after) {
    if (after == nullptr) {
      Entry(path, "removed");
      return;
    }
    Json values = Json::array();
    std::string lines;
    for (const ValueSnapshot& value : after->values) {
      const ValueSnapshot* old = before == nullptr ? nullptr : FindValue(*before, value.name);
      if (old != nullptr && *old == value) {
        continue;
      }
      const ValueText now = Describe(b_, value);
      Json entry = {{"name", Narrow(WideOf(value.name))},
                    {"change", old == nullptr ? "added" : "changed"},
                    {"type", now.type},
                    {"data", now.data}};
      if (old != nullptr) {
        entry["before"] = Describe(a_, *old).data;
      }
      values.push_back(entry);
      lines += ValueName(value) + "=" + now.line + "\n";
    }
    if (before != nullptr) {
      for (const ValueSnapshot& value : before->values) {
        if (FindValue(*after, value.name) == nullptr) {
          values.push_back({{"name", Narrow(WideOf(value.name))}, {"change", "removed"}});
          lines += ValueName(value) + "=-\n";
        }
      }
    }
    if (before == nullptr || !values.empty()) {
      Entry(path, before == nullptr ? "added" : "changed", values, lines);
    }
    for (const KeySnapshot& sub : after->subkeys) {
      Keys(path + "\\" + Narrow(WideOf(sub.name)),
           before == nullptr ? nullptr : FindKey(*before, sub.name), &sub);
    }
    if (before != nullptr) {
      for (const KeySnapshot& sub : before->subkeys) {
        if (FindKey(*after, sub.name) == nullptr) {
          Keys(path + "\\" + Narrow(WideOf(sub.name)), &sub, nullptr);
        }
      }
    }
  }

  const Json& Document() const { return keys_; }
  const std::string& Text() const { return text_; }

 private:
  static const ValueSnapshot* FindValue(const KeySnapshot& key, const std::u16string& name) {
    for (const ValueSnapshot& value : key.values) {
      if (Hostkit::sim::NoCaseEqual(Narrow(WideOf(value.name)), Narrow(WideOf(name)))) {
        return &value;
      }
    }
    return nullptr;
  }
  static const KeySnapshot* FindKey(const KeySnapshot& key, const std::u16string& name) {
    for (const KeySnapshot& sub : key.subkeys) {
      if (Hostkit::sim::NoCaseEqual(Narrow(WideOf(sub.name)), Narrow(WideOf(name)))) {
        return &sub;
      }
    }
    return nullptr;
  }
  void Entry(const std::string& path, const char* change, nlohmann::ordered_json values = {},
             const std::string& lines = "") {
    nlohmann::ordered_json entry = {{"key", path}, {"change", change}};
    if (!values.is_null()) {
      entry["values"] = values;
    }
    keys_.push_back(entry);
    text_ +=
        std::string("\n[") + (std::string(change) == "removed" ? "-" : "") + path + "]\n" + lines;
  }

  std::shared_ptr<Machine> a_;
  std::shared_ptr<Machine> b_;
  nlohmann::ordered_json keys_ = nlohmann::ordered_json::array();
  std::string text_;
};

// The machine's facts as its saved profile states them, without the registry and drives.
bool FactsOf(Machine& machine, Json& facts, std::string& error) {
  std::error_code failure;
  const fs::path folder =
      fs::temp_directory_path(failure) /
      ("hostkit-facts-" + std::to_string(reinterpret_cast<std::uintptr_t>(&machine)));
  fs::create_directories(folder, failure);
  const fs::path driveRoot = machine.facts().driveRoot;
  machine.facts().driveRoot.clear();
  const bool saved = Hostkit::sim::SaveMachineProfile(machine, folder / "facts.json", error);
  machine.facts().driveRoot = driveRoot;
  if (saved) {
    std::ifstream in(folder / "facts.json");
    facts = Json::parse(in, nullptr, false);
    facts.erase("registry");
  }
  fs::remove_all(folder, failure);
  return saved && !facts.is_discarded();
}

// The registry of `a` turned into that of `b`, keys and values, as JSON and as .reg text.
void DiffRegistries(const std::shared_ptr<Machine>& a, const std::shared_ptr<Machine>& b,
                    Json& json, std::string& text) {
  const Hostkit::sim::RegistrySnapshot before = a->registry().snapshot();
  const Hostkit::sim::RegistrySnapshot after = b->registry().snapshot();
  RegistryDiff diff(a, b);
  const std::pair<const char*, const KeySnapshot Hostkit::sim::RegistrySnapshot::*> roots[] = {
      {"HKEY_LOCAL_MACHINE", &Hostkit::sim::RegistrySnapshot::localMachine},
      {"HKEY_USERS", &Hostkit::sim::RegistrySnapshot::users},
      {"HKEY_DYN_DATA", &Hostkit::sim::RegistrySnapshot::dynData}};
  for (const auto& [name, root] : roots) {
    const KeySnapshot& old = before.*root;
    const KeySnapshot& now = after.*root;
    for (const KeySnapshot& sub : now.subkeys) {
      const KeySnapshot* match = nullptr;
      for (const KeySnapshot& candidate : old.subkeys) {
        if (Hostkit::sim::NoCaseEqual(Narrow(WideOf(candidate.name)), Narrow(WideOf(sub.name)))) {
          match = &candidate;
        }
      }
      diff.Keys(std::string(name) + "\\" + Narrow(WideOf(sub.name)), match, &sub);
    }
    for (const KeySnapshot& sub : old.subkeys) {
      bool kept = false;
      for (const KeySnapshot& candidate : now.subkeys) {
        kept = kept ||
               Hostkit::sim::NoCaseEqual(Narrow(WideOf(candidate.name)), Narrow(WideOf(sub.name)));
      }
      if (!kept) {
        diff.Keys(std::string(name) + "\\" + Narrow(WideOf(sub.name)), &sub, nullptr);
      }
    }
  }
  json = diff.Document();
  text = diff.Text();
}

}  // namespace

int RunDiff(const std::string& first, const std::string& second, std::ostream& out,
            std::ostream& err) {
  std::string error;
  auto a = Hostkit::sim::LoadMachineProfile(first, error);
  if (!a) {
    return Fail(error, err);
  }
  auto b = Hostkit::sim::LoadMachineProfile(second, error);
  if (!b) {
    return Fail(error, err);
  }
  Json factsA;
  Json factsB;
  if (!FactsOf(*a, factsA, error) || !FactsOf(*b, factsB, error)) {
    return Fail(error, err);
  }
  Json facts = Json::array();
  std::string factLines;
  for (const auto& [field, value] : factsB.items()) {
    const Json old = factsA.contains(field) ? factsA[field] : Json();
    if (old != value) {
      facts.push_back({{"field", field}, {"before", old}, {"after", value}});
      factLines += "; " + field + ": " + old.dump() + " -> " + value.dump() + "\n";
    }
  }
  for (const auto& [field, value] : factsA.items()) {
    if (!factsB.contains(field)) {
      facts.push_back({{"field", field}, {"before", value}, {"after", nullptr}});
      factLines += "; " + field + ": " + value.dump() + " -> (none)\n";
    }
  }
  Json keys;
  std::string text;
  DiffRegistries(a, b, keys, text);
  if (JsonOutput()) {
    PrintJson({{"facts", facts}, {"keys", keys}}, out);
    return kDone;
  }
  out << "REGEDIT4\n" << (factLines.empty() ? "" : "\n" + factLines) << text;
  return kDone;
}

void AddMachineCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  struct Args {
    std::string a, b;
  };
  auto args = std::make_shared<Args>();
  CLI::App* diff = AddCommand(app, "diff", "the changes that turn machine A into machine B",
                              "hostkit diff tests/machines/win98.json tests/machines/win98.json");
  diff->add_option("A", args->a, "profile or save")->required()->check(CLI::ExistingFile);
  diff->add_option("B", args->b, "profile or save")->required()->check(CLI::ExistingFile);
  run[diff] = [args, &out, &err] { return RunDiff(args->a, args->b, out, err); };
}

}  // namespace hostkit_tool
