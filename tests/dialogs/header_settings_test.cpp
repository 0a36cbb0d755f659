// The header settings of the statistics tables: by lines and by keys, what the drawing keeps, and what a
// table makes of it.
#include "../core/support.h"
#include "support.h"

#include "controls/tree_list.h"
#include "core/drawing_config.h"
#include "frame/module.h"
#include "platform/message_box.h"
#include "statistics/commands.h"
#include "statistics/header_settings.h"
#include "statistics/table_builder.h"
#include "statistics/table_layout.h"

#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

const QString kTrees = QStringLiteral("乔灌数量统计表"), kAreas = QStringLiteral("灌木地被面积表");

// Mouse and keys answer the dialogs, nobody the prompts.
class Hands : public KcEdInputSource {
public:
    void refused(const KcEdLine&, const QString&) override { }
    bool drivesDialogs() const override { return false; }

protected:
    KcEdEvent read(const KcEdPrompt&) override { return KcEdEnd{}; }
};

class HeaderSettings : public ::testing::Test {
protected:
    HeaderSettings() { localisedTexts().Initialize(QStringLiteral("_zh")); }

    int play(const QString& table, const QStringList& lines)
    {
        return session.run([=] { editTableHeaders(table); }, lines);
    }
    CTbInfoStd shown(const QString& table) const
    {
        return GetDwgGlobal(VdlOpenMode::kForRead)->GetTbInfoStd(table).value();
    }
    static STbInfoDesc desc(const CTbInfoStd& info, const QString& key)
    {
        const STbInfoDesc* const found = info.FindByName(key);
        return found ? *found : STbInfoDesc{ QStringLiteral("missing"), false };
    }
    // What the lines of headers of a new table say, from left to right.
    QStringList headersOfTable(const QString& name) const
    {
        TableSettings settings = readTableSettings();
        return createTable(settings, name) ? texts(*settings.table) : QStringList{ "no table" };
    }
    // All texts from left to right, row by row.
    static QStringList texts(const KcDbTable& table)
    {
        QStringList texts;
        for (int row = 0; row < table.numRows(); ++row)
            for (int column = 0; column < table.numColumns(); ++column)
                if (const QString text = table.plainText(row, column); !text.isEmpty())
                    texts += text;
        return texts;
    }

    core_test::Root root;
    ed_test::Session session;
};

} // namespace

TEST_F(HeaderSettings, AreKeptWithTheDrawingAndDrawn)
{
    const CTbInfoStd before = shown(kTrees);
    ASSERT_EQ(
        play(
            kTrees,
            { "!tree 拉丁名 off", "!tree 胸径 off", "!cell 0 列表名称 苗木表", "!cell 3 列表名称 树种",
              "!ok" }),
        0)
        << session.errors;
    const CTbInfoStd after = shown(kTrees);
    EXPECT_EQ(desc(after, kTrees).text, "苗木表");
    EXPECT_EQ(desc(after, "名称"), (STbInfoDesc{ "树种", true }));
    EXPECT_FALSE(desc(after, "拉丁名").visible);
    EXPECT_FALSE(desc(after, "胸径").visible);
    EXPECT_TRUE(desc(after, "规格").visible); // an item is ticked by itself
    EXPECT_TRUE(desc(after, "高度").visible);
    const QStringList heads = headersOfTable(kTrees);
    EXPECT_EQ(heads.value(0), "苗木表");
    EXPECT_TRUE(heads.contains("树种") && heads.contains("高度(m)")) << heads.join(' ');
    EXPECT_FALSE(heads.contains("拉丁名") || heads.contains("胸径(cm)")) << heads.join(' ');

    // The next time it shows what was kept; one step takes it back.
    ASSERT_EQ(play(kTrees, { "!tree 拉丁名 on", "!cancel" }), 0);
    EXPECT_EQ(shown(kTrees).entries(), after.entries());
    ASSERT_EQ(play(kTrees, { "!tree 规格 off", "!ok" }), 0);
    EXPECT_FALSE(desc(shown(kTrees), "规格").visible);
    EXPECT_TRUE(desc(shown(kTrees), "高度").visible);
    EXPECT_EQ(play(kTrees, { "!tree 高度 off", "!cancel" }), 1); // greyed
    EXPECT_EQ(session.run({ "U", "U" }), 0);
    EXPECT_EQ(shown(kTrees).entries(), before.entries());
}

