// Reading "!" lines and doing what they say.

#include "ed/dialog_driver.h"

#include "ed/console.h"
#include "ed/dialog_controls.h"
#include "ed/dialog_views.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPixmap>
#include <QPushButton>

namespace {

// The first word of a text and the rest behind it. A rest in double quotes loses them.
struct Split {
    QString word, rest;
};

Split splitWord(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(QLatin1Char('"'))) {
        const qsizetype end = trimmed.indexOf(QLatin1Char('"'), 1);
        if (end > 0)
            return { trimmed.mid(1, end - 1), trimmed.mid(end + 1).trimmed() };
    }
    const qsizetype end = trimmed.indexOf(QLatin1Char(' '));
    return end < 0 ? Split{ trimmed, {} } : Split{ trimmed.left(end), trimmed.mid(end + 1).trimmed() };
}

QString unquoted(const QString& text)
{
    const bool quoted
        = text.size() >= 2 && text.startsWith(QLatin1Char('"')) && text.endsWith(QLatin1Char('"'));
    return quoted ? text.mid(1, text.size() - 2) : text;
}

std::optional<bool> onOrOff(const QString& word)
{
    if (word.compare(QLatin1String("on"), Qt::CaseInsensitive) == 0)
        return true;
    if (word.compare(QLatin1String("off"), Qt::CaseInsensitive) == 0)
        return false;
    return {};
}

// The button of the dialog that accepts or rejects; null where it has none.
QAbstractButton* buttonFor(QDialog& dialog, bool accepts)
{
    const QString name = accepts ? QStringLiteral("BTNOK") : QStringLiteral("BTNCANCEL");
    if (auto* button = dialog.findChild<QAbstractButton*>(name))
        return button;
    for (const QDialogButtonBox* box : dialog.findChildren<QDialogButtonBox*>())
        for (QAbstractButton* button : box->buttons()) {
            const auto role = box->buttonRole(button);
            if (accepts ? role == QDialogButtonBox::AcceptRole || role == QDialogButtonBox::YesRole
                        : role == QDialogButtonBox::RejectRole || role == QDialogButtonBox::NoRole)
                return button;
        }
    return nullptr;
}

QString accept(QDialog& dialog, const QString& line)
{
    if (QAbstractButton* button = buttonFor(dialog, true)) {
        if (!button->isEnabled())
            return QStringLiteral("\"%1\" is disabled now.").arg(button->text());
        button->click();
        return {};
    }
    dialog.accept();
    return {};
}

QString reject(QDialog& dialog, const QString&)
{
    if (QAbstractButton* button = buttonFor(dialog, false); button && button->isEnabled())
        button->click();
    else
        dialog.reject();
    return {};
}

QString closeWindow(QDialog& dialog, const QString&)
{
    dialog.close();
    return {};
}

QString press(QDialog& dialog, const QString& rest)
{
    const auto found = kcedFindControl(dialog, unquoted(rest), KcEdControlUse::Press);
    if (const auto* reason = std::get_if<QString>(&found))
        return *reason;
    return kcedPressControl(std::get<KcEdControl>(found));
}

QString set(QDialog& dialog, const QString& rest)
{
    const Split split = splitWord(rest);
    if (split.word.isEmpty())
        return QStringLiteral("!set is followed by a name and a value.");
    const auto found = kcedFindControl(dialog, split.word, KcEdControlUse::Set);
    if (const auto* reason = std::get_if<QString>(&found))
        return *reason;
    return kcedSetControl(std::get<KcEdControl>(found), unquoted(split.rest));
}

QString check(QDialog& dialog, const QString& rest)
{
    const QStringList words = kcedDialogWords(rest);
    const auto on = words.size() == 2 ? onOrOff(words[1]) : std::nullopt;
    if (!on)
        return QStringLiteral("!check is followed by a name and on or off.");
    const auto found = kcedFindControl(dialog, words[0], KcEdControlUse::Check);
    if (const auto* reason = std::get_if<QString>(&found))
        return *reason;
    return kcedCheckControl(std::get<KcEdControl>(found), *on);
}

struct GridAndRest {
    std::shared_ptr<KcEdScriptableGrid> grid;
    QString rest;
    QString reason; ///< why there is no grid
};

// A dialog with several grids has the one meant named first: "@name".
GridAndRest gridOf(QDialog& dialog, const QString& text)
{
    GridAndRest result{ nullptr, text, {} };
    QString name;
    if (text.startsWith(QLatin1Char('@'))) {
        const Split split = splitWord(text.mid(1));
        name = split.word;
        result.rest = split.rest;
    }
    const auto found = kcedFindControl(dialog, name, KcEdControlUse::Grid);
    if (const auto* reason = std::get_if<QString>(&found))
        result.reason = *reason;
    else
        result.grid = kcedGridOf(*std::get<KcEdControl>(found).widget);
    return result;
}

// A row by its number, or why it is none.
std::variant<int, QString> rowOf(const KcEdScriptableGrid& grid, const QString& word)
{
    bool isNumber = false;
    const int row = word.toInt(&isNumber);
    if (isNumber && row >= 0 && row < grid.displayedRows())
        return row;
    return QStringLiteral("There is no row %1; the grid shows %2, counted from 0.")
        .arg(word)
        .arg(grid.displayedRows());
}

