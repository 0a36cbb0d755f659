// The spatial index against a walk over all entities, while a drawing changes at random and is taken back.

#include "db/spatial_index.h"

#include "db/block_reference.h"
#include "db/block_table_record.h"
#include "db/curves.h"
#include "db/tables.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Ids = std::vector<KcDbObjectId>;

KcGeExtents2d planBox(const KcDbEntity& entity)
{
    const KcGeExtents3d box = entity.geomExtents();
    return box.isEmpty() ? KcGeExtents2d() : KcGeExtents2d { box.min.plan(), box.max.plan() };
}

class SpatialIndex : public testing::Test {
protected:
    KcDbObjectId add(std::unique_ptr<KcDbEntity> entity, KcDbObjectId block = {})
    {
        const KcDbRead<KcDbBlockTableRecord> space(block.isNull() ? database.modelSpace() : block);
        return space->appendEntity(std::move(entity));
    }
    KcDbObjectId addCircle(KcGePoint3d center, double radius, KcDbObjectId block = {})
    {
        return add(std::make_unique<KcDbCircle>(center, radius), block);
    }
    KcDbObjectId addBlock(const QString& name)
    {
        auto block = std::make_unique<KcDbBlockTableRecord>();
        block->initName(name);
        return KcDbWrite<KcDbSymbolTable>(database.blockTable())->add(std::move(block));
    }
    KcDbObjectId addReference(KcDbObjectId block, KcGePoint3d position)
    {
        auto reference = std::make_unique<KcDbBlockReference>();
        reference->data().block = block;
        reference->data().position = position;
        return add(std::move(reference));
    }

    /// Entities of model space for which the predicate holds, found by asking each.
    template <class Predicate> Ids walk(Predicate predicate)
    {
        Ids ids;
        const KcDbRead<KcDbBlockTableRecord> space(database.modelSpace());
        for (const KcDbObjectId id : *space)
            if (const KcDbRead<KcDbEntity> entity(id); predicate(planBox(*entity)))
                ids.push_back(id);
        return ids;
    }

    /// The index misses nothing that a walk finds, keeps the order, and adds nothing that lies further off than
    /// `rounding`.
    void expectAgrees(const KcGeExtents2d& box, double rounding, const std::string& what)
    {
        SCOPED_TRACE(what);
        const KcGeExtents2d wide { { box.min.x - rounding, box.min.y - rounding },
                                   { box.max.x + rounding, box.max.y + rounding } };
        const auto overlaps
            = [](const KcGeExtents2d& region) { return [&](const KcGeExtents2d& b) { return !b.isEmpty() && region.overlaps(b); }; };
        const auto contains
            = [](const KcGeExtents2d& region) { return [&](const KcGeExtents2d& b) { return !b.isEmpty() && region.contains(b); }; };
        KcDbSpatialIndex& index = database.spatialIndex();
        expectBetween(index.crossing(database.modelSpace(), box), walk(overlaps(box)), walk(overlaps(wide)));
        expectBetween(index.window(database.modelSpace(), box), walk(contains(box)), walk(contains(wide)));
    }
    static void expectBetween(const Ids& found, const Ids& least, const Ids& most)
    {
        Ids missing, extra;
        for (const KcDbObjectId id : least)
            if (std::find(found.begin(), found.end(), id) == found.end())
                missing.push_back(id);
        for (const KcDbObjectId id : found)
            if (std::find(most.begin(), most.end(), id) == most.end())
                extra.push_back(id);
        EXPECT_TRUE(missing.empty()) << missing.size() << " missed of " << least.size();
        EXPECT_TRUE(extra.empty()) << extra.size() << " too many";
        Ids inOrder;
        for (const KcDbObjectId id : most)
            if (std::find(found.begin(), found.end(), id) != found.end())
                inOrder.push_back(id);
        EXPECT_EQ(found, inOrder) << "drawing order is lost";
    }

    KcDbDatabase database;
};

} // namespace

// Changes, erasures, additions and undo that are not passed on leave the index behind the drawing.
TEST_F(SpatialIndex, FollowsRandomChangesAndUndo)
{
    constexpr unsigned kSeed = 20260;
    SCOPED_TRACE("seed " + std::to_string(kSeed));
    std::mt19937 random(kSeed);
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution<>(low, high)(random); };
    const double far = 4e8; // where survey coordinates lie
    const double rounding = 1e-3; // single precision over an extent of 1000
    const auto place = [&] { return KcGePoint3d { far + uniform(0, 1000), uniform(0, 1000), 0 }; };

    const KcDbObjectId block = addBlock(QStringLiteral("PLANT"));
    addCircle({ 0, 0, 0 }, 1.0, block);
    Ids ids;
    for (int i = 0; i < 300; ++i)
        ids.push_back(i % 3 ? addCircle(place(), uniform(0.1, 20)) : addReference(block, place()));

    KcDbUndo& undo = database.undo();
    for (int round = 0; round < 120; ++round) {
        undo.beginStep(QStringLiteral("step"));
        for (int i = 0; i < 5; ++i) {
            const KcDbObjectId id = ids[random() % ids.size()];
            switch (random() % 5) {
            case 0:
                if (KcDbWrite<KcDbEntity> entity(id, true); entity)
                    entity->erase(!entity->isErased());
                break;
            case 1:
                ids.push_back(addCircle(place(), uniform(0.1, 20)));
                break;
            case 2: // the block's references all change without being opened
                if (KcDbWrite<KcDbEntity> inner(*KcDbRead<KcDbBlockTableRecord>(block)->begin()); inner)
                    inner->transformBy(KcGeMatrix3d::translation({ uniform(-5, 5), uniform(-5, 5), 0 }));
                break;
            default:
                if (KcDbWrite<KcDbEntity> entity(id); entity)
                    entity->transformBy(KcGeMatrix3d::translation({ uniform(-50, 50), uniform(-50, 50), 0 }));
            }
        }
        undo.endStep();
        if (random() % 3 == 0)
            undo.undo();
        else if (random() % 4 == 0)
            undo.redo();
        const KcGePoint3d corner = place();
        const double side = uniform(1, 300);
        expectAgrees({ corner.plan(), { corner.x + side, corner.y + side } }, rounding,
            "round " + std::to_string(round));
        if (HasFailure())
            return;
    }
    while (undo.canUndo())
        undo.undo();
    expectAgrees({ { far, 0 }, { far + 1000, 1000 } }, rounding, "all undone");
}

