#!/usr/bin/env bash
# Checks that a Windows build of the library or the tool loads on every release from Windows 95
# on: each function it imports statically from KERNEL32 must be one the first release of Windows
# 95 exports by name (../shared/windows/win95-kernel32-exports.txt), and each function it imports
# from any other DLL must be in the allowlist (cmake/static-imports.txt), which says why every
# release has it. Anything newer is bound at run time (LoadLibraryA/GetProcAddress).
#   scripts/check-imports.sh FILE...    (default build-win32/Hostkit3.dll)
# Prints "imports: N functions from M DLLs, all present on Windows 95" per file, or names each
# offender with its DLL and fails.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
kernel32_list="${HOSTKIT_WIN95_EXPORTS:-$root/../shared/windows/win95-kernel32-exports.txt}"
allowlist="${HOSTKIT_STATIC_IMPORTS:-$root/cmake/static-imports.txt}"
objdump="${OBJDUMP:-x86_64-w64-mingw32-objdump}"  # reads both PE32 and PE32+ files

for list in "$kernel32_list" "$allowlist"; do
  if [[ ! -r "$list" ]]; then
    echo "check-imports: cannot read $list" >&2
    exit 2
  fi
done
if (($# == 0)); then
  set -- "$root/build-win32/Hostkit3.dll"
fi

# The file's imports, one "DLL function" line each (DLL upper-cased; "#N" for an ordinal).
imports_of() {
  "$objdump" -p "$1" | awk '
    /^The Import Tables/ { inside = 1; next }
    /^The Export Tables/ || /^The Function Table/ || /^PE File Base Relocations/ { inside = 0 }
    !inside { next }
    /^\tDLL Name: / { dll = toupper($3); next }
    dll != "" && /^\t[0-9a-f]+\t/ {
      if (NF >= 3) print dll, $3
      else print dll, "#" $2
    }'
}

status=0
for file in "$@"; do
  if [[ ! -f "$file" ]]; then
    echo "check-imports: $file does not exist" >&2
    status=1
    continue
  fi
  imports=$(imports_of "$file")
  if [[ -z "$imports" ]]; then
    echo "check-imports: $file: no import table found" >&2
    status=1
    continue
  fi
  # Every import that neither list covers, with where it came from.
  offenders=$(awk '
    FILENAME == ARGV[1] { if ($0 !~ /^#/ && NF) kernel32[$1] = 1; next }
    FILENAME == ARGV[2] { if ($0 !~ /^#/ && NF >= 3) allowed[toupper($1) " " $2] = 1; next }
    {
      if ($1 == "KERNEL32.DLL") { if (!($2 in kernel32)) print "  " $2 " (KERNEL32.dll: not exported by Windows 95)" }
      else if (!(($1 " " $2) in allowed)) print "  " $2 " (" $1 ": not in cmake/static-imports.txt)"
    }' "$kernel32_list" "$allowlist" - <<<"$imports")
  functions=$(grep -c . <<<"$imports")
  dlls=$(cut -d' ' -f1 <<<"$imports" | sort -u | grep -c .)
  if [[ -n "$offenders" ]]; then
    echo "check-imports: $file imports functions some release lacks:" >&2
    echo "$offenders" >&2
    status=1
  else
    echo "$(basename "$file") imports: $functions functions from $dlls DLLs, all present on Windows 95"
  fi
done
exit "$status"
