#!/usr/bin/env bash
# arrows.sh [FOLDER]: checks the includes and imports of the sources in FOLDER (default: this project). Rooms may
# include each other in one direction only, and no file pair may include itself through others.
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/..}"

# The other rooms that each room may include. The demo is a host: it includes installed headers only.
declare -A may_know=(
    [Platform]=""
    [JSON]="Platform"
    [Controls]="Platform"
    [Text]="Controls Platform"
    [Quorvix]="Text Controls JSON Platform"
    [NoOp]="Quorvix Platform"
    [Examples]=""
)
readonly rooms="Platform JSON Controls Text Quorvix NoOp Examples"

wrong=0
complain() {
    echo "$*" >&2
    wrong=1
}

# Prints "file included-file" for each include of a file of this project. A public header of Platform/ includes
# others of Platform/ without the room.
includes() {
    local room
    for room in $rooms; do
        [[ ! -d $room ]] || grep -HoE '^#include "[^"]+"' "$room"/*.h "$room"/*.cpp 2>/dev/null || true
    done | sed -E 's/^([^:]+):#include "([^"]+)"$/\1 \2/' |
        awk '{ if ($2 !~ /\//) { room = $1; sub(/\/[^\/]*$/, "", room); $2 = room "/" $2 } print }' |
        grep -v '\.moc$'
}
listed=$(includes)
[[ -n $listed ]] || { echo "There are no includes to check." >&2; exit 1; }

# --- Between rooms ---------------------------------------------------------------------------------------------

while read -r file included; do
    from=${file%%/*} to=${included%%/*}
    [[ $from == "$to" || " ${may_know[$from]} " == *" $to "* ]] ||
        complain "$file includes $included: $from may not know $to."
done <<<"$listed"

declare -A module_of=([Controls]=Quorvix.Controls [Text]=Quorvix.Text [Quorvix]=Quorvix.Screens)
for room in Controls Text Examples; do
    for file in "$room"/*.qml; do
        [[ -f $file ]] || continue
        while read -r module; do
            for known in $room ${may_know[$room]}; do
                [[ $module != "${module_of[$known]:-none}" ]] || continue 2
            done
            complain "$file imports $module: $room may not know it."
        done < <(sed -nE 's/^import (Quorvix(\.[A-Za-z]+)?)( .*)?$/\1/p' "$file")
    done
done

# --- Within Quorvix/: records <- stores <- models <- screens, and no screen in the core ------------------------

core=" $(sed -n '/quorvix_room(QuorvixCoreObjects/,/LINK/p' Quorvix/CMakeLists.txt 2>/dev/null | grep -oE '\bQX?[A-Za-z0-9]+\.(h|cpp)|Quorvix[A-Za-z]+\.h' | tr '\n' ' ') "
[[ ! -d Quorvix || $core == *QX* ]] || { echo "The list of the core's files could not be read." >&2; exit 1; }

rank_of() {
    case $1 in
        QX*Trace | QXTraceList | QXFailureNote | QXBreakpointKey) echo 0 ;;
        QXRequestRecorder | QXBreakpointStore | QXBreakpointCenter | QXBreakpointItem) echo 1 ;;
        QXOverlay | QXBreakpointWindow | QXQmlView | QXHostWindow | QuorvixClient) echo 4 ;;
        *Model) echo 3 ;;
        *) echo any ;;
    esac
}
while read -r file included; do
    [[ $file == Quorvix/* && $included == Quorvix/* ]] || continue
    from=$(basename "${file%.*}") to=$(basename "${included%.*}")
    if [[ $core == *" ${file#*/} "* && $core != *" ${included#*/} "* ]]; then
        complain "$file includes $included: the core may not know a screen."
    fi
    from_rank=$(rank_of "$from") to_rank=$(rank_of "$to")
    if [[ $from_rank != any && $to_rank != any ]] && ((from_rank < to_rank)); then
        complain "$file includes $included: records know no store, stores no model, models no screen."
    fi
done <<<"$listed"

# --- Between file pairs ----------------------------------------------------------------------------------------

if ! circle=$(awk '{ sub(/\.[a-z]+$/, "", $1); sub(/\.[a-z]+$/, "", $2); if ($1 != $2) print $1, $2 }' <<<"$listed" |
    tsort 2>&1 >/dev/null); then
    complain "File pairs include one another in a circle:" "${circle//tsort: /}"
fi

((wrong == 0)) && echo "$(wc -l <<<"$listed") includes point one way."
exit "$wrong"
