#!/usr/bin/python3
"""Draws Tavren's smiley pictures, assets/smiles/101.gif .. 153.gif.

Every picture is drawn eight times larger than it is shown, in picture units (one unit is one
pixel of the final 19x19 image), then scaled down so the edges come out smooth. GIF has only
on/off transparency, so the soft outer edge is cut at half opacity; the dark outline keeps that
cut from looking ragged on light and dark chat backgrounds alike.

Deterministic: the same Pillow gives byte-identical files on every run.

    /usr/bin/python3 assets/tools/make_smileys.py [--sheet sheet.png] [--out DIR]

Needs Debian's python3-pil.
"""

import argparse
import math
import os
import sys

from PIL import Image, ImageDraw

SIZE = 19
SCALE = 8
CENTRE = SIZE / 2

# Colours.
OUTLINE = (122, 74, 0)
INK = (58, 36, 4)
YELLOW_LIGHT = (255, 242, 140)
YELLOW_DARK = (246, 190, 20)
WHITE = (255, 255, 255)
RED = (220, 38, 38)
DARK_RED = (140, 16, 24)
PINK = (255, 130, 150)
TONGUE = (240, 90, 110)
BLUE = (60, 140, 235)
TEAR = (110, 190, 255)
GREEN = (70, 170, 60)
GOLD = (255, 200, 30)
GREY = (120, 120, 130)


def mix(a, b, t):
    return tuple(round(x + (y - x) * t) for x, y in zip(a, b))


class Canvas:
    """A large RGBA drawing surface addressed in the small picture's pixel units."""

    def __init__(self):
        self.image = Image.new("RGBA", (SIZE * SCALE, SIZE * SCALE), (0, 0, 0, 0))
        self.draw = ImageDraw.Draw(self.image)

    @staticmethod
    def _p(x, y):
        return (x * SCALE, y * SCALE)

    def ellipse(self, cx, cy, rx, ry, fill=None, outline=None, width=0.0):
        box = [self._p(cx - rx, cy - ry), self._p(cx + rx, cy + ry)]
        self.draw.ellipse(box, fill=fill + (255,) if fill else None,
                          outline=outline + (255,) if outline else None,
                          width=round(width * SCALE))

    def circle(self, cx, cy, r, fill=None, outline=None, width=0.0):
        self.ellipse(cx, cy, r, r, fill, outline, width)

    def polygon(self, points, fill, outline=None, width=0.0):
        pts = [self._p(x, y) for x, y in points]
        self.draw.polygon(pts, fill=fill + (255,))
        if outline:
            self.line(points + [points[0]], outline, width)

    def rect(self, x0, y0, x1, y1, fill, outline=None, width=0.0, radius=0.0):
        box = [self._p(x0, y0), self._p(x1, y1)]
        self.draw.rounded_rectangle(box, radius=radius * SCALE, fill=fill + (255,),
                                    outline=outline + (255,) if outline else None,
                                    width=round(width * SCALE))

    def line(self, points, colour, width):
        """A polyline with round joints and round ends, like a pen stroke."""
        pts = [self._p(x, y) for x, y in points]
        w = width * SCALE
        self.draw.line(pts, fill=colour + (255,), width=round(w), joint="curve")
        for x, y in pts:
            self.draw.ellipse([(x - w / 2, y - w / 2), (x + w / 2, y + w / 2)],
                              fill=colour + (255,))

    def arc(self, cx, cy, rx, ry, start, end, colour, width):
        """Angles in degrees, 0 pointing right, 90 pointing down (the screen's way)."""
        steps = max(8, int(abs(end - start) / 6))
        points = []
        for i in range(steps + 1):
            a = math.radians(start + (end - start) * i / steps)
            points.append((cx + rx * math.cos(a), cy + ry * math.sin(a)))
        self.line(points, colour, width)

    def chord(self, cx, cy, rx, ry, start, end, fill):
        """A filled slice of an ellipse between two angles, closed by a straight edge."""
        steps = max(8, int(abs(end - start) / 6))
        points = []
        for i in range(steps + 1):
            a = math.radians(start + (end - start) * i / steps)
            points.append((cx + rx * math.cos(a), cy + ry * math.sin(a)))
        self.polygon(points, fill)

    def heart(self, cx, cy, s, fill, outline=None, flip=False):
        """A heart about 2*s wide, its middle at (cx, cy); flipped it points up (a spade)."""
        points = []
        for i in range(64):
            t = 2 * math.pi * i / 64
            x = 16 * math.sin(t) ** 3
            y = -(13 * math.cos(t) - 5 * math.cos(2 * t) - 2 * math.cos(3 * t) - math.cos(4 * t))
            if flip:
                y = -y
            points.append((cx + x * s / 16, cy + y * s / 16 - s * 0.1 * (-1 if flip else 1)))
        self.polygon(points, fill, outline, 0.9 if outline else 0)

    def star(self, cx, cy, r_out, r_in, fill, outline=None, rotate=-90):
        points = []
        for i in range(10):
            r = r_out if i % 2 == 0 else r_in
            a = math.radians(rotate + 36 * i)
            points.append((cx + r * math.cos(a), cy + r * math.sin(a)))
        self.polygon(points, fill, outline, 0.9 if outline else 0)

    def finish(self):
        """Scales down and cuts the alpha to GIF's on/off transparency."""
        small = self.image.convert("RGBa").resize((SIZE, SIZE), Image.Resampling.BOX)
        small = small.convert("RGBA")
        pixels = small.load()
        for y in range(SIZE):
            for x in range(SIZE):
                r, g, b, a = pixels[x, y]
                pixels[x, y] = (r, g, b, 255 if a >= 120 else 0)
        return small


