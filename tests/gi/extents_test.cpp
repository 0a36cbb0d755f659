// What an entity draws and the box that it says it has are two computations of one thing.

#include "gi/support.h"

#include "db/hatch.h"
#include "db/leader.h"
#include "db/raw_entity.h"
#include "db/viewport.h"

#include <QDir>

using namespace gi_test;

namespace {

/// Boxes may be larger than what is drawn: those of splines go round the control points of meshes, those of
/// kept kinds round the points that they hold, those of references round boxes of boxes.
bool isExact(const KcDbEntity& entity)
{
    return entity.isKindOf(KcDbCurve::desc()) && !entity.isKindOf(KcDbLeader::desc());
}

QStringList drawings()
{
    QStringList paths{ QStringLiteral(VERDELIS_SOURCE_DIR "/examples/planting-plan.dxf") };
    const QDir folder(QStringLiteral(VERDELIS_TEST_DATA "/drawings"));
    for (const QString& name : folder.entryList({ "*.dxf" }))
        paths += folder.filePath(name);
    return paths;
}

class DrawnBoxes : public ::testing::TestWithParam<QString> { };

} // namespace

TEST_P(DrawnBoxes, AgreeWithTheExtentsOfEveryEntity)
{
    KcDbDatabase database(KcDbDatabase::Content::kEmpty);
    ASSERT_TRUE(dxf::readDrawing(GetParam(), database).ok);
    size_t compared = 0;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(database.modelSpace())) {
        const KcDbRead<KcDbEntity> entity(id);
        // Points have no size of their own, lines without ends no box; a viewport shows more than it is.
        if (entity->isKindOf(KcDbPoint::desc()) || entity->isKindOf(KcDbXline::desc())
            || entity->isKindOf(KcDbRay::desc()) || entity->isKindOf(KcDbViewport::desc()))
            continue;
        BoxDevice device;
        KcGiScene scene(database, device, {});
        scene.draw({ id });
        const KcGeExtents3d box = entity->geomExtents();
        // Texts of kinds that are kept as they are were cut off where they left the box of the kept points.
        const bool isKept = entity->isKindOf(KcDbRawEntity::desc());
        if (isKept)
            device.box.addExtents(device.textBox);
        if (device.box.isEmpty())
            continue;
        ASSERT_FALSE(box.isEmpty()) << "#" << std::hex << id.handle() << " draws, but has no box";
        ++compared;
        // Lines under texts stand out of the box of their letters, arrow heads to both sides of a leader.
        const bool exact = isExact(*entity);
        const double longer = std::max({ box.width(), box.height(), 1e-3 }),
                     shorter = std::min(box.width(), box.height());
        const double slack = exact                 ? 1e-3 * longer
            : entity->isKindOf(KcDbText::desc())   ? 0.5 * shorter
            : entity->isKindOf(KcDbLeader::desc()) ? 0.15 * longer
                                                   : 0.05 * longer;
        const KcGeExtents2d& drawn = device.box;
        const auto name = [&] {
            std::ostringstream text;
            text << "#" << std::hex << id.handle() << " " << entity->isA()->name();
            return text.str();
        };
        EXPECT_GE(drawn.min.x, box.min.x - slack) << name();
        EXPECT_GE(drawn.min.y, box.min.y - slack) << name();
        EXPECT_LE(drawn.max.x, box.max.x + slack) << name();
        EXPECT_LE(drawn.max.y, box.max.y + slack) << name();
        if (exact) {
            EXPECT_NEAR(drawn.max.x - drawn.min.x, box.width(), 2 * slack) << name();
            EXPECT_NEAR(drawn.max.y - drawn.min.y, box.height(), 2 * slack) << name();
        }
    }
    RecordProperty("compared", int(compared));
}

INSTANTIATE_TEST_SUITE_P(Drawings, DrawnBoxes, ::testing::ValuesIn(drawings()), [](const auto& info) {
    return QFileInfo(info.param).completeBaseName().replace('-', '_').toStdString();
});
