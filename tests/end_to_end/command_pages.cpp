// Every command has a manual page and a test that plays it.
#include "ed/command_stack.h"
#include "ed/host_commands.h"
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
    std::vector<std::pair<QString, QString>> commands;
    for (const CommandRow& row : commandTable())
        commands.emplace_back(QString::fromUtf16(row.name), QString::fromUtf8(row.purpose));
    const size_t own = commands.size();
    kcedRegisterHostCommands();
    for (const auto& command : kcedCommandStack().commands())
        commands.emplace_back(command->globalName, command->purpose);
    const QString index = content(QStringLiteral(VERDELIS_SOURCE_DIR "/docs/commands/README.md"));
    for (size_t i = own; i < commands.size(); ++i)
        EXPECT_TRUE(index.contains("(" + commands[i].first + ".md)")) << qPrintable(commands[i].first);
    for (const auto& [name, purpose] : commands) {
        const QString page = content(QStringLiteral(VERDELIS_SOURCE_DIR "/docs/commands/%1.md").arg(name));
        EXPECT_TRUE(page.startsWith("# " + name + "\n")) << "docs/commands/" << qPrintable(name) << ".md";
        // As a line of a script, that is as a text of its own.
        EXPECT_TRUE(tests.contains('"' + name + '"')) << "no script test plays " << qPrintable(name);
        EXPECT_FALSE(purpose.isEmpty());
    }
}
