// Every command has a manual page and a test that plays it.
#include "frame/command_table.h"

#include <QDirIterator>
#include <QFile>
#include <gtest/gtest.h>

namespace {

QString content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The tests that run the program, this one aside.
QString scriptTests()
{
    QString all;
    QDirIterator files(
        QStringLiteral(VERDELIS_SOURCE_DIR "/tests/end_to_end"), { "*.cpp" }, QDir::Files,
        QDirIterator::Subdirectories);
    while (files.hasNext())
        if (const QString path = files.next(); !path.endsWith("command_pages.cpp"))
            all += content(path);
    return all;
}

} // namespace

TEST(Commands, HaveAManualPageAndAScriptTest)
{
    const QString tests = scriptTests();
    ASSERT_FALSE(commandTable().empty());
    for (const CommandRow& row : commandTable()) {
        const QString name = QString::fromUtf16(row.name);
        const QString page = content(QStringLiteral(VERDELIS_SOURCE_DIR "/docs/commands/%1.md").arg(name));
        EXPECT_TRUE(page.startsWith("# " + name + "\n")) << "docs/commands/" << qPrintable(name) << ".md";
        // As a line of a script, that is as a text of its own.
        EXPECT_TRUE(tests.contains('"' + name + '"')) << "no script test plays " << qPrintable(name);
        EXPECT_STRNE(row.purpose, "");
    }
}
