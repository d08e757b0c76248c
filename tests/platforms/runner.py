"""Starts programs of other systems in Wine, and those of this system natively.

A runner gives the command that starts a program, a path in the form that the program expects, and
an environment with a time zone. Programs run while its context `ready` is open.
"""

import contextlib
import os
import pathlib
import subprocess
import sys

import wine

# Names that Windows has for the zones of the tests, without daylight saving time. A program on
# Windows takes its zone from the system, not from the environment.
WINDOWS_ZONES = {"UTC0": "UTC", "<+01>-1": "W. Central Africa Standard Time",
                 "<+02>-2": "South Africa Standard Time", "IST-5:30": "India Standard Time",
                 "NST3:30": "Newfoundland Standard Time_dstoff"}


class Wine:
    name = "Under Wine"

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)

    def ready(self):
        return wine.server(self.folder)

    @staticmethod
    def path(place):
        """An absolute path of this system as programs for Windows write it."""
        return "Z:" + str(pathlib.Path(place).resolve())

    def command(self, program):
        return ["wine", self.path(program)]

    @contextlib.contextmanager
    def in_zone(self, zone):
        yield wine.environment(TZ=zone, ZQV_ZONE=zone)


class Native:
    name = "Natively"

    @staticmethod
    def ready():
        return contextlib.nullcontext()

    @staticmethod
    def path(place):
        return pathlib.Path(place).resolve().as_posix()

    def command(self, program):
        return [self.path(program)]

    @contextlib.contextmanager
    def in_zone(self, zone):
        variables = dict(os.environ, ZQV_ZONE=zone, LC_ALL="C.UTF-8")
        if sys.platform != "win32":
            yield dict(variables, TZ=zone)
            return
        variables.pop("TZ", None)
        before = time_zone("/g")
        time_zone("/s", WINDOWS_ZONES[zone])
        try:
            yield variables
        finally:
            time_zone("/s", before)


def time_zone(*arguments):
    """Runs tzutil, which reads or changes the zone of the whole machine; returns its output."""
    return subprocess.run(["tzutil", *arguments], check=True, capture_output=True,
                          text=True).stdout.strip()
