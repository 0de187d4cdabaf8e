"""What a process takes, out of /proc; the process does not know that it is measured. For ruhe.py and monat.py."""
import re

MIB = 1024.0  # /proc counts in KiB


def read(path):
    with open(path) as file:
        return file.read()


def number(text, name):
    return int(re.search(rf'^{name}:\s+(\d+)', text, re.M).group(1))


class Memory:
    """In MiB: resident, private, and that part of the private pages which the process wrote itself."""

    def __init__(self, pid):
        rollup = read(f'/proc/{pid}/smaps_rollup')
        self.rss = number(read(f'/proc/{pid}/status'), 'VmRSS') / MIB
        self.written = number(rollup, 'Private_Dirty') / MIB
        self.private = self.written + (number(rollup, 'Private_Clean') + number(rollup, 'Private_Hugetlb')) / MIB

    def __str__(self):
        return f'VmRSS {self.rss:.1f} MiB, private {self.private:.1f} MiB (written {self.written:.1f})'


class Bars:
    """Prints values beside their bars and remembers whether one was missed."""

    def __init__(self):
        self.missed = False

    def report(self, name, unit, bar, value):
        good = value <= bar
        self.missed |= not good
        print(f'{"ok    " if good else "MISSED"} {name:38} {value:8.1f} {unit:3}  bar {bar} {unit}')
