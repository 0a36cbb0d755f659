// The pattern of a hatch: scale, angle and origin, and the lines that its definition makes of them.

#include "db/hatch.h"

#include "db/database.h"
#include "db/hatch_patterns.h"
#include "db/header.h"
#include "db/symbol_table.h"

namespace {

// Where programs keep what the record has no group for.
const QString kOriginData = QStringLiteral("ACAD");
const QString kBackgroundData = QStringLiteral("HATCHBACKGROUNDCOLOR");
constexpr int kOriginCode = 1010;
// The kinds of colour in the highest byte of a coded colour.
constexpr uint32_t kTrueColor = 0xC2, kIndexColor = 0xC3;

using Units = KcDbHatchPatterns::Units;

Units unitsOf(const KcDbDatabase* database)
{
    if (!database)
        return Units::Millimetres;
    const KcDbRead<KcDbHeader> header(database->headerId());
    return header && header->integer(QStringLiteral("$MEASUREMENT"), 0) == 0 ? Units::Inches
                                                                             : Units::Millimetres;
}

double soundScale(double scale)
{
    return scale > 0.0 && std::isfinite(scale) ? scale : 1.0;
}

/// The lines of a definition as a hatch draws them.
std::vector<KcGeHatchFamily>
linesOf(const std::vector<KcGeHatchFamily>& families, const KcDbHatch& hatch)
{
    std::vector<KcGeHatchFamily> lines;
    for (const KcGeHatchFamily& family : families)
        lines.push_back(family.placed(
            soundScale(hatch.patternScale()), hatch.patternAngle(), hatch.originPoint().asVector()));
    return lines;
}

/// Parallel lines without gaps, a unit apart; a second family across them when doubled.
std::vector<KcGeHatchFamily> userDefined(bool doubled)
{
    std::vector<KcGeHatchFamily> families(doubled ? 2 : 1);
    families[0].offset = { 0, 1 };
    if (doubled) {
        families[1].angle = kPi / 2;
        families[1].offset = { -1, 0 };
    }
    return families;
}

} // namespace

Kcad::ErrorStatus KcDbHatch::setPattern(int type, const QString& name)
{
    const QString trimmed = name.trimmed();
    if (type < kUserDefined || type > kCustomDefined || (trimmed.isEmpty() && type != kUserDefined))
        return Kcad::eInvalidInput;
    m_data.patternType = type;
    m_data.patternName = trimmed.isEmpty() ? QStringLiteral("_USER") : trimmed;
    m_data.solid = type != kUserDefined && trimmed.compare(QLatin1String("SOLID"), Qt::CaseInsensitive) == 0;
    m_data.gradient = {};
    m_data.lines.clear();
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbHatch::setPatternScale(double scale)
{
    if (!(scale > 0.0) || !std::isfinite(scale))
        return Kcad::eInvalidInput;
    const KcGeVector2d origin = originPoint().asVector();
    const double factor = scale / soundScale(m_data.patternScale);
    for (PatternLine& line : m_data.lines) {
        line.base = line.base - origin;
        line = line.placed(factor, 0.0, origin);
    }
    m_data.patternScale = scale;
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbHatch::setPatternAngle(double angle)
{
    if (!std::isfinite(angle))
        return Kcad::eInvalidInput;
    const KcGeVector2d origin = originPoint().asVector();
    for (PatternLine& line : m_data.lines) {
        line.base = line.base - origin;
        line = line.placed(1.0, angle - m_data.patternAngle, origin);
        line.angle = normalizedAngle(line.angle);
    }
    m_data.patternAngle = angle;
    return Kcad::eOk;
}

KcGePoint2d KcDbHatch::originPoint() const
{
    if (m_data.origin)
        return *m_data.origin;
    if (const KcDbValueList* values = xdataOf(kOriginData))
        for (const KcDbTypedValue& value : *values)
            if (const auto* p = std::get_if<KcGePoint3d>(&value.value); p && value.code == kOriginCode)
                return p->plan();
    return {};
}

Kcad::ErrorStatus KcDbHatch::setOriginPoint(KcGePoint2d origin, KcDbDatabase* database)
{
    if (!std::isfinite(origin.x) || !std::isfinite(origin.y))
        return Kcad::eInvalidInput;
    const KcGeVector2d shift = origin - originPoint();
    for (PatternLine& line : m_data.lines)
        line.base = line.base + shift;
    m_data.origin = origin;
    if (!database)
        database = this->database();
    if (database) {
        KcDbValueList values;
        if (const KcDbValueList* old = xdataOf(kOriginData))
            values = *old;
        const KcDbTypedValue point{ kOriginCode, KcGePoint3d{ origin.x, origin.y, 0 } };
        const auto found = std::find_if(values.begin(), values.end(), [](const KcDbTypedValue& value) {
            return value.code == kOriginCode;
        });
        if (found == values.end())
            values.push_back(point);
        else
            *found = point;
        setXData(kOriginData, std::move(values), database);
    }
    return Kcad::eOk;
}

void KcDbHatch::moveOrigin(KcGePoint2d origin)
{
    if (m_data.origin)
        m_data.origin = origin;
    if (!xdataOf(kOriginData))
        return;
    for (KcDbXData& data : extras().xdata)
        if (kcdbRecordName(data.application).compare(kOriginData, Qt::CaseInsensitive) == 0)
            for (KcDbTypedValue& value : data.values)
                if (auto* p = std::get_if<KcGePoint3d>(&value.value); p && value.code == kOriginCode)
                    *p = { origin.x, origin.y, p->z };
}

Kcad::ErrorStatus KcDbHatch::evaluateHatch(const KcDbDatabase* database)
{
    if (m_data.solid || m_data.gradient.filled || !m_data.lines.empty())
        return Kcad::eOk;
    if (!database)
        database = this->database();
    if (m_data.patternType == kUserDefined && !KcDbHatchPatterns::instance().find(m_data.patternName)) {
        m_data.lines = linesOf(userDefined(m_data.doubled), *this);
        return Kcad::eOk;
    }
    const KcDbHatchPattern* pattern
        = KcDbHatchPatterns::instance().find(m_data.patternName, unitsOf(database));
    if (!pattern)
        return Kcad::eKeyNotFound;
    if (pattern->families.empty())
        m_data.solid = true;
    m_data.patternScale = soundScale(m_data.patternScale);
    m_data.lines = linesOf(pattern->families, *this);
    return Kcad::eOk;
}

std::vector<KcDbHatch::PatternLine> KcDbHatch::drawnLines() const
{
    if (m_data.solid || !m_data.lines.empty())
        return m_data.lines;
    const KcDbHatchPattern* pattern
        = KcDbHatchPatterns::instance().find(m_data.patternName, unitsOf(database()));
    if (pattern)
        return linesOf(pattern->families, *this);
    return m_data.patternType == kUserDefined ? linesOf(userDefined(m_data.doubled), *this)
                                              : std::vector<PatternLine>();
}

std::optional<KcCmColor> KcDbHatch::backgroundColor() const
{
    const KcDbValueList* values = xdataOf(kBackgroundData);
    if (!values)
        return {};
    for (const KcDbTypedValue& value : *values)
        if (value.code == 1071) {
            const auto coded = uint32_t(value.integer());
            if (coded >> 24 == kTrueColor)
                return KcCmColor{ KcCmColor::kByLayer, int32_t(coded & 0xFFFFFF) };
            if (coded >> 24 == kIndexColor)
                return KcCmColor{ int16_t(coded & 0x1FF) };
        }
    return {};
}
