// What the tests of drawing files share: the drawings, reading and saving them, and the two judges that know
// nothing of the program's own code: compare_drawings.py and audit_drawing.py.
#pragma once

#include "db/database.h"
#include "db/open.h"
#include "dxf/drawing_file.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <string>

namespace drawing_test {

inline const QString kDrawings = QStringLiteral(VERDELIS_TEST_DATA "/drawings/");

inline std::string readBytes(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll().toStdString();
}

inline void writeBytes(const QString& path, const std::string& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes.data(), qint64(bytes.size())), qint64(bytes.size()));
}

/// Null, with a failure, when the drawing cannot be read.
inline std::unique_ptr<KcDbDatabase> readDrawing(std::string_view bytes)
{
    auto drawing = std::make_unique<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    const dxf::Result result = dxf::readDrawing(bytes, *drawing);
    EXPECT_TRUE(result.ok) << result.error.toStdString();
    return result.ok ? std::move(drawing) : nullptr;
}

/// Empty, with a failure, when the drawing cannot be saved.
inline std::string saveDrawing(KcDbDatabase& drawing, QStringList* notes = nullptr)
{
    std::string bytes;
    const dxf::Result result = dxf::saveDrawing(drawing, bytes);
    EXPECT_TRUE(result.ok) << result.error.toStdString();
    if (notes)
        *notes = result.notes;
    return result.ok ? bytes : std::string();
}

// The system's own interpreter is the one that the system's packages belong to.
inline const QString kPython = QFileInfo::exists(QStringLiteral("/usr/bin/python3"))
    ? QStringLiteral("/usr/bin/python3")
    : QStringLiteral("python3");

struct Verdict {
    int status = -1;
    QString says;
};

inline Verdict judge(const char* script, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(
        kPython,
        QStringList{ QStringLiteral("-B"), QStringLiteral(VERDELIS_SOURCE_DIR "/tests/drawings/") + script }
            + arguments);
    if (!process.waitForFinished(120000))
        return { -1, process.errorString() };
    return { process.exitCode(), QString::fromUtf8(process.readAll()) };
}

/// `options` say what may differ, see compare_drawings.py.
inline Verdict compare(const QString& before, const QString& after, const QStringList& options = {})
{
    return judge("compare_drawings.py", QStringList{ before, after } + options);
}

constexpr int kNotChecked = 77; ///< ezdxf is missing or cannot read the file

/// Status 1 when the audit of the second drawing is worse than that of the first.
inline Verdict audit(const QString& before, const QString& after)
{
    return judge("audit_drawing.py", { before, after });
}

inline QString hex(KcDbHandle handle)
{
    return QString::number(handle, 16).toUpper();
}

} // namespace drawing_test
