// UCS: the user coordinate system, by origin, points and angle; named ones.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/header.h"
#include "db/tables.h"
#include "ed/documents.h"

using namespace hand;

namespace {

/// Origin and axes in world coordinates.
struct System {
    KcGePoint3d origin;
    KcGeVector3d x = KcGeVector3d::kXAxis, y = KcGeVector3d::kYAxis;
};

System systemOf(const KcGeMatrix3d& toWorld)
{
    return { toWorld * KcGePoint3d(), toWorld.axis(0), toWorld.axis(1) };
}

System current()
{
    return systemOf(database().ucsToWorld());
}

std::vector<KcGeMatrix3d>& before()
{
    return kcDocManagerPtr()->curDocument()->coordinateSystems;
}

void setCurrent(const System& system)
{
    constexpr size_t kRemembered = 10;
    const KcGeMatrix3d old = database().ucsToWorld();
    KcDbWrite<KcDbHeader> header(database().headerId());
    header->set(QStringLiteral("$UCSORG"), { 10, system.origin });
    header->set(QStringLiteral("$UCSXDIR"), { 10, KcGePoint3d() + system.x });
    header->set(QStringLiteral("$UCSYDIR"), { 10, KcGePoint3d() + system.y });
    if (before().size() >= kRemembered)
        before().erase(before().begin());
    before().push_back(old);
    // Relative points count from the same place as before.
    header.close();
    KcApDocument& document = *kcDocManagerPtr()->curDocument();
    document.lastPoint = database().ucsToWorld().inverse() * (old * document.lastPoint);
}

/// The system through an origin, a point on its X axis and one on the side of its Y axis; nothing when they
/// lie on one line. World coordinates.
std::optional<System> through(KcGePoint3d origin, KcGePoint3d onX, KcGePoint3d towardsY)
{
    const KcGeVector3d x = (onX - origin).normal();
    const KcGeVector3d z = x.crossProduct((towardsY - origin).normal());
    if (z.length() <= KcGeContext::gTol.equalVector)
        return {};
    return System{ origin, x, z.normal().crossProduct(x) };
}

void askThreePoints()
{
    const KcGeMatrix3d toWorld = database().ucsToWorld();
    KcGePoint3d origin, onX, towardsY;
    const KcEdStatus status = kcedGetPoint(nullptr, QStringLiteral("\nNew origin <0,0,0>: "), origin);
    if (status == kcedCancel)
        return;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(&origin, QStringLiteral("\nPoint on the positive X axis: "), onX) != kcedNormal)
        return;
    towardsY = origin + KcGeVector3d{ -(onX - origin).y, (onX - origin).x, 0.0 };
    if (kcedGetPoint(
            &origin, QStringLiteral("\nPoint on the side of the positive Y axis <straight up>: "), towardsY)
        == kcedCancel)
        return;
    const auto system = through(toWorld * origin, toWorld * onX, toWorld * towardsY);
    if (!system)
        return kcedSay(QStringLiteral("These points lie on one line."));
    setCurrent(*system);
}

void askRotation()
{
    double angle = kPi / 2.0;
    if (kcedGetAngle(nullptr, QStringLiteral("\nRotation angle about the Z axis <90>: "), angle)
        == kcedCancel)
        return;
    System system = current();
    const KcGeMatrix3d turn = KcGeMatrix3d::rotation(angle, system.x.crossProduct(system.y));
    system.x = turn * system.x;
    system.y = turn * system.y;
    setCurrent(system);
}

void goBack()
{
    if (before().empty())
        return kcedSay(QStringLiteral("There is no coordinate system before this one."));
    const System system = systemOf(before().back());
    before().pop_back();
    setCurrent(system);
    before().pop_back(); // the one gone back from is not to be gone back to
}

void askSave()
{
    QString name;
    if (kcedGetString(true, QStringLiteral("\nName of the current coordinate system: "), name) != kcedNormal)
        return;
    const System system = current();
    KcDbWrite<KcDbSymbolTable> table(database().ucsTable());
    auto made = std::make_unique<KcDbUCSTableRecord>();
    made->initName(name.trimmed());
    const KcDbObjectId id = table->add(std::move(made));
    KcDbWrite<KcDbUCSTableRecord> record(id);
    record->data() = { system.origin, KcGePoint3d() + system.x, KcGePoint3d() + system.y };
}

void askRestore()
{
    const KcDbRead<KcDbSymbolTable> table(database().ucsTable());
    QString name;
    if (kcedGetString(true, QStringLiteral("\nName of the coordinate system or [?]: "), name) != kcedNormal)
        return;
    if (name == u"?")
        return kcedSay(
            table->names().isEmpty() ? QStringLiteral("The drawing names none.")
                                     : table->names().join(QStringLiteral(", ")));
    const KcDbRead<KcDbUCSTableRecord> record(table->getAt(name));
    if (!record)
        return kcedSay(QStringLiteral("The drawing has no coordinate system \"%1\".").arg(name));
    setCurrent({ record->data().origin, record->data().xAxis.asVector(), record->data().yAxis.asVector() });
}

} // namespace

void hand::coordinateSystem()
{
    kcedInitGet(
        0,
        QStringLiteral(
            "3point NAmed Previous REStore Save World Z _ 3point Named Previous Restore Save World Z"));
    KcGePoint3d origin;
    const KcEdStatus status = kcedGetPoint(
        nullptr, QStringLiteral("\nNew origin or [3point/Previous/REStore/Save/World/Z] <World>: "), origin);
    if (status == kcedCancel)
        return;
    if (status == kcedNormal) {
        System system = current();
        system.origin = database().ucsToWorld() * origin;
        return setCurrent(system);
    }
    const QString keyword = status == kcedNone ? QStringLiteral("World") : kcedGetInput();
    if (keyword == u"World")
        setCurrent({});
    else if (keyword == u"3point")
        askThreePoints();
    else if (keyword == u"Z")
        askRotation();
    else if (keyword == u"Previous")
        goBack();
    else if (keyword == u"Save")
        askSave();
    else
        askRestore();
}
