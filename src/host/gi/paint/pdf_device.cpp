// Painting operators of a page (ISO 32000-1:2008, chapter 8). Numbers are short: a device unit is a fraction
// of what a printer resolves, and one decimal of it is enough.

#include "gi/paint/pdf_device.h"

#include "gi/paint/font_stretches.h"

#include <QBrush>
#include <QDateTime>

namespace {

constexpr double kPointsPerMillimetre = 72.0 / 25.4;
constexpr int kDecimals = 1, kFormDecimals = 2; // of places on the page and in forms
constexpr double kLeastForm
    = 1000.0; // units over a form's longer side: it may be placed larger than at first
constexpr double kEven = 1e-4; // slack of the axes of an even transform, as a share of their length
constexpr int kColorDecimals = 3;
constexpr int kTurnDecimals = 6; // of the entries of transforms

void putMatrix(QByteArray& out, const QTransform& m, int decimals)
{
    for (const double entry : { m.m11(), m.m12(), m.m21(), m.m22(), m.dx(), m.dy() })
        kcgiPutNumber(out, entry, decimals);
}

void putPoint(QByteArray& out, QPointF p, int decimals)
{
    kcgiPutNumber(out, p.x(), decimals);
    kcgiPutNumber(out, p.y(), decimals);
}

QByteArray colorArray(const QColor& color)
{
    QByteArray out = "[";
    for (const double part : { color.redF(), color.greenF(), color.blueF() })
        kcgiPutNumber(out, part, kColorDecimals);
    return out + ']';
}

// Between the stops of a gradient colours run evenly (functions of types 2 and 3).
QByteArray colorFunction(const QGradientStops& stops)
{
    QByteArray parts, bounds, domains;
    for (qsizetype i = 0; i + 1 < stops.size(); ++i) {
        parts += "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 " + colorArray(stops[i].second) + " /C1 "
            + colorArray(stops[i + 1].second) + " >> ";
        domains += "0 1 ";
        if (i > 0)
            kcgiPutNumber(bounds, stops[i].first, kTurnDecimals);
    }
    return "<< /FunctionType 3 /Domain [0 1] /Functions [" + parts + "] /Bounds [" + bounds + "] /Encode ["
        + domains + "] >>";
}

} // namespace

KcGiPdfDevice::KcGiPdfDevice(const Options& options)
    : m_options(options)
    , m_resources(m_file.reserve())
    , m_decimals(kDecimals)
{
    const double scale = kPointsPerMillimetre / options.unitsPerMillimetre;
    putMatrix(
        m_content, QTransform(scale, 0, 0, -scale, 0, options.paper.height() * kPointsPerMillimetre), 6);
    m_content += "cm\n1 J 1 j\n";
    QPainterPath sheet;
    sheet.addRect(QRectF(QPointF(0, 0), options.paper * options.unitsPerMillimetre));
    kcgiPutPath(m_content, sheet, kDecimals);
    m_content += "W n\n";
}

// State.

void KcGiPdfDevice::putColor(QRgb color, const char* op)
{
    for (const int part : { qRed(color), qGreen(color), qBlue(color) })
        kcgiPutNumber(m_content, part / 255.0, kColorDecimals);
    m_content += op;
}

void KcGiPdfDevice::setAlpha(int alpha)
{
    if (alpha == m_state.alpha)
        return;
    if (!m_alphas.contains(alpha))
        m_alphas.insert(alpha, m_file.reserve());
    m_content += "/A" + QByteArray::number(alpha) + " gs\n";
    m_state.alpha = alpha;
}

void KcGiPdfDevice::setStroke(const Pen& pen)
{
    setAlpha(qAlpha(pen.color));
    if (const QRgb color = pen.color | 0xff000000u; color != m_state.stroke) {
        putColor(color, "RG\n");
        m_state.stroke = color;
    }
    const double width = std::max(pen.width, m_options.hairline);
    if (m_form && !m_form->manyWidths) {
        // One width for all is set where the form is placed, and does not grow with it.
        m_form->manyWidths = m_form->width && *m_form->width != width;
        m_form->width = width;
    } else if (width != m_state.width) {
        kcgiPutNumber(m_content, width * m_widthScale, 2);
        m_content += "w\n";
        m_state.width = width;
    }
}

void KcGiPdfDevice::setFill(QRgb color)
{
    setAlpha(qAlpha(color));
    if (const QRgb opaque = color | 0xff000000u; opaque != m_state.fill) {
        putColor(opaque, "rg\n");
        m_state.fill = opaque;
    }
}

// Drawing.

void KcGiPdfDevice::stroke(const QPainterPath& path, const Pen& pen)
{
    if (path.isEmpty())
        return;
    setStroke(pen);
    kcgiPutPath(m_content, path, m_decimals);
    m_content += "S\n";
}

void KcGiPdfDevice::strokeLines(const std::vector<QLineF>& lines, const Pen& pen)
{
    if (lines.empty())
        return;
    setStroke(pen);
    for (const QLineF& line : lines) {
        putPoint(m_content, line.p1(), m_decimals);
        m_content += "m ";
        putPoint(m_content, line.p2(), m_decimals);
        m_content += "l\n";
    }
    m_content += "S\n";
}

