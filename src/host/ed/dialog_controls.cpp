// Finding controls by what is shown, and handling them by the ways that mouse and keys go.

#include "ed/dialog_controls.h"

#include "ed/dialog_views.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFocusEvent>
#include <QGroupBox>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>
#include <QTextEdit>
#include <QTreeView>

namespace {

using Kind = KcEdControl::Kind;

// "绘图比例(&S)：" is known as "绘图比例".
QString cleanCaption(QString text)
{
    static const QRegularExpression key(QStringLiteral(R"(\s*\(&\S\))"));
    text.remove(key);
    text.remove(QLatin1Char('&'));
    text = text.simplified();
    while (text.endsWith(QLatin1Char(':')) || text.endsWith(QChar(u'：')))
        text.chop(1);
    return text.trimmed();
}

std::optional<Kind> kindOf(QWidget& widget)
{
    if (dynamic_cast<KcEdScriptableGrid*>(&widget))
        return Kind::Grid;
    if (dynamic_cast<KcEdScriptableTree*>(&widget))
        return Kind::Tree;
    if (const auto* button = qobject_cast<QAbstractButton*>(&widget))
        return qobject_cast<const QCheckBox*>(button) || qobject_cast<const QRadioButton*>(button)
                || button->isCheckable()
            ? Kind::Check
            : Kind::Button;
    if (qobject_cast<QLineEdit*>(&widget))
        return Kind::Field;
    if (qobject_cast<QComboBox*>(&widget))
        return Kind::Choice;
    if (qobject_cast<QAbstractSpinBox*>(&widget))
        return Kind::Number;
    if (qobject_cast<QTextEdit*>(&widget) || qobject_cast<QPlainTextEdit*>(&widget))
        return Kind::Text;
    if (qobject_cast<QTreeView*>(&widget))
        return Kind::Tree;
    if (qobject_cast<QListView*>(&widget))
        return Kind::List;
    if (qobject_cast<QAbstractItemView*>(&widget))
        return Kind::Grid;
    if (qobject_cast<QAbstractSlider*>(&widget) && !qobject_cast<QScrollBar*>(&widget))
        return Kind::Slider;
    if (const auto* label = qobject_cast<QLabel*>(&widget); label && !label->text().isEmpty())
        return Kind::Label;
    return {};
}

// The label of a field: the one that names it as its buddy, else the nearest on its left, else one close
// above.
QString labelBeside(QWidget& dialog, QWidget& field)
{
    const QRect place(field.mapTo(&dialog, QPoint()), field.size());
    const QLabel* best = nullptr;
    int nearest = std::numeric_limits<int>::max();
    for (const QLabel* label : dialog.findChildren<QLabel*>()) {
        if (label->buddy() == &field)
            return label->text();
        if (label->buddy() || !label->isVisibleTo(&dialog) || label->parentWidget() != field.parentWidget())
            continue;
        const QRect beside(label->mapTo(&dialog, QPoint()), label->size());
        const bool sameRow = beside.center().y() >= place.top() && beside.center().y() <= place.bottom();
        const int left = place.left() - beside.right();
        if (sameRow && left >= 0 && left < nearest) {
            nearest = left;
            best = label;
        }
        const int above = place.top() - beside.bottom();
        const bool sameColumn = std::abs(beside.left() - place.left()) <= 8;
        if (sameColumn && above >= 0 && above <= 12 && 10000 + above < nearest) {
            nearest = 10000 + above;
            best = label;
        }
    }
    return best ? best->text() : QString();
}

struct Walk {
    QWidget& dialog;
    std::vector<KcEdControl> controls;

    void visit(QWidget& parent, const QString& group)
    {
        for (QObject* child : parent.children()) {
            auto* widget = qobject_cast<QWidget*>(child);
            if (!widget || widget->isWindow())
                continue;
            const bool page = qobject_cast<QStackedWidget*>(&parent) != nullptr;
            if (!page && !widget->isVisibleTo(&parent))
                continue;
            if (auto* tabs = qobject_cast<QTabWidget*>(widget)) {
                for (int i = 0; i < tabs->count(); ++i) {
                    controls.push_back({ Kind::Tabs, tabs, {}, cleanCaption(tabs->tabText(i)), group, i });
                    visit(*tabs->widget(i), cleanCaption(tabs->tabText(i)));
                }
                continue;
            }
            if (auto* box = qobject_cast<QGroupBox*>(widget)) {
                if (box->isCheckable())
                    add(Kind::Check, *box, box->title(), group);
                visit(*box, box->title().isEmpty() ? group : cleanCaption(box->title()));
                continue;
            }
            const std::optional<Kind> kind = kindOf(*widget);
            if (!kind)
                visit(*widget, group);
            else if (const auto* button = qobject_cast<QAbstractButton*>(widget))
                add(*kind, *widget, button->text().isEmpty() ? button->toolTip() : button->text(), group);
            else if (const auto* label = qobject_cast<QLabel*>(widget))
                add(*kind, *widget, label->text(), group);
            else
                add(*kind, *widget, labelBeside(dialog, *widget), group);
        }
    }

