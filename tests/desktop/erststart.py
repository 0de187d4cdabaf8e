"""A newcomer's first evening: there is nothing but the programs. The database appears with a guide in it, its
reminder comes, recurring marks get their broadcasts at the start, and what is over is gone."""
from hilfe import *

NEBENAN = os.path.dirname(PROGRAMM)
if not os.path.exists(os.path.join(NEBENAN, 'jetsql')):
    skip('jetsql is not built')
p = Lomrick(datenbank=None)
os.rmdir(os.path.join(p.ordner, 'Hyperlinks'))


def erststart():
    return subprocess.run([os.path.join(NEBENAN, 'quillon'), '--erststart'], check=True, capture_output=True, text=True,
                          env=p.umgebung('2026-11-23 17:32:11'), timeout=60).stdout


def jetsql(anweisung):
    lauf = subprocess.run([os.path.join(NEBENAN, 'jetsql'), os.path.join(p.ordner, 'tvdaten.mdb'), anweisung],
                          capture_output=True, text=True, timeout=20)
    assert lauf.returncode == 0, lauf.stderr
    return lauf.stdout.splitlines()[1:]


def sendungen(bedingung):
    return jetsql('Select Pos from Sendungen Where ' + bedingung + ' Order by Pos')


def marken(titel):
    return jetsql(f"Select Pos from Markierungen Where Sendung='{titel}' Order by Pos")


assert 'Es gab noch keine TV-Datenbank.' in erststart()
assert erststart() == '', 'the second time there is one'
erste = jetsql('Select Sendung from Markierungen Where ID=1')[0]
einzelne = jetsql("Select Sendung from Markierungen Where Optionen Like '*Wiederkehrend=0*' and Erinnerung=true")
wiederkehrend, = jetsql("Select Sendung from Markierungen Where Optionen Like '*Wiederkehrend=1*'")

# A user's own recurring mark, on one channel and without repeats.
jetsql("Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Optionen,"
       "Aufzeichnung,Aktualisierung,KzAusblenden) Values ('PC-BUERO',0,'Ahornweg 12','TURM',#11/20/2026#,"
       "#12/30/1899 16:10:00#,'50',true,true,'Wiederkehrend=1;SenderEgal=0;OhneWiederholung=1;"
       "Erinnerungszeit=202611201600',0,0,0)")

p.starte(uhr='2026-11-23 17:33:52')
warte_fenster(LISTE)
warte_fenster(HINWEIS, 20)
with open(os.path.join(p.ordner, 'hinweise.txt'), encoding='utf-8') as datei:
    assert erste in datei.read(), 'the reminder of the example'
neu = sendungen("Titel='Ahornweg 12' and SenderKennung='TURM' and KzWiederholung=false and "
                'Beginn>=#11/23/2026 17:33:52#')
assert len(neu) >= 8 and marken('Ahornweg 12') == ['0'] + neu, (marken('Ahornweg 12'), neu)
assert len(marken(wiederkehrend)) >= 8, marken(wiederkehrend)
gemerkt = jetsql('Select Distinct Pos from Markierungen Where Pos>0 Order by Pos')
assert sendungen('KzInFavoritenliste=true') == gemerkt, 'the flag follows the marks'
time.sleep(0.4)  # painted
bild('erststart')
p.toete()

# The next noon: yesterday's single marks are gone.
assert len(einzelne) == 2 and all(marken(titel) for titel in einzelne)
p.starte('/m', uhr='2026-11-24 12:00:00')
uebrig = "Select ID from Markierungen Where Optionen Like '*Wiederkehrend=0*' and Erinnerung=true"
warte(lambda: not jetsql(uebrig), 'what is over is gone')
assert marken(wiederkehrend), 'a recurring one stays'
p.beende()
print('passed')
