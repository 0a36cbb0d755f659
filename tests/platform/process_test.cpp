// Named memory blocks and message boxes.

#include "platform/message_box.h"
#include "platform/shared_memory.h"

#include <gtest/gtest.h>

using namespace platform;

TEST(SharedMemory, aSecondLookFindsTheBlockOfTheFirst)
{
    const FileMapping first = CreateFileMappingW("test block", 16);
    EXPECT_FALSE(first.existed);
    auto* memory = static_cast<char*>(MapViewOfFile(first, 16));
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(std::string(memory, 16), std::string(16, '\0'));
    memory[15] = 'x';

    const FileMapping second = CreateFileMappingW("test block", 64);
    EXPECT_TRUE(second.existed);
    EXPECT_EQ(MapViewOfFile(second), memory);
    EXPECT_EQ(memory[15], 'x');
    EXPECT_EQ(MapViewOfFile(second, 64), nullptr); // larger than it was made
    EXPECT_FALSE(CreateFileMappingW("Test block", 16).existed);
    EXPECT_EQ(MapViewOfFile(CreateFileMappingW("none", 0)), nullptr);
    EXPECT_EQ(CreateFileMappingW("", 16).memory, nullptr);
}

TEST(MessageBox, withoutAHandlerIsPrintedAndNeverAgrees)
{
    struct Row {
        MessageBoxButtons buttons;
        MessageBoxAnswer answer;
    };
    testing::internal::CaptureStdout();
    for (const Row& row : { Row{ MessageBoxButtons::Ok, MessageBoxAnswer::Ok },
                            Row{ MessageBoxButtons::OkCancel, MessageBoxAnswer::Cancel },
                            Row{ MessageBoxButtons::YesNo, MessageBoxAnswer::No },
                            Row{ MessageBoxButtons::YesNoCancel, MessageBoxAnswer::Cancel },
                            Row{ MessageBoxButtons::RetryCancel, MessageBoxAnswer::Cancel },
                            Row{ MessageBoxButtons::AbortRetryIgnore, MessageBoxAnswer::Abort } })
        EXPECT_EQ(MessageBoxW(nullptr, "删除?", "提示", row.buttons), row.answer);
    MessageBoxW(nullptr, "没有标题", "");
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(),
        "提示: 删除?\n提示: 删除?\n提示: 删除?\n提示: 删除?\n提示: 删除?\n提示: 删除?\n没有标题\n");
}

TEST(MessageBox, theHandlerSeesTheBoxAndMayReplaceItself)
{
    MessageBoxRequest seen;
    const MessageBoxHandler before = setMessageBoxHandler([&](const MessageBoxRequest& request) {
        seen = request;
        setMessageBoxHandler({});
        return MessageBoxAnswer::Yes;
    });
    EXPECT_EQ(
        MessageBoxW(nullptr, "text", "caption", MessageBoxButtons::YesNo, MessageBoxIcon::Question),
        MessageBoxAnswer::Yes);
    EXPECT_EQ(seen.text, "text");
    EXPECT_EQ(seen.caption, "caption");
    EXPECT_EQ(seen.icon, MessageBoxIcon::Question);
    EXPECT_TRUE(seen.asks());
    setMessageBoxHandler(before);
}
