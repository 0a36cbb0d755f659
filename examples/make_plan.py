#!/usr/bin/python3
"""Draws planting-plan.dxf: the planting plan of a small community garden.

The model is in millimetres, the layout "LS-01" an A1 sheet lengthened by a quarter
that shows it at 1:150. The parts lie in garden/; there everything of the model is
written in metres and multiplied once, where an entity is made. The same program
always writes the same file.

    python3 examples/make_plan.py [OUT.dxf]
"""

import random
import sys
from pathlib import Path

from garden.labels import draw_labels
from garden.layout import draw_sheet
from garden.model import draw_beds, draw_site, draw_tints
from garden.planting import BAMBOO, CONIFER, DECIDUOUS, SPECIES, beds, plant
from garden.sheet import MM, Sheet
from garden.symbols import symbol

EXTENT = (121, 87)


def main():
    out = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).with_name("planting-plan.dxf")
    sheet = Sheet()
    garden = plant()
    bed_list = beds()
    data = {name: symbol(sheet, name) for name in SPECIES}

    draw_tints(sheet)
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
    draw_sheet(sheet.doc, bed_list)
    sheet.doc.header["$EXTMIN"] = (0, 0, 0)
    sheet.doc.header["$EXTMAX"] = (EXTENT[0] * MM, EXTENT[1] * MM, 0)
    view = sheet.doc.set_modelspace_vport(height=EXTENT[1] * MM, center=(EXTENT[0] * MM / 2, EXTENT[1] * MM / 2))
    view.dxf.aspect_ratio = EXTENT[0] / EXTENT[1]
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