void KcGiPdfDevice::fill(const QPainterPath& path, QRgb color)
{
    if (path.isEmpty())
        return;
    setFill(color);
    kcgiPutPath(m_content, path, m_decimals);
    m_content += path.fillRule() == Qt::WindingFill ? "f\n" : "f*\n";
}

void KcGiPdfDevice::fill(const QPainterPath& path, const QBrush& brush)
{
    if (path.isEmpty())
        return;
    if (!brush.gradient())
        return fill(path, brush.color().rgba());
    const QGradientStops stops = brush.gradient()->stops();
    setAlpha(stops.isEmpty() ? 255 : stops.first().second.alpha());
    m_content += "q\n";
    kcgiPutPath(m_content, path, m_decimals);
    m_content += "W* n /S" + QByteArray::number(shading(*brush.gradient())) + " sh\nQ\n";
}

int KcGiPdfDevice::shading(const QGradient& gradient)
{
    QByteArray place;
    const char* type = "2";
    if (gradient.type() == QGradient::RadialGradient) {
        const auto& radial = static_cast<const QRadialGradient&>(gradient);
        type = "3";
        putPoint(place, radial.focalPoint(), m_decimals);
        kcgiPutNumber(place, 0.0, 0);
        putPoint(place, radial.center(), m_decimals);
        kcgiPutNumber(place, radial.radius(), m_decimals);
    } else {
        const auto& linear = static_cast<const QLinearGradient&>(gradient);
        putPoint(place, linear.start(), m_decimals);
        putPoint(place, linear.finalStop(), m_decimals);
    }
    const int number = m_file.reserve();
    m_file.write(
        number,
        QByteArray("<< /ShadingType ") + type + " /ColorSpace /DeviceRGB /Coords [" + place
            + "] /Extend [true true] /Function " + colorFunction(gradient.stops()) + " >>");
    m_shadings.push_back(number);
    return int(m_shadings.size()) - 1;
}

void KcGiPdfDevice::mask(const QPainterPath& path)
{
    fill(path, 0xffffffff);
}

void KcGiPdfDevice::dot(QPointF at, QRgb color)
{
    strokeLines({ { at, at } }, { color, 0.0 });
}

void KcGiPdfDevice::text(const KcGiTextRun& run, const QTransform& transform, QRgb color)
{
    setFill(color);
    double x = 0.0; // along the base line, in heights of capitals
    kcgiForFamilies(run.style, run.text, [&](const QString& family, const QString& stretch) {
        const double em = KcGi::emOfCapHeight(family, run.style.bold, run.style.italic);
        QByteArray codes;
        int font = -1;
        double from = x;
        const auto flush = [&] {
            if (codes.isEmpty())
                return;
            const double size = em * run.height;
            m_content += "BT /F" + QByteArray::number(font) + " 1 Tf ";
            putMatrix(
                m_content, QTransform(size, 0, 0, size, from * run.height, 0) * transform, kTurnDecimals - 2);
            m_content += "Tm <" + std::exchange(codes, {}).toHex() + "> Tj ET\n";
        };
        for (const char32_t character : stretch.toUcs4()) {
            const KcGiPdfFonts::Code code = m_fonts.code(run.style, family, character);
            if (code.font != font) {
                flush();
                font = code.font;
                from = x;
            }
            codes += char(code.code);
            x += code.advance * em;
        }
        flush();
    });
}

// Definitions.

bool KcGiPdfDevice::place(const Placement& placement, const DrawDefinition& draw)
{
    const QTransform& m = placement.linear;
    const double scale = std::hypot(m.m11(), m.m12()), up = std::hypot(m.m21(), m.m22());
    const bool isEven = std::abs(scale - up) <= kEven * scale
        && std::abs(m.m11() * m.m21() + m.m12() * m.m22()) <= kEven * scale * up;
    // Definitions in definitions are written out there. Of those as large as the sheet only what is seen is
    // written.
    const QSizeF sheet = m_options.paper * m_options.unitsPerMillimetre;
    const QRectF seen = m.mapRect(placement.box);
    if (m_form || !isEven || !(scale > 0.0) || seen.width() > sheet.width() / 2
        || seen.height() > sheet.height() / 2)
        return false;
    FormKey key{ placement.definition, placement.layer,      placement.linetype,
                 placement.color,      placement.lineWeight, 0 };
    Form* form = &m_forms[key];
    if (form->number == 0)
        make(*form, placement, scale, draw);
    if (form->manyWidths) {
        constexpr double kSteps = 1000.0;
        key.scale = int(std::lround(std::log(scale) * kSteps));
        form = &m_forms[key];
        form->manyWidths = true;
        if (form->number == 0)
            make(*form, placement, scale, draw);
    }
    const double shrink = 1.0 / form->scale;
    m_content += "q ";
    for (const double entry : { m.m11(), m.m12(), m.m21(), m.m22() })
        kcgiPutNumber(m_content, entry * shrink, kTurnDecimals);
    putPoint(m_content, placement.origin, m_decimals);
    m_content += "cm ";
    if (form->width && !form->manyWidths) {
        kcgiPutNumber(m_content, *form->width / (scale * shrink), 2);
        m_content += "w ";
    }
    m_content += "/X" + QByteArray::number(form->number) + " Do Q\n";
    return true;
}