TEST_F(HeaderSettings, OfferWhatTheDocumentOffers)
{
    root.write(
        "VDLTbInfo.xml",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<TbInfo>\n<Table><Name>灌木地被面积表</Name>"
        "<Item><Name>图例</Name><Check>0</Check></Item><Item><Name>序号</Name><Visible>0</Visible></Item>"
        "<Item><Name>名称</Name></Item><Item><Name>面积</Name></Item></Table></TbInfo>\n");
    MarkupDocument layout = *headersOfDrawing(kAreas);
    CHeaderSettingDlg dialog(kAreas, layout);
    auto* list = dialog.findChild<CTreeListCtrl*>();
    ASSERT_EQ(list->topLevelItemCount(), 1);
    ASSERT_EQ(list->topLevelItem(0)->childCount(), 2);
    EXPECT_EQ(list->topLevelItem(0)->child(0)->text(0), "名称");
    list->topLevelItem(0)->setText(1, "面积");
    EXPECT_TRUE(list->tickItem("名称", false).isEmpty());
    dialog.accept();
    MarkupDocument kept = dialog.document();
    ASSERT_TRUE(findTable(kept, kAreas));
    EXPECT_EQ(childText(kept, "Value"), "面积");
    QStringList rows;
    kept.IntoElem();
    while (kept.FindElem("Item"))
        rows += childText(kept, "Name") + childText(kept, "Visible") + '/' + childText(kept, "Check");
    EXPECT_EQ(rows.join(' '), "图例/0 序号0/ 名称/0 面积/");
    EXPECT_EQ(layout.GetDoc(), headersOfDrawing(kAreas)->GetDoc()); // a copy was changed

    EXPECT_EQ(play("no such table", {}), 0);
    EXPECT_TRUE(session.printed.contains("表格布局文件中没有“no such table”")) << session.printed;
    root.write("VDLTbInfo.xml", "");
    ASSERT_TRUE(QFile::remove(root.path("VDLTbInfo.xml")));
    EXPECT_EQ(play(kAreas, {}), 0);
    EXPECT_TRUE(session.printed.contains("无法读取")) << session.printed;
}

// A table without a column, a heading without a text: neither can be drawn.
TEST_F(HeaderSettings, LeaveSomethingToBeDrawn)
{
    const CTbInfoStd before = shown(kAreas);
    QStringList all;
    for (const char* name : { "序号", "名称", "拉丁名", "规格", "面积", "单位", "备注" })
        all += QStringLiteral("!tree %1 off").arg(QString::fromUtf8(name));
    QString refusal;
    const auto usual = platform::setMessageBoxHandler([&](const platform::MessageBoxRequest& request) {
        refusal = request.caption + ": " + request.text;
        return platform::MessageBoxAnswer::Ok;
    });
    EXPECT_EQ(play(kAreas, all + QStringList{ "!ok", "!cancel" }), 0) << session.errors;
    platform::setMessageBoxHandler(usual);
    EXPECT_EQ(refusal, "表头设置: 请至少勾选一列。");
    EXPECT_EQ(shown(kAreas).entries(), before.entries());

    ASSERT_EQ(play(kAreas, { "!cell 1 列表名称 No.", "!cell 2 列表名称", "!ok" }), 0) << session.errors;
    EXPECT_EQ(desc(shown(kAreas), "序号").text, "No.");
    ASSERT_EQ(play(kAreas, { "!cell 1 列表名称 \" \"", "!ok" }), 0) << session.errors;
    EXPECT_EQ(shown(kAreas).entries(), before.entries()); // back to their names
}

// What a drawing holds is written into the document and read from it: marks of markup must survive that, and
// what the document has no item for must stay. Without a change the drawing is not touched.
TEST_F(HeaderSettings, LoseNothing)
{
    CTbInfoStd held = shown(kTrees);
    const STbInfoDesc strange{ QStringLiteral("<a & \"b\"> ]]>"), true },
        gone{ QStringLiteral("树龄"), false };
    held.Set("名称", strange);
    held.Set("树龄", gone);
    GetDwgGlobal(VdlOpenMode::kForWrite)->SetTbInfoStd(held);
    const uint64_t changes = session.database.changeCount();
    ASSERT_EQ(play(kTrees, { "!ok" }), 0) << session.errors;
    EXPECT_EQ(session.database.changeCount(), changes);
    ASSERT_EQ(play(kTrees, { "!tree 备注 off", "!ok" }), 0) << session.errors;
    EXPECT_EQ(desc(shown(kTrees), "名称"), strange);
    EXPECT_EQ(desc(shown(kTrees), "树龄"), gone);
    EXPECT_FALSE(desc(shown(kTrees), "备注").visible);
    EXPECT_TRUE(headersOfTable(kTrees).contains(strange.text)) << headersOfTable(kTrees).join(' ');
}

