// What happens at every move of the cursor in a drawing of 200,000 symbols: object snaps and the region
// around a point.

#include "best_of_three.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/database.h"
#include "db/spatial_index.h"
#include "ed/object_snap.h"
#include "ed/region_at.h"

#include <cstdio>

namespace {

constexpr int kSide = 450; // references a side

void fill(KcDbDatabase& database)
{
    auto record = std::make_unique<KcDbBlockTableRecord>();
    record->initName(QStringLiteral("TREE"));
    const KcDbObjectId block = KcDbWrite<KcDbSymbolTable>(database.blockTable())->add(std::move(record));
    const KcDbRead<KcDbBlockTableRecord> definition(block);
    definition->appendEntity(std::make_unique<KcDbCircle>(KcGePoint3d{}, 400.0));
    for (int i = 0; i < 6; ++i)
        definition->appendEntity(std::make_unique<KcDbLine>(
            KcGePoint3d{}, KcGePoint3d{ 400.0 * std::cos(i * kPi / 3), 400.0 * std::sin(i * kPi / 3), 0 }));
    const KcDbRead<KcDbBlockTableRecord> space(database.modelSpace());
    for (int row = 0; row < kSide; ++row)
        for (int column = 0; column < kSide; ++column)
            space->appendEntity(
                std::make_unique<KcDbBlockReference>(KcGePoint3d{ column * 700.0, row * 700.0, 0 }, block));
}

} // namespace

int main()
{
    KcDbDatabase database;
    fill(database);
    std::printf("%d symbols; the first query builds the index: ", kSide * kSide);
    const KcGeExtents2d none{ { 0, 0 }, { 1, 1 } };
    std::printf(
        "%.0f ms\n",
        seconds([&] {
            database.spatialIndex().forget(database.modelSpace());
            database.spatialIndex().crossing(database.modelSpace(), none);
        }) * 1e3);
    for (const double aperture : { 50.0, 5000.0, 100000.0 }) {
        int found = 0;
        constexpr int kMoves = 100;
        const double time = seconds([&] {
            found = 0;
            for (int i = 0; i < kMoves; ++i)
                found += kcedObjectSnap(
                             database,
                             { { 100000.0 + i * 37.0, 100000.0 + i * 91.0, 0 },
                               aperture,
                               kcedSnapAll,
                               KcGePoint3d{ 0, 0, 0 } })
                             .has_value();
        });
        std::printf(
            "object snap, aperture %6.0f: %.2f ms a move, %d of %d found\n", aperture, time / kMoves * 1e3,
            found, kMoves);
    }
    size_t islands = 0;
    const double region = seconds([&] {
        const KcEdRegionAt at = kcedRegionAt(database, { 100100.0 * 1.0, 100200.0 });
        islands = at.reason.isEmpty() ? at.outline.size() : 0;
    });
    std::printf("region around a point: %.1f ms, outline of %zu pieces\n", region * 1e3, islands);
}
