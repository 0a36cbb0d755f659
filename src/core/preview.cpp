// Fitting and painting what a preview shows.

#include "core/preview.h"

#include "db/block_table_record.h"
#include "gi/paint/painter_device.h"
#include "gi/paint/scene.h"

#include <QPainter>

namespace {

constexpr double kMargin = 8.0; // pixels around what is shown

} // namespace

CGsPreviewCtrl::CGsPreviewCtrl(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(QStringLiteral("预览"));
}

CGsPreviewCtrl::~CGsPreviewCtrl() = default;

void CGsPreviewCtrl::clear()
{
    m_entities.clear();
    m_block = {};
    m_database = nullptr;
    m_kept.reset();
    update();
}

void CGsPreviewCtrl::setDatabase(std::shared_ptr<KcDbDatabase> database)
{
    clear();
    m_kept = std::move(database);
    m_database = m_kept.get();
    if (m_database)
        m_block = m_database->modelSpace();
}

void CGsPreviewCtrl::setDefinition(KcDbObjectId block)
{
    clear();
    m_block = block;
    m_database = block.isNull() ? nullptr : block.database();
}

void CGsPreviewCtrl::setEntities(KcDbDatabase& database, std::vector<std::unique_ptr<KcDbEntity>> entities)
{
    clear();
    m_database = &database;
    m_entities = std::move(entities);
}

KcGeExtents3d CGsPreviewCtrl::extents() const
{
    KcGeExtents3d box;
    for (const auto& entity : m_entities)
        box.addExtents(entity->geomExtents());
    if (const KcDbRead<KcDbBlockTableRecord> block(m_block); block)
        for (const KcDbObjectId id : *block)
            if (const KcDbRead<KcDbEntity> entity(id); entity && entity->isVisible())
                box.addExtents(entity->geomExtents());
    return box;
}

void CGsPreviewCtrl::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QColor background = palette().color(QPalette::Base);
    painter.fillRect(rect(), background);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    const KcGeExtents3d box = m_database ? extents() : KcGeExtents3d();
    if (box.isEmpty())
        return;
    const QRectF room = QRectF(rect()).adjusted(kMargin, kMargin, -kMargin, -kMargin);
    const double factor = std::min(
        room.width() / std::max(box.width(), KcGeContext::gTol.equalPoint),
        room.height() / std::max(box.height(), KcGeContext::gTol.equalPoint));
    if (!(factor > 0.0) || !std::isfinite(factor))
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(rect().adjusted(1, 1, -1, -1));
    KcGiSceneOptions options;
    options.toDevice = KcGeMatrix3d::translation({ room.center().x(), room.center().y(), 0 })
        * KcGeMatrix3d::scaling(KcGeVector3d{ factor, -factor, 1.0 })
        * KcGeMatrix3d::translation(KcGePoint3d() - box.center());
    options.area = QRectF(rect());
    options.background = background.rgb();
    KcGiPainterDevice::Options device;
    device.background = background.rgb();
    KcGiPainterDevice target(painter, device);
    KcGiScene scene(*m_database, target, options);
    if (!m_block.isNull())
        scene.drawSpace(m_block);
    for (const auto& entity : m_entities)
        scene.draw(*entity);
}
