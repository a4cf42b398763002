// What goes wrong on the line and in the drives: Tavrilo is back and waiting each time, without
// a key pressed, or says on its screen what it needs; and no wrong bytes pass for right ones.

import assert from "node:assert/strict";
import { test } from "node:test";
import { damageSector, eraseTrack, formatted, fromImage, readSide, unformatted } from "./lib/disc.mjs";
import { Cancelled } from "./lib/host.mjs";
import { mixedImage, randomBytes, withCatalogue } from "./lib/images.mjs";
import { TRACK } from "./lib/packet.mjs";
import { running } from "./lib/tavrilo.mjs";

const MODELS = ["B-DFS1.2", "B1770"];
const image = mixedImage(40);
const trackOf = (bytes, track) => bytes.slice(track * TRACK, (track + 1) * TRACK);
const same = (got, wanted) => assert.ok(Buffer.from(got).equals(Buffer.from(wanted)), "the bytes differ");

/** A micro with a floppy of 40 tracks in drive 0 and a formatted one in drive 1. */
async function ready(model = "B-DFS1.2") {
    const micro = await running(model);
    micro.source = fromImage(image);
    micro.target = formatted(40);
    micro.beeb.insert(0, micro.source);
    micro.beeb.insert(1, micro.target);
    return micro;
}

/** Asserts that a new transfer works at once. */
function works({ host, target }, tracks = 2) {
    host.retries = [];
    host.select(0);
    for (let track = 0; track < tracks; ++track) same(host.askTrack(0, track).track, trackOf(image, track));
    host.sendSide(1, image.subarray(0, tracks * TRACK));
    assert.deepEqual(host.retries, []);
    same(readSide(target, 0, tracks).image, image.subarray(0, tracks * TRACK));
}

/** Every byte that `at` names, counted from now, goes through `change`. */
function fault(at, change) {
    let count = 0;
    return (byte) => (at.includes(count++) ? change(byte) : [byte]);
}

test("Half a command is forgotten within two seconds", async () => {
    const micro = await ready();
    const halves = ["G", "G0", "G0\r", "G0\r1", "g", "g1\r", "*", "*CA", "N", "\x1b", "\x1b\x02", "-----BBC", "Gx\r", "G0\rx\r"];
    for (const half of [...halves, "G4\r0\r", "G00\r0\r", "G0\r-1\r", "G0\r1E1\r"]) {
        micro.host.send(half);
        micro.beeb.runMs(2000);
        assert.deepEqual(micro.host.ring, [], half);
        works(micro, 1);
    }
});

test("Noise on the line while Tavrilo waits does no harm", async () => {
    const micro = await ready();
    for (let seed = 1; seed <= 12; ++seed) {
        micro.host.sendRaw(randomBytes(100, seed));
        micro.beeb.runMs(2500);
        micro.host.drain();
        works(micro);
    }
});

test("The program's end is no end for Tavrilo", async () => {
    const micro = await ready();
    micro.host.send("Q");
    micro.beeb.runMs(100);
    assert.match(micro.beeb.screenText(), /The host has closed/);
    works(micro);
});

test("A track past the end is refused on the screen", async () => {
    const micro = await ready();
    for (const message of ["G0\r80\r", "g0\r199\r"]) {
        micro.host.send(message);
        assert.equal(micro.host.getChar(2000), -1);
    }
    assert.match(micro.beeb.screenText(), /There is no 80\nThere is no 199/);
    works(micro);
});

test("A request asked twice is answered once", async () => {
    const micro = await ready();
    micro.host.select(0);
    micro.host.send("G0\r0\rG0\r0\r");
    micro.beeb.runMs(3000);
    const once = micro.host.ring.length;
    micro.host.ring = [];
    micro.host.send("G0\r0\r");
    micro.beeb.runMs(3000);
    assert.equal(once, micro.host.ring.length);
    works({ ...micro, host: Object.assign(micro.host, { ring: [] }) });
});

