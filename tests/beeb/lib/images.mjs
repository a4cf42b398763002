// Images to send about: bytes that look like nothing, and a catalogue where one is needed.

import { TRACK } from "./packet.mjs";

/** Bytes that are the same for the same seed. */
export function randomBytes(count, seed = 1) {
    const bytes = new Uint8Array(count);
    let state = seed;
    for (let i = 0; i < count; ++i) {
        state = (Math.imul(state, 1103515245) + 12345) & 0x7fffffff;
        bytes[i] = state >> 16;
    }
    return bytes;
}

/** Gives an image the number of sectors by which the size of a disc is told. */
export function withCatalogue(image, tracks = image.length / TRACK) {
    image[0x105] = 0;
    image[0x106] = (tracks * 10) >> 8;
    image[0x107] = (tracks * 10) & 0xff;
    return image;
}

/** `tracks` tracks, every other empty, so that a transfer of many is quick and still tells all. */
export function mixedImage(tracks, seed = 1) {
    const image = new Uint8Array(tracks * TRACK);
    for (let track = 0; track < tracks; track += 2) image.set(randomBytes(300, seed + track), track * TRACK + 1000);
    for (let track = 0; track < tracks; ++track) image[track * TRACK + 2000] = track + 1;
    return withCatalogue(image);
}

/** An image of 40 tracks with files on it: { name, address, bytes }, the first in the catalogue last. */
export function imageWithFiles(files) {
    const image = withCatalogue(new Uint8Array(40 * TRACK));
    image[0x105] = files.length * 8;
    let sector = 2;
    files.forEach(({ name, address = 0, bytes }, index) => {
        const entry = 8 + index * 8;
        image.set(Buffer.from(`${name.padEnd(7)}$`, "latin1"), entry);
        const words = [address, address, bytes.length];
        words.forEach((word, i) => image.set([word & 0xff, (word >> 8) & 0xff], 0x100 + entry + i * 2));
        image.set([(bytes.length >> 16) << 4, sector], 0x100 + entry + 6);
        image.set(bytes, sector * 256);
        sector += Math.ceil(bytes.length / 256);
    });
    return image;
}
