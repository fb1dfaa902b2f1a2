// Plays a drive in three.js and compares where body and wheels are with the telemetry of the same drive.
//   node play_gltf.mjs drive.glb drive.csv
import fs from 'node:fs';
import * as THREE from 'three';
import { GLTFLoader } from 'three/addons/loaders/GLTFLoader.js';

// The loader looks for its surroundings in a browser's global.
globalThis.self = globalThis;

const [glbFile, csvFile] = process.argv.slice(2);
const bytes = fs.readFileSync(glbFile);
const buffer = bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.byteLength);
const gltf = await new Promise((done, failed) => new GLTFLoader().parse(buffer, '', done, failed));

const [header, ...lines] = fs.readFileSync(csvFile, 'utf8').trim().split('\n');
const names = header.split(',');
const rows = lines.map((line) => Object.fromEntries(line.split(',').map((value, i) => [names[i], Number(value)])));
const wheels = names.filter((name) => name.startsWith('travel_')).map((name) => name.slice('travel_'.length, -'_cm'.length));

let faults = 0;
function check(holds, what) {
    if (holds) return;
    ++faults;
    console.error(what);
}

const body = gltf.scene.getObjectByName('body');
check(body !== undefined, 'there is no body');
check(gltf.scene.getObjectByName('ground') !== undefined, 'there is no ground');
check(wheels.length >= 2, 'the telemetry names no wheels');
check(gltf.animations.length === 1, `there are ${gltf.animations.length} animations`);

const mixer = new THREE.AnimationMixer(gltf.scene);
const action = mixer.clipAction(gltf.animations[0]);
action.setLoop(THREE.LoopOnce);
action.clampWhenFinished = true;
action.play();

const position = (object) => new THREE.Vector3().setFromMatrixPosition(object.matrixWorld);
const kPlaces = 40;
let moved = 0;
let before = null;
for (let i = 0; i < kPlaces; ++i) {
    const row = rows[Math.floor((i * (rows.length - 1)) / (kPlaces - 1))];
    // A hair before the end: at its very end a clip that plays once counts as finished.
    mixer.setTime(Math.min(row.seconds, gltf.animations[0].duration - 1e-6));
    gltf.scene.updateMatrixWorld(true);
    // Scene: centimetres, Z up. File: metres, Y up.
    const expected = new THREE.Vector3(row.x_cm, row.z_cm, -row.y_cm).multiplyScalar(0.01);
    const actual = position(body);
    // Single precision 150 m from the origin steps by 0.015 mm.
    check(actual.distanceTo(expected) < 1e-4, `second ${row.seconds}: the body is at ${actual.toArray()}, not ${expected.toArray()}`);
    const forward = new THREE.Vector3(0, 0, -1).transformDirection(body.matrixWorld);
    const heading = (Math.atan2(forward.x, -forward.z) * 180) / Math.PI;
    const pitch = (Math.asin(forward.y) * 180) / Math.PI;
    const turn = ((heading - row.heading_deg + 540) % 360) - 180;
    check(Math.abs(turn) < 0.01, `second ${row.seconds}: the body heads for ${heading}, not ${row.heading_deg}`);
    check(Math.abs(pitch - row.pitch_deg) < 0.01, `second ${row.seconds}: the body pitches ${pitch}, not ${row.pitch_deg}`);
    for (const name of wheels) {
        const wheel = gltf.scene.getObjectByName(`wheel_${name}`);
        if (wheel === undefined) {
            check(false, `there is no wheel_${name}`);
            continue;
        }
        // In the body's space a wheel is where its name says, and moves with its travel.
        const local = body.worldToLocal(position(wheel));
        check(local.x < 0 === name.endsWith('left') || !/left|right/.test(name), `wheel_${name} is at ${local.toArray()}`);
        check(local.z < 0 === name.startsWith('front') || !/front|rear/.test(name), `wheel_${name} is at ${local.toArray()}`);
        check(Math.abs(local.y) < 2 && Math.abs(local.x) < 2 && Math.abs(local.z) < 4, `wheel_${name} has left its car`);
    }
    if (before !== null) moved += before.distanceTo(actual);
    before = actual;
}
check(moved > 5, `the body moved ${moved} m only`);
console.log(`${kPlaces} moments compared, ${moved.toFixed(1)} m driven, ${faults} faults`);
process.exit(faults === 0 ? 0 : 1);
