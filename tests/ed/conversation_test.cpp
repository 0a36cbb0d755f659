// Scripts against prompts and commands: what is taken, what is refused, what Escape leaves, what undo takes
// back.
#include "session.h"

#include "ed/message_boxes.h"

#include "core/commands.h"
#include "core/prompts.h"
#include "ed/help.h"

#include <gtest/gtest.h>

using ed_test::Session;

namespace {

size_t modelCount(const KcDbDatabase& database)
{
    return KcDbRead<KcDbBlockTableRecord>(database.modelSpace())->entityIds().size();
}

} // namespace

// A script that goes wrong in the middle must still do the rest, and say which line it was.
TEST(Conversation, RefusedLinesAreNamedAndTheScriptGoesOn)
{
    Session s;
    QStringList points;
    const int refusals = s.run(
        [&] {
            KcGePoint3d p;
            while (kcedGetPoint(nullptr, QStringLiteral("\nPoint: "), p) == kcedNormal)
                points += QStringLiteral("%1,%2").arg(p.x).arg(p.y);
        },
        { "; a comment", "1,2", "nonsense", "@1,1", "!ok", "", "NOSUCHCOMMAND" });
    EXPECT_EQ(points, QStringList({ "1,2", "2,3" }));
    EXPECT_EQ(refusals, 3);
    EXPECT_TRUE(s.errors.contains("test, line 4: \"nonsense\"")) << qPrintable(s.errors);
    EXPECT_TRUE(s.errors.contains("line 6: \"!ok\""));
    EXPECT_TRUE(s.errors.contains("Unknown command \"NOSUCHCOMMAND\"."));
}

// ^C, and the end of the script, end every kind of prompt, and no value is touched.
TEST(Conversation, EscapeAtEveryKindOfPrompt)
{
    for (const QStringList& ending : { QStringList{ "^C" }, QStringList{} }) {
        Session s;
        int asked = 0;
        const auto cancels = [&](KcEdStatus status) {
            ++asked;
            EXPECT_EQ(status, kcedCancel) << asked;
        };
        const std::vector<std::function<void()>> prompts{
            [&] {
                KcGePoint3d p;
                cancels(kcedGetPoint(nullptr, "\n?", p));
            },
            [&] {
                KcGePoint3d p;
                cancels(kcedGetCorner({}, "\n?", p));
            },
            [&] {
                double d = 7;
                cancels(kcedGetDist(nullptr, "\n?", d));
                EXPECT_EQ(d, 7);
            },
            [&] {
                double d = 7;
                cancels(kcedGetReal("\n?", d));
            },
            [&] {
                int i = 7;
                cancels(kcedGetInt("\n?", i));
                EXPECT_EQ(i, 7);
            },
            [&] {
                QString t("x");
                cancels(kcedGetString(true, "\n?", t));
                EXPECT_EQ(t, "x");
            },
            [&] {
                QString k;
                kcedInitGet(0, "A B");
                cancels(kcedGetKword("\n?", k));
            },
            [&] {
                KcDbObjectId id;
                KcGePoint3d p;
                cancels(kcedEntSel("\n?", id, p));
                EXPECT_TRUE(id.isNull());
            },
            [&] {
                KcEdSelectionSet set;
                cancels(kcedSSGet({}, nullptr, nullptr, {}, set));
                EXPECT_TRUE(set.isEmpty());
            },
            [&] {
                EXPECT_EQ(kcedGrRead().kind, KcEdTrack::Kind::Cancel);
                ++asked;
            },
        };
        for (const auto& prompt : prompts)
            EXPECT_EQ(s.run(prompt, ending), 0);
        EXPECT_EQ(asked, int(prompts.size()));
    }
}

// What was selected before ^C must not reach the command.
TEST(Conversation, EscapeDropsAHalfMadeSelection)
{
    Session s;
    s.addLine(0, 0, 1, 1);
    s.run({ "ERASE", "ALL", "^C", "" });
    EXPECT_EQ(modelCount(s.database), 1u);
}

