// Filter lists as trees of conditions, with what many entities share (types, layers) decided once.

#include "ed/selection_filter.h"

#include "db/curves.h"
#include "db/polyline.h"
#include "db/symbol_table.h"
#include "ed/filter_values.h"

namespace {

using Value = KcDbTypedValue::Value;

// "<", ">=", "&", … of the group -4; points take one for each coordinate, separated by commas.
bool compare(const QString& relation, double a, double b)
{
    if (relation == u"*")
        return true;
    if (relation == u"=")
        return std::abs(a - b) <= KcGeContext::gTol.equalVector * std::max({ 1.0, std::abs(a), std::abs(b) });
    if (relation == u"!=" || relation == u"/=" || relation == u"<>")
        return !compare(QStringLiteral("="), a, b);
    if (relation == u"<")
        return a < b;
    if (relation == u"<=")
        return a <= b;
    if (relation == u">")
        return a > b;
    if (relation == u">=")
        return a >= b;
    if (relation == u"&")
        return (int64_t(a) & int64_t(b)) != 0;
    if (relation == u"&=")
        return (int64_t(a) & int64_t(b)) == int64_t(b);
    return false;
}

bool isRelation(const QString& text)
{
    static const QStringList known{ QStringLiteral("*"),  QStringLiteral("="),  QStringLiteral("!="),
                                    QStringLiteral("/="), QStringLiteral("<>"), QStringLiteral("<"),
                                    QStringLiteral("<="), QStringLiteral(">"),  QStringLiteral(">="),
                                    QStringLiteral("&"),  QStringLiteral("&=") };
    const QStringList parts = text.split(QLatin1Char(','));
    return parts.size() <= 3
        && std::all_of(parts.begin(), parts.end(), [](const QString& part) { return known.contains(part); });
}

std::optional<double> number(const Value& value)
{
    if (const auto* integer = std::get_if<int64_t>(&value))
        return double(*integer);
    if (const auto* real = std::get_if<double>(&value))
        return *real;
    return {};
}

bool comparePoints(const QString& relation, KcGePoint3d a, KcGePoint3d b)
{
    QStringList parts = relation.split(QLatin1Char(','));
    while (parts.size() < 3)
        parts.append(parts.size() == 1 && relation == u"=" ? QStringLiteral("=") : QStringLiteral("*"));
    return compare(parts[0], a.x, b.x) && compare(parts[1], a.y, b.y) && compare(parts[2], a.z, b.z);
}

bool compareValues(const QString& relation, const Value& a, const Value& b)
{
    if (const auto x = number(a), y = number(b); x && y)
        return compare(relation, *x, *y);
    const auto* p = std::get_if<KcGePoint3d>(&a);
    const auto* q = std::get_if<KcGePoint3d>(&b);
    return p && q && comparePoints(relation, *p, *q);
}

struct XDataFilter {
    KcEdWildCard application;
    KcDbValueList values;

    // The values in their order; others may stand between them.
    bool passes(const KcDbEntity& entity) const
    {
        for (const KcDbXData& data : entity.xdata()) {
            if (!application.matches(kcdbRecordName(data.application)))
                continue;
            size_t next = 0;
            for (size_t i = 0; i < data.values.size() && next < values.size(); ++i)
                if (matches(data.values[i], values[next]))
                    ++next;
            if (next == values.size())
                return true;
        }
        return false;
    }
    static bool matches(const KcDbTypedValue& has, const KcDbTypedValue& wanted)
    {
        if (has.code != wanted.code)
            return false;
        if (const auto* text = std::get_if<QString>(&wanted.value))
            return KcEdWildCard(*text).matches(has.text());
        return compareValues(QStringLiteral("="), has.value, wanted.value);
    }
};

bool isPolyline(const KcDbEntity& entity)
{
    return entity.isKindOf(KcDbPolyline::desc()) || entity.isKindOf(KcDb2dPolyline::desc());
}

} // namespace

struct KcEdCompiledFilter::Node {
    enum class Kind { And, Or, Xor, Not, Text, Number, Group102, XData };
    Kind kind = Kind::And;
    std::vector<std::unique_ptr<Node>> children;

    int code = 0;
    std::optional<KcEdWildCard> wildCard;
    Value value;
    QString relation;
    std::optional<XDataFilter> xdata;
    // What was decided for a class, a layer, a block before; most entities share few of them.
    mutable std::unordered_map<const void*, bool> decided;
    mutable const void* lastKey = nullptr;
    mutable bool lastDecision = false;

    bool passes(const KcDbEntity& entity) const
    {
        const auto passesChild = [&](const auto& child) { return child->passes(entity); };
        switch (kind) {
        case Kind::And:
            return std::all_of(children.begin(), children.end(), passesChild);
        case Kind::Or:
            return std::any_of(children.begin(), children.end(), passesChild);
        case Kind::Xor:
            return std::count_if(children.begin(), children.end(), passesChild) % 2 == 1;
        case Kind::Not:
            return std::none_of(children.begin(), children.end(), passesChild);
        case Kind::Text:
            return passesText(entity);
        case Kind::Number:
            return passesNumber(entity);
        case Kind::Group102:
            return wildCard->matches(QStringLiteral("{ACAD_REACTORS"))
                ? !entity.reactors().empty()
                : entity.extensionDictionary().isResident();
        case Kind::XData:
            return xdata->passes(entity);
        }
        return false;
    }