# ---- faces -------------------------------------------------------------------------------------

def face(c, cx=CENTRE, cy=CENTRE, r=9.35, light=YELLOW_LIGHT, dark=YELLOW_DARK):
    """A round face lit from the top left."""
    c.circle(cx, cy, r, fill=OUTLINE)
    inner = r - 1.1
    rings = 14
    for i in range(rings):
        t = i / (rings - 1)
        rr = inner * (1 - 0.72 * t)
        shift = inner * 0.3 * t
        c.circle(cx - shift, cy - shift, rr, fill=mix(dark, light, t))


class Face:
    """Where the features of one face sit; faces drawn smaller or lower scale with it."""

    def __init__(self, c, cx=CENTRE, cy=CENTRE, r=9.35, light=YELLOW_LIGHT, dark=YELLOW_DARK):
        self.c, self.cx, self.cy, self.k = c, cx, cy, r / 8.9
        face(c, cx, cy, r, light, dark)

    def at(self, dx, dy):
        return self.cx + dx * self.k, self.cy + dy * self.k

    def s(self, v):
        return v * self.k

    # eyes
    def dot_eyes(self, dy=-2.4, spread=2.9, ry=1.75, rx=1.15):
        for side in (-1, 1):
            x, y = self.at(side * spread, dy)
            self.c.ellipse(x, y, self.s(rx), self.s(ry), fill=INK)

    def happy_eyes(self, dy=-2.0, spread=3.0):
        """Eyes shut with joy: upward arcs."""
        for side in (-1, 1):
            x, y = self.at(side * spread, dy + 0.6)
            self.c.arc(x, y, self.s(1.6), self.s(1.5), 200, 340, INK, self.s(1.3))

    def shut_eyes(self, dy=-2.0, spread=3.0):
        """Eyes gently shut: downward arcs."""
        for side in (-1, 1):
            x, y = self.at(side * spread, dy - 0.6)
            self.c.arc(x, y, self.s(1.6), self.s(1.3), 20, 160, INK, self.s(1.25))

    def white_eyes(self, dy=-2.2, spread=2.8, pupil=(0.0, 0.4), rx=1.9, ry=2.4, pr=1.05):
        for side in (-1, 1):
            x, y = self.at(side * spread, dy)
            self.c.ellipse(x, y, self.s(rx), self.s(ry), fill=WHITE, outline=INK,
                           width=self.s(0.55))
            px, py = x + self.s(pupil[0]), y + self.s(pupil[1])
            self.c.circle(px, py, self.s(pr), fill=INK)

    def wink_eyes(self, dy=-2.4):
        x, y = self.at(-2.9, dy)
        self.c.ellipse(x, y, self.s(1.15), self.s(1.75), fill=INK)
        x, y = self.at(3.0, dy + 0.6)
        self.c.arc(x, y, self.s(1.8), self.s(1.5), 195, 345, INK, self.s(1.35))

    def brows(self, dy=-5.2, inner_up=0.0, outer_up=0.0, spread=2.9, half=1.6, width=0.9):
        """Eyebrows; raising the inner ends looks worried, lowering them looks angry."""
        for side in (-1, 1):
            inner = self.at(side * (spread - half), dy - inner_up)
            outer = self.at(side * (spread + half), dy - outer_up)
            self.c.line([inner, outer], INK, self.s(width))

    def blush(self, dy=1.1, spread=5.2, colour=PINK):
        for side in (-1, 1):
            x, y = self.at(side * spread, dy)
            self.c.ellipse(x, y, self.s(1.6), self.s(1.0), fill=colour)

    # mouths
    def smile(self, dy=0.3, r=4.7, width=1.45, start=25, end=155):
        x, y = self.at(0, dy)
        self.c.arc(x, y, self.s(r), self.s(r * 0.9), start, end, INK, self.s(width))

    def frown(self, dy=6.7, r=4.0, width=1.45):
        x, y = self.at(0, dy)
        self.c.arc(x, y, self.s(r), self.s(r * 0.8), 205, 335, INK, self.s(width))

    def grin(self, dy=1.3, rx=5.0, ry=4.6, teeth=True, tongue=True):
        """A wide open laugh: a half disc with teeth along the top and a tongue below."""
        x, y = self.at(0, dy)
        c = self.c
        c.chord(x, y, self.s(rx + 0.5), self.s(ry + 0.5), 0, 180, INK)
        c.chord(x, y, self.s(rx - 0.3), self.s(ry - 0.4), 0, 180, DARK_RED)
        if tongue:
            c.chord(x, y + self.s(ry - 0.4), self.s(rx * 0.55), self.s(ry * 0.42), 180, 360,
                    TONGUE)
        if teeth:
            c.rect(x - self.s(rx - 0.7), y, x + self.s(rx - 0.7), y + self.s(1.3), WHITE)

    def o_mouth(self, dy=3.4, rx=1.9, ry=2.4):
        x, y = self.at(0, dy)
        self.c.ellipse(x, y, self.s(rx + 0.45), self.s(ry + 0.45), fill=INK)
        self.c.ellipse(x, y + self.s(0.25), self.s(rx - 0.3), self.s(ry - 0.4), fill=DARK_RED)

    def flat(self, dy=3.6, half=2.8, tilt=0.0, width=1.45):
        self.c.line([self.at(-half, dy + tilt), self.at(half, dy - tilt)], INK, self.s(width))

    def wavy(self, dy=3.7, half=3.4, amp=0.8, width=1.3):
        points = []
        for i in range(25):
            t = i / 24
            points.append(self.at(-half + 2 * half * t, dy + amp * math.sin(t * 4 * math.pi)))
        self.c.line(points, INK, self.s(width))


