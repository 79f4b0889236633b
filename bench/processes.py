"""Processes: how long they take, and how much memory they hold."""

import os
import pathlib
import time


def start(command, output):
    """Starts a command with its standard output in a file, as bare as can be."""
    streams = [
        (os.POSIX_SPAWN_OPEN, 0, "/dev/null", os.O_RDONLY, 0),
        (os.POSIX_SPAWN_OPEN, 1, output, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600),
        (os.POSIX_SPAWN_OPEN, 2, "/dev/null", os.O_WRONLY, 0),
    ]
    arguments = [str(argument) for argument in command]
    return os.posix_spawn(arguments[0], arguments, os.environ, file_actions=streams)


def expect_success(command, status):
    if status != 0:
        raise RuntimeError(f"{command[0]} failed: {os.waitstatus_to_exitcode(status)}")


def seconds_of(command, output):
    begin = time.perf_counter()
    _, status = os.waitpid(start(command, output), 0)
    taken = time.perf_counter() - begin
    expect_success(command, status)
    return taken


def peak_mebibytes(command, output):
    """The most that the process itself, without its children, had resident at any time."""
    process = start(command, output)
    status_file = pathlib.Path(f"/proc/{process}/status")
    peak = 0
    while True:
        ended, status = os.waitpid(process, os.WNOHANG)
        if ended:
            expect_success(command, status)
            return peak / 1024
        for line in status_file.read_text().splitlines():
            if line.startswith("VmHWM:"):
                peak = int(line.split()[1])
        time.sleep(0.002)
