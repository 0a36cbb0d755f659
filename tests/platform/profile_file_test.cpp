// Profile files: the reading rules, what a write leaves alone, and the encodings.

#include "platform/profile_file.h"

#include "platform/diagnostics.h"
#include "platform/files.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace platform;
using Encoding = ProfileFile::Encoding;

namespace {

QByteArray utf16(const QString& text)
{
    return QByteArray("\xFF\xFE", 2)
        + QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * qsizetype(sizeof(char16_t)));
}

// "[树]\r\n名=红枫\r\n" in the code page of the home system.
const QByteArray gbkSample("[\xCA\xF7]\r\n\xC3\xFB=\xBA\xEC\xB7\xE3\r\n");

ProfileFile parsed(const QByteArray& bytes)
{
    Result<ProfileFile> file = ProfileFile::parse(bytes);
    EXPECT_TRUE(file) << file.error.toStdString();
    return file ? *file : ProfileFile();
}

class ProfileFileOnDisk : public testing::Test {
protected:
    QString path(const char* name = "a.ini") const { return m_folder.filePath(QString::fromUtf8(name)); }

    void write(const QByteArray& bytes) const { ASSERT_TRUE(writeFileAtomically(path(), bytes)); }
    QByteArray read() const { return readWholeFile(path()).value.value_or("no file"); }

    QTemporaryDir m_folder;
    QStringList m_said;
    DiagnosticHandler m_before = setDiagnosticHandler([this](const QString& text) { m_said += text; });

    ~ProfileFileOnDisk() override { setDiagnosticHandler(m_before); }
};

} // namespace

TEST(ProfileFile, readsValuesByTheRulesOfTheHomeSystem)
{
    const ProfileFile file = parsed("stray=0\n"
                                    "[ Draw ]\r\n"
                                    "  Key \t=  some text \t\r\n"
                                    ";commented=1\r\n"
                                    "  ; also=1\r\n"
                                    "double=\" kept \"\n"
                                    "single=' kept '\r"
                                    "mixed=\"half'\n"
                                    "one=\"\n"
                                    "nested=\"'x'\"\n"
                                    "empty=\n"
                                    "noequals\n"
                                    "=noname\n"
                                    "formula=a=b;c\n"
                                    "KEY=second\n"
                                    "[other] ; remark [x]\n"
                                    "key=1\n"
                                    "[DRAW]\n"
                                    "late=1");
    struct Row {
        const char* section;
        const char* key;
        std::optional<QString> value;
    };
    for (const Row& row : {
             Row{ "draw", "kEY", "some text" },
             Row{ " draw ", " key ", "some text" },
             Row{ "draw", "commented", std::nullopt },
             Row{ "draw", ";commented", std::nullopt },
             Row{ "draw", "also", std::nullopt },
             Row{ "draw", "double", " kept " },
             Row{ "draw", "single", " kept " },
             Row{ "draw", "mixed", "\"half'" },
             Row{ "draw", "one", "\"" },
             Row{ "draw", "nested", "'x'" },
             Row{ "draw", "empty", "" },
             Row{ "draw", "noequals", std::nullopt },
             Row{ "draw", "formula", "a=b;c" },
             Row{ "other", "key", "1" },
             Row{ "draw", "late", std::nullopt }, // stands in the second section of the name
             Row{ "draw", "stray", std::nullopt },
             Row{ "none", "key", std::nullopt },
         })
        EXPECT_EQ(file.value(row.section, row.key), row.value) << row.section << " " << row.key;
    EXPECT_EQ(file.sections(), QStringList({ "Draw", "other", "DRAW" }));
    EXPECT_EQ(file.keys("other"), QStringList({ "key" }));
}

TEST(ProfileFile, aWriteTouchesOnlyItsLine)
{
    struct Row {
        const char* name;
        QByteArray before;
        const char* section;
        const char* key;
        const char* value;
        QByteArray after;
    };
    for (const Row& row : {
             Row{ "keeps the way the key is written", "[A]\n Key = 1 ; x\nb=2", "a", "KEY", "9",
                  "[A]\n Key = 9\nb=2" },
             Row{ "fills an empty value", "[A]\nk=\n", "A", "k", "v", "[A]\nk=v\n" },
             Row{ "new key goes before the blank line and the next section's comment",
                  "; top\r\n[A]\r\nk=1\r\n\r\n; about B\r\n[B]\r\nk=2\r\n", "A", "n", "3",
                  "; top\r\n[A]\r\nk=1\r\nn=3\r\n\r\n; about B\r\n[B]\r\nk=2\r\n" },
             Row{ "new key in an empty section", "[A]\n\n[B]\n", "A", "n", "3", "[A]\nn=3\n\n[B]\n" },
             Row{ "new section ends an unfinished last line", "[A]\nk=1", "B", "n", "3",
                  "[A]\nk=1\n[B]\nn=3\n" },
             Row{ "an empty file gets the home system's line ends", "", "B", "n", "3", "[B]\r\nn=3\r\n" },
             Row{ "only the first of equal keys", "[A]\nk=1\nk=2\n", "A", "k", "3", "[A]\nk=3\nk=2\n" },
             Row{ "mixed line ends stay", "[A]\r\nk=1\nb=2\r[C]\r\n", "A", "b", "3",
                  "[A]\r\nk=1\nb=3\r[C]\r\n" },
         }) {
        ProfileFile file = parsed(row.before);
        EXPECT_TRUE(file.setValue(row.section, row.key, row.value)) << row.name;
        EXPECT_EQ(file.bytes(), row.after) << row.name;
    }
}

