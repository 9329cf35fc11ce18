#!/bin/sh
# Builds everything in 32-bit and passes all tests.
set -eu
cd "$(dirname "$0")"
. cmake/packages.sh
need_packages $build_packages $test_packages
cmake --preset m32 -DTRELLIS_TESTS=ON
cmake --build --preset m32
ctest --preset m32
