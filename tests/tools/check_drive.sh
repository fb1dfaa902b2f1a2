#!/usr/bin/env bash
# Makes a drive with the program and has it checked by other people's tools.
#   check_drive.sh validate|play TAVRIK FOLDER
# Exit status 77, which counts as skipped: the tools are not installed.
set -euo pipefail
check=$1 tavrik=$2 folder=$3
here=$(cd "$(dirname "$0")" && pwd)
if ! command -v node >/dev/null || [ ! -d "$here/node_modules" ]; then
    echo "Skipped: run npm ci in tests/tools first."
    exit 77
fi
mkdir -p "$folder"
cd "$folder"
"$tavrik" ground sample --triangles 5000 --out ground.obj
"$tavrik" ground kerb --triangles 5000 --out kerb.glb
"$tavrik" drive --ground ground.obj --input "$here/../../samples/slalom.csv" --seconds 12 --out samples.glb --telemetry drive.csv
"$tavrik" drive --ground kerb.glb --seconds 4 --fps 24 --keys frames --out frames.glb
case $check in
validate) node "$here/validate_gltf.mjs" kerb.glb samples.glb frames.glb ;;
play) node "$here/play_gltf.mjs" samples.glb drive.csv ;;
esac
