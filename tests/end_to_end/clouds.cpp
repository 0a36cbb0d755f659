// CIRCLES and FOREST through the program, on clouds made by hand, and against a lattice made another way.
#include "support.h"

#include "core/block.h"
#include "db/curves.h"
#include "db/polyline.h"

using namespace end_to_end;

namespace {

struct Cloud {
    const char* what;
    std::vector<KcGePoint2d> corners;
    double chord, bulge;
    double turn = 0.0; ///< radians
};

const std::vector<Cloud>& clouds()
{
    const std::vector<KcGePoint2d> rectangle{ { 0, 0 }, { 60000, 0 }, { 60000, 35000 }, { 0, 35000 } };
    const std::vector<KcGePoint2d> lShape{ { 0, 0 },         { 60000, 0 },     { 60000, 20000 },
                                           { 20000, 20000 }, { 20000, 50000 }, { 0, 50000 } };
    const std::vector<KcGePoint2d> comb{ { 0, 0 },         { 70000, 0 },     { 70000, 50000 },
                                         { 50000, 50000 }, { 50000, 20000 }, { 20000, 20000 },
                                         { 20000, 40000 }, { 0, 40000 } };
    const std::vector<KcGePoint2d> backwards(lShape.rbegin(), lShape.rend());
    static const std::vector<Cloud> rows = {
        { "convex", rectangle, 5000, 0.5 },          { "convex, turned", rectangle, 5000, 0.5, 0.3 },
        { "concave", lShape, 5000, 0.5, 0.1 },       { "concave, two arms", comb, 4000, 0.6, 2.0 },
        { "clockwise", backwards, 5000, -0.5, 0.7 }, { "arcs inwards", rectangle, 5000, -0.3, 0.05 },
    };
    return rows;
}

std::vector<KcGePoint2d> vertices(const Cloud& cloud)
{
    std::vector<KcGePoint2d> points;
    for (size_t i = 0; i < cloud.corners.size(); ++i) {
        const KcGePoint2d a = cloud.corners[i], b = cloud.corners[(i + 1) % cloud.corners.size()];
        const int parts = int(std::lround(a.distanceTo(b) / cloud.chord));
        for (int k = 0; k < parts; ++k) {
            const KcGeVector2d p = (a + (b - a) * (double(k) / parts)).asVector().rotateBy(cloud.turn);
            points.push_back({ p.x + 1e6, p.y - 2e6 }); // away from the origin, as plans are
        }
    }
    return points;
}

// The centre of a bulge's arc, from chord and sagitta.
KcGePoint2d centre(KcGePoint2d a, KcGePoint2d b, double bulge)
{
    const double sagitta = bulge * a.distanceTo(b) / 2.0;
    const double radius = (a.distanceTo(b) * a.distanceTo(b) / 4.0 + sagitta * sagitta) / (2.0 * sagitta);
    return a + (b - a) * 0.5 + (b - a).normal().perpVector() * (radius - sagitta);
}

// The trees of an array, from scan lines in a system whose x axis is the first row.
std::vector<KcGePoint2d> expectedTrees(const Cloud& cloud)
{
    const std::vector<KcGePoint2d> corners = vertices(cloud);
    std::vector<KcGePoint2d> trees;
    for (size_t i = 0; i + 1 < corners.size(); ++i)
        trees.push_back(centre(corners[i], corners[i + 1], cloud.bulge));
    const KcGePoint2d origin = trees[0];
    const double spacing = origin.distanceTo(trees[1]);
    const KcGeVector2d x = (trees[1] - origin).normal(), y = x.perpVector();
    std::vector<KcGeVector2d> nodes;
    for (const KcGePoint2d tree : trees)
        nodes.push_back({ (tree - origin).dotProduct(x), (tree - origin).dotProduct(y) });

    constexpr double kSame = 1e-6;
    const auto crossings = [&](double height) {
        std::vector<double> found;
        for (size_t i = 0; i < nodes.size(); ++i) {
            const KcGeVector2d a = nodes[i], b = nodes[(i + 1) % nodes.size()];
            if (std::abs(a.y - height) < kSame)
                found.push_back(a.x);
            else if ((a.y - height) * (b.y - height) < 0.0 && std::abs(b.y - height) >= kSame)
                found.push_back(a.x + (b.x - a.x) * (height - a.y) / (b.y - a.y));
        }
        return found;
    };
    const auto isTree = [&](KcGeVector2d p) {
        bool inside = false;
        double nearest = 1e300;
        for (size_t i = 0; i < nodes.size(); ++i) {
            const KcGeVector2d a = nodes[i], b = nodes[(i + 1) % nodes.size()];
            if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * (p.y - a.y) / (b.y - a.y))
                inside = !inside;
            const double part = (p - a).dotProduct(b - a) / (b - a).dotProduct(b - a);
            nearest = std::min(nearest, (p - a - (b - a) * std::clamp(part, 0.0, 1.0)).length());
        }
        return inside && nearest >= spacing / 5.0;
    };
    for (const int side : { 1, -1 })
        for (int row = side > 0 ? 0 : 1;; ++row) {
            const double height = side * row * spacing * std::sqrt(0.75);
            const std::vector<double> found = crossings(height);
            if (found.empty())
                break;
            const auto [left, right] = std::minmax_element(found.begin(), found.end());
            for (double at = *right - spacing; at >= *left - kSame; at -= spacing)
                if (isTree({ at, height }))
                    trees.push_back(origin + x * at + y * height);
        }
    return trees;
}

