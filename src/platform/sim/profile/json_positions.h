// Positions in the text of a JSON profile. nlohmann-json does not keep the positions of what it
// parsed, so a field found to be wrong after parsing is located again in the text: the line of
// its key, searched for along the chain of its parent keys.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace Hostkit::sim {

// The line (from 1) of the character at `offset`; the last line past the end.
int LineAt(const std::string& text, size_t offset);

// The offset of the first "{" or "[" nested deeper than `limit`, outside strings and comments.
std::optional<size_t> TooDeep(const std::string& text, size_t limit);

// The line of the member `keys` (a chain of keys from the top-level object, an element of a list
// named by its number from "0"), or of its nearest parent written plainly; line 1 for the
// profile as a whole.
int LineOfKey(const std::string& text, std::vector<std::string> keys);

// nlohmann's tree builder, keeping where and why parsing stopped instead of throwing.
class TreeBuilder : public nlohmann::detail::json_sax_dom_parser<nlohmann::json> {
 public:
  explicit TreeBuilder(nlohmann::json& root) : json_sax_dom_parser(root, false) {}

  // Called by nlohmann's parser through the builder's static type, in place of the base's.
  bool parse_error(std::size_t position, const std::string& token,
                   const nlohmann::detail::exception& e) {
    position_ = position;
    token_ = token;
    overflow_ = e.id == 406;
    return false;
  }

  // The offset of the character at fault; past the end when the text ended too early.
  size_t offset() const { return position_ > 0 ? position_ - 1 : 0; }
  // What is wrong, in the loader's words.
  std::string what(const std::string& text) const {
    if (overflow_) {
      constexpr size_t kShown = 40;
      return "number " + token_.substr(0, kShown) + (token_.size() > kShown ? "..." : "") +
             " is out of range";
    }
    const size_t at = offset();
    if (at >= text.size()) {
      return "invalid JSON: the text ends too early";
    }
    const size_t lineStart = at == 0 ? std::string::npos : text.rfind('\n', at - 1);
    const size_t column = lineStart == std::string::npos ? at + 1 : at - lineStart;
    return "invalid JSON at column " + std::to_string(column);
  }

 private:
  size_t position_ = 0;
  std::string token_;
  bool overflow_ = false;
};

}  // namespace Hostkit::sim
