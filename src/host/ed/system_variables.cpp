// The table of system variables and what setting some of them does.

#include "ed/system_variables.h"

#include "db/block_table_record.h"
#include "db/dictionary.h"
#include "db/header.h"
#include "db/tables.h"
#include "db/wipeout.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/editor.h"

namespace {

enum class Home {
    Session, ///< lasts as long as the program
    Header, ///< in the drawing, under its name with a dollar sign
    Computed, ///< derived when asked for
};
enum class Type { Integer, Real, Point, Text };

struct Variable {
    const char* name;
    Home home;
    Type type;
    bool readOnly;
    int group; ///< code of the value in the drawing's header
    double least, most, initial; ///< of numbers
    const char* table = nullptr; ///< the symbol table whose record the text must name
};

constexpr double kMost = 1e99;

// Sorted by name; what the drawing's header lacks has the initial value.
constexpr Variable kVariables[] = {
    { "ANGBASE", Home::Header, Type::Real, false, 50, -kMost, kMost, 0 },
    { "ANGDIR", Home::Header, Type::Integer, false, 70, 0, 1, 0 },
    { "AUNITS", Home::Header, Type::Integer, false, 70, 0, 4, 0 },
    { "AUPREC", Home::Header, Type::Integer, false, 70, 0, 8, 0 },
    { "CECOLOR", Home::Computed, Type::Text, false, 62, 0, 0, 0 },
    { "CELTSCALE", Home::Header, Type::Real, false, 40, 1e-99, kMost, 1 },
    { "CELTYPE", Home::Header, Type::Text, false, 6, 0, 0, 0, "LTYPE" },
    { "CLAYER", Home::Header, Type::Text, false, 8, 0, 0, 0, "LAYER" },
    { "CMDECHO", Home::Session, Type::Integer, false, 0, 0, 1, 1 },
    { "CTAB", Home::Computed, Type::Text, false, 0, 0, 0, 0 },
    { "DIMSCALE", Home::Header, Type::Real, false, 40, 0, kMost, 1 },
    { "DIMSTYLE", Home::Header, Type::Text, false, 2, 0, 0, 0, "DIMSTYLE" },
    { "DWGNAME", Home::Computed, Type::Text, true, 0, 0, 0, 0 },
    { "DWGPREFIX", Home::Computed, Type::Text, true, 0, 0, 0, 0 },
    { "ELEVATION", Home::Header, Type::Real, false, 40, -kMost, kMost, 0 },
    { "EXTMAX", Home::Computed, Type::Point, true, 0, 0, 0, 0 },
    { "EXTMIN", Home::Computed, Type::Point, true, 0, 0, 0, 0 },
    { "FILEDIA", Home::Session, Type::Integer, false, 0, 0, 1, 1 },
    { "FILLMODE", Home::Header, Type::Integer, false, 70, 0, 1, 1 },
    { "HANDSEED", Home::Computed, Type::Text, true, 0, 0, 0, 0 },
    { "INSUNITS", Home::Header, Type::Integer, false, 70, 0, 24, 4 },
    { "LTSCALE", Home::Header, Type::Real, false, 40, 1e-99, kMost, 1 },
    { "LUNITS", Home::Header, Type::Integer, false, 70, 1, 5, 2 },
    { "LUPREC", Home::Header, Type::Integer, false, 70, 0, 8, 4 },
    { "MEASUREMENT", Home::Header, Type::Integer, false, 70, 0, 1, 1 },
    { "MIRRTEXT", Home::Header, Type::Integer, false, 70, 0, 1, 0 },
    { "OFFSETDIST", Home::Session, Type::Real, false, 0, -kMost, kMost, 1 },
    { "ORTHOMODE", Home::Header, Type::Integer, false, 70, 0, 1, 0 },
    { "OSMODE", Home::Session, Type::Integer, false, 0, 0, 32767, 0 },
    { "PDMODE", Home::Header, Type::Integer, false, 70, 0, 127, 0 },
    { "PDSIZE", Home::Header, Type::Real, false, 40, -kMost, kMost, 0 },
    { "PICKBOX", Home::Session, Type::Integer, false, 0, 0, 50, 3 },
    { "PICKFIRST", Home::Session, Type::Integer, false, 0, 0, 1, 1 },
    { "PLINEWID", Home::Header, Type::Real, false, 40, 0, kMost, 0 },
    { "POLARANG", Home::Session, Type::Real, false, 0, 1, 180, 45 },
    { "POLARMODE", Home::Session, Type::Integer, false, 0, 0, 1, 0 },
    { "SAVETIME", Home::Session, Type::Integer, false, 0, 0, 600, 5 },
    { "TEXTSIZE", Home::Header, Type::Real, false, 40, 1e-99, kMost, 2.5 },
    { "TEXTSTYLE", Home::Header, Type::Text, false, 7, 0, 0, 0, "STYLE" },
    { "TILEMODE", Home::Computed, Type::Integer, false, 0, 0, 1, 1 },
    { "UCSORG", Home::Header, Type::Point, false, 10, 0, 0, 0 },
    { "UCSXDIR", Home::Header, Type::Point, false, 10, 1, 0, 0 },
    { "UCSYDIR", Home::Header, Type::Point, false, 10, 2, 0, 0 },
    { "VIEWCTR", Home::Computed, Type::Point, true, 0, 0, 0, 0 },
    { "VIEWSIZE", Home::Computed, Type::Real, true, 0, 0, 0, 0 },
    { "WIPEOUTFRAME", Home::Computed, Type::Integer, false, 70, 0, 2, 1 },
};

const Variable* find(const QString& name)
{
    for (const Variable& variable : kVariables)
        if (name.compare(QLatin1String(variable.name), Qt::CaseInsensitive) == 0)
            return &variable;
    return nullptr;
}

std::map<std::string, KcEdVarValue>& sessionValues()
{
    static std::map<std::string, KcEdVarValue> values;
    return values;
}

KcEdVarValue initialValue(const Variable& variable)
{
    const QLatin1String name(variable.name);
    switch (variable.type) {
    case Type::Integer:
        return int64_t(variable.initial);
    case Type::Real:
        return variable.initial;
    case Type::Point:
        if (name == u"UCSXDIR")
            return KcGePoint3d{ 1, 0, 0 };
        if (name == u"UCSYDIR")
            return KcGePoint3d{ 0, 1, 0 };
        return KcGePoint3d();
    case Type::Text:
        break;
    }
    if (name == u"CLAYER")
        return QStringLiteral("0");
    if (name == u"CELTYPE")
        return QStringLiteral("ByLayer");
    if (name == u"TEXTSTYLE" || name == u"DIMSTYLE")
        return QStringLiteral("Standard");
    return QString();
}

KcGeExtents3d modelExtents(KcDbDatabase& database)
{
    KcGeExtents3d box;
    if (const KcDbRead<KcDbBlockTableRecord> space(database.currentSpace()); space)
        for (const KcDbObjectId id : *space)
            if (const KcDbRead<KcDbEntity> entity(id); entity)
                box.addExtents(entity->geomExtents());
    return box;
}

QString layoutName(KcDbObjectId block)
{
    const KcDbRead<KcDbBlockTableRecord> record(block);
    if (!record || record->isModelSpace())
        return QStringLiteral("Model");
    const KcDbRead<KcDbLayout> layout(record->data().layout);
    return layout ? layout->data().name : record->name();
}

KcDbObjectId layoutBlock(KcDbDatabase& database, const QString& name)
{
    if (name.compare(QLatin1String("Model"), Qt::CaseInsensitive) == 0)
        return database.modelSpace();
    const KcDbRead<KcDbSymbolTable> blocks(database.blockTable());
    for (const KcDbObjectId id : blocks->records()) {
        const KcDbRead<KcDbBlockTableRecord> record(id);
        if (record && record->isLayout() && layoutName(id).compare(name, Qt::CaseInsensitive) == 0)
            return id;
    }
    return {};
}

QString colorAsText(int64_t color)
{
    return color == 256 ? QStringLiteral("BYLAYER")
        : color == 0    ? QStringLiteral("BYBLOCK")
                        : QString::number(color);
}

KcEdVarValue computed(KcDbDatabase& database, const QString& name)
{
    if (name == u"CTAB")
        return layoutName(database.currentSpace());
    if (name == u"TILEMODE")
        return int64_t(database.currentSpace() == database.modelSpace());
    if (name == u"CECOLOR")
        return colorAsText(KcDbRead<KcDbHeader>(database.headerId())->integer("$CECOLOR", 256));
    if (name == u"WIPEOUTFRAME")
        return int64_t(kcdbWipeoutFrame(database));
    if (name == u"DWGNAME")
        return QFileInfo(database.fileName()).fileName();
    if (name == u"DWGPREFIX")
        return QFileInfo(database.fileName()).path() + QLatin1Char('/');
    if (name == u"HANDSEED")
        return QString::number(database.nextHandle(), 16).toUpper();
    if (name == u"EXTMIN" || name == u"EXTMAX") {
        const KcGeExtents3d box = modelExtents(database);
        return box.isEmpty() ? KcGePoint3d() : name == u"EXTMIN" ? box.min : box.max;
    }
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const KcEdView view = document ? kcedView(*document) : KcEdView();
    if (name == u"VIEWSIZE")
        return view.height;
    return database.ucsToWorld().inverse() * KcGePoint3d{ view.center.x, view.center.y, 0.0 };
}

// The value in the type of the variable; nothing when it cannot be.
std::optional<KcEdVarValue> converted(const Variable& variable, const KcEdVarValue& value)
{
    const auto* integer = std::get_if<int64_t>(&value);
    const auto* real = std::get_if<double>(&value);
    if (variable.type == Type::Integer && integer)
        return *integer;
    if (variable.type == Type::Integer && real && *real == std::trunc(*real) && std::abs(*real) < 1e9)
        return int64_t(*real);
    if (variable.type == Type::Real && (integer || real))
        return integer ? double(*integer) : *real;
    if (variable.type == Type::Point && std::holds_alternative<KcGePoint3d>(value))
        return value;
    if (variable.type == Type::Text && std::holds_alternative<QString>(value))
        return value;
    return {};
}

// What is selected in one space is none of another.
void showSpace(KcDbDatabase& database, KcDbObjectId block)
{
    if (block == database.currentSpace())
        return;
    database.setCurrentSpace(block);
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    if (!document || &document->database() != &database)
        return;
    document->pickFirst.clear();
    if (kcedViewWindow())
        kcedViewWindow()->viewChanged();
}

QString setComputed(KcDbDatabase& database, const QString& name, const KcEdVarValue& value)
{
    if (name == u"TILEMODE") {
        const KcDbObjectId block
            = std::get<int64_t>(value) == 1 ? database.modelSpace() : database.paperSpace();
        if (block.isNull())
            return QStringLiteral("The drawing has no layout in paper space.");
        showSpace(database, block);
        return {};
    }
    if (name == u"WIPEOUTFRAME") {
        const KcApUndoStep step(database, QStringLiteral("SETVAR"));
        kcdbSetWipeoutFrame(database, int(std::get<int64_t>(value)));
        return {};
    }
    const QString text = std::get<QString>(value);
    if (name == u"CTAB") {
        const KcDbObjectId block = layoutBlock(database, text);
        if (block.isNull())
            return QStringLiteral("The drawing has no layout \"%1\".").arg(text);
        showSpace(database, block);
        return {};
    }
    bool isNumber = false;
    int color = text.toInt(&isNumber);
    if (text.compare(QLatin1String("BYLAYER"), Qt::CaseInsensitive) == 0)
        color = 256, isNumber = true;
    else if (text.compare(QLatin1String("BYBLOCK"), Qt::CaseInsensitive) == 0)
        color = 0, isNumber = true;
    if (!isNumber || color < 0 || color > 256)
        return QStringLiteral("A colour is BYLAYER, BYBLOCK or a number from 1 to 255.");
    const KcApUndoStep step(database, QStringLiteral("SETVAR"));
    KcDbWrite<KcDbHeader>(database.headerId())->set("$CECOLOR", { 62, int64_t(color) });
    return {};
}

} // namespace

