#!/usr/bin/python3
"""Draws planting-plan.dxf: the planting plan of a small community garden.

The drawing is in millimetres on an A0 sheet lengthened by a quarter, at 1:100.
Everything below is written in metres and multiplied once, where an entity is
made. The same program always writes the same file.

    python3 examples/make_plan.py [OUT.dxf]
"""

import math
import random
import sys
from pathlib import Path

import ezdxf
from ezdxf.enums import MTextEntityAlignment, TextEntityAlignment

MM = 1000.0
TEXT = 0.35  # label height: 3.5 mm on paper at 1:100
SHEET = (148.6, 84.1)

# Kinds of symbol: how a species looks in plan.
DECIDUOUS, EVERGREEN, CONIFER, FLOWER, BALL, FOUNTAIN, BAMBOO = range(7)

# name: (kind, variant, colour, layer, Latin name, trunk cm, height m, crown m, note)
SPECIES = {
    "悬铃木": (DECIDUOUS, 9, 82, "乔木", "Platanus × acerifolia", "18", "7.0-7.5", 4.8, "行道树，分枝点2.8m"),
    "香樟": (EVERGREEN, 11, 94, "乔木", "Cinnamomum camphora", "16", "6.0-6.5", 4.2, "全冠"),
    "银杏": (DECIDUOUS, 7, 42, "乔木", "Ginkgo biloba", "18", "8.0-8.5", 3.4, "实生苗"),
    "栾树": (DECIDUOUS, 8, 52, "乔木", "Koelreuteria paniculata", "15", "6.5-7.0", 4.0, ""),
    "榉树": (DECIDUOUS, 11, 32, "乔木", "Zelkova schneideriana", "18", "7.5-8.0", 4.6, "全冠"),
    "朴树": (DECIDUOUS, 13, 62, "乔木", "Celtis sinensis", "30", "9.0-9.5", 6.4, "特选，造型优美"),
    "无患子": (DECIDUOUS, 10, 44, "乔木", "Sapindus saponaria", "15", "6.0-6.5", 3.8, ""),
    "乌桕": (DECIDUOUS, 9, 22, "乔木", "Triadica sebifera", "14", "6.0-6.5", 3.8, "秋色叶"),
    "合欢": (DECIDUOUS, 6, 231, "乔木", "Albizia julibrissin", "14", "5.5-6.0", 4.0, ""),
    "垂柳": (FOUNTAIN, 16, 72, "乔木", "Salix babylonica", "14", "5.5-6.0", 4.2, "临水种植"),
    "水杉": (CONIFER, 12, 84, "乔木", "Metasequoia glyptostroboides", "12", "8.0-8.5", 2.2, ""),
    "雪松": (CONIFER, 18, 104, "乔木", "Cedrus deodara", "", "7.0-7.5", 4.4, "不脱脚"),
    "黑松": (CONIFER, 14, 96, "乔木", "Pinus thunbergii", "15", "4.0-4.5", 3.2, "造型松"),
    "广玉兰": (EVERGREEN, 9, 106, "乔木", "Magnolia grandiflora", "15", "5.5-6.0", 3.4, ""),
    "杨梅": (EVERGREEN, 10, 86, "乔木", "Morella rubra", "", "3.0-3.5", 3.0, ""),
    "白玉兰": (FLOWER, 8, 254, "乔木", "Yulania denudata", "12", "5.0-5.5", 3.0, ""),
    "桂花": (EVERGREEN, 8, 74, "乔木", "Osmanthus fragrans", "", "3.0-3.5", 2.8, "金桂，丛生"),
    "日本晚樱": (FLOWER, 7, 221, "乔木", "Prunus serrulata var. lannesiana", "10", "3.5-4.0", 3.0, ""),
    "紫叶李": (DECIDUOUS, 5, 202, "乔木", "Prunus cerasifera", "8", "3.0-3.5", 2.4, ""),
    "鸡爪槭": (DECIDUOUS, 6, 12, "乔木", "Acer palmatum", "8", "2.5-3.0", 2.6, ""),
    "垂丝海棠": (FLOWER, 6, 11, "乔木", "Malus halliana", "7", "2.5-3.0", 2.2, ""),
    "紫薇": (FLOWER, 5, 210, "乔木", "Lagerstroemia indica", "7", "2.5-3.0", 2.0, ""),
    "碧桃": (FLOWER, 9, 240, "乔木", "Prunus persica 'Duplex'", "6", "2.0-2.5", 2.0, ""),
    "石榴": (DECIDUOUS, 4, 20, "乔木", "Punica granatum", "7", "2.5-3.0", 2.2, ""),
    "罗汉松": (CONIFER, 9, 116, "乔木", "Podocarpus macrophyllus", "10", "2.5-3.0", 2.0, "造型"),
    "红叶石楠球": (BALL, 5, 14, "灌木", "Photinia × fraseri", "", "1.4", 1.4, "不脱脚"),
    "海桐球": (BALL, 4, 92, "灌木", "Pittosporum tobira", "", "1.2", 1.3, "不脱脚"),
    "无刺构骨球": (BALL, 6, 104, "灌木", "Ilex cornuta 'Fortunei'", "", "1.2", 1.2, "不脱脚"),
    "金叶女贞球": (BALL, 3, 54, "灌木", "Ligustrum × vicaryi", "", "1.0", 1.1, "不脱脚"),
    "红花檵木球": (BALL, 7, 222, "灌木", "Loropetalum chinense var. rubrum", "", "1.2", 1.2, "不脱脚"),
    "山茶": (EVERGREEN, 6, 242, "灌木", "Camellia japonica", "", "1.5", 1.3, ""),
    "含笑": (EVERGREEN, 5, 64, "灌木", "Michelia figo", "", "1.4", 1.2, ""),
    "木芙蓉": (FLOWER, 4, 223, "灌木", "Hibiscus mutabilis", "", "1.6", 1.6, "临水种植"),
    "南天竹": (BAMBOO, 7, 16, "灌木", "Nandina domestica", "", "0.8", 0.9, ""),
    "苏铁": (FOUNTAIN, 12, 94, "灌木", "Cycas revoluta", "", "1.0", 1.6, ""),
    "早园竹": (BAMBOO, 9, 82, "灌木", "Phyllostachys propinqua", "3", "4.0-4.5", 1.1, "3杆/丛"),
}
DATA_TAGS = ("拉丁名", "胸径", "高度", "冠幅", "备注")