TEST(ProfileFile, valuesComeBackAsTheyWereSet)
{
    for (const char* value : { "", " ", "  lead", "trail \t", "\"quoted\"", "'q'", "\"", "\"\"", "a\"b",
                               "[x]", ";c", "=", "红枫,银杏" }) {
        ProfileFile file;
        EXPECT_TRUE(file.setValue("S", "k", value)) << value;
        EXPECT_EQ(parsed(file.bytes()).value("s", "k"), QString(value)) << value;
    }
}

TEST(ProfileFile, refusesWhatWouldReadAsSomethingElse)
{
    struct Row {
        const char* section;
        const char* key;
        QString value;
    };
    for (const Row& row :
         { Row{ "S", "k", "a\nb" }, Row{ "S", "k", "a\r[X]" }, Row{ "S", "k", QString(1, QChar(0)) },
           Row{ "S", "a=b", "1" }, Row{ "S", ";k", "1" }, Row{ "S", "[k]", "1" }, Row{ "S", "k\nx", "1" },
           Row{ "S", " ", "1" }, Row{ "", "k", "1" }, Row{ "a]b", "k", "1" }, Row{ "S\n", "k", "1" } }) {
        ProfileFile file = parsed("[S]\nk=old\n");
        const Status status = file.setValue(row.section, row.key, row.value);
        EXPECT_FALSE(status.error.isEmpty()) << row.section << "/" << row.key;
        EXPECT_EQ(file.bytes(), "[S]\nk=old\n");
    }
}

TEST(ProfileFile, removesKeysAndSections)
{
    ProfileFile file = parsed("[A]\nk=1\nb=2\nK=3\n\n; about B\n[B]\nk=4\n[a]\nk=5\n");
    file.removeKey("a", "k");
    EXPECT_EQ(file.bytes(), "[A]\nb=2\n\n; about B\n[B]\nk=4\n[a]\nk=5\n");
    file.removeSection("A");
    EXPECT_EQ(file.bytes(), "; about B\n[B]\nk=4\n");
    file.removeSection("none");
    file.removeKey("B", "none");
    EXPECT_EQ(file.bytes(), "; about B\n[B]\nk=4\n");
}

TEST(ProfileFile, keepsItsEncoding)
{
    const QString text = "[树]\r\n名=红枫\r\n";
    struct Row {
        const char* name;
        QByteArray before;
        Encoding encoding;
        QByteArray after; // with the name changed to 银杏
    };
    for (const Row& row : {
             Row{ "UTF-16", utf16(text), Encoding::Utf16, utf16("[树]\r\n名=银杏\r\n") },
             Row{ "UTF-8", text.toUtf8(), Encoding::Utf8, QByteArray("[树]\r\n名=银杏\r\n") },
             Row{ "UTF-8 with mark", "\xEF\xBB\xBF" + text.toUtf8(), Encoding::Utf8WithMark,
                  QByteArray("\xEF\xBB\xBF[树]\r\n名=银杏\r\n") },
             Row{ "GBK", gbkSample, Encoding::Gbk,
                  QByteArray("[\xCA\xF7]\r\n\xC3\xFB=\xD2\xF8\xD0\xD3\r\n") },
             // 0x8139EF30 is U+3400, outside the two-byte set.
             Row{ "GB18030", gbkSample + "x=\x81\x39\xEF\x30\r\n", Encoding::Gb18030,
                  QByteArray("[\xCA\xF7]\r\n\xC3\xFB=\xD2\xF8\xD0\xD3\r\nx=\x81\x39\xEF\x30\r\n") },
         }) {
        ProfileFile file = parsed(row.before);
        EXPECT_EQ(file.encoding(), row.encoding) << row.name;
        EXPECT_EQ(file.value("树", "名"), QString("红枫")) << row.name;
        EXPECT_EQ(file.bytes(), row.before) << row.name;
        EXPECT_TRUE(file.setValue("树", "名", "银杏"));
        EXPECT_EQ(file.bytes(), row.after) << row.name;
    }
}

