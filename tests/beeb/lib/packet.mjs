// The packet that a track travels in, as a host makes and reads it.

const ESC = 27;
export const TRACK = 2560;
/** The longest payload that a host takes from the micro. */
export const LONGEST_TO_HOST = 2815;

export function crc16(bytes) {
    let crc = 0;
    for (const byte of bytes) {
        crc ^= byte << 8;
        for (let bit = 0; bit < 8; ++bit) crc = crc & 0x8000 ? ((crc << 1) ^ 175) & 0xffff : crc << 1;
    }
    return crc;
}

function runLength(track, at) {
    let end = at + 1;
    while (end < track.length && track[end] === track[at] && end - at < 255) ++end;
    return end - at;
}

/** The packet of a track, its two length bytes included. */
export function pack(track) {
    const payload = [];
    for (let at = 0; at < track.length; ) {
        const run = runLength(track, at);
        const value = track[at];
        if (run >= 4) payload.push(ESC, 0, run, value);
        else for (let i = 0; i < run; ++i) payload.push(...(value === ESC ? [ESC, 1] : [value]));
        at += run;
    }
    return Uint8Array.from([payload.length & 0xff, payload.length >> 8, ...payload]);
}

/**
 * Reads a packet byte by byte with `next(timeoutMs)`, which gives -1 when nothing came in time.
 * Gives { track, crc }, or { failure } with what was wrong.
 */
export function readPacket(next) {
    const wire = [];
    const get = (timeout) => {
        const byte = next(timeout);
        if (byte < 0) throw new Error(`timeout after ${wire.length} bytes`);
        wire.push(byte);
        return byte;
    };
    try {
        const low = get(5000);
        const length = low + 256 * get(1000);
        if (length > LONGEST_TO_HOST) throw new Error(`length ${length}`);
        const track = [];
        while (wire.length < length + 2 && track.length <= TRACK) readItem(() => get(2000), track);
        if (track.length !== TRACK) throw new Error(`expands to ${track.length}`);
        return { track: Uint8Array.from(track), crc: crc16(wire), length };
    } catch (error) {
        return { failure: error.message };
    }
}

function readItem(get, track) {
    const byte = get();
    if (byte !== ESC) return track.push(byte);
    const kind = get();
    if (kind === 1) return track.push(ESC);
    if (kind !== 0) throw new Error(`ESC ${kind}`);
    const count = get();
    const value = get();
    for (let i = 0; i < count; ++i) track.push(value);
}
