// What the product keeps with a drawing, table headers, layers and line types, and drawing helpers.

#include "core/coordinates.h"
#include "core/draw.h"
#include "core/drawing_config.h"
#include "core/layers.h"
#include "core/styles.h"
#include "core/tables.h"
#include "db/header.h"
#include "support.h"

using namespace core_test;

namespace {

const QString treeTable = QStringLiteral("乔灌数量统计表");

} // namespace

TEST(DrawingConfig, ComesBackWithTheDrawing)
{
    const Root root;
    Drawing drawing;
    const QString odd = QStringLiteral("a\\n,b\nc");
    {
        const auto config = GetDwgGlobal(VdlOpenMode::kForWrite);
        EXPECT_TRUE(config->AppendAreaDimInfo(QStringLiteral("麦冬"), {}));
        EXPECT_TRUE(config->AppendAreaDimInfo(QStringLiteral("地毯草"), odd));
        EXPECT_TRUE(config->AppendAreaDimInfo(QStringLiteral("麦冬"), QStringLiteral("x,,1")));
        EXPECT_TRUE(config->SetCurrentStd(QStringLiteral("市政")));
        CTbInfoStd info = *config->GetTbInfoStd(treeTable);
        info.Set(QStringLiteral("拉丁名"), { QStringLiteral("Latin"), false });
        EXPECT_TRUE(config->SetTbInfoStd(info));
        config->close();
        EXPECT_FALSE(config->SetCurrentStd(QStringLiteral("late")));
    }
    EXPECT_TRUE(SetTreeDimLayer(QStringLiteral("乔木标注")));
    EXPECT_TRUE(SetTextBackFill(false));

    const auto later = reopened(drawing);
    const auto config = GetDwgGlobal(VdlOpenMode::kForRead, later.get());
    EXPECT_EQ(
        config->GetDimInfo(),
        (std::map<QString, QString>{ { QStringLiteral("地毯草"), odd },
                                     { QStringLiteral("麦冬"), QStringLiteral("x,,1") } }));
    QString text;
    EXPECT_TRUE(config->GetCurrentStd(text));
    EXPECT_EQ(text, QStringLiteral("市政"));
    EXPECT_TRUE(GetTreeDimLayer(text, later.get()));
    EXPECT_EQ(text, QStringLiteral("乔木标注"));
    EXPECT_FALSE(GetAreaDimLayer(text, later.get()));
    bool fill = true;
    EXPECT_TRUE(GetTextBackFill(fill, later.get()));
    EXPECT_FALSE(fill);
    const std::optional<CTbInfoStd> info = config->GetTbInfoStd(treeTable);
    ASSERT_TRUE(info);
    EXPECT_EQ(*info->FindByName(QStringLiteral("拉丁名")), (STbInfoDesc{ QStringLiteral("Latin"), false }));
    EXPECT_EQ(*info->FindByName(QStringLiteral("胸径")), (STbInfoDesc{ QStringLiteral("胸径(cm)"), true }));
}

// A dictionary in an old drawing would force it into a newer format.
TEST(DrawingConfig, ReadingWritesNothing)
{
    const Root root;
    Drawing drawing(QStringLiteral("pavilion-r12.dxf"));
    const std::string before = drawing.saved();
    const auto config = GetDwgGlobal(VdlOpenMode::kForRead);
    ASSERT_TRUE(config);
    EXPECT_TRUE(config->GetTbInfoStd(treeTable));
    EXPECT_FALSE(config->GetTbInfoStd(QStringLiteral("no such table")));
    EXPECT_TRUE(config->GetDimInfo().empty());
    EXPECT_FALSE(config->AppendAreaDimInfo(QStringLiteral("x"), {}));
    GetDwgGlobal(VdlOpenMode::kForWrite);
    EXPECT_FALSE(config->IsInDrawing());
    EXPECT_EQ(drawing.saved(), before);
    EXPECT_EQ(drawing.database.version(), KcDbVersion::R12);
}

TEST(DrawingConfig, SettingSomethingTakesAnOldDrawingToANewerFormat)
{
    Drawing drawing(QStringLiteral("pavilion-r12.dxf"));
    ASSERT_TRUE(SetAreaDimLayer(QStringLiteral("地被")));
    const auto later = reopened(drawing);
    QString layer;
    EXPECT_TRUE(GetAreaDimLayer(layer, later.get()));
    EXPECT_EQ(layer, QStringLiteral("地被"));
    EXPECT_EQ(later->version(), KcDbVersion::V2010);
}