std::variant<int, QString> columnOf(const KcEdScriptableGrid& grid, const QString& word)
{
    bool isNumber = false;
    const int number = word.toInt(&isNumber);
    QStringList headers;
    for (int column = 0; column < grid.displayedColumns(); ++column) {
        headers += grid.headerText(column);
        if (!isNumber && headers.back().simplified() == word.simplified())
            return column;
    }
    if (isNumber && number >= 0 && number < grid.displayedColumns())
        return number;
    return QStringLiteral("There is no column %1. There are: %2.")
        .arg(word, headers.join(QStringLiteral(", ")));
}

QString cell(QDialog& dialog, const QString& given)
{
    const auto [grid, rest, reason] = gridOf(dialog, given);
    if (!grid)
        return reason;
    const Split first = splitWord(rest);
    const Split second = splitWord(first.rest);
    if (second.word.isEmpty())
        return QStringLiteral("!cell is followed by a row, a column and a value.");
    const auto row = rowOf(*grid, first.word);
    if (const auto* sentence = std::get_if<QString>(&row))
        return *sentence;
    const auto column = columnOf(*grid, second.word);
    if (const auto* sentence = std::get_if<QString>(&column))
        return *sentence;
    return grid->editCell(std::get<int>(row), std::get<int>(column), unquoted(second.rest));
}

QString selectRow(QDialog& dialog, const QString& given)
{
    const auto [grid, rest, reason] = gridOf(dialog, given);
    if (!grid)
        return reason;
    const auto row = rowOf(*grid, rest);
    if (const auto* sentence = std::get_if<QString>(&row))
        return *sentence;
    return grid->selectRow(std::get<int>(row));
}

QString selectColumn(QDialog& dialog, const QString& given)
{
    const auto [grid, rest, reason] = gridOf(dialog, given);
    if (!grid)
        return reason;
    const auto column = columnOf(*grid, unquoted(rest));
    if (const auto* sentence = std::get_if<QString>(&column))
        return *sentence;
    return grid->selectColumn(std::get<int>(column));
}

QString tick(QDialog& dialog, const QString& rest)
{
    const QStringList words = kcedDialogWords(rest);
    const auto on = words.isEmpty() ? std::nullopt : onOrOff(words.back());
    if (!on || words.size() < 2)
        return QStringLiteral("!tree is followed by an item and on or off.");
    const auto found = kcedFindControl(dialog, {}, KcEdControlUse::Tree);
    if (const auto* reason = std::get_if<QString>(&found))
        return *reason;
    const auto tree = kcedTreeOf(*std::get<KcEdControl>(found).widget);
    return tree->tickItem(words.mid(0, words.size() - 1).join(QLatin1Char(' ')), *on);
}

QString takeColour(QDialog& dialog, const QString& rest)
{
    auto* colours = dynamic_cast<KcEdScriptableColours*>(&dialog);
    if (!colours)
        return QStringLiteral("No colour is asked for.");
    bool isNumber = false;
    const int index = rest.toInt(&isNumber);
    return isNumber ? colours->pickColour(index) : QStringLiteral("!color is followed by an index colour.");
}

QString list(QDialog& dialog, const QString&)
{
    QJsonArray controls;
    for (const KcEdControl& control : kcedDialogControls(dialog))
        controls.append(kcedDescribeControl(control));
    const QJsonObject object{ { QStringLiteral("dialog"), dialog.windowTitle() },
                              { QStringLiteral("controls"), controls } };
    kcedSay(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
    return {};
}

QString shot(QDialog& dialog, const QString& rest)
{
    const QString path = unquoted(rest);
    if (path.isEmpty())
        return QStringLiteral("!shot is followed by a file name.");
    QApplication::processEvents();
    if (!dialog.grab().save(path))
        return QStringLiteral("The picture %1 cannot be written.").arg(path);
    return {};
}

QString noQuestion(QDialog&, const QString&)
{
    return QStringLiteral("No question is open.");
}

QString noFile(QDialog&, const QString&)
{
    return QStringLiteral("No file is asked for.");
}

} // namespace

QStringList kcedDialogWords(const QString& line)
{
    QStringList words;
    for (Split split = splitWord(line); !split.word.isEmpty() || !split.rest.isEmpty();
         split = splitWord(split.rest))
        words += split.word;
    return words;
}

QString kcedDriveDialog(QDialog& dialog, const QString& line)
{
    struct Row {
        const char* verb;
        QString (*body)(QDialog&, const QString&);
        bool takesRest;
    };
    static constexpr Row rows[] = {
        { "!ok", accept, false },  { "!cancel", reject, false },   { "!close", closeWindow, false },
        { "!press", press, true }, { "!set", set, true },          { "!check", check, true },
        { "!cell", cell, true },   { "!row", selectRow, true },    { "!column", selectColumn, true },
        { "!tree", tick, true },   { "!color", takeColour, true }, { "!list", list, false },
        { "!shot", shot, true },   { "!yes", noQuestion, false },  { "!no", noQuestion, false },
        { "!file", noFile, true },
    };
    const Split split = splitWord(line);
    for (const Row& row : rows) {
        if (split.word.compare(QLatin1String(row.verb), Qt::CaseInsensitive) != 0)
            continue;
        if (!row.takesRest && !split.rest.isEmpty())
            return QStringLiteral("%1 stands alone.").arg(QLatin1String(row.verb));
        if (row.takesRest && split.rest.isEmpty())
            return QStringLiteral("%1 lacks what it is for.").arg(QLatin1String(row.verb));
        return row.body(dialog, split.rest);
    }
    QStringList verbs;
    for (const Row& row : rows)
        verbs += QLatin1String(row.verb);
    return QStringLiteral("There is no line %1. There are: %2.")
        .arg(split.word, verbs.join(QStringLiteral(", ")));
}
