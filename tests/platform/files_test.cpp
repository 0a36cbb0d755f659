// Case-blind lookup, writing whole or not at all, and filling the application root.

#include "platform/files.h"

#include "platform/app_root.h"
#include "platform/diagnostics.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace platform;

namespace {

class Folder : public testing::Test {
protected:
    QString at(const char* name) const { return m_folder.path() + u'/' + QString::fromUtf8(name); }
    void put(const char* name, const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(at(name)).path());
        ASSERT_TRUE(writeFileAtomically(at(name), bytes));
    }
    QByteArray get(const char* name) const { return readWholeFile(at(name)).value.value_or("no file"); }
    QStringList names(const QString& folder) const
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QTemporaryDir m_folder;
};

mode_t modeOf(const QString& path)
{
    struct stat info { };
    stat(path.toUtf8().constData(), &info);
    return info.st_mode & 07777;
}

} // namespace

TEST_F(Folder, pathsAreFoundWithoutRegardToCase)
{
    put("Sys/VERDELIS.INI", "x");
    put("Sys/图案/B.pat", "b");
    put("two/a.txt", "lower");
    put("two/A.TXT", "upper"); // a write takes its name exactly
    struct Row {
        const char* asked;
        const char* found;
    };
    for (const Row& row : {
             Row{ "sys\\verdelis.ini", "Sys/VERDELIS.INI" },
             Row{ "/Sys//\\VERDELIS.ini", "Sys/VERDELIS.INI" },
             Row{ "SYS/图案/b.PAT", "Sys/图案/B.pat" },
             Row{ "SYS/../sys/./verdelis.INI", "Sys/../Sys/./VERDELIS.INI" },
             Row{ "sys\\New Folder\\New.txt", "Sys/New Folder/New.txt" }, // to be created
             Row{ "two/a.txt", "two/a.txt" },
             Row{ "TWO/A.txt", "two/A.TXT" },
             Row{ "SYS/", "Sys/" },
         })
        EXPECT_EQ(findPath(at(row.asked)), at(row.found)) << row.asked;

    const QString before = QDir::currentPath();
    QDir::setCurrent(m_folder.path());
    EXPECT_EQ(findPath("sys\\verdelis.ini"), "Sys/VERDELIS.INI");
    EXPECT_EQ(findPath("none"), "none");
    QDir::setCurrent(before);
}

TEST_F(Folder, writingReplacesTheFileAndKeepsItsPermissions)
{
    put("a.txt", "old");
    ASSERT_EQ(chmod(at("a.txt").toUtf8().constData(), 0640), 0);
    EXPECT_TRUE(writeFileAtomically(at("a.txt"), "new"));
    EXPECT_EQ(get("a.txt"), "new");
    EXPECT_EQ(modeOf(at("a.txt")), 0640u);

    const mode_t mask = umask(027);
    EXPECT_TRUE(writeFileAtomically(at("fresh.txt"), ""));
    umask(mask);
    EXPECT_EQ(modeOf(at("fresh.txt")), 0640u);

    ASSERT_TRUE(QFile::link("a.txt", at("link.txt")));
    EXPECT_TRUE(writeFileAtomically(at("link.txt"), "through"));
    EXPECT_TRUE(QFileInfo(at("link.txt")).isSymLink());
    EXPECT_EQ(get("a.txt"), "through");
    EXPECT_EQ(names(m_folder.path()), QStringList({ "a.txt", "fresh.txt", "link.txt" }));
}

TEST_F(Folder, aFailedWriteSaysWhyAndLeavesNothingBehind)
{
    EXPECT_TRUE(writeFileAtomically("/dev/full", "x").error.contains("disk is full"));
    EXPECT_TRUE(writeFileAtomically(at("none/a.txt"), "x").error.contains("no such file or folder"));
    EXPECT_TRUE(writeFileAtomically(m_folder.path(), "x").error.contains("is a folder"));
    EXPECT_FALSE(readWholeFile(m_folder.path()));
    EXPECT_TRUE(readWholeFile(at("none")).error.contains(at("none")));

    // A file size limit stands in for the disk that fills up half-way.
    put("kept.txt", "old");
    const QByteArray program = "trap '' XFSZ; ulimit -f 1; exec \"$0\" --gtest_also_run_disabled_tests "
                               "--gtest_filter=Folder.DISABLED_writesMoreThanFits >/dev/null";
    qputenv("TARGET", at("kept.txt").toUtf8());
    const QByteArray self = QFile::encodeName(QFileInfo("/proc/self/exe").symLinkTarget());
    EXPECT_EQ(
        std::system(("bash -c '" + QByteArray(program).replace("'", "'\\''") + "' " + self).constData()), 0);
    EXPECT_EQ(get("kept.txt"), "old");
    EXPECT_EQ(names(m_folder.path()), QStringList("kept.txt"));
}

// Run by the test above in a process that may write only 1024 bytes to a file.
TEST_F(Folder, DISABLED_writesMoreThanFits)
{
    EXPECT_FALSE(writeFileAtomically(qEnvironmentVariable("TARGET"), QByteArray(1 << 20, 'x')));
}

