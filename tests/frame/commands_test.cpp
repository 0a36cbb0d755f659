// What VDHELP sends and VDLABOUT shows; loading and unloading the module.
#include "ed/command_stack.h"
#include "frame/command_table.h"
#include "frame/commands.h"
#include "frame/module.h"
#include "platform/app_root.h"
#include "platform/message_box.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

extern "C" int32_t kcrxEntryPoint(int32_t message, void* applicationId);

TEST(Commands, HelpIsALiteralOfTheCommandLanguage)
{
    EXPECT_EQ(helpExpression("C:\\P\\"), "(help \"C:\\\\P\\\\Sys\\\\VdHelp.chm\")\n");
}

TEST(Commands, VersionOfABuild)
{
    EXPECT_EQ(versionOfBuild("May 23 2024"), "20240523");
    EXPECT_EQ(versionOfBuild("Jan  5 2024"), "20240105");
    EXPECT_EQ(versionOfBuild("Dec 31 2026"), "20261231");
}

namespace {

int commandsOfTheModule()
{
    int count = 0;
    for (const auto& command : kcedCommandStack().commands())
        count += command->group == commandGroup;
    return count;
}

} // namespace

// A group that was added twice must go as a whole, and a missing language file must not cost the commands.
TEST(Module, LoadsWithoutLanguageFileAndUnloadsAllItRegistered)
{
    const QTemporaryDir root;
    platform::setAppRoot(root.path());
    QStringList boxes;
    const auto before = platform::setMessageBoxHandler([&](const platform::MessageBoxRequest& request) {
        boxes += request.caption + ": " + request.text;
        return platform::MessageBoxAnswer::Ok;
    });
    const int rows = int(commandTable().size());
    EXPECT_EQ(kcrxEntryPoint(1, nullptr), 0);
    EXPECT_EQ(commandsOfTheModule(), rows);
    EXPECT_EQ(boxes, QStringList("Verdelis Error: No language file found. Error loading Verdelis Software."));
    EXPECT_EQ(kcrxEntryPoint(1, nullptr), 0);
    EXPECT_EQ(commandsOfTheModule(), 2 * rows);
    EXPECT_EQ(kcrxEntryPoint(7, nullptr), 0);
    EXPECT_EQ(kcrxEntryPoint(2, nullptr), 0);
    EXPECT_EQ(commandsOfTheModule(), 0);
    platform::setMessageBoxHandler(before);
    platform::setAppRoot({});
}
