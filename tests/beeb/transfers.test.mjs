// Whole discs in both directions, byte for byte, on every controller.

import assert from "node:assert/strict";
import { test } from "node:test";
import { formatted, fromImage, readBoth, readSide, unformatted } from "./lib/disc.mjs";
import { mixedImage } from "./lib/images.mjs";
import { TRACK } from "./lib/packet.mjs";
import { running } from "./lib/tavrilo.mjs";
import { timeBothWays } from "./lib/times.mjs";

const same = (got, wanted) => assert.ok(Buffer.from(got).equals(Buffer.from(wanted)), "the images differ");

function clean({ beeb, host }) {
    assert.deepEqual(host.retries, []);
    assert.equal(beeb.line.count.overruns, 0);
}

for (const model of ["B-DFS1.2", "B1770", "Master"]) {
    test(`40 tracks go from drive 0 and to a blank floppy in drive 1 of a ${model}`, async () => {
        const micro = await running(model);
        const image = mixedImage(40);
        micro.beeb.insert(0, fromImage(image));
        same(micro.host.receiveSide(0), image);

        const blank = unformatted();
        micro.beeb.insert(1, blank);
        micro.host.sendSide(1, image);
        const written = readSide(blank, 0, 40);
        assert.deepEqual(written.unreadable, []);
        same(written.image, image);
        clean(micro);
    });

    test(`Both sides of a floppy go from drive 1 and to drive 0 of a ${model}`, async () => {
        const micro = await running(model);
        const image = mixedImage(160);
        micro.beeb.insert(1, fromImage(image, { doubleSided: true }));
        same(micro.host.receiveDouble(1), image);

        const copy = formatted(80, { doubleSided: true });
        micro.beeb.insert(0, copy);
        micro.host.sendDouble(0, image);
        const written = readBoth(copy, 80);
        assert.deepEqual(written.unreadable, []);
        same(written.image, image);
        clean(micro);
    });
}

test("The second side alone is drive 2", async () => {
    const micro = await running("B-DFS1.2");
    const disc = formatted(80, { doubleSided: true });
    const image = mixedImage(40, 7);
    micro.beeb.insert(0, disc);
    micro.host.sendSide(2, image);
    same(readSide(disc, 1, 40).image, image);
    same(micro.host.receiveSide(2), image);
    assert.deepEqual(readSide(disc, 0).unreadable, []);
    clean(micro);
});

/** Seconds within which 80 tracks must go, by model and what is on them. */
const LIMITS = [
    { model: "B-DFS1.2", kind: "empty", receive: 55, send: 85 },
    { model: "B-DFS1.2", kind: "random", receive: 185, send: 310 },
    { model: "B1770", kind: "empty", receive: 55, send: 85 },
    { model: "B1770", kind: "random", receive: 185, send: 400 },
];

/** Seconds for the motor and the first commands. */
const START = 2;

for (const { model, kind, receive, send } of LIMITS) {
    test(`16 ${kind} tracks keep the pace that 80 must have on a ${model}`, async () => {
        const micro = await running(model);
        const { received, sent } = timeBothWays(micro, kind, 16);
        clean(micro);
        assert.ok(received <= receive / 5 + START, `received in ${received} s`);
        assert.ok(sent <= send / 5 + START, `sent in ${sent} s`);
    });
}

for (const model of ["B-DFS1.2", "B1770", "Master"]) {
    test(`No byte is lost to a ${model} when the line brings them in bursts`, async () => {
        for (const atOnce of [2, 16, 4480]) {
            const micro = await running(model);
            micro.host.atOnce = atOnce;
            timeBothWays(micro, "random", 3);
            clean(micro);
        }
    });
}
