#!/bin/sh
# Builds the 32-bit service and runs it in the foreground. Arguments go to it.
# "./run.sh workbench [PATH]" builds and opens the native workbench instead, in a window.
set -eu
if [ "${1-}" = workbench ] && [ $# -gt 1 ]; then
    path=$(realpath -- "$2")
    set -- workbench "$path"
fi
cd "$(dirname "$0")"
. cmake/packages.sh
if [ "${1-}" = workbench ]; then
    shift
    need_packages $build_packages $workbench_packages
    cmake --preset m64 >/dev/null
    cmake --build --preset m64 --target workbench fonts
    if [ $# = 0 ]; then
        set -- host/scenes
    fi
    exec out/m64/host/workbench out/m64/data "$@"
fi
need_packages $build_packages
cmake --preset m32 >/dev/null
cmake --build --preset m32 --target halyard
exec out/m32/halyard "$@"
