#!/usr/bin/env bash
# Tests links.sh: each wrong link that it has to find is in a small tree.
# shellcheck disable=SC2016 # the backticks are Markdown
set -euo pipefail
links=$(dirname "${BASH_SOURCE[0]}")/links.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir "$tree/docs"
touch "$tree/docs/picture.png"
printf '# The guide\n\n## What `it` does, and: why?\n\n## Twice\n\n## Twice\n\n```sh\n# Code\n```\n[README](../README.md)\n' \
    >"$tree/docs/guide.md"

# expect RESULT TEXT: the README of the tree has this text.
expect() {
    local found=pass output
    printf '# Title\n%s\n' "$2" >"$tree/README.md"
    output=$("$links" "$tree" 2>&1) || found=fail
    [[ $found == "$1" ]] || { printf '%s: expected to %s: %s\n' "$2" "$1" "$output" >&2; exit 1; }
    [[ $found == pass || $output == README.md:2:* ]] || { printf '%s: found elsewhere: %s\n' "$2" "$output" >&2; exit 1; }
}

expect pass '[a](docs/guide.md) ![b](docs/picture.png) <img src="docs/picture.png"> [c](https://example.org/a#b) [d](#title)'
expect pass '[a](docs/guide.md#what-it-does-and-why) [b](docs/guide.md#twice-1) [c](docs) `[d](code)`'
expect fail '[a](docs/missing.md)'
expect fail '[good](docs/guide.md) ![a](docs/missing.png)'
expect fail '<img src="missing.png">'
expect fail '[a](docs/guide.md#missing)'
expect fail '[a](docs/guide.md#code)'
expect fail '[a](docs/guide.md#twice-2)'
expect fail '[a](#missing)'
expect fail '[a](../outside.md)'
expect fail '[a](/docs/guide.md)'
expect fail '[a]()'
expect fail '[a](https://example)'
expect fail '[a](htp://example.org)'
expect fail '[a]: missing.md'
echo "13 wrong links found."
