#!/usr/bin/env bash
# Installs the Debian 12 packages the build and the tests need (g++-multilib for the 32-bit
# native build, clang and its runtime libraries for the second compiler and the fuzz targets,
# doxygen for the API reference); with --windows also those of the Windows leg (mingw-w64 for
# i686 in the Win32 thread model and for x86-64, Wine, zip for the release bundle). Only missing
# packages are installed, so running it again changes nothing.
set -euo pipefail

packages=(
  cmake ninja-build ccache g++ g++-multilib
  libboost1.81-dev libgtest-dev libgmock-dev nlohmann-json3-dev libcli11-dev libbenchmark-dev
  clang-format clang-tidy clang libclang-rt-14-dev doxygen pkg-config
)

if [[ "${1:-}" == "--windows" ]]; then
  packages+=(g++-mingw-w64-i686-win32 g++-mingw-w64-x86-64-posix wine wine64 googletest xvfb
    iproute2 zip)
fi

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done

if ((${#missing[@]} == 0)); then
  echo "install-deps: all packages are installed"
  exit 0
fi

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  as_root=(sudo)
fi
echo "install-deps: installing ${missing[*]}"
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y --no-install-recommends "${missing[@]}"
