// Copies of unsaved work: when they are written, what happens when they cannot be, and what is offered after
// a crash.
#include "hand.h"

#include "dxf/drawing_file.h"
#include "ed/activity.h"
#include "ui/autosave.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using ui_test::Onlooker;

namespace {

size_t entitiesOf(KcDbDatabase& database)
{
    size_t count = 0;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(database.modelSpace()))
        count += !id.isErased();
    return count;
}

class Copies : public ui_test::Hand {
protected:
    Copies()
    {
        kcedSetVar("SAVETIME", int64_t(2));
        autosave.clock = [this] { return now; };
    }
    ~Copies() override { kcedSetVar("SAVETIME", int64_t(5)); }

    QStringList files(const QString& pattern = "*")
    {
        return QDir(folder.path()).entryList({ pattern }, QDir::Files);
    }
    size_t entitiesOfTheCopy()
    {
        KcDbDatabase copy(KcDbDatabase::Content::kEmpty);
        const QStringList copies = files("*.dxf");
        if (copies.size() != 1 || !dxf::readDrawing(folder.filePath(copies.front()), copy).ok)
            return 0;
        return entitiesOf(copy);
    }
    /// What the command line has shown since the last call.
    QString said()
    {
        QApplication::processEvents();
        const QString all = history();
        return all.mid(std::exchange(m_shown, all.size()));
    }
    /// A process that has changed the drawing and ends badly, with its copy in the folder or, where it is
    /// empty, in the user's own.
    void crash(const QString& where = {})
    {
        const pid_t crashing = ::fork();
        if (crashing == 0) {
            KcUiRecovery recovery(where);
            const bool ok = recovery.begin(database()).ok() && recovery.finished(true) == QString();
            ::_exit(ok ? 0 : 1); // nothing is tidied up
        }
        int status = -1;
        ASSERT_EQ(::waitpid(crashing, &status, 0), crashing);
        ASSERT_EQ(status, 0);
    }

    QTemporaryDir folder;
    KcUiAutosave autosave{ folder.path() };
    qint64 now = 0; ///< milliseconds, as the autosave sees them

private:
    qsizetype m_shown = 0;
};

} // namespace

