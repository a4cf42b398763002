#!/usr/bin/env node
// Prints the table of times of docs/companion.md: whole discs both ways, on each controller. Then
// sends discs of random sizes of runs to and fro with faults on the line, for as many minutes of
// real time as given.
//
//   node measure.mjs [MINUTES]

import assert from "node:assert/strict";
import { formatted, fromImage, readSide } from "./lib/disc.mjs";
import { randomBytes, withCatalogue } from "./lib/images.mjs";
import { TRACK } from "./lib/packet.mjs";
import { running } from "./lib/tavrilo.mjs";
import { floorOf, timeBothWays } from "./lib/times.mjs";

const MODELS = ["B-DFS1.2", "B1770", "Master"];
const TRACKS = 80;
/** Milliseconds for a byte: what the line needs, and what the host takes for each that it sends. */
const LINE_MS = 10000 / 19200;
const HOST_MS = 1.06;

const say = (line) => process.stdout.write(`${line}\n`);

async function table() {
    const rows = { "receive, empty": [], "receive, random": [], "send, empty": [], "send, random": [] };
    for (const model of MODELS) {
        for (const kind of ["empty", "random"]) {
            const micro = await running(model);
            const { received, sent } = timeBothWays(micro, kind, TRACKS);
            assert.deepEqual([micro.host.retries, micro.beeb.line.count.overruns], [[], 0]);
            rows[`receive, ${kind}`].push(received);
            rows[`send, ${kind}`].push(sent);
        }
    }
    say(`| 80 tracks, in seconds | floor | ${MODELS.join(" | ")} |`);
    say(`|---|${"---|".repeat(MODELS.length + 1)}`);
    for (const [name, times] of Object.entries(rows)) {
        const [way, kind] = name.split(", ");
        const floor = floorOf(kind, TRACKS, way === "send" ? HOST_MS : LINE_MS);
        say(`| ${[name, floor.toFixed(1), ...times.map((time) => time.toFixed(1))].join(" | ")} |`);
    }
}

/** Tracks of runs and of noise, so that packets of every length go over the line. */
function patchwork(seed) {
    const image = randomBytes(40 * TRACK, seed);
    const dice = randomBytes(4000, seed + 1);
    for (let at = 0, i = 0; at < image.length && i < dice.length; i += 2) {
        if (dice[i] & 1) image.fill(dice[i + 1] % 3 ? dice[i + 1] : 27, at, at + dice[i]);
        at += dice[i] + 1;
    }
    return withCatalogue(image);
}

/** Changes or loses one byte in about 4000. */
function unsteady(seed) {
    let state = seed;
    return (byte) => {
        state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
        if (state % 4000 !== 0) return [byte];
        return state & 0x10000 ? [] : [byte ^ (1 << (state >>> 29))];
    };
}

async function soak(minutes) {
    const end = Date.now() + minutes * 60000;
    let discs = 0;
    let retries = 0;
    for (let seed = 1; Date.now() < end; ++seed) {
        const { beeb, host } = await running(MODELS[seed % MODELS.length]);
        const image = patchwork(seed);
        const copy = formatted(40);
        beeb.insert(0, fromImage(image));
        beeb.insert(1, copy);
        host.select(0);
        host.select(1);
        const [there, back] = [unsteady(seed), unsteady(seed + 1000)];
        const duringTracks = (work) => {
            host.toMicro = (bytes) => [...bytes].flatMap(there);
            host.fromMicro = back;
            work();
        };
        const got = [];
        duringTracks(() => {
            for (let track = 0; track < 40; ++track) got.push(host.insist(() => host.askTrack(0, track)).track);
            for (let track = 0; track < 40; ++track)
                host.insist(() => host.putTrack(1, track, image.slice(track * TRACK, (track + 1) * TRACK)));
        });
        assert.ok(Buffer.concat(got).equals(Buffer.from(image)), `received wrong bytes with seed ${seed}`);
        assert.ok(Buffer.from(readSide(copy, 0, 40).image).equals(Buffer.from(image)), `wrote wrong bytes with seed ${seed}`);
        discs += 1;
        retries += host.retries.length;
    }
    say(`\n${discs} discs there and back with faults on the line, ${retries} retries, no wrong byte`);
}

await table();
if (process.argv[2]) await soak(Number(process.argv[2]));
