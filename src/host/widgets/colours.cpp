// Swatches of the 255 index colours, chosen by mouse, keys or number.

#include "widgets/colours.h"

#include "ed/dialogs.h"
#include "ed/documents.h"
#include "ed/scriptable.h"
#include "gi/colour_table.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QToolTip>
#include <QVBoxLayout>

namespace {

constexpr int kByBlock = 0, kByLayer = 256;
constexpr int kColumns = 24, kSwatch = 18, kGap = 6;

// The swatches: ten rows of hues (the five even shades above, the five odd ones below), then the nine named
// colours, then the greys.
class Swatches : public QWidget {
public:
    std::function<void(int)> onPicked, onConfirmed;

    explicit Swatches(QWidget* parent)
        : QWidget(parent)
    {
        setFocusPolicy(Qt::StrongFocus);
        setFixedSize(kColumns * kSwatch + 2, 12 * kSwatch + 2 * kGap + 2);
        setAccessibleName(QStringLiteral("索引颜色"));
    }
    void select(int index)
    {
        m_selected = index;
        update();
    }
    QSize sizeHint() const override { return size(); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        for (int index = 1; index <= 255; ++index) {
            const QRect place = placeOf(index).adjusted(1, 1, -1, -1);
            painter.fillRect(place, QColor(kcgiIndexColor(index)));
            painter.setPen(palette().color(QPalette::Mid));
            painter.drawRect(place.adjusted(0, 0, -1, -1));
        }
        if (m_selected < 1 || m_selected > 255)
            return;
        painter.setPen(QPen(palette().color(QPalette::WindowText), 2));
        painter.drawRect(placeOf(m_selected).adjusted(0, 0, -1, -1));
        if (hasFocus()) {
            painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
            painter.drawRect(placeOf(m_selected).adjusted(2, 2, -3, -3));
        }
    }
    void mousePressEvent(QMouseEvent* event) override
    {
        if (const int index = at(event->pos()))
            onPicked(index);
    }
    void mouseDoubleClickEvent(QMouseEvent* event) override
    {
        if (const int index = at(event->pos()))
            onConfirmed(index);
    }
    void keyPressEvent(QKeyEvent* event) override
    {
        int dx = 0, dy = 0;
        switch (event->key()) {
        case Qt::Key_Left:
            dx = -1;
            break;
        case Qt::Key_Right:
            dx = 1;
            break;
        case Qt::Key_Up:
            dy = -1;
            break;
        case Qt::Key_Down:
            dy = 1;
            break;
        default:
            return QWidget::keyPressEvent(event);
        }
        const int from = m_selected >= 1 && m_selected <= 255 ? m_selected : 10;
        // Over the gaps between the three blocks, too.
        QPoint place = placeOf(from).center() + QPoint(dx, dy) * kSwatch;
        for (int tries = 0; tries < 3; ++tries, place += QPoint(dx, dy) * kGap)
            if (const int index = at(place))
                return onPicked(index);
    }
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::ToolTip)
            return QWidget::event(event);
        auto* help = static_cast<QHelpEvent*>(event);
        if (const int index = at(help->pos()))
            QToolTip::showText(help->globalPos(), kcuiColorName(index), this, placeOf(index));
        else
            QToolTip::hideText();
        return true;
    }

private:
    static QRect placeOf(int index)
    {
        int column = index - 1, row = 10, gap = kGap; // 1 to 9
        if (index >= 250) {
            column = index - 250;
            row = 11;
            gap = 2 * kGap;
        } else if (index >= 10) {
            const int shade = index % 10;
            column = index / 10 - 1;
            row = shade % 2 == 0 ? 4 - shade / 2 : 5 + shade / 2;
            gap = 0;
        }
        return QRect(1 + column * kSwatch, 1 + row * kSwatch + gap, kSwatch, kSwatch);
    }
    static int at(QPoint point)
    {
        for (int index = 1; index <= 255; ++index)
            if (placeOf(index).contains(point))
                return index;
        return 0;
    }
    int m_selected = -1;
};

