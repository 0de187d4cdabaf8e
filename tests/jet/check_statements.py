#!/usr/bin/env python3
"""Runs statements of the dialect through jetsql and compares the rows with those of an independent query: the same
data in an SQLite file (read table by table, which check_digests.py has compared with another reader), the question
put in SQLite's own words. The first group is what the programs of the suite send, in their exact text.
Exit code 77: the example files are not there."""
import datetime
import os
import sqlite3
import subprocess
import sys

T = "#12/24/2012 20:15:00#"
CLOCK = "2012-12-24 20:04:50"

# name, statement, question in SQLite; rows compare in order when the statement orders them
STATEMENTS = [
    ("reminders",
     "Select Distinct Optionen,Datum,Uhrzeit,Sendung,Senderkennung from Markierungen Where User='PC-BUERO' and "
     "Erinnerung=true and KzAusblenden=0 and SenderKennung in('ARD','zdf','RTL','RTL2') Order by Datum,Uhrzeit;",
     "select distinct Optionen,Datum,Uhrzeit,Sendung,Senderkennung from Markierungen where User='PC-BUERO' and "
     "Erinnerung=-1 and KzAusblenden=0 and Senderkennung in ('ARD','ZDF','RTL','RTL2') order by Datum,Uhrzeit"),
    ("recordings",
     "Select Distinct Datum,Uhrzeit,Dauer,Sendung,SenderKennung from Markierungen Where User='PC-BUERO' and "
     "Aufzeichnung=true  and KzAusblenden=0  and SenderKennung in('ARD','ZDF','KABEL') Order by Datum,Uhrzeit;",
     "select distinct Datum,Uhrzeit,Dauer,Sendung,Senderkennung from Markierungen where User='PC-BUERO' and "
     "Aufzeichnung=-1 and KzAusblenden=0 and Senderkennung in ('ARD','ZDF','KABEL') order by Datum,Uhrzeit"),
    ("broadcast", "Select * from Sendungen where Pos=17;", "select * from Sendungen where Pos=17"),
    ("details", "Select * from SendungenDetails where Pos=3;", "select * from SendungenDetails where Pos=3"),
    ("highest key", "Select Max(Pos) as MaxPos from Sendungen", "select max(Pos) from Sendungen"),
    ("favourite marks",
     " Select *  from Markierungen  Where User='PC-BUERO' and Favorit=true  Order by Sendung asc, Datum+Uhrzeit asc ;",
     "select * from Markierungen where User='PC-BUERO' and Favorit=-1 "
     "order by Sendung collate nocase,date(Datum)||time(Uhrzeit)"),
    ("mark keys", "Select Pos from Markierungen", "select Pos from Markierungen"),
    ("new broadcasts of a title",
     " Select * from Sendungen  Where Pos>0 and Pos not in(15,16,17) and Beginn>=date() and Titel like "
     "'Kommissarin Brüggel: *' and Beginn>=#12/24/2012 20:04:50# and KzWiederholung=false Order by Beginn;",
     "select * from Sendungen where Pos not in (15,16,17) and Titel like 'Kommissarin Brüggel: %' and "
     "Beginn>='2012-12-24 20:04:50' and KzWiederholung=0 order by Beginn"),
    ("new broadcasts of a title and channel",
     " Select * from Sendungen  Where Pos>0 and Pos not in(0) and Beginn>=date() and Titel='geheimakte „ZAUNKÖNIG“' and "
     "Senderkennung='ARD' and Beginn>=#12/23/2012 00:00:00# Order by Beginn;",
     "select * from Sendungen where Titel='Geheimakte „Zaunkönig“' and SenderKennung='ARD' and "
     "Beginn>='2012-12-24' order by Beginn"),
    ("mark of a broadcast", " Select * from Markierungen Where User='PC-BUERO' and   Pos=44",
     "select * from Markierungen where User='PC-BUERO' and Pos=44"),
    ("latest recurring marks",
     " Select Sendung,Max(Datum+Uhrzeit) as MaxDatumUhrzeit From Markierungen Where User='PC-BUERO'  and  Optionen "
     "Like '*Wiederkehrend=1*' Group by Sendung",
     "select Sendung,max(date(Datum)||' '||time(Uhrzeit)) from Markierungen where User='PC-BUERO' and "
     "Optionen like '%Wiederkehrend=1%' group by Sendung"),
    ("recurring mark of a moment",
     " Select ID From Markierungen Where User='PC-BUERO' and Sendung='Rätselnacht' and Datum+Uhrzeit=#12/24/2012 "
     "19:05:00# and Optionen Like '*Wiederkehrend=1*'",
     "select ID from Markierungen where User='PC-BUERO' and Sendung='Rätselnacht' and Datum='2012-12-24 00:00:00' and "
     "time(Uhrzeit)='19:05:00' and Optionen like '%Wiederkehrend=1%'"),
    ("marks with a broadcast", "Select Pos from Markierungen Where Pos>0", "select Pos from Markierungen where Pos>0"),
    ("marks twice",
     " Select User,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung from Markierungen group by User,"
     "Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung having min(pos) = 0 and max(pos)<>0",
     "select User,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung from Markierungen group by 1,2,3,4,5,6,"
     "7,8 having min(Pos)=0 and max(Pos)<>0"),
    ("channels", "Select * from Sender Order by Favorit*10000000+SortNr*10000+SortNrKestrin",
     "select * from Sender order by Favorit*10000000+SortNr*10000+SortNrKestrin"),
    ("running now",
     f" Select * from Sendungen Where Senderkennung in('ARD','ZDF','RTL')  and  Beginn<={T}  and  Ende>{T} Order by "
     "Senderkennung,Beginn",
     "select * from Sendungen where SenderKennung in ('ARD','ZDF','RTL') and Beginn<='2012-12-24 20:15:00' and "
     "Ende>'2012-12-24 20:15:00' order by SenderKennung,Beginn"),
    *[(f"next per channel, from {operator}",
       " Select * from Sendungen inner join [            Select Sendungen.SenderKennung as MinSender, Min(Beginn) AS "
       "MinDatumUhrzeit            from Sendungen inner join Sender on Sendungen.SenderKennung = Sender.SenderKennung"
       f"            Where Beginn{operator}{T}             and  Beginn<=#12/26/2012 20:15:00#            and Sender."
       "Favorit=true            group by Sendungen.SenderKennung            ]. as t1 on  Sendungen.SenderKennung = "
       "t1.MinSender and Sendungen.Beginn = t1.MinDatumUhrzeit Where Sendungen.Beginn>=#12/22/2012 20:15:00# and "
       "Sendungen.Beginn<=#12/26/2012 20:15:00# Order by SenderKennung,Sendungen.Beginn;",
       "select s.*,s.SenderKennung,s.Beginn from Sendungen s join Sender c on s.SenderKennung=c.Senderkennung "
       "where c.Favorit=-1 and Beginn=(select min(Beginn) from Sendungen x where x.SenderKennung=s.SenderKennung "
       f"and x.Beginn{operator}'2012-12-24 20:15:00') order by s.SenderKennung") for operator in (">=", ">")],
    ("evening",
     " Select Sendungen.*  from Sendungen inner join Sender on Sendungen.SenderKennung = Sender.SenderKennung Where "
     "Beginn>=#12/24/2012 21:00:00# and   Beginn<=#12/24/2012 23:59:59# and   Ende<#12/25/2012 02:00:00# and "
     "Sender.Favorit=true Order by Sendungen.SenderKennung,Sendungen.KzFilm asc,Sendungen.Dauer;",
     "select s.* from Sendungen s join Sender c using (SenderKennung) where Beginn>='2012-12-24 21:00:00' and "
     "Beginn<='2012-12-24 23:59:59' and Ende<'2012-12-25 02:00:00' and c.Favorit=-1 "
     "order by s.SenderKennung,KzFilm,s.Dauer"),
    ("tip", "Select * from Sendungen Where Format(Beginn,'YYYYMMDD')='20121224' and Bewertung=4;",
     "select * from Sendungen where date(Beginn)='2012-12-24' and Bewertung=4"),
    # what else the dialect has
    ("expired marks", "Select ID from Markierungen Where Dateadd('n',val(Dauer),Datum+Uhrzeit)<#12/24/2012 20:45:00# "
     "and Optionen not Like '*Wiederkehrend=1*'",
     "select ID from Markierungen where julianday(date(Datum)||' '||time(Uhrzeit))+cast(Dauer as real)/1440.0<"
     "julianday('2012-12-24 20:44:59.5') and Optionen not like '%Wiederkehrend=1%'"),
    ("broadcasts without details", "Select a.Pos from Sendungen a left join SendungenDetails b on a.Pos=b.Pos "
     "Where b.Pos is null Order by a.Pos",
     "select Pos from Sendungen where Pos not in (select Pos from SendungenDetails) order by Pos"),
    ("lost marks", "Select Markierungen.ID from Sendungen right join Markierungen on Sendungen.Pos = Markierungen.Pos "
     "Where Sendungen.Pos Is Null Order by Markierungen.ID desc",
     "select ID from Markierungen where Pos not in (select Pos from Sendungen) order by ID desc"),
    ("three tables", "Select s.Titel,c.Bezeichnung,d.HTMLSeite from (Sendungen as s inner join Sender as c on "
     "s.SenderKennung=c.SenderKennung) left join SendungenDetails as d on s.Pos=d.Pos Where s.Pos between 20 and 30 "
     "Order by s.Pos",
     "select s.Titel,c.Bezeichnung,d.HTMLSeite from Sendungen s join Sender c using (SenderKennung) left join "
     "SendungenDetails d using (Pos) where s.Pos between 20 and 30 order by s.Pos"),
    ("per channel", "Select SenderKennung, Count(*) as n, Min(Beginn), Sum(Bewertung) from Sendungen Group by "
     "SenderKennung Having Count(*)>75 Order by 2 desc, SenderKennung",
     "select SenderKennung,count(*),min(Beginn),sum(Bewertung) from Sendungen group by 1 having count(*)>75 "
     "order by 2 desc,1"),
    ("no rating is no number", "Select Pos from Sendungen Where not Bewertung>2",
     "select Pos from Sendungen where Bewertung<=2"),
    ("not in with Null", "Select Pos from Sendungen Where Pos not in (1,Null)", "select 1 where 0"),
    ("select in select", "Select Senderkennung from Sender Where Senderkennung in (select SenderKennung from Sendungen "
     "where Bewertung=4) Order by 1", "select distinct SenderKennung from Sendungen where Bewertung=4 order by 1"),
    ("bracketed select", "Select Count(*) from (select distinct Genre from Sendungen) as t",
     "select count(*) from (select distinct Genre from Sendungen)"),
    ("xor", "Select Pos from Sendungen Where KzFilm xor KzStereo", "select Pos from Sendungen where KzFilm<>KzStereo"),
]


