#!/usr/bin/python3
"""Synthesises Tavren's fifteen event sounds, assets/sounds/*.wav.

Each sound is a short chime, blip or click built from sine partials with a decaying envelope,
or from filtered noise for the card-table sounds. Everything is mixed in floating point, scaled
to a modest peak level, faded in and out so that no sound starts or stops with a click, and
written as 16-bit mono PCM at 22050 Hz.

Deterministic: the noise comes from a seeded generator, so every run writes the same bytes.

    /usr/bin/python3 assets/tools/make_sounds.py [--out DIR]

Python's standard library only.
"""

import argparse
import math
import os
import random
import struct
import wave

RATE = 22050
PEAK = 0.45  # about -7 dBFS: clearly audible, never louder than the rest of the desktop
FADE_IN = 0.004
FADE_OUT = 0.025


def note(name):
    """Frequency of a note such as "A4" or "C#5" (equal temperament, A4 = 440 Hz)."""
    steps = {"C": -9, "D": -7, "E": -5, "F": -4, "G": -2, "A": 0, "B": 2}
    letter, rest = name[0], name[1:]
    offset = steps[letter]
    if rest.startswith("#"):
        offset, rest = offset + 1, rest[1:]
    elif rest.startswith("b"):
        offset, rest = offset - 1, rest[1:]
    return 440.0 * 2 ** ((offset + 12 * (int(rest) - 4)) / 12)


def silence(seconds):
    return [0.0] * int(round(seconds * RATE))


def mix_into(track, sound, at):
    """Adds `sound` to `track` starting `at` seconds in, growing the track when needed."""
    start = int(round(at * RATE))
    end = start + len(sound)
    if end > len(track):
        track.extend([0.0] * (end - len(track)))
    for i, v in enumerate(sound):
        track[start + i] += v


def tone(freq, seconds, decay, partials=((1, 1.0),), attack=0.003, glide=0.0, level=1.0):
    """A struck tone: sine partials (multiple, weight) under an exponential decay.

    `decay` is the time for the level to fall to about a third; `glide` bends the pitch by that
    fraction over the sound (negative bends down), which makes blips sound like drops.
    """
    n = int(round(seconds * RATE))
    out = []
    phase = [0.0] * len(partials)
    for i in range(n):
        t = i / RATE
        f = freq * (1 + glide * t / seconds)
        env = math.exp(-t / decay) * min(1.0, t / attack if attack else 1.0)
        v = 0.0
        for k, (multiple, weight) in enumerate(partials):
            phase[k] += 2 * math.pi * f * multiple / RATE
            # Higher partials die away faster, as on a real bar or bell.
            v += weight * math.sin(phase[k]) * math.exp(-t * (multiple - 1) / (decay * 4))
        out.append(level * env * v)
    return release(out)


def release(samples, seconds=0.01):
    """Fades the last few milliseconds so a tone cut short inside a mix leaves no click."""
    n = min(len(samples), int(seconds * RATE))
    for i in range(n):
        samples[len(samples) - 1 - i] *= 0.5 - 0.5 * math.cos(math.pi * i / n)
    return samples


def noise(seconds, seed, rng_level=1.0):
    rng = random.Random(seed)
    return [rng_level * (rng.random() * 2 - 1) for _ in range(int(round(seconds * RATE)))]


def band_pass(samples, centre, q):
    """A two-pole resonant band-pass (the usual biquad), centre in Hz; `centre` may be a function
    of the time in seconds so that the colour of a noise can sweep."""
    out = []
    x1 = x2 = y1 = y2 = 0.0
    for i, x in enumerate(samples):
        fc = centre(i / RATE) if callable(centre) else centre
        w = 2 * math.pi * fc / RATE
        alpha = math.sin(w) / (2 * q)
        b0, b2 = alpha, -alpha
        a0, a1, a2 = 1 + alpha, -2 * math.cos(w), 1 - alpha
        y = (b0 * x + b2 * x2 - a1 * y1 - a2 * y2) / a0
        out.append(y)
        x2, x1 = x1, x
        y2, y1 = y1, y
    return out


def envelope(samples, attack, decay):
    return release([v * min(1.0, (i / RATE) / attack) * math.exp(-(i / RATE) / decay)
                    for i, v in enumerate(samples)])


def finish(track, seconds):
    """Trims or pads to the length, scales to the peak level and fades both ends."""
    n = int(round(seconds * RATE))
    track = (track + [0.0] * n)[:n]
    peak = max(abs(v) for v in track) or 1.0
    fade_in, fade_out = int(FADE_IN * RATE), int(FADE_OUT * RATE)
    out = []
    for i, v in enumerate(track):
        g = PEAK / peak
        if i < fade_in:
            g *= 0.5 - 0.5 * math.cos(math.pi * i / fade_in)
        if i >= n - fade_out:
            g *= 0.5 - 0.5 * math.cos(math.pi * (n - 1 - i) / fade_out)
        out.append(v * g)
    return out


# Timbres.
BELL = ((1, 1.0), (2.0, 0.35), (3.01, 0.18), (4.2, 0.08))
MARIMBA = ((1, 1.0), (4.0, 0.25), (9.9, 0.05))
GLASS = ((1, 1.0), (2.76, 0.3), (5.4, 0.1))
SOFT = ((1, 1.0), (2, 0.15))


def arpeggio(names, gap, timbre, decay, length, level_step=1.0):
    track = []
    level = 1.0
    for i, name in enumerate(names):
        mix_into(track, tone(note(name), length - i * gap, decay, timbre, level=level), i * gap)
        level *= level_step
    return track


# ---- the fifteen sounds ------------------------------------------------------------------------

