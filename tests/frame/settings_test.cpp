// The settings store, the companion's getters, the language file and the split helper.

#include "frame/settings.h"

#include "core/application.h"
#include "core/language.h"
#include "core/settings_overrides.h"
#include "frame/split.h"
#include "platform/app_root.h"
#include "platform/diagnostics.h"
#include "platform/files.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class Settings : public testing::Test {
protected:
    Settings()
    {
        QDir().mkpath(m_folder.filePath("Sys"));
        platform::setAppRoot(m_folder.path());
    }
    ~Settings() override
    {
        settingsOverrides().clear();
        platform::setAppRoot({});
        platform::setDiagnosticHandler(m_before);
    }

    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    void write(const char* name, const QByteArray& bytes) const
    {
        ASSERT_TRUE(platform::writeFileAtomically(path(name), bytes));
    }
    QByteArray read(const char* name) const
    {
        return platform::readWholeFile(path(name)).value.value_or("no file");
    }

    // A store with a file of its own for each level.
    CVdlIni layered() const
    {
        CVdlIni ini(path("2.ini"));
        ini.setLayerPath(-1, path("m1.ini"));
        ini.setLayerPath(0, path("0.ini"));
        ini.setLayerPath(1, path("1.ini"));
        ini.setLayerPath(3, path("3.ini"));
        return ini;
    }

    QTemporaryDir m_folder;
    QStringList m_said;
    platform::DiagnosticHandler m_before
        = platform::setDiagnosticHandler([this](const QString& text) { m_said += text; });
};

} // namespace

TEST_F(Settings, readsTypedValues)
{
    write("a.ini", "[S]\ni=42 mm\nd=2.50x\nword=TRUE\nno=False\none=1\ntwo=2\nempty=\ns=红枫\n");
    const CVdlIni ini(path("a.ini"));
    int i = 7;
    EXPECT_TRUE(ini.ReadInt("[S]", "i", i));
    EXPECT_EQ(i, 42);
    double d = 0;
    EXPECT_TRUE(ini.ReadDouble("s", "d", d));
    EXPECT_EQ(d, 2.5);
    struct Row {
        const char* key;
        bool value;
    };
    for (const Row& row : { Row{ "word", true }, { "no", false }, { "one", true }, { "two", false } })
        for (const bool before : { true, false }) {
            bool value = before;
            EXPECT_TRUE(ini.ReadBool("S", row.key, value));
            EXPECT_EQ(value, row.value) << row.key;
        }
    EXPECT_EQ(ini.text("S", "s", "x"), "红枫");
}

TEST_F(Settings, whatIsAbsentOrEmptyLeavesTheValue)
{
    write("a.ini", "[S]\nempty=\n=odd\n");
    const CVdlIni ini(path("a.ini"));
    const CVdlIni none(path("none.ini"));
    for (const CVdlIni* store : { &ini, &none })
        for (const char* key : { "empty", "none", "" }) {
            int i = 7;
            double d = 0.1234567891;
            bool b = true;
            EXPECT_FALSE(store->ReadInt("S", key, i));
            EXPECT_FALSE(store->ReadDouble("S", key, d));
            EXPECT_FALSE(store->ReadBool("S", key, b));
            EXPECT_TRUE(i == 7 && d == 0.1234567891 && b) << key;
        }
    QString text = "default";
    EXPECT_TRUE(ini.ReadText("S", "empty", text));
    EXPECT_EQ(text, "default");
    text.clear();
    EXPECT_FALSE(ini.ReadText("S", "empty", text));
    text = "kept";
    EXPECT_FALSE(ini.ReadText("[]", "empty", text));
    EXPECT_FALSE(ini.WriteText("[]", "k", "v"));
    EXPECT_FALSE(ini.WriteText("S", "", "v"));
    EXPECT_EQ(read("a.ini"), "[S]\nempty=\n=odd\n");
    EXPECT_TRUE(m_said.isEmpty());
}

