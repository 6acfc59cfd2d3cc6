#!/usr/bin/env bash
# consume.sh HOW [ARGUMENT...]: installs the library, or builds a program with it and runs the program. The environment
# names the build tree BUILD, the folder SOURCE of the project, the installed tree PLACE, a folder SCRATCH of this test,
# the programs CMAKE and CXX, the folder LIBDIR of libraries, and the flag SANITIZER of an instrumented library.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
strict=(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
# Programs are small: optimizing them would take longer than running them.
flags=(-O0 ${SANITIZER:+"$SANITIZER"})

fail() {
    printf 'consume.sh: %s\n' "$*" >&2
    exit 1
}

# Installs the build tree into a folder, and keeps the record of what a developer has installed from the tree.
# The record of this installation is written to SCRATCH.
install_to() {
    local record=$BUILD/quorvix-installed.txt status=0
    [[ ! -e $record ]] || mv "$record" "$SCRATCH/developers-record"
    "$CMAKE" --install "$BUILD" --prefix "$1" >"$SCRATCH/install.log" || status=$?
    [[ ! -e $record ]] || mv "$record" "$SCRATCH/record"
    [[ ! -e $SCRATCH/developers-record ]] || mv "$SCRATCH/developers-record" "$record"
    return "$status"
}

configure_and_build() {
    local project=$1
    shift
    "$CMAKE" -G Ninja -S "$here/$project" -B "$SCRATCH" -D CMAKE_CXX_COMPILER="$CXX" "$@" &&
        "$CMAKE" --build "$SCRATCH" --parallel 2
}

# The installed tree is moved once, and names neither its first place nor the build tree nor the sources.
do_install() {
    rm -rf "$PLACE"
    install_to "$SCRATCH/first"
    mv "$SCRATCH/first" "$PLACE"
    # The sources may be in a folder such as /quorvix, which ends the names of others.
    local named
    named=$(grep -rIlE -e "(^|[^[:alnum:]_.}/-]|-[IL])($BUILD|$SOURCE|$SCRATCH)(/|[^[:alnum:]]|\$)" "$PLACE" || true)
    [[ -z $named ]] || fail "these files name a folder of this machine: $named"
    cmp "$SOURCE/LICENSE" "$PLACE/share/doc/quorvix/LICENSE"
}

# find PROGRAM COMPONENTS|any KIND [--without MODULE,...] [--expect WORD] [-D SETTING]...: with find_package.
do_find() {
    local program=$1 options=(-D PROGRAM="$1" -D COMPONENTS="${2/any/}" -D KIND="$3") expected=() module
    shift 3
    while (($#)); do
        case $1 in
            --without)
                for module in ${2//,/ }; do
                    [[ $module =~ ^(simdjson|QuorvixCodings)$ ]] || module=Qt6$module
                    options+=(-D "CMAKE_DISABLE_FIND_PACKAGE_$module=ON")
                done
                ;;
            --expect) expected=("$2") ;;
            -D) options+=(-D "$2") ;;
            *) fail "find has no option $1" ;;
        esac
        shift 2
    done
    configure_and_build FindPackage -D CMAKE_PREFIX_PATH="$PLACE" -D CMAKE_CXX_FLAGS="${flags[*]}" "${options[@]}"
    "$SCRATCH/consumer" "${expected[@]}"
    [[ $program == Core ]] || "$SCRATCH/qml-consumer"
}

