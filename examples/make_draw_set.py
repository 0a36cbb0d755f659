#!/usr/bin/python3
"""Draws DrawSet.dxf, the drawing from which the drawing settings show their preview.

A tree with its leader and label on the left, a bed of ground cover with its
label on the right, at the size of paper millimetres. The preview replaces the
texts of the two labels, which it knows by their layers.

    python3 examples/make_draw_set.py [OUT.dxf]
"""

import math
import sys
from pathlib import Path

import ezdxf

HEIGHT = 3.5  # of the labels


def draw(doc):
    space = doc.modelspace()
    for name, color in (("图框", 8), ("乔木", 94), ("乔木-标注", 7), ("地被", 62), ("维德-地被标注", 7)):
        doc.layers.add(name, color=color)

    def leader(points, layer):
        space.add_lwpolyline(points, dxfattribs={"layer": layer})

    def label(text, x, y, layer):
        space.add_mtext(text, dxfattribs={
            "layer": layer, "char_height": HEIGHT, "insert": (x, y), "attachment_point": 7, "style": "Standard"})

    tree = doc.blocks.new("香樟")
    tree.add_circle((0, 0), 8)
    tree.add_circle((0, 0), 0.8)
    for i in range(11):
        a = 2 * math.pi * i / 11
        tree.add_line((2 * math.cos(a), 2 * math.sin(a)), (7 * math.cos(a + 0.1), 7 * math.sin(a + 0.1)))
    for x, y in ((12, 12), (27, 10), (15, 27), (31, 25)):
        space.add_blockref("香樟", (x, y), dxfattribs={"layer": "乔木"})
    leader([(12, 12), (15, 27), (31, 25), (27, 10), (38, 40), (68, 40)], "乔木-标注")
    label("香樟", 40, 41, "乔木-标注")

    bed = [(78, 6), (118, 4), (126, 18), (112, 31), (84, 28)]
    space.add_lwpolyline(bed, close=True, dxfattribs={"layer": "地被"})
    hatch = space.add_hatch(color=256, dxfattribs={"layer": "地被"})
    hatch.set_pattern_fill("ANSI31", scale=1.2)
    hatch.paths.add_polyline_path(bed, is_closed=True)
    leader([(104, 18), (110, 40), (142, 40)], "维德-地被标注")
    label("发草", 111, 41, "维德-地被标注")


def main():
    target = Path(sys.argv[1]) if len(sys.argv) > 1 else \
        Path(__file__).parent.parent / "share/verdelis/Data/DWG/DrawSet.dxf"
    ezdxf.options.write_fixed_meta_data_for_testing = True
    doc = ezdxf.new("R2010")
    doc.header["$INSUNITS"] = 4
    draw(doc)
    doc.saveas(target)


main()
