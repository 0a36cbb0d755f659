// TEXT and MTEXT.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/tables.h"
#include "db/text.h"
#include "ed/command_stack.h"
#include "ed/system_variables.h"

using namespace hand;

namespace {

// From the base line of one single-line text to that of the next, in text heights.
constexpr double kLineDistance = 5.0 / 3.0;

struct Justification {
    const char* keyword;
    int horizontal, vertical; ///< as in KcDbTextData
    int attachment; ///< as in KcDbMText
};
constexpr Justification kJustifications[] = {
    { "Left", 0, 0, 0 }, { "Center", 1, 0, 0 }, { "Right", 2, 0, 0 }, { "Middle", 4, 0, 0 },
    { "TL", 0, 3, 1 },   { "TC", 1, 3, 2 },     { "TR", 2, 3, 3 },    { "ML", 0, 2, 4 },
    { "MC", 1, 2, 5 },   { "MR", 2, 2, 6 },     { "BL", 0, 1, 7 },    { "BC", 1, 1, 8 },
    { "BR", 2, 1, 9 },
};

/// Null when the user gave up.
const Justification* askJustification(bool multiline)
{
    QStringList names;
    for (const Justification& row : kJustifications)
        if (!multiline || row.attachment != 0)
            names += QString::fromLatin1(row.keyword);
    kcedInitGet(
        KcEdPrompt::kNoEmpty,
        names.join(QLatin1Char(' ')) + QStringLiteral(" _ ") + names.join(QLatin1Char(' ')));
    QString keyword;
    if (kcedGetKword(QStringLiteral("\nJustification [%1]: ").arg(names.join(QLatin1Char('/'))), keyword)
        != kcedNormal)
        return nullptr;
    for (const Justification& row : kJustifications)
        if (keyword == QLatin1String(row.keyword))
            return &row;
    return nullptr;
}

/// Null when the user gave up. A name that no style has is told, and asked for again.
KcDbObjectId askStyle(KcDbObjectId current)
{
    for (;;) {
        QString name;
        const KcEdStatus status = kcedGetString(
            true, QStringLiteral("\nText style or [?]%1: ").arg(offered(kcdbRecordName(current))), name);
        if (status == kcedCancel)
            return {};
        if (status == kcedNone)
            return current;
        const KcDbRead<KcDbSymbolTable> styles(database().textStyleTable());
        if (name == u"?")
            kcedSay(styles->names().join(QStringLiteral(", ")));
        else if (const KcDbObjectId style = styles->getAt(name); !style.isNull())
            return style;
        else
            kcedSay(QStringLiteral("The drawing has no text style \"%1\".").arg(name));
    }
}

double fixedHeight(KcDbObjectId style)
{
    const KcDbRead<KcDbTextStyleTableRecord> record(style);
    return record ? record->data().fixedHeight : 0.0;
}

/// The height of the style, where it has one, else what the user says, by a number or a point above the first
/// one; nothing when he gave up.
std::optional<double> askHeight(KcDbObjectId style, KcGePoint3d start)
{
    if (const double fixed = fixedHeight(style); fixed > 0.0)
        return fixed;
    double height = kcedVarReal(QStringLiteral("TEXTSIZE"), 2.5);
    kcedInitGet(KcEdPrompt::kNoZero | KcEdPrompt::kNoNegative);
    if (kcedGetDist(&start, QStringLiteral("\nHeight%1: ").arg(offered(height)), height) == kcedCancel)
        return {};
    return height;
}

/// Of the last text, offered for the next one.
double& lastRotation()
{
    static double radians = 0.0;
    return radians;
}

double degrees(double radians)
{
    return radians * 180.0 / kPi;
}

void appendText(
    const QString& content, KcGePoint3d at, double height, double rotation, KcDbObjectId style,
    const Justification& justification)
{
    auto text = std::make_unique<KcDbText>();
    KcDbText::Data& data = text->data();
    const KcDbRead<KcDbTextStyleTableRecord> record(style);
    data.position = data.alignment = at;
    data.height = height;
    data.rotation = rotation;
    data.style = style;
    data.horizontal = justification.horizontal;
    data.vertical = justification.vertical;
    if (record) {
        data.widthFactor = record->data().widthFactor;
        data.oblique = record->data().obliqueAngle;
        data.generation = record->data().generation;
    }
    const KcDbObjectId id = append(std::move(text));
    KcDbWrite<KcDbText>(id)->setTextString(content);
}

} // namespace

