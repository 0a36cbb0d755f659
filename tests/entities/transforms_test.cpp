// Boxes and transforms of entities: every entity is compared with points of its own shape, sampled from its
// values by this test, before and after transforms.

#include "db/block_reference.h"
#include "db/database.h"
#include "db/hatch.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/wipeout.h"

#include <gtest/gtest.h>

namespace {

constexpr double kNear = 2 * KcGeContext::gTol.equalPoint;

struct NamedTransform {
    const char* name;
    KcGeMatrix3d matrix;
    bool even = true; ///< scales evenly in the plan
};

std::vector<NamedTransform> transforms()
{
    return {
        { "as it is", {} },
        { "moved", KcGeMatrix3d::translation({ 10, -20, 3 }) },
        { "turned", KcGeMatrix3d::rotation(0.7, KcGeVector3d::kZAxis, { 5, 6, 0 }) },
        { "mirrored", KcGeMatrix3d::mirroring({ 1, 0, 0 }, { 2, 1, 0 }) },
        { "mirrored and enlarged",
          KcGeMatrix3d::scaling(2.5, { 1, 1, 0 }) * KcGeMatrix3d::mirroring({}, { 0, 1, 0 }) },
        { "turned over", KcGeMatrix3d::rotation(kPi, KcGeVector3d::kXAxis) },
        { "tilted", KcGeMatrix3d::rotation(1.0, { 1, 1, 0.2 }) },
        { "far away", KcGeMatrix3d::translation({ 5e5, 4e6, 0 }) },
        { "uneven", KcGeMatrix3d::scaling(KcGeVector3d{ 2, 0.5, 1 }), false },
    };
}

const KcGeVector3d kNormals[] = { { 0, 0, 1 }, { 0, 0, -1 }, { 0.3, -0.4, 0.8 }, { 0, 0, 0 } };

using Points = std::vector<KcGePoint3d>;

/// Points along a circular arc of object coordinates in the world.
Points arcPoints(
    KcGePoint3d center, double radius, double start, double sweep, KcGeVector3d normal, int count = 4000)
{
    Points points;
    const KcGeMatrix3d toWorld = KcGeMatrix3d::planeToWorld(normal);
    for (int i = 0; i <= count; ++i) {
        const double a = start + sweep * i / count;
        points.push_back(toWorld * (center + KcGeVector3d{ radius * std::cos(a), radius * std::sin(a), 0 }));
    }
    return points;
}

KcGeExtents3d boxOf(const Points& points, const KcGeMatrix3d& matrix = {})
{
    KcGeExtents3d box;
    for (const KcGePoint3d p : points)
        box.addPoint(matrix * p);
    return box;
}

void expectBox(
    const KcGeExtents3d& box, const KcGeExtents3d& expected, const std::string& what,
    double tolerance = kNear)
{
    ASSERT_FALSE(box.isEmpty()) << what;
    const double scaled = tolerance * std::max(1.0, (expected.max - expected.min).length());
    EXPECT_LT((box.min - expected.min).length(), scaled) << what;
    EXPECT_LT((box.max - expected.max).length(), scaled) << what;
}

/// Every point of one list lies near a point of the other, in order or against it.
void expectSameCurve(const Points& points, const Points& expected, const std::string& what)
{
    ASSERT_EQ(points.size(), expected.size()) << what;
    double forwards = 0, backwards = 0;
    const size_t n = points.size();
    for (size_t i = 0; i < n; ++i) {
        forwards = std::max(forwards, points[i].distanceTo(expected[i]));
        backwards = std::max(backwards, points[i].distanceTo(expected[n - 1 - i]));
    }
    EXPECT_LT(std::min(forwards, backwards), kNear) << what;
}

/// Checks box and shape under every transform. An uneven one must be refused by round entities that lie in
/// the plan, and a refusal must change nothing.
template <class Entity, class PointsOf>
void check(const Entity& entity, PointsOf pointsOf, const std::string& kind)
{
    const Points before = pointsOf(entity);
    for (const auto& [name, matrix, even] : transforms()) {
        const std::string what = kind + ", " + name;
        expectBox(entity.extentsUnder(matrix), boxOf(before, matrix), what + ", under");
        Entity image(entity);
        if (image.transformBy(matrix) != Kcad::eOk) {
            EXPECT_FALSE(even) << what;
            expectSameCurve(pointsOf(image), before, what + ", unchanged");
            continue;
        }
        Points expected = before;
        for (KcGePoint3d& p : expected)
            p = matrix * p;
        expectSameCurve(pointsOf(image), expected, what);
        expectBox(image.geomExtents(), boxOf(expected), what);
    }
}

Points polylinePoints(const KcDbPolyline& polyline)
{
    Points points;
    const auto& data = polyline.data();
    const size_t n = data.vertices.size();
    for (size_t i = 0; i + (polyline.isClosed() ? 0 : 1) < n; ++i) {
        const KcGePoint2d p = polyline.getPointAt(i), q = polyline.getPointAt((i + 1) % n);
        const double b = data.vertices[i].bulge;
        constexpr int kSteps = 2000;
        if (b == 0.0) {
            for (const KcGePoint2d at : { p, q })
                points.push_back(
                    KcGeMatrix3d::planeToWorld(data.normal) * KcGePoint3d{ at.x, at.y, data.elevation });
            continue;
        }
        // The centre lies on the chord's bisector; a quarter of the included angle has the bulge as its
        // tangent.
        const KcGeVector2d chord = q - p;
        const double quarter = std::atan(b);
        const double toCentre = chord.length() / 2 / std::tan(2 * quarter);
        const KcGePoint2d c = p + chord * 0.5 + chord.normal().perpVector() * toCentre;
        const KcGeVector2d arm = p - c;
        const Points arc = arcPoints(
            { c.x, c.y, data.elevation }, arm.length(), std::atan2(arm.y, arm.x), 4 * quarter, data.normal,
            kSteps);
        points.insert(points.end(), arc.begin(), arc.end());
    }
    return points;
}

KcDbPolyline samplePolyline()
{
    KcDbPolyline polyline;
    polyline.addVertex({ 0, 0 }, 0.5);
    polyline.addVertex({ 10, 2 });
    polyline.addVertex({ 12, 9 }, -1.7);
    polyline.addVertex({ -3, 8 }, 0.1);
    polyline.data().elevation = 4;
    polyline.setClosed(true);
    return polyline;
}

} // namespace

