// The editors as widgets without frames over the grid's viewport.

#include "controls/cell_editors.h"

#include "controls/grid.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>

namespace {

// The texts of cells are black on white whatever the palette, and so is what edits them.
void lookLikeCell(QWidget& widget, const CSGridCell& cell)
{
    QPalette palette = widget.palette();
    palette.setColor(QPalette::Base, cell.GetCol()->GetBackColor());
    palette.setColor(QPalette::Text, cell.GetCol()->GetTextColor());
    widget.setPalette(palette);
    widget.setFont(cell.GetGrid()->font());
    widget.setContentsMargins(0, 0, 0, 0);
}

bool caretAtEnd(const QLineEdit* line)
{
    return !line || line->cursorPosition() == line->text().size();
}

// The window lives until events are handled and must not tell an editor that is gone.
void discard(QWidget* window)
{
    if (!window)
        return;
    QObject::disconnect(window, nullptr, window, nullptr);
    window->deleteLater();
}

} // namespace

CSCellCtrl::~CSCellCtrl() = default;

void CSCellCtrl::Place(const QRect& rect)
{
    if (GetWnd())
        GetWnd()->setGeometry(rect);
}

void CSCellCtrl::Hide()
{
    if (GetWnd())
        GetWnd()->hide();
}

void CSCellCtrl::Destroy()
{
    // The window may be what sent the event that is being handled.
    if (QWidget* window = GetWnd()) {
        window->hide();
        window->deleteLater();
    }
}

CSCellEdit::~CSCellEdit()
{
    discard(m_edit);
}

QWidget* CSCellEdit::GetWnd() const
{
    return m_edit;
}

void CSCellEdit::Create(const QRect& rect, QWidget* parent)
{
    m_edit = new QLineEdit(parent);
    m_edit->setFrame(false);
    lookLikeCell(*m_edit, GetCell());
    if (GetCell().GetCol()->IsCenter())
        m_edit->setAlignment(Qt::AlignCenter);
    m_edit->setText(GetCell().GetText());
    m_edit->setModified(false);
    m_edit->setGeometry(rect);
}

bool CSCellEdit::IsModified() const
{
    return m_edit && m_edit->isModified();
}

void CSCellEdit::GetNewText(TString& text) const
{
    if (m_edit)
        text = m_edit->text();
}

bool CSCellEdit::IsLeftEnd() const
{
    return !m_edit || m_edit->cursorPosition() == 0;
}

bool CSCellEdit::IsRightEnd() const
{
    return caretAtEnd(m_edit);
}

void CSCellEdit::SetModified(bool on)
{
    if (m_edit)
        m_edit->setModified(on);
}

void CSCellEdit::SetNewText(const TString& text)
{
    if (m_edit)
        m_edit->setText(text);
}

void CSCellEdit::SelectText()
{
    if (m_edit)
        m_edit->selectAll();
}

// With the whole text chosen, as an edit begins, the caret is at the start as well as at the end.
bool CSCellBox::IsLeftEnd() const
{
    const QLineEdit* const line = Line();
    return !line || (line->cursorPosition() == 0 && !line->hasSelectedText())
        || (line->hasSelectedText() && line->selectedText() == line->text());
}

bool CSCellBox::IsRightEnd() const
{
    return caretAtEnd(Line());
}

QWidget* CSCellBox::KeyWidget() const
{
    return Line() ? static_cast<QWidget*>(Line()) : GetWnd();
}

void CSCellBox::SelectText()
{
    if (QLineEdit* const line = Line())
        line->selectAll();
}

CSCellCombo::CSCellCombo(CSGridCell& cell, const QStringList& choices, bool typing)
    : CSCellBox(cell)
    , m_choices(choices)
    , m_typing(typing)
{
}

CSCellCombo::~CSCellCombo()
{
    discard(m_combo);
}

QWidget* CSCellCombo::GetWnd() const
{
    return m_combo;
}

void CSCellCombo::Create(const QRect& rect, QWidget* parent)
{
    m_combo = new QComboBox(parent);
    m_combo->setEditable(m_typing);
    m_combo->setInsertPolicy(QComboBox::NoInsert);
    m_combo->setFrame(false);
    lookLikeCell(*m_combo, GetCell());
    m_combo->addItems(m_choices);
    SetNewText(GetCell().GetText());
    m_modified = false;
    m_combo->setGeometry(rect);
    CSGridCell* cell = &GetCell();
    QObject::connect(m_combo, &QComboBox::activated, m_combo, [this, cell](int index) {
        m_modified = true;
        cell->GetGrid()->OnCellComboSelChange(*cell, index, m_combo->itemText(index));
    });
    QObject::connect(m_combo, &QComboBox::currentTextChanged, m_combo, [this] { m_modified = true; });
}

void CSCellCombo::GetNewText(TString& text) const
{
    if (m_combo)
        text = m_combo->currentText();
}

void CSCellCombo::SetNewText(const TString& text)
{
    if (!m_combo)
        return;
    const int index = m_combo->findText(text);
    if (m_typing)
        m_combo->setEditText(text);
    else
        m_combo->setCurrentIndex(index);
}

QComboBox* CSCellCombo::Combo() const
{
    return m_combo;
}

QLineEdit* CSCellCombo::Line() const
{
    return m_combo ? m_combo->lineEdit() : nullptr;
}

CSCellSpinEdit::~CSCellSpinEdit()
{
    discard(m_spin);
}

QWidget* CSCellSpinEdit::GetWnd() const
{
    return m_spin;
}

// QSpinBox keeps its line to itself except from children.
QLineEdit* CSCellSpinEdit::Line() const
{
    return m_spin ? m_spin->findChild<QLineEdit*>() : nullptr;
}

void CSCellSpinEdit::Create(const QRect& rect, QWidget* parent)
{
    m_spin = new QSpinBox(parent);
    m_spin->setFrame(false);
    m_spin->setRange(0, 1'000'000);
    m_spin->setKeyboardTracking(false);
    lookLikeCell(*m_spin, GetCell());
    GetCell().GetGrid()->OnInitCellSpin(GetCell(), *m_spin);
    m_spin->setValue(int(GetCell()));
    m_spin->setGeometry(rect);
    m_modified = false;
    QObject::connect(m_spin, &QSpinBox::valueChanged, m_spin, [this] { m_modified = true; });
    QObject::connect(Line(), &QLineEdit::textEdited, m_spin, [this] { m_modified = true; });
}

void CSCellSpinEdit::GetNewText(TString& text) const
{
    if (!m_spin)
        return;
    m_spin->interpretText();
    text = QString::number(m_spin->value());
}

void CSCellSpinEdit::SetNewText(const TString& text)
{
    if (m_spin)
        m_spin->setValue(int(text));
}
