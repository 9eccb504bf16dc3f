// Code-page conversions: round trips through every supported code page, the machine's ANSI and
// OEM pages, invalid multi-byte input, the size protocol and the default-character report.
#include <gtest/gtest.h>
#include <iconv.h>

#include <string>

#include "hostkit/sim/machine.h"
#include "platform/system_info.h"
#include "platform/text.h"
#include "support/sim_machine.h"

namespace Hostkit::platform {
namespace {

class TextConversion : public testing::Test {
 protected:
  void SetUp() override { machine_ = hostkit_test::UseFreshMachine(sim::Release::WinXP); }
  void TearDown() override { sim::ActivateMachine(nullptr); }

  std::shared_ptr<sim::Machine> machine_;
};

struct Wide {
  int result = 0;
  std::u16string text;
};

// Converts through the size query and then into a buffer of exactly that size.
Wide ToWide(UINT codePage, std::string_view bytes, DWORD flags = 0) {
  const int length = static_cast<int>(bytes.size());
  Wide wide;
  const int needed = MultiByteToWideChar(codePage, flags, bytes.data(), length, nullptr, 0);
  if (needed == 0) {
    return wide;
  }
  wide.text.assign(needed, u'\0');
  wide.result =
      MultiByteToWideChar(codePage, flags, bytes.data(), length, wide.text.data(), needed);
  EXPECT_EQ(wide.result, needed);
  return wide;
}

std::string ToNarrow(UINT codePage, std::u16string_view text, BOOL* usedDefault = nullptr,
                     const char* defaultChar = nullptr) {
  const int length = static_cast<int>(text.size());
  const int needed =
      WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, defaultChar, usedDefault);
  std::string bytes(needed, '\0');
  if (needed > 0) {
    EXPECT_EQ(WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), needed,
                                  defaultChar, usedDefault),
              needed);
  }
  return bytes;
}

TEST_F(TextConversion, EveryByteOfCodePage1252RoundTrips) {
  std::string all;
  for (int b = 1; b < 256; ++b) {
    all.push_back(static_cast<char>(b));
  }
  const Wide wide = ToWide(1252, all, MB_ERR_INVALID_CHARS);
  ASSERT_EQ(wide.text.size(), all.size());
  EXPECT_EQ(wide.text[0x80 - 1], u'\u20AC');
  EXPECT_EQ(wide.text[0x9F - 1], u'\u0178');
  EXPECT_EQ(wide.text[0xE9 - 1], u'\u00E9');
  // The five unassigned bytes pass through as the C1 controls of the same value.
  for (unsigned char b : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
    EXPECT_EQ(wide.text[b - 1], static_cast<char16_t>(b));
  }
  BOOL usedDefault = TRUE;
  EXPECT_EQ(ToNarrow(1252, wide.text, &usedDefault), all);
  EXPECT_FALSE(usedDefault);
  EXPECT_EQ(ToWide(CP_ACP, all).text, wide.text);
}

TEST_F(TextConversion, AnsiAndOemCodePagesFollowTheMachine) {
  EXPECT_EQ(ToWide(CP_OEMCP, "\x82\xB0").text, u"\u00E9\u2591");  // 437
  EXPECT_EQ(ToWide(CP_ACP, "\x82\xB0").text, u"\u201A\u00B0");    // 1252
  EXPECT_EQ(ToNarrow(CP_OEMCP, u"\u00E9"), "\x82");
  EXPECT_EQ(ToNarrow(CP_ACP, u"\u00E9"), "\xE9");

  machine_->facts().oemCodePage = 850;
  machine_->facts().ansiCodePage = 1251;
  EXPECT_EQ(ToWide(CP_OEMCP, "\xD5").text, u"\u0131");
  EXPECT_EQ(ToWide(437, "\xD5").text, u"\u2552");
  EXPECT_EQ(ToWide(CP_ACP, "\xC0").text, u"\u0410");
}

TEST_F(TextConversion, InvalidMultiByteInputFailsOnlyWhenAskedTo) {
  EXPECT_EQ(ToWide(932, "\x93\xFA\x96\x7B", MB_ERR_INVALID_CHARS).text, u"\u65E5\u672C");

  for (const std::string_view bad : {std::string_view("\x93"), std::string_view("a\x81 ")}) {
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(932, MB_ERR_INVALID_CHARS, bad.data(),
                                  static_cast<int>(bad.size()), nullptr, 0),
              0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
  }
  EXPECT_EQ(ToWide(932, "a\x81 ").text, u"a\uFFFD ");
  EXPECT_EQ(ToWide(CP_UTF8, "x\xC3").text, u"x\uFFFD");
  EXPECT_EQ(ToWide(CP_UTF8, "x\xC3", MB_ERR_INVALID_CHARS).result, 0);
}

