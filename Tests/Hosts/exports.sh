#!/usr/bin/env bash
# exports.sh CORE SCREENS HEADERS: fails when a library exports a symbol that no host may call.
# The core may export what the public headers in the folder HEADERS declare, and what the library of the screens
# calls in it. The library of the screens may export what the public headers declare.
set -euo pipefail
core=$1 screens=$2 headers=$3

# shellcheck source=Tests/Hosts/symbols.sh
. "$(dirname "${BASH_SOURCE[0]}")/symbols.sh"
# shellcheck disable=SC2034 # is_public reads it
public=$(find -L "$headers" -name '*.h' -exec cat {} + | tr '\n' ' ')

called=$(nm -DC --undefined-only "$screens" | names | owners)
exported=$(nm -DC --defined-only "$core" | names | owners)
own=$(nm -DC --defined-only "$screens" | names | owners)
[[ -n $called && -n $exported && -n $own ]] || { echo "The libraries could not be read." >&2; exit 1; }

wrong=0
for name in $exported; do
    is_public "$name" || grep -qx -- "$name" <<<"$called" || { echo "The core exports $name for nobody."; wrong=1; }
done
for name in $own; do
    is_public "$name" || { echo "The screens export $name, which is in no public header."; wrong=1; }
done
echo "$(wc -w <<<"$exported") names exported by the core, $(wc -w <<<"$own") by the screens."
exit "$wrong"
