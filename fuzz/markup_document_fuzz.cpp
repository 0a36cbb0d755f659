// Random bytes as a markup document: reading, walking and editing must neither crash nor let the index and
// the text part from each other.
#include "exchange/markup_document.h"

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Tag names and depth of every element, in document order.
QString outline(MarkupDocument& document)
{
    QString text;
    document.ResetPos();
    while (true) {
        if (document.FindElem()) {
            text += document.GetTagName() + u'(';
            document.GetData();
            document.GetAttrib(u"Name"_qs);
            document.IntoElem();
        } else if (document.OutOfElem())
            text += u')';
        else
            return text;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    MarkupDocument document;
    document.SetBytes({ reinterpret_cast<const char*>(data), size });
    const bool wellFormed = MarkupDocument(document).SetDoc(document.GetDoc());
    outline(document);

    document.ResetPos();
    for (size_t i = 0; i < std::min<size_t>(size, 64); ++i) {
        switch (data[i] % 8) {
        case 0:
            document.IntoElem();
            break;
        case 1:
            document.OutOfElem();
            break;
        case 2:
            document.SetAttrib(u"Name"_qs, u"<\"'&>"_qs);
            break;
        case 3:
            document.AddElem(
                u"Item"_qs, i % 2 ? u"]]>香"_qs : QString(), data[i] & 8 ? MarkupDocument::CData : 0);
            break;
        case 4:
            document.AddChildElem(u"BlockName"_qs, u"a&b"_qs);
            break;
        case 5:
            document.RemoveElem();
            break;
        case 6:
            document.FindChildElem();
            document.SetChildData(u"x < y"_qs);
            break;
        default:
            document.FindElem();
        }
    }
    const QString after = outline(document);
    MarkupDocument again;
    const bool stillWellFormed = again.SetDoc(document.GetDoc());
    // Behind an element without end tag an edit may change what the text means; in a sound document it may
    // not.
    if (wellFormed && stillWellFormed)
        require(outline(again) == after);
    document.GetBytes();
    return 0;
}
