#!/usr/bin/env bash
# Checks that a built Hostkit3.dll exports the public interface of namespace Hostkit and nothing
# of the implementation: every exported symbol must be in namespace Hostkit, and none may belong
# to the implementation classes (*_impl), the platform seam or the simulated machine.
set -euo pipefail
dll="${1:-build-win/Hostkit3.dll}"

exports=$(x86_64-w64-mingw32-objdump -p "$dll" |
  sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | awk 'NR > 1 && NF { print $NF }')
count=$(grep -c . <<<"$exports" || true)
if ((count == 0)); then
  echo "check-exports: $dll exports nothing" >&2
  exit 1
fi
demangled=$(x86_64-w64-mingw32-c++filt <<<"$exports")
outside=$(grep -v -E '^(typeinfo|vtable)? ?(for )?Hostkit::' <<<"$demangled" |
  grep -v -E '^DllMain' || true)
internal=$(grep -E '_impl|Hostkit::platform::|Hostkit::sim::|Hostkit::regfile::|Hostkit::registry::' \
  <<<"$demangled" || true)
if [[ -n "$outside$internal" ]]; then
  echo "check-exports: $dll exports symbols beyond the public interface:" >&2
  printf '%s\n' "$outside" "$internal" | grep . >&2
  exit 1
fi
for expected in 'Hostkit::RegWiz::GetKeyVal' 'Hostkit::OS::Type()' 'Hostkit::ConvertANSIToUnicode' \
  'Hostkit::RegExpMatch' 'Hostkit::GetVersion' 'Hostkit::FileExists' \
  'Hostkit::DeviceManager::GetDevices' 'Hostkit::DeviceManager::GetFreeIRQs' \
  'Hostkit::RasInterface::Dial' 'Hostkit::RasInterface::GetEntries'; do
  if ! grep -qF "$expected" <<<"$demangled"; then
    echo "check-exports: $dll does not export $expected" >&2
    exit 1
  fi
done
echo "check-exports: $count symbols, all of the public interface"
