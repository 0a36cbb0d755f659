// Tags, records and common properties of entities, as another program would find them in the saved drawing.

#include "core/entity.h"
#include "core/polyline.h"
#include "core/text.h"
#include "db/polyline.h"
#include "db/table.h"
#include "support.h"

using namespace core_test;

namespace {

KcDbObjectId addText(Drawing& drawing, const QString& content, KcGePoint3d at = {})
{
    auto text = std::make_unique<KcDbText>();
    text->data().position = at;
    text->data().height = 2.5;
    text->data().text = content;
    return drawing.add(std::move(text));
}

KcDbObjectId addMText(Drawing& drawing, const QString& contents)
{
    auto text = std::make_unique<KcDbMText>();
    text->data().height = 2.5;
    text->setContents(contents);
    return drawing.add(std::move(text));
}

} // namespace

TEST(Tags, AreOneTextOfAnApplicationOfTheirName)
{
    Drawing drawing;
    const KcDbObjectId id = addText(drawing, QStringLiteral("草坪"));
    ASSERT_TRUE(CEntity::SetXData(id, QStringLiteral("SFEntityType"), QStringLiteral("7")));
    ASSERT_TRUE(CEntity::SetXData(id, QStringLiteral("树型"), QStringLiteral("1")));

    const auto later = reopened(drawing);
    const KcDbRead<KcDbEntity> text(same(*later, id));
    ASSERT_TRUE(text);
    const KcDbValueList* values = text->xdataOf(QStringLiteral("SFEntityType"));
    ASSERT_TRUE(values);
    EXPECT_EQ(*values, (KcDbValueList{ { 1000, QStringLiteral("7") } }));
    QString value;
    EXPECT_TRUE(CEntity::GetXData(*text, QStringLiteral("树型"), value));
    EXPECT_EQ(value, QStringLiteral("1"));
}

TEST(Tags, MissingOnesReadEmptyAndEmptyOnesAreTakenAway)
{
    Drawing drawing;
    CEntity entity;
    ASSERT_TRUE(entity.Initialize(addText(drawing, QStringLiteral("x"))));
    QString value = QStringLiteral("before");
    EXPECT_FALSE(entity.GetXData(QStringLiteral("PAGE"), value));
    EXPECT_EQ(value, QString());
    CEntity::SetXData(entity.GetObjectId(), QStringLiteral("PAGE"), QStringLiteral("2"));
    CEntity::SetXData(entity.GetObjectId(), QStringLiteral("PAGE"), {});
    EXPECT_TRUE(KcDbRead<KcDbEntity>(entity.GetObjectId())->xdata().empty());
}

TEST(Tags, OfATableThatIsInNoDrawingYetComeWithIt)
{
    Drawing drawing;
    auto table = std::make_unique<KcDbTable>();
    table->setSize(2, 1);
    ASSERT_TRUE(CEntity::SetXData(*table, QStringLiteral("SFEntityType"), QStringLiteral("3")));
    const KcDbObjectId id = KcDbTable::append(drawing.database.modelSpace(), std::move(table));
    CEntity entity;
    ASSERT_TRUE(entity.Initialize(id));
    QString value;
    EXPECT_TRUE(entity.GetXData(QStringLiteral("SFEntityType"), value));
    EXPECT_EQ(value, QStringLiteral("3"));
}

// One value of extended data holds 255 bytes; longer ones make other programs refuse the drawing.
TEST(Tags, LongTextsComeBackWhole)
{
    Drawing drawing;
    const KcDbObjectId id = addText(drawing, QStringLiteral("x"));
    const QString tree = QString::fromUcs4(U"\U00020BB7"); // two code units, never to be parted
    const QString longText = QStringLiteral("1,2,3,") + tree.repeated(90) + QStringLiteral("a").repeated(300);
    CEntity::SetXData(id, QStringLiteral("SERIALNUMBER"), longText);
    for (const KcDbTypedValue& value : *KcDbRead<KcDbEntity>(id)->xdataOf(QStringLiteral("SERIALNUMBER")))
        EXPECT_LE(value.text().toUtf8().size(), 255);
    const auto later = reopened(drawing);
    CEntity entity;
    ASSERT_TRUE(entity.Initialize(same(*later, id)));
    QString value;
    entity.GetXData(QStringLiteral("SERIALNUMBER"), value);
    EXPECT_EQ(value, longText);
}

