#!/usr/bin/env python3
"""jetsql as a program: what it prints, and how it ends. The cells of typen.mdb come from typen.json.
Exit code 77: the example files are not there."""
import json
import os
import subprocess
import sys

UNKNOWN_TABLE = ("(3078) Die Eingangstabelle oder Abfrage 'Nix' wurde nicht gefunden. Stellen Sie sicher, dass sie "
                 "existiert und dass der Name richtig eingegeben wurde.\n")


def run(program, *arguments, stdin=b""):
    done = subprocess.run([program, *arguments], input=stdin, capture_output=True, check=False)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def reads_lines_as_they_come(program, database):
    """The answer to the first line is there before the second is sent."""
    with subprocess.Popen([program, database], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
        answers = []
        for key in (44, 45):
            process.stdin.write(f"Select Pos as p from Sendungen where Pos={key}\n".encode())
            process.stdin.flush()
            answers.append(process.stdout.readline() + process.stdout.readline())
        process.stdin.close()
        return answers, process.wait()


def main():
    program, folder = sys.argv[1:]
    if not os.path.isdir(folder):
        print(f"skipped: no example files in {folder}")
        return 77
    small = os.path.join(folder, "tvdaten-klein.mdb")
    types = os.path.join(folder, "typen.mdb")
    usage = run(program)[2]
    cases = [
        ("no arguments", run(program), (2, "", usage)),
        ("usage is German", usage.split("\n")[0], "Aufruf: jetsql DATEI [ANWEISUNG ...] [--sperren SEKUNDEN]"),
        ("unknown switch", run(program, "-x", small), (2, "", usage)),
        ("switch without a value", run(program, small, "--sperren"), (2, "", usage)),
        ("a sound file", run(program, os.path.join(folder, "echte", "adox_jet4.mdb"), "--pruefen"), (0, "", "")),
        ("two tasks at once", run(program, small, "--reparieren", "Select 1"), (2, "", usage)),
        ("help", run(program, "--hilfe"), (0, usage, "")),
        ("header and rows", run(program, small, "Select Pos, SenderKennung as k from Sendungen where Pos<3 order by 1"),
         (0, "Pos\tk\n1\tARD\n2\tARD\n", "")),
        ("no rows", run(program, small, "Select Pos from Sendungen where Pos<0"), (0, "Pos\n", "")),
        ("two statements", run(program, small, "Select 1 as a", "Select 2 as b"), (0, "a\n1\nb\n2\n", "")),
        ("lines with blanks between", run(program, small, stdin=b"Select 1 as a\r\n\n  \nSelect 2 as b;"),
         (0, "a\n1\nb\n2\n", "")),
        ("first error ends", run(program, small, "Select 1 as a", "Select * from Nix", "Select 2 as b"),
         (1, "a\n1\n", UNKNOWN_TABLE)),
        ("first error ends lines", run(program, small, stdin=b"Select * from Nix\nSelect 2 as b\n"),
         (1, "", UNKNOWN_TABLE)),
        ("no file", run(program, os.path.join(folder, "fehlt.mdb"), "Select 1")[:2], (1, "")),
        ("escapes", run(program, small, "Select 'a\\b\tc\r\nd' as t, '\u00e4\u20ac' as u"),
         (0, "t\tu\na\\\\b\\tc\\r\\nd\t\u00e4\u20ac\n", "")),
        ("values without a table", run(program, small, "Select Null as n, true as b, #12/24/2012 20:15:03# as d, 1.5 as r"),
         (0, "n\tb\td\tr\n\\N\t-1\t2012-12-24 20:15:03\t1.5\n", "")),
        ("all types", run(program, types, "Select * from AlleTypen where ID=2"), None),
        ("lines as they come", reads_lines_as_they_come(program, small), ([b"p\n44\n", b"p\n45\n"], 0)),
        ("names of any kind", run(program, types, "Select [gr\u00f6\u00dfe (cm)] from [namen mit leerzeichen & \u00fcml\u00e4ut] "
                                  "where [%-Satz]>1"), (0, "gr\u00f6\u00dfe (cm)\n180\n", "")),
    ]
    with open(os.path.join(folder, "typen.json"), encoding="utf-8") as file:
        table = json.load(file)["tables"]["AlleTypen"]
    row = table["all_rows"][1]
    shown = ["\\N" if c is None else "-1" if k["type"] == "BOOLEAN" and c == "1" else c.get("start", "") if
             isinstance(c, dict) else c for c, k in zip(row, table["columns"])]
    wrong = 0
    for name, found, expected in cases:
        if name == "all types":
            cells = found[1].split("\n")[1].split("\t")
            found = [c[:len(s)] if isinstance(r, dict) else c for c, s, r in zip(cells, shown, row)]
            expected = shown
        if found != expected:
            wrong += 1
            print(f"{name}:\n  expected {expected}\n  found    {found}")
    print(f"{len(cases)} cases, {wrong} wrong")
    return 1 if wrong else 0


sys.exit(main())
