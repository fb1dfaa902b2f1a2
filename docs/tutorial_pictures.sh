#!/usr/bin/env bash
# Makes the pictures of docs/studio.md and docs/tutorial.md: docs/tutorial_pictures.sh TAVRIK
# TAVRIK is the program; the studio must stand where it finds it. No screen is needed.
set -euo pipefail
tavrik=$(realpath "$1")
docs=$(realpath "$(dirname "$0")")
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
cd "$work"
# Away from the user's own settings and window layout.
export QT_QPA_PLATFORM=offscreen HOME=$work XDG_CONFIG_HOME=$work XDG_STATE_HOME=$work XDG_RUNTIME_DIR=$work
chmod 700 "$work"

shoot() {
    local name=$1
    shift
    "$tavrik" studio "$@" --picture "$docs/$name.png" 2>/dev/null
    echo "$name.png"
}

"$tavrik" new --out stock.glb >told.txt
"$tavrik" drive stock.glb --out driven.glb --input "$docs/../samples/slalom.csv" --seconds 12 >>told.txt
# Something for the doctor to find.
"$tavrik" panel stock.glb Wheel_001 --set "Ruggedness=10000000" --out stiff.glb >>told.txt
"$tavrik" panel stiff.glb Wheel_001 --set "Mass=1" >>told.txt

shoot studio driven.glb
shoot tutorial_ground --command file.sample_ground
shoot tutorial_doctor stiff.glb --command drive.doctor
shoot tutorial_views driven.glb --select Suspension_001 --command view.four
shoot tutorial_drive driven.glb --command time.first --select Chassis_001 --command view.follow --command drive.drive
shoot tutorial_film driven.glb --command file.export_film
