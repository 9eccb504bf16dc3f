// FileAndPrintSharing: the sharing service's handler and VNETSUP's "FileSharing" and
// "PrintSharing" switches of Windows 9x.
#include "hostkit/file_and_print_sharing.h"

#include <string>

#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "hostkit/regwiz.h"

namespace Hostkit {

class FileAndPrintSharing_impl {
 public:
  static bool IsEnabled(const char* name);
  static void Disable(const char* name);
};

template class Pimpl<FileAndPrintSharing_impl>;

namespace {

constexpr const char* kSharingHandler = "SOFTWARE\\Classes\\Network\\SharingHandler";
constexpr const char* kVnetsup = "System\\CurrentControlSet\\Services\\VxD\\VNETSUP";

}  // namespace

bool FileAndPrintSharing_impl::IsEnabled(const char* name) {
  if (!OS().IsWin9x()) {
    return false;
  }
  RegWiz registry;
  std::string handler;
  if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, kSharingHandler, "", handler) || handler.empty()) {
    return false;  // the sharing service is not installed
  }
  if (!registry.DoesValNameExist(HKEY_LOCAL_MACHINE, kVnetsup, name)) {
    return true;
  }
  std::string setting;
  return !(registry.GetKeyVal(HKEY_LOCAL_MACHINE, kVnetsup, name, setting) && setting == "No");
}

void FileAndPrintSharing_impl::Disable(const char* name) {
  if (OS().IsWin9x()) {
    RegWiz().SetKeyVal(HKEY_LOCAL_MACHINE, kVnetsup, name, "No");
  }
}

FileAndPrintSharing::FileAndPrintSharing() = default;
FileAndPrintSharing::FileAndPrintSharing(const FileAndPrintSharing& other) = default;
FileAndPrintSharing& FileAndPrintSharing::operator=(const FileAndPrintSharing& other) = default;
FileAndPrintSharing::~FileAndPrintSharing() = default;

bool FileAndPrintSharing::IsFileSharingEnabled() {
  return Forward(impl_, false, [](FileAndPrintSharing_impl&) {
    return FileAndPrintSharing_impl::IsEnabled("FileSharing");
  });
}
bool FileAndPrintSharing::IsPrintSharingEnabled() {
  return Forward(impl_, false, [](FileAndPrintSharing_impl&) {
    return FileAndPrintSharing_impl::IsEnabled("PrintSharing");
  });
}
void FileAndPrintSharing::DisableFileSharing() {
  Forward(impl_, false, [](FileAndPrintSharing_impl&) {
    FileAndPrintSharing_impl::Disable("FileSharing");
    return true;
  });
}
void FileAndPrintSharing::DisablePrintSharing() {
  Forward(impl_, false, [](FileAndPrintSharing_impl&) {
    FileAndPrintSharing_impl::Disable("PrintSharing");
    return true;
  });
}

}  // namespace Hostkit
