// Single-line texts: control codes, justification, boxes, transforms.

#include "db/text.h"

#include "db/database.h"
#include "db/plane.h"
#include "db/tables.h"
#include "platform/character_sets.h"

KCRX_DEFINE(KcDbText, KcDbEntity, "AcDbText")
KCRX_DEFINE(KcDbAttribute, KcDbText, "AcDbAttribute")
KCRX_DEFINE(KcDbAttributeDefinition, KcDbText, "AcDbAttributeDefinition")

namespace {

constexpr int kBackwards = 2, kUpsideDown = 4;
constexpr int kCentre = 1, kRight = 2, kAligned = 3, kMiddle = 4, kFit = 5;
constexpr int kBottom = 1, kHalfWay = 2, kTop = 3;
/// Steeper letters are damage and count as upright.
constexpr double kSteepest = 85.0 * kPi / 180.0;

double slantOf(double oblique)
{
    // Slants are written in [0, 2π) too.
    const double angle = std::remainder(oblique, kTwoPi);
    return std::abs(angle) <= kSteepest ? std::tan(angle) : 0.0;
}

bool isBetweenTwoPoints(const KcDbTextData& data)
{
    return data.vertical == 0 && (data.horizontal == kAligned || data.horizontal == kFit);
}

bool isJustified(const KcDbTextData& data)
{
    return data.horizontal != 0 || data.vertical != 0;
}

/// Directions of the base line and of "up" in the plane of the text, slant left out.
struct Directions {
    KcGeVector2d along, up;
};

Directions directionsOf(const KcDbTextData& data)
{
    const KcGeVector2d x = KcGeVector2d{ 1, 0 }.rotateBy(data.rotation);
    return { x * (data.generation & kBackwards ? -1.0 : 1.0),
             x.perpVector() * (data.generation & kUpsideDown ? -1.0 : 1.0) };
}

/// Puts the start of the text where its justification wants it, and fits it between two points.
void align(KcDbTextData& data, const KcGi::TextStyle& font, const QString& text)
{
    if (!isJustified(data))
        return;
    if (isBetweenTwoPoints(data)) {
        const KcGeVector2d way = data.alignment.plan() - data.position.plan();
        const double length = way.length();
        const bool isFit = data.horizontal == kFit;
        const double natural = isFit ? KcGi::textAdvance(font, text, data.height)
                                     : KcGi::textAdvance(font, text, 1.0, data.widthFactor);
        if (!(length > KcGeContext::gTol.equalPoint) || !(natural > 0.0) || !std::isfinite(length))
            return; // nothing to fit, or nothing to fit it between
        data.rotation = (way * (data.generation & kBackwards ? -1.0 : 1.0)).angle();
        (isFit ? data.widthFactor : data.height) = length / natural;
        return;
    }
    const double width = KcGi::textAdvance(font, text, data.height, data.widthFactor);
    double right = 0.0, up = 0.0;
    if (data.horizontal == kCentre || data.horizontal == kMiddle)
        right = width / 2.0;
    else if (data.horizontal == kRight)
        right = width;
    if (data.vertical == kBottom)
        up = -KcGi::textDescent(font, data.height);
    else if (data.vertical == kHalfWay || (data.vertical == 0 && data.horizontal == kMiddle))
        up = data.height / 2.0;
    else if (data.vertical == kTop)
        up = data.height;
    const Directions directions = directionsOf(data);
    const KcGeVector2d shift = directions.along * -right + directions.up * -up;
    data.position = data.alignment + KcGeVector3d{ shift.x, shift.y, 0.0 };
}

/// A character by its hexadecimal code of four digits at the start of a text; nothing when there are none.
std::optional<uint> hexadecimal(QStringView text)
{
    if (text.size() < 4)
        return std::nullopt;
    for (const QChar c : text.first(4))
        if (!((c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f')))
            return std::nullopt;
    return text.first(4).toUInt(nullptr, 16);
}

/// The character of two bytes in one of the five double-byte sets that drawings number.
QString doubleByte(int set, uint code)
{
    static const char16_t* const names[] = { u"932", u"950", u"949", u"1361", u"936" };
    static std::map<int, std::optional<platform::CharacterSet>> sets;
    auto found = sets.find(set);
    if (found == sets.end())
        found = sets.emplace(set, platform::CharacterSet::named(QStringView(names[set - 1]))).first;
    if (!found->second)
        return QString(QChar(QChar::ReplacementCharacter));
    const char bytes[2] = { char(code >> 8), char(code & 0xff) };
    return found->second->decode(std::string_view(bytes, 2)).text;
}

} // namespace

KcGi::TextStyle kcdbFontOfStyle(KcDbObjectId style, const KcDbDatabase* database)
{
    if (!style.isResident() && database)
        style = kcdbFindRecord(database->textStyleTable(), QStringLiteral("Standard"));
    KcGi::TextStyle result;
    if (KcDbRead<KcDbTextStyleTableRecord> record(style); record) {
        result.font = record->data().font;
        result.bigFont = record->data().bigFont;
        result.typeface = record->typeface();
    }
    return result;
}

// Control codes.

QString KcDbText::escapedCharacter(QStringView text, qsizetype& length)
{
    length = 0;
    if (text.startsWith(u"\\U+")) {
        if (const auto code = hexadecimal(text.mid(3)); code && *code >= 0x20) {
            length = 7;
            return QString(QChar(char16_t(*code)));
        }
    } else if (text.startsWith(u"\\M+") && text.size() > 3 && text[3] >= u'1' && text[3] <= u'5') {
        if (const auto code = hexadecimal(text.mid(4))) {
            length = 8;
            return doubleByte(text[3].digitValue(), *code);
        }
    }
    return {};
}

std::vector<KcDbText::Run> KcDbText::runsOf(const QString& text)
{
    std::vector<Run> runs;
    Run run;
    const auto mark = [&](bool Run::*line) {
        if (!run.text.isEmpty()) {
            runs.push_back(run);
            run.text.clear();
        }
        run.*line = !(run.*line);
    };
    qsizetype i = 0;
    while (i < text.size()) {
        if (text[i] == u'\\') {
            qsizetype length = 0;
            const QString character = escapedCharacter(QStringView(text).mid(i), length);
            if (length > 0) {
                run.text += character;
                i += length;
                continue;
            }
        }
        if (text[i] != u'%' || i + 2 >= text.size() || text[i + 1] != u'%') {
            run.text += text[i++];
            continue;
        }
        const QChar code = text[i + 2].toLower();
        qsizetype length = 3;
        switch (code.unicode()) {
        case u'd':
            run.text += QChar(0xb0);
            break;
        case u'p':
            run.text += QChar(0xb1);
            break;
        case u'c':
            run.text += QChar(0x2300);
            break;
        case u'%':
            run.text += u'%';
            break;
        case u'u':
            mark(&Run::underlined);
            break;
        case u'o':
            mark(&Run::overlined);
            break;
        case u'k':
            mark(&Run::struck);
            break;
        default: {
            // Codes that stand for a character of a special shape font, or for none, stay as they are
            // written.
            int number = 0, digits = 0;
            while (digits < 3 && i + 2 + digits < text.size() && text[i + 2 + digits] >= u'0'
                   && text[i + 2 + digits] <= u'9')
                number = number * 10 + text[i + 2 + digits++].digitValue();
            const bool isCharacter
                = digits == 3 && ((number >= 32 && number < 127) || (number >= 160 && number < 256));
            if (isCharacter) {
                run.text += QChar(char16_t(number));
                length = 5;
            } else {
                run.text += QStringLiteral("%%");
                length = 2;
            }
        }
        }
        i += length;
    }
    if (!run.text.isEmpty())
        runs.push_back(run);
    return runs;
}

QString KcDbText::resolved(const QString& text)
{
    QString result;
    for (const Run& run : runsOf(text))
        result += run.text;
    return result;
}

QString KcDbText::plainText() const
{
    return resolved(m_data.text);
}

// Places.

void KcDbText::setTextString(const QString& text)
{
    m_data.text = text;
    adjustAlignment();
}

void KcDbText::setHeight(double height)
{
    m_data.height = height;
    adjustAlignment();
}

double KcDbText::textWidth() const
{
    return KcGi::textAdvance(
        kcdbFontOfStyle(m_data.style, database()), plainText(), m_data.height, m_data.widthFactor);
}

KcGePoint3d KcDbText::anchor() const
{
    const bool atAlignment = isJustified(m_data) && !isBetweenTwoPoints(m_data);
    return KcGeMatrix3d::planeToWorld(m_data.normal) * (atAlignment ? m_data.alignment : m_data.position);
}

void KcDbText::adjustAlignment()
{
    align(m_data, kcdbFontOfStyle(m_data.style, database()), plainText());
}

KcDbTextData KcDbText::placed(const QString* other) const
{
    KcDbTextData data = m_data;
    // Files of some programs leave the alignment point out, or hold a start that belongs to another font.
    const bool hasAlignment = !(m_data.alignment == KcGePoint3d());
    if (other)
        data.text = *other;
    if (hasAlignment && isJustified(m_data))
        align(data, kcdbFontOfStyle(m_data.style, database()), resolved(data.text));
    return data;
}

KcGeMatrix3d KcDbText::textTransform() const
{
    return transformOf(placed());
}

KcGeMatrix3d KcDbText::transformOf(const KcDbTextData& data)
{
    const Directions d = directionsOf(data);
    const KcGeVector2d up = d.up + d.along * slantOf(data.oblique);
    return KcGeMatrix3d::planeToWorld(data.normal)
        * KcGeMatrix3d::fromAxes(
               data.position, { d.along.x, d.along.y, 0 }, { up.x, up.y, 0 }, KcGeVector3d::kZAxis);
}

KcGeExtents3d KcDbText::boxUnder(const KcGeMatrix3d& matrix, const QString* other) const
{
    const KcDbTextData data = placed(other);
    const KcGi::TextExtent size = KcGi::textExtent(
        kcdbFontOfStyle(data.style, database()), resolved(data.text), data.height, data.widthFactor);
    KcGeExtents3d box;
    if (!size.hasInk)
        return box;
    const KcGeMatrix3d toWorld = matrix * transformOf(data);
    for (const double x : { 0.0, size.advance })
        for (const double y : { size.bottom, size.top })
            kcdbAddPoint(box, toWorld * KcGePoint3d{ x, y, 0.0 });
    return kcdbExtruded(box, data.thickness, matrix * KcGeMatrix3d::planeToWorld(data.normal));
}

KcGeExtents3d KcDbText::extentsUnder(const KcGeMatrix3d& matrix) const
{
    return boxUnder(matrix);
}

Kcad::ErrorStatus KcDbText::transformBy(const KcGeMatrix3d& matrix)
{
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    m_data = placed(); // what is seen is what is moved
    const Directions old = directionsOf(m_data);
    const KcGeVector2d along = plane->vector(old.along);
    const KcGeVector2d up = plane->vector(old.up + old.along * slantOf(m_data.oblique));
    const double width = along.length();
    const double side
        = along.crossProduct(up) / width; // height factor; negative when the text becomes mirrored
    const bool mirrored = plane->mirrors();

    if (mirrored) {
        // Of the two ways to mirror a text, the one that leaves it readable from below.
        const bool leftwards = (m_data.generation & kBackwards ? along * -1.0 : along).x < 0.0;
        m_data.generation ^= leftwards ? kBackwards : kUpsideDown;
    }
    const double alongSign = m_data.generation & kBackwards ? -1.0 : 1.0;
    m_data.rotation = (along * alongSign).angle();
    m_data.height *= std::abs(side);
    m_data.widthFactor *= width / std::abs(side);
    m_data.oblique = std::atan2(up.dotProduct(along) / width, std::abs(side));
    m_data.position = plane->point(m_data.position);
    if (isJustified(m_data))
        m_data.alignment = plane->point(m_data.alignment);
    m_data.thickness = plane->thickness(m_data.thickness);
    m_data.normal = plane->normal;
    // Scaled unevenly, a slanted text would be justified elsewhere than where its image lies: the point follows.
    if (isJustified(m_data) && !isBetweenTwoPoints(m_data))
        if (const KcGePoint3d again = placed().position;
            again.distanceTo(m_data.position) > KcGeContext::gTol.equalPoint)
            m_data.alignment = m_data.alignment + (m_data.position - again);
    return Kcad::eOk;
}

// Attributes.

KcGeExtents3d KcDbAttribute::extentsUnder(const KcGeMatrix3d& matrix) const
{
    return isInvisible() ? KcGeExtents3d() : boxUnder(matrix);
}

KcGeExtents3d KcDbAttributeDefinition::extentsUnder(const KcGeMatrix3d& matrix) const
{
    return boxUnder(matrix, &m_attribute.tag);
}

KcGeExtents3d KcDbAttributeDefinition::extentsInReference(const KcGeMatrix3d& matrix) const
{
    return isConstant() && !isInvisible() ? boxUnder(matrix) : KcGeExtents3d();
}