// From the dialog to a table in a file that is opened again and counted anew: a column that is left out takes
// nothing with it, and the program knows the others by their names, whatever stands over them.
TEST_F(HeaderSettings, CountIntoWhatIsShown)
{
    KcDbObjectId last;
    const auto plant = [&](const QString& name, int count) {
        const KcDbObjectId block = session.addBlock(name);
        while (count-- > 0)
            last = session.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, block));
    };
    plant("桂花", 1);
    plant("香樟", 3);
    QStringList lines{ "!cell 0 列表名称 苗木表", "!cell 3 列表名称 树种", "!cell 9 列表名称 株数" };
    for (const char* name : { "图例", "拉丁名", "规格", "备注" })
        lines += QStringLiteral("!tree %1 off").arg(QString::fromUtf8(name));
    ASSERT_EQ(play(kTrees, lines + QStringList{ "!ok" }), 0) << session.errors;
    ASSERT_EQ(session.run([] { countPlantsIntoTable(); }, { "ALL", "", "0,0" }), 0) << session.errors;

    std::string bytes;
    ASSERT_TRUE(dxf::saveDrawing(session.database, bytes).ok);
    auto reopened = std::make_unique<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    ASSERT_TRUE(dxf::readDrawing(bytes, *reopened).ok);
    KcApDocument& document = kcDocManagerPtr()->open(std::move(reopened));
    KcDbObjectId table;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(document.database().modelSpace()))
        if (KcDbRead<KcDbTable>(id))
            table = id;
    EXPECT_EQ(
        texts(*KcDbRead<KcDbTable>(table)).join(' '), "苗木表 序号 树种 株数 单位 1 桂花 1 株 2 香樟 3 株");
    ASSERT_EQ(session.run([] { updatePlantTables(); }, { "ALL", "R " + session.handle(last), "", "" }), 0)
        << session.errors;
    EXPECT_EQ(
        texts(*KcDbRead<KcDbTable>(table)).join(' '), "苗木表 序号 树种 株数 单位 1 桂花 1 株 2 香樟 2 株");
    kcDocManagerPtr()->close(document);
}

// OK takes what is being typed; so does any way out of the editor but Escape.
TEST_F(HeaderSettings, TakeWhatIsBeingTyped)
{
    CHeaderSettingDlg dialog(kTrees, *headersOfDrawing(kTrees));
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    auto* list = dialog.findChild<CTreeListCtrl*>();
    QTest::keyClick(list, Qt::Key_F2); // the title
    ASSERT_NE(QApplication::focusWidget(), list);
    QTest::keyClicks(QApplication::focusWidget(), "Trees");
    dialog.accept();
    MarkupDocument kept = dialog.document();
    ASSERT_TRUE(findTable(kept, kTrees));
    EXPECT_EQ(childText(kept, "Value"), "Trees");
}

// As a user does: a key opens the dialog, and keys do everything in it.
TEST_F(HeaderSettings, AreReachedAndEditedByKeys)
{
    Hands hands;
    const KcEdSourceScope scope(hands);
    QPushButton opener;
    bool isKept = false;
    QObject::connect(&opener, &QPushButton::clicked, [&] { isKept = editTableHeaders(kTrees, &opener); });
    opener.show();
    QTimer::singleShot(0, [] {
        auto* dialog = dynamic_cast<CHeaderSettingDlg*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        EXPECT_EQ(dialog->windowTitle(), "表头设置");
        auto* list = dialog->findChild<CTreeListCtrl*>();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
        EXPECT_EQ(list->columnWidth(0), list->width() / 2);
        EXPECT_EQ(list->columnWidth(1), list->width() / 2 - 30);
        dialog->resize(dialog->width() + 200, dialog->height() + 100);
        EXPECT_EQ(list->columnWidth(0), list->width() / 2);

        const auto key = [](Qt::Key code) {
            QTest::keyClick(QApplication::focusWidget(), code);
            QApplication::processEvents(); // an editor takes its text then
        };
        EXPECT_EQ(QApplication::focusWidget(), list);
        for (int row = 0; row < 4; ++row) // from the title to 拉丁名
            key(Qt::Key_Down);
        EXPECT_EQ(list->currentItem()->text(0), "拉丁名");
        key(Qt::Key_Space);
        key(Qt::Key_Up);
        key(Qt::Key_F2);
        ASSERT_NE(QApplication::focusWidget(), list);
        QTest::keyClicks(QApplication::focusWidget(), "plant");
        key(Qt::Key_Escape); // leaves the text alone, and the dialog open
        EXPECT_EQ(list->currentItem()->text(1), "名称");
        ASSERT_TRUE(dialog->isVisible());
        key(Qt::Key_F2);
        QTest::keyClicks(QApplication::focusWidget(), "plant");
        key(Qt::Key_Return);
        EXPECT_EQ(list->currentItem()->text(1), "plant");
        ASSERT_TRUE(dialog->isVisible());
        key(Qt::Key_Return);
    });
    QTest::keyClick(&opener, Qt::Key_Space);
    EXPECT_TRUE(isKept);
    EXPECT_EQ(desc(shown(kTrees), "名称").text, "plant");
    EXPECT_FALSE(desc(shown(kTrees), "拉丁名").visible);
}
