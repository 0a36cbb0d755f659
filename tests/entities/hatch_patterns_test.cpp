// Pattern files: what is read, what is refused and in which words, and that the shipped ones are good.

#include "db/hatch_patterns.h"
#include "platform/app_root.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct RootScope {
    explicit RootScope(const QString& folder) { platform::setAppRoot(folder); }
    ~RootScope() { platform::setAppRoot({}); }
};

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

KcDbPatternFile parse(const QByteArray& bytes)
{
    return kcdbParsePatternFile(bytes, QStringLiteral("P.pat"));
}

} // namespace

TEST(PatternFile, FamiliesInTheirOwnFrame)
{
    const KcDbPatternFile file = parse("; comment\r\n"
                                       "*Grass, 草坪\r\n"
                                       "90, 1, 2, 3, 4, 0.5, -1, 0, -.25 ; behind\r\n"
                                       "\r\n"
                                       "*NET\n0,0,0,0,1\n450,0,0,0,1\n");
    EXPECT_TRUE(file.findings.empty());
    ASSERT_EQ(file.patterns.size(), 2u);
    EXPECT_EQ(file.patterns[0].name, QStringLiteral("Grass"));
    EXPECT_EQ(file.patterns[0].description, QStringLiteral("草坪"));
    const KcGeHatchFamily& family = file.patterns[0].families.at(0);
    EXPECT_NEAR(family.angle, kPi / 2, 1e-12);
    EXPECT_EQ(family.base, (KcGePoint2d{ 1, 2 }));
    // 3 along the line, which runs up, and 4 to its left.
    EXPECT_NEAR(family.offset.x, -4, 1e-12);
    EXPECT_NEAR(family.offset.y, 3, 1e-12);
    EXPECT_EQ(family.dashes, (std::vector<double>{ 0.5, -1, 0, -0.25 }));
    EXPECT_NEAR(family.spacing(), 4, 1e-12);
    EXPECT_NEAR(family.period(), 1.75, 1e-12);
    EXPECT_EQ(file.patterns[1].families.size(), 2u);
}

TEST(PatternFile, FaultsNameLineAndCauseAndCostOnePattern)
{
    struct Fault {
        const char* name;
        QByteArray bytes;
        int line;
        const char* cause;
    };
    const Fault faults[] = {
        { "too few", "*GOOD\n0,0,0,0,1\n*BAD\n0,0,0,0\n", 4, "5 numbers, not 4" },
        { "no number", "*GOOD\n0,0,0,0,1\n*BAD\n0,0,zero,0,1\n", 4, "\"zero\" is no number" },
        { "no finite number", "*GOOD\n0,0,0,0,1\n*BAD\n0,0,inf,0,1\n", 4, "\"inf\" is no number" },
        { "hollow field", "*GOOD\n0,0,0,0,1\n*BAD\n0,0,0,0,1,,-1\n", 4, "\"\" is no number" },
        { "no distance", "*GOOD\n0,0,0,0,1\n*BAD\n0,0,0,5,0\n", 4, "distance of 0" },
        { "no name", "*GOOD\n0,0,0,0,1\n*, bad\n0,0,0,0,1\n", 3, "without a name" },
        { "no lines", "*GOOD\n0,0,0,0,1\n*BAD\n", 3, "BAD has no lines" },
        { "twice", "*GOOD\n0,0,0,0,1\n*good\n0,0,0,0,2\n", 3, "good is defined a second time" },
        { "line first", "0,0,0,0,1\n1,0,0,0,1\n*GOOD\n0,0,0,0,1\n", 1, "before the first name" },
        { "dashes without end", "*GOOD\n0,0,0,0,1\n*BAD\n0,0,0,0,1" + QByteArray(",1").repeated(100) + "\n", 4,
          "more than 64 dashes" },
    };
    for (const Fault& fault : faults) {
        const KcDbPatternFile file = parse(fault.bytes);
        ASSERT_EQ(file.patterns.size(), 1u) << fault.name;
        EXPECT_EQ(file.patterns[0].name, QStringLiteral("GOOD")) << fault.name;
        EXPECT_NEAR(file.patterns[0].families.at(0).spacing(), 1, 1e-12) << fault.name;
        ASSERT_EQ(file.findings.size(), 1u) << fault.name;
        EXPECT_EQ(file.findings[0].line, fault.line) << fault.name;
        EXPECT_TRUE(file.findings[0].text.contains(QLatin1String(fault.cause)))
            << fault.name << ": " << file.findings[0].text.toStdString();
        EXPECT_TRUE(file.findings[0].text.startsWith(QStringLiteral("P.pat, line %1: ").arg(fault.line)));
    }
}

TEST(PatternFile, ChineseInEitherEncoding)
{
    EXPECT_EQ(parse("\xef\xbb\xbf*A,\xe8\x8d\x89\n0,0,0,0,1\n").patterns.at(0).description, QStringLiteral("草"));
    EXPECT_EQ(parse("*A,\xb2\xdd\n0,0,0,0,1\n").patterns.at(0).description, QStringLiteral("草"));
}

TEST(HatchPatterns, ShippedFilesAreGood)
{
    const RootScope root(QStringLiteral(VERDELIS_SOURCE_DIR "/share/verdelis"));
    KcDbHatchPatterns& patterns = KcDbHatchPatterns::instance();
    for (const KcDbPatternFinding& finding : patterns.findings())
        ADD_FAILURE() << finding.text.toStdString();
    using Units = KcDbHatchPatterns::Units;
    EXPECT_EQ(patterns.names().front(), QStringLiteral("SOLID"));
    EXPECT_EQ(patterns.names(), patterns.names(Units::Inches));
    EXPECT_GT(patterns.names().size(), 50);
    // An eighth of an inch, in either file.
    ASSERT_TRUE(patterns.find(QStringLiteral("ansi31")));
    EXPECT_NEAR(patterns.find(QStringLiteral("ansi31"))->families[0].spacing(), 3.175, 1e-12);
    EXPECT_NEAR(patterns.find(QStringLiteral("ANSI31"), Units::Inches)->families[0].spacing(), 0.125, 1e-12);
    for (const QString& name : patterns.names())
        for (const KcGeHatchFamily& family : patterns.find(name)->families)
            EXPECT_GT(family.spacing(), 0.0) << name.toStdString();
    EXPECT_FALSE(patterns.find(QStringLiteral("NO SUCH PATTERN")));
}

TEST(HatchPatterns, NewFilesAreSeenAfterRereading)
{
    QTemporaryDir folder;
    const RootScope root(folder.path());
    QDir(folder.path()).mkpath(QStringLiteral("Sys/Pattern"));
    write(folder.filePath(QStringLiteral("Sys/korcadiso.pat")), "*MINE,shared\n0,0,0,0,1\n*OTHER\n0,0,0,0,1\n");
    KcDbHatchPatterns& patterns = KcDbHatchPatterns::instance();
    patterns.reread();
    EXPECT_EQ(patterns.find(QStringLiteral("MINE"))->description, QStringLiteral("shared"));
    // A file of its own comes before the host's list, once it is read.
    write(folder.filePath(QStringLiteral("Sys/Pattern/mine.PAT")), "*MINE,own\n0,0,0,0,2\n");
    EXPECT_EQ(patterns.find(QStringLiteral("MINE"))->description, QStringLiteral("shared"));
    patterns.reread();
    EXPECT_EQ(patterns.find(QStringLiteral("MINE"))->description, QStringLiteral("own"));
    EXPECT_EQ(patterns.names(), (QStringList{ "SOLID", "MINE", "OTHER" }));
    patterns.reread();
}
