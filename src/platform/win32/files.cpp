// The C runtime's file open, as Windows' own runtime provides it.
#include "platform/files.h"

namespace Hostkit::platform {

std::FILE* fopen(const char* path, const char* mode) { return std::fopen(path, mode); }
std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) { return ::_wfopen(path, mode); }
int fclose(std::FILE* file) { return std::fclose(file); }

}  // namespace Hostkit::platform
