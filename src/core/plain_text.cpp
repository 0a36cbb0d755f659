// Escapes of multiline texts.

#include "core/plain_text.h"

QString multilineContents(const QString& text)
{
    QString contents;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'\\' || c == u'{' || c == u'}')
            contents += u'\\';
        if (c == u'\n')
            contents += QLatin1String("\\P");
        else if (c != u'\r')
            contents += c;
    }
    return contents;
}
