#include "Quorvix/QXApiTree.h"

#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONReader.h"
#include "JSON/StableSort.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

using namespace Quorvix;

namespace {

/// A member of the object that is being read.
struct Member
{
    /// The beginning of the name as a number, in the order of the names; see orderOf().
    quint64 order;
    const char *name;
    /// The place of the value on the tape.
    size_t value;
};

std::string_view nameOf(const Member &member) noexcept
{
    const QByteArrayView name = JSONTape::view(member.name);
    return {name.data(), size_t(name.size())};
}

bool isLess(const Member &a, const Member &b) noexcept
{
    return a.order != b.order ? a.order < b.order : nameOf(a) < nameOf(b);
}

bool isSame(const Member &a, const Member &b) noexcept
{
    return a.order == b.order && nameOf(a) == nameOf(b);
}

/// The bytes of a name from @p skipped on, as far as a machine word holds them. Names that have the same
/// beginning are in the order of these numbers, unless the numbers are equal.
quint64 orderOf(QByteArrayView name, qsizetype skipped) noexcept
{
    constexpr qsizetype wordSize = sizeof(quint64);
    static_assert(JSONTape::readable >= wordSize);
    const qsizetype left = name.size() - skipped;
    if (left >= wordSize)
        return qFromBigEndian<quint64>(name.data() + skipped);
    if (skipped > 0) {
        quint64 word = 0;
        std::memcpy(&word, name.data() + skipped, size_t(left));
        return qFromBigEndian(word);
    }
    return left == 0 ? 0 : qFromBigEndian<quint64>(name.data()) & (~quint64(0) << 8 * (wordSize - left));
}

/// The size of the beginning that all names have.
qsizetype commonBeginning(const std::vector<Member> &members) noexcept
{
    const QByteArrayView first = JSONTape::view(members.front().name);
    qsizetype size = first.size();
    for (const Member &member : members) {
        const QByteArrayView name =
            JSONTape::view(member.name).first(std::min(size, JSONTape::view(member.name).size()));
        size = std::mismatch(name.begin(), name.end(), first.begin()).first - name.begin();
    }
    return size;
}

} // namespace

/// Builds the tree with an explicit stack instead of recursion, so that deep nesting cannot overflow the
/// call stack. Reads the tape in its order, and makes the nodes in the order of the tree.
class QXApiTree::Builder final
{
public:
    Builder(QXApiTree &tree, const JSONTape &tape, QXTaskSteps &steps)
        : m_tree(tree), m_tape(tape), m_steps(steps)
    {
    }

    /// False once the task is cancelled. The tree is incomplete then.
    bool build()
    {
        setValue(m_tree.m_root, JSONTape::root);
        addChildren(m_tree.m_root);
        while (!m_levels.empty() && m_goesOn) {
            Level &level = m_levels.back();
            QXApiTreeField *const container = std::find_if(
                level.next, level.end, [](const QXApiTreeField &node) { return node.isContainer(); });
            level.next = container == level.end ? container : container + 1;
            if (container == level.end)
                m_levels.pop_back();
            else
                addChildren(*container);
        }
        return m_goesOn;
    }

private:
    using Form = QXApiTreeField::Form;

    /// The children of a node, and the first of them that may be a container without children yet.
    struct Level
    {
        QXApiTreeField *next;
        QXApiTreeField *end;
    };

    /// Returns the place behind the value. A container knows its place until it has its children.
    size_t setValue(QXApiTreeField &node, size_t place)
    {
        size_t next = place + 1;
        switch (m_tape.type(place)) {
        case JSONTape::Object:
        case JSONTape::Array:
            node.m_form = m_tape.type(place) == JSONTape::Object ? Form::Object : Form::Array;
            node.m_uint64 = place;
            m_hasContainer = true;
            ++m_done;
            next = m_tape.after(place);
            break;
        case JSONTape::String:
            node.m_form = Form::String;
            node.m_text = m_tape.stored(place);
            break;
        case JSONTape::Int64:
            node.m_form = Form::Int64;
            node.m_uint64 = m_tape.bits(place);
            ++m_done, ++next;
            break;
        case JSONTape::UInt64:
            node.m_form = Form::UInt64;
            node.m_uint64 = m_tape.bits(place);
            ++m_done, ++next;
            break;
        case JSONTape::Double:
            setDouble(node, place);
            ++m_done, ++next;
            break;
        case JSONTape::True:
            node.m_form = Form::True;
            break;
        case JSONTape::False:
            node.m_form = Form::False;
            break;
        default:
            node.m_form = Form::Null;
            break;
        }
        m_goesOn = m_steps.goOn(++m_done);
        return next;
    }

    void setDouble(QXApiTreeField &node, size_t place)
    {
        const QByteArrayView wide = m_tape.wideNumber(place);
        if (wide.isEmpty()) {
            node.m_form = Form::Double;
            node.m_uint64 = m_tape.bits(place);
            return;
        }
        // The parser accepts no text of 4 GB or more, so the size fits.
        node.m_form = Form::WideNumber;
        node.m_text = wide.data();
        node.m_size = quint32(wide.size());
    }

