// Regular-expression matching under the process-wide pattern lock, and the address and name
// validators.
#include "hostkit/patterns.h"

#include <boost/regex.hpp>
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/compiled_pattern.h"
#include "platform/handles.h"
#include "platform/sync.h"

namespace Hostkit {

namespace {

// The process-wide pattern lock: an unnamed auto-reset event, created signalled while the
// library is loaded and closed when it is unloaded. One RegExpMatch at a time holds it.
class PatternLock {
 public:
  PatternLock() : event_(platform::CreateEventA(nullptr, FALSE, TRUE, nullptr)) {}
  ~PatternLock() {
    if (event_ != nullptr) {
      platform::CloseHandle(event_);
    }
  }
  PatternLock(const PatternLock&) = delete;
  PatternLock& operator=(const PatternLock&) = delete;

  bool Acquire() { return platform::WaitForSingleObject(event_, INFINITE) == WAIT_OBJECT_0; }
  void Release() { platform::SetEvent(event_); }

 private:
  HANDLE event_;
};

PatternLock patternLock;

// Holds the pattern lock for a scope.
class PatternLockHold {
 public:
  PatternLockHold() : held_(patternLock.Acquire()) {}
  ~PatternLockHold() {
    if (held_) {
      patternLock.Release();
    }
  }
  PatternLockHold(const PatternLockHold&) = delete;
  PatternLockHold& operator=(const PatternLockHold&) = delete;

  bool held() const { return held_; }