    void add(Kind kind, QWidget& widget, QString caption, const QString& group)
    {
        if (caption.isEmpty())
            caption = widget.accessibleName();
        QString name = widget.objectName();
        if (name.startsWith(QLatin1String("qt_")))
            name.clear();
        controls.push_back({ kind, &widget, name, cleanCaption(caption), group, -1 });
    }
};

bool suits(const KcEdControl& control, KcEdControlUse use)
{
    switch (use) {
    case KcEdControlUse::Press:
        return control.kind == Kind::Button || control.kind == Kind::Check || control.kind == Kind::Tabs;
    case KcEdControlUse::Check:
        return control.kind == Kind::Check;
    case KcEdControlUse::Set:
        return control.kind == Kind::Field || control.kind == Kind::Choice || control.kind == Kind::Number
            || control.kind == Kind::Text || control.kind == Kind::Slider || control.kind == Kind::List;
    case KcEdControlUse::Grid:
        return control.kind == Kind::Grid || control.kind == Kind::List || control.kind == Kind::Tree;
    case KcEdControlUse::Tree:
        return control.kind == Kind::Tree || control.kind == Kind::List;
    }
    return false;
}

QString nounOf(KcEdControlUse use)
{
    switch (use) {
    case KcEdControlUse::Press:
        return QStringLiteral("button");
    case KcEdControlUse::Check:
        return QStringLiteral("check box");
    case KcEdControlUse::Set:
        return QStringLiteral("field");
    case KcEdControlUse::Grid:
        return QStringLiteral("grid");
    case KcEdControlUse::Tree:
        return QStringLiteral("tree");
    }
    return {};
}

QString named(const std::vector<KcEdControl>& controls)
{
    QStringList names;
    for (const KcEdControl& control : controls)
        names += control.name.isEmpty() || control.caption.isEmpty() || control.name == control.caption
            ? control.title()
            : QStringLiteral("%1 (%2)").arg(control.name, control.caption);
    names.removeAll(QString());
    return names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", "));
}

// A control on a page behind others comes to the front first, as a user would have to bring it.
void bringToFront(QWidget& widget)
{
    for (QWidget* page = &widget; page; page = page->parentWidget())
        for (QWidget* above = page->parentWidget(); above; above = above->parentWidget())
            if (auto* tabs = qobject_cast<QTabWidget*>(above); tabs && tabs->indexOf(page) >= 0)
                tabs->setCurrentIndex(tabs->indexOf(page));
}

QString whyNotUsable(const KcEdControl& control)
{
    bringToFront(*control.widget);
    if (!control.widget->isEnabled())
        return QStringLiteral("\"%1\" is disabled now.").arg(control.title());
    return {};
}

void sendFocus(QWidget& widget, QEvent::Type type)
{
    QFocusEvent event(type, Qt::TabFocusReason);
    QApplication::sendEvent(&widget, &event);
}

QString chooseEntry(QComboBox& box, const QString& value)
{
    int index = box.findText(value, Qt::MatchExactly | Qt::MatchCaseSensitive);
    for (int i = 0; index < 0 && i < box.count(); ++i)
        if (box.itemText(i).trimmed() == value.trimmed())
            index = i;
    if (index >= 0) {
        box.setCurrentIndex(index);
        emit box.activated(index);
        emit box.textActivated(box.itemText(index));
        return {};
    }
    if (box.isEditable())
        return kcedTypeInto(*box.lineEdit(), value);
    QStringList entries;
    for (int i = 0; i < box.count(); ++i)
        entries += QLatin1Char('"') + box.itemText(i) + QLatin1Char('"');
    return QStringLiteral("There is no entry \"%1\". There are: %2.")
        .arg(value, entries.join(QStringLiteral(", ")));
}

QString selectEntry(QAbstractItemView& view, const QString& value)
{
    const QAbstractItemModel* model = view.model();
    for (int row = 0; model && row < model->rowCount(view.rootIndex()); ++row) {
        const QModelIndex index = model->index(row, 0, view.rootIndex());
        if (index.data().toString() != value)
            continue;
        view.setCurrentIndex(index);
        emit view.clicked(index);
        return {};
    }
    return QStringLiteral("The list has no \"%1\".").arg(value);
}

} // namespace