# pkg-config PROGRAM PACKAGE [--expect WORD]
do_pkg-config() {
    local program=$1 package=$2 all=("$2") compile link
    [[ $program == Core ]] || all+=(Qt6Quick)
    export PKG_CONFIG_PATH=$PLACE/$LIBDIR/pkgconfig
    # The headers of Qt are the system's, as with CMake.
    read -r -a compile <<<"$(pkg-config --cflags "${all[@]}" | sed -E 's/-I(\S*qt6\S*)/-isystem \1/g')"
    read -r -a link <<<"$(pkg-config --libs "${all[@]}")"
    compile=("$CXX" -std=c++20 -fPIC "${flags[@]}" "${strict[@]}" "${compile[@]}" -o "$SCRATCH/consumer")
    link+=("-Wl,-rpath,$PLACE/$LIBDIR")
    shift 2
    if [[ $program == Screens ]]; then
        "${compile[@]}" "$here/Qml/main.cpp" "${link[@]}"
        "$SCRATCH/consumer"
    fi
    "${compile[@]}" "$here/$program/main.cpp" "${link[@]}"
    "$SCRATCH/consumer" "${@:2}"
    # Each package takes its own kind, although both kinds lie there.
    local kind=shared taken=static
    [[ $package != *-static && $package != *-noop ]] || kind=static
    [[ $(readelf -d "$SCRATCH/consumer") != *NEEDED*libQuorvix* ]] || taken=shared
    [[ $taken == "$kind" ]] || fail "$package takes the $taken library"
}

# subproject [install]: a host with the strictest flags, which does not say which kind of libraries it wants. It may
# install the library, too.
do_subproject() {
    configure_and_build Subproject -D HOW=add_subdirectory -D QUORVIX_SOURCE="$SOURCE" -D QUORVIX_INSTALL=ON \
        -D CMAKE_INSTALL_LIBDIR="$LIBDIR" -D CMAKE_CXX_FLAGS="-O0 ${strict[*]/-Wpedantic/}"
    "$SCRATCH/core-consumer"
    "$SCRATCH/screens-consumer"
    if grep '^BUILD_SHARED_LIBS' "$SCRATCH/CMakeCache.txt"; then
        fail "the library decides for its host"
    fi
    [[ -f $SCRATCH/quorvix/libQuorvix.a ]] || fail "the library is not static"
    [[ ${1:-} == install ]] || return 0

    # Beside what is installed already. The no-op library is the same in both.
    local files before
    files=$(find "$PLACE" ! -type d ! -name libQuorvixNoOp.a)
    before=$(xargs md5sum <<<"$files")
    "$CMAKE" --install "$SCRATCH" --prefix "$PLACE" >/dev/null
    diff <(echo "$before") <(xargs md5sum <<<"$files") || fail "the static libraries change what is installed"
}

# A host that wants shared libraries and the core only.
do_fetch() {
    "$CMAKE" -G Ninja -S "$here/Subproject" -B "$SCRATCH" -D CMAKE_CXX_COMPILER="$CXX" -D HOW=FetchContent \
        -D QUORVIX_SOURCE="$SOURCE" -D BUILD_SHARED_LIBS=ON -D CMAKE_CXX_FLAGS=-O0
    "$CMAKE" --build "$SCRATCH" --parallel 2 --target core-consumer
    "$SCRATCH/core-consumer"
    [[ $(readelf -d "$SCRATCH/core-consumer") == *libQuorvixCore.so* ]] || fail "the library is not shared"
}

