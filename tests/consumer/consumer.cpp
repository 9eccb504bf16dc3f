// A program outside the library: built against the installed headers and linked against the
// import library only, it calls exported classes and free functions and checks their answers.
// Exits 0 when every check holds.
#include <hostkit/os.h>
#include <hostkit/patterns.h>
#include <hostkit/regwiz.h>
#include <hostkit/strings.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

int failures = 0;

void Check(bool condition, const char* what) {
  std::printf("%s: %s\n", condition ? "ok  " : "FAIL", what);
  if (!condition) {
    ++failures;
  }
}

}  // namespace

int main() {
  Check(Hostkit::GetVersion() == "3.0.0", "GetVersion is 3.0.0");

  Hostkit::wstring wide;
  std::string back;
  Check(Hostkit::ConvertANSIToUnicode("caf\xE9", wide) && wide.size() == 4,
        "ANSI text converts to UTF-16");
  Check(Hostkit::ConvertUnicodeToANSI(wide, back) && back == "caf\xE9", "and back again");

  Check(Hostkit::RegExpMatch("ether", "3com etherlink"), "unanchored pattern matches inside");
  Check(!Hostkit::RegExpMatch("intel(", "intel"), "invalid pattern never matches");
  Check(Hostkit::IsValidIPAddress("10.0.0.1") && !Hostkit::IsValidIPAddress("1.2.3.4.5"),
        "address validation");

  Hostkit::OS os;
  Check(os.Type() != Hostkit::OS::TYPE_UNKNOWN, "OS knows the release");
  Hostkit::OS copy = os;
  Check(copy.IsWin9x() == os.IsWin9x(), "a copied OS answers the same");

  Hostkit::RegWiz reg;
  const char* key = "Software\\HostkitConsumer";
  std::string text;
  std::vector<std::string> names;
  Check(reg.CreateKey(HKEY_CURRENT_USER, key), "RegWiz creates a key");
  Check(reg.SetKeyVal(HKEY_CURRENT_USER, key, "Greeting", "hello"), "sets a value");
  Check(reg.GetKeyVal(HKEY_CURRENT_USER, key, "Greeting", text) && text == "hello",
        "reads it back");
  Check(reg.GetValNames(HKEY_CURRENT_USER, key, names) && names.size() == 1, "lists its values");
  Check(reg.DeleteKey(HKEY_CURRENT_USER, key) && !reg.DoesKeyExist(HKEY_CURRENT_USER, key),
        "deletes the key");

  std::printf("%d failed\n", failures);
  return failures == 0 ? 0 : 1;
}
