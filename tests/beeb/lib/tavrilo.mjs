// Tavrilo on an emulated micro: typed in as a user does it, or loaded from a floppy kept of that.

import { existsSync, readFileSync, writeFileSync } from "node:fs";
import { formatted, fromImage, readBack } from "./disc.mjs";

const PROGRAM = new URL("../../../companion/tavrilo.bas", import.meta.url);

/** Types the program down the line, at the pace that the micro's prompt can follow. */
function typeIn(beeb) {
    beeb.pressBreak();
    beeb.type("*BASIC\r*FX 7,4\r*FX 8,4\r*FX 2,1\r");
    beeb.line.hostRate = 1200;
    const lines = readFileSync(PROGRAM, "latin1").replaceAll("\n", "\r");
    for (const byte of Buffer.from(`${lines}*FX 2,0\r`)) {
        beeb.line.send([byte]);
        beeb.runMs(10.2);
    }
}

/**
 * Makes Tavrilo wait on a micro, whose drives are empty then. `kept` names an image to load it from;
 * one that is not there is made. Undefined: the program is typed in and not saved.
 */
export function startTavrilo(beeb, kept) {
    const loads = kept !== undefined && existsSync(kept);
    beeb.insert(0, loads ? fromImage(readFileSync(kept), false) : formatted(80));
    if (!loads) typeIn(beeb);
    if (!loads && kept !== undefined) {
        beeb.type('SAVE "TAVRILO"\r');
        beeb.runMs(4000);
        writeFileSync(kept, readBack(beeb.discIn(0), 1, 80).image);
    }
    beeb.line.hostRate = 19200;
    beeb.type(loads ? 'CHAIN "TAVRILO"\r' : "RUN\r");
    for (let waited = 0; !beeb.screen().join("\n").includes("19200 baud"); waited += 100) {
        if (waited > 10000) throw new Error(`Tavrilo does not start:\n${beeb.screen().join("\n")}`);
        beeb.runMs(100);
    }
    beeb.insert(0, undefined);
    beeb.runMs(500);
}
