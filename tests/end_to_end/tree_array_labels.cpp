// DIMCIRCLES through the program: what the label says, where it stands, and that it stays tied to its array.
#include "support.h"

#include "core/links.h"
#include "db/curves.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/tables.h"
#include "db/text.h"

using namespace end_to_end;

namespace {

class TreeArrayLabels : public EndToEnd {
protected:
    // A cloud filled with trees 5000 apart, and its number of trees.
    void SetUp() override
    {
        KcDbDatabase empty;
        const QString path = folder.filePath("empty.dxf");
        ASSERT_TRUE(dxf::saveDrawing(empty, path).ok);
        drawing = prepared(
            path, { "CLOUDLINE", "0,0", "60000,0", "60000,40000", "0,40000", "", "CIRCLES", "30000,0" });
        const auto database = open(drawing);
        const std::vector<KcDbObjectId> references = entities<KcDbBlockReference>(*database);
        ASSERT_EQ(references.size(), 1u);
        array = handle(references[0]);
        const KcDbObjectId block = KcDbRead<KcDbBlockReference>(references[0])->blockTableRecord();
        trees = int(KcDbRead<KcDbBlockTableRecord>(block)->entityIds().size());
    }
    void setting(const QString& key, const QString& value)
    {
        const QString path = folder.filePath("root/Sys/VERDELIS.INI");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QString text = QString::fromUtf8(file.readAll());
        file.close();
        text.replace(QRegularExpression("(?m)^" + key + "=.*$"), key + '=' + value);
        if (!text.contains(key + '='))
            text.replace("[DRAWING SETTINGS]", "[DRAWING SETTINGS]\n" + key + '=' + value);
        ASSERT_TRUE(text.contains(key + '=' + value));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }
    // The label of a drawing: its texts from above to below, and its leader.
    struct Label {
        KcDbObjectId text, secondText, leader;
        std::vector<KcDbObjectId> marks;
    };
    static Label labelIn(const KcDbDatabase& database)
    {
        Label label;
        for (const KcDbObjectId id : entities<KcDbMText>(database))
            (entityTag(id, tags::entityType) == tags::kind::treeLabel ? label.text : label.secondText) = id;
        for (const KcDbObjectId id : entities<KcDbLeader>(database))
            label.leader = id;
        for (const KcDbObjectId id : entities<KcDbPolyline>(database))
            if (KcDbRead<KcDbPolyline>(id)->data().constantWidth > 0.0)
                label.marks.push_back(id);
        return label;
    }
    static QString said(KcDbObjectId text)
    {
        const KcDbRead<KcDbMText> opened(text);
        return opened ? opened->plainText() : QStringLiteral("no text");
    }

    QString drawing, array;
    int trees = 0;
    static QStringList label(const QStringList& first = {})
    {
        return QStringList{ "ZOOM", "E", "DIMCIRCLES" } + first
            + QStringList{ "30000,20000", "75000,55000", "90000,55100", "", "TREES" };
    }
};

} // namespace

TEST_F(TreeArrayLabels, SayNameNumberAndSpacingBesideALevelShoulder)
{
    ASSERT_EQ(play(drawing, label()).status, 0);
    const auto database = open(result);
    const Label found = labelIn(*database);
    EXPECT_EQ(said(found.text), QStringLiteral("TREES(%1)").arg(trees));
    EXPECT_EQ(said(found.secondText), QStringLiteral("株距5000"));
    EXPECT_EQ(entityTag(found.secondText, tags::entityType), tags::kind::textUnderLabel);
    EXPECT_EQ(entityTag(found.text, tags::labelType), QStringLiteral("1"));
    ASSERT_EQ(found.marks.size(), 1u);

    const KcDbRead<KcDbLeader> leader(found.leader);
    ASSERT_TRUE(leader);
    EXPECT_FALSE(leader->data().hasArrowHead);
    const std::vector<KcGePoint3d>& path = leader->data().vertices;
    ASSERT_EQ(path.size(), 3u); // the nearly level segment became the shoulder
    EXPECT_TRUE(path[0].isEqualTo({ 30000, 20000, 0 }));
    EXPECT_TRUE(path[1].isEqualTo({ 75000, 55000, 0 }));
    EXPECT_TRUE(path[2].isEqualTo({ 90000, 55000, 0 }));
    const KcDbRead<KcDbMText> text(found.text), second(found.secondText);
    EXPECT_EQ(text->data().height, 350.0);
    EXPECT_NEAR(text->data().location.x, 90000.0, 1e-6);
    EXPECT_GT(text->data().location.y, 55000.0);
    EXPECT_LT(second->data().location.y, 55000.0);
    for (const KcDbObjectId id : { found.text, found.secondText, found.leader, found.marks[0] })
        EXPECT_EQ(KcDbRead<KcDbEntity>(id)->layer(), QStringLiteral("维德-规则树阵-标注"));
}

