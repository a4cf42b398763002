// The micro's screen as a picture.

import { deflateSync } from "node:zlib";
import { findModel } from "jsbeeb/src/models.js";
import { crc32 } from "jsbeeb/src/utils.js";
import { Video } from "jsbeeb/src/video.js";

const WIDTH = 1024;
const HEIGHT = 625;

/** What a television would show; give its `video` to the micro. It makes the micro run slower. */
export class Screen {
    constructor(model) {
        const drawn = new Uint32Array(WIDTH * HEIGHT);
        this.shown = drawn.slice();
        this.area = { left: 0, top: 0, right: WIDTH, bottom: HEIGHT };
        this.video = new Video(findModel(model).isMaster, drawn, (left, top, right, bottom) => {
            this.shown.set(drawn);
            this.area = { left, top, right, bottom };
        });
    }

    /** The part within the borders, as the bytes of a PNG file. */
    png() {
        const { left, top, right, bottom } = this.area;
        const width = right - left;
        const height = bottom - top;
        const rows = Buffer.alloc((width * 3 + 1) * height);
        let at = 0;
        for (let y = top; y < bottom; ++y) {
            rows[at++] = 0; // the row is not filtered
            for (let x = left; x < right; ++x) {
                const colour = this.shown[y * WIDTH + x];
                rows[at++] = colour & 0xff;
                rows[at++] = (colour >> 8) & 0xff;
                rows[at++] = (colour >> 16) & 0xff;
            }
        }
        const header = Buffer.alloc(13);
        header.writeUInt32BE(width, 0);
        header.writeUInt32BE(height, 4);
        header.set([8, 2, 0, 0, 0], 8); // 8 bits each of red, green and blue
        const signature = Buffer.from("\x89PNG\r\n\x1a\n", "latin1");
        return Buffer.concat([signature, chunk("IHDR", header), chunk("IDAT", deflateSync(rows)), chunk("IEND")]);
    }
}

function chunk(name, data = Buffer.alloc(0)) {
    const body = Buffer.concat([Buffer.from(name), data]);
    const length = Buffer.alloc(4);
    length.writeUInt32BE(data.length);
    const sum = Buffer.alloc(4);
    sum.writeUInt32BE(crc32(body) >>> 0);
    return Buffer.concat([length, body, sum]);
}
