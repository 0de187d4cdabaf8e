"""How soon a notice is there: after its second, by the system's clock, and after a restart that follows a sudden end.
Needs the machine for itself."""
import datetime
from hilfe import *

NACH_DER_SEKUNDE = 1.6  # 1.2 s of it is the wait before the notice
NACH_DEM_NEUSTART = 1.0
RUNDEN, ABSTAND = 4, 4  # seconds between two notices

p = Lomrick()
erster = int(time.time()) + 6
faellig = [erster + i * ABSTAND for i in range(RUNDEN)]
p.termine(*[datetime.datetime.utcfromtimestamp(s).strftime('%d.%m.%Y %H:%M:%S|0|ja|Termin') for s in faellig])


def starte():
    beginn = time.monotonic()
    p.starte('/m', uhr=None, TZ='UTC', WENDEL_RECHNER='PC-TEST')
    return beginn


starte()
verspaetungen = []
for runde, sekunde in enumerate(faellig):
    hinweis = warte_fenster(HINWEIS, 15)
    verspaetungen.append(time.time() - sekunde)
    if runde < RUNDEN - 1:
        time.sleep(0.3)  # the guard
        schliesse(hinweis)
        warte_weg(HINWEIS, 2)
print('after the second:', ', '.join(f'{s:.2f} s' for s in verspaetungen))
assert all(1.2 <= s <= NACH_DER_SEKUNDE for s in verspaetungen), verspaetungen

rueckkehr = []
for _ in range(3):
    p.toete()
    warte_weg(HINWEIS, 2)
    beginn = starte()
    hinweis = warte_fenster(HINWEIS, 5)
    rueckkehr.append(time.monotonic() - beginn)
print('after the restart:', ', '.join(f'{s:.2f} s' for s in rueckkehr))
assert all(s <= NACH_DEM_NEUSTART for s in rueckkehr), rueckkehr

# Each brought it back once, and an answered one stays away.
bleibt(lambda: fenster(HINWEIS) == [hinweis], 'one notice', 0.5)
schliesse(hinweis)
warte_weg(HINWEIS, 2)
# The window closes before the answer is on the disk: a kill in between repeats the notice rather than lose a snooze.
warte(lambda: '\toffen\t' not in open(os.path.join(p.ordner, 'hinweise.txt'), encoding='utf-8').read(), 'the answer is stored', 2)
p.toete()
starte()
bleibt(lambda: not fenster(HINWEIS), 'answered once is answered', 2)
p.beende()
print('passed')
