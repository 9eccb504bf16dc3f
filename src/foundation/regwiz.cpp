// RegWiz: narrow operations go straight to the registry; wide ones too on Windows 2000 and XP,
// while Windows 9x and NT 4 take the narrow path with the text converted to ANSI.
#include "hostkit/regwiz.h"

#include <optional>

#include "foundation/regwiz_impl.h"
#include "foundation/regwiz_operations.h"
#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "hostkit/strings.h"

namespace Hostkit {

template class Pimpl<RegWiz_impl>;

namespace {

using registry::Text;

bool UseNarrowPath() {
  OS os;
  return os.IsWin9x() || os.IsWinNT4();
}

// A wide argument converted for the narrow path; a null pointer stays null.
class AnsiArg {
 public:
  explicit AnsiArg(const WCHAR* text) {
    if (text != nullptr) {
      std::string converted;
      if (ConvertUnicodeToANSI(wstring(text), converted)) {
        text_ = std::move(converted);
      } else {
        failed_ = true;
      }
    }
  }
  bool ok() const { return !failed_; }
  const char* get() const { return text_ ? text_->c_str() : nullptr; }

 private:
  std::optional<std::string> text_;
  bool failed_ = false;
};

bool ToWide(const std::string& text, wstring& wide) { return ConvertANSIToUnicode(text, wide); }

bool ToWide(const std::vector<std::string>& texts, std::vector<wstring>& wides) {
  std::vector<wstring> converted;
  for (const auto& text : texts) {
    wstring wide;
    if (!ToWide(text, wide)) {
      return false;
    }
    converted.push_back(std::move(wide));
  }
  wides = std::move(converted);
  return true;
}

bool ToAnsi(const std::vector<wstring>& wides, std::vector<std::string>& texts) {
  for (const auto& wide : wides) {
    std::string text;
    if (!ConvertUnicodeToANSI(wide, text)) {
      return false;
    }
    texts.push_back(std::move(text));
  }
  return true;
}

// Runs a narrow operation for wide arguments, converting the named output back to wide text.
// Any argument that has no ANSI form fails the operation.
template <class NarrowOut, class WideOut, class Op>
bool ThroughNarrow(const AnsiArg& path, const AnsiArg& name, WideOut& out, Op op) {
  if (!path.ok() || !name.ok()) {
    return false;
  }
  NarrowOut narrow{};
  if (!op(path.get(), name.get(), narrow)) {
    return false;
  }
  if constexpr (std::is_same_v<NarrowOut, WideOut>) {
    out = std::move(narrow);
    return true;
  } else {
    return ToWide(narrow, out);
  }
}

// The text and list reads through the narrow path, ending as their narrow forms end: a missing
// key leaves the output as it was, and any other failure empties it.
template <class NarrowOut, class WideOut, class Op>
bool ReadThroughNarrow(HKEY root, const AnsiArg& path, const AnsiArg& name, WideOut& out, Op op) {
  if (path.ok() && !registry::DoesKeyExist(root, path.get())) {
    return false;
  }
  if (!ThroughNarrow<NarrowOut>(path, name, out, op)) {
    out.clear();
    return false;
  }
  return true;
}

}  // namespace

// ---- narrow forms ----

bool RegWiz_impl::DoesKeyExist(HKEY root, const char* path) {
  return registry::DoesKeyExist(root, path);
}
bool RegWiz_impl::DoesValNameExist(HKEY root, const char* path, const char* name) {
  return registry::DoesValNameExist(root, path, name);
}
bool RegWiz_impl::GetSubKeyNames(HKEY root, const char* path, std::vector<std::string>& names) {
  return registry::GetSubKeyNames(root, path, names);
}
bool RegWiz_impl::GetValNames(HKEY root, const char* path, std::vector<std::string>& names) {
  return registry::GetValNames(root, path, names);
}
bool RegWiz_impl::GetKeyVal(HKEY root, const char* path, const char* name, std::string& value) {
  return registry::GetKeyVal(root, path, name, value);
}
bool RegWiz_impl::SetKeyVal(HKEY root, const char* path, const char* name, const char* value) {
  return registry::SetKeyVal(root, path, name, value);
}
bool RegWiz_impl::GetMultiStringKeyVal(HKEY root, const char* path, const char* name,
                                       std::vector<std::string>& values) {
  return registry::GetMultiStringKeyVal(root, path, name, values);
}
bool RegWiz_impl::SetMultiStringKeyVal(HKEY root, const char* path, const char* name,
                                       const std::vector<std::string>& values) {
  return registry::SetMultiStringKeyVal(root, path, name, values);
}
bool RegWiz_impl::GetDwordKeyVal(HKEY root, const char* path, const char* name,
                                 unsigned long& value) {
  return registry::GetDwordKeyVal(root, path, name, value);
}
bool RegWiz_impl::SetDwordKeyVal(HKEY root, const char* path, const char* name,
                                 unsigned long value) {
  return registry::SetDwordKeyVal(root, path, name, value);
}
bool RegWiz_impl::GetBinaryKeyVal(HKEY root, const char* path, const char* name,
                                  std::vector<unsigned char>& value) {
  return registry::GetBinaryKeyVal(root, path, name, value);
}
bool RegWiz_impl::SetBinaryKeyVal(HKEY root, const char* path, const char* name,
                                  const std::vector<unsigned char>& value) {
  return registry::SetBinaryKeyVal(root, path, name, value);
}
bool RegWiz_impl::DeleteKeyVal(HKEY root, const char* path, const char* name) {
  return registry::DeleteKeyVal(root, path, name);
}
bool RegWiz_impl::DeleteKey(HKEY root, const char* path) { return registry::DeleteKey(root, path); }
bool RegWiz_impl::CreateKey(HKEY root, const char* path) { return registry::CreateKey(root, path); }
std::vector<std::string> RegWiz_impl::GetAllSubKeys(HKEY root, const char* path, const char* name,
                                                    const char* pattern) {
  return registry::GetAllSubKeys(root, path, name, pattern);
}

// ---- wide forms ----

bool RegWiz_impl::DoesKeyExist(HKEY root, const WCHAR* path) {
  if (!UseNarrowPath()) {
    return registry::DoesKeyExist(root, path);
  }
  const AnsiArg narrowPath(path);
  // A path with no ANSI form is reported as existing: callers then go on to the operation
  // itself, which fails on its own terms.
  return !narrowPath.ok() || DoesKeyExist(root, narrowPath.get());
}

bool RegWiz_impl::DoesValNameExist(HKEY root, const WCHAR* path, const WCHAR* name) {
  if (!UseNarrowPath()) {
    return registry::DoesValNameExist(root, path, name);
  }
  const AnsiArg narrowPath(path), narrowName(name);
  return narrowPath.ok() && narrowName.ok() &&
         DoesValNameExist(root, narrowPath.get(), narrowName.get());
}

bool RegWiz_impl::GetSubKeyNames(HKEY root, const WCHAR* path, std::vector<wstring>& names) {
  if (!UseNarrowPath()) {
    return registry::GetSubKeyNames(root, path, names);
  }
  return ThroughNarrow<std::vector<std::string>>(
      AnsiArg(path), AnsiArg(nullptr), names,
      [&](const char* p, const char*, auto& out) { return GetSubKeyNames(root, p, out); });
}

bool RegWiz_impl::GetValNames(HKEY root, const WCHAR* path, std::vector<wstring>& names) {
  if (!UseNarrowPath()) {
    return registry::GetValNames(root, path, names);
  }
  return ThroughNarrow<std::vector<std::string>>(
      AnsiArg(path), AnsiArg(nullptr), names,
      [&](const char* p, const char*, auto& out) { return GetValNames(root, p, out); });
}

bool RegWiz_impl::GetKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, wstring& value) {
  if (!UseNarrowPath()) {
    return registry::GetKeyVal(root, path, name, value);
  }
  return ReadThroughNarrow<std::string>(
      root, AnsiArg(path), AnsiArg(name), value,
      [&](const char* p, const char* n, auto& out) { return GetKeyVal(root, p, n, out); });
}

