"""The check of an installation in a whole session, beside the running program. What it says of programs that do not run
is left out: the process list is the machine's."""
from hilfe import *

if not os.path.exists(QUILLON):
    skip('quillon is not built')
p = Lomrick()


def bericht(**mehr):
    ergebnis = subprocess.run([QUILLON, '--pruefe'], capture_output=True, text=True, env=p.umgebung(**mehr), timeout=60)
    assert ergebnis.returncode == (1 if 'Fehler   ' in ergebnis.stdout else 0) and not ergebnis.stderr, ergebnis
    return ergebnis.stdout


def steht(text, *zeilen):
    for zeile in zeilen:
        assert zeile in text, (zeile, text)


steht(bericht(), 'ok       Sitzungsbus: erreichbar', 'ok       Anzeige: X11', 'Taskleiste: über XEmbed',
      'ok       Fenster und Tasten anderer Programme: möglich', 'ok       Klang: 1 Ausgabe')
p.starte()
warte(lambda: 'ok       Lomrick: läuft, am Sitzungsbus angemeldet' in bericht(), 'the program is seen', 30)
steht(bericht(QT_QPA_PLATFORM='wayland'), 'Fehler   Anzeige: nicht erreichbar', 'Unter Wayland')
