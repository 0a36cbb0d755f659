// The checks of an audit, one function for each kind of thing.

#include "db/audit.h"

#include "db/block_reference.h"
#include "db/hatch.h"
#include "db/tables.h"
#include "db/text.h"

#include <unordered_set>

namespace {

class Audit {
public:
    explicit Audit(KcDbDatabase& database)
        : m_database(database)
    {
    }

    std::vector<KcDbFinding> run(const std::function<void(int)>& progress)
    {
        // Repairs may add objects; those need no check.
        const size_t count = m_database.stubs().size();
        for (size_t i = 0; i < count; ++i) {
            const KcDbObjectId id(&m_database.stubs()[i]);
            if (progress && i % 1000 == 0)
                progress(int(i * 100 / count));
            if (!id.isResident())
                continue;
            checkObject(id);
            if (id.stub()->object->isKindOf(KcDbEntity::desc()))
                checkEntity(id);
        }
        return std::move(m_findings);
    }

private:
    void error(int number, KcDbObjectId id, const QString& text)
    {
        m_findings.push_back({ number, false, id.handle(), text });
    }
    void fix(int number, KcDbObjectId id, const QString& text)
    {
        m_findings.push_back({ number, true, id.handle(), text });
    }

    void checkObject(KcDbObjectId id)
    {
        const KcDbRead<KcDbObject> object(id);
        const KcDbObjectId owner = object->ownerId();
        if (!owner.isNull() && !owner.isValid())
            error(
                205, id,
                QStringLiteral("Its owner #%1 does not exist.")
                    .arg(QString::number(owner.handle(), 16).toUpper()));
    }

    void checkEntity(KcDbObjectId id)
    {
        checkLayerAndLinetype(id);
        const KcDbRead<KcDbEntity> entity(id);
        if (entity->isKindOf(KcDbBlockReference::desc()))
            checkReference(id, static_cast<const KcDbBlockReference&>(*entity));
        else if (entity->isKindOf(KcDbText::desc()))
            checkTextStyle(id, static_cast<const KcDbText&>(*entity).data().style);
        else if (entity->isKindOf(KcDbMText::desc()))
            checkTextStyle(id, static_cast<const KcDbMText&>(*entity).data().style);
        else if (entity->isKindOf(KcDbHatch::desc()))
            checkHatch(id, static_cast<const KcDbHatch&>(*entity));
        else if (entity->isKindOf(KcDbCircle::desc()))
            checkSize(id, static_cast<const KcDbCircle&>(*entity).radius(), QStringLiteral("radius"));
        else if (entity->isKindOf(KcDbArc::desc()))
            checkSize(id, static_cast<const KcDbArc&>(*entity).radius(), QStringLiteral("radius"));
    }

    void checkLayerAndLinetype(KcDbObjectId id)
    {
        const KcDbObjectId layer = KcDbRead<KcDbEntity>(id)->layerId();
        // An entity that names no layer is on layer 0 by the rules of the format.
        if (!layer.isNull() && KcDbRead<KcDbLayerTableRecord>(layer).status() != Kcad::eOk) {
            KcDbWrite<KcDbEntity>(id)->setLayer(kcdbFindRecord(m_database.layerTable(), QStringLiteral("0")));
            fix(201, id, QStringLiteral("Its layer does not exist; it was put on layer 0."));
        } else if (
            !layer.isNull() && (layer.stub()->flags & KcDbObjectStub::kImplicit)
            && kcdbRecordName(layer) != u"0") {
            reportOnce(
                layer, 201, id,
                QStringLiteral("The layer \"%1\" is used and not defined.").arg(kcdbRecordName(layer)));
        }
        const KcDbObjectId linetype = KcDbRead<KcDbEntity>(id)->linetypeId();
        if (linetype.isNull())
            return;
        if (KcDbRead<KcDbLinetypeTableRecord>(linetype).status() != Kcad::eOk) {
            KcDbWrite<KcDbEntity>(id)->setLinetypeId({});
            fix(202, id, QStringLiteral("Its line type does not exist; it was set to that of the layer."));
        } else if ((linetype.stub()->flags & KcDbObjectStub::kImplicit) && !isStandardLinetype(linetype)) {
            reportOnce(
                linetype, 202, id,
                QStringLiteral("The line type \"%1\" is used and not defined.")
                    .arg(kcdbRecordName(linetype)));
        }
    }

