// What a drawn scene ends up on: an image, a page, a box that grows, a cursor that wants to know what it
// touches. A device knows plane lines and areas in its own coordinates and nothing of drawings.
#pragma once

#include "gi/sink/world_draw.h"

#include <QColor>
#include <QPainterPath>

class KcGiDevice {
public:
    virtual ~KcGiDevice() = default;

    /// How far a chord may stay away from its curve, in device units.
    virtual double sagitta() const = 0;
    /// True when a device keeps cubic curves (pages); else it gets chords.
    virtual bool keepsCurves() const { return false; }
    /// Things smaller than this many device units may be drawn as a dot. 0: everything counts.
    virtual double smallest() const { return 0.0; }

    struct Pen {
        QRgb color = 0xff000000;
        double width = 0.0; ///< device units; 0: as thin as can be seen
    };
    /// Lines; a path may hold many runs.
    virtual void stroke(const QPainterPath& path, const Pen& pen) = 0;
    /// Many separate lines, ends in pairs: dashes and hatches. A pair of equal points is a dot.
    virtual void strokeLines(const std::vector<QLineF>& lines, const Pen& pen) = 0;
    /// Areas by the even-odd rule.
    virtual void fill(const QPainterPath& path, QRgb color) = 0;
    virtual void fill(const QPainterPath& path, const QBrush& brush) = 0;
    /// Hides what lies below an area.
    virtual void mask(const QPainterPath& path) = 0;
    /// A small mark in the place of what is too small to be told apart.
    virtual void dot(QPointF at, QRgb color) = 0;
    /// One line of text; `transform` leads from the run's glyph coordinates (capital height `run.height`, y
    /// upward) to the device.
    virtual void text(const KcGiTextRun& run, const QTransform& transform, QRgb color) = 0;
    /// A block definition at its place. Two placements that agree in the first five values look alike, apart
    /// from their transforms.
    struct Placement {
        const void* definition = nullptr;
        const void* layer = nullptr; ///< of what lies on the layer "0"
        QRgb color = 0; ///< of what is ByBlock
        const void* linetype = nullptr; ///< of what is ByBlock; null: no gaps
        int lineWeight = 0; ///< of what is ByBlock, as the reference has it
        bool thinLines = false; ///< all lines are as thin as can be seen
        QRectF box; ///< of the definition, in its own coordinates
        QTransform linear; ///< from the definition to the device, the move left out
        QPointF origin; ///< where the definition's origin comes to lie
    };
    /// Draws the definition on a device, its own coordinates transformed by `toDevice`.
    using DrawDefinition = std::function<void(KcGiDevice& device, const QTransform& toDevice)>;
    /// Called before a definition is drawn. True when the device has placed it itself, from what it kept of
    /// it.
    virtual bool place(const Placement& placement, const DrawDefinition& draw) { return false; }

    virtual void pushClip(const QPainterPath& path) = 0;
    virtual void popClip() = 0;
};
