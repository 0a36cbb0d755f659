"""Which plants there are, and where they stand."""

import math
import random

from .curves import at, distance, flatten, offset, rectangle, scallops, smooth
from .site import (EAST_AXIS, EAST_LAWN, FLAT_BUILDINGS, FLAT_PAVING, FLAT_POND, FLAT_SITE, POND, WEST_AXIS)

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
