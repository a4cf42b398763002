#!/usr/bin/env node
// Makes tavrilo.bas, the text that is typed into the micro, of the commented tavrilo.src.
//
//   node make.mjs           writes tavrilo.bas
//
// Remarks ("REM: ...") and the comments of the machine code ("\ ...") are dropped, spaces that
// BASIC does not need are squeezed out, the statements of the machine code are put together on
// long lines, and all is numbered. The names "@..." become line numbers.

import { readFileSync, writeFileSync } from "node:fs";
import { fileURLToPath, pathToFileURL } from "node:url";

/** Longest line, its number included. The micro silently cuts a typed line at 238 characters. */
const LONGEST = 190;
const here = (name) => fileURLToPath(new URL(name, import.meta.url));

/** Whether BASIC would read something else without the space between these two texts. */
function needsSpace(before, after) {
    if (!/^[A-Za-z0-9_]/.test(after)) return false;
    return /[a-z0-9_]$|&[0-9A-F]+$/.test(before) || /^\.?\w+$/.test(before);
}

function squeeze(code) {
    return code
        .split(/("[^"]*")/)
        .map((part) => (part.startsWith('"') ? part : squeezeCode(part)))
        .join("");
}

function squeezeCode(code) {
    let out = "";
    for (const word of code.split(/ +/).map((each, i) => [each, i])) {
        const [text, index] = word;
        const before = /[^ :=<>+*/(),;-]*$/.exec(out)[0];
        out += index > 0 && needsSpace(before, text) ? ` ${text}` : text;
    }
    return out;
}

/** The lines that will have numbers, still with names for them, and the line each name stands for. */
function lines(source) {
    const made = [];
    const named = new Map();
    let assembling = false;
    let fresh = true;
    for (const raw of source.split("\n")) {
        if (/^\s*$|^REM:/.test(raw) || (assembling && /^\\/.test(raw))) continue;
        if (/^@\w+$/.test(raw)) {
            named.set(raw, made.length);
            continue;
        }
        const code = /^REM /.test(raw) ? raw : squeeze(assembling ? raw.replace(/\s*\\.*$/, "") : raw);
        if (raw === "]") assembling = false;
        const last = made.at(-1);
        const joined = `${last}:${code}`;
        if (assembling && !fresh && joined.length < LONGEST - 5) made[made.length - 1] = joined;
        else made.push(code);
        fresh = !assembling;
        if (raw.startsWith("[OPT")) assembling = true;
    }
    return { made, named };
}

export function make(source) {
    const { made, named } = lines(source);
    // The first line, NEW, is typed without a number, so as to be done at once.
    const number = (index) => index * 10;
    return made
        .map((code, index) => {
            const text = code.replace(/@\w+/g, (name) => number(named.get(name)));
            return (index === 0 ? text : `${number(index)}${text}`) + "\n";
        })
        .join("");
}

if (import.meta.url === pathToFileURL(process.argv[1]).href) {
    const text = make(readFileSync(here("tavrilo.src"), "latin1"));
    writeFileSync(here("tavrilo.bas"), text, "latin1");
}
