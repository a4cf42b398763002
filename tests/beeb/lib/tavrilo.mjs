// Tavrilo on an emulated micro: typed in as a user does it, or loaded from a floppy kept of that.

import { readFileSync } from "node:fs";
import { Beeb } from "./beeb.mjs";
import { formatted, fromImage, readSide } from "./disc.mjs";
import { Host } from "./host.mjs";

export const PROGRAM = new URL("../../../companion/tavrilo.bas", import.meta.url);

/** What the host types behind the program. */
const CLOSING = [
    "",
    "REM ******************************",
    "REM File Transfer Complete",
    'REM Type SAVE "TAVRILO" to save file',
    "REM Then RUN to start program",
    "REM ******************************",
    "*FX 2,0",
];

/** What a person types at the micro before. */
export function prepare(beeb) {
    beeb.pressBreak();
    for (const line of ["*BASIC", "*FX 7, 4", "*FX 8, 4", "*FX 2, 1"]) beeb.type(`${line}\r`);
}

/** Types the program down the line; gives the emulated seconds that took. */
export function bootstrap(beeb, host) {
    const lines = readFileSync(PROGRAM, "latin1").trimEnd().split("\n");
    const start = beeb.ms;
    beeb.line.hostRate = 1200;
    for (const line of [...lines, ...CLOSING]) host.typeDown(`${line}\r`);
    beeb.line.hostRate = 19200;
    return (beeb.ms - start) / 1000;
}

const saved = new Map();

/** A floppy for this model with Tavrilo saved on it. */
async function savedFloppy(model) {
    if (!saved.has(model)) {
        const beeb = await Beeb.start(model);
        const disc = formatted();
        beeb.insert(0, disc);
        prepare(beeb);
        bootstrap(beeb, new Host(beeb));
        beeb.type('SAVE "TAVRILO"\r');
        beeb.runMs(4000);
        saved.set(model, readSide(disc, 0).image);
    }
    return fromImage(saved.get(model));
}

/** A micro on which Tavrilo waits, its drives empty, and the host at the other end of its cable. */
export async function running(model, hardware = {}) {
    const floppy = await savedFloppy(model);
    const beeb = await Beeb.start(model, hardware);
    const host = new Host(beeb);
    beeb.line.hostRate = 19200;
    beeb.insert(0, floppy);
    beeb.type('CHAIN "TAVRILO"\r');
    if (!beeb.runUntil(() => beeb.screenText().includes("19200 baud"), 10000))
        throw new Error(`Tavrilo does not start:\n${beeb.screenText()}`);
    beeb.insert(0, undefined);
    beeb.runMs(500);
    return { beeb, host };
}
