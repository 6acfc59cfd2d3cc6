#!/usr/bin/env bash
# document.sh LIGHT DARK IMAGES: makes the pictures of the documents from two tours with two device pixels per unit, and
# puts them into the folder IMAGES, each in both themes: NAME-light.png and NAME-dark.png.
set -euo pipefail

# shellcheck disable=SC2034 # by name
readonly light=$1 dark=$2 images=$3
# shellcheck source=Tests/Pictures/eye.sh
. "$(dirname "${BASH_SOURCE[0]}")/eye.sh"

# framed TOUR STEP HEIGHT: a screen with round corners, a thin edge and a shadow.
framed() {
    local size width height=$3 edge='#c8c8cc'
    [[ $1 == "$light" ]] || edge='#48484a'
    image "$(taken_picture "$1" "$2")" -resize "x$height" +repage "$eye_folder/screen.miff"
    size=$(identify -format %wx%h "$eye_folder/screen.miff")
    width=${size%x*}
    local corners="roundrectangle 0,0 $((width - 1)),$((height - 1)) 28,28"
    image "$eye_folder/screen.miff" \( -size "$size" xc:black -fill white -draw "$corners" \) -alpha off \
        -compose CopyOpacity -composite -compose Over -fill none -stroke "$edge" -strokewidth 2 -draw "$corners" \
        \( +clone -background black -shadow 25x12+0+6 \) +swap -background none -layers merge +repage miff:-
}

# picture NAME HEIGHT STEP...: screens side by side. A step "LIGHT:DARK" is another one in each theme.
picture() {
    local name=$1 height=$2 tour theme step parts
    shift 2
    for theme in light dark; do
        tour=${!theme}
        parts=()
        for step in "$@"; do
            [[ $theme == light ]] && step=${step%:*} || step=${step#*:}
            framed "$tour" "$step" "$height" >"$eye_folder/$step.miff"
            parts+=("$eye_folder/$step.miff")
        done
        image "${parts[@]}" -background none +append -strip -define png:compression-level=9 \
            -define png:compression-filter=5 "$images/$name-$theme.png"
    done
}

mkdir -p "$images"
picture hero 1000 floating-button-aside inspector-scrolled tree breakpoint-edited
picture details 1000 details details-decoded tree-find share-curl
picture wide 1000 wide-day-inspector:wide-inspector
du -h "$images"
