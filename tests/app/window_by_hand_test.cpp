// The window of the program in a process of its own, on a display made for it, with the mouse and keys of a
// user: what tests inside the process cannot see is whether the events of a real display arrive.
#include "app/support.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

using app_test::Program;

namespace {

class WindowByHand : public Program {
protected:
    void SetUp() override
    {
        for (const char* needed : { "Xvfb", "xdotool" })
            if (QStandardPaths::findExecutable(QLatin1String(needed)).isEmpty())
                GTEST_SKIP() << needed << " is not installed";
        m_display.setStandardErrorFile(QProcess::nullDevice());
        m_display.start("Xvfb", { "-displayfd", "1", "-screen", "0", "1600x1000x24" });
        ASSERT_TRUE(m_display.waitForReadyRead(kPatience)) << "no display";
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert("DISPLAY", ":" + QString::fromLatin1(m_display.readLine().trimmed()));
        m_environment.insert("QT_QPA_PLATFORM", "xcb");
        m_environment.insert("QT_SCALE_FACTOR", "1");
        m_environment.insert("VERDELIS_ROOT", folder.filePath("root"));
        for (const char* place : { "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME" })
            m_environment.insert(place, folder.filePath(place));
    }
    void TearDown() override
    {
        for (QProcess* process : { &m_program, &m_display }) {
            process->kill();
            process->waitForFinished();
        }
    }

    void start(const QString& drawing)
    {
        m_program.setProcessEnvironment(m_environment);
        m_program.setProcessChannelMode(QProcess::MergedChannels);
        m_program.start(program, { drawing });
    }
    /// What xdotool prints; it goes through the words one after the other.
    QString hand(const QStringList& words)
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.start("xdotool", words);
        EXPECT_TRUE(process.waitForFinished(kPatience)) << words.join(' ').toStdString();
        return QString::fromUtf8(process.readAllStandardOutput());
    }
    /// Waits for a window by its title, a regular expression, and gives it the keys: nobody manages windows
    /// here.
    bool goTo(const QString& title)
    {
        return waitFor([&] {
            const QStringList found = windows(title);
            if (!found.isEmpty())
                hand({ "windowfocus", "--sync", found.last() });
            return !found.isEmpty();
        });
    }
    QStringList windows(const QString& title)
    {
        return hand({ "search", "--onlyvisible", "--name", title }).split('\n', Qt::SkipEmptyParts);
    }
    template <class Condition> static bool waitFor(Condition holds)
    {
        QElapsedTimer clock;
        clock.start();
        while (!holds()) {
            if (clock.hasExpired(kPatience))
                return false;
            QThread::msleep(30);
        }
        return true;
    }
    /// Lines, each ended by Return: the line feed that xdotool would type is another key.
    void type(const QString& text)
    {
        QStringList lines = text.split('\n');
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (!lines[i].isEmpty())
                hand({ "type", "--delay", "2", lines[i] });
            if (i + 1 < lines.size())
                press({ "Return" });
        }
    }
    /// As quickly as a hand does it.
    void press(const QStringList& keys) { hand(QStringList{ "key", "--delay", "80" } + keys); }
    static QStringList to(int x, int y) { return { "mousemove", QString::number(x), QString::number(y) }; }

    qsizetype tables(const QString& drawing)
    {
        return run({ "dump", drawing, "--type", "ACAD_TABLE" }).out.count('\n');
    }

    static constexpr int kPatience = 20'000; // milliseconds; a loaded machine is slow
    QProcess m_display, m_program;
    QProcessEnvironment m_environment;
};

} // namespace

// What a landscape architect does in an hour: look around, count, undo, redo, set up, plot, leave. Faults:
// events that do not arrive, dialogs that cannot be reached by keys, work that is lost at the end.
TEST_F(WindowByHand, CountsSetsUpPlotsAndSaves)
{
    const QString drawing = folder.filePath("plan.dxf");
    ASSERT_TRUE(QFile::copy(plan, drawing));
    const qsizetype before = tables(drawing);
    start(drawing);
    ASSERT_TRUE(goTo("^plan.dxf ")) << m_program.readAll().toStdString();

    // Wheel in, pan with the middle button, a key for everything.
    hand(
        to(300, 300) + QStringList{ "click", "4", "click", "4", "mousedown", "2" } + to(340, 320)
        + to(380, 340) + QStringList{ "mouseup", "2" });
    press({ "Home" });
    type("TREENUMTOTABLE\n");
    hand(
        QStringList{ "sleep", "0.3" } + to(12, 90) + QStringList{ "mousedown", "1" } + to(300, 300)
        + to(760, 610) + QStringList{ "mouseup", "1" });
    press({ "Return" });
    hand(to(400, 300) + QStringList{ "click", "1" });
    ASSERT_TRUE(goTo("^plan.dxf[*]"));

    press({ "ctrl+z", "ctrl+s" });
    ASSERT_TRUE(goTo("^plan.dxf "));
    EXPECT_EQ(tables(drawing), before);
    press({ "ctrl+y" });
    ASSERT_TRUE(goTo("^plan.dxf[*]"));

    type("DRAWINGSETTING\n");
    // Titles that are not ASCII are not matched by xdotool; what begins otherwise is the dialog.
    ASSERT_TRUE(goTo("^[^a-zA-Z0-9]"));
    press({ "Tab", "ctrl+a" });
    type("2.36\n");
    EXPECT_TRUE(waitFor([&] {
        QFile settings(folder.filePath("root/Sys/VERDELIS.INI"));
        return settings.open(QIODevice::ReadOnly) && settings.readAll().contains("dTextHeight=2.4");
    }));

    ASSERT_TRUE(waitFor([&] { return windows("^[^a-zA-Z0-9]").isEmpty(); }));
    goTo("^plan.dxf");
    type("PLOT\n\n\n\n\n");
    EXPECT_TRUE(waitFor([&] { return QFileInfo(folder.filePath("plan.pdf")).size() > 10'000; }));

    press({ "ctrl+q" });
    ASSERT_TRUE(goTo("^Verdelis$"));
    press({ "alt+y" });
    ASSERT_TRUE(
        waitFor([&] { return m_program.waitForFinished(0) || m_program.state() == QProcess::NotRunning; }));
    EXPECT_EQ(m_program.exitCode(), 0) << m_program.readAll().toStdString();
    EXPECT_EQ(tables(drawing), before + 1);
}
