"""Plane curves: lists of (x, y, bulge), in metres; the bulge belongs to the segment that starts there."""

import math
import random


def arc_of(p, q, bulge):
    """Centre, radius, start angle and signed sweep of a bulged segment."""
    sweep = 4 * math.atan(bulge)
    dx, dy = q[0] - p[0], q[1] - p[1]
    k = (1 / bulge - bulge) / 4
    cx, cy = (p[0] + q[0]) / 2 - dy * k, (p[1] + q[1]) / 2 + dx * k
    return cx, cy, math.hypot(p[0] - cx, p[1] - cy), math.atan2(p[1] - cy, p[0] - cx), sweep


def at(p, q, bulge, t):
    """Point at the fraction t of a segment."""
    if abs(bulge) < 1e-9:
        return p[0] + (q[0] - p[0]) * t, p[1] + (q[1] - p[1]) * t
    cx, cy, r, a, sweep = arc_of(p, q, bulge)
    return cx + r * math.cos(a + sweep * t), cy + r * math.sin(a + sweep * t)


def segments(curve, closed):
    count = len(curve) if closed else len(curve) - 1
    for i in range(count):
        p, q = curve[i], curve[(i + 1) % len(curve)]
        yield (p[0], p[1]), (q[0], q[1]), p[2]


def length(p, q, bulge):
    chord = math.dist(p, q)
    if abs(bulge) < 1e-9:
        return chord
    return arc_of(p, q, bulge)[2] * abs(4 * math.atan(bulge))


def flatten(curve, closed, step=0.25):
    points = []
    for p, q, b in segments(curve, closed):
        n = 1 if abs(b) < 1e-9 else max(2, math.ceil(length(p, q, b) / step))
        points += [at(p, q, b, i / n) for i in range(n)]
    if not closed:
        points.append(curve[-1][:2])
    return points


def area(curve):
    """Area inside a closed curve, arcs included."""
    total = 0.0
    for p, q, b in segments(curve, True):
        total += (p[0] * q[1] - q[0] * p[1]) / 2
        if abs(b) > 1e-9:
            r, sweep = arc_of(p, q, b)[2], 4 * math.atan(b)
            total += r * r / 2 * (sweep - math.sin(sweep))
    return abs(total)


def smooth(points, closed=True):
    """Arcs that meet without a kink and pass through the points: two for each step."""
    n = len(points)
    out = []

    def tangent(i):
        a = points[(i - 1) % n] if closed or i > 0 else points[0]
        b = points[(i + 1) % n] if closed or i < n - 1 else points[-1]
        d = math.dist(a, b)
        return (b[0] - a[0]) / d, (b[1] - a[1]) / d

    def bulge(p, tan, q):
        chord = math.atan2(q[1] - p[1], q[0] - p[0])
        turn = chord - math.atan2(tan[1], tan[0])
        return math.tan(math.remainder(turn, 2 * math.pi) / 2)

    for i in range(n if closed else n - 1):
        p, q = points[i], points[(i + 1) % n]
        t0, t1 = tangent(i), tangent((i + 1) % n)
        # Equal tangent lengths d: |v|² - 2d v·(t0+t1) - 2d²(1 - t0·t1) = 0
        v = (q[0] - p[0], q[1] - p[1])
        vt = v[0] * (t0[0] + t1[0]) + v[1] * (t0[1] + t1[1])
        c = 2 * (1 - t0[0] * t1[0] - t0[1] * t1[1])
        vv = v[0] ** 2 + v[1] ** 2
        d = vv / (2 * vt) if c < 1e-9 else (-vt + math.sqrt(vt * vt + c * vv)) / c
        m = ((p[0] + q[0] + d * (t0[0] - t1[0])) / 2, (p[1] + q[1] + d * (t0[1] - t1[1])) / 2)
        out.append((*p, bulge(p, t0, m)))
        out.append((*m, -bulge(q, (-t1[0], -t1[1]), m)))
    if not closed:
        out.append((*points[-1], 0))
    return out


def polygon(*points):
    return [(x, y, 0) for x, y in points]


def rectangle(x0, y0, x1, y1):
    return polygon((x0, y0), (x1, y0), (x1, y1), (x0, y1))


def disc(x, y, r):
    return [(x - r, y, 1), (x + r, y, 1)]


def scallops(points, depth=0.45):
    """A cloud-like bed: bulges outwards between points given counter-clockwise."""
    return [(x, y, depth) for x, y in points]


def ellipse_points(cx, cy, rx, ry, n, turn=0.0, wobble=0.0, seed=1):
    rnd = random.Random(seed)
    out = []
    for i in range(n):
        a = 2 * math.pi * i / n
        k = 1 + wobble * (2 * rnd.random() - 1)
        x, y = rx * k * math.cos(a), ry * k * math.sin(a)
        out.append((cx + x * math.cos(turn) - y * math.sin(turn), cy + x * math.sin(turn) + y * math.cos(turn)))
    return out


def offset(curve, d):
    """A curve of arcs that meet smoothly, moved to its left by d."""
    segs = list(segments(curve, False))

    def normal(p, q, b, t):
        if abs(b) < 1e-9:
            a = math.atan2(q[1] - p[1], q[0] - p[0])
        else:
            a = arc_of(p, q, b)[3] + 4 * math.atan(b) * t + math.copysign(math.pi / 2, b)
        return -math.sin(a), math.cos(a)

    out = []
    for p, q, b in segs:
        nx, ny = normal(p, q, b, 0)
        out.append((p[0] + nx * d, p[1] + ny * d, b))
    p, q, b = segs[-1]
    nx, ny = normal(p, q, b, 1)
    out.append((q[0] + nx * d, q[1] + ny * d, 0))
    return out


def reverse(curve):
    points = curve[::-1]
    return [(p[0], p[1], -points[i + 1][2] if i + 1 < len(points) else 0) for i, p in enumerate(points)]


def strip(axis, width):
    """The closed outline of a path."""
    return offset(axis, width / 2) + reverse(offset(axis, -width / 2))


def inside(point, poly):
    x, y = point
    hit = False
    for i in range(len(poly)):
        (x0, y0), (x1, y1) = poly[i - 1], poly[i]
        if (y0 > y) != (y1 > y) and x < x0 + (y - y0) * (x1 - x0) / (y1 - y0):
            hit = not hit
    return hit


def distance(point, poly):
    """Distance from the edge of a polygon, negative inside."""
    best = 1e9
    for i in range(len(poly)):
        (x0, y0), (x1, y1) = poly[i - 1], poly[i]
        dx, dy = x1 - x0, y1 - y0
        k = dx * dx + dy * dy
        t = 0 if k == 0 else max(0, min(1, ((point[0] - x0) * dx + (point[1] - y0) * dy) / k))
        best = min(best, math.hypot(point[0] - x0 - t * dx, point[1] - y0 - t * dy))
    return -best if inside(point, poly) else best