# Ground cover: hatch pattern, pattern scale, colour. One pattern for each plant.
COVER = {
    "毛杜鹃": ("ANSI37", 90, 221), "金森女贞": ("NET", 90, 54), "瓜子黄杨": ("ANSI31", 60, 94),
    "麦冬": ("DASH", 60, 84), "鸢尾": ("TRIANG", 45, 172), "八仙花": ("HEX", 55, 151),
    "大吴风草": ("PLAST", 60, 62), "狼尾草": ("FLEX", 45, 42), "发草": ("ANSI32", 60, 72),
    "月季": ("STARS", 40, 11), "萱草": ("CROSS", 45, 40), "红花酢浆草": ("DOTS", 90, 210),
    "再力花": ("ANSI36", 70, 132), "千屈菜": ("LINE", 70, 201), "地毯草": ("GRASS", 55, 92),
}

LAYERS = [  # name, colour, line type, line weight in hundredths of a millimetre
    ("建筑", 7, "CONTINUOUS", 50), ("道路", 8, "CONTINUOUS", 25), ("铺装", 253, "CONTINUOUS", 9),
    ("道路中线", 1, "CENTER", 13), ("水体", 140, "CONTINUOUS", 35), ("用地红线", 1, "DIVIDE", 50),
    ("乔木", 3, "CONTINUOUS", 18), ("灌木", 94, "CONTINUOUS", 13), ("地被", 62, "CONTINUOUS", 25),
    ("地被填充", 92, "CONTINUOUS", 9), ("标注", 7, "CONTINUOUS", 13), ("标注引线", 8, "CONTINUOUS", 9),
    ("文字", 7, "CONTINUOUS", 18), ("图框", 7, "CONTINUOUS", 50), ("图例", 7, "CONTINUOUS", 18),
]


# ---- Curves: lists of (x, y, bulge); the bulge belongs to the segment that starts there.

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


# ---- The site

SITE = rectangle(7, 16, 116, 80)
ROAD = rectangle(2.5, 3.5, 119.5, 10.5)
DRIVE = rectangle(58, 10.5, 64, 39.5)
PLAZA = disc(61, 46, 8)
WEST_AXIS = smooth([(55, 47.5), (45, 51), (34, 52), (22, 50.5), (13.5, 44), (12, 34), (15.5, 24.5), (26, 20.8),
                    (39, 20.6), (50, 23), (59, 25)], False)
EAST_AXIS = smooth([(67, 46.5), (77, 45), (90, 46.5), (102, 43.5), (107.5, 34), (103, 24.5), (90, 20.8), (76, 21.6),
                    (63, 25)], False)
NORTH_AXIS = smooth([(61, 52), (61.4, 59), (64, 64.5), (70, 66)], False)
PATHS = [strip(WEST_AXIS, 2.6), strip(EAST_AXIS, 2.6), strip(NORTH_AXIS, 2.4), rectangle(28.6, 50, 31.4, 58),
         rectangle(85, 44.8, 90, 57)]
POND = smooth([(19, 36), (23, 29.5), (31, 26.8), (38, 28.5), (46, 30.2), (49.5, 35.5), (45, 40.5), (37.5, 40),
               (31, 43.6), (23, 42.4)])
HALL = polygon((71, 57), (104, 57), (104, 70), (93, 70), (93, 74), (71, 74))
HOUSE = polygon((14, 58), (40, 58), (40, 68), (33, 68), (33, 72), (14, 72))
GATEHOUSE = rectangle(69, 16.8, 73.5, 20)
PAVILION = polygon(*ellipse_points(51, 41.5, 2.6, 2.6, 6))
BUILDINGS = [HALL, HOUSE, GATEHOUSE, PAVILION]
EAST_LAWN = smooth([(72, 34), (76, 28), (86, 25.4), (97, 26.5), (102, 32.5), (98.5, 39), (89, 41.5), (78, 40)])

FLAT_PAVING = [flatten(c, True) for c in [ROAD, DRIVE, PLAZA, *PATHS]]
FLAT_BUILDINGS = [flatten(c, True) for c in BUILDINGS]
FLAT_POND = flatten(POND, True)
FLAT_SITE = flatten(SITE, True)


