// EXPLODE: block references, polylines, multiline texts and dimensions into what they are made of.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/block_reference.h"
#include "db/curve.h"
#include "db/polyline.h"
#include "db/raw_entity.h"
#include "db/text.h"
#include "ed/copy_entity.h"

using namespace hand;

namespace {

/// What is left of a failure: why an object stays whole. Empty: it was taken apart.
using Reason = QString;

/// Parts that were made for an object; taken back unless all of them succeeded.
class Parts {
public:
    void add(KcDbObjectId id) { m_ids.push_back(id); }
    void takeBack()
    {
        for (const KcDbObjectId id : m_ids)
            KcDbWrite<KcDbEntity>(id)->erase();
        m_ids.clear();
    }

private:
    std::vector<KcDbObjectId> m_ids;
};

/// What lies on layer "0", or looks as its block does, takes the looks of the reference.
void inherit(KcDbEntity& part, const KcDbEntity& reference)
{
    if (part.layer() == u"0")
        part.setLayer(reference.layerId());
    if (part.color().index == KcCmColor::kByBlock && part.color().rgb < 0)
        part.setColor(reference.color());
    if (kcdbRecordName(part.linetypeId()).compare(QLatin1String("ByBlock"), Qt::CaseInsensitive) == 0)
        part.setLinetypeId(reference.linetypeId());
    constexpr int kByBlockWeight = -2;
    if (part.lineWeight() == kByBlockWeight)
        part.setLineWeight(reference.lineWeight());
}

void appendText(
    const KcDbText& source, const KcDbEntity& reference, const QString& content, KcDbObjectId owner,
    Parts& parts)
{
    auto text = std::make_unique<KcDbText>();
    text->setPropertiesFrom(source);
    text->data() = source.data();
    text->data().text = content;
    inherit(*text, reference);
    parts.add(KcDbRead<KcDbBlockTableRecord>(owner)->appendEntity(std::move(text)));
}

/// A circle or an arc under uneven scales becomes an ellipse, a polyline with arcs its pieces. False when it
/// is no level curve.
bool appendDistorted(
    const KcDbCurve& source, const KcGeMatrix3d& place, const KcDbEntity& reference, KcDbObjectId owner,
    Parts& parts)
{
    const KcGeCurve3d curve = source.curve();
    const auto frame = curve.frame();
    if (!frame || !curve.isBounded())
        return false;
    const KcGeMatrix3d whole = place * *frame;
    if (whole.axis(0).z != 0.0 || whole.axis(1).z != 0.0) // exact: of a level plane they are
        return false;
    const KcGeMatrix3d level = KcGeMatrix3d::translation({ 0, 0, (whole * KcGePoint3d()).z });
    for (const KcGeSegment2d& piece : curve.pieces()) {
        auto part = kcdbCurveFrom(KcGeCurve3d::ofPiece(level, piece.transformed(whole)));
        if (!part)
            return false;
        part->setPropertiesFrom(source);
        inherit(*part, reference);
        parts.add(KcDbRead<KcDbBlockTableRecord>(owner)->appendEntity(std::move(part)));
    }
    return true;
}

Reason
placeDefinition(KcDbObjectId block, const KcGeMatrix3d& place, const KcDbEntity& reference, Parts& parts)
{
    const KcDbRead<KcDbBlockTableRecord> record(block);
    if (!record || record->isFromExternalReference())
        return QStringLiteral("an external reference");
    if (!record->data().explodable)
        return QStringLiteral("a block that is not to be exploded");
    for (const KcDbObjectId id : record->entityIds()) {
        {
            const KcDbRead<KcDbAttributeDefinition> definition(id);
            if (definition && !definition->isConstant())
                continue;
            if (definition) {
                const std::unique_ptr<KcDbObject> copy = definition->copy();
                auto& text = static_cast<KcDbText&>(*copy);
                text.transformBy(place);
                appendText(text, reference, text.textString(), reference.ownerId(), parts);
                continue;
            }
        }
        const KcDbObjectId part = kcedCopyEntity(id, place, reference.ownerId());
        if (!part.isNull()) {
            parts.add(part);
            inherit(*KcDbWrite<KcDbEntity>(part), reference);
            continue;
        }
        const KcDbRead<KcDbCurve> curve(id);
        if (!curve || !appendDistorted(*curve, place, reference, reference.ownerId(), parts))
            return QStringLiteral("a block with parts that cannot be placed by themselves");
    }
    return {};
}

Reason explodeReference(const KcDbBlockReference& reference, Parts& parts)
{
    const KcDbBlockReference::Array whole
        = reference.data().array ? *reference.data().array : KcDbBlockReference::Array();
    constexpr int kMostCells = 10000;
    if (double(whole.rows) * whole.columns > kMostCells)
        return QStringLiteral("an array of too many cells");
    const KcGeMatrix3d place = reference.blockTransform();
    const KcGeMatrix3d turned
        = KcGeMatrix3d::planeToWorld(reference.data().normal) * KcGeMatrix3d::rotation(reference.rotation());
    for (int row = 0; row < std::max(whole.rows, 1); ++row)
        for (int column = 0; column < std::max(whole.columns, 1); ++column) {
            const KcGeVector3d step
                = turned * KcGeVector3d{ column * whole.columnSpacing, row * whole.rowSpacing, 0.0 };
            const Reason reason = placeDefinition(
                reference.blockTableRecord(), KcGeMatrix3d::translation(step) * place, reference, parts);
            if (!reason.isEmpty())
                return reason;
        }
    for (const KcDbObjectId id : reference.attributes())
        if (const KcDbRead<KcDbAttribute> attribute(id); attribute && !attribute->isInvisible())
            appendText(*attribute, reference, attribute->textString(), reference.ownerId(), parts);
    return {};
}

Reason explodeMText(const KcDbMText& source, Parts& parts)
{
    const KcDbMTextLayout set = source.layout();
    const KcGeMatrix3d place = source.textTransform();
    for (const auto& line : set.lines) {
        if (line.text.trimmed().isEmpty())
            continue;
        auto text = std::make_unique<KcDbText>();
        text->setPropertiesFrom(source);
        text->data().position = { line.x, line.baseline, 0.0 };
        text->data().height = source.data().height;
        text->data().style = source.data().style;
        text->data().text = line.text;
        text->transformBy(place);
        parts.add(KcDbRead<KcDbBlockTableRecord>(source.ownerId())->appendEntity(std::move(text)));
    }
    return {};
}

Reason explodeCurve(const KcDbCurve& curve, Parts& parts)
{
    KcDbCurve::Curves pieces;
    if (curve.explode(pieces) != Kcad::eOk || pieces.empty())
        return QStringLiteral("a %1").arg(QString::fromLatin1(curve.isA()->name()).mid(4).toLower());
    for (auto& piece : pieces)
        parts.add(KcDbRead<KcDbBlockTableRecord>(curve.ownerId())->appendEntity(std::move(piece)));
    return {};
}

Reason explodeOne(const KcDbEntity& entity, Parts& parts)
{
    if (const auto* reference = as<KcDbBlockReference>(entity))
        return explodeReference(*reference, parts);
    if (const auto* curve = as<KcDbCurve>(entity))
        return explodeCurve(*curve, parts);
    if (const auto* text = as<KcDbMText>(entity))
        return explodeMText(*text, parts);
    if (const auto* raw = as<KcDbRawEntity>(entity); raw && !raw->data().block.isNull())
        return placeDefinition(raw->data().block, {}, entity, parts);
    if (const auto* raw = as<KcDbRawEntity>(entity))
        return QString::fromLatin1(raw->fileName()).toLower();
    return QString::fromLatin1(entity.isA()->name()).mid(4).toLower();
}

} // namespace

void hand::explode()
{
    std::map<QString, int> refused;
    for (const KcDbObjectId id : changeable(askSelection())) {
        Parts parts;
        Reason reason;
        {
            const KcDbRead<KcDbEntity> entity(id);
            reason = explodeOne(*entity, parts);
        }
        if (reason.isEmpty()) {
            KcDbWrite<KcDbEntity>(id)->erase();
        } else {
            parts.takeBack();
            ++refused[reason];
        }
    }
    for (const auto& [reason, count] : refused)
        kcedSay(QStringLiteral("%1 cannot be exploded: %2").arg(count).arg(reason));
}
