// Dragging: a command asks for a point, a distance or an angle and shows, while the cursor moves, what it
// would make of it. The preview comes from the same function as the result. How to write one stands in
// docs/dialogs.md.
#pragma once

#include "db/entity.h"
#include "ed/prompt.h"

/// Entities that are shown and are in no drawing. They vanish with the drag.
using KcEdPreview = std::vector<std::unique_ptr<KcDbEntity>>;

/// Shows previews; a window installs one. Scripts have none: the preview is computed and nobody sees it.
class KcEdPreviewHolder {
public:
    virtual ~KcEdPreviewHolder() = default;
    /// Takes the place of what was shown before. World coordinates. The entities live until the next call.
    virtual void show(const KcEdPreview& preview) = 0;
};
/// Installs the holder, which must outlive its use, and returns the one before; null: none.
KcEdPreviewHolder* kcedSetPreviewHolder(KcEdPreviewHolder* holder);

/// Shows previews for the length of a scope, one after the other, and takes the last one away at its end.
class KcEdShownPreview {
public:
    KcEdShownPreview() = default;
    ~KcEdShownPreview() { show({}); }
    KcEdShownPreview(const KcEdShownPreview&) = delete;
    KcEdShownPreview& operator=(const KcEdShownPreview&) = delete;
    void show(KcEdPreview preview);

private:
    KcEdPreview m_preview;
};

struct KcEdDrag {
    enum class Asks { Point, Distance, Angle };

    Asks asks = Asks::Point;
    QString prompt;
    QString keywords; ///< "local … _ global …"
    int flags = 0; ///< bits of `KcEdPrompt::Flag`
    std::optional<KcGePoint3d> base; ///< user coordinates; needed for a distance or an angle
    /// What would be there if the user answered with the cursor at this point, user coordinates. It may be
    /// called any number of times, and must not change the drawing.
    std::function<KcEdPreview(KcGePoint3d cursor)> preview;
};

struct KcEdDragged {
    enum class Status {
        Normal, ///< there is a point, and a value where one was asked for
        Keyword,
        Enter,
        Restart, ///< a dialog has changed values on which the drag depends: take them over and drag again
        Cancel,
    };
    Status status = Status::Cancel;
    KcGePoint3d
        point; ///< user coordinates; of a typed value, where it lies in direction of the X axis (or angle)
    double value = 0.0; ///< drawing units, or radians in [0, 2π)
    QString keyword; ///< global name
};

/// Drags until there is an answer. A preview that is shown is taken away on every way out.
KcEdDragged kcedDrag(const KcEdDrag& drag);

/// Makes a running drag return `Restart`; called by dialogs beside it when their values change. False when
/// none runs: the values will be seen by the next one.
bool kcedRestartDrag();
