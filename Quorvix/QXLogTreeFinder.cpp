#include "Quorvix/QXLogTreeFinder.h"

#include "Quorvix/QXTaskSteps.h"

#include <algorithm>

namespace {

using Field = QXApiTreeField;

/// How many nodes a step looks at: it takes some ten milliseconds.
constexpr qsizetype stepLength = 200'000;

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

/// Finds a text in UTF-8. Only one with letters beyond ASCII needs a conversion.
class Needle
{
public:
    explicit Needle(const QString &text) : m_text(text), m_utf8(text.toUtf8())
    {
        m_isAscii = m_utf8.size() == text.size();
        std::transform(m_utf8.begin(), m_utf8.end(), m_utf8.begin(), lowered);
    }

    [[nodiscard]] bool isIn(QByteArrayView utf8) const
    {
        if (utf8.size() < m_utf8.size() && m_isAscii)
            return false;
        if (!m_isAscii)
            return QString::fromUtf8(utf8).contains(m_text, Qt::CaseInsensitive);
        return std::search(utf8.begin(), utf8.end(), m_utf8.cbegin(), m_utf8.cend(),
                           [](char c, char sought) { return lowered(c) == sought; }) != utf8.end();
    }

    [[nodiscard]] bool isIn(const Field &field) const
    {
        if (isIn(field.nameUtf8()))
            return true;
        switch (field.kind()) {
        case QXApiValueKind::string:
            return isIn(field.textUtf8());
        case QXApiValueKind::object:
        case QXApiValueKind::array:
            return false;
        default:
            return field.summary().value_or(QString()).contains(m_text, Qt::CaseInsensitive);
        }
    }

private:
    QString m_text;
    QByteArray m_utf8;
    bool m_isAscii = false;
};

/// The node behind another one in the order of an expanded tree, or null.
Field *nodeBehind(Field &field)
{
    if (!field.children().empty())
        return &field.children().front();
    for (Field *node = &field; Field *const parent = node->parent(); node = parent) {
        if (node != &parent->children().back())
            return node + 1;
    }
    return nullptr;
}

/// Whether a node comes before another one in that order.
bool isBefore(const Field &field, const Field &other)
{
    const Field *first = &field;
    const Field *second = &other;
    while (first->depth() > second->depth())
        first = first->parent();
    while (second->depth() > first->depth())
        second = second->parent();
    if (first == second)
        return field.depth() < other.depth();
    for (; first->parent() != second->parent(); second = second->parent())
        first = first->parent();
    return first < second; // siblings are in one array
}

struct Step
{
    std::vector<Field *> found;
    Field *next = nullptr;
};

Step search(Field *first, const Needle &needle, QXTaskSteps steps)
{
    Step step{{}, first};
    for (qsizetype done = 0; step.next && done < stepLength && steps.goOn(done); ++done) {
        if (needle.isIn(*step.next))
            step.found.push_back(step.next);
        step.next = nodeBehind(*step.next);
    }
    return step;
}

} // namespace

void QXLogTreeFinder::setModel(QXLogTreeViewModel *model)
{
    if (m_model == model)
        return;
    m_model = model;
    if (m_model)
        connect(m_model, &QAbstractItemModel::modelReset, this, [this] { restart(); });
    Q_EMIT modelChanged();
}

void QXLogTreeFinder::begin()
{
    m_found.clear();
    m_ends.clear();
    const bool hasTree = m_model && !m_model->rootFields().isEmpty();
    m_next = hasTree && !text().isEmpty() ? m_model->rootFields().constFirst().get() : nullptr;
}

void QXLogTreeFinder::searchFurther()
{
    task().perform(
        m_model->textSize(), {},
        [root = m_model->rootFields().constFirst(), first = m_next, needle = Needle(text())](
            QXTaskProgress *progress) { return search(first, needle, QXTaskSteps(progress)); },
        [this](Step step) {
            m_next = step.next;
            m_ends.push_back(count() + qsizetype(step.found.size()));
            m_found.push_back(std::move(step.found));
            stepDone();
        });
}

QXApiTreeField &QXLogTreeFinder::fieldOf(qsizetype match) const
{
    const auto step = size_t(std::upper_bound(m_ends.begin(), m_ends.end(), match) - m_ends.begin());
    return *m_found[step][size_t(match - (step == 0 ? 0 : m_ends[step - 1]))];
}

const QXApiTreeField *QXLogTreeFinder::currentField() const
{
    const bool hasRow = m_model && m_currentRow >= 0 && m_currentRow < m_model->rowCount();
    return hasRow ? &m_model->field(m_currentRow) : nullptr;
}

qsizetype QXLogTreeFinder::matchAtCursor() const
{
    const QXApiTreeField *const current = currentField();
    qsizetype low = 0;
    for (qsizetype high = current ? count() : 0; low < high;) {
        const qsizetype middle = low + (high - low) / 2;
        if (isBefore(fieldOf(middle), *current))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

bool QXLogTreeFinder::isSelected(qsizetype match) const
{
    return currentField() == &fieldOf(match);
}

void QXLogTreeFinder::show(qsizetype match)
{
    Q_EMIT rowFound(m_model->reveal(fieldOf(match)));
}
