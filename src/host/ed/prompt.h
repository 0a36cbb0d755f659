// What a prompt accepts, what answers it, and the one parser that turns a typed line into an answer or a
// refusal.
#pragma once

#include "db/object_id.h"
#include "ed/keywords.h"
#include "ge/point.h"

#include <functional>
#include <variant>

struct KcEdEscape { };
struct KcEdEnter { };
/// A keyword by its global name.
struct KcEdKeyword {
    QString name;
};
/// While a command tracks the cursor: it was moved here, user coordinates.
struct KcEdMove {
    KcGePoint3d point;
};
/// A drag is to begin again with values that a dialog has changed.
struct KcEdRestart { };
/// One entity: by handle, by a point, or by both; user coordinates.
struct KcEdPick {
    KcDbHandle handle = 0; ///< 0: what lies at the point
    std::optional<KcGePoint3d> point;
};
/// A selection line, such as "R W 0,0 10,10".
struct KcEdSelectionLine {
    enum class Mode {
        All,
        Window,
        Crossing,
        Fence,
        WindowPolygon,
        CrossingPolygon,
        Last,
        Previous,
        Handles,
        Point,
        Add, ///< what follows adds again
        Remove ///< what follows removes
    };
    Mode mode = Mode::All;
    bool removes = false;
    /// User coordinates; a window's two corners. None after the word of a window, fence or polygon alone,
    /// which is for asking then.
    std::vector<KcGePoint3d> points;
    std::vector<KcDbHandle> handles;
};

using KcEdAnswer = std::variant<
    KcEdEscape, KcEdEnter, KcEdKeyword, KcGePoint3d, double, int, QString, KcEdSelectionLine, KcEdPick,
    KcEdMove, KcEdRestart>;

/// Why a line does not answer a prompt, in one sentence.
struct KcEdRefusal {
    QString sentence;
};

struct KcEdPrompt {
    enum class Kind {
        Command,
        Point,
        Corner,
        Distance,
        Angle, ///< degrees, or a point in whose direction it goes from the base
        Real,
        Integer,
        Text,
        Keyword,
        Selection,
        Entity,
        Track,
        Dialog, ///< what a dialog waits for: a line beginning with "!"
    };
    /// Bits of `flags`.
    enum Flag {
        kNoEmpty = 1, ///< Enter is refused
        kNoZero = 2,
        kNoNegative = 4,
        kAnyText = 128, ///< what is neither a value nor a keyword is a text
    };

    Kind kind = Kind::Text;
    QString text; ///< shown as it is
    KcEdKeywordList keywords;
    int flags = 0;
    std::optional<KcGePoint3d> base; ///< user coordinates; where a rubber band or rectangle begins
    /// Refuses an answer that has the right form for another reason, by a sentence; an empty text accepts.
    std::function<QString(const KcEdAnswer&)> check;
    /// What a pick at a point may take, the best first; user coordinates. Without it, whatever lies there.
    std::function<std::vector<KcDbObjectId>(KcGePoint3d)> under;
    /// Told where the cursor is while the prompt waits, user coordinates; with it "~x,y" moves the cursor.
    std::function<void(KcGePoint3d)> drag;
};

/// True for prompts that a click answers with a point.
bool kcedTakesPoint(KcEdPrompt::Kind kind);

/// Turns a line into an answer to the prompt. `literal` lines are never keywords at a text prompt.
/// `lastPoint` is what relative points count from, in user coordinates.
std::variant<KcEdAnswer, KcEdRefusal>
kcedParseAnswer(const KcEdPrompt& prompt, const QString& line, bool literal, KcGePoint3d lastPoint);

/// A point as it is typed: "x,y", "x,y,z", "@dx,dy", "distance<angle", "@distance<angle", "@"; angles in
/// degrees.
std::optional<KcGePoint3d> kcedParsePoint(const QString& text, KcGePoint3d lastPoint);
/// A finite decimal number; nothing for any other text.
std::optional<double> kcedParseReal(const QString& text);
/// A selection line; a refusal when it begins like one but goes wrong; Enter when it is none at all.
std::variant<KcEdSelectionLine, KcEdEnter, KcEdRefusal>
kcedParseSelectionLine(const QString& line, KcGePoint3d lastPoint);
/// "#2F", a handle in hexadecimal.
std::optional<KcDbHandle> kcedParseHandle(const QString& text);