# The pictures, by number.  Numbers reached by a typed emoticon draw what that emoticon says.

def s101(c):  # happy: eyes shut with joy, rosy cheeks
    f = Face(c)
    f.blush()
    f.happy_eyes()
    f.smile()


def s102(c):  # laughing with tears of joy
    f = Face(c)
    f.happy_eyes(dy=-2.6)
    f.grin(dy=0.8)
    for side in (-1, 1):
        x, y = f.at(side * 6.3, -0.6)
        drop(c, x, y, 1.1)


def s103(c):  # cool: sunglasses and a half smile
    f = Face(c)
    for side in (-1, 1):
        x, y = f.at(side * 3.1, -2.0)
        c.chord(x, y - 0.9, 3.0, 2.9, 0, 180, (25, 25, 40))
        c.arc(x - 0.9, y - 0.2, 1.0, 0.8, 10, 90, (120, 160, 220), 0.55)
    c.line([f.at(-7.9, -2.6), f.at(7.9, -2.6)], (25, 25, 40), 1.1)
    f.smile(dy=0.9, r=4.3, start=20, end=120)


def s104(c):  # crying
    f = Face(c)
    f.brows(dy=-5.0, inner_up=1.0, outer_up=-0.3)
    f.shut_eyes(dy=-1.6)
    f.frown(dy=7.0, r=3.2)
    for side in (-1, 1):
        x = f.at(side * 3.0, 0)[0]
        c.line([(x, f.at(0, -1.0)[1]), (x, f.at(0, 3.6)[1])], TEAR, 1.2)
        drop(c, x, f.at(0, 4.8)[1], 1.1)


def s105(c):  # angry: red in the face
    f = Face(c, light=(255, 170, 120), dark=(225, 60, 30))
    f.brows(dy=-4.0, inner_up=-1.3, outer_up=0.6, width=1.2)
    f.dot_eyes(dy=-1.7, ry=1.3, rx=1.1)
    f.frown(dy=6.9, r=3.4, width=1.3)


def s106(c):  # sleepy, snoring z's
    f = Face(c, cx=8.0, cy=11.0, r=7.9)
    f.shut_eyes(dy=-1.5)
    f.o_mouth(dy=3.6, rx=1.2, ry=1.4)
    letter_z(c, 11.0, 2.0, 1.9, BLUE, 0.9)
    letter_z(c, 14.2, 0.5, 3.6, BLUE, 1.1)


def s107(c):  # heart
    c.heart(CENTRE, CENTRE + 0.9, 9.0, RED, DARK_RED)
    c.ellipse(6.0, 5.8, 1.6, 1.1, fill=(255, 160, 160))


def s108(c):  # broken heart
    left = Canvas()
    left.heart(CENTRE - 0.9, CENTRE + 1.1, 8.8, RED, DARK_RED)
    right = Canvas()
    right.heart(CENTRE + 0.9, CENTRE + 0.5, 8.8, RED, DARK_RED)
    crack = [(9.5, 2.0), (8.0, 6.0), (10.5, 9.0), (8.3, 12.5), (9.5, 19.0)]
    mask_l = Image.new("L", left.image.size, 0)
    ImageDraw.Draw(mask_l).polygon([(0, 0)] + [(x * SCALE, y * SCALE) for x, y in crack] +
                                   [(0, SIZE * SCALE)], fill=255)
    c.image.paste(left.image, (-SCALE, 0), mask_l.transform(
        mask_l.size, Image.Transform.AFFINE, (1, 0, SCALE, 0, 1, 0)))
    mask_r = Image.eval(mask_l, lambda v: 255 - v)
    c.image.paste(right.image, (SCALE, 0), mask_r.transform(
        mask_r.size, Image.Transform.AFFINE, (1, 0, -SCALE, 0, 1, 0)))


def s109(c):  # star
    c.star(CENTRE, CENTRE + 0.6, 9.2, 4.0, GOLD, (170, 110, 0))
    c.star(CENTRE, CENTRE + 0.6, 5.0, 2.1, (255, 240, 140))


def s110(c):  # coffee
    cup = (245, 245, 250)
    edge = (90, 90, 110)
    for i, x in enumerate((6.8, 10.2)):
        c.arc(x, 3.0 + i * 0.3, 0.9, 1.8, -90, 90, (140, 140, 155), 0.8)
    c.arc(14.6, 11.6, 2.6, 2.6, -90, 90, edge, 1.4)
    c.polygon([(2.6, 7.0), (15.4, 7.0), (14.0, 16.3), (4.0, 16.3)], cup, edge, 0.9)
    c.ellipse(9.0, 7.4, 5.8, 1.3, fill=(120, 70, 30))
    c.ellipse(9.0, 17.2, 8.0, 1.2, fill=edge)


def s111(c):  # grimace: teeth clenched
    f = Face(c)
    f.brows(dy=-5.6, inner_up=0.6, outer_up=0.0, width=1.0)
    f.dot_eyes(dy=-2.2, ry=1.5)
    x, y = f.at(0, 3.6)
    c.rect(x - 5.0, y - 2.0, x + 5.0, y + 2.0, WHITE, INK, 0.9, 1.6)
    c.line([(x - 4.4, y), (x + 4.4, y)], INK, 0.6)
    for dx in (-1.8, 1.8):
        c.line([(x + dx, y - 1.6), (x + dx, y + 1.6)], INK, 0.6)


