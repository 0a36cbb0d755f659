// Texts in drawing files: code pages, escapes, characters that a code page lacks.
#include "support.h"

#include "db/block_table_record.h"
#include "db/text.h"

using namespace drawing_test;

namespace {

std::string drawingWith(const std::string& version, const std::string& page, const std::string& text)
{
    std::string file = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n" + version + '\n';
    if (!page.empty())
        file += "9\n$DWGCODEPAGE\n3\n" + page + '\n';
    return file + "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nTEXT\n5\n2A\n8\n0\n10\n0\n20\n0\n40\n2.5\n1\n"
        + text + "\n0\nTEXT\n5\n2B\n8\n0\n10\n0\n20\n9\n40\n2.5\n1\nother\n0\nENDSEC\n0\nEOF\n";
}

QString textOf(const KcDbDatabase& drawing, KcDbHandle handle)
{
    const KcDbRead<KcDbText> text(drawing.findHandle(handle));
    return text ? text->textString() : QStringLiteral("(no text)");
}

} // namespace

TEST(DrawingTexts, ReadByTheirCodePage)
{
    const struct {
        const char *name, *version, *page, *bytes, *text;
    } rows[] = {
        { "GBK", "AC1015", "ANSI_936", "\xD2\xF8\xD0\xD3", "银杏" },
        { "GBK in small letters", "AC1018", "ansi_936", "\xD2\xF8\xD0\xD3", "银杏" },
        { "Big5", "AC1015", "ANSI_950", "\xBB\xC8\xA7\xF6", "銀杏" },
        { "Cyrillic", "AC1015", "ANSI_1251", "\xC4\xF3\xE1", "Дуб" },
        { "of the old system", "AC1009", "dos850", "30\xF8", "30°" },
        { "none named", "AC1009", "", "30\xB0", "30°" },
        { "UTF-8 from 2007 on, whatever the header says", "AC1021", "ANSI_936", "银杏", "银杏" },
        { "UTF-8 under a header of GBK", "AC1015", "ANSI_936", "银杏与香樟", "银杏与香樟" },
        { "escaped", "AC1015", "ANSI_1252", "\\U+94F6\\U+674F 3", "银杏 3" },
        { "escaped beyond the basic plane", "AC1024", "ANSI_1252", "\\U+D842\\U+DFB7", "𠮷" },
        { "escaped by code page", "AC1015", "ANSI_1252", "\\M+5D2F8\\M+5D0D3", "银杏" },
        { "no escape after all", "AC1024", "ANSI_1252", "\\U+94 \\U+ZZZZ", "\\U+94 \\U+ZZZZ" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string before = drawingWith(row.version, row.page, row.bytes);
        const auto drawing = readDrawing(before);
        ASSERT_TRUE(drawing);
        EXPECT_EQ(textOf(*drawing, 0x2A).toStdString(), row.text);
        // A change elsewhere leaves the bytes of this text alone.
        KcDbWrite<KcDbText>(drawing->findHandle(KcDbHandle(0x2B)))->setTextString(QStringLiteral("changed"));
        const std::string after = saveDrawing(*drawing);
        EXPECT_NE(after.find(std::string("\n1\n") + row.bytes + "\n"), std::string::npos);
        // Written over, it is the same text again.
        const QString twice = textOf(*drawing, 0x2A) + textOf(*drawing, 0x2A);
        KcDbWrite<KcDbText>(drawing->findHandle(KcDbHandle(0x2A)))->setTextString(twice);
        if (const auto again = readDrawing(saveDrawing(*drawing)); again)
            EXPECT_EQ(textOf(*again, 0x2A), twice);
    }
}

TEST(DrawingTexts, WrittenInTheFilesOwnCodePage)
{
    const QString text = QStringLiteral("榉树 12 ☃ é 𠮷");
    const struct {
        const char *name, *version, *page, *bytes;
    } rows[] = {
        { "GBK", "AC1015", "ANSI_936", "\xE9\xB7\xCA\xF7 12 \\U+2603 \xA8\xA6 \\U+D842\\U+DFB7" },
        { "Latin", "AC1015", "ANSI_1252", "\\U+6989\\U+6811 12 \\U+2603 \xE9 \\U+D842\\U+DFB7" },
        { "UTF-8", "AC1024", "ANSI_936", "榉树 12 ☃ é 𠮷" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto drawing = readDrawing(drawingWith(row.version, row.page, "x"));
        ASSERT_TRUE(drawing);
        KcDbWrite<KcDbText>(drawing->findHandle(KcDbHandle(0x2A)))->setTextString(text);
        const std::string after = saveDrawing(*drawing);
        EXPECT_NE(after.find(std::string("1\n") + row.bytes + "\n"), std::string::npos) << after;
        if (const auto again = readDrawing(after); again)
            EXPECT_EQ(textOf(*again, 0x2A), text);
    }
}

// Line feeds, tabs and carets must not break the lines of the file.
TEST(DrawingTexts, ControlCharactersDoNotBreakTheFile)
{
    for (const char* value : { "a\nb", "a\tb", "a^b", "^ ", "trailing ", " leading", "\r\n", "" }) {
        const auto drawing = readDrawing(drawingWith("AC1024", "ANSI_936", "x"));
        ASSERT_TRUE(drawing);
        KcDbWrite<KcDbText>(drawing->findHandle(KcDbHandle(0x2A)))->setTextString(QString::fromUtf8(value));
        if (const auto again = readDrawing(saveDrawing(*drawing)); again) {
            EXPECT_EQ(textOf(*again, 0x2A).toStdString(), value);
            EXPECT_EQ(textOf(*again, 0x2B), QStringLiteral("other"));
        }
    }
}