class Planting:
    """Where plants may stand, and which ones stand already."""

    def __init__(self):
        self.plants = []  # (name, x, y, radius)
        self.groups = []  # (name, [(x, y), ...])
        self.rnd = random.Random(20240523)

    def fits(self, name, p, street=False):
        r = SPECIES[name][7] / 2
        if not street and distance(p, FLAT_SITE) > -min(r, 1.2):
            return False
        trunk = 0.6 if SPECIES[name][3] == "乔木" else r * 0.9
        if any(distance(p, poly) < trunk for poly in FLAT_PAVING):
            return False
        if distance(p, FLAT_POND) < trunk or any(distance(p, poly) < r + 0.25 for poly in FLAT_BUILDINGS):
            return False
        for other, x, y, s in self.plants:
            same = SPECIES[other][3] == SPECIES[name][3]
            if math.hypot(p[0] - x, p[1] - y) < (r + s) * (0.82 if same else 0.6):
                return False
        return True

    def add(self, name, points, street=False):
        placed = []
        for p in points:
            p = (round(p[0], 3), round(p[1], 3))
            if self.fits(name, p, street):
                self.plants.append((name, *p, SPECIES[name][7] / 2))
                placed.append(p)
        if placed:
            self.groups.append((name, placed))

    def row(self, name, a, b, spacing, street=False):
        n = max(1, round(math.dist(a, b) / spacing))
        self.add(name, [at(a, b, 0, i / n) for i in range(n + 1)], street)

    def along(self, name, axis, side, spacing, first, last):
        """A row beside a path, from one fraction of its length to another."""
        points = flatten(offset(axis, side), False, 0.1)
        total = sum(math.dist(a, b) for a, b in zip(points, points[1:]))
        run, due, out = 0.0, first * total, []
        for a, b in zip(points, points[1:]):
            run += math.dist(a, b)
            if run >= due and run <= last * total:
                out.append(b)
                due += spacing
        self.add(name, out)

    def cluster(self, name, x, y, count, spread):
        """A natural group: plants stand as close as their crowns allow."""
        r = SPECIES[name][7] / 2
        placed = []
        for _ in range(4000):
            if len(placed) == count:
                break
            a, d = self.rnd.random() * 2 * math.pi, spread * math.sqrt(self.rnd.random())
            p = (round(x + d * math.cos(a), 3), round(y + d * math.sin(a), 3))
            if self.fits(name, p):
                self.plants.append((name, *p, r))
                placed.append(p)
        if placed:
            self.groups.append((name, placed))


def plant():
    g = Planting()
    # Street and drive
    g.row("悬铃木", (6, 13.2), (55, 13.2), 5.6, street=True)
    g.row("悬铃木", (67, 13.2), (116, 13.2), 5.6, street=True)
    g.row("香樟", (55.3, 18.6), (55.3, 36.5), 4.4)
    g.row("香樟", (66.7, 22.6), (66.7, 38.2), 4.4)
    # Plaza: a ring of ginkgo round the old tree
    g.add("银杏", [(61 + 10.6 * math.cos(a), 46 + 10.6 * math.sin(a))
                   for a in (math.radians(d) for d in range(18, 378, 24))])
    # Boundaries
    g.row("水杉", (41.6, 77.9), (69.4, 77.9), 2.1)
    g.row("水杉", (71.4, 77.9), (92, 77.9), 2.1)
    g.row("广玉兰", (113.6, 19.5), (113.6, 48), 3.8)
    g.row("雪松", (112.8, 53), (112.8, 77), 4.8)
    g.row("杨梅", (9.2, 18.8), (9.2, 41), 3.6)
    g.row("香樟", (10.2, 50), (10.2, 77), 4.5)
    g.row("早园竹", (14.5, 78), (39.5, 78), 1.15)
    g.row("早园竹", (14.9, 76.6), (39.9, 76.6), 1.15)
    # Beside the paths
    g.along("日本晚樱", EAST_AXIS, 2.6, 3.4, 0.04, 0.30)
    g.along("无患子", EAST_AXIS, 3.2, 4.4, 0.36, 0.66)
    g.along("紫薇", EAST_AXIS, -2.3, 2.6, 0.66, 0.92)
    g.along("栾树", WEST_AXIS, -3.2, 4.5, 0.12, 0.36)
    g.along("碧桃", WEST_AXIS, 2.4, 4.0, 0.40, 0.62)
    g.along("垂丝海棠", WEST_AXIS, -2.4, 2.7, 0.64, 0.95)
    # Round the pond
    shore = flatten(POND, True, 0.5)
    ring = [(x + (x - 34) / math.hypot(x - 34, y - 35) * 2.0, y + (y - 35) / math.hypot(x - 34, y - 35) * 2.0)
            for x, y in shore]
    g.add("垂柳", ring[4::17])
    g.add("木芙蓉", ring[::5][:14])
    # Groups in the lawns
    g.cluster("榉树", 80, 34.5, 4, 5.5)
    g.cluster("朴树", 94.5, 33, 1, 2)
    g.cluster("黑松", 89, 30, 3, 4)
    g.cluster("鸡爪槭", 51, 36, 5, 4.5)
    g.cluster("鸡爪槭", 97, 52, 4, 3.5)
    g.cluster("桂花", 48, 57, 7, 5)
    g.cluster("桂花", 108, 51, 5, 4)
    g.cluster("合欢", 50, 66, 4, 5)
    g.cluster("白玉兰", 78, 51.5, 5, 4.5)
    g.cluster("紫叶李", 44, 72, 6, 4)
    g.cluster("石榴", 22, 54.6, 5, 3.2)
    g.cluster("罗汉松", 104, 74, 3, 2.5)
    g.cluster("紫叶李", 82, 18.6, 5, 5)
    g.cluster("桂花", 30, 18, 6, 6)
    g.cluster("榉树", 57, 73, 3, 4.5)
    g.cluster("鸡爪槭", 66.5, 71, 3, 3.2)
    g.cluster("朴树", 51, 31.5, 1, 2)
    g.cluster("乌桕", 18, 19.5, 4, 4.5)
    g.cluster("黑松", 34, 48, 3, 4)
    g.cluster("日本晚樱", 108, 31, 4, 4)
    g.cluster("栾树", 76, 30.5, 1, 3)
    g.cluster("银杏", 100, 77, 3, 4)
    g.cluster("石榴", 109.5, 47, 3, 2.5)
    # Shrubs along the buildings
    g.row("红叶石楠球", (71.5, 55.9), (84, 55.9), 1.55)
    g.row("海桐球", (91.5, 55.9), (103.5, 55.9), 1.5)
    g.row("无刺构骨球", (105.3, 57.5), (105.3, 69.5), 1.4)
    g.row("红花檵木球", (14.5, 57), (27.5, 57), 1.35)
    g.row("金叶女贞球", (32.5, 57), (39.5, 57), 1.25)
    g.row("山茶", (41.2, 58.5), (41.2, 67.5), 1.45)
    g.row("南天竹", (15, 73), (32, 73), 1.0)
    g.row("含笑", (94, 71.2), (103, 71.2), 1.35)
    g.cluster("苏铁", 70.5, 53.6, 4, 2.4)
    # Shrub groups at bends and junctions
    for i, (name, x, y) in enumerate([("红叶石楠球", 53, 28.5), ("海桐球", 69.5, 28.5), ("红花檵木球", 70.5, 42),
                                      ("无刺构骨球", 17, 47.5), ("金叶女贞球", 48, 47.5), ("红叶石楠球", 110, 40),
                                      ("海桐球", 104, 20), ("金叶女贞球", 57, 57), ("红花檵木球", 96, 48.8),
                                      ("山茶", 65.5, 57.5), ("含笑", 43, 18.5), ("无刺构骨球", 91, 37),
                                      ("红叶石楠球", 12, 22)]):
        g.cluster(name, x, y, 6 + i % 3, 2.6)
    return g


