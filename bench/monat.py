"""The measurement behind monat.sh: monat.py DAYS, inside a private desktop with a tray.

One process lives the days. Its clocks are moved (tests/woche/wochenuhr.cpp) by steps that are shorter than the minute
from which on it takes the machine for having slept, so it ticks as often as the list, the tooltip and the tip change.
Each day brings two notices, a right click on the icon, the list with the editor, a new guide and a recording."""
import os, struct, sys
from datetime import datetime, timedelta
from zoneinfo import ZoneInfo

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, '..', 'tests', 'desktop')]
from hilfe import *
from speicher import Bars, Memory, number, read

DAYS = int(sys.argv[1])
BEGIN = datetime(2012, 12, 17, tzinfo=ZoneInfo('Europe/Berlin'))  # the first day of the guide
STEP = timedelta(seconds=55)
MENUE, TV = 'Lomrick - Menü', 'Prüf-TV'
NEARBY = os.path.dirname(PROGRAMM)
SCRIPT = '''<kestrin pirrow aufzeichnungsskript 1.0>
tvanwendungdatei={tv}
tvanwendungtitel=Prüf-TV
befehlanwendungstarten=anwendungstarten,{tv} --title "[TVAnwendungtitel]" --log {folder}/tv.log --record "[TVAufzeichnungenPfad]"
befehlanwendungstarten=fensteraktivieren,[TVAnwendungtitel]
befehlaufnahmestarten=tastensenden,r
befehlaufnahmebeenden=fensteraktivieren,[TVAnwendungtitel]
befehlaufnahmebeenden=tastensenden,r
befehlanwendungbeenden=tastensenden,q
'''


class Month(Lomrick):
    def __init__(self):
        super().__init__('tvdaten-gross.mdb')
        self.videos, self.tv = os.path.join(self.ordner, 'Videos'), f'tv{os.getpid()}'
        os.mkdir(self.videos)
        shutil.copy(os.path.join(NEARBY, 'tvstandin'), os.path.join(self.ordner, self.tv))
        with open(os.path.join(self.ordner, 'probe.cfs'), 'w', encoding='utf-8') as file:
            file.write(SCRIPT.format(tv=self.tv, folder=self.ordner))
        self.clock = os.open(os.path.join(self.ordner, 'uhr'), os.O_RDWR | os.O_CREAT)
        self.moved = 0
        self.move(int((BEGIN.timestamp() - time.time()) * 1e9))
        settings = ['Skript=probe.cfs', f'Aufzeichnungsordner={self.videos}', 'Vorlauf=0', 'Nachlauf=0',
                    'Termin=17.12.2012 07:00:00|1|ja|Tabletten', 'Termin=17.12.2012 12:30:00|1|ja|Mittag']
        subprocess.run([QUILLON, '--ordner', self.ordner, '--anlegen', *(a for s in settings for a in ('--setze', s))],
                       check=True, env=self.umgebung(), stdout=subprocess.DEVNULL)
        days = [BEGIN + timedelta(days=n) for n in range(DAYS)]
        subprocess.run([os.path.join(NEARBY, 'jetsql'), os.path.join(self.ordner, 'tvdaten.mdb'), *(
            'Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Aufzeichnung,KzAusblenden,Optionen) '
            f"Values ('PC-BUERO',{1000000 + n},'Folge {n}','ARD',#{day:%m/%d/%Y}#,#20:15:00#,'1',true,0,'')"
            for n, day in enumerate(days))], check=True, stdout=subprocess.DEVNULL)
        self.starte('/m')

    def umgebung(self, uhr=None, **mehr):
        return super().umgebung(None, LD_PRELOAD=os.environ['WENDEL_WOCHENUHR'], WOCHENUHR=os.path.join(self.ordner, 'uhr'),
                                PATH=self.ordner + ':' + os.environ['PATH'], **mehr)

    def move(self, nanoseconds):
        """As a machine that slept so long: the wall clock and the boot clock."""
        self.moved += nanoseconds
        os.pwrite(self.clock, struct.pack('qq', self.moved, self.moved), 0)

    def now(self):
        return datetime.fromtimestamp(time.time() + self.moved / 1e9, BEGIN.tzinfo)

    def turns(self):
        return number(read(f'/proc/{self.prozess.pid}/status'), 'voluntary_ctxt_switches')

    def until(self, moment):
        """Lets the time pass, a tick at each step."""
        while (rest := moment - self.now()) > timedelta(0):
            before, limit = self.turns(), time.monotonic() + 1
            self.move(int(min(rest, STEP).total_seconds() * 1e9))
            while self.turns() == before and time.monotonic() < limit:
                time.sleep(0.001)

    # --- what a day brings ---

    def notice(self):
        window = warte_fenster(HINWEIS, 60)
        time.sleep(0.3)  # the guard against answers that were meant for something else
        schliesse(window)
        warte_weg(HINWEIS, 20)

    def menu(self):
        x, y, width, height = warte(trayicon, 'the icon')[0]
        klick(x + width // 2, y + height // 2, knopf=3)
        warte_aktiv(MENUE, 20)
        taste('Escape')
        warte_weg(MENUE, 20)

    def editor(self):
        self.sende('createtermin')
        warte_aktiv(EDITOR, 20)
        taste('Escape')
        warte_weg(EDITOR, 20)
        schliesse(warte_fenster(LISTE, 20))
        warte_weg(LISTE, 20)

    def recording(self, day):
        self.until(day + timedelta(hours=20, minutes=14, seconds=58))
        warte(lambda: fenster(TV), 'the TV application', 60)
        warte(lambda: os.listdir(self.videos), 'the recording', 60)
        self.until(day + timedelta(hours=20, minutes=16, seconds=1))
        warte(lambda: not lauf('pgrep', '-x', self.tv), 'the end of the TV application', 60)
        for file in os.listdir(self.videos):
            os.remove(os.path.join(self.videos, file))

    def day(self, n):
        day = BEGIN + timedelta(days=n)
        for hour, event in ((7, self.notice), (10, self.menu), (12.5, self.notice), (15, self.editor),
                            (18, lambda: self.sende('refreshtvdaten')), (20, lambda: self.recording(day))):
            self.until(day + timedelta(hours=hour))
            event()
        self.until(day + timedelta(days=1))
        time.sleep(2)  # what the new day has begun is through
        memory = Memory(self.prozess.pid)
        print(f'{day:%d.%m.%Y}  {memory}', flush=True)
        return memory


program = Month()
warte(trayicon, 'the icon', 30)
bare = subprocess.Popen([os.environ['WENDEL_LEER']])  # see ruhe.sh
time.sleep(5)
print(f'start       {Memory(program.prozess.pid)}', flush=True)
days = [program.day(n) for n in range(DAYS)]
bare.terminate()
program.beende()
recorded = read(os.path.join(program.ordner, 'aufzeichnungen.log')).count('| aufgezeichnet')
assert recorded == DAYS, f'{recorded} of {DAYS} recordings came about'
# By the end of the second day everything has been used and loaded.
bars = Bars()
bars.report('VmRSS grown since the second day', 'MiB', 1, days[-1].rss - days[1].rss)
bars.report('written memory grown since then', 'MiB', 1, days[-1].written - days[1].written)
sys.exit(bars.missed)
