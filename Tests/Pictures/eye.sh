# shellcheck shell=bash
# Compares pictures as an eye does: by lightness and colour, slightly blurred, so that it is the shapes that count and not
# single pixels.

# What differs between two tours of one build, by rounding in animations, stays below half of these.
readonly tolerance=4% most_pixels=40

eye_folder=$(mktemp -d)
trap 'rm -rf "$eye_folder"' EXIT

# Version 7 has one command for all.
image() {
    if command -v magick >/dev/null; then magick "$@"; else convert-im6 "$@"; fi
}

# taken_picture TOUR STEP: the picture of a step, whose number may change.
taken_picture() {
    local picture
    for picture in "$1"/*-"$2".png; do
        [[ ${picture##*/} =~ ^[0-9]+-$2\.png$ ]] && echo "$picture" && return
    done
    echo "$1/$2.png"
}

# Prints how many pixels of two pictures an eye can tell apart, or why they cannot be compared.
differing_pixels() {
    local number
    for number in 1 2; do
        image "${!number}" -colorspace Lab -blur 0x0.8 "$eye_folder/$number.mpc"
    done
    compare -metric AE -fuzz "$tolerance" "$eye_folder"/{1,2}.mpc null: 2>&1 || true
}

# Whether an eye takes the two pictures for the same.
look_alike() {
    local pixels
    cmp -s "$1" "$2" && return
    pixels=$(differing_pixels "$1" "$2")
    [[ $pixels =~ ^[0-9]+$ ]] && ((pixels <= most_pixels))
}
