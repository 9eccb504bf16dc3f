// Positions in the text of a JSON profile.
#include "platform/sim/profile/json_positions.h"

#include <algorithm>

namespace Hostkit::sim {

namespace {

using Json = nlohmann::json;
using KeyPath = std::vector<std::string>;

// The text of a JSON string literal (quotes included), its escapes decoded when it has any.
std::string StringAt(const std::string& literal, bool escaped) {
  if (escaped) {
    const Json decoded = Json::parse(literal, nullptr, false);
    if (decoded.is_string()) {
      return decoded.get<std::string>();
    }
  }
  return literal.size() >= 2 ? literal.substr(1, literal.size() - 2) : std::string();
}

// Where the member `keys` (a chain of keys from the top-level object, an element of a list named
// by its number from "0") is written in the JSON text: a scan that follows strings, comments and
// nesting, enough to tell a top-level key from a nested one of the same name.
std::optional<size_t> FindKey(const std::string& text, const KeyPath& keys) {
  std::vector<char> open;          // '{' or '[' of each enclosing value
  std::vector<size_t> element;     // at each enclosing list, the number of the current element
  std::vector<std::string> chain;  // the member key, or the element number, at each depth
  std::string lastString;
  size_t lastStart = 0;
  bool afterString = false;
  for (size_t i = 0; i < text.size();) {
    const char c = text[i];
    if (c == '"') {
      lastStart = i;
      bool escaped = false;
      for (++i; i < text.size() && text[i] != '"'; ++i) {
        if (text[i] == '\\') {
          escaped = true;
          ++i;  // the escaped character
        }
      }
      ++i;
      lastString = StringAt(text.substr(lastStart, i - lastStart), escaped);
      afterString = true;
      continue;
    }
    if (c == '/' && i + 1 < text.size() && (text[i + 1] == '/' || text[i + 1] == '*')) {
      const bool line = text[i + 1] == '/';
      const size_t end = text.find(line ? "\n" : "*/", i + 2);
      i = end == std::string::npos ? text.size() : end + (line ? 1 : 2);
      continue;
    }
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      ++i;
      continue;
    }
    if (c == ':' && afterString && !open.empty() && open.back() == '{') {
      chain.resize(open.size());
      for (size_t depth = 0; depth < open.size(); ++depth) {
        if (open[depth] == '[') {
          chain[depth] = std::to_string(element[depth]);
        }
      }
      chain.back() = lastString;
      if (chain == keys) {
        return lastStart;
      }
    } else if (c == '{' || c == '[') {
      open.push_back(c);
      element.push_back(0);
    } else if ((c == '}' || c == ']') && !open.empty()) {
      open.pop_back();
      element.pop_back();
      chain.resize(std::min(chain.size(), open.size()));
    } else if (c == ',' && !open.empty() && open.back() == '[') {
      ++element.back();
    }
    afterString = false;
    ++i;
  }
  return std::nullopt;
}

}  // namespace

int LineAt(const std::string& text, size_t offset) {
  offset = std::min(offset, text.size());
  return 1 + static_cast<int>(std::count(text.begin(), text.begin() + offset, '\n'));
}

std::optional<size_t> TooDeep(const std::string& text, size_t limit) {
  size_t depth = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') {
      for (++i; i < text.size() && text[i] != '"'; ++i) {
        i += text[i] == '\\' ? 1 : 0;
      }
    } else if (c == '/' && i + 1 < text.size() && (text[i + 1] == '/' || text[i + 1] == '*')) {
      const bool line = text[i + 1] == '/';
      const size_t end = text.find(line ? "\n" : "*/", i + 2);
      i = end == std::string::npos ? text.size() : end + (line ? 0 : 1);
    } else if (c == '{' || c == '[') {
      if (++depth > limit) {
        return i;
      }
    } else if ((c == '}' || c == ']') && depth > 0) {
      --depth;
    }
  }
  return std::nullopt;
}

int LineOfKey(const std::string& text, KeyPath keys) {
  for (; !keys.empty(); keys.pop_back()) {
    if (const auto offset = FindKey(text, keys)) {
      return LineAt(text, *offset);
    }
  }
  return 1;
}

}  // namespace Hostkit::sim
