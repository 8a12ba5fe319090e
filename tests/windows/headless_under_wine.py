#!/usr/bin/env python3
"""corvane-monitor --headless, the Windows build under wine, watching corvane-sim run
natively over loopback TCP. The monitor runs on a console (a pseudo-terminal, which wine
turns into the program's console) without --data-dir, so it works in the machine's data
folder, %ProgramData%\\Corvane of the wine prefix. Once the welds are in the data log,
Ctrl+C is typed on the console: the control handler must end the run with exit status 0
and the configurations file saved with its dated copy."""

import argparse
import os
import pty
import re
import select
import shutil
import signal
import subprocess
import sys
import time

WELDS = 5


def fail(message, output=b""):
    sys.stderr.write(output.decode(errors="replace"))
    sys.exit("FAIL: " + message)


def start_simulator(sim):
    process = subprocess.Popen(
        [sim, "--tcp", "0", "--count", str(WELDS), "--interval", "200", "--seed", "11"],
        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    line = process.stdout.readline().decode()
    match = re.match(r"tcp 127\.0\.0\.1:(\d+)", line)
    if not match:
        process.kill()
        fail("corvane-sim announced no port: " + line)
    return process, int(match.group(1))


def data_log_lines(path):
    try:
        with open(path, "rb") as log:
            return [line for line in log.read().split(b"\r\n") if line]
    except FileNotFoundError:
        return []


class Console:
    """The monitor with a pseudo-terminal as its console (its standard input, from which
    wine's console reads Ctrl+C); what it prints goes to a file, as a service's log would,
    unmangled by the console's screen handling."""

    def __init__(self, argv, env, printed):
        self.printed = printed
        out = os.open(printed, os.O_WRONLY | os.O_CREAT | os.O_TRUNC)
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.dup2(out, 1)
            os.dup2(out, 2)
            os.execvpe(argv[0], argv, env)
        os.close(out)
        self.output = b""

    def read_for(self, seconds, until=lambda: False):
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline and not until():
            ready, _, _ = select.select([self.fd], [], [], 0.2)
            if ready:
                try:
                    chunk = os.read(self.fd, 4096)
                except OSError:
                    return
                if not chunk:
                    return
                self.output += chunk
        return until()

    def text(self):
        with open(self.printed, "rb") as printed:
            return printed.read().replace(b"\r", b"")

    def exit_status(self, seconds):
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline:
            self.read_for(0.2)
            pid, status = os.waitpid(self.pid, os.WNOHANG)
            if pid:
                return os.waitstatus_to_exitcode(status)
        return None

    def kill(self):
        try:
            os.kill(self.pid, signal.SIGKILL)
            os.waitpid(self.pid, 0)
        except (ProcessLookupError, ChildProcessError):
            pass


def main():
    parser = argparse.ArgumentParser()
    for option in ("--emulator", "--monitor", "--sim", "--wine-prefix"):
        parser.add_argument(option, required=True)
    args = parser.parse_args()

    data_folder = os.path.join(args.wine_prefix, "drive_c", "ProgramData", "Corvane")
    shutil.rmtree(data_folder, ignore_errors=True)
    os.makedirs(data_folder)
    data_log = os.path.join(data_folder, "press 1.txt")
    configurations = os.path.join(data_folder, "corvane-monitor.cfg")

    sim, port = start_simulator(args.sim)
    with open(configurations, "w") as cfg:
        cfg.write('<Configurations>\n  <Configuration>\n'
                  f'    <Equipment Name="Press 1" Settings="IP:127.0.0.1:{port}"/>\n'
                  '    <DataLogging Enable="1" File="C:\\ProgramData\\Corvane\\press 1.txt"/>\n'
                  '  </Configuration>\n</Configurations>')

    env = dict(os.environ, WINEPREFIX=args.wine_prefix)
    for name in ("CORVANE_DATA_DIR", "CORVANE_SETTINGS_FILE"):
        env.pop(name, None)
    console = Console([args.emulator, args.monitor, "--headless", "--verbose"], env,
                      os.path.join(args.wine_prefix, "headless-run.txt"))
    try:
        if not console.read_for(60, lambda: b"watching 1" in console.text()):
            fail("the monitor did not start watching", console.text())
        if not console.read_for(30, lambda: len(data_log_lines(data_log)) == WELDS + 1):
            fail(f"{len(data_log_lines(data_log))} data log lines, not {WELDS + 1}",
                 console.text())
        if any(os.path.basename(f).startswith("corvane-monitor.cfg_")
               for f in os.listdir(data_folder)):
            fail("saved before the end of the run")

        os.write(console.fd, b"\x03")  # Ctrl+C typed on the console
        status = console.exit_status(30)
        if status != 0:
            fail(f"the monitor ended with {status} after Ctrl+C", console.text())
    finally:
        console.kill()
        sim.kill()

    printed = [line for line in console.text().split(b"\n") if line.startswith(b"Press 1: cycle")]
    if len(printed) != WELDS:
        fail(f"{len(printed)} welds printed, not {WELDS}", console.text())
    with open(configurations, "rb") as cfg:
        saved = cfg.read()
    if b"\n" in saved or f'IP:127.0.0.1:{port}'.encode() not in saved:
        fail("the configurations file was not saved in the monitor's form: " + saved.decode())
    copies = [f for f in os.listdir(data_folder) if f.startswith("corvane-monitor.cfg_")]
    if len(copies) != 1:
        fail(f"{len(copies)} dated copies after the save, not 1")
    header = data_log_lines(data_log)[0]
    if any(line.count(b"\t") != header.count(b"\t") for line in data_log_lines(data_log)):
        fail("data log lines with another number of fields than the header")
    print(f"ok: {WELDS} welds logged under wine, Ctrl+C saved {copies[0]}")


if __name__ == "__main__":
    main()
