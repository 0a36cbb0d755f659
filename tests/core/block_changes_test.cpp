// Moving base points, and making blocks of selections: the drawing looks the same before and after.

#include "core/block.h"
#include "core/selection.h"
#include "db/curves.h"
#include "support.h"

using namespace core_test;

namespace {

// The boxes of all references of a drawing, nested ones in their definitions' coordinates, attributes
// included.
std::map<KcDbHandle, KcGeExtents3d> boxes(const KcDbDatabase& database)
{
    std::map<KcDbHandle, KcGeExtents3d> found;
    for (const KcDbObjectStub& stub : database.stubs()) {
        const KcDbObjectId id(const_cast<KcDbObjectStub*>(&stub));
        if (const KcDbRead<KcDbBlockReference> reference(id); reference)
            found[id.handle()] = reference->geomExtents();
    }
    return found;
}

void expectSameBoxes(const KcDbDatabase& database, const std::map<KcDbHandle, KcGeExtents3d>& before)
{
    const std::map<KcDbHandle, KcGeExtents3d> after = boxes(database);
    ASSERT_EQ(after.size(), before.size());
    for (const auto& [handle, box] : before) {
        const KcGeExtents3d& now = after.at(handle);
        EXPECT_EQ(now.isEmpty(), box.isEmpty()) << handle;
        if (box.isEmpty() || now.isEmpty())
            continue;
        const double slack = 1e-9 * (1.0 + box.min.asVector().length() + box.max.asVector().length());
        EXPECT_LT(now.min.distanceTo(box.min), slack) << handle;
        EXPECT_LT(now.max.distanceTo(box.max), slack) << handle;
    }
}

// A symbol placed in every manner: turned, stretched, mirrored, turned over, tilted, in an array, inside
// another block that is itself mirrored, with an attribute.
struct Placed {
    Drawing drawing;
    KcDbObjectId tree = drawing.addBlock(QStringLiteral("树"));
    std::vector<KcDbObjectId> references;
    KcDbObjectId attribute;

    Placed()
    {
        Drawing::append(tree, std::make_unique<KcDbCircle>(KcGePoint3d{ 30, 10, 0 }, 50.0));
        Drawing::append(tree, std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 120, -40, 0 }));
        const auto place = [&](KcDbObjectId block, KcDbBlockReference::Data data) {
            auto reference = std::make_unique<KcDbBlockReference>();
            data.block = tree;
            reference->data() = data;
            references.push_back(Drawing::append(block, std::move(reference)));
        };
        KcDbBlockReference::Data data;
        data.position = { 1000, 2000, 0 };
        place(drawing.database.modelSpace(), data);
        data.rotation = 0.7;
        data.scale = { 2, 2, 2 };
        place(drawing.database.modelSpace(), data);
        data.scale = { -1, 1, 1 };
        place(drawing.database.modelSpace(), data);
        data.normal = -KcGeVector3d::kZAxis;
        place(drawing.database.modelSpace(), data);
        data.normal = KcGeVector3d{ 0.3, -0.4, 0.8 }.normal();
        data.position.z = 70;
        place(drawing.database.modelSpace(), data);
        data.normal = KcGeVector3d::kZAxis;
        data.array = std::make_unique<KcDbBlockReference::Array>();
        data.array->columns = 3;
        data.array->columnSpacing = 500;
        place(drawing.database.paperSpace(), data);
        data.array.reset();
        const KcDbObjectId group = drawing.addBlock(QStringLiteral("树群"));
        place(group, data);
        const KcDbObjectId outer = drawing.insert(group, { -5000, 300, 0 });
        KcDbWrite<KcDbBlockReference>(outer)->setScaleFactors({ 1, -3, 1 });

        auto text = std::make_unique<KcDbAttribute>();
        text->data().text = QStringLiteral("香樟");
        text->data().position = { 1100, 2300, 0 };
        text->data().height = 20.0;
        attribute = KcDbWrite<KcDbBlockReference>(references[0])->appendAttribute(std::move(text));
    }
};

} // namespace

TEST(ChangeOrigin, LeavesEveryReferenceWhereItIsSeen)
{
    Placed placed;
    const auto before = boxes(placed.drawing.database);
    for (const KcDbObjectId id : placed.references) {
        CBlock block;
        ASSERT_TRUE(block.Initialize(id));
        const KcGePoint3d wanted{ 1234.5, -678.25, 0 };
        ASSERT_TRUE(block.ChangeOrigin(wanted));
        KcGePoint3d position;
        block.GetPosition(position);
        // In the nested block's coordinates, that is, for the one inside another.
        EXPECT_LT(position.distanceTo(wanted), 1e-9 * wanted.asVector().length());
        expectSameBoxes(placed.drawing.database, before);
    }
    EXPECT_EQ(KcDbRead<KcDbAttribute>(placed.attribute)->data().position, (KcGePoint3d{ 1100, 2300, 0 }));
}

