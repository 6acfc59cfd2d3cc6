#!/usr/bin/env bash
# run.sh: runs Qt's own tests of its replies twice, with Qt's network access manager and with ours in its place, and
# fails when a case passes only with Qt's. The tests are those of the installed version of Qt, from Debian's source
# package. excluded.txt names the functions that are left out. Everything is below build/qt-suite.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here/../.."
readonly here folder=$PWD/build/qt-suite
readonly tree=$folder/tree results=$folder/results
# Most cases wait for something, so that more of them than there are processors run at a time.
readonly at_a_time=8 seconds_at_most=150
# With fewer cases that pass with Qt's manager, something is wrong with the machine or the build.
readonly fewest=300
# Each lost case is repeated with both programs, as long as these seconds last.
readonly repeats=3 seconds_to_repeat=180
# These take longest, so they start first.
readonly slowest=(moreActivitySignals ioGetFromHttpBrokenServer httpConnectionCount emitAllUploadProgressSignals
    varyingCacheExpiry ioPostToHttpUploadProgress ioGetFromBuiltinHttp)

say() { printf '\n==> %s\n' "$*"; }
fail() {
    printf 'qt-suite: %s\n' "$*" >&2
    exit 1
}

# --- The source ----------------------------------------------------------------------------------------------

# fetch VERSION FOLDER: the folder gets tests/auto of this version. Apt reads lists of its own, and checks them with the
# system's keys; the system's settings stay as they are.
fetch() {
    local version=$1 into=$2 apt=$folder/apt options
    say "Fetching the source of qt6-base $version"
    rm -rf "$folder/unfinished"
    mkdir -p "$folder/unfinished" "$apt/lists/partial" "$apt/cache/archives/partial"
    list_sources "$apt/sources.list.d"
    options=(-o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$apt/sources.list.d"
        -o "Dir::State::lists=$apt/lists" -o "Dir::Cache=$apt/cache")
    # A list of someone else may have no sources.
    (apt-get "${options[@]}" update || true
        cd "$folder/unfinished" && apt-get "${options[@]}" source "qt6-base=$version") >"$folder/fetch.log" 2>&1 || {
        cat "$folder/fetch.log"
        fail "could not fetch the source; apt has it only as long as $version is the release's newest version"
    }
    mv "$folder"/unfinished/qt6-base-*/tests/auto "$into"
    rm -rf "$folder/unfinished" "$apt"
}

