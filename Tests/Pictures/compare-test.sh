#!/usr/bin/env bash
# Tests compare.sh: what an eye does not see is the same, and what it sees is not.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# screen FILE TEXT X COLOUR: a row of a list.
screen() {
    convert-im6 -size 390x120 xc:white -fill "$4" -draw 'rectangle 0,30 390,78' -fill black -pointsize 15 \
        -annotate "+$3+60" "$2" "$folder/$1" 2>/dev/null ||
        magick -size 390x120 xc:white -fill "$4" -draw 'rectangle 0,30 390,78' -fill black -pointsize 15 \
            -annotate "+$3+60" "$2" "$folder/$1"
}

# expect STATUS WHAT: compares the pictures.
expect() {
    local status=0
    ./compare.sh "$folder/approved" "$folder/tour" "$folder/differences" >"$folder/log" 2>&1 || status=$?
    ((status == $1)) && return
    echo "$2: $status instead of $1" && cat "$folder/log" && exit 1
}

mkdir "$folder/approved" "$folder/tour"
screen approved/list.png 'GET /v1/users/42' 40 '#e8f6ec'
screen tour/001-list.png 'GET /v1/users/42' 40 '#e8f6ec'
expect 0 "the same"
screen tour/001-list.png 'GET /v1/users/42' 40 '#e8f6ed'
expect 0 "a colour that looks the same"
screen tour/001-list.png 'GET /v1/users/43' 40 '#e8f6ec'
expect 1 "another digit"
screen tour/001-list.png 'GET /v1/users/42' 41 '#e8f6ec'
expect 1 "one pixel aside"
screen tour/001-list.png 'GET /v1/users/42' 40 '#fdeaea'
expect 1 "another tint"
screen tour/001-list.png 'GET /v1/users/42' 40 '#e8f6ec'
screen tour/002-tree.png 'key' 40 white
expect 1 "a new picture"
rm "$folder"/tour/*
screen tour/001-tree.png 'key' 40 white
screen approved/tree.png 'key' 40 white
expect 1 "a picture is missing"