def s112(c):  # nerd: round glasses and buck teeth
    f = Face(c)
    for side in (-1, 1):
        x, y = f.at(side * 3.3, -2.0)
        c.circle(x, y, 2.9, fill=(225, 240, 255), outline=INK, width=1.0)
        c.circle(x + 0.3 * side, y + 0.3, 1.15, fill=INK)
    c.line([f.at(-0.8, -2.6), f.at(0.8, -2.6)], INK, 1.0)
    f.smile(dy=0.6, r=4.4)
    c.rect(8.0, 12.9, 10.9, 15.3, WHITE, INK, 0.45, 0.4)
    c.line([(9.45, 13.0), (9.45, 15.2)], INK, 0.4)


def s113(c):  # devil
    for side in (-1, 1):
        base = CENTRE + side * 4.2
        c.polygon([(base - 2.2, 5.0), (base + side * 3.4, -0.1), (base + 2.2, 5.0)],
                  (200, 20, 30), (110, 0, 10), 0.6)
    f = Face(c, cy=10.6, r=8.2, light=(255, 110, 90), dark=(200, 20, 30))
    f.brows(dy=-4.4, inner_up=-1.0, outer_up=0.7)
    f.dot_eyes(dy=-1.9, ry=1.3)
    f.smile(dy=-0.2, r=5.0, width=1.2, start=15, end=165)


def s114(c):  # in love: heart eyes
    f = Face(c)
    for side in (-1, 1):
        x, y = f.at(side * 3.2, -2.1)
        c.heart(x, y, 3.0, RED)
    f.smile(dy=0.6)


def s115(c):  # worried
    f = Face(c)
    f.brows(dy=-5.4, inner_up=1.3, outer_up=-0.5, width=1.1)
    f.dot_eyes(dy=-1.9, ry=1.5)
    f.wavy(dy=4.2, half=3.4, amp=0.7)


def s116(c):  # wondering, a question mark above
    f = Face(c, cx=8.5, cy=10.4, r=8.0)
    f.dot_eyes(dy=-2.3)
    f.flat(dy=3.4, half=2.2, tilt=0.7)
    c.arc(15.5, 2.7, 1.8, 1.7, 180, 405, BLUE, 1.0)
    c.line([(16.3, 4.4), (15.6, 5.2), (15.6, 6.3)], BLUE, 1.0)
    c.circle(15.6, 8.1, 0.65, fill=BLUE)


def s117(c):  # feeling sick
    f = Face(c, light=(200, 240, 150), dark=(110, 180, 60))
    f.shut_eyes(dy=-1.7)
    f.wavy(dy=3.5, half=3.2, amp=0.7)
    drop(c, 15.0, 4.0, 1.1, (90, 170, 255))


def s118(c):  # rolling eyes
    f = Face(c)
    f.white_eyes(dy=-2.3, spread=3.2, pupil=(0.5, -1.2), rx=2.5, ry=2.8, pr=1.3)
    f.flat(dy=4.1, half=2.6, tilt=-0.5)


def s119(c):  # thumbs up
    thumb(c, up=True)


def s120(c):  # thumbs down
    thumb(c, up=False)


def s121(c):  # flower
    petal = (255, 120, 190)
    petal_edge = (190, 40, 120)
    for i in range(5):
        a = math.radians(-90 + 72 * i)
        x, y = CENTRE + 4.7 * math.cos(a), CENTRE + 4.7 * math.sin(a)
        c.circle(x, y, 3.9, fill=petal_edge)
    for i in range(5):
        a = math.radians(-90 + 72 * i)
        x, y = CENTRE + 4.7 * math.cos(a), CENTRE + 4.7 * math.sin(a)
        c.circle(x, y, 3.1, fill=petal)
    c.circle(CENTRE, CENTRE, 3.0, fill=(200, 120, 0))
    c.circle(CENTRE, CENTRE, 2.3, fill=GOLD)


def s122(c):  # sun
    for i in range(12):
        a = math.radians(15 * (2 * i))
        c.line([(CENTRE + 6.4 * math.cos(a), CENTRE + 6.4 * math.sin(a)),
                (CENTRE + 8.7 * math.cos(a), CENTRE + 8.7 * math.sin(a))], (245, 150, 0), 1.3)
    f = Face(c, r=6.0, light=(255, 240, 120), dark=(255, 170, 0))
    f.happy_eyes(dy=-2.0, spread=2.9)
    f.smile(dy=0.5, r=4.2)


def s123(c):  # crescent moon and stars
    moon = Canvas()
    moon.circle(8.2, 10.3, 7.8, fill=(200, 160, 20))
    moon.circle(8.2, 10.3, 6.9, fill=(255, 230, 110))
    cut = Image.new("L", moon.image.size, 255)
    ImageDraw.Draw(cut).ellipse([(11.6 * SCALE - 6.8 * SCALE, 7.3 * SCALE - 6.8 * SCALE),
                                 (11.6 * SCALE + 6.8 * SCALE, 7.3 * SCALE + 6.8 * SCALE)],
                                fill=0)
    c.image.paste(moon.image, (0, 0), Image.composite(moon.image.getchannel("A"),
                                                      Image.new("L", cut.size, 0), cut))
    c.star(15.4, 10.7, 2.8, 1.2, GOLD)
    c.star(13.5, 3.4, 2.0, 0.85, GOLD)


def s124(c):  # big grin  :-D
    f = Face(c)
    f.dot_eyes(dy=-2.7, ry=1.6)
    f.grin(dy=0.8)


