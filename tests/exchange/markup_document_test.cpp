// The markup document: position, edits and encodings. After each edit the text must parse to what the index
// says.
#include "exchange/markup_document.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QString outline(MarkupDocument& document)
{
    QString text;
    int depth = 0;
    document.ResetPos();
    while (true) {
        if (document.FindElem()) {
            text += document.GetTagName() + u'[' + document.GetData() + u']';
            document.IntoElem();
            ++depth;
            text += u'(';
        } else if (depth-- > 0) {
            document.OutOfElem();
            text += u')';
        } else
            return text;
    }
}

// The outline of the index, after checking that parsing the text anew gives the same one.
std::string checkedOutline(MarkupDocument document)
{
    const QString kept = outline(document);
    MarkupDocument again;
    again.SetDoc(document.GetDoc());
    EXPECT_EQ(outline(again).toStdString(), kept.toStdString()) << document.GetDoc().toStdString();
    return kept.toStdString();
}

MarkupDocument parsed(const QString& text)
{
    MarkupDocument document;
    document.SetDoc(text);
    return document;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(MarkupDocument, WalksLevelsAndChildren)
{
    auto document = parsed(u"<?xml version='1.0'?><!-- <Fake/> "
                           u"--><Root><Table><Name>块名顺序表</Name><Item/><Item id='2'/></Table>"
                           "<Table><Name>b</Name></Table></Root>"_qs);
    EXPECT_EQ(document.GetResult(), QString());
    EXPECT_FALSE(document.IntoElem());
    EXPECT_FALSE(document.FindElem(u"Table"_qs));
    ASSERT_TRUE(document.FindElem());
    EXPECT_EQ(document.GetTagName(), u"Root"_qs);
    EXPECT_FALSE(document.OutOfElem());
    ASSERT_TRUE(document.IntoElem());
    ASSERT_TRUE(document.FindElem(u"Table"_qs));
    ASSERT_TRUE(document.FindChildElem(u"Name"_qs));
    EXPECT_EQ(document.GetChildData(), u"块名顺序表"_qs);
    EXPECT_FALSE(document.FindChildElem(u"Name"_qs));
    EXPECT_EQ(document.GetChildData(), u"块名顺序表"_qs);
    ASSERT_TRUE(document.IntoElem());
    ASSERT_TRUE(document.FindElem(u"Item"_qs));
    ASSERT_TRUE(document.FindElem(u"Item"_qs));
    EXPECT_EQ(document.GetAttrib(u"id"_qs), u"2"_qs);
    EXPECT_FALSE(document.FindElem(u"Item"_qs));
    EXPECT_EQ(document.GetAttrib(u"id"_qs), u"2"_qs); // the position stays
    ASSERT_TRUE(document.OutOfElem());
    ASSERT_TRUE(document.FindElem(u"Table"_qs));
    ASSERT_TRUE(document.FindChildElem(u"Name"_qs)); // the current child did not stay behind
    EXPECT_EQ(document.GetChildData(), u"b"_qs);
}

TEST(MarkupDocument, AddsLayersToAnEmptyStandard)
{
    auto document = parsed(u"<Layers>\r\n  <LayerStd Name=\"中文\" />\r\n</Layers>\r\n"_qs);
    document.FindElem();
    document.IntoElem();
    ASSERT_TRUE(document.FindElem(u"LayerStd"_qs));
    document.IntoElem();
    ASSERT_TRUE(document.AddElem(u"Layer"_qs));
    ASSERT_TRUE(document.SetAttrib(u"Name"_qs, u"\"乔木\" & <灌木>'s"_qs));
    ASSERT_TRUE(document.SetAttrib(u"Color"_qs, u"3"_qs));
    ASSERT_TRUE(document.SetAttrib(u"Color"_qs, u"256"_qs));
    ASSERT_TRUE(document.AddElem(u"Layer"_qs));
    EXPECT_EQ(
        document.GetDoc().toStdString(),
        "<Layers>\r\n  <LayerStd Name=\"中文\">\r\n    <Layer Name=\"&quot;乔木&quot; &amp; "
        "&lt;灌木&gt;&apos;s\" "
        "Color=\"256\"/>\r\n    <Layer/>\r\n  </LayerStd>\r\n</Layers>\r\n");
    ASSERT_TRUE(document.OutOfElem());
    ASSERT_TRUE(document.IntoElem());
    ASSERT_TRUE(document.FindElem(u"Layer"_qs));
    EXPECT_EQ(document.GetAttrib(u"Name"_qs), u"\"乔木\" & <灌木>'s"_qs);
    EXPECT_EQ(checkedOutline(document), "Layers[](LayerStd[](Layer[]()Layer[]()))");
}

TEST(MarkupDocument, RemovesAndGoesOn)
{
    auto document = parsed(u"<r>\n\t<Item><ID>0</ID></Item>\n\t<Item><ID>1</ID></Item>\n\t<Other/>\n</r>"_qs);
    document.FindElem();
    document.IntoElem();
    EXPECT_FALSE(document.RemoveElem());
    int removed = 0;
    while (document.FindElem(u"Item"_qs))
        removed += document.RemoveElem();
    EXPECT_EQ(removed, 2);
    EXPECT_EQ(document.GetDoc(), u"<r>\n\t<Other/>\n</r>"_qs);
    EXPECT_TRUE(document.FindElem(u"Other"_qs));
    document.OutOfElem();
    for (int i = 0; i < 3; ++i) { // new elements reuse the index entries of removed ones
        ASSERT_TRUE(document.AddChildElem(u"Item"_qs, QString::number(i)));
        EXPECT_EQ(document.GetChildData(), QString::number(i));
    }
    EXPECT_EQ(
        document.GetDoc(), u"<r>\n\t<Other/>\n\t<Item>0</Item>\n\t<Item>1</Item>\n\t<Item>2</Item>\n</r>"_qs);
    EXPECT_EQ(checkedOutline(document), "r[](Other[]()Item[0]()Item[1]()Item[2]())");
}

// Every text must come back as it was given, whatever way it is written.
TEST(MarkupDocument, TextsSurvive)
{
    for (const QString& value : { u"香樟"_qs, u"a<b & c>d"_qs, u"]]>"_qs, u"x]]]]>>y"_qs, u"&amp; &#65;"_qs,
                                  u" blank "_qs, u""_qs, u"'\"<!-- --> <![CDATA[z]]></r>"_qs, u"😀"_qs }) {
        for (const int flags : { 0, int(MarkupDocument::CData) }) {
            SCOPED_TRACE(value.toStdString() + " flags " + std::to_string(flags));
            MarkupDocument document;
            ASSERT_TRUE(document.AddElem(u"r"_qs));
            ASSERT_TRUE(document.AddChildElem(u"c"_qs, value, flags));
            EXPECT_EQ(document.GetChildData(), value);
            ASSERT_TRUE(document.SetAttrib(u"a"_qs, value));
            ASSERT_TRUE(document.SetAttrib(u"b"_qs, u"1"_qs));
            EXPECT_EQ(document.GetAttrib(u"a"_qs), value);
            ASSERT_TRUE(document.SetChildData(value + u'&', flags));
            auto again = parsed(document.GetDoc());
            again.FindElem();
            again.FindChildElem();
            EXPECT_EQ(again.GetChildData(), value + u'&');
            EXPECT_EQ(again.GetAttrib(u"a"_qs), value);
            checkedOutline(document);
        }
    }
    MarkupDocument document;
    document.AddElem(u"r"_qs, u"]]>"_qs, MarkupDocument::CData);
    EXPECT_TRUE(document.GetDoc().contains(u"<![CDATA[]]]]><![CDATA[>]]>"_qs));
    document.AddElem(u"s"_qs, u"a &#65; &own; & b"_qs, MarkupDocument::WithReferences);
    EXPECT_EQ(document.GetData(), u"a A &own; & b"_qs);
    EXPECT_TRUE(document.GetDoc().contains(u"a &#65; &own; &amp; b"_qs));
    document.SetDocFlags(MarkupDocument::SpaceBeforeSlash);
    document.AddElem(u"t"_qs);
    document.AddElem(u"u"_qs, {}, MarkupDocument::NoEndTag);
    EXPECT_TRUE(document.GetDoc().contains(u"<t />\n<u>"_qs));
    for (const QString& bad : { u""_qs, u"a b"_qs, u"1a"_qs, u"a>"_qs, u"a&b"_qs }) {
        EXPECT_FALSE(document.AddElem(bad)) << bad.toStdString();
        EXPECT_FALSE(document.SetAttrib(bad, u"x"_qs)) << bad.toStdString();
    }
}

TEST(MarkupDocument, AttributesAsTheyAreWritten)
{
    const struct {
        const char16_t* tag;
        const char16_t* value; // of attribute a
        const char16_t* after; // the tag when a is set to 1
    } rows[] = {
        { u"<e a='x>y'/>", u"x>y", u"<e a='1'/>" },
        { u"<e b=\"a='no'\" a = \"yes\">", u"yes", u"<e b=\"a='no'\" a = \"1\">" },
        { u"<e a=bare/>", u"bare", u"<e a=\"1\"/>" },
        { u"<e a />", u"", u"<e a=\"1\" />" },
        { u"<e aa='2' />", u"", u"<e aa='2' a=\"1\" />" },
        { u"<e don't a='x'>", u"x", u"<e don't a='1'>" },
        { u"<e a='first' a='second'>", u"first", u"<e a='1' a='second'>" },
    };
    for (const auto& row : rows) {
        const QString tag = QString::fromUtf16(row.tag);
        SCOPED_TRACE(tag.toStdString());
        auto document = parsed(tag);
        ASSERT_TRUE(document.FindElem());
        EXPECT_EQ(document.GetAttrib(u"a"_qs), QString::fromUtf16(row.value));
        EXPECT_TRUE(document.SetAttrib(u"a"_qs, u"1"_qs));
        EXPECT_EQ(document.GetDoc().toStdString(), QString::fromUtf16(row.after).toStdString());
        EXPECT_EQ(document.GetAttrib(u"a"_qs), u"1"_qs);
    }
}

TEST(MarkupDocument, MalformedMarkupIsNotedAndTheRestIsUsed)
{
    const struct {
        const char16_t* text;
        const char* outline;
        const char* finding;
    } rows[] = {
        { u"<a/><b/>", "a[]()b[]()", "<root_has_sibling tagname=\"b\" offset=\"4\"/>" },
        { u"", "", "<no_root_element/>" },
        { u"香樟 < 3", "", "<no_root_element/>" },
        { u"<a></x><b/></a>", "a[](b[]())", "<lone_end_tag tagname=\"x\" offset=\"3\"/>" },
        { u"<a><b><c/></a>", "a[](b[](c[]()))",
          "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"10\"/>" },
        { u"<a><b>1</b><b>2", "a[](b[1]()b[2]())",
          "<unended_start_tag tagname=\"b\" offset=\"11\" offset2=\"15\"/>" },
        { u"<a><b <c/></a>", "a[<b ](c[]())", "<unended_start_tag tagname=\"b\" offset=\"3\"/>" },
        { u"<a><!-- <b/></a>", "a[<!-- ](b[]())", "<unended_start_tag tagname=\"!--\" offset=\"3\"/>" },
        { u"<!DOCTYPE a [ <!ENTITY q \">\"> <!-- ' --> ]><a/>", "a[]()", "" },
        { u"<a>1<!-- 2 -->3<?p 4?><![CDATA[<5>]]></a>", "a[13<5>]()", "" },
        { u"<a>1 < 2</a>", "a[1 < 2]()", "" },
    };
    for (const auto& row : rows) {
        auto document = parsed(QString::fromUtf16(row.text));
        SCOPED_TRACE(document.GetDoc().toStdString());
        EXPECT_EQ(checkedOutline(document), row.outline);
        if (*row.finding)
            EXPECT_NE(document.GetResult().toStdString().find(row.finding), std::string::npos)
                << document.GetResult().toStdString();
        else
            EXPECT_EQ(document.GetResult(), QString());
    }
}

// Nesting must not cost call depth, and no kind of broken text more than linear time: each of these would
// take minutes with a search that starts over.
TEST(MarkupDocument, DeepAndHugeDocuments)
{
    const int depth = 100000;
    auto document = parsed(u"<a>"_qs.repeated(depth) + u"x"_qs + u"</a>"_qs.repeated(depth));
    EXPECT_EQ(document.GetResult(), QString());
    int found = 0;
    while (document.FindElem()) {
        document.IntoElem();
        ++found;
    }
    EXPECT_EQ(found, depth);
    EXPECT_TRUE(document.AddElem(u"b"_qs));
    document.ResetPos();
    document.FindElem();
    EXPECT_TRUE(document.RemoveElem());
    EXPECT_EQ(document.GetDoc(), QString());

    for (const QString& piece :
         { u"<a>"_qs, u"</b>"_qs, u"<a></b>"_qs, u"<a "_qs, u"<a x='"_qs, u"<!--"_qs, u"<![CDATA["_qs,
           u"<?"_qs, u"<![>"_qs, u"<!'"_qs, u"<"_qs, u"&a"_qs, u"<a x=\"'>"_qs }) {
        SCOPED_TRACE(piece.toStdString());
        auto broken = parsed(piece.repeated(300000));
        EXPECT_NE(broken.GetResult(), QString());
        EXPECT_LT(broken.GetResult().size(), 10000);
        if (broken.FindElem())
            broken.GetData();
    }
}

// Whatever encoding a file has, the text is read right and an unchanged document is written back byte for
// byte.
TEST(MarkupDocument, EncodingsAreKept)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"图层 标准.xml"_qs);
    const auto bytes = [](const char* text, size_t size) { return QByteArray(text, qsizetype(size)); };
