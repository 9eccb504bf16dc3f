// Shell32's special-folder lookup. It is not present in every Shell32, so the library binds it
// at run time (LoadLibraryA "shell32.dll", GetProcAddress by this name) instead of calling it
// through the seam.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

inline constexpr const char* kShell32 = "shell32.dll";
inline constexpr const char* kSHGetSpecialFolderPathA = "SHGetSpecialFolderPathA";
// The current user's Internet Explorer Favorites folder.
inline constexpr int kFavoritesFolder = 6;

// Writes the folder's path (at most MAX_PATH characters with the terminator) into `path`;
// `create` makes a missing folder.
using SHGetSpecialFolderPathAProc = BOOL(WINAPI*)(HWND owner, char* path, int folder, BOOL create);

}  // namespace Hostkit::platform
