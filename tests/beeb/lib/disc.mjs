// Floppies for the emulated drives: made from image bytes or blank, damaged, and read back.

import { Disc, IbmDiscFormat, loadSsd } from "jsbeeb/src/disc.js";

export const TRACK = 2560;
const SECTOR = 256;
const SECTORS = 10;
const FULL = 80;

/** A floppy that no controller has ever formatted. */
export function unformatted() {
    return Disc.createBlank();
}

/**
 * A floppy formatted for as many tracks as the image has, its second side too if `doubleSided`;
 * the image is then interleaved by tracks. What lies behind is left unformatted.
 */
export function fromImage(image, { doubleSided = false } = {}) {
    const disc = loadSsd(Disc.createBlank(), image, doubleSided);
    const sides = doubleSided ? 2 : 1;
    const tracks = Math.ceil(image.length / TRACK / sides);
    for (let side = 0; side < sides; ++side)
        for (let track = tracks; track < FULL; ++track) eraseTrack(disc, side, track);
    return disc;
}

/** A freshly formatted floppy with an empty catalogue on each side. */
export function formatted(tracks = FULL, { doubleSided = false } = {}) {
    const sides = doubleSided ? 2 : 1;
    const image = new Uint8Array(tracks * TRACK * sides);
    for (let side = 0; side < sides; ++side) {
        image[side * TRACK + 0x106] = (tracks * SECTORS) >> 8;
        image[side * TRACK + 0x107] = (tracks * SECTORS) & 0xff;
    }
    return fromImage(image, { doubleSided });
}

export function eraseTrack(disc, side, track) {
    disc.getTrack(side === 1, track).pulses2Us.fill(0);
}

/** Spoils one byte within the data of a sector, so that its CRC no longer fits. */
export function damageSector(disc, side, track, sector) {
    const { pulses2Us } = disc.getTrack(side === 1, track);
    const data = findSectors(pulses2Us).find((found) => found.sector === sector).at;
    pulses2Us[data + 100] ^= 0x11110000;
}

/**
 * The bytes of the first `tracks` tracks of a side, as a controller would read them, and the
 * sectors that it could not read, as texts "track/sector".
 */
export function readSide(disc, side, tracks = FULL) {
    const image = new Uint8Array(tracks * TRACK);
    const unreadable = [];
    for (let track = 0; track < tracks; ++track) {
        const sectors = findSectors(disc.getTrack(side === 1, track).pulses2Us);
        for (let sector = 0; sector < SECTORS; ++sector) {
            const found = sectors.find((each) => each.sector === sector && each.track === track && each.good);
            if (found) image.set(found.bytes, track * TRACK + sector * SECTOR);
            else unreadable.push(`${track}/${sector}`);
        }
    }
    return { image, unreadable };
}

/** What is on both sides of a floppy, by turns, as a double-sided image has it. */
export function readBoth(disc, tracks = FULL) {
    const sides = [readSide(disc, 0, tracks), readSide(disc, 1, tracks)];
    const image = new Uint8Array(2 * tracks * TRACK);
    for (let index = 0; index < 2 * tracks; ++index) {
        const at = (index >> 1) * TRACK;
        image.set(sides[index & 1].image.subarray(at, at + TRACK), index * TRACK);
    }
    return { image, unreadable: [...sides[0].unreadable, ...sides[1].unreadable] };
}

// A marker is the only byte on the surface that lacks clock pulses; it is followed by plain ones.

const ADDRESS_MARK = IbmDiscFormat.fmTo2usPulses(0xc7, 0xfe) >>> 0;
const DATA_MARK = IbmDiscFormat.fmTo2usPulses(0xc7, 0xfb) >>> 0;

function dataByte(pulses) {
    let byte = 0;
    for (let bit = 28; bit >= 0; bit -= 4) byte = (byte << 1) | ((pulses >>> bit) & 1);
    return byte;
}

/** `count` bytes from pulse word `word`, moved `shift` bits to the left. */
function bytesAt(pulses, word, shift, count) {
    const bytes = new Uint8Array(count);
    for (let i = 0; i < count; ++i) bytes[i] = dataByte(shifted(pulses, word + i, shift));
    return bytes;
}

function shifted(pulses, word, shift) {
    return shift === 0 ? pulses[word] : ((pulses[word] << shift) | (pulses[word + 1] >>> (32 - shift))) >>> 0;
}

function crcGood(mark, bytes) {
    return IbmDiscFormat.crcAddBytes(IbmDiscFormat.crcAddByte(0xffff, mark), bytes) === 0;
}

function findSectors(pulses) {
    const sectors = [];
    let id = null;
    for (let word = 0; word < IbmDiscFormat.bytesPerTrack; ++word) {
        for (let shift = 0; shift < 32; ++shift) {
            const here = shifted(pulses, word, shift);
            if (here === ADDRESS_MARK) {
                const bytes = bytesAt(pulses, word + 1, shift, 6);
                id = crcGood(0xfe, bytes) ? { track: bytes[0], sector: bytes[2] } : null;
            } else if (here === DATA_MARK && id) {
                const bytes = bytesAt(pulses, word + 1, shift, SECTOR + 2);
                sectors.push({ ...id, at: word + 1, bytes: bytes.slice(0, SECTOR), good: crcGood(0xfb, bytes) });
                id = null;
            }
        }
    }
    return sectors;
}
