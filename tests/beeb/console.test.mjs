// Star commands from the console: what they write, and what they fail with.

import assert from "node:assert/strict";
import { before, test } from "node:test";
import { fromImage } from "./lib/disc.mjs";
import { imageWithFiles } from "./lib/images.mjs";
import { running } from "./lib/tavrilo.mjs";

let micro;

const text = (length) => Array.from({ length }, (_, i) => (i % 38 === 37 ? "\r" : "abcdefghijklmnop"[i % 16])).join("");

/** Lengths of output around the ends of the host's pieces of 1024 bytes and of the micro's 4096. */
const LENGTHS = [1, 2, 3, 1002, 1003, 1004, 1005, 1023, 1024, 1025, 2047, 4095, 4096, 4097, 5099, 5100, 8192];

/** Machine code for &6C00 that writes `count` times "A" and then fails with "Oops". */
function failingProgram(count) {
    const [low, high] = [count & 0xff, (count >> 8) + 1];
    return Uint8Array.from([
        ...[0xa2, low, 0xa0, high], // LDX #low: LDY #high
        ...[0xe0, 0, 0xd0, 3, 0x88, 0xf0, 9], // CPX #0: BNE +3: DEY: BEQ done
        ...[0xca, 0xa9, 0x41, 0x20, 0xee, 0xff, 0x4c, 0x04, 0x6c], // DEX: write "A": again
        ...[0, 77, ...Buffer.from("Oops"), 0], // BRK
    ]);
}

before(async () => {
    micro = await running("B-DFS1.2");
    const files = LENGTHS.map((length) => ({ name: `T${length}`, bytes: Buffer.from(text(length)) }));
    files.push({ name: "FAIL10", address: 0x6c00, bytes: failingProgram(10) });
    files.push({ name: "FAIL5K", address: 0x6c00, bytes: failingProgram(5000) });
    micro.beeb.insert(0, fromImage(imageWithFiles(files.reverse())));
    micro.host.console("CAT"); // makes the DFS see that the floppy is another
});

test("A command's output comes with CR alone at its line ends", () => {
    const { output } = micro.host.console("INFO FAIL10");
    assert.match(output, /^\$\.FAIL10 +006C00 006C00 00001B [0-9A-F]{3} *\r$/);
});

test("A command without output gives none", () => {
    assert.deepEqual(micro.host.console("FX 15"), { output: "" });
});

test("A command that fails gives its error", () => {
    assert.deepEqual(micro.host.console("NOSUCH"), { error: "Bad command\n\r" });
    assert.match(micro.host.console("TYPE NOFILE").error, /not found/i);
    assert.deepEqual(micro.host.console("FX 15"), { output: "" });
});

test("A line longer than the micro can take is refused", () => {
    assert.deepEqual(micro.host.console(`ROMS ${"X".repeat(300)}`), { error: "Line too long\n\r" });
});

for (const length of LENGTHS) {
    test(`${length} bytes of output arrive whole`, () => {
        const { output } = micro.host.console(`TYPE T${length}`);
        assert.equal(output?.replace(/\r$/, ""), text(length).replace(/\r$/, ""));
        assert.deepEqual(micro.host.ring, []);
    });
}

test("What a command wrote before it failed is dropped for the error", () => {
    assert.deepEqual(micro.host.console("FAIL10"), { error: "Oops\n\r" });
});

test("When too much was written to hold it back, the error follows it", () => {
    assert.deepEqual(micro.host.console("FAIL5K"), { output: `${"A".repeat(5000)}\rOops` });
});

test("The error text is given for the whole acknowledge alone, and only after an error", () => {
    const { host } = micro;
    host.console("NOSUCH");
    host.send("-----BBCerror9-----PC-----");
    assert.equal(host.response(), "");
    host.console("FX 15");
    host.send("-----BBCerror1-----PC-----");
    assert.equal(host.response(), "");
});
