#!/usr/bin/env bash
# Installs the build into a scratch prefix and checks what a consumer gets:
# the CMake package (with and without PCRE2 to be found, and leaving the
# consumer's PCRE2_* variables alone), a shared library exporting only the
# public API, the man page and the bash completion.
#
# Usage: package_test.sh BUILD_DIR
set -u

BUILD=$1
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
PREFIX=$WORK/prefix

passed=0
failed=0
check() {  # check NAME COMMAND...
  local name=$1
  shift
  if "$@" >"$WORK/log.txt" 2>&1; then
    passed=$((passed + 1))
  else
    echo "FAILED: $name"
    sed 's/^/  /' "$WORK/log.txt" | tail -20
    failed=$((failed + 1))
  fi
}

check "cmake --install" cmake --install "$BUILD" --prefix "$PREFIX"
libdir=$(dirname "$(find "$PREFIX" -name 'libpelinor.so' | head -1)")
check "man page installed" test -s "$PREFIX/share/man/man1/pelinor.1"
check "completion installed" \
  test -s "$PREFIX/share/bash-completion/completions/pelinor"

internal() {
  # Symbol names (after the address and type), with any "typeinfo for "
  # style prefix dropped.
  nm -DC --defined-only "$libdir/libpelinor.so" | cut -d' ' -f3- |
    sed -E 's/^(typeinfo name for|typeinfo for|vtable for|guard variable for) //' |
    grep -E '^(std::|pelinor::(registry_internal|queue_internal|template_io|tag_records|month_tables|BlockArena|ArenaAllocator))' &&
    return 1
  nm -DC --defined-only "$libdir/libpelinor.so" | grep -q 'pelinor::cProfile::ReadSettings'
}
check "shared library exports the public API only" internal

mkdir -p "$WORK/consumer"
cat >"$WORK/consumer/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(Consumer LANGUAGES CXX)
set(PCRE2_LIBRARIES "mine")
set(PCRE2_FOUND "mine")
find_package(PelinorLib QUIET)
if(NOT PCRE2_LIBRARIES STREQUAL "mine" OR NOT PCRE2_FOUND STREQUAL "mine")
  message(FATAL_ERROR "PCRE2_* variables changed: ${PCRE2_LIBRARIES}")
endif()
file(WRITE ${CMAKE_BINARY_DIR}/found.txt "${PelinorLib_FOUND}")
if(PelinorLib_FOUND)
  add_executable(consumer main.cpp)
  target_link_libraries(consumer PRIVATE PelinorLib::pelinor_shared)
  add_executable(consumer_static main.cpp)
  target_link_libraries(consumer_static PRIVATE PelinorLib::pelinor)
endif()
CMAKE
cat >"$WORK/consumer/main.cpp" <<'CPP'
#include <cstdio>
#include <string>

#include "pelinor/format.h"
#include "pelinor/pattern_engine.h"

int main() {
  std::string out;
  const bool ok = pelinor::cFormat().FormatAmount("1,234.50", out, 4);
  pelinor::cPatternEngine engine;
  std::string error;
  bool loaded = false;
  engine.LoadSBSExpression("LL00", error, loaded);
  std::printf("%s %d %d\n", out.c_str(), ok, loaded);
  return ok && loaded ? 0 : 1;
}
CPP

consume() {
  cmake -S "$WORK/consumer" -B "$WORK/b1" -DCMAKE_PREFIX_PATH="$PREFIX" &&
    grep -qx 1 "$WORK/b1/found.txt" &&
    cmake --build "$WORK/b1" &&
    LD_LIBRARY_PATH=$libdir "$WORK/b1/consumer" &&
    "$WORK/b1/consumer_static"
}
check "a consumer builds against the package" consume

without_pcre2() {
  # pkg-config that knows no libpcre2-8, and no PCRE2 CMake package.
  PKG_CONFIG_LIBDIR=$WORK/empty PKG_CONFIG_PATH= \
    cmake -S "$WORK/consumer" -B "$WORK/b2" -DCMAKE_PREFIX_PATH="$PREFIX" \
    -DCMAKE_DISABLE_FIND_PACKAGE_PCRE2=ON &&
    grep -qx 0 "$WORK/b2/found.txt"
}
mkdir -p "$WORK/empty"
check "find_package(PelinorLib QUIET) without PCRE2 does not stop" without_pcre2

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