void hand::text()
{
    KcDbObjectId style = database().currentTextStyle();
    const Justification* justification = &kJustifications[0];
    KcGePoint3d start;
    for (;;) {
        kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Justify Style _ Justify Style"));
        const KcEdStatus status
            = kcedGetPoint(nullptr, QStringLiteral("\nStart point of text or [Justify/Style]: "), start);
        if (status == kcedNormal)
            break;
        if (status != kcedKeyword)
            return;
        if (kcedGetInput() == u"Justify")
            justification = askJustification(false);
        else
            style = askStyle(style);
        if (!justification || style.isNull())
            return;
    }
    const auto height = askHeight(style, start);
    if (!height)
        return;
    double rotation = lastRotation();
    if (kcedGetAngle(&start, QStringLiteral("\nRotation angle%1: ").arg(offered(degrees(rotation))), rotation)
        == kcedCancel)
        return;

    const KcGeVector3d down
        = KcGeVector3d{ std::sin(rotation), -std::cos(rotation), 0.0 } * (*height * kLineDistance);
    for (int row = 0;; ++row) {
        QString content;
        if (kcedGetString(true, QStringLiteral("\nText: "), content) != kcedNormal)
            return;
        appendText(content, start + down * row, *height, rotation, style, *justification);
        lastRotation() = rotation;
        kcedSetVar(QStringLiteral("TEXTSIZE"), *height);
        kcedRoundCompleted();
    }
}

void hand::multilineText()
{
    KcGePoint3d first, opposite;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(nullptr, QStringLiteral("\nFirst corner: "), first) != kcedNormal)
        return;
    KcDbObjectId style = database().currentTextStyle();
    const Justification* justification = nullptr;
    double height
        = fixedHeight(style) > 0.0 ? fixedHeight(style) : kcedVarReal(QStringLiteral("TEXTSIZE"), 2.5);
    double rotation = 0.0;
    for (;;) {
        kcedInitGet(
            KcEdPrompt::kNoEmpty,
            QStringLiteral("Height Justify Rotation Style _ Height Justify Rotation Style"));
        const KcEdStatus status = kcedGetCorner(
            first, QStringLiteral("\nOpposite corner or [Height/Justify/Rotation/Style]: "), opposite);
        if (status == kcedNormal)
            break;
        if (status != kcedKeyword)
            return;
        const QString keyword = kcedGetInput();
        if (keyword == u"Height") {
            kcedInitGet(KcEdPrompt::kNoZero | KcEdPrompt::kNoNegative);
            if (kcedGetDist(&first, QStringLiteral("\nHeight%1: ").arg(offered(height)), height)
                == kcedCancel)
                return;
        } else if (keyword == u"Justify") {
            justification = askJustification(true);
            if (!justification)
                return;
        } else if (keyword == u"Rotation") {
            if (kcedGetAngle(
                    &first, QStringLiteral("\nRotation angle%1: ").arg(offered(degrees(rotation))), rotation)
                == kcedCancel)
                return;
        } else {
            style = askStyle(style);
            if (style.isNull())
                return;
            if (fixedHeight(style) > 0.0)
                height = fixedHeight(style);
        }
    }

    QStringList rows;
    for (;;) {
        QString row;
        const KcEdStatus status
            = kcedGetString(true, QStringLiteral("\nText (an empty line ends it): "), row);
        if (status == kcedCancel)
            return;
        if (status == kcedNone)
            break;
        rows += row;
    }
    if (rows.isEmpty())
        return;
    kcedSetVar(QStringLiteral("TEXTSIZE"), height);

    const int attachment = justification ? justification->attachment : 1;
    const double left = std::min(first.x, opposite.x), right = std::max(first.x, opposite.x);
    const double bottom = std::min(first.y, opposite.y), top = std::max(first.y, opposite.y);
    auto text = std::make_unique<KcDbMText>();
    KcDbMText::Data& data = text->data();
    data.location = { left + (right - left) * ((attachment - 1) % 3) / 2.0,
                      top - (top - bottom) * ((attachment - 1) / 3) / 2.0, first.z };
    data.width = right - left;
    data.height = height;
    data.attachment = attachment;
    data.style = style;
    data.rotation = rotation;
    const KcDbObjectId id = append(std::move(text));
    KcDbWrite<KcDbMText>(id)->setContents(rows.join(QStringLiteral("\\P")));
}