# refused.txt: the tree that a program finds (both: the installed one; shared: only its shared core and screens), what it
# asks for, and what it reads then.
do_refused() {
    local tree request expected output
    mkdir -p "$SCRATCH/trees"
    ln -sfn "$PLACE" "$SCRATCH/trees/both"
    cp -R "$PLACE" "$SCRATCH/trees/shared"
    rm -f "$SCRATCH/trees/shared/$LIBDIR"/cmake/Quorvix/*{-static,NoOp}*
    while IFS='|' read -r tree request expected; do
        printf 'cmake_minimum_required(VERSION 3.25)\nproject(Refused LANGUAGES CXX)\n%s\n' "${request//; /$'\n'}" \
            >"$SCRATCH/CMakeLists.txt"
        rm -f "$SCRATCH/CMakeCache.txt"
        if output=$("$CMAKE" -S "$SCRATCH" -B "$SCRATCH" -D CMAKE_CXX_COMPILER="$CXX" \
            -D CMAKE_PREFIX_PATH="$SCRATCH/trees/$tree" 2>&1); then
            fail "this is accepted: $request"
        fi
        # CMake breaks lines.
        output=$(tr -s ' \n' ' ' <<<"$output")
        [[ $output == *"$expected"* ]] || fail "instead of \"$expected\": $output"
    done <"$here/refused.txt"
}

# Removes what was installed, below DESTDIR, and leaves what somebody else has there, before and after. The name of the
# folder is relative, and also a pattern that does not match itself.
do_uninstall() {
    cd "$SCRATCH"
    export DESTDIR='stage[1]'
    local include=$DESTDIR/usr/include/Quorvix before after
    mkdir -p "$include" "$DESTDIR/usr/lib/empty"
    touch "$include/Other.h"
    before=$(find "$DESTDIR" && echo "$include/Platform" && echo "$include/Platform/Other.h")
    install_to /usr
    [[ -f $include/QuorvixClient.h ]] || fail "nothing was installed below DESTDIR"
    touch "$include/Platform/Other.h"
    (cd / && "$CMAKE" -D RECORD="$SCRATCH/record" -P "$SOURCE/cmake/QuorvixUninstall.cmake")
    before=$(sort <<<"$before")
    after=$(find "$DESTDIR" | sort)
    [[ $before == "$after" ]] || fail "the folder is not as before: $(diff <(echo "$before") <(echo "$after"))"
}

# Makes the packages, looks at them, and installs them into an empty root and removes them from it.
do_debian() {
    local root=$SCRATCH/root package contents wrong depends names=() as_root=()
    (cd "$BUILD" && "${CMAKE%/*}/cpack" -G DEB -B "$SCRATCH/packages")
    for package in "$SCRATCH"/packages/*.deb; do
        names+=("$(dpkg-deb -f "$package" Package)")
        contents=$(dpkg-deb -c "$package")
        [[ $contents == *"/usr/share/doc/${names[-1]}/copyright"* ]] || fail "${names[-1]} has no copyright"
        wrong=$(grep -vE ' root/root .* \./(usr/.*)?$' <<<"$contents" || true)
        [[ -z $wrong ]] || fail "${names[-1]} has wrong owners or folders: $wrong"
    done
    [[ ${#names[@]} == 4 ]] || fail "made ${names[*]}"
    depends=$(dpkg-deb -f "$SCRATCH"/packages/libquorvix0.1*.deb Depends)
    [[ $depends == *"libquorvixcore0.1 (= "*qml6-module-qtquick*libqt6quick6* ]] || fail "the screens need $depends"
    depends=$(dpkg-deb -f "$SCRATCH"/packages/libquorvixcore0.1*.deb Depends)
    [[ $depends == *libqt6network6* && ! $depends =~ libqt6(gui|qml|quick) ]] || fail "the core needs $depends"

    mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/triggers"
    touch "$root/var/lib/dpkg/status" "$root/var/lib/dpkg/available"
    ((EUID == 0)) || as_root=(fakeroot)
    # Nothing else is installed there, neither what the packages depend on nor a shell for their scripts.
    "${as_root[@]}" dpkg --root="$root" --force-depends --force-script-chrootless --unpack "$SCRATCH"/packages/*.deb
    [[ -e $(find "$root/usr" -name libQuorvix.so) ]] || fail "the link to the library leads nowhere"
    "${as_root[@]}" dpkg --root="$root" --force-depends --force-script-chrootless --purge "${names[@]}"
    [[ ! -e $root/usr ]] || fail "these are left: $(find "$root/usr")"
}

how=$1
shift
rm -rf "$SCRATCH"/{first,stage*,root,packages,consumer,trees}
mkdir -p "$SCRATCH"
"do_$how" "$@"