TEST(DrawingConfig, IsUndoneWithTheStep)
{
    const Root root;
    Drawing drawing;
    SetAreaDimLayer(QStringLiteral("A"));
    drawing.database.undo().beginStep(QStringLiteral("SET"));
    SetAreaDimLayer(QStringLiteral("B"));
    GetDwgGlobal(VdlOpenMode::kForWrite)->AppendAreaDimInfo(QStringLiteral("麦冬"), {});
    drawing.database.undo().endStep();
    drawing.database.undo().undo();
    QString layer;
    EXPECT_TRUE(GetAreaDimLayer(layer));
    EXPECT_EQ(layer, QStringLiteral("A"));
    EXPECT_TRUE(GetDwgGlobal(VdlOpenMode::kForRead)->GetDimInfo().empty());
}

TEST(DrawingConfig, TextStyleFallsBackOnTheDrawings)
{
    const Root root;
    Drawing drawing;
    auto style = std::make_unique<KcDbTextStyleTableRecord>();
    style->initName(QStringLiteral("仿宋"));
    const KcDbObjectId id
        = KcDbWrite<KcDbSymbolTable>(drawing.database.textStyleTable())->add(std::move(style));
    EXPECT_EQ(GetVdlCurrentTextStyle(), drawing.database.currentTextStyle());
    GetDwgGlobal(VdlOpenMode::kForWrite)->SetCurrentTextStyle(QStringLiteral("仿宋"));
    EXPECT_EQ(GetVdlCurrentTextStyle(), id);
    GetDwgGlobal(VdlOpenMode::kForWrite)->SetCurrentTextStyle(QStringLiteral("gone"));
    EXPECT_EQ(GetVdlCurrentTextStyle(), drawing.database.currentTextStyle());
    KcDbObjectId found;
    EXPECT_TRUE(GetTextStyleId(QStringLiteral("仿宋"), found));
    EXPECT_EQ(found, id);
    EXPECT_FALSE(GetTextStyleId({}, found));
}

TEST(TableInfo, SaysWhatTheLayoutDocumentSays)
{
    Root root;
    QStringList names;
    EXPECT_TRUE(GetVDLTbInfoAllName(treeTable, names));
    EXPECT_EQ(
        names.mid(4, 4),
        (QStringList{ QStringLiteral("规格"), QStringLiteral("胸径"), QStringLiteral("高度"),
                      QStringLiteral("冠幅") }));

    root.write(
        QStringLiteral("VDLTbInfo.xml"),
        "<?xml version=\"1.0\" encoding=\"GBK\"?><r><Table><Name>T</Name><Item><Name>A</Name><Check>0</Check>"
        "<Item><Name>B</Name><Value>\xC3\xFB</Value></Item></Item></Table></r>");
    const auto tables = loadTableInfo();
    ASSERT_TRUE(tables && tables->size() == 1);
    EXPECT_EQ(
        tables->front().entries(),
        (std::vector<CTbInfoStd::Entry>{ { QStringLiteral("T"), { QStringLiteral("T"), true } },
                                         { QStringLiteral("A"), { QStringLiteral("A"), false } },
                                         { QStringLiteral("B"), { QStringLiteral("名"), true } } }));

    root.write(QStringLiteral("VDLTbInfo.xml"), "<r>\n<Table><Name>T</Name></r>");
    EXPECT_FALSE(loadTableInfo());
    EXPECT_TRUE(root.said.contains(QStringLiteral("line 2"))) << qPrintable(root.said);
    QFile::remove(root.path(QStringLiteral("VDLTbInfo.xml")));
    EXPECT_FALSE(GetVDLTbInfoAllName(treeTable, names));
    EXPECT_TRUE(names.isEmpty());
}

