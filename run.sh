#!/usr/bin/env bash
# Builds the kalimkit command and plays a sample scenario over a photo: ./run.sh [PHOTO]
# Or builds the canvas for the web and serves a page with it: ./run.sh --web [PORT]
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scenario=$root/examples/first-light.jsonl
output=$root/build/run-output

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

case ${1-} in
    -h | --help)
        echo "Usage: ./run.sh [PHOTO]"
        echo "Draws a few annotations over PHOTO (a JPEG or PNG file) and writes the result to"
        echo "build/run-output/annotated.png. Without PHOTO a picture of a cup of coffee is taken."
        echo "       ./run.sh --web [PORT]"
        echo "Serves a page to draw on a picture in, until it is stopped; at port 8000 unless told."
        exit 0
        ;;
    --web)
        shift
        serve "$@"
        ;;
esac
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

"$root/tools/setup" native
"$root/tools/compile" release kalimkit

mkdir -p "$output"
rm -f "$output/annotated.png"
cd "$output"
"$root/build/release/cli/kalimkit" play --picture "$photo" "$scenario"
if [[ ! -f annotated.png ]]; then
    echo "run.sh: $scenario exported no annotated.png" >&2
    exit 1
fi
echo "The picture is in $output/annotated.png"
