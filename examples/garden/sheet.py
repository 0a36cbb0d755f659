"""The drawing: layers, styles, and entities made of metres."""

import math

import ezdxf
from ezdxf.colors import aci2rgb
from ezdxf.enums import MTextEntityAlignment, TextEntityAlignment

from .curves import arc_of, polygon, segments

MM = 1000.0
SCALE = 150  # the sheet is 1:150
TEXT = 2.5 * SCALE / MM  # label height: 2.5 mm on paper

LAYERS = [  # name, colour, line type, line weight in hundredths of a millimetre
    ("底色", 254, "CONTINUOUS", 0), ("建筑", 7, "CONTINUOUS", 50), ("建筑填充", 253, "CONTINUOUS", 9),
    ("道路", 8, "CONTINUOUS", 25), ("铺装", 253, "CONTINUOUS", 9), ("道路中线", 1, "CENTER", 13),
    ("水体", 140, "CONTINUOUS", 35), ("用地红线", 1, "DIVIDE", 50), ("乔木", 3, "CONTINUOUS", 18),
    ("灌木", 94, "CONTINUOUS", 13), ("地被", 62, "CONTINUOUS", 25), ("地被填充", 92, "CONTINUOUS", 9),
    ("标注", 7, "CONTINUOUS", 13), ("标注引线", 8, "CONTINUOUS", 9), ("尺寸", 8, "CONTINUOUS", 13),
    ("文字", 7, "CONTINUOUS", 18), ("图框", 7, "CONTINUOUS", 18), ("图例", 7, "CONTINUOUS", 18),
    ("视口", 8, "CONTINUOUS", 9),
]
DIMSTYLE = "园林-%d" % SCALE


def tint(color, strength=0.3):
    """An index colour thinned with white."""
    return tuple(round(255 - (255 - c) * strength) for c in aci2rgb(color))


class Sheet:
    def __init__(self):
        ezdxf.options.write_fixed_meta_data_for_testing = True  # no date, no random id
        self.doc = ezdxf.new("R2010", setup=["linetypes"], units=4)
        self.doc.header["$LTSCALE"] = 1000.0  # the line types are metres long here
        self.doc.header["$PSLTSCALE"] = 0  # on the sheet as well
        self.doc.header["$INSUNITS"] = 4
        style = self.doc.styles.new("汉字", dxfattribs={"font": "simsun.ttf", "width": 0.8})
        style.dxf.font = "simsun.ttf"
        self.doc.header["$TEXTSTYLE"] = "汉字"
        for name, color, linetype, weight in LAYERS:
            self.doc.layers.add(name, color=color, linetype=linetype, lineweight=weight)
        self.doc.layers.get("视口").dxf.plot = 0
        self.doc.dimstyles.new(DIMSTYLE, dxfattribs={
            "dimscale": SCALE, "dimtxt": 2.5, "dimtxsty": "汉字", "dimtad": 1, "dimgap": 0.8, "dimtih": 0, "dimtoh": 0,
            "dimblk": "ARCHTICK", "dimasz": 1.5, "dimexo": 2.0, "dimexe": 1.5, "dimdec": 0, "dimlunit": 2,
            "dimrnd": 1, "dimzin": 8, "dimclrd": 8, "dimclre": 8, "dimclrt": 7})
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

    def fill(self, curve, color, space=None, layer="底色", transparency=0.0, scale=MM):
        """A solid tint; `color` is red, green, blue."""
        target = self.space if space is None else space
        hatch = target.add_hatch(dxfattribs={"layer": layer})
        hatch.rgb = color
        if transparency:
            hatch.transparency = transparency
        hatch.paths.add_polyline_path([(x * scale, y * scale, b) for x, y, b in curve], is_closed=True)
        return hatch

    def dimension(self, p, q, base, angle=0):
        """A linear dimension of p to q whose line goes through `base`."""
        def mm(point):
            return point[0] * MM, point[1] * MM
        dim = self.space.add_linear_dim(base=mm(base), p1=mm(p), p2=mm(q), angle=angle, dimstyle=DIMSTYLE,
                                        dxfattribs={"layer": "尺寸"})
        dim.render()

    def radius(self, centre, r, angle):
        """A radius dimension that points at `angle`, radians."""
        dim = self.space.add_radius_dim(center=(centre[0] * MM, centre[1] * MM), radius=r * MM,
                                        angle=math.degrees(angle), dimstyle=DIMSTYLE,
                                        override={"dimtmove": 1, "dimtih": 1, "dimblk": ""},
                                        dxfattribs={"layer": "尺寸"})
        dim.render()

    def chain(self, values, level, start, vertical=False):
        """Dimensions in a row: `values` along the axis, the line at `level`, extension lines from `start`."""
        for a, b in zip(values, values[1:]):
            if vertical:
                self.dimension((start, a), (start, b), (level, a), 90)
            else:
                self.dimension((a, start), (b, start), (a, level))

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