// A form with lines of many widths is made twice: the first time finds that out, and stays unused.
void KcGiPdfDevice::make(Form& form, const Placement& placement, double scale, const DrawDefinition& draw)
{
    const double size = std::max(placement.box.width(), placement.box.height());
    form.scale = std::max(scale, kLeastForm / size);
    QByteArray page = std::exchange(m_content, {});
    // Nothing is known of the state in which the form will be drawn.
    const State before = std::exchange(m_state, { 0, 0, -1.0, -1 });
    const std::vector<State> saved = std::exchange(m_saved, {});
    m_form = &form;
    m_decimals = kFormDecimals;
    m_widthScale = form.scale / scale;
    const bool knowsWidths = form.manyWidths;
    draw(*this, QTransform::fromScale(form.scale, form.scale));
    m_form = nullptr;
    m_decimals = kDecimals;
    m_widthScale = 1.0;
    m_state = before;
    m_saved = saved;
    const QByteArray drawn = std::exchange(m_content, std::move(page));
    form.number = m_file.reserve();
    if (form.manyWidths && !knowsWidths) {
        m_file.write(form.number, "null");
        return;
    }
    // Wide lines and texts may stand out of the definition's box.
    const QRectF box = QTransform::fromScale(form.scale, form.scale).mapRect(placement.box);
    const double margin = std::max(box.width(), box.height());
    QByteArray entries = "/Type /XObject /Subtype /Form /BBox [";
    for (const double side :
         { box.left() - margin, box.top() - margin, box.right() + margin, box.bottom() + margin })
        kcgiPutNumber(entries, side, 0);
    m_file.writeStream(form.number, entries + "] /Resources " + KcGiPdfFile::reference(m_resources), drawn);
    m_formNumbers.push_back(form.number);
}

void KcGiPdfDevice::pushClip(const QPainterPath& path)
{
    m_saved.push_back(m_state);
    m_content += "q\n";
    if (path.isEmpty())
        m_content += "0 0 m 0 0 l h\n"; // nothing is seen
    else
        kcgiPutPath(m_content, path, m_decimals);
    m_content += path.fillRule() == Qt::WindingFill ? "W n\n" : "W* n\n";
}

void KcGiPdfDevice::popClip()
{
    m_content += "Q\n";
    m_state = m_saved.back();
    m_saved.pop_back();
}

// The file.

QByteArray KcGiPdfDevice::finish()
{
    const int catalog = m_file.reserve(), pages = m_file.reserve(), page = m_file.reserve(),
              content = m_file.reserve(), info = m_file.reserve();
    QByteArray resources = "/Font << " + m_fonts.write(m_file) + ">> /ExtGState << ";
    for (auto alpha = m_alphas.constBegin(); alpha != m_alphas.constEnd(); ++alpha) {
        QByteArray share;
        kcgiPutNumber(share, alpha.key() / 255.0, kColorDecimals);
        m_file.write(alpha.value(), "<< /CA " + share + "/ca " + share + ">>");
        resources
            += "/A" + QByteArray::number(alpha.key()) + ' ' + KcGiPdfFile::reference(alpha.value()) + ' ';
    }
    resources += ">> /Shading << ";
    for (size_t i = 0; i < m_shadings.size(); ++i)
        resources
            += "/S" + QByteArray::number(qsizetype(i)) + ' ' + KcGiPdfFile::reference(m_shadings[i]) + ' ';
    resources += ">> /XObject << ";
    for (const int form : m_formNumbers)
        resources += "/X" + QByteArray::number(form) + ' ' + KcGiPdfFile::reference(form) + ' ';
    m_file.write(m_resources, "<< " + resources + ">> >>");
    QByteArray box = "[0 0 ";
    kcgiPutNumber(box, m_options.paper.width() * kPointsPerMillimetre, 3);
    kcgiPutNumber(box, m_options.paper.height() * kPointsPerMillimetre, 3);
    box += ']';
    m_file.writeStream(content, {}, m_content);
    m_file.write(
        page,
        "<< /Type /Page /Parent " + KcGiPdfFile::reference(pages) + " /MediaBox " + box + " /Contents "
            + KcGiPdfFile::reference(content) + " /Resources " + KcGiPdfFile::reference(m_resources) + " >>");
    m_file.write(pages, "<< /Type /Pages /Count 1 /Kids [" + KcGiPdfFile::reference(page) + "] >>");
    m_file.write(catalog, "<< /Type /Catalog /Pages " + KcGiPdfFile::reference(pages) + " >>");
    m_file.write(
        info,
        "<< /Creator " + KcGiPdfFile::text(QStringLiteral("Verdelis")) + " /Title "
            + KcGiPdfFile::text(m_options.title) + " /CreationDate (D:"
            + QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddhhmmss")).toLatin1()
            + "Z) >>");
    return m_file.finish(catalog, info);
}
