#!/usr/bin/env bash
# The hostkit tool as a user meets it: exit codes and messages for wrong input, snapshots that
# leave their source alone and survive failed saves, and JSON that keeps non-ASCII text.
# Usage: hostkit_cli_test.sh HOSTKIT MACHINES SCRATCH PART
#   PART: usage | snapshots | json
set -uo pipefail
HOSTKIT=$1
MACHINES=$2
SCRATCH=$3
PART=$4
rm -rf "$SCRATCH" && mkdir -p "$SCRATCH"
failures=0

fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

# expect CODE PATTERN ARGS...: the tool exits with CODE and its output (stdout and stderr)
# matches the extended regular expression PATTERN ("" for any output).
expect() {
  local code=$1 pattern=$2
  shift 2
  local output status
  output=$("$HOSTKIT" "$@" 2>&1)
  status=$?
  if [[ $status -ne $code ]]; then
    fail "hostkit $* exited $status, not $code: $output"
  elif [[ -n $pattern ]] && ! grep -Eq -- "$pattern" <<<"$output"; then
    fail "hostkit $*: output does not match /$pattern/: $output"
  fi
}

# A digest of every file below a folder, names included.
tree_digest() {
  (cd "$1" && find . -type f -print0 | sort -z | xargs -0 sha256sum | sha256sum)
}

usage_part() {
  local win98=$MACHINES/network/win98.json
  expect 0 '^3\.0\.0$' --version
  expect 2 'unknown command "foo"' foo
  expect 2 'did you mean "os"' osx
  expect 2 'did you mean "adapters"' adaptrs
  expect 2 'did you mean "dhcp"' adapter 0 dhcpp
  expect 2 'not expected.*extra' adapter 0 dhcp extra
  expect 2 'not expected' os extra
  expect 2 '' proxy set host -5
  expect 2 'port' proxy set host 99999
  expect 2 'port' proxy set host 0
  expect 2 'protocol' proxy set smtp host 25
  expect 0 'set the proxy host:8080: done' proxy set host 8080
  expect 0 'set the https proxy host:443: done' proxy set https host 443
  expect 2 'adapters' dialup install --adapters -3
  expect 2 'adapters' dialup install --adapters 10
  expect 2 'not a valid pattern' windows wait "("
  expect 2 'Range|timeout' windows wait x --timeout -1
  expect 2 'not an IPv4|IPV4|IP' adapter 0 static 192.168.1 255.255.255.0
  expect 2 '' adapter 0 static 192.168.1.5
  expect 2 '' adapter 0 static 192.168.1.5 255.255.255.0 192.168.1.1 192.168.1.2
  expect 2 'not a valid domain name' adapter 0 domain "bad domain"
  expect 2 '' adapter 0 wins 10.0.0.1 off-ish
  expect 2 'not a valid host name' hostname "no good!"
  expect 2 'root key' reg query 'HKXX\Software'
  expect 2 'neither an adapter number nor a hardware address' release zz
  expect 2 'excludes|Excludes' renew 0 --all
  expect 2 'argument 2 is not UTF-8' hostname $'\xff'
  # Wrong input only the machine can tell: failures with the reason.
  expect 1 'no adapter in use has the hardware address 11-22-33-44-55-66' release 11-22-33-44-55-66
  expect 1 'there is no adapter 7' renew 7
  expect 1 'no adapter has the cookie or number "9"' adapter 9 dhcp
  expect 1 'key not found: HKEY_LOCAL_MACHINE\\NoSuchKey' reg query 'HKLM\NoSuchKey'
  expect 1 'cabs set failed: only Windows 95, 98 and Me' cabs set 'C:\CABS'
  expect 1 'remove the account Nobody failed: no account of that name' mail remove Nobody
  # What a command says is what it did.
  expect 0 '^WINS off on \[0\] ' adapter 0 wins off
  expect 0 '^WINS servers 10\.0\.0\.1, 10\.0\.0\.2 on \[0\] ' adapter 0 wins 10.0.0.1 10.0.0.2
  expect 0 'release the lease of 00-0C-76-3A-5E-21: done' release 00:0c:76:3a:5e:21
  expect 0 'not applicable' sharing status
  expect 0 '^file sharing: +no' --machine "$win98" sharing status
  # An empty list is an answer, not a failure; hardware addresses have one form everywhere.
  expect 0 '^no favorites$' favorites list
  expect 0 'hardware 00-0C-76-3A-5E-21' adapters
  expect 0 'hardware 00-0C-76-3A-5E-21' live
  expect 0 '^servers: +192\.168\.0\.2, 192\.168\.0\.3, 10\.0\.0\.53$' --machine "$win98" dns
}