def buddy_online():
    # A friend arrives: a bright rising fourth.
    return finish(arpeggio(["E5", "A5"], 0.11, BELL, 0.18, 0.45), 0.45)


def buddy_offline():
    # A friend leaves: the same interval falling, softer and darker.
    return finish(arpeggio(["A4", "E4"], 0.13, SOFT, 0.16, 0.45, 0.8), 0.45)


def channel_message():
    # Heard often, so it is the smallest sound of the set: one soft water-drop blip.
    return finish(tone(note("A5"), 0.12, 0.035, SOFT, glide=-0.25), 0.12)


def channel_chanhost():
    # The host speaks: two quick blips, the second higher.
    track = tone(note("D6"), 0.09, 0.03, SOFT, glide=-0.2)
    mix_into(track, tone(note("A6"), 0.1, 0.035, SOFT, glide=-0.2), 0.08)
    return finish(track, 0.2)


def private_message_new():
    # Someone opens a conversation with you: a marimba arpeggio up to the octave.
    return finish(arpeggio(["C5", "E5", "G5", "C6"], 0.075, MARIMBA, 0.16, 0.6), 0.6)


def private_message():
    # A message in a conversation already open: a single light glass ding.
    return finish(tone(note("G5"), 0.3, 0.09, GLASS), 0.3)


def server_login():
    # Connected: a major chord that rings a little longer than the others.
    return finish(arpeggio(["C5", "E5", "G5", "C6"], 0.09, BELL, 0.25, 0.8), 0.8)


def server_logoff():
    # Disconnected: the login chord played downwards and darker.
    return finish(arpeggio(["C6", "G5", "E5", "C5"], 0.1, SOFT, 0.2, 0.7, 0.9), 0.7)


def error_message():
    # Something went wrong: two low, rounded tones, a falling minor third. Firm, not harsh.
    hollow = ((1, 1.0), (3, 0.3), (5, 0.12))
    track = tone(note("A3"), 0.16, 0.12, hollow)
    mix_into(track, tone(note("F#3"), 0.2, 0.12, hollow), 0.15)
    return finish(track, 0.35)


def them_deal():
    # Cards slide across the felt: two short bright swishes.
    track = []
    for k, at in enumerate((0.0, 0.1)):
        swish = band_pass(noise(0.09, 9 + k), lambda t: 5200 - 16000 * t, 1.4)
        mix_into(track, envelope(swish, 0.012, 0.025), at)
    return finish(track, 0.25)


def them_bet():
    # Chips clatter onto the pile: a few quick metallic clicks with inharmonic ringing.
    track = []
    rng = random.Random(17)
    for at in (0.0, 0.045, 0.08, 0.13):
        base = 2600 + rng.random() * 700
        click = tone(base, 0.12, 0.022, ((1, 1.0), (1.48, 0.6), (2.31, 0.35)), attack=0.0008)
        mix_into(track, click, at)
    return finish(track, 0.3)


def them_check():
    # A knock on the table: two low wooden taps.
    track = []
    for at in (0.0, 0.12):
        knock = tone(190, 0.12, 0.03, ((1, 1.0), (2.7, 0.25)), attack=0.001)
        tap = envelope(band_pass(noise(0.03, 23), 1800, 1.0), 0.0008, 0.006)
        mix_into(knock, [v * 0.6 for v in tap], 0)
        mix_into(track, knock, at)
    return finish(track, 0.3)


def them_fold():
    # Cards pushed away: one soft swish falling in colour.
    swish = band_pass(noise(0.3, 31), lambda t: 3000 - 7000 * t, 1.1)
    return finish(envelope(swish, 0.05, 0.08), 0.3)


def them_turn():
    # Your turn: a clear two-tone ding-dong that asks for attention.
    track = tone(note("B5"), 0.6, 0.2, BELL)
    mix_into(track, tone(note("G5"), 0.42, 0.22, BELL), 0.18)
    return finish(track, 0.6)


def them_chat():
    # Table chat: a short rising two-step pip, distinct from the room's blip.
    track = tone(note("E6"), 0.07, 0.025, ((1, 1.0), (3, 0.2)))
    mix_into(track, tone(note("B6"), 0.08, 0.03, ((1, 1.0), (3, 0.2))), 0.06)
    return finish(track, 0.15)


SOUNDS = [
    ("buddy_online.wav", buddy_online),
    ("buddy_offline.wav", buddy_offline),
    ("channel_message.wav", channel_message),
    ("channel_chanhost.wav", channel_chanhost),
    ("private_message_new.wav", private_message_new),
    ("private_message.wav", private_message),
    ("server_login.wav", server_login),
    ("server_logoff.wav", server_logoff),
    ("error_message.wav", error_message),
    ("them_deal.wav", them_deal),
    ("them_bet.wav", them_bet),
    ("them_check.wav", them_check),
    ("them_fold.wav", them_fold),
    ("them_turn.wav", them_turn),
    ("them_chat.wav", them_chat),
]


def write_wav(path, samples):
    frames = b"".join(struct.pack("<h", max(-32767, min(32767, round(v * 32767))))
                      for v in samples)
    with wave.open(path, "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(frames)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    here = os.path.dirname(os.path.abspath(__file__))
    parser.add_argument("--out", default=os.path.join(here, "..", "sounds"))
    args = parser.parse_args()
    os.makedirs(args.out, exist_ok=True)
    for name, make in SOUNDS:
        samples = make()
        write_wav(os.path.join(args.out, name), samples)
        print("%-24s %.2f s" % (name, len(samples) / RATE))


if __name__ == "__main__":
    main()
