# Sourced: Wine without a display, with a Windows of its own in a folder outside the tree.
#
#   wine_start   makes the Windows on its first use (some ten seconds), and keeps one idle program running in it: without that Wine
#                starts and ends its services around each test, two seconds a time.
#   wine_stop    ends it with all that runs in it
export WINEPREFIX=${KIV_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kiv_factory-windows}/wine
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
# File names are those of the locale: without UTF-8 none of another language could be made.
export LANG=C.UTF-8 LC_ALL=C.UTF-8
unset DISPLAY
wine=/usr/lib/wine/wine64

wine_start() {
  if [ ! -e "$WINEPREFIX/.ready" ]; then
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    {
      $wine wineboot -i &&
        $wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f && # windows that nobody sees
        $wine reg add 'HKCU\Software\Wine' /v Version /d win10 /f &&
        /usr/lib/wine/wineserver64 -w
    } >"$WINEPREFIX/log" 2>&1 || return 1
    touch "$WINEPREFIX/.ready"
  fi
  coproc WINE_KEEPER { exec $wine cmd >/dev/null 2>&1; }
  wine_keeper_input=${WINE_KEEPER[1]}
  $wine cmd /c exit
}

wine_stop() {
  [ -z "${wine_keeper_input:-}" ] || eval "exec $wine_keeper_input>&-"
  /usr/lib/wine/wineserver64 -k || true
}
