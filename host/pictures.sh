#!/bin/sh
# Makes the pictures of the documentation anew: host/pictures.sh BUILD, a native build with its data folder.
# Wants ImageMagick (Debian: imagemagick).
set -eu
cd "$(dirname "$0")/.."
build=$(cd "$1" && pwd)
host=$PWD/host
pictures=$PWD/docs/pictures
work=/tmp/harbour # a path that may be seen
mkdir "$work"
trap 'rm -rf "$work"' EXIT
cd "$work"

# NAME of the documentation, SOURCE, what convert does with it
keep() {
    name=$1
    source=$2
    shift 2
    convert "$source.bmp" -alpha off "$@" -strip "$pictures/$name.png"
}

"$build/host/widget_gallery" "$build/data" WindowsStandard "$host/scripts/widgets.txt" .
keep widgets_WindowsStandard list -crop 900x690+0+0 +repage
"$build/host/widget_gallery" "$build/data" Fragile "$host/scripts/widgets.txt" .
keep widgets_Fragile list -resize 900x
"$build/host/scene_view" "$build/data" "$host/scenes/lighthouse.obj" "$host/scripts/scene.txt" .
keep scene moving
"$build/host/scene_view" "$build/data" "$host/scenes/court.obj" "$host/scripts/court.txt" .
keep court gap -resize 450x
keep drops drops_later -resize 450x
"$build/host/editor_demo" "$build/data" "$host/scripts/editor.txt" .
keep explorer classes -resize 704x
cp -r "$host/scenes" models
"$build/host/workbench" --headless --script "$host/scripts/tour.txt" "$build/data" models 2>/dev/null
keep workbench tour -resize 900x
keep dialog dialog -resize 900x
