// The emulated micro as other programs start and steer it.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { openSync, readSync, writeSync } from "node:fs";
import readline from "node:readline";
import { fileURLToPath } from "node:url";
import { test } from "node:test";
import { Beeb } from "./lib/beeb.mjs";

const machine = fileURLToPath(new URL("machine.mjs", import.meta.url));

/** Starts the machine; gives a function that sends a command and waits for its answer. */
async function start(...options) {
    const child = spawn(process.execPath, [machine, ...options], { stdio: ["pipe", "pipe", "inherit"] });
    const lines = readline.createInterface({ input: child.stdout })[Symbol.asyncIterator]();
    const ready = (await lines.next()).value;
    const ask = async (command) => {
        child.stdin.write(`${command}\n`);
        return (await lines.next()).value;
    };
    return { ready, ask, end: () => child.stdin.end("quit\n") };
}

test("In step, time passes only as it is asked to", async () => {
    const { ready, ask, end } = await start("--tavrilo");
    assert.equal(ready, "ready");
    await ask("insert 0 formatted40");
    const success = Buffer.from("-----BBC-----PC-----\r").toString("hex");
    assert.equal(await ask(`run 300 ${Buffer.from("**DISC\r").toString("hex")}`), `ok "${success}"`);
    assert.equal(await ask(`run 1 ${Buffer.from("**FX 15\r").toString("hex")}`), 'ok ""');
    assert.equal(await ask("run 300"), `ok "${success}"`);
    assert.equal(await ask("damage 0 0 3 5"), "ok");
    assert.match(await ask("nonsense"), /^error /);
    assert.match(await ask("counters"), /"overruns":0/);
    end();
});

test("Through a terminal, the micro answers in real time", { skip: !process.env.PTY_LINE }, async () => {
    const { ready, ask, end } = await start("--tavrilo", "--pty", process.env.PTY_LINE);
    const terminal = openSync(ready.split(" ")[1], "r+");
    writeSync(terminal, "**FX 15\r");
    const reply = Buffer.alloc(21);
    for (let got = 0; got < reply.length; ) got += readSync(terminal, reply, got, reply.length - got, null);
    assert.equal(reply.toString(), "-----BBC-----PC-----\r");
    assert.match(await ask("screen"), /\*\*FX 15/);
    end();
});

test("The line carries 1920 bytes a second, and loses what is not fetched in time", async () => {
    const beeb = await Beeb.start();
    beeb.type("*FX 7,8\r*FX 2,2\r");
    const start = beeb.ms;
    beeb.line.send(new Uint8Array(192));
    assert.ok(beeb.runUntil(() => beeb.line.underway === 0, 1000));
    assert.ok(Math.abs(beeb.ms - start - 100) < 3, `${beeb.ms - start} ms`);
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
