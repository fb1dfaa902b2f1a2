#!/bin/sh
# Runs a program on a screen of its own: on_a_screen.sh PROGRAM [ARGUMENT]...
# Ends with 77, which a test counts as skipped, where the tools for that are missing.
set -eu

for tool in Xvfb xdotool; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: $tool is not installed"
        exit 77
    fi
done

folder=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$folder/display" >"$folder/log" 2>&1 &
screen=$!
trap 'kill $screen 2>/dev/null || true; rm -rf "$folder"' EXIT
for _ in $(seq 100); do
    [ -s "$folder/display" ] && break
    sleep 0.1
done
if [ ! -s "$folder/display" ]; then
    echo "skipped: the screen doesn't start: $(tail -n 1 "$folder/log")"
    exit 77
fi
# Leaks of the desktop's libraries are not ours.
here=$(cd "$(dirname "$0")" && pwd)
export LSAN_OPTIONS="suppressions=$here/../tools/lsan.supp:print_suppressions=0"
DISPLAY=":$(cat "$folder/display")" QT_QPA_PLATFORM=xcb "$@"