def s125(c):  # beer
    glass = (250, 190, 40)
    edge = (140, 90, 10)
    c.arc(14.0, 10.6, 2.7, 3.0, -90, 90, edge, 1.4)
    c.rect(3.0, 5.2, 14.6, 17.8, glass, edge, 0.9, 1.2)
    for x in (6.3, 9.5, 12.3):
        c.line([(x, 8.8), (x, 15.6)], (255, 225, 120), 0.9)
    foam = WHITE
    for x, y, r in ((4.6, 4.6, 2.4), (8.0, 3.6, 2.8), (11.6, 4.2, 2.5), (13.6, 5.4, 1.9)):
        c.circle(x, y, r + 0.7, fill=(200, 200, 210))
    for x, y, r in ((4.6, 4.6, 2.4), (8.0, 3.6, 2.8), (11.6, 4.2, 2.5), (13.6, 5.4, 1.9)):
        c.circle(x, y, r, fill=foam)


def s126(c):  # birthday cake
    c.rect(2.0, 10.0, 17.0, 17.6, (240, 170, 110), (140, 80, 40), 0.8, 1.0)
    c.rect(2.0, 9.6, 17.0, 12.0, (255, 250, 245), (140, 80, 40), 0.8, 1.0)
    for x in (4.0, 7.3, 11.0, 14.8):
        c.circle(x, 12.4, 1.0, fill=(255, 250, 245))
    c.line([(3.0, 15.0), (16.0, 15.0)], (220, 60, 90), 0.9)
    for x, colour in ((5.6, BLUE), (9.5, (250, 90, 160)), (13.4, GREEN)):
        c.rect(x - 0.75, 5.2, x + 0.75, 9.6, colour)
        c.ellipse(x, 3.3, 0.85, 1.5, fill=(255, 150, 0))
        c.ellipse(x, 3.7, 0.45, 0.8, fill=(255, 240, 120))


def s127(c):  # gift
    box = (60, 150, 230)
    edge = (20, 70, 150)
    ribbon = (240, 50, 70)
    c.rect(2.6, 8.4, 16.4, 17.6, box, edge, 0.8, 0.6)
    c.rect(1.6, 5.9, 17.4, 9.0, (90, 175, 245), edge, 0.8, 0.6)
    c.rect(8.3, 5.9, 10.7, 17.6, ribbon)
    for side in (-1, 1):
        c.ellipse(CENTRE + side * 2.8, 3.7, 2.8, 1.8, outline=ribbon, width=1.2)
    c.circle(CENTRE, 5.0, 1.3, fill=ribbon)


def s128(c):  # kiss  :-*
    f = Face(c)
    f.blush(dy=1.4)
    f.shut_eyes(dy=-2.0)
    x, y = f.at(0.0, 3.7)
    c.ellipse(x, y - 0.75, 1.9, 1.2, fill=(230, 30, 70))
    c.ellipse(x, y + 0.75, 1.9, 1.2, fill=(230, 30, 70))
    c.line([(x - 1.2, y), (x + 1.2, y)], DARK_RED, 0.55)
    c.heart(15.3, 14.7, 3.2, RED, DARK_RED)


def s129(c):  # music notes
    ink = (60, 40, 160)
    c.polygon([(6.6, 3.6), (16.4, 1.4), (16.4, 4.4), (6.6, 6.6)], ink)
    c.line([(7.1, 4.6), (7.1, 14.6)], ink, 1.1)
    c.line([(15.9, 2.6), (15.9, 12.6)], ink, 1.1)
    c.ellipse(4.9, 15.0, 2.8, 2.1, fill=ink)
    c.ellipse(13.7, 13.0, 2.8, 2.1, fill=ink)


def s130(c):  # idea: light bulb
    c.circle(CENTRE, 7.6, 6.4, fill=(200, 150, 0))
    c.circle(CENTRE, 7.6, 5.5, fill=(255, 240, 110))
    c.circle(7.6, 5.6, 1.6, fill=WHITE)
    c.rect(6.4, 12.0, 12.6, 15.6, (170, 170, 185), (90, 90, 110), 0.7, 0.6)
    c.line([(6.8, 13.8), (12.2, 13.8)], (90, 90, 110), 0.5)
    c.rect(7.8, 15.4, 11.2, 17.6, (90, 90, 110), radius=1.0)


def s131(c):  # lips sealed  :-X
    f = Face(c)
    f.dot_eyes(dy=-2.4)
    c.line([f.at(-4.4, 3.4), f.at(3.6, 3.4)], INK, 1.0)
    for i in range(5):
        x = f.at(-3.5 + 1.6 * i, 0)[0]
        c.line([(x, f.at(0, 2.1)[1]), (x, f.at(0, 4.7)[1])], INK, 0.8)
    tab_x, tab_y = f.at(4.4, 3.4)
    c.rect(tab_x - 0.6, tab_y - 0.9, tab_x + 1.5, tab_y + 3.0, (215, 215, 225), INK, 0.6, 0.6)


def s132(c):  # mail
    paper = (250, 250, 245)
    edge = (90, 90, 110)
    c.rect(1.6, 4.4, 17.4, 15.4, paper, edge, 0.9, 0.6)
    c.line([(2.2, 5.0), (9.5, 11.0), (16.8, 5.0)], edge, 0.9)
    c.line([(2.2, 14.8), (7.3, 9.4)], (170, 170, 185), 0.6)
    c.line([(16.8, 14.8), (11.7, 9.4)], (170, 170, 185), 0.6)
    c.heart(14.6, 13.4, 2.5, RED)


