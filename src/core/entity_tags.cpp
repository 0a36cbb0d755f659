// Tags as extended data of one application a tag.

#include "core/entity_tags.h"

#include "db/open.h"

namespace {

constexpr int kTextCode = 1000;
// What a text value of extended data holds, and what a character outside ASCII takes of it where it is
// escaped.
constexpr qsizetype kMostBytes = 255, kEscapedBytes = 7;

/// How much of a text, from a place on, fits into one value; characters outside the basic plane stay whole.
qsizetype pieceFrom(const QString& text, qsizetype at)
{
    qsizetype bytes = 0, end = at;
    while (end < text.size()) {
        bytes += text[end].unicode() < 0x80 ? 1 : kEscapedBytes;
        if (bytes > kMostBytes)
            break;
        ++end;
    }
    return end < text.size() && text[end].isLowSurrogate() ? end - 1 - at : end - at;
}

} // namespace

QString entityTag(const KcDbObject& object, const QString& name)
{
    QString text;
    if (const KcDbValueList* values = object.xdataOf(name))
        for (const KcDbTypedValue& value : *values)
            if (value.code == kTextCode)
                text += value.text();
    return text;
}

QString entityTag(KcDbObjectId object, const QString& name)
{
    const KcDbRead<KcDbObject> opened(object);
    return opened ? entityTag(*opened, name) : QString();
}

void setEntityTag(KcDbObject& object, const QString& name, const QString& value, KcDbDatabase* database)
{
    KcDbValueList values;
    for (qsizetype at = 0; at < value.size();) {
        const qsizetype length = pieceFrom(value, at);
        values.push_back({ kTextCode, value.mid(at, length) });
        at += length;
    }
    object.setXData(name, std::move(values), database);
}
