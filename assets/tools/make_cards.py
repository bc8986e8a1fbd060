#!/usr/bin/python3
"""Draws Tavren's card faces, assets/cards/1.png .. 52.png and back.png.

The cards are numbered as the table client numbers them: 1..13 spades, 14..26 clubs, 27..39
diamonds, 40..52 hearts, each suit running ace, two, ..., ten, jack, queen, king. Every card is
drawn four times larger than it is shown and scaled down, so edges come out smooth. Pips are
shapes of our own (circles and polygons); ranks are set in DejaVu Sans Bold.

Deterministic: the same Pillow and font give byte-identical files on every run.

    /usr/bin/python3 assets/tools/make_cards.py [--out DIR] [--sheet sheet.png]

Needs Debian's python3-pil and fonts-dejavu-core.
"""

import argparse
import os

from PIL import Image, ImageDraw, ImageFont

WIDTH, HEIGHT = 64, 90
SCALE = 4
W, H = WIDTH * SCALE, HEIGHT * SCALE
RADIUS = 6 * SCALE

FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"
RED = (196, 24, 36)
BLACK = (24, 24, 28)
PAPER = (252, 251, 246)
EDGE = (120, 120, 120)
SUITS = ["spades", "clubs", "diamonds", "hearts"]
RANKS = ["A", "2", "3", "4", "5", "6", "7", "8", "9", "10", "J", "Q", "K"]

# Where the pips of the number cards sit, in card units: x in 0..1 across, y in 0..1 down.
L, C, R = 0.36, 0.5, 0.64
PIPS = {
    2: [(C, 0.22), (C, 0.78)],
    3: [(C, 0.22), (C, 0.5), (C, 0.78)],
    4: [(L, 0.22), (R, 0.22), (L, 0.78), (R, 0.78)],
    5: [(L, 0.22), (R, 0.22), (C, 0.5), (L, 0.78), (R, 0.78)],
    6: [(L, 0.22), (R, 0.22), (L, 0.5), (R, 0.5), (L, 0.78), (R, 0.78)],
    7: [(L, 0.22), (R, 0.22), (C, 0.36), (L, 0.5), (R, 0.5), (L, 0.78), (R, 0.78)],
    8: [(L, 0.22), (R, 0.22), (C, 0.36), (L, 0.5), (R, 0.5), (C, 0.64), (L, 0.78), (R, 0.78)],
    9: [(L, 0.22), (R, 0.22), (L, 0.41), (R, 0.41), (C, 0.5), (L, 0.59), (R, 0.59),
        (L, 0.78), (R, 0.78)],
    10: [(L, 0.22), (R, 0.22), (C, 0.32), (L, 0.41), (R, 0.41), (L, 0.59), (R, 0.59),
         (C, 0.68), (L, 0.78), (R, 0.78)],
}


def suit_colour(suit):
    return RED if suit in ("diamonds", "hearts") else BLACK


def draw_pip(draw, suit, cx, cy, size, flip=False):
    """One suit sign centred on (cx, cy), `size` pixels high; flipped signs point down."""
    s = size / 2.0
    ink = suit_colour(suit)
    sign = -1 if flip else 1

    def pt(x, y):
        return (cx + x * s, cy + sign * y * s)

    if suit == "diamonds":
        draw.polygon([pt(0, -1), pt(0.72, 0), pt(0, 1), pt(-0.72, 0)], fill=ink)
    elif suit == "hearts":
        r = 0.5 * s
        for x in (-0.47, 0.47):
            c = pt(x, -0.42)
            draw.ellipse([c[0] - r, c[1] - r, c[0] + r, c[1] + r], fill=ink)
        draw.polygon([pt(-0.96, -0.3), pt(0.96, -0.3), pt(0, 0.98)], fill=ink)
    elif suit == "spades":
        r = 0.5 * s
        for x in (-0.47, 0.47):
            c = pt(x, 0.28)
            draw.ellipse([c[0] - r, c[1] - r, c[0] + r, c[1] + r], fill=ink)
        draw.polygon([pt(-0.96, 0.16), pt(0.96, 0.16), pt(0, -1.0)], fill=ink)
        draw.polygon([pt(0, 0.35), pt(-0.38, 1.0), pt(0.38, 1.0)], fill=ink)
    else:  # clubs
        r = 0.42 * s
        for x, y in ((0, -0.5), (-0.5, 0.2), (0.5, 0.2)):
            c = pt(x, y)
            draw.ellipse([c[0] - r, c[1] - r, c[0] + r, c[1] + r], fill=ink)
        draw.polygon([pt(0, -0.1), pt(-0.38, 1.0), pt(0.38, 1.0)], fill=ink)
        draw.polygon([pt(-0.2, 0.0), pt(0.2, 0.0), pt(0, 0.4)], fill=ink)


def blank(fill, edge):
    image = Image.new("RGBA", (W, H), (0, 0, 0, 0))
    draw = ImageDraw.Draw(image)
    draw.rounded_rectangle([0, 0, W - 1, H - 1], radius=RADIUS, fill=fill, outline=edge,
                           width=SCALE)
    return image, draw


