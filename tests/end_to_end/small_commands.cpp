// VDHELP, VDLABOUT and DRAWINGSETTING through the program.
#include "support.h"

#include "core/drawing_config.h"
#include "frame/command_table.h"

#include <QDirIterator>

using namespace end_to_end;

namespace {

class SmallCommands : public EndToEnd {
protected:
    // A value of the settings file as it stands there.
    QString stored(const QString& key) const
    {
        QFile file(folder.filePath("root/Sys/VERDELIS.INI"));
        if (!file.open(QIODevice::ReadOnly))
            return "no file";
        for (const QString& line : QString::fromUtf8(file.readAll()).split('\n'))
            if (line.startsWith(key + '='))
                return line.mid(key.size() + 1).trimmed();
        return "no key";
    }
    void store(const QString& key, const QString& value) const
    {
        QFile file(folder.filePath("root/Sys/VERDELIS.INI"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        QString text = QString::fromUtf8(file.readAll());
        text.replace(QRegularExpression("(?m)^" + key + "=.*$"), key + "=" + value);
        file.resize(0);
        file.write(text.toUtf8());
    }
};

} // namespace

TEST_F(SmallCommands, HelpIsFoundBelowTheRoot)
{
    Outcome outcome = play(plan, { "VDHELP" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains("/root/Sys/VdHelp/index.html")) << outcome.out;
    EXPECT_TRUE(bytes(result) == bytes(plan));

    QFile help(folder.filePath("root/Sys/vdhelp.CHM"));
    ASSERT_TRUE(help.open(QIODevice::WriteOnly));
    help.close();
    outcome = play(plan, { "VDHELP" });
    EXPECT_TRUE(outcome.out.contains("Help: " + help.fileName())) << outcome.out;

    help.remove();
    ASSERT_TRUE(QDir(folder.filePath("root/Sys/VdHelp")).removeRecursively());
    outcome = play(plan, { "VDHELP" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains("/root/Sys/VdHelp.chm is missing")) << outcome.out;
}

// The manual that users open must know every command, and must not lead nowhere.
TEST_F(SmallCommands, TheManualHasAPageForEachCommand)
{
    const QDir manual(QStringLiteral(VERDELIS_SOURCE_DIR "/share/verdelis/Sys/VdHelp"));
    const QString index = QString::fromUtf8(bytes(manual.filePath("index.html")));
    for (const CommandRow& row : commandTable()) {
        const QString name = QString::fromUtf16(row.name);
        EXPECT_TRUE(index.contains("href=\"" + name + ".html\"")) << name;
        EXPECT_TRUE(QString::fromUtf8(bytes(manual.filePath(name + ".html"))).contains("<h1>" + name))
            << name;
    }
    static const QRegularExpression link("(?:href|src)=\"([^\"#]+)\"");
    for (const QString& page : manual.entryList({ "*.html" }))
        for (auto links = link.globalMatch(QString::fromUtf8(bytes(manual.filePath(page))));
             links.hasNext();) {
            const QString target = links.next().captured(1);
            EXPECT_TRUE(manual.exists(target)) << page << " leads to " << target;
        }
}

TEST_F(SmallCommands, AboutNamesProductAndVersion)
{
    const Outcome outcome = play(plan, { "VDLABOUT", "!list", "!ok" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.contains("\"dialog\":\"About Verdelis\"")) << outcome.out;
    EXPECT_TRUE(outcome.out.contains(QRegularExpression("\"caption\":\"Verdelis [^\"]*\""))) << outcome.out;
    EXPECT_TRUE(outcome.out.contains(QRegularExpression("\"caption\":\"20\\d{6}\""))) << outcome.out;
    EXPECT_TRUE(bytes(result) == bytes(plan));
}

TEST_F(SmallCommands, TheProgramListsThem)
{
    const Outcome outcome = program({ "commands" });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.out.contains(QRegularExpression("VDL_MAIN\n  VDHELP  +open the help file\n")));
}

TEST_F(SmallCommands, SettingsAreStoredInFileAndDrawing)
{
    const Outcome outcome = play(
        plan,
        { "DRAWINGSETTING", "!set dDrawingScale 250", "!set dTextHeight 2.36", "!set 表格字高 5",
          "!set iDrawingUnit m", "!set sTextStyle Standard", "!set 标注间隔符 破折号",
          "!check bAutoAlign off", "!check bTextBackFill on", "!set iDimUnit 丛", "!check bTreeDimLayer on",
          "!set sTreeDimLayer 乔木", "!set iAreaDigit 9", "!set 面积单位 \"\"", "!ok" });
    ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.err;
    const std::pair<const char*, const char*> rows[] = {
        { "dDrawingScale", "250" }, { "dTextHeight", "2.4" }, { "dTableTextHeight", "5.0" },
        { "iDrawingUnit", "3" },    { "iDimStyle", "2" },     { "bAutoAlign", "0" },
        { "bDimGrouping", "1" },    { "bTextBackFill", "1" }, { "iDimType", "1" },
        { "iDimUnit", "2" },        { "bTreeDimLayer", "1" }, { "iAreaDigit", "9" },
        { "iAreaUnit", "1" },       { "bAreaDimLayer", "0" },
    };
    for (const auto& [key, value] : rows)
        EXPECT_EQ(stored(key), value) << key;
    const auto drawing = open(result);
    QString text;
    bool fills = false;
    EXPECT_TRUE(GetTreeDimLayer(text, drawing.get()));
    EXPECT_EQ(text, "乔木");
    EXPECT_FALSE(GetAreaDimLayer(text, drawing.get())); // its switch is off
    EXPECT_TRUE(GetTextBackFill(fills, drawing.get()));
    EXPECT_TRUE(fills);
    EXPECT_TRUE(GetCurrentTextStyle(text, drawing.get()));
    EXPECT_EQ(text, "Standard");

    // What the dialog shows next time is what was stored; cancelling stores nothing.
    const QByteArray before = bytes(folder.filePath("root/Sys/VERDELIS.INI"));
    const QString kept = folder.filePath("kept.dxf");
    ASSERT_TRUE(QFile::copy(result, kept));
    const Outcome again = play(kept, { "DRAWINGSETTING", "!list", "!set dTextHeight 9", "!cancel" });
    EXPECT_TRUE(again.out.contains("\"name\":\"dTextHeight\",\"value\":\"2.4\"")) << again.out;
    EXPECT_TRUE(again.out.contains("\"name\":\"sTreeDimLayer\",\"value\":\"乔木\"")) << again.out;
    EXPECT_EQ(bytes(folder.filePath("root/Sys/VERDELIS.INI")), before);
}

TEST_F(SmallCommands, SettingsRefuseWhatCannotBe)
{
    const struct {
        QString name, typed, message, key, kept;
    } rows[] = {
        { "iAreaDigit", "10", "面积位数: 只能输入0~9之间的整数!", "iAreaDigit", "1" },
        { "iAreaDigit", "-1", "面积位数: 只能输入0~9之间的整数!", "iAreaDigit", "1" },
        { "iAreaDigit", "1.5", "面积位数: 只能输入0~9之间的整数!", "iAreaDigit", "1" },
        { "dDrawingScale", "0", "绘图比例: 请输入大于0的数!", "dDrawingScale", "100" },
        { "dDrawingScale", "1e999", "绘图比例: 请输入大于0的数!", "dDrawingScale", "100" },
        { "dTextHeight", "0.04", "标注字高: 请输入大于0.0的浮点数!", "dTextHeight", "3.5" },
        { "dTextHeight", "nan", "标注字高: 请输入大于0.0的浮点数!", "dTextHeight", "3.5" },
        { "dTableTextHeight", "", "表格字高: 请输入大于0.0的浮点数!", "dTableTextHeight", "3.5" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE((row.name + " " + row.typed).toStdString());
        const Outcome outcome
            = play(plan, { "DRAWINGSETTING", "!set " + row.name + " \"" + row.typed + "\"", "!ok" });
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.out.count(row.message), 1) << outcome.out;
        EXPECT_EQ(stored(row.key).toDouble(), row.kept.toDouble());
    }
}

TEST_F(SmallCommands, DamagedSettingsOpenAsDefaults)
{
    play(plan, { "REGEN" }); // fills the root
    store("dDrawingScale", "0");
    store("dTextHeight", "-2");
    store("iArcType", "7");
    store("iAreaDigit", "99");
    const Outcome outcome = play(plan, { "DRAWINGSETTING", "!list", "!cancel" });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    for (const char* shown :
         { "\"name\":\"dDrawingScale\",\"value\":\"100\"", "\"name\":\"dTextHeight\",\"value\":\"3.5\"",
           "\"name\":\"iArcType\",\"value\":\"间隔同向\"", "\"name\":\"iAreaDigit\",\"value\":\"9\"" })
        EXPECT_TRUE(outcome.out.contains(shown)) << shown << outcome.out;

    QFile::remove(folder.filePath("root/Sys/VERDELIS.INI"));
    const Outcome without = play(plan, { "DRAWINGSETTING", "!list", "!set dTextHeight 4", "!ok" });
    EXPECT_EQ(without.status, 0) << without.out << without.err;
    EXPECT_TRUE(without.out.contains("\"name\":\"dTextHeight\",\"value\":\"\"")) << without.out;
    EXPECT_FALSE(QFile::exists(folder.filePath("root/Sys/VERDELIS.INI")));
    EXPECT_TRUE(bytes(result) == bytes(plan));
}