TEST(Layers, AreMadeByNameOrByKeyword)
{
    const Root root;
    Drawing drawing;
    const KcDbObjectId plain = InitStdLayer(QStringLiteral("维德-统计表"));
    ASSERT_FALSE(plain.isNull());
    EXPECT_EQ(InitStdLayer(QStringLiteral("维德-统计表")), plain);
    QString lineType;
    int color = 0;
    EXPECT_TRUE(GetLayerColor(QStringLiteral("维德-统计表"), color));
    EXPECT_TRUE(GetLayerLineType(QStringLiteral("维德-统计表"), lineType));
    EXPECT_EQ(color, 7);
    EXPECT_EQ(lineType, QStringLiteral("Continuous"));
    EXPECT_EQ(LayerKey2Name(QStringLiteral("维德-针叶林")), QStringLiteral("维德-针叶林"));

    root.write(
        QStringLiteral("VDLLayerStd.xml"),
        QByteArray("<S><LayerStd Name=\"甲\"/><LayerStd Name=\"乙\"><Layer KeyWord=\"维德-针叶林\" "
                   "Name=\"L-Conifer\" Color=\"94\" LineType=\"dashdot\" Note=\"\"/></LayerStd></S>"));
    EXPECT_EQ(LayerKey2Name(QStringLiteral("维德-针叶林"), 1), QStringLiteral("维德-针叶林")); // standard 甲
    GetDwgGlobal(VdlOpenMode::kForWrite)->SetCurrentStd(QStringLiteral("乙"));
    EXPECT_EQ(LayerKey2Name(QStringLiteral("维德-针叶林"), 1), QStringLiteral("L-Conifer"));
    const KcDbObjectId conifer = InitStdLayer(QStringLiteral("维德-针叶林"));
    EXPECT_EQ(kcdbRecordName(conifer), QStringLiteral("L-Conifer"));
    EXPECT_TRUE(GetLayerColor(QStringLiteral("L-Conifer"), color));
    EXPECT_TRUE(GetLayerLineType(QStringLiteral("L-Conifer"), lineType));
    EXPECT_EQ(color, 94);
    EXPECT_EQ(lineType, QStringLiteral("DASHDOT"));
    for (const char16_t* name : { u"", u" ", u"a|b", u"a/b", u"a\nb" })
        EXPECT_TRUE(InitStdLayer(QString::fromUtf16(name)).isNull());
}

TEST(Layers, MadeAgainAreShownAndKeepTheirColour)
{
    Drawing drawing;
    const KcDbObjectId id = CreateLayer(QStringLiteral("AREATAG"), 1);
    EXPECT_EQ(SetLayers({ QStringLiteral("areatag"), QStringLiteral("none") }, false), 1);
    QStringList names;
    EXPECT_TRUE(GetLayerNameIsOff(names));
    EXPECT_EQ(names, QStringList{ QStringLiteral("AREATAG") });
    EXPECT_EQ(CreateLayer(QStringLiteral("AREATAG"), 5), id);
    EXPECT_FALSE(GetLayerNameIsOff(names));
    EXPECT_EQ(KcDbRead<KcDbLayerTableRecord>(id)->colorIndex(), 1);
}

TEST(LineTypes, ComeFromTheFileOfTheDrawingsUnits)
{
    Root root;
    Drawing drawing;
    const auto lengthOf
        = [](KcDbObjectId id) { return KcDbRead<KcDbLinetypeTableRecord>(id)->data().patternLength; };
    const KcDbObjectId metric = InitLineType(QStringLiteral("center"));
    ASSERT_FALSE(metric.isNull());
    EXPECT_DOUBLE_EQ(lengthOf(metric), 48.0); // 30 + 6 + 6 + 6
    EXPECT_EQ(KcDbRead<KcDbLinetypeTableRecord>(metric)->data().dashes[1].length, -6.0);

    Drawing inches;
    KcDbWrite<KcDbHeader>(inches.database.headerId())
        ->set(QStringLiteral("$MEASUREMENT"), { 70, int64_t(0) });
    EXPECT_DOUBLE_EQ(lengthOf(InitLineType(QStringLiteral("CENTER"))), 2.0); // 1.25 + 0.25 + 0.25 + 0.25

    EXPECT_TRUE(InitLineType(QStringLiteral("no such")).isNull());
    root.write(QStringLiteral("acad.lin"), "*GAS,gas\nA,.5,-.2,[\"GAS\",STANDARD,S=.1],-.25\n");
    EXPECT_TRUE(InitLineType(QStringLiteral("GAS")).isNull());
    EXPECT_TRUE(root.said.contains(QStringLiteral("GAS"))) << qPrintable(root.said);
    const auto later = reopened(drawing);
    EXPECT_DOUBLE_EQ(lengthOf(same(*later, metric)), 48.0);
}

