// The other end of the cable: asks and answers as the program does, with its waits and its pace,
// but in emulated time, so that a test of minutes runs in seconds and always the same way.

import { crc16, pack, readPacket, TRACK } from "./packet.mjs";

export const SUCCESS = "-----BBC-----PC-----";
export const ERROR_LINE = "-----BBCerror1-----PC-----";
const CR = "\r";
const ABORT = [27, 2];

/** Milliseconds from one byte of a packet to the next: a wait of one and a little besides. */
const PACE_MS = 1.06;

const bytesOf = (text) => Buffer.from(text, "latin1");
const isSuccess = (reply) => new RegExp(`^${SUCCESS}\n?\r$`, "i").test(reply);
const isError = (reply) => new RegExp(`^-?${ERROR_LINE.slice(1)}\n?\r$`, "i").test(reply);

/** Thrown out of a transfer by a test that presses Cancel. */
export class Cancelled extends Error {}

export class Host {
    constructor(beeb) {
        this.beeb = beeb;
        this.ring = [];
        /** What went wrong and was tried again, a line for each. */
        this.retries = [];
        /** Faults of the cable: each gets the bytes and gives those that arrive. */
        this.toMicro = (bytes) => bytes;
        this.fromMicro = (byte) => [byte];
        /** Called before each step that a Cancel can end; a test throws `Cancelled` from it. */
        this.mayCancel = () => {};
        /** How many bytes of a packet go out at once; an adapter may keep some back. */
        this.atOnce = 1;
        /** The most that a transfer asks again before the test gives up. */
        this.patience = 10;
        beeb.onByte = (byte) => this.ring.push(...this.fromMicro(byte));
    }

    // The bottom of the conversation.

    getChar(timeout) {
        const came = this.beeb.runUntil(() => this.ring.length > 0, timeout);
        return came ? this.ring.shift() : -1;
    }

    sendRaw(bytes) {
        this.beeb.line.send(this.toMicro(Uint8Array.from(bytes)));
    }

    send(text) {
        this.sendRaw(bytesOf(text));
    }

    /** A reply up to a pause; "" if none came. */
    response(max = 65535) {
        const reply = [];
        for (let byte = this.getChar(10000); byte >= 0; byte = this.getChar(200)) {
            reply.push(byte);
            if (reply.length > 1 && reply.length >= max) break;
        }
        return Buffer.from(reply).toString("latin1");
    }

    drain() {
        while (this.getChar(2000) >= 0);
    }

    /** Types lines at 1200 baud with the pace that the prompt of the micro can follow. */
    typeDown(text) {
        for (const byte of bytesOf(text)) {
            this.sendRaw([byte]);
            this.beeb.runMs(10.2);
        }
    }

    // Commands.

    star(line) {
        this.send("*");
        this.send(line + CR);
        return this.response();
    }

    select(drive) {
        const disc = this.star("*DISC");
        if (!isSuccess(disc)) throw new Error(`*DISC gave ${JSON.stringify(disc)}`);
        this.send(`*DRIVE ${drive}${CR}`);
        const reply = this.response();
        if (!isSuccess(reply)) throw new Error(`*DRIVE gave ${JSON.stringify(reply)}`);
    }

    size() {
        this.send(`N${CR}`);
        return this.response();
    }

    /** A star command of the console: { output } or { error }. */
    console(line) {
        this.send("*");
        this.send(`*${line}${CR}`);
        let piece = this.response(1024);
        if (isError(piece)) {
            this.send(ERROR_LINE);
            return { error: this.response(1024) };
        }
        let output = "";
        while (piece.length > 0) {
            const end = piece.indexOf(SUCCESS);
            if (end >= 0) return { output: output + piece.slice(0, end) };
            output += piece;
            piece = this.response(1024);
        }
        return { unended: output };
    }

    // Tracks.

    /** Asks for a track once: { track } or { failure }. */
    askTrack(drive, track) {
        this.send(`G${drive}${CR}${track}${CR}`);
        const packet = readPacket((timeout) => this.getChar(timeout));
        if (packet.failure) return this.#drained(packet.failure);
        const reply = this.response();
        if (reply.length < 3) return this.#drained(`CRC line ${JSON.stringify(reply)}`);
        return Number.parseInt(reply, 10) === packet.crc ? packet : { failure: "CRC differs" };
    }

    /** Announces a track and sends it once: {} or { failure }. */
    putTrack(drive, track, bytes) {
        this.send(`g${drive}${CR}${track}${CR}`);
        const turn = this.response();
        if (!isSuccess(turn)) return this.#aborted(`no turn: ${JSON.stringify(turn)}`);
        const packet = pack(bytes);
        for (let at = 0; at < packet.length; at += this.atOnce) {
            this.mayCancel();
            this.sendRaw(packet.subarray(at, at + this.atOnce));
            this.beeb.runMs(PACE_MS * this.atOnce);
        }
        const reply = this.response();
        if (reply.length < 3) return this.#aborted(`CRC line ${JSON.stringify(reply)}`);
        return Number.parseInt(reply, 10) === crc16(packet) ? {} : { failure: `CRC differs: ${reply.trim()}` };
    }

    abort() {
        this.sendRaw(ABORT);
        this.drain();
    }

    #drained(failure) {
        this.drain();
        return { failure };
    }

    #aborted(failure) {
        this.abort();
        return { failure };
    }

    /** Tries until it works, as the program does, but not for ever. */
    insist(attempt, what = "") {
        for (let tries = 0; tries < this.patience; ++tries) {
            this.mayCancel();
            const result = attempt();
            if (!result.failure) return result;
            this.retries.push(`${what}: ${result.failure}`);
        }
        throw new Error(`gave up ${what}; last: ${this.retries.at(-1)}`);
    }

    // Whole discs.

    /** One side, all of it or the first `tracks` tracks. */
    receiveSide(drive, tracks) {
        this.select(drive);
        const size = Number.parseInt(this.size(), 10);
        if (size !== 102400 && size !== 204800) throw new Error("Unknown Disc Size");
        return this.#receive(tracks ?? size / TRACK, (index) => [drive, index]);
    }

    receiveDouble(drive) {
        this.select(drive);
        return this.#receive(160, (index) => [drive + 2 * (index & 1), index >> 1]);
    }

    #receive(rounds, place) {
        const image = new Uint8Array(rounds * TRACK);
        for (let index = 0; index < rounds; ++index) {
            const [drive, track] = place(index);
            const { track: bytes } = this.insist(() => this.askTrack(drive, track), `track ${track}`);
            image.set(bytes, index * TRACK);
        }
        return image;
    }

    sendSide(drive, image) {
        this.#send(drive, image, (index) => [drive, index]);
    }

    sendDouble(drive, image) {
        this.#send(drive, image, (index) => [drive + 2 * (index & 1), index >> 1]);
    }

    #send(drive, image, place) {
        this.select(drive);
        try {
            for (let index = 0; index * TRACK < image.length; ++index) {
                const [wireDrive, track] = place(index);
                const bytes = new Uint8Array(TRACK);
                bytes.set(image.subarray(index * TRACK, (index + 1) * TRACK));
                this.insist(() => this.putTrack(wireDrive, track, bytes), `track ${track}`);
            }
        } catch (error) {
            if (error instanceof Cancelled) this.abort();
            throw error;
        }
    }
}
