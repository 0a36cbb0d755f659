"""The sheet: frame, title block, legend and notes on paper, and the viewports that show the model.

Everything here is in millimetres on paper: A1 lengthened by a quarter.
"""

import math

from ezdxf.enums import MTextEntityAlignment, TextEntityAlignment

from .curves import area
from .planting import COVER
from .sheet import MM, SCALE, tint

NAME = "LS-01"
PAPER = (1051, 594)
COLUMN = 841  # where the column of the legend begins
# What the viewports show of the model, in metres: the garden, and the room beside it for the plant schedule.
GARDEN = (0.3, 0.6)
SCHEDULE = (127.6, 42.6)


class Paper:
    """Entities of the layout, in millimetres."""

    def __init__(self, doc):
        doc.layers.add("VIEWPORTS", color=8).dxf.plot = 0  # of the library's own viewport for the sheet
        doc.layouts.rename("Layout1", NAME)
        self.doc = doc
        self.space = doc.layout(NAME)
        self.space.page_setup(size=PAPER, margins=(0, 0, 0, 0), units="mm", scale=(1, 1))

    def lines(self, points, closed=False, width=0.0, **attribs):
        return self.space.add_lwpolyline(points, format="xy", close=closed,
                                         dxfattribs={"layer": "图框", "const_width": width, **attribs})

    def box(self, x0, y0, x1, y1, **attribs):
        return self.lines([(x0, y0), (x1, y0), (x1, y1), (x0, y1)], True, **attribs)

    def text(self, x, y, value, height, align=TextEntityAlignment.MIDDLE_CENTER, **attribs):
        entity = self.space.add_text(value, dxfattribs={"layer": "图框", "height": height, "style": "汉字",
                                                        "width": 0.8, **attribs})
        entity.set_placement((x, y), align=align)

    def left(self, x, y, value, height=2.5):
        self.text(x, y, value, height, TextEntityAlignment.MIDDLE_LEFT)

    def solid(self, points, color=7):
        hatch = self.space.add_hatch(color=color, dxfattribs={"layer": "图框"})
        hatch.paths.add_polyline_path(points, is_closed=True)

    def sample(self, x0, y0, x1, y1, fill=None, pattern=None):
        """A box as a legend shows it; `pattern` is name, scale in the model, colour; drawn finer than in the model."""
        box = [(x0, y0), (x1, y0), (x1, y1), (x0, y1)]
        if fill:
            hatch = self.space.add_hatch(dxfattribs={"layer": "图例"})
            hatch.rgb = fill
            hatch.paths.add_polyline_path(box, is_closed=True)
        if pattern:
            name, scale, color = pattern
            hatch = self.space.add_hatch(color=color, dxfattribs={"layer": "图例", "lineweight": 9})
            hatch.set_pattern_fill(name, color=color, scale=0.6 * scale / SCALE)
            hatch.paths.add_polyline_path(box, is_closed=True)
        self.box(x0, y0, x1, y1, layer="图例")

    def viewport(self, x0, y0, x1, y1, corner):
        """A viewport at the sheet's scale whose lower left corner shows `corner` of the model, in metres."""
        w, h = x1 - x0, y1 - y0
        centre = (corner[0] * MM + w * SCALE / 2, corner[1] * MM + h * SCALE / 2)
        viewport = self.space.add_viewport(center=((x0 + x1) / 2, (y0 + y1) / 2), size=(w, h),
                                           view_center_point=centre, view_height=h * SCALE)
        viewport.dxf.layer = "视口"


def cover_list(paper, bed_list, top):
    """The ground cover with its pattern and the area of all its beds."""
    areas = {}
    for name, curve, _ in bed_list:
        areas[name] = areas.get(name, 0.0) + area(curve)
    left, right = COLUMN + 4, PAPER[0] - 14
    paper.text((left + right) / 2, top - 5, "地被数量统计表", 5)
    rows, half, high = math.ceil(len(areas) / 2), (right - left) / 2, 6.6
    y0 = top - 10 - high * (rows + 1)
    for column in range(2):
        x = left + column * half
        edges = [x, x + 10, x + 30, x + 66, x + half]
        for a, b, title in zip(edges, edges[1:], ("序号", "图例", "名称", "面积(m²)")):
            paper.text((a + b) / 2, top - 10 - high / 2, title, 2.5)
        for i, (name, value) in enumerate(list(areas.items())[column * rows:(column + 1) * rows]):
            y = top - 10 - high * (i + 1.5)
            paper.text((edges[0] + edges[1]) / 2, y, str(column * rows + i + 1), 2.5)
            color = COVER[name][2]
            paper.sample(edges[1] + 1.5, y - 2.4, edges[2] - 1.5, y + 2.4, tint(color, 0.18), COVER[name])
            paper.text((edges[2] + edges[3]) / 2, y, name, 2.5)
            paper.text((edges[3] + edges[4]) / 2, y, "%.1f" % value, 2.5)
        for edge in edges[1:4] if column else edges[1:]:
            paper.lines([(edge, y0), (edge, top - 10)], lineweight=9)
    for row in range(1, rows + 1):
        y = y0 + high * row
        paper.lines([(left, y), (right, y)], lineweight=9)
    paper.box(left, y0, right, top - 10, lineweight=35)