# Beds: plant, outline, how it is drawn. "line" beds stay loose lines and arcs that
# meet; "poly" beds are closed polylines with a hatch; "plain" ones have no hatch.
def beds():
    return [
        ("地毯草", EAST_LAWN, "poly"),
        ("毛杜鹃", scallops([(76, 47.6), (79.5, 47.4), (83.5, 47.8), (83.6, 49.4), (79.6, 49.2), (75.8, 49.4)]), "poly"),
        ("金森女贞", rectangle(71, 54.6, 84.6, 56.8), "poly"),
        ("瓜子黄杨", rectangle(90.6, 54.6, 104, 56.8), "poly"),
        ("大吴风草", rectangle(14, 55.8, 28.2, 57.8), "poly"),
        ("麦冬", rectangle(31.8, 55.8, 40, 57.8), "poly"),
        ("八仙花", smooth([(42.5, 59), (44.4, 62), (44, 66), (42.6, 69), (41.8, 64)]), "poly"),
        ("月季", smooth([(71.5, 49), (73.6, 48), (74.2, 50), (74, 53), (72.4, 53.2), (71.2, 51.5)]), "poly"),
        ("鸢尾", scallops([(17.5, 27.5), (19.6, 26.2), (21.4, 26.8), (20, 29.4), (18.1, 31.6), (16.4, 30.6)]), "poly"),
        ("再力花", smooth([(22.5, 33), (25.5, 30.2), (29.6, 29), (28.6, 31), (26, 32.4), (24.2, 34.6)]), "poly"),
        ("千屈菜", smooth([(40, 38.4), (43, 38.8), (45.6, 38), (46, 36.2), (43.5, 36.8), (40.6, 36.9)]), "poly"),
        ("狼尾草", scallops([(96, 40.9), (99.4, 40.2), (101.4, 38.6), (102.4, 40), (99.8, 41.9), (96.6, 42.4)]), "poly"),
        ("萱草", scallops([(74, 24.6), (78, 23.8), (82, 23.6), (82, 25.2), (77.6, 26), (74.4, 26.6)]), "poly"),
        ("红花酢浆草", smooth([(107.6, 58), (110, 59.5), (110.4, 64), (109, 68), (107.4, 66), (107, 61)]), "poly"),
        ("发草", smooth([(43.5, 44), (46.5, 44.4), (48.4, 46.2), (46, 47.6), (42, 47.6), (41.4, 45.6)]), "poly"),
        # The bed round the east lawn's pines: arcs and lines that only meet at their ends.
        ("毛杜鹃", [(85.4, 28.6, 0.35), (91.6, 27.8, 0), (92.4, 30.4, 0.42), (86.4, 31.6, 0)], "line"),
        ("金森女贞", [(50, 17.6, 0), (54, 17.6, 0), (54, 19.6, 0.3), (51.6, 21, 0), (49.2, 19.8, 0.25)], "line"),
        ("麦冬", [(24, 45.6, -0.18), (31.2, 46.4, 0), (31.6, 48.8, 0.2), (23.4, 47.8, 0)], "line"),
        ("狼尾草", [(74, 17.2, 0), (79, 17.2, 0), (79, 18.6, 0.2), (74.6, 19.6, 0)], "line"),
        ("发草", [(44, 53.6, 0.3), (52, 53.4, 0), (52.6, 55, -0.2), (44.4, 55.4, 0)], "plain"),
    ]


# ---- Drawing

