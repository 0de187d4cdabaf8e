#!/usr/bin/env python3
"""Statements that change a database, through jetsql: after each one the tables hold what SQLite has after the same change
in its own words, and the errors leave every byte of the file as it was. What is defined is read by mdbtools as well. Then two processes in
conflict over one file. Runs on new files of both versions of the format, and the statements of the marks on a copy of an
example file."""
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile

CLOCK = "2012-12-24 20:04:50"
PROGRAM = sys.argv[1]
EXAMPLE = os.path.join(sys.argv[2], "tvdaten-klein.mdb")

TABLE = ("Create Table Alles (ID Counter Constraint PrimaryKey Primary Key, Name Text(20) Not Null Unique, Zahl Long, Klein Byte, "
         "Kurz Short, Geld Currency, Einzel Single, Doppelt Double, Wann Datetime, Ja YesNo, Notiz Memo, Kennung GUID)")
COLUMNS = "ID,Name,Zahl,Klein,Kurz,Geld,Einzel,Doppelt,Wann,Ja,Notiz,Kennung"
LONG = "Überlänge " * 900
# Statement, rows it changes, and the same for SQLite, where yes/no is -1/0, money and dates are texts.
STEPS = [
    ("Insert Into Alles (Name) Values ('nichts')", 1, "insert into Alles (ID,Name,Ja) values (1,'nichts',0)"),
    ("Insert Into Alles (Name,Zahl,Klein,Kurz,Geld,Einzel,Doppelt,Wann,Ja,Notiz,Kennung) Values ('Ärger ''x''',-5,255,-32768,"
     "1.5,0.5,1e10,#12/24/2012 20:15:00#,true,'kurz','{00112233-4455-6677-8899-AABBCCDDEEFF}');", 1,
     "insert into Alles values (2,'Ärger ''x''',-5,255,-32768,'1.5000',0.5,1e10,'2012-12-24 20:15:00',-1,'kurz',"
     "'{00112233-4455-6677-8899-AABBCCDDEEFF}')"),
    # texts into numbers, numbers into texts, halves to the even neighbour
    ("Insert Into Alles (Name,Zahl,Klein,Geld,Doppelt,Wann,Ja,Notiz) Values (12.5,'12',2.5,'3,25','1e3','24.12.2012 8:05',7,#12/24/2012#)",
     1, "insert into Alles values (3,'12.5',12,2,null,'3.2500',null,1000,'2012-12-24 08:05:00',-1,'24.12.2012',null)"),
    (f"Update Alles Set Notiz='{LONG}' Where ID<3", 2, f"update Alles set Notiz='{LONG}' where ID<3"),
    ("Update Alles Set Zahl=Zahl+ID, Geld=Geld*2, Wann=Dateadd('d',1,Wann), Ja=not Ja Where ID>1", 2,
     "update Alles set Zahl=Zahl+ID, Geld=printf('%.4f',Geld*2), Wann=datetime(Wann,'+1 day'), Ja=-1-Ja where ID>1"),
    ("Update Alles Set Notiz=Null, Name=Name & '!' Where Notiz like '*länge*'", 2,
     "update Alles set Notiz=null, Name=Name||'!' where Notiz like '%länge%'"),
    ("Insert Into Alles (ID,Name) Values (100,'hundert')", 1, "insert into Alles (ID,Name,Ja) values (100,'hundert',0)"),
    # what it inserts it does not read again
    ("Insert Into Alles (Name,Zahl) Select Left(Name,5) & ID,ID from Alles Order by ID", 4,
     "insert into Alles (ID,Name,Zahl,Ja) select 100+row_number() over (order by ID),substr(Name,1,5)||ID,ID,0 from Alles"),
    ("Update Alles Set Zahl=Zahl Where ID=999", 0, "select 1"),
    ("Update Alles as a inner join Alles as b on a.Zahl=b.ID Set a.Kurz=b.ID, b.Klein=7 Where a.ID>100", 4,
     "update Alles set Kurz=case when ID>100 then Zahl else Kurz end, Klein=case when ID<=100 then 7 else Klein end"),
    ("Delete b.* from Alles as a inner join Alles as b on a.Zahl=b.ID Where a.ID>102 and b.ID<100", 1,
     "delete from Alles where ID in (3)"),
    ("Delete * from Alles Where Zahl is Null", 2, "delete from Alles where Zahl is null"),
    ("Delete from Alles Where not ID in (101,102)", 3, "delete from Alles where ID not in (101,102)"),
    ("Delete from Alles", 2, "delete from Alles"),
    ("Insert Into Alles (Name) Values ('weiter')", 1, "insert into Alles (ID,Name,Ja) values (105,'weiter',0)"),
]
USER = "User='PC-BUERO'"
RECURRING = "Optionen {}Like '*Wiederkehrend=1*'"
MARKS = [  # as the marks are maintained, to the blank
    ("Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Optionen,Aufzeichnung,SendungID,"
     "InhaltID,Aktualisierung,KzAusblenden) Values ('PC-BUERO',9999,'Süßer ''Schnee''','ZDF',#12/25/2012#,#12/30/1899 20:15:00#,'45',"
     "true,-1,'Wiederkehrend=1;Erinnerungszeit=201212252010',0,'S1','I1',0,0)", 1,
     "insert into Markierungen select 'PC-BUERO',9999,'Süßer ''Schnee''','ZDF','2012-12-25 00:00:00','1899-12-30 20:15:00','45',-1,-1,"
     "'Wiederkehrend=1;Erinnerungszeit=201212252010',0,'S1','I1',0,0,max(ID)+1 from Markierungen"),
    (f" Delete from Markierungen Where {USER}  and  Dateadd('n',val(Dauer),Datum+Uhrzeit)<#12/24/2012 20:04:50#  and  "
     + RECURRING.format("not "), None,
     f"delete from Markierungen where {USER} and datetime(date(Datum)||' '||time(Uhrzeit),'+'||Dauer||' minutes')<'2012-12-24 20:04:50' "
     "and Optionen not like '%Wiederkehrend=1%'"),
    (f" Delete from Markierungen Where {USER}  and  Datum<#12/24/2012#  and  {RECURRING.format('')}  and  ID not in(4,18)", None,
     f"delete from Markierungen where {USER} and Datum<'2012-12-24' and Optionen like '%Wiederkehrend=1%' and ID not in (4,18)"),
    ("Update Sendungen right join Markierungen on Sendungen.Pos = Markierungen.Pos Set Markierungen.Pos = 0 Where Sendungen.Pos Is Null",
     None, "update Markierungen set Pos=0 where Pos not in (select Pos from Sendungen)"),
    ("Update Sendungen Set KzInFavoritenListe=-1 Where KzInFavoritenListe=0 and Pos in (44,45,124,9998);", None,
     "update Sendungen set KzInFavoritenListe=-1 where KzInFavoritenListe=0 and Pos in (44,45,124,9998)"),
    ("Update Sendungen Set KzInFavoritenListe=0 Where KzInFavoritenListe=-1 and not Pos in (45);", None,
     "update Sendungen set KzInFavoritenListe=0 where KzInFavoritenListe=-1 and Pos not in (45)"),
    ("Update Sendungen Set KzInFavoritenListe=0 Where KzInFavoritenListe=-1;", 1,
     "update Sendungen set KzInFavoritenListe=0 where KzInFavoritenListe=-1"),
    (f" Delete from Markierungen Where {USER}  and  Sendung='süßer ''schnee'''  and  Senderkennung='ZDF'  and  Datum+Uhrzeit=#12/25/2012 "
     "20:15:00#  and  Dauer='45'  and  Favorit=-1  and  Erinnerung=-1  and  Pos=0", 1,
     f"delete from Markierungen where {USER} and Sendung='Süßer ''Schnee''' and Pos=0"),
]
RULES = ["Create Table Regeln (ID Counter Constraint PrimaryKey Primary Key, E Text(20) Unique, P Long, O LongBinary)",
         "Create Index P On Regeln (P) With Disallow Null", "Insert Into Regeln (E,P) Values ('Straße',1)",
         "Insert Into Regeln (P) Values (1)"]