class ColorDialog : public QDialog, public KcEdScriptableColours {
public:
    ColorDialog(QWidget* parent, int index, bool allowMeta, int layerColor)
        : QDialog(parent)
        , m_swatches(new Swatches(this))
        , m_number(new QLineEdit(this))
        , m_sample(new QLabel(this))
        , m_allowMeta(allowMeta)
        , m_layerColor(layerColor)
    {
        setObjectName(QStringLiteral("colorDialog"));
        setWindowTitle(QStringLiteral("选择颜色"));
        m_number->setObjectName(QStringLiteral("color"));
        m_number->setMaximumWidth(fontMetrics().averageCharWidth() * 10);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        m_ok = buttons->button(QDialogButtonBox::Ok);
        m_ok->setObjectName(QStringLiteral("BTNOK"));
        m_ok->setText(QStringLiteral("确定"));
        buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("BTNCANCEL"));
        buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("取消"));

        auto* row = new QHBoxLayout;
        auto* label = new QLabel(QStringLiteral("颜色(&C):"));
        label->setBuddy(m_number);
        row->addWidget(label);
        row->addWidget(m_number);
        row->addWidget(m_sample);
        row->addStretch();
        for (const int meta : { kByLayer, kByBlock }) {
            if (!allowMeta)
                break;
            auto* button = new QPushButton(kcuiColorName(meta));
            button->setObjectName(meta == kByLayer ? QStringLiteral("ByLayer") : QStringLiteral("ByBlock"));
            button->setAutoDefault(false);
            connect(button, &QPushButton::clicked, this, [this, meta] { choose(meta); });
            row->addWidget(button);
        }
        auto* column = new QVBoxLayout(this);
        column->addWidget(m_swatches);
        column->addLayout(row);
        column->addWidget(buttons);
        column->setSizeConstraint(QLayout::SetFixedSize);

        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        connect(m_number, &QLineEdit::textEdited, this, [this](const QString& text) { show(parsed(text)); });
        m_swatches->onPicked = [this](int picked) { choose(picked); };
        m_swatches->onConfirmed = [this](int picked) {
            choose(picked);
            accept();
        };
        choose(allows(index) ? index : 7);
        m_number->setFocus();
    }

    int index() const { return m_index.value_or(7); }

    QString pickColour(int wanted) override
    {
        if (!allows(wanted))
            return m_allowMeta ? QStringLiteral("A colour from 0 to 256 is wanted.")
                               : QStringLiteral("A colour from 1 to 255 is wanted.");
        choose(wanted);
        accept();
        return {};
    }

private:
    bool allows(int index) const
    {
        return (index >= 1 && index <= 255) || (m_allowMeta && (index == 0 || index == 256));
    }
    std::optional<int> parsed(const QString& text) const
    {
        if (m_allowMeta)
            for (const int meta : { kByLayer, kByBlock })
                if (text.trimmed() == kcuiColorName(meta))
                    return meta;
        bool isNumber = false;
        const int number = text.trimmed().toInt(&isNumber);
        return isNumber && allows(number) ? std::optional(number) : std::nullopt;
    }
    void choose(int index)
    {
        m_number->setText(
            index == kByLayer || index == kByBlock ? kcuiColorName(index) : QString::number(index));
        show(index);
    }
    // What is typed may be no colour: then there is nothing to confirm.
    void show(std::optional<int> index)
    {
        m_index = index;
        m_ok->setEnabled(index.has_value());
        m_swatches->select(index.value_or(-1));
        m_sample->setPixmap(
            index ? kcuiColorIcon(*index, m_layerColor).pixmap(QSize(32, 18), devicePixelRatioF())
                  : QPixmap());
    }

    Swatches* m_swatches;
    QLineEdit* m_number;
    QLabel* m_sample;
    QPushButton* m_ok = nullptr;
    std::optional<int> m_index;
    bool m_allowMeta;
    int m_layerColor;
};

} // namespace

QString kcuiColorName(int index)
{
    static const QString names[]
        = { QStringLiteral("随块"), QStringLiteral("红"), QStringLiteral("黄"),   QStringLiteral("绿"),
            QStringLiteral("青"),   QStringLiteral("蓝"), QStringLiteral("洋红"), QStringLiteral("白") };
    if (index == kByLayer)
        return QStringLiteral("随层");
    return index >= 0 && index < 8 ? names[index] : QString::number(index);
}

QIcon kcuiColorIcon(int index, int currentLayerColor)
{
    QIcon icon;
    for (const int scale : { 1, 2 }) {
        QPixmap picture(QSize(32, 18) * scale);
        picture.setDevicePixelRatio(scale);
        picture.fill(QColor(kcgiIndexColor(
            index == kByLayer       ? currentLayerColor
                : index == kByBlock ? 7
                                    : index)));
        QPainter painter(&picture);
        painter.setPen(Qt::gray);
        painter.drawRect(QRectF(0.5, 0.5, 31, 17));
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

bool kcedSetColorDialog(int& colorIndex, bool allowMetaColors, int currentLayerColor)
{
    ColorDialog dialog(kcDocManagerPtr()->mainWindow(), colorIndex, allowMetaColors, currentLayerColor);
    if (kcedRunDialog(dialog, KcEdDialogLock::None) != QDialog::Accepted)
        return false;
    colorIndex = dialog.index();
    return true;
}
