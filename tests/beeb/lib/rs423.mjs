// The RS423 port of the emulated micro: its 6850 and its serial chip, with the line behind them.
//
// They stand in for the emulator's own, which run at wrong rates, send without regard to the
// line, and raise no interrupt when a byte has gone. Times here are cycles of the 2 MHz clock.

const CYCLES_PER_SECOND = 2_000_000;

/** Rates that the serial chip makes of the three bits in its register. */
const RATES = [19200, 1200, 4800, 150, 9600, 300, 2400, 75];

const STATUS = { full: 0x01, empty: 0x02, framing: 0x10, overrun: 0x20, irq: 0x80 };
const INTERRUPT = 0x04;

/** What the cable and the chip made of the bytes, for a test to look at. */
class Counters {
    received = 0; // bytes that the micro was given
    overruns = 0; // bytes lost because the one before had not been fetched
    unheard = 0; // bytes that came while the port was not selected
    garbled = 0; // bytes sent at another rate than the one received at
    longestWait = 0; // microseconds that a byte has lain in the chip; the next comes after 520
}

export class Rs423 {
    /**
     * @param cpu the emulated processor
     * @param onByte called with each byte that the micro has sent
     */
    constructor(cpu, onByte) {
        this.cpu = cpu;
        this.scheduler = cpu.scheduler;
        this.onByte = onByte;
        this.count = new Counters();
        /** Rate at which the other end sends and listens; undefined follows the micro. */
        this.hostRate = undefined;

        this.pending = []; // bytes on their way to the micro
        this.lineFree = 0; // when the last of them will have arrived
        this.arrival = this.scheduler.newTask(() => this.#arrive());
        this.sent = this.scheduler.newTask(() => this.#whole());
        this.ula = { write: (_, value) => this.#select(value), read: () => 0, reset: () => this.#select(0) };
        this.reset();
        this.#select(0);
    }

    /** Puts this port in the place of the emulator's. */
    plugIn() {
        this.cpu.acia = this;
        this.cpu.serial = this.ula;
    }

    /** Bytes from the other end; they take the line one behind the other. */
    send(bytes) {
        for (const byte of bytes) {
            const cycles = this.#cyclesPerByte(this.hostRate ?? this.receiveRate);
            this.lineFree = Math.max(this.lineFree, this.scheduler.epoch) + cycles;
            this.pending.push({ byte, at: this.lineFree });
        }
        this.#expectNext();
    }

    // The micro's side: the emulator calls these by these names.

    reset() {
        this.control = this.control ?? 0x56;
        this.full = false;
        this.overrun = false;
        this.overrunWaits = false;
        this.framing = false;
        this.data = 0;
        this.shifting = -1;
        this.waiting = -1;
        this.sent.cancel();
        this.#updateIrq();
    }

    read(address) {
        return address & 1 ? this.#readData() : this.#status();
    }

    write(address, value) {
        if (address & 1) this.#transmit(value);
        else if ((value & 3) === 3) this.reset();
        else this.control = value;
        this.#updateIrq();
    }

    setTape() {}

    #status() {
        let status = 0;
        if (this.full) status |= STATUS.full;
        if (this.waiting < 0) status |= STATUS.empty;
        if (this.framing) status |= STATUS.framing;
        if (this.overrun) status |= STATUS.overrun;
        if (this.#wantsInterrupt()) status |= STATUS.irq;
        return status;
    }

    #readData() {
        if (this.full) this.count.longestWait = Math.max(this.count.longestWait, this.#microsecondsWaited());
        // The chip tells of an overrun only once the byte before it has been fetched.
        this.overrun = this.overrunWaits;
        this.full = this.overrunWaits;
        this.overrunWaits = false;
        this.framing = false;
        this.#updateIrq();
        return this.data;
    }

    #microsecondsWaited() {
        return (this.scheduler.epoch - this.arrived) / (CYCLES_PER_SECOND / 1e6);
    }

    #wantsInterrupt() {
        const receive = this.control & 0x80 && (this.full || this.overrun);
        const transmit = (this.control & 0x60) === 0x20 && this.waiting < 0;
        return Boolean(receive || transmit);
    }

    #updateIrq() {
        if (this.#wantsInterrupt()) this.cpu.interrupt |= INTERRUPT;
        else this.cpu.interrupt &= ~INTERRUPT;
    }

    #select(value) {
        this.selected = Boolean(value & 0x40);
        this.sendRate = RATES[value & 7];
        this.receiveRate = RATES[(value >> 3) & 7];
    }

    /** The chip divides its clock by 64 for the named rate, or by 16 for four times that. */
    #divided(rate) {
        return rate * [64, 4, 1, 1][this.control & 3];
    }

    #cyclesPerByte(rate) {
        const bits = [11, 11, 10, 10, 11, 10, 11, 11][(this.control >> 2) & 7];
        return (CYCLES_PER_SECOND * bits) / rate;
    }

    #garble(byte, rate) {
        if (this.hostRate === undefined || Math.abs(this.hostRate / rate - 1) < 0.05) return byte;
        this.count.garbled++;
        return (byte * 37 + 113) & 0xff;
    }

    #expectNext() {
        if (this.pending.length > 0 && !this.arrival.scheduled())
            this.arrival.schedule(Math.max(1, Math.round(this.pending[0].at - this.scheduler.epoch)));
    }

    #arrive() {
        const { byte } = this.pending.shift();
        this.#expectNext();
        if (!this.selected) {
            this.count.unheard++;
        } else if (this.full) {
            this.count.overruns++;
            this.overrunWaits = true;
        } else {
            const rate = this.#divided(this.receiveRate);
            this.data = this.#garble(byte, rate);
            this.framing = this.data !== byte;
            this.full = true;
            this.arrived = this.scheduler.epoch;
            this.count.received++;
        }
        this.#updateIrq();
    }

    #transmit(value) {
        if (this.shifting < 0) this.#shift(value);
        else this.waiting = value;
    }

    #shift(value) {
        this.shifting = value;
        this.sent.schedule(Math.round(this.#cyclesPerByte(this.#divided(this.sendRate))));
    }

    #whole() {
        const byte = this.shifting;
        this.shifting = -1;
        if (this.waiting >= 0) {
            this.#shift(this.waiting);
            this.waiting = -1;
        }
        this.#updateIrq();
        if (this.selected) this.onByte(this.#garble(byte, this.#divided(this.sendRate)));
    }
}