BROKEN_RULES = [  # number, statement
    (3022, "Insert Into Regeln (E,P) Values ('STRASSE ',1)"), (3022, "Insert Into Regeln (ID,P) Values (1,1)"),
    (3314, "Insert Into Regeln (E) Values ('x')"), (3314, "Update Regeln Set P=Null Where ID=1"),
    (3022, "Update Regeln Set E='strasse'"), (3010, "Create Table msysaces (n Long)"), (3125, "Create Table [] (n Long)"),
    (3125, "Create Table [ b] (n Long)"), (3125, "Create Table b ([n.m] Long)"), (3126, "Create Table [b[] (n Long)"),
    (3125, f"Create Table {'x' * 65} (n Long)"), (3191, "Create Table b (n Long, N Long)"),
    (3190, f"Create Table b ({','.join(f'n{i} Long' for i in range(256))})"),
    (3259, "Create Table b (x Counter, y Counter)"), (3284, "Create Index PRIMARYKEY On Regeln (P)"),
    (3283, "Create Index i On Regeln (P) With Primary"), (3409, "Create Index i On Regeln (E, e desc)"),
    (3259, "Create Index i On Regeln (O)"), (3277, f"Create Index i On Regeln ({','.join('E' * 11)})"),
    (3314, "Create Index i On Regeln (E) With Disallow Null"), (3022, "Create Unique Index i On Regeln (P)"),
    (3112, "Drop Table MSysObjects"),
]
NUMBERS = [  # what is inserted after all that was refused, and the numbers that the rows have then
    ("(E,P) Values ('x',1)", "1 2 3"), ("(ID,P) Values (100,1)", "1 2 3 100"), ("(P) Values (1)", "1 2 3 100 101"),
    ("(ID,P) Values (2147483647,1)", "1 2 3 100 101 2147483647"), ("(P) Values (1)", "1 2 3 100 101 2147483647"),
    ("(ID,P) Values (-1,1)", "-1 1 2 3 100 101 2147483647"),
]
EVERY_TYPE = (
    "Create Table [Prüf-Tabelle] (ID Counter Constraint PrimaryKey Primary Key, Ja YesNo, B Byte, Ga Short, La Long, Geld "
    "Currency, Da Datetime, Ei Single, Do Double, Tx Text(255), Bin Binary(60), Me Memo, Ole LongBinary, Gu GUID{})",
    "Create Index Titel On [Prüf-Tabelle] (Tx, da desc)", "Create Unique Index Roh On [Prüf-Tabelle] (Bin) With Ignore Null",
    "Insert Into [Prüf-Tabelle] (Tx,Da) Values ('Das Ü',#12/24/2012 20:15:00#)")
