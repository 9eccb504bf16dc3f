// Conversions between the ANSI code page, ASCII and UTF-16; the library version; the
// file-existence test.
#include "hostkit/strings.h"

#include <climits>
#include <cstdio>
#include <string>
#include <utility>

#include "platform/files.h"
#include "platform/text.h"

namespace Hostkit {

namespace {

// A length as the conversion calls take it; false when the text is too long for them.
template <class Text>
bool CallLength(const Text& text, int& length) {
  if (text.size() > static_cast<std::size_t>(INT_MAX)) {
    return false;
  }
  length = static_cast<int>(text.size());
  return true;
}

bool OpensForReading(std::FILE* file) {
  if (file == nullptr) {
    return false;
  }
  platform::fclose(file);
  return true;
}

}  // namespace

bool ConvertANSIToUnicode(const std::string& in, wstring& out) {
  try {
    if (in.empty()) {
      out.clear();
      return true;
    }
    int length = 0;
    if (!CallLength(in, length)) {
      return false;
    }
    const int needed =
        platform::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, in.data(), length, nullptr, 0);
    if (needed <= 0) {
      return false;
    }
    wstring converted(static_cast<std::size_t>(needed), WCHAR{0});
    const int written = platform::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, in.data(),
                                                      length, converted.data(), needed);
    if (written <= 0) {
      return false;
    }
    converted.resize(static_cast<std::size_t>(written));
    out = std::move(converted);
    return true;
  } catch (...) {
    return false;
  }
}

// A character with no ANSI form would come out as the default character: such a string is
// refused rather than converted lossily.
bool ConvertUnicodeToANSI(const wstring& in, std::string& out) {
  try {
    if (in.empty()) {
      out.clear();
      return true;
    }
    int length = 0;
    if (!CallLength(in, length)) {
      return false;
    }
    BOOL usedDefault = FALSE;
    const int needed = platform::WideCharToMultiByte(CP_ACP, 0, in.data(), length, nullptr, 0,
                                                     nullptr, &usedDefault);
    if (needed <= 0) {
      return false;
    }
    std::string converted(static_cast<std::size_t>(needed), '\0');
    usedDefault = FALSE;
    const int written = platform::WideCharToMultiByte(
        CP_ACP, 0, in.data(), length, converted.data(), needed, nullptr, &usedDefault);
    if (written <= 0 || usedDefault != FALSE) {
      return false;
    }
    converted.resize(static_cast<std::size_t>(written));
    out = std::move(converted);
    return true;
  } catch (...) {
    return false;
  }
}

bool ConvertASCIIToUnicode(const std::string& in, wstring& out) {
  try {
    wstring converted;
    converted.reserve(in.size());
    for (char c : in) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte > 127) {
        return false;
      }
      converted.push_back(static_cast<WCHAR>(byte));
    }
    out = std::move(converted);
    return true;
  } catch (...) {
    return false;
  }
}

bool ConvertUnicodeToASCII(const wstring& in, std::string& out) {
  try {
    std::string converted;
    converted.reserve(in.size());
    for (WCHAR unit : in) {
      if (static_cast<unsigned int>(unit) > 127) {
        return false;
      }
      converted.push_back(static_cast<char>(unit));
    }
    out = std::move(converted);
    return true;
  } catch (...) {
    return false;
  }
}

std::string GetVersion() { return "3.0.0"; }

bool FileExists(const char* path) {
  return path != nullptr && OpensForReading(platform::fopen(path, "r"));
}

bool FileExists(const WCHAR* path) {
  return path != nullptr && OpensForReading(platform::_wfopen(path, HK_WIDE("r")));
}

}  // namespace Hostkit