test("A request that the line has changed is not believed at once", async () => {
    const micro = await ready();
    micro.host.select(0);
    for (let track = 0; track < 12; ++track) same(micro.host.askTrack(0, track).track, trackOf(image, track));
    micro.host.send("G0\r2\r"); // meant 12, and a digit got lost
    assert.equal(micro.host.getChar(5000), -1);
    micro.host.drain();
    same(micro.host.askTrack(0, 12).track, trackOf(image, 12));

    micro.host.send("g1\r30\r");
    assert.equal(micro.host.response(), "");
    micro.host.abort();
    assert.deepEqual(micro.host.putTrack(1, 30, trackOf(image, 30)), {}); // asked twice, it is meant
});

/** Faults of single bytes on the way to the micro, counted from the first byte of the packet. */
const PACKET_FAULTS = [
    { name: "a changed byte", at: [40], change: (byte) => [byte ^ 4] },
    { name: "a lost byte", at: [300], change: () => [] },
    { name: "a byte too many", at: [300], change: (byte) => [byte, byte] },
    { name: "a length too small", at: [0], change: (byte) => [byte - 20] },
    { name: "a length too large", at: [1], change: (byte) => [byte + 8] },
    { name: "an impossible length", at: [1], change: () => [200] },
    { name: "no length", at: [0, 1], change: () => [0] },
    { name: "an ESC from nowhere", at: [30], change: () => [27] },
];

for (const model of ["B-DFS1.2", "B1770"]) {
    test(`A packet with a fault is sent again to a ${model}, and lands whole`, async () => {
        const micro = await ready(model);
        const { host } = micro;
        host.select(1);
        PACKET_FAULTS.forEach(({ name, at, change }, track) => {
            const bytes = randomBytes(TRACK, track + 1);
            let inPacket = false;
            const hit = fault(at, change);
            host.toMicro = (bytes) => {
                if (inPacket) return [...bytes].flatMap(hit);
                inPacket = bytes[0] === "g".charCodeAt(0);
                return bytes;
            };
            assert.match(host.putTrack(1, track, bytes).failure, /65536|differs/, name);
            host.toMicro = (bytes) => bytes;
            assert.deepEqual(host.putTrack(1, track, bytes), {}, name);
            same(trackOf(readSide(micro.target, 0, 40).image, track), bytes);
        });
        assert.equal(micro.beeb.line.count.overruns, 0);
    });
}

test("A track that comes to the host with a fault is asked for again", async () => {
    const micro = await ready();
    const { host } = micro;
    for (const at of [0, 1, 2, 100, 300]) {
        for (const change of [(byte) => [byte ^ 0x10], () => [], (byte) => [byte, 0]]) {
            const hit = fault([at], change);
            host.select(0);
            host.fromMicro = hit;
            assert.ok(host.askTrack(0, 0).failure, `byte ${at} with ${change}`);
            host.fromMicro = (byte) => [byte];
            host.drain();
            same(host.askTrack(0, 0).track, trackOf(image, 0));
        }
    }
});

