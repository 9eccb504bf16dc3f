# Sourced by the scripts that run programs under Wine: `use_wine_prefix DIR` makes DIR the Wine
# prefix of this shell (created on first use) with Wine's debug output and installer prompts off.
use_wine_prefix() {
  export WINEPREFIX="$1"
  export WINEDEBUG=-all
  export WINEDLLOVERRIDES="mscoree,mshtml="  # no Mono or Gecko installer prompts
  if [[ ! -f "$WINEPREFIX/system.reg" ]]; then
    wineboot --init >/dev/null 2>&1
    wineserver --wait
  fi
}
