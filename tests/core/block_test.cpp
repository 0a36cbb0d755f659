// Names, data and boxes of plant symbols; selections of them.

#include "core/block.h"
#include "core/selection.h"
#include "db/curves.h"
#include "db/table.h"
#include "support.h"

using namespace core_test;

namespace {

std::vector<KcDbObjectId> modelSpaceOf(const KcDbDatabase& database)
{
    return KcDbRead<KcDbBlockTableRecord>(database.modelSpace())->entityIds();
}

QStringList namesOfReferences(const KcDbDatabase& database)
{
    QStringList names;
    for (const KcDbObjectId id : modelSpaceOf(database))
        if (CBlock block; block.Initialize(id))
            names.push_back(block.GetName());
    names.sort();
    return names;
}

std::unique_ptr<KcDbAttributeDefinition> definition(const QString& tag, const QString& text)
{
    auto result = std::make_unique<KcDbAttributeDefinition>();
    result->attribute().tag = tag;
    result->data().text = text;
    result->data().position = { 100, 0, 0 };
    return result;
}

} // namespace

// The drawings show every reference through an anonymous variant.
TEST(BlockName, OfADynamicBlocksVariantIsTheParents)
{
    const QString visibility = QStringLiteral("block_visibility_parameter");
    const QString flip = QStringLiteral("BLOCK_FLIP_PARAMETER");
    Drawing first(QStringLiteral("dynblock-visibility-r2018.dxf"));
    EXPECT_EQ(
        namesOfReferences(first.database), (QStringList{ visibility, visibility, visibility, visibility }));
    QStringList names;
    EXPECT_TRUE(CSs(modelSpaceOf(first.database)).GetBlockNames(names));
    EXPECT_EQ(names, QStringList{ visibility });
    Drawing second(QStringLiteral("dynblock-flip-r2018.dxf"));
    for (const QString& name : namesOfReferences(second.database))
        EXPECT_EQ(name.toUpper(), flip);
    EXPECT_EQ(namesOfReferences(*reopened(second)), namesOfReferences(second.database));
}

TEST(BlockName, OfAnAnonymousBlockWithoutParentIsItsOwnAndNeverOffered)
{
    Drawing drawing(QStringLiteral("anon-blocks-cn-r2013.dxf"));
    QStringList names = namesOfReferences(drawing.database);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names)
        EXPECT_TRUE(name.startsWith(QStringLiteral("*U"))) << qPrintable(name);
    EXPECT_FALSE(CSs(modelSpaceOf(drawing.database)).GetBlockNames(names));
    EXPECT_TRUE(names.isEmpty());
}

TEST(BlockName, FollowsARenameAndIsNoTables)
{
    Drawing drawing;
    const KcDbObjectId tree = drawing.addBlock(QStringLiteral("香樟"));
    CBlock block;
    ASSERT_TRUE(block.Initialize(drawing.insert(tree)));
    EXPECT_EQ(block.GetName(), QStringLiteral("香樟"));
    KcDbWrite<KcDbSymbolTable>(drawing.database.blockTable())->rename(tree, QStringLiteral("桂花"));
    EXPECT_EQ(block.GetName(), QStringLiteral("桂花"));
    auto table = std::make_unique<KcDbTable>();
    table->setSize(1, 1);
    EXPECT_FALSE(block.Initialize(KcDbTable::append(drawing.database.modelSpace(), std::move(table))));
    EXPECT_FALSE(block.Initialize(drawing.add(std::make_unique<KcDbCircle>(KcGePoint3d(), 1.0))));
}

TEST(TreeData, IsTheReferencesAttributeElseTheDefinitionsText)
{
    Drawing drawing;
    const KcDbObjectId tree = drawing.addBlock(QStringLiteral("香樟"));
    Drawing::append(tree, definition(QStringLiteral("胸径"), QStringLiteral("12")));
    Drawing::append(tree, definition(QStringLiteral("Latin"), QStringLiteral("Cinnamomum")));
    const KcDbObjectId id = drawing.insert(tree);
    auto attribute = std::make_unique<KcDbAttribute>();
    attribute->attribute().tag = QStringLiteral("胸径");
    attribute->data().text = QStringLiteral("%%c15");
    KcDbWrite<KcDbBlockReference>(id)->appendAttribute(std::move(attribute));

    CBlock block;
    ASSERT_TRUE(block.Initialize(id));
    QString value;
    EXPECT_TRUE(block.GetTreeData(QStringLiteral("胸径"), value));
    EXPECT_EQ(value, QStringLiteral("⌀15"));
    EXPECT_TRUE(block.GetTreeData(QStringLiteral("LATIN"), value));
    EXPECT_EQ(value, QStringLiteral("Cinnamomum"));
    EXPECT_FALSE(block.GetAttributeValue(QStringLiteral("LATIN"), value));
    EXPECT_FALSE(block.GetTreeData(QStringLiteral("冠幅"), value));
    EXPECT_EQ(value, QString());
    QStringList tags;
    EXPECT_TRUE(block.GetAttributes(tags));
    EXPECT_EQ(tags, QStringList{ QStringLiteral("胸径") });
}

