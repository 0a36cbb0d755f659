// Finds and fills the application root. The copy is made beside the root and renamed, so that two programs
// starting at once, or one that is stopped half-way, never leave half a root.

#include "platform/app_root.h"

#include "platform/files.h"

#include <QDirIterator>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace platform {

namespace {

QString& chosenRoot()
{
    static QString root;
    return root;
}

QString absolute(const QString& folder)
{
    return QDir::cleanPath(QDir(folder).absolutePath());
}

bool isEmptyFolder(const QString& folder)
{
    return QDir(folder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

// The copies belong to the user, who may change them even where the shipped files are read-only.
Status copyTree(const QString& from, const QString& to)
{
    QDirIterator entries(
        from, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString source = entries.next();
        const QString target = to + source.mid(from.size());
        if (entries.fileInfo().isDir()) {
            if (!QDir().mkpath(target))
                return { QStringLiteral("cannot make the folder \"%1\"").arg(target) };
            continue;
        }
        if (!QDir().mkpath(QFileInfo(target).path()))
            return { QStringLiteral("cannot make the folder \"%1\"").arg(QFileInfo(target).path()) };
        const Result<QByteArray> content = readWholeFile(source);
        if (!content)
            return { content.error };
        if (const Status written = writeFileAtomically(target, *content); !written)
            return written;
    }
    return {};
}

} // namespace

void setAppRoot(const QString& folder)
{
    chosenRoot() = folder.isEmpty() ? QString() : absolute(folder);
}

QString appRoot()
{
    if (!chosenRoot().isEmpty())
        return chosenRoot();
    if (const QString fromEnvironment = qEnvironmentVariable("VERDELIS_ROOT"); !fromEnvironment.isEmpty())
        return absolute(fromEnvironment);
    return absolute(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/verdelis"));
}

QString shippedRoot()
{
    const QFileInfo program(QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget());
    return QDir::cleanPath(program.path() + QStringLiteral("/../share/verdelis"));
}

Status prepareAppRoot()
{
    return fillRoot(appRoot(), shippedRoot());
}

Status fillRoot(const QString& root, const QString& shipped)
{
    const QFileInfo info(root);
    if (info.exists() && !info.isDir())
        return { QStringLiteral("the application root \"%1\" is not a folder").arg(root) };
    if (info.exists() && !info.isReadable())
        return { QStringLiteral("the application root \"%1\" cannot be read: permission denied").arg(root) };
    if (info.exists() && !isEmptyFolder(root))
        return {};
    const QString start = QStringLiteral("cannot fill the application root \"%1\": ").arg(root);
    if (!QFileInfo(shipped).isDir() || isEmptyFolder(shipped))
        return { start + QStringLiteral("the shipped files are not found in \"%1\"").arg(shipped) };
    if (const QString parent = info.path(); !QDir().mkpath(parent))
        return { start + QStringLiteral("the folder \"%1\" cannot be made").arg(parent) };
    QTemporaryDir copy(root + QStringLiteral(".new-XXXXXX"));
    if (!copy.isValid())
        return { start + copy.errorString() };
    QFile::setPermissions(
        copy.path(),
        info.exists() ? info.permissions()
                      : QFile::Permissions(
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup
                          | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));
    if (const Status copied = copyTree(QFileInfo(shipped).canonicalFilePath(), copy.path()); !copied)
        return { start + copied.error };
    const QByteArray from = QFile::encodeName(copy.path());
    const QByteArray to = QFile::encodeName(info.exists() ? info.canonicalFilePath() : root);
    if (std::rename(from.constData(), to.constData()) == 0) {
        copy.setAutoRemove(false);
        return {};
    }
    // Another program was faster.
    if (errno == ENOTEMPTY || errno == EEXIST)
        return {};
    return { start + QString::fromLocal8Bit(std::strerror(errno)) };
}

} // namespace platform