def legend_and_notes(paper, top):
    left = COLUMN + 6
    paper.left(left, top - 5, "图例", 5)
    items = [("用地红线", "用地红线"), ("建筑", "建筑"), ("道路", "道路、园路"), ("水体", "水体")]
    y = top - 14
    for layer, title in items:
        paper.lines([(left, y), (left + 18, y)], layer=layer, ltscale=0.3 / SCALE)
        paper.left(left + 22, y, title)
        y -= 7
    for fill, pattern, title in (((238, 245, 226), None, "草坪"), ((226, 240, 206), COVER["地毯草"], "地毯草坪"),
                                 ((247, 241, 230), None, "铺装场地")):
        paper.sample(left, y - 2.4, left + 18, y + 2.4, fill, pattern)
        paper.left(left + 22, y, title)
        y -= 7
    paper.lines([(left + 4, y - 2), (left + 1.5, y + 0.5), (left + 17, y + 0.5)], layer="图例")
    paper.lines([(left + 4, y - 2), (left + 6.5, y + 0.5)], layer="图例")
    paper.left(left + 22, y, "设计标高 (m)")
    notes = ("1. 本图尺寸以毫米计，标高、坐标以米计。\\P"
             "2. 苗木规格与数量见乔灌数量统计表；乔木树形饱满、土球完整，行道树分枝点不低于2.8m。\\P"
             "3. 种植前清理场地并回填种植土，厚度：乔木不小于1.2m，灌木不小于0.6m，地被与草坪不小于0.3m。\\P"
             "4. 苗木与建筑、地下管线的距离按现行规范执行，现场如有冲突由设计人员调整。\\P"
             "5. 片植地被按图示范围种满，边缘整齐，不露土。")
    x = left + 56
    paper.left(x, top - 5, "说明", 5)
    text = paper.space.add_mtext(notes, dxfattribs={
        "layer": "图框", "char_height": 2.5, "style": "汉字", "width": PAPER[0] - 14 - x, "line_spacing_factor": 1.25})
    text.set_location((x, top - 11), attachment_point=MTextEntityAlignment.TOP_LEFT)


def north_and_scale(paper, x, y):
    r = 13
    paper.space.add_circle((x, y), r, dxfattribs={"layer": "图框"})
    paper.solid([(x, y + r), (x - 0.3 * r, y - 0.95 * r), (x, y - 0.55 * r)])
    paper.lines([(x, y + r), (x - 0.3 * r, y - 0.95 * r), (x, y - 0.55 * r), (x + 0.3 * r, y - 0.95 * r)], True)
    paper.text(x, y + r + 4, "北", 5)
    metre = MM / SCALE
    x0, y0 = x + 40, y - 3
    for i, (start, end) in enumerate(((0, 2.5), (2.5, 5), (5, 10), (10, 15))):
        x1, x2 = x0 + start * metre, x0 + end * metre
        box = [(x1, y0), (x2, y0), (x2, y0 + 2.5), (x1, y0 + 2.5)]
        paper.lines(box, True)
        if i % 2 == 0:
            paper.solid(box)
    for d in (0, 5, 10, 15):
        paper.text(x0 + d * metre, y0 + 5.5, "%d" % d, 3)
    paper.text(x0 + 15 * metre + 7, y0 + 1.2, "m", 3)
    paper.text(x0 + 7.5 * metre, y0 + 13, "1:%d" % SCALE, 5)


def title_block(paper, top):
    left, right, low = COLUMN, PAPER[0] - 10, 10
    rows = [low, low + 9, low + 18, low + 27, low + 36, low + 54, top]
    for y in rows[1:]:
        paper.lines([(left, y), (right, y)], lineweight=25)
    columns = (left + 24, left + 100, left + 124)
    for y0, y1 in zip(rows[:4], rows[1:5]):
        for x in columns:
            paper.lines([(x, y0), (x, y1)], lineweight=13)
    cells = [("审定", "图号", NAME), ("校对", "比例", "1:%d" % SCALE), ("设计", "日期", "2024.05"), ("制图", "专业", "园林")]
    for i, (role, key, value) in enumerate(cells):
        y = (rows[i] + rows[i + 1]) / 2
        paper.text(left + 12, y, role, 3.5)
        paper.text(left + 112, y, key, 3.5)
        paper.text((columns[2] + right) / 2, y, value, 3.5)
    middle = (left + right) / 2
    paper.text(middle, low + 45, "植物种植平面图", 8)
    paper.text(middle, (rows[5] + top) / 2, "青禾社区花园景观工程", 7)


def draw_sheet(doc, bed_list):
    paper = Paper(doc)
    w, h = PAPER
    paper.box(0, 0, w, h, lineweight=13)
    paper.box(25, 10, w - 10, h - 10, width=1.0)
    paper.lines([(COLUMN, 10), (COLUMN, h - 10)], width=0.5)
    paper.viewport(25.5, 10.5, COLUMN - 0.5, h - 10.5, GARDEN)
    paper.viewport(COLUMN + 2, 284, w - 12, h - 12, SCHEDULE)
    for y in (282, 208, 138):
        paper.lines([(COLUMN, y), (w - 10, y)], lineweight=25)
    cover_list(paper, bed_list, 281)
    legend_and_notes(paper, 206)
    north_and_scale(paper, COLUMN + 32, 108)
    title_block(paper, 82)