TEST(ChangeOrigin, ReachesTheFileAndIsUndone)
{
    Placed placed;
    KcDbUndo& undo = placed.drawing.database.undo();
    const auto before = boxes(placed.drawing.database);
    const KcGePoint3d position = KcDbRead<KcDbBlockReference>(placed.references[1])->position();
    undo.beginStep(QStringLiteral("origin"));
    CBlock block;
    block.Initialize(placed.references[0]);
    ASSERT_TRUE(block.ChangeOrigin({ 500, 500, 0 }));
    undo.endStep();
    const auto file = reopened(placed.drawing);
    expectSameBoxes(*file, before);
    EXPECT_NE(KcDbRead<KcDbBlockTableRecord>(same(*file, placed.tree))->origin(), KcGePoint3d());
    undo.undo();
    EXPECT_EQ(KcDbRead<KcDbBlockTableRecord>(placed.tree)->origin(), KcGePoint3d());
    EXPECT_EQ(KcDbRead<KcDbBlockReference>(placed.references[1])->position(), position);
}

TEST(ChangeOrigin, RefusesWhatHasNoPlace)
{
    Placed placed;
    CBlock block;
    block.Initialize(placed.references[0]);
    EXPECT_FALSE(block.ChangeOrigin({ std::numeric_limits<double>::quiet_NaN(), 0, 0 }));
    KcDbWrite<KcDbBlockReference>(placed.references[0])->setScaleFactors({ 1, 0, 1 });
    EXPECT_FALSE(block.ChangeOrigin({ 1, 1, 0 }));
    EXPECT_EQ(KcDbRead<KcDbBlockTableRecord>(placed.tree)->origin(), KcGePoint3d());
}

TEST(CreateBlock, PutsAReferenceInThePlaceOfTheSelection)
{
    Placed placed;
    KcDbDatabase& database = placed.drawing.database;
    KcGeExtents3d before;
    for (int i : { 0, 1, 4 })
        before.addExtents(KcDbRead<KcDbEntity>(placed.references[size_t(i)])->geomExtents());
    CSs selection({ placed.references[4], placed.references[0], placed.references[1],
                    placed.references[5] /* in paper space: it stays there */ });
    database.undo().beginStep(QStringLiteral("block"));
    CBlock made;
    ASSERT_TRUE(made.Initialize(selection.CreateBlock(QStringLiteral("*U"))));
    database.undo().endStep();
    EXPECT_EQ(selection.ids(), std::vector{ made.GetObjectId() });
    std::vector<KcDbObjectId> members;
    ASSERT_TRUE(made.GetObjectIdArray(members));
    EXPECT_EQ(members, (std::vector{ placed.references[4], placed.references[0], placed.references[1] }));
    KcGePoint3d min, max;
    ASSERT_TRUE(made.GetBoundaryBox(min, max));
    EXPECT_LT(min.distanceTo(before.min) + max.distanceTo(before.max), 1e-9);

    const auto file = reopened(placed.drawing);
    CBlock saved;
    ASSERT_TRUE(saved.Initialize(same(*file, made.GetObjectId())));
    ASSERT_TRUE(saved.GetObjectIdArray(members));
    EXPECT_EQ(members.size(), 3u);
    // The next one has another name, also when the first was undone meanwhile.
    const QString name = made.GetName();
    database.undo().undo();
    EXPECT_EQ(KcDbRead<KcDbEntity>(placed.references[0])->ownerId(), database.modelSpace());
    CSs again({ placed.references[0] });
    ASSERT_TRUE(made.Initialize(again.CreateBlock(QStringLiteral("*U"))));
    EXPECT_NE(made.GetName(), name);
}

TEST(CreateBlock, OfNothingOrUnderATakenNameFails)
{
    Placed placed;
    EXPECT_TRUE(CSs().CreateBlock(QStringLiteral("*U")).isNull());
    CSs selection({ placed.references[0] });
    EXPECT_TRUE(selection.CreateBlock(QStringLiteral("树群")).isNull());
    EXPECT_EQ(KcDbRead<KcDbEntity>(placed.references[0])->ownerId(), placed.drawing.database.modelSpace());
    EXPECT_FALSE(selection.CreateBlock(QStringLiteral("新")).isNull());
}
