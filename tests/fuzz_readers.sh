#!/usr/bin/env bash
# Builds the fuzz targets of all readers. Those of scene files and recordings are fuzzed for a minute, side by side; the others
# go through their corpora.
#   tests/fuzz_readers.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}

corpora=tests/fuzz/corpus
readers=()
for folder in "$corpora"/*; do readers+=("$(basename "$folder")"); done

mkdir -p build
if ! { cmake --preset asan && cmake --build --preset asan --target "${readers[@]/#/fuzz_}"; } >build/fuzz.log 2>&1; then
    cat build/fuzz.log >&2
    exit 1
fi

# fuzz READER OPTIONS...: what it finds anew stays out of the tree; an input that breaks the reader is kept beside its log.
fuzz() {
    local reader=$1 found=build/asan/found/$1
    shift
    mkdir -p "$found"
    if ! "build/asan/tests/fuzz/fuzz_$reader" -timeout=20 -rss_limit_mb=4096 -artifact_prefix="$found-" "$@" "$found" \
        "$corpora/$reader" >"$found.log" 2>&1; then
        tail -60 "$found.log" >&2
        echo "fuzz_$reader found bytes that break it: $(ls "$found"-*)" >&2
        return 1
    fi
    echo "$reader: $(grep -E '^(Done|INFO: seed corpus)' "$found.log" | tail -1)"
}

for reader in "${readers[@]}"; do
    case "$reader" in scene_file | recording) ;; *) fuzz "$reader" -runs=0 ;; esac
done
fuzz scene_file -max_total_time="$seconds" -max_len=20000 &
scene_file=$!
fuzz recording -max_total_time="$seconds" -max_len=20000
wait "$scene_file"
