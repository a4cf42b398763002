# Ties the emulated micro, which cannot open a pseudo-terminal itself, to one.
#
# Writes lines: "path" with the terminal's path, once; "rate" with the bit rate that the program in
# the terminal has set, whenever it changes, 0 for one that no micro knows; "bytes" with what the
# program sends, in hex. What comes in here goes to the program as it is. Ends when its input does.

import os
import select
import termios
import tty

RATES = {getattr(termios, f"B{rate}"): rate for rate in (1200, 2400, 4800, 9600, 19200)}
LOOK_AT_RATE = 0.005  # seconds

# The second end stays open here, so that the terminal lives on while no program has it open.
terminal, held = os.openpty()
tty.setraw(held)
print("path", os.ttyname(held), flush=True)
rate = None
while True:
    ready, _, _ = select.select([0, terminal], [], [], LOOK_AT_RATE)
    before, rate = rate, RATES.get(termios.tcgetattr(terminal)[5], 0)
    if rate != before:
        print("rate", rate, flush=True)
    if terminal in ready:
        print("bytes", os.read(terminal, 4096).hex(), flush=True)
    if 0 in ready:
        data = os.read(0, 4096)
        if not data:
            break
        os.write(terminal, data)