TEST_F(TextConversion, SizeQueriesTerminatorsAndShortBuffers) {
  // -1 means zero-terminated, and the terminator is converted and counted.
  WCHAR wide[8];
  std::fill(std::begin(wide), std::end(wide), u'X');
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "ab", -1, nullptr, 0), 3);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "ab", -1, wide, 8), 3);
  EXPECT_EQ(std::u16string(wide, 4), std::u16string(u"ab\0X", 4));

  SetLastError(0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 3, wide, 2), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  char narrow[8] = {};
  EXPECT_EQ(WideCharToMultiByte(932, 0, u"\u65E5\u672C", -1, nullptr, 0, nullptr, nullptr), 5);
  SetLastError(0);
  EXPECT_EQ(WideCharToMultiByte(932, 0, u"\u65E5\u672C", 2, narrow, 3, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));

  for (UINT unsupported : {UINT{12345}, UINT{1200}}) {
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(unsupported, 0, "a", 1, wide, 8), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  }
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", 0, wide, 8), 0);
  EXPECT_EQ(WideCharToMultiByte(1252, 0, nullptr, 1, narrow, 8, nullptr, nullptr), 0);
}

TEST_F(TextConversion, UnmappableUnitsBecomeTheDefaultCharacterWithoutBestFit) {
  BOOL usedDefault = FALSE;
  EXPECT_EQ(ToNarrow(1252, u"A\u20AC", &usedDefault), "A\x80");
  EXPECT_FALSE(usedDefault);
  // U+0100 would best-fit to "A"; it must not.
  EXPECT_EQ(ToNarrow(1252, u"A\u0100", &usedDefault), "A?");
  EXPECT_TRUE(usedDefault);
  EXPECT_EQ(ToNarrow(1252, u"A\u0100", nullptr, "*"), "A*");
  // Surrogates count as units: a pair and a lone half each become defaults.
  EXPECT_EQ(ToNarrow(1252, u"\U0001F600|\xD800", &usedDefault), "??|?");
  EXPECT_EQ(ToNarrow(932, u"\u65E5\u0100"), "\x93\xFA?");

  // UTF-8 has no default character; Windows refuses to be asked about one.
  EXPECT_EQ(ToNarrow(CP_UTF8, u"\U0001F600\xD800"), "\xF0\x9F\x98\x80\xEF\xBF\xBD");
  SetLastError(0);
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"a", 1, nullptr, 0, nullptr, &usedDefault), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

struct Sample {
  UINT codePage;
  std::u16string text;
};

class CodePageRoundTrip : public TextConversion, public testing::WithParamInterface<Sample> {};

TEST_P(CodePageRoundTrip, RepresentableTextSurvivesBothDirections) {
  const Sample& sample = GetParam();
  BOOL usedDefault = TRUE;
  const std::u16string text = u"Hostkit " + sample.text;
  const std::string bytes = sample.codePage == CP_UTF8
                                ? ToNarrow(CP_UTF8, text)
                                : ToNarrow(sample.codePage, text, &usedDefault);
  if (sample.codePage != CP_UTF8) {
    EXPECT_FALSE(usedDefault);
  }
  EXPECT_GT(bytes.size(), std::string("Hostkit ").size());
  EXPECT_EQ(ToWide(sample.codePage, bytes, MB_ERR_INVALID_CHARS).text, text);
}

INSTANTIATE_TEST_SUITE_P(
    SupportedCodePages, CodePageRoundTrip,
    testing::Values(Sample{437, u"\u00E9\u2591"}, Sample{850, u"\u0131\u00D8"},
                    Sample{932, u"\u65E5\u672C\uFF76"}, Sample{936, u"\u4E2D\u6587"},
                    Sample{949, u"\uD55C\uAD6D"}, Sample{950, u"\u4E2D\u6587"},
                    Sample{1250, u"\u0141\u0104"}, Sample{1251, u"\u0416\u0436"},
                    Sample{1252, u"\u20AC\u00FF"}, Sample{1253, u"\u03A9\u03C9"},
                    Sample{1254, u"\u011E\u015E"}, Sample{1255, u"\u05E9\u05DC"},
                    Sample{1256, u"\u0639\u0631"}, Sample{1257, u"\u0100\u0160"},
                    Sample{1258, u"\u01A0\u01B0"}, Sample{CP_UTF8, u"x\U0001F600"}),
    [](const testing::TestParamInfo<Sample>& info) {
      return "cp" + std::to_string(info.param.codePage);
    });