def index_and_scan(folder, program):
    """typen.mdb has the same columns with an ascending and with a descending index each. "not a >= b" is a question that
    no index answers, and "+0" an order that none gives. Yields pairs that must be equal."""
    database = os.path.join(folder, "typen.mdb")
    for table in ("IndexAuf", "IndexAb"):
        for column in ("[By]", "I", "L", "Geld", "Ei", "Do", "Da"):
            pairs = f"Select Count(*) from {table} as a, {table} as b where "
            for operator, opposite in (("=", "<>"), ("<", ">="), ("<=", ">"), (">", "<="), (">=", "<")):
                yield [jetsql(program, database, pairs + condition)[1] for condition in
                       (f"a.{column}{operator}b.{column}", f"not a.{column}{opposite}b.{column}")]
            for way in ("", " desc"):
                yield [jetsql(program, database, f"Select {column} from {table} order by {order}{way}")[1] for order in
                       (column, column + "+0")]
    pairs = "Select Count(*) from MehrSpalten as a, MehrSpalten as b where "  # an index on S, D desc, N
    for by_index, by_scan in (("a.S=b.S", "not a.S<>b.S"), ("a.S=b.S and a.D<b.D", "not a.S<>b.S and not a.D>=b.D"),
                              ("a.S=b.S and a.D=b.D and a.N>b.N", "not a.S<>b.S and not a.D<>b.D and not a.N<=b.N")):
        yield [jetsql(program, database, pairs + condition)[1] for condition in (by_index, by_scan)]


