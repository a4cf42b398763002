// Whole discs in both directions, byte for byte, on every controller.

import assert from "node:assert/strict";
import { test } from "node:test";
import { formatted, fromImage, readSide, unformatted } from "./lib/disc.mjs";
import { mixedImage, randomBytes, withCatalogue } from "./lib/images.mjs";
import { TRACK } from "./lib/packet.mjs";
import { running } from "./lib/tavrilo.mjs";

const same = (got, wanted) => assert.ok(Buffer.from(got).equals(Buffer.from(wanted)), "the images differ");

/** What is on both sides of a floppy, by turns, as a double-sided image has it. */
function readBoth(disc, tracks) {
    const sides = [readSide(disc, 0, tracks), readSide(disc, 1, tracks)];
    const image = new Uint8Array(2 * tracks * TRACK);
    for (let index = 0; index < 2 * tracks; ++index) {
        const at = (index >> 1) * TRACK;
        image.set(sides[index & 1].image.subarray(at, at + TRACK), index * TRACK);
    }
    return { image, unreadable: [...sides[0].unreadable, ...sides[1].unreadable] };
}

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

/** Seconds within which a disc of 80 tracks must go, by model and what is on it. */
const LIMITS = [
    { model: "B-DFS1.2", kind: "empty", receive: 55, send: 85 },
    { model: "B-DFS1.2", kind: "random", receive: 185, send: 310 },
    { model: "B1770", kind: "empty", receive: 55, send: 85 },
    { model: "B1770", kind: "random", receive: 185, send: 400 },
];

for (const { model, kind, receive, send } of LIMITS) {
    test(`80 ${kind} tracks keep their time on a ${model}`, async (context) => {
        const micro = await running(model);
        const { beeb, host } = micro;
        const image = withCatalogue(kind === "random" ? randomBytes(80 * TRACK) : new Uint8Array(80 * TRACK));
        beeb.insert(0, fromImage(image));
        let start = beeb.ms;
        same(host.receiveSide(0), image);
        const received = (beeb.ms - start) / 1000;

        const copy = formatted();
        beeb.insert(1, copy);
        start = beeb.ms;
        host.sendSide(1, image);
        const sent = (beeb.ms - start) / 1000;
        same(readSide(copy, 0).image, image);

        clean(micro);
        context.diagnostic(`received in ${received.toFixed(1)} s, sent in ${sent.toFixed(1)} s`);
        assert.ok(received <= receive, `received in ${received} s`);
        assert.ok(sent <= send, `sent in ${sent} s`);
    });
}
