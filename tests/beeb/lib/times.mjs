// How long a disc takes, in emulated seconds, and how long the line alone would.

import { formatted, fromImage, readSide } from "./disc.mjs";
import { randomBytes, withCatalogue } from "./images.mjs";
import { pack, TRACK } from "./packet.mjs";

const ALL = 80;

function imageOf(kind) {
    const bytes = ALL * TRACK;
    return withCatalogue(kind === "random" ? randomBytes(bytes) : new Uint8Array(bytes));
}

function seconds(beeb, work) {
    const start = beeb.ms;
    work();
    return (beeb.ms - start) / 1000;
}

/** Receives and sends the first `tracks` of 80, "empty" or "random"; throws if a byte is not right. */
export function timeBothWays({ beeb, host }, kind, tracks) {
    const disc = imageOf(kind);
    const image = disc.subarray(0, tracks * TRACK);
    beeb.insert(0, fromImage(disc));
    let got;
    const received = seconds(beeb, () => (got = host.receiveSide(0, tracks)));
    const copy = formatted();
    beeb.insert(1, copy);
    const sent = seconds(beeb, () => host.sendSide(1, image));
    for (const bytes of [got, readSide(copy, 0, tracks).image])
        if (!Buffer.from(bytes).equals(Buffer.from(image))) throw new Error("the images differ");
    return { received, sent };
}

/** Seconds for the packets alone of so many tracks, with so many milliseconds for each byte. */
export function floorOf(kind, tracks, msPerByte) {
    const image = imageOf(kind);
    let bytes = 0;
    for (let track = 0; track < tracks; ++track) bytes += pack(image.subarray(track * TRACK, (track + 1) * TRACK)).length;
    return (bytes * msPerByte) / 1000;
}
