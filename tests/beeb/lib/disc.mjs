// Floppies for the emulated drives: made from image bytes or blank, damaged, and read back.

import { Disc, loadSsd } from "jsbeeb/src/disc.js";

const TRACK = 2560;
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
export function fromImage(image, doubleSided) {
    const disc = loadSsd(Disc.createBlank(), image, doubleSided);
    const sides = doubleSided ? 2 : 1;
    const tracks = Math.ceil(image.length / TRACK / sides);
    for (let side = 0; side < sides; ++side)
        for (let track = tracks; track < FULL; ++track) eraseTrack(disc, side, track);
    return disc;
}

/** A freshly formatted floppy with an empty catalogue on each side. */
export function formatted(tracks) {
    const image = new Uint8Array(2 * tracks * TRACK);
    for (const side of [0, 1]) image.set([(tracks * SECTORS) >> 8, (tracks * SECTORS) & 0xff], side * TRACK + 0x106);
    return fromImage(image, true);
}

export function eraseTrack(disc, side, track) {
    disc.getTrack(side === 1, track).pulses2Us.fill(0);
}

/** Spoils one byte within the data of a sector, so that its CRC no longer fits. */
export function damageSector(disc, side, track, sector) {
    const surface = disc.getTrack(side === 1, track);
    const data = surface.findSectors().find((each) => each.sectorNumber === sector).dataPosBitOffset;
    surface.pulses2Us[(data >> 5) + 100] ^= 0x11110000;
}

/**
 * The first `tracks` tracks of `sides` sides, by turns, as a controller would read them, and the
 * sectors that it could not read, as texts "side/track/sector".
 */
export function readBack(disc, sides, tracks) {
    const image = new Uint8Array(sides * tracks * TRACK);
    const unreadable = [];
    for (let index = 0; index < sides * tracks; ++index) {
        const [side, track] = [index % sides, Math.floor(index / sides)];
        const sectors = disc.getTrack(side === 1, track).findSectors();
        const good = sectors.filter((each) => each.trackNumber === track && !each.hasHeaderCrcError && !each.hasDataCrcError);
        for (let sector = 0; sector < SECTORS; ++sector) {
            const found = good.find((each) => each.sectorNumber === sector && each.sectorData?.length === SECTOR);
            if (found) image.set(found.sectorData, index * TRACK + sector * SECTOR);
            else unreadable.push(`${side}/${track}/${sector}`);
        }
    }
    return { image, unreadable };
}