#define BYTES(text) bytes(text, sizeof text - 1)
    const struct {
        const char* name;
        QByteArray file;
        const char* encoding;
        std::vector<const char*> items;
    } rows[] = {
        { "utf-8 without statement", BYTES("<r>\xe9\xa6\x99</r>"), "UTF-8", { "<utf8_detection/>" } },
        { "utf-8 with mark", BYTES("\xef\xbb\xbf<r>\xe9\xa6\x99</r>"), "UTF-8", { "<bom/>" } },
        { "little endian", BYTES("\xff\xfe<\0r\0>\0\x99\x99<\0/\0r\0>\0"), "UTF-16LE", { "<bom/>" } },
        { "big endian",
          BYTES("\xfe\xff\0<\0r\0>\x99\x99\0<\0/\0r\0>"),
          "UTF-16BE",
          { "<bom/>", "<endian_swap/>" } },
        { "little endian without mark", BYTES("<\0r\0>\0\x99\x99<\0/\0r\0>\0"), "UTF-16LE", {} },
        { "ansi", BYTES("<r>\xcf\xe3</r>"), "GBK", { "<converted_from type=\"ANSI\" encoding=\"GBK\"/>" } },
        { "stated gb2312",
          BYTES("<?xml version='1.0' encoding='gb2312'?><r>\xcf\xe3</r>"),
          "GBK",
          { "<converted_from encoding=\"GBK\"/>" } },
        { "stated windows-1252", BYTES("<?xml encoding=\"windows-1252\"?><r>\xe9</r>"), "windows-1252", {} },
        { "html content type",
          BYTES("<html><META content='text/html; charset=csgb2312' "
                "HTTP-EQUIV=content-type><r>\xcf\xe3</r></html>"),
          "GBK",
          {} },
        { "wrongly stated utf-8",
          BYTES("<?xml encoding='utf-8'?><r>\xcf\xe3</r>"),
          "GBK",
          { "not UTF-8 as stated" } },
        { "unknown statement",
          BYTES("<?xml encoding='klingon'?><r>\xe9\xa6\x99</r>"),
          "UTF-8",
          { "encoding not usable", "<utf8_detection/>" } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        writeFile(path, row.file);
        MarkupDocument document;
        ASSERT_TRUE(document.Load(path));
        EXPECT_EQ(document.GetEncoding(), QString::fromLatin1(row.encoding));
        const QString result = document.GetResult();
        for (const char* item : row.items)
            EXPECT_TRUE(result.contains(QString::fromLatin1(item))) << item << " in " << result.toStdString();
        EXPECT_FALSE(result.contains(u"conversion_loss"_qs));
        const QString expected = row.name == std::string("stated windows-1252") ? u"é</r>"_qs : u"香</r>"_qs;
        EXPECT_TRUE(document.GetDoc().contains(expected)) << document.GetDoc().toStdString();
        EXPECT_TRUE(document.Save(path));
        EXPECT_EQ(readFile(path), row.file);
        EXPECT_TRUE(document.GetResult().startsWith(u"<write "_qs)) << document.GetResult().toStdString();
    }
#undef BYTES
}

