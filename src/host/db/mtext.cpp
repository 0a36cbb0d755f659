// Multiline texts: contents, size, box, transform.

#include "db/database.h"
#include "db/mtext_format.h"
#include "db/plane.h"
#include "db/tables.h"
#include "db/text.h"

KCRX_DEFINE(KcDbMText, KcDbEntity, "AcDbMText")

void KcDbMText::setContents(const QString& contents)
{
    m_data.contents = contents;
    // What another program computed was about the contents before.
    m_data.actualWidth = m_data.actualHeight = 0.0;
    if (m_data.columns) {
        auto columns = std::make_shared<KcDbMTextColumns>(*m_data.columns);
        columns->totalWidth = columns->totalHeight = 0.0;
        m_data.columns = std::move(columns);
    }
}

std::vector<KcDbMTextRun> KcDbMText::runs() const
{
    KcDbMTextFormat base;
    base.height = m_data.height;
    base.font = kcdbFontOfStyle(m_data.style, database());
    KcDbObjectId style = m_data.style;
    if (!style.isResident() && database())
        style = kcdbFindRecord(database()->textStyleTable(), QStringLiteral("Standard"));
    if (KcDbRead<KcDbTextStyleTableRecord> record(style); record) {
        if (record->data().widthFactor > 0.0)
            base.widthFactor = record->data().widthFactor;
        base.oblique = record->data().obliqueAngle;
    }
    return kcdbParseMText(m_data.contents, base);
}

KcDbMTextLayout KcDbMText::layout() const
{
    constexpr int kExactly = 2;
    if (!(m_data.height > 0.0) || !std::isfinite(m_data.height))
        return {}; // damaged: nothing can be set
    KcDbMTextFrame frame;
    const double width = m_data.columnWidth > 0.0 ? m_data.columnWidth : m_data.width;
    frame.width = width > 0.0 && std::isfinite(width) ? width : 0.0;
    frame.columns = m_data.columns.get();
    frame.definedHeight = m_data.definedHeight;
    frame.height = m_data.height;
    frame.attachment = m_data.attachment;
    frame.spacingFactor = m_data.lineSpacingFactor > 0.0 ? m_data.lineSpacingFactor : 1.0;
    frame.exactSpacing = m_data.lineSpacingStyle == kExactly;
    return kcdbLayoutMText(runs(), frame);
}

QString KcDbMText::plainText() const
{
    return kcdbPlainText(runs());
}

QStringList KcDbMText::lines() const
{
    QStringList result;
    for (const KcDbMTextLayout::Line& line : layout().lines)
        result.append(QString(line.text).replace(QChar(QChar::Nbsp), u' '));
    return result;
}

double KcDbMText::actualWidth() const
{
    return layout().width;
}

double KcDbMText::actualHeight() const
{
    return layout().height;
}

double KcDbMText::rotation() const
{
    if (!m_data.hasDirection)
        return m_data.rotation;
    const KcGeVector3d inPlane = KcGeMatrix3d::worldToPlane(m_data.normal) * m_data.direction;
    return KcGeVector2d{ inPlane.x, inPlane.y }.angle();
}

KcGeMatrix3d KcDbMText::textTransform() const
{
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(m_data.normal) * KcGeMatrix3d::rotation(rotation());
    return KcGeMatrix3d::fromAxes(m_data.location, plane.axis(0), plane.axis(1), plane.axis(2));
}

KcGeExtents3d KcDbMText::backgroundOf(const KcDbMTextLayout& set) const
{
    KcGeExtents3d box;
    if (m_data.fillMode == 0 || set.pieces.empty())
        return box;
    const double margin = std::max(0.0, m_data.fillFactor - 1.0) * m_data.height;
    kcdbAddPoint(box, { set.left - margin, set.bottom - margin, 0.0 });
    kcdbAddPoint(box, { set.right + margin, set.top + margin, 0.0 });
    return box;
}

KcGeExtents3d KcDbMText::extentsUnder(const KcGeMatrix3d& matrix) const
{
    const KcGeMatrix3d toWorld = matrix * textTransform();
    const KcDbMTextLayout set = layout();
    KcGeExtents3d box;
    const auto add = [&](double x, double y) { kcdbAddPoint(box, toWorld * KcGePoint3d{ x, y, 0.0 }); };
    for (const KcDbMTextLayout::Piece& piece : set.pieces) {
        const KcDbMTextFormat& f = piece.format;
        const KcGi::TextExtent ink = KcGi::textExtent(f.font, piece.text, f.height, f.widthFactor);
        if (!ink.hasInk)
            continue;
        const double slant = std::tan(f.oblique);
        for (const double y : { ink.bottom, ink.top })
            for (const double x : { 0.0, piece.width })
                add(piece.x + x + y * slant, piece.baseline + y);
    }
    for (const KcDbMTextLayout::Rule& rule : set.rules) {
        add(rule.x1, rule.y1);
        add(rule.x2, rule.y2);
    }
    if (box.isEmpty())
        return box;
    if (const KcGeExtents3d background = backgroundOf(set); !background.isEmpty())
        for (const double x : { background.min.x, background.max.x })
            for (const double y : { background.min.y, background.max.y })
                add(x, y);
    return box;
}

Kcad::ErrorStatus KcDbMText::transformBy(const KcGeMatrix3d& matrix)
{
    const KcGeMatrix3d image = matrix * textTransform();
    const KcGeVector3d along = image.axis(0), up = image.axis(1);
    const double width = along.length();
    const KcGeVector3d normal = along.crossProduct(up); // a mirrored text is seen from behind
    const double area = normal.length();
    if (!(width > 0.0) || !(area > 0.0) || !std::isfinite(area))
        return Kcad::eInvalidInput;
    const double heightFactor = area / width;
    m_data.location = matrix * m_data.location;
    m_data.normal = normal / area;
    if (m_data.hasDirection) {
        m_data.direction = along / width;
    } else {
        const KcGeVector3d inPlane = KcGeMatrix3d::worldToPlane(m_data.normal) * along;
        m_data.rotation = KcGeVector2d{ inPlane.x, inPlane.y }.angle();
    }
    m_data.height *= heightFactor;
    m_data.definedHeight *= heightFactor;
    m_data.actualHeight *= heightFactor;
    m_data.width *= width;
    m_data.actualWidth *= width;
    scaleColumns(width, heightFactor);
    return Kcad::eOk;
}
