"""Keeps the layers apart: finds includes that point upwards or out of the program, and clocks read past the port.

The logic folders build on the C++ standard library alone. What reaches a disk, a clock, the environment or the
locale comes in through a port, so the headers for those are not on the list below. Comments and texts are no code.

    python3 layers.py [SOURCE_TREE]     prints file:line: what is wrong; exit code 1 when there is something
"""

import re
import sys
from pathlib import Path

# Folder -> the folders whose headers it may include.
MAY_INCLUDE = {
    "platform": {"platform"},
    "tvdb": {"platform", "tvdb"},
    "reminders": {"platform", "tvdb", "reminders"},
    "recording": {"platform", "tvdb", "recording"},
    "traymenu": {"platform", "tvdb", "traymenu"},
    "core": {"platform", "tvdb", "reminders", "recording", "traymenu", "core"},
    "jet/storage": {"platform", "jet/storage"},
    "jet/sql": {"platform", "jet/storage", "jet/sql"},
    "jet": {"platform", "jet/storage", "jet/sql", "jet"},
}
LOGIC = {"platform", "tvdb", "reminders", "recording", "traymenu", "core"}

# Not here on purpose: filesystem fstream iostream cstdio (files), thread mutex future (one thread), ctime
# (clocks), random (chance is a port), locale sstream iomanip (numbers would follow the locale).
STANDARD_HEADERS = set(
    """algorithm any array bit bitset cassert cctype charconv chrono climits cmath compare concepts cstddef cstdint
    cstdlib cstring deque exception functional initializer_list iterator limits list map memory memory_resource
    new numbers numeric optional queue ranges ratio set span stack stdexcept string string_view system_error tuple
    type_traits typeindex typeinfo unordered_map unordered_set utility variant vector version""".split()
)

FORBIDDEN_CODE = [
    (re.compile(r"\b(?:system_clock|steady_clock|high_resolution_clock|utc_clock|file_clock)\b"), "reads a clock"),
    (re.compile(r"\b(?:clock_gettime|gettimeofday|timespec_get|ftime|localtime|localtime_r|gmtime|gmtime_r|mktime|"
                r"strftime|asctime|ctime)\s*\("), "reads a clock or a zone"),
    (re.compile(r"(?<![\w.>:])(?:std\s*::\s*|::\s*)?(?:time|clock)\s*\("), "reads a clock"),
    (re.compile(r"\b(?:sleep_for|sleep_until|usleep|nanosleep|this_thread)\b"), "sleeps"),
    (re.compile(r"\b(?:getenv|secure_getenv|setlocale|system)\s*\("), "asks the system"),
    (re.compile(r"\b(?:rand|srand|random_device)\b\s*[({;]"), "throws dice"),
    (re.compile(r"\bfopen\s*\(|\bofstream\b|\bifstream\b|\bstd\s*::\s*filesystem\b"), "touches files"),
]

TOKENS = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | R"(?P<delimiter>[^()\\\s]{0,16})\(.*?\)(?P=delimiter)"
      | "(?:\\.|[^"\\\n])*"
      | (?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+'""",
    re.DOTALL | re.VERBOSE,
)
INCLUDE = re.compile(r"""^[ \t]*\#[ \t]*include[ \t]*(?P<quote>[<"])(?P<name>[^">\n]+)[">]""", re.MULTILINE)


def blanked(text, strings):
    """The text without comments and raw strings, and without all texts when strings is set. Lines keep their numbers."""

    def replace(match):
        ordinary = match.group("comment") is None and match.group("delimiter") is None
        if ordinary and not strings:
            return match.group(0)
        return re.sub(r"[^\n]", " ", match.group(0))

    return TOKENS.sub(replace, text)


def folder_of(path):
    """The layer that a path below src belongs to: "jet/sql", "core"; None for a file of no layer."""
    parts = path.parts[:-1]
    for length in (2, 1):
        name = "/".join(parts[:length])
        if len(parts) >= length and (name in MAY_INCLUDE or name == "desktop"):
            return name
    return None


def quoted_problem(source, folder, name, src):
    """What is wrong with including "name" from a file of that folder, or None."""
    if "/" not in name and (source.parent / name).is_file():
        return None
    if name.startswith("support/") and not source.is_relative_to(src):
        return None
    target = folder_of(Path(name))
    if target is None:
        return f'"{name}" is no header of a layer'
    if target not in MAY_INCLUDE[folder]:
        return f'"{name}": {folder} must not know {target}'
    return None


def problems_of(source, folder, src, is_test):
    text = source.read_text(encoding="utf-8")
    for match in INCLUDE.finditer(blanked(text, strings=False)):
        name, problem = match.group("name"), None
        if match.group("quote") == '"':
            problem = quoted_problem(source, folder, name, src)
        elif folder in LOGIC and not is_test and name not in STANDARD_HEADERS:
            problem = f"<{name}> is not for the logic"
        if problem:
            yield text.count("\n", 0, match.start("name")) + 1, problem
    if folder not in LOGIC or is_test:
        return
    code = blanked(text, strings=True)
    for pattern, problem in FORBIDDEN_CODE:
        for match in pattern.finditer(code):
            yield text.count("\n", 0, match.start()) + 1, f"{match.group(0).strip()} {problem}"


def sources(root, folder):
    """Files of a layer itself, not of the layers inside it (jet holds two)."""
    base = root / folder
    if not base.is_dir():
        return
    for path in sorted(base.rglob("*")):
        if path.suffix in {".h", ".cpp"} and folder_of(path.relative_to(root)) == folder:
            yield path


def check(tree):
    """All problems below tree/src, and those of the logic's tests, as "file:line: problem"."""
    src, tests = tree / "src", tree / "tests"
    found = []
    for folder in MAY_INCLUDE:
        roots = [(src, False)] + ([(tests, True)] if folder in LOGIC else [])
        for root, is_test in roots:
            for path in sources(root, folder):
                for line, problem in sorted(problems_of(path, folder, src, is_test)):
                    found.append(f"{path.relative_to(tree)}:{line}: {problem}")
    return found


def main():
    tree = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parents[2]
    if not (tree / "src" / "platform").is_dir():
        sys.exit(f"{tree}: no src/platform here")
    found = check(tree)
    print("\n".join(found) if found else "layers: clean")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
