// Finding out what a space holds, once, and keeping it up to date by what the drawing tells.

#include "gi/paint/space_rows.h"

#include "db/block_reference.h"
#include "db/draw_order.h"
#include "db/header.h"
#include "gi/paint/scene.h"

namespace {

constexpr double kEverywhere = 1e15;

/// Notes where a definition is placed, and whether anything else is drawn.
class Notes : public KcGiDevice {
public:
    std::optional<Placement> placement;
    bool drewMore = false;

    double sagitta() const override { return 1.0; }
    void stroke(const QPainterPath&, const Pen&) override { drewMore = true; }
    void strokeLines(const std::vector<QLineF>&, const Pen&) override { drewMore = true; }
    void fill(const QPainterPath&, QRgb) override { drewMore = true; }
    void fill(const QPainterPath&, const QBrush&) override { drewMore = true; }
    void mask(const QPainterPath&) override { drewMore = true; }
    void dot(QPointF, QRgb) override { drewMore = true; }
    void text(const KcGiTextRun&, const QTransform&, QRgb) override { drewMore = true; }
    void pushClip(const QPainterPath&) override { drewMore = true; }
    void popClip() override { }
    bool place(const Placement& at, const DrawDefinition&) override
    {
        drewMore = drewMore || placement;
        placement = at;
        return true;
    }
};

KcGiSceneOptions everything(const KcGiSpaceRows::Look& look)
{
    KcGiSceneOptions options;
    options.toDevice = KcGeMatrix3d::fromAxes({}, { 1, 0, 0 }, { 0, -1, 0 }, { 0, 0, 1 });
    options.area = QRectF(-kEverywhere, -kEverywhere, 2 * kEverywhere, 2 * kEverywhere);
    options.background = look.background;
    options.unitsPerMillimetre = look.unitsPerMillimetre;
    return options;
}

float below(double value)
{
    return std::nextafter(float(value), -INFINITY);
}
float above(double value)
{
    return std::nextafter(float(value), INFINITY);
}

} // namespace

class KcGiSpaceRows::Maker {
public:
    Maker(KcDbDatabase& database, const Look& look, KcGiSymbols& symbols)
        : m_look(look)
        , m_symbols(symbols)
        , m_scene(database, m_notes, everything(look))
    {
    }

    Row row(KcDbObjectId id)
    {
        Row row{ id, INFINITY, INFINITY, -INFINITY, -INFINITY, 0, 0, 0, 0, Row::kAsk, false };
        const KcDbRead<KcDbEntity> entity(id);
        if (!entity || entity->ownerId() != m_look.space || !entity->isVisible())
            return row;
        const KcDbBlockReference* reference = entity->isKindOf(KcDbBlockReference::desc())
            ? static_cast<const KcDbBlockReference*>(entity.get())
            : nullptr;
        // Arrays and references with attributes are asked.
        if (reference && !reference->data().array) {
            m_notes = {};
            m_scene.draw(*entity);
            if (!m_notes.placement && !m_notes.drewMore)
                return row; // nothing of it is seen
            if (m_notes.placement && !m_notes.drewMore) {
                const KcGiDevice::Placement& placement = *m_notes.placement;
                if (const auto place = KcGiEvenPlace::of(placement.linear, placement.origin)) {
                    row.symbol = m_symbols.number(placement);
                    row.x = place->origin.x();
                    row.y = -place->origin.y();
                    row.scale = place->scale;
                    row.turn = place->turn;
                    row.mirrored = place->mirrored;
                }
            }
        }
        const KcGeExtents3d box = entity->geomExtents();
        if (box.isEmpty()) { // lines without ends
            row.left = row.bottom = -INFINITY;
            row.right = row.top = INFINITY;
        } else {
            row.left = below(box.min.x);
            row.bottom = below(box.min.y);
            row.right = above(box.max.x);
            row.top = above(box.max.y);
        }
        return row;
    }

private:
    const Look m_look;
    KcGiSymbols& m_symbols;
    Notes m_notes;
    KcGiScene m_scene;
};

KcGiSpaceRows::KcGiSpaceRows(KcDbDatabase& database)
    : m_database(database)
{
    database.addListener(this);
}

KcGiSpaceRows::~KcGiSpaceRows()
{
    m_database.removeListener(this);
}

void KcGiSpaceRows::note(const KcDbObject& object)
{
    if (!m_isBuilt)
        return;
    if (object.isKindOf(KcDbSymbolTableRecord::desc()) || object.isKindOf(KcDbSortentsTable::desc())) {
        m_isBuilt = false;
    } else if (object.isKindOf(KcDbHeader::desc())) {
        m_picturesHold = false; // scales of line types, the look of points
    } else if (object.isKindOf(KcDbEntity::desc())) {
        // Attributes and vertices belong to an entity.
        const KcDbObject* entity = &object;
        KcDbObjectId owner = object.ownerId();
        while (owner.isValid() && owner.stub()->object->isKindOf(KcDbEntity::desc())) {
            entity = owner.stub()->object;
            owner = entity->ownerId();
        }
        if (owner == m_look.space)
            m_changed.push_back(entity->objectId());
        else if (const KcDbRead<KcDbBlockTableRecord> block(owner); !block || !block->isLayout())
            m_isBuilt = false;
        else
            m_changed.push_back(entity->objectId()); // it may have been here
    }
}

const std::vector<KcGiSpaceRows::Row>& KcGiSpaceRows::rows(const Look& look, KcGiSymbols& symbols)
{
    constexpr size_t kMostChanged = 4; // a share of the rows: more are found out together
    if (!m_isBuilt || !(look == m_look)) {
        m_look = look;
        build(symbols);
    } else {
        if (!std::exchange(m_picturesHold, true))
            symbols.forget();
        if (!m_changed.empty()) {
            if (m_changed.size() > m_rows.size() / kMostChanged + 100)
                build(symbols);
            else
                refresh(symbols);
        }
    }
    return m_rows;
}

void KcGiSpaceRows::build(KcGiSymbols& symbols)
{
    symbols.clear(m_look.background);
    m_rows.clear();
    m_places.clear();
    m_changed.clear();
    m_isBuilt = m_picturesHold = true;
    const KcDbRead<KcDbBlockTableRecord> space(m_look.space);
    if (!space)
        return;
    std::vector<KcDbObjectId> ids = space->entityIds();
    m_isSorted = kcdbSortForDrawing(m_look.space, ids);
    Maker maker(m_database, m_look, symbols);
    m_rows.reserve(ids.size());
    for (const KcDbObjectId id : ids)
        m_rows.push_back(maker.row(id));
}

void KcGiSpaceRows::refresh(KcGiSymbols& symbols)
{
    if (m_places.empty())
        for (size_t i = 0; i < m_rows.size(); ++i)
            m_places.emplace(m_rows[i].id, i);
    Maker maker(m_database, m_look, symbols);
    for (const KcDbObjectId id : std::exchange(m_changed, {})) {
        if (const auto place = m_places.find(id); place != m_places.end()) {
            m_rows[place->second] = maker.row(id);
            continue;
        }
        if (m_isSorted)
            return build(symbols);
        const Row row = maker.row(id);
        if (row.left > row.right)
            continue; // not here, or not to be seen: it comes again when that changes
        m_places.emplace(id, m_rows.size());
        m_rows.push_back(row);
    }
}