TEST_F(TreeArrayLabels, AreTiedToTheirArrayFromEveryPart)
{
    const QString labelled = prepared(drawing, label());
    const auto database = open(labelled);
    const Label found = labelIn(*database);
    for (const KcDbObjectId part : { found.text, found.secondText, found.leader, found.marks.at(0) }) {
        SCOPED_TRACE(KcDbRead<KcDbEntity>(part)->isA()->name());
        std::vector<KcDbObjectId> counted, members;
        KcDbObjectId text, leader, arc;
        ASSERT_EQ(GetReatorBlockIds(part, counted), 1);
        ASSERT_EQ(counted.size(), 1u);
        EXPECT_EQ(handle(counted[0]), array);
        ASSERT_EQ(GetReatorTextId(part, text, members), 1);
        EXPECT_EQ(text, found.text);
        EXPECT_EQ(members.size(), 4u);
        ASSERT_EQ(GetReatorLeaderId(part, leader), 1);
        EXPECT_EQ(leader, found.leader);
        EXPECT_EQ(GetReatorArcId(part, arc), 0); // the mark is a polyline, but no arc line
    }

    // A copy of the label is tied to nothing; an erased array is still known.
    const QString leader = handle(found.leader), text = handle(found.text);
    ASSERT_EQ(
        play(labelled, { "COPY", leader + ' ' + text, "", "0,0", "0,9000", "ERASE", array, "" }).status, 0);
    const auto copied = open(result);
    int tied = 0;
    for (const KcDbObjectId id : entities<KcDbLeader>(*copied)) {
        std::vector<KcDbObjectId> counted;
        if (GetReatorBlockIds(id, counted)) {
            ++tied;
            EXPECT_EQ(handle(id), leader);
            EXPECT_EQ(counted.size(), 1u);
        }
    }
    EXPECT_EQ(entities<KcDbLeader>(*copied).size(), 2u);
    EXPECT_EQ(tied, 1);
}

TEST_F(TreeArrayLabels, FollowTheSettings)
{
    // The first run makes the application root; two Enters lead back to the form with the number.
    ASSERT_EQ(play(drawing, label({ "", "" })).status, 0);
    EXPECT_EQ(said(labelIn(*open(result)).text), QStringLiteral("TREES(%1)").arg(trees));
    setting("iDimStyle", "2");
    setting("bDimType", "0");
    setting("iDimType", "0");
    setting("dDrawingScale", "50");
    setting("bDimGrouping", "0");
    ASSERT_EQ(play(drawing, label()).status, 0);
    auto database = open(result);
    Label found = labelIn(*database);
    EXPECT_EQ(said(found.text), QStringLiteral("TREES-%1").arg(trees));
    EXPECT_EQ(KcDbRead<KcDbMText>(found.text)->data().height, 175.0);
    EXPECT_TRUE(found.secondText.isNull());
    EXPECT_TRUE(found.marks.empty());
    std::vector<KcDbObjectId> counted;
    EXPECT_EQ(GetReatorBlockIds(found.leader, counted), 1); // tied without a group as well

    ASSERT_EQ(play(drawing, label({ "" })).status, 0); // the name alone
    EXPECT_EQ(said(labelIn(*open(result)).text), "TREES");
    // A leader of two points to the left: the shoulder begins at its end and goes on to the left.
    ASSERT_EQ(
        play(drawing, { "ZOOM", "E", "DIMCIRCLES", "30000,20000", "-9000,50000", "", "TREES" }).status, 0);
    database = open(result);
    found = labelIn(*database);
    const std::vector<KcGePoint3d> path = KcDbRead<KcDbLeader>(found.leader)->data().vertices;
    ASSERT_EQ(path.size(), 3u);
    EXPECT_LT(path[2].x, -9000.0);
    EXPECT_EQ(path[2].y, 50000.0);
    const KcDbRead<KcDbMText> text(found.text);
    EXPECT_NEAR(path[1].x - path[2].x, 1.2 * text->actualWidth(), 1e-6);
    EXPECT_EQ(text->data().attachment, 7);
}

TEST_F(TreeArrayLabels, AreForTreeArraysOnly)
{
    // Beside every array; then a block with a line among its circles; both ask again, and Escape costs
    // nothing.
    Outcome outcome = play(drawing, { "DIMCIRCLES", "200000,200000", "^C" });
    EXPECT_TRUE(outcome.out.contains("\n不是树阵。\n")) << outcome.out;
    EXPECT_TRUE(bytes(result) == bytes(drawing));

    KcDbDatabase made;
    auto block = std::make_unique<KcDbBlockTableRecord>();
    block->initName("TREE");
    const KcDbObjectId id = KcDbWrite<KcDbSymbolTable>(made.blockTable())->add(std::move(block));
    const auto put = [&](KcDbObjectId into, std::unique_ptr<KcDbEntity> entity) {
        entity->setLayer(made.currentLayer());
        KcDbRead<KcDbBlockTableRecord>(into)->appendEntity(std::move(entity));
    };
    put(id, std::make_unique<KcDbCircle>(KcGePoint3d{ 0, 0, 0 }, 1000.0));
    put(id, std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 1000, 0, 0 }));
    put(made.modelSpace(), std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, id));
    const QString path = folder.filePath("tree.dxf");
    ASSERT_TRUE(dxf::saveDrawing(made, path).ok);
    outcome = play(path, { "DIMCIRCLES", "", "500,0", "^C" });
    EXPECT_TRUE(outcome.out.contains("\n不是树阵。\n请选择树阵或 [名称和数量]: ")) << outcome.out;
    EXPECT_TRUE(bytes(result) == bytes(path));
}
