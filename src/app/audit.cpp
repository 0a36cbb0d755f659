// verdelis audit DRAWING [-o OUT.dxf]: numbered findings, errors apart from fixes.

#include "program.h"

#include "db/audit.h"
#include "ed/console.h"
#include "ed/status_bar.h"

namespace program {

namespace {

void printFindings(const QString& title, const std::vector<KcDbFinding>& findings, bool fixed)
{
    const auto belongs = [&](const KcDbFinding& finding) { return finding.fixed == fixed; };
    kcedSay(
        QStringLiteral("%1: %2").arg(title).arg(std::count_if(findings.begin(), findings.end(), belongs)));
    for (const KcDbFinding& finding : findings) {
        if (!belongs(finding))
            continue;
        const QString where = finding.handle
            ? QStringLiteral(" #%1").arg(QString::number(finding.handle, 16).toUpper())
            : QString();
        kcedSay(QStringLiteral("  %1%2: %3").arg(finding.number).arg(where, finding.text));
    }
}

} // namespace

int audit(const Arguments& given)
{
    Arguments arguments = given;
    const auto output = takeOption(arguments, QStringLiteral("-o"));
    if (const QString option = strayOption(arguments); !option.isEmpty())
        return wrongUsage(
            QStringLiteral("audit does not know the option %1, or its value is missing.").arg(option));
    if (arguments.size() != 1)
        return wrongUsage(QStringLiteral("audit takes one drawing."));
    if (output)
        if (const QString reason = whyNotWritable(*output); !reason.isEmpty())
            return fileError(reason);
    KcApDocument* document = openDrawing(arguments.first());
    if (!document)
        return kFileError;

    std::vector<KcDbFinding> findings = document->database().findings();
    {
        KcEdProgress progress(QStringLiteral("Checking"), 100);
        for (KcDbFinding& finding :
             kcdbAudit(document->database(), [&](int percent) { progress.setPosition(percent); }))
            findings.push_back(std::move(finding));
    }
    printFindings(QStringLiteral("Errors"), findings, false);
    printFindings(QStringLiteral("Fixes"), findings, true);
    if (output && !saveDrawingAs(*document, *output))
        return kFileError;
    return kDone;
}

} // namespace program
