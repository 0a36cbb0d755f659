// Texts as the tests of this folder make them.
#pragma once

#include "db/text.h"

namespace entities_test {

/// In letters ten units high; lines break at the width where one is given.
inline KcDbMText mtext(const QString& contents, double width = 0.0)
{
    KcDbMText text;
    text.data().height = 10.0;
    text.data().width = width;
    text.setContents(contents);
    return text;
}

} // namespace entities_test
