#!/usr/bin/env bash
# Cross-builds for 64-bit Windows, from Debian's own source packages, the libraries that the project stands on. Debian ships none of
# them for Windows. They become static libraries in a folder outside the tree; log4cpp, whose licence wants it replaceable, a DLL.
#
#   windows/build-libraries.sh [--complete]
#
# Prints the folder on its last line. A folder that an earlier run completed for the same script, toolchain and compiler is taken as it
# is; with --complete it only says whether there is one (exit status 0).
#
#   KIV_WINDOWS_CACHE   where to keep everything (default ~/.cache/kiv_factory-windows; the sources in it may be deleted)
#   KIV_JOBS            how many compilers at a time (default: one a processor)
#
# Ends with 3 when a source package cannot be had, with 1 when one does not build.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
toolchain=$here/../cmake/toolchain-mingw64.cmake
cache=${KIV_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kiv_factory-windows}
jobs=${KIV_JOBS:-$(nproc)}

compiler=$(x86_64-w64-mingw32-g++-posix -dumpfullversion 2>/dev/null || echo none)
key=$(cat "${BASH_SOURCE[0]}" "$toolchain" - <<<"$compiler" | sha256sum | cut -c1-12)
prefix=$cache/libraries-$key
if [ "${1:-}" = --complete ]; then
  [ -e "$prefix/.complete" ]
  exit
fi
if [ -e "$prefix/.complete" ]; then
  echo "$prefix"
  exit
fi
export KIV_MINGW_DEPS=$prefix
work=$cache/work-$key
sources=$cache/sources
mkdir -p "$prefix/lib" "$prefix/include" "$work" "$sources"

say() { echo "windows: $*" >&2; }
missing() {
  say "$*"
  exit 3
}

# --- sources: apt with a configuration of its own, so that neither the machine's lists nor its settings change -------------------

# The machine's own Debian mirror, for sources: the first stanza of debian.sources, or what the older sources.list says.
mirror_and_suite() {
  local stanzas=/etc/apt/sources.list.d/debian.sources
  if [ -e $stanzas ]; then
    awk '$1 == "URIs:" {uri = $2} $1 == "Suites:" {suite = $2} uri && suite {print uri, suite; exit}' $stanzas
    return
  fi
  awk '$1 == "deb" {i = 2; while ($i ~ /^\[/ || $(i-1) ~ /^\[[^]]*$/) i++; print $i, $(i+1); exit}' /etc/apt/sources.list
}

apt_with() { # apt_with LIST PROGRAM arguments...
  local list=$cache/apt/$1 program=$2
  shift 2
  "$program" -q -o "Dir::Etc::sourcelist=$list.list" -o Dir::Etc::sourceparts=/dev/null -o "Dir::State::lists=$list.lists" \
    -o "Dir::Cache=$list.cache" -o APT::Sandbox::User="$(id -un)" -o Acquire::Retries=2 -o Acquire::http::Timeout=60 "$@"
}

prepare_apt() {
  local mirror suite list keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  read -r mirror suite < <(mirror_and_suite) || missing "no Debian mirror is configured on this machine"
  mkdir -p "$cache/apt"
  # Updates of the release come from the same mirror, security fixes from beside it.
  {
    echo "deb-src [signed-by=$keyring] $mirror $suite main"
    echo "deb-src [signed-by=$keyring] $mirror $suite-updates main"
    case $mirror in */debian | */debian/) echo "deb-src [signed-by=$keyring] ${mirror%/}-security $suite-security main" ;; esac
  } >"$cache/apt/release.list"
  # The release's log4cpp (1.1.3) is not on every mirror; that of the next release is.
  echo "deb-src [signed-by=$keyring] $mirror trixie main" >"$cache/apt/next.list"
  for list in release next; do
    mkdir -p "$cache/apt/$list.lists/partial" "$cache/apt/$list.cache/archives/partial"
    apt_with $list apt-get update >&2 || missing "no lists of source packages from $mirror"
  done
}

