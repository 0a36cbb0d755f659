// Names come from the language file; lists of values begin with the first value that a tag has.

#include "frame/tag_names.h"

#include "core/tags.h"
#include "ed/property_names.h"
#include "frame/module.h"

void nameTags()
{
    const struct {
        const QString& application;
        const char* name;
        const char* values = nullptr; ///< key of a list
        int first = 0; ///< the value that its first text stands for
    } rows[] = {
        { tags::entityType, "TAGENTITYTYPE", "TAGENTITYTYPES", 3 },
        { tags::labelType, "TAGLABELTYPE", "TAGLABELTYPES" },
        { tags::page, "TAGPAGE" },
        { tags::itemsPerPage, "TAGITEMSPERPAGE" },
        { tags::pagingType, "TAGPAGINGTYPE" },
        { tags::serialNumber, "TAGSERIALNUMBER" },
        { tags::treeType, "TAGTREETYPE", "TAGTREETYPES" },
        { tags::leafCategory, "TAGLEAFCATEGORY", "TAGLEAFCATEGORIES" },
        { tags::areaName, "TAGAREANAME" },
        { tags::areaProperty, "TAGAREAPROPERTY" },
        { tags::colourBeforeGray, "TAGCOLOURBEFOREGRAY" },
        { tags::insideCurvesRecord, "TAGINSIDECURVES" },
        { tags::linkRecord, "TAGLABELLINK" },
    };
    for (const auto& row : rows) {
        KcEdTagName words{ localised(QLatin1String(row.name)), {} };
        if (row.values) {
            const QStringList values = localised(QLatin1String(row.values)).split(QLatin1Char(','));
            for (int i = 0; i < values.size(); ++i)
                words.values[QString::number(row.first + i)] = values[i];
        }
        kcedNameTag(row.application, std::move(words));
    }
}