bool kcedHasVar(const QString& name)
{
    return find(name) != nullptr;
}

QStringList kcedVarNames()
{
    QStringList names;
    for (const Variable& variable : kVariables)
        names += QString::fromLatin1(variable.name);
    return names;
}

std::optional<KcEdVarValue> kcedGetVar(const QString& name)
{
    const Variable* variable = find(name);
    if (!variable)
        return {};
    if (variable->home == Home::Session) {
        const auto set = sessionValues().find(variable->name);
        return set == sessionValues().end() ? initialValue(*variable) : set->second;
    }
    KcDbDatabase* database = kcedCurrentDatabase();
    if (!database)
        return {};
    if (variable->home == Home::Computed)
        return computed(*database, QString::fromLatin1(variable->name));
    const KcDbRead<KcDbHeader> header(database->headerId());
    const auto* stored = header->find(QLatin1Char('$') + QLatin1String(variable->name));
    if (!stored || stored->values.empty())
        return initialValue(*variable);
    const auto value = converted(*variable, stored->values.front().value);
    return value ? *value : initialValue(*variable);
}

double kcedVarReal(const QString& name, double other)
{
    const auto value = kcedGetVar(name);
    if (!value)
        return other;
    if (const auto* real = std::get_if<double>(&*value))
        return *real;
    const auto* integer = std::get_if<int64_t>(&*value);
    return integer ? double(*integer) : other;
}

