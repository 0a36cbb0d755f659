// Grids, lists and trees of dialogs: our own and those of the toolkit behind one face.
#pragma once

#include "ed/scriptable.h"

#include <QJsonObject>
#include <QWidget>

#include <memory>

/// The grid that a widget is: itself, or one over a table, list or tree view of the toolkit; null for others.
/// The widget must outlive it.
std::shared_ptr<KcEdScriptableGrid> kcedGridOf(QWidget& widget);
/// The same for trees with check boxes.
std::shared_ptr<KcEdScriptableTree> kcedTreeOf(QWidget& widget);

/// Headers and cells as shown, or the items with their ticks.
void kcedDescribeView(QWidget& widget, QJsonObject& into);