TEST(Records, ReferToObjectsThroughSavingAndForgetErasedOnes)
{
    Drawing drawing;
    const QString key = QStringLiteral("XR-InsideCurves");
    const KcDbObjectId outer = addText(drawing, QStringLiteral("outer"));
    const KcDbObjectId a = addText(drawing, QStringLiteral("a")), b = addText(drawing, QStringLiteral("b"));
    KcDbObjectId record;
    ASSERT_TRUE(CEntity::SetXRecord(outer, InitializeXRecord({ b, b }), key, record));
    ASSERT_TRUE(
        CEntity::SetXRecord(outer, InitializeXRecord({ a, b }), key, record)); // in place of the first

    const auto later = reopened(drawing);
    CEntity entity;
    ASSERT_TRUE(entity.Initialize(same(*later, outer)));
    EXPECT_EQ(
        GetObjectIdArrayFromXRecord(entity.GetXRecord(key)),
        (std::vector{ same(*later, a), same(*later, b) }));
    KcDbWrite<KcDbEntity>(same(*later, a))->erase();
    EXPECT_EQ(GetObjectIdArrayFromXRecord(entity.GetXRecord(key)), (std::vector{ same(*later, b) }));
    EXPECT_TRUE(entity.DeleteXRecord(key));
    EXPECT_TRUE(entity.GetXRecord(key).isNull());
    EXPECT_FALSE(entity.DeleteXRecord(key));
}

TEST(Entity, IsEmptyForWhatIsNoEntityOfTheDrawing)
{
    Drawing drawing;
    KcDbDatabase other;
    const KcDbObjectId text = addText(drawing, QStringLiteral("x"));
    CEntity entity;
    EXPECT_FALSE(entity.Initialize({}));
    EXPECT_FALSE(entity.Initialize(drawing.database.layerTable()));
    EXPECT_FALSE(entity.Initialize(text, &other));
    EXPECT_TRUE(entity.Initialize(text, &drawing.database));
    EXPECT_FALSE(CPolyline().Initialize(text));
    EXPECT_TRUE(entity.Delete());
    EXPECT_FALSE(entity.Initialize(text));
    EXPECT_EQ(entity.GetLayer(), QString());
    EXPECT_FALSE(entity.SetColor(1));
}

TEST(Entity, EndsOfCurvesInWorldCoordinates)
{
    Drawing drawing;
    auto arc = std::make_unique<KcDbArc>();
    arc->data().normal = { 0, 0, -1 }; // seen from below: object x runs against world x
    arc->data().center = { -10, 5, 0 };
    arc->data().radius = 2;
    arc->data().startAngle = 0;
    arc->data().endAngle = kPi / 2;
    CEntity entity;
    ASSERT_TRUE(entity.Initialize(drawing.add(std::move(arc))));
    KcGePoint3d start, end;
    ASSERT_TRUE(entity.GetStartPoint(start) && entity.GetEndPoint(end));
    EXPECT_TRUE(start.isEqualTo({ 8, 5, 0 }));
    EXPECT_TRUE(end.isEqualTo({ 10, 7, 0 }));
    ASSERT_TRUE(entity.Initialize(drawing.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 1, 2, 0 }, 3.0))));
    EXPECT_FALSE(entity.GetStartPoint(start));
}

TEST(Polyline, ClosedByMarkOrByItsEnds)
{
    struct Row {
        const char* what;
        std::vector<KcGePoint2d> points;
        bool marked, closed;
    };
    const Row rows[] = {
        { "open", { { 0, 0 }, { 10, 0 }, { 10, 10 } }, false, false },
        { "marked", { { 0, 0 }, { 10, 0 }, { 10, 10 } }, true, true },
        { "back at the start", { { 0, 0 }, { 10, 0 }, { 10, 10 }, { 0, 0.0005 } }, false, true },
        { "near the start", { { 0, 0 }, { 10, 0 }, { 10, 10 }, { 0, 0.002 } }, false, false },
        { "a speck", { { 5, 5 }, { 5, 5 } }, false, false },
    };
    Drawing drawing;
    for (const Row& row : rows) {
        auto polyline = std::make_unique<KcDbPolyline>();
        for (const KcGePoint2d p : row.points)
            polyline->addVertex(p);
        polyline->setClosed(row.marked);
        CPolyline wrapper;
        ASSERT_TRUE(wrapper.Initialize(drawing.add(std::move(polyline)))) << row.what;
        EXPECT_EQ(wrapper.GetClosed(), row.closed) << row.what;
        EXPECT_TRUE(wrapper.IsOnlyLines()) << row.what;
        KcDbWrite<KcDbPolyline>(wrapper.GetObjectId())->setBulgeAt(0, -0.1);
        EXPECT_FALSE(wrapper.IsOnlyLines()) << row.what;
    }
}