# fetch PACKAGE: the newest version that the mirror really has, with Debian's patches, in $sources/PACKAGE. Mirrors have holes.
fetch() {
  local package=$1 version
  [ -e "$sources/$package/.fetched" ] && return
  rm -rf "${sources:?}/$package"
  for version in $(apt_with release apt-cache madison "$package" | awk -F'|' '{gsub(/ /, "", $2); print $2}' | sort -rV | uniq); do
    if (cd "$sources" && apt_with release apt-get source --only-source --download-only "$package=$version" >&2); then
      # apt has compared each file with the signed list.
      dpkg-source --no-check -x "$sources/${package}_${version#*:}.dsc" "$sources/$package" >&2
      echo "$package $version" >"$sources/$package/.fetched"
      return
    fi
    say "WARNING: the mirror lacks $package $version, trying the next older one (which may lack a security fix)"
  done
  missing "no source of $package to be had"
}

# fetch_upstream PACKAGE: the next release's tarball, without Debian's patches.
fetch_upstream() {
  local package=$1
  [ -e "$sources/$package/.fetched" ] && return
  rm -rf "${sources:?}/$package"
  mkdir -p "$sources/$package"
  (cd "$sources" && apt_with next apt-get source --only-source --tar-only "$package" >&2) || missing "no source of $package to be had"
  tar -C "$sources/$package" --strip-components=2 -xf "$sources/${package}"_*.orig.tar.*
  touch "$sources/$package/.fetched"
}

# --- building ---------------------------------------------------------------------------------------------------------------------

# cmake_build NAME SOURCE arguments...: configure, build and install. BUILD_ONLY=target INSTALL_FROM=folder narrow the last two.
cmake_build() {
  local name=$1 source=$2 start=$SECONDS
  shift 2
  {
    cmake -S "$source" -B "$work/$name" -G Ninja -Wno-dev -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF \
      -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_INSTALL_PREFIX="$prefix" "$@" &&
      cmake --build "$work/$name" -j "$jobs" ${BUILD_ONLY:+--target "$BUILD_ONLY"} &&
      cmake --install "$work/$name/${INSTALL_FROM:-}" --strip
  } >"$work/$name.log" 2>&1 || {
    tail -30 "$work/$name.log" >&2
    say "$name does not build"
    exit 1
  }
  say "$name built in $((SECONDS - start)) s"
  rm -rf "${work:?}/$name"
}

all_off() { # all_off PREFIX NAME...: -DPREFIX_NAME=OFF for each
  local first=$1 name
  shift
  for name in "$@"; do echo "-D${first}_$name=OFF"; done
}

headers_only() { # what Debian's own packages hold serves every system
  cp -r /usr/include/CLI /usr/include/nlohmann "$prefix/include/"
  mkdir -p "$prefix/share/cmake"
  cp -r /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$prefix/share/cmake/"
}

zlib() { # Debian's one library for MinGW; the static half of it
  cp /usr/x86_64-w64-mingw32/lib/libz.a "$prefix/lib/"
  cp /usr/x86_64-w64-mingw32/include/{zlib,zconf}.h "$prefix/include/"
}

googletest() { cmake_build googletest /usr/src/googletest; }

pugixml() { fetch pugixml && cmake_build pugixml "$sources/pugixml"; }

xerces() { # its samples and tests ask for headers by names that only Windows finds: the library alone
  fetch xerces-c
  BUILD_ONLY=xerces-c INSTALL_FROM=src cmake_build xerces-c "$sources/xerces-c" -Dnetwork=OFF -Dtranscoder=windows \
    -Dmessage-loader=inmemory -Dmutex-manager=windows -Dxmlch-type=char16_t
}

