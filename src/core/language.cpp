// Reads the language file. The first of several texts of one key counts.

#include "core/language.h"

#include "core/application.h"
#include "platform/diagnostics.h"
#include "platform/files.h"

#include <QStringDecoder>

namespace {

QString unescaped(QStringView text)
{
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar next = text[i] == u'\\' && i + 1 < text.size() ? text[i + 1] : QChar();
        if (next == u'n')
            result += u'\n';
        else if (next == u's')
            result += u' ';
        else if (next == u'\\')
            result += u'\\';
        else {
            result += text[i];
            continue;
        }
        ++i;
    }
    return result;
}

} // namespace

bool CText::Initialize(const QString& suffix)
{
    m_texts.clear();
    const QString path
        = platform::findPath(GetAppRoot() + QStringLiteral("Sys/VDLText") + suffix + QStringLiteral(".txt"));
    if (!QFileInfo(path).isFile())
        return false;
    const platform::Result<QByteArray> content = platform::readWholeFile(path);
    if (!content) {
        platform::diagnose(content.error);
        return false;
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(*content);
    if (decoder.hasError()) {
        platform::diagnose(QStringLiteral("the language file \"%1\" is not UTF-8").arg(path));
        return false;
    }
    int number = 0;
    for (const QStringView line : QStringView(text).split(u'\n')) {
        ++number;
        const QStringView entry = line.trimmed();
        if (entry.isEmpty() || entry.front() == u';')
            continue;
        const qsizetype equals = entry.indexOf(u'=');
        if (equals < 1) {
            platform::diagnose(QStringLiteral("%1:%2: no KEY=text").arg(path).arg(number));
            continue;
        }
        const QString key = entry.first(equals).trimmed().toString();
        if (!m_texts.contains(key))
            m_texts.insert(key, unescaped(entry.mid(equals + 1).trimmed()));
    }
    return true;
}
