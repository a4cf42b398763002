// The micro's screen as a picture.

import { findModel } from "jsbeeb/src/models.js";
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

    /** The part within the borders, as the bytes of a PPM file. */
    ppm() {
        const { left, top, right, bottom } = this.area;
        const pixels = [];
        for (let y = top; y < bottom; ++y)
            for (const colour of this.shown.subarray(y * WIDTH + left, y * WIDTH + right))
                pixels.push(colour & 0xff, (colour >> 8) & 0xff, (colour >> 16) & 0xff);
        return Buffer.concat([Buffer.from(`P6 ${right - left} ${bottom - top} 255\n`), Buffer.from(pixels)]);
    }
}