TEST(Text, IsPlainBothWays)
{
    struct Row {
        const char* contents; ///< of a multiline text
        const char* shown;
        const char* set; ///< plain
        const char* after; ///< contents then
    };
    const Row rows[] = {
        { "香樟(4株)", "香樟(4株)", "a\\b{c}\nd", "a\\\\b\\{c\\}\\Pd" },
        { "{\\fSimSun|b0;香樟(4株)}", "香樟(4株)", "香樟(5株)", "{\\fSimSun|b0;香樟(5株)}" }, // font kept
        { "香{\\H2x;樟}", "香樟", "桂花", "桂花" }, // two looks: neither survives
    };
    Drawing drawing;
    for (const Row& row : rows) {
        MText text;
        const KcDbObjectId id = addMText(drawing, QString::fromUtf8(row.contents));
        ASSERT_TRUE(text.Initialize(id, &drawing.database));
        EXPECT_EQ(text.GetText(), QString::fromUtf8(row.shown));
        EXPECT_TRUE(text.SetText(QString::fromUtf8(row.set)));
        EXPECT_EQ(text.GetText(), QString::fromUtf8(row.set));
        EXPECT_EQ(KcDbRead<KcDbMText>(id)->contents(), QString::fromUtf8(row.after));
    }
    MText single;
    ASSERT_TRUE(single.Initialize(addText(drawing, QStringLiteral("1%%d"))));
    EXPECT_EQ(single.GetText(), QStringLiteral("1°"));
    single.SetText(QStringLiteral("a\nb"));
    EXPECT_EQ(single.GetText(), QStringLiteral("a b")); // a line feed would break the file
}

TEST(Text, HeightsOfPiecesFollowInProportion)
{
    Drawing drawing;
    MText text;
    const KcDbObjectId id = addMText(drawing, QStringLiteral("A{\\H5;B}{\\H0.5x;C}\\\\H9;"));
    ASSERT_TRUE(text.Initialize(id));
    ASSERT_TRUE(text.SetHeight(5.0)); // from 2.5
    EXPECT_EQ(KcDbRead<KcDbMText>(id)->contents(), QStringLiteral("A{\\H10;B}{\\H0.5x;C}\\\\H9;"));
    EXPECT_FALSE(text.SetHeight(0.0));
}

TEST(Text, TurnsAndMovesAboutItsJustificationPoint)
{
    Drawing drawing;
    for (const int horizontal :
         { 0, 1, 2, 3, 5 }) { // left, centre, right; aligned and fit between two points
        const KcDbObjectId id = addText(drawing, QStringLiteral("香樟"), { 10, 10, 0 });
        {
            KcDbWrite<KcDbText> open(id);
            open->data().horizontal = horizontal;
            open->data().alignment = { 30, 10, 0 };
            open->adjustAlignment();
        }
        MText text;
        ASSERT_TRUE(text.Initialize(id));
        const double width = text.ActualWidth();
        ASSERT_TRUE(text.SetPosition({ 100, 50, 0 }));
        ASSERT_TRUE(text.SetDirection({ 0, 3, 0 }));
        KcGePoint3d at;
        ASSERT_TRUE(text.GetPosition(at));
        EXPECT_TRUE(at.isEqualTo({ 100, 50, 0 })) << horizontal;
        EXPECT_NEAR(KcDbRead<KcDbText>(id)->data().rotation, kPi / 2, 1e-12) << horizontal;
        EXPECT_NEAR(text.ActualWidth(), width, 1e-6 * width) << horizontal; // neither squeezed nor stretched
        EXPECT_FALSE(text.SetDirection({ 0, 0, 1 }));
    }
}
