// PDF files as their readers see them: streams unpacked, operators looked at.

#include "gi/support.h"

#include "db/text.h"
#include "gi/paint/plot.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace gi_test;

namespace {

/// The file with all its streams unpacked.
QByteArray plotted(KcDbDatabase& database, KcGiPlotRequest request = {})
{
    const QTemporaryDir folder;
    request.path = folder.filePath("plot.pdf");
    const KcGiPlotResult result = kcgiPlot(database, request);
    EXPECT_EQ(result.error, QString());
    QFile file(request.path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QByteArray all;
    qsizetype at = 0;
    for (;;) {
        const qsizetype begin = bytes.indexOf(">>\nstream\n", at), end = bytes.indexOf("\nendstream", begin);
        if (begin < 0 || end < 0)
            return all + bytes.mid(at);
        const QByteArray header = bytes.mid(at, begin - at),
                         content = bytes.mid(begin + 10, end - begin - 10);
        all += header + ">>\n";
        // The toolkit wants to know the length; a wrong one is corrected.
        all += header.contains("/FlateDecode") ? qUncompress(QByteArray("\0\0\x10\0", 4) + content) : content;
        at = end;
    }
}

int count(const QByteArray& text, const char* pattern)
{
    int found = 0;
    auto matches = QRegularExpression(QString::fromLatin1(pattern)).globalMatch(QString::fromLatin1(text));
    for (; matches.hasNext(); matches.next())
        ++found;
    return found;
}

} // namespace

TEST(Pdf, PlacesOfTheTableLeadToTheObjects)
{
    Drawing d;
    d.add(std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 100, 50, 0 }));
    const QTemporaryDir folder;
    KcGiPlotRequest request;
    request.path = folder.filePath("plot.pdf");
    ASSERT_EQ(kcgiPlot(d.database, request).error, QString());
    QFile file(request.path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const qsizetype start = bytes.lastIndexOf("startxref\n") + 10;
    const qsizetype table = bytes.mid(start, bytes.indexOf('\n', start) - start).toLongLong();
    ASSERT_EQ(bytes.mid(table, 7), "xref\n0 ");
    const QList<QByteArray> lines = bytes.mid(table).split('\n');
    const int size = lines[1].mid(2).toInt();
    ASSERT_GT(size, 5);
    for (int i = 1; i < size; ++i) {
        const qsizetype place = lines[2 + i].left(10).toLongLong();
        EXPECT_TRUE(bytes.mid(place).startsWith(QByteArray::number(i) + " 0 obj")) << i;
    }
}

TEST(Pdf, CurvesStayCurvesAndWeightsAreTrue)
{
    Drawing d;
    d.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 0, 0, 0 }, 100.0));
    auto line = std::make_unique<KcDbLine>(KcGePoint3d{ -100, 0, 0 }, KcGePoint3d{ 100, 0, 0 });
    line->setLineWeight(100); // a millimetre
    d.add(std::move(line));
    const QByteArray pdf = plotted(d.database);
    EXPECT_EQ(count(pdf, " c\\n"), 4);
    // 1200 units to the inch.
    EXPECT_EQ(count(pdf, "\\n47\\.24 w\\n"), 1);
    EXPECT_EQ(count(pdf, "\\n11\\.81 w\\n"), 1);
}

TEST(Pdf, TextsStayTexts)
{
    Drawing d;
    auto text = std::make_unique<KcDbText>();
    text->setTextString(QStringLiteral("香樟 AA"));
    text->setHeight(10.0);
    d.add(std::move(text));
    const QByteArray pdf = plotted(d.database);
    EXPECT_GE(count(pdf, "/Subtype /Type3"), 1);
    // A code for each different character, with what it stands for.
    EXPECT_EQ(count(pdf, "<9999>"), 1);
    EXPECT_EQ(count(pdf, "<6a1f>"), 1);
    EXPECT_EQ(count(pdf, "<0041>"), 1);
    EXPECT_GE(count(pdf, " Tj ET"), 1);
}

TEST(Pdf, DefinitionsAreWrittenOnceForAllTheirPlaces)
{
    Drawing d;
    const KcDbObjectId block = d.block("TREE");
    for (int i = 0; i < 13; ++i)
        d.add(std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 10.0 + i, 5, 0 }), block);
    for (int i = 0; i < 50; ++i) {
        auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 100.0 * i, 0, 0 }, block);
        reference->setRotation(0.1 * i);
        reference->setScaleFactors(KcGeVector3d{ 1, 1, 1 } * (1.0 + i % 3));
        d.add(std::move(reference));
    }
    // Uneven ones are drawn, and a line of another weight makes a definition that fits one scale.
    auto uneven = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 500, 0 }, block);
    uneven->setScaleFactors({ 2, 1, 1 });
    d.add(std::move(uneven));
    KcGiPlotRequest request;
    const QByteArray pdf = plotted(d.database, request);
    EXPECT_EQ(count(pdf, "/Subtype /Form"), 1);
    EXPECT_EQ(count(pdf, " Do Q"), 50);
    EXPECT_EQ(count(pdf, " l\\n"), 13 + 13 + 3); // and the sheet's outline

    auto wide = std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 0, 20, 0 });
    wide->setLineWeight(200);
    d.add(std::move(wide), block);
    EXPECT_EQ(count(plotted(d.database, request), "/Subtype /Form"), 3); // scales 1, 2 and 3
}

TEST(Pdf, TransparencyGradientsAndClips)
{
    Drawing d;
    auto half = d.square(0, 0, 10);
    half->setTransparency(0x02000000 | 51); // a fifth
    d.add(std::move(half));
    const QByteArray pdf = plotted(d.database);
    EXPECT_EQ(count(pdf, "/CA 0\\.2 "), 1);
    EXPECT_EQ(count(pdf, "/A51 gs"), 1);
}
