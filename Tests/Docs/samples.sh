#!/usr/bin/env bash
# samples.sh LANGUAGE TREE FOLDER COMMAND...: runs the command with each sample of this language in TREE/README.md and
# TREE/docs/, as a file that is its last argument. The files are in the folder. A sample that the command refuses is
# named with its file and line.
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

if [[ $1 == --one ]]; then
    sample=${*: -1}
    output=$("${@:2}" 2>&1) && exit
    place=${sample##*/}
    place=${place%.*}
    # The name has the folder docs/ in it.
    document=${place%.*}
    echo "${document/#docs_/docs/}:${place##*.}: the sample that begins here is refused:"
    echo "$output"
    exit 1
fi

language=$1 tree=$2 folder=$3
shift 3
rm -rf "${folder:?}"
mkdir -p "$folder"
cd "$tree" || exit
documents=(README.md)
[[ ! -d docs ]] || documents+=(docs/*.md)
samples=$(awk -v language="$language" -v folder="$folder" -f "$here/extract.awk" "${documents[@]}") || exit
[[ -n $samples ]] || { echo "There are no samples to check." >&2; exit 1; }
echo "$(wc -l <<<"$samples") samples"
xargs -P "$(nproc)" -I '{}' "$here/samples.sh" --one "$@" '{}' <<<"$samples"