// Permissions do not bind the superuser, so the writes happen in a process of somebody else.
TEST_F(Folder, writeProtectionIsRespected)
{
    constexpr uid_t nobody = 65534;
    put("folder/a.txt", "old");
    for (const QString& path : { m_folder.path(), at("folder"), at("folder/a.txt") })
        ASSERT_TRUE(geteuid() != 0 || chown(path.toUtf8().constData(), nobody, nobody) == 0);
    ASSERT_EQ(chmod(at("folder/a.txt").toUtf8().constData(), 0444), 0);
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && setuid(nobody) != 0)
            _exit(1);
        if (!writeFileAtomically(at("folder/a.txt"), "x").error.contains("permission denied"))
            _exit(2);
        chmod(at("folder").toUtf8().constData(), 0555);
        const bool refused = writeFileAtomically(at("folder/b.txt"), "x").error.contains("permission denied");
        chmod(at("folder").toUtf8().constData(), 0755);
        _exit(refused ? 0 : 3);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(get("folder/a.txt"), "old");
    EXPECT_EQ(names(at("folder")), QStringList("a.txt"));
}

TEST_F(Folder, copiesKeepAnExistingTargetWhenAsked)
{
    QStringList said;
    const DiagnosticHandler before = setDiagnosticHandler([&](const QString& text) { said += text; });
    put("a", "1");
    put("b", "2");
    EXPECT_FALSE(CopyFileW(at("a"), at("B"), true));
    EXPECT_EQ(get("b"), "2");
    EXPECT_TRUE(CopyFileW(at("a"), at("B"), false));
    EXPECT_EQ(get("b"), "1");
    EXPECT_FALSE(CopyFileW(at("none"), at("b"), false));
    EXPECT_EQ(said.size(), 2);
    setDiagnosticHandler(before);
}

TEST_F(Folder, aMissingOrEmptyRootIsFilledAndAnyOtherLeft)
{
    put("shipped/Sys/VERDELIS.INI", "settings");
    put("shipped/Data/DWG/DrawSet.dxf", "drawing");
    ASSERT_EQ(chmod(at("shipped/Sys/VERDELIS.INI").toUtf8().constData(), 0444), 0);
    QDir().mkpath(at("empty"));
    put("own/only.txt", "mine");
    QDir().mkpath(at("hidden"));
    put("hidden/.keep", "");

    for (const char* root : { "missing/deeper", "empty" }) {
        EXPECT_TRUE(fillRoot(at(root), at("shipped"))) << root;
        EXPECT_EQ(names(at(root)), QStringList({ "Data", "Sys" })) << root;
        EXPECT_EQ(get((QByteArray(root) + "/Data/DWG/DrawSet.dxf").constData()), "drawing");
        // The shipped file is read-only; the user's copy is not.
        EXPECT_TRUE(modeOf(at(root) + "/Sys/VERDELIS.INI") & 0200) << root;
        EXPECT_TRUE(modeOf(at(root)) & 0100) << root;
    }
    EXPECT_TRUE(fillRoot(at("own"), at("shipped")));
    EXPECT_EQ(names(at("own")), QStringList("only.txt"));
    EXPECT_TRUE(fillRoot(at("hidden"), at("shipped")));
    EXPECT_EQ(names(at("hidden")), QStringList(".keep"));

    EXPECT_TRUE(fillRoot(at("own/only.txt"), at("shipped")).error.contains("is not a folder"));
    const QString noSource = fillRoot(at("fresh"), at("nowhere")).error;
    EXPECT_TRUE(noSource.contains(at("fresh")) && noSource.contains(at("nowhere"))) << noSource.toStdString();
    EXPECT_FALSE(fillRoot(at("own/only.txt/below"), at("shipped")));
    EXPECT_EQ(names(m_folder.path()), QStringList({ "empty", "hidden", "missing", "own", "shipped" }));
    chmod(at("shipped/Sys/VERDELIS.INI").toUtf8().constData(), 0644);
}

TEST_F(Folder, theRootIsChosenByOptionThenEnvironmentThenDataFolder)
{
    const QByteArray oldRoot = qgetenv("VERDELIS_ROOT");
    const QByteArray oldData = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", at("xdg").toUtf8());
    qputenv("VERDELIS_ROOT", "");
    EXPECT_EQ(appRoot(), at("xdg/verdelis"));
    qputenv("VERDELIS_ROOT", at("env/").toUtf8());
    EXPECT_EQ(appRoot(), at("env"));
    setAppRoot(at("option/"));
    EXPECT_EQ(appRoot(), at("option"));
    setAppRoot("relative");
    EXPECT_EQ(appRoot(), QDir::currentPath() + "/relative");
    setAppRoot({});
    EXPECT_EQ(appRoot(), at("env"));
    oldRoot.isNull() ? qunsetenv("VERDELIS_ROOT") : qputenv("VERDELIS_ROOT", oldRoot);
    oldData.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", oldData);
}