TEST(Transforms, ArcsAndCircles)
{
    for (const KcGeVector3d normal : kNormals) {
        const std::string name = "normal z " + std::to_string(normal.z);
        for (const auto& [start, end] : { std::pair(0.3, 2.0), std::pair(5.0, 1.0), std::pair(3.0, 2.9) }) {
            KcDbArc arc;
            arc.data().center = { 3, 4, 5 };
            arc.data().radius = 2;
            arc.data().startAngle = start;
            arc.data().endAngle = end;
            arc.data().normal = normal;
            check(
                arc,
                [](const KcDbArc& a) {
                    const KcDbArc::Data& d = a.data();
                    return arcPoints(
                        d.center, d.radius, d.startAngle, normalizedAngle(d.endAngle - d.startAngle),
                        d.normal);
                },
                "arc, " + name);
        }
        KcDbCircle circle({ 3, 4, 5 }, 2);
        circle.data().normal = normal;
        circle.data().thickness = -3;
        const auto ring = [](const KcDbCircle::Data& d) {
            Points points = arcPoints(d.center, d.radius, 0, kTwoPi, d.normal);
            const Points raised
                = arcPoints(d.center + KcGeVector3d{ 0, 0, d.thickness }, d.radius, 0, kTwoPi, d.normal);
            points.insert(points.end(), raised.begin(), raised.end());
            return points;
        };
        for (const auto& [what, matrix, even] : transforms()) {
            KcDbCircle image(circle);
            const Kcad::ErrorStatus status = image.transformBy(matrix);
            EXPECT_TRUE(status == Kcad::eOk || !even) << what;
            expectBox(
                image.geomExtents(),
                boxOf(ring(circle.data()), status == Kcad::eOk ? matrix : KcGeMatrix3d()),
                "circle, " + name + ", " + what);
        }
    }
    KcDbCircle flat({}, 1);
    EXPECT_EQ(
        flat.transformBy(KcGeMatrix3d::scaling(KcGeVector3d{ 2, 1, 1 })), Kcad::eCannotScaleNonUniformly);
    EXPECT_EQ(flat.radius(), 1.0);
    EXPECT_EQ(flat.transformBy(KcGeMatrix3d::scaling(KcGeVector3d{ 2, 2, 7 })), Kcad::eOk);
    EXPECT_EQ(flat.radius(), 2.0);
    // A plan that is mirrored keeps looking up.
    EXPECT_EQ(flat.transformBy(KcGeMatrix3d::mirroring({}, { 1, 3, 0 })), Kcad::eOk);
    EXPECT_EQ(flat.data().normal, KcGeVector3d::kZAxis);
}

