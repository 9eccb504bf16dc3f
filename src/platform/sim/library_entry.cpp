// The shared object needs no entry point of its own: process-wide state (the pattern lock, the
// active machine) is created by static initialisation inside the library.
namespace Hostkit::platform {
// Referenced by nothing; gives the shared library's own translation unit a symbol.
[[maybe_unused]] static constexpr int kLibraryEntry = 0;
}  // namespace Hostkit::platform
