// A copy is three files of one stem: the drawing (.dxf), whose it is (.json), and a lock that the system
// releases when its program ends, however it ends.

#include "ui/recovery.h"

#include "dxf/drawing_file.h"
#include "platform/files.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QString stateFolder()
{
    const QString state = qEnvironmentVariable("XDG_STATE_HOME");
    return (state.isEmpty() ? QDir::homePath() + QStringLiteral("/.local/state") : state)
        + QStringLiteral("/verdelis/recovery");
}

/// A descriptor that holds the lock; -1 when somebody else does or there is no such file.
int lockFile(const QString& path, int flags)
{
    const int file = ::open(QFile::encodeName(path).constData(), flags | O_RDWR | O_CLOEXEC, 0600);
    if (file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) != 0) {
        ::close(file);
        return -1;
    }
    return file;
}

/// A drawing is found again from whatever folder the program is started in.
QString absolutePath(const QString& path)
{
    return path.isEmpty() ? path : QFileInfo(path).absoluteFilePath();
}

/// With what a writer has begun that was stopped.
void removeFiles(const QString& stem)
{
    const QFileInfo info(stem);
    QDir folder(info.path());
    for (const QString& name : folder.entryList({ info.fileName() + QStringLiteral(".*") }, QDir::Files))
        folder.remove(name);
}

} // namespace

KcUiRecovery::KcUiRecovery(const QString& folder)
    : m_folder(folder.isEmpty() ? stateFolder() : folder)
{
}

KcUiRecovery::~KcUiRecovery()
{
    discard();
}

platform::Status KcUiRecovery::begin(KcDbDatabase& database)
{
    endWriter();
    if (m_lock < 0) {
        if (!QDir().mkpath(m_folder))
            return { QStringLiteral("The folder %1 cannot be made.").arg(m_folder) };
        m_stem = QStringLiteral("%1/%2-%3")
                     .arg(m_folder)
                     .arg(QCoreApplication::applicationPid())
                     .arg(QDateTime::currentMSecsSinceEpoch());
        m_lock = lockFile(path(".lock"), O_CREAT);
        if (m_lock < 0)
            return { QStringLiteral("%1 cannot be written.").arg(path(".lock")) };
    }
    const QByteArray whose
        = QJsonDocument(QJsonObject{ { QStringLiteral("drawing"), absolutePath(database.fileName()) } })
              .toJson();
    if (const platform::Status status = platform::writeFileAtomically(path(".json"), whose); !status)
        return status;
    int report[2];
    if (::pipe2(report, O_CLOEXEC | O_NONBLOCK) != 0)
        return { QString::fromLocal8Bit(std::strerror(errno)) };
    // The child has the drawing as it is now, and its writing changes nothing here.
    const pid_t child = ::fork();
    if (child == 0) {
        bool ok = false;
        try {
            const dxf::Result result = dxf::saveDrawing(database, path(".dxf"));
            ok = result.ok;
            const QByteArray reason = result.error.toUtf8();
            ok = ::write(report[1], reason.constData(), size_t(reason.size())) == reason.size() && ok;
        } catch (...) { // memory may be short; the child must end here in any case
        }
        ::_exit(ok ? 0 : 1);
    }
    ::close(report[1]);
    if (child < 0) {
        ::close(report[0]);
        return { QStringLiteral("No process could be started for it.") };
    }
    m_writer = child;
    m_report = report[0];
    return {};
}

std::optional<QString> KcUiRecovery::finished(bool waits)
{
    int status = 0;
    if (m_writer <= 0 || ::waitpid(m_writer, &status, waits ? 0 : WNOHANG) == 0)
        return {};
    m_writer = 0;
    const QString reason = whatWriterSaid();
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return QString();
    return reason.isEmpty() ? QStringLiteral("No recovery copy could be written to %1.").arg(m_folder)
                            : QStringLiteral("No recovery copy could be written: %1").arg(reason);
}

QString KcUiRecovery::whatWriterSaid()
{
    char text[4096];
    const ssize_t length = ::read(m_report, text, sizeof text);
    ::close(std::exchange(m_report, -1));
    return QString::fromUtf8(text, std::max<ssize_t>(length, 0));
}

void KcUiRecovery::endWriter()
{
    if (m_writer <= 0)
        return;
    ::kill(m_writer, SIGKILL);
    ::waitpid(m_writer, nullptr, 0);
    m_writer = 0;
    whatWriterSaid();
}

void KcUiRecovery::discard()
{
    endWriter();
    if (m_lock < 0)
        return;
    removeFiles(m_stem);
    ::close(m_lock);
    m_lock = -1;
}

std::vector<KcUiRecovery::Lost> KcUiRecovery::lost() const
{
    std::vector<Lost> result;
    const QDir folder(m_folder);
    for (const QString& name : folder.entryList({ QStringLiteral("*.lock") }, QDir::Files, QDir::Name)) {
        const QString stem = folder.filePath(QFileInfo(name).completeBaseName());
        if (m_lock >= 0 && stem == m_stem)
            continue;
        const int lock = lockFile(folder.filePath(name), 0);
        if (lock < 0)
            continue;
        const std::shared_ptr<void> held(nullptr, [lock](void*) { ::close(lock); });
        QFile whose(stem + QStringLiteral(".json"));
        const QFileInfo copy(stem + QStringLiteral(".dxf"));
        if (!copy.isFile() || !whose.open(QIODevice::ReadOnly)) {
            removeFiles(stem); // it ended before the copy was whole
            continue;
        }
        const QJsonObject values = QJsonDocument::fromJson(whose.readAll()).object();
        result.push_back({ copy.filePath(), values.value(QStringLiteral("drawing")).toString(),
                           copy.lastModified(), held });
    }
    return result;
}

void KcUiRecovery::remove(const Lost& lost)
{
    removeFiles(lost.copy.chopped(int(sizeof ".dxf") - 1));
}