// An entity that moves between blocks, and back, is found in the block that has it, in that block's order.
TEST_F(SpatialIndex, FollowsEntitiesToOtherBlocks)
{
    const KcDbObjectId other = addBlock(QStringLiteral("OTHER"));
    const KcDbObjectId a = addCircle({ 1, 1, 0 }, 1), b = addCircle({ 2, 2, 0 }, 1), c = addCircle({ 3, 3, 0 }, 1);
    const KcGeExtents2d all { { -10, -10 }, { 10, 10 } };
    KcDbSpatialIndex& index = database.spatialIndex();
    ASSERT_EQ(index.crossing(database.modelSpace(), all), (Ids { a, b, c }));
    ASSERT_EQ(index.crossing(other, all), Ids {});
    const auto moveTo = [&](KcDbObjectId block) {
        const KcDbRead<KcDbBlockTableRecord> record(block);
        record->adopt(*KcDbWrite<KcDbEntity>(a));
    };
    moveTo(other);
    EXPECT_EQ(index.crossing(database.modelSpace(), all), (Ids { b, c }));
    EXPECT_EQ(index.crossing(other, all), (Ids { a }));
    moveTo(database.modelSpace());
    const KcDbRead<KcDbBlockTableRecord> space(database.modelSpace());
    EXPECT_EQ(index.crossing(database.modelSpace(), all), space->entityIds());
    EXPECT_EQ(index.crossing(other, all), Ids {});
}

// Infinite lines have no box and must not be missed for that.
TEST_F(SpatialIndex, FindsWhatHasNoEnds)
{
    auto line = std::make_unique<KcDbXline>();
    line->setUnitDir({ 1, 1, 0 });
    const KcDbObjectId endless = add(std::move(line));
    const KcDbObjectId circle = addCircle({ 0, 0, 0 }, 1);
    KcDbSpatialIndex& index = database.spatialIndex();
    EXPECT_EQ(index.crossing(database.modelSpace(), { { 5, 5 }, { 6, 6 } }), (Ids { endless }));
    EXPECT_EQ(index.window(database.modelSpace(), { { -1e9, -1e9 }, { 1e9, 1e9 } }), (Ids { circle }));
}

TEST_F(SpatialIndex, FenceAndNearest)
{
    Ids row;
    for (int i = 0; i < 10; ++i)
        row.push_back(addCircle({ 10.0 * i, 0, 0 }, 1));
    KcDbSpatialIndex& index = database.spatialIndex();
    // Between the circles, then over the sixth one's box, then a corner that only its own box touches.
    EXPECT_EQ(index.fence(database.modelSpace(), { { 5, -5 }, { 5, 5 }, { 55, 5 }, { 45, -5 } }), (Ids { row[5] }));
    EXPECT_EQ(index.fence(database.modelSpace(), { { -5, 0 }, { 12, 0 } }), (Ids { row[0], row[1] }));
    EXPECT_EQ(index.fence(database.modelSpace(), {}), Ids {});
    const auto near = index.nearest(database.modelSpace(), { 32, 0.5 }, 3);
    ASSERT_EQ(near.size(), 3u);
    EXPECT_EQ(near[0].id, row[3]);
    EXPECT_NEAR(near[0].distance, 1.0, 1e-5);
    EXPECT_EQ(near[1].id, row[4]);
    EXPECT_NEAR(near[1].distance, 7.0, 1e-5);
    EXPECT_EQ(near[2].id, row[2]);
}

// Values that no drawing should hold, and files do.
TEST_F(SpatialIndex, StandsAbsurdValues)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    addCircle({ nan, 0, 0 }, 1);
    addCircle({ 0, 0, 0 }, 1e300);
    const KcDbObjectId plain = addCircle({ 5, 5, 0 }, 1);
    addCircle({ 1e300, 1e300, 0 }, 1);
    KcDbSpatialIndex& index = database.spatialIndex();
    const Ids found = index.crossing(database.modelSpace(), { { 4, 4 }, { 6, 6 } });
    EXPECT_NE(std::find(found.begin(), found.end(), plain), found.end());
    EXPECT_TRUE(index.crossing(database.modelSpace(), KcGeExtents2d()).empty());
    EXPECT_TRUE(index.nearest(database.modelSpace(), { nan, 0 }, 3).empty());
    EXPECT_TRUE(index.crossing(KcDbObjectId(), { { 4, 4 }, { 6, 6 } }).empty());
}