def corner(image, rank, suit, font):
    """The rank and a small pip in the top-left corner, and the same turned round bottom-right."""
    layer = Image.new("RGBA", (W, H), (0, 0, 0, 0))
    draw = ImageDraw.Draw(layer)
    ink = suit_colour(suit)
    x = 4 * SCALE if rank != "10" else 2 * SCALE
    draw.text((x, 3 * SCALE), rank, font=font, fill=ink)
    draw_pip(draw, suit, 9 * SCALE, 25 * SCALE, 9 * SCALE)
    image.alpha_composite(layer)
    image.alpha_composite(layer.rotate(180))


def face_card(image, draw, rank, suit, big_font):
    """Jack, queen and king: a framed panel with the letter and two pips, one each way up."""
    ink = suit_colour(suit)
    box = [14 * SCALE, 14 * SCALE, W - 14 * SCALE, H - 14 * SCALE]
    shade = (250, 232, 190) if suit in ("diamonds", "hearts") else (214, 226, 246)
    draw.rectangle(box, fill=shade, outline=ink, width=SCALE)
    draw.line([box[0], H // 2, box[2], H // 2], fill=ink, width=SCALE // 2)
    draw_pip(draw, suit, box[0] + 8 * SCALE, box[1] + 9 * SCALE, 10 * SCALE)
    draw_pip(draw, suit, box[2] - 8 * SCALE, box[3] - 9 * SCALE, 10 * SCALE, flip=True)
    bounds = draw.textbbox((0, 0), rank, font=big_font)
    tw, th = bounds[2] - bounds[0], bounds[3] - bounds[1]
    draw.text(((W - tw) / 2 - bounds[0], (H - th) / 2 - bounds[1]), rank, font=big_font,
              fill=ink)


def card(number, font, big_font):
    suit = SUITS[(number - 1) // 13]
    rank = RANKS[(number - 1) % 13]
    image, draw = blank(PAPER, EDGE)
    if rank == "A":
        draw_pip(draw, suit, W / 2, H / 2, 34 * SCALE)
    elif rank in ("J", "Q", "K"):
        face_card(image, draw, rank, suit, big_font)
    else:
        for x, y in PIPS[int(rank)]:
            draw_pip(draw, suit, x * W, y * H, 12 * SCALE, flip=y > 0.55)
    corner(image, rank, suit, font)
    return image.resize((WIDTH, HEIGHT), Image.LANCZOS)


def back():
    image, draw = blank((150, 22, 32), (90, 10, 16))
    inner = [5 * SCALE, 5 * SCALE, W - 5 * SCALE, H - 5 * SCALE]
    draw.rounded_rectangle(inner, radius=3 * SCALE, outline=(240, 214, 160), width=SCALE)
    step = 8 * SCALE
    lattice = Image.new("RGBA", (W, H), (0, 0, 0, 0))
    ld = ImageDraw.Draw(lattice)
    for offset in range(-H, W + H, step):
        ld.line([offset, 0, offset + H, H], fill=(200, 70, 70, 255), width=SCALE // 2 + 1)
        ld.line([offset, H, offset + H, 0], fill=(200, 70, 70, 255), width=SCALE // 2 + 1)
    mask = Image.new("L", (W, H), 0)
    ImageDraw.Draw(mask).rounded_rectangle([7 * SCALE, 7 * SCALE, W - 7 * SCALE, H - 7 * SCALE],
                                           radius=2 * SCALE, fill=255)
    image.paste(lattice, (0, 0), Image.composite(lattice, Image.new("RGBA", (W, H)), mask))
    draw.ellipse([W / 2 - 9 * SCALE, H / 2 - 9 * SCALE, W / 2 + 9 * SCALE, H / 2 + 9 * SCALE],
                 fill=(150, 22, 32), outline=(240, 214, 160), width=SCALE)
    draw_pip(draw, "spades", W / 2, H / 2, 10 * SCALE)
    return image.resize((WIDTH, HEIGHT), Image.LANCZOS)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", default=os.path.join(here, "..", "cards"))
    parser.add_argument("--sheet", help="also write all cards side by side to this PNG")
    args = parser.parse_args()
    os.makedirs(args.out, exist_ok=True)
    font = ImageFont.truetype(FONT, 16 * SCALE)
    big_font = ImageFont.truetype(FONT, 30 * SCALE)
    images = []
    for number in range(1, 53):
        image = card(number, font, big_font)
        image.save(os.path.join(args.out, "%d.png" % number), optimize=True)
        images.append(image)
    reverse = back()
    reverse.save(os.path.join(args.out, "back.png"), optimize=True)
    images.append(reverse)
    if args.sheet:
        sheet = Image.new("RGBA", (WIDTH * 13 + 12, HEIGHT * 5 + 8), (30, 80, 50, 255))
        for index, image in enumerate(images):
            sheet.alpha_composite(image, ((index % 13) * (WIDTH + 1), (index // 13) * (HEIGHT + 2)))
        sheet.save(args.sheet)


if __name__ == "__main__":
    main()
