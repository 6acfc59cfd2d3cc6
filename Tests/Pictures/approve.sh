#!/usr/bin/env bash
# approve.sh TAKEN APPROVED: keeps the pictures of the tour TAKEN in the folder APPROVED, named like their steps. They have
# 256 colours each, where an eye sees no difference, and a third of the size. Those that an eye takes for the same stay.
set -euo pipefail

readonly taken=$1 approved=$2
here=$(dirname "${BASH_SOURCE[0]}")
# shellcheck source=Tests/Pictures/eye.sh
. "$here/eye.sh"

mkdir -p "$approved"
for picture in "$approved"/*.png; do
    [[ -f $(taken_picture "$taken" "$(basename "$picture" .png)") ]] || rm -f "$picture"
done
changed=0
for picture in "$taken"/*.png; do
    name=${picture##*/}
    name=${name#*-}
    [[ ! -f $approved/$name ]] || ! look_alike "$approved/$name" "$picture" || continue
    image "$picture" +dither -colors 256 -strip -define png:compression-level=9 "PNG8:$approved/$name"
    changed=$((changed + 1))
done
echo "$changed pictures are approved anew; $(du -sh "$approved" | cut -f 1) in all"