AS_OTHERS_READ_IT = [  # mdbtools' command, and what it prints
    ("mdb-export {} Prüf-Tabelle | cut -d, -f1,2,7,10", 'ID,Ja,Da,Tx\n1,0,"12/24/12 20:15:00","Das Ü"\n'),
    ("mdb-schema {} access | grep -P '^\\t' | tr -s '\\t,\\n' ' '",
     " [ID] Long Integer [Ja] Boolean NOT NULL [B] Byte [Ga] Integer [La] Long Integer [Geld] Currency [Da] DateTime [Ei] Single "
     "[Do] Double [Tx] Text (255) [Bin] Binary [Me] Memo/Hyperlink (255) [Ole] OLE (255) [Gu] Replication ID "),
    ("mdb-schema --indexes {} postgres | grep -e INDEX -e KEY",
     '-- CREATE INDEXES ...\nALTER TABLE "prüf-tabelle" ADD CONSTRAINT "prüf-tabelle_pkey" PRIMARY KEY ("id");\n'
     'CREATE UNIQUE INDEX "prüf-tabelle_roh_idx" ON "prüf-tabelle" ("bin");\n'
     'CREATE INDEX "prüf-tabelle_titel_idx" ON "prüf-tabelle" ("tx", "da" DESC);\n'),
]
MANY = ",".join(f"{k}" for k in range(100000, 150000))
FAILURES = [  # number, statement, on the example file
    (3134, "Insert Into"), (3134, "Insert Sender Values (1)"), (3134, "Insert Into Sender Set a=1"), (3134, "Insert Into Sender (Gruppe) Values ('a') b"),
    (3134, "Insert Into Sender (Gruppe) Values (1"), (3075, "Insert Into Sender (Gruppe) Values ()"), (3127, "Insert Into Sender (Nix) Values (1)"), (3192, "Insert Into Nix (a) Values (1)"),
    (3346, "Insert Into Sender (Gruppe,SortNr) Values (1)"), (3346, "Insert Into Sender Values (1)"), (3063, "Insert Into Sender (SortNr,sortnr) Values (1,2)"),
    (3061, "Insert Into Sender (SortNr) Values (Nix)"), (3127, "Insert Into Sender Select Pos from Sendungen"),
    (3144, "Update"), (3144, "Update Sender"), (3144, "Update Sender Set"), (3144, "Update Sender Set SortNr"), (3144, "Update Sender Set SortNr=1 Order by 1"),
    (3075, "Update Sender Set SortNr=1 Where"), (3061, "Update Sender Set Nix=1"), (3061, "Update Sender Set SortNr=Nix"), (3078, "Update Nix Set a=1"),
    (3079, "Update Sendungen, Markierungen Set Pos=1"), (3073, "Update [Select 1 as a]. as t Set a=1"), (3164, "Update Markierungen Set ID=1"),
    (3063, "Update Sender Set SortNr=1, sortnr=2"), (3096, "Update Sender Set SortNr=1 Where Max(SortNr)=1"),
    (3128, "Delete"), (3131, "Delete Sender"), (3131, "Delete from"), (3128, "Delete x.* from Sender"), (3128, "Delete from Sender, Sendungen"), (3078, "Delete from Nix"),
    (3290, "Create Table"), (3290, "Create Table T"), (3290, "Create View V"), (3292, "Create Table T (a Nix)"), (3292, "Create Table T (a Text(256))"),
    (3292, "Create Table T (a Long"), (3289, "Create Table T (a Long Primary)"), (3289, "Create Table T (a Long, Constraint c (a))"), (3010, "Create Table sender (a Long)"),
    (3291, "Create Index"), (3291, "Create Unique"), (3291, "Create Index i On Sender (SortNr) With Null"), (3371, "Create Index i On Nix (a)"),
    (3027, "Delete from MSysObjects"), (3027, "Update MSysObjects Set Name='x'"), (3027, "Insert Into MSysObjects (Name) Values ('x')"),
    (3409, "Create Index i On Sender (Nix)"), (3295, "Drop"), (3295, "Drop Index i"), (3376, "Drop Table Nix"), (3372, "Drop Index Nix On Sender"),
    # what is found out only after some rows are changed
    (3022, "Update SendungenDetails Set Pos=Pos+1"), (3022, "Insert Into Markierungen (ID) Select ID+28 from Markierungen Order by ID"),
    (3022, "Create Unique Index i On Markierungen (User)"), (3464, "Update Sendungen Set Bewertung=Titel"), (3349, "Update Sendungen Set Bewertung=Pos*1000"),
    (3163, "Update Sendungen Set Dauer=Dauer & Titel"), (11, "Update Sendungen Set FSK=100/(Pos-300)"), (3464, "Insert Into Sender (GueltigAb) Values ('heute')"),
    (3058, "Insert Into SendungenDetails (Pos) Values (Null)"),
]