TEST(Conversation, PreparedQuestionHoldsForOneQuestionOnly)
{
    Session s;
    QString keyword;
    KcEdStatus first{}, second{};
    const int refusals = s.run(
        [&] {
            KcGePoint3d p;
            kcedInitGet(KcEdPrompt::kNoEmpty, "Length");
            first = kcedGetPoint(nullptr, "\nPoint [Length]: ", p);
            keyword = kcedGetInput();
            second = kcedGetPoint(nullptr, "\nPoint: ", p);
        },
        { "", "le", "L", "" });
    EXPECT_EQ(first, kcedKeyword);
    EXPECT_EQ(keyword, "Length");
    EXPECT_EQ(second, kcedNone);
    EXPECT_EQ(refusals, 2) << "the empty answer, and the keyword that is gone";
}

TEST(Conversation, LiteralLines)
{
    Session s;
    QStringList texts;
    const auto ask = [&] {
        QString text;
        while (GetString(text, "\nText: ") && texts.size() < 4)
            texts += text;
    };
    EXPECT_EQ(s.run(ask, { "\\; no comment", "\\!ok", "\\^C", "\\\\" }), 0);
    EXPECT_EQ(texts, QStringList({ "; no comment", "!ok", "^C", "\\" }));
}

// One undo for all that a command did, host commands that it ran included.
TEST(Conversation, ACommandIsOneUndoStep)
{
    Session s;
    const KcDbObjectId old = s.addLine(0, 0, 1, 1);
    s.run(
        [&] {
            s.addLine(5, 5, 6, 6);
            EXPECT_EQ(kcedCommand("ERASE", Session::handle(old), ""), "");
            s.addLine(7, 7, 8, 8);
        },
        {});
    EXPECT_EQ(modelCount(s.database), 2u);
    s.run({ "U" });
    EXPECT_EQ(modelCount(s.database), 1u);
    EXPECT_FALSE(old.isErased());
    s.run({ "REDO" });
    EXPECT_EQ(modelCount(s.database), 2u);
    EXPECT_TRUE(old.isErased());
    s.run({ "UNDO", "UNDO", "UNDO" });
    EXPECT_TRUE(s.printed.contains("Nothing to undo"));
}

// An error leaves completed rounds and nothing of the one that failed; a cancel leaves all.
TEST(Conversation, AnErrorTakesBackTheRoundThatFailed)
{
    Session s;
    const KcDbObjectId before = s.addLine(0, 0, 1, 1);
    s.run(
        [&] {
            KcDbWrite<KcDbLine>(before)->data().end = { 9, 9, 0 };
            s.addLine(5, 5, 6, 6);
            kcedRoundCompleted();
            KcDbWrite<KcDbLine>(before)->data().end = { 3, 3, 0 };
            s.addLine(7, 7, 8, 8);
            throw std::runtime_error("no such plant");
        },
        {});
    EXPECT_EQ(modelCount(s.database), 2u);
    EXPECT_EQ(KcDbRead<KcDbLine>(before)->data().end.x, 9);
    EXPECT_TRUE(s.printed.contains("TESTED failed: no such plant")) << qPrintable(s.printed);
    s.run({ "U" });
    EXPECT_EQ(modelCount(s.database), 1u);
    EXPECT_EQ(KcDbRead<KcDbLine>(before)->data().end.x, 1);
}

// A failing host command must not take its caller's work with it.
TEST(Conversation, AnErrorInANestedCommandLeavesTheCaller)
{
    Session s;
    QString told;
    kcedCommandStack().addCommand("TEST2", "FAILS", "FAILS", 0, [&] {
        s.addLine(1, 1, 2, 2);
        throw 1;
    });
    s.run(
        [&] {
            s.addLine(5, 5, 6, 6);
            told = kcedCommand("_fails");
        },
        {});
    kcedCommandStack().removeGroup("TEST2");
    EXPECT_EQ(modelCount(s.database), 1u);
    EXPECT_EQ(told, "FAILS failed.");
}

