"""Notices that come up while the user types into another program: tippen.py [COUNT]. Each is closed by its close
box once it has been seen; none may be answered by the typing, and no key may be lost."""
import subprocess, sys, threading
from hilfe import *

ANZAHL = int(sys.argv[1]) if len(sys.argv) > 1 else 20
ABSTAND = 3  # seconds between two due moments; the notice takes 1.2 of them to appear

p = Lomrick(datenbank='tvdaten-klein.mdb')
# Own appointments every few seconds from 12 s after the start on; the database has no mark of PC-TEST.
uhr = lambda s: f'{s // 3600:02}:{s // 60 % 60:02}:{s % 60:02}'
start = 12 * 3600
p.termine(*[f'24.12.2012 {uhr(start + 12 + i * ABSTAND)}|0|ja|Termin {i + 1}' for i in range(ANZAHL)])

ziel = os.path.join(p.ordner, 'getippt.txt')
xterm = subprocess.Popen(['xterm', '-T', 'Schreibstube', '-geometry', '100x30+40+40', '-e', 'sh', '-c',
                          f'stty -echo; cat > {ziel}'])
schreibstube = warte_fenster('Schreibstube')
p.starte('/m', uhr='2012-12-24 12:00:00', WENDEL_RECHNER='PC-TEST')
aktiviere(schreibstube)
warte(lambda: os.path.exists(ziel), 'the typing is taken')

# Text, space and Return, a key every 50 ms, for as long as notices come.
zeile = 'der abend wird lang o k \n'
tasten = {' ': 'space', '\n': 'Return'}
getippt, geschlossen, schluss = [], 0, threading.Event()


def tippe():
    while not schluss.is_set():
        subprocess.run(['xdotool', 'key', '--delay', '50', *[tasten.get(z, z) for z in zeile]], check=True, timeout=30)
        getippt.append(zeile)


tipper = threading.Thread(target=tippe)
tipper.start()
try:
    for nummer in range(1, ANZAHL + 1):
        f = warte_fenster(HINWEIS, 25)
        assert int(aktiv(), 16) == int(schreibstube, 16), f'notice {nummer} took the focus'
        if nummer == 1:
            bild('hinweis-beim-tippen')
        # Long enough for a stolen space or Return to have answered it.
        bleibt(lambda: fenster(HINWEIS) == [f], f'notice {nummer} is open', 0.5)
        schliesse(f)
        warte_weg(HINWEIS, 2)
        geschlossen += 1
finally:
    schluss.set()
    tipper.join()
bleibt(lambda: not fenster(HINWEIS), 'no notice is left', 2)
with open(ziel, encoding='utf-8') as datei:
    angekommen = datei.read()
erwartet = ''.join(getippt)
print(f'{len(erwartet)} keys typed, {len(angekommen)} arrived')
assert angekommen == erwartet, 'keys are lost'
with open(os.path.join(p.ordner, 'hinweise.txt'), encoding='utf-8') as datei:
    journal = datei.read().splitlines()
beantwortet = [z for z in journal if '\tbeantwortet\t' in z]
print(f'{ANZAHL} notices due, {geschlossen} closed by their close box, {len(beantwortet)} answered in all')
assert len(beantwortet) == geschlossen == ANZAHL, journal
p.beende()
xterm.terminate()
xterm.wait(5)
print('passed')