TEST(MarkupDocument, LossesAreNoted)
{
    MarkupDocument document;
    document.SetBytes({ "<r>a\0b\0</r>", 11 });
    EXPECT_TRUE(document.GetResult().contains(u"<nulls_removed count=\"2\"/>"_qs));
    EXPECT_EQ(document.GetDoc(), u"<r>ab</r>"_qs);
    document.SetBytes({ "\xff\xfe<\0r\0/\0>\0x", 11 });
    EXPECT_TRUE(document.GetResult().contains(u"<truncation_error offset=\"10\"/>"_qs));
    document.SetBytes("\xef\xbb\xbf<r>\xff</r>");
    EXPECT_TRUE(
        document.GetResult().contains(u"<conversion_loss encoding=\"UTF-8\" count=\"1\" offset=\"6\"/>"_qs))
        << document.GetResult().toStdString();

    document.SetBytes("<?xml encoding='gbk'?><r>\xcf\xe3</r>");
    document.FindElem();
    document.SetData(u"香각"_qs);
    const QByteArray bytes = document.GetBytes();
    EXPECT_TRUE(
        document.GetResult().contains(u"<conversion_loss encoding=\"GBK\" count=\"1\" offset=\"26\""_qs))
        << document.GetResult().toStdString();
    document.SetBytes({ bytes.constData(), size_t(bytes.size()) });
    document.FindElem();
    EXPECT_EQ(document.GetData(), u"香각"_qs); // the character reference keeps it
}

TEST(MarkupDocument, FilesThatCannotBeReadOrWritten)
{
    QTemporaryDir folder;
    MarkupDocument document;
    document.SetDoc(u"<r/>"_qs);
    EXPECT_FALSE(document.Load(folder.filePath(u"missing.xml"_qs)));
    EXPECT_TRUE(document.GetResult().contains(u"<file_error msg="_qs));
    EXPECT_FALSE(document.FindElem());
    EXPECT_FALSE(document.Load(folder.path()));
    document.SetDoc(u"<r/>"_qs);
    EXPECT_FALSE(document.Save(folder.filePath(u"no/folder/file.xml"_qs)));
    EXPECT_TRUE(document.GetResult().contains(u"<file_error msg="_qs));
    EXPECT_EQ(document.GetDoc(), u"<r/>"_qs);
}