double distanceToNearest(KcGePoint2d point, const std::vector<KcGePoint2d>& others)
{
    double nearest = 1e300;
    for (const KcGePoint2d other : others)
        nearest = std::min(nearest, point.distanceTo(other));
    return nearest;
}

class Clouds : public EndToEnd {
protected:
    QString drawing = folder.filePath("clouds.dxf");

    QString draw(const std::vector<KcGePoint2d>& points, double bulge, bool closed = true)
    {
        KcDbDatabase database;
        auto outline = std::make_unique<KcDbPolyline>();
        for (const KcGePoint2d point : points)
            outline->addVertex(point, bulge);
        outline->setClosed(closed);
        outline->setLayer(database.currentLayer());
        const KcDbObjectId id
            = KcDbRead<KcDbBlockTableRecord>(database.modelSpace())->appendEntity(std::move(outline));
        EXPECT_TRUE(dxf::saveDrawing(database, drawing).ok);
        return handle(id);
    }
    QString draw(const Cloud& cloud) { return draw(vertices(cloud), cloud.bulge); }

    // The one reference of the drawing that came out, and its block's entities moved to where they are seen.
    struct Group {
        QString layer;
        KcGePoint3d base;
        std::vector<KcDbObjectId> entities;
        KcGeMatrix3d toWorld;
    };
    static Group group(const KcDbDatabase& database)
    {
        const std::vector<KcDbObjectId> references = entities<KcDbBlockReference>(database);
        EXPECT_EQ(references.size(), 1u);
        if (references.size() != 1)
            return {};
        const KcDbRead<KcDbBlockReference> reference(references[0]);
        const KcDbRead<KcDbBlockTableRecord> block(reference->blockTableRecord());
        EXPECT_TRUE(block->name().startsWith("*U")) << block->name();
        return { reference->layer(), reference->position(), block->entityIds(), reference->blockTransform() };
    }
};

} // namespace

TEST_F(Clouds, GetTheTreesOfALatticeMadeAnotherWay)
{
    for (const Cloud& cloud : clouds()) {
        SCOPED_TRACE(cloud.what);
        const QString outline = draw(cloud);
        const Outcome outcome = play(drawing, { "CIRCLES", outline });
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        const auto database = open(result);
        EXPECT_TRUE(entities<KcDbCircle>(*database).empty()); // all in the block
        const Group array = group(*database);
        EXPECT_EQ(array.layer, QStringLiteral("维德-规则树阵"));
        const std::vector<KcGePoint2d> expected = expectedTrees(cloud);
        ASSERT_EQ(array.entities.size(), expected.size());
        EXPECT_GT(expected.size(), vertices(cloud).size() + 20); // a lattice, not the outline alone
        std::vector<KcGePoint2d> trees;
        const std::vector<KcGePoint2d> corners = vertices(cloud);
        const double radius = centre(corners[1], corners[2], cloud.bulge).distanceTo(corners[1]) / 10.0;
        for (const KcDbObjectId id : array.entities) {
            const KcDbRead<KcDbCircle> circle(id);
            ASSERT_TRUE(circle);
            EXPECT_NEAR(circle->radius(), radius, 1e-6);
            trees.push_back((array.toWorld * circle->center()).plan());
        }
        for (size_t i = 0; i < trees.size(); ++i) {
            EXPECT_LT(distanceToNearest(trees[i], expected), 1e-6) << i;
            EXPECT_LT(distanceToNearest(expected[i], trees), 1e-6) << i;
        }
        for (const size_t i : { 0, 1 }) // what tells the spacing to the label
            EXPECT_LT(trees[i].distanceTo(expected[i]), 1e-6);
        EXPECT_LT(array.base.plan().distanceTo(expected[0]), 1e-6);
    }
}

