#!/usr/bin/env node
// An emulated micro for other programs, steered by lines of text.
//
//   node machine.mjs [--model B-DFS1.2|B-DFS0.9|B1770|Master] [--tavrilo] [--kept IMAGE]
//                   [--pictures] [--pty]
//
// Its first line says that it is ready: "ready", and behind it, with --pty, the path of the
// pseudo-terminal that is the other end of its cable. With a terminal, emulated time keeps to real
// time. Without, time stands still except in the commands that take some, and the cable's other end
// is the command "run": so a test can hold its own clock in step.
// --tavrilo types Tavrilo in and runs it first; with --kept it is saved to that image, or loaded
// from there if it has been before. --pictures makes the command "picture" work, and the micro
// slower.
//
// Each command is a line, and is answered by one: "ok", with what was asked for behind it as
// JSON, or "error" and why.
//
//   run MS [HEX]          sends the bytes and lets MS milliseconds pass; gives what came, as HEX
//   rate BAUD             the other end's bit rate from now on
//   type TEXT             types at the keyboard; TEXT is a JSON string, "\r" being RETURN
//   break                 presses BREAK
//   screen                the 25 lines of the screen
//   insert DRIVE WHAT     drive 0 or 1: a file .ssd or .dsd, "formatted40", "formatted80",
//                         "unformatted" or "none"
//   protect DRIVE yes|no  the floppy's write protection
//   damage DRIVE SIDE TRACK SECTOR   spoils a sector; without SECTOR, erases the track
//   dump DRIVE FILE [TRACKS]         writes .ssd (one side) or .dsd; gives the unreadable sectors
//   counters              bytes received, overruns, ...
//   picture FILE          the screen as a PPM
//   quit

import { spawn } from "node:child_process";
import { readFileSync, writeFileSync } from "node:fs";
import readline from "node:readline";
import { fileURLToPath } from "node:url";
import { parseArgs } from "node:util";
import { Beeb } from "./lib/beeb.mjs";
import { damageSector, eraseTrack, formatted, fromImage, readBack, unformatted } from "./lib/disc.mjs";
import { Screen } from "./lib/picture.mjs";
import { startTavrilo } from "./lib/tavrilo.mjs";

const TICK_MS = 2;
/** Real milliseconds that the machine may catch up at once; what it is later than that is lost. */
const CATCH_UP_MS = 20;

const { values: options } = parseArgs({
    options: {
        model: { type: "string", default: "B-DFS1.2" },
        tavrilo: { type: "boolean" },
        kept: { type: "string" },
        pictures: { type: "boolean" },
        pty: { type: "boolean" },
    },
});

const say = (line) => process.stdout.write(`${line}\n`);
const screen = options.pictures ? new Screen(options.model) : undefined;
const beeb = await Beeb.start(options.model, screen?.video);
if (options.tavrilo) startTavrilo(beeb, options.kept);

/** A floppy by the word for it. */
function floppy(what) {
    if (what === "none") return undefined;
    if (what === "unformatted") return unformatted();
    const tracks = /^formatted(40|80)$/.exec(what);
    if (tracks) return formatted(Number(tracks[1]));
    return fromImage(readFileSync(what), /\.dsd$/i.test(what));
}

const commands = {
    run(ms, hex = "") {
        const came = [];
        beeb.onByte = (byte) => came.push(byte);
        beeb.line.send(Buffer.from(hex, "hex"));
        beeb.runMs(Number(ms));
        return Buffer.from(came).toString("hex");
    },
    rate: (baud) => void (beeb.line.hostRate = Number(baud) || undefined),
    type: (...text) => beeb.type(JSON.parse(text.join(" "))),
    break: () => beeb.pressBreak(),
    screen: () => beeb.screen(),
    insert: (drive, what) => beeb.insert(Number(drive), floppy(what)),
    protect: (drive, yes) => void (beeb.discIn(drive).isWriteable = yes !== "yes"),
    damage(drive, side, track, sector) {
        if (sector === undefined) eraseTrack(beeb.discIn(drive), Number(side), Number(track));
        else damageSector(beeb.discIn(drive), Number(side), Number(track), Number(sector));
    },
    dump(drive, file, tracks = "80") {
        const read = readBack(beeb.discIn(drive), /\.dsd$/i.test(file) ? 2 : 1, Number(tracks));
        writeFileSync(file, read.image);
        return read.unreadable;
    },
    counters: () => beeb.line.count,
    picture(file) {
        if (!screen) throw new Error("start me with --pictures");
        beeb.runMs(80);
        writeFileSync(file, screen.ppm());
    },
    quit: () => process.exit(0),
};

function obey(line) {
    const [name, ...words] = line.trim().split(" ");
    try {
        if (!Object.hasOwn(commands, name)) throw new Error(`no command is called ${name}`);
        const result = commands[name](...words);
        say(result === undefined ? "ok" : `ok ${JSON.stringify(result)}`);
    } catch (error) {
        say(`error ${error.message}`);
    }
}

/** Keeps emulated time to real time, so that the other end sees the pauses there are. */
function keepTime() {
    let before = performance.now();
    setInterval(() => {
        const now = performance.now();
        beeb.runMs(Math.min(now - before, CATCH_UP_MS));
        before = now;
    }, TICK_MS);
}

function tieToTerminal() {
    const helper = fileURLToPath(new URL("lib/pty_line.py", import.meta.url));
    const child = spawn("python3", [helper], { stdio: ["pipe", "pipe", "inherit"] });
    child.on("error", (error) => say(`error ${error.message}`));
    child.on("exit", () => process.exit(1));
    beeb.onByte = (byte) => child.stdin.write(Uint8Array.of(byte));
    delete commands.run;
    const tellings = {
        path: (path) => say(`ready ${path}`),
        rate: commands.rate,
        bytes: (hex) => beeb.line.send(Buffer.from(hex, "hex")),
    };
    readline.createInterface({ input: child.stdout }).on("line", (line) => {
        const [what, value] = line.split(" ");
        tellings[what](value);
    });
    keepTime();
}

if (options.pty) tieToTerminal();
else say("ready");

const lines = readline.createInterface({ input: process.stdin });
lines.on("line", obey);
lines.on("close", () => process.exit(0));
