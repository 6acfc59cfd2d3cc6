#!/usr/bin/env bash
# configure.sh SOURCES PREFIX SAMPLE: configures a host with these lines in its CMakeLists.txt. The project's sources are
# in its folder quorvix, and its installation in PREFIX.
set -euo pipefail
sources=$1 prefix=$2 sample=$3
host=$sample.host
mkdir -p "$host"
ln -sfn "$sources" "$host/quorvix"
echo 'int main() {}' >"$host/main.cpp"
echo 'import QtQuick; Item {}' >"$host/Main.qml"
{
    grep -q '^ *project(' "$sample" || printf 'cmake_minimum_required(VERSION 3.25)\nproject(host CXX)\n'
    grep -q 'add_executable(' "$sample" || printf 'add_executable(app main.cpp)\n'
    echo "include($sample)"
} >"$host/CMakeLists.txt"
# What a sample fetches is here already.
cmake -S "$host" -B "$host/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DFETCHCONTENT_SOURCE_DIR_QUORVIX="$sources" -DQUORVIX_BUILD_TESTS=OFF -DQUORVIX_BUILD_EXAMPLES=OFF