std::vector<KcEdControl> kcedDialogControls(QWidget& dialog)
{
    Walk walk{ dialog, {} };
    walk.visit(dialog, {});
    return walk.controls;
}

std::variant<KcEdControl, QString> kcedFindControl(QWidget& dialog, const QString& name, KcEdControlUse use)
{
    std::vector<KcEdControl> suiting = kcedDialogControls(dialog);
    std::erase_if(suiting, [&](const KcEdControl& control) { return !suits(control, use); });
    // Without a name the grid is what the dialog calls its grid; a list beside it does not make it unclear.
    const Kind proper = use == KcEdControlUse::Tree ? Kind::Tree : Kind::Grid;
    const auto isProper = [&](const KcEdControl& control) { return control.kind == proper; };
    if (name.isEmpty() && std::any_of(suiting.begin(), suiting.end(), isProper))
        std::erase_if(suiting, std::not_fn(isProper));
    std::vector<KcEdControl> found;
    for (const KcEdControl& control : suiting)
        if (name.isEmpty() || (!control.name.isEmpty() && control.name == name))
            found.push_back(control);
    const QString caption = cleanCaption(name);
    if (found.empty())
        for (const KcEdControl& control : suiting)
            if (!control.caption.isEmpty()
                && (control.caption == caption
                    || (!control.group.isEmpty()
                        && control.group + QLatin1Char('/') + control.caption == caption)))
                found.push_back(control);
    if (found.size() == 1)
        return found.front();
    if (found.empty() || name.isEmpty())
        return QStringLiteral("%1. There are: %2.")
            .arg(
                name.isEmpty()
                    ? (suiting.empty() ? QStringLiteral("The dialog has no %1").arg(nounOf(use))
                                       : QStringLiteral("The dialog has several, so a name is wanted"))
                    : QStringLiteral("There is no %1 \"%2\"").arg(nounOf(use), name),
                named(suiting));
    QStringList ways;
    for (const KcEdControl& control : found)
        ways += control.name.isEmpty() ? control.group + QLatin1Char('/') + control.caption : control.name;
    return QStringLiteral("\"%1\" stands more than once: %2.").arg(name, ways.join(QStringLiteral(", ")));
}

QString kcedPressControl(const KcEdControl& control)
{
    if (const QString reason = whyNotUsable(control); !reason.isEmpty())
        return reason;
    if (auto* tabs = qobject_cast<QTabWidget*>(control.widget)) {
        tabs->setCurrentIndex(control.tab);
        return {};
    }
    if (auto* button = qobject_cast<QAbstractButton*>(control.widget)) {
        button->click();
        return {};
    }
    return kcedCheckControl(control, !qobject_cast<QGroupBox*>(control.widget)->isChecked());
}

QString kcedCheckControl(const KcEdControl& control, bool on)
{
    if (const QString reason = whyNotUsable(control); !reason.isEmpty())
        return reason;
    if (auto* box = qobject_cast<QGroupBox*>(control.widget)) {
        if (box->isChecked() != on) {
            box->setChecked(on);
            emit box->clicked(on);
        }
        return {};
    }
    auto* button = qobject_cast<QAbstractButton*>(control.widget);
    const auto isOn = [&] {
        const auto* check = qobject_cast<QCheckBox*>(button);
        return check ? check->checkState() == (on ? Qt::Checked : Qt::Unchecked) : button->isChecked() == on;
    };
    // A box of three states may need two clicks. A button whose click is answered by a message may be gone
    // then.
    const QPointer<QWidget> alive = control.widget;
    for (int clicks = 0; clicks < 3 && alive && !isOn(); ++clicks)
        button->click();
    if (alive && !isOn())
        return QStringLiteral("\"%1\" cannot be turned %2.")
            .arg(control.title(), on ? QStringLiteral("on") : QStringLiteral("off"));
    return {};
}

