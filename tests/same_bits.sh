#!/usr/bin/env bash
# Drives the same scripted run with programs of both compilers, with and without optimization, and compares the hashes of the
# recordings. Only the host-free libraries are built, which takes seconds.
set -euo pipefail
cd "$(dirname "$0")/.."

first=""
for compiler in g++ clang++; do
    for type in Debug Release; do
        folder="build/bits-$compiler-$type"
        if ! { cmake -S . -B "$folder" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE="$type" \
            -DTAVRIK_HOST=OFF -DTAVRIK_BENCH=OFF && cmake --build "$folder" --target tavrik_bits; } >"$folder.log" 2>&1; then
            cat "$folder.log" >&2
            exit 1
        fi
        hash=$("$folder/tests/drive/tavrik_bits")
        echo "$hash  $compiler $type"
        if [ -z "$first" ]; then
            first=$hash
        elif [ "$hash" != "$first" ]; then
            echo "The recording of $compiler $type differs from that of g++ Debug." >&2
            exit 1
        fi
    done
done
