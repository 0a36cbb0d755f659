"""What the garden is planted in: roads, paths, buildings and the pond, in metres."""

from .curves import disc, ellipse_points, flatten, polygon, rectangle, smooth, strip

SITE = rectangle(7, 16, 116, 80)
ROAD = rectangle(2.5, 3.5, 119.5, 10.5)
DRIVE = rectangle(58, 10.5, 64, 39.5)
PLAZA = disc(61, 46, 8)
WEST_AXIS = smooth([(55, 47.5), (45, 51), (34, 52), (22, 50.5), (13.5, 44), (12, 34), (15.5, 24.5), (26, 20.8),
                    (39, 20.6), (50, 23), (59, 25)], False)
EAST_AXIS = smooth([(67, 46.5), (77, 45), (90, 46.5), (102, 43.5), (107.5, 34), (103, 24.5), (90, 20.8), (76, 21.6),
                    (63, 25)], False)
NORTH_AXIS = smooth([(61, 52), (61.4, 59), (64, 64.5), (71.4, 66)], False)
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
