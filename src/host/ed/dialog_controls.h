// The controls of a dialog as a user tells them apart: by what they are, by their names and by the captions
// that are shown beside them; and handling them as a user does.
#pragma once

#include <QJsonObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <variant>
#include <vector>

struct KcEdControl {
    enum class Kind { Button, Check, Field, Choice, Number, Text, Slider, List, Grid, Tree, Tabs, Label };

    Kind kind = Kind::Label;
    QWidget* widget = nullptr;
    QString name; ///< object name: the setting or text key that it stands for; may be empty
    QString caption; ///< as shown, without mark of its key and without colon; may be empty
    QString group; ///< caption of the group box or tab around it
    int tab = -1; ///< for a tab of Tabs, which

    /// How it is named to the user.
    QString title() const { return name.isEmpty() ? caption : name; }
};

/// What is to be done with a control; decides which kinds are looked through for a name.
enum class KcEdControlUse { Press, Set, Check, Grid, Tree };

/// Every control that can be seen, those on other tabs too, in the order of the keyboard.
std::vector<KcEdControl> kcedDialogControls(QWidget& dialog);

/// The control of that name or caption, or a sentence that names those there are. A caption that stands twice
/// is told apart by its group: "group/caption". An empty name asks for the only one there is.
std::variant<KcEdControl, QString> kcedFindControl(QWidget& dialog, const QString& name, KcEdControlUse use);

// Each returns an empty text, or a sentence saying why it could not be done.

QString kcedPressControl(const KcEdControl& control);
QString kcedCheckControl(const KcEdControl& control, bool on);
/// Types a text, chooses an entry, selects an item.
QString kcedSetControl(const KcEdControl& control, const QString& value);

/// Kind, name, caption, group, value and state of a control, for people and for programs.
QJsonObject kcedDescribeControl(const KcEdControl& control);

/// Replaces the text of an editing widget (line edit, spin box, combo box, text edit) as typing does, and
/// leaves it.
QString kcedTypeInto(QWidget& widget, const QString& value);
