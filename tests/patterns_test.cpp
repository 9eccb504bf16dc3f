// Pattern matching (narrow and wide alike, serialised across threads) and the validators.
#include "hostkit/patterns.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <clocale>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/host_thread.h"

namespace Hostkit {
namespace {

struct MatchCase {
  const char* pattern;
  const char* text;
  bool matches;
};

// Contains-semantics for unanchored patterns, whole-text semantics for anchored ones,
// case-sensitivity, the Perl-like syntax, and invalid patterns.
const MatchCase kMatchCases[] = {
    {"", "", true},
    {"", "anything at all", true},
    {".*ether.*", "", false},
    {"ether", "3com etherlink", true},
    {"ether", "3com ethe rlink", false},
    {"Ether", "ethernet", false},
    {"ether$", "ether", true},
    {"ether$", "3com ether", false},
    {"^alcan.*", "alcan speedtouch", true},
    {"^alcan.*", "the alcan modem", false},
    {"^el90x", "el90x", true},
    {"^el90x", "el90x2", false},
    {"[$]", "$", true},  // a "$" anywhere leaves the pattern unwrapped
    {"[$]", "a$", false},
    {"\\^", "^", true},
    {"\\^", "a^", false},
    {"[[:digit:]]{3}", "model 5105 card", true},
    {"[[:digit:]]{3}", "model 51 card", false},
    {"[\\d]+-[\\w]+", "port 80-tcp", true},
    {"^(ab)\\1$", "abab", true},
    {"^(ab)\\1$", "abba", false},
    {"pci|pcmcia", "xircom pcmcia card", true},
    {"intel(", "intel(r) pro", false},  // invalid: never matches
    {"[a-", "[a-", false},
    {"*", "*", false},
};

wstring Wide(const char* ascii) {
  return wstring(ascii, ascii + std::char_traits<char>::length(ascii));
}

TEST(RegExpMatch, NarrowAndWideFormsFollowTheSameRules) {
  for (const auto& test : kMatchCases) {
    EXPECT_EQ(RegExpMatch(test.pattern, test.text), test.matches)
        << "narrow /" << test.pattern << "/ on \"" << test.text << "\"";
    EXPECT_EQ(RegExpMatch(Wide(test.pattern).c_str(), Wide(test.text).c_str()), test.matches)
        << "wide /" << test.pattern << "/ on \"" << test.text << "\"";
  }
}

TEST(RegExpMatch, NullArgumentsNeverMatch) {
  EXPECT_FALSE(RegExpMatch(static_cast<const char*>(nullptr), "text"));
  EXPECT_FALSE(RegExpMatch("", static_cast<const char*>(nullptr)));
  EXPECT_FALSE(RegExpMatch(static_cast<const WCHAR*>(nullptr), HK_WIDE("text")));
  EXPECT_FALSE(RegExpMatch(HK_WIDE(""), static_cast<const WCHAR*>(nullptr)));
}

TEST(RegExpMatch, WideTextIsMatchedCodeUnitForCodeUnit) {
  EXPECT_TRUE(RegExpMatch(HK_WIDE("caf\u00E9"), HK_WIDE("le caf\u00E9 noir")));
  EXPECT_FALSE(RegExpMatch(HK_WIDE("^caf\u00E9$"), HK_WIDE("caf\u00C9")));
  // A character outside the basic plane is two UTF-16 units, and "." takes one unit.
  const WCHAR* emoji = HK_WIDE("\U0001F600");
  EXPECT_FALSE(RegExpMatch(HK_WIDE("^.$"), emoji));
  EXPECT_TRUE(RegExpMatch(HK_WIDE("^..$"), emoji));
}

bool FinishesWithin(unsigned limitMs, std::function<bool()> call, bool& result) {
  auto answer = std::make_shared<std::atomic<bool>>(false);
  hostkit_common::HostThread thread([answer, call = std::move(call)] { *answer = call(); });
  if (!thread.WaitFor(limitMs)) {
    return false;
  }
  result = *answer;
  return true;
}

TEST(RegExpMatch, AnInvalidPatternLeavesTheLockFree) {
  ASSERT_FALSE(RegExpMatch("intel(", "intel("));
  ASSERT_FALSE(RegExpMatch(HK_WIDE("(unclosed"), HK_WIDE("(unclosed")));
  // A lock left held would block the next call, from any thread, for ever.
  bool result = false;
  ASSERT_TRUE(FinishesWithin(
      10000, [] { return RegExpMatch("intel", "intel pro/100"); }, result));
  EXPECT_TRUE(result);
}

TEST(RegExpMatch, ConcurrentCallersGetTheSerialAnswers) {
  std::vector<bool> serial;
  for (const auto& test : kMatchCases) {
    serial.push_back(RegExpMatch(test.pattern, test.text));
  }
  constexpr int kThreads = 8;
  constexpr int kRounds = 40;
  std::atomic<int> mismatches{0};
  std::vector<hostkit_common::HostThread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds; ++round) {
        for (std::size_t i = 0; i < std::size(kMatchCases); ++i) {
          // Each thread walks the cases from a different starting point.
          const std::size_t k = (i + static_cast<std::size_t>(t) * 3) % std::size(kMatchCases);
          const auto& test = kMatchCases[k];
          const bool narrow = RegExpMatch(test.pattern, test.text);
          const bool wide = RegExpMatch(Wide(test.pattern).c_str(), Wide(test.text).c_str());
          if (narrow != serial[k] || wide != serial[k]) {
            ++mismatches;
          }
        }
      }
    });
  }
  for (auto& thread : threads) {
    thread.Join();
  }
  EXPECT_EQ(mismatches.load(), 0);
}