TEST(Transforms, EllipsesAndSplines)
{
    for (const double end : { 1.7, kTwoPi, 6.0 }) {
        KcDbEllipse ellipse;
        ellipse.data() = { { 1, 2, 3 }, { 3, 4, 0 }, 0.4, end == kTwoPi ? 0.0 : 0.4, end, { 0, 0, 1 } };
        for (const auto& [what, matrix, even] : transforms()) {
            const auto points = [](const KcDbEllipse::Data& d) {
                Points result;
                const KcGeVector3d minor = d.normal.crossProduct(d.majorAxis) * d.radiusRatio;
                for (int i = 0; i <= 4000; ++i) {
                    const double t = d.startParam + (d.endParam - d.startParam) * i / 4000;
                    result.push_back(d.center + d.majorAxis * std::cos(t) + minor * std::sin(t));
                }
                return result;
            };
            KcDbEllipse image(ellipse);
            ASSERT_EQ(image.transformBy(matrix), Kcad::eOk) << what;
            Points expected = points(ellipse.data());
            for (KcGePoint3d& p : expected)
                p = matrix * p;
            if (end != kTwoPi) // where a full ellipse starts is its own affair
                expectSameCurve(points(image.data()), expected, what);
            expectBox(boxOf(points(image.data())), boxOf(expected), what);
            expectBox(image.geomExtents(), boxOf(expected), what);
        }
    }
    KcDbSpline spline;
    spline.data().controlPoints = { { 0, 0, 0 }, { 5, 9, 1 }, { 8, -2, 0 }, { 9, 9, 0 }, { 3, 4, 0 } };
    spline.data().knots = { 0, 0, 0, 0, 1, 2, 2, 2, 2 };
    check(
        spline,
        [](const KcDbSpline& s) {
            Points points;
            for (int i = 0; i <= 4000; ++i)
                points.push_back(s.pointAt(2.0 * i / 4000));
            return points;
        },
        "spline");
    EXPECT_TRUE(KcDbSpline().geomExtents().isEmpty());
}

TEST(Transforms, Polylines)
{
    for (const KcGeVector3d normal : kNormals) {
        KcDbPolyline polyline = samplePolyline();
        polyline.data().normal = normal;
        check(polyline, polylinePoints, "polyline, normal z " + std::to_string(normal.z));
        // Without arcs uneven scaling is possible.
        for (auto& v : polyline.data().vertices)
            v.bulge = 0;
        EXPECT_EQ(polyline.transformBy(KcGeMatrix3d::scaling(KcGeVector3d{ 2, 0.5, 1 })), Kcad::eOk);
    }
    // Widths: a band of 2 along X from 0 to 10, and around a half circle of radius 5.
    KcDbPolyline band;
    band.addVertex({ 0, 0 });
    band.addVertex({ 10, 0 }, 1);
    band.addVertex({ 20, 0 });
    band.data().constantWidth = 2;
    expectBox(band.geomExtents(), boxOf({ { 0, -6, 0 }, { 21, 1, 0 } }), "band");
    // Damaged values give a box of what is left, or none.
    KcDbPolyline damaged;
    const double none = std::numeric_limits<double>::quiet_NaN();
    damaged.addVertex({ none, 0 }, 1);
    damaged.addVertex({ none, none }, 1e9);
    EXPECT_TRUE(damaged.geomExtents().isEmpty());
    EXPECT_EQ(damaged.area(), 0.0);
}

TEST(Transforms, PolylineArea)
{
    // A rectangle 10 × 4 whose short ends are half circles: 40 + 4π; far away, turned and mirrored as well.
    KcDbPolyline stadium;
    stadium.addVertex({ 0, 0 });
    stadium.addVertex({ 10, 0 }, 1);
    stadium.addVertex({ 10, 4 });
    stadium.addVertex({ 0, 4 }, 1);
    stadium.setClosed(true);
    const double area = 40 + 4 * kPi;
    for (const auto& [name, matrix, even] : transforms()) {
        KcDbPolyline image(stadium);
        if (image.transformBy(matrix) != Kcad::eOk)
            continue;
        const double scale = matrix.scale() * matrix.scale();
        EXPECT_NEAR(std::abs(image.area()), area * scale, 1e-6 * scale) << name;
    }
    KcDbPolyline mirrored(stadium);
    mirrored.transformBy(KcGeMatrix3d::mirroring({}, { 0, 1, 0 }));
    EXPECT_NEAR(mirrored.area(), -area, 1e-9);
    // Open: closed by a line, not by the last vertex's bulge.
    stadium.setClosed(false);
    EXPECT_NEAR(stadium.area(), 40 + 2 * kPi, 1e-9);
}

