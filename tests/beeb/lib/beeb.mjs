// A BBC Micro that nobody sees: it is typed at, its screen is read, and its RS423 port is a line.

import { createRequire } from "node:module";
import path from "node:path";
import { fake6502 } from "jsbeeb/src/fake6502.js";
import { findModel } from "jsbeeb/src/models.js";
import { BBC, setNodeBasePath } from "jsbeeb/src/utils.js";
import { Rs423 } from "./rs423.mjs";

const CYCLES_PER_MS = 2000;
const KEY_MS = 40; // shorter than this, and the keyboard scan misses the key

const require = createRequire(import.meta.url);
setNodeBasePath(path.join(path.dirname(require.resolve("jsbeeb/src/models.js")), ".."));

// The emulator tells of every ROM and of every bump of a drive's head on the console.
console.log = () => {};

/** Keys that are no letter or digit: the name in the emulator's table, and whether SHIFT is held. */
const KEYS = {
    " ": ["SPACE"],
    "\r": ["RETURN"],
    "\x1b": ["ESCAPE"],
    ",": ["COMMA"],
    "*": ["COLON_STAR", true],
    '"': ["K2", true],
};

function keyFor(character) {
    if (KEYS[character]) return KEYS[character];
    if (/[0-9]/.test(character)) return [`K${character}`];
    if (/[A-Z]/.test(character)) return [character]; // CAPS LOCK is on after the micro starts
    throw new Error(`no key types ${JSON.stringify(character)}`);
}

export class Beeb {
    /** Starts a micro: "B-DFS1.2", "B-DFS0.9", "B1770" or "Master", and leaves it at its prompt. */
    static async start(model, video) {
        const cpu = fake6502(findModel(model), { video });
        await cpu.initialise();
        const beeb = new Beeb(cpu);
        beeb.runMs(3000);
        return beeb;
    }

    constructor(cpu) {
        this.cpu = cpu;
        /** Bytes that the micro has sent: called with each. A host puts itself here. */
        this.onByte = () => {};
        this.line = new Rs423(cpu, (byte) => this.onByte(byte));
        this.line.plugIn();
    }

    /** Emulated milliseconds since the micro was switched on. */
    get ms() {
        return this.cpu.scheduler.epoch / CYCLES_PER_MS;
    }

    runMs(ms) {
        const end = this.ms + ms;
        while (this.ms < end) this.cpu.execute(Math.max(1, Math.min(20000, (end - this.ms) * CYCLES_PER_MS) | 0));
    }

    /** Puts a floppy into physical drive 0 or 1; undefined takes it out. */
    insert(drive, disc) {
        this.cpu.fdc.drives[drive].setDisc(disc);
    }

    discIn(drive) {
        return this.cpu.fdc.drives[drive].disc;
    }

    /** Types at the keyboard as a person does, a key at a time. */
    type(text) {
        for (const character of text) {
            const [name, shift] = keyFor(character);
            if (shift) this.cpu.sysvia.keyDownRaw(BBC.SHIFT);
            this.cpu.sysvia.keyDownRaw(BBC[name]);
            this.runMs(KEY_MS);
            this.cpu.sysvia.keyUpRaw(BBC[name]);
            if (shift) this.cpu.sysvia.keyUpRaw(BBC.SHIFT);
            this.runMs(KEY_MS);
        }
    }

    pressBreak() {
        this.cpu.setReset(true);
        this.runMs(KEY_MS);
        this.cpu.setReset(false);
        this.runMs(2000);
    }

    /** The lines of text on the screen, which must be in mode 7. */
    screen() {
        const top = this.cpu.peekmem(0x350) | (this.cpu.peekmem(0x351) << 8);
        const lines = [];
        for (let row = 0; row < 25; ++row) {
            let line = "";
            for (let column = 0; column < 40; ++column) {
                let address = top + row * 40 + column;
                if (address >= 0x8000) address -= 0x400;
                const code = this.cpu.videoRead(address) & 0x7f;
                line += code < 32 || code === 127 ? " " : String.fromCharCode(code);
            }
            lines.push(line.trimEnd());
        }
        return lines;
    }
}
