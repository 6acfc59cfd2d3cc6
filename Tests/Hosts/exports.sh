#!/usr/bin/env bash
# exports.sh CORE SCREENS HEADERS: fails when a library exports a symbol that no host may call.
# The core may export what the public headers in the folder HEADERS declare, and what the library of the screens
# calls in it. The library of the screens may export what the public headers declare.
set -euo pipefail
core=$1 screens=$2 headers=$3

# Prints the names, without arguments, of the project's own symbols in the output of nm.
names() {
    sed -E 's/^[0-9a-f]* *[A-Za-z] //' | sed -E 's/^(vtable|typeinfo name|typeinfo|non-virtual thunk to) (for )?//' |
        sed -E 's/\(.*//; s/\[abi:[^]]*\]//g' | grep -E '^(QX|Quorvix)[A-Za-z0-9_:~]*$' | sort -u
}
# Prints the outermost class or namespace of a name below the project's own namespace; for a free function, its name.
owners() { sed -E 's/^Quorvix:://; s/::.*//' | sort -u; }

public=$(find -L "$headers" -name '*.h' -exec cat {} + | tr '\n' ' ')
is_public() {
    grep -qE "(class|struct|namespace) (QUORVIX_(CORE_)?EXPORT )?$1\b|EXPORT [^;{]*\b$1\(" <<<"$public"
}

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
