// What the label parser reads from labels as the program and its users write them.
#include "core/label_parse.h"

#include <gtest/gtest.h>

TEST(LabelParse, TreeEntries)
{
    const struct {
        const char* entry;
        const char* name; // null: no number to be read
        int count;
    } rows[] = {
        { "香樟 4", "香樟", 4 },      { "香樟(4株)", "香樟", 4 },
        { "香樟-4", "香樟", 4 },      { "香樟4", "香樟", 4 },
        { "A12-3", "A12", 3 },        { "香樟4株", "香樟", 4 },
        { "香樟 (4株)", "香樟", 4 },  { "香樟（4株）", "香樟", 4 },
        { " 桂花 007", "桂花", 7 },   { "麦冬 36m2", "麦冬", 36 },
        { "麦冬(36M2)", "麦冬", 36 }, { "4株", "", 4 },
        { "香樟", nullptr, 0 },       { "m2", nullptr, 0 },
        { "", nullptr, 0 },           { "香樟 99999999999", nullptr, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entry);
        const auto label = parseTreeLabel(QString::fromUtf8(row.entry));
        ASSERT_EQ(label.has_value(), row.name != nullptr);
        if (label) {
            EXPECT_EQ(label->name.toStdString(), row.name);
            EXPECT_EQ(label->count, row.count);
        }
    }
}

TEST(LabelParse, AreaTexts)
{
    const struct {
        const char* text;
        const char* name; // null: no number to be read
        double number;
    } rows[] = {
        { "草坪 12.50m2", "草坪", 12.5 }, { "草坪12m²", "草坪", 12 },
        { "草坪(12.5M2)", "草坪", 12.5 }, { "草坪（12.5m²）", "草坪", 12.5 },
        { "草坪-12.5", "草坪", 12.5 },    { "草坪 - /(.75m2", "草坪", 0.75 },
        { "C3草 12.", "C3草", 12 },       { "草坪1.2.3", "草坪1.2", 0.3 },
        { "12.5m2", "", 12.5 },           { "草坪m2", nullptr, 0 },
        { "草坪", nullptr, 0 },           { "", nullptr, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto label = parseAreaLabel(QString::fromUtf8(row.text));
        ASSERT_EQ(label.has_value(), row.name != nullptr);
        if (label) {
            EXPECT_EQ(label->name.toStdString(), row.name);
            EXPECT_DOUBLE_EQ(label->number, row.number);
        }
    }
}

TEST(LabelParse, SpeciesNames)
{
    const struct {
        const char* name;
        const char* species;
    } rows[] = {
        { "香樟", "香樟" },
        { "香樟12", "香樟" },
        { "香樟A12", "香樟A" },
        { "香樟-A", "香樟-A" },
        { "香樟φ12-15", "香樟" },
        { "香樟 D12~15cm H450 P350", "香樟" },
        { "香樟(丛生)", "香樟" },
        { "香樟（胸径12公分）-2", "香樟" },
        { "红叶石楠球P100", "红叶石楠球" },
        { "BAMBOO12", "BAMBOO" },
        { "HD12", "HD" },
        { "H350", "H350" },
        { "12-15", "12-15" },
        { "", "" },
    };
    for (const auto& row : rows)
        EXPECT_EQ(GetSpeciesName(QString::fromUtf8(row.name)).toStdString(), row.species) << row.name;
}
