// Checks that any bytes become an error or a consistent tree.

#include "FuzzCheck.h"

#include "Quorvix/QXApiTreeParser.h"

#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

using namespace Quorvix;

namespace {

void checkNode(const QXApiTreeField &node)
{
    check(node.summary() || node.children().empty(), "a node with children has a summary");
    check(!node.rowText() || node.key(), "a row has a key");
    static_cast<void>(node.keyPath());
    static_cast<void>(node.value());

    const QXApiTreeField *previous = nullptr;
    for (const QXApiTreeField &child : node.children()) {
        check(child.parent() == &node && child.depth() == node.depth() + 1, "a child is one level below");
        if (previous && node.kind() == QXApiValueKind::object)
            check(previous->nameUtf8() < child.nameUtf8(), "names are sorted, and each is there once");
        previous = &child;
        checkNode(child);
    }
}

/// Checks that a document can be written and that the output is parsed to the same values.
void checkRewriting(const JSONDocument &document)
{
    const auto written = [](const JSONValue &value) {
        JSONWriter writer;
        writer.value(value, JSONWriter::KeyOrder::Document);
        return writer.takeBuffer();
    };
    const QByteArray text = written(document.root());
    const auto again = JSONReader::parse(text);
    check(bool(again), "what was written is JSON");
    check(written(again.value().root()) == text, "reading and writing loses nothing");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes = view(data, size);
    const auto fields = QXApiTreeParser::parse(bytes);
    const auto document = JSONReader::parse(bytes);
    check(bool(fields) == bool(document), "the tree accepts what the reader accepts");
    if (!fields) {
        check(!fields.error().localizedDescription.isEmpty(), "an error tells something");
        return 0;
    }
    checkNode(*fields.value().first());
    checkRewriting(document.value());
    check(!isValidUtf8(bytes) || QXApiTreeParser::parse(QString::fromUtf8(bytes)),
          "text is read like its bytes");
    return 0;
}
