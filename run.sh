#!/usr/bin/env bash
# Builds KalimKit and shows its editor: ./run.sh [PHOTO] opens a window where there is a display, and
# serves the page where there is none. ./run.sh --web [PORT] always serves the page; ./run.sh --play
# [PHOTO] plays a sample scenario without any screen.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scenario=$root/examples/first-light.jsonl
output=$root/build/run-output

help() {
    echo "Usage: ./run.sh [PHOTO]"
    echo "Opens PHOTO (a JPEG, PNG or WebP file) in a window to draw on, and writes what is sent to"
    echo "build/run-output/annotated.png. Without PHOTO a picture of a cup of coffee is taken. Where"
    echo "there is no display the page is served instead."
    echo "       ./run.sh --web [PORT]"
    echo "Serves a page to draw on a picture in, until it is stopped; at port 8000 unless told."
    echo "       ./run.sh --play [PHOTO]"
    echo "Draws a few annotations over PHOTO without any screen and writes the result to the same place."
}

serve() {
    local port=${1-8000}
    if [[ $# -gt 1 || ! $port =~ ^[0-9]+$ || $port -gt 65535 ]]; then
        echo "run.sh: a port is a number up to 65535: ./run.sh --web [PORT]" >&2
        exit 2
    fi
    "$root/tools/setup" web
    "$root/tools/compile" wasm kalim-page
    "$root/tools/web-size" "$root/build/wasm/page"
    echo "The page is at http://localhost:$port/ (Ctrl+C ends it)"
    exec python3 -m http.server "$port" --bind 127.0.0.1 --directory "$root/build/wasm/page"
}

# take_photo ARGUMENTS: sets `photo`
take_photo() {
    if [[ $# -gt 1 ]]; then
        echo "run.sh: one photo at a time, please: ./run.sh [PHOTO]" >&2
        exit 2
    fi
    photo=${1-$root/docs/photos/coffee.png}
    if [[ ! -f $photo ]]; then
        echo "run.sh: there is no photo $photo" >&2
        exit 2
    fi
    photo=$(realpath -- "$photo")
}

build() {
    "$root/tools/setup" native
    "$root/tools/compile" release kalimkit
    mkdir -p "$output"
}

play() {
    take_photo "$@"
    build
    rm -f "$output/annotated.png"
    cd "$output"
    "$root/build/release/cli/kalimkit" play --picture "$photo" "$scenario"
    if [[ ! -f annotated.png ]]; then
        echo "run.sh: $scenario exported no annotated.png" >&2
        exit 1
    fi
    echo "The picture is in $output/annotated.png"
}

open_window() {
    local status=0
    build
    echo "Draw, then send the picture with the button at the top right."
    "$root/build/release/cli/kalimkit" edit -o "$output/annotated.png" -- "$photo" || status=$?
    [[ $status != 1 ]] || echo "The window was closed; nothing has been written."
    exit "$status"
}

case ${1-} in
    -h | --help) help ;;
    --web) serve "${@:2}" ;;
    --play) play "${@:2}" ;;
    *)
        take_photo "$@"
        if [[ -n ${DISPLAY-}${WAYLAND_DISPLAY-} ]]; then
            open_window
        else
            echo "There is no display for a window; the page takes its place."
            [[ $# == 0 ]] || echo "Open $photo there."
            serve
        fi
        ;;
esac
