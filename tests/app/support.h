// The program in a process of its own, with a folder that goes when the test ends.
#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace app_test {

struct Outcome {
    int status = -1;
    QString out, err;
};

class Program : public ::testing::Test {
protected:
    Outcome run(const QStringList& arguments, const QByteArray& input = {})
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VERDELIS_ROOT", folder.filePath("root"));
        for (const char* name : { "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY" })
            environment.remove(name);
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                 QString::fromUtf8(process.readAllStandardError()) };
    }
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    QString program = QStringLiteral(VERDELIS_PROGRAM);
    QTemporaryDir folder;
    const QString plan = QStringLiteral(VERDELIS_SOURCE_DIR "/examples/planting-plan.dxf");
};

} // namespace app_test