TEST(Transforms, OldPolylinesMoveTheirVertices)
{
    KcDbDatabase db;
    KcDbObjectId id;
    {
        KcDbRead<KcDbBlockTableRecord> space(db.modelSpace());
        id = space->appendEntity(std::make_unique<KcDb2dPolyline>());
    }
    KcDbWrite<KcDb2dPolyline> polyline(id);
    for (const auto& [x, bulge] : { std::pair(0.0, 1.0), std::pair(2.0, 0.0), std::pair(6.0, 0.0) }) {
        auto vertex = std::make_unique<KcDbVertex>();
        vertex->data().position = { x, 0, 0 };
        vertex->data().bulge = bulge;
        polyline->data().vertices.push_back(db.addObject(std::move(vertex), id));
    }
    expectBox(polyline->geomExtents(), boxOf({ { 0, -1, 0 }, { 6, 0, 0 } }), "before");
    ASSERT_EQ(polyline->transformBy(KcGeMatrix3d::mirroring({}, { 1, 0, 0 })), Kcad::eOk);
    expectBox(polyline->geomExtents(), boxOf({ { 0, 0, 0 }, { 6, 1, 0 } }), "mirrored in the X axis");
    EXPECT_EQ(
        polyline->transformBy(KcGeMatrix3d::scaling(KcGeVector3d{ 2, 1, 1 })),
        Kcad::eCannotScaleNonUniformly);
    expectBox(polyline->geomExtents(), boxOf({ { 0, 0, 0 }, { 6, 1, 0 } }), "refused");
}

TEST(Transforms, BlockReferences)
{
    KcDbDatabase db;
    const auto addBlock = [&](const char* name) {
        auto record = std::make_unique<KcDbBlockTableRecord>();
        record->initName(QString::fromLatin1(name));
        return KcDbWrite<KcDbSymbolTable>(db.blockTable())->add(std::move(record));
    };
    const auto append = [&](KcDbObjectId block, std::unique_ptr<KcDbEntity> entity) {
        return KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(std::move(entity));
    };
    const KcDbObjectId leaf = addBlock("leaf"), tree = addBlock("tree");
    KcDbWrite<KcDbBlockTableRecord>(tree)->data().origin = { 1, 0, 0 };
    append(leaf, std::make_unique<KcDbCircle>(KcGePoint3d{ 2, 0, 0 }, 1));
    append(leaf, std::make_unique<KcDbXline>());
    auto hidden = std::make_unique<KcDbLine>(KcGePoint3d{}, KcGePoint3d{ 99, 99, 0 });
    hidden->setVisible(false);
    append(leaf, std::move(hidden));
    auto question = std::make_unique<KcDbAttributeDefinition>();
    question->data().text = QStringLiteral("not drawn");
    question->data().position = { 500, 500, 0 };
    append(leaf, std::move(question));
    auto nested = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 5, 0, 0 }, leaf);
    nested->setScaleFactors({ 2, 2, 2 });
    nested->setRotation(kPi / 3);
    append(tree, std::move(nested));

    expectBox(
        KcDbBlockReference::definitionExtents(leaf), boxOf({ { 1, -1, 0 }, { 3, 1, 0 } }),
        "circle of the leaf");
    // The nested circle has radius 2 about (5, 0) + 4·(cos 60°, sin 60°).
    const KcGePoint3d nestedCentre{ 7, 2 * std::sqrt(3.0), 0 };
    const KcGeVector3d two{ 2, 2, 0 };
    expectBox(
        KcDbBlockReference::definitionExtents(tree), boxOf({ nestedCentre - two, nestedCentre + two }),
        "tree");

    for (const auto& [name, matrix, even] : transforms()) {
        auto made = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 100, 50, 0 }, tree);
        made->setRotation(0.4);
        KcDbBlockReference reference(*made);
        const KcGeMatrix3d before = reference.blockTransform();
        if (reference.transformBy(matrix) != Kcad::eOk) {
            EXPECT_FALSE(even) << name;
            EXPECT_EQ(reference.blockTransform(), before) << name;
            continue;
        }
        // Circle points through the transforms of nested reference, origin, reference and matrix.
        Points points = arcPoints(nestedCentre, 2, 0, kTwoPi, KcGeVector3d::kZAxis);
        const KcGeMatrix3d place = matrix * KcGeMatrix3d::translation({ 100, 50, 0 })
            * KcGeMatrix3d::rotation(0.4) * KcGeMatrix3d::translation({ -1, 0, 0 });
        Points direct = points;
        for (size_t i = 0; i < points.size(); ++i) {
            direct[i] = place * points[i];
            points[i] = reference.blockTransform() * points[i];
        }
        expectSameCurve(points, direct, name);
        expectBox(reference.geomExtents(), boxOf(direct), name);
    }
    KcDbBlockReference mirrored({ 3, 0, 0 }, leaf);
    mirrored.transformBy(KcGeMatrix3d::mirroring({}, { 0, 1, 0 }));
    EXPECT_EQ(mirrored.data().normal, KcGeVector3d::kZAxis);
    EXPECT_NEAR(mirrored.scaleFactors().x, -1.0, 1e-12);
    EXPECT_NEAR(mirrored.rotation(), 0.0, 1e-12);

    // A change in the definition is seen at once.
    KcDbWrite<KcDbCircle>(*KcDbRead<KcDbBlockTableRecord>(leaf)->begin())->data().radius = 3;
    expectBox(
        KcDbBlockReference::definitionExtents(leaf), boxOf({ { -1, -3, 0 }, { 5, 3, 0 } }), "larger circle");

    // An array of 3 columns and 2 rows, turned a quarter.
    KcDbBlockReference array({ 0, 0, 0 }, leaf);
    array.setRotation(kPi / 2);
    array.data().array = std::make_unique<KcDbBlockReference::Array>();
    array.data().array->columns = 3;
    array.data().array->rows = 2;
    array.data().array->columnSpacing = 10;
    array.data().array->rowSpacing = 7;
    expectBox(array.geomExtents(), boxOf({ { -3 - 7, -1, 0 }, { 3, 5 + 20, 0 } }), "array");
}

