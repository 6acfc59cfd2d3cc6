# shellcheck shell=bash
# Functions of the scripts that read symbols. The variable "public" contains the public headers in one line.

# Prints the names, without arguments, of the project's own symbols in the output of nm.
names() {
    sed -E 's/^[0-9a-f]* *[A-Za-z] //' | sed -E 's/^(vtable|typeinfo name|typeinfo|non-virtual thunk to) (for )?//' |
        sed -E 's/\(.*//; s/\[abi:[^]]*\]//g' | grep -E '^(QX|Quorvix)[A-Za-z0-9_:~]*$' | sort -u
}
# Prints the outermost class or namespace of a name below the project's own namespace; for a free function, its name.
owners() { sed -E 's/^Quorvix:://; s/::.*//' | sort -u; }

is_public() {
    grep -qE "(class|struct|namespace) (QUORVIX_(CORE_)?EXPORT )?$1\b|EXPORT [^;{]*\b$1\(" <<<"${public:?}"
}