TEST_F(Settings, writesTypedValues)
{
    const CVdlIni ini(path("a.ini"));
    EXPECT_TRUE(ini.WriteInt("[S]", "i", -5));
    EXPECT_TRUE(ini.WriteDouble("S", "d", 3.5));
    EXPECT_TRUE(ini.WriteBool("S", "b", true));
    EXPECT_TRUE(ini.WriteText("S", "s", "红枫,银杏"));
    EXPECT_TRUE(ini.WriteText("S", "n", QString())); // empties the value, does not remove the key
    EXPECT_FALSE(ini.WriteDouble("S", "d", std::nan("")));
    EXPECT_EQ(read("a.ini"), "[S]\r\ni=-5\r\nd=3.500000\r\nb=1\r\ns=红枫,银杏\r\nn=\r\n");
    EXPECT_FALSE(CVdlIni(path("none/a.ini")).WriteInt("S", "i", 1));
}

TEST_F(Settings, theLevelOfAKeyChoosesItsFiles)
{
    const auto put = [&](const char* name, const char* value) {
        write(name, value ? QByteArray("[S]\niStyle=") + value + "\n" : QByteArray("[S]\n"));
    };
    struct Row {
        const char* name;
        const char* level; // null: no level key
        const char *m1, *zero, *one, *three, *two; // what the files hold, lowest precedence first
        int found;
    };
    for (const Row& row : {
             Row{ "without a level the default file wins", nullptr, "10", "20", "30", "40", "50", 50 },
             Row{ "an empty value is passed over", nullptr, "10", "20", "30", "40", "", 40 },
             Row{ "down to the lowest", nullptr, "10", nullptr, nullptr, nullptr, nullptr, 10 },
             Row{ "level 1 does not look at 3 and 2", "1", "10", "20", nullptr, "40", "50", 20 },
             Row{ "level 1 takes its own file first", "1", "10", "20", "30", "40", "50", 30 },
             Row{ "level 3 comes before 1", "3", "10", "20", "30", "40", "50", 40 },
             Row{ "level -1 looks at its own only", "-1", nullptr, "20", "30", "40", "50", -99 },
             Row{ "an unknown level is the default", "9", "10", "20", "30", "40", "50", 50 },
         }) {
        for (const bool inLowest : { true, false }) { // the level key may stand in the file of level 0 or -1
            put("m1.ini", row.m1);
            put("0.ini", row.zero);
            put("1.ini", row.one);
            put("3.ini", row.three);
            put("2.ini", row.two);
            if (row.level) {
                ASSERT_TRUE(
                    CVdlIni(path(inLowest ? "m1.ini" : "0.ini")).WriteText("S", "iStyleLevel", row.level));
            }
            EXPECT_EQ(layered().integer("S", "iStyle", -99), row.found) << row.name;
        }
    }
}

TEST_F(Settings, writesGoToTheFileOfTheLevel)
{
    struct Row {
        const char* level;
        const char* file;
    };
    for (const Row& row : { Row{ "0", "0.ini" },
                            { "1", "1.ini" },
                            { "3", "3.ini" },
                            { "2", "2.ini" },
                            { "", "2.ini" },
                            { "8", "2.ini" },
                            { "-1", "2.ini" } }) {
        for (const char* name : { "0.ini", "1.ini", "3.ini", "2.ini" })
            QFile::remove(path(name));
        write("m1.ini", QByteArray("[S]\niStyleLevel=") + row.level + "\nbStyleUnlocked=0\n");
        EXPECT_TRUE(layered().WriteInt("S", "iStyle", 5));
        EXPECT_TRUE(read(row.file).contains("iStyle=5")) << row.level;

        QString text;
        CVdlIni::TextInfo info;
        layered().ReadText("S", "iStyle", text, &info, true); // the default level whatever is stored
        EXPECT_EQ(info.level, CVdlIni::defaultLevel);
        EXPECT_FALSE(info.unlocked);
    }
}

TEST_F(Settings, theProjectFolderIsTheFileOfTheStore)
{
    write("2.ini", "[S]\ns=[projectfolder]\\a;[projectfolder]\n");
    const CVdlIni ini = layered();
    EXPECT_EQ(ini.text("S", "s"), path("2.ini") + "\\a;" + path("2.ini"));
    EXPECT_EQ(ini.text("S", "none", "[projectfolder]!"), path("2.ini") + "!");
}