    void addChildren(QXApiTreeField &node)
    {
        if (!node.isContainer())
            return;
        m_hasContainer = false;
        const size_t place = node.m_uint64;
        if (node.m_form == Form::Array)
            addElements(node, place);
        else
            addMembers(node, place);
        if (m_hasContainer)
            m_levels.push_back({node.m_children, node.m_children + node.m_size});
    }

    void addElements(QXApiTreeField &node, size_t array)
    {
        QXApiTreeField *child = allocateChildren(node, countOf(array));
        const size_t end = m_tape.lastOf(array);
        for (size_t at = array + 1; at < end && m_goesOn;)
            at = setValue(makeChild(child++, node), at);
    }

    void addMembers(QXApiTreeField &node, size_t object)
    {
        readMembers(object);
        if (!sortMembers())
            return;
        QXApiTreeField *child = allocateChildren(node, m_members.size());
        for (const Member &member : m_members) {
            ++m_done;
            QXApiTreeField &made = makeChild(child++, node);
            made.m_name = member.name;
            setValue(made, member.value);
            if (!m_goesOn)
                return;
        }
    }

    void readMembers(size_t object)
    {
        m_members.clear();
        m_members.reserve(m_tape.keptCount(object));
        const size_t end = m_tape.lastOf(object);
        for (size_t at = object + 1; at < end; at = m_tape.after(at + 1)) {
            const char *const name = m_tape.stored(at);
            m_members.push_back({orderOf(JSONTape::view(name), 0), name, at + 1});
        }
    }

    /// Sorts the members by name. If several members have the same name, only the last one is kept. False
    /// once the task is cancelled.
    bool sortMembers()
    {
        constexpr size_t few = 64;
        if (m_members.size() > few) {
            const qsizetype skipped = commonBeginning(m_members);
            for (Member &member : m_members)
                member.order = orderOf(JSONTape::view(member.name), skipped);
        }
        m_goesOn = stableSort(m_members.begin(), m_members.end(), isLess, [this] { return m_steps.goOn(); });
        // std::unique() keeps the first of several, which is the last one from behind.
        const auto kept = std::unique(m_members.rbegin(), m_members.rend(), isSame).base();
        m_members.erase(m_members.begin(), kept);
        return m_goesOn;
    }

    [[nodiscard]] size_t countOf(size_t array) const
    {
        const size_t kept = m_tape.keptCount(array);
        if (kept < JSONTape::saturatedCount)
            return kept;
        size_t count = 0;
        for (size_t at = array + 1; at < m_tape.lastOf(array); at = m_tape.after(at))
            ++count;
        return count;
    }

    /// Makes room for the children. makeChild() makes each of them.
    QXApiTreeField *allocateChildren(QXApiTreeField &node, size_t count)
    {
        node.m_size = quint32(count);
        node.m_children = count > 0 ? m_tree.m_nodes.allocate(count) : nullptr;
        m_tree.nodeCount += qsizetype(count);
        return node.m_children;
    }

    static QXApiTreeField &makeChild(QXApiTreeField *place, QXApiTreeField &parent)
    {
        auto *child = new (place) QXApiTreeField;
        child->m_parent = &parent;
        child->m_depth = quint16(parent.m_depth + 1);
        return *child;
    }

    QXApiTree &m_tree;
    const JSONTape &m_tape;
    QXTaskSteps &m_steps;
    qsizetype m_done = 0;
    bool m_goesOn = true;
    bool m_hasContainer = false;
    /// The nodes whose children are not all complete, from the root down.
    std::vector<Level> m_levels;
    /// The members of the object that is being read. It is a data member so that its memory is reused.
    std::vector<Member> m_members;
};

std::shared_ptr<QXApiTreeField> QXApiTree::make(JSONDocument document, QXTaskSteps steps)
{
    static_assert(JSONReader::maximumDepth <= std::numeric_limits<quint16>::max());
    const std::shared_ptr<QXApiTree> tree(new QXApiTree(JSONTape::fewestValues(document.tape().size())));
    tree->m_root.m_owner = tree.get();
    if (!Builder(*tree, document.tape(), steps).build())
        return nullptr;
    tree->m_texts = JSONDocument::keepTexts(std::move(document));
    return {tree, &tree->m_root};
}

QXApiTreeField *QXApiTree::Arena::allocate(size_t count)
{
    // Freeing a tree frees its chunks only, however many nodes there are.
    static_assert(std::is_trivially_destructible_v<QXApiTreeField>);
    const auto addChunk = [this](size_t size) {
        const LargeMemory::Block &chunk = m_chunks.emplace_back(size * sizeof(QXApiTreeField));
        return reinterpret_cast<QXApiTreeField *>(chunk.data());
    };
    if (count > m_left) {
        // A large array gets a chunk of its own, so that the rest of the current chunk is not lost.
        if (count > m_chunkSize / 4)
            return addChunk(count);
        m_next = addChunk(m_chunkSize);
        m_left = m_chunkSize;
    }
    m_left -= count;
    return std::exchange(m_next, m_next + count);
}
