#!/usr/bin/env bash
# Makes a scene, drives it, and has Blender show it: every node must be where the host has it.
#   check_blender.sh TAVRIK SCENE_POSES FOLDER
# Exit status 77, which counts as skipped: Blender is not installed.
set -euo pipefail
tavrik=$1 poses=$2 folder=$3
here=$(cd "$(dirname "$0")" && pwd)
if ! command -v blender >/dev/null; then
    echo "SKIPPED: Blender is not installed and could not be; the poses that it shows were not compared."
    exit 77
fi
mkdir -p "$folder"
cd "$folder"
"$tavrik" ground sample --triangles 5000 --out ground.obj
"$tavrik" new --ground ground.obj --out scene.glb
"$tavrik" drive scene.glb --input "$here/../../samples/slalom.csv" --seconds 8
"$poses" scene.glb >poses.txt
blender -b --factory-startup --python "$here/blender_poses.py" -- scene.glb poses.txt