TEST_F(Settings, overridesComeBeforeEveryFile)
{
    write("Sys/VERDELIS.INI", "[DRAWING SETTINGS]\niAreaUnit=2\nsEmpty=x\n");
    settingsOverrides().append(SettingsOverride{ "DRAWING SETTINGSiAreaUnit", "1" });
    settingsOverrides().append(SettingsOverride{ "DRAWING SETTINGSsEmpty", "" });
    EXPECT_EQ(productSettings().integer("[DRAWING SETTINGS]", "iAreaUnit", 0), 1);
    EXPECT_EQ(GetVerdelis("iAreaUnit"), 1);
    // Names of overrides are compared exactly, other than those in files.
    EXPECT_EQ(productSettings().integer("DRAWING SETTINGS", "IAREAUNIT", 0), 2);
    QString text = "default";
    EXPECT_TRUE(productSettings().ReadText("DRAWING SETTINGS", "sEmpty", text));
    EXPECT_EQ(text, "");
}

TEST_F(Settings, theCompanionReadsDrawingSettings)
{
    EXPECT_EQ(GetAppRoot(), m_folder.path() + "/");
    write("Sys/Verdelis.ini", "[Drawing Settings]\ndDrawingScale=50.5\nbDimType=true\niUnit=3\nempty=\n");
    double scale = 0;
    EXPECT_NE(GetVerdelis("dDrawingScale", scale), 0);
    EXPECT_EQ(scale, 50.5);
    EXPECT_EQ(GetVerdelis("bDimType"), 1);
    QString text;
    EXPECT_NE(GetVerdelis("iUnit", text), 0);
    EXPECT_EQ(text, "3");
    int value = 9;
    EXPECT_EQ(GetVerdelis("empty", value), 0);
    EXPECT_EQ(GetVerdelis("", value), 0);
    EXPECT_EQ(value, 9);
    EXPECT_EQ(GetVerdelis("none"), 0);
}

TEST_F(Settings, languageTexts)
{
    CText texts;
    EXPECT_FALSE(texts.Initialize("_zh"));
    EXPECT_TRUE(m_said.isEmpty());
    write(
        "Sys/VDLText_zh.txt",
        "\xEF\xBB\xBF; 提示\r\nPICK = \\n请选择\\s\\s\r\nDIMNAMEREPLACEDlG=a=b\\\\n\\q\\\n"
        "PICK=second\nEMPTY=\njunk\n");
    ASSERT_TRUE(texts.Initialize("_zh"));
    EXPECT_EQ(texts.GetString("PICK"), "\n请选择  ");
    EXPECT_EQ(texts.GetString("DIMNAMEREPLACEDlG"), "a=b\\n\\q\\");
    EXPECT_EQ(texts.GetString("DIMNAMEREPLACEDLG"), "");
    EXPECT_EQ(texts.GetString("EMPTY"), "");
    ASSERT_EQ(m_said.size(), 1);
    EXPECT_TRUE(m_said.front().contains(":6:")) << m_said.front().toStdString();
    write("Sys/VDLText_en.txt", "PICK=\xCA\xF7\n");
    EXPECT_FALSE(texts.Initialize("_en"));
    EXPECT_EQ(texts.GetString("PICK"), "");
}

TEST_F(Settings, theShippedFilesAreUnderstood)
{
    platform::setAppRoot(VERDELIS_SOURCE_DIR "/share/verdelis");
    CText texts;
    EXPECT_TRUE(texts.Initialize("_zh"));
    EXPECT_TRUE(texts.GetString("INPUTTHENAME").startsWith('\n'));
    double scale = 0;
    EXPECT_NE(GetVerdelis("dDrawingScale", scale), 0);
    EXPECT_EQ(scale, 100);
    EXPECT_TRUE(m_said.isEmpty()) << m_said.join("\n").toStdString();
}

TEST(Split, fields)
{
    struct Row {
        const char* text;
        QStringList fields;
    };
    for (const Row& row : {
             Row{ "", { "" } },
             Row{ "a", { "a" } },
             Row{ "a,b,,", { "a", "b", "", "" } },
             Row{ ",", { "", "" } },
             Row{ "\"a,b\",c", { "a,b", "c" } },
             Row{ "a,\"b", { "a", "b" } },
             Row{ "\"a\\\"b\",c", { "a\\\"b", "c" } },
             Row{ "\"\",x", { "", "x" } },
             Row{ "\"红\"枫,x", { "红枫", "x" } },
             Row{ "a\"b,c\"", { "a\"b", "c\"" } },
             Row{ "\"a\",", { "a", "" } },
             Row{ "\"", { "" } },
         })
        EXPECT_EQ(splitFields(row.text, u','), row.fields) << row.text;
}