TEST(Conversation, NestedCommandsTellWhatTheyDidNotTake)
{
    Session s;
    s.run([&] { EXPECT_TRUE(kcedCommand("MOVE", "rubbish").contains("\"rubbish\" was not taken")); }, {});
    EXPECT_EQ(kcedCommand("_-NOSUCH"), "Unknown command \"_-NOSUCH\".");
}

TEST(Conversation, SelectionBeforeTheCommand)
{
    const struct {
        const char* name;
        int flags;
        bool ownPrompt;
    } rows[] = { { "a command that may take it", 2, false }, { "one that may not", 0, true } };
    for (const auto& row : rows) {
        Session s;
        const KcDbObjectId line = s.addLine(0, 0, 1, 1);
        s.addLine(5, 5, 6, 6);
        std::vector<size_t> sizes;
        const auto ask = [&] {
            for (int i = 0; i < 2; ++i) {
                KcEdSelectionSet set;
                kcedSSGet({}, nullptr, nullptr, {}, set);
                sizes.push_back(set.size());
            }
        };
        s.run({ Session::handle(line) });
        EXPECT_EQ(s.document.pickFirst.size(), 1u);
        s.run(ask, row.ownPrompt ? QStringList{ "ALL", "", "ALL", "" } : QStringList{ "ALL", "" }, row.flags);
        EXPECT_EQ(sizes, row.ownPrompt ? std::vector<size_t>({ 2, 2 }) : std::vector<size_t>({ 1, 2 }))
            << row.name;
        EXPECT_TRUE(s.document.pickFirst.isEmpty());
    }
}

// Text sent by a command runs after it and before the script goes on, its answers included.
TEST(Conversation, SentTextRunsWhenIdle)
{
    Session s;
    const KcDbObjectId line = s.addLine(0, 0, 1, 1);
    size_t during = 0;
    s.run(
        [&] {
            kcDocManagerPtr()->sendStringToExecute(&s.document, "ERASE\n" + Session::handle(line) + "\n\n");
            during = modelCount(s.database);
        },
        { "U" });
    EXPECT_EQ(during, 1u);
    EXPECT_EQ(modelCount(s.database), 1u) << "erased, then undone by the script's next line";
    EXPECT_TRUE(s.printed.contains("ERASE")) << qPrintable(s.printed);
}

TEST(Conversation, HelpExpression)
{
    EXPECT_EQ(kcedHelpPath(R"((help "C:\\P\\Sys\\VdHelp.chm"))").value_or(""), R"(C:\P\Sys\VdHelp.chm)");
    EXPECT_FALSE(kcedHelpPath(R"((help "unfinished))"));
    Session s;
    EXPECT_EQ(s.run(QStringList{ R"((help "/no\\such\\help.chm"))" }), 0);
    EXPECT_TRUE(s.printed.contains("The help file /no/such/help.chm is missing.")) << qPrintable(s.printed);
}

TEST(Conversation, QuestionBoxes)
{
    using namespace platform;
    const struct {
        const char* name;
        MessageBoxButtons buttons;
        QStringList lines;
        MessageBoxAnswer answer;
        int refusals;
    } rows[] = {
        { "yes", MessageBoxButtons::YesNo, { "!yes" }, MessageBoxAnswer::Yes, 0 },
        { "ok means yes", MessageBoxButtons::YesNo, { "!ok" }, MessageBoxAnswer::Yes, 0 },
        { "no", MessageBoxButtons::YesNoCancel, { "!no" }, MessageBoxAnswer::No, 0 },
        { "cancel", MessageBoxButtons::YesNoCancel, { "; why", "!cancel" }, MessageBoxAnswer::Cancel, 0 },
        { "ok", MessageBoxButtons::OkCancel, { "!ok" }, MessageBoxAnswer::Ok, 0 },
        { "another line cancels and is read again",
          MessageBoxButtons::OkCancel,
          { "U" },
          MessageBoxAnswer::Cancel,
          0 },
        { "end of the script", MessageBoxButtons::YesNo, {}, MessageBoxAnswer::No, 0 },
        { "a line for a dialog",
          MessageBoxButtons::OkCancel,
          { "!press X", "!ok" },
          MessageBoxAnswer::Ok,
          1 },
        { "one button takes no line", MessageBoxButtons::Ok, {}, MessageBoxAnswer::Ok, 0 },
    };
    for (const auto& row : rows) {
        Session s;
        MessageBoxAnswer answer{};
        const int refusals = s.run(
            [&] {
                answer = kcedAnswerMessageBox(
                    { nullptr, "Go on?", "Question", row.buttons, MessageBoxIcon::Question });
            },
            row.lines);
        EXPECT_EQ(int(answer), int(row.answer)) << row.name;
        EXPECT_EQ(refusals, row.refusals) << row.name;
        EXPECT_TRUE(s.printed.contains("Question: Go on?"));
    }
}

