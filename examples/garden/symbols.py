"""The plan symbols of the species."""

import math
import random

from .curves import disc, polygon, scallops
from .planting import BALL, BAMBOO, CONIFER, DATA_TAGS, DECIDUOUS, EVERGREEN, FLOWER, FOUNTAIN, SPECIES
from .sheet import MM, tint


def symbol(sheet, name):
    """The block of one species: drawn at its true crown, centred on the trunk."""
    kind, n, color, _, latin, trunk, height, crown, note = SPECIES[name]
    block = sheet.doc.blocks.new(name)
    r = crown / 2
    rnd = random.Random(name)

    def ring(radius, count, depth, phase=0.0, **attribs):
        points = [on(phase + 2 * math.pi * i / count, radius) for i in range(count)]
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

    # How much of the crown is tinted: the outlines differ.
    leafy = {DECIDUOUS: 1, EVERGREEN: 0.94, CONIFER: 0.9, FLOWER: 0.92, FOUNTAIN: 0.9, BALL: 1}.get(kind, 0)
    if leafy:
        sheet.fill(disc(0, 0, r * leafy), tint(color, 0.45), space=block, layer="0", transparency=0.55)
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
