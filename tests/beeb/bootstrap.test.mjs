// From a micro that has just been switched on to a running Tavrilo, as a user does it.

import assert from "node:assert/strict";
import { test } from "node:test";
import { Beeb } from "./lib/beeb.mjs";
import { formatted } from "./lib/disc.mjs";
import { Host } from "./lib/host.mjs";
import { bootstrap, prepare } from "./lib/tavrilo.mjs";

for (const model of ["B-DFS1.2", "B-DFS0.9", "B1770", "Master"]) {
    test(`Typed into a ${model}, Tavrilo can be saved and run`, async () => {
        const beeb = await Beeb.start(model);
        const host = new Host(beeb);
        beeb.insert(0, formatted(40));
        prepare(beeb);
        const seconds = bootstrap(beeb, host);
        assert.ok(seconds < 100, `took ${seconds} s`);
        assert.equal(beeb.line.count.overruns, 0);

        beeb.type('SAVE "TAVRILO"\r');
        beeb.runMs(4000);
        beeb.type("RUN\r");
        assert.ok(beeb.runUntil(() => beeb.screenText().includes("19200 baud"), 8000), beeb.screenText());
        beeb.runMs(500);
        assert.match(host.console("CAT").output, /TAVRILO/);

        beeb.type("\x1b");
        beeb.runMs(500);
        assert.match(beeb.screenText(), /Ended\n>/);
    });
}