TEST(Transforms, AttributesGoWithTheirReference)
{
    KcDbDatabase db;
    const KcDbObjectId id = KcDbRead<KcDbBlockTableRecord>(db.modelSpace())
                                ->appendEntity(std::make_unique<KcDbBlockReference>());
    KcDbWrite<KcDbBlockReference> reference(id);
    const auto attribute = [](const char* tag, int flags) {
        auto made = std::make_unique<KcDbAttribute>();
        made->data().text = QStringLiteral("H");
        made->data().height = 10;
        made->data().position = { 100, 0, 0 };
        made->attribute().tag = QString::fromLatin1(tag);
        made->attribute().flags = flags;
        return made;
    };
    reference->appendAttribute(attribute("NAME", 0));
    auto hidden = attribute("SIZE", 1);
    hidden->data().position.y = 999;
    reference->appendAttribute(std::move(hidden));
    EXPECT_EQ(reference->attributeValue(QStringLiteral("name")), QStringLiteral("H"));
    EXPECT_FALSE(reference->attributeValue(QStringLiteral("AGE")));
    EXPECT_EQ(reference->subObjects().size(), 3u); // and the end mark
    EXPECT_TRUE(reference->extentsWithoutAttributes().isEmpty());
    ASSERT_EQ(reference->transformBy(KcGeMatrix3d::translation({ 5, 7, 0 })), Kcad::eOk);
    const KcGeExtents3d box = reference->geomExtents();
    EXPECT_NEAR(box.min.x, 105, 1e-9);
    EXPECT_NEAR(box.max.y, 17, 0.1); // the invisible one is not counted
}

