#include "Quorvix/QXApiTree.h"

#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONReader.h"

#include <cstring>
#include <limits>
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
            node.m_text = storeText(value.utf8(), node.m_size);
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
            node.m_text = storeText(digits, node.m_size);
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
            setValue(*child++, element);
            if (!m_goesOn)
                return;
        }
    }

    void addMembers(QXApiTreeField &node, const JSONValue &object)
    {
        readMembers(object);
        QXApiTreeField *child = addChildren(node, m_members.size());
        for (const Member &member : m_members) {
            ++m_done;
            child->m_name = storeText({member.name.data(), qsizetype(member.name.size())}, child->m_nameSize);
            setValue(*child++, member.value);
            if (!m_goesOn)
                return;
        }
    }

    /// Sorts the members by name. If several members have the same name, only the last one is kept.
    void readMembers(const JSONValue &object)
    {
        m_members.clear();
        for (const auto &[name, value] : object.members())
            m_members.push_back({{name.data(), size_t(name.size())}, value});

        const auto isNotBefore = [](const Member &a, const Member &b) {
            return a.name >= b.name;
        };
        if (std::adjacent_find(m_members.cbegin(), m_members.cend(), isNotBefore) == m_members.cend())
            return;
        // The reversed order puts the last member of each name first; std::unique keeps the first one.
        std::reverse(m_members.begin(), m_members.end());
        std::stable_sort(m_members.begin(), m_members.end(),
                         [](const Member &a, const Member &b) { return a.name < b.name; });
        const auto end = std::unique(m_members.begin(), m_members.end(),
                                     [](const Member &a, const Member &b) { return a.name == b.name; });
        m_members.erase(end, m_members.end());
    }

    QXApiTreeField *addChildren(QXApiTreeField &node, size_t count)
    {
        node.m_size = quint32(count);
        m_tree.nodeCount += qsizetype(count);
        if (count == 0)
            return nullptr;
        node.m_children = m_tree.m_nodes.allocate(count);
        for (QXApiTreeField &child : node.children()) {
            child.m_parent = &node;
            child.m_depth = quint16(node.m_depth + 1);
        }
        return node.m_children;
    }

    const char *storeText(QByteArrayView text, quint32 &size)
    {
        // The parser accepts no text of 4 GB or more, so the size fits.
        size = quint32(text.size());
        if (text.isEmpty())
            return nullptr;
        char *stored = m_tree.m_texts.allocate(size_t(text.size()));
        std::memcpy(stored, text.data(), size_t(text.size()));
        return stored;
    }

    QXApiTree &m_tree;
    QXTaskSteps &m_steps;
    qsizetype m_done = 0;
    bool m_goesOn = true;
    std::vector<Container> m_pending;
    /// The members of the object that is being read. It is a data member so that its memory is reused.
    std::vector<Member> m_members;
};

std::shared_ptr<QXApiTreeField> QXApiTree::make(const JSONValue &root, QXTaskSteps &steps)
{
    static_assert(JSONReader::maximumDepth <= std::numeric_limits<quint16>::max());
    const std::shared_ptr<QXApiTree> tree(new QXApiTree);
    tree->m_root.m_owner = tree.get();
    if (!Builder(*tree, steps).build(root))
        return nullptr;
    return {tree, &tree->m_root};
}
