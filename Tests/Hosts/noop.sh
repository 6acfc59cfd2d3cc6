#!/usr/bin/env bash
# noop.sh library NOOP HEADERS LIBRARY...: fails when the library NOOP lacks a function that the public headers in the
# folder HEADERS declare for the users of a class, and that one of the shared libraries exports.
# noop.sh program PROGRAM HEADERS: fails when the program contains a class of the inspector that is in no public header,
# or something of its JSON reader.
set -euo pipefail
what=$1 subject=$2 headers=$3
shift 3

# shellcheck source=Tests/Hosts/symbols.sh
. "$(dirname "${BASH_SOURCE[0]}")/symbols.sh"
public=$(find -L "$headers" -name '*.h' -exec cat {} + | tr '\n' ' ')

# Prints the strong symbols of the project with their arguments, of the output of nm.
functions() { sed -nE 's/^[0-9a-f]+ [TDBR] ((QX|Quorvix)[^ ].*)$/\1/p' | sed -E 's/\[abi:[^]]*\]//g' | sort -u; }

# Prints the public headers that define a class, without the private parts of classes. For a free function that is in
# all of them.
usable() {
    local files
    readarray -t files < <(grep -RlE "^(class|struct|namespace) (QUORVIX_(CORE_)?EXPORT )?$1\b[^;]*$" "$headers"/ || true)
    ((${#files[@]})) || readarray -t files < <(find -L "$headers" -name '*.h')
    awk '
        FNR == 1 || /^ *(public|protected|Q_SIGNALS|public Q_SLOTS):/ || /^};/ { hidden = 0 }
        /^ *private:/ { hidden = 1 }
        !hidden' "${files[@]}"
}

case $what in
    library)
        answered=$(nm -C --defined-only "$subject" 2>/dev/null | functions)
        exported=$(for library in "$@"; do nm -DC --defined-only "$library"; done | functions)
        [[ -n $answered && -n $exported ]] || { echo "The libraries could not be read." >&2; exit 1; }
        declare -A texts
        checked=0 wrong=0
        while read -r function; do
            qualified=${function%%(*}
            name=${qualified##*::}
            owner=${qualified#Quorvix::}
            owner=${owner%%::*}
            [[ -v texts[$owner] ]] || texts[$owner]=$(! is_public "$owner" || usable "$owner")
            [[ ${texts[$owner]} == *"$name("* ]] || continue
            ((++checked))
            grep -qxF -- "$function" <<<"$answered" && continue
            grep -qE -- "^inline .*$owner::$name\(" <<<"${texts[$owner]}" && continue
            echo "NoOp/ does not define $function."
            wrong=1
        done <<<"$exported"
        echo "$checked functions of the public headers are compared."
        ((checked > 100)) || exit 1
        exit "$wrong"
        ;;
    program)
        found=$(nm -C --defined-only "$subject")
        wrong=0
        # QXTemporaryFile writes an archive, even an empty one.
        for name in $(names <<<"$found" | owners | grep '^QX'); do
            is_public "$name" || [[ $name == QXTemporaryFile ]] ||
                { echo "$name is in the program, but in no public header."; wrong=1; }
        done
        ! grep -m 3 -E 'simdjson|JSONReader|JSONWriter|makeCell' <<<"$found" || wrong=1
        grep -q 'QX' <<<"$found" || { echo "The program could not be read." >&2; exit 2; }
        exit "$wrong"
        ;;
esac
