#!/usr/bin/env bash
# samples-test.sh COMPILER...: tests samples.sh with documents whose samples are right and wrong.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
compile=("$@")

# expect RESULT TEXT MEANING: the document comes from standard input, and the output has to contain the text.
expect() {
    local output result=pass
    cat >"$tree/README.md"
    output=$("$here/samples.sh" cpp "$tree" "$tree/out" "${compile[@]}" 2>&1) || result=fail
    [[ $result == "$1" && $output == *"$2"* ]] ||
        { printf '%s: expected to %s with "%s", not:\n%s\n' "$3" "$1" "$2" "$output" >&2; exit 1; }
}

expect pass "2 samples" "right samples pass" <<'MD'
<!-- sample: given
static int one() { return 1; }
-->
```cpp
#include <vector>
std::vector<int> values{one()};
```
<!-- sample: continues -->
```cpp
values.clear();
```
MD
expect fail "README.md:4: the sample" "a wrong sample is named" <<'MD'
```cpp
int right = 1;
```
```cpp
int wrong = nothing;
```
MD
expect fail "README.md:3:" "the compiler knows the line" <<'MD'
```cpp
#include <vector>
std::vector<int> values{nothing};
```
MD
expect fail "README.md:1: a block in a language" "a block with another name for its language" <<<$'```c++\n```'
expect fail "README.md:1: this is not known" "a wrong directive" <<<'<!-- sample: skip -->'
expect fail "README.md:2: no sample follows" "a directive without a sample" <<<$'<!-- sample: continues -->\nText'
expect fail "There are no samples" "nothing to check" <<<'Text'
echo "6 faults found."
