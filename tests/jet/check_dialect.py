#!/usr/bin/env python3
"""The dialect piece by piece, through jetsql: date literals, patterns, operators and functions with the values that the
language defines, and the engine's number and text for everything that is wrong. Exit code 77: the example files are
not there."""
import os
import subprocess
import sys

# Between "#", and the moment it means; None where it is no date.
DATES = [
    ("12/24/2012", "2012-12-24 00:00:00"), ("1/2/2013 8:05:00", "2013-01-02 08:05:00"),
    ("12/24/2012 20:15", "2012-12-24 20:15:00"), ("12/30/1899 20:15:03", "1899-12-30 20:15:03"),
    ("20:15:00", "1899-12-30 20:15:00"), ("12/24/2012 8:15:00 PM", "2012-12-24 20:15:00"),
    ("12/24/2012 12:00:00 AM", "2012-12-24 00:00:00"), ("4/5/2012", "2012-04-05 00:00:00"),
    ("24/12/2012", "2012-12-24 00:00:00"), ("2012-12-24 20:15:00", "2012-12-24 20:15:00"),
    ("12/24/12", "2012-12-24 00:00:00"), ("2/29/2012", "2012-02-29 00:00:00"),
    ("2/29/2013", None), ("13/13/2012", None), ("12/24/2012 20:60:00", None), ("24:00", None), ("heute", None),
    ("", None), ("12/24/2012 20:15:00 x", None),
]
# Text, pattern, whether it matches.
PATTERNS = [
    ("Tatort", "Tatort", True), ("Tatort", "tatORT", True), ("ärger im Café", "ÄRGER*", True), ("Ärger", "a*", False),
    ("Tatort: Köln", "Tat*", True), ("Tatort", "Tat*ort", True), ("A=2;Wiederkehrend=1;B=3", "*Wiederkehrend=1*", True),
    ("aab ab", "*ab", True), ("xaxbxb", "*a*b", True), ("Tatort", "at", False), ("Bär", "?ä?", True), ("a", "a?", False),
    ("Folge 42", "Folge ##", True), ("Folge 4x", "Folge ##", False), ("Bx", "[a-c]x", True), ("dx", "[a-c]x", False),
    ("dx", "[!a-c]x", True), ("ax", "[!a-c]x", False), ("a*b", "a[*]b", True), ("axb", "a[*]b", False),
    ("[a", "[[]a", True), ("-", "[a-]", True), ("!", "[!]", True), ("ab", "a[]b", True), ("100 x", "100 %", False),
    ("axb", "a_b", False), ("", "", True),
]
# On broadcast 45 from 20:15 to 23:30, whose VPS is Null; now is 20:04:50.
EXPRESSIONS = [
    ("Beginn+1", "2012-12-25 20:15:00"), ("Dateadd('n',10,Beginn)", "2012-12-24 20:25:00"),
    ("Dateadd('m',2,#12/31/2012#)", "2013-02-28 00:00:00"),
    ("Datediff('n',Beginn,Ende)", "195"), ("Datediff('h',Beginn,Ende)", "3"), ("Format(Beginn,'YYYYMMDD')", "20121224"),
    ("Format(5,'00')", "05"), ("Format(Null,'00')", ""), ("date()", "2012-12-24 00:00:00"),
    ("now()", "2012-12-24 20:04:50"), ("Beginn=Beginn", "-1"), ("Pos*2", "90"), ("Pos/2", "22.5"), ("Pos\\2", "22"),
    ("val(Dauer)", "195"), ("val(VPS)", "\\N"), ("VPS & 'x'", "x"), ("VPS+'x'", "\\N"), ("Weekday(Beginn)", "2"),
    ("Max(Beginn)", "2012-12-24 20:15:00"), ("Count(VPS)", "0"), ("Min(VPS)", "\\N"), ("Len(Titel)", "22"),
    ("Mid(Titel,12,1)", "„"), ("IIf(Pos=45,'ja',7)", "ja"), ("2+3*4-6/2", "11"), ("-2^2", "-4"), ("7 mod 4 + 1", "4"),
    ("not Pos=45", "0"), ("(Pos=45)+0", "-1"), ("UCase(Titel)=LCase(Titel)", "-1"), ("'Straße'<>'STRASSE'", "0"), ("true and null", "\\N"), ("false and null", "0"), ("Pos=45 xor Pos=1", "-1"),
]
# The last bit of a stored moment differs between writers: half a second either way is the same.
MOMENTS = [
    "Beginn=#12/24/2012 20:15:00#", "not Beginn<#12/24/2012 20:15:00#", "not Beginn>#12/24/2012 20:15:00#",
    "Beginn<=#12/24/2012 20:15:00#", "#12/24/2012 20:15:00#>=Beginn", "Beginn<#12/24/2012 20:15:01#",
    "Beginn<>#12/24/2012 20:15:01#", "Beginn in (#12/24/2012 20:15:00#)", "Beginn=41267.8437500001",
    "Beginn between #12/24/2012 20:15:00# and #12/24/2012 20:15:00#", "Beginn-0.75=#12/24/2012 2:15:00#",
    "DateValue(Beginn)+TimeValue(Beginn)=#12/24/2012 20:15:00#",
]
CONFLICT = "(3464) Datentypkonflikt in Kriterienausdruck."
NO_FROM = "(3131) Syntaxfehler in FROM-Klausel."
NO_PATTERN = "(93) Ungültige Musterzeichenfolge."
ARGUMENT = "(5) Ungültiger Prozeduraufruf oder ungültiges Argument"
# Statement, and the beginning of what is said about it.
ERRORS = [
    ("Select * from S Where Pos in ()", "(3075) Syntaxfehler in Abfrageausdruck 'Pos in ()'."),
    ("Select * from S Where Pos not in()", "(3075)"), ("Select * from S Where a=1 b=2", "(3075)"),
    ("Select * from S Where a=", "(3075)"), ("Select * from S Where (a=1", "(3075)"),
    ("Select * from S Where a='x", "(3075)"), ("Select * from S Where a=#1/1/2012", "(3075)"),
    ("Select [a from S", "(3075)"), ("Select a { b from S", "(3075)"),
    ("Select * from", NO_FROM), ("Select * from S a b", NO_FROM), ("Select * from S join T on a=b", NO_FROM),
    ("Select * from [ Select a from S ] as t1", NO_FROM), ("Select * from [ Select a from S ; x ]. as t1", NO_FROM),
    ("Select * from S inner join T", "(3135) Syntaxfehler in JOIN-Operation."),
    ("Select a from S Group a", "(3132) Syntaxfehler in GROUP BY-Klausel."),
    ("Select a from S Order a", "(3138) Syntaxfehler in ORDER BY-Klausel."), ("Select a from S Order by ;", "(3138)"),
    ("Select from S", "(3141) Die SELECT-Anweisung"), ("Select a, from S", "(3141)"),
    ("Hallo", "(3129) Ungültige SQL-Anweisung"), ("", "(3129)"),
    ("Select a from S; Select b from S", "(3142) Zeichen gefunden nach Ende der SQL-Anweisung."),
    ("Select Nix, Nix2, nix from Sendungen", "(3061) Zu wenige Parameter. 2 erwartet."),
    ("Select * from Nix", "(3078) Die Eingangstabelle oder Abfrage 'Nix' wurde nicht gefunden. Stellen Sie sicher, dass "
     "sie existiert und dass der Name richtig eingegeben wurde."),
    ("Select Foo(1) from Sender", "(3085) Undefinierte Funktion 'Foo' in Ausdruck."),
    ("Select Pos from Sendungen a, SendungenDetails b", "(3079) Das angegebene Feld 'Pos' kann sich auf mehr als eine "
     "Tabelle beziehen, die im FROM-Abschnitt der SQL-Anweisung aufgelistet ist."),
    ("Select Titel, Count(*) from Sendungen", "(3122) Sie wollten eine Abfrage ausführen, die den angegebenen Ausdruck "
     "'Titel' nicht als Teil einer Aggregatfunktion enthält."),
    ("Select Pos from Sendungen where Max(Pos)=1", "(3096) Aggregatfunktion in WHERE-Klausel nicht möglich: Max."),
    ("Select Distinct Titel from Sendungen Order by Pos", "(3093) ORDER BY-Klausel (Pos) verursacht Konflikt mit DISTINCT."),
    ("Select * from Sendungen where Titel=5", CONFLICT), ("Select * from Sendungen where Pos in('a')", CONFLICT),
    ("Select * from Sendungen where Beginn>'x'", CONFLICT), ("Select 1/(Pos-Pos) from Sendungen", "(11) Division durch Null."),
    ("Select Left('a',-1)", ARGUMENT), ("Select Dateadd('x',1,date())", ARGUMENT), ("Select DateSerial(99999999999,1,1)", "(6) Überlauf"),
    *[(f"Select * from Sendungen where Titel like '{pattern}'", NO_PATTERN) for pattern in ("a[b", "[", "[z-a]", "x[!")],
    *[(f"Select #{date}#", "(3075) Syntaxfehler in Abfrageausdruck") for date, moment in DATES if moment is None],
]


