// What scripts reach of a widget that the toolkit does not know: a grid, a tree with ticks. A widget class of
// our own inherits one of these beside its QWidget base; the driver of dialogs finds it by that.
#pragma once

#include <QString>

#include <vector>

/// A grid as the user sees it. Rows and columns count from 0 over what is displayed: hidden columns and the
/// rows below a folded one do not count. Operations that change something return an empty text, or a sentence
/// saying why they could not; they must go the way that mouse and keys go, so that every notification is sent
/// and every check is made.
class KcEdScriptableGrid {
public:
    virtual ~KcEdScriptableGrid();

    virtual int displayedRows() const = 0;
    virtual int displayedColumns() const = 0;
    /// Of a column's header, the lowest row of it where there are several.
    virtual QString headerText(int column) const = 0;
    /// What the cell shows; of a check cell "1" or "0".
    virtual QString cellText(int row, int column) const = 0;
    /// Click, type, Return. A check cell takes "1" and "0", a list cell the text of a choice; an empty text
    /// empties the cell. A cell that cannot be edited says so.
    virtual QString editCell(int row, int column, const QString& value) = 0;
    /// A click on the row, which leaves it as the only one selected.
    virtual QString selectRow(int row) = 0;
    /// A click on the header.
    virtual QString selectColumn(int column) = 0;
    /// Rows that are selected, ascending.
    virtual std::vector<int> selectedRows() const { return {}; }
};

/// A tree whose items can be ticked.
class KcEdScriptableTree {
public:
    struct Item {
        QString path; ///< texts from the root on, joined by "/"
        int state = 0; ///< 0 no check box, 1 unchecked, 2 partially checked, 3 checked
    };

    virtual ~KcEdScriptableTree();

    /// From the top to the bottom, folded items too.
    virtual std::vector<Item> items() const = 0;
    /// A click on the check box of an item, named by its text or, where that stands twice, by its path;
    /// nothing happens when it is in that state already. An empty text, or a sentence saying why it could not
    /// be done.
    virtual QString tickItem(const QString& path, bool on) = 0;
};

/// A dialog that asks for an index colour.
class KcEdScriptableColours {
public:
    virtual ~KcEdScriptableColours();

    /// Chooses a colour and closes the dialog with OK. An empty text, or a sentence saying why it cannot be
    /// chosen.
    virtual QString pickColour(int index) = 0;
};