bool RegWiz_impl::SetKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, const WCHAR* value) {
  if (!UseNarrowPath()) {
    return registry::SetKeyVal(root, path, name, value);
  }
  const AnsiArg narrowPath(path), narrowName(name), narrowValue(value);
  return narrowPath.ok() && narrowName.ok() && narrowValue.ok() &&
         SetKeyVal(root, narrowPath.get(), narrowName.get(), narrowValue.get());
}

bool RegWiz_impl::GetMultiStringKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                                       std::vector<wstring>& values) {
  if (!UseNarrowPath()) {
    return registry::GetMultiStringKeyVal(root, path, name, values);
  }
  return ReadThroughNarrow<std::vector<std::string>>(root, AnsiArg(path), AnsiArg(name), values,
                                                     [&](const char* p, const char* n, auto& out) {
                                                       return GetMultiStringKeyVal(root, p, n, out);
                                                     });
}

bool RegWiz_impl::SetMultiStringKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                                       const std::vector<wstring>& values) {
  if (!UseNarrowPath()) {
    return registry::SetMultiStringKeyVal(root, path, name, values);
  }
  const AnsiArg narrowPath(path), narrowName(name);
  std::vector<std::string> narrowValues;
  return narrowPath.ok() && narrowName.ok() && ToAnsi(values, narrowValues) &&
         SetMultiStringKeyVal(root, narrowPath.get(), narrowName.get(), narrowValues);
}

