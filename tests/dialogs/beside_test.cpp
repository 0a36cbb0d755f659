// Dialogs beside commands, boxes and file requests, and what may happen while a prompt waits.
#include "support.h"

#include "core/prompts.h"

#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QVBoxLayout>

namespace {

// Stays open; its buttons draw lines, one of them after a question, and look at the drawing.
class Drawer : public QDialog {
public:
    explicit Drawer(ed_test::Session& session)
    {
        setWindowTitle("画线");
        auto* column = new QVBoxLayout(this);
        const auto button = [&](const QString& text, std::function<void()> body) {
            auto* made = new QPushButton(text);
            column->addWidget(made);
            connect(made, &QPushButton::clicked, this, std::move(body));
        };
        button(
            "画", [this, &session] { kcedAct(*this, "DRAW", [&session] { session.addLine(0, 0, 1, 1); }); });
        button("问", [this, &session] {
            kcedAct(*this, "ASK", [&session] {
                KcGePoint3d point;
                if (GetPoint(point, "\nWhere: "))
                    session.addLine(point.x, point.y, 0, 0);
            });
        });
        button("看", [] { kcedRequest(KcEdWish::Look, [] { kcedSay("looked"); }); });
        button("失败", [this, &session] {
            kcedAct(*this, "FAIL", [&session] {
                session.addLine(0, 0, 1, 1);
                throw std::runtime_error("no more ink");
            });
        });
    }
};

class Beside : public ::testing::Test {
protected:
    int lines() const
    {
        int count = 0;
        for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(session.database.modelSpace()))
            count += KcDbRead<KcDbLine>(id) ? 1 : 0;
        return count;
    }
    int play(const QStringList& answers)
    {
        return session.run([this] { kcedShowModeless(std::make_unique<Drawer>(session)); }, answers);
    }

    ed_test::Session session;
};

} // namespace

TEST_F(Beside, ADialogStaysAndEachActionIsOneStep)
{
    EXPECT_EQ(play({ "!press 画", "!press 问", "5,5", "!press 画", "U", "U", "!close", "!press 画" }), 1)
        << session.errors;
    EXPECT_EQ(lines(), 1);
    EXPECT_TRUE(session.errors.contains("No dialog is open.")) << session.errors;
    EXPECT_EQ(session.document.lockCount(), 0);
}

TEST_F(Beside, ItsEndIsTheEndOfTheScript)
{
    int locks = 0;
    kcedCommandStack().addCommand("TEST", "LOCKS", "LOCKS", 0, [&] { locks = session.document.lockCount(); });
    kcedCommandStack().addCommand(
        "TEST", "TESTED", "TESTED", 0, [&] { kcedShowModeless(std::make_unique<Drawer>(session)); });
    EXPECT_EQ(session.run({ "TESTED", "LOCKS" }), 0);
    EXPECT_EQ(locks, 1);
    EXPECT_EQ(kcedModelessDialogCount(), 0u);
    EXPECT_EQ(session.document.lockCount(), 0);
}

// The first command must neither go on nor lose what it did; the action comes when it has ended.
TEST_F(Beside, AnActionCancelsThePromptThatWaits)
{
    kcedCommandStack().addCommand("TEST", "WAITS", "WAITS", 0, [&] {
        KcGePoint3d point;
        while (GetPoint(point, "\nFirst: "))
            session.addLine(point.x, point.y, 7, 7);
        kcedSay("WAITS has ended");
    });
    kcedCommandStack().addCommand(
        "TEST", "TESTED", "TESTED", 0, [&] { kcedShowModeless(std::make_unique<Drawer>(session)); });
    EXPECT_EQ(session.run({ "TESTED", "WAITS", "1,1", "!press 看", "2,2", "!press 问", "3,3", "U" }), 0)
        << session.errors;
    EXPECT_EQ(lines(), 2); // the two of the command; that of the action was taken back
    EXPECT_TRUE(session.printed.contains("looked"));
    EXPECT_LT(session.printed.indexOf("WAITS has ended"), session.printed.indexOf("Where:"));
}

TEST_F(Beside, AFailingActionLeavesNothing)
{
    EXPECT_EQ(play({ "!press 失败", "!close" }), 0);
    EXPECT_EQ(lines(), 0);
    EXPECT_TRUE(session.printed.contains("FAIL failed: no more ink")) << session.printed;
}

TEST_F(Beside, AnActionOfADialogThatIsGoneDoesNothing)
{
    EXPECT_EQ(
        session.run(
            [&] {
                auto* dialog = kcedShowModeless(std::make_unique<Drawer>(session));
                kcedAct(*dialog, "DRAW", [&] { session.addLine(0, 0, 1, 1); });
                dialog->close();
            },
            {}),
        0);
    EXPECT_EQ(lines(), 0);
}

TEST(WhatMayHappen, IsOneTable)
{
    using A = KcEdActivity;
    using W = KcEdWish;
    using V = KcEdVerdict;
    for (const W wish : { W::Look, W::Change, W::Close }) {
        EXPECT_EQ(kcedVerdict(A::Idle, wish), V::Now);
        EXPECT_EQ(kcedVerdict(A::Prompt, wish), wish == W::Look ? V::Now : V::AfterCancel);
        EXPECT_EQ(kcedVerdict(A::Dialog, wish), V::Refused);
        EXPECT_EQ(kcedVerdict(A::Working, wish), V::Refused);
    }
}