TEST(Conversation, CommandsByGroup)
{
    Session s;
    static const ArxCommandTable table[] = { { u"PLANT", [] {}, 2 }, { u"TREES", [] {}, 0 } };
    AddCommand("VDL_TEST", table, 2, 0);
    AddCommand("VDL_TEST", table, 2, 0);
    ASSERT_TRUE(kcedCommandStack().lookup("_.plant"));
    EXPECT_EQ(kcedCommandStack().lookup("PLANT")->flags, 2);
    EXPECT_TRUE(kcedCommandStack().removeGroup("vdl_test"));
    EXPECT_FALSE(kcedCommandStack().lookup("TREES"));
}

TEST(Conversation, LocksNestAndAreRefused)
{
    Session s;
    KcApDocManager& manager = *kcDocManagerPtr();
    {
        const KcApDocLock outer, inner;
        EXPECT_TRUE(outer && inner);
        EXPECT_EQ(manager.close(s.document), Kcad::eLockViolation);
    }
    EXPECT_EQ(s.document.lockCount(), 0);
    EXPECT_EQ(manager.unlockDocument(&s.document), Kcad::eLockViolation);
    s.document.setWriteProtected(true);
    EXPECT_EQ(KcApDocLock().status(), Kcad::eLockViolation);
    s.document.setWriteProtected(false);
    EXPECT_EQ(manager.lockDocument(nullptr), Kcad::eNullObjectId);
}

TEST(Conversation, NumbersWithLimitsAndKeywords)
{
    Session s;
    int count = 3;
    double distance = 1.5, zero = 9;
    QString keyword, letters;
    const int refusals = s.run(
        [&] {
            EXPECT_TRUE(GetInt(count, "\nCount: ", 2, {}, keyword));
            EXPECT_TRUE(GetDouble(distance, "\nDistance: ", 0.0));
            EXPECT_TRUE(GetDouble(zero, "\nZero: ", -0.001));
            EXPECT_TRUE(GetDouble(distance, "\nDistance: ", 0.0, "Dimension", letters));
            EXPECT_TRUE(GetInt(count, "\nCount: ", 2, {}, keyword));
        },
        { "1", "2", "0", "0.5", "0", "d", "" });
    EXPECT_EQ(count, 2) << "the limit itself is accepted, an empty answer keeps the value";
    EXPECT_EQ(distance, 0.5);
    EXPECT_EQ(zero, 0);
    EXPECT_EQ(letters, "D");
    EXPECT_EQ(refusals, 2);
}

TEST(Conversation, SelectionOrKeyword)
{
    Session s;
    s.addLine(0, 0, 1, 1);
    std::vector<KcDbObjectId> ids;
    QString keyword;
    bool first = true, second = false, third = true, isEmpty = false;
    s.run(
        [&] {
            const KcEdFilter lines = kcutBuildList(0, "LINE");
            first = GetSelectionOrString(ids, keyword, "\nSelect: ", "Dimension _ Dimension", lines);
            EXPECT_EQ(keyword, "D");
            second = GetSelectionOrString(ids, keyword, "\nSelect: ", "Block _ Block", lines);
            third = GetSelection(ids, lines, "\nSelect: ", &isEmpty);
        },
        { "d", "ALL", "", "" });
    EXPECT_FALSE(first);
    EXPECT_TRUE(second);
    EXPECT_EQ(ids.size(), 1u);
    EXPECT_FALSE(third);
    EXPECT_TRUE(isEmpty);
}
