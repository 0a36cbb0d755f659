// What "!" lines do in a dialog of the toolkit's own controls, and what they say when they fit nothing.
#include "support.h"

#include "core/prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

// One control of every kind, with what its signals told.
class Sample : public QDialog {
public:
    Sample()
    {
        setWindowTitle("样例");
        auto* column = new QVBoxLayout(this);
        auto* form = new QFormLayout;
        column->addLayout(form);
        digits->setObjectName("iDigits");
        digits->setValidator(new QIntValidator(0, 99, digits));
        form->addRow("位数(&D)：", digits);
        scale->addItems({ "1", "100", "1000" });
        scale->setEditable(true);
        form->addRow("比例:", scale);
        unit->addItems({ " ", "株", "丛" });
        form->addRow("单位", unit);
        number->setRange(0.5, 10);
        form->addRow("数值", number);
        for (QLineEdit* field : { leftLayer, rightLayer }) {
            auto* group = new QGroupBox(field == leftLayer ? "标注属性" : "修改属性");
            auto* row = new QHBoxLayout(group);
            row->addWidget(new QLabel("图层"));
            row->addWidget(field);
            column->addWidget(group);
        }
        auto* tabs = new QTabWidget;
        tabs->addTab(new QLabel("第一页"), "一");
        auto* page = new QWidget;
        auto* inside = new QVBoxLayout(page);
        inside->addWidget(align);
        inside->addWidget(hidden);
        hidden->hide();
        tabs->addTab(page, "二");
        column->addWidget(tabs);
        grid->setHorizontalHeaderLabels({ "名称", "隐藏", "数量" });
        grid->setColumnHidden(1, true);
        auto* tick = new QTableWidgetItem;
        tick->setFlags(tick->flags() | Qt::ItemIsUserCheckable);
        tick->setCheckState(Qt::Unchecked);
        grid->setItem(1, 0, new QTableWidgetItem("香樟"));
        grid->setItem(1, 2, tick);
        column->addWidget(grid);
        tree->setHeaderLabels({ "项目" });
        for (const char* name : { "乔木", "灌木" }) {
            auto* parent = new QTreeWidgetItem(tree, { name });
            auto* item = new QTreeWidgetItem(parent, { "香樟" });
            item->setCheckState(0, Qt::Unchecked);
        }
        column->addWidget(tree);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        column->addWidget(buttons);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        connect(digits, &QLineEdit::editingFinished, this, [this] { told += "edited " + digits->text(); });
        connect(
            unit, &QComboBox::activated, this, [this](int index) { told += QString("unit %1").arg(index); });
        connect(align, &QCheckBox::clicked, this, [this](bool on) { told += on ? "on" : "off"; });
    }

    QLineEdit* digits = new QLineEdit("1", this);
    QComboBox* scale = new QComboBox(this);
    QComboBox* unit = new QComboBox(this);
    QDoubleSpinBox* number = new QDoubleSpinBox(this);
    QLineEdit* leftLayer = new QLineEdit(this);
    QLineEdit* rightLayer = new QLineEdit(this);
    QCheckBox* align = new QCheckBox("自动 对齐", this);
    QCheckBox* hidden = new QCheckBox("不见", this);
    QTableWidget* grid = new QTableWidget(2, 3, this);
    QTreeWidget* tree = new QTreeWidget(this);
    QStringList told;
};

class Lines : public ::testing::Test {
protected:
    // Runs the lines in the sample; how many nothing took.
    int drive(const QStringList& lines)
    {
        return session.run(
            [this] {
                result = kcedRunDialog(dialog);
                locksAfter = session.document.lockCount();
            },
            lines);
    }

    ed_test::Session session;
    Sample dialog;
    int result = -1, locksAfter = -1;
};

} // namespace