TEST_F(Clouds, GetASpikeAtEveryTenthOfTheRadius)
{
    for (const Cloud& cloud : clouds()) {
        SCOPED_TRACE(cloud.what);
        const QString outline = draw(cloud);
        ASSERT_EQ(play(drawing, { "FOREST", outline }).status, 0);
        const auto database = open(result);
        EXPECT_EQ(entities<KcDbPolyline>(*database).size(), 1u); // the outline stays as it was
        const Group forest = group(*database);
        EXPECT_EQ(forest.layer, QStringLiteral("维德-针叶林"));
        ASSERT_EQ(forest.entities.size(), 1u);
        const KcDbRead<KcDbPolyline> edge(forest.entities[0]);
        ASSERT_TRUE(edge);
        const std::vector<KcGePoint2d> corners = vertices(cloud);
        const bool isAgainst = cloud.bulge < 0.0;
        const double sweep = 4.0 * std::atan(std::abs(cloud.bulge));
        const size_t whole = size_t(sweep / 0.1), perArc = whole + (isAgainst ? 1 : 0);
        ASSERT_EQ(edge->numVerts(), 2 * perArc * corners.size());
        for (size_t i = 0; i < corners.size(); ++i) {
            const KcGePoint2d from = corners[i], to = corners[(i + 1) % corners.size()];
            const KcGePoint2d c = centre(from, to, cloud.bulge);
            const double radius = c.distanceTo(from);
            const double start = (isAgainst ? to - c : from - c).angle(); // counter-clockwise from here
            for (size_t j = 0; j < perArc; ++j) {
                const size_t k = isAgainst ? whole - j : j;
                const double foot = start + 0.1 * double(k);
                const bool isBeyond = (double(k) + 0.5) * 0.1 > sweep;
                const double spike = isBeyond ? foot : foot + 0.05;
                const double reach = k != 0 && k % 4 == 0 ? 1.4 * radius : 1.2 * radius;
                const auto at
                    = [&](size_t index) { return (forest.toWorld * edge->worldPointAt(index)).plan(); };
                const size_t index = 2 * (i * perArc + j);
                EXPECT_LT(at(index).distanceTo(c + KcGeVector2d{ radius, 0 }.rotateBy(foot)), 1e-6);
                EXPECT_LT(at(index + 1).distanceTo(c + KcGeVector2d{ reach, 0 }.rotateBy(spike)), 1e-6);
            }
        }
        EXPECT_LT(forest.base.distanceTo(forest.toWorld * edge->worldPointAt(0)), 1e-9);
    }
}

TEST_F(Clouds, AreClosedAndHaveArcs)
{
    const std::vector<KcGePoint2d> square{ { 0, 0 }, { 9000, 0 }, { 9000, 9000 }, { 0, 9000 } };
    for (const char* command : { "CIRCLES", "FOREST" })
        for (const bool closed : { true, false }) {
            const QString outline = draw(square, closed ? 0.0 : 0.5, closed);
            const Outcome outcome = play(drawing, { command, outline });
            EXPECT_TRUE(outcome.out.contains("所选对象不是闭合的云线!")) << outcome.out;
            EXPECT_TRUE(bytes(result) == bytes(drawing));
        }
}

TEST_F(Clouds, OfFewArcsGetTheirCentresOnly)
{
    const QString outline = draw({ { 0, 0 }, { 5000, 0 }, { 2500, 4000 } }, 0.5);
    EXPECT_TRUE(play(drawing, { "CIRCLES", outline }).out.contains("少于三段"));
    const auto database = open(result);
    EXPECT_EQ(entities<KcDbCircle>(*database).size(), 2u); // the arc that closes it is not visited
    EXPECT_TRUE(entities<KcDbBlockReference>(*database).empty());
}

TEST_F(Clouds, ArePlantedInOneStepForUndoAndAuditClean)
{
    const QString outline = draw(clouds()[2]);
    const QString twice = prepared(drawing, { "CIRCLES", outline, "FOREST", outline });
    EXPECT_EQ(entities<KcDbBlockReference>(*open(twice)).size(), 2u);
    EXPECT_TRUE(program({ "audit", twice }).out.contains("Errors: 0"));
    EXPECT_EQ(play(drawing, { "FOREST", outline, "U", "CIRCLES", outline, "U" }).status, 0);
    EXPECT_TRUE(bytes(result) == bytes(drawing));
}
