// Case-blind lookup walks the path component by component; writing goes through a temporary file.

#include "platform/files.h"

#include "platform/diagnostics.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

class Descriptor {
public:
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    // Closing can report a write error that the system had put off.
    bool close() { return m_descriptor < 0 || ::close(std::exchange(m_descriptor, -1)) == 0; }

private:
    int m_descriptor;
};

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

QString cannot(const char* what, const QString& path)
{
    const int error = errno;
    QString reason = systemError();
    if (error == ENOENT)
        reason = QStringLiteral("there is no such file or folder");
    else if (error == ENOSPC || error == EDQUOT)
        reason = QStringLiteral("the disk is full");
    else if (error == EACCES || error == EPERM || error == EROFS)
        reason = QStringLiteral("permission denied or read-only place (%1)").arg(reason);
    return QStringLiteral("cannot %1 \"%2\": %3").arg(QString::fromLatin1(what), path, reason);
}

bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes.remove_prefix(size_t(written));
    }
    return true;
}

bool writeAll(int descriptor, const std::vector<std::string_view>& pieces)
{
    // Small pieces are gathered, so that a file of many does not take a call to the system for each.
    constexpr size_t kGather = size_t(1) << 18;
    std::string gathered;
    for (const std::string_view piece : pieces) {
        if (gathered.size() + piece.size() > kGather) {
            if (!writeAll(descriptor, gathered))
                return false;
            gathered.clear();
        }
        if (piece.size() > kGather) {
            if (!writeAll(descriptor, piece))
                return false;
        } else {
            gathered += piece;
        }
    }
    return writeAll(descriptor, gathered);
}

Status writeDirectly(const QString& path, const std::vector<std::string_view>& pieces)
{
    Descriptor file(::open(QFile::encodeName(path).constData(), O_WRONLY | O_CLOEXEC));
    if (!file.isOpen() || !writeAll(file.get(), pieces) || !file.close())
        return { cannot("write", path) };
    return {};
}

mode_t modeOfNewFiles()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// The entry of a folder that the name means: exact, else the first that differs in letter case only.
QString findEntry(const QString& folder, const QString& name)
{
    const QString exact = folder + name;
    if (QFileInfo::exists(exact) || QFileInfo(exact).isSymLink())
        return name;
    const QStringList entries
        = QDir(folder.isEmpty() ? QStringLiteral(".") : folder)
              .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::NoSort);
    QString best;
    for (const QString& entry : entries)
        if (entry.compare(name, Qt::CaseInsensitive) == 0 && (best.isNull() || entry < best))
            best = entry;
    return best;
}

} // namespace

QString normalisedPath(const QString& path)
{
    QString result;
    result.reserve(path.size());
    for (QChar c : path) {
        if (c == u'\\')
            c = u'/';
        if (c != u'/' || !result.endsWith(u'/'))
            result += c;
    }
    return result;
}

QString findPath(const QString& path)
{
    if (path.isEmpty() || QFileInfo::exists(path))
        return path;
    const QString wanted = normalisedPath(path);
    QString found = wanted.startsWith(u'/') ? QStringLiteral("/") : QString();
    const QStringList parts = wanted.split(u'/', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const bool last = i + 1 == parts.size();
        const QString entry = parts[i] == u"." || parts[i] == u".." ? parts[i] : findEntry(found, parts[i]);
        if (entry.isNull()) {
            found += parts.mid(i).join(u'/');
            break;
        }
        found += last ? entry : entry + u'/';
    }
    if (wanted.endsWith(u'/') && !found.endsWith(u'/'))
        found += u'/';
    return found;
}

Result<QByteArray> readWholeFile(const QString& path)
{
    using Content = Result<QByteArray>;
    const QString found = findPath(path);
    const Descriptor file(::open(QFile::encodeName(found).constData(), O_RDONLY | O_CLOEXEC));
    struct stat info { };
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0)
        return Content::failure(cannot("read", found));
    QByteArray bytes;
    if (S_ISREG(info.st_mode))
        bytes.reserve(info.st_size);
    std::vector<char> buffer(1 << 16);
    for (;;) {
        const ssize_t count = ::read(file.get(), buffer.data(), buffer.size());
        if (count == 0)
            return { std::move(bytes), {} };
        if (count > 0)
            bytes.append(buffer.data(), count);
        else if (errno != EINTR)
            return Content::failure(cannot("read", found));
    }
}

Status writeFileAtomically(const QString& path, const QByteArray& bytes)
{
    return writeFileAtomically(path, {std::string_view(bytes.constData(), size_t(bytes.size()))});
}

Status writeFileAtomically(const QString& path, const std::vector<std::string_view>& pieces)
{
    QString target = path;
    if (const QFileInfo link(target); link.isSymLink())
        target = link.canonicalFilePath().isEmpty() ? link.symLinkTarget() : link.canonicalFilePath();
    const QByteArray targetName = QFile::encodeName(target);

    struct stat old { };
    const bool exists = ::stat(targetName.constData(), &old) == 0;
    if (exists && S_ISDIR(old.st_mode))
        return { QStringLiteral("cannot write \"%1\": it is a folder").arg(target) };
    if (exists && !S_ISREG(old.st_mode))
        return writeDirectly(target, pieces);
    // Renaming over a write-protected file would succeed; its owner protected it for a reason.
    if (exists && ::access(targetName.constData(), W_OK) != 0)
        return { cannot("write", target) };

    QByteArray temporary = targetName + ".XXXXXX";
    Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen())
        return { cannot("write", target) };
    const mode_t mode = exists ? old.st_mode & 07777 : modeOfNewFiles();
    if (::fchmod(file.get(), mode) == 0 && writeAll(file.get(), pieces) && ::fsync(file.get()) == 0
        && file.close() && ::rename(temporary.constData(), targetName.constData()) == 0)
        return {};
    const QString error = cannot("write", target);
    ::unlink(temporary.constData());
    return { error };
}

bool CopyFileW(const QString& from, const QString& to, bool failIfExists)
{
    const QString target = findPath(to);
    if (failIfExists && QFileInfo::exists(target)) {
        diagnose(QStringLiteral("cannot copy to \"%1\": the file is there already").arg(target));
        return false;
    }
    const Result<QByteArray> content = readWholeFile(from);
    if (!content) {
        diagnose(content.error);
        return false;
    }
    const Status written = writeFileAtomically(target, *content);
    if (!written)
        diagnose(written.error);
    return written.ok();
}

} // namespace platform