TEST_F(Lines, ReachEveryKindOfControl)
{
    EXPECT_EQ(
        drive({ "!set iDigits 42", "!set 比例 250", "!set 单位 株", "!set 数值 2.5",
                "!set 修改属性/图层 \"乔 木\"", "!check \"自动 对齐\" on", "!cell 0 名称 桂花 树",
                "!cell 1 1 1", "!cell 1 0", "!tree 灌木/香樟 on", "!ok" }),
        0)
        << session.errors;
    EXPECT_EQ(result, QDialog::Accepted);
    EXPECT_EQ(dialog.digits->text(), "42");
    EXPECT_EQ(dialog.scale->currentText(), "250");
    EXPECT_EQ(dialog.unit->currentIndex(), 1);
    EXPECT_EQ(dialog.number->value(), 2.5);
    EXPECT_EQ(dialog.leftLayer->text(), "");
    EXPECT_EQ(dialog.rightLayer->text(), "乔 木");
    EXPECT_TRUE(dialog.align->isChecked());
    ASSERT_TRUE(dialog.grid->item(0, 0));
    EXPECT_EQ(dialog.grid->item(0, 0)->text(), "桂花 树");
    EXPECT_EQ(dialog.grid->item(1, 2)->checkState(), Qt::Checked);
    EXPECT_EQ(dialog.grid->item(1, 0)->text(), "");
    EXPECT_EQ(dialog.tree->topLevelItem(1)->child(0)->checkState(0), Qt::Checked);
    EXPECT_EQ(dialog.tree->topLevelItem(0)->child(0)->checkState(0), Qt::Unchecked);
    // What a user does is told by the signals on which a dialog's checks hang, once each.
    EXPECT_EQ(dialog.told, QStringList({ "edited 42", "unit 1", "on" }));
}

TEST_F(Lines, ThatFitNothingSayWhatThereIs)
{
    const struct {
        QString line, sentence;
    } rows[] = {
        { "!set nothing 1", "There is no field \"nothing\". There are: iDigits (位数)" },
        { "!check 不见 on", "There is no check box \"不见\"" },
        { "!press OK2", "There is no button \"OK2\"" },
        { "!set 图层 x", "\"图层\" stands more than once: 标注属性/图层, 修改属性/图层" },
        { "!set 单位 棵", "There is no entry \"棵\". There are: \" \", \"株\", \"丛\"" },
        { "!set iDigits 100", "The field does not take \"100\"" },
        { "!set iDigits x", "The field does not take \"x\"" },
        { "!set 数值 11", "The field does not take \"11\"" },
        { "!cell @none 0 0 x", "There is no grid \"none\"" },
        { "!tree 香樟 on", "stands more than once" },
        { "!tree 松树 on", "The tree has no \"松树\". There are: 乔木, 乔木/香樟" },
        { "!check \"自动 对齐\" maybe", "!check is followed by a name and on or off" },
        { "!yes", "No question is open" },
        { "!color 3", "No colour is asked for" },
        { "!file a.dxf", "No file is asked for" },
        { "!ok now", "!ok stands alone" },
        { "!nonsense", "There is no line !nonsense. There are: !ok" },
        { "!shot /nowhere/x.png", "cannot be written" },
    };
    QStringList lines;
    for (const auto& row : rows)
        lines += row.line;
    EXPECT_EQ(drive(lines + QStringList{ "!ok" }), int(std::size(rows)));
    for (const auto& row : rows)
        EXPECT_TRUE(session.errors.contains(row.sentence)) << row.line << " not in " << session.errors;
    EXPECT_EQ(result, QDialog::Accepted);
    EXPECT_EQ(dialog.digits->text(), "1");
    EXPECT_EQ(dialog.number->value(), 0.5);
}

TEST_F(Lines, OfSeveralGridsOneIsNamed)
{
    dialog.layout()->addWidget(new QTableWidget(1, 1));
    dialog.grid->setObjectName("grid");
    EXPECT_EQ(
        drive({ "!cell 0 0 x", "!cell @grid 0 0 y", "!row @grid 2", "!cell @grid 0 隐藏 x", "!ok" }), 3);
    EXPECT_TRUE(session.errors.contains("several, so a name is wanted")) << session.errors;
    EXPECT_TRUE(session.errors.contains("There is no row 2")) << session.errors;
    EXPECT_TRUE(session.errors.contains("There is no column 隐藏. There are: 名称, 数量")) << session.errors;
    EXPECT_EQ(dialog.grid->item(0, 0)->text(), "y");
}