// Faults: a copy too early or never, one in the midst of a command, one that stays when the work is saved.
TEST_F(Copies, AreWrittenSomeMinutesAfterAChange)
{
    const auto after = [&](int seconds) {
        now += seconds * 1000;
        autosave.check();
        autosave.recovery().finished(true);
        return files("*.dxf").size();
    };
    EXPECT_EQ(after(1000), 0) << "nothing has changed";
    addLine(0, 0, 1, 1);
    EXPECT_EQ(after(0), 0);
    EXPECT_EQ(after(119), 0);
    {
        const KcEdActivityScope command(KcEdActivity::Prompt);
        EXPECT_EQ(after(60), 0);
    }
    EXPECT_EQ(after(0), 1);
    EXPECT_EQ(entitiesOfTheCopy(), 1u);
    addLine(1, 1, 2, 2);
    after(0);
    after(119);
    EXPECT_EQ(entitiesOfTheCopy(), 1u);
    after(1);
    EXPECT_EQ(entitiesOfTheCopy(), 2u);
    document().markSaved();
    after(0);
    EXPECT_EQ(files(), QStringList());
    kcedSetVar("SAVETIME", int64_t(0));
    addLine(2, 2, 3, 3);
    after(0);
    EXPECT_EQ(after(100'000), 0);
}

TEST_F(Copies, TheIntervalIsRemembered)
{
    {
        KcUiAutosave other(folder.path());
        kcedSetVar("SAVETIME", int64_t(17));
        other.check();
    }
    kcedSetVar("SAVETIME", int64_t(3));
    const KcUiAutosave again(folder.path());
    EXPECT_EQ(kcedVarInt("SAVETIME", 0), 17);
    QSettings().setValue("autosave/minutes", "-5");
    kcedSetVar("SAVETIME", int64_t(3));
    const KcUiAutosave damaged(folder.path());
    EXPECT_EQ(kcedVarInt("SAVETIME", 0), 3);
    QSettings().remove("autosave/minutes");
}

// Faults: a failure that nobody hears of, one that is said every two seconds, a good copy lost over it, no
// other attempt.
TEST_F(Copies, WhatCannotBeWrittenIsSaidInOneLine)
{
    const auto after = [&](int minutes) {
        now += minutes * 60'000;
        autosave.check();
        while (autosave.recovery().isWriting()) {
            QTest::qWait(1);
            autosave.check();
        }
        for (int i = 0; i < 5; ++i)
            autosave.check();
        return said().count("No recovery copy could be written");
    };
    addLine(0, 0, 1, 1);
    after(0);
    EXPECT_EQ(after(2), 0);
    EXPECT_EQ(entitiesOfTheCopy(), 1u);

    // A full disk, as far as the writer can tell.
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit little{ 1000, before.rlim_max };
    const auto oldHandler = ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &little);
    addLine(1, 1, 2, 2);
    after(0);
    EXPECT_EQ(after(2), 1);
    EXPECT_EQ(entitiesOfTheCopy(), 1u) << "the copy before is gone";
    EXPECT_EQ(after(0), 0);
    EXPECT_EQ(after(2), 1);
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(after(2), 0);
    EXPECT_EQ(entitiesOfTheCopy(), 2u);

    QFile inTheWay(folder.filePath("file"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    KcUiAutosave nowhere(inTheWay.fileName() + "/recovery");
    nowhere.clock = [&] { return now; };
    nowhere.check(true);
    EXPECT_TRUE(said().contains("No recovery copy could be written: The folder ")) << history();
    nowhere.check();
    EXPECT_EQ(said(), "");
}

// A process that ends without closing leaves its copy; one that closes leaves none; one that runs is let be.
TEST_F(Copies, AreFoundAgainAfterACrash)
{
    addLine(1, 2, 3, 4);
    crash(folder.path());
    KcUiRecovery running(folder.path()), other(folder.path());
    {
        const auto lost = other.lost();
        ASSERT_EQ(lost.size(), 1u);
        EXPECT_TRUE(KcUiRecovery(folder.path()).lost().empty()) << "offered twice";
        EXPECT_EQ(entitiesOfTheCopy(), 1u);
        KcUiRecovery::remove(lost.front());
    }
    EXPECT_TRUE(other.lost().empty());
    running.discard();
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

// Faults: the copy in the place of the drawing without its name or the unsaved mark, one offered for another
// drawing, a "no" that is asked again, a "cancel" that throws work away.
TEST_F(Copies, AreOfferedAtTheNextStart)
{
    const QString path = folder.filePath("garden.dxf");
    ASSERT_TRUE(dxf::saveDrawing(database(), path).ok);
    ASSERT_TRUE(window.openDrawing(path));
    addLine(1, 2, 3, 4);
    const KcEdSourceScope source(window.source());
    int asked = 0;
    const auto offer = [&](const QString& drawing, QMessageBox::StandardButton button) {
        const Onlooker onlooker([&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                ++asked;
                EXPECT_TRUE(box->text().startsWith(path)) << box->text();
                box->button(button)->click();
            }
        });
        return window.offerLostWork(drawing);
    };

    // The program knew the drawing by a name that counts from the folder it was started in.
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    database().setFileName("garden.dxf");
    crash();
    database().setFileName(path);
    ASSERT_TRUE(QDir::setCurrent("/"));

    document().markSaved();
    window.newDrawing();
    EXPECT_FALSE(offer(folder.filePath("other.dxf"), QMessageBox::Yes));
    EXPECT_EQ(asked, 0);
    EXPECT_FALSE(offer("", QMessageBox::Cancel));
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(offer(path, QMessageBox::Yes));
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(database().fileName(), path);
    EXPECT_EQ(entitiesOf(database()), 1u);
    EXPECT_TRUE(document().isModified());
    EXPECT_TRUE(window.isWindowModified());
    EXPECT_TRUE(window.windowTitle().startsWith("garden.dxf")) << window.windowTitle();
    EXPECT_FALSE(offer("", QMessageBox::Yes)) << "its own copy";

    crash();
    EXPECT_FALSE(offer("", QMessageBox::No));
    EXPECT_FALSE(offer("", QMessageBox::Yes));
    EXPECT_EQ(asked, 3);
}