bool RegWiz_impl::GetDwordKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                                 unsigned long& value) {
  if (!UseNarrowPath()) {
    return registry::GetDwordKeyVal(root, path, name, value);
  }
  return ThroughNarrow<unsigned long>(
      AnsiArg(path), AnsiArg(name), value,
      [&](const char* p, const char* n, auto& out) { return GetDwordKeyVal(root, p, n, out); });
}

bool RegWiz_impl::SetDwordKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                                 unsigned long value) {
  if (!UseNarrowPath()) {
    return registry::SetDwordKeyVal(root, path, name, value);
  }
  const AnsiArg narrowPath(path), narrowName(name);
  return narrowPath.ok() && narrowName.ok() &&
         SetDwordKeyVal(root, narrowPath.get(), narrowName.get(), value);
}

bool RegWiz_impl::GetBinaryKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                                  std::vector<unsigned char>& value) {
  if (!UseNarrowPath()) {
    return registry::GetBinaryKeyVal(root, path, name, value);
  }
  value.clear();
  return ThroughNarrow<std::vector<unsigned char>>(
      AnsiArg(path), AnsiArg(name), value,
      [&](const char* p, const char* n, auto& out) { return GetBinaryKeyVal(root, p, n, out); });
}

bool RegWiz_impl::SetBinaryKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                                  const std::vector<unsigned char>& value) {
  if (!UseNarrowPath()) {
    return registry::SetBinaryKeyVal(root, path, name, value);
  }
  const AnsiArg narrowPath(path), narrowName(name);
  return narrowPath.ok() && narrowName.ok() &&
         SetBinaryKeyVal(root, narrowPath.get(), narrowName.get(), value);
}

bool RegWiz_impl::DeleteKeyVal(HKEY root, const WCHAR* path, const WCHAR* name) {
  if (!UseNarrowPath()) {
    return registry::DeleteKeyVal(root, path, name);
  }
  const AnsiArg narrowPath(path), narrowName(name);
  return narrowPath.ok() && narrowName.ok() &&
         DeleteKeyVal(root, narrowPath.get(), narrowName.get());
}

bool RegWiz_impl::DeleteKey(HKEY root, const WCHAR* path) {
  if (!UseNarrowPath()) {
    return registry::DeleteKey(root, path);
  }
  const AnsiArg narrowPath(path);
  return narrowPath.ok() && DeleteKey(root, narrowPath.get());
}

bool RegWiz_impl::CreateKey(HKEY root, const WCHAR* path) {
  if (!UseNarrowPath()) {
    return registry::CreateKey(root, path);
  }
  const AnsiArg narrowPath(path);
  return narrowPath.ok() && CreateKey(root, narrowPath.get());
}

std::vector<wstring> RegWiz_impl::GetAllSubKeys(HKEY root, const WCHAR* path, const WCHAR* name,
                                                const WCHAR* pattern) {
  if (!UseNarrowPath()) {
    return registry::GetAllSubKeys(root, path, name, pattern);
  }
  const AnsiArg narrowPath(path), narrowName(name), narrowPattern(pattern);
  std::vector<wstring> keys;
  if (narrowPath.ok() && narrowName.ok() && narrowPattern.ok()) {
    ToWide(GetAllSubKeys(root, narrowPath.get(), narrowName.get(), narrowPattern.get()), keys);
  }
  return keys;
}

// ---- the shell ----

RegWiz::RegWiz() = default;
RegWiz::RegWiz(const RegWiz& other) = default;
RegWiz& RegWiz::operator=(const RegWiz& other) = default;
RegWiz::~RegWiz() = default;