TEST(BlockBox, OfTheSymbolLeavesOutAttributesAndInvisibleParts)
{
    Drawing drawing;
    const KcDbObjectId tree = drawing.addBlock(QStringLiteral("香樟"));
    Drawing::append(tree, std::make_unique<KcDbCircle>(KcGePoint3d{ 10, 0, 0 }, 2.0));
    const KcDbObjectId hidden
        = Drawing::append(tree, std::make_unique<KcDbCircle>(KcGePoint3d{ 500, 0, 0 }, 2.0));
    KcDbWrite<KcDbEntity>(hidden)->setVisible(false);
    const KcDbObjectId id = drawing.insert(tree, { 100, 100, 0 });
    auto attribute = std::make_unique<KcDbAttribute>();
    attribute->attribute().tag = QStringLiteral("N");
    attribute->data().text = QStringLiteral("far away");
    attribute->data().position = { 300, 100, 0 };
    KcDbWrite<KcDbBlockReference>(id)->appendAttribute(std::move(attribute));

    CBlock block;
    ASSERT_TRUE(block.Initialize(id));
    KcGePoint3d min, max, centre;
    ASSERT_TRUE(block.GetBoundaryBestBox(min, max));
    EXPECT_TRUE(min.isEqualTo({ 108, 98, 0 }) && max.isEqualTo({ 112, 102, 0 }));
    ASSERT_TRUE(block.GetBoundaryBox(min, max));
    EXPECT_GT(max.x, 300.0);
    double radius = 0;
    ASSERT_TRUE(block.GetCenterPointBoundaryBox(centre) && block.GetBoundaryBoxRadius(radius));
    EXPECT_TRUE(centre.isEqualTo({ 110, 100, 0 }));
    EXPECT_NEAR(radius, 2.0, 1e-9);

    CBlock nothing;
    ASSERT_TRUE(nothing.Initialize(drawing.insert(drawing.addBlock(QStringLiteral("leer")))));
    EXPECT_TRUE(nothing.IsEmpty());
    EXPECT_FALSE(nothing.GetBoundaryBestBox(min, max));
}

TEST(Selection, FindsBlocksInTheOrderOfSelecting)
{
    Drawing drawing;
    const KcDbObjectId a = drawing.addBlock(QStringLiteral("香樟")),
                       b = drawing.addBlock(QStringLiteral("Oak"));
    const KcDbObjectId external = drawing.addBlock(QStringLiteral("底图"), 4);
    const KcDbObjectId oak = drawing.insert(b), base = drawing.insert(external), tree = drawing.insert(a),
                       oak2 = drawing.insert(b);
    const KcDbObjectId circle = drawing.add(std::make_unique<KcDbCircle>(KcGePoint3d(), 1.0));
    CSs selection({ circle, oak, base, tree, oak2 });
    selection.RemoveExternalReference();
    QStringList names;
    EXPECT_TRUE(selection.GetBlockNames(names));
    EXPECT_EQ(names, (QStringList{ QStringLiteral("Oak"), QStringLiteral("香樟") }));
    std::vector<KcDbObjectId> ids;
    EXPECT_TRUE(selection.GetBlocks({ QStringLiteral("OAK") }, ids));
    EXPECT_EQ(ids, (std::vector{ oak, oak2 }));
    EXPECT_TRUE(selection.GetEntitiesOfType(QStringLiteral("AcDbCircle"), ids));
    EXPECT_EQ(ids, std::vector{ circle });
    EXPECT_FALSE(selection.GetTexts(ids));

    CSs trees({ tree, oak });
    ASSERT_TRUE(trees.SetLayer(QStringLiteral("乔木"), nullptr, 3));
    selection.RemoveEntitiesOnLayers({ QStringLiteral("乔木") });
    EXPECT_EQ(selection.ids(), (std::vector{ circle, oak2 }));
    EXPECT_EQ(selection.Delete(), 2);
    EXPECT_TRUE(oak2.isErased());
}
