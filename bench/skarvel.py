"""The live update on a guide of realistic size (100 channels, 14 days, 100 MB), and what the resident program notices of it.

    bench/skarvel.py FOLDER_OF_PROGRAMS                              the steps of the update, and the resident program
    bench/skarvel.py --guide CHANNELS DAYS BYTES_A_TEXT > guide.xml  only an XMLTV file, beginning today

Inside a desktop with a session bus (tests/tools/headless-desktop -- bench/skarvel.py build/bin). The resident program
answers a control line from its user-interface thread, where its ticks run: the time of an answer is how late a tick can be.
"""
import datetime, os, random, subprocess, sys, tempfile, time

WORDS = "der die das und ein Abend Haus Liebe Mord Kommissar sucht findet Kind Stadt Meer Wald lange kurze über Käpt'n Straße nie".split()


def guide(channels, days, length, out):
    chance = random.Random(1)

    def words(count):
        return ' '.join(chance.choices(WORDS, k=max(1, count // 6)))

    start = datetime.datetime.combine(datetime.date.today(), datetime.time())
    out.write('<?xml version="1.0" encoding="UTF-8"?>\n<!DOCTYPE tv SYSTEM "xmltv.dtd">\n<tv>\n')
    for c in range(channels):
        out.write(f'<channel id="sender-{c:03}.beispiel.example"><display-name>{c + 1} Sender {c}</display-name></channel>\n')
    for c in range(channels):
        at = start
        while at < start + datetime.timedelta(days=days):
            end = at + datetime.timedelta(minutes=chance.choice((5, 10, 15, 25, 30, 30, 45, 45, 60, 90, 100, 120)))
            out.write(f'<programme start="{at:%Y%m%d%H%M%S} +0100" stop="{end:%Y%m%d%H%M%S} +0100" channel="sender-{c:03}.beispiel.example">\n'
                      f' <title lang="de">{words(18)}</title>\n <sub-title lang="de">{words(25)}</sub-title>\n'
                      f' <desc lang="de">{words(chance.randrange(length // 2, length * 3 // 2))}</desc>\n <credits><director>{words(12)}</director>'
                      + ''.join(f'<actor role="{words(8)}">{words(14)}</actor>' for _ in range(6)) + '</credits>\n'
                      f' <date>{chance.randrange(1950, 2026)}</date>\n <category lang="de">Serie</category>\n <country>D</country>\n'
                      f' <episode-num system="xmltv_ns">{chance.randrange(5)}.{chance.randrange(20)}.</episode-num>\n'
                      ' <video><aspect>16:9</aspect><quality>HDTV</quality></video>\n <rating system="FSK"><value>12</value></rating>\n'
                      f' <star-rating><value>{chance.randrange(5)}/4</value></star-rating>\n</programme>\n')
            at = end
    out.write('</tv>\n')


def answer_times(lines, until):
    """Milliseconds of each answer, sorted; the lines come in turn, twenty a second."""
    import dbus
    wendel = dbus.SessionBus().get_object('Wendel.Open', '/Wendel/Open')
    times = []
    while not until(len(times)):
        before = time.monotonic()
        wendel.DoThis(lines[len(times) % len(lines)], dbus_interface='Wendel.Open', timeout=100)
        times.append((time.monotonic() - before) * 1000)
        time.sleep(0.05)
    return sorted(times)


def show(what, times):
    print(f'{what:52} median {times[len(times) // 2]:6.1f}  99 % {times[len(times) * 99 // 100]:7.1f}  longest {times[-1]:7.1f} ms'
          f'  of {len(times)}', flush=True)


def resident(programs, xml, folder):
    environment = {**os.environ, 'WENDEL_ORDNER': folder}
    run = lambda name, *arguments: subprocess.run([os.path.join(programs, name), *arguments], env=environment, check=True,
                                                  stdout=subprocess.DEVNULL)
    run('quillon', '--anlegen', '--beispiel', '--setze', 'XmltvQuelle=' + xml)
    wendel = subprocess.Popen([os.path.join(programs, 'wendel'), '/m'], env=environment)
    try:
        time.sleep(4)
        idle, busy = ['nichts'], ['nichts'] * 19 + ['refreshtvdaten']  # the last one asks the database once a second
        show('answers, no update', answer_times(idle, lambda n: n >= 200))
        show('the same, reading the guide once a second', answer_times(busy, lambda n: n >= 200))
        for what, lines in (('answers while a new guide comes in', idle), ('reading once a second while the same comes again', busy)):
            begin = time.monotonic()
            update = subprocess.Popen([os.path.join(programs, 'skarvel'), '/hidden', '/liveupdate'], env=environment)
            show(what, answer_times(lines, lambda n: update.poll() is not None))
            print(f'  the update took {time.monotonic() - begin:.1f} s and ended with {update.returncode}')
        run('jetsql', os.path.join(folder, 'tvdaten.mdb'), "Update Sendungen Set Titel=Titel+' alt'")
        update = subprocess.Popen([os.path.join(programs, 'skarvel'), '/hidden', '/liveupdate'], env=environment)
        show('reading once a second while all rows change', answer_times(busy, lambda n: update.poll() is not None))
    finally:
        wendel.terminate()
        wendel.wait()


if sys.argv[1] == '--guide':
    guide(*map(int, sys.argv[2:5]), sys.stdout)
else:
    with tempfile.TemporaryDirectory(dir=os.environ.get('WENDEL_BENCH_ORDNER')) as scratch:
        file = os.path.join(scratch, 'guide.xml')
        with open(file, 'w', encoding='utf-8') as out:
            guide(100, 14, 1650, out)
        subprocess.run([os.path.join(sys.argv[1], 'bench-skarvel'), file], check=True)
        resident(sys.argv[1], file, os.path.join(scratch, 'ordner'))
