// A pattern compiled once and matched against many texts, for searches that test one pattern
// against every key they visit. Each match answers exactly what RegExpMatch answers for the same
// pattern and text, and runs under the same process-wide pattern lock.
#pragma once

#include <memory>

#include "hostkit/win_types.h"

namespace Hostkit {

class CompiledPattern {
 public:
  // A null or invalid pattern matches nothing; an empty one matches every text.
  explicit CompiledPattern(const char* pattern);
  explicit CompiledPattern(const WCHAR* pattern);
  ~CompiledPattern();
  CompiledPattern(const CompiledPattern&) = delete;
  CompiledPattern& operator=(const CompiledPattern&) = delete;

  // A text of the other width than the pattern's never matches. Never throws.
  bool Matches(const char* text) const;
  bool Matches(const WCHAR* text) const;

  struct Expression;  // the compiled form, known to the matcher alone

 private:
  bool matchesAll_ = false;
  std::unique_ptr<Expression> expression_;  // null: nothing but matchesAll_ decides
};

}  // namespace Hostkit