TEST(ProfileFile, goesToUtf16WhenItsEncodingCannotHoldAValue)
{
    ProfileFile file = parsed(gbkSample);
    EXPECT_TRUE(file.setValue("树", "名", "𠀀 🌳"));
    const ProfileFile again = parsed(file.bytes());
    EXPECT_EQ(again.encoding(), Encoding::Utf16);
    EXPECT_EQ(again.value("树", "名"), QString("𠀀 🌳"));

    // This GBK character happens to be valid UTF-8: written so, it would be read as something else.
    ProfileFile ambiguous = parsed("[a]\nk=\xCA\xF7\n");
    ASSERT_EQ(ambiguous.encoding(), Encoding::Gbk);
    EXPECT_TRUE(ambiguous.setValue("a", "k", "模"));
    EXPECT_EQ(parsed(ambiguous.bytes()).value("a", "k"), QString("模"));

    ProfileFile half = parsed("[a]\nk=1\n");
    const QString single(1, QChar(0xD83C));
    EXPECT_TRUE(half.setValue("a", "k", single));
    EXPECT_EQ(parsed(half.bytes()).value("a", "k"), single);
}

TEST_F(ProfileFileOnDisk, leavesUnreadableFilesAloneAndSaysWhy)
{
    for (const QByteArray& bytes :
         { QByteArray("[a]\nk=\xFF\xFF\n"), QByteArray("\xEF\xBB\xBF[a]\nk=\xCA\xF7\n"),
           QByteArray("\xFF\xFE[", 3), QByteArray("\xFE\xFF\0[", 4), QByteArray("[\0a\0]\0", 6) }) {
        write(bytes);
        m_said.clear();
        EXPECT_FALSE(WritePrivateProfileStringW("a", "k", "1", path()));
        EXPECT_EQ(read(), bytes);
        ASSERT_EQ(m_said.size(), 1) << bytes.toHex().toStdString();
        EXPECT_TRUE(m_said.front().contains(path()));
        QString value = "old";
        EXPECT_EQ(GetPrivateProfileStringW("a", "k", "fallback", value, 4096, path()), 8);
        EXPECT_EQ(value, "fallback");
    }
}

TEST_F(ProfileFileOnDisk, readsThroughTheFunctions)
{
    const QString longValue(5000, u'x');
    write("[A]\r\nlong=" + longValue.toUtf8() + "\r\nempty=\r\nk=1\r\n[B]\r\n");
    struct Row {
        QString section, key, fallback;
        int size;
        QString value;
    };
    for (const Row& row : {
             Row{ "A", "long", "", 4096, QString(4095, u'x') },
             Row{ "A", "long", "", 3, "xx" },
             Row{ "A", "long", "", 0, "" },
             Row{ "A", "empty", "d", 4096, "" },
             Row{ "A", "none", " d ", 4096, " d" },
             Row{ {}, "k", "d", 4096, QStringLiteral("A\0B\0") },
             Row{ "A", {}, "d", 4096, QStringLiteral("long\0empty\0k\0") },
         }) {
        QString value;
        EXPECT_EQ(
            GetPrivateProfileStringW(row.section, row.key, row.fallback, value, row.size, path()),
            row.value.size());
        EXPECT_EQ(value, row.value) << row.key.toStdString();
    }
    QString value = "old";
    EXPECT_EQ(GetPrivateProfileStringW("A", "k", "", value, 4096, path("missing.ini")), 0);
    EXPECT_EQ(value, "");
    EXPECT_TRUE(m_said.isEmpty()) << m_said.join("\n").toStdString();
}

TEST_F(ProfileFileOnDisk, writesThroughTheFunctions)
{
    EXPECT_TRUE(WritePrivateProfileStringW("A", "k", "红枫", path()));
    EXPECT_EQ(read(), "[A]\r\nk=红枫\r\n");
    // The same file by a name of the home system.
    QString value;
    EXPECT_EQ(GetPrivateProfileStringW("a", "K", "", value, 4096, m_folder.path() + "\\\\A.INI"), 2);
    EXPECT_TRUE(WritePrivateProfileStringW("A", "x", "1", m_folder.path() + "\\A.INI"));
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), QStringList("a.ini"));
    EXPECT_TRUE(WritePrivateProfileStringW("A", "k", {}, path()));
    EXPECT_EQ(read(), "[A]\r\nx=1\r\n");
    EXPECT_TRUE(WritePrivateProfileStringW("A", {}, {}, path()));
    EXPECT_EQ(read(), "");
    EXPECT_TRUE(m_said.isEmpty());
    EXPECT_FALSE(WritePrivateProfileStringW("A", "k", "1", path("no folder/a.ini")));
    ASSERT_EQ(m_said.size(), 1);
    EXPECT_TRUE(m_said.front().contains("no such file or folder"));
}