TEST(Validators, IpAddressesAreFourNumbersFrom0To255) {
  for (const char* valid : {"1.2.3.4", "0.0.0.0", "255.255.255.255", " 10.0.0.1", "+10.0.0.1",
                            "010.000.000.001", "10.0.0.1 ", "10.0.0.1\t"}) {
    EXPECT_TRUE(IsValidIPAddress(valid)) << '"' << valid << '"';
  }
  for (const char* invalid : {"1.2.3.4.5", "10.0.0.1x", "10.0.0", "256.0.0.1", "1.2.3.256",
                              "-1.0.0.0", "", "a.b.c.d", "10.0.0.1 trailing", "1..2.3"}) {
    EXPECT_FALSE(IsValidIPAddress(invalid)) << '"' << invalid << '"';
  }
  EXPECT_FALSE(IsValidIPAddress(nullptr));
}

struct NameCase {
  const char* text;
  bool validHost;
  bool validDomain;
};

const NameCase kNameCases[] = {
    {"", true, true},
    {"myhost", true, true},
    {"Host42", true, true},
    {"my-host", false, false},
    {"a_b", false, false},
    {"example.com", false, true},
    {"example..com", false, true},
    {".example.com.", false, true},
    {"...", false, true},
    {"a_b.com", false, false},
    {"good.bad-part.com", false, false},
    {"sp ace.com", false, false},
};

TEST(Validators, HostAndDomainNamesNarrowAndWideAgree) {
  for (const auto& test : kNameCases) {
    const wstring wide = Wide(test.text);
    EXPECT_EQ(IsValidHostName(test.text), test.validHost) << test.text;
    EXPECT_EQ(IsValidHostName(wide.c_str()), test.validHost) << test.text;
    EXPECT_EQ(IsValidDomainName(test.text), test.validDomain) << test.text;
    EXPECT_EQ(IsValidDomainName(wide.c_str()), test.validDomain) << test.text;
  }
  EXPECT_FALSE(IsValidHostName(static_cast<const char*>(nullptr)));
  EXPECT_FALSE(IsValidDomainName(static_cast<const WCHAR*>(nullptr)));
}

// Only A-Z, a-z and 0-9 count, in both builds and whatever locale the host program chose (a
// UTF-8 one where the C runtime has it): accented and other alphabets' letters, superscript,
// full-width and other scripts' digits are refused.
TEST(Validators, NamesBeyondAsciiLettersAndDigitsAreRefused) {
  const std::string previous = std::setlocale(LC_CTYPE, nullptr);
  std::setlocale(LC_CTYPE, "C.UTF-8");
  for (const WCHAR* text : {HK_WIDE("caf\u00E9"), HK_WIDE("\u00B2"), HK_WIDE("\u0416"),
                            HK_WIDE("\uFF21"), HK_WIDE("\u0661"), HK_WIDE("\u00C0bc")}) {
    EXPECT_FALSE(IsValidHostName(text));
    EXPECT_FALSE(IsValidDomainName((wstring(text) + HK_WIDE(".com")).c_str()));
  }
  EXPECT_FALSE(IsValidHostName("caf\xE9"));
  EXPECT_FALSE(IsValidHostName("\xB2"));
  EXPECT_TRUE(IsValidHostName(HK_WIDE("AZaz09")));
  std::setlocale(LC_CTYPE, previous.c_str());
}

}  // namespace
}  // namespace Hostkit