for (const model of MODELS) {
    test(`A packet may stop or be cancelled anywhere, and a ${model} goes on`, async () => {
        const micro = await ready(model);
        const { host } = micro;
        const escapes = new Uint8Array(TRACK).map((_, i) => (i % 20 < 8 ? 27 : i % 20 < 10 ? i : i & 1 ? 27 : i));
        for (const stopAt of [0, 1, 2, 3, 4, 5, 6, 9, 700]) {
            let bytes = 0;
            host.select(1);
            host.mayCancel = () => {
                if (bytes++ === stopAt) throw new Cancelled();
            };
            assert.throws(() => host.putTrack(1, 0, escapes), Cancelled);
            host.mayCancel = () => {};
            if (stopAt % 2) host.abort();
            else micro.beeb.runMs(6000);
            host.ring = [];
            works(micro, 1);
        }
    });

    test(`An unformatted floppy is formatted as it is written on a ${model}`, async () => {
        const micro = await ready(model);
        const blank = unformatted();
        micro.beeb.insert(1, blank);
        const start = micro.beeb.ms;
        micro.host.sendDouble(1, image.subarray(0, 20 * TRACK));
        const sides = [readSide(blank, 0, 10), readSide(blank, 1, 10)];
        assert.deepEqual(micro.host.retries, []);
        for (let index = 0; index < 20; ++index)
            same(trackOf(sides[index & 1].image, index >> 1), trackOf(image, index));
        assert.ok(micro.beeb.ms - start < 60000, `took ${micro.beeb.ms - start} ms`);
        assert.match(micro.beeb.screenText(), /Formatting from track 0/);
    });

    test(`Of a damaged track a ${model} sends what it can read`, async () => {
        const micro = await ready(model);
        const bytes = withCatalogue(randomBytes(40 * TRACK));
        const disc = fromImage(bytes);
        damageSector(disc, 0, 2, 3);
        damageSector(disc, 0, 2, 9);
        eraseTrack(disc, 0, 4);
        micro.beeb.insert(0, disc);
        const wanted = bytes.slice();
        wanted.fill(0, 2 * TRACK + 3 * 256, 2 * TRACK + 4 * 256).fill(0, 2 * TRACK + 9 * 256, 3 * TRACK);
        wanted.fill(0, 4 * TRACK, 5 * TRACK);
        same(micro.host.receiveSide(0), wanted);
        assert.match(micro.beeb.screenText(), /Drive 0 track 2, zeros for: 3 9\n/);
        assert.match(micro.beeb.screenText(), /Drive 0 track 4, zeros for: all\n/);
    });

    test(`The unformatted half of two sides costs a ${model} no minutes`, async () => {
        const micro = await ready(model);
        const sides = mixedImage(80);
        micro.beeb.insert(0, fromImage(sides, { doubleSided: true }));
        const start = micro.beeb.ms;
        const got = micro.host.receiveDouble(0);
        same(got.subarray(0, 80 * TRACK), sides);
        assert.ok(got.subarray(80 * TRACK).every((byte) => byte === 0));
        const seconds = (micro.beeb.ms - start) / 1000;
        assert.ok(seconds < 200, `took ${seconds} s`);
    });

    test(`A ${model} without a floppy says so and goes on when there is one`, async () => {
        const micro = await ready(model);
        micro.beeb.insert(0, undefined);
        micro.host.select(0);
        assert.ok(micro.host.askTrack(0, 0).failure);
        assert.match(micro.beeb.screenText(), /drive 0 track 0 \(disc in it\?\)/);
        micro.beeb.insert(0, micro.source);
        micro.beeb.runMs(8000);
        micro.host.drain();
        works(micro);
    });

    test(`A ${model} says that a floppy is write-protected, and writes when it no longer is`, async () => {
        const micro = await ready(model);
        micro.target.isWriteable = false;
        assert.match(micro.host.putTrack(1, 0, trackOf(image, 0)).failure, /65536/);
        assert.match(micro.beeb.screenText(), /Drive 1 is write-protected/);
        micro.target.isWriteable = true;
        assert.deepEqual(micro.host.putTrack(1, 0, trackOf(image, 0)), {});
        works(micro);
    });
}

test("A disc without a size it knows gives no size", async () => {
    const micro = await ready();
    micro.beeb.insert(0, unformatted());
    micro.host.select(0);
    assert.ok(Number.isNaN(Number.parseInt(micro.host.size(), 10)));
    works({ ...micro, beeb: micro.beeb.insert(0, micro.source) });
});

test("Tracks full of ESC come across as long as they fit, and are named when not", async () => {
    const micro = await ready();
    const { host, beeb } = micro;
    const bytes = withCatalogue(randomBytes(40 * TRACK));
    bytes.fill(27, TRACK, 2 * TRACK);
    for (let i = 0; i < TRACK; ++i) bytes[2 * TRACK + i] = i % 11 === 5 || i % 11 === 6 ? 27 : i % 7;
    for (let i = 0; i < TRACK; ++i) bytes[4 * TRACK + i] = i % 2 ? 27 : i % 7;
    beeb.insert(0, fromImage(bytes));
    host.select(0);
    for (const track of [0, 1]) same(host.askTrack(0, track).track, trackOf(bytes, track));
    assert.ok(host.askTrack(0, 2).failure);
    assert.match(beeb.screenText(), /Track 2 has too many bytes 27 to send/);
    beeb.insert(0, micro.source);
    works(micro);
});
