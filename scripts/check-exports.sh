#!/usr/bin/env bash
# Checks that a built library exports the public interface of namespace Hostkit and nothing of
# the implementation: every exported symbol must be in namespace Hostkit, and none may belong to
# the implementation classes (*_impl), the platform seam or the library's own helpers. Takes the
# Windows DLL (read with objdump) or the Linux shared object (read with nm -D); the simulated
# machine's API (Hostkit::sim) is public in the shared object only.
#   check-exports.sh build-win/Hostkit3.dll
#   check-exports.sh build/libHostkit3.so
set -euo pipefail
library="${1:-build-win/Hostkit3.dll}"

internal='_impl|Hostkit::platform::|Hostkit::regfile::|Hostkit::registry::'
sim_helpers='Hostkit::sim::NoCaseEqual|Hostkit::sim::VirtualClock'
if [[ "$library" == *.dll ]]; then
  exports=$(x86_64-w64-mingw32-objdump -p "$library" |
    sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | awk 'NR > 1 && NF { print $NF }')
  demangle=x86_64-w64-mingw32-c++filt
  entry='^DllMain'
  internal="$internal|Hostkit::sim::"
else
  # Defined symbols only; the ELF bookkeeping symbols (_init, _fini, ...) are no interface.
  exports=$(nm -D --defined-only "$library" | awk '$2 != "A" { print $3 }')
  demangle=c++filt
  entry='^_(init|fini)$'
  internal="$internal|$sim_helpers"
fi
count=$(grep -c . <<<"$exports" || true)
if ((count == 0)); then
  echo "check-exports: $library exports nothing" >&2
  exit 1
fi
demangled=$("$demangle" <<<"$exports")
outside=$(grep -v -E '^(typeinfo|vtable)? ?(for |name for )?Hostkit::' <<<"$demangled" |
  grep -v -E "$entry" || true)
leaked=$(grep -E "$internal" <<<"$demangled" || true)
if [[ -n "$outside$leaked" ]]; then
  echo "check-exports: $library exports symbols beyond the public interface:" >&2
  printf '%s\n' "$outside" "$leaked" | grep . >&2
  exit 1
fi
for expected in 'Hostkit::RegWiz::GetKeyVal' 'Hostkit::OS::Type()' 'Hostkit::ConvertANSIToUnicode' \
  'Hostkit::RegExpMatch' 'Hostkit::GetVersion' 'Hostkit::FileExists' \
  'Hostkit::DeviceManager::GetDevices' 'Hostkit::DeviceManager::GetFreeIRQs' \
  'Hostkit::RasInterface::Dial' 'Hostkit::RasInterface::GetEntries'; do
  if ! grep -qF "$expected" <<<"$demangled"; then
    echo "check-exports: $library does not export $expected" >&2
    exit 1
  fi
done
echo "check-exports: $count symbols, all of the public interface"