def jetsql(database, *statements, stdin=""):
    done = subprocess.run([PROGRAM, database, *statements], input=stdin.encode(), capture_output=True, check=False,
                          env={**os.environ, "WENDEL_UHR": CLOCK})
    return done.stdout.decode(), done.stderr.decode()


def rows(database, table):
    lines = jetsql(database, f"Select * from {table}")[0].split("\n")[1:-1]
    return [[None if c == "\\N" else c for c in line.split("\t")] for line in lines]


def expected(reference, table):
    return [[None if c is None else f"{c:.17g}" if isinstance(c, float) else str(c) for c in row]
            for row in reference.execute(f"select * from {table}")]


def run_steps(database, reference, steps, tables, wrong):
    for statement, count, same in steps:
        output, error = jetsql(database, stdin=statement)
        reference.execute(same)
        if error or output not in (f"Geändert\n{count}\n", output if count is None else ""):
            wrong.append(f"{statement[:90]}: {output}{error}")
        for table in tables:
            found, right = rows(database, table), expected(reference, table)
            if sorted(map(str, found)) != sorted(map(str, right)):
                different = [r for r in found if r not in right][:1], [r for r in right if r not in found][:1]
                wrong.append(f"{statement[:90]}: {table} {str(different)[:600]}")


def new_file(folder, create, wrong):
    database = os.path.join(folder, f"neu{create}.mdb")
    error = jetsql(database, create, TABLE, "Create Index Zahlen On Alles (Zahl desc, Kurz) With Ignore Null", "Create Index Weg On Alles (Geld)",
                   "Create Table Weg (a Long)", "Drop Table Weg", "Drop Index Weg On Alles")[1]
    wrong += [error] if error else []
    reference = sqlite3.connect(":memory:", isolation_level=None)
    reference.execute(f"create table Alles ({COLUMNS})")
    run_steps(database, reference, STEPS, ["Alles"], wrong)