def s133(c):  # clock
    c.circle(CENTRE, CENTRE, 8.8, fill=(40, 90, 170))
    c.circle(CENTRE, CENTRE, 7.6, fill=WHITE)
    for i in range(12):
        a = math.radians(30 * i)
        r0 = 5.9 if i % 3 else 5.2
        c.line([(CENTRE + r0 * math.cos(a), CENTRE + r0 * math.sin(a)),
                (CENTRE + 6.7 * math.cos(a), CENTRE + 6.7 * math.sin(a))], GREY, 0.55)
    c.line([(CENTRE, CENTRE), (CENTRE, 4.6)], INK, 1.0)
    c.line([(CENTRE, CENTRE), (12.9, 11.2)], INK, 1.0)
    c.circle(CENTRE, CENTRE, 1.0, fill=RED)


def s134(c):  # cat
    fur = (250, 170, 70)
    fur_light = (255, 220, 150)
    edge = (130, 70, 10)
    for side in (-1, 1):
        x = CENTRE + side * 5.0
        c.polygon([(x - 3.0 * side, 4.6), (x + 1.6 * side, 0.6), (x + 2.4 * side, 7.0)], fur,
                  edge, 0.8)
        c.polygon([(x - 1.1 * side, 4.4), (x + 1.2 * side, 2.3), (x + 1.5 * side, 5.6)], PINK)
    c.ellipse(CENTRE, 11.0, 8.6, 7.6, fill=edge)
    c.ellipse(CENTRE, 11.0, 7.7, 6.7, fill=fur)
    c.ellipse(CENTRE, 13.6, 3.9, 2.9, fill=fur_light)
    for side in (-1, 1):
        c.ellipse(CENTRE + side * 3.0, 9.5, 0.95, 1.5, fill=INK)
        c.line([(CENTRE + side * 3.6, 13.4), (CENTRE + side * 8.6, 12.6)], edge, 0.45)
        c.line([(CENTRE + side * 3.6, 14.4), (CENTRE + side * 8.4, 15.0)], edge, 0.45)
    c.polygon([(8.4, 12.0), (10.6, 12.0), (9.5, 13.2)], (230, 90, 120))
    c.arc(8.6, 13.6, 0.9, 0.9, 0, 150, INK, 0.5)
    c.arc(10.4, 13.6, 0.9, 0.9, 30, 180, INK, 0.5)


def s135(c):  # friendly ghost
    body = (250, 250, 255)
    edge = (120, 120, 160)
    top = [(CENTRE + 7.6 * math.cos(math.radians(a)), 9.0 + 7.6 * math.sin(math.radians(a)))
           for a in range(180, 361, 10)]
    hem = []
    for i in range(13):
        t = i / 12
        hem.append((CENTRE + 7.6 - 15.2 * t, 17.0 + 1.1 * math.cos(t * 6 * math.pi)))
    c.polygon(top + hem, body, edge, 0.9)
    c.ellipse(6.6, 8.6, 1.1, 1.6, fill=INK)
    c.ellipse(12.4, 8.6, 1.1, 1.6, fill=INK)
    c.ellipse(CENTRE, 12.6, 1.4, 1.7, fill=INK)
    c.ellipse(4.3, 11.8, 1.2, 0.7, fill=PINK)
    c.ellipse(14.7, 11.8, 1.2, 0.7, fill=PINK)


def s136(c):  # alien
    skin = (130, 220, 90)
    edge = (30, 110, 30)
    c.line([(6.2, 3.6), (4.2, 0.9)], edge, 0.7)
    c.line([(12.8, 3.6), (14.8, 0.9)], edge, 0.7)
    c.circle(4.2, 0.9, 0.9, fill=(255, 90, 160))
    c.circle(14.8, 0.9, 0.9, fill=(255, 90, 160))
    points = [(CENTRE + 8.0 * math.cos(math.radians(a)), 8.8 + 6.8 * math.sin(math.radians(a)))
              for a in range(180, 361, 10)]
    points += [(CENTRE + 8.0 * math.cos(math.radians(a)) * (1 - 0.55 * math.sin(math.radians(a))),
                8.8 + 9.4 * math.sin(math.radians(a))) for a in range(10, 180, 10)]
    c.polygon(points, skin, edge, 0.9)
    for side in (-1, 1):
        x = CENTRE + side * 3.4
        c.polygon([(x - 2.6 * side, 8.0), (x + 2.6 * side, 7.4), (x + 1.0 * side, 11.4)], INK)
        c.circle(x + 0.6 * side, 8.5, 0.5, fill=WHITE)
    c.arc(CENTRE, 12.9, 1.6, 1.0, 20, 160, INK, 0.7)


def s137(c):  # clown
    hair = (250, 90, 40)
    for side in (-1, 1):
        for dy in (-2.5, 0.0, 2.5):
            c.circle(CENTRE + side * 8.0, 7.5 + dy, 2.0, fill=hair)
    f = Face(c, r=8.0, light=(255, 250, 240), dark=(240, 220, 200))
    f.happy_eyes(dy=-2.6)
    for side in (-1, 1):
        x, y = f.at(side * 3.0, -2.6)
        c.line([(x, y - 3.0), (x, y - 1.6)], BLUE, 0.7)
    f.smile(dy=0.2, r=5.0, width=1.5)
    x, y = f.at(0, 0.5)
    c.circle(x, y, 2.1, fill=(230, 20, 30))
    c.circle(x - 0.6, y - 0.6, 0.6, fill=(255, 170, 170))


def s138(c):  # sad  :-(
    f = Face(c)
    f.dot_eyes(dy=-2.2, ry=1.6)
    f.frown(dy=7.0, r=3.7)


