// Reading and writing the windows of machine profiles.
#include "platform/sim/profile/windows.h"

#include <cstdint>
#include <limits>

#include "platform/sim/text/codec.h"

namespace Hostkit::sim {

namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

constexpr std::uint64_t kNsPerMs = 1000000;
constexpr UINT kUtf8 = 65001;

class WindowReader {
 public:
  WindowReader(Machine& machine, std::vector<std::string>& keys, std::string& what)
      : machine_(machine), keys_(keys), what_(what) {}

  bool List(const Json& value, HWND parent, std::vector<std::string> path) {
    if (!value.is_array()) {
      const std::string what = "\"" + path.back() + "\" must be a list of windows";
      return Fail(std::move(path), what);
    }
    for (const Json& item : value) {
      if (!Window(item, parent, path)) {
        return false;
      }
    }
    return true;
  }

 private:
  bool Fail(std::vector<std::string> keys, std::string what) {
    keys_ = std::move(keys);
    what_ = std::move(what);
    return false;
  }

  bool Milliseconds(const Json& value, const std::vector<std::string>& keys, std::uint64_t& out) {
    if (!value.is_number_unsigned() ||
        value.get<std::uint64_t>() >= std::numeric_limits<std::uint64_t>::max() / kNsPerMs) {
      return Fail(keys, "\"" + keys.back() + "\" must be a whole number of milliseconds");
    }
    out = value.get<std::uint64_t>() * kNsPerMs;
    return true;
  }

  bool Window(const Json& item, HWND parent, const std::vector<std::string>& path) {
    if (!item.is_object()) {
      return Fail(path, "a window must be an object");
    }
    SimWindow window;
    const Json* controls = nullptr;
    for (const auto& [field, value] : item.items()) {
      std::vector<std::string> keys = path;
      keys.push_back(field);
      bool ok = true;
      if (field == "class" || field == "title") {
        ok = value.is_string() || Fail(keys, "\"" + field + "\" must be a string");
        if (ok && field == "class") {
          window.className = value.get<std::string>();
        } else if (ok) {
          const auto decoded = DecodeCodePage(kUtf8, value.get<std::string>(), true);
          ok = (decoded && !decoded->invalid) || Fail(keys, "\"title\" is not valid UTF-8");
          if (ok) {
            window.title = decoded->text;
          }
        }
      } else if (field == "narrowTitle" || field == "visible" || field == "closes") {
        ok = value.is_boolean() || Fail(keys, "\"" + field + "\" must be true or false");
        if (ok) {
          (field == "narrowTitle" ? window.narrowTitle
           : field == "visible"   ? window.visible
                                  : window.closes) = value.get<bool>();
        }
      } else if (field == "id") {
        ok = (value.is_number_integer() && value.get<std::int64_t>() >= 0 &&
              value.get<std::int64_t>() <= 0xFFFF) ||
             Fail(keys, "\"id\" must be a whole number from 0 to 65535");
        if (ok) {
          window.controlId = value.get<int>();
        }
      } else if (field == "appearsAt") {
        ok = Milliseconds(value, keys, window.appearsAt);
      } else if (field == "disappearsAt") {
        ok = Milliseconds(value, keys, window.disappearsAt);
      } else if (field == "controls") {
        controls = &value;
      } else {
        ok = Fail(keys, "unknown window field \"" + field + "\"");
      }
      if (!ok) {
        return false;
      }
    }
    HWND handle = machine_.windows().add(std::move(window), parent);
    if (controls == nullptr) {
      return true;
    }
    std::vector<std::string> keys = path;
    keys.push_back("controls");
    return List(*controls, handle, keys);
  }

  Machine& machine_;
  std::vector<std::string>& keys_;
  std::string& what_;
};

OrderedJson WindowList(WindowTree& tree, HWND parent) {
  OrderedJson list = OrderedJson::array();
  for (HWND handle : tree.children(parent)) {
    const SimWindow& window = *tree.find(handle);
    OrderedJson item = OrderedJson::object();
    item["class"] = window.className;
    const auto title = EncodeCodePage(kUtf8, window.title, '?');
    item["title"] = title ? title->bytes : std::string();
    if (window.narrowTitle) {
      item["narrowTitle"] = true;
    }
    if (parent != nullptr) {
      item["id"] = window.controlId;
    }
    if (!window.visible) {
      item["visible"] = false;
    }
    if (!window.closes) {
      item["closes"] = false;
    }
    if (window.appearsAt != 0) {
      item["appearsAt"] = window.appearsAt / kNsPerMs;
    }
    if (window.disappearsAt != SimWindow::kNever) {
      item["disappearsAt"] = window.disappearsAt / kNsPerMs;
    }
    if (!tree.children(handle).empty()) {
      item["controls"] = WindowList(tree, handle);
    }
    list.push_back(item);
  }
  return list;
}

}  // namespace

bool IsWindowField(const std::string& key) { return key == "windows"; }

bool ReadWindowField(const std::string& key, const nlohmann::json& value, Machine& machine,
                     std::vector<std::string>& keys, std::string& what) {
  return WindowReader(machine, keys, what).List(value, nullptr, {key});
}

void WriteWindowFields(Machine& machine, nlohmann::ordered_json& json) {
  if (!machine.windows().children(nullptr).empty()) {
    json["windows"] = WindowList(machine.windows(), nullptr);
  }
}

}  // namespace Hostkit::sim
