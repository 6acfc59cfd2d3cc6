#!/usr/bin/env bash
# Tests arrows.sh: each wrong include that it has to find is in a small source tree.
set -euo pipefail
arrows=$(dirname "${BASH_SOURCE[0]}")/arrows.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

# expect RESULT MEANING FILE LINE [FILE LINE]...: writes the files, and checks that arrows.sh has this result.
expect() {
    local result=$1 meaning=$2
    shift 2
    rm -rf "${tree:?}"/*
    mkdir -p "$tree"/{Platform,JSON,Controls,Text,Quorvix,NoOp,Examples}
    printf 'quorvix_room(QuorvixCoreObjects\n QXStore.cpp QXStore.h\n QXRequestTrace.h QXBreakpointStore.h\n LINK x)\n' \
        >"$tree/Quorvix/CMakeLists.txt"
    while (($#)); do
        echo "$2" >>"$tree/$1"
        shift 2
    done
    local found=pass
    "$arrows" "$tree" >/dev/null 2>&1 || found=fail
    [[ $found == "$result" ]] || { echo "$meaning: expected to $result" >&2; exit 1; }
}

expect pass "right arrows" Quorvix/QXStore.cpp '#include "Quorvix/QXStore.h"' Quorvix/QXStore.h '#include "Platform/A.h"'
expect fail "nothing to check"
expect fail "a room below knows one above" Platform/A.cpp '#include "JSON/B.h"'
expect fail "controls know text" Controls/A.h '#include "Text/B.h"'
expect fail "the demo reaches into a room" Examples/A.cpp '#include "Platform/B.h"'
expect fail "a pair comes back to itself" Platform/A.cpp '#include "B.h"' Platform/B.h '#include "A.h"'
expect fail "the core knows a screen" Quorvix/QXStore.cpp '#include "Quorvix/QXOverlay.h"'
expect fail "the core knows its stand-in" Quorvix/QXStore.cpp '#include "NoOp/A.h"'
expect fail "a store knows a model" Quorvix/QXBreakpointStore.h '#include "Quorvix/QXListModel.h"'
expect fail "controls import the inspector" Controls/A.h '#include "Platform/B.h"' Controls/A.qml 'import Quorvix.Screens'
echo "9 wrong arrows found."
