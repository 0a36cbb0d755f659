// Measures the grid of the list dialogs at 10,000 and 100,000 rows of 12 columns: each line gives both times
// and their ratio, which shows what grows faster than the rows.
//   build/bin/grid_bench
#include "controls/grid.h"

#include <QApplication>
#include <QImage>
#include <QScrollBar>

#include <chrono>
#include <cstdio>
#include <functional>

namespace {

constexpr int kColumns = 12;
constexpr int kFew = 10'000, kMany = 100'000;
constexpr int kLeaves = 9; // below each parent of the tree

double timed(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// On the screen, since a grid that is not shown paints nothing.
struct Shown : CSGrid {
    explicit Shown(int tree = 0)
        : CSGrid(tree)
    {
        for (int column = 0; column < kColumns; ++column)
            AppendColumn(QStringLiteral("column %1").arg(column), 90);
        resize(1200, 800);
        show();
        QApplication::processEvents();
    }
    void fill(int rows)
    {
        for (int row = 0; row < rows; ++row) {
            auto* const made = new CSGridRow(this);
            for (int column = 0; column < kColumns; ++column)
                made->SetItemText(column, QStringLiteral("香樟 %1").arg(row * kColumns + column));
            AppendRow(made);
        }
    }
    // Rows in all, one in ten of them a root.
    void plant(int rows)
    {
        for (int root = 0; root < rows / (kLeaves + 1); ++root) {
            auto* const parent = new CSGridTreeRow(this);
            parent->SetItemText(0, QString::number(root));
            parent->SetUnFoldFlag(true);
            AppendRow(parent);
            for (int leaf = 0; leaf < kLeaves; ++leaf)
                parent->AppendChild(new CSGridTreeRow(parent));
        }
    }
};

double filling(int rows)
{
    Shown grid;
    return timed([&] { grid.fill(rows); });
}

// One page scrolled to and painted, the mean of a hundred over the whole list.
double page(int rows)
{
    Shown grid;
    grid.fill(rows);
    QImage image(grid.size(), QImage::Format_ARGB32_Premultiplied);
    constexpr int kPages = 100;
    return timed([&] {
               for (int shown = 0; shown < kPages; ++shown) {
                   grid.verticalScrollBar()->setValue(int(qint64(rows) * shown / kPages));
                   grid.render(&image);
               }
           })
        / kPages;
}

double reversing(int rows)
{
    Shown grid;
    grid.fill(rows);
    return timed([&] {
        for (int place = 0; place < rows; ++place)
            grid.MoveRow(rows - 1, place);
    });
}

double selectingAll(int rows)
{
    Shown grid;
    grid.fill(rows);
    return timed([&] { grid.SelectAll(); });
}

double deletingHalf(int rows)
{
    Shown grid;
    grid.fill(rows);
    return timed([&] {
        for (int row = 0; row < rows; row += 2)
            grid.SelectRow(row);
        grid.DoDelete();
    });
}

double planting(int rows)
{
    Shown grid(1);
    return timed([&] { grid.plant(rows); });
}

// Each root by itself, as a user or a dialog does.
double foldingEach(int rows)
{
    Shown grid(1);
    grid.plant(rows);
    return timed([&] {
        for (int row = 0; row < grid.GetRowCount(); ++row)
            grid.GetTreeRow(row)->Fold();
        for (int row = grid.GetRowCount() - 1; row >= 0; --row)
            grid.GetTreeRow(row)->UnFold();
    });
}

double foldingAll(int rows)
{
    Shown grid(1);
    grid.plant(rows);
    grid.SelectAll();
    return timed([&] {
        grid.FoldAll();
        grid.UnFoldAll();
    });
}

double best(double (*work)(int), int rows)
{
    double least = 1e300;
    for (int round = 0; round < 3; ++round)
        least = std::min(least, work(rows));
    return least;
}

} // namespace

int main(int count, char** arguments)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    const struct {
        const char* name;
        double (*work)(int);
        const char* aim;
    } lines[] = {
        { "fill", filling, "12 times" },
        { "scroll a page and paint it", page, "5 ms" },
        { "reverse the order by MoveRow", reversing, "12 times" },
        { "select all", selectingAll, "12 times" },
        { "select and delete every second row", deletingHalf, "12 times" },
        { "fill a tree", planting, "12 times" },
        { "fold and unfold each root", foldingEach, "12 times" },
        { "fold and unfold all", foldingAll, "12 times" },
    };
    std::printf("%-36s %12s %12s %8s %10s\n", "milliseconds", "10,000 rows", "100,000", "ratio", "aim");
    for (const auto& line : lines) {
        const double few = best(line.work, kFew), many = best(line.work, kMany);
        std::printf("%-36s %12.2f %12.2f %8.1f %10s\n", line.name, few, many, many / few, line.aim);
        std::fflush(stdout);
    }
}