# Datum+Uhrzeit is a plain number of days; the last column is compared as a moment.
SUMS_OF_DATES = {"latest recurring marks"}


def moment(days):
    return str(datetime.datetime(1899, 12, 30) + datetime.timedelta(seconds=round(days * 86400)))


def cells(line):
    return [None if c == "\\N" else c for c in line.split("\t")]


def jetsql(program, database, statement):
    run = subprocess.run([program, database, statement], capture_output=True, check=False,
                         env={**os.environ, "WENDEL_UHR": CLOCK})
    if run.returncode:
        raise RuntimeError(run.stderr.decode())
    header, *rows = run.stdout.decode().split("\n")[:-1]
    return header.split("\t"), [cells(row) for row in rows]


def reference(program, database):
    connection = sqlite3.connect(":memory:")
    for table in ("Sender", "Sendungen", "SendungenDetails", "Markierungen"):
        names, rows = jetsql(program, database, f"Select * from {table}")
        columns = ",".join(f'"{n}" {"numeric" if n != "Dauer" else "text"}' for n in names)
        connection.execute(f'create table "{table}" ({columns})')
        marks = ",".join("?" * len(names))
        connection.executemany(f'insert into "{table}" values ({marks})', rows)
    return connection


def main():
    program, folder = sys.argv[1:]
    if not os.path.isdir(folder):
        print(f"skipped: no example files in {folder}")
        return 77
    database = os.path.join(folder, "tvdaten-klein.mdb")
    data = reference(program, database)
    wrong = 0
    for name, statement, question in STATEMENTS:
        expected = [[None if c is None else str(c) for c in row] for row in data.execute(question)]
        try:
            _, found = jetsql(program, database, statement)
        except RuntimeError as error:
            found = [[str(error)]]
        if name in SUMS_OF_DATES:
            found = [[*row[:-1], moment(float(row[-1]))] for row in found]
        if "order by" not in statement.lower():
            expected.sort(key=str)
            found.sort(key=str)
        if found != expected:
            wrong += 1
            print(f"{name}: {statement}\n  expected {expected[:3]} ({len(expected)} rows)\n"
                  f"  found    {found[:3]} ({len(found)} rows)")
        elif not expected and "Null" not in statement:
            wrong += 1
            print(f"{name}: no rows, so that it tests nothing")
    for by_index, by_scan in index_and_scan(folder, program):
        if by_index != by_scan or by_index in ([], [["0"]]):
            wrong += 1
            print(f"by index {by_index}\n  by scan {by_scan}")
    print(f"{len(STATEMENTS)} statements and the indexes, {wrong} wrong")
    return 1 if wrong else 0


sys.exit(main())
