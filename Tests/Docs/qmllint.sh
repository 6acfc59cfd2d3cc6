#!/usr/bin/env bash
# qmllint.sh QMLLINT ARGUMENT...: fails on every warning. Newer releases of qmllint do so only with an option that older
# ones do not have.
set -euo pipefail
output=$("$@" 2>&1) || { echo "$output"; exit 1; }
[[ -z $output ]] || { echo "$output"; exit 1; }