def run(jetsql, database, *statements, stdin=""):
    done = subprocess.run([jetsql, database, *statements], input=stdin.encode(), capture_output=True, check=False,
                          env={**os.environ, "WENDEL_UHR": "2012-12-24 20:04:50"})
    return done.stdout.decode(), done.stderr.decode()


def main():
    jetsql, folder = sys.argv[1:]
    if not os.path.isdir(folder):
        print(f"skipped: no example files in {folder}")
        return 77
    database = os.path.join(folder, "tvdaten-klein.mdb")
    questions = [(f"#{date}#", moment) for date, moment in DATES if moment]
    questions += [(f"'{text}' like '{pattern}'", "-1" if fits else "0") for text, pattern, fits in PATTERNS]
    questions += EXPRESSIONS + [(condition, "-1") for condition in MOMENTS]
    # As conditions too, where an index can answer them.
    statements = [(f"Select {e} as a from Sendungen where Pos=45", value) for e, value in questions]
    statements += [(f"Select Count(*) as a from Sendungen where Pos=45 and {condition}", "1") for condition in MOMENTS]
    output, errors = run(jetsql, database, stdin="\n".join(statement for statement, _ in statements))
    values = output.split("\n")[1::2]
    wrong = [errors] if errors or len(values) != len(statements) else []
    wrong += [f"{statement}: {value} instead of {expected}" for (statement, expected), value in zip(statements, values)
              if value != expected]
    for statement, expected in ERRORS:
        error = run(jetsql, database, statement)[1]
        if not (error == expected + "\n" if expected.endswith(".") else error.startswith(expected)):
            wrong.append(f"{statement}: {error.strip() or 'no error'} instead of {expected}")
    print("\n".join(wrong) or f"{len(statements) + len(ERRORS)} statements as expected")
    return 1 if wrong else 0


sys.exit(main())