class Sheet:
    def __init__(self):
        ezdxf.options.write_fixed_meta_data_for_testing = True  # no date, no random id
        self.doc = ezdxf.new("R2010", setup=["linetypes"], units=4)
        self.doc.header["$LTSCALE"] = 1000.0  # the line types are metres long here
        self.doc.header["$INSUNITS"] = 4
        style = self.doc.styles.new("汉字", dxfattribs={"font": "simsun.ttf", "width": 0.8})
        style.dxf.font = "simsun.ttf"
        self.doc.header["$TEXTSTYLE"] = "汉字"
        for name, color, linetype, weight in LAYERS:
            self.doc.layers.add(name, color=color, linetype=linetype, lineweight=weight)
        self.space = self.doc.modelspace()

    def poly(self, curve, layer, closed=True, space=None, **attribs):
        points = [(x * MM, y * MM, b) for x, y, b in curve]
        target = self.space if space is None else space  # an empty block counts as false
        return target.add_lwpolyline(points, format="xyb", close=closed, dxfattribs={"layer": layer, **attribs})

    def lines(self, points, layer, closed=False, **attribs):
        return self.poly(polygon(*points), layer, closed, **attribs)

    def loose(self, curve, layer):
        """A closed outline as single lines and arcs."""
        for p, q, b in segments(curve, True):
            if abs(b) < 1e-9:
                self.space.add_line((p[0] * MM, p[1] * MM), (q[0] * MM, q[1] * MM), dxfattribs={"layer": layer})
                continue
            cx, cy, r, a, sweep = arc_of(p, q, b)
            a, e = (a, a + sweep) if sweep > 0 else (a + sweep, a)
            self.space.add_arc((cx * MM, cy * MM), r * MM, math.degrees(a) % 360, math.degrees(e) % 360,
                               dxfattribs={"layer": layer})

    def circle(self, x, y, r, layer, **attribs):
        return self.space.add_circle((x * MM, y * MM), r * MM, dxfattribs={"layer": layer, **attribs})

    def hatch(self, curves, layer, pattern, scale, color, angle=0):
        hatch = self.space.add_hatch(color=color, dxfattribs={"layer": layer})
        hatch.set_pattern_fill(pattern, color=color, scale=scale, angle=angle)
        for curve in curves:
            hatch.paths.add_polyline_path([(x * MM, y * MM, b) for x, y, b in curve], is_closed=True)
        return hatch

    def text(self, x, y, value, height=TEXT, layer="文字", align=TextEntityAlignment.MIDDLE_CENTER, **attribs):
        entity = self.space.add_text(value, dxfattribs={"layer": layer, "height": height * MM, "style": "汉字",
                                                        "width": 0.8, **attribs})
        entity.set_placement((x * MM, y * MM), align=align)
        return entity

    def note(self, x, y, value, height=TEXT, layer="标注", width=0.0):
        entity = self.space.add_mtext(value, dxfattribs={"layer": layer, "char_height": height * MM, "style": "汉字",
                                                         "width": width * MM})
        entity.set_location((x * MM, y * MM), attachment_point=MTextEntityAlignment.BOTTOM_LEFT)
        return entity


