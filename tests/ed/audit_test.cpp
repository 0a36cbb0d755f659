// Checks of a whole drawing: each kind of damage is found once, and a sound drawing gives no finding.
#include "session.h"

#include "db/audit.h"
#include "db/hatch.h"

#include <gtest/gtest.h>

using ed_test::Session;

TEST(Audit, FindsEachKindOfDamage)
{
    Session s;
    const KcDbObjectId block = s.addBlock("tree"), outer = s.addBlock("group");
    s.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, block));
    s.addLine(0, 0, 1, 1);
    for (const KcDbFinding& finding : kcdbAudit(s.database))
        ADD_FAILURE() << "in a sound drawing: " << finding.number << " " << qPrintable(finding.text);

    // tree holds group, group holds tree
    KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(
        std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, outer));
    KcDbRead<KcDbBlockTableRecord>(outer)->appendEntity(
        std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, block));
    s.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, KcDbObjectId()));
    s.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 0, 0, 0 }, -1.0));
    auto hatch = std::make_unique<KcDbHatch>();
    hatch->data().loops.resize(1);
    s.add(std::move(hatch));
    const KcDbObjectId layer = s.addLayer("gone");
    const KcDbObjectId line = s.addLine(0, 0, 1, 1, "gone");
    KcDbWrite<KcDbLayerTableRecord>(layer)->erase();

    std::map<int, int> found;
    for (const KcDbFinding& finding : kcdbAudit(s.database))
        ++found[finding.number];
    EXPECT_EQ(found, (std::map<int, int>{ { 201, 1 }, { 203, 1 }, { 204, 2 }, { 208, 1 }, { 209, 1 } }));
    EXPECT_EQ(KcDbRead<KcDbEntity>(line)->layer(), "0") << "repaired";
    for (const KcDbFinding& finding : kcdbAudit(s.database))
        EXPECT_NE(finding.number, 201) << "found again after its repair";
}
