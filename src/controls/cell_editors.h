// What edits a cell in its place: a line of text, one with a button, a combo box, a spin box. The grid
// creates an editor, shows it over the cell and asks it for the text.
#pragma once

#include "controls/grid_types.h"

#include <QPointer>
#include <QRect>
#include <QStringList>

class CSGridCell;
class QComboBox;
class QLineEdit;
class QSpinBox;
class QToolButton;
class QWidget;

class CSCellCtrl {
public:
    explicit CSCellCtrl(CSGridCell& cell)
        : m_cell(cell)
    {
    }
    CSCellCtrl(const CSCellCtrl&) = delete;
    CSCellCtrl& operator=(const CSCellCtrl&) = delete;

    virtual ~CSCellCtrl();
    /// Null before `Create`.
    virtual QWidget* GetWnd() const = 0;
    /// Makes the window over a rectangle of the grid's viewport, with the cell's text.
    virtual void Create(const QRect& rect, QWidget* parent) = 0;
    virtual bool IsModified() const = 0;
    virtual void GetNewText(TString& text) const = 0;
    // Whether the caret stands so that the key leads to the next cell.
    virtual bool IsLeftEnd() const { return true; }
    virtual bool IsRightEnd() const { return true; }
    virtual bool IsUpEnd() const { return true; }
    virtual bool IsDownEnd() const { return true; }
    virtual void SetModified(bool on) = 0;
    virtual void SetNewText(const TString& text) = 0;

    /// The child of the window that keys go to; the window itself where there is no other.
    virtual QWidget* KeyWidget() const { return GetWnd(); }
    virtual void SelectText() { }
    virtual void Place(const QRect& rect);
    void Hide();
    void Destroy();
    CSGridCell& GetCell() const { return m_cell; }

private:
    CSGridCell& m_cell;
};

class CSCellEdit : public CSCellCtrl {
public:
    using CSCellCtrl::CSCellCtrl;
    ~CSCellEdit() override;
    QWidget* GetWnd() const override;
    void Create(const QRect& rect, QWidget* parent) override;
    bool IsModified() const override;
    void GetNewText(TString& text) const override;
    bool IsLeftEnd() const override;
    bool IsRightEnd() const override;
    void SetModified(bool on) override;
    void SetNewText(const TString& text) override;
    void SelectText() override;

protected:
    QPointer<QLineEdit> m_edit;
};

/// The button itself is the cell's: the grid draws it and hears of it.
class CSCellButtonEdit : public CSCellEdit {
public:
    using CSCellEdit::CSCellEdit;
};

/// What combo and spin boxes have in common: the caret is that of a line inside the window.
class CSCellBox : public CSCellCtrl {
public:
    using CSCellCtrl::CSCellCtrl;
    bool IsModified() const override { return m_modified; }
    bool IsLeftEnd() const override;
    bool IsRightEnd() const override;
    void SetModified(bool on) override { m_modified = on; }
    QWidget* KeyWidget() const override;
    void SelectText() override;

protected:
    /// Null where nothing can be typed.
    virtual QLineEdit* Line() const = 0;
    bool m_modified = false;
};

class CSCellCombo : public CSCellBox {
public:
    /// `typing`: the text can be typed, too.
    CSCellCombo(CSGridCell& cell, const QStringList& choices, bool typing);
    ~CSCellCombo() override;
    QWidget* GetWnd() const override;
    void Create(const QRect& rect, QWidget* parent) override;
    void GetNewText(TString& text) const override;
    void SetNewText(const TString& text) override;
    QComboBox* Combo() const;

private:
    QLineEdit* Line() const override;
    QPointer<QComboBox> m_combo;
    QStringList m_choices;
    bool m_typing;
};

class CSCellSpinEdit : public CSCellBox {
public:
    using CSCellBox::CSCellBox;
    ~CSCellSpinEdit() override;
    QWidget* GetWnd() const override;
    void Create(const QRect& rect, QWidget* parent) override;
    void GetNewText(TString& text) const override;
    void SetNewText(const TString& text) override;

private:
    QLineEdit* Line() const override;
    QPointer<QSpinBox> m_spin;
};
