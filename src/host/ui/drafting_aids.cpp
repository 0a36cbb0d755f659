// Switches for system variables. Switching works at any time, also while a prompt waits.

#include "ui/drafting_aids.h"

#include "ed/activity.h"
#include "ed/console.h"
#include "ed/object_snap.h"
#include "ed/system_variables.h"

#include <QAction>
#include <QMenu>
#include <QSettings>

namespace {

constexpr int kFirstModes
    = kcedSnapEnd | kcedSnapMiddle | kcedSnapCenter | kcedSnapIntersection | kcedSnapInsertion;
constexpr double kSteps[] = { 15, 30, 45, 90 }; // degrees

constexpr struct {
    int mode;
    const char* text;
} kModes[] = {
    { kcedSnapEnd, "&Endpoint" },        { kcedSnapMiddle, "&Midpoint" },
    { kcedSnapCenter, "&Centre" },       { kcedSnapNode, "N&ode" },
    { kcedSnapQuadrant, "&Quadrant" },   { kcedSnapIntersection, "&Intersection" },
    { kcedSnapInsertion, "In&sertion" }, { kcedSnapPerpendicular, "&Perpendicular" },
    { kcedSnapTangent, "&Tangent" },     { kcedSnapNearest, "&Nearest" },
};

int snapModes()
{
    return kcedVarInt(QStringLiteral("OSMODE"), 0);
}

} // namespace

KcUiDraftingAids::KcUiDraftingAids(QObject* parent)
    : QObject(parent)
{
    const auto make = [this](const QString& text, const QString& name, QKeySequence key, const QString& tip) {
        auto* action = new QAction(text, this);
        action->setObjectName(name);
        action->setShortcut(key);
        action->setCheckable(true);
        action->setToolTip(QStringLiteral("%1 (%2)").arg(tip, key.toString()));
        action->setStatusTip(action->toolTip());
        return action;
    };
    m_snap = make(
        QStringLiteral("SNAP"), QStringLiteral("snapSwitch"), Qt::Key_F3,
        QStringLiteral("Object snaps draw the cursor to points of the drawing"));
    m_ortho = make(
        QStringLiteral("ORTHO"), QStringLiteral("orthoSwitch"), Qt::Key_F8,
        QStringLiteral("Points lie level or plumb with the one before"));
    m_polar = make(
        QStringLiteral("POLAR"), QStringLiteral("polarSwitch"), Qt::Key_F10,
        QStringLiteral("Tracking lines at even angles draw the cursor to themselves"));
    QObject::connect(m_snap, &QAction::triggered, this, [this](bool on) {
        const int modes = snapModes() & kcedSnapAll;
        setSnapModes(on ? (modes ? modes : kFirstModes) : modes | kcedSnapSuppressed);
    });
    QObject::connect(m_ortho, &QAction::triggered, this, [this](bool on) {
        set("ORTHOMODE", on);
        if (on)
            set("POLARMODE", 0);
    });
    QObject::connect(m_polar, &QAction::triggered, this, [this](bool on) {
        set("POLARMODE", on);
        if (on && kcedVarInt(QStringLiteral("ORTHOMODE"), 0) != 0)
            set("ORTHOMODE", 0);
    });
    const QSettings settings;
    kcedSetVar(
        QStringLiteral("OSMODE"), int64_t(settings.value(QStringLiteral("aids/snaps"), kFirstModes).toInt()));
    kcedSetVar(QStringLiteral("POLARMODE"), int64_t(settings.value(QStringLiteral("aids/polar"), 0).toInt()));
    kcedSetVar(QStringLiteral("POLARANG"), settings.value(QStringLiteral("aids/polarStep"), 45.0).toDouble());
}

void KcUiDraftingAids::save() const
{
    QSettings settings;
    settings.setValue(QStringLiteral("aids/snaps"), snapModes());
    settings.setValue(QStringLiteral("aids/polar"), kcedVarInt(QStringLiteral("POLARMODE"), 0));
    settings.setValue(QStringLiteral("aids/polarStep"), kcedVarReal(QStringLiteral("POLARANG"), 45.0));
}

void KcUiDraftingAids::refresh()
{
    const int modes = snapModes();
    m_snap->setChecked((modes & kcedSnapAll) && !(modes & kcedSnapSuppressed));
    m_ortho->setChecked(kcedVarInt(QStringLiteral("ORTHOMODE"), 0) != 0);
    m_polar->setChecked(kcedVarInt(QStringLiteral("POLARMODE"), 0) != 0);
    for (const auto& [action, mode] : m_modes)
        action->setChecked(modes & mode);
    const double step = kcedVarReal(QStringLiteral("POLARANG"), 45.0);
    for (const auto& [action, degrees] : m_steps)
        action->setChecked(step == degrees); // exact: set from the same table
}

void KcUiDraftingAids::addTo(QMenu& menu)
{
    menu.addAction(m_snap);
    menu.addAction(m_ortho);
    menu.addAction(m_polar);
    menu.addSeparator();
    for (const auto& [mode, text] : kModes) {
        QAction* action = menu.addAction(QLatin1String(text));
        action->setCheckable(true);
        m_modes.emplace_back(action, mode);
        QObject::connect(action, &QAction::triggered, this, [this, mode = mode](bool on) {
            const int modes = snapModes() & kcedSnapAll;
            setSnapModes(on ? modes | mode : modes & ~mode);
        });
    }
    menu.addSeparator();
    for (const double degrees : kSteps) {
        QAction* action = menu.addAction(QStringLiteral("Tracking lines every %1°").arg(degrees));
        action->setCheckable(true);
        m_steps.emplace_back(action, degrees);
        QObject::connect(action, &QAction::triggered, this, [this, degrees] {
            kcedSetVar(QStringLiteral("POLARANG"), degrees);
            set("POLARMODE", 1);
        });
    }
    QObject::connect(&menu, &QMenu::aboutToShow, this, [this] { refresh(); });
}

void KcUiDraftingAids::addWords(QMenu& menu, std::function<void(const QString&)> say)
{
    const auto add = [&](const QString& text, int mode) {
        QObject::connect(
            menu.addAction(text), &QAction::triggered, &menu, [say, mode] { say(kcedSnapModeNames(mode)); });
    };
    for (const auto& [mode, text] : kModes)
        add(QLatin1String(text), mode);
    menu.addSeparator();
    add(QStringLiteral("No &snap"), 0);
}

void KcUiDraftingAids::setSnapModes(int modes)
{
    set("OSMODE", modes);
}

void KcUiDraftingAids::set(const char* variable, int value)
{
    kcedRequest(KcEdWish::Look, [variable, value] {
        if (const QString sentence = kcedSetVar(QLatin1String(variable), int64_t(value)); !sentence.isEmpty())
            kcedSay(sentence);
    });
    refresh();
    if (onChanged)
        onChanged();
}