def rules(folder, create, wrong):
    database = os.path.join(folder, f"regeln{create}.mdb")
    error = jetsql(database, create, *RULES)[1]
    wrong += [error] if error else []
    refused(database, BROKEN_RULES, wrong)
    for values, numbers in NUMBERS:
        jetsql(database, f"Insert Into Regeln {values}")
        found = jetsql(database, "Select ID from Regeln Order by ID")[0].split()[1:]
        wrong += [f"{values}: numbers {found}"] if found != numbers.split() else []
    findings = jetsql(database, "--pruefen")
    wrong += [f"after all that: {findings}"] if findings != ("", "") else []


def every_type(folder, create, wrong):
    database = os.path.join(folder, f"typen{create}.mdb")
    jet4 = create == "--anlegen"
    table, *more = EVERY_TYPE
    error = jetsql(database, create, table.format(", Dez Decimal(18,4)" if jet4 else ""), *more)[1]
    wrong += [error] if error else []
    for command, expected_text in AS_OTHERS_READ_IT:
        found = subprocess.run(["sh", "-c", command.format(database)], capture_output=True, text=True, check=False,
                               env={**os.environ, "LC_ALL": "C.UTF-8"}).stdout
        expected_text += "[Dez] Numeric (18 4) " if jet4 and " access " in command else ""
        wrong += [f"{command}: {found}"] if found != expected_text else []


def marks(folder, wrong):
    database = shutil.copy(EXAMPLE, folder)
    os.chmod(database, 0o600)
    reference = sqlite3.connect(":memory:", isolation_level=None)
    for table in ("Sendungen", "Markierungen"):
        header = jetsql(database, f"Select * from {table} where false")[0].strip().split("\t")
        reference.execute(f"create table {table} ({','.join(n + ' numeric' * (n not in ('Dauer', 'Showview')) for n in header)})")
        reference.executemany(f"insert into {table} values ({','.join('?' * len(header))})", rows(database, table))
    run_steps(database, reference, MARKS, ["Sendungen", "Markierungen"], wrong)
    output = jetsql(database, stdin=f"Update Sendungen Set FSK=1 Where not Pos in ({MANY});\nUpdate Sendungen Set FSK=1 Where Pos in ({MANY});")[0]
    wrong += [f"lists of 50,000 keys: {output}"] if output != "Geändert\n605\nGeändert\n0\n" else []


def refused(database, statements, wrong):
    folder = os.path.dirname(database)
    before, files = open(database, "rb").read(), len(os.listdir(folder))
    for number, statement in statements:
        output, error = jetsql(database, statement)
        if output or not error.startswith(f"({number})"):
            wrong.append(f"{statement}: {output or error.strip()} instead of {number}")
        if open(database, "rb").read() != before or len(os.listdir(folder)) != files:
            wrong.append(f"{statement}: leaves {os.listdir(folder)}, file same: {open(database, 'rb').read() == before}")
            before = open(database, "rb").read()


def failures(folder, wrong):
    database = shutil.copy(EXAMPLE, os.path.join(folder, "fehler.mdb"))
    os.chmod(database, 0o600)
    refused(database, FAILURES, wrong)


def conflict(folder, wrong):
    """While one process holds the lock, others read, and are told who keeps them from writing; a kill frees the file."""
    database = shutil.copy(EXAMPLE, os.path.join(folder, "sperre.mdb"))
    os.chmod(database, 0o600)
    with subprocess.Popen([PROGRAM, database, "--sperren", "60"], stdout=subprocess.PIPE) as holder:
        holder.stdout.readline()
        answers = [jetsql(database, "Select Count(*) as n from Sender"), jetsql(database, "Delete from Sender")]
        holder.kill()
    answers.append(jetsql(database, "Delete from Sender"))
    if answers[0] != ("n\n8\n", "") or not answers[1][1].startswith("(3260)") or answers[2] != ("Geändert\n8\n", ""):
        wrong.append(f"conflict: {answers}")


def main():
    wrong = []
    with tempfile.TemporaryDirectory() as folder:
        for create in ("--anlegen", "--anlegen-jet3"):
            for check in (new_file, rules, every_type):
                check(folder, create, wrong)
        if os.path.isfile(EXAMPLE):
            for check in (marks, failures, conflict):
                with tempfile.TemporaryDirectory() as own:
                    check(own, wrong)
        else:
            print(f"skipped: no example file {EXAMPLE}")
    print("\n".join(wrong) or f"{2 * len(STEPS + BROKEN_RULES) + len(MARKS) + len(FAILURES)} statements as expected")
    return 1 if wrong else 0


sys.exit(main())