# list_sources FOLDER: writes the system's lists of Debian's packages there, in both of apt's formats, as lists of their
# sources. Apt knows only after an update which lists are Debian's; before one, all are taken.
list_sources() {
    local into=$1 list main parts found=()
    rm -rf "$into"
    mkdir -p "$into"
    # shellcheck disable=SC2016 # expanded by apt
    mapfile -t found < <(apt-get indextargets --format '$(SOURCESENTRY)' 'Created-By: Packages' 'Origin: Debian' |
        sed 's/:[0-9]*$//' | sort -u)
    if ((${#found[@]} == 0)); then
        eval "$(apt-config shell main Dir::Etc::sourcelist/f parts Dir::Etc::sourceparts/d)"
        found=("$main" "$parts"/*.list "$parts"/*.sources)
    fi
    for list in "${found[@]}"; do
        [[ ! -f $list ]] || sed -E -e 's/^Types:.*/Types: deb-src/I' -e '/^[[:space:]]*deb-src[[:space:]]/d' \
            -e 's/^[[:space:]]*deb([[:space:]])/deb-src\1/' "$list" >"$into/${list##*/}"
    done
}

# --- Running -------------------------------------------------------------------------------------------------

# run_cases PROGRAM SELECTION FILE: runs the function, or the one case FUNCTION:TAG of it, and writes to the file which
# cases passed, an expected failure being one of them. "FUNCTION ends" stands for a process that neither crashed nor
# hung.
run_cases() {
    local program=$1 selection=$2 passed=$3 status=0 tap=$3.tap
    : >"$tap"
    (cd "$tree/$program" && exec timeout --foreground "$seconds_at_most" \
        ./tst_qnetworkreply -o "$tap,tap" -nocrashhandler "$selection") >"$passed.log" 2>&1 </dev/null || status=$?
    {
        ((status >= 124)) || echo "${selection%%:*} ends"
        # Each failure has a line, which may follow that of an expected failure of the same case.
        comm -23 \
            <(sed -nE -e '/ # SKIP/d' -e 's/^not ok [0-9]+ - (.*) # TODO.*/\1/p' \
                -e 's/^ok [0-9]+ - //p' "$tap" | sort -u) \
            <(sed -nE -e '/ # TODO/d' -e 's/^not ok [0-9]+ - //p' "$tap" | sort -u)
    } | grep -vE '^(init|cleanup)TestCase\(\)$' >"$passed" || true
}

# The functions in the order in which they start.
functions() {
    "$tree/theirs/tst_qnetworkreply" -functions 2>/dev/null | sed -n 's/()$//p' | sort >"$results/functions"
    sed -E '/^(#|$)/d; s/[: ].*//' "$here/excluded.txt" | sort >"$results/excluded"
    printf '%s\n' "${slowest[@]}" | grep -Fxf "$results/functions" || true
    comm -23 "$results/functions" "$results/excluded" | grep -Fxvf <(printf '%s\n' "${slowest[@]}")
}

# Runs all functions of both programs, each in a process of its own.
run_all() {
    local program
    mkdir -p "$results/theirs" "$results/ours"
    functions | while read -r name; do
        for program in theirs ours; do printf '%s\0' "$program" "$name" "$results/$program/$name"; done
    done | xargs -0 -n 3 -P "$at_a_time" "$BASH" "$here/run.sh" --cases
    for program in theirs ours; do
        find "$results/$program" -type f ! -name '*.*' -exec cat '{}' + | sort -u >"$results/$program.passed"
    done
}

# repeat CASE: whether the case, run alone, passes with ours as soon as it does with theirs, or passes with neither.
repeat() {
    local name=$1 selection=$1 round program outcome=''
    if [[ $name == *\(*\) ]]; then
        selection=${name#*\(}
        selection=${name%%\(*}${selection:+:${selection%)}}
        selection=${selection%:}
    fi
    selection=${selection% ends}
    for ((round = 0; round < repeats; ++round)); do
        for program in theirs ours; do
            run_cases "$program" "$selection" "$results/again-$program"
            outcome+=" $program=$(grep -Fxq -- "$name" "$results/again-$program" && echo passed || echo failed)"
        done
        [[ $outcome != *ours=passed* ]] || break
    done
    echo "repeated alone: $name:$outcome"
    [[ $outcome == *ours=passed* || $outcome != *theirs=passed* ]]
}

# -------------------------------------------------------------------------------------------------------------

if [[ ${1:-} == --cases ]]; then
    run_cases "${@:2}"
    exit
fi
(($# == 0)) || fail "there is no option $1"
command -v apt-get >/dev/null || fail "the tests come from Debian's source package"

# shellcheck disable=SC2016 # expanded by dpkg-query
version=$(dpkg-query -W -f '${source:Version}' qt6-base-dev)
source=$folder/tests-$version
[[ -d $source ]] || fetch "$version" "$source"

say "Building Qt's tests twice"
cmake -S "$here" -B "$tree" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER_LAUNCHER=ccache \
    -DQT_SUITE_SOURCE="$source" >"$folder/configure.log" || { cat "$folder/configure.log" && exit 1; }
cmake --build "$tree" --parallel "$(nproc)" --target theirs ours

say "Running them with Qt's manager and with ours"
started=$SECONDS
rm -rf "$results"
mkdir -p "$results"
# A name server that does not answer must not take the time that a case has.
export RES_OPTIONS="timeout:1 attempts:2" QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8
run_all
mapfile -t lost < <(comm -23 "$results/theirs.passed" "$results/ours.passed")
still=()
until=$((SECONDS + seconds_to_repeat))
for name in "${lost[@]}"; do
    ((SECONDS < until)) && repeat "$name" || still+=("$name")
done
lost=("${still[@]}")

cases() { grep -vc ' ends$' "$1" || true; }
theirs=$(cases "$results/theirs.passed")
echo "Qt $version: $theirs cases pass with Qt's manager, $(cases "$results/ours.passed") with ours, and" \
    "${#lost[@]} are lost. Took $((SECONDS - started)) s; $(wc -l <"$results/excluded") functions are excluded."
((${#lost[@]} == 0)) || printf 'lost: %s\n' "${lost[@]}"
((theirs >= fewest)) || fail "only $theirs cases pass with Qt's manager: the comparison says nothing"
((${#lost[@]} == 0)) || fail "${#lost[@]} cases pass only with Qt's manager; see $results/ours"
