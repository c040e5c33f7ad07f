#!/usr/bin/env bash
# Cross-builds everything for 64-bit Windows and runs the test programs in Wine, without a display. ./run windows installs what it needs
# and calls it.
#
#   windows/test.sh [arguments of ctest...]
#
# Ends with 0 when no test failed, with 3 when it could not be tried because a source package is not to be had, else with 1.
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here/.."

build=build/windows
say() { echo "windows: $*"; }

start=$SECONDS
libraries=$("$here/build-libraries.sh") || exit
KIV_MINGW_DEPS=$(tail -n 1 <<<"$libraries")
export KIV_MINGW_DEPS
say "libraries ready after $((SECONDS - start)) s"

cmake --preset windows >"$KIV_MINGW_DEPS/../configure.log" || exit 1
cmake --build --preset windows || exit 1
say "built after $((SECONDS - start)) s"

. "$here/wine.sh"
trap wine_stop EXIT
wine_start || {
  say "Wine does not start; see $WINEPREFIX/log"
  exit 1
}
. "$here/serial-lines.sh"
# Where Windows looks for the DLLs of programs that stand elsewhere.
WINEPATH="Z:$(pwd | tr / '\\')\\build\\windows\\bin"
export WINEPATH
# Wine's times are its own, and two tests at once may be one too many for it: what fails is run once more, alone, and the summary says so.
rm -f $build/results.xml $build/second.xml
ctest --test-dir $build -j "$(nproc)" --output-junit results.xml --output-on-failure "$@" ||
  ctest --test-dir $build --rerun-failed --output-junit second.xml --output-on-failure
[ -f $build/second.xml ] && second=$build/second.xml
python3 "$here/summary.py" $build/results.xml ${second:+"$second"}
result=$?
say "done after $((SECONDS - start)) s"
exit $result