log4cpp() { # its header makes int64_t a macro unless told that there is one; whoever includes it needs the same definitions
  fetch_upstream log4cpp
  cmake_build log4cpp "$sources/log4cpp" "-DCMAKE_CXX_FLAGS=-D_WIN32_WINNT=0x0A00 -DLOG4CPP_HAVE_INT64_T=1 -Din_addr_t=u_long"
  # As a DLL its own build knows the options of another maker's linker only. It shows its own names and nothing of the C++ runtime,
  # of which every program here has one inside.
  local names=$work/log4cpp.def
  x86_64-w64-mingw32-nm --defined-only --extern-only "$prefix/lib/liblog4cpp.a" |
    awk 'BEGIN {print "EXPORTS"} $3 ~ /^_ZT[VIS]N7log4cpp/ || ($3 ~ /^_ZNK?7log4cpp/ && $2 !~ /[TtWw]/) {print $3 " DATA"; next}
      $3 ~ /^_ZNK?7log4cpp/ {print $3}' | sort -u >"$names"
  mkdir -p "$prefix/bin"
  x86_64-w64-mingw32-g++-posix -shared -static -s -o "$prefix/bin/log4cpp.dll" -Wl,--whole-archive "$prefix/lib/liblog4cpp.a" \
    -Wl,--no-whole-archive "$names" -Wl,--out-implib,"$prefix/lib/liblog4cpp.dll.a" -lws2_32 -ladvapi32
  rm "$prefix/lib/liblog4cpp.a"
}

libzip() {
  fetch libzip
  # shellcheck disable=SC2046
  cmake_build libzip "$sources/libzip" $(all_off ENABLE COMMONCRYPTO GNUTLS MBEDTLS OPENSSL WINDOWS_CRYPTO BZIP2 LZMA) \
    $(all_off BUILD TOOLS REGRESS EXAMPLES DOC)
}

png() { fetch libpng1.6 && cmake_build png "$sources/libpng1.6" -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF; }

jpeg() { fetch libjpeg-turbo && cmake_build jpeg "$sources/libjpeg-turbo" -DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF; }

tiff() {
  fetch tiff
  cmake_build tiff "$sources/tiff" -Dtiff-tools=OFF -Dtiff-tests=OFF -Dtiff-contrib=OFF -Dtiff-docs=OFF -Dcxx=OFF -Dlzma=OFF -Dzstd=OFF \
    -Dwebp=OFF -Djbig=OFF -Dlerc=OFF -Dlibdeflate=OFF
}

opencv() {
  fetch opencv
  # shellcheck disable=SC2046
  cmake_build opencv "$sources/opencv" -DBUILD_LIST=core,imgproc,photo -DENABLE_PRECOMPILED_HEADERS=OFF -DCPU_BASELINE=SSE3 \
    -DCPU_DISPATCH= $(all_off WITH FFMPEG GSTREAMER MSMF DSHOW WIN32UI OPENCL DIRECTX IPP ITT TBB OPENMP EIGEN LAPACK PROTOBUF QUIRC \
      ADE OPENEXR WEBP JASPER OPENJPEG GDAL VTK PNG JPEG TIFF) \
    $(all_off BUILD TESTS PERF_TESTS EXAMPLES opencv_apps DOCS JAVA opencv_python2 opencv_python3 ZLIB)
  # By the names that they have elsewhere, which say no version.
  local library
  for library in core imgproc photo; do
    mv "$prefix/lib/libopencv_$library"[0-9]*.a "$prefix/lib/libopencv_$library.a"
  done
}

sdl2() {
  fetch libsdl2
  # shellcheck disable=SC2046
  cmake_build sdl2 "$sources/libsdl2" -DSDL_STATIC=ON $(all_off SDL TEST AUDIO JOYSTICK HAPTIC SENSOR HIDAPI POWER VULKAN OPENGLES SHARED)
}

build_all() {
  say "building the libraries in $prefix (once; some eight minutes on two processors)"
  prepare_apt
  # In this order: libzip, png, tiff and opencv need what stands before them.
  local library
  for library in headers_only zlib googletest pugixml libzip png jpeg tiff log4cpp xerces sdl2 opencv; do $library; done
  rm -rf "${work:?}"
  touch "$prefix/.complete"
  echo "$prefix"
}

build_all
exit
