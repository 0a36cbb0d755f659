// A page of a PDF file, written directly: curves, texts and definitions stay what they are.
#pragma once

#include "gi/paint/device.h"
#include "gi/paint/pdf_fonts.h"

#include <QBrush>
#include <QHash>

class KcGiPdfDevice : public KcGiDevice {
public:
    struct Options {
        QSizeF paper; ///< millimetres
        double unitsPerMillimetre = 1.0; ///< device units, y downward from the upper left corner
        double hairline = 0.0; ///< device units: the width of thinner lines
        QString title;
    };
    explicit KcGiPdfDevice(const Options& options);

    /// The file with what was drawn.
    QByteArray finish();

    double sagitta() const override { return m_options.unitsPerMillimetre * 0.01; }
    bool keepsCurves() const override { return true; }
    void stroke(const QPainterPath& path, const Pen& pen) override;
    void strokeLines(const std::vector<QLineF>& lines, const Pen& pen) override;
    void fill(const QPainterPath& path, QRgb color) override;
    void fill(const QPainterPath& path, const QBrush& brush) override;
    void mask(const QPainterPath& path) override;
    void dot(QPointF at, QRgb color) override;
    void text(const KcGiTextRun& run, const QTransform& transform, QRgb color) override;
    bool place(const Placement& placement, const DrawDefinition& draw) override;
    void pushClip(const QPainterPath& path) override;
    void popClip() override;

private:
    /// What the page's graphics state holds.
    struct State {
        QRgb stroke = 0xff000000, fill = 0xff000000;
        double width = -1.0;
        int alpha = 255;
    };
    /// A definition as the file keeps it (ISO 32000-1:2008, 8.10), to be placed under any transform.
    struct Form {
        int number = 0; ///< of the object; 0: not made yet
        double scale = 1.0; ///< its units in a unit of the definition
        std::optional<double>
            width; ///< device units: of all its lines, set where it is placed; none: it has no lines
        bool manyWidths = false; ///< its lines have widths of their own, so that it fits one scale only
    };
    struct FormKey {
        const void* definition;
        const void* layer;
        const void* linetype;
        QRgb color;
        int lineWeight;
        int scale; ///< in steps of a thousandth, where that matters; else 0
        friend bool operator==(const FormKey&, const FormKey&) = default;
        friend size_t qHash(const FormKey& key, size_t seed)
        {
            return qHashMulti(
                seed, key.definition, key.layer, key.linetype, key.color, key.lineWeight, key.scale);
        }
    };
    void make(Form& form, const Placement& placement, double scale, const DrawDefinition& draw);
    void setStroke(const Pen& pen);
    void setFill(QRgb color);
    void setAlpha(int alpha);
    void putColor(QRgb color, const char* op);
    int shading(const QGradient& gradient);

    Options m_options;
    KcGiPdfFile m_file;
    KcGiPdfFonts m_fonts;
    QByteArray m_content; ///< of the page, or of the form that is being made
    State m_state;
    std::vector<State> m_saved;
    QHash<int, int> m_alphas; ///< value → number of the state object, written at the end
    std::vector<int> m_shadings; ///< object numbers
    QHash<FormKey, Form> m_forms;
    std::vector<int> m_formNumbers; ///< object numbers
    Form* m_form = nullptr; ///< that is being made
    int m_resources = 0; ///< object number
    int m_decimals; ///< of places
    double m_widthScale = 1.0; ///< units of what is being written in a device unit
};
