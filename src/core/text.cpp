// Single-line and multiline texts behind one set of questions.

#include "core/text.h"

#include "core/plain_text.h"
#include "db/database.h"
#include "db/tables.h"
#include "db/text.h"

namespace {

// The justifications that stretch a text between two points.
constexpr int kAligned = 3, kFit = 5;

bool isBetweenTwoPoints(const KcDbText::Data& data)
{
    return data.vertical == 0 && (data.horizontal == kAligned || data.horizontal == kFit);
}

bool isJustified(const KcDbText::Data& data)
{
    return data.horizontal != 0 || data.vertical != 0;
}

// The angle of a direction in a plane; nothing when it has no length there.
std::optional<double> angleIn(KcGeVector3d normal, KcGeVector3d direction)
{
    const KcGeVector3d inPlane = KcGeMatrix3d::worldToPlane(normal) * direction;
    const KcGeVector2d plan{ inPlane.x, inPlane.y };
    if (!(plan.length() > 0.0) || !std::isfinite(plan.length()))
        return std::nullopt;
    return plan.angle();
}

// Codes "\H350;" give a piece a height of its own; "\H0.7x;" is relative and follows by itself.
QString withScaledHeights(const QString& contents, double factor)
{
    QString result;
    for (qsizetype i = 0; i < contents.size(); ++i) {
        result += contents[i];
        if (contents[i] != u'\\' || i + 1 >= contents.size())
            continue;
        result += contents[++i];
        const qsizetype end = contents[i] == u'H' ? contents.indexOf(u';', i) : -1;
        if (end < 0)
            continue;
        const QString value = contents.mid(i + 1, end - i - 1);
        bool isNumber = false;
        const double height = value.toDouble(&isNumber);
        result += isNumber ? QString::number(height * factor, 'g', 12) : value;
        i = end - 1;
    }
    return result;
}

} // namespace

bool MText::Initialize(KcDbObjectId id, const KcDbDatabase* database)
{
    const bool fits = KcDbRead<KcDbText>(id) || KcDbRead<KcDbMText>(id);
    return CEntity::Initialize(fits ? id : KcDbObjectId(), database);
}

bool MText::IsMultiline() const
{
    return bool(KcDbRead<KcDbMText>(m_id));
}

QString MText::GetText() const
{
    if (const KcDbRead<KcDbText> text(m_id); text)
        return text->plainText();
    const KcDbRead<KcDbMText> text(m_id);
    return text ? text->plainText() : QString();
}

bool MText::SetText(const QString& text)
{
    if (KcDbWrite<KcDbText> single(m_id); single) {
        QString line = text;
        single->setTextString(line.replace(QLatin1String("\r\n"), QLatin1String(" ")).replace(u'\n', u' '));
        return true;
    }
    KcDbWrite<KcDbMText> multi(m_id);
    if (!multi)
        return false;
    // Where the old text stands in one piece, only it is replaced: the codes around it, such as a font, stay.
    const QString before = multi->contents(), old = multilineContents(multi->plainText());
    const qsizetype at = old.isEmpty() ? -1 : before.indexOf(old);
    QString contents = multilineContents(text);
    if (at >= 0)
        contents = before.left(at) + contents + before.mid(at + old.size());
    multi->setContents(contents);
    return true;
}

bool MText::SetHeight(double height)
{
    if (!(height > 0.0) || !std::isfinite(height))
        return false;
    if (KcDbWrite<KcDbText> single(m_id); single) {
        single->setHeight(height);
        return true;
    }
    KcDbWrite<KcDbMText> multi(m_id);
    if (!multi)
        return false;
    if (const double before = multi->data().height; before > 0.0)
        multi->setContents(withScaledHeights(multi->contents(), height / before));
    multi->data().height = height;
    return true;
}

double MText::GetHeight() const
{
    if (const KcDbRead<KcDbText> text(m_id); text)
        return text->height();
    const KcDbRead<KcDbMText> text(m_id);
    return text ? text->data().height : 0.0;
}

double MText::ActualWidth() const
{
    if (const KcDbRead<KcDbText> text(m_id); text)
        return text->textWidth();
    const KcDbRead<KcDbMText> text(m_id);
    return text ? text->actualWidth() : 0.0;
}

double MText::ActualHeight() const
{
    if (const KcDbRead<KcDbText> text(m_id); text)
        return text->height();
    const KcDbRead<KcDbMText> text(m_id);
    return text ? text->actualHeight() : 0.0;
}

bool MText::GetPosition(KcGePoint3d& point) const
{
    const KcDbRead<KcDbText> single(m_id);
    const KcDbRead<KcDbMText> multi(m_id);
    if (single)
        point = single->anchor();
    if (multi)
        point = multi->data().location;
    return single || multi;
}

bool MText::SetPosition(KcGePoint3d point)
{
    if (KcDbWrite<KcDbText> single(m_id); single) {
        KcDbText::Data& data = single->data();
        const KcGePoint3d inPlane = KcGeMatrix3d::worldToPlane(data.normal) * point;
        if (isBetweenTwoPoints(data)) {
            data.alignment = data.alignment + (inPlane - data.position);
            data.position = inPlane;
        } else if (isJustified(data)) {
            data.alignment = inPlane;
        } else {
            data.position = inPlane;
        }
        single->adjustAlignment();
        return true;
    }
    KcDbWrite<KcDbMText> multi(m_id);
    if (multi)
        multi->data().location = point;
    return bool(multi);
}

bool MText::SetDirection(KcGeVector3d direction)
{
    if (const KcDbRead<KcDbText> read(m_id); read) {
        const std::optional<double> angle = angleIn(read->data().normal, direction);
        if (!angle)
            return false;
        KcDbWrite<KcDbText> single(m_id);
        KcDbText::Data& data = single->data();
        if (isBetweenTwoPoints(data)) {
            const KcGeVector3d way = data.alignment - data.position;
            const KcGeVector2d turned = KcGeVector2d{ std::hypot(way.x, way.y), 0.0 }.rotateBy(*angle);
            data.alignment = data.position + KcGeVector3d{ turned.x, turned.y, way.z };
        }
        data.rotation = *angle;
        single->adjustAlignment();
        return true;
    }
    const KcDbRead<KcDbMText> read(m_id);
    if (!read || !angleIn(read->data().normal, direction))
        return false;
    KcDbWrite<KcDbMText> multi(m_id);
    multi->data().hasDirection = true;
    multi->data().direction = direction.normal();
    return true;
}

bool MText::SetTextStyle(KcDbObjectId style)
{
    if (!KcDbRead<KcDbTextStyleTableRecord>(style) || style.database() != m_id.database())
        return false;
    if (KcDbWrite<KcDbText> single(m_id); single) {
        single->data().style = style;
        single->adjustAlignment();
        return true;
    }
    KcDbWrite<KcDbMText> multi(m_id);
    if (multi) {
        multi->data().style = style;
        multi->setContents(QString(multi->contents())); // its sizes are to be computed anew
    }
    return bool(multi);
}

KcDbObjectId MText::GetTextStyle() const
{
    KcDbObjectId style;
    if (const KcDbRead<KcDbText> text(m_id); text)
        style = text->data().style;
    if (const KcDbRead<KcDbMText> text(m_id); text)
        style = text->data().style;
    if (style.isNull() && m_id.isResident())
        style = kcdbFindRecord(m_id.database()->textStyleTable(), QStringLiteral("Standard"));
    return style;
}