TEST(WhatMayHappen, BesideAPromptByLines)
{
    ed_test::Session session;
    kcedCommandStack().addCommand(
        "TEST", "LOOK", "LOOK", KcEdCommand::kTransparent, [] { kcedSay("looked"); });
    kcedCommandStack().addCommand("TEST", "CHANGE", "CHANGE", 0, [] { kcedSay("changed"); });
    KcGePoint3d point;
    QString text;
    kcedCommandStack().addCommand("TEST", "ASKS", "ASKS", 0, [&] {
        GetPoint(point, "\nPoint: ");
        GetString(text, "\nText: ");
    });
    EXPECT_EQ(session.run({ "ASKS", "'LOOK", "'change", "(help \"/no/file\")", "4,5", "'LOOK" }), 0);
    EXPECT_TRUE(point.isEqualTo({ 4, 5, 0 }));
    EXPECT_EQ(text, "'LOOK"); // a text may be anything
    EXPECT_EQ(session.printed.count("looked"), 1);
    EXPECT_FALSE(session.printed.contains("changed"));
    EXPECT_TRUE(session.printed.contains("CHANGE cannot be used while a command asks."));
    EXPECT_TRUE(session.printed.contains("/no/file is missing"));
}

TEST(WhatMayHappen, ClosingEndsThePromptFirst)
{
    ed_test::Session session;
    Kcad::ErrorStatus closed = Kcad::eInvalidInput;
    bool asked = true;
    session.run(
        [&] {
            const KcApDocLock lock;
            // As the close button of a window would ask for it while the prompt waits.
            kcedRequest(KcEdWish::Close, [] { FAIL() << "a command computes"; });
            KcEdPrompt prompt;
            prompt.kind = KcEdPrompt::Kind::Point;
            prompt.drag = [&](KcGePoint3d) {
                kcedRequest(KcEdWish::Close, [&] {
                    closed = session.document.lockCount() == 0 ? Kcad::eOk : Kcad::eLockViolation;
                });
            };
            asked = !std::holds_alternative<KcEdEscape>(KcEdEditor::instance().ask(prompt));
        },
        { "~1,1" });
    EXPECT_FALSE(asked);
    EXPECT_EQ(closed, Kcad::eOk);
}

TEST(Boxes, AskAndAreLookedAt)
{
    using namespace platform;
    ed_test::Session session;
    const QTemporaryDir folder;
    MessageBoxAnswer answer = MessageBoxAnswer::Ok;
    const auto ask = [&](MessageBoxButtons buttons, const QStringList& lines) {
        return session.run(
            [&, buttons] {
                answer
                    = kcedAnswerMessageBox({ nullptr, "删除吗?", "标题", buttons, MessageBoxIcon::Question });
            },
            lines);
    };
    const QString picture = folder.filePath("box.png");
    EXPECT_EQ(ask(MessageBoxButtons::YesNo, { "!list", "!shot " + picture, "!press 是" }), 0)
        << session.errors;
    EXPECT_EQ(answer, MessageBoxAnswer::Yes);
    EXPECT_GT(QImage(picture).width(), 50);
    EXPECT_EQ(ask(MessageBoxButtons::AbortRetryIgnore, { "!set x 1", "!no" }), 1);
    EXPECT_EQ(answer, MessageBoxAnswer::Ignore);
    EXPECT_EQ(ask(MessageBoxButtons::YesNoCancel, { "REGEN" }), 0); // cancels, and is read again
    EXPECT_EQ(answer, MessageBoxAnswer::Cancel);
    EXPECT_EQ(ask(MessageBoxButtons::Ok, { "!ok" }), 1); // closed itself before
}

TEST(Files, AreNamedByLines)
{
    kcedInstallDialogHandlers();
    ed_test::Session session;
    const QTemporaryDir folder;
    for (const char* name : { "one.dxf", "two words.dxf" }) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QStringList chosen;
    platform::FileRequest request;
    request.caption = "打开";
    request.filter = "图形 (*.dxf)|*.dxf|所有文件|*.*||";
    request.folder = folder.path();
    const auto ask = [&](const QStringList& lines) {
        return session.run([&] { chosen = kcedAnswerFileRequest(request); }, lines);
    };
    EXPECT_EQ(ask({ "!file none.dxf", "!file ONE.dxf" }), 1);
    EXPECT_EQ(chosen, QStringList(folder.filePath("one.dxf"))); // letter case does not matter
    EXPECT_EQ(ask({ "!file two words.dxf" }), 0);
    EXPECT_EQ(chosen, QStringList(folder.filePath("two words.dxf")));
    request.several = true;
    EXPECT_EQ(ask({ "!file one.dxf \"two words.dxf\"" }), 0);
    EXPECT_EQ(chosen.size(), 2);
    EXPECT_EQ(ask({ "!cancel" }), 0);
    EXPECT_TRUE(chosen.isEmpty());
    EXPECT_EQ(ask({ "REGEN" }), 0);
    EXPECT_TRUE(chosen.isEmpty());

    request.opens = request.several = false;
    request.defaultExtension = "dxf";
    EXPECT_EQ(ask({ "!file one", "!no", "!file new" }), 0);
    EXPECT_EQ(chosen, QStringList(folder.filePath("new.dxf")));
    EXPECT_EQ(ask({ "!file one", "!yes" }), 0);
    EXPECT_EQ(chosen, QStringList(folder.filePath("one.dxf")));
    EXPECT_EQ(ask({ "!file no/where.dxf", "!cancel" }), 1);
    platform::setMessageBoxHandler({});
    platform::setFileDialogHandler({});
}
