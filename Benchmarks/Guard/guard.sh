#!/usr/bin/env bash
# guard.sh PROGRAM FOLDER JOBS compare|record BASELINE: counts the instructions of all paths with PROGRAM, JOBS at a time,
# and compares them with BASELINE or writes it. FOLDER gets what was counted. Then proves that it finds a path that became
# slower by a twentieth.
set -euo pipefail

program=$1 folder=$2 jobs=$3 command=$4 baseline=$5

# count RESULT NAME [PERCENT]: writes "INSTRUCTIONS NAME" to RESULT, and the system to RESULT.system.
count() {
    local log counted
    # Counts must not depend on the environment: on hash seeds, on the other event loop of Qt, or on tuned libraries.
    log=$(env -i PATH="$PATH" LANG=C.UTF-8 HOME="$folder" QT_HASH_SEED=0 QT_NO_GLIB=1 \
        timeout 300 valgrind --tool=callgrind --callgrind-out-file=/dev/null --instr-atstart=no \
        "$program" run "${@:2}" 2>&1 >"$1.system") || { echo "$log" >&2 && return 1; }
    counted=$(sed -n 's/^==.*== Collected : //p' <<<"$log")
    [[ $counted =~ ^[1-9][0-9]*$ ]] || { echo "$log" >&2 && return 1; }
    echo "$counted $2" >"$1"
}

rm -rf "$folder"
mkdir -p "$folder"
folder=$(realpath "$folder")
mapfile -t paths < <("$program" list)
((${#paths[@]})) || { echo "There is no path to count." >&2 && exit 1; }
started=()
for at in "${!paths[@]}"; do
    ((at < jobs)) || wait "${started[at - jobs]}"
    count "$folder/$at" "${paths[at]}" &
    started+=($!)
done
for process in "${started[@]}"; do wait "$process"; done
for at in "${!paths[@]}"; do cat "$folder/$at"; done >"$folder/counts"

[[ $command != record ]] || "$program" record "$folder/counts" "$folder/0.system" "$baseline"
status=0
"$program" compare "$folder/counts" "$folder/0.system" "$baseline" || status=$?

"$program" record "$folder/counts" "$folder/0.system" "$folder/fresh.json"
count "$folder/slower" "${paths[0]}" 105
{ cat "$folder/slower" && tail -n +2 "$folder/counts"; } >"$folder/slower.counts"
if "$program" compare "$folder/slower.counts" "$folder/0.system" "$folder/fresh.json" >"$folder/slower.table"; then
    echo "A path with a twentieth more work passes: this check finds nothing." >&2
    cat "$folder/slower.table" >&2
    exit 1
fi
echo "Proven: a path with a twentieth more work does not pass."
exit "$status"