    // Those that every drawing has, written down or not.
    static bool isStandardLinetype(KcDbObjectId linetype)
    {
        const QString name = kcdbRecordName(linetype).toUpper();
        return name == u"BYLAYER" || name == u"BYBLOCK" || name == u"CONTINUOUS";
    }

    void checkReference(KcDbObjectId id, const KcDbBlockReference& reference)
    {
        const KcDbObjectId block = reference.blockTableRecord();
        if (KcDbRead<KcDbBlockTableRecord>(block).status() != Kcad::eOk)
            return error(203, id, QStringLiteral("The block that it shows does not exist."));
        // Old drawings have blocks without records; what has no begin mark either was never defined.
        const bool isUndefined = (block.stub()->flags & KcDbObjectStub::kImplicit)
            && KcDbRead<KcDbBlockTableRecord>(block)->data().begin.isNull();
        if (isUndefined)
            reportOnce(
                block, 203, id,
                QStringLiteral("The block \"%1\" is used and not defined.").arg(kcdbRecordName(block)));
        if (reference.ownerId() == block || reaches(block, reference.ownerId()))
            error(204, id, QStringLiteral("The block \"%1\" contains itself.").arg(kcdbRecordName(block)));
        const KcGeVector3d scale = reference.scaleFactors();
        if (scale.x == 0.0 || scale.y == 0.0) // exact on purpose: only 0 cannot be drawn
            error(209, id, QStringLiteral("One of its scale factors is 0."));
    }

    // True when `from` holds a reference, at any depth, to `to`. Answers are kept: drawings refer to few
    // blocks often.
    bool reaches(KcDbObjectId from, KcDbObjectId to)
    {
        const KcDbRead<KcDbBlockTableRecord> target(to);
        if (!target || target->isLayout())
            return false; // nothing refers to a layout
        std::unordered_set<KcDbObjectId> seen{ from };
        std::vector<KcDbObjectId> open{ from };
        while (!open.empty()) {
            const KcDbObjectId block = open.back();
            open.pop_back();
            for (const KcDbObjectId next : blocksIn(block)) {
                if (next == to)
                    return true;
                if (seen.insert(next).second)
                    open.push_back(next);
            }
        }
        return false;
    }

    const std::vector<KcDbObjectId>& blocksIn(KcDbObjectId block)
    {
        const auto [entry, isNew] = m_blocksIn.try_emplace(block);
        if (!isNew)
            return entry->second;
        if (const KcDbRead<KcDbBlockTableRecord> record(block); record)
            for (const KcDbObjectId id : *record)
                if (const KcDbRead<KcDbBlockReference> reference(id); reference)
                    entry->second.push_back(reference->blockTableRecord());
        return entry->second;
    }

    void checkTextStyle(KcDbObjectId id, KcDbObjectId style)
    {
        if (!style.isNull() && KcDbRead<KcDbTextStyleTableRecord>(style).status() != Kcad::eOk)
            error(207, id, QStringLiteral("Its text style does not exist."));
    }

    void checkSize(KcDbObjectId id, double size, const QString& what)
    {
        if (!(size > 0.0) || !std::isfinite(size))
            error(209, id, QStringLiteral("Its %1 is %2.").arg(what).arg(size));
    }

    void checkHatch(KcDbObjectId id, const KcDbHatch& hatch)
    {
        int number = 0;
        for (const KcDbHatch::Loop& loop : hatch.data().loops) {
            ++number;
            if (loop.isPolyline() ? loop.vertices.size() < 2 : loop.edges.empty())
                error(208, id, QStringLiteral("Its loop %1 is empty.").arg(number));
        }
        if (hatch.data().loops.empty())
            error(208, id, QStringLiteral("It has no loop."));
    }

    void reportOnce(KcDbObjectId about, int number, KcDbObjectId id, const QString& text)
    {
        if (m_reported.insert(about).second)
            error(number, id, text);
    }

    KcDbDatabase& m_database;
    std::vector<KcDbFinding> m_findings;
    std::unordered_set<KcDbObjectId> m_reported;
    std::unordered_map<KcDbObjectId, std::vector<KcDbObjectId>> m_blocksIn;
};

} // namespace

std::vector<KcDbFinding> kcdbAudit(KcDbDatabase& database, const std::function<void(int)>& progress)
{
    return Audit(database).run(progress);
}
