// Plotting a drawing to a file: a picture in pixels, or a page of vectors.
#pragma once

#include "db/database.h"
#include "platform/result.h"

#include <QSize>
#include <QSizeF>

#include <map>

struct KcGiPlotRequest {
    QString path; ///< .png, .pdf or .svg
    std::optional<KcGeExtents2d> window; ///< drawing units; none: everything visible
    QString layout; ///< name; empty: the current space
    std::optional<QSize>
        pixels; ///< of a picture; none: what fits 1600 × 1200, or the paper at 96 dots per inch
    std::optional<double>
        scale; ///< one millimetre of paper is that many millimetres of the drawing; none: fit
    double drawingUnitsPerMillimetre = 1.0; ///< of the drawing's own unit
    std::optional<QSizeF> paper; ///< millimetres, as it lies; none: one that fits the drawing
    std::function<void(size_t, size_t)> progress;
    std::function<bool()> cancelled;
};

struct KcGiPlotResult {
    QString error; ///< empty: the file is written
    std::map<QString, size_t> leftOut; ///< what could not be drawn, with how often
    QSizeF paper; ///< millimetres
    double scale = 0.0; ///< of paper to drawing, as in the request
};

KcGiPlotResult kcgiPlot(KcDbDatabase& database, const KcGiPlotRequest& request);

/// The size of a paper by its name ("A0" to "A4", "B1" to "B5", "Letter", …, or "420x297" in millimetres),
/// lying on its long side. Nothing for an unknown name.
std::optional<QSizeF> kcgiPaper(const QString& name);
/// The scale of "1:200" or "1:0.5" as the request takes it; nothing for what is none.
std::optional<double> kcgiScale(const QString& text);
/// Suffixes of the files that can be plotted to.
QStringList kcgiPlotFormats();
/// Drawing units in a millimetre, by the drawing's unit variable; 1 for drawings without a unit.
double kcgiUnitsPerMillimetre(KcDbDatabase& database);
/// The block of a layout by its name ("Model" is model space); null when there is none.
KcDbObjectId kcgiLayoutBlock(KcDbDatabase& database, const QString& name);
QStringList kcgiLayoutNames(KcDbDatabase& database);
/// The box of everything that is seen in a space; `tooFar` grows by the entities that lie too far away to be
/// drawn.
KcGeExtents2d kcgiVisibleExtents(KcDbDatabase& database, KcDbObjectId space, size_t* tooFar = nullptr);
