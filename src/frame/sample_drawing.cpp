// Reads the template drawing and writes the labels into it.

#include "frame/sample_drawing.h"

#include "core/application.h"
#include "core/styles.h"
#include "db/block_table_record.h"
#include "db/tables.h"
#include "db/text.h"
#include "dxf/drawing_file.h"
#include "platform/diagnostics.h"

namespace {

// The fonts of the current drawing's style, so that the sample shows the style that is chosen.
void takeTextStyle(KcDbDatabase& sample, const QString& name)
{
    KcDbObjectId chosen;
    if (!GetTextStyleId(name, chosen))
        return;
    const KcDbRead<KcDbTextStyleTableRecord> from(chosen);
    const KcDbWrite<KcDbTextStyleTableRecord> to(
        kcdbFindRecord(sample.textStyleTable(), QStringLiteral("Standard")));
    if (!from || !to)
        return;
    to->data() = from->data();
    to->data().fixedHeight = 0.0;
}

} // namespace

std::shared_ptr<KcDbDatabase> sampleDrawing(const DrawingSettings& settings)
{
    const QString path = dxf::findDrawing(GetAppRoot() + QStringLiteral("Data/DWG/DrawSet.dwg"));
    auto sample = std::make_shared<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    if (const dxf::Result result = dxf::readDrawing(path, *sample); !result.ok) {
        platform::diagnose(result.error);
        return nullptr;
    }
    takeTextStyle(*sample, settings.textStyle);
    const KcDbRead<KcDbBlockTableRecord> space(sample->modelSpace());
    for (const KcDbObjectId id : *space)
        if (const KcDbWrite<KcDbMText> label(id); label) {
            if (label->layer() == u"乔木-标注")
                label->setContents(sampleTreeLabel(settings));
            else if (label->layer() == u"维德-地被标注")
                label->setContents(sampleAreaLabel(settings));
        }
    return sample;
}
