#!/usr/bin/env bash
# cost.sh BUILD JOBS: measures what the library costs a host, in the folder BUILD, and prints a table. Everything is a
# release build. The windows are without a display and drawn by the processor, unless the environment names a display.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source=$(cd "$here/../.." && pwd)
build=$1 jobs=$2
pairs=25
[[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]] || export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
export XDG_RUNTIME_DIR=$build/run
mkdir -p "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
kinds=(plain shared static)

# seconds COMMAND...: runs the command silently and prints how long it took.
seconds() {
    local start=$EPOCHREALTIME
    "$@" >"$build/log" 2>&1 || { cat "$build/log" >&2 && return 1; }
    awk -v start="$start" -v end="$EPOCHREALTIME" 'BEGIN { printf "%.1f", end - start }'
}

# configure NAME SOURCE [SETTING...]
configure() {
    cmake -G Ninja -S "$2" -B "$build/$1" -D CMAKE_BUILD_TYPE=Release "${@:3}" >"$build/log" 2>&1 ||
        { cat "$build/log" >&2 && return 1; }
}

stripped_size() {
    strip -o "$build/stripped" "$1"
    stat -c %s "$build/stripped"
}
kilobytes() { printf '%s KB' $((($1 + 512) / 1024)); }
median() { sort -g | awk '{ all[NR] = $1 } END { print NR % 2 ? all[(NR + 1) / 2] : (all[NR / 2] + all[NR / 2 + 1]) / 2 }'; }
row() { printf '| %-58s | %-30s |\n' "$1" "$2"; }

library() {
    configure library-"$1" "$source" -D CMAKE_CXX_COMPILER_LAUNCHER="$3" -D BUILD_SHARED_LIBS="$2" \
        -D QUORVIX_BUILD_TESTS=OFF -D QUORVIX_BUILD_EXAMPLES=OFF -D CMAKE_INSTALL_PREFIX="$build/prefix"
    cmake --build "$build/library-$1" --target clean >/dev/null
    seconds cmake --build "$build/library-$1" --parallel "$jobs"
    cmake --install "$build/library-$1" >"$build/log"
}

# Runs the plain host and another one by turns, and prints for each column of their output the median of the plain host,
# of the other, and of the differences within the pairs.
compare() {
    local plain=$1 other=$2 launch=$build/plain/launch column
    : >"$build/runs"
    "$launch" "$plain" >/dev/null && "$launch" "$other" >/dev/null
    for ((i = 0; i < pairs; ++i)); do
        echo "$("$launch" "$plain") $("$launch" "$other")" >>"$build/runs"
    done
    for column in 1 2 3; do
        echo "$(awk "{ print \$$column }" "$build/runs" | median) \
$(awk "{ print \$($column + 4) }" "$build/runs" | median) \
$(awk "{ print \$($column + 4) - \$$column }" "$build/runs" | median)"
    done
}

# print_runs HOST KIND WHAT
print_runs() {
    local lines
    mapfile -t lines < <(compare "$build/plain/$1" "$build/$2/$1")
    ((${#lines[@]} == 3)) || return 1
    row "$3, $2: time until it is ready" "$(awk '{ printf "%.1f -> %.1f ms (%+.1f)", $1, $2, $3 }' <<<"${lines[0]}")"
    row "$3, $2: resident memory" "$(megabytes <<<"${lines[1]}")"
    row "$3, $2: memory that it has written" "$(megabytes <<<"${lines[2]}")"
}
megabytes() { awk '{ printf "%.1f -> %.1f MB (%+.1f)", $1 / 1024, $2 / 1024, $3 / 1024 }'; }

rm -rf "$build/prefix"
echo "Building the library ..." >&2
shared_seconds=$(library shared ON "")
library static OFF "$(command -v ccache || true)" >/dev/null
[[ ! -e $build/prefix/lib/cmake/Quorvix/QuorvixNoOp-static.cmake ]] || kinds+=(noop)
declare -A host_seconds=()
for kind in "${kinds[@]}"; do
    configure "$kind" "$here" -D KIND="$kind" -D CMAKE_PREFIX_PATH="$build/prefix" -D CMAKE_INSTALL_LIBDIR=lib
    cmake --build "$build/$kind" --target clean >/dev/null
    host_seconds[$kind]=$(seconds cmake --build "$build/$kind" --parallel 1 --target window-host)
    cmake --build "$build/$kind" >"$build/log"
done

echo "Running the hosts ..." >&2
printf '\nOn %s processors, display: %s, %s pairs of runs, medians.\n\n' "$jobs" "${QT_QPA_PLATFORM:-the desktop}" "$pairs"
row "what" "cost"
row "---" "---"
row "shared library of the core, stripped" "$(kilobytes "$(stripped_size "$(realpath "$build/prefix/lib/libQuorvixCore.so")")")"
row "shared library of the screens, stripped" "$(kilobytes "$(stripped_size "$(realpath "$build/prefix/lib/libQuorvix.so")")")"
for kind in "${kinds[@]:2}"; do
    for host in window console; do
        plain=$(stripped_size "$build/plain/$host-host")
        row "$host host, $kind: the program grows by" "$(kilobytes $(($(stripped_size "$build/$kind/$host-host") - plain)))"
    done
done
for kind in "${kinds[@]:1}"; do
    print_runs window-host "$kind" "window host"
done
for kind in "${kinds[@]:1}"; do
    print_runs console-host "$kind" "console host"
done
row "building the library" "$shared_seconds s"
row "building the window host, without and with the library" "${host_seconds[plain]} s -> ${host_seconds[shared]} s"
