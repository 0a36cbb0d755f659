"""What lies in the model beside plants and labels."""

import math

from ezdxf.enums import TextEntityAlignment

from .curves import at, distance, flatten, inside, length, polygon, rectangle, segments, smooth
from .planting import COVER
from .sheet import TEXT, tint
from .site import (BUILDINGS, DRIVE, EAST_LAWN, FLAT_BUILDINGS, FLAT_PAVING, GATEHOUSE, HALL, HOUSE, PATHS, PAVILION,
                   PLAZA, POND, ROAD, SITE)

LAWN, ASPHALT, PAVING, WATER, ROOF = (
    (238, 245, 226), (240, 240, 240), (247, 241, 230), (220, 238, 248), (246, 244, 242))


def draw_tints(sheet):
    """The ground in pale colours, below everything else; the later covers the earlier."""
    sheet.fill(SITE, LAWN)
    for west, east in ((2.5, 58), (64, 119.5)):
        sheet.fill(rectangle(west, 11.9, east, 14.5), PAVING)
    for color, regions in ((PAVING, PATHS), (ASPHALT, (ROAD, DRIVE)), (PAVING, (PLAZA,))):
        for region in regions:
            sheet.fill(region, color)
    sheet.fill(EAST_LAWN, (226, 240, 206))
    sheet.fill(POND, WATER)
    for building in BUILDINGS:
        sheet.fill(building, ROOF)


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


def draw_buildings(sheet):
    for building, name, storeys in ((HALL, "社区活动中心", "3F"), (HOUSE, "社区服务用房", "2F"), (GATEHOUSE, "门卫", "1F")):
        xs, ys = [p[0] for p in building], [p[1] for p in building]
        sheet.hatch([building], "建筑填充", "ANSI31", 400, 254)
        sheet.poly(building, "建筑", const_width=60)
        low = min(ys) + (max(ys) - min(ys)) * 0.45
        big = 1.05 if max(xs) - min(xs) > 10 else 0.6
        x = (min(xs) + max(xs)) / 2
        half = big * 0.5 * len(name)
        sheet.fill(rectangle(x - half, low - big * (2.4 if big > 1 else 2.2), x + half, low + big), ROOF)
        sheet.text(x, low, name, big)
        sheet.text(x, low - big * 1.6, storeys, big * 0.7)
    for x, y, turn in ((87.5, 57, 1), (30, 58, 1), (70.9, 66, 0)):  # entrances
        tip = [(x - 0.5, y - 0.9), (x + 0.5, y - 0.9), (x, y - 0.1)] if turn else [
            (x - 0.9, y - 0.5), (x - 0.9, y + 0.5), (x - 0.1, y)]
        sheet.fill(polygon(*tip), (60, 60, 60), layer="建筑")
    sheet.poly(PAVILION, "建筑", const_width=60)
    for p in PAVILION:
        sheet.lines([(51, 41.5), p[:2]], "铺装", color=8)
    sheet.note(53.9, 43.2, "六角亭", TEXT, "文字")


def draw_water(sheet):
    sheet.poly(POND, "水体", const_width=70)
    shore = flatten(POND, True, 1.0)
    for shrink in (0.93, 0.84):
        ring = [(34.5 + (x - 34.5) * shrink, 35 + (y - 35) * shrink) for x, y in shore[::3]]
        sheet.poly(smooth(ring), "水体", color=141, lineweight=9)
    for x, y, w in ((31, 38.5, 3), (35, 33, 4), (40, 31.8, 2.5), (26.5, 36.2, 2.4)):
        sheet.lines([(x, y), (x + w, y)], "水体", color=141, lineweight=9)
        sheet.lines([(x + 0.6, y - 0.4), (x + w - 0.6, y - 0.4)], "水体", color=141, lineweight=9)
    sheet.text(36.5, 35.4, "景观水池", 0.75, "文字", color=150)
    sheet.text(36.5, 34.2, "常水位 -0.50", TEXT, "文字", color=150)


def draw_titles(sheet):
    sheet.text(30, 5.3, "城市支路", 0.9)
    sheet.text(92, 5.3, "城市支路", 0.9)
    sheet.text(61, 20, "主入口车道", 0.6, rotation=90)
    sheet.text(61, 49.6, "中心广场", 0.6)
    for x, y, level in ((61, 33, "±0.000"), (61, 41.4, "+0.150"), (87.5, 51, "+0.300"), (98, 5.2, "-0.150")):
        sheet.lines([(x, y), (x - 0.3, y + 0.4), (x + 2.2, y + 0.4)], "文字")
        sheet.lines([(x, y), (x + 0.3, y + 0.4)], "文字")
        sheet.text(x + 0.35, y + 0.5, level, TEXT, align=TextEntityAlignment.BOTTOM_LEFT)
    for x, y, north in ((116, 16, 0), (116, 80, 64)):  # corners of the site, in the city's grid
        sheet.lines([(x, y), (x + 0.5, y + 0.9), (x + 4.6, y + 0.9)], "标注引线")
        for value, level, align in (("X=%.3f" % (4231.5 + north), 0.98, TextEntityAlignment.BOTTOM_LEFT),
                                    ("Y=%.3f" % (7816.25 + 109), 0.82, TextEntityAlignment.TOP_LEFT)):
            sheet.text(x + 0.6, y + level, value, 0.32, align=align)


def draw_dimensions(sheet):
    sheet.chain((7, 14, 40, 71, 104, 116), 83.3, 80.4)
    sheet.chain((7, 116), 85.3, 82)
    sheet.chain((16, 58, 72, 80), 4.3, 6.6, vertical=True)
    sheet.chain((16, 80), 2.3, 5.5, vertical=True)
    sheet.chain((58, 64), 11.2, 11.2)
    sheet.chain((3.5, 10.5), 48, 48, vertical=True)
    a = math.radians(-10)
    sheet.radius((61, 46), 8, a)


def draw_site(sheet):
    sheet.poly(SITE, "用地红线")
    draw_paving(sheet)
    draw_buildings(sheet)
    draw_water(sheet)
    draw_titles(sheet)
    draw_dimensions(sheet)


def draw_beds(sheet, bed_list):
    for name, curve, how in bed_list:
        pattern, scale, color = COVER[name]
        if how == "line":
            sheet.loose(curve, "地被")
            continue
        if how == "poly":
            sheet.fill(curve, tint(color, 0.18))
        sheet.poly(curve, "地被", color=color)
        if how == "poly":
            sheet.hatch([curve], "地被填充", pattern, scale, color)