 private:
  bool held_;
};

template <class Ch>
std::basic_string<Ch> Widened(const char* ascii) {
  return std::basic_string<Ch>(ascii, ascii + std::strlen(ascii));
}

// A pattern with neither "^" nor "$" anywhere is wrapped so that it matches anywhere in the
// text; one that holds either (even escaped or in brackets) is used as written.
template <class Ch>
std::basic_string<Ch> AnchoredPattern(const std::basic_string<Ch>& pattern) {
  for (Ch c : pattern) {
    if (c == Ch('^') || c == Ch('$')) {
      return pattern;
    }
  }
  return Widened<Ch>(".*(") + pattern + Widened<Ch>(").*");
}

// Compiles and matches under the lock. Boost's "normal" syntax is its Perl syntax: escapes
// inside brackets, [[:class:]] names, {m,n}, back references, no collation; case-sensitive.
// Any exception (an invalid pattern among them) is a non-match, and the lock is released.
template <class Ch>
bool MatchWholeText(const std::basic_string<Ch>& pattern, const std::basic_string<Ch>& text) {
  PatternLockHold hold;
  if (!hold.held()) {
    return false;
  }
  try {
    const boost::basic_regex<Ch> expression(AnchoredPattern(pattern), boost::regex::normal);
    return boost::regex_match(text, expression);
  } catch (...) {
    return false;
  }
}

// Boost.Regex has no traits for char16_t, the build's WCHAR off Windows. Wide text is therefore
// matched as wchar_t, unit for unit: each UTF-16 code unit becomes one wchar_t of the same
// value, surrogates included, so the engine sees exactly the code units it would see in a
// Windows build where WCHAR is wchar_t.
std::wstring AsWchar(const WCHAR* text) {
  std::wstring units;
  for (; *text != 0; ++text) {
    units.push_back(static_cast<wchar_t>(*text));
  }
  return units;
}

// A letter or a digit as the default locale classifies them: A-Z, a-z and 0-9 only. Tested by
// range rather than by the C runtime, whose wide classification counts every Unicode letter and
// digit on Windows ("é", "Ж", "²") and none of them elsewhere.
template <class Ch>
bool IsAlnum(Ch c) {
  return (c >= Ch('0') && c <= Ch('9')) || (c >= Ch('A') && c <= Ch('Z')) ||
         (c >= Ch('a') && c <= Ch('z'));
}

template <class Ch>
bool ValidHostName(const Ch* text) {
  if (text == nullptr) {
    return false;
  }
  for (; *text != 0; ++text) {
    if (!IsAlnum(*text)) {
      return false;
    }
  }
  return true;
}

// Split at "." as the C runtime's tokenizer does: runs of dots and leading or trailing dots
// make no empty tokens. Every token is examined.
template <class Ch>
bool ValidDomainName(const Ch* text) {
  if (text == nullptr) {
    return false;
  }
  const std::basic_string<Ch> name(text);
  bool valid = true;
  std::size_t start = 0;
  while (start < name.size()) {
    std::size_t end = name.find(Ch('.'), start);
    if (end == std::basic_string<Ch>::npos) {
      end = name.size();
    }
    if (end > start && !ValidHostName(name.substr(start, end - start).c_str())) {
      valid = false;
    }
    start = end + 1;
  }
  return valid;
}

}  // namespace

bool RegExpMatch(const char* pattern, const char* text) {
  if (pattern == nullptr || text == nullptr) {
    return false;
  }
  if (*pattern == '\0') {
    return true;
  }
  try {
    return MatchWholeText(std::string(pattern), std::string(text));
  } catch (...) {
    return false;
  }
}

bool RegExpMatch(const WCHAR* pattern, const WCHAR* text) {
  if (pattern == nullptr || text == nullptr) {
    return false;
  }
  if (*pattern == 0) {
    return true;
  }
  try {
    return MatchWholeText(AsWchar(pattern), AsWchar(text));
  } catch (...) {
    return false;
  }
}

struct CompiledPattern::Expression {
  std::optional<boost::regex> narrow;
  std::optional<boost::wregex> wide;
};

namespace {

// Compiles `pattern` as MatchWholeText does, under the lock, into the member `slot` selects.
// Null when the lock cannot be held or the engine refuses the pattern.
template <class Ch, class Slot>
std::unique_ptr<CompiledPattern::Expression> Compile(const std::basic_string<Ch>& pattern,
                                                     Slot slot) {
  try {
    PatternLockHold hold;
    if (!hold.held()) {
      return nullptr;
    }
    auto expression = std::make_unique<CompiledPattern::Expression>();
    (expression.get()->*slot).emplace(AnchoredPattern(pattern), boost::regex::normal);
    return expression;
  } catch (...) {
    return nullptr;
  }
}

template <class Ch, class Regex>
bool MatchCompiled(const std::basic_string<Ch>& text, const Regex& expression) {
  PatternLockHold hold;
  return hold.held() && boost::regex_match(text, expression);
}

}  // namespace

CompiledPattern::CompiledPattern(const char* pattern) {
  if (pattern == nullptr) {
    return;
  }
  matchesAll_ = *pattern == '\0';
  if (!matchesAll_) {
    expression_ = Compile(std::string(pattern), &Expression::narrow);
  }
}

CompiledPattern::CompiledPattern(const WCHAR* pattern) {
  if (pattern == nullptr) {
    return;
  }
  matchesAll_ = *pattern == 0;
  if (!matchesAll_) {
    try {
      expression_ = Compile(AsWchar(pattern), &Expression::wide);
    } catch (...) {
      expression_ = nullptr;
    }
  }
}

CompiledPattern::~CompiledPattern() = default;

bool CompiledPattern::Matches(const char* text) const {
  if (text == nullptr || matchesAll_) {
    return text != nullptr;
  }
  try {
    return expression_ && expression_->narrow &&
           MatchCompiled(std::string(text), *expression_->narrow);
  } catch (...) {
    return false;
  }
}

bool CompiledPattern::Matches(const WCHAR* text) const {
  if (text == nullptr || matchesAll_) {
    return text != nullptr;
  }
  try {
    return expression_ && expression_->wide && MatchCompiled(AsWchar(text), *expression_->wide);
  } catch (...) {
    return false;
  }
}

// Four decimal numbers joined by dots and nothing after them but white space. The scan skips
// leading white space and takes signs and leading zeros, as the C runtime's does.
bool IsValidIPAddress(const char* text) {
  if (text == nullptr) {
    return false;
  }
  try {
    int a = 0;
    int b = 0;
    int c = 0;
    int d = 0;
    std::vector<char> rest(std::strlen(text) + 1);
    if (std::sscanf(text, "%d.%d.%d.%d%s", &a, &b, &c, &d, rest.data()) > 4) {
      return false;
    }
    if (std::sscanf(text, "%d.%d.%d.%d", &a, &b, &c, &d) != 4) {
      return false;
    }
    for (int part : {a, b, c, d}) {
      if (part < 0 || part > 255) {
        return false;
      }
    }
    return true;
  } catch (...) {
    return false;
  }
}

bool IsValidHostName(const char* text) { return ValidHostName(text); }
bool IsValidHostName(const WCHAR* text) { return ValidHostName(text); }

bool IsValidDomainName(const char* text) {
  try {
    return ValidDomainName(text);
  } catch (...) {
    return false;
  }
}

bool IsValidDomainName(const WCHAR* text) {
  try {
    return ValidDomainName(text);
  } catch (...) {
    return false;
  }
}

}  // namespace Hostkit