def s139(c):  # uneasy  :-\
    f = Face(c)
    f.dot_eyes(dy=-2.4)
    f.flat(dy=3.7, half=3.1, tilt=1.0)


def s140(c):  # shy: glancing down, blushing
    f = Face(c)
    f.blush(dy=1.2, spread=5.0, colour=(255, 110, 130))
    for side in (-1, 1):
        x, y = f.at(side * 3.0, -1.4)
        c.ellipse(x + 0.2 * side, y, 1.0, 1.2, fill=INK)
        c.line([(x - 1.2, y - 2.2), (x + 1.2, y - 2.2)], INK, 0.6)
    f.smile(dy=2.5, r=2.2, width=1.0)


def s141(c):  # nervous laugh with a drop of sweat
    f = Face(c)
    f.brows(dy=-5.6, inner_up=0.8, outer_up=-0.3, width=0.8)
    f.happy_eyes(dy=-2.3)
    f.grin(dy=1.2, rx=4.3, ry=3.4, tongue=False)
    drop(c, 15.6, 5.0, 1.5)


def s142(c):  # yawn
    f = Face(c)
    f.shut_eyes(dy=-2.8)
    f.brows(dy=-5.9, inner_up=0.5, outer_up=0.0, width=0.8)
    x, y = f.at(0, 3.0)
    c.ellipse(x, y, 3.1, 3.9, fill=INK)
    c.ellipse(x, y + 0.3, 2.3, 3.0, fill=DARK_RED)
    c.ellipse(x, y + 1.8, 1.6, 1.1, fill=TONGUE)


def s143(c):  # with a top hat  [=)
    f = Face(c, cy=11.3, r=7.7)
    f.dot_eyes(dy=-1.5, ry=1.6)
    f.smile(dy=0.6, r=4.4)
    hat = (40, 40, 60)
    c.rect(5.3, 0.3, 13.7, 6.2, hat, (15, 15, 25), 0.6, 0.6)
    c.rect(5.6, 3.8, 13.4, 5.3, (220, 40, 60))
    c.rect(1.8, 5.4, 17.2, 7.2, hat, (15, 15, 25), 0.6, 0.9)


def s144(c):  # a winning card: ace of spades
    c.rect(3.2, 0.6, 15.8, 18.4, WHITE, (90, 90, 110), 0.8, 1.6)
    spade = (25, 25, 40)
    c.heart(CENTRE, 8.2, 5.4, spade, flip=True)
    c.polygon([(CENTRE, 9.0), (CENTRE - 2.6, 14.6), (CENTRE + 2.6, 14.6)], spade)
    c.line([(5.2, 2.4), (5.2, 5.0)], spade, 0.7)
    c.line([(13.8, 14.0), (13.8, 16.6)], spade, 0.7)


def s145(c):  # dice
    c.rect(1.4, 1.4, 17.6, 17.6, (250, 250, 250), (120, 30, 40), 1.0, 3.2)
    for x, y in ((5.6, 5.6), (13.4, 13.4), (CENTRE, CENTRE), (13.4, 5.6), (5.6, 13.4)):
        c.circle(x, y, 1.6, fill=(210, 30, 50))


def s146(c):  # rainbow
    bands = [(230, 40, 40), (250, 140, 20), (250, 220, 30), (60, 180, 60), (50, 120, 230),
             (130, 60, 200)]
    for i, colour in enumerate(bands):
        c.arc(CENTRE, 14.4, 8.0 - 1.05 * i, 8.0 - 1.05 * i, 180, 360, colour, 1.15)
    for x in (3.2, 15.8):
        for dx, dy, r in ((-1.6, 0.6, 1.8), (1.2, 0.4, 2.0), (0.0, -1.0, 2.0)):
            c.circle(x + dx, 15.2 + dy, r + 0.6, fill=(170, 180, 200))
        for dx, dy, r in ((-1.6, 0.6, 1.8), (1.2, 0.4, 2.0), (0.0, -1.0, 2.0)):
            c.circle(x + dx, 15.2 + dy, r, fill=WHITE)


def s147(c):  # surprised  =-O
    f = Face(c)
    for side in (-1, 1):
        x, y = f.at(side * 3.1, -5.6)
        c.arc(x, y + 1.2, 1.8, 1.3, 200, 340, INK, 1.0)
        c.circle(*f.at(side * 3.0, -1.8), 1.45, fill=INK)
    f.o_mouth(dy=4.2, rx=2.0, ry=2.4)


def s148(c):  # star-struck
    f = Face(c)
    for side in (-1, 1):
        x, y = f.at(side * 3.3, -2.4)
        c.star(x, y, 3.1, 1.35, (255, 120, 0), (170, 40, 0))
    f.grin(dy=1.4, rx=4.4, ry=3.8)


def s149(c):  # smile  :-)
    f = Face(c)
    f.dot_eyes()
    f.smile()


def s150(c):  # tongue out  :-P
    f = Face(c)
    f.dot_eyes(dy=-2.6)
    x, y = f.at(0.8, 4.5)
    c.ellipse(x, y + 0.4, 2.4, 2.8, fill=(160, 30, 50))
    c.ellipse(x, y + 0.4, 1.8, 2.2, fill=TONGUE)
    c.line([(x, y - 0.6), (x, y + 1.6)], (190, 50, 70), 0.5)
    f.flat(dy=3.2, half=3.8, width=1.15)


