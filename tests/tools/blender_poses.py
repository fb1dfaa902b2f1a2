"""Compares what Blender shows of a scene with where the host has its nodes.

blender -b --python blender_poses.py -- SCENE.glb POSES
POSES is what scene_poses prints. Ends with exit status 1 where a node is elsewhere.
"""
import json
import struct
import sys

import numpy as np

np.bool = bool  # the importer of Blender 3.4 still asks for it
import bpy

scene_file, poses_file = sys.argv[sys.argv.index("--") + 1:]
METRES_PER_UNIT = 0.01
PLACE_TOLERANCE = 0.01  # scene units; measured 4e-4, keys are single-precision metres
AXIS_TOLERANCE = 1e-5   # of a row of length 1; measured 4e-7


def names_by_handle(path):
    data = open(path, "rb").read()
    length = struct.unpack_from("<I", data, 12)[0]
    nodes = json.loads(data[20:20 + length])["nodes"]
    return {node["extensions"]["NORVANE_tavrik"]["handle"]: node["name"] for node in nodes}


def nearest_square(rows):
    """The frame with axes at right angles closest to one whose axes aren't quite: a file can hold nothing else."""
    u, _, v = np.linalg.svd(rows)
    return u @ v


def main():
    bpy.ops.wm.read_factory_settings(use_empty=True)
    bpy.context.scene.render.fps = 30
    bpy.ops.import_scene.gltf(filepath=scene_file)
    names = names_by_handle(scene_file)
    worst_place = worst_axis = 0.0
    compared = 0
    shown = None
    for line in open(poses_file):
        words = line.split()
        handle, frame = int(words[0]), int(words[1])
        rows = np.array(words[2:], dtype=float).reshape(4, 3)
        if frame != shown:
            bpy.context.scene.frame_set(frame)
            shown = frame
        matrix = np.array(bpy.data.objects[names[handle]].matrix_world)
        place = matrix[:3, 3] / METRES_PER_UNIT
        axes = matrix[:3, :3].T
        worst_place = max(worst_place, np.abs(place - rows[3]).max())
        worst_axis = max(worst_axis, np.abs(axes - nearest_square(rows[:3])).max())
        compared += 1
    print(f"blender: {compared} poses compared; off by {worst_place:.2g} units and {worst_axis:.2g} at most")
    return compared > 0 and worst_place <= PLACE_TOLERANCE and worst_axis <= AXIS_TOLERANCE


try:
    good = main()
except Exception as error:  # Blender itself would end with status 0
    print(f"blender: {error!r}")
    good = False
sys.stdout.flush()
sys.exit(0 if good else 1)
