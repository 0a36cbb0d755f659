// The view without a window.

#include "db/block_table_record.h"
#include "db/curves.h"
#include "ed/documents.h"
#include "ed/system_variables.h"

#include <gtest/gtest.h>

namespace {

struct OpenDocument {
    OpenDocument()
        : document(kcDocManagerPtr()->open(std::make_unique<KcDbDatabase>()))
    {
    }
    ~OpenDocument() { kcDocManagerPtr()->close(document); }
    KcApDocument& document;
};

} // namespace

TEST(View, ZoomsAndGoesBack)
{
    OpenDocument opened;
    KcApDocument& document = opened.document;
    const KcEdView first = kcedView(document);
    ASSERT_TRUE(kcedSetView(document, { { 100, 50 }, 20 }));
    EXPECT_EQ(kcedVarReal("VIEWSIZE", 0), 20.0);
    EXPECT_EQ(std::get<KcGePoint3d>(*kcedGetVar("VIEWCTR")).x, 100.0);
    ASSERT_TRUE(kcedSetView(document, { { 100, 50 }, 20 })); // the same view is none to go back to
    ASSERT_TRUE(kcedPreviousView(document));
    EXPECT_EQ(kcedView(document), first);
    EXPECT_FALSE(kcedPreviousView(document));
}

TEST(View, RefusesWhatIsNoView)
{
    OpenDocument opened;
    const KcEdView before = kcedView(opened.document);
    EXPECT_FALSE(kcedSetView(opened.document, { { 0, 0 }, 0 }));
    EXPECT_FALSE(kcedSetView(opened.document, { { NAN, 0 }, 1 }));
    EXPECT_FALSE(kcedSetView(opened.document, { { 0, 0 }, INFINITY }));
    EXPECT_EQ(kcedView(opened.document), before);
    EXPECT_FALSE(kcedViewOf({}));
}

TEST(View, OfAnExtentShowsAllOfIt)
{
    OpenDocument opened;
    KcDbWrite<KcDbBlockTableRecord>(opened.document.database().modelSpace())
        ->appendEntity(std::make_unique<KcDbCircle>(KcGePoint3d{ 1000, 500, 0 }, 100.0));
    const auto view = kcedViewOf(kcedVisibleExtents(opened.document.database()));
    ASSERT_TRUE(view);
    EXPECT_NEAR(view->center.x, 1000, 1e-9);
    EXPECT_GT(view->height, 200.0);
    EXPECT_LT(view->height, 250.0);
}