// glibc's own conversion of one unit or one byte, iconv reset before each: the reference the
// simulation's single-byte code pages must follow character for character. Code page 1252's
// five unassigned bytes stand for the C1 controls of the same value, as on Windows.
class IconvReference {
 public:
  IconvReference(UINT codePage, const char* name)
      : codePage_(codePage),
        encoder_(iconv_open(name, "UTF-16LE")),
        decoder_(iconv_open("UTF-16LE", name)) {}
  ~IconvReference() {
    iconv_close(encoder_);
    iconv_close(decoder_);
  }
  IconvReference(const IconvReference&) = delete;
  IconvReference& operator=(const IconvReference&) = delete;

  // The unit's byte, or '?' when it has none.
  char Encode(char16_t unit) {
    char in[2] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    char out[8];
    const std::string converted = Convert(encoder_, in, sizeof in, out, sizeof out);
    if (converted.size() == 1) {
      return converted[0];
    }
    return IsPassThrough(unit) ? static_cast<char>(unit) : '?';
  }

  // The byte's unit, or U+FFFD when it has none.
  char16_t Decode(unsigned char byte) {
    char in = static_cast<char>(byte);
    char out[8];
    const std::string converted = Convert(decoder_, &in, 1, out, sizeof out);
    if (converted.size() == 2) {
      return static_cast<char16_t>(static_cast<unsigned char>(converted[0]) |
                                   (static_cast<unsigned char>(converted[1]) << 8));
    }
    return IsPassThrough(byte) ? static_cast<char16_t>(byte) : u'\uFFFD';
  }

 private:
  static std::string Convert(iconv_t cd, char* in, std::size_t inSize, char* out,
                             std::size_t outSize) {
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    char* outPtr = out;
    std::size_t outLeft = outSize;
    std::size_t inLeft = inSize;
    if (iconv(cd, &in, &inLeft, &outPtr, &outLeft) == static_cast<std::size_t>(-1)) {
      return {};
    }
    return std::string(out, outPtr);
  }

  bool IsPassThrough(unsigned value) const {
    return codePage_ == 1252 &&
           (value == 0x81 || value == 0x8D || value == 0x8F || value == 0x90 || value == 0x9D);
  }

  UINT codePage_;
  iconv_t encoder_;
  iconv_t decoder_;
};

class SingleByteCodePage : public TextConversion, public testing::WithParamInterface<UINT> {};

// Every unit in one long text, so that unmappable units come by the thousand (the surrogate
// halves, met in the middle, form one valid pair): each becomes what it becomes alone. And every
// byte, once with its replacements and once failing at the first invalid one.
TEST_P(SingleByteCodePage, EveryUnitAndByteConvertsAsIconvDoesAlone) {
  const UINT codePage = GetParam();
  IconvReference reference(codePage, ("CP" + std::to_string(codePage)).c_str());
  std::u16string everyUnit;
  std::string expectedBytes;
  for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
    everyUnit.push_back(static_cast<char16_t>(unit));
    expectedBytes.push_back(reference.Encode(static_cast<char16_t>(unit)));
  }
  BOOL usedDefault = FALSE;
  EXPECT_EQ(ToNarrow(codePage, everyUnit, &usedDefault), expectedBytes);
  EXPECT_TRUE(usedDefault);

  std::string everyByte;
  std::u16string expectedText;
  std::size_t firstInvalid = std::string::npos;
  for (unsigned byte = 1; byte <= 0xFF; ++byte) {
    everyByte.push_back(static_cast<char>(byte));
    expectedText.push_back(reference.Decode(static_cast<unsigned char>(byte)));
    if (expectedText.back() == u'\uFFFD' && firstInvalid == std::string::npos) {
      firstInvalid = byte - 1;
    }
  }
  EXPECT_EQ(ToWide(codePage, everyByte).text, expectedText);
  const int strict = MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, everyByte.data(),
                                         static_cast<int>(everyByte.size()), nullptr, 0);
  EXPECT_EQ(strict, firstInvalid == std::string::npos ? static_cast<int>(everyByte.size()) : 0);
}

INSTANTIATE_TEST_SUITE_P(TableCodePages, SingleByteCodePage,
                         testing::Values(437U, 850U, 1250U, 1251U, 1252U, 1253U, 1254U, 1256U,
                                         1257U),
                         [](const testing::TestParamInfo<UINT>& info) {
                           return "cp" + std::to_string(info.param);
                         });

}  // namespace
}  // namespace Hostkit::platform
