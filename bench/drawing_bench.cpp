// Measures opening, counting and saving one drawing, with the plain work of the disk and of scanning the text
// beside it:
//
//     drawing_bench DRAWING [ROUNDS]
//
// Prints one line per workload. Times are the best of the rounds, on files that the system holds in memory.

#include "db/block_reference.h"
#include "db/table.h"
#include "dxf/drawing_file.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "ed/host_commands.h"
#include "ed/input_source.h"
#include "ed/message_boxes.h"
#include "ed/module.h"
#include "platform/app_root.h"
#include "platform/message_box.h"

#include <QApplication>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

double secondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double bestOf(int rounds, const std::function<double()>& round)
{
    double best = round();
    for (int i = 1; i < rounds; ++i)
        best = std::min(best, round());
    return best;
}

/// Bytes of a line of /proc/self/status that is given in kB.
double statusBytes(const char* name)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(name, 0) == 0)
            return std::atof(line.c_str() + std::strlen(name)) * 1024.0;
    return 0.0;
}

void print(const char* workload, const QString& figure, const QString& aim = {})
{
    std::printf(
        "%-42s %-34s %s\n", workload, qPrintable(figure), aim.isEmpty() ? "" : qPrintable("aim: " + aim));
    std::fflush(stdout);
}

QString seconds(double value)
{
    return QString::number(value, 'f', 3) + " s";
}

[[noreturn]] void fail(const QString& why)
{
    std::fprintf(stderr, "drawing_bench: %s\n", qPrintable(why));
    std::exit(1);
}

std::unique_ptr<char[]> readFile(const char* path, size_t& size)
{
    const int file = ::open(path, O_RDONLY);
    struct stat status { };
    if (file < 0 || ::fstat(file, &status) != 0)
        fail(QStringLiteral("%1 cannot be read").arg(path));
    size = size_t(status.st_size);
    std::unique_ptr<char[]> bytes(new char[size]);
    for (size_t at = 0; at < size;) {
        const ssize_t got = ::read(file, bytes.get() + at, size - at);
        if (got <= 0)
            fail(QStringLiteral("%1 cannot be read").arg(path));
        at += size_t(got);
    }
    ::close(file);
    return bytes;
}

struct Scan {
    size_t groups = 0;
    uint64_t sum = 0; ///< of the codes and of the lengths of the values, so that neither can be left out
};

// What any reader has to do at least: find the lines, know every code, see every value.
Scan scan(const char* at, const char* end)
{
    Scan result;
    while (at < end) {
        unsigned code = 0;
        for (; at < end && *at != '\n'; ++at)
            if (*at >= '0' && *at <= '9')
                code = code * 10 + unsigned(*at - '0');
        if (at == end)
            break;
        const char* value = ++at;
        const auto* stop = static_cast<const char*>(std::memchr(value, '\n', size_t(end - value)));
        at = stop ? stop + 1 : end;
        result.sum += code + uint64_t(at - value);
        ++result.groups;
    }
    return result;
}

std::unique_ptr<KcDbDatabase> load(const QString& path)
{
    auto drawing = std::make_unique<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    if (const dxf::Result result = dxf::readDrawing(path, *drawing); !result.ok)
        fail(result.error);
    return drawing;
}

double saveTime(KcDbDatabase& drawing, const QString& path)
{
    return secondsOf([&] {
        if (const dxf::Result result = dxf::saveDrawing(drawing, path); !result.ok)
            fail(result.error);
    });
}

double plainWriteTime(const char* bytes, size_t size, const QString& path)
{
    return secondsOf([&] {
        const int file = ::open(qPrintable(path), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        for (size_t at = 0; at < size;) {
            const ssize_t put = ::write(file, bytes + at, size - at);
            if (put <= 0)
                fail(QStringLiteral("%1 cannot be written").arg(path));
            at += size_t(put);
        }
        ::fsync(file);
        ::close(file);
    });
}

struct Contents {
    size_t references = 0, entities = 0;
};

Contents countContents(const KcDbDatabase& drawing)
{
    Contents contents;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(drawing.modelSpace())) {
        ++contents.entities;
        contents.references += bool(KcDbRead<KcDbBlockReference>(id));
    }
    return contents;
}

/// The numbers in the table's cells, added up: equals the number of references when all were counted once.
qint64 sumOfTable(const KcDbDatabase& drawing, int& rows)
{
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(drawing.modelSpace())) {
        const KcDbRead<KcDbTable> table(id);
        if (!table)
            continue;
        rows = table->numRows();
        qint64 best = 0;
        for (int column = 0; column < table->numColumns(); ++column) {
            qint64 sum = 0;
            for (int row = 3; row < rows; ++row)
                sum += table->plainText(row, column).toLongLong();
            best = std::max(best, sum);
        }
        return best;
    }
    fail(QStringLiteral("TREENUMTOTABLE made no table"));
}

