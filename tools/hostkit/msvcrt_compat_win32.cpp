// libstdc++'s file buffers (behind std::cout) ask MSVCRT.DLL's _fstat64, which it exports only
// from Windows XP on, so a tool importing it would not start on the earlier releases. The tool
// fills that import slot itself with a function over _fstati64, which the C runtime of every
// release exports; the buffers read only the mode and size, which both records carry.
#include <sys/stat.h>
#include <windows.h>

namespace {

// MSVCRT's _fstati64, found by its exported name (the x86-64 headers map that name to
// _fstat64).
using Fstati64Proc = int(__cdecl*)(int descriptor, struct _stati64* out);

int __cdecl Fstat64(int descriptor, struct _stat64* out) {
  const HMODULE runtime = GetModuleHandleA("msvcrt.dll");
  const FARPROC found = runtime != nullptr ? GetProcAddress(runtime, "_fstati64") : nullptr;
  if (found == nullptr) {
    return -1;
  }
  struct _stati64 status {};
  if (reinterpret_cast<Fstati64Proc>(reinterpret_cast<void (*)()>(found))(descriptor, &status) !=
      0) {
    return -1;
  }
  *out = {};
  out->st_dev = status.st_dev;
  out->st_ino = status.st_ino;
  out->st_mode = status.st_mode;
  out->st_nlink = status.st_nlink;
  out->st_uid = status.st_uid;
  out->st_gid = status.st_gid;
  out->st_rdev = status.st_rdev;
  out->st_size = status.st_size;
  out->st_atime = status.st_atime;
  out->st_mtime = status.st_mtime;
  out->st_ctime = status.st_ctime;
  return 0;
}

}  // namespace

// The import slot libstdc++ calls _fstat64 through, as the assembler spells it (i686 puts "_"
// before C names, x86-64 does not).
#define HOSTKIT_STRING(x) #x
#define HOSTKIT_IMPORT_SLOT(prefix, name) "__imp_" HOSTKIT_STRING(prefix) name
extern "C" {
extern decltype(&Fstat64)
    const hostkitFstat64Import asm(HOSTKIT_IMPORT_SLOT(__USER_LABEL_PREFIX__, "_fstat64"));
decltype(&Fstat64) const hostkitFstat64Import = &Fstat64;
}
