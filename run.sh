#!/bin/sh
# Builds the 32-bit service and runs it in the foreground. Arguments go to it.
set -eu
cd "$(dirname "$0")"
. cmake/packages.sh
need_packages $build_packages
cmake --preset m32 >/dev/null
cmake --build --preset m32 --target halyard
exec out/m32/halyard "$@"
