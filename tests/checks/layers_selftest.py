"""Shows that the layer check finds what it is there for: each sample alone in a tree, with what must be said."""

import sys
import tempfile
from pathlib import Path

import layers

# (file, content, part of the one finding; None: clean)
SAMPLES = [
    ("src/core/A.cpp", '#include "desktop/TrayIcon.h"\n', '"desktop/TrayIcon.h": core must not know desktop'),
    ("src/core/A.cpp", '#include "jet/Engine.h"\n', "core must not know jet"),
    ("src/tvdb/A.h", '#include "core/FormWendel.h"\n', "tvdb must not know core"),
    ("src/reminders/A.h", '#include "recording/Skript.h"\n', "reminders must not know recording"),
    ("src/platform/A.h", '#include "tvdb/cSender.h"\n', "platform must not know tvdb"),
    ("src/jet/sql/A.h", '#include "tvdb/cSender.h"\n', "jet/sql must not know tvdb"),
    ("src/jet/storage/A.h", '#include "jet/sql/Parser.h"\n', "jet/storage must not know jet/sql"),
    ("src/core/A.cpp", '#include "../desktop/X.h"\n', "is no header of a layer"),
    ("tests/core/A.cpp", '#include "desktop/TrayIcon.h"\n', "core must not know desktop"),
    ("src/core/A.cpp", "#include <QString>\n", "<QString> is not for the logic"),
    ("src/core/A.cpp", "#include <sqlite3.h>\n", "<sqlite3.h> is not for the logic"),
    ("src/core/A.cpp", "#include <X11/Xlib.h>\n", "<X11/Xlib.h> is not for the logic"),
    ("src/core/A.cpp", "#include <unistd.h>\n", "<unistd.h> is not for the logic"),
    ("src/core/A.cpp", "#include <filesystem>\n", "<filesystem> is not for the logic"),
    ("src/core/A.cpp", "#  include  <fstream>\n", "<fstream> is not for the logic"),
    ("src/core/A.cpp", "#include <thread>\n", "<thread> is not for the logic"),
    ("src/core/A.cpp", "#include <ctime>\n", "<ctime> is not for the logic"),
    ("src/core/A.cpp", "auto t = std::chrono::system_clock::now();\n", "system_clock reads a clock"),
    ("src/core/A.cpp", "using U = std::chrono::steady_clock;\n", "steady_clock reads a clock"),
    ("src/core/A.cpp", "auto t = time(nullptr);\n", "time( reads a clock"),
    ("src/core/A.cpp", "auto t = std::time(nullptr);\n", "std::time( reads a clock"),
    ("src/core/A.cpp", "auto t = ::time(nullptr);\n", "::time( reads a clock"),
    ("src/core/A.cpp", "if (time (0) > 5) f();\n", "time ( reads a clock"),
    ("src/core/A.cpp", "auto t = localtime(&x);\n", "localtime( reads a clock"),
    ("src/core/A.cpp", "std::this_thread::sleep_for(x);\n", "this_thread sleeps"),
    ("src/core/A.cpp", 'auto e = getenv("TZ");\n', "getenv( asks the system"),
    ("src/core/A.cpp", "int r = rand();\n", "rand( throws dice"),
    ("src/core/A.cpp", "const int n = 1'000; auto t = time(0); const int m = 2'000;\n", "time( reads a clock"),
    ("src/core/A.cpp", "/* a\n b */ auto t = time(0);\n", "src/core/A.cpp:2: time( reads a clock"),
    ("src/core/A.cpp", '#include "tvdb/cSender.h"\n#include <vector>\n#include <chrono>\n', None),
    ("src/core/A.cpp", '// #include <ctime>\n/* time(0)\n */ auto s = "time(0) system_clock";\n', None),
    ("src/core/A.cpp", "auto s = R\"x(\n#include <ctime>\n time(0))x\";\n", None),
    ("src/core/A.cpp", "uhr.time(); uhr->clock(); laufzeit(); int uptime(); Format(d);\n", None),
    ("src/jet/storage/A.cpp", "#include <unistd.h>\nauto t = time(nullptr);\n", None),
    ("src/desktop/A.cpp", '#include <QString>\n#include "core/FormWendel.h"\n', None),
    ("tests/core/A.cpp", '#include <gtest/gtest.h>\n#include "support/Fakes.h"\n#include "core/Start.h"\n', None),
]


def findings(name, content):
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder, name)
        path.parent.mkdir(parents=True)
        path.write_text(content, encoding="utf-8")
        return layers.check(Path(folder))


def main():
    wrong = 0
    for name, content, expected in SAMPLES:
        found = findings(name, content)
        good = found == [] if expected is None else any(expected in finding for finding in found)
        if not good:
            wrong += 1
            print(f"{name}: {content!r}: expected {expected!r}, found {found}")
    print(f"{len(SAMPLES)} samples, {wrong} wrong")
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
