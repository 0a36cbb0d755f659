// What `cmake --install` makes: a tree that runs on its own, wherever it is moved, and what desktops need to
// know of it.
#include "app/support.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QXmlStreamReader>

using app_test::Outcome;
using app_test::Program;

namespace {

Outcome call(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(120'000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
             QString::fromUtf8(process.readAllStandardError()) };
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

bool isXml(const QByteArray& bytes)
{
    QXmlStreamReader reader(bytes);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

} // namespace

// Faults: libraries that are found only where they were built, a module or language file that is not
// installed.
TEST_F(Program, TheInstalledTreeRunsOnItsOwn)
{
    const QString built = QFileInfo(QStringLiteral(VERDELIS_PROGRAM)).canonicalPath();
    const Outcome installed
        = call("cmake", { "--install", QFileInfo(built).path(), "--prefix", folder.filePath("first") });
    ASSERT_EQ(installed.status, 0) << installed.err.toStdString();
    ASSERT_TRUE(QDir(folder.path()).rename("first", "moved"));
    program = folder.filePath("moved/bin/verdelis");

    const Outcome linked = call("ldd", { program });
    ASSERT_TRUE(linked.out.contains("libkorcad.so")) << linked.err.toStdString();
    EXPECT_FALSE(linked.out.contains(built) || linked.out.contains("not found")) << linked.out.toStdString();

    const QString out = folder.filePath("counted.dxf");
    const Outcome run
        = Program::run({ "run", plan, "-s", VERDELIS_SOURCE_DIR "/examples/count-plants.scr", "-o", out });
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(run.err, "");
    EXPECT_TRUE(Program::run({ "dump", out, "--type", "ACAD_TABLE" }).out.contains("ACAD_TABLE"));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath("root/Sys/VDLText_zh.txt")));

    const QString share = folder.filePath("moved/share/");
    const QByteArray entry = contents(share + "applications/verdelis.desktop");
    EXPECT_TRUE(entry.contains("\nExec=verdelis %f\n"));
    EXPECT_TRUE(entry.contains("\nMimeType=image/vnd.dxf;"));
    EXPECT_TRUE(isXml(contents(share + "icons/hicolor/scalable/apps/verdelis.svg")));
    EXPECT_TRUE(isXml(contents(share + "mime/packages/verdelis.xml")));
    if (const QString validate = QStandardPaths::findExecutable("desktop-file-validate");
        !validate.isEmpty()) {
        const Outcome verdict = call(validate, { share + "applications/verdelis.desktop" });
        EXPECT_EQ(verdict.status, 0) << verdict.out.toStdString();
    }
}

// The manual page falls behind when an option is added to the program alone.
TEST_F(Program, TheManualPageKnowsEveryOption)
{
    const QString page
        = QString::fromUtf8(contents(QStringLiteral(VERDELIS_SOURCE_DIR "/packaging/verdelis.1")))
              .remove('\\');
    const QString help = run({ "--help" }).out;
    for (const char* const pattern : { "^verdelis ([a-z]+) ", "[[ |](-{1,2}[a-z]+)" }) {
        int found = 0;
        auto matches = QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(help);
        for (; matches.hasNext(); ++found) {
            const QString word = matches.next().captured(1);
            EXPECT_TRUE(page.contains(word)) << word.toStdString();
        }
        EXPECT_GT(found, 5) << pattern;
    }
}