TEST(Drawing, HelpersDrawOnTheCurrentLayer)
{
    const Root root;
    core_test::Drawing drawing;
    CreateLayer(QStringLiteral("MARK"), 1);
    KcDbWrite<KcDbHeader>(drawing.database.headerId())
        ->set(QStringLiteral("$CLAYER"), { 8, QStringLiteral("MARK") });
    KcDbObjectId text, wipeout;
    ASSERT_TRUE(DrawText(QStringLiteral("12.5"), { 5, 5, 0 }, 350.0, text));
    ASSERT_TRUE(DrawWipeout({ 0, 0, 0 }, { 10, 0, 0 }, { 10, 5, 0 }, wipeout));
    EXPECT_FALSE(DrawWipeout({ 0, 0, 0 }, { 10, 0, 0 }, { 20, 0, 0 }, wipeout));
    EXPECT_TRUE(wipeout.isNull());
    const KcDbObjectId line = DrawPolyline({ { 0, 0, 2 }, { 10, 0, 2 } });
    for (const KcDbObjectId id : { text, line, NewCircle({ 1, 1, 0 }, 2.0) })
        EXPECT_EQ(KcDbRead<KcDbEntity>(id)->layer(), QStringLiteral("MARK"));

    const KcDbObjectId group = AddGroup({ line, {}, text }, QStringLiteral("*U"));
    ASSERT_FALSE(group.isNull());
    const auto later = reopened(drawing);
    const KcDbRead<KcDbGroup> again(same(*later, group));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->data().members, (std::vector{ same(*later, line), same(*later, text) }));
    EXPECT_TRUE(again->data().anonymous);
    EXPECT_TRUE(AddGroup({}, QStringLiteral("*U")).isNull());
}

TEST(Tables, TextsArePlainAndNarrowColumnsGrow)
{
    auto table = std::make_unique<KcDbTable>();
    table->setSize(1, 2);
    table->setColumnWidth(0, 10.0);
    table->setColumnWidth(1, 30.0);
    EXPECT_TRUE(SetTableTextString(0, 0, QStringLiteral("a\\b{1}"), *table));
    EXPECT_EQ(table->plainText(0, 0), QStringLiteral("a\\b{1}"));
    EXPECT_FALSE(SetTableTextString(1, 0, QStringLiteral("x"), *table));
    EXPECT_EQ(UpdateTableHeaderWidth(*table, 20.0), 1);
    EXPECT_EQ(table->columnWidth(0), 20.0);
    EXPECT_EQ(table->columnWidth(1), 30.0);
    auto added = AppendToModelSpace(std::move(table));
    EXPECT_TRUE(added.isNull()); // no drawing is open
    core_test::Drawing drawing;
    table = std::make_unique<KcDbTable>();
    table->setSize(1, 1);
    added = AppendToModelSpace(std::move(table));
    EXPECT_FALSE(KcDbRead<KcDbTable>(added)->blockTableRecord().isNull()); // it can be seen
}

TEST(Coordinates, FollowTheUserSystem)
{
    core_test::Drawing drawing;
    {
        KcDbWrite<KcDbHeader> header(drawing.database.headerId());
        header->set(QStringLiteral("$UCSORG"), { 10, KcGePoint3d{ 100, 0, 0 } });
        header->set(QStringLiteral("$UCSXDIR"), { 10, KcGePoint3d{ 0, 1, 0 } });
        header->set(QStringLiteral("$UCSYDIR"), { 10, KcGePoint3d{ -1, 0, 0 } });
    }
    EXPECT_TRUE(SetUcsPointToWcs({ 5, 2, 0 }).isEqualTo({ 98, 5, 0 }));
    EXPECT_TRUE(SetWcsPointToUcs({ 98, 5, 0 }).isEqualTo({ 5, 2, 0 }));
    EXPECT_TRUE(SetUcsVectorToWcs({ 1, 0, 0 }).isEqualTo({ 0, 1, 0 }));
    EXPECT_NEAR(SetWcsAngle2Ucs(kPi / 2), 0.0, 1e-12);
    EXPECT_NEAR(SetUcsAngle2Wcs(0.0), kPi / 2, 1e-12);
}