int kcedVarInt(const QString& name, int other)
{
    const auto value = kcedGetVar(name);
    const auto* integer = value ? std::get_if<int64_t>(&*value) : nullptr;
    return integer ? int(*integer) : other;
}

QString kcedVarText(const QString& name)
{
    const auto value = kcedGetVar(name);
    const auto* text = value ? std::get_if<QString>(&*value) : nullptr;
    return text ? *text : QString();
}

QString kcedSetVar(const QString& name, const KcEdVarValue& value)
{
    const Variable* variable = find(name);
    if (!variable)
        return QStringLiteral("There is no variable %1.").arg(name);
    const QString plainName = QString::fromLatin1(variable->name);
    if (variable->readOnly)
        return QStringLiteral("%1 is read only.").arg(plainName);
    const auto fitting = converted(*variable, value);
    if (!fitting)
        return QStringLiteral("%1 cannot have this value.").arg(plainName);
    if (variable->type == Type::Integer || variable->type == Type::Real) {
        const double number = variable->type == Type::Integer ? double(std::get<int64_t>(*fitting))
                                                              : std::get<double>(*fitting);
        if (number < variable->least || number > variable->most)
            return variable->type == Type::Integer
                ? QStringLiteral("%1 is a whole number from %2 to %3.")
                      .arg(plainName, QString::number(variable->least), QString::number(variable->most))
                : QStringLiteral("%1 cannot have this value.").arg(plainName);
    }
    if (variable->home == Home::Session) {
        sessionValues()[variable->name] = *fitting;
        return {};
    }
    KcDbDatabase* database = kcedCurrentDatabase();
    if (!database)
        return QStringLiteral("No drawing is open.");
    if (variable->home == Home::Computed)
        return setComputed(*database, plainName, *fitting);
    KcEdVarValue stored = *fitting;
    if (variable->table) {
        const KcDbObjectId record
            = kcdbFindRecord(database->tableNamed(variable->table), std::get<QString>(*fitting));
        if (record.isNull())
            return QStringLiteral("The drawing has no \"%1\" that %2 could be.")
                .arg(std::get<QString>(*fitting), plainName);
        stored = kcdbRecordName(record);
    }
    // A drawing aid is stored with the drawing, but switching it is no work that one would be asked to save.
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const bool staysSaved = variable->name == QLatin1String("ORTHOMODE") && document
        && &document->database() == database && !document->isModified();
    {
        const KcApUndoStep step(*database, QStringLiteral("SETVAR"));
        KcDbWrite<KcDbHeader>(database->headerId())
            ->set(QLatin1Char('$') + plainName, { variable->group, stored });
    }
    if (staysSaved)
        document->markSaved();
    return {};
}

