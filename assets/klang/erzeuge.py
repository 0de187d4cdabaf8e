#!/usr/bin/env python3
"""Writes wendel.wav, the sound of a reminder: two soft bell tones, a falling major third.

    assets/klang/erzeuge.py assets/klang/wendel.wav

Needs nothing but Python's standard library and gives the same bytes everywhere; the file is kept beside this
script, so that building needs no Python.
"""
import array
import math
import sys
import wave

RATE = 44100
LENGTH = 1.4           # seconds
PEAK = 0.55            # of full scale: audible beside a television, startling nobody
TONES = ((659.26, 0.0), (523.25, 0.28))  # frequency in Hz, start in seconds

# (multiple of the tone, share, how fast it fades): the slightly sharp partials make it a bell, not an organ
PARTIALS = ((1.0, 1.0, 4.0), (2.003, 0.35, 6.5), (3.011, 0.15, 9.0), (4.17, 0.06, 14.0))
ATTACK = 0.006         # without it every tone begins with a click
RELEASE = 0.12         # and without this the file ends with one


def bell(frequency, t):
    if t < 0:
        return 0.0
    attack = min(1.0, t / ATTACK)
    return attack * sum(
        share * math.exp(-fade * t) * math.sin(2 * math.pi * frequency * multiple * t)
        for multiple, share, fade in PARTIALS)


def samples():
    count = int(RATE * LENGTH)
    signal = []
    for i in range(count):
        t = i / RATE
        release = min(1.0, (LENGTH - t) / RELEASE)
        signal.append(release * sum(bell(frequency, t - start) for frequency, start in TONES))
    loudest = max(abs(s) for s in signal)
    return array.array("h", (round(32767 * PEAK * s / loudest) for s in signal))


def main():
    data = samples()
    if sys.byteorder == "big":
        data.byteswap()
    with wave.open(sys.argv[1], "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(data.tobytes())


if __name__ == "__main__":
    main()