TEST_F(Lines, OtherLinesCancelTheDialogAndAreReadAgain)
{
    const KcDbObjectId line = session.addLine(0, 0, 1, 1);
    EXPECT_EQ(drive({ "; nothing to do here", "ERASE", session.handle(line), "" }), 0);
    EXPECT_EQ(result, QDialog::Rejected);
    EXPECT_TRUE(line.isErased());
    EXPECT_TRUE(session.errors.contains("The dialog \"样例\" was cancelled")) << session.errors;
}

TEST_F(Lines, TheEndOfTheScriptCancels)
{
    EXPECT_EQ(drive({ "!set iDigits 7" }), 0);
    EXPECT_EQ(result, QDialog::Rejected);
    EXPECT_EQ(locksAfter, 0);
    EXPECT_EQ(kcedActivity(), KcEdActivity::Idle);
}

TEST_F(Lines, ADialogThatWouldNotGoGoesAllTheSame)
{
    class Stubborn : public QDialog {
        void reject() override { }
    } stubborn;
    EXPECT_EQ(session.run([&] { result = kcedRunDialog(stubborn); }, { "!cancel" }), 0);
    EXPECT_EQ(result, QDialog::Rejected);
}

TEST_F(Lines, ListAndPicture)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a dialog.png");
    EXPECT_EQ(drive({ "!list", "!shot \"" + path + "\"", "!cancel" }), 0) << session.errors;
    EXPECT_TRUE(session.printed.contains(
        "{\"caption\":\"位数\",\"kind\":\"field\",\"name\":\"iDigits\",\"value\":\"1\"}"))
        << session.printed;
    EXPECT_TRUE(session.printed.contains("\"columns\":[\"名称\",\"数量\"]")) << session.printed;
    const QImage picture(path);
    EXPECT_EQ(picture.size(), dialog.size() * picture.devicePixelRatio());
}

// A dialog that lets the user pick in the drawing hides, and its values are still there when it comes back.
TEST_F(Lines, ADialogHidesPicksAndComesBack)
{
    auto* pick = new QPushButton("拾取", &dialog);
    dialog.layout()->addWidget(pick);
    bool visibleMeanwhile = true;
    KcGePoint3d picked;
    QObject::connect(pick, &QPushButton::clicked, &dialog, [&] {
        const KcEdDialogPause pause(dialog);
        visibleMeanwhile = dialog.isVisible();
        if (GetPoint(picked, "\nPoint: "))
            dialog.digits->setText(QString::number(picked.x));
    });
    EXPECT_EQ(drive({ "!set 比例 77", "!press 拾取", "8,9", "!ok" }), 0) << session.errors;
    EXPECT_FALSE(visibleMeanwhile);
    EXPECT_EQ(result, QDialog::Accepted);
    EXPECT_EQ(dialog.digits->text(), "8");
    EXPECT_EQ(dialog.scale->currentText(), "77");
    EXPECT_TRUE(picked.isEqualTo({ 8, 9, 0 }));
}

TEST_F(Lines, TheDocumentIsLockedMeanwhile)
{
    int locks = 0;
    QObject::connect(
        dialog.align, &QCheckBox::clicked, &dialog, [&] { locks = session.document.lockCount(); });
    EXPECT_EQ(drive({ "!check \"自动 对齐\" on", "!ok" }), 0);
    EXPECT_EQ(locks, 1);
    EXPECT_EQ(locksAfter, 0);
    session.document.setWriteProtected(true);
    EXPECT_EQ(drive({ "!ok" }), 1); // there is no dialog that could take it
    session.document.setWriteProtected(false);
    EXPECT_EQ(result, QDialog::Rejected);
    EXPECT_TRUE(session.printed.contains("The drawing must not be changed now."));
}
