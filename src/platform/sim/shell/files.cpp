// The C runtime's file open on the simulated machine: Windows paths on the host folders that
// stand for the machine's drives.
#include "platform/files.h"

#include <cerrno>
#include <string>
#include <system_error>

#include "hostkit/sim/machine.h"
#include "platform/sim/shell/host_paths.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

// The mode without the Windows-only parts: the text flag "t" (the host has no text mode) and an
// encoding request (", ccs=...").
std::string HostMode(std::string mode) {
  mode = mode.substr(0, mode.find(','));
  std::erase(mode, 't');
  return mode;
}

void Fail(int error, DWORD lastError) {
  errno = error;
  platform::SetLastError(lastError);
}

std::FILE* OpenWindowsPath(const std::optional<wstring>& path, const std::string& mode) {
  if (!path) {
    Fail(EINVAL, ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  DWORD fault = ERROR_SUCCESS;
  if (ActiveMachine()->faults().failNow(FaultFamily::FileOpen, fault)) {
    Fail(fault == ERROR_ACCESS_DENIED ? EACCES : EIO, fault);
    return nullptr;
  }
  auto host = HostPath(ActiveMachine()->facts(), *path);
  if (!host) {
    Fail(ENOENT, ERROR_PATH_NOT_FOUND);
    return nullptr;
  }
  // The host would open a directory for reading; Windows refuses.
  std::error_code error;
  if (std::filesystem::is_directory(*host, error)) {
    Fail(EACCES, ERROR_ACCESS_DENIED);
    return nullptr;
  }
  std::FILE* file = std::fopen(host->c_str(), HostMode(mode).c_str());
  if (file == nullptr) {
    const int openError = errno;
    Fail(openError, openError == EACCES ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND);
  }
  return file;
}

// A wide mode ("r", "wb", ...) as narrow text; null when it holds anything but ASCII.
std::optional<std::string> NarrowMode(const WCHAR* mode) {
  std::string narrow;
  for (; *mode != 0; ++mode) {
    if (*mode > 0x7F) {
      return std::nullopt;
    }
    narrow.push_back(static_cast<char>(*mode));
  }
  return narrow;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

std::FILE* fopen(const char* path, const char* mode) {
  if (path == nullptr || mode == nullptr) {
    sim::Fail(EINVAL, ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  try {
    return sim::OpenWindowsPath(sim::WidenAnsiPath(path), mode);
  } catch (...) {
    sim::Fail(ENOMEM, ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
}

std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) {
  if (path == nullptr || mode == nullptr) {
    sim::Fail(EINVAL, ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  try {
    auto narrowMode = sim::NarrowMode(mode);
    if (!narrowMode) {
      sim::Fail(EINVAL, ERROR_INVALID_PARAMETER);
      return nullptr;
    }
    return sim::OpenWindowsPath(wstring(path), *narrowMode);
  } catch (...) {
    sim::Fail(ENOMEM, ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
}

int fclose(std::FILE* file) {
  if (file == nullptr) {
    errno = EINVAL;
    return EOF;
  }
  return std::fclose(file);
}

}  // namespace Hostkit::platform
