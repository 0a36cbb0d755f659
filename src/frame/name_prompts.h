// Asking for the name of a planted area or a tree array: a default, the names used last by number, and behind
// "其他(Q)" a list to choose from and to edit.
#pragma once

#include <QStringList>

#include <functional>
#include <optional>

/// Lets the user edit the list of names that the prompt offers. Nothing when the list is to stay as it is.
using NameListEditor = std::function<std::optional<QStringList>(const QStringList& names)>;

/// Installs the editor behind "其他(Q)" and returns the one before; an empty one takes it away.
NameListEditor setNameListEditor(NameListEditor editor);

/// The name of a planted area; empty when the user cancelled. A suggested name becomes the first one offered.
/// The answer is remembered in the settings and in the drawing's dictionary of area names.
QString askAreaName(const QString& suggested = {});

/// The name of a tree array; empty when the user cancelled. The names of the blocks in use are offered
/// besides the last answers. The answer is remembered in the settings, and in the drawing's dictionary of
/// area names when it is none of these blocks.
QString askTreeArrayName();

/// The prompt that offers names by number, without the text before them: "香樟(1)/桂花(2)/其他(Q)]<香樟>:".
/// A new row begins after every thirteenth name.
QString nameChoices(const QStringList& names, bool others);

/// The list of recent names after an answer: it is in front.
QStringList withRecentName(QStringList names, const QString& answer);