void runLines(const QString& lines)
{
    KcEdScriptSource script;
    script.append(lines, QStringLiteral("bench"));
    // What the command says is no figure.
    std::fflush(stdout);
    const int output = ::dup(STDOUT_FILENO), nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    {
        const KcEdSourceScope source(script);
        KcEdEditor::instance().run();
    }
    std::fflush(stdout);
    ::dup2(output, STDOUT_FILENO);
    ::close(output);
    ::close(nowhere);
    if (script.refusals() > 0)
        fail(QStringLiteral("the script was not taken"));
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc < 2)
        fail(QStringLiteral("takes a drawing"));
    const QString path = QString::fromLocal8Bit(argv[1]);
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
    const QTemporaryDir folder(QFileInfo(path).absolutePath() + "/bench-XXXXXX");
    const QString output = folder.filePath("saved.dxf");

    // Memory first: the peak of a process counts once.
    const double before = statusBytes("VmRSS:");
    std::unique_ptr<KcDbDatabase> drawing;
    const double firstLoad = secondsOf([&] { drawing = load(path); });
    const double peak = statusBytes("VmHWM:");
    const Contents contents = countContents(*drawing);

    size_t size = 0;
    const std::unique_ptr<char[]> bytes = readFile(argv[1], size);
    const double megabytes = double(size) / 1e6;
    Scan scanned;
    const double scanTime = bestOf(rounds, [&] {
        return secondsOf([&] {
            size_t length = 0;
            const std::unique_ptr<char[]> text = readFile(argv[1], length);
            scanned = scan(text.get(), text.get() + length);
        });
    });
    print(
        "scan of code and value lines",
        QStringLiteral("%1, %2 million groups")
            .arg(seconds(scanTime))
            .arg(double(scanned.groups) / 1e6, 0, 'f', 1));
    const double loadTime = std::min(firstLoad, bestOf(rounds, [&] {
                                         std::unique_ptr<KcDbDatabase> again;
                                         return secondsOf([&] { again = load(path); });
                                     }));
    print(
        "load", QStringLiteral("%1, %2 MB/s").arg(seconds(loadTime)).arg(megabytes / loadTime, 0, 'f', 0),
        QStringLiteral("100 times as fast as ezdxf"));
    print(
        "load, compared with the scan", QStringLiteral("%1 times").arg(loadTime / scanTime, 0, 'f', 2),
        QStringLiteral("at most 3 times"));
    if (contents.references)
        print(
            "memory, peak less source text",
            QStringLiteral("%1 MB, %2 bytes per reference")
                .arg((peak - before - double(size)) / 1e6, 0, 'f', 0)
                .arg((peak - before - double(size)) / double(contents.references), 0, 'f', 0),
            QStringLiteral("under 400 bytes, %1 other entities counted in")
                .arg(contents.entities - contents.references));

    const double plain
        = bestOf(rounds, [&] { return plainWriteTime(bytes.get(), size, folder.filePath("plain")); });
    print("plain write and flush of the same bytes", seconds(plain));
    const double unchanged = bestOf(rounds, [&] { return saveTime(*drawing, output); });
    print(
        "save unchanged",
        QStringLiteral("%1, %2 times the plain write")
            .arg(seconds(unchanged))
            .arg(unchanged / plain, 0, 'f', 2),
        QStringLiteral("the disk's speed"));
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(drawing->modelSpace()))
        if (KcDbWrite<KcDbBlockReference> reference(id); reference) {
            reference->setPosition({ 1.0, 2.0, 0.0 });
            break;
        }
    const double changed = bestOf(rounds, [&] { return saveTime(*drawing, output); });
    print(
        "save after one change",
        QStringLiteral("%1, %2 times the plain write").arg(seconds(changed)).arg(changed / plain, 0, 'f', 2));

    // The module counts everything, as a script would have it do.
    platform::setAppRoot(folder.filePath("root"));
    if (const platform::Status root = platform::prepareAppRoot(); !root)
        fail(root.error);
    kcedInstallDialogHandlers();
    kcedRegisterHostCommands();
    if (const platform::Status loaded = kcrxDynamicLinker().loadModule(kcrxMainModulePath()); !loaded)
        fail(loaded.error);
    KcDbDatabase& database = *drawing;
    kcDocManagerPtr()->open(std::move(drawing));
    const double counting = bestOf(rounds, [&] {
        const double taken = secondsOf([] { runLines(QStringLiteral("TREENUMTOTABLE\nALL\n\n0,0\n")); });
        int rows = 0;
        if (const qint64 sum = sumOfTable(database, rows); sum != qint64(contents.references))
            std::fprintf(
                stderr, "drawing_bench: the table holds %lld plants, the drawing %zu references\n",
                (long long)sum, contents.references);
        runLines(QStringLiteral("U\n"));
        return taken;
    });
    print("TREENUMTOTABLE of all references", seconds(counting), QStringLiteral("under 1 s"));
    return 0;
}
