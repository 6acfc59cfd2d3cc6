#include "Quorvix/QXApiTree.h"

#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONReader.h"
#include "JSON/StableSort.h"

#include <algorithm>
#include <limits>
#include <new>
#include <string_view>

using namespace Quorvix;

/// Builds the tree with an explicit stack instead of recursion, so that deep nesting cannot overflow the
/// call stack.
class QXApiTree::Builder final
{
public:
    Builder(QXApiTree &tree, QXTaskSteps &steps) : m_tree(tree), m_steps(steps) {}

    /// False once the task is cancelled. The tree is incomplete then.
    bool build(const JSONValue &root)
    {
        setValue(m_tree.m_root, root);
        while (!m_pending.empty() && m_goesOn) {
            const Container container = m_pending.back();
            m_pending.pop_back();
            if (container.node->m_form == QXApiTreeField::Form::Array)
                addElements(*container.node, container.value);
            else
                addMembers(*container.node, container.value);
        }
        return m_goesOn;
    }

private:
    using Form = QXApiTreeField::Form;

    struct Container
    {
        QXApiTreeField *node;
        JSONValue value;
    };
    struct Member
    {
        std::string_view name;
        JSONValue value;
    };

    void setValue(QXApiTreeField &node, const JSONValue &value)
    {
        const JSONValue::Kind kind = value.kind();
        m_done += JSONValue::extent(kind);
        m_goesOn = m_steps.goOn(m_done);
        switch (kind) {
        case JSONValue::Kind::Object:
            node.m_form = Form::Object;
            m_pending.push_back({&node, value});
            break;
        case JSONValue::Kind::Array:
            node.m_form = Form::Array;
            m_pending.push_back({&node, value});
            break;
        case JSONValue::Kind::String:
            node.m_form = Form::String;
            setText(node.m_text, node.m_size, value.utf8());
            break;
        case JSONValue::Kind::Number:
            setNumber(node, value);
            break;
        case JSONValue::Kind::Boolean:
            node.m_form = value.isTrue() ? Form::True : Form::False;
            break;
        case JSONValue::Kind::Null:
            node.m_form = Form::Null;
            break;
        }
    }

    void setNumber(QXApiTreeField &node, const JSONValue &value)
    {
        if (const QByteArrayView digits = value.wideNumber(); !digits.isEmpty()) {
            node.m_form = Form::WideNumber;
            setText(node.m_text, node.m_size, digits);
            return;
        }
        switch (value.numberKind()) {
        case JSONValue::NumberKind::Int64:
            node.m_form = Form::Int64;
            node.m_int64 = value.toInt64();
            break;
        case JSONValue::NumberKind::UInt64:
            node.m_form = Form::UInt64;
            node.m_uint64 = value.toUInt64();
            break;
        case JSONValue::NumberKind::Double:
            node.m_form = Form::Double;
            node.m_double = value.toDouble();
            break;
        }
    }

    void addElements(QXApiTreeField &node, const JSONValue &array)
    {
        QXApiTreeField *child = addChildren(node, size_t(array.size()));
        for (const JSONValue &element : array.elements()) {
            setValue(makeChild(child++, node), element);
            if (!m_goesOn)
                return;
        }
    }

    void addMembers(QXApiTreeField &node, const JSONValue &object)
    {
        if (!readMembers(object))
            return;
        QXApiTreeField *child = addChildren(node, m_members.size());
        for (const Member &member : m_members) {
            ++m_done;
            QXApiTreeField &made = makeChild(child++, node);
            setText(made.m_name, made.m_nameSize, {member.name.data(), qsizetype(member.name.size())});
            setValue(made, member.value);
            if (!m_goesOn)
                return;
        }
    }

    /// Sorts the members by name. If several members have the same name, only the last one is kept. False
    /// once the task is cancelled.
    bool readMembers(const JSONValue &object)
    {
        m_members.clear();
        for (const auto &[name, value] : object.members())
            m_members.push_back({{name.data(), size_t(name.size())}, value});

        const auto isNotBefore = [](const Member &a, const Member &b) {
            return a.name >= b.name;
        };
        if (std::adjacent_find(m_members.cbegin(), m_members.cend(), isNotBefore) == m_members.cend())
            return true;
        // The reversed order puts the last member of each name first; std::unique keeps the first one.
        std::reverse(m_members.begin(), m_members.end());
        m_goesOn = stableSort(
            m_members.begin(), m_members.end(),
            [](const Member &a, const Member &b) { return a.name < b.name; },
            [this] { return m_steps.goOn(); });
        const auto end = std::unique(m_members.begin(), m_members.end(),
                                     [](const Member &a, const Member &b) { return a.name == b.name; });
        m_members.erase(end, m_members.end());
        return m_goesOn;
    }

    /// Makes room for the children. makeChild() makes each of them.
    QXApiTreeField *addChildren(QXApiTreeField &node, size_t count)
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

    /// The tree keeps the texts of the document. The parser accepts no text of 4 GB or more, so the size
    /// fits.
    static void setText(const char *&text, quint32 &size, QByteArrayView stored)
    {
        text = stored.data();
        size = quint32(stored.size());
    }

    QXApiTree &m_tree;
    QXTaskSteps &m_steps;
    qsizetype m_done = 0;
    bool m_goesOn = true;
    std::vector<Container> m_pending;
    /// The members of the object that is being read. It is a data member so that its memory is reused.
    std::vector<Member> m_members;
};

std::shared_ptr<QXApiTreeField> QXApiTree::make(JSONDocument document, QXTaskSteps steps)
{
    static_assert(JSONReader::maximumDepth <= std::numeric_limits<quint16>::max());
    const std::shared_ptr<QXApiTree> tree(new QXApiTree);
    tree->m_root.m_owner = tree.get();
    if (!Builder(*tree, steps).build(document.root()))
        return nullptr;
    tree->m_texts = JSONDocument::keepTexts(std::move(document));
    return {tree, &tree->m_root};
}

QXApiTreeField *QXApiTree::Arena::allocate(size_t count)
{
    // Freeing a tree frees its chunks only, however many nodes there are.
    static_assert(std::is_trivially_destructible_v<QXApiTreeField>);
    const auto addChunk = [this](size_t size) {
        auto &chunk = m_chunks.emplace_back(new std::byte[size * sizeof(QXApiTreeField)]);
        return reinterpret_cast<QXApiTreeField *>(chunk.get());
    };
    // A large array gets a chunk of its own, so that the rest of the current chunk is not lost.
    if (count > m_chunkSize / 4)
        return addChunk(count);
    if (count > m_left) {
        m_next = addChunk(m_chunkSize);
        m_left = m_chunkSize;
        m_chunkSize = std::min(m_chunkSize * 2, largestChunk);
    }
    m_left -= count;
    return std::exchange(m_next, m_next + count);
}
