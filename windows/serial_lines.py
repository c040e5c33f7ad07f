"""Null modems of software: pairs of pseudo-terminals, each connected with the other, for serial ports of a Windows in Wine.

    serial_lines.py FOLDER COUNT

Makes COUNT pairs and in FOLDER the names near0, far0, near1, ... for their ends, prints "ready", and serves them until its input ends.
A line carries bytes while both ends work at one rate, as a real one does. When the far end is closed the line is dead and the near end
hangs up; then the names belong to a new pair.
"""
import fcntl
import os
import pathlib
import select
import struct
import sys
import termios
import tty

UNLOCK, NUMBER = 0x40045431, 0x80045430  # TIOCSPTLCK and TIOCGPTN, of which this library does not know


def rate(master):
    """The rate of whoever works on the other side of this pseudo-terminal."""
    return termios.tcgetattr(master)[5]


class Line:
    def __init__(self, folder, number):
        self.names = [folder / f"near{number}", folder / f"far{number}"]
        self.masters = []
        self.make()

    def make(self):
        for name in self.names:
            master = os.open("/dev/ptmx", os.O_RDWR | os.O_NOCTTY)
            fcntl.ioctl(master, UNLOCK, struct.pack("i", 0))
            number, = struct.unpack("i", fcntl.ioctl(master, NUMBER, struct.pack("i", 0)))
            tty.setraw(master)
            fresh = name.with_suffix(".new")
            fresh.unlink(missing_ok=True)
            fresh.symlink_to(f"/dev/pts/{number}")
            fresh.rename(name)
            self.masters.append(master)
        # Kept open by us: the near end may be closed and opened again. The far end, as long as nobody has opened it, is not dead.
        self.keeper = os.open(self.names[0], os.O_RDWR | os.O_NOCTTY)

    def renew(self):
        for number in [*self.masters, self.keeper]:
            os.close(number)
        self.masters.clear()
        self.make()

    def serve(self, master):
        """False when the line is dead."""
        near = master == self.masters[0]
        try:
            data = os.read(master, 4096)
        except OSError:
            return False
        if rate(self.masters[0]) == rate(self.masters[1]):
            os.write(self.masters[1 if near else 0], data)
        return True


def main():
    folder, count = pathlib.Path(sys.argv[1]), int(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    lines = [Line(folder, number) for number in range(count)]
    print("ready", flush=True)
    poll = select.poll()
    poll.register(sys.stdin, select.POLLIN | select.POLLHUP)

    def watch(line):
        for master in line.masters:
            poll.register(master, select.POLLIN)

    for line in lines:
        watch(line)
    by_master = {master: line for line in lines for master in line.masters}
    while True:
        for number, _ in poll.poll():
            if number == sys.stdin.fileno():
                return
            line = by_master.get(number)
            if line is None or line.serve(number):
                continue
            for master in line.masters:
                poll.unregister(master)
                del by_master[master]
            line.renew()
            by_master.update({master: line for master in line.masters})
            watch(line)


if __name__ == "__main__":
    main()
