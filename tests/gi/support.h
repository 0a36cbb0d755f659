// Drawings in memory, and devices that tell what was drawn on them.
#pragma once

#include "db/block_reference.h"
#include "db/block_table_record.h"
#include "db/curves.h"
#include "db/database.h"
#include "db/header.h"
#include "db/tables.h"
#include "dxf/drawing_file.h"
#include "gi/paint/painter_device.h"
#include "gi/paint/scene.h"

#include <QPainter>

#include <gtest/gtest.h>

namespace gi_test {

/// A new drawing with shorthands to fill it.
struct Drawing {
    KcDbDatabase database;

    KcDbObjectId add(std::unique_ptr<KcDbEntity> entity)
    {
        return add(std::move(entity), database.modelSpace());
    }
    KcDbObjectId add(std::unique_ptr<KcDbEntity> entity, KcDbObjectId block)
    {
        if (entity->layerId().isNull())
            entity->setLayer(kcdbFindRecord(database.layerTable(), QStringLiteral("0")));
        return KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(std::move(entity));
    }
    KcDbObjectId layer(const QString& name, int color)
    {
        auto layer = std::make_unique<KcDbLayerTableRecord>();
        layer->initName(name);
        layer->setColor(color);
        return KcDbWrite<KcDbSymbolTable>(database.layerTable())->add(std::move(layer));
    }
    KcDbObjectId block(const QString& name)
    {
        auto block = std::make_unique<KcDbBlockTableRecord>();
        block->initName(name);
        return KcDbWrite<KcDbSymbolTable>(database.blockTable())->add(std::move(block));
    }
    KcDbObjectId linetype(const QString& name, const std::vector<double>& dashes)
    {
        auto linetype = std::make_unique<KcDbLinetypeTableRecord>();
        linetype->initName(name);
        for (const double length : dashes) {
            linetype->data().dashes.emplace_back().length = length;
            linetype->data().patternLength += std::abs(length);
        }
        return KcDbWrite<KcDbSymbolTable>(database.linetypeTable())->add(std::move(linetype));
    }
    /// A filled square with its lower left corner at a point.
    static std::unique_ptr<KcDbSolid> square(double x, double y, double side)
    {
        auto solid = std::make_unique<KcDbSolid>();
        solid->data().corners[0] = { x, y, 0 };
        solid->data().corners[1] = { x + side, y, 0 };
        solid->data().corners[2] = { x, y + side, 0 };
        solid->data().corners[3] = { x + side, y + side, 0 };
        return solid;
    }
};

/// Model space from (0, 0) to (100, 100) as a picture of 100 × 100 pixels.
inline QImage
picture(KcDbDatabase& database, KcGiSceneOptions options = {}, std::map<QString, size_t>* told = nullptr)
{
    QImage image(100, 100, QImage::Format_RGB32);
    image.fill(options.background);
    QPainter painter(&image);
    KcGiPainterDevice::Options paint;
    paint.background = options.background;
    KcGiPainterDevice device(painter, paint);
    options.area = QRectF(0, 0, 100, 100);
    options.toDevice = KcGeMatrix3d::fromAxes({ 0, 100, 0 }, { 1, 0, 0 }, { 0, -1, 0 }, { 0, 0, 1 });
    KcGiScene scene(database, device, options);
    scene.drawSpace(database.modelSpace());
    if (told)
        *told = scene.leftOutThings();
    return image;
}

/// The pixel that shows a point of the drawing.
inline QRgb at(const QImage& image, int x, int y)
{
    return image.pixel(x, 99 - y);
}

/// Grows by everything that is drawn on it. Clips count as their boxes.
class BoxDevice : public KcGiDevice {
public:
    KcGeExtents2d box, textBox;

    double sagitta() const override { return 1e-4; }
    void stroke(const QPainterPath& path, const Pen&) override { add(box, path); }
    void strokeLines(const std::vector<QLineF>& lines, const Pen&) override
    {
        for (const QLineF& line : lines) {
            QPainterPath path(line.p1());
            path.lineTo(line.p2());
            add(box, path);
        }
    }
    void fill(const QPainterPath& path, QRgb) override { add(box, path); }
    void fill(const QPainterPath& path, const QBrush&) override { add(box, path); }
    void mask(const QPainterPath& path) override { add(box, path); }
    void dot(QPointF at, QRgb) override { add(box, QPainterPath(at)); }
    void text(const KcGiTextRun& run, const QTransform& transform, QRgb) override
    {
        const QTransform sized = QTransform::fromScale(run.height, run.height) * transform;
        add(textBox, sized.map(kcgiGlyphs(run.style, run.text)));
    }
    void pushClip(const QPainterPath& path) override { m_clips.push_back(path.boundingRect()); }
    void popClip() override { m_clips.pop_back(); }

private:
    void add(KcGeExtents2d& to, const QPainterPath& path) const
    {
        KcGeExtents2d own;
        for (int i = 0; i < path.elementCount(); ++i)
            own.addPoint({ path.elementAt(i).x, path.elementAt(i).y });
        for (const QRectF& clip : m_clips) {
            if (!own.overlaps({ { clip.left(), clip.top() }, { clip.right(), clip.bottom() } }))
                return;
            own.min = { std::max(own.min.x, clip.left()), std::max(own.min.y, clip.top()) };
            own.max = { std::min(own.max.x, clip.right()), std::min(own.max.y, clip.bottom()) };
        }
        to.addExtents(own);
    }
    std::vector<QRectF> m_clips;
};

} // namespace gi_test
