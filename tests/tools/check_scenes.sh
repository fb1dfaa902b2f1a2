#!/usr/bin/env bash
# Has scenes written by the tests checked by other people's tools.
#   check_scenes.sh SCENE_TESTS FOLDER
# Exit status 77, which counts as skipped: the tools are not installed.
set -euo pipefail
tests=$1 folder=$2
here=$(cd "$(dirname "$0")" && pwd)
if ! command -v node >/dev/null || [ ! -d "$here/node_modules" ]; then
    echo "Skipped: run npm ci in tests/tools first."
    exit 77
fi
mkdir -p "$folder"
TAVRIK_WRITTEN_SCENES=$folder "$tests" --gtest_filter=ForeignScene.IsWrittenForCheckers
node "$here/validate_gltf.mjs" "$folder"/*.glb "$folder"/*.gltf