bool RegWiz::DoesKeyExist(HKEY root, const char* path) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) { return impl.DoesKeyExist(root, path); });
}
bool RegWiz::DoesKeyExist(HKEY root, const WCHAR* path) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) { return impl.DoesKeyExist(root, path); });
}
bool RegWiz::DoesValNameExist(HKEY root, const char* path, const char* name) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.DoesValNameExist(root, path, name); });
}
bool RegWiz::DoesValNameExist(HKEY root, const WCHAR* path, const WCHAR* name) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.DoesValNameExist(root, path, name); });
}
bool RegWiz::GetSubKeyNames(HKEY root, const char* path, std::vector<std::string>& names) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetSubKeyNames(root, path, names); });
}
bool RegWiz::GetSubKeyNames(HKEY root, const WCHAR* path, std::vector<wstring>& names) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetSubKeyNames(root, path, names); });
}
bool RegWiz::GetValNames(HKEY root, const char* path, std::vector<std::string>& names) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetValNames(root, path, names); });
}
bool RegWiz::GetValNames(HKEY root, const WCHAR* path, std::vector<wstring>& names) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetValNames(root, path, names); });
}
bool RegWiz::GetKeyVal(HKEY root, const char* path, const char* name, std::string& value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetKeyVal(root, path, name, value); });
}
bool RegWiz::GetKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, wstring& value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetKeyVal(root, path, name, value); });
}
bool RegWiz::SetKeyVal(HKEY root, const char* path, const char* name, const char* value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.SetKeyVal(root, path, name, value); });
}
bool RegWiz::SetKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, const WCHAR* value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.SetKeyVal(root, path, name, value); });
}
bool RegWiz::GetMultiStringKeyVal(HKEY root, const char* path, const char* name,
                                  std::vector<std::string>& values) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) {
    return impl.GetMultiStringKeyVal(root, path, name, values);
  });
}
bool RegWiz::GetMultiStringKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                                  std::vector<wstring>& values) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) {
    return impl.GetMultiStringKeyVal(root, path, name, values);
  });
}
bool RegWiz::SetMultiStringKeyVal(HKEY root, const char* path, const char* name,
                                  const std::vector<std::string>& values) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) {
    return impl.SetMultiStringKeyVal(root, path, name, values);
  });
}
bool RegWiz::SetMultiStringKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                                  const std::vector<wstring>& values) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) {
    return impl.SetMultiStringKeyVal(root, path, name, values);
  });
}
bool RegWiz::GetDwordKeyVal(HKEY root, const char* path, const char* name, unsigned long& value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetDwordKeyVal(root, path, name, value); });
}
bool RegWiz::GetDwordKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, unsigned long& value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetDwordKeyVal(root, path, name, value); });
}
bool RegWiz::SetDwordKeyVal(HKEY root, const char* path, const char* name, unsigned long value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.SetDwordKeyVal(root, path, name, value); });
}
bool RegWiz::SetDwordKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, unsigned long value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.SetDwordKeyVal(root, path, name, value); });
}
bool RegWiz::GetBinaryKeyVal(HKEY root, const char* path, const char* name,
                             std::vector<unsigned char>& value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetBinaryKeyVal(root, path, name, value); });
}
bool RegWiz::GetBinaryKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                             std::vector<unsigned char>& value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.GetBinaryKeyVal(root, path, name, value); });
}
bool RegWiz::SetBinaryKeyVal(HKEY root, const char* path, const char* name,
                             const std::vector<unsigned char>& value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.SetBinaryKeyVal(root, path, name, value); });
}
bool RegWiz::SetBinaryKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                             const std::vector<unsigned char>& value) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.SetBinaryKeyVal(root, path, name, value); });
}
bool RegWiz::DeleteKeyVal(HKEY root, const char* path, const char* name) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.DeleteKeyVal(root, path, name); });
}
bool RegWiz::DeleteKeyVal(HKEY root, const WCHAR* path, const WCHAR* name) {
  return Forward(impl_, false,
                 [&](RegWiz_impl& impl) { return impl.DeleteKeyVal(root, path, name); });
}
bool RegWiz::DeleteKey(HKEY root, const char* path) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) { return impl.DeleteKey(root, path); });
}
bool RegWiz::DeleteKey(HKEY root, const WCHAR* path) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) { return impl.DeleteKey(root, path); });
}
bool RegWiz::CreateKey(HKEY root, const char* path) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) { return impl.CreateKey(root, path); });
}
bool RegWiz::CreateKey(HKEY root, const WCHAR* path) {
  return Forward(impl_, false, [&](RegWiz_impl& impl) { return impl.CreateKey(root, path); });
}
std::vector<std::string> RegWiz::GetAllSubKeys(HKEY root, const char* path, const char* name,
                                               const char* pattern) {
  return Forward(impl_, std::vector<std::string>{},
                 [&](RegWiz_impl& impl) { return impl.GetAllSubKeys(root, path, name, pattern); });
}
std::vector<wstring> RegWiz::GetAllSubKeys(HKEY root, const WCHAR* path, const WCHAR* name,
                                           const WCHAR* pattern) {
  return Forward(impl_, std::vector<wstring>{},
                 [&](RegWiz_impl& impl) { return impl.GetAllSubKeys(root, path, name, pattern); });
}

}  // namespace Hostkit