snapshots_part() {
  local source=$MACHINES/win98.json
  local before
  before=$(tree_digest "$MACHINES")
  # A change to the drives without --save happens in a copy.
  expect 0 'done' --machine "$source" favorites add 'News\Daily' http://news.example/
  # --save DIR copies the drives with the machine; the saved profile sees the new shortcut.
  expect 0 'done' --machine "$source" favorites add Home http://home.example/ --save "$SCRATCH/one"
  [[ $before == "$(tree_digest "$MACHINES")" ]] || fail "a command changed the source profile's folder"
  [[ -f $SCRATCH/one/machine-drives/c/autoexec.bat ]] || fail "the save has no copy of the drives"
  expect 0 '^Home	http://home\.example/$' --machine "$SCRATCH/one/machine.json" favorites list
  # Saving onto the loaded profile needs --force.
  local saved=$SCRATCH/one/machine.json
  local digest
  digest=$(tree_digest "$SCRATCH/one")
  expect 1 'overwrite the loaded profile.*--force' --machine "$saved" lan off --save "$saved"
  expect 1 'overwrite the loaded profile' --machine "$saved" lan off --save "$SCRATCH/one"
  [[ $digest == "$(tree_digest "$SCRATCH/one")" ]] || fail "a refused save changed the profile"
  expect 0 'done' --machine "$saved" favorites add Second http://second.example/ --save "$saved" --force
  expect 0 'Second' --machine "$saved" favorites list
  # A save that cannot write (disk full) fails and leaves the previous save as it was.
  digest=$(tree_digest "$SCRATCH/one")
  local output status
  output=$(trap '' XFSZ; ulimit -f 1; "$HOSTKIT" --machine "$saved" hostname BIGGER --save "$saved" --force 2>&1)
  status=$?
  [[ $status -eq 1 ]] || fail "a save on a full disk exited $status: $output"
  [[ $digest == "$(tree_digest "$SCRATCH/one")" ]] || fail "a failed save changed the previous save"
  expect 0 '' --machine "$saved" os
  ls -A "$SCRATCH/one" | grep -q '^\.hostkit' && fail "a failed save left temporary files"
  # A target that cannot take files is refused before the command acts.
  chmod a-w "$SCRATCH/one"
  touch "$SCRATCH/one/probe" 2>/dev/null && rm -f "$SCRATCH/one/probe" && chattr +i "$SCRATCH/one"
  if ! touch "$SCRATCH/one/probe" 2>/dev/null; then
    expect 1 'cannot save into' --machine "$source" proxy set host 8080 --save "$SCRATCH/one"
    chattr -i "$SCRATCH/one" 2>/dev/null
    chmod u+w "$SCRATCH/one"
    [[ $digest == "$(tree_digest "$SCRATCH/one")" ]] || fail "a refused save changed the previous save"
  else
    echo "note: no way to make a folder unwritable for this user; the locked-folder case is not run"
  fi
  chmod u+w "$SCRATCH/one"
  expect 1 'cannot save into' --machine "$source" proxy set host 8080 --save "$SCRATCH/one/machine.json/x"
}

# A profile of release $1 in code page $2 whose first network card is named $3 (UTF-8).
localized_profile() {
  local release=$1 codepage=$2 name=$3 folder=$SCRATCH/$1-$2
  mkdir -p "$folder"
  local description="3Com EtherLink XL 10/100 PCI For Complete PC Management NIC (3C905B-TX)"
  sed "s|$description|$name|" "$MACHINES/network/$release.reg" |
    iconv -f UTF-8 -t "CP$codepage" >"$folder/$release.reg"
  cp "$MACHINES/network/$release"-dyn.reg "$folder/" 2>/dev/null
  python3 - "$MACHINES/network/$release.json" "$folder/machine.json" "$codepage" "$description" "$name" <<'EOF'
import json, sys
source, target, codepage, old, new = sys.argv[1:]
profile = json.load(open(source))
profile["ansiCodePage"] = int(codepage)
for interface in profile.get("network", {}).get("interfaces", []):
    interface["description"] = interface["description"].replace(old, new)
json.dump(profile, open(target, "w", encoding="utf-8"), ensure_ascii=False)
EOF
  echo "$folder/machine.json"
}

json_part() {
  local commands=(os hardware adapters live dns summary hostname "reg query HKLM\\Enum"
                  "proxy show" "ie show" "favorites list" "mail list" "lan status"
                  "sharing status" "dialup status" "windows list")
  local card='HKLM\Enum\PCI\VEN_10B7&DEV_9055&SUBSYS_00000000&REV_24\BUS_00&DEV_0D&FUNC_00'
  local case codepage name profile command output documents=0
  mkdir -p "$SCRATCH/documents"
  for case in "1252:Carte réseau" "1252:Kabel-Verbindung ß" "932:日本語ネットワークアダプタ"; do
    codepage=${case%%:*}
    name=${case#*:}
    profile=$(localized_profile win98 "$codepage" "$name")
    for command in "${commands[@]}"; do
      # shellcheck disable=SC2086
      output=$("$HOSTKIT" --machine "$profile" --json $command 2>&1) ||
        { fail "--json $command on code page $codepage failed: $output"; continue; }
      printf '%s' "$output" >"$SCRATCH/documents/$((++documents))-${command// /_}.json"
    done
    for command in adapters live; do
      "$HOSTKIT" --machine "$profile" --json $command | grep -qF "\"$name\"" ||
        fail "--json $command does not hold \"$name\" (code page $codepage)"
      "$HOSTKIT" --machine "$profile" $command | grep -qF "] $name" ||
        fail "$command does not print \"$name\" (code page $codepage)"
    done
    "$HOSTKIT" --machine "$profile" --json reg query "$card" | grep -qF "\"data\": \"$name\"" ||
      fail "--json reg query does not hold \"$name\" (code page $codepage)"
  done
  # Each output is one JSON document, and no text was replaced on the way.
  python3 - "$SCRATCH/documents"/* <<'EOF' || fail "an output is not a clean JSON document"
import json, sys
bad = 0
for name in sys.argv[1:]:
    text = open(name, encoding="utf-8").read()
    try:
        json.loads(text)
    except ValueError as error:
        print(f"{name}: {error}")
        bad += 1
    if "\ufffd" in text or "\\ufffd" in text.lower():
        print(f"{name}: holds U+FFFD")
        bad += 1
sys.exit(1 if bad else 0)
EOF
}

"${PART}_part"
if [[ $failures -ne 0 ]]; then
  echo "$failures failed"
  exit 1
fi
echo "all passed"