QString kcedTypeInto(QWidget& widget, const QString& value)
{
    const QPointer<QWidget> alive = &widget;
    if (auto* field = qobject_cast<QLineEdit*>(&widget)) {
        if (field->isReadOnly())
            return QStringLiteral("The field is for reading only.");
        const QString before = field->text();
        sendFocus(*field, QEvent::FocusIn);
        field->selectAll();
        if (value.isEmpty())
            field->del();
        else
            field->insert(value);
        const bool taken = field->text() == value;
        if (taken && field->hasAcceptableInput()) {
            sendFocus(*field, QEvent::FocusOut);
            return {};
        }
        field->setText(before);
        sendFocus(*field, QEvent::FocusOut);
        return QStringLiteral("The field does not take \"%1\".").arg(value);
    }
    if (auto* box = qobject_cast<QAbstractSpinBox*>(&widget)) {
        auto* field = box->findChild<QLineEdit*>();
        if (!field || box->isReadOnly())
            return QStringLiteral("The field is for reading only.");
        const QString before = field->text();
        sendFocus(*box, QEvent::FocusIn);
        box->selectAll();
        field->insert(value);
        const bool taken = field->text().contains(value) && field->hasAcceptableInput();
        if (!taken)
            field->setText(before);
        box->interpretText();
        sendFocus(*box, QEvent::FocusOut);
        return taken ? QString() : QStringLiteral("The field does not take \"%1\".").arg(value);
    }
    const auto replaceAll = [&](auto& edit) -> QString {
        if (edit.isReadOnly())
            return QStringLiteral("The field is for reading only.");
        sendFocus(edit, QEvent::FocusIn);
        edit.selectAll();
        edit.insertPlainText(value);
        if (alive)
            sendFocus(edit, QEvent::FocusOut);
        return {};
    };
    if (auto* edit = qobject_cast<QPlainTextEdit*>(&widget))
        return replaceAll(*edit);
    if (auto* edit = qobject_cast<QTextEdit*>(&widget))
        return replaceAll(*edit);
    if (auto* box = qobject_cast<QComboBox*>(&widget))
        return chooseEntry(*box, value);
    return QStringLiteral("Nothing can be typed here.");
}

QString kcedSetControl(const KcEdControl& control, const QString& value)
{
    if (const QString reason = whyNotUsable(control); !reason.isEmpty())
        return reason;
    if (auto* slider = qobject_cast<QAbstractSlider*>(control.widget)) {
        bool isNumber = false;
        const int number = value.toInt(&isNumber);
        if (!isNumber || number < slider->minimum() || number > slider->maximum())
            return QStringLiteral("A whole number from %1 to %2 is wanted.")
                .arg(slider->minimum())
                .arg(slider->maximum());
        slider->setValue(number);
        return {};
    }
    if (auto* view = qobject_cast<QAbstractItemView*>(control.widget))
        return selectEntry(*view, value);
    return kcedTypeInto(*control.widget, value);
}

QJsonObject kcedDescribeControl(const KcEdControl& control)
{
    static const char* const kinds[] = { "button", "check", "field", "choice", "number", "text",
                                         "slider", "list",  "grid",  "tree",   "tab",    "label" };
    QJsonObject object{ { QStringLiteral("kind"), QLatin1String(kinds[int(control.kind)]) } };
    const auto put
        = [&](const char* key, const QJsonValue& value) { object.insert(QLatin1String(key), value); };
    if (!control.name.isEmpty())
        put("name", control.name);
    if (!control.caption.isEmpty())
        put("caption", control.caption);
    if (!control.group.isEmpty())
        put("group", control.group);
    if (!control.widget->isEnabled())
        put("enabled", false);
    if (const auto* tabs = qobject_cast<QTabWidget*>(control.widget))
        put("value", tabs->currentIndex() == control.tab);
    else if (const auto* button = qobject_cast<QAbstractButton*>(control.widget)) {
        if (control.kind == Kind::Check)
            put("value", button->isChecked());
    } else if (const auto* box = qobject_cast<QGroupBox*>(control.widget))
        put("value", box->isChecked());
    else if (const auto* field = qobject_cast<QLineEdit*>(control.widget))
        put("value", field->text());
    else if (const auto* number = qobject_cast<QAbstractSpinBox*>(control.widget))
        put("value", number->text());
    else if (const auto* plain = qobject_cast<QPlainTextEdit*>(control.widget))
        put("value", plain->toPlainText());
    else if (const auto* text = qobject_cast<QTextEdit*>(control.widget))
        put("value", text->toPlainText());
    else if (const auto* slider = qobject_cast<QAbstractSlider*>(control.widget))
        put("value", slider->value());
    else if (const auto* choice = qobject_cast<QComboBox*>(control.widget)) {
        put("value", choice->currentText());
        QJsonArray entries;
        for (int i = 0; i < choice->count(); ++i)
            entries.append(choice->itemText(i));
        put("choices", entries);
    } else
        kcedDescribeView(*control.widget, object);
    return object;
}
