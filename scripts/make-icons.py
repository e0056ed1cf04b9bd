#!/usr/bin/env python3
"""Draws the library's small bundled icon set (32x32 RGBA PNGs).

Run once when the set changes; the PNGs are committed under resources/icons.
Only the standard library is used, so the icons can be redrawn anywhere.
"""
import math, os, struct, sys, zlib

S = 32

def png(path, px):
    raw = b''.join(b'\0' + bytes(c for p in row for c in p) for row in px)
    def chunk(t, d):
        return struct.pack('>I', len(d)) + t + d + struct.pack('>I', zlib.crc32(t + d) & 0xffffffff)
    data = (b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', S, S, 8, 6, 0, 0, 0))
            + chunk(b'IDAT', zlib.compress(raw, 9)) + chunk(b'IEND', b''))
    open(path, 'wb').write(data)

def canvas():
    return [[(0, 0, 0, 0)] * S for _ in range(S)]

def shape(fn, color):
    px = canvas()
    for y in range(S):
        for x in range(S):
            if fn(x + 0.5, y + 0.5):
                px[y][x] = color
    return px

def circle(cx, cy, r):
    return lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r

def ring(cx, cy, r0, r1):
    return lambda x, y: r0 * r0 <= (x - cx) ** 2 + (y - cy) ** 2 <= r1 * r1

def line_dist(x, y, x0, y0, x1, y1):
    dx, dy = x1 - x0, y1 - y0
    t = max(0, min(1, ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)))
    return math.hypot(x - x0 - t * dx, y - y0 - t * dy)

def lines(segs, w):
    return lambda x, y: any(line_dist(x, y, *s) <= w for s in segs)

def union(*fs):
    return lambda x, y: any(f(x, y) for f in fs)

def rect(x0, y0, x1, y1):
    return lambda x, y: x0 <= x <= x1 and y0 <= y <= y1

ICONS = {
    'st_sensor': (union(ring(16, 16, 9, 12), circle(16, 16, 4)), (0, 140, 60, 255)),
    'act_cancel': (lines([(8, 8, 24, 24), (24, 8, 8, 24)], 3), (200, 30, 30, 255)),
    'act_tb_group_menu': (lambda x, y: 12 <= y <= 20 and abs(x - 16) <= (20 - y), (40, 40, 40, 255)),
    'app_default': (union(rect(3, 3, 29, 6), rect(3, 26, 29, 29), lines([(27, 6, 5, 26)], 2.5)),
                    (20, 80, 170, 255)),
    'act_open': (union(rect(4, 10, 28, 26), rect(4, 7, 13, 10)), (210, 160, 40, 255)),
    'act_save': (union(ring(16, 16, 0, 0), rect(5, 5, 27, 27)), (40, 90, 160, 255)),
    'act_undo': (union(ring(18, 18, 7, 10), lambda x, y: 2 <= x <= 12 and abs(y - 18) <= (12 - x) / 1.5),
                 (60, 60, 60, 255)),
    'act_redo': (union(ring(14, 18, 7, 10), lambda x, y: 20 <= x <= 30 and abs(y - 18) <= (x - 20) / 1.5),
                 (60, 60, 60, 255)),
    'act_measure': (union(lines([(6, 26, 26, 6)], 2), circle(6, 26, 3), circle(26, 6, 3)), (0, 120, 120, 255)),
    'act_examine': (union(ring(13, 13, 7, 10), lines([(20, 20, 28, 28)], 2.5)), (90, 50, 140, 255)),
}

def main(out):
    os.makedirs(out, exist_ok=True)
    for name, (fn, color) in ICONS.items():
        png(os.path.join(out, name + '.png'), shape(fn, color))

if __name__ == '__main__':
    main(sys.argv[1] if len(sys.argv) > 1 else 'resources/icons')
