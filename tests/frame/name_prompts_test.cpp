// The two name prompts: what they offer, what they take and what they remember.
#include "core/drawing_config.h"
#include "ed/session.h"
#include "frame/module.h"
#include "frame/name_prompts.h"
#include "frame/settings.h"
#include "platform/app_root.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class NamePrompts : public ::testing::Test, public ed_test::Session {
protected:
    NamePrompts()
    {
        EXPECT_TRUE(platform::fillRoot(root.path(), QStringLiteral(VERDELIS_SOURCE_DIR "/share/verdelis")));
        platform::setAppRoot(root.path());
        EXPECT_TRUE(localisedTexts().Initialize("_zh"));
    }
    ~NamePrompts() override
    {
        setNameListEditor({});
        platform::setAppRoot({});
    }

    void store(const QString& key, const QString& value) { productSettings().WriteText(section, key, value); }
    QString stored(const QString& key) { return productSettings().text(section, key); }
    void putInDictionary(const QStringList& names)
    {
        const auto config = GetDwgGlobal(VdlOpenMode::kForWrite);
        for (const QString& name : names)
            config->AppendAreaDimInfo(name, "x");
    }
    QStringList dictionary()
    {
        QStringList names;
        for (const auto& [name, text] : GetDwgGlobal(VdlOpenMode::kForRead)->GetDimInfo())
            names += name;
        return names;
    }
    QString ask(std::function<QString()> prompt, const QStringList& answers)
    {
        QString name = "?";
        run([&] { name = prompt(); }, answers);
        return name;
    }

    QTemporaryDir root;
    const QString section = "PREVIOUS DATA";
};

} // namespace

TEST_F(NamePrompts, AnswersAndWhatIsRemembered)
{
    const struct {
        const char* name;
        QString recent; ///< stored before
        QStringList dictionary; ///< of the drawing, before
        QString suggested;
        QStringList answers;
        QString result, recentAfter;
    } rows[] = {
        { "the first time, Enter takes the usual name", "", {}, "", { "" }, "地毯草", "地毯草" },
        { "the first time, a name", "", {}, "", { "草坪" }, "草坪", "草坪" },
        { "cancelled", "a,b", {}, "", { "^C" }, "", "a,b" },
        { "Enter takes the last one", "a,b", {}, "", { "" }, "a", "a,b" },
        { "a number moves to the front", "a,b,c,d", {}, "", { "3" }, "c", "c,a,b,d" },
        { "a new name drops the oldest of five", "a,b,c,d,e", {}, "", { "f" }, "f", "f,a,b,c,d" },
        { "names of the drawing fill the list up to five",
          "a,b",
          { "z", "x", "b", "y", "w" },
          "",
          { "4" },
          "x",
          "x,a,b,w,y" },
        { "a suggestion comes first", "a,b", {}, "s", { "" }, "s", "s,a,b" },
        { "a suggestion that is known keeps its place", "a,b", {}, "b", { "" }, "a", "a,b" },
        { "a suggestion alone", "", {}, "s", { "" }, "s", "s" },
        { "commas at the end", "a,b,,", {}, "", { "2" }, "b", "b,a" },
        { "a number that is not offered is a name", "a,b", {}, "", { "7" }, "7", "7,a,b" },
    };
    for (const auto& row : rows) {
        GetDwgGlobal(VdlOpenMode::kForWrite)->SetDimInfo({});
        putInDictionary(row.dictionary);
        store("sPreAreaDimName", row.recent);
        EXPECT_EQ(ask([&] { return askAreaName(row.suggested); }, row.answers), row.result) << row.name;
        EXPECT_EQ(stored("sPreAreaDimName"), row.recentAfter) << row.name;
        if (!row.result.isEmpty()) {
            EXPECT_TRUE(dictionary().contains(row.result)) << row.name;
            EXPECT_EQ(stored("nPreAreaDimNameAmount"), "5") << row.name;
        } else {
            EXPECT_EQ(dictionary(), row.dictionary) << row.name;
        }
    }
}

TEST_F(NamePrompts, RowsOfTheListBreakAfterThirteenNames)
{
    QStringList names;
    for (int i = 1; i <= 14; ++i)
        names += QStringLiteral("n%1").arg(i);
    EXPECT_TRUE(nameChoices(names, true).contains("n13(13)/\n   n14(14)/其他(Q)]<n1>:"));
    EXPECT_EQ(nameChoices({ "a" }, false), "a(1)/]<a>:");
    store("sPreAreaDimName", names.join(','));
    EXPECT_EQ(ask([] { return askAreaName(); }, { "14" }), "n14");
    EXPECT_EQ(ask([] { return askAreaName(); }, { "1" }), "n14"); // not the first name that begins with 1
}

TEST_F(NamePrompts, OthersOpensTheListEditor)
{
    store("sPreAreaDimName", "a,b");
    putInDictionary({ "m" });
    EXPECT_EQ(ask([] { return askAreaName(); }, { "q", "2" }), "b");
    EXPECT_TRUE(printed.contains("尚未提供"));

    std::optional<QStringList> edited;
    QStringList given;
    setNameListEditor([&](const QStringList& names) {
        given = names;
        return edited;
    });
    EXPECT_EQ(ask([] { return askAreaName(); }, { "Q", "" }), "b"); // the editor was cancelled
    EXPECT_EQ(given, QStringList({ "b", "a", "m" }));
    edited = QStringList{ "n1", "n2", "n3", "n4", "n5", "n6" };
    EXPECT_EQ(ask([] { return askAreaName(); }, { "Q", "6" }), "n6");
    EXPECT_EQ(stored("sPreAreaDimName"), "n6,n1,n2,n3,n4,n5");
    EXPECT_EQ(stored("nPreAreaDimNameAmount"), "6");
}

TEST_F(NamePrompts, TreeArraysOfferTheBlocksInUse)
{
    EXPECT_EQ(ask([] { return askTreeArrayName(); }, { "" }), "树阵");
    EXPECT_EQ(dictionary(), QStringList("树阵"));

    for (const char* name : { "香樟", "*U7", "桂花", "香樟" }) {
        const QString block = QString::fromUtf8(name);
        const KcDbObjectId known = kcdbFindRecord(database.blockTable(), block);
        add(std::make_unique<KcDbBlockReference>(
            KcGePoint3d{ 0, 0, 0 }, known.isNull() ? addBlock(block) : known));
    }
    EXPECT_EQ(ask([] { return askTreeArrayName(); }, { "3" }), "桂花");
    EXPECT_TRUE(printed.contains("树阵(1)/香樟(2)/桂花(3)/其他(Q)]<树阵>:")) << qPrintable(printed);
    EXPECT_EQ(dictionary(), QStringList("树阵")); // a block's name is no area name
    EXPECT_EQ(stored("sPreCircesDimName"), "桂花,树阵,香樟");
}
