#!/usr/bin/env bash
# Turns a readable version 5.00 registry file (UTF-8, any line ends) into the form Windows
# writes: the bytes FF FE, then UTF-16 LE text with CR LF line ends.
#   scripts/utf16-reg.sh IN.txt OUT.reg
set -euo pipefail
if [[ $# -ne 2 ]]; then
  echo "usage: $0 IN.txt OUT.reg" >&2
  exit 1
fi
{
  printf '\xff\xfe'
  sed 's/\r$//; s/$/\r/' "$1" | iconv -f UTF-8 -t UTF-16LE
} >"$2"
