// The typed form of Tavrilo, and the packet as the tests' own host makes it.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { make } from "../../companion/make.mjs";
import { crc16, pack } from "./lib/packet.mjs";
import { PROGRAM } from "./lib/tavrilo.mjs";

const typed = readFileSync(PROGRAM, "latin1");

test("The typed form is made of the source beside it", () => {
    assert.equal(typed, make(readFileSync(new URL("../../companion/tavrilo.src", import.meta.url), "latin1")));
});

test("Every typed line fits the micro and the road to it", () => {
    const lines = typed.trimEnd().split("\n");
    for (const line of lines) assert.match(line, /^[ -~]{1,199}$/);
    assert.ok(typed.length * 10.2 < 97000, "more than 97 s of typing");
});

test("The host of the tests packs as the micro expects", () => {
    assert.equal(crc16(Buffer.from("123456789")), 20100);
    const empty = pack(new Uint8Array(2560));
    assert.deepEqual([empty.length, empty[0], empty[1], crc16(empty)], [46, 44, 0, 27721]);
    assert.deepEqual([...pack(Uint8Array.of(27, 27, 65))], [5, 0, 27, 1, 27, 1, 65]);
});
