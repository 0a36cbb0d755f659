// Overrides in extended data, then the style's record, then its groups in the file.

#include "db/dim_variables.h"

#include "db/database.h"
#include "db/tables.h"

KcDbDimVariables::KcDbDimVariables(const KcDbObject& entity, KcDbObjectId style)
{
    if (const KcDbValueList* xdata = entity.xdataOf(QStringLiteral("ACAD"))) {
        // "DSTYLE" { code value code value … }
        auto at = std::find_if(xdata->begin(), xdata->end(), [](const KcDbTypedValue& v) {
            return v.code == 1000 && v.text() == QLatin1String("DSTYLE");
        });
        for (; at != xdata->end(); ++at) {
            if (at->code == 1002 && at->text() == QLatin1String("}"))
                break;
            if (at->code != 1070 || at + 1 == xdata->end())
                continue;
            const int code = int(at->integer());
            ++at;
            m_overrides.push_back({ code, at->value });
        }
    }
    const KcDbRead<KcDbDimStyleTableRecord> record(style);
    if (!record)
        return;
    const auto& d = record->data();
    m_style = { { kScale, d.overallScale },
                { kArrowSize, d.arrowSize },
                { kTextHeight, d.textHeight },
                { kGap, d.gap },
                { kTextStyle, d.textStyle } };
    if (const KcDbDrawingFile* file = record->database()->file())
        for (KcDbTypedValue& value : file->values(*record))
            m_style.push_back(std::move(value));
}

double KcDbDimVariables::real(int code, double other) const
{
    return KcDbGroupValues(m_overrides).real(code, KcDbGroupValues(m_style).real(code, other));
}

int64_t KcDbDimVariables::integer(int code, int64_t other) const
{
    return KcDbGroupValues(m_overrides).integer(code, KcDbGroupValues(m_style).integer(code, other));
}

KcDbObjectId KcDbDimVariables::id(int code) const
{
    const KcDbGroupValues own(m_overrides);
    return own.find(code) ? own.id(code) : KcDbGroupValues(m_style).id(code);
}

QString KcDbDimVariables::text(int code) const
{
    const KcDbGroupValues own(m_overrides);
    return own.find(code) ? own.text(code) : KcDbGroupValues(m_style).text(code);
}

double KcDbDimVariables::scale() const
{
    const double value = real(kScale, 1.0);
    return value > 0.0 && std::isfinite(value) ? value
                                               : 1.0; // 0: by the layout's scale, which is 1 in the model
}

QString KcDbDimVariables::arrowName(int reference, int name) const
{
    const QString block = kcdbRecordName(id(reference));
    return block.isEmpty() ? text(name) : block;
}