def s151(c):  # sly smirk
    f = Face(c)
    for side in (-1, 1):
        x, y = f.at(side * 2.9, -2.2)
        c.chord(x, y - 0.4, 1.5, 1.6, 0, 180, INK)
        c.line([(x - 1.7, y - 0.4), (x + 1.7, y - 0.4 - 0.4 * side)], INK, 0.8)
    x, y = f.at(0, 1.0)
    c.arc(x + 1.6, y, 3.0, 2.7, 10, 120, INK, 1.15)
    c.line([f.at(-3.0, 3.3), f.at(0.3, 3.7)], INK, 1.1)


def s152(c):  # angel  O:-)
    f = Face(c, cy=11.0, r=7.9)
    c.ellipse(CENTRE, 2.2, 5.6, 1.8, outline=(220, 160, 0), width=1.4)
    f.happy_eyes(dy=-1.8)
    f.smile(dy=0.5)
    f.blush(dy=1.4, spread=5.5)


def s153(c):  # wink  ;-)
    f = Face(c)
    f.wink_eyes()
    f.smile(start=20, end=150)


# ---- small parts shared by several pictures ---------------------------------------------------

def drop(c, x, y, r, colour=TEAR):
    """A tear or sweat drop pointing up, its round end centred at (x, y)."""
    c.polygon([(x, y - 2.4 * r), (x - r * 0.95, y - 0.2 * r), (x + r * 0.95, y - 0.2 * r)], colour)
    c.circle(x, y, r, fill=colour)
    c.circle(x - 0.35 * r, y - 0.2 * r, 0.35 * r, fill=(225, 245, 255))


def letter_z(c, x, y, s, colour, width):
    c.line([(x, y), (x + s, y), (x, y + s), (x + s, y + s)], colour, width)


def thumb(c, up):
    """A fist with the thumb up; drawn upside down for thumbs down."""
    skin = (255, 205, 120)
    edge = (150, 90, 20)
    part = Canvas()
    part.rect(4.4, 1.0, 9.2, 10.0, skin, edge, 0.9, 2.4)
    part.rect(3.0, 8.4, 15.2, 18.0, skin, edge, 0.9, 2.4)
    for y in (11.2, 13.6, 16.0):
        part.line([(9.6, y), (14.6, y)], edge, 0.6)
    part.rect(1.0, 8.0, 4.0, 18.2, (60, 120, 220), (20, 60, 140), 0.7, 0.6)
    image = part.image
    if not up:
        image = image.transpose(Image.Transpose.ROTATE_180)
    c.image.alpha_composite(image)


PICTURES = {int(name[1:]): fn for name, fn in sorted(globals().items())
            if name.startswith("s") and name[1:].isdigit()}


def to_gif_palette(image):
    """Turns an RGBA picture with on/off alpha into a palette picture; index 0 is see-through."""
    rgb = Image.new("RGB", image.size, (0, 0, 0))
    rgb.paste(image, mask=image.getchannel("A"))
    quantised = rgb.quantize(colors=255, method=Image.Quantize.MEDIANCUT,
                             dither=Image.Dither.NONE)
    palette = quantised.getpalette()[:255 * 3]
    palette += [0] * (255 * 3 - len(palette))
    result = Image.new("P", image.size, 0)
    result.putpalette([255, 255, 255] + palette)
    alpha = image.getchannel("A").load()
    source = quantised.load()
    target = result.load()
    for y in range(image.height):
        for x in range(image.width):
            target[x, y] = source[x, y] + 1 if alpha[x, y] else 0
    return result


def contact_sheet(pictures, path):
    """All pictures, enlarged and actual size, on a light and on a dark background."""
    zoom = 4
    cell = SIZE * zoom + 12
    cols = 9
    rows = (len(pictures) + cols - 1) // cols
    width = cols * cell
    per_line = (width - 12) // 22
    lines = (len(pictures) + per_line - 1) // per_line
    sheet = Image.new("RGB", (width * 2, rows * cell + 12 + lines * 22), (255, 255, 255))
    draw = ImageDraw.Draw(sheet)
    draw.rectangle([(width, 0), (width * 2, sheet.height)], fill=(40, 44, 60))
    for i, (number, picture) in enumerate(pictures):
        big = picture.resize((SIZE * zoom, SIZE * zoom), Image.Resampling.NEAREST)
        x, y = (i % cols) * cell + 6, (i // cols) * cell + 2
        for offset, colour in ((0, (0, 0, 0)), (width, (230, 230, 230))):
            sheet.paste(big, (x + offset, y), big)
            draw.text((x + offset, y + SIZE * zoom), str(number), fill=colour)
    for i, (number, picture) in enumerate(pictures):
        for offset in (0, width):
            x, y = 6 + (i % per_line) * 22, rows * cell + 6 + (i // per_line) * 22
            sheet.paste(picture, (offset + x, y), picture)
    sheet.save(path)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    here = os.path.dirname(os.path.abspath(__file__))
    parser.add_argument("--out", default=os.path.join(here, "..", "smiles"))
    parser.add_argument("--sheet", help="also write a contact sheet of all pictures (PNG)")
    args = parser.parse_args()

    expected = list(range(101, 154))
    if sorted(PICTURES) != expected:
        sys.exit("pictures missing or extra: %s" % sorted(set(expected) ^ set(PICTURES)))

    os.makedirs(args.out, exist_ok=True)
    drawn = []
    for number in expected:
        canvas = Canvas()
        PICTURES[number](canvas)
        picture = canvas.finish()
        to_gif_palette(picture).save(os.path.join(args.out, "%d.gif" % number),
                                     transparency=0, optimize=False)
        drawn.append((number, picture))
    if args.sheet:
        contact_sheet(drawn, args.sheet)
    print("wrote %d pictures to %s" % (len(drawn), os.path.normpath(args.out)))


if __name__ == "__main__":
    main()
