// Labels in the forms that the settings choose, and the layer rule of labels.
#include "core/drawing_config.h"
#include "core/label_layer.h"
#include "core/layers.h"
#include "core/tags.h"
#include "db/block_table_record.h"
#include "db/database.h"
#include "db/symbol_table.h"
#include "db/text.h"
#include "frame/drawing_settings.h"
#include "frame/settings.h"
#include "platform/app_root.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(DrawingSettings, SampleLabels)
{
    const struct {
        int style, unit, digits, areaUnit;
        const char *tree, *area;
    } rows[] = {
        { 0, 1, 1, 2, "香樟(4株)", "发草(49.1m2)" },
        { 1, 2, 0, 0, "香樟 4丛", "发草 49m²" },
        { 2, 0, 9, 1, "香樟-4", "发草-49.123456789" },
        { 7, 1, 3, 3, "香樟4株", "发草49.123M2" },
    };
    for (const auto& row : rows) {
        DrawingSettings settings;
        settings.labelStyle = row.style;
        settings.countUnit = row.unit;
        settings.areaDigits = row.digits;
        settings.areaUnit = row.areaUnit;
        EXPECT_EQ(sampleTreeLabel(settings).toStdString(), row.tree);
        EXPECT_EQ(sampleAreaLabel(settings).toStdString(), row.area);
    }
}

TEST(LabelLayer, FollowsTagPlantAndSettings)
{
    const QTemporaryDir root;
    ASSERT_TRUE(QDir(root.path()).mkpath("Sys"));
    platform::setAppRoot(root.path());
    KcDbDatabase drawing;
    const auto set = [](const char* key, bool on) {
        EXPECT_TRUE(productSettings().WriteBool("DRAWING SETTINGS", key, on));
    };
    set("bTreeDimLayer", false);
    EXPECT_EQ(labelLayer(tags::kind::treeLabel, "乔木", &drawing).toStdString(), "乔木-标注");
    EXPECT_EQ(labelLayer(tags::kind::areaLabel, "乔木", &drawing).toStdString(), "维德-地被标注");
    EXPECT_EQ(labelLayer(tags::kind::zoneLine, "乔木", &drawing).toStdString(), "");
    set("bTreeDimLayer", true);
    set("bAreaDimLayer", true);
    EXPECT_EQ(
        labelLayer(tags::kind::treeLabel, "乔木", &drawing).toStdString(), "乔木-标注"); // none chosen yet
    SetTreeDimLayer("树", &drawing);
    SetAreaDimLayer("地", &drawing);
    EXPECT_EQ(labelLayer(tags::kind::treeLabel, "乔木", &drawing).toStdString(), "树");
    EXPECT_EQ(labelLayer(tags::kind::areaLabel, "乔木", &drawing).toStdString(), "地");

    auto text = std::make_unique<KcDbMText>();
    const KcDbObjectId id
        = KcDbWrite<KcDbBlockTableRecord>(drawing.modelSpace())->appendEntity(std::move(text));
    EXPECT_TRUE(putLabelsOnLayer({ id }, tags::kind::zoneLine, "乔木", &drawing));
    EXPECT_EQ(KcDbRead<KcDbEntity>(id)->layer().toStdString(), "0");
    EXPECT_TRUE(putLabelsOnLayer({ id }, tags::kind::treeLabel, "乔木", &drawing));
    EXPECT_EQ(KcDbRead<KcDbEntity>(id)->layer().toStdString(), "树"); // made for it
    platform::setAppRoot({});
}
