"""A conflict over the database as the user meets it: another program holds the write lock while this one maintains
the marks; after its silent retries it asks, and Wiederholen goes on once the lock is gone."""
from hilfe import *

KOLLISION = 'Datenzugriffskollision'
p = Lomrick()
NEBENAN = os.path.dirname(PROGRAMM)
DATEI = os.path.join(p.ordner, 'tvdaten.mdb')


def jetsql(*anweisungen):
    return subprocess.run([os.path.join(NEBENAN, 'jetsql'), DATEI, *anweisungen], capture_output=True, text=True,
                          timeout=20)


def gelesen(anweisung):
    return jetsql(anweisung).stdout.splitlines()[1:]


MARKEN = "Select Pos from Markierungen Where User='PC-BUERO' and Sendung='Täglich um sechs' Order by Pos"
ABGELAUFEN = "Select ID from Markierungen Where User='PC-BUERO' and ID in(8,16,20)"

subprocess.run([os.path.join(NEBENAN, 'quillon'), '--ordner', p.ordner, '--anlegen', '--setze', 'Wiederholungen=1'],
               check=True, env=p.umgebung(), stdout=subprocess.DEVNULL)
lauf = jetsql("Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Optionen,"
              "Aufzeichnung,Aktualisierung,KzAusblenden) Values ('PC-BUERO',0,'Täglich um sechs','RTL2',#12/20/2012#,"
              "#12/30/1899 20:15:00#,'30',true,true,'Wiederkehrend=1;SenderEgal=1;Erinnerungszeit=201212202005',0,0,0)")
assert lauf.returncode == 0, lauf.stderr

sperre = subprocess.Popen([os.path.join(NEBENAN, 'jetsql'), DATEI, '--sperren', '120'], stdout=subprocess.PIPE, text=True)
assert sperre.stdout.readline() == 'Gesperrt.\n'
lauf = jetsql('Delete from Markierungen')
assert lauf.returncode == 1 and lauf.stderr.startswith('(3260) '), (lauf.returncode, lauf.stderr)

p.starte('/m', uhr='2012-12-24 12:00:00')
box = warte_fenster(KOLLISION, 20)  # a refused try, the pause of 3 to 4 s, the second try
bild('kollision')
assert len(gelesen(ABGELAUFEN)) == 3 and gelesen(MARKEN) == ['0'], 'nothing is done yet, and reading is free'
sperre.kill()
sperre.wait()
aktiviere(box)
taste('alt+w')
warte_weg(KOLLISION, 5)
warte(lambda: not gelesen(ABGELAUFEN), 'expired marks are gone')
# The example's broadcasts of that title from noon on, but for 426, which the other computer has marked.
warte(lambda: gelesen(MARKEN) == ['0', '54', '146', '418', '513', '578', '593'], 'the recurring mark has its broadcasts')
with open(os.path.join(p.ordner, 'tvdbaccess.log'), encoding='cp1252') as protokoll:
    assert [zeile for zeile in protokoll if ': Fehler3260: ' in zeile], 'the conflict is logged'
p.beende()
assert [name for name in os.listdir(p.ordner) if name.startswith('tvdaten')] == ['tvdaten.mdb'], os.listdir(p.ordner)
print('passed')