TEST(Transforms, BlocksThatContainEachOtherEnd)
{
    KcDbDatabase db;
    std::vector<KcDbObjectId> blocks;
    constexpr int kBlocks = 14; // all of them in all others: far too many ways to follow each
    for (int i = 0; i < kBlocks; ++i) {
        auto record = std::make_unique<KcDbBlockTableRecord>();
        record->initName(QStringLiteral("b%1").arg(i));
        blocks.push_back(KcDbWrite<KcDbSymbolTable>(db.blockTable())->add(std::move(record)));
    }
    for (int i = 0; i < kBlocks; ++i) {
        KcDbRead<KcDbBlockTableRecord> record(blocks[size_t(i)]);
        for (const KcDbObjectId other : blocks)
            record->appendEntity(std::make_unique<KcDbBlockReference>(KcGePoint3d{}, other));
        record->appendEntity(std::make_unique<KcDbLine>(KcGePoint3d{}, KcGePoint3d{ double(i), 1, 0 }));
    }
    for (const KcDbObjectId block : blocks) {
        const KcGeExtents3d box = KcDbBlockReference::definitionExtents(block);
        EXPECT_EQ(box.max.y, 1.0);
        EXPECT_LE(box.max.x, kBlocks);
    }
    // Two blocks in each other: both boxes hold both lines, whichever is asked for first.
    KcDbDatabase pair;
    KcDbObjectId ids[2];
    for (int i = 0; i < 2; ++i) {
        auto record = std::make_unique<KcDbBlockTableRecord>();
        record->initName(QStringLiteral("p%1").arg(i));
        ids[i] = KcDbWrite<KcDbSymbolTable>(pair.blockTable())->add(std::move(record));
    }
    for (int i = 0; i < 2; ++i) {
        KcDbRead<KcDbBlockTableRecord> record(ids[i]);
        record->appendEntity(std::make_unique<KcDbBlockReference>(KcGePoint3d{}, ids[1 - i]));
        record->appendEntity(std::make_unique<KcDbLine>(KcGePoint3d{}, KcGePoint3d{ 1.0 + i, 1, 0 }));
    }
    for (const int first : { 0, 1 }) {
        EXPECT_EQ(KcDbBlockReference::definitionExtents(ids[first]).max.x, 2.0) << first;
        EXPECT_EQ(KcDbBlockReference::definitionExtents(ids[1 - first]).max.x, 2.0) << first;
        KcDbWrite<KcDbLine>(*std::next(KcDbRead<KcDbBlockTableRecord>(ids[0])->begin())); // forgets the boxes
    }
}

TEST(Transforms, Wipeout)
{
    const std::vector<KcGePoint3d> corners{ { 10, 10, 2 }, { 14, 10, 2 }, { 12, 19, 2 } };
    const auto wipeout = KcDbWipeout::fromCorners(corners);
    ASSERT_TRUE(wipeout);
    for (const auto& [name, matrix, even] : transforms()) {
        KcDbWipeout image(*wipeout);
        ASSERT_EQ(image.transformBy(matrix), Kcad::eOk);
        const Points outline = image.outline();
        ASSERT_EQ(outline.size(), corners.size()) << name;
        for (size_t i = 0; i < corners.size(); ++i)
            EXPECT_TRUE(outline[i].isEqualTo(matrix * corners[i])) << name;
    }
    EXPECT_FALSE(KcDbWipeout::fromCorners({ { 0, 0, 0 }, { 1, 0, 0 } }));
    EXPECT_FALSE(KcDbWipeout::fromCorners({ { 0, 0, 0 }, { 1, 0, 0 }, { 1, 1, 1 } }));
    // A rectangle in pixels of an image of 4 × 2 at half a unit each.
    KcDbWipeout image;
    image.data().uVector = { 0.5, 0, 0 };
    image.data().vVector = { 0, 0.5, 0 };
    image.data().imageSize = { 4, 2 };
    image.data().clipType = 1;
    image.data().clip = { { -0.5, -0.5 }, { 1.5, 0.5 } };
    expectBox(image.geomExtents(), boxOf({ { 0, 0.5, 0 }, { 1, 1, 0 } }), "upper left quarter");
}

TEST(Transforms, LeaderVertices)
{
    KcDbLeader leader;
    leader.appendVertex({ 0, 0, 0 });
    leader.appendVertex({ 5, 5, 0 });
    EXPECT_EQ(leader.removeLastVertex(), Kcad::eInvalidInput);
    leader.insertVertex(1, { 2, 9, 0 });
    leader.insertVertex(77, { 8, 5, 0 });
    ASSERT_EQ(leader.numVertices(), 4u);
    EXPECT_EQ(leader.data().vertices[1].y, 9.0);
    EXPECT_EQ(leader.removeLastVertex(), Kcad::eOk);
    expectBox(leader.geomExtents(), boxOf({ { 0, 0, 0 }, { 5, 9, 0 } }), "leader");
}
