#!/usr/bin/env bash
# Makes the pictures of docs/render.md: docs/render_pictures.sh TAVRIK TREAD.png
# TAVRIK is the program, TREAD.png any greyscale picture of a tread.
set -euo pipefail
tavrik=$(realpath "$1")
tread=$(realpath "$2")
docs=$(realpath "$(dirname "$0")")
slalom=$docs/../samples/slalom.csv
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
cd "$work"

"$tavrik" ground plane --out plane.obj
"$tavrik" ground sample --out course.obj
"$tavrik" new --ground plane.obj --at 0,0,0 --seconds 8 --out plane.gltf
# The stock car brakes within what its tyres can hold; these brakes lock its wheels.
sed 's/"Brake_Sensitivity": 2000.0/"Brake_Sensitivity": 12000.0/' plane.gltf >strong.gltf
"$tavrik" new --ground course.obj --out course.glb

printf '0, 0, 1, 0, 0, 0\n3.5, 0, 0, 0, 0, 0\n4.2, 0, 0, 1, 0, 0\n' >brake.csv
printf '0, 0, 1, 0, 0, 0\n4, 0.5, 0, 0, 0, 0\n4.4, 1, 0, 0, 1, 0\n6.5, 0, 0, 1, 0, 0\n' >turn.csv
"$tavrik" drive strong.gltf --out brake.glb --input brake.csv --seconds 7
"$tavrik" drive plane.gltf --out turn.glb --input turn.csv --seconds 8
"$tavrik" drive course.glb --input "$slalom" --seconds 20

"$tavrik" render brake.glb --frames 120 --out "$docs/render_roll.png" --size 640x360
"$tavrik" render brake.glb --frames 195 --out "$docs/render_brake.png" --size 640x360 --eye=-3,-14,4 --look=0,-5,-0.5
"$tavrik" render turn.glb --frames 205 --out "$docs/render_turn.png" --size 640x360 --camera top --span 20
"$tavrik" render course.glb --frames 100 --out "$docs/render_tread.png" --size 560x315 --tread "$tread" \
    --eye=-1.5,-3.2,0.1 --look=-0.75,-1.9,-0.5
