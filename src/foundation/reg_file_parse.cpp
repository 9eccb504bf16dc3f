// Reading registry files into operations.
//
// Both formats are parsed from UTF-16 text: a 5.00 file is UTF-16 already, a REGEDIT4 file is
// converted from the ANSI code page as a whole first (so that a double-byte character whose
// second byte looks like a backslash stays one character). The only difference left is the
// encoding of hex(2) and hex(7) data, which stay bytes of the file's own text encoding.
#include <cstdint>
#include <optional>

#include "foundation/error_line.h"
#include "foundation/reg_file.h"
#include "foundation/reg_file_text.h"

namespace Hostkit::regfile {

namespace {

constexpr std::string_view kHeader4 = "REGEDIT4";
constexpr std::string_view kHeader5 = "Windows Registry Editor Version 5.00";

bool IsBlank(WCHAR c) { return c == u' ' || c == u'\t'; }

std::optional<unsigned> HexDigit(WCHAR c) {
  if (c >= u'0' && c <= u'9') {
    return static_cast<unsigned>(c - u'0');
  }
  if (c >= u'a' && c <= u'f') {
    return static_cast<unsigned>(c - u'a' + 10);
  }
  if (c >= u'A' && c <= u'F') {
    return static_cast<unsigned>(c - u'A' + 10);
  }
  return std::nullopt;
}

// The longest key path the registry holds, in names below the root.
constexpr size_t kMaxKeyDepth = 512;

// Whether a name of the path is longer than a key name can be, or the path has more names
// than the registry nests.
std::optional<std::string> KeyPathLimitBroken(wstring_view path) {
  size_t names = 0;
  for (size_t start = 0; start < path.size();) {
    size_t end = path.find(u'\\', start);
    end = end == wstring_view::npos ? path.size() : end;
    if (end - start > kMaxKeyNameLength) {
      return "a key name is longer than " + std::to_string(kMaxKeyNameLength) + " characters";
    }
    if (++names > kMaxKeyDepth) {
      return "the key path has more than " + std::to_string(kMaxKeyDepth) + " levels";
    }
    start = end + 1;
  }
  return std::nullopt;
}

// The key path after the root name's backslash, without the one trailing backslash Windows
// accepts; nullopt when a name between backslashes is empty.
std::optional<wstring_view> KeyPathBelowRoot(wstring_view rest) {
  for (size_t start = 0;;) {
    const size_t end = rest.find(u'\\', start);
    if (end == wstring_view::npos) {
      return rest;
    }
    if (end == start) {
      return std::nullopt;
    }
    if (end + 1 == rest.size()) {
      return rest.substr(0, end);
    }
    start = end + 1;
  }
}

class Parser {
 public:
  Parser(wstring_view text, const std::string& fileName, bool version5)
      : text_(text), fileName_(fileName), version5_(version5) {}

  bool Run(std::vector<Operation>& operations, std::string& error);

 private:
  bool Fail(const std::string& what, int line = 0);

  bool AtEnd() const { return pos_ >= text_.size(); }
  bool AtLineEnd() const { return AtEnd() || text_[pos_] == u'\r' || text_[pos_] == u'\n'; }
  bool At(WCHAR c) const { return !AtEnd() && text_[pos_] == c; }
  bool AtWordNoCase(std::string_view word) const;
  void SkipBlanks();
  void SkipLineBreak();
  void SkipRestOfLine();
  bool EndOfStatement();

  bool ParseHeader();
  bool ParseKeyLine();
  bool ParseValueLine();
  bool ParseQuoted(wstring& text);
  bool ParseData(Operation& op);
  bool ParseDword(Operation& op);
  bool ParseHex(Operation& op);
  bool ParseByteList(std::vector<BYTE>& bytes);
  void SkipContinuationFillers();

  wstring_view text_;
  const std::string& fileName_;
  bool version5_;
  size_t pos_ = 0;
  int line_ = 1;
  std::string error_;
  std::vector<Operation> operations_;

