// What the tests of Tavrilo stand on: its typed form, and the emulated line.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { openSync, readFileSync, readSync, writeSync } from "node:fs";
import readline from "node:readline";
import { test } from "node:test";
import { fileURLToPath } from "node:url";
import { make } from "../../companion/make.mjs";
import { Beeb } from "./lib/beeb.mjs";

const companion = (name) => readFileSync(new URL(`../../companion/${name}`, import.meta.url), "latin1");

test("The typed form is made of the source beside it, and fits the micro and the road to it", () => {
    const typed = companion("tavrilo.bas");
    assert.equal(typed, make(companion("tavrilo.src")));
    for (const line of typed.trimEnd().split("\n")) assert.match(line, /^[ -~]{1,199}$/);
    assert.ok(typed.length * 10.2 < 97000, "more than 97 s of typing");
});

test("The line carries 1920 bytes a second, and loses what is not fetched in time", async () => {
    const beeb = await Beeb.start("B-DFS1.2");
    beeb.type("*FX 7,8\r*FX 2,2\r");
    beeb.line.send(new Uint8Array(192));
    beeb.runMs(98);
    assert.ok(beeb.line.count.received < 192);
    beeb.runMs(5);
    const { longestWait, ...counts } = beeb.line.count;
    assert.deepEqual(counts, { received: 192, overruns: 0, unheard: 0, garbled: 0 });
    assert.ok(longestWait > 50 && longestWait < 520, `${longestWait} us`);

    beeb.line.hostRate = 1200;
    beeb.line.send([65]);
    beeb.runMs(50);
    assert.equal(beeb.line.count.garbled, 1);

    beeb.line.hostRate = undefined;
    beeb.line.send([1, 2, 3]);
    beeb.cpu.scheduler.polltime(10000); // the line goes on while the micro does nothing
    assert.equal(beeb.line.count.overruns, 2);
});

test("Through a terminal, the micro answers in real time", async () => {
    const machine = fileURLToPath(new URL("machine.mjs", import.meta.url));
    const child = spawn(process.execPath, [machine, "--tavrilo", "--pty"], { stdio: ["pipe", "pipe", "inherit"] });
    const lines = readline.createInterface({ input: child.stdout })[Symbol.asyncIterator]();
    const terminal = openSync((await lines.next()).value.split(" ")[1], "r+");
    writeSync(terminal, "**FX 15\r");
    const reply = Buffer.alloc(21);
    for (let got = 0; got < reply.length; ) got += readSync(terminal, reply, got, reply.length - got, null);
    assert.equal(reply.toString(), "-----BBC-----PC-----\r");
    child.stdin.end("nonsense\nscreen\n");
    assert.match((await lines.next()).value, /^error /);
    assert.match((await lines.next()).value, /\*\*FX 15/);
});