    bool passesText(const KcDbEntity& entity) const
    {
        const void* key = nullptr;
        if (code == 0)
            key = &kcedEntityTypeName(entity); // one text for each kind
        else if (code == 8)
            key = entity.layerId().stub();
        if (!key)
            return decideText(entity);
        if (key == lastKey)
            return lastDecision;
        const auto known = decided.find(key);
        lastDecision = known != decided.end() ? known->second : (decided[key] = decideText(entity));
        lastKey = key;
        return lastDecision;
    }

    bool decideText(const KcDbEntity& entity) const
    {
        const auto has = kcedFilterValue(entity, code);
        const auto* text = has ? std::get_if<QString>(&*has) : nullptr;
        return text && wildCard->matches(*text);
    }

    bool passesNumber(const KcDbEntity& entity) const
    {
        const auto has = kcedFilterValue(entity, code);
        if (!has)
            return false;
        if (code == 70 && relation.isEmpty() && isPolyline(entity)) {
            // Bits: a closed polyline passes for 1 whatever its other flags, an open one for 0.
            const int64_t flags = std::get<int64_t>(*has);
            const int64_t wanted = int64_t(number(value).value_or(0.0));
            return wanted == 0 ? (flags & 1) == 0 : (flags & wanted) == wanted;
        }
        return compareValues(relation.isEmpty() ? QStringLiteral("=") : relation, *has, value);
    }
};

namespace {

using Node = KcEdCompiledFilter::Node;

// Reads a filter list; every function leaves `at` behind what it read.
class Compiler {
public:
    explicit Compiler(const KcEdFilter& list)
        : m_list(list)
    {
    }

    QString error;

    std::unique_ptr<Node> group(Node::Kind kind, const QString& end)
    {
        auto node = std::make_unique<Node>();
        node->kind = kind;
        while (m_at < m_list.size() && error.isEmpty()) {
            const KcDbTypedValue& item = m_list[m_at];
            if (item.code != -4) {
                node->children.push_back(condition({}));
                continue;
            }
            const QString word = item.text().trimmed().toUpper();
            ++m_at;
            if (word == end)
                return node;
            if (isRelation(word)) {
                if (m_at == m_list.size())
                    error = QStringLiteral("The relation %1 at the end of the filter compares nothing.")
                                .arg(word);
                else
                    node->children.push_back(condition(word));
            } else if (word == u"<AND") {
                node->children.push_back(group(Node::Kind::And, QStringLiteral("AND>")));
            } else if (word == u"<OR") {
                node->children.push_back(group(Node::Kind::Or, QStringLiteral("OR>")));
            } else if (word == u"<XOR") {
                node->children.push_back(group(Node::Kind::Xor, QStringLiteral("XOR>")));
            } else if (word == u"<NOT") {
                node->children.push_back(group(Node::Kind::Not, QStringLiteral("NOT>")));
            } else {
                error = QStringLiteral("The filter holds an unknown operator %1.").arg(word);
            }
        }
        if (error.isEmpty() && !end.isEmpty())
            error = QStringLiteral("The filter lacks %1.").arg(end);
        return node;
    }

private:
    std::unique_ptr<Node> condition(const QString& relation)
    {
        const KcDbTypedValue& item = m_list[m_at];
        if (item.code == -3 || item.code >= 1000)
            return extendedData();
        ++m_at;
        auto node = std::make_unique<Node>();
        node->code = item.code;
        node->value = item.value;
        node->relation = relation;
        const auto* text = std::get_if<QString>(&item.value);
        if (!text) {
            node->kind = Node::Kind::Number;
            return node;
        }
        node->wildCard.emplace(*text);
        node->kind = item.code == 102 ? Node::Kind::Group102 : Node::Kind::Text;
        if (item.code == 102 && !node->wildCard->matches(QStringLiteral("{ACAD_REACTORS"))
            && !node->wildCard->matches(QStringLiteral("{ACAD_XDICTIONARY")))
            error = QStringLiteral("The filter asks for an unknown group %1.").arg(*text);
        if (relation == u"!=" || relation == u"/=" || relation == u"<>") {
            auto negation = std::make_unique<Node>();
            negation->kind = Node::Kind::Not;
            negation->children.push_back(std::move(node));
            return negation;
        }
        return node;
    }

    // -3, optionally with the application's name as its value; then 1001 and values, for each application.
    std::unique_ptr<Node> extendedData()
    {
        auto all = std::make_unique<Node>();
        while (m_at < m_list.size() && (m_list[m_at].code == -3 || m_list[m_at].code >= 1000)) {
            const KcDbTypedValue& item = m_list[m_at++];
            if (item.code == 1001 || (item.code == -3 && !item.text().isEmpty())) {
                auto node = std::make_unique<Node>();
                node->kind = Node::Kind::XData;
                node->xdata.emplace(XDataFilter{ KcEdWildCard(item.text()), {} });
                all->children.push_back(std::move(node));
            } else if (item.code != -3) {
                if (all->children.empty()) {
                    error = QStringLiteral("The filter holds extended data without an application.");
                    return all;
                }
                all->children.back()->xdata->values.push_back(item);
            }
        }
        return all;
    }

    const KcEdFilter& m_list;
    size_t m_at = 0;
};

} // namespace

KcEdCompiledFilter::KcEdCompiledFilter(const KcEdFilter& filter)
{
    Compiler compiler(filter);
    m_root = compiler.group(Node::Kind::And, {});
    m_error = compiler.error;
}

KcEdCompiledFilter::~KcEdCompiledFilter() = default;

bool KcEdCompiledFilter::passes(const KcDbEntity& entity) const
{
    return m_error.isEmpty() && m_root->passes(entity);
}