  // The key the value lines below belong to.
  bool haveKey_ = false;
  bool keyDeleted_ = false;
  HKEY root_ = nullptr;
  wstring path_;
};

bool Parser::Fail(const std::string& what, int line) {
  error_ = ErrorLine(fileName_, line > 0 ? line : line_, what);
  return false;
}

bool Parser::AtWordNoCase(std::string_view word) const {
  if (text_.size() - pos_ < word.size()) {
    return false;
  }
  for (size_t i = 0; i < word.size(); ++i) {
    WCHAR c = text_[pos_ + i];
    if (c >= u'A' && c <= u'Z') {
      c = static_cast<WCHAR>(c + 32);
    }
    if (c != static_cast<WCHAR>(word[i])) {
      return false;
    }
  }
  return true;
}

void Parser::SkipBlanks() {
  while (!AtEnd() && IsBlank(text_[pos_])) {
    ++pos_;
  }
}

void Parser::SkipLineBreak() {
  if (At(u'\r')) {
    ++pos_;
    if (At(u'\n')) {
      ++pos_;
    }
    ++line_;
  } else if (At(u'\n')) {
    ++pos_;
    ++line_;
  }
}

void Parser::SkipRestOfLine() {
  while (!AtLineEnd()) {
    ++pos_;
  }
  SkipLineBreak();
}

// Only blanks may follow a complete statement on its line.
bool Parser::EndOfStatement() {
  SkipBlanks();
  if (!AtLineEnd()) {
    return Fail("unexpected text after the value");
  }
  SkipLineBreak();
  return true;
}

bool Parser::ParseHeader() {
  const size_t start = pos_;
  while (!AtLineEnd()) {
    ++pos_;
  }
  size_t end = pos_;
  while (end > start && IsBlank(text_[end - 1])) {
    --end;
  }
  const std::string header = Utf8ForMessage(text_.substr(start, end - start));
  const std::string_view expected = version5_ ? kHeader5 : kHeader4;
  if (header != expected) {
    if (!version5_ && header == kHeader5) {
      return Fail("a version 5.00 file must be UTF-16 text starting with the bytes FF FE");
    }
    return Fail("the first line must be \"" + std::string(expected) + "\"");
  }
  SkipLineBreak();
  return true;
}

bool Parser::Run(std::vector<Operation>& operations, std::string& error) {
  bool ok = ParseHeader();
  while (ok && !AtEnd()) {
    SkipBlanks();
    if (AtLineEnd()) {
      SkipLineBreak();
    } else if (At(u';') || At(u'#')) {
      SkipRestOfLine();
    } else if (At(u'[')) {
      ok = ParseKeyLine();
    } else if (At(u'@') || At(u'"')) {
      ok = ParseValueLine();
    } else {
      ok = Fail("expected a key line, a value line or a comment");
    }
  }
  if (!ok) {
    error = error_;
    return false;
  }
  operations = std::move(operations_);
  return true;
}

bool Parser::ParseKeyLine() {
  const size_t lineEnd = [&] {
    size_t end = pos_;
    while (end < text_.size() && text_[end] != u'\r' && text_[end] != u'\n') {
      ++end;
    }
    return end;
  }();
  const wstring_view line = text_.substr(pos_, lineEnd - pos_);
  const size_t close = line.rfind(u']');
  if (close == wstring_view::npos) {
    return Fail("key line without a closing ']'");
  }
  for (size_t i = close + 1; i < line.size(); ++i) {
    if (!IsBlank(line[i])) {
      return Fail("unexpected text after the key name");
    }
  }
  wstring_view name = line.substr(1, close - 1);
  const bool remove = !name.empty() && name.front() == u'-';
  if (remove) {
    name.remove_prefix(1);
  }
  const size_t split = name.find(u'\\');
  const wstring_view rootName = name.substr(0, split);
  const wstring_view rest = split == wstring_view::npos ? wstring_view() : name.substr(split + 1);
  const HKEY root = RootFromName(rootName);
  if (root == nullptr) {
    return Fail(rootName.empty() ? "missing key name"
                                 : "unknown root key \"" + Utf8ForMessage(rootName) + "\"");
  }
  const auto path = KeyPathBelowRoot(rest);
  if (!path) {
    return Fail("empty key name in \"" + Utf8ForMessage(name) + "\"");
  }
  if (remove && path->empty()) {
    return Fail("a root key cannot be deleted");
  }
  if (const auto broken = KeyPathLimitBroken(*path)) {
    return Fail(*broken);
  }

  Operation op;
  op.kind = remove ? Operation::Kind::DeleteKey : Operation::Kind::CreateKey;
  op.line = line_;
  op.root = root;
  op.path = wstring(*path);
  operations_.push_back(op);

  haveKey_ = true;
  keyDeleted_ = remove;
  root_ = root;
  path_ = op.path;
  pos_ = lineEnd;
  SkipLineBreak();
  return true;
}

bool Parser::ParseValueLine() {
  Operation op;
  op.line = line_;
  if (!haveKey_) {
    return Fail("value line before any key line");
  }
  if (keyDeleted_) {
    return Fail("value line under a deleted key");
  }
  if (At(u'@')) {
    ++pos_;
  } else if (!ParseQuoted(op.name)) {
    return false;
  }
  SkipBlanks();
  if (!At(u'=')) {
    return Fail("expected '=' after the value name");
  }
  ++pos_;
  SkipBlanks();
  op.root = root_;
  op.path = path_;
  if (!ParseData(op)) {
    return false;
  }
  operations_.push_back(std::move(op));
  return true;
}

// A double-quoted text with the escapes \\ \" \r \n. Line breaks inside the quotes belong to
// the text as they are written (Windows 95 and 5.00 files carry them raw).
bool Parser::ParseQuoted(wstring& text) {
  const int startLine = line_;
  ++pos_;
  for (;;) {
    if (AtEnd()) {
      return Fail("quoted text is not closed", startLine);
    }
    const WCHAR c = text_[pos_];
    if (c == u'"') {
      ++pos_;
      return true;
    }
    if (c == u'\\') {
      ++pos_;
      if (AtEnd()) {
        return Fail("quoted text is not closed", startLine);
      }
      switch (text_[pos_]) {
        case u'\\':
          text += u'\\';
          break;
        case u'"':
          text += u'"';
          break;
        case u'n':
          text += u'\n';
          break;
        case u'r':
          text += u'\r';
          break;
        default:
          return Fail("unknown escape \"\\" + Utf8ForMessage(text_.substr(pos_, 1)) +
                      "\" in quoted text");
      }
      ++pos_;
    } else if (c == u'\r' || c == u'\n') {
      const size_t breakStart = pos_;
      SkipLineBreak();
      text += text_.substr(breakStart, pos_ - breakStart);
    } else {
      text += c;
      ++pos_;
    }
  }
}

bool Parser::ParseData(Operation& op) {
  op.kind = Operation::Kind::SetValue;
  if (AtLineEnd()) {
    // What a backup writes for a link value, whose data it leaves out.
    op.type = REG_LINK;
    SkipLineBreak();
    return true;
  }
  if (At(u'-')) {
    ++pos_;
    op.kind = Operation::Kind::DeleteValue;
    return EndOfStatement();
  }
  if (At(u'"')) {
    wstring text;
    if (!ParseQuoted(text)) {
      return false;
    }
    text += u'\0';
    op.type = REG_SZ;
    op.data = Utf16Bytes(text);
    op.text = DataText::Utf16;
    return EndOfStatement();
  }
  if (AtWordNoCase("dword:")) {
    pos_ += 6;
    return ParseDword(op);
  }
  if (AtWordNoCase("hex")) {
    pos_ += 3;
    return ParseHex(op);
  }
  return Fail("unrecognised value data (expected \"text\", dword:, hex: or hex(N):)");
}

bool Parser::ParseDword(Operation& op) {
  std::uint32_t value = 0;
  int digits = 0;
  for (; !AtEnd() && HexDigit(text_[pos_]); ++pos_, ++digits) {
    if (digits == 8) {
      return Fail("dword value with more than 8 hex digits");
    }
    value = (value << 4) | *HexDigit(text_[pos_]);
  }
  if (digits == 0) {
    return Fail("dword value without hex digits");
  }
  op.type = REG_DWORD;
  op.data = {static_cast<BYTE>(value), static_cast<BYTE>(value >> 8),
             static_cast<BYTE>(value >> 16), static_cast<BYTE>(value >> 24)};
  return EndOfStatement();
}

bool Parser::ParseHex(Operation& op) {
  op.type = REG_BINARY;
  if (At(u'(')) {
    ++pos_;
    std::uint32_t type = 0;
    int digits = 0;
    for (; !AtEnd() && HexDigit(text_[pos_]); ++pos_, ++digits) {
      if (digits == 8) {
        return Fail("value type with more than 8 hex digits");
      }
      type = (type << 4) | *HexDigit(text_[pos_]);
    }
    if (digits == 0 || !At(u')')) {
      return Fail("expected hex(N): with N the value type in hex");
    }
    ++pos_;
    op.type = type;
  }
  if (!At(u':')) {
    return Fail("expected ':' after hex");
  }
  ++pos_;
  if (op.type == REG_EXPAND_SZ || op.type == REG_MULTI_SZ) {
    op.text = version5_ ? DataText::Utf16 : DataText::Ansi;
  }
  return ParseByteList(op.data);
}

// Blank lines and comment lines may stand between a continued line and its continuation.
void Parser::SkipContinuationFillers() {
  for (;;) {
    SkipBlanks();
    if (AtEnd()) {
      return;
    }
    if (AtLineEnd()) {
      SkipLineBreak();
    } else if (At(u';') || At(u'#')) {
      SkipRestOfLine();
    } else {
      return;
    }
  }
}

// Comma-separated bytes of one or two hex digits; a "\" at the end of a line continues the
// list on the next line.
bool Parser::ParseByteList(std::vector<BYTE>& bytes) {
  bool needComma = false;
  for (;;) {
    SkipBlanks();
    if (AtLineEnd()) {
      SkipLineBreak();
      return true;
    }
    if (At(u'\\')) {
      ++pos_;
      SkipBlanks();
      if (!AtLineEnd()) {
        return Fail("unexpected text after the continuation '\\'");
      }
      SkipLineBreak();
      SkipContinuationFillers();
      continue;
    }
    if (needComma) {
      return Fail("expected ',' between bytes");
    }
    const auto high = AtEnd() ? std::nullopt : HexDigit(text_[pos_]);
    if (!high) {
      return Fail("expected a hex byte");
    }
    ++pos_;
    unsigned value = *high;
    if (const auto low = AtEnd() ? std::nullopt : HexDigit(text_[pos_])) {
      value = (value << 4) | *low;
      ++pos_;
    }
    bytes.push_back(static_cast<BYTE>(value));
    SkipBlanks();
    needComma = !At(u',');
    if (!needComma) {
      ++pos_;
    }
  }
}

// The text of the file: UTF-16 after the byte-order mark, or the ANSI bytes converted.
bool DecodeFile(std::string_view bytes, const std::string& fileName, wstring& text, bool& version5,
                std::string& error) {
  version5 = bytes.size() >= 2 && static_cast<BYTE>(bytes[0]) == 0xFF &&
             static_cast<BYTE>(bytes[1]) == 0xFE;
  if (!version5) {
    if (!AnsiToWide(bytes, text)) {
      error = ErrorLine(fileName, 1, "the file is not text in the machine's ANSI code page");
      return false;
    }
    return true;
  }
  bytes.remove_prefix(2);
  text.clear();
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text +=
        static_cast<WCHAR>(static_cast<BYTE>(bytes[i]) | (static_cast<BYTE>(bytes[i + 1]) << 8));
  }
  if (bytes.size() % 2 != 0) {
    int lines = 1;
    for (size_t i = 0; i < text.size(); ++i) {
      if (text[i] == u'\n' ||
          (text[i] == u'\r' && (i + 1 == text.size() || text[i + 1] != u'\n'))) {
        ++lines;
      }
    }
    error = ErrorLine(fileName, lines, "UTF-16 text ends in half a character");
    return false;
  }
  return true;
}

}  // namespace

bool ParseRegFile(std::string_view bytes, const std::string& fileName,
                  std::vector<Operation>& operations, std::string& error) {
  try {
    if (bytes.size() > kMaxFileBytes) {
      error = ErrorLine(fileName, 1, FileTooLarge(kMaxFileBytes));
      return false;
    }
    wstring text;
    bool version5 = false;
    if (!DecodeFile(bytes, fileName, text, version5, error)) {
      return false;
    }
    Parser parser(text, fileName, version5);
    return parser.Run(operations, error);
  } catch (const std::exception&) {
    error = ErrorLine(fileName, 1, "not enough memory to read the file");
    return false;
  }
}

}  // namespace Hostkit::regfile
