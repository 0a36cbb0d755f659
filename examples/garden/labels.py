"""Labels of plants and beds, each where it covers least."""

import math

from ezdxf.enums import TextEntityAlignment

from .curves import area, flatten, inside
from .sheet import TEXT
from .site import EAST_LAWN, FLAT_BUILDINGS

SIGHT = (6.5, 2.0, 119.5, 81.5)  # where labels may lie

# Boxes of what is written in the model beside labels.
TITLES = [(81, 62.5, 94, 67), (22, 61, 32, 65.6), (69, 16.8, 73.5, 20), (27, 4.7, 33, 6), (89, 4.7, 101, 6.5),
          (60.5, 17, 61.6, 23), (60, 33, 64, 34.2), (58.5, 49, 63.5, 50.2), (60.5, 41.2, 64, 42.3),
          (32.5, 33.8, 40.6, 36), (53.8, 43, 55.8, 43.9), (87, 51, 90, 52), (58, 11, 64, 13), (63, 44.5, 69.2, 46.5),
          (86.6, 55.8, 88.4, 57), (29.1, 56.8, 30.9, 58), (69.6, 65, 71, 67),
          (116, 16, 121, 17.6), (116, 80, 121, 81.6)]


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
        if x0 < SIGHT[0] or y0 < SIGHT[1] or x1 > SIGHT[2] or y1 > SIGHT[3]:
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
    for box in TITLES:
        labels.block(*box)
    for name, curve, _ in bed_list:
        value = "%s(%.1fm²)" % (name, area(curve))
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