QString kcedVarAsText(const KcEdVarValue& value)
{
    if (const auto* integer = std::get_if<int64_t>(&value))
        return QString::number(*integer);
    if (const auto* real = std::get_if<double>(&value))
        return QString::number(*real, 'g', 10);
    if (const auto* point = std::get_if<KcGePoint3d>(&value))
        return QStringLiteral("%1,%2,%3")
            .arg(point->x, 0, 'g', 10)
            .arg(point->y, 0, 'g', 10)
            .arg(point->z, 0, 'g', 10);
    const auto* text = std::get_if<QString>(&value);
    return text ? QLatin1Char('"') + *text + QLatin1Char('"') : QString();
}

void kcedAskVar(const QString& name)
{
    const Variable* variable = find(name);
    const auto value = kcedGetVar(name);
    if (!variable || !value)
        return kcedSay(QStringLiteral("There is no variable %1.").arg(name));
    const QString plainName = QString::fromLatin1(variable->name);
    if (variable->readOnly)
        return kcedSay(QStringLiteral("%1 = %2 (read only)").arg(plainName, kcedVarAsText(*value)));

    KcEdPrompt prompt;
    prompt.text = QStringLiteral("\nEnter new value for %1 <%2>: ").arg(plainName, kcedVarAsText(*value));
    static constexpr KcEdPrompt::Kind kinds[] = { KcEdPrompt::Kind::Integer, KcEdPrompt::Kind::Real,
                                                  KcEdPrompt::Kind::Point, KcEdPrompt::Kind::Text };
    prompt.kind = kinds[int(variable->type)];
    // Setting is the check: a value that the variable does not take is refused like any other answer.
    prompt.check = [&](const KcEdAnswer& answer) {
        if (const auto* integer = std::get_if<int>(&answer))
            return kcedSetVar(plainName, int64_t(*integer));
        if (const auto* real = std::get_if<double>(&answer))
            return kcedSetVar(plainName, *real);
        if (const auto* point = std::get_if<KcGePoint3d>(&answer))
            return kcedSetVar(plainName, *point);
        if (const auto* text = std::get_if<QString>(&answer))
            return kcedSetVar(plainName, *text);
        return QString();
    };
    KcEdEditor::instance().ask(prompt);
}
