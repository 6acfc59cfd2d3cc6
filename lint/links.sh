#!/usr/bin/env bash
# links.sh [FOLDER]: checks the links in the Markdown files of FOLDER (default: this project) and of its docs/. Files,
# pictures and sections of the project have to exist. Links to other places are only checked for their form.
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/..}"

# Prints "link FILE:LINE TARGET" and "section FILE#NAME", with the names that code hosts give to sections: in lower case,
# without punctuation, with hyphens for spaces, and numbered if they are not unique.
links_and_sections() {
    awk '
        FNR == 1 { in_code = 0 }
        /^(> ?)? *```/ { in_code = !in_code }
        in_code { next }
        /^#+ / {
            name = tolower($0)
            sub(/^#+ +/, "", name)
            gsub(/\]\([^)]*\)/, "", name)
            gsub(/[^a-z0-9_ \200-\377-]/, "", name)
            gsub(/ /, "-", name)
            number = seen[FILENAME "#" name]++
            print "section", FILENAME "#" name (number ? "-" number : "")
        }
        {
            line = $0
            gsub(/`[^`]*`/, "", line)
            # [text](target), ![text](target), [name]: target, src="target", href="target"
            while (match(line, /\]\([^) ]*[) ]|^ *\[[^]]+\]: *[^ ]+|(src|href)="[^"]*"/)) {
                target = substr(line, RSTART, RLENGTH)
                line = substr(line, RSTART + RLENGTH)
                sub(/^\]\(|^ *\[[^]]+\]: *|^(src|href)="/, "", target)
                sub(/[) "]$/, "", target)
                print "link", FILENAME ":" FNR, target
            }
        }' "$@"
}

documents=()
for document in *.md docs/*.md; do
    [[ ! -f $document ]] || documents+=("$document")
done
((${#documents[@]})) || { echo "There are no documents to check." >&2; exit 1; }

declare -A sections=()
places=() targets=()
while read -r kind first second; do
    case $kind in
        section) sections[$first]=yes ;;
        link) places+=("$first") targets+=("$second") ;;
    esac
done < <(links_and_sections "${documents[@]}")
((${#targets[@]})) || { echo "There are no links to check." >&2; exit 1; }

wrong=0
complain() {
    echo "${places[$1]}: ${targets[$1]:-an empty link}: $2" >&2
    wrong=1
}

for at in "${!targets[@]}"; do
    target=${targets[at]} document=${places[at]%:*}
    if [[ $target == *:* ]]; then
        [[ $target =~ ^https?://[A-Za-z0-9.-]+\.[a-z]+(/[^[:space:]]*)?$ || $target =~ ^mailto:[^@[:space:]]+@[^@[:space:]]+$ ]] ||
            complain "$at" "this is not the address of a page."
        continue
    fi
    file=${target%%#*} section=''
    [[ $target != *'#'* ]] || section=${target#*#}
    if [[ -z $file ]]; then
        file=$document
    elif [[ $document == */* ]]; then
        # Relative to the folder of the document.
        file=$(realpath --canonicalize-missing --relative-to=. "${document%/*}/$file")
    fi
    if [[ -z $target || $file == /* || $file == ../* || ! -e $file ]]; then
        complain "$at" "there is no such file in the project."
    elif [[ -n $section && -z ${sections[$file#$section]:-} ]]; then
        complain "$at" "$file has no such section."
    fi
done

((wrong == 0)) && echo "${#targets[@]} links in ${#documents[@]} documents lead somewhere."
exit "$wrong"
