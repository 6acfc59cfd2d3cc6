#!/usr/bin/env bash
# compare.sh APPROVED TAKEN DIFFERENCES: compares each picture of the folder APPROVED with that of its step in the tour TAKEN.
# Where an eye can tell them apart, a picture of both and of the difference between them goes to the folder DIFFERENCES.
# Fails if any differs, is missing, or is not approved.
set -euo pipefail

readonly approved=$1 taken=$2 differences=$3
# shellcheck source=Tests/Pictures/eye.sh
. "$(dirname "${BASH_SOURCE[0]}")/eye.sh"

rm -rf "$differences"
mkdir -p "$differences"

failures=0
complain() {
    echo "DIFFERS $1"
    failures=$((failures + 1))
}

count=0
for picture in "$approved"/*.png; do
    name=$(basename "$picture" .png)
    now=$(taken_picture "$taken" "$name")
    count=$((count + 1))
    if [[ ! -f $now ]]; then
        complain "$name: there is none now"
    elif ! look_alike "$picture" "$now"; then
        complain "$name: $(differing_pixels "$picture" "$now") pixels"
        compare "$picture" "$now" "$differences/difference.miff" || true
        image "$picture" "$now" "$differences/difference.miff" +append "$differences/$name.png" || true
    fi
done
rm -f "$differences/difference.miff"
for now in "$taken"/*.png; do
    name=${now##*/}
    [[ -f $approved/${name#*-} ]] || complain "${name%.png}: it is new"
done

echo "$count approved pictures, $failures differ"
((failures == 0)) || {
    echo "Approved, now, and the difference: $differences"
    echo "If the new look is meant: ./run pictures --approve"
    exit 1
}
