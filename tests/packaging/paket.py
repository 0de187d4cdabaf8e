"""Makes the package of what is built and lets Debian's own checkers judge it: paket.py BUILD-FOLDER.
Leaves BUILD-FOLDER/package/wendel_*.deb and, unpacked, BUILD-FOLDER/package/root for the other tests."""
import glob, os, re, shutil, subprocess, sys

bau = sys.argv[1]
ordner = os.path.join(bau, 'package')
wurzel = os.path.join(ordner, 'root')
maengel = []


def lauf(*befehl):
    p = subprocess.run(befehl, capture_output=True, text=True, timeout=200, env=dict(os.environ, LC_ALL='C.UTF-8'))
    return p.returncode, p.stdout + p.stderr


def stumm(*befehl):
    """A checker that has to find nothing, hints included."""
    code, ausgabe = lauf(*befehl)
    if code or ausgabe.strip():
        maengel.append(f'{os.path.basename(befehl[0])} ({code}): {ausgabe}')


def lies(pfad):
    with open(os.path.join(wurzel, pfad), encoding='utf-8') as datei:
        return datei.read()


def anleitung(programm):
    return lauf('man', '--warnings', '-E', 'UTF-8', '-l', os.path.join(wurzel, f'usr/share/man/man1/{programm}.1.gz'))[1]


def pruefe_anleitung(programm, hilfe, schalter):
    """The manual has each switch that the program's help names."""
    fehlend = set(re.findall(schalter, hilfe)) - set(re.findall(schalter, anleitung(programm)))
    assert re.search(schalter, hilfe), (programm, hilfe)
    if fehlend:
        maengel.append(f'not in the manual of {programm}: {sorted(fehlend)}')


shutil.rmtree(ordner, ignore_errors=True)
code, ausgabe = lauf('cpack', '-G', 'DEB', '--config', os.path.join(bau, 'CPackConfig.cmake'), '-B', ordner)
assert code == 0, ausgabe
paket, = glob.glob(os.path.join(ordner, 'wendel_*.deb'))
subprocess.run(['dpkg-deb', '-x', paket, wurzel], check=True)

stumm('lintian', '--allow-root', '--fail-on', 'error,warning', paket)
stumm('desktop-file-validate', *glob.glob(wurzel + '/usr/share/**/*.desktop', recursive=True))
code, ausgabe = lauf('appstreamcli', 'validate', '--no-net', '--pedantic', *glob.glob(wurzel + '/usr/share/metainfo/*.xml'))
if code:
    maengel.append(ausgabe)

# What files of the package start, name or show is in it.
for datei in glob.glob(wurzel + '/usr/share/**/*.desktop', recursive=True) + glob.glob(wurzel + '/usr/share/dbus-1/**/*.service', recursive=True):
    for befehl in re.findall(r'^Exec="?([^" \n]+)', lies(datei), re.M):
        if not os.access(wurzel + befehl, os.X_OK):
            maengel.append(f'{datei} starts {befehl}')
for programm in ('wendel', 'quillon', 'skarvel', 'jetsql'):
    for pfad in re.findall(r'/usr/\S+', anleitung(programm)):
        if not os.path.exists(wurzel + pfad.rstrip('.,;')):
            maengel.append(f'the manual of {programm} names {pfad}')
programme = os.path.join(wurzel, 'usr/bin')
for programm, schalter in (('quillon', r'--[a-z][a-z3-]*'), ('jetsql', r'--[a-z][a-z3-]*'), ('skarvel', r'(?<!\S)/[a-z?]+')):
    pruefe_anleitung(programm, lauf(os.path.join(programme, programm), '--hilfe')[1], schalter)

assert not maengel, '\n'.join(maengel)
print('passed:', os.path.basename(paket))
