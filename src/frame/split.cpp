// Fields of lists kept as one text.

#include "frame/split.h"

namespace {

qsizetype closingQuote(const QString& text, qsizetype from)
{
    for (qsizetype at = from; at < text.size(); ++at)
        if (text[at] == u'"' && (at == from || text[at - 1] != u'\\'))
            return at;
    return text.size();
}

} // namespace

QStringList splitFields(const QString& text, QChar separator)
{
    QStringList fields;
    for (qsizetype at = 0;;) {
        QString field;
        if (at < text.size() && text[at] == u'"') {
            const qsizetype quote = closingQuote(text, at + 1);
            field = text.mid(at + 1, quote - at - 1);
            at = std::min(quote + 1, text.size());
        }
        qsizetype end = text.indexOf(separator, at);
        if (end < 0)
            end = text.size();
        fields += field + text.mid(at, end - at);
        if (end == text.size())
            return fields;
        at = end + 1;
    }
}
