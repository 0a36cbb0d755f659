// Decodes documents by their byte order mark or their declared character set.

#include "core/xml_file.h"

#include "core/application.h"
#include "platform/character_sets.h"
#include "platform/diagnostics.h"
#include "platform/files.h"

#include <QStringDecoder>

std::optional<QString> readSystemDocument(const QString& fileName)
{
    const QString path = platform::findPath(GetAppRoot() + QStringLiteral("Sys/") + fileName);
    if (!QFileInfo(path).isFile())
        return std::nullopt;
    const platform::Result<QByteArray> bytes = platform::readWholeFile(path);
    if (!bytes) {
        platform::diagnoseOnce(bytes.error);
        return std::nullopt;
    }
    if (const auto unicode = QStringConverter::encodingForData(*bytes, u'<')) {
        QStringDecoder decoder(*unicode);
        const QString text = decoder(*bytes);
        if (*unicode != QStringConverter::Utf8 || bytes->startsWith("\xEF\xBB\xBF"))
            return text;
    }
    static const QRegularExpression declared(
        QStringLiteral(R"(^\s*<\?xml[^>]*encoding\s*=\s*["']([^"']+)["'])"));
    const auto match = declared.match(QString::fromLatin1(bytes->left(200)));
    const QString name = match.hasMatch() ? match.captured(1) : QStringLiteral("UTF-8");
    const std::optional<platform::CharacterSet> set = platform::CharacterSet::named(name);
    if (!set) {
        diagnoseDocument(path, 1, QStringLiteral("the character set \"%1\" is not known").arg(name));
        return std::nullopt;
    }
    const platform::Decoded decoded = set->decode({ bytes->constData(), size_t(bytes->size()) });
    if (!decoded.clean())
        diagnoseDocument(path, 1, QStringLiteral("it holds bytes that are not %1").arg(set->name()));
    return decoded.text;
}

void diagnoseDocument(const QString& fileName, qint64 line, const QString& error)
{
    platform::diagnoseOnce(QStringLiteral("\"%1\", line %2: %3").arg(fileName).arg(line).arg(error));
}