def symbol(sheet, name):
    """The block of one species: drawn at its true crown, centred on the trunk."""
    kind, n, color, _, latin, trunk, height, crown, note = SPECIES[name]
    block = sheet.doc.blocks.new(name)
    r = crown / 2
    rnd = random.Random(name)

    def ring(radius, count, depth, phase=0.0, **attribs):
        points = [(radius * math.cos(phase + 2 * math.pi * i / count), radius * math.sin(phase + 2 * math.pi * i / count))
                  for i in range(count)]
        sheet.poly(scallops(points, depth), "0", space=block, color=color, **attribs)

    def ray(a, r0, r1):
        block.add_line((r0 * math.cos(a) * MM, r0 * math.sin(a) * MM), (r1 * math.cos(a) * MM, r1 * math.sin(a) * MM),
                       dxfattribs={"layer": "0", "color": color})

    def stroke(*points):
        sheet.poly(polygon(*points), "0", closed=False, space=block, color=color)

    def on(a, radius):
        return radius * math.cos(a), radius * math.sin(a)

    def circle(radius, **attribs):
        block.add_circle((0, 0), radius * MM, dxfattribs={"layer": "0", "color": color, **attribs})

    if kind == DECIDUOUS:  # crown circle and bare, forking branches
        circle(r)
        for i in range(n):
            a = 2 * math.pi * i / n + rnd.uniform(-0.12, 0.12)
            tip = r * rnd.uniform(0.82, 0.95)
            fork = r * rnd.uniform(0.4, 0.55)
            stroke((0, 0), on(a, tip))
            for side in (-1, 1):
                stroke(on(a, fork), on(a + side * rnd.uniform(0.9, 1.3) / n * 2, tip * rnd.uniform(0.8, 0.95)))
    elif kind == EVERGREEN:  # leafy outline, shading on one side
        ring(r * 0.92, n, 0.42)
        for i in range(n * 2):
            a = 2 * math.pi * i / (n * 2)
            if math.sin(a + 0.9) < 0.35:
                ray(a, r * 0.62, r * 0.84)
        for i in range(n):
            a = 2 * math.pi * (i + 0.5) / n
            if math.sin(a + 0.9) < 0.0:
                ray(a, r * 0.36, r * 0.54)
    elif kind == CONIFER:  # needles: a star of spokes within a saw-edged outline
        edge = [on(2 * math.pi * i / (2 * n), r * (1 if i % 2 else 0.8)) for i in range(2 * n)]
        sheet.poly(polygon(*edge), "0", space=block, color=color)
        for i in range(n):
            ray(2 * math.pi * (i + 0.5) / n, r * 0.1, r * 0.98)
    elif kind == FLOWER:  # petals round an open centre
        ring(r * 0.86, n, 0.75)
        ring(r * 0.42, n, 0.5, math.pi / n)
        for i in range(n):
            ray(2 * math.pi * i / n, r * 0.44, r * 0.8)
    elif kind == BALL:  # clipped shrub: circle with short ticks
        circle(r)
        circle(r * 0.55)
        for i in range(n * 2):
            ray(2 * math.pi * i / (n * 2), r * 0.62, r * 0.92)
    elif kind == FOUNTAIN:  # hanging shoots or fronds, each a bent stroke
        for i in range(n):
            a = 2 * math.pi * i / n
            b = [(*on(a, r * 0.08), 0.3), (*on(a + 0.35, r * (0.98 if i % 2 else 0.8)), 0)]
            sheet.poly(b, "0", closed=False, space=block, color=color)
        ring(r * 0.94, n // 2, 0.2)
    else:  # BAMBOO: leaves in pairs
        for i in range(n):
            a = 2 * math.pi * i / n + rnd.uniform(-0.2, 0.2)
            p, q = on(a, r * 0.15), on(a, r * rnd.uniform(0.8, 1.0))
            sheet.poly([(*p, 0.25), (*q, 0.25)], "0", space=block, color=color)
    if kind not in (BALL, BAMBOO):
        block.add_circle((0, 0), max(0.06, r * 0.05) * MM, dxfattribs={"layer": "0", "color": color})

    values = (latin, trunk, height, "%.1f" % crown, note)
    for i, (tag, value) in enumerate(zip(DATA_TAGS, values)):
        block.add_attdef(tag, (0, -i * 150), text=value,
                         dxfattribs={"prompt": tag, "height": 100, "layer": "0", "style": "汉字", "flags": 1})
    return dict(zip(DATA_TAGS, values))


def draw_paving(sheet):
    """Kerbs of roads and paths, left out where they run through each other."""
    regions = [ROAD, DRIVE, PLAZA, *PATHS]

    def hidden(point, own):
        return any(i != own and distance(point, poly) < -0.004 for i, poly in enumerate(FLAT_PAVING)) or any(
            inside(point, poly) for poly in FLAT_BUILDINGS)

    for own, region in enumerate(regions):
        run = []

        def flush():
            if run:
                first = run[0]
                curve = [(*first[0], first[2])] + [(*s[0], s[2]) for s in run[1:]] + [(*run[-1][1], 0)]
                sheet.poly(curve, "道路", closed=False)
                run.clear()

        for p, q, b in segments(region, True):
            n = max(4, math.ceil(length(p, q, b) / 0.2))
            states = [hidden(at(p, q, b, (i + 0.5) / n), own) for i in range(n)]
            cuts = [0.0]
            for i in range(1, n):
                if states[i] != states[i - 1]:
                    lo, hi = (i - 0.5) / n, (i + 0.5) / n
                    for _ in range(30):
                        mid = (lo + hi) / 2
                        lo, hi = (mid, hi) if hidden(at(p, q, b, mid), own) == states[i - 1] else (lo, mid)
                    cuts.append(hi)
            cuts.append(1.0)
            for t0, t1 in zip(cuts, cuts[1:]):
                if hidden(at(p, q, b, (t0 + t1) / 2), own):
                    flush()
                else:
                    run.append((at(p, q, b, t0), at(p, q, b, t1), math.tan(math.atan(b) * (t1 - t0))))
        flush()

    sheet.lines([(2.5, 7), (119.5, 7)], "道路中线")
    for y in (11.9, 14.5):  # the pavement's kerb and back edge, open at the drive
        sheet.lines([(2.5, y), (58, y)], "铺装")
        sheet.lines([(64, y), (119.5, y)], "铺装")
    for radius in (2.6, 5.0, 7.6):
        sheet.circle(61, 46, radius, "铺装")
    for i in range(24):
        a = math.pi * i / 12
        sheet.lines([(61 + 5 * math.cos(a), 46 + 5 * math.sin(a)), (61 + 7.6 * math.cos(a), 46 + 7.6 * math.sin(a))],
                    "铺装")
    for i in range(7):
        x = 85 + 5 * (i + 1) / 8
        sheet.lines([(x, 48), (x, 57)], "铺装", color=254)


def draw_site(sheet):
    sheet.poly(SITE, "用地红线", const_width=80)
    draw_paving(sheet)
    for building, name, storeys in ((HALL, "社区活动中心", "3F"), (HOUSE, "社区服务用房", "2F"), (GATEHOUSE, "门卫", "1F"),
                                    (PAVILION, None, None)):
        sheet.poly(building, "建筑", const_width=60)
        xs, ys = [p[0] for p in building], [p[1] for p in building]
        if name:
            sheet.hatch([building], "建筑", "ANSI31", 260, 253)
            low = min(ys) + (max(y for y in ys) - min(ys)) * 0.45
            big = 0.9 if max(xs) - min(xs) > 10 else 0.5
            x = (min(xs) + max(xs)) / 2
            sheet.text(x, low, name, big)
            sheet.text(x, low - big * 1.7, storeys, big * 0.7)
    for p in PAVILION:
        sheet.lines([(51, 41.5), p[:2]], "建筑")
    sheet.note(53.9, 43.2, "六角亭", TEXT, "文字")
    sheet.poly(POND, "水体", const_width=70)
    inner = [flatten(POND, True, 1.0)]
    for shrink in (0.93, 0.84):
        ring = [(34.5 + (x - 34.5) * shrink, 35 + (y - 35) * shrink) for x, y in inner[0][::3]]
        sheet.poly(smooth(ring), "水体", color=141)
    for x, y, w in ((31, 38.5, 3), (35, 33, 4), (40, 31.8, 2.5), (26.5, 36.2, 2.4)):
        sheet.lines([(x, y), (x + w, y)], "水体", color=141)
        sheet.lines([(x + 0.6, y - 0.4), (x + w - 0.6, y - 0.4)], "水体", color=141)
    sheet.text(36.5, 35.4, "景观水池", 0.7, "文字", color=150)
    sheet.text(36.5, 34.2, "常水位 -0.50", 0.35, "文字", color=150)
    sheet.text(30, 5.3, "城市支路", 0.8)
    sheet.text(92, 5.3, "城市支路", 0.8)
    sheet.text(61, 20, "主入口车道", 0.5, rotation=90)
    sheet.text(61, 49.6, "中心广场", 0.6)
    for x, y, level in ((61, 33, "±0.000"), (61, 41.4, "+0.150"), (87.5, 51, "+0.300"), (98, 5.2, "-0.150")):
        sheet.lines([(x, y), (x - 0.3, y + 0.4), (x + 1.9, y + 0.4)], "文字")
        sheet.lines([(x, y), (x + 0.3, y + 0.4)], "文字")
        sheet.text(x + 0.35, y + 0.5, level, 0.3, align=TextEntityAlignment.BOTTOM_LEFT)


def text_width(value, height=TEXT):
    return sum(height * (1.0 if ord(c) > 0x2E80 else 0.62) for c in value)


class Labels:
    """Finds each label a free spot: never on another label or a title, rarely on a symbol."""

    def __init__(self, plants, covered):
        self.taken = []
        self.covered = covered
        self.circles = [(x, y, r) for _, x, y, r in plants]
        self.leaders = []

    def block(self, x0, y0, x1, y1):
        self.taken.append((x0, y0, x1, y1))

    def cost(self, x0, y0, x1, y1):
        pad = 0.12
        for a0, b0, a1, b1 in self.taken:
            if x0 - pad < a1 and a0 < x1 + pad and y0 - pad < b1 and b0 < y1 + pad:
                return None
        if x0 < 3 or x1 > 119.5 or y0 < 2 or y1 > 82.5:
            return None
        cost = 0.0
        for cx, cy, r in self.circles:
            dx, dy = max(x0 - cx, 0, cx - x1), max(y0 - cy, 0, cy - y1)
            d = math.hypot(dx, dy)
            if d < r:
                cost += 1.2 + (r - d)
        for poly in FLAT_BUILDINGS:
            if any(inside(p, poly) for p in ((x0, y0), (x1, y0), (x0, y1), (x1, y1))):
                cost += 6
        for poly in self.covered:
            if any(inside((x, y), poly) for x in (x0, (x0 + x1) / 2, x1) for y in (y0, y1)):
                cost += 2
        for (ax, ay), (bx, by) in self.leaders:
            for i in range(13):
                px, py = ax + (bx - ax) * i / 12, ay + (by - ay) * i / 12
                if x0 - 0.2 < px < x1 + 0.2 and y0 - 0.2 < py < y1 + 0.2:
                    cost += 2.5
                    break
        return cost

    def place(self, anchors, value, height=TEXT, near=1.2, far=9.0):
        """Best (anchor, x, y, right) for the label's lower left corner."""
        w, h = text_width(value, height), height * 1.25
        best = None
        for anchor in anchors:
            d = near
            while d <= far and (best is None or 0.45 * d < best[0]):
                for i in range(24):
                    a = 2 * math.pi * i / 24
                    tx, ty = anchor[0] + d * math.cos(a), anchor[1] + d * math.sin(a)
                    right = math.cos(a) >= 0
                    x0 = tx if right else tx - w
                    cost = self.cost(x0, ty, x0 + w, ty + h)
                    if cost is None:
                        continue
                    cost += 0.45 * d
                    for l0, l1 in self.leaders:
                        if crosses(anchor, (tx, ty), l0, l1):
                            cost += 3
                    if best is None or cost < best[0]:
                        best = (cost, anchor, x0, ty, right, w, h)
                d += 0.6
        if best is None:
            raise SystemExit("no room for the label " + value)
        _, anchor, x, y, right, w, h = best
        self.block(x, y, x + w, y + h)
        self.leaders.append((anchor, (x if right else x + w, y)))
        return anchor, x, y, right, w


def crosses(a, b, c, d):
    def side(p, q, r):
        return (q[0] - p[0]) * (r[1] - p[1]) - (q[1] - p[1]) * (r[0] - p[0])
    return side(a, b, c) * side(a, b, d) < 0 and side(c, d, a) * side(c, d, b) < 0


def chain(points):
    """The plants of a group in walking order, from an outer one to its next neighbour."""
    cx, cy = sum(p[0] for p in points) / len(points), sum(p[1] for p in points) / len(points)
    rest = sorted(points)
    current = max(rest, key=lambda p: (math.hypot(p[0] - cx, p[1] - cy), p))
    out = []
    while True:
        out.append(current)
        rest.remove(current)
        if not rest:
            return out
        current = min(rest, key=lambda p: (math.dist(p, current), p))


def draw_labels(sheet, garden, bed_list):
    labels = Labels(garden.plants, [flatten(c, True, 0.6) for _, c, how in bed_list
                                      if how == "poly" and c is not EAST_LAWN])
    for x0, y0, x1, y1 in ((81, 62.5, 94, 67), (22, 61, 32, 65.6), (69, 16.8, 73.5, 20), (27, 4.7, 33, 6), (89, 4.7, 101, 6.5),
                           (60.5, 17, 61.6, 23), (60, 33, 64, 34.2), (58.5, 49, 63.5, 50.2), (60.5, 41.2, 64, 42.3),
                           (32.5, 33.8, 40.6, 36), (53.8, 43, 55.4, 43.8), (87, 51, 90, 52)):
        labels.block(x0, y0, x1, y1)
    for name, curve, _ in bed_list:
        value = "%s(%.1fm2)" % (name, area(curve))
        flat = flatten(curve, True)
        xs, ys = [p[0] for p in flat], [p[1] for p in flat]
        centre = ((min(xs) + max(xs)) / 2, (min(ys) + max(ys)) / 2)
        if curve is EAST_LAWN:
            centre = (86, 38.5)
        anchor, x, y, right, w = labels.place([centre], value, near=1.4)
        sheet.lines([anchor, (x if right else x + w, y), (x + w if right else x, y)], "标注引线")
        sheet.text(x, y + 0.07, value, layer="标注", align=TextEntityAlignment.BOTTOM_LEFT, color=96)
        sheet.circle(*anchor, 0.06, "标注引线")
    for name, points in garden.groups:
        order = chain(points)
        for i in range(0, len(order), 14):  # long rows are labelled in stretches
            part = order[i:i + 14]
            if i and len(part) < 5:
                continue
            if len(order) - i - 14 in range(1, 5):
                part = order[i:]
            value = "%s(%d株)" % (name, len(part))
            anchors = [part[0], part[-1], part[len(part) // 2]]
            anchor, x, y, right, w = labels.place(anchors, value)
            for p, q in zip(part, part[1:]):
                if math.dist(p, q) < 7:
                    sheet.lines([p, q], "标注引线")
            sheet.lines([anchor, (x if right else x + w, y), (x + w if right else x, y)], "标注引线")
            sheet.note(x, y + 0.07, value)


def draw_beds(sheet, bed_list):
    for name, curve, how in bed_list:
        pattern, scale, color = COVER[name]
        if how == "line":
            sheet.loose(curve, "地被")
            continue
        sheet.poly(curve, "地被", color=color)
        if how == "poly":
            sheet.hatch([curve], "地被填充", pattern, scale, color)


def draw_frame(sheet):
    w, h = SHEET
    sheet.lines([(0, 0), (w, 0), (w, h), (0, h)], "图框", True, lineweight=18)
    sheet.lines([(2.5, 1), (w - 1, 1), (w - 1, h - 1), (2.5, h - 1)], "图框", True, const_width=100)
    left, right = 121.0, w - 1
    sheet.lines([(left, 1), (left, h - 1)], "图框", const_width=50)
    # Title block
    rows = [1, 3.2, 5.4, 7.6, 9.8, 13.4, 17.8, 22]
    for y in rows[1:]:
        sheet.lines([(left, y), (right, y)], "图框")
    for y0, y1 in zip(rows[:4], rows[1:5]):
        for x in (left + 4, left + 13.3, left + 17.3):
            sheet.lines([(x, y0), (x, y1)], "图框")
    cells = [("审定", "图号", "LS-01"), ("设计", "比例", "1:100"), ("制图", "日期", "2024.05"), ("校对", "专业", "园林")]
    for i, (role, key, value) in enumerate(cells):
        y = (rows[i] + rows[i + 1]) / 2
        sheet.text(left + 2, y, role, 0.5)
        sheet.text(left + 15.3, y, key, 0.5)
        sheet.text(left + 21.9, y, value, 0.55)
    middle = (left + right) / 2
    sheet.text(middle, 11.6, "植物种植平面图", 1.4)
    sheet.text(middle, 15.6, "青禾社区花园景观工程", 1.2)
    sheet.text(middle, 19.9, "说明：图中尺寸以毫米计，标高以米计。", 0.5)
    # North arrow
    x, y, r = left + 5, 27, 2.4
    sheet.circle(x, y, r, "图框")
    sheet.hatch([polygon((x, y + r), (x - 0.3 * r, y - 0.95 * r), (x, y - 0.55 * r))], "图框", "SOLID", 1, 7)
    sheet.lines([(x, y + r), (x - 0.3 * r, y - 0.95 * r), (x, y - 0.55 * r), (x + 0.3 * r, y - 0.95 * r)], "图框", True)
    sheet.text(x, y + r + 0.8, "北", 0.8)
    # Scale bar: 20 m
    x0, y0 = left + 10, 26
    for i in range(4):
        x1 = x0 + (0, 2.5, 5, 10)[i]
        x2 = x0 + (2.5, 5, 10, 15)[i]
        box = rectangle(x1, y0, x2, y0 + 0.5)
        sheet.poly(box, "图框")
        if i % 2 == 0:
            sheet.hatch([box], "图框", "SOLID", 1, 7)
    for d in (0, 5, 10, 15):
        sheet.text(x0 + d, y0 + 1.1, "%d" % d, 0.5)
    sheet.text(x0 + 16.1, y0 + 0.25, "m", 0.5)
    sheet.text(x0 + 7.5, y0 + 2.6, "1:100", 0.8)
    sheet.lines([(left, 31), (right, 31)], "图框")


def main():
    out = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).with_name("planting-plan.dxf")
    sheet = Sheet()
    garden = plant()
    bed_list = beds()
    data = {name: symbol(sheet, name) for name in SPECIES}

    draw_beds(sheet, bed_list)
    draw_site(sheet)
    rnd = random.Random(7)
    for name, x, y, _ in garden.plants:
        layer = SPECIES[name][3]
        turn = round(rnd.uniform(0, 360), 1) if SPECIES[name][0] in (DECIDUOUS, CONIFER, BAMBOO) else 0
        ref = sheet.space.add_blockref(name, (x * MM, y * MM), dxfattribs={"layer": layer, "rotation": turn})
        if layer == "乔木":  # shrubs leave their data to the block
            ref.add_auto_attribs(data[name])
            for attrib in ref.attribs:
                attrib.dxf.layer = layer
                attrib.dxf.style = "汉字"
                attrib.is_invisible = True
    draw_labels(sheet, garden, bed_list)
    draw_frame(sheet)
    sheet.doc.header["$EXTMIN"] = (0, 0, 0)
    sheet.doc.header["$EXTMAX"] = (SHEET[0] * MM, SHEET[1] * MM, 0)
    view = sheet.doc.set_modelspace_vport(height=SHEET[1] * MM, center=(SHEET[0] * MM / 2, SHEET[1] * MM / 2))
    view.dxf.aspect_ratio = SHEET[0] / SHEET[1]
    # The library collects the classes in a set: without this their order changes from run to run.
    classes = sheet.doc.classes
    for dxftype in sorted({e.dxftype() for e in sheet.doc.entitydb.values()}):
        classes.add_class(dxftype)
    classes.add_required_classes(sheet.doc.dxfversion)
    classes.classes = dict(sorted(classes.classes.items()))
    sheet.doc.saveas(out)

    counts = {}
    for name, *_ in garden.plants:
        counts[name] = counts.get(name, 0) + 1
    print("%s: %d symbols of %d species" % (out.name, sum(counts.values()), len(counts)))


if __name__ == "__main__":
    main()
